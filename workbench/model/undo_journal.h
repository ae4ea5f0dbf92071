/** What the user did, step by step, so that it can be taken back and done again. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "workbench/model/marker_table.h"
#include "workbench/model/slice_change.h"

namespace workbench {

/** A stroke, a propagation or an operation on TAGs: voxels of one slice or of many. */
struct Voxel_Change {
    std::vector<Slice_Change> slices;  ///< ascending, each slice once; at least one
};
enum class Text_Table { Tag_Labels, Marker_Labels };
/** A renaming. No text: the label is shown by its number. */
struct Text_Change {
    Text_Table table = Text_Table::Tag_Labels;
    int index = 0;
    std::optional<std::string> before;
    std::optional<std::string> after;
};
/** The grey levels that a TAG claims. */
struct Tag_Band {
    float low = 0.0F;
    float high = 0.0F;
    friend bool operator==(const Tag_Band&, const Tag_Band&) = default;
};
/** Thresholds of one or more TAGs. */
struct Threshold_Change {
    struct Entry {
        int tag = 0;
        Tag_Band before;
        Tag_Band after;
    };
    std::vector<Entry> entries;
};
/** Colours of one or more TAGs, 0x00RRGGBB. */
struct Color_Change {
    struct Entry {
        int tag = 0;
        std::uint32_t before = 0;
        std::uint32_t after = 0;
    };
    std::vector<Entry> entries;
};
/** A marker placed, moved or taken away. */
struct Marker_Change {
    int index = 0;
    Marker before;
    Marker after;
};
using Undo_Change = std::variant<Voxel_Change, Text_Change, Threshold_Change, Color_Change, Marker_Change>;

struct Undo_Step {
    std::string title;  ///< for the menu, for example "Stroke"
    Undo_Change change;
    /** Memory that the step holds, bytes. */
    std::size_t Bytes() const;
};

/** What two states of a slice of one size differ in; no value when they are equal. */
inline std::optional<Slice_Change> Slice_Difference(int slice, std::span<const std::uint8_t> before,
                                                    std::span<const std::uint8_t> after) {
    return Slice_Change::Of_Difference(slice, before, after);
}
/** Writes a change into its slice. @param redo true: the state after the change, false: before it */
inline void Slice_Change_Apply(const Slice_Change& change, bool redo, std::span<std::uint8_t> pixels) {
    change.Apply(redo, pixels);
}
/** The slice of a change that lies nearest to one. */
int Slice_Nearest(const Voxel_Change& change, int slice);

inline constexpr std::size_t JOURNAL_STEPS_MAX = 1000;     ///< more are never kept
inline constexpr std::size_t JOURNAL_BYTES = 256U << 20U;  ///< of all steps; the last one is kept whatever it weighs

/** Undo and redo. Memory is bounded by JOURNAL_BYTES: the oldest steps are forgotten, and the list says so. Steps are
 *  packed, so that 200 that change every pixel of a slice of 512 x 512 to anything find room. */
class Undo_Journal {
  public:
    /** Adds a step that has been done already; what was undone before is forgotten. */
    void Push(Undo_Step step);
    /** The step to take back now, null when there is none. Valid until the next Push or Clear. */
    const Undo_Step* Undo();
    /** The step to do again now, null when there is none. */
    const Undo_Step* Redo();
    /** The step that Undo or Redo would give, without moving. */
    const Undo_Step* Next_Undo() const { return done == 0 ? nullptr : &steps[done - 1]; }
    const Undo_Step* Next_Redo() const { return done == steps.size() ? nullptr : &steps[done]; }

    std::size_t Undo_Nb() const { return done; }
    std::size_t Redo_Nb() const { return steps.size() - done; }
    std::size_t Bytes() const { return bytes; }
    /** Steps that were forgotten since the beginning of the history. */
    std::size_t Forgotten_Nb() const { return forgotten; }
    /** For a user: line 0 is the state before the first step that is kept, line n the one after n steps; what is undone
     *  and what is saved is marked. */
    std::vector<std::string> List() const;
    /** Forgets all steps; the state now counts as saved. */
    void Clear();
    /** The state now is in no file. */
    void Mark_Unsaved() { saved = ++last_id; }
    /** A number that is equal only for equal states of the work. */
    std::uint64_t State() const { return done == 0 ? oldest : ids[done - 1]; }

    /** The state now is the one in the file. */
    void Mark_Saved() { saved = State(); }
    /** True when the state now is another than the one that was marked last. */
    bool Is_Unsaved() const { return State() != saved; }

  private:
    void Drop_Oldest();

    std::deque<Undo_Step> steps;
    std::deque<std::uint64_t> ids;  ///< one per step, never used twice
    std::size_t done = 0;           ///< steps that are in force; the rest can be redone
    std::size_t bytes = 0;
    std::size_t forgotten = 0;
    std::uint64_t last_id = 0;
    std::uint64_t oldest = 0;  ///< state before the oldest kept step
    std::uint64_t saved = 0;
};

}  // namespace workbench
