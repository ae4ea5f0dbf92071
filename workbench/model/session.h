/** The work on one volume: its TAGs, markers and names, what was done to them, and whether it is saved.
 *
 *  Everything is kept in the order of display (see Display_Order); files are written in the order of the volume's file.
 */
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "workbench/model/display_order.h"
#include "workbench/model/grid_match.h"
#include "workbench/model/label_description.h"
#include "workbench/model/label_files.h"
#include "workbench/model/label_map.h"
#include "workbench/model/marker_table.h"
#include "workbench/model/painting.h"
#include "workbench/model/propagation.h"
#include "workbench/model/undo_journal.h"
#include "workbench/model/volume_planes.h"
#include "workbench/model/voxel_stroke.h"
#include "workbench/volumes/nifti_reader.h"
#include "workbench/volumes/volume.h"

namespace workbench {

enum class Propagation_Kind { Copy, Grow };

/** What to do with labels whose voxels lie elsewhere than the image's. */
enum class Grid_Choice { Refuse, Resample, By_Index };

/** Labels that were read from a file. */
struct Labels_Read {
    const volumes::Volume& volume;
    const std::filesystem::path& file;
    const Label_Description* description = nullptr;  ///< null: there is none
    Label_Stamps stamps{};                           ///< of the files, from before they were read
};

/** A voxel by the indices of the volume's file. */
struct File_Voxel {
    int x = 0;
    int y = 0;
    int z = 0;
};

class Session {
  public:
    /** No volume. */
    Session() = default;

    bool Has_Volume() const { return volume.has_value(); }
    /** The volume, levels in the order of display. Only with a volume. */
    const volumes::Volume& Image() const { return *volume; }
    const Display_Order& Order() const { return order; }
    const std::filesystem::path& Path() const { return path; }
    int Width() const { return volume ? volume->nx : 0; }
    int Height() const { return volume ? volume->ny : 0; }
    /** The pictures that the slices are. Only with a volume. */
    Plane_Geometry Slice_Pictures() const {
        return Plane_Geometry_Of_Slices({Width(), Height(), Slice_Nb()}, volume->spacing);
    }
    /** Levels of the first time point; none for colours. */
    volumes::Level_View Plain_Levels() const;
    /** Slices of the first time point. */
    int Slice_Nb() const { return volume ? volume->nz : 0; }
    /** Levels of a slice of the first time point; nothing outside. */
    volumes::Level_View Levels(int slice) const;
    /** Grey value at a pixel of a slice; 0 outside. */
    float Grey(int x, int y, int slice) const;
    File_Voxel To_File(int x, int y, int slice) const;

    /** Takes over a loaded volume; all TAGs become background, markers and history go. Names stay.
     *  @param loaded without levels where these follow @throw std::bad_alloc: there is no volume then */
    void Take(volumes::Volume&& loaded, const std::filesystem::path& loaded_from);
    /** Whether the voxels have levels. Where they have not, none is shown or worked on, but labels can be taken up. */
    bool Has_Levels() const { return volume && !volume->levels.empty(); }
    /** Takes over the same volume with levels; the work on it stays. @throw std::bad_alloc: nothing is changed */
    void Levels_Take(volumes::Volume&& loaded);
    /** Frees the levels; the work stays. */
    void Levels_Leave() { volume->levels = {}; }

    const Label_Map& Labels() const { return labels; }
    /** Writes a label volume that lies on the image, and beside it what describes the labels. Only when both are
     *  written the work counts as saved. Files that are there are replaced, protected ones too: ask before (see
     *  Doubts_Before). They stay protected.
     *  @param description of the TAGs and markers; the places of the markers are put in here
     *  @param kept receives one sentence for the user when a former description was kept aside, else is emptied
     *  @return empty, or one sentence for the user */
    std::string Save_Labels(const std::filesystem::path& file, Label_Description description, std::string& kept);
    /** The TAG of every voxel, in the order of the volume's file. Only with a volume. */
    std::vector<std::uint8_t> Tags_In_File_Order() const;
    /** What speaks against saving to a file. @param is_chosen the user has just agreed that the label volume of that
     *  name is replaced, so only a text beside it that belongs to no label volume is told, and protection */
    Save_Doubts Doubts_Before(const std::filesystem::path& file, bool is_chosen) const;
    /** How the voxels of a label volume lie on the image's. Only with a volume. */
    Grid_Match Labels_Compare(const volumes::Volume& loaded) const;
    /** The TAGs of a loaded label volume as they lie on the image, in the order of display; no TAG of the work changes.
     *  @param laid receives one per voxel @return empty, or one sentence: then `laid` is as it was */
    std::string Labels_Lay(const Labels_Read& read, Grid_Choice choice, std::vector<std::uint8_t>& laid) const;
    /** Replaces all TAGs by those of a loaded label volume, and the places of the markers by those that stand in its
     *  description. History goes. Labels whose voxels are the image's in another order are put into its order. When
     *  they were laid on otherwise, the file is not the labels' own any more.
     *  @param choice for voxels that lie elsewhere; By_Index needs equal sizes
     *  @return empty, or one sentence; then nothing is changed */
    std::string Take_Labels(const Labels_Read& read, Grid_Choice choice = Grid_Choice::Refuse);
    std::string Take_Labels(const volumes::Volume& loaded, const std::filesystem::path& file,
                            const Label_Description* description = nullptr) {
        return Take_Labels(Labels_Read{loaded, file, description, Label_Stamps_Of(file)});
    }
    const std::filesystem::path& Label_Path() const { return label_path; }
    /** Where the labels are to be saved; a file that is there is somebody else's. */
    void Label_Path_Set(const std::filesystem::path& file) {
        label_path = file;
        stamps = {};
    }
    bool Is_Unsaved() const { return journal.Is_Unsaved(); }
    /** Also during the first stroke. */
    bool Has_Unsaved_Work() const { return journal.Is_Unsaved() || stroke.has_value(); }
    const Label_Stamps& Stamps() const { return stamps; }
    /** Writes the places of the markers as voxels of the image's file. */
    void Markers_Describe(std::vector<Marker_Description>& described) const;

    /** A number that no other volume has that is or was open; 0: no volume. */
    std::uint64_t Serial() const { return serial; }
    /** Grows with everything that is done to the work, also within a stroke. */
    std::uint64_t Change_Nb() const { return change_nb; }
    /** What Change_Nb was when a slice's TAGs changed last; 0: never, they are background. */
    std::uint64_t Slice_Change_Nb(int slice) const { return slice_changes[static_cast<std::size_t>(slice)]; }
    /** Takes up work that a former run could not save; it counts as unsaved, and a new history begins.
     *  @param tags in the order of the volume's file @return false: there are not as many as voxels; nothing is changed
     */
    bool Take_Up(std::vector<std::uint8_t>&& tags, std::span<const Marker_Description> described,
                 const std::filesystem::path& file, const Label_Stamps& file_stamps);

    // A stroke: begin, any number of moves, end. Undo takes back the whole stroke.
    /** On a slice. @param brush kept for the stroke */
    Pixel_Rect Stroke_Begin(int slice, const Brush_Body& brush, int x, int y, const Paint_Ink& ink);
    /** On a picture of whatever plane. @return pixels of that picture, here and in Stroke_Move
     *  @throw std::bad_alloc: what was painted is part of the stroke all the same, here and in Stroke_Move */
    Pixel_Rect Stroke_Begin(const Plane_Cut& cut, const Brush_Body& brush, int x, int y, const Paint_Ink& ink);
    Pixel_Rect Stroke_Move(int x, int y);
    /** @return true when the stroke changed a pixel */
    bool Stroke_End();
    bool Is_Stroking() const { return stroke.has_value(); }

    /** Carries TAGs from one slice to another; one step. @return pixels carried; 0 also for slices outside */
    std::size_t Propagate(Propagation_Kind kind, int from, int to, const Propagation_Tags& tags);

    /** Changes voxels of any slices; one step. Of the labels as they are now, by Slice_Difference or an operation that
     *  was given them. @throw std::bad_alloc: no voxel is changed */
    void Voxels_Change(const std::string& title, Voxel_Change&& change);

    const Marker_Table& Markers() const { return markers; }
    /** Places, moves or takes away a marker; one step when anything changed. */
    void Marker_Set(int index, const Marker& marker);
    /** Puts a marker somewhere without a step, while it is being dragged. */
    void Marker_Preview(int index, const Marker& marker) {
        markers.Set(index, marker);
        ++change_nb;
    }

    /** Compares the names and thresholds that the panels may have written with those known, and makes a step of every
     *  difference. @param label null entries: no name @return number of steps made */
    int Note_Labels(Text_Table table, std::span<const char* const> label);
    /** All differences together are one step. Both have one size. */
    int Note_Thresholds(std::span<const float> low, std::span<const float> high);
    /** Colours of all TAGs, 0x00RRGGBB; all differences together are one step. */
    int Note_Colors(std::span<const std::uint32_t> color);
    /** Takes names, thresholds and colours as they are, without a step. */
    void Adopt_Labels(Text_Table table, std::span<const char* const> label);
    void Adopt_Thresholds(std::span<const float> low, std::span<const float> high);
    void Adopt_Colors(std::span<const std::uint32_t> color);

    /** Takes the last step back, or does it again; when memory is short, nothing is changed. Pixels and markers are
     * changed here; for a name, threshold or colour the caller writes the value it finds in the step. @return the step,
     * null when there is none */
    const Undo_Step* Undo();
    const Undo_Step* Redo();
    const Undo_Journal& Journal() const { return journal; }

  private:
    /** Makes room for TAGs, where it is not there yet. */
    void Labels_Make();
    Stroke_Ground Ground();
    /** How labels lie on the image when the user has so chosen. */
    Grid_Match Labels_Match(const volumes::Volume& loaded, Grid_Choice choice) const;
    /** Puts markers to places in a label volume that lies so on the image. */
    void Markers_Take(std::span<const Marker_Description> described, const Grid_Match& match);
    void Slice_Touch(int slice) { slice_changes[static_cast<std::size_t>(slice)] = ++change_nb; }
    void Touch(const Touched_Slices& touched);
    void All_Touch();
    void Push(Undo_Step step) {
        journal.Push(std::move(step));
        ++change_nb;
    }
    Label_Extent Extent() const { return {Slice_Nb(), Width(), Height()}; }
    std::vector<std::optional<std::string>>& Names(Text_Table table);
    void Apply(const Undo_Step& step, bool redo);
    /** All slices, or none when memory is short. */
    void Apply_Voxels(const Voxel_Change& change, bool redo);
    /** Makes a step of what a slice differs from `before`. @return true when it differs */
    bool Push_Slice(const char* title, int slice, std::span<const std::uint8_t> before);

    std::optional<volumes::Volume> volume;
    Display_Order order;
    std::filesystem::path path;
    std::filesystem::path label_path;
    Label_Stamps stamps;  // of the files at label_path, as they were read or saved here
    std::uint64_t serial = 0;
    std::uint64_t change_nb = 0;
    std::vector<std::uint64_t> slice_changes;
    Label_Map labels;
    Marker_Table markers;
    Undo_Journal journal;
    std::optional<Voxel_Stroke> stroke;
    std::vector<std::optional<std::string>> tag_names;
    std::vector<std::optional<std::string>> marker_names;
    std::vector<Tag_Band> bands;
    std::vector<std::uint32_t> colors;
};

}  // namespace workbench
