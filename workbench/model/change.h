/** What can change in the work and in how it is shown, and who is to be told of it. */
#pragma once

#include <cstdint>
#include <initializer_list>

namespace workbench {

enum class Change {
    Stroke,        ///< pixels of the stroke that is being painted
    Pixels,        ///< TAGs of pixels; a stroke when it ends
    Markers,       ///< places of markers
    Marker_Drag,   ///< the place of the marker that is being dragged
    Texts,         ///< names of TAGs or markers
    Bands,         ///< thresholds of TAGs
    Colors,        ///< of TAGs or markers
    Tag_Nb,        ///< how many TAGs there are
    Tag_Shown,     ///< which TAGs are shown
    Tag_Selected,  ///< which TAGs are carried from frame to frame
    Tag_Locked,    ///< which TAGs are not painted over
    Current_Tag,
    Current_Marker,
    Brush,      ///< the current brush
    Position,   ///< the shown slice
    Volume,     ///< the current volume
    Opened,     ///< the volumes that are open
    Selection,  ///< frames that the histogram counts
    Counting,   ///< which pixels of these frames it counts, or how: they are to be counted anew
    Counted,    ///< they were
    Component,  ///< of colours, that the histogram shows
    Peaks,      ///< found in the histogram
    Class_Tree,
    View,   ///< how the image is shown: grey window, overlays, orientation
    Mode,   ///< what keys, buttons and propagation do
    Mouse,  ///< the pixel under the mouse
    Saved,  ///< the work was saved, or is to be saved elsewhere
};
inline constexpr int CHANGE_NB = static_cast<int>(Change::Saved) + 1;

/** A set of changes. */
class Changes {
  public:
    constexpr Changes() = default;
    // A change stands for the set of it alone.
    constexpr Changes(Change change) : bits(std::uint32_t{1} << static_cast<unsigned>(change)) {}  // NOLINT
    constexpr Changes(std::initializer_list<Change> changes) {
        for (const Change change : changes) {
            *this |= change;
        }
    }
    constexpr Changes& operator|=(Changes other) {
        bits |= other.bits;
        return *this;
    }
    friend constexpr Changes operator|(Changes left, Changes right) { return left |= right; }
    friend constexpr bool operator==(Changes left, Changes right) = default;
    constexpr bool Has(Change change) const { return Has_Any(change); }
    constexpr bool Has_Any(Changes of) const { return (bits & of.bits) != 0; }
    /** All of them are among others. */
    constexpr bool Is_Within(Changes others) const { return (bits & ~others.bits) == 0; }
    constexpr bool Is_Empty() const { return bits == 0; }

  private:
    std::uint32_t bits = 0;
};

/** What shows changes beside the panels. */
enum class Shown {
    Image,
    Other_Views,    ///< of the image, while one is painted in; Image shows all of them anew
    Brush_Outline,  ///< over the image
    Notes,          ///< in the headings of the panels
    Title,          ///< of the window, and the note of the last step for a report of a crash
    Voxel,          ///< text about the pixel under the mouse
    Color_Advice,   ///< the mark about colours that look alike
    Peak_Source,    ///< whether the peaks are those of the histogram that is shown
};
inline constexpr int SHOWN_NB = static_cast<int>(Shown::Peak_Source) + 1;

/** Whether something shows any of the changes. */
bool Is_Shown_In(Shown shown, Changes changes);
/** UPDATE_* flags that tell the panels of the changes. */
unsigned long long Panel_Flags_Of(Changes changes);
/** What panels have changed that ask for these UPDATE_* flags. */
Changes Changes_Of_Panel(unsigned long long flags);

}  // namespace workbench
