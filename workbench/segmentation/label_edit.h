/** What operations on labels are given, and the change that they propose. Nothing here writes labels but Edit_Apply: an
 *  operation that is cancelled, or finds no memory, has changed nothing.
 */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "workbench/model/label_map.h"
#include "workbench/model/undo_journal.h"
#include "workbench/volumes/voxel_levels.h"

namespace workbench::segmentation {

/** Extents of a volume in voxels, and of a voxel in millimetres: x fastest, then y, then slices. */
struct Label_Grid {
    int width = 0;
    int height = 0;
    int slices = 0;
    std::array<double, 3> spacing{1.0, 1.0, 1.0};  ///< mm from voxel to voxel along x, y and the slices; positive

    std::size_t Slice_Size() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
    std::size_t Voxel_Nb() const { return Slice_Size() * static_cast<std::size_t>(slices); }
    std::size_t Index(int x, int y, int z) const {
        return (static_cast<std::size_t>(z) * static_cast<std::size_t>(height) + static_cast<std::size_t>(y)) *
                   static_cast<std::size_t>(width) +
               static_cast<std::size_t>(x);
    }
    bool Has(int x, int y, int z) const { return x >= 0 && x < width && y >= 0 && y < height && z >= 0 && z < slices; }
    double Voxel_Mm3() const { return spacing[0] * spacing[1] * spacing[2]; }
};

/** Slices from first to last, both included. What of it lies outside a volume does not count. */
struct Slice_Range {
    int first = 0;
    int last = -1;
};

/** A voxel's indices. */
struct Voxel_Place {
    int x = 0;
    int y = 0;
    int z = 0;
};

/** Called on the caller's thread with the fraction done, 0 .. 1, never falling. @return false to give up */
using Edit_Progress = std::function<bool(double)>;

/** The labels that an operation works on, and what it may change of them. Spans must stay as they are meanwhile. */
struct Edit_Input {
    Label_Grid grid;
    std::span<const std::uint8_t> tags;       ///< one per voxel of the grid
    volumes::Level_View levels;               ///< as many; may be empty for operations that do not look at grey levels
    Slice_Range slices;                       ///< worked on as if they were a volume of their own: nothing lies beyond
    Tag_Flags locked{};                       ///< not 0: voxels of that TAG stay
    std::optional<std::uint8_t> only_inside;  ///< only voxels of this TAG change
    Edit_Progress progress;                   ///< may be empty

    /** The slices that there are; last < first: none. */
    Slice_Range Slices() const;
    /** Whether an operation may give voxels of a TAG another one. */
    bool May_Change(std::uint8_t tag) const {
        return locked[tag] == 0 && (!only_inside.has_value() || *only_inside == tag);
    }
    /** The TAGs of a slice inside the grid. */
    std::span<const std::uint8_t> Slice_Tags(int slice) const {
        return tags.subspan(static_cast<std::size_t>(slice) * grid.Slice_Size(), grid.Slice_Size());
    }
    /** Copies them. @param to Slice_Size() TAGs */
    void Slice_Copy(int slice, std::span<std::uint8_t> to) const {
        std::memcpy(to.data(), Slice_Tags(slice).data(), grid.Slice_Size());
    }
    /** The same of levels. */
    volumes::Level_View Slice_Levels(int slice) const {
        return levels.subspan(static_cast<std::size_t>(slice) * grid.Slice_Size(), grid.Slice_Size());
    }
};

/** A change of labels, slice by slice, as the history keeps it. */
struct Label_Edit {
    std::vector<Slice_Change> slices;  ///< those that change, ascending
    std::uint64_t voxel_nb = 0;        ///< voxels that change
};

/** Writes a change into labels of the grid that it was made for. @param redo true: the state after, false: before */
void Edit_Apply(const Label_Edit& edit, bool redo, const Label_Grid& grid, std::span<std::uint8_t> tags);

/** Collects what slices shall be. */
class Edit_Builder {
  public:
    explicit Edit_Builder(const Edit_Input& edit_input);
    /** Notes what `after` differs in from the slice where voxels may change; elsewhere they stay, whatever it says.
     *  Slices come in ascending order. @param after Slice_Size() TAGs */
    void Slice_Set(int slice, std::span<const std::uint8_t> after);
    Label_Edit Take() { return std::move(edit); }

  private:
    const Edit_Input& input;
    Tag_Flags stays{};  // not 0: voxels of the TAG
    Label_Edit edit;
};

}  // namespace workbench::segmentation
