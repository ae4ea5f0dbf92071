// Numbers about labels: the table of the TAGs, and how labels agree with those of a file.
#include <algorithm>
#include <array>
#include <chrono>
#include <new>
#include <set>
#include <utility>

#include "workbench/edits/segmentation_control.h"
#include "workbench/edits/segmentation_tables.h"
#include "workbench/model/label_difference.h"
#include "workbench/model/text_file.h"
#include "workbench/segmentation/label_comparison.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/nifti_reader.h"

namespace workbench {

using segmentation::Edit_Input;

namespace {

constexpr std::chrono::milliseconds QUICK{100};  // what may be counted after every change

segmentation::Statistics_Request Request_Of(const volumes::Volume& volume) {
    segmentation::Statistics_Request request;
    request.scale = {volume.slope, volume.intercept};
    return request;
}

segmentation::Csv_Words Words_Of(Segmentation_Host& host) {
    segmentation::Csv_Words words;
    for (int tag = 0; tag < TAG_MAX; ++tag) {
        words.names.push_back(tag == 0 ? "Background" : host.Tag_Name(tag));
    }
    words.grey_unit = host.Grey_Unit();
    words.is_size_known = host.Work().Image().is_size_known;
    return words;
}

}  // namespace

std::optional<std::vector<segmentation::Tag_Numbers>> Segmentation_Control::Numbers_Count() {
    std::optional<std::vector<segmentation::Tag_Numbers>> numbers;
    try {
        Edit_Input input = Input();
        const segmentation::Statistics_Request request = Request_Of(host.Work().Image());
        host.Run("Counting the voxels of the TAGs", [&](const segmentation::Edit_Progress& progress) {
            input.progress = progress;
            numbers = segmentation::Tag_Statistics(input, request);
        });
        if (!numbers) {
            host.Tell("Counting was given up");
        }
    } catch (const std::bad_alloc&) {
        host.Warn("There is not enough memory to count the voxels of the TAGs.");
        return std::nullopt;
    }
    return numbers;
}

std::string Segmentation_Control::Statistics_Title() const {
    return "Statistics of the TAGs: " + Slices_Text();
}

void Segmentation_Control::Statistics_Fill(std::span<const segmentation::Tag_Numbers> numbers) {
    table = Statistics_Text(numbers, Request_Of(host.Work().Image()), Words_Of(host));
    const int tag = host.Hand().tag;
    const auto own = std::ranges::find(numbers, tag, &segmentation::Tag_Numbers::tag);
    table += "\nA double click on a row, or Enter in it, shows the histogram of its TAG.\n";
    if (tag != 0 && own != numbers.end()) {
        table += '\n' + Areas_Text(*own, Input().grid, Name(), host.Work().Image().is_size_known);
    }
    host.Statistics_Show(Statistics_Title(), table);
}

void Segmentation_Control::Statistics_Show() {
    if (Has_Volume()) {
        host.Stroke_End();
        if (const auto numbers = Numbers_Count()) {
            Statistics_Fill(*numbers);
        }
    }
}

void Segmentation_Control::Statistics_Row(int line) {
    const std::optional<int> tag = Statistics_Row_Tag(table, line);
    if (tag && host.Work().Has_Volume()) {
        host.Stroke_End();
        host.Histogram_Of(*tag, Slices());
    }
}

std::span<const std::uint8_t> Segmentation_Control::Compared() const {
    const bool is_of_volume = host.Work().Has_Volume() && compared.serial == host.Work().Serial();
    return is_difference && is_of_volume ? std::span<const std::uint8_t>(compared.tags)
                                         : std::span<const std::uint8_t>();
}

void Segmentation_Control::Differences_Show(bool on) {
    if (on && (compared.tags.empty() || !host.Work().Has_Volume())) {
        return host.Tell("Compare with a label file first: the differences to its labels are shown then");
    }
    is_difference = on;
    host.Preview_Changed();
    host.Tell(on ? "The differences to the file are shown in place of the TAG colours" : "The TAG colours are shown");
}

void Segmentation_Control::Labels_Follow() {
    if (!host.Is_Statistics_Shown() || !host.Work().Has_Volume()) {
        return;
    }
    if (is_quick) {
        const auto end = std::chrono::steady_clock::now() + QUICK;
        Edit_Input input = Input();
        input.progress = [end](double) { return std::chrono::steady_clock::now() < end; };
        try {
            if (const auto numbers = segmentation::Tag_Statistics(input, Request_Of(host.Work().Image()))) {
                return Statistics_Fill(*numbers);
            }
            is_quick = false;
        } catch (const std::bad_alloc&) {
            is_quick = false;
        }
    }
    table.clear();
    host.Statistics_Show(Statistics_Title(), "The labels have changed. Segment, Statistics (Ctrl+T) counts again.\n");
}

void Segmentation_Control::Csv_Save(const std::string& title, const std::string& name, const std::string& text) {
    const std::optional<std::filesystem::path> file = host.Csv_File_Ask(title, name);
    if (!file) {
        return;
    }
    if (const std::string error = Text_File_Write(*file, text); !error.empty()) {
        return host.Warn("The table was not saved: " + volumes::File_Name_Text(*file) + " " + error + ".");
    }
    host.Tell("The table was saved to " + volumes::File_Name_Text(*file));
}

void Segmentation_Control::Statistics_Save() {
    if (!Has_Volume()) {
        return;
    }
    host.Stroke_End();
    if (const auto numbers = Numbers_Count()) {
        Csv_Save("Save the statistics of the TAGs", "statistics.csv",
                 segmentation::Statistics_Csv(*numbers, Request_Of(host.Work().Image()), Words_Of(host)));
    }
}

bool Segmentation_Control::Label_File_Read(const std::string& title, std::vector<std::uint8_t>& laid) {
    const std::optional<std::filesystem::path> file = host.Label_File_Ask(title);
    if (!file) {
        return false;
    }
    volumes::Load_Result loaded;
    std::string error;
    try {
        host.Run("Reading " + volumes::File_Name_Text(*file), [&](const segmentation::Edit_Progress& progress) {
            loaded = volumes::Volume_Load(*file, progress, volumes::Limits_Beside(host.Work().Image()));
            if (loaded.volume) {
                error = host.Work().Labels_Lay({*loaded.volume, *file, nullptr, {}}, Grid_Choice::Refuse, laid);
            }
        });
    } catch (const std::bad_alloc&) {
        error = "There is not enough memory for the labels of " + volumes::File_Name_Text(*file) + ".";
    }
    if (loaded.cancelled) {
        host.Tell("Reading was given up");
        return false;
    }
    error = loaded.volume ? error : loaded.error;
    if (!error.empty()) {
        host.Warn(error);
    }
    return error.empty();
}

void Segmentation_Control::Labels_Compare_Ask() {
    std::vector<std::uint8_t> laid;
    if (!Has_Volume()) {
        return;
    }
    host.Stroke_End();
    if (!Label_File_Read("Compare with a label file", laid)) {
        return;
    }
    std::set<std::uint8_t> tags(laid.begin(), laid.end());
    const std::span<const std::uint8_t> own = std::as_const(host.Work()).Labels().All();
    tags.insert(own.begin(), own.end());
    tags.erase(0);
    std::vector<Tag_Agreement> rows;
    bool is_given_up = false;
    std::array<std::uint64_t, DIFFERENCE_NB> differences{};
    try {
        Edit_Input input = Input();
        std::vector<std::string> names;
        names.reserve(tags.size());
        for (const std::uint8_t tag : tags) {
            names.push_back(host.Tag_Name(tag));
        }
        host.Run("Comparing TAGs", [&](const segmentation::Edit_Progress& progress) {
            const segmentation::Slice_Range slices = input.Slices();
            const std::size_t first = static_cast<std::size_t>(slices.first) * input.grid.Slice_Size();
            const std::size_t size = static_cast<std::size_t>(slices.last - slices.first + 1) * input.grid.Slice_Size();
            differences = Differences_Count(own.subspan(first, size), std::span(laid).subspan(first, size));
            for (const std::uint8_t tag : tags) {
                const auto done = static_cast<double>(rows.size());
                input.progress = [&](double share) {
                    return !progress || progress((done + share) / static_cast<double>(tags.size()));
                };
                const auto numbers = segmentation::Labels_Compare(input, tag, laid, tag);
                if (!numbers) {
                    is_given_up = true;
                    return;
                }
                rows.push_back({tag, names[rows.size()], *numbers});
            }
        });
    } catch (const std::bad_alloc&) {
        return host.Warn("There is not enough memory to compare the labels.");
    }
    if (is_given_up) {
        return host.Tell("Comparing was given up");
    }
    compared = {host.Work().Serial(), std::move(laid)};
    is_difference = true;
    host.Preview_Changed();
    host.Tell("Differences in " + Slices_Text() + ": " + Differences_Text(differences));
    const bool is_size_known = host.Work().Image().is_size_known;
    if (host.Table_Show("Agreement with the file: " + Slices_Text(), Agreement_Text(rows, is_size_known))) {
        Csv_Save("Save how the labels agree", "agreement.csv", Agreement_Csv(rows, is_size_known));
    }
}

}  // namespace workbench
