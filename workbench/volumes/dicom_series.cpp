#include "workbench/volumes/dicom_series.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <tuple>
#include <utility>

#include "workbench/volumes/dicom_frame_order.h"
#include "workbench/volumes/message_text.h"

namespace {

/** A number as a whole number of small steps, so that numbers that are the same but for rounding compare equal. */
std::int64_t Rounded(double number) {
    constexpr double step = 1e-3;
    constexpr double most = 1e15;
    return std::llround(std::clamp(number / step, -most, most));
}

/** What slices of one volume have in common. */
using Key = std::tuple<std::string, std::int32_t, std::string, std::int32_t, std::vector<std::int64_t>>;

Key Key_Of(const Series_Part& part) {
    const Dicom_Image& image = part.image;
    const Volume& volume = image.volume;
    std::vector<std::int64_t> geometry = {volume.nx,
                                          volume.ny,
                                          volume.color ? 1 : 0,
                                          image.is_scout ? 1 : 0,
                                          Rounded(volume.spacing[0]),
                                          Rounded(volume.spacing[1])};
    if (image.place.is_known) {
        for (const auto& side : {image.place.along_row, image.place.along_column}) {
            for (const double number : side) {
                geometry.push_back(Rounded(number));
            }
        }
    }
    // A file with several frames, or of no series, stands alone.
    const bool is_alone = volume.nz > 1 || volume.nt > 1 || image.series.empty();
    return {image.study, image.series_number, image.series, is_alone ? part.file : -1, std::move(geometry)};
}

std::string Modality_Text(std::uint16_t modality) {
    std::string text;
    for (const int bits : {8, 0}) {
        const auto letter = static_cast<char>(modality >> bits & 0xFF);
        text += letter > ' ' && letter < 0x7F ? letter : '?';
    }
    return text;
}

std::string Title_Of(const Dicom_Image& image) {
    std::string title = Modality_Text(image.modality);
    if (image.series_number != 0) {
        title += ' ' + std::to_string(image.series_number);
    }
    if (!image.series_text.empty()) {
        title += ": " + image.series_text;
    }
    return title;
}

/** What follows a title: empty when there is one time only. */
std::string Time_Text(std::int32_t time, std::int32_t times) {
    return times > 1 ? ", time " + std::to_string(time + 1) + " of " + std::to_string(times) : std::string();
}

/** Brings a volume's levels to another scale. */
void Scale_Change(Volume& volume, double slope, double intercept) {
    if (volume.color || (volume.slope == slope && volume.intercept == intercept)) {
        return;
    }
    constexpr double most = LEVEL_LARGEST;
    for (std::int32_t& level : volume.levels) {
        const double grey = level * volume.slope + volume.intercept;
        level = static_cast<std::int32_t>(std::lround(std::clamp((grey - intercept) / slope, -most, most)));
    }
    volume.slope = slope;
    volume.intercept = intercept;
    volume.max_error += std::abs(slope) / 2;
}

void Range_Find(Volume& volume) {
    if (!volume.color && !volume.levels.empty()) {
        const auto [lowest, highest] = std::ranges::minmax(volume.levels);
        volume.level_min = lowest;
        volume.level_max = highest;
    }
}

/** One group of parts while it becomes volumes. */
class Group {
  public:
    Group(std::vector<Series_Part*> group_parts, Image_Folder& filled)
        : parts(std::move(group_parts)), folder(filled) {}
    void Assemble() {
        if (parts.size() == 1) {
            return Alone();
        }
        std::ranges::stable_sort(parts, {}, [](const Series_Part* part) { return part->image.instance_number; });
        Order_Find();
        for (std::int32_t time = 0; time < nt; ++time) {
            Stack(time);
        }
    }

  private:
    void Alone();
    void Order_Find();
    void Stack(std::int32_t time);
    /** Sets distance and direction of the slices. */
    void Geometry(const std::vector<Series_Part*>& stack, Folder_Volume& made);
    Folder_Volume Begin(const Series_Part& part) const;

    std::vector<Series_Part*> parts;
    Image_Folder& folder;
    std::vector<std::int32_t> order;
    std::int32_t nz = 1;
    std::int32_t nt = 1;
};

Folder_Volume Group::Begin(const Series_Part& part) const {
    Folder_Volume made;
    made.title = Title_Of(part.image);
    made.modality = part.image.modality;
    made.is_scout = part.image.is_scout;
    made.descriptor = part.image.is_scout ? "Scout" : (part.image.volume.color ? "Colour image" : "Grey image");
    made.descriptor += ", " + part.image.volume.scalar_type;
    made.path = folder.files[static_cast<std::size_t>(part.file)];
    return made;
}

void Group::Alone() {
    Series_Part& part = *parts.front();
    Folder_Volume made = Begin(part);
    made.volume = std::move(part.image.volume);
    made.file_of_slice.assign(static_cast<std::size_t>(made.volume.nz), part.file);
    Times_Split(std::move(made), folder);
}

void Group::Order_Find() {
    const bool is_placed =
        std::ranges::all_of(parts, [](const Series_Part* part) { return part->image.place.is_known; });
    if (is_placed) {
        std::vector<double> depth;
        std::vector<double> later;
        for (const Series_Part* part : parts) {
            const Dicom_Image& image = part->image;
            depth.push_back(Slice_Depth(image.place));
            // The parts are in the order of their numbers already, which decides where these are the same.
            later.push_back(image.temporal_position != 0 ? image.temporal_position
                                                         : image.acquisition_number + image.trigger_time);
        }
        order = Slices_In_Order(depth, later, nz, nt);
        if (!order.empty()) {
            return;
        }
        const std::filesystem::path& path = folder.files[static_cast<std::size_t>(parts.front()->file)];
        folder.problems.push_back(
            {path, "belongs to a series whose positions do not occur equally often; its slices are in order of number",
             true});
    }
    order.resize(parts.size());
    std::iota(order.begin(), order.end(), 0);
    nz = static_cast<std::int32_t>(parts.size());
    nt = 1;
}

void Group::Geometry(const std::vector<Series_Part*>& stack, Folder_Volume& made) {
    Volume& volume = made.volume;
    const Slice_Place& first = stack.front()->image.place;
    const Slice_Place& last = stack.back()->image.place;
    if (!first.is_known || stack.size() < 2) {
        return;
    }
    const double span = Slice_Depth(last) - Slice_Depth(first);
    const auto gaps = static_cast<double>(stack.size() - 1);
    constexpr double span_least = 0.01;  // mm
    if (!(span >= span_least)) {
        return;
    }
    std::array<double, 3> step{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        step[axis] = (last.corner[axis] - first.corner[axis]) / gaps;
    }
    volume.spacing[2] = span / gaps;
    volume.affine = Affine_Of(first, volume.spacing, step);
    constexpr double uneven = 0.05;  // share of the distance
    for (std::size_t at = 1; at < stack.size(); ++at) {
        const double gap = Slice_Depth(stack[at]->image.place) - Slice_Depth(stack[at - 1]->image.place);
        if (std::abs(gap - volume.spacing[2]) > uneven * volume.spacing[2]) {
            folder.problems.push_back({folder.files[static_cast<std::size_t>(stack[at]->file)],
                                       "lies at an uneven distance from the slice before it (" + made.title + ")",
                                       true});
            return;
        }
    }
}

void Group::Stack(std::int32_t time) {
    std::vector<Series_Part*> stack;
    for (std::int32_t z = 0; z < nz; ++z) {
        const auto place = static_cast<std::size_t>(time) * static_cast<std::size_t>(nz) + static_cast<std::size_t>(z);
        stack.push_back(parts[static_cast<std::size_t>(order[place])]);
    }
    Folder_Volume made = Begin(*stack.front());
    made.title += Time_Text(time, nt);
    const auto finest =
        std::ranges::min_element(stack, {}, [](const Series_Part* part) { return std::abs(part->image.volume.slope); });
    const double slope = (*finest)->image.volume.slope;
    const double intercept = (*finest)->image.volume.intercept;
    Volume& volume = made.volume;
    for (Series_Part* part : stack) {
        Volume& slice = part->image.volume;
        Scale_Change(slice, slope, intercept);
        std::vector<std::int32_t> levels = std::exchange(slice.levels, {});
        if (part == stack.front()) {
            volume = slice;
            volume.levels.reserve(levels.size() * stack.size());
        }
        volume.levels.insert(volume.levels.end(), levels.begin(), levels.end());
        volume.max_error = std::max(volume.max_error, slice.max_error);
        volume.level_min = std::min(volume.level_min, slice.level_min);
        volume.level_max = std::max(volume.level_max, slice.level_max);
        made.file_of_slice.push_back(part->file);
    }
    volume.nz = nz;
    Range_Find(volume);
    Geometry(stack, made);
    folder.volumes.push_back(std::move(made));
}

/** Whether two images of one identifier are one. */
bool Is_Same(const Dicom_Image& left, const Dicom_Image& right) {
    return left.series == right.series && left.volume.nx == right.volume.nx && left.volume.nz == right.volume.nz &&
           left.volume.slope == right.volume.slope && left.volume.levels == right.volume.levels;
}

/** Copies would make two times of one. */
void Copies_Remove(std::vector<Series_Part>& parts, Image_Folder& folder) {
    std::map<std::string, Series_Part*> first_of;
    const auto name_of = [&](const Series_Part& part) { return folder.files[static_cast<std::size_t>(part.file)]; };
    std::vector<bool> is_copy(parts.size());
    for (std::size_t at = 0; at < parts.size(); ++at) {
        if (parts[at].image.instance.empty()) {
            continue;
        }
        const auto [entry, is_new] = first_of.emplace(parts[at].image.instance, &parts[at]);
        if (!is_new && Is_Same(entry->second->image, parts[at].image)) {
            is_copy[at] = true;
            folder.problems.push_back(
                {name_of(parts[at]), "holds the same image as " + File_Name_Text(name_of(*entry->second)), true});
        }
    }
    std::size_t at = 0;
    std::erase_if(parts, [&](const Series_Part&) { return is_copy[at++]; });
}

}  // namespace

void Series_Assemble(std::vector<Series_Part>&& parts, Image_Folder& folder) {
    Copies_Remove(parts, folder);
    std::map<Key, std::vector<Series_Part*>> groups;
    for (Series_Part& part : parts) {
        groups[Key_Of(part)].push_back(&part);
    }
    for (auto& [key, group] : groups) {
        Group(std::move(group), folder).Assemble();
    }
}

void Times_Split(Folder_Volume&& one, Image_Folder& folder) {
    Volume& volume = one.volume;
    if (volume.nt == 1 || volume.nz == 1) {
        if (volume.nt > 1) {
            one.is_cine = true;
            volume.nz = std::exchange(volume.nt, 1);
            one.file_of_slice.assign(static_cast<std::size_t>(volume.nz), one.file_of_slice.front());
        }
        folder.volumes.push_back(std::move(one));
        return;
    }
    const std::vector<std::int32_t> all = std::exchange(volume.levels, {});
    const std::int32_t times = std::exchange(volume.nt, 1);
    const auto size = static_cast<std::ptrdiff_t>(volume.Voxel_Nb_3D());
    for (std::int32_t time = 0; time < times; ++time) {
        Folder_Volume made = one;
        made.title += Time_Text(time, times);
        made.volume.levels.assign(all.begin() + time * size, all.begin() + (time + 1) * size);
        Range_Find(made.volume);
        folder.volumes.push_back(std::move(made));
    }
}
