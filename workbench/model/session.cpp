#include "workbench/model/session.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <utility>

#include "workbench/volumes/work_share.h"

namespace workbench {

namespace {

/** Puts all levels into the order of display, on as many threads as there are processors. */
void Levels_Turn(volumes::Volume& volume, const Display_Order& order) {
    const std::size_t size = volume.Index(0, 0, 1);
    const std::size_t slices = size > 0 ? volume.levels.size() / size : 0;
    if (order.flip_x || order.flip_y) {
        const auto turn = [&](auto codes) { Slices_Turn(codes, volume.nx, volume.ny, order); };
        volumes::Work_Share(slices, volumes::Work_Thread_Nb(slices),
                            [&](std::size_t slice) { volume.levels.Reorder(slice * size, size, turn); }, {});
    }
}

}  // namespace

volumes::Level_View Session::Levels(int slice) const {
    if (!Has_Levels() || slice < 0 || slice >= volume->nz) {
        return {};
    }
    return volume->levels.View().subspan(volume->Index(0, 0, slice), labels.Slice_Size());
}

volumes::Level_View Session::Plain_Levels() const {
    return Has_Levels() && !volume->color ? volume->levels.View().first(volume->Voxel_Nb_3D()) : volumes::Level_View();
}

float Session::Grey(int x, int y, int slice) const {
    if (!Has_Levels() || x < 0 || x >= volume->nx || y < 0 || y >= volume->ny || slice < 0 || slice >= volume->nz) {
        return 0.0F;
    }
    return volume->grey(volume->levels[volume->Index(x, y, slice)]);
}

File_Voxel Session::To_File(int x, int y, int slice) const {
    return {order.flip_x ? Width() - 1 - x : x, order.flip_y ? Height() - 1 - y : y, slice};
}

void Session::Take(volumes::Volume&& loaded, const std::filesystem::path& loaded_from) {
    static std::atomic<std::uint64_t> last_serial = 0;
    stroke.reset();
    volume.reset();
    labels = Label_Map();
    if (!loaded.levels.empty()) {
        labels = Label_Map(loaded.nx, loaded.ny, loaded.nz);
    }
    volume = std::move(loaded);
    order = Display_Order_Of(volume->affine);
    Levels_Turn(*volume, order);
    markers = Marker_Table();
    journal.Clear();
    path = loaded_from;
    label_path.clear();
    stamps = {};
    serial = ++last_serial;
    ++change_nb;
    slice_changes.assign(static_cast<std::size_t>(Slice_Nb()), 0);
}

void Session::Labels_Make() {
    if (labels.Slice_Nb() == 0) {
        labels = Label_Map(Width(), Height(), Slice_Nb());
    }
}

void Session::Levels_Take(volumes::Volume&& loaded) {
    Labels_Make();
    volume = std::move(loaded);
    Levels_Turn(*volume, order);
}

void Session::Touch(const Touched_Slices& touched) {
    for (int slice = touched.first; slice <= touched.last; ++slice) {
        Slice_Touch(slice);
    }
}

void Session::All_Touch() {
    slice_changes.assign(static_cast<std::size_t>(Slice_Nb()), ++change_nb);
}

bool Session::Take_Up(std::vector<std::uint8_t>&& tags, std::span<const Marker_Description> described,
                      const std::filesystem::path& file, const Label_Stamps& file_stamps) {
    if (!volume || tags.size() != volume->Voxel_Nb_3D()) {
        return false;
    }
    Labels_Make();
    Slices_Turn(std::span(tags), volume->nx, volume->ny, order);
    std::ranges::copy(tags, labels.All().begin());
    const Volume_Grid grid = Volume_Grid_Of(*volume);
    Markers_Take(described, Grid_By_Index(grid, grid));
    stroke.reset();
    journal.Clear();
    journal.Mark_Unsaved();
    label_path = file;
    stamps = file_stamps;
    All_Touch();
    return true;
}

Stroke_Ground Session::Ground() {
    return {labels.All(), Plain_Levels()};
}

Pixel_Rect Session::Stroke_Begin(int slice, const Brush_Body& brush, int x, int y, const Paint_Ink& ink) {
    return volume ? Stroke_Begin({Slice_Pictures(), slice}, brush, x, y, ink) : Pixel_Rect{};
}

Pixel_Rect Session::Stroke_Begin(const Plane_Cut& cut, const Brush_Body& brush, int x, int y, const Paint_Ink& ink) {
    Stroke_End();
    if (!volume || cut.geometry.voxel_nb != std::array<int, 3>{Width(), Height(), Slice_Nb()} || cut.depth < 0 ||
        cut.depth >= cut.geometry.Depth_Nb()) {
        return {};
    }
    stroke.emplace(cut, brush, ink);
    Touch(stroke->Slices(x, y, x, y));
    return stroke->Dab(Ground(), x, y);
}

Pixel_Rect Session::Stroke_Move(int x, int y) {
    if (!stroke) {
        return {};
    }
    Touch(stroke->Slices(stroke->X(), stroke->Y(), x, y));
    return stroke->Line_To(Ground(), x, y);
}

bool Session::Stroke_End() {
    if (!stroke) {
        return false;
    }
    Voxel_Stroke ended = std::move(*stroke);
    stroke.reset();
    ++change_nb;
    try {
        Voxel_Change change{ended.Changes()};
        if (change.slices.empty()) {
            return false;
        }
        Push({ended.Ink().tag == 0 ? "Erase" : "Stroke", std::move(change)});
        return true;
    } catch (const std::bad_alloc&) {
        journal.Mark_Unsaved();  // as in Push_Slice
        throw;
    }
}

bool Session::Push_Slice(const char* title, int slice, std::span<const std::uint8_t> before) {
    try {
        std::optional<Slice_Change> change = Slice_Difference(slice, before, std::as_const(labels).Slice(slice));
        if (!change) {
            return false;
        }
        Voxel_Change voxels;
        voxels.slices.push_back(std::move(*change));
        Push({title, std::move(voxels)});
        return true;
    } catch (const std::bad_alloc&) {
        journal.Mark_Unsaved();  // it cannot be taken back, but it is work
        throw;
    }
}

std::size_t Session::Propagate(Propagation_Kind kind, int from, int to, const Propagation_Tags& tags) {
    Stroke_End();
    const std::span<const std::uint8_t> from_tags = std::as_const(labels).Slice(from);
    const std::span<std::uint8_t> to_tags = labels.Slice(to);
    if (from_tags.empty() || to_tags.empty() || from == to) {
        return 0;
    }
    const std::vector<std::uint8_t> before(to_tags.begin(), to_tags.end());
    Slice_Touch(to);
    const Propagation_Frames frames = {Width(), Height(), Levels(from), from_tags, Levels(to), to_tags};
    const std::size_t carried =
        kind == Propagation_Kind::Copy ? Propagate_Copy(frames, tags) : Propagate_Grow(frames, tags);
    Push_Slice(kind == Propagation_Kind::Copy ? "Propagate by copy" : "Propagate by grow", to, before);
    return carried;
}

void Session::Voxels_Change(const std::string& title, Voxel_Change&& change) {
    Stroke_End();
    if (change.slices.empty()) {
        return;
    }
    Push({title, std::move(change)});
    try {
        Apply(*journal.Next_Undo(), true);
    } catch (const std::bad_alloc&) {
        journal.Undo();
        throw;
    }
}

void Session::Apply_Voxels(const Voxel_Change& change, bool redo) {
    std::size_t done = 0;
    try {
        for (; done < change.slices.size(); ++done) {
            const Slice_Change& one = change.slices[done];
            Slice_Touch(one.slice);
            Slice_Change_Apply(one, redo, labels.Slice(one.slice));
        }
    } catch (const std::bad_alloc&) {
        journal.Mark_Unsaved();  // should not even taking it back find memory
        while (done > 0) {
            const Slice_Change& one = change.slices[--done];
            Slice_Change_Apply(one, !redo, labels.Slice(one.slice));
        }
        throw;
    }
}

void Session::Marker_Set(int index, const Marker& marker) {
    const Marker before = markers.Get(index);
    if (before == marker || !markers.Set(index, marker)) {
        return;
    }
    const char* title = !marker.is_placed ? "Remove marker" : before.is_placed ? "Move marker" : "Place marker";
    Push({title, Marker_Change{index, before, marker}});
}

std::vector<std::optional<std::string>>& Session::Names(Text_Table table) {
    return table == Text_Table::Tag_Labels ? tag_names : marker_names;
}

int Session::Note_Labels(Text_Table table, std::span<const char* const> label) {
    std::vector<std::optional<std::string>>& names = Names(table);
    names.resize(std::max(names.size(), label.size()));
    int steps = 0;
    for (std::size_t at = 0; at < label.size(); ++at) {
        std::optional<std::string> now;
        if (label[at] != nullptr) {
            now = label[at];
        }
        if (now == names[at]) {
            continue;
        }
        Text_Change change = {table, static_cast<int>(at), names[at], now};
        Push({table == Text_Table::Tag_Labels ? "Rename TAG" : "Rename marker", std::move(change)});
        names[at] = std::move(now);
        ++steps;
    }
    return steps;
}

int Session::Note_Thresholds(std::span<const float> low, std::span<const float> high) {
    Threshold_Change change;
    bands.resize(std::max(bands.size(), low.size()));
    for (std::size_t at = 0; at < std::min(low.size(), high.size()); ++at) {
        const Tag_Band now = {low[at], high[at]};
        if (now != bands[at]) {
            change.entries.push_back({static_cast<int>(at), bands[at], now});
            bands[at] = now;
        }
    }
    if (change.entries.empty()) {
        return 0;
    }
    Push({change.entries.size() == 1 ? "Threshold" : "Thresholds", std::move(change)});
    return 1;
}

int Session::Note_Colors(std::span<const std::uint32_t> color) {
    Color_Change change;
    colors.resize(std::max(colors.size(), color.size()));
    for (std::size_t at = 0; at < color.size(); ++at) {
        if (color[at] != colors[at]) {
            change.entries.push_back({static_cast<int>(at), colors[at], color[at]});
            colors[at] = color[at];
        }
    }
    if (change.entries.empty()) {
        return 0;
    }
    Push({change.entries.size() == 1 ? "TAG colour" : "TAG colours", std::move(change)});
    return 1;
}

void Session::Adopt_Labels(Text_Table table, std::span<const char* const> label) {
    std::vector<std::optional<std::string>>& names = Names(table);
    names.assign(label.size(), std::nullopt);
    for (std::size_t at = 0; at < label.size(); ++at) {
        if (label[at] != nullptr) {
            names[at] = label[at];
        }
    }
}

void Session::Adopt_Thresholds(std::span<const float> low, std::span<const float> high) {
    bands.clear();
    for (std::size_t at = 0; at < std::min(low.size(), high.size()); ++at) {
        bands.push_back({low[at], high[at]});
    }
}

void Session::Adopt_Colors(std::span<const std::uint32_t> color) {
    colors.assign(color.begin(), color.end());
}

void Session::Apply(const Undo_Step& step, bool redo) {
    ++change_nb;
    if (const auto* voxels = std::get_if<Voxel_Change>(&step.change)) {
        Apply_Voxels(*voxels, redo);
    } else if (const auto* marker = std::get_if<Marker_Change>(&step.change)) {
        markers.Set(marker->index, redo ? marker->after : marker->before);
    } else if (const auto* text = std::get_if<Text_Change>(&step.change)) {
        Names(text->table)[static_cast<std::size_t>(text->index)] = redo ? text->after : text->before;
    } else if (const auto* thresholds = std::get_if<Threshold_Change>(&step.change)) {
        for (const Threshold_Change::Entry& entry : thresholds->entries) {
            bands[static_cast<std::size_t>(entry.tag)] = redo ? entry.after : entry.before;
        }
    } else if (const auto* recolored = std::get_if<Color_Change>(&step.change)) {
        for (const Color_Change::Entry& entry : recolored->entries) {
            colors[static_cast<std::size_t>(entry.tag)] = redo ? entry.after : entry.before;
        }
    }
}

const Undo_Step* Session::Undo() {
    Stroke_End();
    const Undo_Step* step = journal.Next_Undo();
    if (step != nullptr) {
        Apply(*step, false);
    }
    return journal.Undo();
}

const Undo_Step* Session::Redo() {
    Stroke_End();
    const Undo_Step* step = journal.Next_Redo();
    if (step != nullptr) {
        Apply(*step, true);
    }
    return journal.Redo();
}

}  // namespace workbench
