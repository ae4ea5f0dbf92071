/** Pixels of volumes that were listed by the heads of their files: read when they are wanted, freed when memory is
 *  short. No window. */
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "workbench/model/dialogs.h"
#include "workbench/model/workspace.h"
#include "workbench/volumes/image_folder.h"
#include "workbench/volumes/volume_statistics.h"
#include "workbench/volumes/waiting_levels.h"

namespace workbench {

/** What it needs of the application besides the work and the dialogs. */
struct Level_Supply_Host {
    std::function<std::uint64_t()> memory_most;  ///< bytes, of the levels of all volumes
    /** Notes what was found in files that were read now. @return what the user was not told yet */
    std::function<std::vector<volumes::Folder_Problem>(std::span<const volumes::Folder_Problem>)> problems_note;
    std::function<void(int volume)> came;   ///< its levels are there
    std::function<void()> counting_cancel;  ///< nothing reads the levels of any volume when this returns
    std::function<void(int volume)> gone;   ///< its levels were freed
};

class Level_Supply {
  public:
    /** All but the host's functions outlive it. */
    Level_Supply(Workspace& workspace, Dialogs& application_dialogs, Level_Supply_Host application)
        : work(workspace), dialogs(application_dialogs), host(std::move(application)) {}

    /** Reads the volume that is shown first of a folder, if its pixels wait. One that cannot be read becomes a problem
     *  of the folder, and the next one is tried.
     *  @param numbers of every volume; those of the one that is read are put in @return false: the user gave up */
    bool First_Read(volumes::Image_Folder& folder, std::vector<volumes::Volume_Statistics>& numbers);
    /** Sees to it that a volume can be shown. Runs a message loop where its pixels are to be read.
     *  @return false: it cannot, and the user knows why */
    bool Make_Ready(int volume);
    /** Frees levels until those of all volumes take no more than they may.
     *  @return whether some went: then whatever counted histograms was given up */
    bool Room_Keep();
    /** Bytes that the levels of all volumes may take. */
    std::uint64_t Memory_Most() const { return host.memory_most(); }

  private:
    struct Read {
        volumes::Levels_Result result;
        volumes::Volume_Statistics numbers;
    };
    Read Levels_Read(const volumes::Waiting_Levels& wanted, const std::string& title);
    volumes::Load_Limits Limits() const;
    void Problems_Tell(const std::string& title, std::span<const volumes::Folder_Problem> found);

    Workspace& work;
    Dialogs& dialogs;
    Level_Supply_Host host;
};

}  // namespace workbench
