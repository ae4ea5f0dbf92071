#include "workbench/volumes/lab_color.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace volumes {

namespace {

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>;

// The three primaries and the white of sRGB, adapted from D65 to D50 (Bradford), and the inverse.
constexpr Matrix XYZ_OF_RGB = {
    {{0.4360747, 0.3850649, 0.1430804}, {0.2225045, 0.7168786, 0.0606169}, {0.0139322, 0.0971045, 0.7141733}}};
constexpr Matrix RGB_OF_XYZ = {
    {{3.1338561, -1.6168667, -0.4906146}, {-0.9787684, 1.9161415, 0.0334540}, {0.0719453, -0.2289914, 1.4052427}}};
constexpr Vector WHITE = {0.9642, 1.0, 0.8249};

constexpr double STORED_MOST = 65535.0;
constexpr double LIGHT_MOST = 100.0;
constexpr double SIDE_LOWEST = -128.0;
constexpr double SIDE_SPAN = 255.0;
constexpr double BYTE_MOST = 255.0;

Vector Product(const Matrix& matrix, const Vector& vector) {
    Vector product{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            product[row] += matrix[row][column] * vector[column];
        }
    }
    return product;
}

double To_Linear(double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double From_Linear(double part) {
    return part <= 0.0031308 ? part * 12.92 : 1.055 * std::pow(part, 1.0 / 2.4) - 0.055;
}

constexpr double BEND = 6.0 / 29.0;

double Cube_Root(double part) {
    return part > BEND * BEND * BEND ? std::cbrt(part) : part / (3.0 * BEND * BEND) + 4.0 / 29.0;
}

double Cube(double part) {
    return part > BEND ? part * part * part : 3.0 * BEND * BEND * (part - 4.0 / 29.0);
}

std::uint16_t Stored(double part) {
    return static_cast<std::uint16_t>(std::lround(std::clamp(part, 0.0, 1.0) * STORED_MOST));
}

}  // namespace

Stored_Lab Lab_Of_Color(std::uint32_t color) {
    Vector rgb{};
    for (std::size_t part = 0; part < 3; ++part) {
        rgb[part] = To_Linear((color >> (16U - 8U * part) & 0xFFU) / BYTE_MOST);
    }
    Vector xyz = Product(XYZ_OF_RGB, rgb);
    for (std::size_t part = 0; part < 3; ++part) {
        xyz[part] = Cube_Root(xyz[part] / WHITE[part]);
    }
    const double light = 116.0 * xyz[1] - 16.0;
    const double red_green = 500.0 * (xyz[0] - xyz[1]);
    const double yellow_blue = 200.0 * (xyz[1] - xyz[2]);
    return {Stored(light / LIGHT_MOST), Stored((red_green - SIDE_LOWEST) / SIDE_SPAN),
            Stored((yellow_blue - SIDE_LOWEST) / SIDE_SPAN)};
}

std::uint32_t Color_Of_Lab(const std::array<double, 3>& lab) {
    const double light = lab[0] / STORED_MOST * LIGHT_MOST;
    const double red_green = lab[1] / STORED_MOST * SIDE_SPAN + SIDE_LOWEST;
    const double yellow_blue = lab[2] / STORED_MOST * SIDE_SPAN + SIDE_LOWEST;
    const double middle = (light + 16.0) / 116.0;
    const Vector xyz = {WHITE[0] * Cube(middle + red_green / 500.0), WHITE[1] * Cube(middle),
                        WHITE[2] * Cube(middle - yellow_blue / 200.0)};
    std::uint32_t color = 0;
    for (const double part : Product(RGB_OF_XYZ, xyz)) {
        const double shown = std::clamp(From_Linear(part), 0.0, 1.0);
        color = color << 8U | static_cast<std::uint32_t>(std::lround(shown * BYTE_MOST));
    }
    return color;
}

}  // namespace volumes
