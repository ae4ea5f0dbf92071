/** What the histogram counts: which frames, and which of their pixels. No window. */
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace workbench {

/** Which frames the histogram counts. */
enum class Histogram_Frames { All, Shown, Range, Checked };

/** Frames first to last, from 0. */
struct Frame_Range {
    int first = 0;
    int last = 0;
    friend bool operator==(const Frame_Range&, const Frame_Range&) = default;
};

/** "80-100" or "80": frames as the user counts them, from 1. @return no value: the text is no range of the frames */
std::optional<Frame_Range> Frame_Range_Of(std::string_view text, int frame_nb);

class Histogram_Control {
  public:
    using Source = Histogram_Frames;

    Source Source_Now() const { return source; }
    /** Of the current volume; when frames are checked in the database, those that follow when they no longer are. */
    Frame_Range Frames() const { return frames; }
    void All_Take(int frame_nb);
    /** From now on that of the shown slice, whichever that is. */
    void Shown_Take(int slice);
    /** A range of all frames counts them all. */
    void Range_Take(Frame_Range range, int frame_nb);
    /** The user has checked frames in the database. */
    void Checked_Take() { source = Source::Checked; }
    /** Another slice is shown. @return true: other frames are to be counted */
    bool Slice_Follow(int slice);

    /** Only pixels of the current TAG. */
    void Of_Tag_Set(bool on) { is_of_tag = on; }
    bool Is_Of_Tag() const { return is_of_tag; }
    /** Means of 3 x 3 pixels. */
    void Smoothed_Set(bool on) { is_smoothed = on; }
    bool Is_Smoothed() const { return is_smoothed; }
    /** Leaves out what surrounds the image; nothing without a value for it. */
    void Background_Leave_Out(bool on) { is_background_left_out = on; }
    bool Is_Background_Left_Out() const { return is_background_left_out; }
    /** Grey value up to which the current volume's background goes; no value: not known. */
    std::optional<double> Background() const { return background; }
    void Background_Set(std::optional<double> grey) { background = grey; }
    /** Where the background is left out: up to which grey value. */
    std::optional<double> Left_Out() const { return is_background_left_out ? background : std::nullopt; }
    /** Counts all pixels as they are. @return true: it did not before */
    bool Plain_Take();

    /** Another volume is shown: all its frames, unless some are checked. Which of their pixels stays. */
    void Volume_Follow(int frame_nb, std::optional<double> its_background);
    /** Which pixels, as it goes on behind the frames: ", TAG 3 only, smoothed"; empty: all. */
    std::string Pixels_Text(int current_tag) const;

  private:
    Source source = Source::All;
    Frame_Range frames;
    bool is_of_tag = false;
    bool is_smoothed = false;
    bool is_background_left_out = false;
    std::optional<double> background;
};

}  // namespace workbench
