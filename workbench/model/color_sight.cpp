#include "workbench/model/color_sight.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "workbench/model/color_contrast.h"

namespace workbench {

namespace {

using Triple = std::array<double, 3>;
using Matrix = std::array<Triple, 3>;

constexpr Matrix PROTANOPIA = {
    {{0.152286, 1.052583, -0.204868}, {0.114503, 0.786281, 0.099216}, {-0.003882, -0.048116, 1.051998}}};
constexpr Matrix DEUTERANOPIA = {
    {{0.367322, 0.860646, -0.227968}, {0.280085, 0.672501, 0.047413}, {-0.011820, 0.042940, 0.968881}}};
constexpr Matrix TRITANOPIA = {
    {{1.255528, -0.076749, -0.178779}, {-0.078411, 0.930809, 0.147602}, {0.004733, 0.691367, 0.303900}}};
// Linear sRGB to CIE XYZ, and the white that it is measured against (D65).
constexpr Matrix TO_XYZ = {
    {{0.4124564, 0.3575761, 0.1804375}, {0.2126729, 0.7151522, 0.0721750}, {0.0193339, 0.1191920, 0.9503041}}};
constexpr Matrix FROM_XYZ = {
    {{3.2404542, -1.5371385, -0.4985314}, {-0.9692660, 1.8760108, 0.0415560}, {0.0556434, -0.2040259, 1.0572252}}};
constexpr Triple WHITE = {0.95047, 1.0, 1.08883};
constexpr double LAB_EDGE = 6.0 / 29.0;

Triple Product(const Matrix& matrix, const Triple& vector) {
    Triple result = {};
    for (std::size_t row = 0; row < 3; ++row) {
        result[row] = matrix[row][0] * vector[0] + matrix[row][1] * vector[1] + matrix[row][2] * vector[2];
    }
    return result;
}

Triple Linear_Of(std::uint32_t color) {
    const auto light = [&](unsigned int shift) {
        return Linear_Of_Component(static_cast<int>((color >> shift) & 0xFFU));
    };
    return {light(16), light(8), light(0)};
}

std::uint32_t Component_Of_Linear(double light) {
    const double inside = std::clamp(light, 0.0, 1.0);
    const double share = inside <= 0.0031308 ? inside * 12.92 : 1.055 * std::pow(inside, 1.0 / 2.4) - 0.055;
    return static_cast<std::uint32_t>(std::lround(share * 255.0));
}

std::uint32_t Color_Of_Linear(const Triple& light) {
    return (Component_Of_Linear(light[0]) << 16U) | (Component_Of_Linear(light[1]) << 8U) |
           Component_Of_Linear(light[2]);
}

/** @return whether the screen can show it */
bool Color_Of_Lab(const Lab& lab, std::uint32_t* color) {
    const auto back = [](double f) { return f > LAB_EDGE ? f * f * f : 3.0 * LAB_EDGE * LAB_EDGE * (f - 4.0 / 29.0); };
    const double fy = (lab.l + 16.0) / 116.0;
    const Triple xyz = {WHITE[0] * back(fy + lab.a / 500.0), WHITE[1] * back(fy), WHITE[2] * back(fy - lab.b / 200.0)};
    const Triple light = Product(FROM_XYZ, xyz);
    *color = Color_Of_Linear(light);
    return std::ranges::all_of(light, [](double part) { return part > -0.002 && part < 1.002; });
}

double Radians(double degrees) {
    return degrees * std::numbers::pi / 180.0;
}

/** Hue angle in degrees, 0 to below 360; 0 for a grey. */
double Hue_Of(double a, double b) {
    if (a == 0.0 && b == 0.0) {
        return 0.0;
    }
    const double angle = std::atan2(b, a) * 180.0 / std::numbers::pi;
    return angle < 0.0 ? angle + 360.0 : angle;
}

/** Difference and mean of two hues on the circle; a grey has no hue of its own. */
struct Hue_Pair {
    double difference = 0.0;
    double mean = 0.0;
};
Hue_Pair Hues_Of(double first, double second, bool has_grey) {
    if (has_grey) {
        return {0.0, first + second};
    }
    const double step = second - first;
    if (std::abs(step) <= 180.0) {
        return {step, (first + second) / 2.0};
    }
    const double sum = first + second;
    return {step > 0.0 ? step - 360.0 : step + 360.0, sum < 360.0 ? (sum + 360.0) / 2.0 : (sum - 360.0) / 2.0};
}

double Power_7(double value) {
    return std::pow(value, 7.0);
}
const double POWER_25 = Power_7(25.0);

/** The colours of a table as each kind of sight sees them. */
std::array<std::vector<Lab>, SIGHTS.size()> Seen_Table(std::span<const std::uint32_t> colors) {
    std::array<std::vector<Lab>, SIGHTS.size()> seen;
    for (std::size_t sight = 0; sight < SIGHTS.size(); ++sight) {
        for (const std::uint32_t color : colors) {
            seen[sight].push_back(Lab_Of(Seen_Color(color, SIGHTS[sight])));
        }
    }
    return seen;
}

}  // namespace

const char* Sight_Name(Sight sight) {
    switch (sight) {
        case Sight::Protanopia:
            return "red-blind sight";
        case Sight::Deuteranopia:
            return "green-blind sight";
        case Sight::Tritanopia:
            return "blue-blind sight";
        default:
            return "normal sight";
    }
}

std::uint32_t Seen_Color(std::uint32_t color, Sight sight) {
    switch (sight) {
        case Sight::Protanopia:
            return Color_Of_Linear(Product(PROTANOPIA, Linear_Of(color)));
        case Sight::Deuteranopia:
            return Color_Of_Linear(Product(DEUTERANOPIA, Linear_Of(color)));
        case Sight::Tritanopia:
            return Color_Of_Linear(Product(TRITANOPIA, Linear_Of(color)));
        default:
            return color & 0xFFFFFFU;
    }
}

Lab Lab_Of(std::uint32_t color) {
    const auto forth = [](double t) {
        return t > LAB_EDGE * LAB_EDGE * LAB_EDGE ? std::cbrt(t) : t / (3.0 * LAB_EDGE * LAB_EDGE) + 4.0 / 29.0;
    };
    const Triple xyz = Product(TO_XYZ, Linear_Of(color));
    const double fx = forth(xyz[0] / WHITE[0]);
    const double fy = forth(xyz[1] / WHITE[1]);
    const double fz = forth(xyz[2] / WHITE[2]);
    return {116.0 * fy - 16.0, 500.0 * (fx - fy), 200.0 * (fy - fz)};
}

double Color_Distance(const Lab& first, const Lab& second) {
    // The names are those of the formula's publication: C chroma, h hue, S and R weights.
    const double chroma_mean = (std::hypot(first.a, first.b) + std::hypot(second.a, second.b)) / 2.0;
    const double g = 0.5 * (1.0 - std::sqrt(Power_7(chroma_mean) / (Power_7(chroma_mean) + POWER_25)));
    const double a1 = (1.0 + g) * first.a;
    const double a2 = (1.0 + g) * second.a;
    const double c1 = std::hypot(a1, first.b);
    const double c2 = std::hypot(a2, second.b);
    const Hue_Pair hue = Hues_Of(Hue_Of(a1, first.b), Hue_Of(a2, second.b), c1 * c2 == 0.0);
    const double dl = second.l - first.l;
    const double dc = c2 - c1;
    const double dh = 2.0 * std::sqrt(c1 * c2) * std::sin(Radians(hue.difference / 2.0));
    const double l_mean = (first.l + second.l) / 2.0;
    const double c_mean = (c1 + c2) / 2.0;
    const double t = 1.0 - 0.17 * std::cos(Radians(hue.mean - 30.0)) + 0.24 * std::cos(Radians(2.0 * hue.mean)) +
                     0.32 * std::cos(Radians(3.0 * hue.mean + 6.0)) - 0.20 * std::cos(Radians(4.0 * hue.mean - 63.0));
    const double turn = (hue.mean - 275.0) / 25.0;
    const double theta = 30.0 * std::exp(-turn * turn);
    const double rc = 2.0 * std::sqrt(Power_7(c_mean) / (Power_7(c_mean) + POWER_25));
    const double off_middle = (l_mean - 50.0) * (l_mean - 50.0);
    const double sl = 1.0 + 0.015 * off_middle / std::sqrt(20.0 + off_middle);
    const double sc = 1.0 + 0.045 * c_mean;
    const double sh = 1.0 + 0.015 * c_mean * t;
    const double rt = -std::sin(Radians(2.0 * theta)) * rc;
    return std::sqrt((dl / sl) * (dl / sl) + (dc / sc) * (dc / sc) + (dh / sh) * (dh / sh) +
                     rt * (dc / sc) * (dh / sh));
}

double Color_Distance(std::uint32_t a, std::uint32_t b, Sight sight) {
    return Color_Distance(Lab_Of(Seen_Color(a, sight)), Lab_Of(Seen_Color(b, sight)));
}

std::vector<Alike_Pair> Alike_Pairs(std::span<const std::uint32_t> colors, double least) {
    const auto seen = Seen_Table(colors);
    std::vector<Alike_Pair> pairs;
    for (std::size_t first = 0; first < colors.size(); ++first) {
        for (std::size_t second = first + 1; second < colors.size(); ++second) {
            Alike_Pair pair = {static_cast<int>(first), static_cast<int>(second), Sight::Normal,
                               std::numeric_limits<double>::max()};
            for (std::size_t sight = 0; sight < SIGHTS.size(); ++sight) {
                const double distance = Color_Distance(seen[sight][first], seen[sight][second]);
                if (distance < pair.distance) {
                    pair.distance = distance;
                    pair.sight = SIGHTS[sight];
                }
            }
            if (pair.distance < least) {
                pairs.push_back(pair);
            }
        }
    }
    std::ranges::stable_sort(pairs, {}, &Alike_Pair::distance);
    return pairs;
}

std::optional<std::uint32_t> Color_Suggest(std::span<const std::uint32_t> colors, int index, double least) {
    if (index < 0 || static_cast<std::size_t>(index) >= colors.size()) {
        return std::nullopt;
    }
    const auto own = static_cast<std::size_t>(index);
    const auto seen = Seen_Table(colors);
    const auto is_clear = [&](std::uint32_t candidate) {
        for (std::size_t sight = 0; sight < SIGHTS.size(); ++sight) {
            const Lab looks = Lab_Of(Seen_Color(candidate, SIGHTS[sight]));
            for (std::size_t other = 0; other < colors.size(); ++other) {
                if (other != own && Color_Distance(looks, seen[sight][other]) < least) {
                    return false;
                }
            }
        }
        return true;
    };
    // A grid around the colour, hue outermost, so that the hue changes last; within one hue the nearest candidate wins.
    const Lab start = Lab_Of(colors[own]);
    const double chroma = std::hypot(start.a, start.b);
    const double hue = Hue_Of(start.a, start.b);
    for (const double turn : {0.0, 12.0, -12.0, 24.0, -24.0, 45.0, -45.0, 90.0, -90.0, 135.0, -135.0, 180.0}) {
        std::optional<std::uint32_t> best;
        double best_distance = std::numeric_limits<double>::max();
        for (double lightness = 25.0; lightness <= 95.0; lightness += 5.0) {
            for (const double factor : {1.0, 1.3, 0.7, 0.4}) {
                const double c = std::max(chroma, 20.0) * factor;
                const Lab lab = {lightness, c * std::cos(Radians(hue + turn)), c * std::sin(Radians(hue + turn))};
                std::uint32_t candidate = 0;
                const bool can_be_shown = Color_Of_Lab(lab, &candidate);
                const double distance = Color_Distance(start, lab);
                if (can_be_shown && distance < best_distance && is_clear(candidate)) {
                    best = candidate;
                    best_distance = distance;
                }
            }
        }
        if (best) {
            return best;
        }
    }
    return std::nullopt;
}

}  // namespace workbench
