#include "workbench/edits/segmentation_tables.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>
#include <utility>

#include "workbench/model/number_text.h"

namespace workbench {

namespace {

constexpr int DIGITS = 4;       // of the numbers that people read
constexpr double CURVE = 50.0;  // signs of the largest area

/** Letters of a UTF-8 text. */
std::size_t Letter_Nb(const std::string& text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char unit) { return (static_cast<unsigned char>(unit) & 0xC0U) != 0x80U; }));
}

/** The shortest text that reads back as the number. */
std::string Exact_Text(double number) {
    std::array<char, 32> text{};
    const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end.ptr};
}

std::string Quoted(const std::string& text) {
    if (text.find_first_of(",\"\n\r") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char unit : text) {
        quoted += unit == '"' ? "\"\"" : std::string(1, unit);
    }
    return quoted + '"';
}

}  // namespace

std::string Columns_Text(std::span<const std::vector<std::string>> rows, std::size_t right_from) {
    std::vector<std::size_t> widths;
    for (const std::vector<std::string>& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t at = 0; at < row.size(); ++at) {
            widths[at] = std::max(widths[at], Letter_Nb(row[at]));
        }
    }
    std::string text;
    for (const std::vector<std::string>& row : rows) {
        std::string line;
        for (std::size_t at = 0; at < row.size(); ++at) {
            const std::string room(widths[at] - Letter_Nb(row[at]), ' ');
            line += (at == 0 ? "" : "  ") + (at >= right_from ? room + row[at] : row[at] + room);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

std::string Statistics_Text(std::span<const segmentation::Tag_Numbers> rows,
                            const segmentation::Statistics_Request& request, const segmentation::Csv_Words& words) {
    const std::string unit = words.grey_unit.empty() ? "" : " " + words.grey_unit;
    std::vector<std::vector<std::string>> cells = {{"TAG", "Name", "Voxels", words.is_size_known ? "ml" : "1000 voxels",
                                                    "Mean" + unit, "SD", "Min", "Median", "Max"}};
    for (const double percent : request.percentiles) {
        cells[0].push_back(Number_Text(percent) + " %");
    }
    cells[0].insert(cells[0].end(), {"Regions", "Slices"});
    for (const segmentation::Tag_Numbers& row : rows) {
        const auto tag = static_cast<std::size_t>(row.tag);
        std::vector<std::string> line = {std::to_string(row.tag),
                                         tag < words.names.size() ? words.names[tag] : std::string(),
                                         std::to_string(row.voxel_nb), Number_Text(row.milliliters, DIGITS)};
        const segmentation::Grey_Numbers& greys = row.greys;
        std::vector<double> numbers = {greys.mean, greys.deviation, greys.least, greys.median, greys.greatest};
        numbers.insert(numbers.end(), greys.percentiles.begin(), greys.percentiles.end());
        numbers.resize(5 + request.percentiles.size());
        for (const double number : numbers) {
            line.push_back(greys.voxel_nb != 0 ? Number_Text(number, DIGITS) : std::string());
        }
        line.push_back(std::to_string(row.region_nb));
        line.push_back(std::to_string(row.first_slice + 1) + " to " + std::to_string(row.last_slice + 1));
        cells.push_back(std::move(line));
    }
    return Columns_Text(cells, 2);
}

std::optional<int> Statistics_Row_Tag(std::string_view table, int line) {
    for (int at = 0; !table.empty(); ++at) {
        const std::string_view text = table.substr(0, table.find('\n'));
        table.remove_prefix(std::min(text.size() + 1, table.size()));
        if (text.empty()) {
            break;  // what follows are other tables
        }
        if (at == line) {
            int tag = 0;
            const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), tag);
            return problem == std::errc() ? std::optional(tag) : std::nullopt;
        }
    }
    return std::nullopt;
}

std::string Areas_Text(const segmentation::Tag_Numbers& numbers, const segmentation::Label_Grid& grid,
                       const std::string& name, bool is_size_known) {
    double most = 0.0;
    for (int slice = numbers.first_slice; slice <= numbers.last_slice; ++slice) {
        most = std::max(most, segmentation::Slice_Area(numbers, slice, grid));
    }
    std::vector<std::vector<std::string>> cells = {{"Slice", is_size_known ? "mm\xC2\xB2" : "voxels", ""}};
    for (int slice = numbers.first_slice; slice <= numbers.last_slice; ++slice) {
        const double area = segmentation::Slice_Area(numbers, slice, grid);
        const double length = most > 0.0 ? area / most * CURVE : 0.0;
        cells.push_back({std::to_string(slice + 1), Number_Text(area, DIGITS),
                         '|' + std::string(static_cast<std::size_t>(length + 0.5), '#')});
    }
    // The signs begin below one another: their cells are as long as the longest.
    for (std::vector<std::string>& line : cells) {
        line[2].resize(static_cast<std::size_t>(CURVE) + 1, ' ');
    }
    return "Area of " + name + " in each slice\n\n" + Columns_Text(cells, 0);
}

std::string Agreement_Text(std::span<const Tag_Agreement> rows, bool is_size_known) {
    const std::string mm = is_size_known ? " mm" : " voxels";
    std::vector<std::vector<std::string>> cells = {{"TAG", "Name", "Voxels", "In the file", "Dice", "Jaccard",
                                                    is_size_known ? "Diff ml" : "Diff 1000 voxels", "HD" + mm,
                                                    "HD95" + mm, "Mean" + mm}};
    for (const Tag_Agreement& row : rows) {
        const segmentation::Label_Agreement& numbers = row.numbers;
        std::vector<std::string> line = {std::to_string(row.tag),
                                         row.name,
                                         std::to_string(numbers.one_nb),
                                         std::to_string(numbers.other_nb),
                                         Number_Text(numbers.dice, DIGITS),
                                         Number_Text(numbers.jaccard, DIGITS),
                                         Number_Text(numbers.volume_difference, DIGITS)};
        if (numbers.distances) {
            line.push_back(Number_Text(numbers.distances->hausdorff, DIGITS));
            line.push_back(Number_Text(numbers.distances->hausdorff_95, DIGITS));
            line.push_back(Number_Text(numbers.distances->mean, DIGITS));
        }
        cells.push_back(std::move(line));
    }
    return Columns_Text(cells, 2);
}

std::string Agreement_Csv(std::span<const Tag_Agreement> rows, bool is_size_known) {
    const std::string mm = is_size_known ? " (mm)" : " (voxels)";
    std::string text = "TAG,Name,Voxels here,Voxels in the file,Common voxels,Dice,Jaccard,Volume difference " +
                       std::string(is_size_known ? "(ml)" : "(1000 voxels)") + ",Hausdorff" + mm + ",Hausdorff 95 %" +
                       mm + ",Mean surface distance" + mm + '\n';
    for (const Tag_Agreement& row : rows) {
        const segmentation::Label_Agreement& numbers = row.numbers;
        text += std::to_string(row.tag) + ',' + Quoted(row.name) + ',' + std::to_string(numbers.one_nb) + ',' +
                std::to_string(numbers.other_nb) + ',' + std::to_string(numbers.common_nb) + ',' +
                Exact_Text(numbers.dice) + ',' + Exact_Text(numbers.jaccard) + ',' +
                Exact_Text(numbers.volume_difference);
        text += numbers.distances
                    ? ',' + Exact_Text(numbers.distances->hausdorff) + ',' +
                          Exact_Text(numbers.distances->hausdorff_95) + ',' + Exact_Text(numbers.distances->mean)
                    : ",,,";
        text += '\n';
    }
    return text;
}

}  // namespace workbench
