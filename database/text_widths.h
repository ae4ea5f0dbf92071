/** Widths of the texts of a tree: measured once, kept for each list of records, and summed up to the widths of rows and
 *  columns. Draws nothing.
 */
#pragma once

#include <algorithm>
#include <cstddef>
#include <list>
#include <vector>

#include "database/db_list.h"
#include "database/tree_rows.h"

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
        const auto at = static_cast<std::size_t>(record);
        return at < rows.size() ? Kept(rows[at].title, rows[at].title_width, Tree_Font::Regular, row.title, measurer)
                                : Measured(Tree_Font::Regular, row.title, measurer);
    }
    int Name(int record, const DB_List& row, Text_Measurer& measurer) {
        const auto at = static_cast<std::size_t>(record);
        return at < rows.size() ? Kept(rows[at].name, rows[at].name_width, Tree_Font::Bold, row.name, measurer)
                                : Measured(Tree_Font::Bold, row.name, measurer);
    }
    int Label(int record, const DB_List& row, int column, Text_Measurer& measurer);
    int Value(int record, const DB_List& row, int column, Text_Measurer& measurer);
    int Separator(Text_Measurer& measurer) {
        return Kept(separator.text, separator.width, Tree_Font::Regular, TREE_SEPARATOR, measurer);
    }

  private:
    struct Slot {
        const char* text = nullptr;
        int width = 0;
    };
    /** What every record has; most trees have nothing else. Without padding: a drawing goes over all of them. */
    struct Row_Slots {
        const char* title = nullptr;
        const char* name = nullptr;
        int title_width = 0;
        int name_width = 0;
    };

    static int Kept(const char*& text_then, int& width, Tree_Font font, const char* text, Text_Measurer& measurer) {
        if (text == nullptr) {
            return 0;
        }
        if (text_then != text) {
            width = measurer.Width(font, text);
            text_then = text;
        }
        return width;
    }
    static int Measured(Tree_Font font, const char* text, Text_Measurer& measurer) {
        return text != nullptr ? measurer.Width(font, text) : 0;
    }
    void Drop();
    int In_Column(int record, int slot, Tree_Font font, const char* text, Text_Measurer& measurer);

    std::vector<Row_Slots> rows;
    std::vector<std::size_t> first_of_columns;  // of each record's slots, one more at the end; empty: none has columns
    std::vector<Slot> column_slots;             // of each column a label and a value
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

/** Widths of the rows of one list, gathered record by record. */
class Row_Widths {
  public:
    /** @param of_space "$INTERFACE_SPACE_DIM" */
    Row_Widths(int of_space, Text_Widths& of_widths, Text_Measurer& with_measurer)
        : space(of_space), widths(of_widths), measurer(with_measurer), separator(of_widths.Separator(with_measurer)) {}
    /** @throws std::bad_alloc without memory for the columns */
    void Add(int record, const DB_List& row) {
        int x = 2 * space + TREE_TEXT_START + DB_INDENTATION * row.level + widths.Name(record, row, measurer);
        if (row.title != nullptr) {
            x += widths.Title(record, row, measurer) + separator;
        }
        widest = std::max(widest, x);
        if (row.column_nb != 0) {
            column_start = std::max(column_start, x);
            Widen(record, row);
        }
    }
    /** Writes `column_x` of the records with columns: pixels from the left of the box.
     *  @return width of the widest row, columns included */
    int Place(int nb, DB_List* list_pt);

  private:
    void Widen(int record, const DB_List& row);
    int Place(const DB_List& row) const;

    int space;
    Text_Widths& widths;
    Text_Measurer& measurer;
    int separator;
    int widest = 0;
    int column_start = 0;
    bool has_columns = false;
    std::vector<int> column_widths;
};

/** What Row_Widths finds for a whole list. */
int Tree_Width_Measure(int nb, DB_List* list_pt, int space, Text_Widths& widths, Text_Measurer& measurer);
