/** Widths of the texts of a tree: measured once, kept for each list of records, and summed up to the widths of rows and
 *  columns. Draws nothing.
 */
#pragma once

#include <cstddef>
#include <list>
#include <vector>

#include "database/db_list.h"

enum class Tree_Font { Regular, Bold };

/** What can measure a text. */
class Text_Measurer {
  public:
    /** Width in pixels; a null or empty text has none. */
    virtual int Width(Tree_Font font, const char* text) = 0;
    /** What stands for the two fonts: kept widths hold as long as it stays the same. */
    struct Fonts {
        const void* regular = nullptr;
        const void* bold = nullptr;
        friend bool operator==(const Fonts&, const Fonts&) = default;
    };
    virtual Fonts Fonts_Get() const = 0;

  protected:
    ~Text_Measurer() = default;
};

inline constexpr char TREE_SEPARATOR[] = ": ";  ///< between a title and a name, a label and a value; regular font
inline constexpr int TREE_TEXT_START = 60;      ///< pixels of the lead, the icon and the check icon of a row
inline constexpr int TREE_COLUMN_GAP = 20;      ///< pixels between columns

/** Widths of the texts of one list. A width holds while its record has the same text pointer. */
class Text_Widths {
  public:
    /** Begins a pass over the list: drops what was kept for other fonts or another number of records. Without memory
     *  everything is measured each time. */
    void Begin(int nb, const DB_List* list_pt, const Text_Measurer::Fonts& fonts);
    int Title(int record, const DB_List& row, Text_Measurer& measurer) {
        return Of(record, 0, Tree_Font::Regular, row.title, measurer);
    }
    int Name(int record, const DB_List& row, Text_Measurer& measurer) {
        return Of(record, 1, Tree_Font::Bold, row.name, measurer);
    }
    int Label(int record, const DB_List& row, int column, Text_Measurer& measurer);
    int Value(int record, const DB_List& row, int column, Text_Measurer& measurer);
    int Separator(Text_Measurer& measurer) { return Kept(separator, Tree_Font::Regular, TREE_SEPARATOR, measurer); }

  private:
    struct Slot {
        const char* text = nullptr;
        int width = 0;
    };
    static constexpr int RECORD_SLOTS = 2;  // title and name; then a label and a value for each column

    static int Kept(Slot& slot, Tree_Font font, const char* text, Text_Measurer& measurer) {
        if (text == nullptr) {
            return 0;
        }
        if (slot.text != text) {
            slot.width = measurer.Width(font, text);
            slot.text = text;
        }
        return slot.width;
    }
    int Of(int record, int slot, Tree_Font font, const char* text, Text_Measurer& measurer);

    std::vector<std::size_t> first;  // of each record's slots; one more at the end
    std::vector<Slot> slots;
    Slot separator;
    Text_Measurer::Fonts fonts_now;
};

/** The widths of some lists, by the address of their first record. */
class Text_Width_Lists {
  public:
    static constexpr std::size_t LIST_MAX = 8;  ///< lists that are kept; then the one that was longest out of use goes
    /** Those of a list, ready for a pass over it. */
    Text_Widths& Of(int nb, const DB_List* list_pt, const Text_Measurer::Fonts& fonts);
    void Forget(const DB_List* list_pt);

  private:
    struct Entry {
        const DB_List* list_pt = nullptr;
        Text_Widths widths;
    };
    std::list<Entry> entries;    // the last used first
    Text_Widths without_memory;  // for a list that there is no memory to keep
};

/** Width of the widest row, columns included; writes `column_x` of the records with columns: pixels from the left of
 *  the box. @param space "$INTERFACE_SPACE_DIM" */
int Tree_Width_Measure(int nb, DB_List* list_pt, int space, Text_Widths& widths, Text_Measurer& measurer);
