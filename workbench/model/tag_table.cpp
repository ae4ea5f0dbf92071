#include "workbench/model/tag_table.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "workbench/model/label_map.h"

namespace workbench {

namespace {

struct Named_Tag {
    const char* label;
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};
constexpr std::array<Named_Tag, 16> NAMED_TAGS = {{{"Background", 170, 170, 170},
                                                   {"Grey matter", 224, 86, 86},
                                                   {"White matter", 240, 206, 96},
                                                   {"CSF", 72, 150, 236},
                                                   {"Skull", 206, 186, 150},
                                                   {"Scalp", 236, 150, 196},
                                                   {"Cerebellum", 70, 190, 130},
                                                   {"Brain stem", 160, 110, 220},
                                                   {"Ventricles", 60, 206, 220},
                                                   {"Thalamus", 136, 206, 70},
                                                   {"Caudate", 240, 130, 50},
                                                   {"Putamen", 200, 70, 170},
                                                   {"Hippocampus", 250, 240, 150},
                                                   {"Lesion", 255, 40, 40},
                                                   {"Vessel", 170, 30, 60},
                                                   {"Eye", 110, 130, 250}}};

/** A component of a colour wheel. @param turn position of the hue, in turns */
std::uint8_t Wheel(double turn, double brightness) {
    const double part = std::abs(std::fmod(turn, 1.0) * 6.0 - 3.0) - 1.0;
    const double level = std::clamp(part, 0.0, 1.0) * 0.75 + 0.25;
    return static_cast<std::uint8_t>(std::lround(255.0 * level * brightness));
}

}  // namespace

Tag_Entry Tag_Default(int tag) {
    if (tag >= 0 && static_cast<std::size_t>(tag) < NAMED_TAGS.size()) {
        const Named_Tag& named = NAMED_TAGS[static_cast<std::size_t>(tag)];
        return {named.label, named.red, named.green, named.blue};
    }
    constexpr double golden_turn = 0.6180339887498949;  // spreads any number of hues evenly
    const double turn = golden_turn * std::max(tag, 0);
    const double brightness = tag % 2 == 0 ? 1.0 : 0.78;
    return {"", Wheel(turn, brightness), Wheel(turn + 2.0 / 3.0, brightness), Wheel(turn + 1.0 / 3.0, brightness)};
}

int Tag_Count_For(int highest) {
    const int rounded = (std::max(highest, 0) + 1 + 3) / 4 * 4;
    return std::clamp(rounded, TAG_DEFAULT_NB, TAG_MAX);
}

int Tag_Step(int tag, int step, int count) {
    if (count <= 0) {
        return 0;
    }
    return ((tag + step) % count + count) % count;
}

}  // namespace workbench
