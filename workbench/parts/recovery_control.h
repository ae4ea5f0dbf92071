/** Work that was not saved: journaled while the program runs, taken up after it has died. No window. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "workbench/model/dialogs.h"
#include "workbench/model/label_attributes.h"
#include "workbench/model/recovery_folder.h"
#include "workbench/model/recovery_keeper.h"
#include "workbench/model/recovery_recorder.h"
#include "workbench/model/workspace.h"

namespace workbench {

/** What it needs of the application besides the work and the dialogs. */
struct Recovery_Host {
    std::function<std::uint64_t()> now_ms;   ///< of a clock that never goes back
    std::function<void(int ms)> look_after;  ///< has Look called at such intervals, also in dialogs and menus
    std::function<void(std::span<const std::filesystem::path>)> open;  ///< opens images, in place of what is open
    std::function<void(int volume)> go;                                ///< makes a volume the current one
    std::function<void(const Label_Description&)> take;  ///< takes over names and colours of the current volume
    std::function<void(const std::string&)> note;        ///< what is being done, for a report of a crash
};

/** Where it is kept, beside the settings; empty when these are kept nowhere. */
std::filesystem::path Recovery_Folder_Of(const std::filesystem::path& settings_file);

class Recovery_Control {
  public:
    /** All but the host's functions outlive it. */
    Recovery_Control(Workspace& workspace, Label_Attributes& attributes, Dialogs& application_dialogs,
                     Recovery_Host application)
        : work(workspace), labels(attributes), dialogs(application_dialogs), host(std::move(application)) {}

    /** Begins to keep work. @param its_folder empty: nothing is kept @param program its version */
    void Begin(const std::filesystem::path& its_folder, const std::string& program);
    /** Hands on what has changed since the last look. @return true: nothing is left to hand on */
    bool Look();
    /** Timers come last: an endless queue of messages must not hold them back for ever. */
    void Look_If_Late();
    /** A clean end: nothing is left to take up. */
    void End();
    /** Offers the work of a run that has died. @return true: it was taken up */
    bool Offer();
    /** Tells of reports of crashes that nobody has been told of. */
    void Crashes_Tell(std::span<const std::filesystem::path> reports);
    /** Notes a change of the work for a report of a crash. */
    void Step_Note();

  private:
    void Take(Recovery_Found& found);
    /** @return true: it lies on its volume again, which `volume` receives */
    bool Take_Volume(const Recovery_Volume& wanted, bool is_first, int& volume);

    Workspace& work;
    Label_Attributes& labels;
    Dialogs& dialogs;
    Recovery_Host host;
    std::filesystem::path folder;
    std::optional<Recovery_Claim> claim;
    std::unique_ptr<Recovery_Keeper> keeper;
    Recovery_Recorder recorder;
    std::uint64_t looked = 0;      // milliseconds of the host's clock
    int waited = 0;                // looks since writing failed
    bool is_soon = false;          // a look did not suffice
    bool is_problem_told = false;  // that nothing can be kept any more
    std::uint64_t noted_state = 0;
};

}  // namespace workbench
