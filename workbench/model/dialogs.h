/** How the parts of the application speak with the user: what they tell, what they ask, what takes a while. */
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "workbench/volumes/volume_load.h"

namespace workbench {

/** What a warning is about: a later success takes back only what was told of the same. */
enum class Warning_Subject { Other, Label_File };

/** What is read from a file or written into it. */
enum class File_Kind {
    Images,
    Labels,
    Label_Volumes,
    Image_Volumes,
    Segmentations,
    Histograms,
    Tables,
    Pictures,
    Texts
};

/** Texts are UTF-8. What asks or runs something runs a message loop, in which everything else may happen but input for
 *  the main window. Window's thread only. */
class Dialogs {
  public:
    enum class Answer { Yes, No, Cancel };

    virtual ~Dialogs() = default;

    /** One line about what was done; the next one takes its place. */
    virtual void Tell(const std::string& text) = 0;
    /** A sentence about what could not be done; stays until the user closes it. */
    void Warn(const std::string& text) { Warn(text, Warning_Subject::Other); }
    virtual void Warn(const std::string& text, Warning_Subject subject) = 0;
    /** Takes back what was told of one subject; no value: all warnings. */
    virtual void Warnings_Close(std::optional<Warning_Subject> subject) = 0;
    /** A line for programs that drive the application; the user does not see it. */
    virtual void Log(const std::string& line) = 0;

    /** @param start offered @return what was entered; no value: given up */
    virtual std::optional<std::string> Text_Ask(const std::string& title, const std::string& question,
                                                const std::string& start) = 0;
    /** @param accept what the button says that takes the line, with the mark of its letter
     *  @return index of a line; -1: given up */
    virtual int Line_Ask(const std::string& title, const std::string& label, const std::vector<std::string>& lines,
                         int current, const std::string& accept) = 0;
    /** @param ways what the buttons say, with marks of their letters; Enter presses the first
     *  @return index of a way; -1: given up */
    virtual int Way_Ask(const std::string& title, const std::string& text, const std::vector<std::string>& ways) = 0;
    virtual bool Yes_No_Ask(const std::string& title, const std::string& question) = 0;
    virtual Answer Yes_No_Cancel_Ask(const std::string& title, const std::string& question) = 0;
    /** Shows a text to read, in letters of one width. @param choices further buttons beside "Close", with marks of
     *  their letters @return index of a choice; -1: closed */
    virtual int Text_Show(const std::string& title, const std::string& text,
                          const std::vector<std::string>& choices) = 0;

    /** @return a file that is there; no value: given up */
    virtual std::optional<std::filesystem::path> File_To_Open(const std::string& title, File_Kind kind) = 0;
    virtual std::optional<std::filesystem::path> Folder_To_Open(const std::string& title) = 0;
    /** The user has agreed when the file is there already.
     *  @param start offered: a name, or a path whose folder may be gone @return no value: given up */
    virtual std::optional<std::filesystem::path> File_To_Save(const std::string& title, File_Kind kind,
                                                              const std::filesystem::path& start) = 0;

    /** Runs an action on a thread of its own, and shows how far it is, with a button to give it up. Passes on what it
     *  throws. */
    virtual void Run(const std::string& what, const std::function<void(const volumes::Load_Progress&)>& action) = 0;
};

}  // namespace workbench
