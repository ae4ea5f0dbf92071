/** The bytes of an image file, for readers that want all of them. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "workbench/volumes/dicom_reader.h"

namespace volumes {

/** What a file was found to be wrong with, as Folder_Problem::reason. */
struct File_Refusal {
    std::string text;
};

/** All bytes of a file, unpacked if it is gzip-compressed. Only the first ones when it is no DICOM file. Throws
 *  File_Refusal and std::bad_alloc.
 *  @param most bytes that are read
 *  @param bytes room for them, whatever it holds */
std::vector<std::uint8_t> Bytes_Read(const std::filesystem::path& path, std::uint64_t most,
                                     std::vector<std::uint8_t> bytes = {});

/** The same, but nothing of what is packed: that may become much. */
std::optional<std::vector<std::uint8_t>> Plain_Bytes_Read(const std::filesystem::path& path, std::uint64_t most,
                                                          std::vector<std::uint8_t> bytes);

/** Rooms of the threads that read files side by side: as many as there are threads at most. */
class Reading_Rooms {
  public:
    std::unique_ptr<Reading_Room> Take() {
        const std::lock_guard lock(mutex);
        if (idle.empty()) {
            return std::make_unique<Reading_Room>();
        }
        std::unique_ptr<Reading_Room> taken = std::move(idle.back());
        idle.pop_back();
        return taken;
    }
    void Give_Back(std::unique_ptr<Reading_Room> room) {
        const std::lock_guard lock(mutex);
        idle.push_back(std::move(room));
    }

  private:
    std::mutex mutex;
    std::vector<std::unique_ptr<Reading_Room>> idle;
};

}  // namespace volumes
