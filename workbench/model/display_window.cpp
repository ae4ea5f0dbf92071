#include "workbench/model/display_window.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "workbench/model/number_text.h"

std::vector<Display_Window> Display_Windows_Of(const Volume& volume, bool is_ct) {
    if (volume.color) {
        return {};
    }
    std::vector<Display_Window> windows = volume.windows;
    if (is_ct) {
        windows.insert(windows.end(), {{"Brain (CT)", 40, 80, Window_Function::LINEAR},
                                       {"Bone (CT)", 500, 2000, Window_Function::LINEAR},
                                       {"Lung (CT)", -600, 1500, Window_Function::LINEAR},
                                       {"Abdomen (CT)", 40, 400, Window_Function::LINEAR}});
    }
    return windows;
}

Grey_Window Grey_Window_Of(const Display_Window& window) {
    const bool is_own = window.function == Window_Function::LINEAR;
    const double middle = is_own ? window.center - 0.5 : window.center;
    const double half = (is_own ? window.width - 1.0 : window.width) / 2.0;
    Grey_Window grey;
    grey.low = static_cast<float>(middle - half);
    grey.high = static_cast<float>(middle + half);
    grey.is_sigmoid = window.function == Window_Function::SIGMOID;
    if (!(grey.low < grey.high)) {
        grey.high = std::nextafter(grey.low, std::numeric_limits<float>::infinity());  // black up to it, then white
    }
    return grey;
}

std::optional<Grey_Window> First_Window(const Volume& volume) {
    const auto [low, high] = std::minmax({volume.grey(volume.level_min), volume.grey(volume.level_max)});
    for (const Display_Window& window : volume.windows) {
        const Grey_Window grey = Grey_Window_Of(window);
        if (!volume.color && std::isfinite(grey.low) && std::isfinite(grey.high) && grey.low < high &&
            grey.high > low) {
            return grey;
        }
    }
    return std::nullopt;
}

std::string Display_Window_Text(const Display_Window& window, int number) {
    const std::string name = window.name.empty() ? "Window " + std::to_string(number) : window.name;
    const char* function = window.function == Window_Function::SIGMOID ? ", sigmoid" : "";
    return name + ": centre " + Number_Text(window.center) + ", width " + Number_Text(window.width) + function;
}
