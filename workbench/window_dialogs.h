/** Speaks with the user by the windows of the application. */
#pragma once

#include "base/gdi_handles.h"

#include <functional>
#include <string>
#include <utility>

#include "workbench/look.h"
#include "workbench/model/dialogs.h"
#include "workbench/report.h"
#include "workbench/status_line.h"
#include "workbench/warning_banner.h"

namespace workbench {

class Window_Dialogs : public Dialogs {
  public:
    /** All outlive it. @param main_window owns the dialogs */
    Window_Dialogs(const Look& shared_look, Status_Line& line_of_status, Warning_Banner& banner_of_warnings,
                   Report& lines_of_report, std::function<HWND()> main_window)
        : look(shared_look),
          status_line(line_of_status),
          banner(banner_of_warnings),
          report(lines_of_report),
          owner(std::move(main_window)) {}

    using Dialogs::Warn;
    void Tell(const std::string& text) override;
    void Warn(const std::string& text, Warning_Subject subject) override;
    void Warnings_Close(std::optional<Warning_Subject> subject) override;
    void Log(const std::string& line) override { report.Line(line); }
    std::optional<std::string> Text_Ask(const std::string& title, const std::string& question,
                                        const std::string& start) override;
    int Line_Ask(const std::string& title, const std::string& label, const std::vector<std::string>& lines, int current,
                 const std::string& accept) override;
    int Way_Ask(const std::string& title, const std::string& text, const std::vector<std::string>& ways) override;
    bool Yes_No_Ask(const std::string& title, const std::string& question) override;
    Answer Yes_No_Cancel_Ask(const std::string& title, const std::string& question) override;
    int Text_Show(const std::string& title, const std::string& text, const std::vector<std::string>& choices) override;
    std::optional<std::filesystem::path> File_To_Open(const std::string& title, File_Kind kind) override;
    std::optional<std::filesystem::path> Folder_To_Open(const std::string& title) override;
    std::optional<std::filesystem::path> File_To_Save(const std::string& title, File_Kind kind,
                                                      const std::filesystem::path& start) override;
    void Run(const std::string& what, const std::function<void(const volumes::Load_Progress&)>& action) override;

  private:
    const Look& look;
    Status_Line& status_line;
    Warning_Banner& banner;
    Report& report;
    std::function<HWND()> owner;
};

}  // namespace workbench
