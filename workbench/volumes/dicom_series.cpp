#include "workbench/volumes/dicom_series.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

#include "workbench/volumes/level_range.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/slice_stack.h"
#include "workbench/volumes/slices_join.h"

namespace volumes {

namespace {

constexpr std::string_view POSITION_TEXT = "position of every slice";

/** What slices of one volume have in common; directions and pixel sizes are compared later. */
using Key = std::tuple<std::string, std::int32_t, std::string, std::int32_t, std::vector<std::int32_t>>;

Key Key_Of(const Series_Part& part, const std::string& series) {
    const Dicom_Image& image = part.image;
    const Volume& volume = image.volume;
    // A file with several frames, or of no series, stands alone.
    const bool is_alone = image.frame_nb > 1 || series.empty();
    std::vector<std::int32_t> kind = {volume.nx,
                                      volume.ny,
                                      volume.color ? 1 : 0,
                                      volume.is_inverted ? 1 : 0,
                                      image.is_scout ? 1 : 0,
                                      image.place.is_known ? 1 : 0,
                                      image.place.has_corner ? 1 : 0,
                                      image.part};
    return {image.origin.study, image.origin.series_number, series, is_alone ? part.file : -1, std::move(kind)};
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
    std::string title = Modality_Text(image.origin.modality);
    if (image.origin.series_number != 0) {
        title += ' ' + std::to_string(image.origin.series_number);
    }
    if (!image.origin.series_text.empty()) {
        title += ": " + image.origin.series_text;
    }
    return title;
}

/** What follows a title: empty when there is one time only. */
std::string Time_Text(std::int32_t time, std::int32_t times) {
    return times > 1 ? ", time " + std::to_string(time + 1) + " of " + std::to_string(times) : std::string();
}

/** What follows the title of one of several volumes of a series. */
std::string Piece_Text(std::int32_t piece, std::int32_t pieces) {
    return pieces > 1 ? ", part " + std::to_string(piece + 1) + " of " + std::to_string(pieces) : std::string();
}

Stack_Slice Slice_Of(const Series_Part& part) {
    const Volume& volume = part.image.volume;
    return {part.image.place, part.image.moment, {volume.spacing[0], volume.spacing[1]}, {volume.nx, volume.ny}};
}

/** Makes of a volume what the head of its file alone would have made. */
void Levels_Drop(Volume& volume) {
    const Volume nothing;
    volume.levels = {};
    volume.slope = nothing.slope;
    volume.intercept = nothing.intercept;
    volume.max_error = nothing.max_error;
    volume.nonfinite_nb = nothing.nonfinite_nb;
    volume.outlier_nb = nothing.outlier_nb;
    volume.outlier_lowest = nothing.outlier_lowest;
    volume.outlier_highest = nothing.outlier_highest;
    volume.level_min = nothing.level_min;
    volume.level_max = nothing.level_max;
}

/** One group of parts while it becomes volumes. */
class Group {
  public:
    Group(std::vector<Series_Part*> group_parts, Image_Folder& filled)
        : parts(std::move(group_parts)), folder(filled) {}
    void Assemble() {
        is_waiting = std::ranges::any_of(parts, &Series_Part::is_waiting);
        if (is_waiting) {
            std::ranges::for_each(parts, [](Series_Part* part) { Levels_Drop(part->image.volume); });
        }
        if (parts.size() == 1) {
            return Alone();
        }
        std::ranges::stable_sort(parts, {}, [](const Series_Part* part) { return part->image.origin.instance_number; });
        const Dicom_Image& first = parts.front()->image;
        if (first.place.is_known || (first.place.has_corner && Places_Assume())) {
            Placed();
        } else {
            Numbered();
        }
    }

  private:
    void Alone();
    /** Directions for slices that have positions only. */
    bool Places_Assume();
    /** Slices by position. */
    void Placed();
    /** Slices without positions, by number. */
    void Numbered();
    void Place_Set(const Slice_Stack& stack, const Slice_Place& first, Volume& volume) const;
    void Stack(const Slice_Stack& stack, std::int32_t time, const std::string& title_end);
    Folder_Volume Begin(const Series_Part& part) const;
    void Warn(std::int32_t part, const std::string& text) {
        const auto at = static_cast<std::size_t>(parts[static_cast<std::size_t>(part)]->file);
        folder.problems.push_back({folder.files[at], text, true});
    }
    std::vector<Stack_Slice> Slices() const {
        std::vector<Stack_Slice> slices;
        for (const Series_Part* part : parts) {
            slices.push_back(Slice_Of(*part));
        }
        return slices;
    }

    std::vector<Series_Part*> parts;
    Image_Folder& folder;
    bool is_assumed = false;  // directions were not in the files
    bool is_told = false;     // that they were not
    bool is_waiting = false;  // the pixels of a part are not read: those of all are read when they are wanted
};

Folder_Volume Group::Begin(const Series_Part& part) const {
    Folder_Volume made;
    made.title = Title_Of(part.image);
    made.modality = part.image.origin.modality;
    made.is_scout = part.image.is_scout;
    made.descriptor = part.image.is_scout ? "Scout" : (part.image.volume.color ? "Colour image" : "Grey image");
    made.descriptor += ", " + part.image.volume.scalar_type;
    made.path = folder.files[static_cast<std::size_t>(part.file)];
    return made;
}

void Group::Alone() {
    Series_Part& part = *parts.front();
    Folder_Volume made = Begin(part);
    made.title += Piece_Text(part.image.part, part.image.part_nb);
    made.volume = std::move(part.image.volume);
    if (is_waiting) {
        made.waiting = {part.identity};
    }
    made.file_of_slice.assign(static_cast<std::size_t>(made.volume.nz), part.file);
    Times_Split(std::move(made), folder);
}

bool Group::Places_Assume() {
    std::vector<Slice_Place> places;
    for (const Series_Part* part : parts) {
        places.push_back(part->image.place);
    }
    is_assumed = Directions_Assume(places);
    is_told = true;
    for (std::size_t at = 0; is_assumed && at < parts.size(); ++at) {
        parts[at]->image.place = places[at];
    }
    Warn(0, std::string("belongs to a series that says where slices lie, but not how they are turned: ") +
                (is_assumed ? "they are in order of position, " : "they are in order of number, ") +
                "and the sides of the patient are not known");
    return is_assumed;
}

void Group::Placed() {
    const Stack_Plan plan = Slices_Stack(Slices());
    for (const Stack_Warning& warning : plan.warnings) {
        Warn(warning.slice, Stack_Warning_Text(warning, false));
    }
    // Directions are told apart by what they show; only pieces of one direction need a number.
    const bool is_several = std::ranges::any_of(
        plan.warnings, [](const Stack_Warning& warning) { return warning.kind == Stack_Warning::Kind::Unequal; });
    const auto pieces = is_several ? static_cast<std::int32_t>(plan.stacks.size()) : 1;
    for (const Slice_Stack& stack : plan.stacks) {
        const auto piece = static_cast<std::int32_t>(&stack - plan.stacks.data());
        for (std::int32_t time = 0; time < stack.nt; ++time) {
            Stack(stack, time, Piece_Text(piece, pieces) + Time_Text(time, stack.nt));
        }
    }
}

void Group::Numbered() {
    if (!is_told) {
        Warn(0, "belongs to a series that does not say where its slices lie: they are in order of number");
    }
    for (const std::vector<std::int32_t>& alike : Slices_Alike(Slices())) {
        Slice_Stack stack;
        stack.kind = Slice_Stack::Kind::Scattered;
        stack.nz = static_cast<std::int32_t>(alike.size());
        stack.order = alike;
        Stack(stack, 0, {});
    }
}

void Group::Stack(const Slice_Stack& stack, std::int32_t time, const std::string& title_end) {
    const auto nz = static_cast<std::size_t>(stack.nz);
    const std::span order = std::span(stack.order).subspan(static_cast<std::size_t>(time) * nz, nz);
    const Series_Part& first = *parts[static_cast<std::size_t>(order.front())];
    Folder_Volume made = Begin(first);
    made.title += title_end;
    std::vector<Volume*> slices;
    for (const std::int32_t at : order) {
        Series_Part& part = *parts[static_cast<std::size_t>(at)];
        slices.push_back(&part.image.volume);
        made.file_of_slice.push_back(part.file);
        if (is_waiting) {
            made.waiting.push_back(part.identity);
        }
    }
    if (is_waiting) {
        made.volume = *slices.front();
        made.volume.nz = stack.nz;
    } else {
        Joined_Slices joined = Slices_Join(slices);
        made.volume = std::move(joined.volume);
        if (!joined.lost.empty()) {
            Warn(order.front(), joined.lost + " (" + made.title + ")");
        }
    }
    made.volume.windows = slices[nz / 2]->windows;
    Place_Set(stack, first.image.place, made.volume);
    folder.volumes.push_back(std::move(made));
}

void Group::Place_Set(const Slice_Stack& stack, const Slice_Place& first, Volume& volume) const {
    const bool is_scattered = stack.kind == Slice_Stack::Kind::Scattered;
    volume.place_source = std::string(POSITION_TEXT) + volume.place_source.substr(std::min(
                                                           volume.place_source.find(';'), volume.place_source.size()));
    if (!is_scattered && stack.nz > 1) {
        volume.spacing[2] = stack.distance;
        volume.affine = Affine_Of(first, volume.spacing, stack.step);
    }
    if (is_scattered) {
        Slice_Place none;
        none.along_row = {1, 0, 0};
        none.along_column = {0, 1, 0};
        volume.affine = Affine_Of(none, volume.spacing, {0, 0, volume.spacing[2]});
        volume.place_source.replace(0, POSITION_TEXT.size(), "no position");
    }
    if (is_scattered || is_assumed) {
        volume.affine_source = Affine_Source::Spacing;
    }
}

/** Whether two images of one identifier are one. */
bool Is_Same(const Series_Part& left_part, const Series_Part& right_part) {
    const Dicom_Image& left = left_part.image;
    const Dicom_Image& right = right_part.image;
    return left_part.file != right_part.file && left.place.corner == right.place.corner &&
           left.moment == right.moment && left.part == right.part && left.origin.series == right.origin.series &&
           left.volume.nx == right.volume.nx && left.volume.nz == right.volume.nz &&
           left.volume.slope == right.volume.slope && left.volume.intercept == right.volume.intercept &&
           left.volume.levels == right.volume.levels;
}

/** Copies would make two times of one. */
void Copies_Remove(std::vector<Series_Part>& parts, Image_Folder& folder) {
    std::map<std::string, std::vector<std::size_t>> kept_of;
    const auto name_of = [&](std::size_t at) { return folder.files[static_cast<std::size_t>(parts[at].file)]; };
    std::vector<bool> is_copy(parts.size());
    for (std::size_t at = 0; at < parts.size(); ++at) {
        if (parts[at].image.instance.empty()) {
            continue;
        }
        std::vector<std::size_t>& kept = kept_of[parts[at].image.instance];
        const auto same = std::ranges::find_if(kept, [&](std::size_t one) { return Is_Same(parts[one], parts[at]); });
        is_copy[at] = same != kept.end();
        if (!is_copy[at]) {
            kept.push_back(at);
        } else if (parts[at].image.part == 0) {
            folder.problems.push_back({name_of(at), "holds the same image as " + File_Name_Text(name_of(*same)), true});
        }
    }
    std::size_t at = 0;
    std::erase_if(parts, [&](const Series_Part&) { return is_copy[at++]; });
}

/** The series of a part; where the file names none, what its slices share stands for it. */
std::string Series_Of(const Series_Part& part, const Image_Folder& folder) {
    const Dicom_Image& image = part.image;
    if (!image.origin.series.empty() || (!image.place.has_corner && image.origin.instance_number == 0)) {
        return image.origin.series;
    }
    const std::size_t below =
        std::filesystem::hash_value(folder.files[static_cast<std::size_t>(part.file)].parent_path());
    return "? " + Modality_Text(image.origin.modality) + ' ' + image.origin.series_text + ' ' + std::to_string(below);
}

}  // namespace

Slice_Identity Identity_Of(const Dicom_Image& image) {
    return {image.instance, image.place.is_known, image.place.corner, image.place.along_row, image.place.along_column};
}

void Series_Assemble(std::vector<Series_Part>&& parts, Image_Folder& folder) {
    Copies_Remove(parts, folder);
    for (Series_Part& part : parts) {
        part.identity = Identity_Of(part.image);  // before directions are assumed
    }
    std::map<Key, std::vector<Series_Part*>> groups;
    for (Series_Part& part : parts) {
        groups[Key_Of(part, Series_Of(part, folder))].push_back(&part);
    }
    for (auto& [key, group] : groups) {
        if (group.size() > 1 && group.front()->image.origin.series.empty()) {
            folder.problems.push_back({folder.files[static_cast<std::size_t>(group.front()->file)],
                                       "names no series: it was put together with " + Count_Text(group.size() - 1) +
                                           " of the same folder, study, series number, description and size",
                                       true});
        }
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
    one.tally.reset();  // it is that of all times together
    const Voxel_Levels all = std::exchange(volume.levels, {});
    const std::int32_t times = std::exchange(volume.nt, 1);
    const std::size_t size = volume.Voxel_Nb_3D();
    for (std::int32_t time = 0; time < times; ++time) {
        Folder_Volume made = one;
        made.title += Time_Text(time, times);
        made.volume.levels.Append(all.View().subspan(static_cast<std::size_t>(time) * size, size));
        Level_Range_Find(made.volume);
        folder.volumes.push_back(std::move(made));
    }
}

}  // namespace volumes
