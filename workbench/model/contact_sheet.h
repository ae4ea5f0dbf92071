/** Many slices of a volume in one picture, row by row, with a list of TAG colours below them. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "workbench/model/label_map.h"
#include "workbench/volumes/png_writer.h"

namespace workbench {

/** Longest side of a sheet's slices together; smaller pictures are made where they would go beyond it. */
inline constexpr int SHEET_MOST = 8192;

/** What decides where everything stands; pixels. */
struct Sheet_Request {
    int slice_width = 1;
    int slice_height = 1;
    double pixel_aspect = 1.0;     ///< height of a pixel of a slice by its width, in millimetres
    int slice_nb = 1;              ///< on the sheet, 1 or more
    std::vector<int> entry_width;  ///< of the names of the list
    int line_height = 1;           ///< of a line of the list
};

struct Sheet_Layout {
    int width = 0;
    int height = 0;
    std::vector<Pixel_Rect> slices;    ///< of one size: the slices at their true shape, with a gap between them
    std::vector<Pixel_Rect> swatches;  ///< of the list: a square of the colour before each name
    std::vector<Pixel_Rect> names;     ///< cut at the right end of the sheet
};
/** About four by three, as large as the slices are where that stays within SHEET_MOST. */
Sheet_Layout Sheet_Layout_Make(const Sheet_Request& request);

/** A slice fitted into its place. @param slice width * height pixels 0x00RRGGBB */
void Sheet_Slice_Put(volumes::Picture& sheet, const Pixel_Rect& place, std::span<const std::uint32_t> slice, int width,
                     int height);
/** A line of light letters, cut to its place. @param letters light on black */
void Sheet_Letters_Put(volumes::Picture& sheet, const Pixel_Rect& place, const volumes::Picture& letters);
void Sheet_Fill(volumes::Picture& sheet, const Pixel_Rect& place, std::uint32_t color);

}  // namespace workbench
