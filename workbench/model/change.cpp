#include "workbench/model/change.h"

#include <array>

#include "host/kit_dataset.h"

namespace workbench {

namespace {

constexpr unsigned long long TAG_STATES = UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK;
constexpr unsigned long long OF_VOLUME = UPDATE_WINDOW_CUR | UPDATE_FRAME_CUR | UPDATE_SELECTION | UPDATE_LEVEL_2D |
                                         UPDATE_TAG_ENABLE | UPDATE_TAG_LABEL | UPDATE_HISTO_PAINT;

constexpr Changes WORK = {Change::Pixels, Change::Markers, Change::Texts, Change::Bands, Change::Colors};
constexpr Changes OTHER_IMAGE = {Change::Position, Change::Volume, Change::Opened};

/** In the order of Change. Strokes and pixels are no matter of the panels: what counts them is Change::Counted. */
constexpr std::array<unsigned long long, CHANGE_NB> PANEL_FLAGS = {
    0,                                                 // Stroke
    0,                                                 // Pixels
    UPDATE_TAG_ENABLE,                                 // Markers
    0,                                                 // Marker_Drag
    UPDATE_TAG_LABEL,                                  // Texts
    UPDATE_TAG_LABEL | UPDATE_HISTO_PAINT,             // Bands
    UPDATE_TAG_TABLE,                                  // Colors
    UPDATE_TAG_TABLE | UPDATE_TAG_LABEL | TAG_STATES,  // Tag_Nb: everything that the button of a new TAG shows
    UPDATE_TAG_ENABLE,                                 // Tag_Shown
    UPDATE_TAG_SELECT | UPDATE_TAG_LOCK,               // Tag_Selected: both grey the same buttons
    UPDATE_TAG_SELECT | UPDATE_TAG_LOCK,               // Tag_Locked
    UPDATE_TAG_CUR,                                    // Current_Tag
    UPDATE_TAG_CUR,                                    // Current_Marker
    UPDATE_BRUSH,                                      // Brush
    UPDATE_FRAME_CUR,                                  // Position
    OF_VOLUME,                                         // Volume
    OF_VOLUME | UPDATE_ALL | UPDATE_STRUCTURE | UPDATE_LEVEL_1D | UPDATE_LEVEL_3D,  // Opened
    UPDATE_SELECTION | UPDATE_LEVEL_2D | UPDATE_HISTO_PAINT,                        // Selection
    0,                                                                              // Counting
    UPDATE_HISTO_DATA | UPDATE_HISTO_PAINT,                                         // Counted
    UPDATE_COLOR_COMPONENT,                                                         // Component
    UPDATE_HISTO_PAINT,                                                             // Peaks
    UPDATE_STRUCTURE,    // Class_Tree: the level is told with it
    0,                   // View
    0,                   // Mode
    UPDATE_MOUSE_FRAME,  // Mouse
    0,                   // Saved
};

/** In the order of Shown. */
constexpr std::array<Changes, SHOWN_NB> SHOWN_CHANGES = {
    // Image. The current TAG: its band may lie over it.
    WORK | OTHER_IMAGE |
        Changes{Change::Marker_Drag, Change::Tag_Nb, Change::Tag_Shown, Change::Current_Tag, Change::Current_Marker,
                Change::View},
    // Other_Views
    Changes{Change::Stroke},
    // Brush_Outline
    Changes{Change::Brush, Change::Opened},
    // Notes
    Changes{Change::Texts, Change::Tag_Nb, Change::Tag_Shown, Change::Tag_Selected, Change::Tag_Locked,
            Change::Current_Tag, Change::Current_Marker, Change::Brush, Change::Mode, Change::Volume, Change::Opened,
            Change::Selection, Change::Counting, Change::Counted},
    // Title
    WORK | Changes{Change::Volume, Change::Opened, Change::Saved},
    // Voxel
    OTHER_IMAGE | Changes{Change::Stroke, Change::Pixels, Change::Texts, Change::View, Change::Mouse},
    // Color_Advice
    OTHER_IMAGE | Changes{Change::Pixels, Change::Colors, Change::Tag_Nb, Change::Tag_Shown},
    // Peak_Source
    Changes{Change::Volume, Change::Opened, Change::Selection, Change::Counted},
};

}  // namespace

bool Is_Shown_In(Shown shown, Changes changes) {
    return changes.Has_Any(SHOWN_CHANGES[static_cast<std::size_t>(shown)]);
}

unsigned long long Panel_Flags_Of(Changes changes) {
    unsigned long long flags = 0;
    for (int change = 0; change < CHANGE_NB; ++change) {
        flags |= changes.Has(static_cast<Change>(change)) ? PANEL_FLAGS[static_cast<std::size_t>(change)] : 0;
    }
    return flags;
}

Changes Changes_Of_Panel(unsigned long long flags) {
    struct Meaning {
        unsigned long long mask;
        Change change;
    };
    constexpr Meaning meanings[] = {
        {UPDATE_ALL, Change::Opened},
        {UPDATE_TAG_LABEL, Change::Texts},
        {UPDATE_TAG_SELECT, Change::Tag_Selected},
        {UPDATE_TAG_ENABLE, Change::Tag_Shown},
        {UPDATE_TAG_LOCK, Change::Tag_Locked},
        {UPDATE_COLOR_COMPONENT, Change::Component},
        {UPDATE_TAG_TABLE, Change::Colors},
        {UPDATE_WINDOW_CUR, Change::Volume},
        {UPDATE_HISTO_PAINT, Change::Peaks},
        {UPDATE_HISTO_DATA, Change::Counted},
        {UPDATE_BRUSH, Change::Brush},
        {UPDATE_TAG_CUR, Change::Current_Tag},
        {UPDATE_FRAME_CUR, Change::Position},
        {UPDATE_MOUSE_FRAME, Change::Mouse},
        {UPDATE_STRUCTURE, Change::Class_Tree},
        {UPDATE_SELECTION, Change::Selection},
    };
    Changes changes;
    for (const Meaning& meaning : meanings) {
        changes |= Has_Any(flags, meaning.mask) ? Changes(meaning.change) : Changes();
    }
    return changes;
}

}  // namespace workbench
