#include "kits/widgets/surface.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "kits/common/text_conversion.h"
#include "kits/widgets/device.h"

Rect Rect_Common(const Rect& a, const Rect& b) {
    const int left = std::max(a.left, b.left);
    const int top = std::max(a.top, b.top);
    const int right = std::min(a.Right(), b.Right());
    const int bottom = std::min(a.Bottom(), b.Bottom());
    return {left, top, std::max(0, right - left), std::max(0, bottom - top)};
}

Rect Rect_Around(const Rect& a, const Rect& b) {
    if (a.Is_Empty()) {
        return b;
    }
    if (b.Is_Empty()) {
        return a;
    }
    const int left = std::min(a.left, b.left);
    const int top = std::min(a.top, b.top);
    return {left, top, std::max(a.Right(), b.Right()) - left, std::max(a.Bottom(), b.Bottom()) - top};
}

namespace {

std::uint32_t Mixed(std::uint32_t below, std::uint32_t above, std::uint32_t weight) {  // weight 0 .. 256
    const std::uint32_t red_blue =
        ((below & 0xFF00FFU) * (256U - weight) + (above & 0xFF00FFU) * weight + 0x800080U) >> 8U;
    const std::uint32_t green =
        ((below & 0x00FF00U) * (256U - weight) + (above & 0x00FF00U) * weight + 0x008000U) >> 8U;
    return (red_blue & 0xFF00FFU) | (green & 0x00FF00U);
}

/** Rows of a picture. By hand, because the C runtime of some systems copies eight bytes at a time. */
void Pixels_Copy(std::uint32_t* to, const std::uint32_t* from, int nb) {
    constexpr int step = 4;
    int i = 0;
    for (; i + step <= nb; i += step) {
        const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), pixels);
    }
    for (; i < nb; i++) {
        to[i] = from[i];
    }
}

}  // namespace

Surface::Surface(std::uint32_t* with_pixels, int of_width, int of_height, int of_stride, HDC dc)
    : Surface(with_pixels, of_width, of_height, {0, 0, of_width, of_height}, of_stride, dc) {}

Surface::Surface(std::uint32_t* with_pixels, int of_width, int of_height, const Rect& part, int of_stride, HDC dc)
    : pixels(with_pixels),
      width(of_width),
      height(of_height),
      stride(of_stride),
      memory_dc(dc),
      held(part),
      clip(part) {}

Rect Surface::Clip_Set(const Rect& rect) {
    const Rect before = clip;
    clip = Rect_Common(rect, held);
    return before;
}

void Surface::Fill(const Rect& rect, Rgb color) {
    const Rect part = Rect_Common(rect, clip);
    Settle();
    for (int y = part.top; y < part.Bottom(); y++) {
        std::fill_n(Row(y) + part.left, part.width, color);
    }
}

void Surface::Frame(const Rect& rect, int thickness, Rgb color) {
    const int t = std::min({thickness, (rect.width + 1) / 2, (rect.height + 1) / 2});
    if (t <= 0 || rect.Is_Empty()) {
        return;
    }
    Fill({rect.left, rect.top, rect.width, t}, color);
    Fill({rect.left, rect.Bottom() - t, rect.width, t}, color);
    Fill({rect.left, rect.top + t, t, rect.height - 2 * t}, color);
    Fill({rect.Right() - t, rect.top + t, t, rect.height - 2 * t}, color);
}

void Surface::Line(Point from, Point to, Rgb color) {
    if (from.x == to.x || from.y == to.y) {
        Fill({std::min(from.x, to.x), std::min(from.y, to.y), std::abs(to.x - from.x) + 1, std::abs(to.y - from.y) + 1},
             color);
        return;
    }
    Settle();
    const int dx = std::abs(to.x - from.x);
    const int dy = -std::abs(to.y - from.y);
    const int step_x = from.x < to.x ? 1 : -1;
    const int step_y = from.y < to.y ? 1 : -1;
    for (int error = dx + dy;;) {
        if (clip.Has_Point(from)) {
            Row(from.y)[from.x] = color;
        }
        if (from == to) {
            return;
        }
        const int doubled = 2 * error;
        if (doubled >= dy) {
            error += dy;
            from.x += step_x;
        }
        if (doubled <= dx) {
            error += dx;
            from.y += step_y;
        }
    }
}

void Surface::Polygon(std::span<const Point> points, Rgb color) {
    if (points.size() < 3) {
        return;
    }
    Settle();
    for (int y = clip.top; y < clip.Bottom(); y++) {
        const double middle = y + 0.5;
        for (int x = clip.left; x < clip.Right(); x++) {
            const double at = x + 0.5;
            bool inside = false;
            for (std::size_t i = 0, j = points.size() - 1; i < points.size(); j = i++) {
                const Point& a = points[i];
                const Point& b = points[j];
                if ((a.y > middle) != (b.y > middle) &&
                    at < a.x + (middle - a.y) * (b.x - a.x) / static_cast<double>(b.y - a.y)) {
                    inside = !inside;
                }
            }
            if (inside) {
                Row(y)[x] = color;
            }
        }
    }
}

void Surface::Stroke(std::span<const Point> points, int thickness, Rgb color) {
    // Distance to the nearest segment, in quarter pixels of coverage: soft edges, and the same picture everywhere.
    Settle();
    Rect hull;
    for (const Point& point : points) {
        hull = Rect_Around(hull, Rect{point.x, point.y, 1, 1}.Inner(-thickness - 1));
    }
    hull = Rect_Common(hull, clip);
    const double half = thickness / 2.0;
    for (int y = hull.top; y < hull.Bottom(); y++) {
        for (int x = hull.left; x < hull.Right(); x++) {
            const double cover = half + 0.5 - Distance_To_Polyline(points, x, y);
            if (cover > 0.0) {
                Row(y)[x] = Mixed(Row(y)[x], color, static_cast<std::uint32_t>(std::min(1.0, cover) * 256.0));
            }
        }
    }
}

double Surface::Distance_To_Polyline(std::span<const Point> points, double x, double y) {
    double nearest = 1e9;
    for (std::size_t i = 0; i + 1 < points.size(); i++) {
        const double ax = points[i].x;
        const double ay = points[i].y;
        const double dx = points[i + 1].x - ax;
        const double dy = points[i + 1].y - ay;
        const double length2 = dx * dx + dy * dy;
        const double t = length2 > 0.0 ? std::clamp(((x - ax) * dx + (y - ay) * dy) / length2, 0.0, 1.0) : 0.0;
        nearest = std::min(nearest, std::hypot(x - ax - t * dx, y - ay - t * dy));
    }
    return nearest;
}

void Surface::Invert(const Rect& rect) {
    const Rect part = Rect_Common(rect, clip);
    Settle();
    for (int y = part.top; y < part.Bottom(); y++) {
        std::uint32_t* row = Row(y);
        for (int x = part.left; x < part.Right(); x++) {
            row[x] ^= 0xFFFFFFU;
        }
    }
}

void Surface::Tint(const Rect& rect, Rgb color, int percent) {
    const Rect part = Rect_Common(rect, clip);
    const std::uint32_t weight = static_cast<std::uint32_t>(std::clamp(percent, 0, 100)) * 256U / 100U;
    Settle();
    for (int y = part.top; y < part.Bottom(); y++) {
        std::uint32_t* row = Row(y);
        for (int x = part.left; x < part.Right(); x++) {
            row[x] = Mixed(row[x], color, weight);
        }
    }
}

void Surface::Blit(const Rect& target, const std::uint32_t* source, int source_stride) {
    const Rect part = Rect_Common(target, clip);
    if (part.Is_Empty() || source == nullptr) {
        return;
    }
    Settle();
    for (int y = part.top; y < part.Bottom(); y++) {
        const std::uint32_t* from = source + static_cast<std::ptrdiff_t>(y - target.top) * source_stride;
        Pixels_Copy(Row(y) + part.left, from + (part.left - target.left), part.width);
    }
}

void Surface::Blit_Alpha(const Rect& target, const std::uint32_t* source, int source_stride) {
    const Rect part = Rect_Common(target, clip);
    if (part.Is_Empty() || source == nullptr) {
        return;
    }
    Settle();
    for (int y = part.top; y < part.Bottom(); y++) {
        const std::uint32_t* from = source + static_cast<std::ptrdiff_t>(y - target.top) * source_stride;
        std::uint32_t* to = Row(y);
        for (int x = part.left; x < part.Right(); x++) {
            const std::uint32_t above = from[x - target.left];
            const std::uint32_t alpha = above >> 24U;
            to[x] = Mixed(to[x], above & 0xFFFFFFU, alpha + (alpha >> 7U));
        }
    }
}

void Surface::Stencil(const Rect& target, const std::uint32_t* opacity, Rgb color) {
    const Rect part = Rect_Common(target, clip);
    Settle();
    for (int y = part.top; y < part.Bottom(); y++) {
        const std::uint32_t* from = opacity + static_cast<std::ptrdiff_t>(y - target.top) * target.width;
        std::uint32_t* to = Row(y);
        for (int x = part.left; x < part.Right(); x++) {
            const std::uint32_t alpha = from[x - target.left];
            if (alpha != 0) {
                to[x] = Mixed(to[x], color, alpha + (alpha >> 7U));
            }
        }
    }
}

Rgb Surface::Pixel(int x, int y) const {
    if (!held.Has_Point({x, y})) {
        return 0;
    }
    const_cast<Surface*>(this)->Settle();
    return Row(y)[x] & 0xFFFFFFU;
}

void Surface::Settle() {
    if (text_pending) {
        Device_Flush();
        text_pending = false;
    }
}

// ---- text

std::size_t Character_Length(std::string_view text, std::size_t at) {
    if (at >= text.size()) {
        return 0;
    }
    if (static_cast<unsigned char>(text[at]) < 0x80U) {
        return 1;
    }
    char ended[BYTES_PER_CHARACTER + 1] = {};
    text.copy(ended, BYTES_PER_CHARACTER, at);
    return static_cast<std::size_t>(std::max(Character_Bytes(ended), 1));
}

std::size_t Character_Before(std::string_view text, std::size_t at) {
    // From the start: in a page of two bytes the second one may look like a first.
    std::size_t before = 0;
    for (std::size_t next = 0; next < std::min(at, text.size()); next += Character_Length(text, next)) {
        before = next;
    }
    return before;
}

std::size_t Text_Fit(std::string_view text, const Font_Choice& font, int room) {
    std::size_t low = 0;  // bisection over bytes; the answer is moved back to a character's start
    std::size_t high = text.size();
    if (Text_Width(text, font) <= room) {
        return high;
    }
    const auto character_start = [&](std::size_t at) {
        std::size_t start = 0;
        for (std::size_t next = 0; next <= at && next < text.size(); next += Character_Length(text, next)) {
            start = next;
        }
        return start;
    };
    while (high - low > 1) {
        const std::size_t middle = (low + high) / 2;
        const std::size_t cut = character_start(middle);
        if (Text_Width(text.substr(0, cut), font) <= room) {
            low = middle;
        } else {
            high = middle;
        }
    }
    return character_start(low);
}
