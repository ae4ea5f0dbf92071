#include "workbench/model/session.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "workbench/model/label_description_file.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/nifti_writer.h"

std::span<const std::int32_t> Session::Levels(int slice) const {
    if (!volume || slice < 0 || slice >= volume->nz) {
        return {};
    }
    return std::span(volume->levels).subspan(volume->Index(0, 0, slice), labels.Slice_Size());
}

float Session::Grey(int x, int y, int slice) const {
    if (!volume || x < 0 || x >= volume->nx || y < 0 || y >= volume->ny || slice < 0 || slice >= volume->nz) {
        return 0.0F;
    }
    return volume->grey(volume->levels[volume->Index(x, y, slice)]);
}

File_Voxel Session::To_File(int x, int y, int slice) const {
    return {order.flip_x ? Width() - 1 - x : x, order.flip_y ? Height() - 1 - y : y, slice};
}

void Session::Take(Volume&& loaded, const std::filesystem::path& loaded_from) {
    stroke.reset();
    volume.reset();
    labels = Label_Map();
    labels = Label_Map(loaded.nx, loaded.ny, loaded.nz);
    volume = std::move(loaded);
    order = Display_Order_Of(volume->affine);
    Slices_Turn(std::span(volume->levels), volume->nx, volume->ny, order);
    markers = Marker_Table();
    journal.Clear();
    path = loaded_from;
    label_path.clear();
}

std::string Session::Save_Labels(const std::filesystem::path& file, Label_Description description, std::string& kept) {
    kept.clear();
    if (!volume) {
        return "There is no volume whose labels could be saved.";
    }
    std::vector<std::uint8_t> in_file_order(labels.All().begin(), labels.All().end());
    Slices_Turn(std::span(in_file_order), volume->nx, volume->ny, order);
    std::string error = Label_Volume_Write(file, *volume, std::span<const std::uint8_t>(in_file_order));
    if (!error.empty()) {
        return error;
    }
    label_path = file;
    for (Marker_Description& described : description.markers) {
        const Marker marker = markers.Get(described.number);
        described.place.reset();
        if (marker.is_placed) {
            const File_Voxel voxel = To_File(marker.x, marker.y, marker.slice);
            described.place = Label_Voxel{voxel.z, voxel.x, voxel.y};
        }
    }
    error = Label_Description_Save(file, description, Extent(), kept);
    if (error.empty()) {
        journal.Mark_Saved();
    }
    return error;
}

std::string Session::Take_Labels(const Volume& loaded, const std::filesystem::path& file,
                                 const Label_Description* description) {
    if (!volume) {
        return "Open an image first; labels lie on an image.";
    }
    const std::string name = File_Name_Text(file);
    if (loaded.nx != volume->nx || loaded.ny != volume->ny || loaded.nz != volume->nz) {
        return name + " has " + std::to_string(loaded.nx) + " x " + std::to_string(loaded.ny) + " x " +
               std::to_string(loaded.nz) + " voxels and the image has " + std::to_string(volume->nx) + " x " +
               std::to_string(volume->ny) + " x " + std::to_string(volume->nz) + "; it holds no labels of this image.";
    }
    if (loaded.color) {
        return name + " is a colour image; it holds no labels.";
    }
    const Display_Order loaded_order = Display_Order_Of(loaded.affine);
    if (loaded_order.left != order.left || loaded_order.top != order.top) {
        return name + " lies in another direction than the image; it holds no labels of this image.";
    }
    std::vector<std::uint8_t> taken(labels.All().size());
    for (std::size_t at = 0; at < taken.size(); ++at) {
        const bool is_none = loaded.levels[at] == LEVEL_OUTSIDE;
        const double value = is_none ? 0.0 : loaded.levels[at] * loaded.slope + loaded.intercept;
        if (value < 0.0 || value > TAG_MAX - 1 || std::abs(value - std::round(value)) > 0.01) {
            return name + " holds values that are no TAG numbers (0 to 255).";
        }
        taken[at] = static_cast<std::uint8_t>(std::lround(value));
    }
    Slices_Turn(std::span(taken), volume->nx, volume->ny, loaded_order);
    std::ranges::copy(taken, labels.All().begin());
    if (description != nullptr) {
        Markers_Take(description->markers, loaded_order);
    }
    stroke.reset();
    journal.Clear();
    label_path = file;
    return {};
}

void Session::Markers_Take(std::span<const Marker_Description> described, const Display_Order& file_order) {
    for (const Marker_Description& one : described) {
        Marker marker;
        if (one.place) {
            const Label_Voxel& at = *one.place;
            marker = {true, file_order.flip_x ? Width() - 1 - at.column : at.column,
                      file_order.flip_y ? Height() - 1 - at.row : at.row, at.frame};
        }
        markers.Set(one.number, marker);
    }
}

Paint_Target Session::Target(int slice) {
    return {labels.Slice(slice), labels.Width(), labels.Height()};
}

Pixel_Rect Session::Stroke_Begin(int slice, const Brush_Footprint& brush, int x, int y, const Paint_Ink& ink) {
    Stroke_End();
    const Paint_Target target = Target(slice);
    if (target.pixels.empty()) {
        return {};
    }
    stroke = Stroke{slice, brush, ink, x, y, {target.pixels.begin(), target.pixels.end()}};
    return Paint_Dab(target, stroke->brush, x, y, ink);
}

Pixel_Rect Session::Stroke_Move(int x, int y) {
    if (!stroke) {
        return {};
    }
    const int x0 = std::exchange(stroke->x, x);
    const int y0 = std::exchange(stroke->y, y);
    return Paint_Line(Target(stroke->slice), stroke->brush, x0, y0, x, y, stroke->ink);
}

bool Session::Stroke_End() {
    if (!stroke) {
        return false;
    }
    const Stroke ended = std::move(*stroke);
    stroke.reset();
    return Push_Slice(ended.ink.tag == 0 ? "Erase" : "Stroke", ended.slice, ended.before);
}

bool Session::Push_Slice(const char* title, int slice, std::span<const std::uint8_t> before) {
    std::optional<Slice_Change> change = Slice_Difference(slice, before, std::as_const(labels).Slice(slice));
    if (!change) {
        return false;
    }
    journal.Push({title, std::move(*change)});
    return true;
}

std::size_t Session::Propagate(Propagation_Kind kind, int from, int to, const Propagation_Tags& tags) {
    Stroke_End();
    const std::span<const std::uint8_t> from_tags = std::as_const(labels).Slice(from);
    const std::span<std::uint8_t> to_tags = labels.Slice(to);
    if (from_tags.empty() || to_tags.empty() || from == to) {
        return 0;
    }
    const std::vector<std::uint8_t> before(to_tags.begin(), to_tags.end());
    const Propagation_Frames frames = {Width(), Height(), Levels(from), from_tags, Levels(to), to_tags};
    const std::size_t carried =
        kind == Propagation_Kind::COPY ? Propagate_Copy(frames, tags) : Propagate_Grow(frames, tags);
    Push_Slice(kind == Propagation_Kind::COPY ? "Propagate by copy" : "Propagate by grow", to, before);
    return carried;
}

void Session::Marker_Set(int index, const Marker& marker) {
    const Marker before = markers.Get(index);
    if (before == marker || !markers.Set(index, marker)) {
        return;
    }
    const char* title = !marker.is_placed ? "Remove marker" : before.is_placed ? "Move marker" : "Place marker";
    journal.Push({title, Marker_Change{index, before, marker}});
}

std::vector<std::optional<std::string>>& Session::Names(Text_Table table) {
    return table == Text_Table::TAG_LABELS ? tag_names : marker_names;
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
        journal.Push({table == Text_Table::TAG_LABELS ? "Rename TAG" : "Rename marker", std::move(change)});
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
    journal.Push({change.entries.size() == 1 ? "Threshold" : "Thresholds", std::move(change)});
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
    journal.Push({change.entries.size() == 1 ? "TAG colour" : "TAG colours", std::move(change)});
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
    if (const auto* pixels = std::get_if<Slice_Change>(&step.change)) {
        Slice_Change_Apply(*pixels, redo, labels.Slice(pixels->slice));
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
    const Undo_Step* step = journal.Undo();
    if (step != nullptr) {
        Apply(*step, false);
    }
    return step;
}

const Undo_Step* Session::Redo() {
    Stroke_End();
    const Undo_Step* step = journal.Redo();
    if (step != nullptr) {
        Apply(*step, true);
    }
    return step;
}
