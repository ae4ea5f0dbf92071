#include "kits/dataset/gesture.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

/** Fingers closer than this along an axis do not zoom along it: the factor would be noise. Pixels. */
constexpr float DISTANCE_MIN = 40.0F;

}  // namespace

Two_Finger_Gesture::Span Two_Finger_Gesture::Span_Of(float a, float b) {
    return {std::abs(a - b), (a + b) / 2.0F};
}

/** The zoom since the last record, in a small step. What is beyond the step stays in `reported` for the next record. */
float Two_Finger_Gesture::Zoom_Step(Span& reported, const Span& now) {
    if (reported.distance < DISTANCE_MIN || now.distance < DISTANCE_MIN) {
        reported.distance = now.distance;
        return 1.0F;
    }
    const float factor = std::clamp(now.distance / reported.distance, 1.0F / GESTURE_STEP, GESTURE_STEP);
    reported.distance *= factor;
    return factor;
}

float Two_Finger_Gesture::Move_Step(Span& reported, const Span& now) {
    const float moved = now.middle - reported.middle;
    reported.middle = now.middle;
    return moved;
}

void Two_Finger_Gesture::Place(const Touch_Point& point) {
    Finger* known = std::find_if(std::begin(fingers), std::end(fingers),
                                 [&](const Finger& finger) { return finger.down && finger.number == point.finger; });
    if (known != std::end(fingers) && !point.down) {
        known->down = false;
        following = false;
        return;
    }
    if (known == std::end(fingers)) {
        known = std::find_if(std::begin(fingers), std::end(fingers), [](const Finger& finger) { return !finger.down; });
        if (known == std::end(fingers) || !point.down) {
            return;  // a third finger takes no part
        }
    }
    *known = {true, point.finger, point.x, point.y};
}

std::optional<Gesture_Record> Two_Finger_Gesture::Follow(const Touch_Point* points, int nb) {
    for (int i = 0; i < nb; ++i) {
        if (std::isfinite(points[i].x) && std::isfinite(points[i].y)) {
            Place(points[i]);
        }
    }
    if (!fingers[0].down || !fingers[1].down) {
        return std::nullopt;
    }
    const Span x = Span_Of(fingers[0].x, fingers[1].x);
    const Span y = Span_Of(fingers[0].y, fingers[1].y);
    if (!following) {
        reported_x = x;
        reported_y = y;
        following = true;
        return std::nullopt;
    }
    Gesture_Record record;
    record.fx = Zoom_Step(reported_x, x);
    record.fy = Zoom_Step(reported_y, y);
    record.dx = Move_Step(reported_x, x);
    record.dy = Move_Step(reported_y, y);
    const bool changed = record.fx != 1.0F || record.fy != 1.0F || record.dx != 0.0F || record.dy != 0.0F;
    return changed ? std::optional(record) : std::nullopt;
}

void Two_Finger_Gesture::Reset() {
    *this = {};
}
