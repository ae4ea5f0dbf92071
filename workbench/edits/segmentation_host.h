/** What operations on labels need of the application: the work in hand, questions, a thread, and whom to tell. */
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "workbench/model/session.h"
#include "workbench/segmentation/label_edit.h"
#include "workbench/segmentation/level_bands.h"

namespace workbench {

/** What the user has in hand. */
struct Segmentation_Hand {
    int slice = 0;                                    ///< the one that is shown
    int tag = 0;                                      ///< the current one
    int tag_nb = 0;                                   ///< TAGs that there are, the background included
    Tag_Flags locked{};                               ///< not 0: voxels of that TAG stay
    std::optional<segmentation::Voxel_Place> cursor;  ///< the voxel that is pointed at
};

/** The grey values that a TAG claims. */
struct Tag_Claim {
    int tag = 0;
    segmentation::Grey_Band band;
};

/** Texts are UTF-8. Questions run a message loop. */
class Segmentation_Host {
  public:
    virtual ~Segmentation_Host() = default;

    /** The work on the current volume. */
    virtual Session& Work() = 0;
    virtual Segmentation_Hand Hand() const = 0;
    /** Of all TAGs that claim any, but the background, ascending. */
    virtual std::vector<Tag_Claim> Claims() const = 0;
    virtual std::string Tag_Name(int tag) const = 0;
    /** What grey values are called, "HU"; empty: nothing in particular. */
    virtual std::string Grey_Unit() const = 0;

    /** @return what was entered; no value: given up */
    virtual std::optional<std::string> Text_Ask(const std::string& title, const std::string& question,
                                                const std::string& start) = 0;
    /** @return index of a line; -1: given up */
    virtual int Line_Ask(const std::string& title, const std::string& label, const std::vector<std::string>& lines,
                         int current) = 0;
    virtual std::optional<std::filesystem::path> Label_File_Ask(const std::string& title) = 0;
    virtual std::optional<std::filesystem::path> Csv_File_Ask(const std::string& title, const std::string& name) = 0;
    /** Runs an action beside the window's thread, and shows how far it is, with a button to give it up. Passes on what
     *  it throws. */
    virtual void Run(const std::string& what,
                     const std::function<void(const segmentation::Edit_Progress& progress)>& action) = 0;

    /** Ends the stroke that is being painted, and lifts the pen: what is done next is a step of its own. */
    virtual void Stroke_End() = 0;
    /** Voxels have changed, among others in this slice: everything that shows them or counts them follows. */
    virtual void Labels_Changed(int slice) = 0;
    /** Other slices, or voxels of another TAG, were chosen for what operations may change. */
    virtual void Limits_Changed() = 0;
    /** The preview of the bands was turned on or off. */
    virtual void Preview_Changed() = 0;
    /** Shows the table of the TAGs, or another one in the window that is there. */
    virtual void Statistics_Show(const std::string& title, const std::string& table) = 0;
    virtual bool Is_Statistics_Shown() const = 0;
    /** Makes a TAG current, and the histogram that of its voxels in these slices. */
    virtual void Histogram_Of(int tag, const segmentation::Slice_Range& slices) = 0;
    /** Shows a table until it is closed. @return true: it is to be saved */
    virtual bool Table_Show(const std::string& title, const std::string& table) = 0;
    /** One line about what was done. */
    virtual void Tell(const std::string& text) = 0;
    /** A sentence about what could not be done. */
    virtual void Warn(const std::string& text) = 0;
};

}  // namespace workbench
