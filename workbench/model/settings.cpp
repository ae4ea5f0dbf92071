#include "workbench/model/settings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <system_error>

#include "workbench/model/line_reader.h"
#include "workbench/model/text_file.h"

namespace workbench {

namespace {

constexpr std::string_view FIRST_LINE = "workbench settings";
constexpr std::size_t FILE_SIZE_MAX = 1U << 20U;  // bytes; a longer file is none of ours
constexpr std::size_t PATH_SIZE_MAX = 4096;
constexpr int COORDINATE_MAX = 100000;
constexpr std::array<std::string_view, 3> ARRANGEMENT_NAMES = {"1", "3", "4"};  // as in View_Arrangement

std::optional<int> Number_Of(std::string_view text, int least, int most) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < least || value > most) {
        return std::nullopt;
    }
    return value;
}

bool Take_Number(std::string_view text, int least, int most, int& value) {
    const std::optional<int> number = Number_Of(text, least, most);
    value = number.value_or(value);
    return number.has_value();
}

bool Take_Flag(std::string_view text, bool& value) {
    int number = 0;
    if (!Take_Number(text, 0, 1, number)) {
        return false;
    }
    value = number != 0;
    return true;
}

/** Left, top, width, height: all or none. */
bool Take_Place(std::string_view text, Window_Place& place) {
    std::array<int, 4> numbers = {};
    for (std::size_t at = 0; at < numbers.size(); ++at) {
        const std::size_t blank = at + 1 < numbers.size() ? text.find(' ') : text.size();
        if (blank == std::string_view::npos) {
            return false;
        }
        const int least = at < 2 ? -COORDINATE_MAX : 1;
        if (!Take_Number(text.substr(0, blank), least, COORDINATE_MAX, numbers[at])) {
            return false;
        }
        text.remove_prefix(std::min(blank + 1, text.size()));
    }
    place.left = numbers[0];
    place.top = numbers[1];
    place.width = numbers[2];
    place.height = numbers[3];
    return true;
}

/** "3 0": how many views, and which plane is the large one. */
bool Take_Views(std::string_view text, Views_Shown& views) {
    const std::size_t blank = text.find(' ');
    if (blank == std::string_view::npos) {
        return false;
    }
    const std::string_view nb = text.substr(0, blank);
    const std::optional<int> large = Number_Of(text.substr(blank + 1), 0, PLANE_VIEW_NB - 1);
    const auto found = std::ranges::find(ARRANGEMENT_NAMES, nb);
    if (!large || found == ARRANGEMENT_NAMES.end()) {
        return false;
    }
    views.arrangement = static_cast<View_Arrangement>(found - ARRANGEMENT_NAMES.begin());
    views.large = *large;
    return true;
}

bool Is_Path(std::string_view text) {
    return !text.empty() && text.size() <= PATH_SIZE_MAX &&
           std::ranges::all_of(text, [](char unit) { return static_cast<unsigned char>(unit) >= 0x20; });
}

bool Take_Line(std::string_view name, std::string_view value, Settings& settings) {
    if (name == "window") {
        return Take_Place(value, settings.window);
    }
    if (name == "enlarged_window") {
        return Take_Place(value, settings.enlarged_window);
    }
    if (name == "peaks_window") {
        return Take_Place(value, settings.peaks_window);
    }
    if (name == "list_window") {
        return Take_Place(value, settings.list_window);
    }
    if (name == "facts_window") {
        return Take_Place(value, settings.facts_window);
    }
    if (name == "statistics_window") {
        return Take_Place(value, settings.statistics_window);
    }
    if (name == "window_maximized") {
        return Take_Flag(value, settings.window.is_maximized);
    }
    if (name == "theme") {
        settings.is_light = value == "light" || (value != "dark" && settings.is_light);
        return value == "light" || value == "dark";
    }
    if (name == "tag_colours") {
        return Take_Flag(value, settings.is_overlay_shown);
    }
    if (name == "trace_view") {
        return Take_Flag(value, settings.is_trace_shown);
    }
    if (name == "database") {
        return Take_Flag(value, settings.is_database_shown);
    }
    if (name == "database_view") {
        return Take_Number(value, 0, DATABASE_VIEW_MAX, settings.database_view);
    }
    if (name == "database_width") {
        return Take_Number(value, 0, DATABASE_WIDTH_MAX, settings.database_width);
    }
    if (name == "folded_panels") {
        int bits = 0;
        const bool is_known = Take_Number(value, 0, static_cast<int>(FOLDED_MAX), bits);
        settings.folded = is_known ? static_cast<unsigned int>(bits) : settings.folded;
        return is_known;
    }
    if (name == "tag_opacity") {
        return Take_Number(value, 0, 100, settings.overlay_opacity);
    }
    if (name == "shared_labels") {
        return Take_Flag(value, settings.are_labels_shared);
    }
    if (name == "views") {
        return Take_Views(value, settings.views);
    }
    if (name == "linked_views") {
        return Take_Flag(value, settings.views.is_linked);
    }
    if (name == "linear") {
        return Take_Flag(value, settings.is_linear);
    }
    if (name == "three_planes") {  // of versions that had no other views
        bool is_three = false;
        const bool is_known = Take_Flag(value, is_three);
        settings.views.arrangement = is_three ? View_Arrangement::Three : settings.views.arrangement;
        return is_known;
    }
    if (name == "enlarged_wheel_turned") {
        return Take_Flag(value, settings.is_wheel_turned);
    }
    if (name == "image_memory") {
        return Take_Number(value, 0, IMAGE_MEMORY_MAX, settings.image_memory);
    }
    if (name == "whole_folder") {
        return Take_Number(value, 0, IMAGE_MEMORY_MAX, settings.whole_folder);
    }
    if (name == "archive" && Is_Path(value) && settings.archives.size() < ARCHIVE_MAX) {
        settings.archives.emplace_back(value);
        return true;
    }
    if (name == "send_anonymously") {
        return Take_Flag(value, settings.is_sent_anonymously);
    }
    if (name == "archive_secret" && Is_Path(value)) {
        settings.archive_secret = value;
        return true;
    }
    if (name == "recent" && Is_Path(value) && settings.recent.size() < RECENT_MAX &&
        std::ranges::find(settings.recent, value) == settings.recent.end()) {
        settings.recent.emplace_back(value);
        return true;
    }
    return false;
}

}  // namespace

void Recent_Add(std::vector<std::string>& recent, const std::string& path) {
    if (!Is_Path(path)) {
        return;
    }
    std::erase(recent, path);
    recent.insert(recent.begin(), path);
    recent.resize(std::min(recent.size(), RECENT_MAX));
}

Settings Settings_Parse(std::string_view text, int* ignored) {
    Settings settings;
    int unknown = 0;
    while (!text.empty()) {
        const std::string_view line = Line_Take(text);
        if (line.empty() || line == FIRST_LINE) {
            continue;
        }
        const std::size_t blank = line.find(' ');
        const bool is_known =
            blank != std::string_view::npos && Take_Line(line.substr(0, blank), line.substr(blank + 1), settings);
        unknown += is_known ? 0 : 1;
    }
    if (ignored != nullptr) {
        *ignored = unknown;
    }
    return settings;
}

std::string Settings_Text(const Settings& settings) {
    std::string text = std::string(FIRST_LINE) + "\n";
    const auto line = [&](const char* name, const std::string& value) {
        text += std::string(name) + " " + value + "\n";
    };
    const auto flag = [&](const char* name, bool value) { line(name, value ? "1" : "0"); };
    const auto window = [&](const char* name, const Window_Place& place) {
        if (place.width > 0 && place.height > 0) {
            line(name, std::to_string(place.left) + " " + std::to_string(place.top) + " " +
                           std::to_string(place.width) + " " + std::to_string(place.height));
        }
    };
    window("window", settings.window);
    window("peaks_window", settings.peaks_window);
    window("enlarged_window", settings.enlarged_window);
    window("list_window", settings.list_window);
    window("facts_window", settings.facts_window);
    window("statistics_window", settings.statistics_window);
    flag("window_maximized", settings.window.is_maximized);
    line("theme", settings.is_light ? "light" : "dark");
    flag("tag_colours", settings.is_overlay_shown);
    line("tag_opacity", std::to_string(settings.overlay_opacity));
    flag("shared_labels", settings.are_labels_shared);
    line("views", std::string(ARRANGEMENT_NAMES[static_cast<std::size_t>(settings.views.arrangement)]) + " " +
                      std::to_string(settings.views.large));
    flag("linked_views", settings.views.is_linked);
    flag("linear", settings.is_linear);
    flag("trace_view", settings.is_trace_shown);
    flag("database", settings.is_database_shown);
    line("database_view", std::to_string(settings.database_view));
    line("database_width", std::to_string(settings.database_width));
    line("folded_panels", std::to_string(settings.folded));
    flag("enlarged_wheel_turned", settings.is_wheel_turned);
    line("image_memory", std::to_string(settings.image_memory));
    line("whole_folder", std::to_string(settings.whole_folder));
    for (const std::string& one : settings.archives) {
        line("archive", one);
    }
    flag("send_anonymously", settings.is_sent_anonymously);
    if (!settings.archive_secret.empty()) {
        line("archive_secret", settings.archive_secret);
    }
    for (const std::string& path : settings.recent) {
        line("recent", path);
    }
    return text;
}

Settings Settings_Load(const std::filesystem::path& file, int* ignored) {
    std::string text;
    Text_File_Read(file, FILE_SIZE_MAX, text);
    return Settings_Parse(text, ignored);
}

bool Settings_Save(const std::filesystem::path& file, const Settings& settings) {
    std::error_code failure;
    if (file.has_parent_path()) {
        std::filesystem::create_directories(file.parent_path(), failure);
    }
    return Text_File_Write(file, Settings_Text(settings)).empty();
}

Window_Place Place_Inside(const Window_Place& place, const Window_Place& area) {
    Window_Place inside = place;
    inside.width = std::min(place.width, area.width);
    inside.height = std::min(place.height, area.height);
    inside.left = std::clamp(place.left, area.left, area.left + area.width - inside.width);
    inside.top = std::clamp(place.top, area.top, area.top + area.height - inside.height);
    return inside;
}

}  // namespace workbench
