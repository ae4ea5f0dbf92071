#include "panels/brush_disc.h"

#include <algorithm>
#include <cstddef>

namespace {

/** Order of a button's pictures. */
enum Picture_Index : std::size_t { Plain, Hover, Pressed, Current };

constexpr unsigned int OUTLINE_COLOR = 0;

std::size_t Pixel_Index(const Button_Pictures& pictures, int x, int y) {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(pictures.width) + static_cast<std::size_t>(x);
}

bool Is_In_Disc(const Button_Pictures& pictures, std::size_t pixel) {
    return pictures.image[Current][pixel] == pictures.image[Plain][pixel];
}

bool Is_Beside_Disc(const Button_Pictures& pictures, int x, int y) {
    for (int row = y - 1; row <= y + 1; row++) {
        for (int column = x - 1; column <= x + 1; column++) {
            if ((row != y || column != x) && Is_In_Disc(pictures, Pixel_Index(pictures, column, row))) {
                return true;
            }
        }
    }
    return false;
}

template <class Visit>
void For_Each_Pixel(const Outline_Range& range, Visit visit) {
    for (int y = range.first_y; y <= range.last_y; y++) {
        for (int x = range.first_x; x <= range.last_x; x++) {
            visit(x, y);
        }
    }
}

}  // namespace

bool Button_Pictures::Complete() const {
    return width > 0 && height > 0 &&
           std::none_of(image.begin(), image.end(), [](auto* one) { return one == nullptr; });
}

float Brush_Disc_Scale(int width, int height, int margin, std::uint16_t largest) {
    if (width <= margin || height <= margin) {
        return 0.0F;
    }
    const auto diameter = static_cast<float>(2 * largest + 1);
    return std::max(diameter / static_cast<float>(width - margin), diameter / static_cast<float>(height - margin));
}

std::int16_t Brush_Disc_Square(std::uint16_t size, float scale) {
    const float radius = static_cast<float>(size) / scale;
    return static_cast<std::int16_t>(static_cast<std::int64_t>(radius * radius));
}

void Brush_Disc_Paint(const Button_Pictures& pictures, std::int16_t square, std::uint32_t color) {
    const int center_x = pictures.width / 2;
    const int center_y = pictures.height / 2;
    for (int y = 0; y < center_y; y++) {
        for (int x = 0; x < center_x && x * x + y * y <= square; x++) {
            for (unsigned int* image : pictures.image) {
                image[Pixel_Index(pictures, center_x + x, center_y + y)] = color;
                image[Pixel_Index(pictures, center_x - x, center_y + y)] = color;
                image[Pixel_Index(pictures, center_x + x, center_y - y)] = color;
                image[Pixel_Index(pictures, center_x - x, center_y - y)] = color;
            }
        }
    }
}

Outline_Range Brush_Outline_Range(int width, int height, int margin) {
    const auto side = static_cast<float>(std::min(width, height) - margin);
    const auto left = static_cast<int>((static_cast<float>(width) - side) / 2.0F);
    const auto top = static_cast<int>((static_cast<float>(height) - side) / 2.0F);
    return {std::max(left - 1, 1), std::min(width - left, width - 2), std::max(top - 1, 1),
            std::min(height - top, height - 2)};
}

void Brush_Outline_Paint(const Button_Pictures& pictures, const Outline_Range& range) {
    // The pressed picture carries the marks: the two that tell inside from outside must stay as they are meanwhile.
    For_Each_Pixel(range, [&pictures](int x, int y) {
        const std::size_t pixel = Pixel_Index(pictures, x, y);
        if (!Is_In_Disc(pictures, pixel) && Is_Beside_Disc(pictures, x, y)) {
            pictures.image[Pressed][pixel] = OUTLINE_COLOR;
        }
    });
    For_Each_Pixel(range, [&pictures](int x, int y) {
        const std::size_t pixel = Pixel_Index(pictures, x, y);
        if (pictures.image[Pressed][pixel] == OUTLINE_COLOR) {
            pictures.image[Plain][pixel] = OUTLINE_COLOR;
            pictures.image[Hover][pixel] = OUTLINE_COLOR;
            pictures.image[Current][pixel] = OUTLINE_COLOR;
        }
    });
}
