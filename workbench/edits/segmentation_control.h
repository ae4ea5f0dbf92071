/** From bands to labels, correcting labels and measuring them: what the commands of the menu do. No window. */
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/commands/command_actions.h"
#include "workbench/edits/segmentation_host.h"
#include "workbench/segmentation/label_edit.h"
#include "workbench/segmentation/tag_statistics.h"

namespace workbench {

/** Every operation works on the chosen slices, inside the chosen TAG if there is one, leaves locked TAGs alone, and is
 *  one step of the history; given up, or without memory, it changes nothing. */
class Segmentation_Control : public Segmentation_Actions {
  public:
    /** @param segmentation_host outlives the control */
    explicit Segmentation_Control(Segmentation_Host& segmentation_host) : host(segmentation_host) {}

    void Bands_Apply(bool of_all_tags) override;
    void Bands_Preview_Set(bool on) override;
    bool Is_Bands_Preview() const override { return is_preview; }
    void Flood(bool by_tolerance) override;
    void Region_Keep_Largest() override;
    void Regions_Drop_Small() override;
    void Region_Keep_At_Cursor() override;
    void Region_Take_At_Cursor() override;
    void Holes_Fill(bool in_space) override;
    void Tag_Smooth() override;
    void Tag_Resize(int direction) override;
    void Slices_Between_Fill() override;
    void Tag_Merge() override;
    void Tag_Join_File() override;
    void Scope_Set(Edit_Scope wanted) override;
    Edit_Scope Scope_Now() const override { return scope; }
    void Only_Inside_Ask() override;
    std::optional<std::string> Only_Inside_Name() const override;
    void Statistics_Show() override;
    void Statistics_Save() override;
    void Labels_Compare_Ask() override;
    void Differences_Show(bool on) override;
    bool Is_Differences() const override { return !Compared().empty(); }

    /** The slices that are worked on. Only with a volume. */
    segmentation::Slice_Range Slices() const;
    /** The TAG whose voxels alone may change; no value: those of all. */
    std::optional<std::uint8_t> Only_Inside() const { return only_inside; }

    /** Labels of a file, one per voxel as those of the work, while the differences to them are shown; else none. */
    std::span<const std::uint8_t> Compared() const;
    /** Makes the histogram that of the TAG whose row stands on a line of the statistics, in the slices that the table
     *  counts. @param line from 0, whichever */
    void Statistics_Row(int line);

    /** The labels have changed by whatever: the table follows if it is shown and quickly counted. */
    void Labels_Follow();
    /** Another volume is in hand: what was chosen of the slices of the last one goes. */
    void Volume_Follow();

  private:
    using Operation = std::function<std::optional<segmentation::Label_Edit>(const segmentation::Edit_Input& input)>;

    /** The labels, what may change of them, and where. Only with a volume. */
    segmentation::Edit_Input Input() const;
    /** "slice 5", "slices 3 to 12", "all 181 slices". */
    std::string Slices_Text() const;
    /** Runs an operation with progress, makes a step of it and tells how many voxels have changed. */
    void Operate(const std::string& title, const Operation& operation);
    /** Why an operation may have changed nothing: "; only voxels of Fluid may change". May be empty. */
    std::string Limits_Text() const;
    /** There is a volume; otherwise the user is told. */
    bool Has_Volume();
    /** There is a volume, and the current TAG is not the background; otherwise the user is told. */
    bool Has_Tag();
    /** The voxel that is pointed at, in the slices that are worked on; otherwise the user is told. */
    std::optional<segmentation::Voxel_Place> Cursor();
    /** Asks for a number of 0 or more. @param last the answer before, which is offered; receives the answer
     *  @return false: given up, or no such number, which is told */
    bool Number_Ask(const std::string& title, const std::string& question, double& last);
    /** "mm", or what stands for it where the size of voxels is not known. */
    std::string Length_Unit() const;
    static std::uint8_t Byte_Of(int tag) { return static_cast<std::uint8_t>(tag); }
    std::string Name() const { return host.Tag_Name(host.Hand().tag); }
    /** @return no value: given up, or no memory */
    std::optional<std::vector<segmentation::Tag_Numbers>> Numbers_Count();
    /** Asks for a label file and lays its TAGs on the image. @return false: there are none, as the user was told */
    bool Label_File_Read(const std::string& title, std::vector<std::uint8_t>& laid);
    void Statistics_Fill(std::span<const segmentation::Tag_Numbers> numbers);
    std::string Statistics_Title() const;
    void Csv_Save(const std::string& title, const std::string& name, const std::string& text);

    Segmentation_Host& host;
    Edit_Scope scope = Edit_Scope::Volume;
    segmentation::Slice_Range range;
    std::optional<std::uint8_t> only_inside;
    bool is_preview = false;
    double tolerance = 10.0;  // grey values
    double least_mm3 = 100.0;
    double smooth_mm = 2.0;
    double resize_mm = 2.0;
    /** What the labels were compared with last; goes with the volume. */
    struct Compared_Labels {
        std::uint64_t serial = 0;  // of the volume
        std::vector<std::uint8_t> tags;
    };
    Compared_Labels compared;
    bool is_difference = false;
    std::string table;     // of the TAGs, as it is shown
    bool is_quick = true;  // a change was counted in no time, up to now
};

}  // namespace workbench
