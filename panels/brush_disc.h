/** @file
 *  Pictures of brushes on buttons: filled discs to a common scale, and their outlines.
 *
 *  A button shows one of four pictures of its own size (plain, hover, pressed, current), pixels 0x00RRGGBB, rows from
 *  the top. Their grounds are four different colours, none of them 0; a disc has the same colour in all four, so a
 *  pixel belongs to the disc where the first and the last picture agree.
 */
#pragma once

#include <array>
#include <cstdint>

/** The four pictures of one button: width x height pixels each, owned by the button. */
struct Button_Pictures {
    std::array<unsigned int*, 4> image = {};  ///< plain, hover, pressed, current
    int width = 0;                            ///< pixels
    int height = 0;                           ///< pixels
    /** False when the button has no area or no memory. */
    bool Complete() const;
};

/** Screen pixels of a button's side that the largest disc leaves free. @param border the widget library's border */
constexpr int Brush_Disc_Margin(int border) {
    return 2 * border + 4;
}

/** How many mask pixels one screen pixel shows, so that the largest brush fills the shorter side less the margin.
 *  @param width, height size of a button in screen pixels; @param margin from Brush_Disc_Margin; @param largest radius
 *  of the largest brush in mask pixels
 *  @return 0 when a side has no room beyond the margin: nothing can be painted */
float Brush_Disc_Scale(int width, int height, int margin, std::uint16_t largest);

/** The squared radius of a brush's disc in screen pixels, cut to a whole number and kept in a signed 16-bit number: a
 *  disc of radius 182 and more is wrapped, like the mask's.
 *  @param size radius of the brush in mask pixels; @param scale from Brush_Disc_Scale, not 0 */
std::int16_t Brush_Disc_Square(std::uint16_t size, float scale);

/** Paints the points around the middle (width / 2, height / 2) whose squared distance is at most `square` into all four
 *  pictures, at most half a side away. @param pictures complete; @param square from Brush_Disc_Square; @param color
 *  0x00RRGGBB */
void Brush_Disc_Paint(const Button_Pictures& pictures, std::int16_t square, std::uint32_t color);

/** The pixels first_x .. last_x and first_y .. last_y, in which an outline is looked for. */
struct Outline_Range {
    ///@{
    int first_x = 0;  ///< picture pixels, y from the top; empty where the last lies before the first
    int last_x = -1;
    int first_y = 0;
    int last_y = -1;
    ///@}
};

/** The inner square of a button and one pixel around it, never at the edge of the picture, so that every pixel has
 * eight neighbours. */
Outline_Range Brush_Outline_Range(int width, int height, int margin);

/** Makes black, in all four pictures, every pixel of the range that lies outside the disc and touches it (also at a
 *  corner). @param pictures complete; @param range from Brush_Outline_Range of this size */
void Brush_Outline_Paint(const Button_Pictures& pictures, const Outline_Range& range);
