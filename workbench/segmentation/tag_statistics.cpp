#include "workbench/segmentation/tag_statistics.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include "workbench/segmentation/cancelling.h"
#include "workbench/segmentation/label_counts.h"
#include "workbench/volumes/work_share.h"

namespace workbench::segmentation {

namespace {

constexpr std::size_t THREADS_MOST = 8;

/** The value at a share of the way from the first to the last of ordered greys. @param share 0 .. 1 */
double Grey_At(std::span<const Level_Count> counts, std::uint64_t voxel_nb, double share, const Grey_Scale& scale) {
    // Levels ascend; greys do so only with a positive slope.
    const double place = static_cast<double>(voxel_nb - 1) * (scale.slope > 0.0 ? share : 1.0 - share);
    const auto before = static_cast<std::uint64_t>(place);
    const double rest = place - static_cast<double>(before);
    const auto level = [&](std::uint64_t rank) {
        std::uint64_t passed = 0;
        for (const Level_Count& count : counts) {
            passed += count.nb;
            if (rank < passed) {
                return static_cast<double>(count.level);
            }
        }
        return static_cast<double>(counts.back().level);
    };
    const double low = level(before);
    const double between = rest > 0.0 ? low + rest * (level(before + 1) - low) : low;
    return between * scale.slope + scale.intercept;
}

constexpr std::int64_t NARROW_MOST = 131072;

/** The mean of the squares of distances of levels to their mean. */
double Level_Variance(std::span<const Level_Count> counts, std::int64_t sum, std::uint64_t voxel_nb) {
    // Distances are taken to the whole number nearest to the mean, so that nothing is lost before the last step: their
    // squares fit the sum as long as a volume has levels of some 2^17.
    const double mean = static_cast<double>(sum) / static_cast<double>(voxel_nb);
    const auto middle = std::llround(mean);
    const std::int64_t shifted_sum = sum - middle * static_cast<std::int64_t>(voxel_nb);
    const bool is_narrow = std::int64_t{counts.back().level} - counts.front().level < NARROW_MOST;
    std::uint64_t whole = 0;
    double real = 0.0;
    for (const Level_Count& count : counts) {
        const std::int64_t way = count.level - middle;
        if (is_narrow) {
            whole += static_cast<std::uint64_t>(way * way) * count.nb;
        } else {
            real += static_cast<double>(way) * static_cast<double>(way) * static_cast<double>(count.nb);
        }
    }
    const double squares = is_narrow ? static_cast<double>(whole) : real;
    const double offset = static_cast<double>(shifted_sum) / static_cast<double>(voxel_nb);
    return std::max(squares / static_cast<double>(voxel_nb) - offset * offset, 0.0);
}

Grey_Numbers Greys_Measure(std::span<const Level_Count> counts, const Statistics_Request& request) {
    Grey_Numbers numbers;
    std::int64_t sum = 0;
    for (const Level_Count& count : counts) {
        numbers.voxel_nb += count.nb;
        sum += count.level * static_cast<std::int64_t>(count.nb);
    }
    if (numbers.voxel_nb == 0) {
        return numbers;
    }
    const Grey_Scale& scale = request.scale;
    numbers.mean = static_cast<double>(sum) / static_cast<double>(numbers.voxel_nb) * scale.slope + scale.intercept;
    numbers.deviation = std::sqrt(Level_Variance(counts, sum, numbers.voxel_nb)) * std::abs(scale.slope);
    const auto at = [&](double share) { return Grey_At(counts, numbers.voxel_nb, share, scale); };
    numbers.least = at(0.0);
    numbers.greatest = at(1.0);
    numbers.median = at(0.5);
    for (const double percent : request.percentiles) {
        numbers.percentiles.push_back(at(std::clamp(percent / 100.0, 0.0, 1.0)));
    }
    return numbers;
}

/** All but the TAG and its voxels in the slices, which are known. @param levels its own are taken out */
void Row_Measure(const Edit_Input& input, const Statistics_Request& request, Level_Counts& levels, Tag_Numbers& row) {
    const auto tag = static_cast<std::uint8_t>(row.tag);
    row.first_slice = -1;
    for (int z = 0; z < input.grid.slices; ++z) {
        const std::uint64_t nb = row.slice_voxels[static_cast<std::size_t>(z)];
        row.voxel_nb += nb;
        row.first_slice = row.first_slice < 0 && nb != 0 ? z : row.first_slice;
        row.last_slice = nb != 0 ? z : row.last_slice;
    }
    row.milliliters = static_cast<double>(row.voxel_nb) * input.grid.Voxel_Mm3() / 1000.0;
    row.greys = Greys_Measure(levels.Take(tag), request);
    const Edit_Progress silent;
    row.region_nb = Regions_Of_Tag(input, tag, request.neighbours, Step_Progress(silent)).Regions().size();
}

std::string Number_Text(double number) {
    std::array<char, 40> text{};
    const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end.ptr};
}

std::string Quoted(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char letter : text) {
        quoted += letter;
        if (letter == '"') {
            quoted += '"';
        }
    }
    return quoted + '"';
}

std::string Name_Of(const Csv_Words& words, int tag) {
    const auto at = static_cast<std::size_t>(tag);
    return at < words.names.size() ? words.names[at] : std::string();
}

}  // namespace

std::optional<std::vector<Tag_Numbers>> Tag_Statistics(const Edit_Input& input, const Statistics_Request& request) {
    return Cancellable([&] {
        const Step_Progress progress(input.progress);
        const std::size_t threads = volumes::Work_Thread_Nb(THREADS_MOST);
        Label_Counts counts = Labels_Count(input, threads, progress.Part(0.0, 0.6));
        std::vector<Tag_Numbers> rows;
        for (std::size_t tag = 0; tag < counts.slice_voxels.size(); ++tag) {
            if (!counts.slice_voxels[tag].empty()) {
                Tag_Numbers& row = rows.emplace_back();
                row.tag = static_cast<int>(tag);
                row.slice_voxels = std::move(counts.slice_voxels[tag]);
            }
        }
        Pieces_Share(rows.size(), threads, progress.Part(0.6, 1.0),
                     [&](std::size_t at) { Row_Measure(input, request, counts.levels, rows[at]); });
        progress.Report(1, 1);
        return rows;
    });
}

double Slice_Area(const Tag_Numbers& numbers, int slice, const Label_Grid& grid) {
    return static_cast<double>(numbers.slice_voxels[static_cast<std::size_t>(slice)]) * grid.spacing[0] *
           grid.spacing[1];
}

std::string Statistics_Csv(std::span<const Tag_Numbers> rows, const Statistics_Request& request,
                           const Csv_Words& words) {
    const std::string unit = words.grey_unit.empty() ? "" : " (" + words.grey_unit + ')';
    std::string text = words.is_size_known ? "TAG,Name,Voxels,Volume (ml)" : "TAG,Name,Voxels,Volume (1000 voxels)";
    for (const char* const title : {"Mean", "SD", "Minimum", "Median", "Maximum"}) {
        text += ',' + Quoted(title + unit);
    }
    for (const double percent : request.percentiles) {
        text += ',' + Quoted("Percentile " + Number_Text(percent) + unit);
    }
    text += ",Regions,First slice,Last slice\n";
    for (const Tag_Numbers& row : rows) {
        text += std::to_string(row.tag) + ',' + Quoted(Name_Of(words, row.tag)) + ',' + std::to_string(row.voxel_nb) +
                ',' + Number_Text(row.milliliters);
        const Grey_Numbers& greys = row.greys;
        std::vector<double> numbers = {greys.mean, greys.deviation, greys.least, greys.median, greys.greatest};
        numbers.insert(numbers.end(), greys.percentiles.begin(), greys.percentiles.end());
        numbers.resize(5 + request.percentiles.size());
        for (const double number : numbers) {
            text += ',' + (greys.voxel_nb != 0 ? Number_Text(number) : std::string());
        }
        text += ',' + std::to_string(row.region_nb) + ',' + std::to_string(row.first_slice + 1) + ',' +
                std::to_string(row.last_slice + 1) + '\n';
    }
    return text;
}

std::string Areas_Csv(std::span<const Tag_Numbers> rows, const Label_Grid& grid, const Csv_Words& words) {
    std::string text = "Slice";
    for (const Tag_Numbers& row : rows) {
        const std::string name = Name_Of(words, row.tag);
        text += ',' + Quoted((name.empty() ? "TAG " + std::to_string(row.tag) : name) +
                             (words.is_size_known ? " (mm²)" : " (voxels)"));
    }
    text += '\n';
    for (int z = 0; z < grid.slices; ++z) {
        text += std::to_string(z + 1);
        for (const Tag_Numbers& row : rows) {
            text += ',' + Number_Text(Slice_Area(row, z, grid));
        }
        text += '\n';
    }
    return text;
}

}  // namespace workbench::segmentation
