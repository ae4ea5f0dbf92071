/** A stroke: what a brush that is led over a picture does to the voxels of a volume. */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "workbench/model/painting.h"
#include "workbench/model/undo_journal.h"
#include "workbench/model/volume_planes.h"
#include "workbench/volumes/voxel_levels.h"

namespace workbench {

/** What a stroke is painted on: one time point, in the order of display. */
struct Stroke_Ground {
    std::span<std::uint8_t> tags;
    volumes::Level_View levels;  ///< as many; none: no voxel lies in a band
};

class Voxel_Stroke {
  public:
    /** @param picture that the brush is led over, of the volume that the grounds are */
    Voxel_Stroke(const Plane_Cut& picture, Brush_Body stroke_brush, const Paint_Ink& stroke_ink);

    /** The slices that the brush may touch on a straight way; outside there are none. */
    Touched_Slices Slices(int x0, int y0, int x1, int y1) const;
    /** Paints at one pixel of the picture. @return pixels of the picture that may have changed
     *  @throw std::bad_alloc: what was painted is known all the same */
    Pixel_Rect Dab(const Stroke_Ground& ground, int x, int y);
    /** Paints at every pixel of a straight line from where the brush is, both ends included. */
    Pixel_Rect Line_To(const Stroke_Ground& ground, int x, int y);
    int X() const { return at_x; }
    int Y() const { return at_y; }
    const Paint_Ink& Ink() const { return ink; }

    /** What it has changed, slices ascending; may be empty. */
    std::vector<Slice_Change> Changes();

  private:
    /** Pixels of a picture that lie side by side. */
    void Row_Paint(const Stroke_Ground& ground, std::size_t first, std::ptrdiff_t step, int count);
    Pixel_Rect Layer_Paint(const Stroke_Ground& ground, const Brush_Body::Layer& layer, int x, int y);

    Plane_Cut cut;
    Brush_Body brush;
    Pixel_Rect brush_box;  // of all layers
    Paint_Ink ink;
    std::array<bool, TAG_MAX> takes{};   // per TAG: its voxels become the ink's
    std::vector<std::uint64_t> painted;  // per voxel its position times 256 plus the TAG that it had
    int at_x = 0;
    int at_y = 0;
};

/** The pixels of a footprint at a place that a stroke would leave with the ink's TAG, those that have it included.
 *  @param tags, levels of the volume; no levels: no voxel lies in a band @return relative to the place, as the
 *  footprint is */
Brush_Footprint Footprint_Taken(const Brush_Footprint& footprint, int x, int y, const Paint_Ink& ink,
                                std::span<const std::uint8_t> tags, const volumes::Level_View& levels,
                                const Plane_Cut& cut);

}  // namespace workbench
