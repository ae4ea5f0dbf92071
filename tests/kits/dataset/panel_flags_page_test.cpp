// The table "What to send" of the guide says what panel_flags.h says.
#include "kits/dataset/panel_flags.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>

namespace {

/** As the page names them: `_TAG_CUR` is UPDATE_TAG_CUR. */
const std::map<std::string, unsigned __int64> NAMED_FLAGS = {
    {"_ALL", UPDATE_ALL},
    {"_TAG_LABEL", UPDATE_TAG_LABEL},
    {"_TAG_SELECT", UPDATE_TAG_SELECT},
    {"_TAG_ENABLE", UPDATE_TAG_ENABLE},
    {"_TAG_LOCK", UPDATE_TAG_LOCK},
    {"_COLOR_COMPONENT", UPDATE_COLOR_COMPONENT},
    {"_TAG_TABLE", UPDATE_TAG_TABLE},
    {"_HISTO_PAINT", UPDATE_HISTO_PAINT},
    {"_HISTO_DATA", UPDATE_HISTO_DATA},
    {"_BRUSH", UPDATE_BRUSH},
    {"_TAG_CUR", UPDATE_TAG_CUR},
    {"_FRAME_CUR", UPDATE_FRAME_CUR},
    {"_STRUCTURE", UPDATE_STRUCTURE},
    {"_SELECTION", UPDATE_SELECTION},
    {"_LEVEL_2D", UPDATE_LEVEL_2D},
};

/** The cells of the panel's row below "What to send", the panel's name first; none when the page has no such row. */
std::vector<std::string> Row_Cells(const std::string& panel) {
    std::ifstream page(std::string(KIT_SOURCE_ROOT) + "/docs/hosting.md", std::ios::binary);
    std::string line;
    bool is_below = false;
    while (std::getline(page, line)) {
        is_below = is_below || line == "### What to send";
        if (is_below && line.starts_with("| " + panel + " |")) {
            const std::regex cell("\\| ([^|]*) ");
            const std::sregex_iterator first(line.begin(), line.end(), cell);
            std::vector<std::string> cells;
            for (auto found = first; found != std::sregex_iterator(); ++found) {
                cells.push_back((*found)[1].str());
            }
            return cells;
        }
    }
    return {};
}

/** The flags that a cell names; "the same" are those of the cell before it. */
unsigned __int64 Cell_Flags(const std::string& cell, unsigned __int64 before, int dimension) {
    unsigned __int64 flags = cell.starts_with("the same") ? before : 0;
    if (cell.ends_with("with the level")) {
        flags |= Update_Level(dimension);
    }
    const std::regex name("`([^`]*)`");
    for (auto found = std::sregex_iterator(cell.begin(), cell.end(), name); found != std::sregex_iterator(); ++found) {
        const auto named = NAMED_FLAGS.find((*found)[1].str());
        EXPECT_NE(named, NAMED_FLAGS.end()) << cell;
        flags |= named == NAMED_FLAGS.end() ? 0 : named->second;
    }
    return flags;
}

void Expect_Row(const std::string& panel, Panel_Kind kind, int dimension) {
    const std::vector<std::string> cells = Row_Cells(panel);
    ASSERT_EQ(cells.size(), 4U) << panel;
    const unsigned __int64 after_resize = Cell_Flags(cells[1], 0, dimension);
    EXPECT_EQ(after_resize, Update_After_Resize(kind, dimension)) << panel << ": " << cells[1];
    EXPECT_EQ(Cell_Flags(cells[2], after_resize, dimension), Update_Everything(kind, dimension))
        << panel << ": " << cells[2];
}

TEST(Panel_Flags, the_guides_table_names_them) {
    Expect_Row("TAG", Panel_Kind::Tag, 2);
    Expect_Row("marker", Panel_Kind::Marker, 2);
    Expect_Row("brush", Panel_Kind::Brush, 2);
    Expect_Row("propagate", Panel_Kind::Propagate, 2);
    Expect_Row("histogram", Panel_Kind::Histogram, 2);
    Expect_Row("file view", Panel_Kind::Files, 2);
    for (const int dimension : {1, 2, 3}) {
        Expect_Row("class view", Panel_Kind::Classes, dimension);
    }
}

}  // namespace
