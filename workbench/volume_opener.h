/** The open volumes: opening files and folders, going from one volume to another. */
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "workbench/commands/command_actions.h"
#include "workbench/list_window.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/label_attributes.h"
#include "workbench/model/settings.h"
#include "workbench/model/workspace.h"
#include "workbench/report.h"
#include "workbench/volume_objects.h"
#include "workbench/volumes/ahead_reading.h"

namespace workbench {

/** What it works on, and what it asks of the application. All outlive it. */
struct Opener_Parts {
    const Look& look;
    Workspace& work;
    Label_Attributes& labels;
    Volume_Objects& objects;
    Dialogs& dialogs;
    Report& report;
    Settings& settings;
    // Labels and class trees of the images that go, and of those that come.
    std::function<bool()> labels_may_leave;  ///< @return false: they would be lost, and the user wants to go on
    std::function<bool()> classes_may_leave;
    std::function<void()> classes_leave;
    std::function<void(const std::filesystem::path&)> labels_load;
    /** @param root of the 2D class tree; null: there is none @param first of the paths that were opened
     *  @return a problem, for classes_told; may be empty */
    std::function<std::string(Quorel_2D* root, const std::filesystem::path& first)> classes_open;
    std::function<void(const std::string& problem)> classes_told;
    // Pixels that are read when they are wanted.
    std::function<bool(volumes::Image_Folder&, std::vector<volumes::Volume_Statistics>&)>
        first_read;                              ///< false: given up
    std::function<bool(int volume)> make_ready;  ///< to be shown. @return false: it cannot be
    std::function<bool()>
        room_keep;  ///< what is not shown may be freed. @return whether counting was given up for that
    std::function<std::uint64_t()> memory_most;  ///< bytes of the levels of all volumes
    // The histogram.
    std::function<void(int slice_nb, std::optional<double> background)> histogram_follow;  ///< another volume
    std::function<std::optional<double>()> background;
    std::function<void()> histogram_take;    ///< other images were opened
    std::function<void()> histogram_leave;   ///< the current volume becomes another one
    std::function<void()> histogram_of_all;  ///< of all frames of the current volume
    std::function<void()> counting_cancel;
    std::function<void(const std::string& text)> counting_begin;  ///< @param text for the status line, afterwards
    std::function<void()> settle;                                 ///< ends whatever is being done by a button
    std::function<void(int slice)> slice_show;
    std::function<HWND()> window;         ///< the main one
    std::function<void()> deliver;        ///< tells everybody at once
    std::function<void()> settings_keep;  ///< the files that were opened lately have changed
};

class Volume_Opener : public Volume_File_Actions {
  public:
    /** @param its_labels of the first images that are opened, UTF-8; empty: none */
    Volume_Opener(Opener_Parts parts, std::string its_labels)
        : of(std::move(parts)), first_labels(std::move(its_labels)), not_opened_list(of.look), read_list(of.look) {}

    void Open_Ask() override;
    void Open_Folder_Ask() override;
    void Not_Opened_Show() override;
    void Read_Facts_Show() override;
    void Orientation_Ask() override;
    std::vector<Numbered_Entry> Recent_Entries() const override;
    void Recent_Open(int number) override;

    /** Begins to read what Open will be given, while other things are done. */
    void Read_Ahead(std::span<const std::filesystem::path> paths);
    /** It is not to be opened after all. */
    void Ahead_Drop() { ahead.reset(); }
    /** Opens files and folders, all together, in place of what is open. */
    void Open(std::span<const std::filesystem::path> paths);
    /** Goes to another volume and makes the histogram of all its frames; nothing for one that there is not. */
    void Go(int wanted);
    /** Shows a frame of whatever volume. */
    void Frame_Follow(const Quorel_2D* frame);
    /** Name and size of the current volume. */
    std::string Volume_Text() const;
    /** Files that were left out. */
    long long Not_Opened_Nb() const;
    /** Oddities of files that are open, found later than they were opened. @return those that were not known */
    std::vector<volumes::Folder_Problem> Read_Warnings_Add(std::span<const volumes::Folder_Problem> problems) {
        return volumes::Problems_Add(problems, read_warnings);
    }

    // Their places are kept.
    List_Window& Not_Opened_List() { return not_opened_list; }
    List_Window& Read_List() { return read_list; }

  private:
    /** Tells which files were not opened, and why. */
    void Problems_Tell(const volumes::Image_Folder& opened, const std::filesystem::path& first);
    void Paths_Note(std::span<const std::filesystem::path> paths);
    void Labels_Take();
    /** @param first of the paths that were opened: the class changes are kept beside it */
    void Show(const std::filesystem::path& first, volumes::Image_Folder&& opened,
              std::vector<volumes::Volume_Statistics>&& numbers);
    /** Takes over what belongs to the volume that became the current one. */
    void Adopt();
    /** Makes another volume the current one. @return false: it is so already, or there is none */
    bool Set(int wanted);

    Opener_Parts of;
    std::unique_ptr<volumes::Ahead_Reading> ahead;  // null: nothing is being read
    std::string first_labels;
    std::string not_opened;                              // files, and why; UTF-8, one per line
    std::vector<volumes::Folder_Problem> read_warnings;  // of files that are open
    List_Window not_opened_list;
    List_Window read_list;
};

}  // namespace workbench
