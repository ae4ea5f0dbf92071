#include "kits/widgets/icons.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "base/drawing_dc.h"
#include "host/kit_dataset.h"
#include "host/kit_widgets.h"
#include "kits/common/text_conversion.h"
#include "kits/widgets/device.h"
#include "kits/widgets/tga.h"
#include "kits/widgets/theme.h"

namespace {

constexpr Rgb NO_TINT = 0xFFFFFF;
constexpr std::size_t FILE_SIZE_MAX = std::size_t{64} << 20U;
constexpr std::size_t CACHE_MAX = 512;  // pictures; then the cache starts anew

// ---- files

bool File_Read(const std::string& path, std::vector<std::uint8_t>* bytes) {
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    const std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr) {
        return false;
    }
    std::uint8_t block[4096];
    for (std::size_t nb = 0; (nb = std::fread(block, 1, sizeof block, file.get())) > 0;) {
        if (bytes->size() + nb > FILE_SIZE_MAX) {
            return false;
        }
        bytes->insert(bytes->end(), block, block + nb);
    }
    return true;
}

/** The picture of a file, read once; null when there is none. A file that was missing is looked for again. */
const Tga_Picture* Picture_Find(const std::string& path) {
    static std::map<std::string, Tga_Picture> cache;
    const auto found = cache.find(path);
    if (found != cache.end()) {
        return found->second.pixels.empty() ? nullptr : &found->second;
    }
    std::vector<std::uint8_t> bytes;
    if (!File_Read(path, &bytes)) {
        return nullptr;
    }
    if (cache.size() >= CACHE_MAX) {
        cache.clear();
    }
    Tga_Picture& picture = cache[path];
    Tga_Read(bytes, &picture);
    return picture.pixels.empty() ? nullptr : &picture;
}

/** Bytes up to and with the last separator of a path; 0 without one. */
std::size_t Last_Separator_End(const char* path) {
    std::size_t end = 0;
    const char* at = path;
    for (int bytes = 0; (bytes = Character_Bytes(at)) > 0; at += bytes) {
        if (*at == '/' || *at == '\\') {
            end = static_cast<std::size_t>(at - path) + 1;
        }
    }
    return end;
}

const Tga_Picture* Icon_Find(const char* prog_name, const char* file) {
    const auto* folder = static_cast<const char*>(Fct_Variable_Value("$DEFAULT_ICON_PATH", nullptr, nullptr, nullptr));
    const Tga_Picture* picture = folder != nullptr ? Picture_Find(Icon_Path(folder, file)) : nullptr;
    if (picture == nullptr && prog_name != nullptr) {
        picture = Picture_Find(Icon_Path(Icon_Program_Folder(prog_name), file));
    }
    return picture;
}

// ---- drawing

/** The device context to draw an icon with: the running one, or one of its own when that belongs to another window or
 * there is none. */
class Icon_DC {
  public:
    explicit Icon_DC(HWND window) {
        if (Y_DC != nullptr && (window == nullptr || Y_Window == window)) {
            dc = Y_DC;
        } else {
            dc = own.emplace(window, "Icon_Draw_Image").Get();
        }
    }
    HDC Get() const { return dc; }

  private:
    std::optional<Drawing_DC> own;
    HDC dc = nullptr;
};

std::uint32_t Tinted(std::uint32_t pixel, Rgb tint) {
    const auto part = [&](unsigned int shift) {
        return (((pixel >> shift) & 0xFFU) * ((tint >> shift) & 0xFFU) + 127U) / 255U << shift;
    };
    return (pixel & 0xFF000000U) | part(16) | part(8) | part(0);
}

void Icon_Draw(HWND window, int x, int y, const char* prog_name, const char* file, Rgb tint) {
    if (file == nullptr || file[0] == 0) {
        return;
    }
    const Tga_Picture* picture = Icon_Find(prog_name, file);
    if (picture == nullptr) {
        return;
    }
    const Icon_DC dc(window);
    if (dc.Get() == nullptr) {
        return;
    }
    const Point middle = Dc_To_Device(dc.Get(), {x, y});
    const Rect target = {middle.x, middle.y - picture->height / 2, picture->width, picture->height};
    if (tint == NO_TINT) {
        Dc_Blend(dc.Get(), target, picture->pixels.data());
        return;
    }
    std::vector<std::uint32_t> pixels(picture->pixels.size());
    std::transform(picture->pixels.begin(), picture->pixels.end(), pixels.begin(),
                   [tint](std::uint32_t pixel) { return Tinted(pixel, tint); });
    Dc_Blend(dc.Get(), target, pixels.data());
}

// ---- lead cells

/** A lead cell's picture: transparent, with its middle lines. */
struct Lead_Cell {
    int width = 0;
    int height = 0;
    int middle_x = 0;
    int middle_y = 0;
    std::uint32_t line = 0;  ///< of lines: the colour in which trees draw theirs
    std::uint32_t ink = 0;   ///< of marks
    std::vector<std::uint32_t> pixels;

    void Fill(int left, int top, int right, int bottom, std::uint32_t color) {  // right and bottom included
        for (int y = std::max(top, 0); y <= std::min(bottom, height - 1); y++) {
            for (int x = std::max(left, 0); x <= std::min(right, width - 1); x++) {
                pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)] =
                    color;
            }
        }
    }
};

/** Draws a cell by `paint` and lays it over the window. */
template <typename Paint>
void Lead_Draw(const Boxs& box, int x0, int x1, int y0, int y1, Paint paint) {
    constexpr int side_max = 1024;  // pixels
    constexpr int line_x = 7;       // column of the vertical lines of trees
    constexpr std::uint32_t line_color = 0xFF0000FFU;
    if (x1 <= x0 || y1 <= y0 || x1 - x0 > side_max || y1 - y0 > side_max) {
        return;
    }
    const Icon_DC dc(box.window);
    if (dc.Get() == nullptr) {
        return;
    }
    const Point one_end = Dc_To_Device(dc.Get(), {x0, y0});
    const Point other_end = Dc_To_Device(dc.Get(), {x0, y1 - 1});
    const Point middle = Dc_To_Device(dc.Get(), {x0, y0 + (y1 - y0) / 2});
    const Rect target = {one_end.x, std::min(one_end.y, other_end.y), x1 - x0, y1 - y0};
    try {
        Lead_Cell cell;
        cell.width = target.width;
        cell.height = target.height;
        cell.middle_x = std::min(line_x, target.width / 2);
        cell.line = line_color;
        cell.middle_y = middle.y - target.top;
        cell.pixels.resize(static_cast<std::size_t>(cell.width) * static_cast<std::size_t>(cell.height));
        constexpr int ink_percent = 55;
        const Rgb ground = Rgb_Of(box.color);
        cell.ink = 0xFF000000U | Mix(ground, Contrast_Color(ground), ink_percent);
        paint(cell);
        Dc_Blend(dc.Get(), target, cell.pixels.data());
    } catch (const std::bad_alloc&) {
        return;  // a tree without this line is still a tree
    }
}

/** The line from the parent, on to the next sibling when there is one, and to the row's own icon. */
void Leaf_Lines(Lead_Cell& cell, bool goes_on) {
    cell.Fill(cell.middle_x, 0, cell.middle_x, goes_on ? cell.height - 1 : cell.middle_y, cell.line);
    cell.Fill(cell.middle_x, cell.middle_y, cell.width - 1, cell.middle_y, cell.line);
}

/** The toggle of a branch: a box with a minus (its rows are shown) or a plus (they are hidden). */
void Branch_Toggle(Lead_Cell& cell, int row, bool plus) {
    constexpr int half = 4;  // the box has 9 x 9 pixels
    constexpr int sign = 2;
    constexpr std::uint32_t field = 0xFF000000U;
    const int x = cell.middle_x;
    const int y = cell.middle_y;
    if (row > 0) {
        cell.Fill(x, 0, x, y, cell.line);
    }
    cell.Fill(x, y, cell.width - 1, y, cell.line);
    cell.Fill(x - half, y - half, x + half, y + half, cell.ink);
    cell.Fill(x - half + 1, y - half + 1, x + half - 1, y + half - 1, field | Theme_Now().field);
    const std::uint32_t mark = field | Theme_Now().field_text;
    cell.Fill(x - sign, y, x + sign, y, mark);
    if (plus) {
        cell.Fill(x, y - sign, x, y + sign, mark);
    }
}

/** A leaf that cannot be chosen: its line ends in a closed square. */
void No_Access(Lead_Cell& cell, bool goes_on) {
    constexpr int half = 3;
    Leaf_Lines(cell, goes_on);
    cell.Fill(cell.middle_x - half, cell.middle_y - half, cell.middle_x + half, cell.middle_y + half, cell.ink);
    cell.Fill(cell.middle_x - half + 2, cell.middle_y, cell.middle_x + half - 2, cell.middle_y,
              0xFF000000U | Theme_Now().field);
}

}  // namespace

std::string Icon_Path(const std::string& folder, const char* file) {
    const bool is_complete = folder.empty() || Last_Separator_End(folder.c_str()) == folder.size();
    return folder + (is_complete ? "" : "/") + file;
}

std::string Icon_Program_Folder(const char* program) {
    return {program, Last_Separator_End(program)};
}

void Icon_Draw_Tinted(HWND window, int x, int y, const char* prog_name, const char* file, Rgb tint) {
    try {
        Icon_Draw(window, x, y, prog_name, file, tint);
    } catch (const std::bad_alloc&) {
        return;  // without memory there is no icon; everything else stands
    }
}

void Icon_Draw_Image(const Boxs& box, int x, int y, const char* prog_name, const char* file) {
    Icon_Draw_Tinted(box.window, x, y, prog_name, file, NO_TINT);
}

void Icon_Lead_Expand(const Boxs& box, int flag, int x0, int x1, int y0, int y1) {
    Lead_Draw(box, x0, x1, y0, y1, [flag](Lead_Cell& cell) { Branch_Toggle(cell, flag, false); });
}

void Icon_Lead_Collapse(const Boxs& box, int flag, int x0, int x1, int y0, int y1) {
    Lead_Draw(box, x0, x1, y0, y1, [flag](Lead_Cell& cell) { Branch_Toggle(cell, flag, true); });
}

void Icon_Lead_Leaf(const Boxs& box, int flag, int x0, int x1, int y0, int y1) {
    Lead_Draw(box, x0, x1, y0, y1, [flag](Lead_Cell& cell) { Leaf_Lines(cell, flag == 1); });
}

void Icon_Lead_No_Access(const Boxs& box, int flag, int x0, int x1, int y0, int y1) {
    Lead_Draw(box, x0, x1, y0, y1, [flag](Lead_Cell& cell) { No_Access(cell, flag == 1); });
}
