#include "workbench/model/session.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <new>
#include <utility>

#include "workbench/model/label_description_file.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/nifti_writer.h"
#include "workbench/volumes/unfinished_file.h"
#include "workbench/volumes/work_share.h"

namespace workbench {

namespace {

/** Lets a protected file be replaced, and protects what is there afterwards. */
class Writable_For_Now {
  public:
    explicit Writable_For_Now(std::filesystem::path of_file)
        : file(std::move(of_file)), is_protected(volumes::File_Is_Read_Only(file)) {
        if (is_protected) {
            error = volumes::File_Read_Only_Set(file, false);
        }
    }
    ~Writable_For_Now() {
        if (is_protected) {
            volumes::File_Read_Only_Set(file, true);
        }
    }
    Writable_For_Now(const Writable_For_Now&) = delete;
    Writable_For_Now& operator=(const Writable_For_Now&) = delete;
    const std::string& Error() const { return error; }

  private:
    std::filesystem::path file;
    bool is_protected;
    std::string error;
};

/** Puts all levels into the order of display, on as many threads as there are processors. */
void Levels_Turn(volumes::Volume& volume, const Display_Order& order) {
    const std::size_t size = volume.Index(0, 0, 1);
    const std::size_t slices = size > 0 ? volume.levels.size() / size : 0;
    if (order.flip_x || order.flip_y) {
        volumes::Work_Share(slices, volumes::Work_Thread_Nb(slices),
                            [&](std::size_t slice) {
                                Slices_Turn(std::span(volume.levels).subspan(slice * size, size), volume.nx, volume.ny,
                                            order);
                            },
                            {});
    }
}

}  // namespace

std::span<const std::int32_t> Session::Levels(int slice) const {
    if (!volume || slice < 0 || slice >= volume->nz) {
        return {};
    }
    return std::span(volume->levels).subspan(volume->Index(0, 0, slice), labels.Slice_Size());
}

std::span<const std::int32_t> Session::Plain_Levels() const {
    return volume && !volume->color ? std::span(volume->levels).first(volume->Voxel_Nb_3D())
                                    : std::span<const std::int32_t>();
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

void Session::Take(volumes::Volume&& loaded, const std::filesystem::path& loaded_from) {
    static std::atomic<std::uint64_t> last_serial = 0;
    stroke.reset();
    volume.reset();
    labels = Label_Map();
    labels = Label_Map(loaded.nx, loaded.ny, loaded.nz);
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
    if (!volume || tags.size() != labels.All().size()) {
        return false;
    }
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

std::vector<std::uint8_t> Session::Tags_In_File_Order() const {
    std::vector<std::uint8_t> tags(labels.All().begin(), labels.All().end());
    Slices_Turn(std::span(tags), volume->nx, volume->ny, order);
    return tags;
}

std::string Session::Save_Labels(const std::filesystem::path& file, Label_Description description, std::string& kept) {
    kept.clear();
    if (!volume) {
        return "There is no volume whose labels could be saved.";
    }
    const std::vector<std::uint8_t> in_file_order = Tags_In_File_Order();
    std::string error;
    {
        const Writable_For_Now writable(file);
        error = writable.Error().empty()
                    ? volumes::Label_Volume_Write(file, *volume, std::span<const std::uint8_t>(in_file_order))
                    : volumes::File_Name_Text(file) + " " + writable.Error() + ".";
    }
    if (!error.empty()) {
        return error;
    }
    if (label_path != file) {
        label_path = file;
        stamps = {};
    }
    volumes::Unfinished_Remove(file);  // of programs that were ended while they saved
    stamps.labels = volumes::File_Stamp_Of(file);
    Markers_Describe(description.markers);
    {
        const Writable_For_Now writable(Label_Description_Path(file));
        error = Label_Description_Save(file, description, Extent(), kept);
    }
    if (error.empty()) {
        stamps.description = volumes::File_Stamp_Of(Label_Description_Path(file));
        journal.Mark_Saved();
        ++change_nb;
    }
    return error;
}

void Session::Markers_Describe(std::vector<Marker_Description>& described) const {
    for (Marker_Description& one : described) {
        const Marker marker = markers.Get(one.number);
        one.place.reset();
        if (marker.is_placed) {
            const File_Voxel voxel = To_File(marker.x, marker.y, marker.slice);
            one.place = Label_Voxel{voxel.z, voxel.x, voxel.y};
        }
    }
}

Save_Doubts Session::Doubts_Before(const std::filesystem::path& file, bool is_chosen) const {
    Label_Stamps known = file == label_path ? stamps : Label_Stamps{};
    if (is_chosen) {
        const Label_Stamps now = Label_Stamps_Of(file);
        known.labels = now.labels;
        known.description = now.labels.is_there ? now.description : known.description;
    }
    return Save_Doubts_Of(file, known);
}

Grid_Match Session::Labels_Compare(const volumes::Volume& loaded) const {
    return Grid_Compare(Volume_Grid_Of(*volume), Volume_Grid_Of(loaded));
}

Grid_Match Session::Labels_Match(const volumes::Volume& loaded, Grid_Choice choice) const {
    const Grid_Match match = Labels_Compare(loaded);
    return match.relation == Grid_Relation::Other && choice == Grid_Choice::By_Index
               ? Grid_By_Index(Volume_Grid_Of(*volume), Volume_Grid_Of(loaded))
               : match;
}

std::string Session::Labels_Lay(const Labels_Read& read, Grid_Choice choice, std::vector<std::uint8_t>& laid) const {
    if (!volume) {
        return "Open an image first; labels lie on an image.";
    }
    const volumes::Volume& loaded = read.volume;
    const std::string name = volumes::File_Name_Text(read.file);
    if (loaded.color) {
        return name + " is a colour image; it holds no labels.";
    }
    const Volume_Grid image_grid = Volume_Grid_Of(*volume);
    const Volume_Grid label_grid = Volume_Grid_Of(loaded);
    const Grid_Match match = Labels_Match(loaded, choice);
    if (Labels_Compare(loaded).relation == Grid_Relation::Other &&
        (choice == Grid_Choice::Refuse || !match.is_placed ||
         (choice == Grid_Choice::By_Index && !match.is_same_size))) {
        return name + " lies elsewhere than the image: it has " + Volume_Grid_Text(label_grid) + ", and the image " +
               Volume_Grid_Text(image_grid) + ".";
    }
    std::vector<std::uint8_t> given(label_grid.Voxel_Nb());
    for (std::size_t at = 0; at < given.size(); ++at) {
        const bool is_none = loaded.levels[at] == volumes::LEVEL_OUTSIDE;
        const double value = is_none ? 0.0 : loaded.levels[at] * loaded.slope + loaded.intercept;
        if (value < 0.0 || value > TAG_MAX - 1 || std::abs(value - std::round(value)) > 0.01) {
            return name + " holds values that are no TAG numbers (0 to 255).";
        }
        given[at] = static_cast<std::uint8_t>(std::lround(value));
    }
    if (match.relation != Grid_Relation::Same) {
        given = Grid_Carry(image_grid, label_grid, match, given);
    }
    Slices_Turn(std::span(given), volume->nx, volume->ny, order);
    laid = std::move(given);
    return {};
}

std::string Session::Take_Labels(const Labels_Read& read, Grid_Choice choice) {
    std::vector<std::uint8_t> given;
    if (std::string error = Labels_Lay(read, choice, given); !error.empty()) {
        return error;
    }
    const Grid_Match match = Labels_Match(read.volume, choice);
    const bool is_other = Labels_Compare(read.volume).relation == Grid_Relation::Other;
    std::ranges::copy(given, labels.All().begin());
    if (read.description != nullptr) {
        Markers_Take(read.description->markers, match);
    }
    stroke.reset();
    journal.Clear();
    All_Touch();
    // What was laid on otherwise is another volume than the file's: saving must not replace it unasked.
    // No file holds them as they lie now, so leaving them would lose work.
    if (is_other) {
        journal.Mark_Unsaved();
    }
    label_path = is_other ? std::filesystem::path() : read.file;
    stamps = is_other ? Label_Stamps{} : read.stamps;
    return {};
}

void Session::Markers_Take(std::span<const Marker_Description> described, const Grid_Match& match) {
    const Volume_Grid grid = Volume_Grid_Of(*volume);
    for (const Marker_Description& one : described) {
        Marker marker;
        if (one.place) {
            const std::optional<Grid_Voxel> at =
                Grid_Image_Voxel(grid, match, {one.place->column, one.place->row, one.place->frame});
            if (at) {
                const File_Voxel shown = To_File((*at)[0], (*at)[1], (*at)[2]);  // its own inverse
                marker = {true, shown.x, shown.y, shown.z};
            }
        }
        markers.Set(one.number, marker);
    }
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
