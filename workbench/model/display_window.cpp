#include "workbench/model/display_window.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "workbench/model/number_text.h"

namespace workbench {

std::vector<volumes::Display_Window> Display_Windows_Of(const volumes::Volume& volume, bool is_ct) {
    if (volume.color) {
        return {};
    }
    std::vector<volumes::Display_Window> windows = volume.windows;
    if (is_ct) {
        windows.insert(windows.end(), {{"Brain (CT)", 40, 80, volumes::Window_Function::Linear},
                                       {"Bone (CT)", 500, 2000, volumes::Window_Function::Linear},
                                       {"Lung (CT)", -600, 1500, volumes::Window_Function::Linear},
                                       {"Abdomen (CT)", 40, 400, volumes::Window_Function::Linear}});
    }
    return windows;
}

Grey_Window Grey_Window_Of(const volumes::Display_Window& window) {
    const bool is_own = window.function == volumes::Window_Function::Linear;
    const double middle = is_own ? window.center - 0.5 : window.center;
    const double half = (is_own ? window.width - 1.0 : window.width) / 2.0;
    Grey_Window grey;
    grey.low = static_cast<float>(middle - half);
    grey.high = static_cast<float>(middle + half);
    grey.is_sigmoid = window.function == volumes::Window_Function::Sigmoid;
    if (!(grey.low < grey.high)) {
        grey.high = std::nextafter(grey.low, std::numeric_limits<float>::infinity());  // black up to it, then white
    }
    return grey;
}

std::optional<Grey_Window> First_Window(const volumes::Volume& volume) {
    const auto [low, high] = std::minmax({volume.grey(volume.level_min), volume.grey(volume.level_max)});
    for (const volumes::Display_Window& window : volume.windows) {
        const Grey_Window grey = Grey_Window_Of(window);
        if (!volume.color && std::isfinite(grey.low) && std::isfinite(grey.high) && grey.low < high &&
            grey.high > low) {
            return grey;
        }
    }
    return std::nullopt;
}

std::string Display_Window_Text(const volumes::Display_Window& window, int number) {
    const std::string name = window.name.empty() ? "Window " + std::to_string(number) : window.name;
    const char* function = window.function == volumes::Window_Function::Sigmoid ? ", sigmoid" : "";
    return name + ": centre " + Number_Text(window.center) + ", width " + Number_Text(window.width) + function;
}

}  // namespace workbench
