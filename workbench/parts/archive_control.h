/** Archives as the user meets them: searching one, fetching series and opening them, sending labels
 *  and images. No window.
 *
 *  Everything that goes over the network runs beside the window's thread, with a button to give it up.
 */
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "workbench/archive/archive_client.h"
#include "workbench/commands/command_actions.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/workspace.h"

namespace workbench {

/** A line that the user fills in. */
struct Form_Field {
    std::string label;  ///< with the mark of its letter
    std::string value;
};

/** What archives need of the application besides the work and the dialogs. Texts are UTF-8. */
struct Archive_Host {
    /** The archives that the user named, one line each (see Archive_Line). */
    std::function<std::vector<std::string>()> archives;
    std::function<void(const std::vector<std::string>&)> archives_keep;
    /** Where fetched series are kept; empty: nowhere. */
    std::function<std::filesystem::path()> cache_folder;
    /** Opens the images of folders, together, in place of what is open. */
    std::function<void(std::span<const std::filesystem::path>)> open;
    /** The files of the volume in hand that are of one series, as they lie on the disk. */
    std::function<std::vector<std::filesystem::path>()> images;
    /** What is wished of everything that is sent; the secret is empty while there is none. */
    std::function<archive::Send_Wishes()> send_wishes;
    /** Keeps whether it is anonymous, and the secret. @return false: they are gone when the program ends */
    std::function<bool(const archive::Send_Wishes&)> send_wishes_keep;
    /** Writes the labels of the volume in hand as a segmentation object; shows how far it is.
     *  @return empty, or one sentence */
    std::function<std::string(const std::filesystem::path&)> labels_write;
    /** Lets the user fill in a form. Receives the buttons, the one of Enter first; the fields receive what was entered.
     *  @return index of a button; -1: given up */
    std::function<int(const std::string& title, const std::string& text, std::vector<Form_Field>& fields,
                      const std::vector<std::string>& ways)>
        form;
    /** Lets the user mark lines of a list, the first one at the beginning. @return their indices; none: given up */
    std::function<std::vector<int>(const std::string& title, const std::string& label,
                                   const std::vector<std::string>& lines, const std::string& accept)>
        lines_ask;
};

/** What is asked of an archive; those of archive_client.h, or others in tests. */
struct Archive_Operations {
    std::function<archive::Archive_Outcome(const archive::Archive_Settings&, const volumes::Load_Progress&,
                                           archive::Archive_Abilities*)>
        test;
    std::function<archive::Search_Result<archive::Study>(const archive::Archive_Settings&, const archive::Study_Query&,
                                                         const volumes::Load_Progress&)>
        studies;
    std::function<archive::Search_Result<archive::Series>(const archive::Archive_Settings&, const std::string& study,
                                                          const volumes::Load_Progress&)>
        series;
    std::function<archive::Retrieve_Result(const archive::Archive_Settings&, const archive::Series&,
                                           const std::filesystem::path& root, const volumes::Load_Progress&)>
        retrieve;
    std::function<archive::Send_Result(const archive::Archive_Settings&, std::span<const std::filesystem::path>,
                                       const volumes::Load_Progress&, const archive::Send_Wishes&)>
        send;
    bool can_encrypt;
};
Archive_Operations Archive_Operations_Of_Network();

class Archive_Control : public Archive_Actions {
  public:
    /** All but the functions outlive it. */
    Archive_Control(const Workspace& workspace, Dialogs& application_dialogs, Archive_Host application,
                    Archive_Operations its_operations = Archive_Operations_Of_Network())
        : work(workspace),
          dialogs(application_dialogs),
          host(std::move(application)),
          operations(std::move(its_operations)) {}

    void Archive_Open() override;
    void Labels_Send() override;
    void Images_Send() override;

  private:
    /** @return no value: given up */
    std::optional<archive::Archive_Settings> Archive_Choose(const std::string& title);
    /** Asks for the settings of an archive, of a new one when there is no index, and keeps them.
     *  @return no value: given up, or removed */
    std::optional<archive::Archive_Settings> Settings_Ask(std::optional<std::size_t> index);
    void Test(const archive::Archive_Settings& asked);
    /** @return whether a series was opened, and so for the next ones */
    bool Studies_Show(const archive::Archive_Settings& asked, const archive::Study_Query& query);
    bool Series_Show(const archive::Archive_Settings& asked, const archive::Study& study);
    /** @param lines of the series */
    bool Series_Choose(const archive::Archive_Settings& asked, const std::string& study,
                       const std::vector<std::string>& lines, const std::vector<archive::Series>& found);
    /** Fetches several, one after the other. @param wanted at least one @return whether any was opened */
    bool Fetch(const archive::Archive_Settings& asked, std::span<const archive::Series> wanted);
    enum class Fetched { Kept, Given_Up, Not_There };
    /** @param title of the window that shows how far it is @param in_use folders that the cache keeps
     *  @param error receives one sentence */
    Fetched Fetch_One(const archive::Archive_Settings& asked, const archive::Series& series, const std::string& title,
                      std::span<const std::filesystem::path> in_use, archive::Retrieve_Result& result,
                      std::string& error);

    /** Asks whether something may go, and in which way. @return no value: it may not */
    std::optional<archive::Send_Wishes> Send_Ask(const archive::Archive_Settings& to, const std::string& title,
                                                 const std::string& text);
    /** @param what "labels" @param before objects that the archive has accepted already, in the same sending
     *  @return empty, or a sentence about what did not arrive */
    std::string Send(const archive::Archive_Settings& to, const std::string& what,
                     std::span<const std::filesystem::path> files, archive::Send_Wishes wishes, int before = 0);
    /** Asks about pictures that may show who the patient is, and sends them then. @return as Send */
    std::string Held_Send(const archive::Archive_Settings& to, const std::string& what,
                          const archive::Send_Result& before, archive::Send_Wishes wishes);
    std::string Sent_Tell(const archive::Archive_Settings& to, const std::string& what,
                          const archive::Send_Result& sent, bool is_anonymous, int before);

    const Workspace& work;
    Dialogs& dialogs;
    Archive_Host host;
    Archive_Operations operations;
    archive::Study_Query last_query;
    int last_archive = 0;
};

}  // namespace workbench
