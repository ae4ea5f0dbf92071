#include "workbench/tools/tool_box.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <utility>

#include "workbench/model/number_text.h"

namespace workbench {

Image_Tool& Tool_Box::Of(Tool_Kind kind) {
    switch (kind) {
        case Tool_Kind::Paint:
            return paint;
        case Tool_Kind::Markers:
            return marker;
        case Tool_Kind::Fill:
            return fill;
        case Tool_Kind::Growth:
            return growth;
        case Tool_Kind::Polygon:
            return polygon;
        case Tool_Kind::Lasso:
            return lasso;
        case Tool_Kind::Distance:
        case Tool_Kind::Angle:
            return measure;
    }
    return paint;
}

void Tool_Box::Tool_Choose(Tool_Kind kind) {
    Settle();
    In_Hand().Cancel();
    now = kind;
    measure.Kind_Set(kind == Tool_Kind::Angle ? Measure_Kind::Angle : Measure_Kind::Distance);
    host.note({Change::Mode, Change::View});
    host.tell(In_Hand().Hint());
}

void Tool_Box::Brush_Changed(const std::string& told) {
    Stroke_End();
    host.note({Change::Mode, Change::Brush});
    host.tell(told);
}

void Tool_Box::Band_Only_Set(bool on) {
    paint.Band_Only_Set(on);
    const std::string name = host.tag_name(host.tag());
    Brush_Changed(!on            ? "The brush paints all it covers"
                  : !host.band() ? name + " has no band: set its thresholds, and the brush paints only there"
                                 : "The brush paints only within the band of " + name);
}

void Tool_Box::Ball_Set(bool on) {
    paint.Shape_Set({on, Is_Brush_Mm()});
    Brush_Changed(on ? "The brush is a ball: it paints the pictures before and behind, too"
                     : "The brush paints in the picture alone");
}

bool Tool_Box::Is_Mm_Known() const {
    const Session& work = host.work();
    return !work.Has_Volume() || work.Image().is_size_known;
}

void Tool_Box::Brush_Mm_Set(bool on) {
    paint.Shape_Set({Is_Ball(), on});
    Brush_Changed("The brush reaches " + std::to_string(Brush_Radius_Of(host.brush())) +
                  (!on             ? " pixels"
                   : Is_Mm_Known() ? " mm"
                                   : " voxels: how large these are is not known"));
}

void Tool_Box::Fill_Changed() {
    growth.Cancel();
    host.note(Change::Mode);
    host.tell(fill.Hint());
}

void Tool_Box::Fill_In_Space_Set(bool on) {
    fill_settings.is_in_space = on;
    Fill_Changed();
}

void Tool_Box::Fill_Corners_Set(bool on) {
    fill_settings.is_over_corners = on;
    Fill_Changed();
}

void Tool_Box::Fill_By_Tolerance_Set(bool on) {
    fill_settings.is_by_tolerance = on;
    Fill_Changed();
}

void Tool_Box::Fill_Tolerance_Ask() {
    const std::optional<std::string> answer =
        host.text_ask("Tolerance of fills",
                      "Grey values at most so far from the clicked voxel's own:", Number_Text(fill_settings.tolerance));
    if (!answer) {
        return;
    }
    std::string text = *answer;
    std::ranges::replace(text, ',', '.');
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != 0 || !std::isfinite(value) || value < 0.0) {
        return host.warn("\"" + *answer + "\" is no number of 0 or more.");
    }
    fill_settings.tolerance = value;
    Fill_Changed();
}

void Tool_Box::Tool_Accept() {
    if (!Accept()) {
        host.tell("Nothing is begun");
    }
}

void Tool_Box::Tool_Cancel() {
    if (!Cancel()) {
        host.tell("Nothing is begun");
    }
}

std::optional<std::uint8_t> Tool_Box::Preview_Tag() const {
    return growth.Is_Growing() ? std::optional(growth.Tag()) : std::nullopt;
}

std::span<const std::uint8_t> Tool_Box::With_Preview(const Plane_Cut& cut, std::span<const std::uint8_t> tags) const {
    if (!growth.Is_Growing()) {
        return tags;
    }
    previewed.assign(tags.begin(), tags.end());
    growth.Preview(cut, previewed);
    return previewed;
}

std::string Tool_Box::Brush_Note() const {
    return std::string(Is_Brush_Mm() && Is_Mm_Known() ? ", in mm" : "") + (Is_Ball() ? ", ball" : "") +
           (Is_Band_Only() ? ", in the band" : "");
}

Pixel_Rect Tool_Box::Press(const Tool_Spot& spot, Tool_Hand hand) {
    Settle();  // what is held belongs to one picture
    held = In_Hand().Is_For(hand) ? &In_Hand() : &paint;
    return held->Press(spot, hand);
}

Pixel_Rect Tool_Box::Move(const Tool_Spot& spot) {
    return held != nullptr ? held->Move(spot) : Pixel_Rect{};
}

void Tool_Box::Release() {
    if (Image_Tool* const ended = std::exchange(held, nullptr)) {
        ended->Release();
    }
}

void Tool_Box::Stroke_End() {
    held = held == &paint ? nullptr : held;
    paint.Release();
}

void Tool_Box::Settle() {
    Release();
    Stroke_End();
}

std::vector<Shown_Path> Tool_Box::Paths(const Plane_Cut& cut) const {
    std::vector<Shown_Path> paths;
    measure.Paths_Add(cut, paths);
    if (&In_Hand() != &measure) {
        In_Hand().Paths_Add(cut, paths);
    }
    return paths;
}

void Tool_Box::Follow(Changes changes) {
    for (Image_Tool* const tool : std::initializer_list<Image_Tool*>{&growth, &polygon, &lasso}) {
        tool->Follow(changes);
    }
}

}  // namespace workbench
