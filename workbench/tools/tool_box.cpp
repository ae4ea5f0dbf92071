#include "workbench/tools/tool_box.h"

#include <utility>

namespace workbench {

Image_Tool& Tool_Box::Of(Tool_Kind kind) {
    switch (kind) {
        case Tool_Kind::Paint:
            return paint;
        case Tool_Kind::Markers:
            return marker;
    }
    return paint;
}

void Tool_Box::Tool_Choose(Tool_Kind kind) {
    Settle();
    In_Hand().Cancel();
    now = kind;
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

void Tool_Box::Brush_Mm_Set(bool on) {
    paint.Shape_Set({Is_Ball(), on});
    Brush_Changed((on ? "The brush reaches " : "The brush reaches ") + std::to_string(Brush_Radius_Of(host.brush())) +
                  (on ? " mm" : " pixels"));
}

std::string Tool_Box::Brush_Note() const {
    return std::string(Is_Brush_Mm() ? ", in mm" : "") + (Is_Ball() ? ", ball" : "") +
           (Is_Band_Only() ? ", in the band" : "");
}

Pixel_Rect Tool_Box::Press(const Tool_Spot& spot, Tool_Hand hand) {
    Stroke_End();  // a stroke belongs to one picture
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
    In_Hand().Paths_Add(cut, paths);
    return paths;
}

void Tool_Box::Follow(Changes changes) {
    for (const Tool_Kind kind : {Tool_Kind::Paint, Tool_Kind::Markers}) {
        Of(kind).Follow(changes);
    }
}

}  // namespace workbench
