/** Where the thumb of a slider stands, and which value a thumb position means. Pure numbers.
 *
 *  A track is `track` pixels long and counted from its visual top or left end. The thumb is `thumb` pixels long and its
 *  first pixel stands at `offset`, 0 .. track - thumb (its travel). The minimum of the range lies at offset 0.
 */
#pragma once

#include <algorithm>
#include <cmath>

inline constexpr int SLIDER_THUMB_MIN = 12;  ///< shortest thumb that can be grabbed, pixels

/** Values of a slider. The range is empty when the maximum is not above the minimum; with equal ends it still has the
 * one value, with the maximum below the minimum it has none. */
struct Slider_Range {
    float minimum = 0.0F;
    float maximum = 1.0F;
    bool Is_Empty() const { return !(maximum > minimum); }
    /** The value inside the range; a range without any value leaves it as it is. */
    float Clamp(float value) const {
        if (!(maximum >= minimum)) {
            return value;
        }
        if (!(value >= minimum)) {  // also a value that is no number
            return minimum;
        }
        return std::min(value, maximum);
    }
};

/** The share of the whole that is in view, 0 .. 1. A total of 0 or less, or one that is no number: 1. */
inline float Slider_Visible_Part(float visible, float total) {
    if (!(total > 0.0F) || !(visible < total)) {
        return 1.0F;
    }
    return std::max(visible / total, 0.0F);
}

/** Length of the thumb: its share of the track, SLIDER_THUMB_MIN at least and the track at most. */
inline int Slider_Thumb_Length(int track, float visible_part) {
    const int room = std::max(track, 0);
    const long share = std::lround(static_cast<double>(visible_part) * room);
    return static_cast<int>(std::clamp<long>(share, std::min(SLIDER_THUMB_MIN, room), room));
}

/** Value to pixel: where the thumb starts. Values beyond the range stand at its ends, an empty range at 0. */
inline int Slider_Thumb_Offset(int track, int thumb, float value, const Slider_Range& range) {
    const int travel = track - thumb;
    if (travel <= 0 || range.Is_Empty()) {
        return 0;
    }
    const double span = static_cast<double>(range.maximum) - range.minimum;
    const double part = (static_cast<double>(range.Clamp(value)) - range.minimum) / span;
    return std::clamp(static_cast<int>(std::lround(part * travel)), 0, travel);
}

/** Pixel to value, the inverse of Slider_Thumb_Offset. Both ends of the travel give the ends of the range exactly.
 *  @param value the value until now, kept when the thumb has no travel or stands at `offset` already */
inline float Slider_Value_At(int track, int thumb, int offset, float value, const Slider_Range& range) {
    const int travel = track - thumb;
    if (travel <= 0 || range.Is_Empty()) {
        return value;
    }
    const int place = std::clamp(offset, 0, travel);
    if (place == Slider_Thumb_Offset(track, thumb, value, range)) {
        return range.Clamp(value);
    }
    if (place == travel) {
        return range.maximum;
    }
    const double span = static_cast<double>(range.maximum) - range.minimum;
    return range.Clamp(static_cast<float>(range.minimum + span * place / travel));
}

/** The value after notches of the wheel; a range without any value leaves it as it is. */
inline float Slider_Scrolled(float value, int notches, float step, const Slider_Range& range) {
    return range.maximum >= range.minimum ? range.Clamp(value + static_cast<float>(notches) * step) : value;
}

/** What a press beside the thumb adds or takes away: the visible amount in units of the value, one step at least. */
inline float Slider_Page(float visible_part, float step, const Slider_Range& range) {
    if (range.Is_Empty()) {
        return 0.0F;
    }
    const float span = range.maximum - range.minimum;
    if (!(visible_part < 1.0F)) {
        return span;
    }
    return std::min(std::max(span * visible_part / (1.0F - visible_part), std::fabs(step)), span);
}
