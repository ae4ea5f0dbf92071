/** A workspace with volumes in it, and what stands for the panels and the windows. */
#pragma once

#include <filesystem>
#include <random>
#include <string>

#include "tests/workbench/dialogs_double.h"
#include "tests/workbench/label_values_double.h"
#include "workbench/model/label_attributes.h"
#include "workbench/model/workspace.h"

namespace workbench {

struct Work_Scene {
    static constexpr int NX = 4;
    static constexpr int NY = 3;
    static constexpr int NZ = 5;

    Work_Scene()
        : folder(std::filesystem::temp_directory_path() / ("parts_" + std::to_string(std::random_device{}()))) {
        std::filesystem::create_directories(folder);
    }
    ~Work_Scene() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    Work_Scene(const Work_Scene&) = delete;
    Work_Scene& operator=(const Work_Scene&) = delete;

    static volumes::Volume Image() {
        volumes::Volume volume;
        volume.nx = NX;
        volume.ny = NY;
        volume.nz = NZ;
        volume.nt = 1;
        volume.affine = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 2, 0}}};
        volume.spacing = {1, 1, 2};
        volume.levels = volumes::Voxel_Levels::Of_Range(std::size_t{NX} * NY * NZ, 0, 0, false);
        return volume;
    }
    /** Opens so many volumes; the first is the current one. */
    void Open(int volume_nb) {
        volumes::Image_Folder opened;
        for (int at = 0; at < volume_nb; ++at) {
            volumes::Folder_Volume& one = opened.volumes.emplace_back();
            one.title = "volume " + std::to_string(at);
            one.path = folder / ("image" + std::to_string(at) + ".nii");
            one.volume = Image();
        }
        work.volumes.Take(std::move(opened), {}, work.session);
        work.volumes.Switch(0, work.session);
        labels.Opened();
        labels.Enter();
        work.hub.Listen(Change_Hub::Stage::Views, [this](Told_Changes& told) { changes |= told.changes; });
    }
    void Go(int volume) { labels.Switch(volume); }
    /** Delivers what was noted. @return that */
    Changes Told() {
        changes = {};
        work.hub.Deliver();
        return changes;
    }
    /** One step of the work. */
    void Marker_Put(int marker, int slice) { work.session.Marker_Set(marker, {true, 1, 2, slice}); }

    std::filesystem::path folder;
    Workspace work{[] {}};
    Label_Values_Double values;
    Label_Attributes labels{work, values};
    Dialogs_Double dialogs;
    Changes changes;
};

}  // namespace workbench
