/** Saves what is shown as a picture, and many slices as one sheet. No window. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "workbench/commands/command_actions.h"
#include "workbench/model/image_user.h"
#include "workbench/volumes/png_writer.h"
#include "workbench/volumes/volume_load.h"

namespace workbench {

/** A view that a picture can be made of. */
struct Pictured_View {
    std::string name;                      ///< "Slice 91", "Coronal 108"; also of the file, in small letters
    std::function<Image_Content()> shown;  ///< the voxels
    /** As large as on the screen. @param is_plain the image alone */
    std::function<volumes::Picture(bool is_plain)> screen;
};

/** What the part needs of the application. Texts are UTF-8; questions run a message loop. */
struct Picture_Host {
    std::function<std::vector<Pictured_View>()> views;  ///< that are shown; none: there is no image
    std::function<int()> slice_nb;
    std::function<Image_Content(int slice)>
        slice;                    ///< what the view of the slices would show; valid while none changes
    std::function<int()> tag_nb;  ///< the background included
    std::function<std::string(int tag)> tag_name;
    /** A line in the window's font, light letters on black. */
    std::function<volumes::Picture(const std::string& text)> letters;
    /** @return index of a line; -1: given up */
    std::function<int(const std::string& title, const std::string& label, const std::vector<std::string>& lines)> line;
    /** @return what was entered; no value: given up */
    std::function<std::optional<std::string>(const std::string& title, const std::string& question,
                                             const std::string& start)>
        text;
    std::function<std::optional<std::filesystem::path>(const std::string& title, const std::string& name)> file;
    /** Runs an action beside the window's thread with a window that shows how far it is. Passes on what it throws. */
    std::function<void(const std::string& what, const std::function<void(const volumes::Load_Progress&)>& action)> run;
    std::function<void(const std::string& text)> tell;
    std::function<void(const std::string& text)> warn;
};

class Picture_Control : public Picture_Actions {
  public:
    explicit Picture_Control(Picture_Host application);

    void Picture_Save() override;
    void Sheet_Save() override;

  private:
    /** Makes a picture beside the window's thread and writes it. @param make an empty picture: given up */
    void Save(const std::string& title, const std::string& name,
              const std::function<volumes::Picture(const volumes::Load_Progress&)>& make);

    Picture_Host host;
};

/** One pixel for each voxel of a slice. @param is_plain without colours of TAGs and bands */
volumes::Picture Slice_Picture(const Image_Content& content, bool is_plain);

}  // namespace workbench
