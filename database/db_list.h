/** @file
 *  The rows of a database tree: a flat array in depth-first order. Level, parent index and subtree size carry the
 *  structure. The panel owns the array; views fill it, the drawing and editing operations walk it.
 *
 *  The array and the texts of its records come from the heap of this module's C library: a view of a host's own makes
 *  them by DB_List_Append and DB_List_Text_Copy and by nothing else, and DB_List_Array_Free gives them back. A text
 *  does not change in place while its record is shown: its width is kept by its address. Another text is another copy.
 *
 *  After a failed creation `list_pt` is null while `nb` still counts the records that were lost: whoever walks the
 *  array asks for `list_pt` first.
 */
#pragma once

#include <cstdint>

#include "host/platform.h"
#include "panels/protocol/kit_panels.h"

inline constexpr std::uint16_t DB_FLAG_EXPANDED = 0x1;  ///< children are shown
inline constexpr std::uint16_t DB_FLAG_LEAF = 0x2;      ///< selectable, without children
inline constexpr std::uint16_t DB_FLAG_LAST = 0x4;  ///< last child of its parent; only ever set, by DB_List_Set_State
inline constexpr std::uint16_t DB_FLAG_LOCKED = 0x10;  ///< no-access lead, never selected by the views

inline constexpr std::uint16_t DB_STATE_MASK = 0x3;        ///< the check mark: the three values below
inline constexpr std::uint16_t DB_STATE_NONE = 0;          ///< unchecked
inline constexpr std::uint16_t DB_STATE_PARTIAL = 1;       ///< some leaves below are checked
inline constexpr std::uint16_t DB_STATE_CHECKED = 2;       ///< checked; the bit of a leaf
inline constexpr std::uint16_t DB_STATE_NO_ACCESS = 0x10;  ///< the host marks the frame so; drawn like a locked row

inline constexpr std::uint16_t DB_ROW_NONE = 65535;  ///< DB_List::row of a record that is on no drawn row

inline constexpr int DB_LEVEL_MOST = 4096;  ///< levels of the class view; a hierarchy in a circle ends here too

inline constexpr int DB_MODE_DIMENSION = 0xF;  ///< bits of the mode word with the dimension: 1, 2 or 3
inline constexpr int DB_MODE_EDIT = 0x10;      ///< the panel shows the tree editor
inline constexpr int DB_MODE_ADD = 0x20;       ///< a click adds to the checked rows also without Ctrl

/** One row of the tree. */
struct DB_List {
    std::uint16_t flag;       ///< DB_FLAG_*
    std::uint16_t state;      ///< DB_STATE_*
    std::uint16_t row;        ///< display row, 0 at the top of the tree, or DB_ROW_NONE; written by the drawing pass
    std::uint16_t modality;   ///< files: the modality's two letters, the first in the high byte
    std::uint16_t level;      ///< depth, 0 for roots
    std::uint16_t child_nb;   ///< direct children
    std::uint16_t index;      ///< frames: number of the frame in its file
    std::uint16_t desc_nb;    ///< records of the subtree; they follow this one
    std::uint16_t parent;     ///< array index of the parent, 0 for roots
    void* object;             ///< class object, or the file of a file or frame row; not owned
    std::uint32_t color;      ///< title colour 0x00BBGGRR; 0: the default, yellow
    char* title;              ///< owned, may be null
    char* name;               ///< owned, may be null
    const char* icon;         ///< file name, static
    std::uint16_t column_nb;  ///< extra columns
    std::int32_t* column_x;   ///< column_nb positions, written by DB_List_Text_Pos; owned
    std::uint32_t* column_color;  ///< colour of each label, 0: yellow; owned
    char** column_label;          ///< owned with its texts
    char** column_value;          ///< owned with its texts
};

inline constexpr char DB_ICON_DEFAULT[] = "icon folder.tga";  ///< of rows whose object names no icon

/** Where a memory error happened, for its message. */
struct DB_Source {
    const char* path;  ///< of the source file, static
    int line;          ///< in it, from 1
};

/** Grows the array by one cleared record and counts it. The array moves at counts of 0 and of powers of two only, so
 *  that building is linear; an array from elsewhere has no room for that.
 *  @param nb, list_pt 0 and null, or as this operation left them
 *  @param source of the caller, for the message
 *  @return the new record; null after a failure: reported, all rows freed, `*list_pt` null and `*nb` as it was */
KIT_PANELS_API DB_List* DB_List_Append(int* nb, DB_List** list_pt, const DB_Source& source);
/** A copy of the host's text into `*field` (null for a null or empty text).
 *  @param field not freed before; @param text copied as it is; @param field_name "title" or "name", for the message;
 *  @param source where the caller stands. @return false: no memory, reported; the records stay */
KIT_PANELS_API bool DB_List_Text_Copy(char** field, const char* text, const char* field_name, const DB_Source& source);
/** Frees what every record owns, then the array; both variables end empty. With a null array or a count of 0 only the
 *  count is reset. */
KIT_PANELS_API void DB_List_Array_Free(int* nb, DB_List** list_pt);

/** Derives the check mark of every branch from the leaves below it and sets the last-child bits. A branch without
 *  leaves ends checked. Levels of 99 and more share one entry. */
KIT_PANELS_API void DB_List_Set_State(int nb, DB_List* list_pt);
