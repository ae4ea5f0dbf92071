// Operations on labels: what is asked, what is run, what is told.
#include "workbench/edits/segmentation_control.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <new>
#include <utility>

#include "workbench/model/number_text.h"
#include "workbench/segmentation/region_edits.h"
#include "workbench/segmentation/tag_sets.h"
#include "workbench/segmentation/tag_shape.h"

namespace workbench {

using segmentation::Edit_Input;
using segmentation::Label_Edit;
using segmentation::Neighbours;

namespace {

std::uint8_t Byte_Of(int tag) {
    return static_cast<std::uint8_t>(tag);
}

/** The levels that TAGs claim in a volume. */
std::vector<segmentation::Tag_Levels_Claim> Levels_Of(const std::vector<Tag_Claim>& claims,
                                                      const volumes::Volume& volume) {
    std::vector<segmentation::Tag_Levels_Claim> levels;
    levels.reserve(claims.size());
    for (const Tag_Claim& claim : claims) {
        levels.push_back({Byte_Of(claim.tag), segmentation::Level_Band_Of(claim.band, volume)});
    }
    return levels;
}

/** "12 to 40", one number for one slice; slices count from 1. @return no value: not two numbers */
std::optional<segmentation::Slice_Range> Range_Of(const std::string& text) {
    std::vector<int> numbers;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] < '0' || text[at] > '9') {
            ++at;
            continue;
        }
        int number = 0;
        for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
            number = std::min(number, 1'000'000) * 10 + (text[at] - '0');
        }
        numbers.push_back(number - 1);
    }
    if (numbers.empty() || numbers.size() > 2) {
        return std::nullopt;
    }
    return segmentation::Slice_Range{std::min(numbers.front(), numbers.back()),
                                     std::max(numbers.front(), numbers.back())};
}

/** Voxels of a TAG's neighbours in space hang together over corners, too, as people see them. */
constexpr Neighbours TOGETHER = Neighbours::Corners;

std::string Volume_Unit(Segmentation_Host& host) {
    return host.Work().Image().is_size_known ? "mm\xC2\xB3" : "voxels";
}

}  // namespace

bool Segmentation_Control::Has_Volume() {
    if (!host.Work().Has_Volume()) {
        host.Tell("There is no image: open one first");
        return false;
    }
    return true;
}

bool Segmentation_Control::Has_Tag() {
    if (!Has_Volume()) {
        return false;
    }
    if (host.Hand().tag == 0) {
        host.Tell("The background is no TAG that could be corrected: pick another one");
        return false;
    }
    return true;
}

segmentation::Slice_Range Segmentation_Control::Slices() const {
    const int last = host.Work().Slice_Nb() - 1;
    switch (scope) {
        case Edit_Scope::Shown_Slice:
            return {host.Hand().slice, host.Hand().slice};
        case Edit_Scope::Range:
            return {std::clamp(range.first, 0, last), std::clamp(range.last, 0, last)};
        case Edit_Scope::Volume:
            break;
    }
    return {0, last};
}

std::string Segmentation_Control::Slices_Text() const {
    const segmentation::Slice_Range slices = Slices();
    const int all = host.Work().Slice_Nb();
    if (slices.first == slices.last) {
        return "slice " + std::to_string(slices.first + 1);
    }
    return slices.last - slices.first + 1 == all
               ? "all " + std::to_string(all) + " slices"
               : "slices " + std::to_string(slices.first + 1) + " to " + std::to_string(slices.last + 1);
}

Edit_Input Segmentation_Control::Input() const {
    const Session& work = host.Work();
    const volumes::Volume& volume = work.Image();
    Edit_Input input;
    input.grid = {volume.nx, volume.ny, volume.nz, volume.spacing};
    input.tags = work.Labels().All();
    if (!volume.color) {
        input.levels = volume.levels.View().first(input.grid.Voxel_Nb());
    }
    input.slices = Slices();
    input.locked = host.Hand().locked;
    input.locked[0] = 0;  // as for painting: there would be nothing to work on
    input.only_inside = only_inside;
    return input;
}

std::string Segmentation_Control::Limits_Text() const {
    std::string text;
    if (only_inside) {
        text += "; only voxels of " + host.Tag_Name(*only_inside) + " may change";
    }
    const Segmentation_Hand hand = host.Hand();
    if (hand.tag != 0 && hand.locked[static_cast<std::size_t>(hand.tag)] != 0) {
        text += "; " + host.Tag_Name(hand.tag) + " is locked";
    }
    return text;
}

void Segmentation_Control::Operate(const std::string& title, const Operation& operation) {
    Session& work = host.Work();
    host.Stroke_End();
    try {
        Edit_Input input = Input();
        std::optional<Label_Edit> edit;
        host.Run(title, [&](const segmentation::Edit_Progress& progress) {
            input.progress = progress;
            edit = operation(input);
        });
        if (!edit) {
            return host.Tell(title + " was given up: nothing has changed");
        }
        if (edit->voxel_nb == 0) {
            return host.Tell(title + ": no voxel changes in " + Slices_Text() + Limits_Text());
        }
        const std::uint64_t voxel_nb = edit->voxel_nb;
        const std::size_t slice_nb = edit->slices.size();
        Voxel_Change change{std::move(edit->slices)};
        const int seen = Slice_Nearest(change, host.Hand().slice);
        work.Voxels_Change(title, std::move(change));
        host.Labels_Changed(seen);
        host.Tell(
            title + ": " + std::to_string(voxel_nb) + (voxel_nb == 1 ? " voxel" : " voxels") +
            (slice_nb == 1 ? " in slice " + std::to_string(seen + 1) : " in " + std::to_string(slice_nb) + " slices"));
    } catch (const std::bad_alloc&) {
        host.Warn(title + ": there is not enough memory. Nothing has changed.");
    }
}

std::string Segmentation_Control::Length_Unit() const {
    return host.Work().Image().is_size_known ? "mm" : "voxels";
}

void Segmentation_Control::Bands_Apply(bool of_all_tags) {
    if (!Has_Volume()) {
        return;
    }
    const volumes::Volume& volume = host.Work().Image();
    if (volume.color) {
        return host.Tell("Images in colour have no bands");
    }
    std::vector<Tag_Claim> claims = host.Claims();
    const int tag = host.Hand().tag;
    if (!of_all_tags) {
        std::erase_if(claims, [&](const Tag_Claim& claim) { return claim.tag != tag; });
    }
    if (claims.empty()) {
        return host.Tell(of_all_tags ? "No TAG has a band: set thresholds, or make bands of peaks (Analyze)"
                                     : Name() + " has no band: set its thresholds");
    }
    const std::vector<segmentation::Tag_Levels_Claim> levels = Levels_Of(claims, volume);
    Operate(of_all_tags ? "Apply all bands" : "Apply the band of " + Name(),
            [&](const Edit_Input& input) { return segmentation::Bands_Apply(input, levels); });
}

void Segmentation_Control::Bands_Preview_Set(bool on) {
    is_preview = on;
    host.Preview_Changed();
    if (on && host.Claims().empty()) {
        host.Tell("No TAG has a band yet: set thresholds, or make bands of peaks (Analyze)");
    }
}

std::optional<segmentation::Voxel_Place> Segmentation_Control::Cursor() {
    const std::optional<segmentation::Voxel_Place> cursor = host.Hand().cursor;
    if (!cursor) {
        host.Tell("Point at a voxel with the mouse and press the key, or show the keyboard's cursor (I)");
        return std::nullopt;
    }
    const segmentation::Slice_Range slices = Slices();
    if (cursor->z < slices.first || cursor->z > slices.last) {
        host.Tell("The shown slice is not among those that are worked on: " + Slices_Text());
        return std::nullopt;
    }
    return cursor;
}

bool Segmentation_Control::Number_Ask(const std::string& title, const std::string& question, double& last) {
    const std::optional<std::string> answer = host.Text_Ask(title, question, Number_Text(last));
    if (!answer) {
        return false;
    }
    std::string text = *answer;
    std::ranges::replace(text, ',', '.');
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != 0 || !std::isfinite(value) || value < 0.0) {
        host.Warn("\"" + *answer + "\" is no number of 0 or more.");
        return false;
    }
    last = value;
    return true;
}

void Segmentation_Control::Flood(bool by_tolerance) {
    if (!Has_Volume()) {
        return;
    }
    const volumes::Volume& volume = host.Work().Image();
    if (volume.color) {
        return host.Tell("Images in colour have no grey values to fill by");
    }
    const std::optional<segmentation::Voxel_Place> place = Cursor();
    if (!place) {
        return;
    }
    const Segmentation_Hand hand = host.Hand();
    segmentation::Flood flood{*place, Byte_Of(hand.tag), {}, Neighbours::Faces};
    if (by_tolerance) {
        if (!Number_Ask("Fill by tolerance", "Grey values at most so far from the voxel's own:", tolerance)) {
            return;
        }
        const std::int32_t level = volume.levels[volume.Index(place->x, place->y, place->z)];
        const double most = tolerance / std::abs(volume.slope) + 1e-6;  // a tolerance of whole levels reaches them
        flood.levels = segmentation::Level_Band_Around(level, static_cast<std::int32_t>(std::min(most, 2.0e9)));
    } else {
        const std::vector<Tag_Claim> claims = host.Claims();
        const auto own = std::ranges::find(claims, hand.tag, &Tag_Claim::tag);
        if (own == claims.end()) {
            return host.Tell(Name() + " has no band: set its thresholds, or fill by tolerance (Ctrl+K)");
        }
        flood.levels = segmentation::Level_Band_Of(own->band, volume);
    }
    Operate("Fill with " + Name(), [&](const Edit_Input& input) { return segmentation::Flood_Fill(input, flood); });
}

void Segmentation_Control::Region_Keep_Largest() {
    if (Has_Tag()) {
        Operate("Keep the largest region of " + Name(), [tag = Byte_Of(host.Hand().tag)](const Edit_Input& input) {
            return segmentation::Region_Keep_Largest(input, tag, TOGETHER);
        });
    }
}

void Segmentation_Control::Regions_Drop_Small() {
    if (Has_Tag() && Number_Ask("Drop small regions", "Least volume of a region that stays, " + Volume_Unit(host) + ":",
                                least_mm3)) {
        Operate("Drop regions of " + Name() + " below " + Number_Text(least_mm3) + " " + Volume_Unit(host),
                [this, tag = Byte_Of(host.Hand().tag)](const Edit_Input& input) {
                    return segmentation::Regions_Drop_Below(input, tag, least_mm3, TOGETHER);
                });
    }
}

void Segmentation_Control::Region_Keep_At_Cursor() {
    if (!Has_Tag()) {
        return;
    }
    const std::optional<segmentation::Voxel_Place> place = Cursor();
    const int tag = host.Hand().tag;
    if (!place) {
        return;
    }
    if (host.Work().Labels().At(place->x, place->y, place->z) != tag) {
        return host.Tell("There is no region of " + Name() + " where you point at");
    }
    Operate("Keep one region of " + Name(), [&](const Edit_Input& input) {
        return segmentation::Region_Keep_At(input, Byte_Of(tag), *place, TOGETHER);
    });
}

void Segmentation_Control::Region_Take_At_Cursor() {
    if (!Has_Volume()) {
        return;
    }
    if (const std::optional<segmentation::Voxel_Place> place = Cursor()) {
        const int tag = host.Hand().tag;
        const int from = host.Work().Labels().At(place->x, place->y, place->z);
        if (from == 0) {
            return host.Tell(
                "There is only background where you point at: fill it by its band (F) or tolerance (Ctrl+K)");
        }
        Operate("Region of " + host.Tag_Name(from) + " to " + Name(), [&](const Edit_Input& input) {
            return segmentation::Region_Give(input, *place, Byte_Of(tag), TOGETHER);
        });
    }
}

void Segmentation_Control::Holes_Fill(bool in_space) {
    if (Has_Tag()) {
        Operate("Fill holes of " + Name() + (in_space ? " in space" : " in slices"),
                [in_space, tag = Byte_Of(host.Hand().tag)](const Edit_Input& input) {
                    return segmentation::Holes_Fill(
                        input, tag, in_space ? segmentation::Hole_Kind::In_Space : segmentation::Hole_Kind::Per_Slice);
                });
    }
}

void Segmentation_Control::Tag_Smooth() {
    if (Has_Tag() && Number_Ask("Smooth", "Radius, " + Length_Unit() + ":", smooth_mm)) {
        Operate("Smooth " + Name() + " by " + Number_Text(smooth_mm) + " " + Length_Unit(),
                [this, tag = Byte_Of(host.Hand().tag)](const Edit_Input& input) {
                    return segmentation::Tag_Smooth(input, tag, smooth_mm);
                });
    }
}

void Segmentation_Control::Tag_Resize(int direction) {
    const bool grows = direction > 0;
    if (Has_Tag() && Number_Ask(grows ? "Grow" : "Shrink", "Distance, " + Length_Unit() + ":", resize_mm)) {
        Operate((grows ? "Grow " : "Shrink ") + Name() + " by " + Number_Text(resize_mm) + " " + Length_Unit(),
                [this, grows, tag = Byte_Of(host.Hand().tag)](const Edit_Input& input) {
                    return grows ? segmentation::Tag_Grow(input, tag, resize_mm)
                                 : segmentation::Tag_Shrink(input, tag, resize_mm);
                });
    }
}

void Segmentation_Control::Slices_Between_Fill() {
    if (Has_Tag()) {
        Operate("Fill " + Name() + " between painted slices",
                [tag = Byte_Of(host.Hand().tag)](const Edit_Input& input) {
                    return segmentation::Slices_Between_Fill(input, tag);
                });
    }
}

void Segmentation_Control::Tag_Merge() {
    if (!Has_Tag()) {
        return;
    }
    const Segmentation_Hand hand = host.Hand();
    std::vector<int> others;
    std::vector<std::string> lines;
    for (int tag = 1; tag < hand.tag_nb; ++tag) {
        if (tag != hand.tag) {
            others.push_back(tag);
            lines.push_back(std::to_string(tag) + "  " + host.Tag_Name(tag));
        }
    }
    const int chosen =
        host.Line_Ask("Take over another TAG", Name() + " is to have the voxels of this TAG, too:", lines, 0);
    if (chosen < 0 || static_cast<std::size_t>(chosen) >= others.size()) {
        return;
    }
    const int other = others[static_cast<std::size_t>(chosen)];
    Operate(host.Tag_Name(other) + " to " + Name(), [&](const Edit_Input& input) {
        return segmentation::Tag_Combine(input, Byte_Of(hand.tag), segmentation::Set_Operation::Add,
                                         {input.tags, Byte_Of(other)});
    });
}

void Segmentation_Control::Tag_Join_File() {
    using segmentation::Set_Operation;
    constexpr std::array<std::pair<Set_Operation, const char*>, 4> joinings = {
        {{Set_Operation::Copy, "Copy"},
         {Set_Operation::Add, "Add"},
         {Set_Operation::Subtract, "Subtract"},
         {Set_Operation::Intersect, "Intersect"}}};
    std::vector<std::uint8_t> laid;
    if (!Has_Tag() || !Label_File_Read("Join with a TAG of a file", laid)) {
        return;
    }
    std::array<std::uint64_t, TAG_MAX> voxel_nb{};
    for (const std::uint8_t tag : laid) {
        ++voxel_nb[tag];
    }
    std::vector<int> others;
    std::vector<std::string> lines;
    int current = 0;
    for (int tag = 1; tag < TAG_MAX; ++tag) {
        if (voxel_nb[static_cast<std::size_t>(tag)] != 0) {
            current = tag == host.Hand().tag ? static_cast<int>(others.size()) : current;
            others.push_back(tag);
            lines.push_back(std::to_string(tag) + "  " + std::to_string(voxel_nb[static_cast<std::size_t>(tag)]) +
                            " voxels");
        }
    }
    if (others.empty()) {
        return host.Warn("The file has only background.");
    }
    const int other = host.Line_Ask("Join with a TAG of a file", "TAG of the file:", lines, current);
    if (other < 0 || static_cast<std::size_t>(other) >= others.size()) {
        return;
    }
    const int joining = host.Line_Ask("Join with a TAG of a file", Name() + " is:",
                                      {"to have just the file's voxels", "to have the file's voxels, too",
                                       "to lose the file's voxels", "to stay only where the file has voxels, too"},
                                      1);
    if (joining < 0 || static_cast<std::size_t>(joining) >= joinings.size()) {
        return;
    }
    const auto& [operation, word] = joinings[static_cast<std::size_t>(joining)];
    const int from = others[static_cast<std::size_t>(other)];
    const int to = host.Hand().tag;
    Operate(std::string(word) + " TAG " + std::to_string(from) + " of a file: " + Name(),
            [&, kind = operation](const Edit_Input& input) {
                return segmentation::Tag_Combine(input, Byte_Of(to), kind, {laid, Byte_Of(from)});
            });
}

void Segmentation_Control::Scope_Set(Edit_Scope wanted) {
    if (wanted == Edit_Scope::Range) {
        if (!Has_Volume()) {
            return;
        }
        const segmentation::Slice_Range now = Slices();
        const std::optional<std::string> answer = host.Text_Ask(
            "Range of slices", "First and last slice (1 to " + std::to_string(host.Work().Slice_Nb()) + "):",
            std::to_string(now.first + 1) + " to " + std::to_string(now.last + 1));
        if (!answer) {
            return;
        }
        const std::optional<segmentation::Slice_Range> entered = Range_Of(*answer);
        if (!entered || entered->first < 0 || entered->last >= host.Work().Slice_Nb()) {
            return host.Warn("\"" + *answer + "\" names no slices of the image: it has slices 1 to " +
                             std::to_string(host.Work().Slice_Nb()) + ".");
        }
        range = *entered;
    }
    scope = wanted;
    host.Limits_Changed();
    host.Tell("Operations on TAGs work on " + (host.Work().Has_Volume() ? Slices_Text() : std::string("the volume")));
    Labels_Follow();
}

void Segmentation_Control::Only_Inside_Ask() {
    std::vector<std::string> lines = {"Everywhere"};
    for (int tag = 0; tag < host.Hand().tag_nb; ++tag) {
        lines.push_back("Only " + std::to_string(tag) + "  " + (tag == 0 ? "Background" : host.Tag_Name(tag)));
    }
    const int chosen =
        host.Line_Ask("Only inside a TAG", "Operations change voxels of:", lines, only_inside ? *only_inside + 1 : 0);
    if (chosen < 0 || static_cast<std::size_t>(chosen) >= lines.size()) {
        return;
    }
    only_inside = chosen == 0 ? std::nullopt : std::optional(Byte_Of(chosen - 1));
    host.Limits_Changed();
    host.Tell(only_inside ? "Operations change only voxels of " + *Only_Inside_Name()
                          : "Operations change voxels of all TAGs but locked ones");
}

std::optional<std::string> Segmentation_Control::Only_Inside_Name() const {
    if (!only_inside) {
        return std::nullopt;
    }
    return *only_inside == 0 ? "Background" : host.Tag_Name(*only_inside);
}

void Segmentation_Control::Volume_Follow() {
    if (scope == Edit_Scope::Range) {
        scope = Edit_Scope::Volume;  // the slices of another image
    }
    if (!host.Work().Has_Volume() || compared.serial != host.Work().Serial()) {
        compared = {};
        is_difference = false;
    }
    is_quick = true;
    Labels_Follow();
}

}  // namespace workbench
