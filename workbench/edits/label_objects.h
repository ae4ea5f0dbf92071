/** Labels as DICOM objects: saving those of the volume in hand as segmentations, reading segmentations and structure
 * sets. */
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "workbench/commands/command_actions.h"
#include "workbench/model/label_description.h"
#include "workbench/model/session.h"
#include "workbench/volumes/dicom_segmentation_writer.h"
#include "workbench/volumes/volume_load.h"

namespace workbench {

/** What that needs of the application. Texts are UTF-8. Questions run a message loop. */
class Label_Object_Host {
  public:
    virtual ~Label_Object_Host() = default;

    /** The work on the current volume. */
    virtual const Session& Work() const = 0;
    virtual std::string Volume_Title() const = 0;
    virtual volumes::Slice_Files Slices() const = 0;
    /** Names and colours of the TAGs. */
    virtual Label_Description Description() const = 0;
    virtual int Current_Tag() const = 0;
    /** One step of the history. */
    virtual void Tag_Name_Set(int tag, const std::string& name) = 0;
    virtual std::string Program_Version() const = 0;
    /** Who works; may be empty. */
    virtual std::string User_Name() const = 0;

    virtual std::optional<std::filesystem::path> Object_File_Ask(const std::filesystem::path& start) = 0;
    /** @return what was entered; no value: given up */
    virtual std::optional<std::string> Text_Ask(const std::string& title, const std::string& question,
                                                const std::string& start) = 0;
    /** @return index of a line; -1: given up */
    virtual int Line_Ask(const std::string& title, const std::string& label, const std::vector<std::string>& lines,
                         int current) = 0;
    /** @param ways what the buttons say @return index of a way; -1: given up */
    virtual int Way_Ask(const std::string& title, const std::string& text, const std::vector<std::string>& ways) = 0;
    /** Runs an action beside the window's thread, and shows how far it is, with a button to give it up. */
    virtual void Run(const std::string& what, const std::function<void(const volumes::Load_Progress&)>& action) = 0;
    /** One line about what was done. */
    virtual void Tell(const std::string& text) = 0;
    /** A sentence about what could not be done. */
    virtual void Warn(const std::string& text) = 0;
};

/** Labels of an object, with the names and colours of its segments as TAGs. */
struct Object_Labels {
    volumes::Volume volume;
    Label_Description description;
};

class Label_Objects : public Object_Actions {
  public:
    explicit Label_Objects(Label_Object_Host& application) : host(application) {}

    void Object_Save() override;
    /** Writes the labels as an object, without a question. @return empty, or one sentence */
    std::string Object_Write(const std::filesystem::path& path, bool is_deflated);
    void Tag_Meaning_Ask() override;

    /** Whether a file may hold an object; looks at its first bytes. */
    static bool Is_Object_File(const std::filesystem::path& file);
    /** Reads an object onto the volume in hand. Asks from which share on a voxel is of a segment where the object holds
     *  shares. What it warns of is told. @return no value: given up, or told why not */
    std::optional<Object_Labels> Load(const std::filesystem::path& file);

  private:
    /** @return no value: given up, or told what is wrong */
    std::optional<double> Threshold_Ask();
    /** Of any volume that is open. */
    bool Is_Image_File(const std::filesystem::path& file) const;
    /** An object of another patient is loaded only if the user says so. */
    bool May_Load(const std::string& name, const volumes::Object_Owner& owner);

    Label_Object_Host& host;
};

}  // namespace workbench
