#include "workbench/tools/paint_tool.h"

#include <new>
#include <utility>

namespace workbench {

Paint_Ink Paint_Tool::Ink(bool erase) const {
    Paint_Ink ink;
    ink.tag = erase ? std::uint8_t{0} : static_cast<std::uint8_t>(host.tag());
    ink.locked = host.locked();
    // The background cannot be locked away from painting: there would be nothing to paint on.
    ink.locked[0] = 0;
    ink.only_inside = host.only_inside();
    if (is_band_only) {
        const segmentation::Level_Band band = host.band().value_or(segmentation::Level_Band());
        ink.band = Paint_Band{band.low, band.high};
    }
    return ink;
}

Pixel_Rect Paint_Tool::Press(const Tool_Spot& spot, Tool_Hand hand) {
    const bool erase = hand == Tool_Hand::Right;
    if (is_band_only && !host.band()) {
        host.tell(host.tag_name(host.tag()) + " has no band: set its thresholds, or paint without one");
    } else if (!erase && host.is_tag_hidden()) {
        host.tell("The current TAG is hidden: press E to show it");
    }
    Session& work = host.work();
    if (!work.Has_Volume()) {
        return {};
    }
    host.note(Change::Stroke);
    return work.Stroke_Begin(spot.cut, Brush_Body_Of(host.brush(), shape, spot.cut.geometry, work.Image().spacing),
                             spot.X(), spot.Y(), Ink(erase));
}

Pixel_Rect Paint_Tool::Move(const Tool_Spot& spot) {
    host.note(Change::Stroke);
    return host.work().Stroke_Move(spot.X(), spot.Y());
}

void Paint_Tool::Release() {
    host.pen_lifted();
    try {
        if (host.work().Stroke_End()) {
            host.note(Change::Pixels);
            host.log("stroke");
        }
    } catch (const std::bad_alloc&) {
        host.note(Change::Pixels);  // it was painted, only the step is missing
        throw;
    }
}

Brush_Footprint Paint_Tool::Outline(const Tool_Spot& spot) const {
    const Session& work = host.work();
    if (!work.Has_Volume()) {
        return {};
    }
    Brush_Footprint middle = Brush_Middle_Of(host.brush(), shape, spot.cut.geometry, work.Image().spacing);
    return is_band_only ? Footprint_Taken(middle, spot.X(), spot.Y(), Ink(false), work.Labels().All(),
                                          work.Plain_Levels(), spot.cut)
                        : middle;
}

}  // namespace workbench
