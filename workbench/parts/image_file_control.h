/** Saves the image that is shown in another format. No window. */
#pragma once

#include <filesystem>

#include "workbench/commands/command_actions.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/workspace.h"

namespace workbench {

class Image_File_Control : public Image_File_Actions {
  public:
    /** Both outlive it. */
    Image_File_Control(Workspace& workspace, Dialogs& application_dialogs)
        : work(workspace), dialogs(application_dialogs) {}

    void Image_Save_As() override;

  private:
    /** A file that an image is shown from, or that holds the labels, is nobody's copy. */
    bool Is_In_Use(const std::filesystem::path& path) const;
    void Write(const std::filesystem::path& path);

    Workspace& work;
    Dialogs& dialogs;
};

}  // namespace workbench
