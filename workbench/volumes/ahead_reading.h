/** Images that are read before anybody waits for them. */
#pragma once

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include "workbench/volumes/image_folder.h"
#include "workbench/volumes/volume_load.h"

namespace volumes {

/** Does what Image_Folder_Open does, on a thread of its own that begins at once. All calls on one thread. */
class Ahead_Reading {
  public:
    /** As Image_Folder_Open takes them. Throws std::bad_alloc; where no thread or lock can be had, Take reads. */
    Ahead_Reading(std::span<const std::filesystem::path> of_paths, const Load_Limits& load_limits,
                  std::uint64_t whole_most);
    /** Gives up what is not read yet, and waits for the thread. */
    ~Ahead_Reading();
    Ahead_Reading(const Ahead_Reading&) = delete;
    Ahead_Reading& operator=(const Ahead_Reading&) = delete;

    bool Is_Of(std::span<const std::filesystem::path> wanted) const;
    /** Waits until all is read; once. @param progress as Image_Folder_Open calls it, on the caller's thread */
    Image_Folder Take(const Load_Progress& progress);

  private:
    void Read();

    const std::vector<std::filesystem::path> paths;
    const Load_Limits limits;
    const std::uint64_t whole;
    Image_Folder folder;  // the thread's until it is done
    std::mutex mutex;     // of those below
    std::condition_variable changed;
    double share = 0.0;
    bool is_given_up = false;
    bool is_done = false;
    std::thread thread;
};

}  // namespace volumes
