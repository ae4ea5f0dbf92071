#include "database/db_list.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/kit_common.h"
#include "host/kit_widgets.h"

static_assert(sizeof(void*) != 8 || sizeof(DB_List) == 104, "hosts know the record's size from the memory message");

namespace {

constexpr int LEVEL_NB = 100;  ///< entries of the passes over levels; deeper records share the last one
constexpr int LEVEL_LAST = LEVEL_NB - 1;

/** The check marks of one kind (all, or none), one entry per level. Entries are cleared from level 0 up to a leaf's own
 *  and set from a record's own upwards, so that those of 0 .. cleared - 1 are 0 and the others are 1; but for the last
 *  one: nothing sets it again. */
class Level_Run {
  public:
    bool Is_Set(int level) const { return level == LEVEL_LAST ? last : level >= cleared; }
    /** Clears 0 .. level. */
    void Clear_To(int level) {
        cleared = std::max(cleared, level + 1);
        last = last && level != LEVEL_LAST;
    }
    /** Sets level .. LEVEL_LAST - 1. */
    void Set_From(int level) { cleared = std::min(cleared, level); }

  private:
    int cleared = 0;
    bool last = true;
};

/** One bit per level, all set at first. */
class Level_Bits {
  public:
    bool Is_Set(int level) const { return (word[level / WORD_BITS] >> (level % WORD_BITS) & 1U) != 0; }
    void Clear(int level) { word[level / WORD_BITS] &= ~(std::uint64_t{1} << (level % WORD_BITS)); }
    /** Sets all bits above `level`. */
    void Set_Above(int level) {
        const std::uint64_t above = ~std::uint64_t{0} << (level % WORD_BITS) << 1U;
        if (level < WORD_BITS) {
            word[0] |= above;
            word[1] = ~std::uint64_t{0};
        } else {
            word[1] |= above;
        }
    }

  private:
    static constexpr int WORD_BITS = 64;
    std::uint64_t word[2] = {~std::uint64_t{0}, ~std::uint64_t{0}};
};

void Records_Free(int nb, DB_List* list_pt) {
    for (int i = 0; i < nb; ++i) {
        DB_List& record = list_pt[i];
        std::free(record.title);
        record.title = nullptr;
        std::free(record.name);
        record.name = nullptr;
        for (int column = 0; column < record.column_nb; ++column) {
            if (record.column_label != nullptr) {
                std::free(record.column_label[column]);
            }
            if (record.column_value != nullptr) {
                std::free(record.column_value[column]);
            }
        }
        std::free(record.column_x);
        std::free(record.column_color);
        std::free(record.column_label);
        std::free(record.column_value);
    }
    std::free(list_pt);
}

/** Records that an array of `nb` has room for; nothing stores it. Rooms double, but for one large step: the system
 * gives large blocks page by page, and to move them through every size would take longer than to fill them. */
std::size_t Room(int nb) {
    constexpr unsigned int step_from = 8192;
    constexpr unsigned int step_to = 65536;  // as many as a tree can number
    const unsigned int doubled = std::bit_ceil(static_cast<unsigned int>(nb));
    return doubled > step_from && doubled < step_to ? step_to : doubled;
}

}  // namespace

DB_List* DB_List_Append(int* nb, DB_List** list_pt, const DB_Source& source) {
    const int count = *nb;
    if (*list_pt == nullptr && count != 0) {
        return nullptr;  // an earlier growth failed: the records before this one were lost
    }
    if (*list_pt == nullptr || count == 0 || Room(count) != Room(count + 1)) {
        DB_List* const old = *list_pt;
        *list_pt = static_cast<DB_List*>(std::realloc(static_cast<void*>(old), Room(count + 1) * sizeof(DB_List)));
        if (*list_pt == nullptr) {
            if (old != nullptr) {
                Records_Free(count, old);
            }
            Error_Fct(hwnd, MESSAGE_MEMORY, "line %-4d of %s \nmemory error in realloc (var=%s, dim=%dx%d)",
                      source.line, source.path, "(*list_pt)", count + 1, static_cast<int>(sizeof(DB_List)));
            return nullptr;
        }
    }
    DB_List* const record = *list_pt + count;
    *record = DB_List{};
    ++*nb;
    return record;
}

bool DB_List_Text_Copy(char** field, const char* text, const char* field_name, const DB_Source& source) {
    *field = nullptr;
    if (text == nullptr || text[0] == '\0') {
        return true;
    }
    const std::size_t size = std::strlen(text) + 1;
    *field = static_cast<char*>(std::malloc(size));
    if (*field == nullptr) {
        char variable[64];
        std::snprintf(variable, sizeof variable, "(*list_pt)[nb].%s", field_name);
        Error_Fct(hwnd, MESSAGE_MEMORY, "line %-4d of %s \nmemory error in strdup (var=%s)", source.line, source.path,
                  variable);
        return false;
    }
    std::memcpy(*field, text, size);
    return true;
}

void DB_List_Array_Free(int* nb, DB_List** list_pt) {
    if (*list_pt != nullptr && *nb > 0) {
        Records_Free(*nb, *list_pt);
        *list_pt = nullptr;
    }
    *nb = 0;
}

void DB_List_Set_State(int nb, DB_List* list_pt) {
    if (list_pt == nullptr) {
        return;  // the count of a failed creation
    }
    Level_Run all_checked;
    Level_Run none_checked;
    Level_Bits first_seen;
    for (int i = nb - 1; i >= 0; --i) {
        DB_List& record = list_pt[i];
        const int level = std::min<int>(record.level, LEVEL_LAST);
        if ((record.flag & DB_FLAG_LEAF) != 0) {
            ((record.state & DB_STATE_CHECKED) != 0 ? none_checked : all_checked).Clear_To(level);
        }
        // A branch without leaves ends checked: nothing cleared its entry. Kept, users know it so.
        std::uint16_t check = DB_STATE_CHECKED;
        if (!all_checked.Is_Set(level)) {
            check = none_checked.Is_Set(level) ? DB_STATE_NONE : DB_STATE_PARTIAL;
        }
        record.state = static_cast<std::uint16_t>((record.state & ~DB_STATE_MASK) | check);
        if (first_seen.Is_Set(level)) {
            record.flag |= DB_FLAG_LAST;  // never cleared here
            first_seen.Clear(level);
        }
        // The earlier sibling begins anew; the levels above go on collecting, and so does the shared last one.
        first_seen.Set_Above(level);
        all_checked.Set_From(level);
        none_checked.Set_From(level);
    }
}
