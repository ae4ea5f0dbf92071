/** What the headers of NRRD and MetaImage have in common: fields of text, and how they become an image's place. */
#pragma once

#include <array>
#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "workbench/volumes/text_header.h"

namespace volumes {

inline constexpr std::string_view HEADER_BLANKS = " \t\r\n";

/** Ends the reading of a header; Text_Header_Decode turns it into its result. */
struct Header_Fault {
    std::string what;  ///< to follow the file's name
};

/** Without the blanks at both ends. */
std::string_view Header_Trimmed(std::string_view text);
/** A to Z in small letters. */
std::string Header_Lower(std::string_view text);
/** Between quotation marks, with nothing that a terminal would obey; long ones are cut. */
std::string Header_Shown(std::string_view text);
/** Takes the next line off a text. */
std::string_view Header_Line_Take(std::string_view& text);
std::vector<std::string_view> Header_Words(std::string_view text, std::string_view between = HEADER_BLANKS);

/** @return nothing: the text is something else than one number */
template <class Number>
std::optional<Number> Header_Number(std::string_view text) {
    Number number{};
    const std::from_chars_result read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}
/** The shortest text that is read as the same number. */
std::string Header_Number_Text(double number);

/** The fields of a header: names in small letters. Where one stands twice the first counts. They stay in the text that
 *  they were found in. Operations throw Header_Fault. */
class Header_Fields {
  public:
    void Add(std::string_view name, std::string_view value);
    /** The value of the first of several names of one field; empty: there is none. */
    std::string_view Text(std::initializer_list<const char*> names) const;
    std::vector<double> Reals(std::initializer_list<const char*> names) const;
    std::int64_t Whole(std::initializer_list<const char*> names, std::int64_t without) const;
    /** Sizes along the axes. */
    std::vector<std::int64_t> Sizes(const char* name, std::int64_t axis_nb) const;

  private:
    std::map<std::string, std::string_view> values;
};

struct Named_Type {
    std::string_view name;  ///< in small letters
    Voxel_Type type;
};
/** @throw Header_Fault */
Voxel_Type Header_Type(std::span<const Named_Type> types, std::string_view name, std::int64_t component_nb);

using Header_Vector = std::array<double, 3>;
double Header_Length(const Header_Vector& vector);
/** Puts the steps of the axes and the place of the first voxel into the affine. */
void Header_Place_Set(Text_Header& header, const std::array<Header_Vector, 3>& steps, const Header_Vector& origin,
                      const Header_Vector& signs);
/** Voxel sizes that are positive numbers; others stay 1. */
void Header_Spacing_Set(Text_Header& header, std::span<const double> spacing);
/** Axes that are written: 3, or 4 with times. */
std::size_t Header_Axis_Nb(const Text_Header& header);

}  // namespace volumes
