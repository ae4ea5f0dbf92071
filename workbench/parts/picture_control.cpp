#include "workbench/parts/picture_control.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <new>
#include <utility>

#include "workbench/model/contact_sheet.h"
#include "workbench/volumes/message_text.h"

namespace workbench {

namespace {

constexpr int SHEET_SLICES = 24;     // that are proposed
constexpr double SHEET_DRAWN = 0.7;  // share of the time, the rest goes to the file

struct Way {
    const char* text;
    bool is_screen;
    bool is_plain;
};
constexpr Way WAYS[] = {{"as on the screen, with TAG colours, markers and texts", true, false},
                        {"as on the screen, the image alone", true, true},
                        {"one pixel per voxel, with TAG colours", false, false},
                        {"one pixel per voxel, the image alone", false, true}};

/** "Coronal 108" becomes "coronal_108.png". */
std::string File_Name_Of(std::string name) {
    for (char& letter : name) {
        letter = letter == ' ' ? '_' : letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return name + ".png";
}

/** What the sheet is made of, taken on the window's thread. */
struct Sheet_Parts {
    std::vector<Image_Content> slices;
    std::vector<volumes::Picture> numbers;
    std::vector<std::pair<int, volumes::Picture>> names;  ///< of TAGs that are shown in colour
};

Tag_Flags Tags_In(const Image_Content& content) {
    Tag_Flags found{};
    for (const std::uint8_t tag : content.source.tags) {
        found[tag] = 1;
    }
    return found;
}

/** @return an empty picture: given up */
volumes::Picture Sheet_Draw(Sheet_Parts& parts, const volumes::Load_Progress& progress) {
    Tag_Flags found{};
    for (const Image_Content& content : parts.slices) {
        const Tag_Flags here = Tags_In(content);
        std::ranges::transform(found, here, found.begin(), std::bit_or<>());
    }
    std::erase_if(parts.names, [&](const auto& name) { return found[static_cast<std::size_t>(name.first)] == 0; });
    Sheet_Request request;
    const Image_Content& first = parts.slices.front();
    request.slice_width = first.source.width;
    request.slice_height = first.source.height;
    request.pixel_aspect = first.pixel_aspect;
    request.slice_nb = static_cast<int>(parts.slices.size());
    for (const auto& [tag, letters] : parts.names) {
        request.entry_width.push_back(letters.width);
        request.line_height = std::max(request.line_height, letters.height);
    }
    const Sheet_Layout layout = Sheet_Layout_Make(request);
    volumes::Picture sheet{layout.width, layout.height, {}};
    sheet.pixels.resize(static_cast<std::size_t>(sheet.width) * static_cast<std::size_t>(sheet.height));
    for (std::size_t at = 0; at < parts.slices.size(); ++at) {
        if (progress && !progress(SHEET_DRAWN * static_cast<double>(at) / static_cast<double>(parts.slices.size()))) {
            return {};
        }
        const volumes::Picture slice = Slice_Picture(parts.slices[at], false);
        Sheet_Slice_Put(sheet, layout.slices[at], slice.pixels, slice.width, slice.height);
        Sheet_Letters_Put(sheet, layout.slices[at], parts.numbers[at]);
    }
    for (std::size_t at = 0; at < parts.names.size(); ++at) {
        Sheet_Fill(sheet, layout.swatches[at], first.overlay.color[static_cast<std::size_t>(parts.names[at].first)]);
        Sheet_Letters_Put(sheet, layout.names[at], parts.names[at].second);
    }
    return sheet;
}

}  // namespace

volumes::Picture Slice_Picture(const Image_Content& content, bool is_plain) {
    volumes::Picture picture{content.source.width, content.source.height, {}};
    picture.pixels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height));
    if (content.source.levels.empty()) {
        return {};
    }
    Slice_Render(content.source, content.window, is_plain ? Tag_Overlay() : content.overlay,
                 is_plain ? std::vector<Range_Overlay>() : content.ranges, {0, 0, picture.width, picture.height},
                 picture.pixels);
    return picture;
}

Picture_Control::Picture_Control(Picture_Host application) : host(std::move(application)) {}

void Picture_Control::Save(const std::string& title, const std::string& name,
                           const std::function<volumes::Picture(const volumes::Load_Progress&)>& make) {
    const std::optional<std::filesystem::path> file = host.file(title, name);
    if (!file) {
        return;
    }
    const std::string told = volumes::File_Name_Text(*file);
    std::string error;
    bool is_given_up = false;
    try {
        host.run("Saving " + told, [&](const volumes::Load_Progress& progress) {
            const volumes::Picture picture = make(progress);
            is_given_up = picture.Is_Empty();
            if (!is_given_up) {
                error = volumes::Png_Write(*file, picture);
            }
        });
    } catch (const std::bad_alloc&) {
        error = "cannot be written for want of memory";
    }
    if (is_given_up) {
        return host.tell("Saving was given up");
    }
    if (!error.empty()) {
        return host.warn("The picture was not saved: " + told + " " + error + ".");
    }
    host.tell("The picture was saved to " + told);
}

void Picture_Control::Picture_Save() {
    const std::vector<Pictured_View> views = host.views();
    if (views.empty()) {
        return host.tell("There is no image to save a picture of");
    }
    std::vector<std::string> lines;
    for (const Pictured_View& view : views) {
        for (const Way& way : WAYS) {
            lines.push_back(view.name + ", " + way.text);
        }
    }
    const int chosen = host.line("Save picture", "What to save:", lines);
    if (chosen < 0) {
        return;
    }
    const Pictured_View& view = views[static_cast<std::size_t>(chosen) / std::size(WAYS)];
    const Way& way = WAYS[static_cast<std::size_t>(chosen) % std::size(WAYS)];
    volumes::Picture picture = way.is_screen ? view.screen(way.is_plain) : Slice_Picture(view.shown(), way.is_plain);
    Save("Save picture", File_Name_Of(view.name), [&](const volumes::Load_Progress&) { return std::move(picture); });
}

void Picture_Control::Sheet_Save() {
    if (host.views().empty()) {
        return host.tell("There is no image to save a picture of");
    }
    const int slice_nb = host.slice_nb();
    const std::optional<std::string> answer =
        host.text("Contact sheet", "Every how many slices (1 to " + std::to_string(slice_nb) + "):",
                  std::to_string(std::max((slice_nb + SHEET_SLICES - 1) / SHEET_SLICES, 1)));
    if (!answer) {
        return;
    }
    int step = 0;
    const char* const end = answer->data() + answer->size();
    const auto [rest, problem] = std::from_chars(answer->data(), end, step);
    if (problem != std::errc() || rest != end || step < 1 || step > slice_nb) {
        return host.warn("\"" + *answer + "\" is no number from 1 to " + std::to_string(slice_nb) + ".");
    }
    Sheet_Parts parts;
    for (int slice = 0; slice < slice_nb; slice += step) {
        parts.slices.push_back(host.slice(slice));
        parts.numbers.push_back(host.letters(std::to_string(slice + 1)));
    }
    for (int tag = 1; tag < host.tag_nb(); ++tag) {
        if (parts.slices.front().overlay.shown[static_cast<std::size_t>(tag)] != 0) {
            parts.names.emplace_back(tag, host.letters(host.tag_name(tag)));
        }
    }
    Save("Save contact sheet", "slices.png",
         [&](const volumes::Load_Progress& progress) { return Sheet_Draw(parts, progress); });
}

}  // namespace workbench
