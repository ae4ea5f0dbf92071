/** What a label volume does not hold: names, colours, thresholds and state of the TAGs, and the markers; as a readable
 *  text that stands beside the volume.
 *
 *      label description 1
 *      # tag NUMBER COLOUR SHOWN SELECTED LOCKED LOWER UPPER NAME
 *      tag 0 #AAAAAA 1 1 0 - - "Background"
 *      tag 2 #F0CE60 1 1 0 95 - "White matter"
 *      tag 17 #4C37B1 0 1 1 - - -
 *      # marker NUMBER COLOUR FRAME COLUMN ROW NAME
 *      marker 2 #FF4B4B 90 60 108 "Genu"
 *      marker 3 #3CC8FF - - - "M4"
 *
 *  Parts stand apart by blanks, a "-" is nothing: no threshold, no place, no name. Colours are red, green and blue in
 *  hexadecimal digits. Frames, columns and rows count from 0 in the label volume's file. Names are UTF-8 between
 *  quotation marks (\" and \\ as usual, \xHH for control characters). Lines that begin with # mean nothing.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace workbench {

inline constexpr int LABEL_DESCRIPTION_VERSION = 1;
inline constexpr std::size_t LABEL_NAME_MAX = 1023;  ///< bytes of a name

struct Tag_Description {
    int number = 0;
    std::uint32_t color = 0;  ///< 0x00RRGGBB
    bool is_shown = true;
    bool is_selected = true;
    bool is_locked = false;
    std::optional<float> low;  ///< grey values; none: no limit
    std::optional<float> high;
    std::optional<std::string> name;  ///< UTF-8; none: the TAG is shown by its number
    friend bool operator==(const Tag_Description&, const Tag_Description&) = default;
};

/** A voxel of the label volume's file. */
struct Label_Voxel {
    int frame = 0;
    int column = 0;
    int row = 0;
    friend bool operator==(const Label_Voxel&, const Label_Voxel&) = default;
};

struct Marker_Description {
    int number = 0;
    std::uint32_t color = 0;           ///< 0x00RRGGBB
    std::optional<Label_Voxel> place;  ///< none: not placed
    std::optional<std::string> name;   ///< UTF-8; none: the marker is shown by its number
    friend bool operator==(const Marker_Description&, const Marker_Description&) = default;
};

struct Label_Description {
    std::vector<Tag_Description> tags;  ///< every number at most once
    std::vector<Marker_Description> markers;
    friend bool operator==(const Label_Description&, const Label_Description&) = default;
};

/** Size of the label volume; markers lie inside. */
struct Label_Extent {
    int frames = 0;
    int columns = 0;
    int rows = 0;
};

std::string Label_Description_Text(const Label_Description& description);

struct Label_Description_Reading {
    Label_Description description;  ///< empty when refused
    std::string refused;            ///< empty, or why nothing was read: "is no description of labels"
    bool is_newer = false;          ///< refused because a later version wrote it
    int left_out = 0;               ///< lines that were not understood
    std::string first_left_out;     ///< the first of them: "line 7: a number is expected"
};
/** Takes every line that is understood and leaves out every other one. Of two lines about one TAG or marker the first
 *  counts. Never throws but for lack of memory. */
Label_Description_Reading Label_Description_Parse(std::string_view text, const Label_Extent& extent);

}  // namespace workbench
