// Pictures with linear interpolation, to the bit: beside a plain way that makes each pixel by itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

#include "workbench/model/label_difference.h"
#include "workbench/model/slice_render.h"
#include "workbench/volumes/volume.h"

using namespace workbench;

namespace {

constexpr std::uint32_t MARKER = 0xDEADBEEF;
constexpr std::uint32_t OUTSIDE = 7;

/** What a view is given, but the screen. */
struct Picture {
    std::vector<std::int32_t> levels;
    volumes::Voxel_Levels narrow;
    std::vector<std::uint8_t> tags;
    std::vector<std::uint8_t> compared;
    Slice_Source source;
    Tag_Overlay overlay;
    Grey_Window window;
    std::vector<Range_Overlay> ranges;
    View_Layout layout;
};

/** The same picture pixel by pixel, each from its four neighbours. */
class Plain_Linear {
  public:
    explicit Plain_Linear(const Picture& of) : picture(of), source(of.source), window(of.window) {}
    std::uint32_t Pixel(int screen_x, int screen_y) const {
        const Slice_Point at = picture.layout.To_Slice(screen_x, screen_y);
        const auto x = static_cast<int>(std::floor(at.x));
        const auto y = static_cast<int>(std::floor(at.y));
        if (x < 0 || x >= source.width || y < 0 || y >= source.height) {
            return OUTSIDE;
        }
        return Tinted(Ground(at, x, y), x, y);
    }

  private:
    std::int32_t Level(int x, int y) const {
        const auto inside = [](int place, int size) { return std::clamp(place, 0, size - 1); };
        return source
            .levels[static_cast<std::size_t>(inside(y, source.height) * source.width + inside(x, source.width))];
    }
    float Mixed(const Slice_Point& at, std::int32_t (*part)(std::int32_t)) const {
        const auto left = static_cast<int>(std::floor(at.x - 0.5));
        const auto top = static_cast<int>(std::floor(at.y - 0.5));
        const auto value = [&](int x, int y) { return static_cast<float>(part(Level(x, y))); };
        const auto between = [](float before, float after, double share) {
            return before + (after - before) * static_cast<float>(share);
        };
        const double down = at.y - 0.5 - top;
        return between(between(value(left, top), value(left, top + 1), down),
                       between(value(left + 1, top), value(left + 1, top + 1), down), at.x - 0.5 - left);
    }
    bool Has_Gap(const Slice_Point& at) const {
        const auto left = static_cast<int>(std::floor(at.x - 0.5));
        const auto top = static_cast<int>(std::floor(at.y - 0.5));
        bool has_gap = false;
        for (const int corner : {0, 1, 2, 3}) {
            has_gap = has_gap || Level(left + corner % 2, top + corner / 2) == volumes::LEVEL_OUTSIDE;
        }
        return has_gap;
    }
    std::uint32_t Ground(const Slice_Point& at, int x, int y) const {
        if (source.color) {
            const auto byte = [](float value) { return static_cast<std::uint32_t>(value + 0.5F); };
            return byte(Mixed(at, [](std::int32_t level) { return level & 0xFF; })) << 16U |
                   byte(Mixed(at, [](std::int32_t level) { return level >> 8 & 0xFF; })) << 8U |
                   byte(Mixed(at, [](std::int32_t level) { return level >> 16 & 0xFF; }));
        }
        if (!Has_Gap(at)) {
            return Shade(Mixed(at, [](std::int32_t level) { return level; }));
        }
        return Level(x, y) == volumes::LEVEL_OUTSIDE ? 0 : Shade(static_cast<float>(Level(x, y)));
    }
    std::uint32_t Shade(float level) const {
        const float width = window.high - window.low;
        const float straight =
            level * (source.slope * 255.0F / width) + (source.intercept - window.low) * 255.0F / width;
        const float bright = window.is_sigmoid ? 255.0F / (1.0F + std::exp(-4.0F * (straight / 255.0F - 0.5F)))
                                               : std::clamp(straight, 0.0F, 255.0F);
        return static_cast<std::uint32_t>((source.is_inverted ? 255.0F - bright : bright) + 0.5F) * 0x010101U;
    }
    static std::uint32_t Over(std::uint32_t ground, std::uint32_t color, int percent) {
        const auto weight = static_cast<std::uint32_t>(percent * 256 / 100);
        std::uint32_t mixed = 0;
        for (const unsigned int shift : {0U, 8U, 16U}) {
            const std::uint32_t sum = (ground >> shift & 0xFFU) * (256 - weight) + (color >> shift & 0xFFU) * weight;
            mixed |= (sum >> 8U & 0xFFU) << shift;
        }
        return mixed;
    }
    std::uint32_t Tinted(std::uint32_t pixel, int x, int y) const {
        const auto at = static_cast<std::size_t>(y * source.width + x);
        const std::int32_t level = source.levels[at];
        std::uint32_t ground = pixel;
        for (const Range_Overlay& range : picture.ranges) {
            if (!source.color && level != volumes::LEVEL_OUTSIDE && level >= range.low && level <= range.high) {
                pixel = Over(ground, range.color, 35);
            }
        }
        if (source.tags.empty()) {
            return pixel;
        }
        if (picture.overlay.is_difference && !source.compared.empty()) {
            const Label_Difference difference = Difference_Of(source.tags[at], source.compared[at]);
            const std::uint32_t color = DIFFERENCE_COLOR[static_cast<std::size_t>(difference)];
            return difference == Label_Difference::None ? pixel : Over(pixel, color, 60);
        }
        const std::uint8_t tag = source.tags[at];
        const bool is_seen = tag != 0 && picture.overlay.shown[tag] != 0;
        return is_seen ? Over(pixel, picture.overlay.color[tag], picture.overlay.opacity) : pixel;
    }

    const Picture& picture;
    const Slice_Source& source;
    Grey_Window window;
};

/** A picture of anything that a view can be given, and how it lies on a screen. */
class Random_Picture : public Picture {
  public:
    explicit Random_Picture(unsigned int seed) : random(seed) {
        source.width = One_Of(1, 40);
        source.height = One_Of(1, 40);
        Levels_Make(static_cast<std::size_t>(source.width * source.height));
        Tags_Make(levels.size());
        window = {static_cast<float>(One_Of(-100, 300)), static_cast<float>(One_Of(301, 2000)), One_Of(0, 3) == 0};
        for (int range = One_Of(0, 2); range > 0; --range) {
            const int low = One_Of(-200, 1200);
            ranges.push_back({low, low + One_Of(0, 300), static_cast<std::uint32_t>(One_Of(0, 0xFFFFFF))});
        }
        layout = {One_Of(3, 60) / 10.0,     One_Of(3, 60) / 10.0, One_Of(-400, 300) / 10.0,
                  One_Of(-400, 200) / 10.0, source.width,         source.height};
    }
    Random_Picture(const Random_Picture&) = delete;
    Random_Picture& operator=(const Random_Picture&) = delete;

    int One_Of(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }

  private:
    void Levels_Make(std::size_t size) {
        source.color = One_Of(0, 7) == 0;
        const int gaps_in_1000 = source.color ? 0 : std::max(One_Of(-20, 20), 0);
        for (std::size_t at = 0; at < size; ++at) {
            const std::int32_t level = source.color ? One_Of(0, 0xFFFFFF) : One_Of(-200, 1200);
            levels.push_back(One_Of(0, 999) < gaps_in_1000 ? volumes::LEVEL_OUTSIDE : level);
        }
        narrow = volumes::Voxel_Levels(levels);
        source.levels = One_Of(0, 1) == 0 ? narrow.View() : volumes::Level_View(levels);
        source.slope = static_cast<float>(One_Of(1, 30)) / 10.0F;
        source.intercept = static_cast<float>(One_Of(-100, 100));
        source.is_inverted = One_Of(0, 1) == 0;
    }
    void Tags_Make(std::size_t size) {
        for (std::size_t at = 0; at < size; ++at) {
            tags.push_back(static_cast<std::uint8_t>(std::max(One_Of(-4, 5), 0)));
            compared.push_back(static_cast<std::uint8_t>(std::max(One_Of(-4, 5), 0)));
        }
        source.tags = One_Of(0, 3) == 0 ? std::span<const std::uint8_t>() : tags;
        source.compared = One_Of(0, 1) == 0 ? std::span<const std::uint8_t>() : compared;
        overlay.is_difference = One_Of(0, 1) == 0;
        overlay.opacity = One_Of(0, 100);
        for (std::uint32_t& color : overlay.color) {
            color = static_cast<std::uint32_t>(One_Of(0, 0xFFFFFF));
        }
        overlay.shown.fill(1);
        overlay.shown[3] = 0;
    }

    std::mt19937 random;
};

TEST(Slice_Draw_Linear, random_pictures_are_to_the_bit_those_made_pixel_by_pixel) {
    constexpr int width = 61;
    constexpr int height = 43;
    for (unsigned int seed = 1; seed <= 400; ++seed) {
        Random_Picture picture(seed);
        const Pixel_Rect part = {picture.One_Of(-3, 20), picture.One_Of(-3, 20), picture.One_Of(30, 70),
                                 picture.One_Of(25, 50)};
        std::vector<std::uint32_t> screen(static_cast<std::size_t>(width) * height, MARKER);
        Slice_Draw_Linear(picture.source, picture.window, picture.overlay, picture.ranges, picture.layout,
                          {part, width, height, OUTSIDE, screen});
        const Plain_Linear plain(picture);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const bool is_drawn = x >= part.left && x < part.right && y >= part.top && y < part.bottom;
                ASSERT_EQ(screen[static_cast<std::size_t>(y * width + x)], is_drawn ? plain.Pixel(x, y) : MARKER)
                    << "picture " << seed << " at " << x << ", " << y;
            }
        }
    }
}

}  // namespace
