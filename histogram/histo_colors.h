/** Colours and arrays of a histogram plot: the rules that the panel and the enlarged window share. Pure numbers;
 * colours are 0x00BBGGRR. */
#pragma once

#include <array>
#include <cstdint>

#include "host/kit_dataset.h"

inline constexpr std::uint32_t HISTO_COLOR_ALL = 0x00FFFF;  ///< yellow: all components together
inline constexpr std::uint32_t HISTO_COLOR_RED = 0x0000FF;
inline constexpr std::uint32_t HISTO_COLOR_GREEN = 0x00FF00;
inline constexpr std::uint32_t HISTO_COLOR_BLUE = 0xFF0000;
inline constexpr std::uint32_t HISTO_COLOR_GREY = 0x808080;  ///< bands of TAGs without a colour

/** One curve of the plot. */
struct Histo_Curve {
    const std::uint32_t* counts = nullptr;
    std::uint32_t color = HISTO_COLOR_ALL;
};
struct Histo_Curves {
    std::array<Histo_Curve, 3> curve{};
    int nb = 0;
};

/** The curves of a record: a grey record shows `counts`; a colour record by component: 0 the fourth array, 1 to 3 all
 * three colours, else `counts`. */
inline Histo_Curves Histo_Curves_Of(const Histo_Record& record, int component) {
    Histo_Curves curves;
    const bool color = (record.flags & HISTO_COLOR) != 0;
    const auto add = [&curves](const std::uint32_t* counts, std::uint32_t shade) {
        if (counts != nullptr) {
            curves.curve[static_cast<std::size_t>(curves.nb++)] = {counts, shade};
        }
    };
    if (color && component == 0) {
        add(record.counts_component0, HISTO_COLOR_ALL);
    } else if (color && component >= 1 && component <= 3) {
        add(record.counts_red, HISTO_COLOR_RED);
        add(record.counts_green, HISTO_COLOR_GREEN);
        add(record.counts_blue, HISTO_COLOR_BLUE);
    } else {
        add(record.counts, HISTO_COLOR_ALL);
    }
    return curves;
}

/** The array of a TAG band: unlike the outline one array by component, and `counts` for component 4, for any other
 * value and for an absent array. */
inline const std::uint32_t* Histo_Band_Counts(const Histo_Record& record, int component) {
    const std::array<const std::uint32_t*, 4> arrays = {record.counts_component0, record.counts_red,
                                                        record.counts_green, record.counts_blue};
    const std::uint32_t* chosen =
        component >= 0 && component <= 3 ? arrays[static_cast<std::size_t>(component)] : nullptr;
    return chosen != nullptr ? chosen : record.counts;
}

/** Colour of a TAG from the high bytes of its three entries; grey when all three are 0. */
inline std::uint32_t Histo_Tag_Color(std::uint16_t red, std::uint16_t green, std::uint16_t blue) {
    const std::uint32_t color = static_cast<std::uint32_t>(red >> 8) | static_cast<std::uint32_t>(green >> 8) << 8 |
                                static_cast<std::uint32_t>(blue >> 8) << 16;
    return color != 0 ? color : HISTO_COLOR_GREY;
}

/** Raw level of a packed colour sample (red in the low byte, green, blue) for a component: 0 the largest of the three,
 * 1 red, 2 green, 3 blue, 4 the weighted mean, each term divided as an integer of its own; any other value as 0. */
inline int Histo_Sample_Level(int sample, int component) {
    const int red = sample & 0xFF;
    const int green = (sample >> 8) & 0xFF;
    const int blue = (sample >> 16) & 0xFF;
    switch (component) {
        case 1:
            return red;
        case 2:
            return green;
        case 3:
            return blue;
        case 4:
            return red * 30 / 100 + blue * 11 / 100 + green * 59 / 100;
        default: {
            const int larger = red > green ? red : green;
            return larger > blue ? larger : blue;
        }
    }
}
