/** A slice as a picture: grey levels through a window, TAG colours over it. */
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "workbench/model/label_map.h"
#include "workbench/model/view_geometry.h"
#include "workbench/volumes/voxel_levels.h"

namespace workbench {

/** The grey values that are shown black and white; high is greater than low. */
struct Grey_Window {
    float low = 0.0F;
    float high = 1.0F;
    bool is_sigmoid =
        false;  ///< bent: a little more contrast in the middle, and the ends are not quite black and white
    bool operator==(const Grey_Window&) const = default;
    /** The window after a drag: dx makes it wider (right) or narrower, dy darker (down) or brighter. Steps are shares
     *  of the image's whole range. */
    Grey_Window Dragged(float dx, float dy, float whole_range) const;
};

struct Slice_Source {
    int width = 0;
    int height = 0;
    volumes::Level_View levels;  ///< width * height, rows from the top
    bool color = false;          ///< levels are packed: red in the low byte, then green, then blue
    float slope = 1.0F;          ///< grey = level * slope + intercept
    float intercept = 0.0F;
    std::span<const std::uint8_t> tags;           ///< width * height, or none
    bool is_inverted = false;                     ///< small greys are bright, large ones dark
    std::span<const std::uint8_t> compared = {};  ///< labels that the TAGs are compared with: as many as TAGs, or none
};

struct Tag_Overlay {
    std::array<std::uint32_t, TAG_MAX> color{};  ///< 0x00RRGGBB
    Tag_Flags shown{};                           ///< not 0: pixels of the TAG are coloured; the background never is
    int opacity = 45;                            ///< per cent of the TAG colour in the mixture
    bool is_difference = false;                  ///< in place of TAGs: where they differ from those compared with
};

/** Tints the pixels whose level lies in a range, both ends included. */
struct Range_Overlay {
    std::int32_t low = 0;
    std::int32_t high = 0;
    std::uint32_t color = 0;  ///< 0x00RRGGBB
};

/** Draws a part of a slice. @param ranges the last one tints where they overlap @param part cut to the slice; @param
 * out width * height pixels 0x00RRGGBB, rows from the top; pixels outside the part stay */
void Slice_Render(const Slice_Source& source, const Grey_Window& window, const Tag_Overlay& overlay,
                  std::span<const Range_Overlay> ranges, const Pixel_Rect& part, std::span<std::uint32_t> out);

/** Enlarges or shrinks a picture to the screen, every screen pixel showing the slice pixel under its middle.
 *  @param part of the screen, cut to it; @param screen screen_width * screen_height pixels; those that show no slice
 *  pixel become `outside` */
void Slice_Scale(std::span<const std::uint32_t> slice, const View_Layout& layout, const Pixel_Rect& part,
                 int screen_width, int screen_height, std::uint32_t outside, std::span<std::uint32_t> screen);

/** A part of the screen. */
struct Screen_Part {
    Pixel_Rect part;  ///< cut to the screen
    int width = 0;
    int height = 0;
    std::uint32_t outside = 0;        ///< of pixels that show nothing of the slice
    std::span<std::uint32_t> pixels;  ///< width * height; those outside the part stay
};

/** Slice_Render and Slice_Scale in one, with grey values (colours: their components) in straight lines from the middle
 *  of a pixel to those of its four neighbours, and as they are at the outermost middles beyond them. TAG colours and
 *  ranges keep the sides of the pixels. Nothing is mixed with a pixel without a value: there each shows its own. */
void Slice_Draw_Linear(const Slice_Source& source, const Grey_Window& window, const Tag_Overlay& overlay,
                       std::span<const Range_Overlay> ranges, const View_Layout& layout, const Screen_Part& screen);

}  // namespace workbench
