/** Tables of numbers about labels, for people and as CSV. UTF-8. */
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/segmentation/label_comparison.h"
#include "workbench/segmentation/tag_statistics.h"

namespace workbench {

/** Rows of cells with the columns one below the other, for a font of one width; the columns from `right_from` on stand
 *  at their right ends. */
std::string Columns_Text(std::span<const std::vector<std::string>> rows, std::size_t right_from);

/** The numbers of TAGs, one row each under one of titles with units. @param words names of TAGs, unit of grey values */
std::string Statistics_Text(std::span<const segmentation::Tag_Numbers> rows,
                            const segmentation::Statistics_Request& request, const segmentation::Csv_Words& words);

/** The TAG of the row on a line of such a text; no value: it is none of the rows. @param line from 0 */
std::optional<int> Statistics_Row_Tag(std::string_view table, int line);

/** The area of a TAG in each of its slices as a curve of signs, a line for a slice, under a title; the largest area is
 *  as long as the line. @param name of the TAG */
std::string Areas_Text(const segmentation::Tag_Numbers& numbers, const segmentation::Label_Grid& grid,
                       const std::string& name, bool is_size_known = true);

/** How a TAG of the work agrees with the same TAG of another volume of labels. */
struct Tag_Agreement {
    int tag = 0;
    std::string name;
    segmentation::Label_Agreement numbers;
};
/** @param is_size_known false: lengths are told in voxels, which they are then */
std::string Agreement_Text(std::span<const Tag_Agreement> rows, bool is_size_known = true);
/** Comma, dot, shortest numbers that read back the same; empty where there is no number. */
std::string Agreement_Csv(std::span<const Tag_Agreement> rows, bool is_size_known = true);

}  // namespace workbench
