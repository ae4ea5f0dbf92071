/** How far apart two colours look, to normal and to colour-deficient sight. Colours are 0x00RRGGBB in sRGB. */
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace workbench {

/** Kinds of sight: all three receptors, or without the one for long, middle or short waves. */
enum class Sight { Normal, Protanopia, Deuteranopia, Tritanopia };
inline constexpr std::array<Sight, 4> SIGHTS = {Sight::Normal, Sight::Protanopia, Sight::Deuteranopia,
                                                Sight::Tritanopia};
/** In the user's words. */
const char* Sight_Name(Sight sight);

struct Lab {
    double l = 0.0;  ///< 0 (black) to 100 (white)
    double a = 0.0;
    double b = 0.0;
};

/** The colour that normal sight sees as that kind of sight sees `color`: the matrices for complete deficiency of
 *  Machado, Oliveira and Fernandes (2009), applied to linear light. */
std::uint32_t Seen_Color(std::uint32_t color, Sight sight);
/** CIE L*a*b* for the white D65. */
Lab Lab_Of(std::uint32_t color);
/** CIEDE2000 with all weights 1: about 1 is just seen side by side, 100 is black and white. */
double Color_Distance(const Lab& a, const Lab& b);
double Color_Distance(std::uint32_t a, std::uint32_t b, Sight sight);

/** Closer than this, two TAGs are taken for each other when they do not touch. */
inline constexpr double TAG_DISTANCE_LEAST = 8.0;

/** Two colours of a table that look alike. */
struct Alike_Pair {
    int first = 0;  ///< index in the table, smaller than `second`
    int second = 0;
    Sight sight = Sight::Normal;  ///< the kind of sight that tells them apart worst
    double distance = 0.0;        ///< to that sight
};

/** All pairs below a distance, the closest first, each once. */
std::vector<Alike_Pair> Alike_Pairs(std::span<const std::uint32_t> colors, double least = TAG_DISTANCE_LEAST);

/** A colour near colors[index] that every kind of sight tells from all others of the table; no value: none was found.
 *  Lightness and saturation are changed before the hue. */
std::optional<std::uint32_t> Color_Suggest(std::span<const std::uint32_t> colors, int index,
                                           double least = TAG_DISTANCE_LEAST);

}  // namespace workbench
