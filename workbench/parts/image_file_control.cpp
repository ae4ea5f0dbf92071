#include "workbench/parts/image_file_control.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "workbench/model/label_files.h"
#include "workbench/model/recovery_recorder.h"
#include "workbench/volumes/file_stamp.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/read_facts.h"
#include "workbench/volumes/text_header_writer.h"

namespace workbench {

namespace {

/** "brain_labels.nii.gz" becomes "brain.nrrd". */
std::filesystem::path Image_Path_Proposed(const std::filesystem::path& labels) {
    constexpr std::string_view ending = "_labels.nii.gz";
    std::string name = volumes::File_Name_Text(labels);
    name.resize(name.size() - std::min(name.size(), ending.size()));
    return labels.parent_path() / volumes::Path_From_Utf8(name + ".nrrd");
}

}  // namespace

bool Image_File_Control::Is_In_Use(const std::filesystem::path& path) const {
    const auto is_it = [&path](const std::filesystem::path& used) {
        std::error_code unknown;
        return !used.empty() && (used == path || std::filesystem::equivalent(used, path, unknown));
    };
    bool is_used = std::ranges::any_of(work.volumes.Files(), is_it);
    for (int volume = 0; volume < work.volumes.Nb(); ++volume) {
        const Session& session = work.volumes.Session_Of(volume, work.session);
        is_used = is_used || is_it(session.Path()) || is_it(session.Label_Path());
    }
    return is_used;
}

void Image_File_Control::Image_Save_As() {
    if (!work.session.Has_Volume()) {
        return dialogs.Tell("There is no image to save");
    }
    if (const std::string losses = volumes::Read_Losses_Text(work.session.Image());
        !losses.empty() && !dialogs.Yes_No_Ask("Save image as", "The image here is not exactly what its file holds: " +
                                                                    losses + ". Save it as it is here?")) {
        return;
    }
    std::filesystem::path start =
        Image_Path_Proposed(Label_Path_Proposed(work.session.Path(), work.volumes.Facts(work.volumes.Current()).title));
    while (true) {
        dialogs.Log("ask save_image_as " + Path_To_Utf8(start));
        std::optional<std::filesystem::path> path =
            dialogs.File_To_Save("Save image as", File_Kind::Image_Volumes, start);
        if (!path) {
            return;
        }
        if (!path->has_extension()) {
            *path += ".nrrd";
        }
        const std::string name = volumes::File_Name_Text(*path);
        if (!volumes::Text_Header_Is_Name(*path)) {
            dialogs.Warn("The image was not saved: " + name + " ends neither in .nrrd nor in .mha.");
        } else if (Is_In_Use(*path)) {
            dialogs.Warn("The image was not saved: " + name + " is open here. Choose another name.");
        } else if (volumes::File_Is_Read_Only(*path)) {
            dialogs.Warn("The image was not saved: " + name + " is protected from being written. Choose another name.");
        } else {
            return Write(*path);
        }
        start = *std::move(path);
    }
}

void Image_File_Control::Write(const std::filesystem::path& path) {
    const Session& session = work.session;
    const std::string name = volumes::File_Name_Text(path);
    bool is_given_up = false;
    std::string error;
    dialogs.Run("Saving " + name, [&](const volumes::Load_Progress& progress) {
        volumes::Image_Writing writing;
        writing.turn = [&session](std::span<std::int32_t> slice) {
            Slices_Turn(slice, session.Width(), session.Height(), session.Order());
        };
        writing.progress = [&](double done) {
            is_given_up = is_given_up || !progress(done);
            return !is_given_up;
        };
        error = volumes::Text_Header_Image_Write(path, session.Image(), writing);
    });
    if (is_given_up) {
        return dialogs.Tell("Saving was given up");
    }
    if (!error.empty()) {
        return dialogs.Warn("The image was not saved: " + error);
    }
    dialogs.Tell("The image was saved to " + name);
}

}  // namespace workbench
