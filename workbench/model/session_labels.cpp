// The labels of a session and files: laying them on the image, loading and saving them.
#include <algorithm>
#include <cmath>
#include <utility>

#include "workbench/model/label_description_file.h"
#include "workbench/model/session.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/nifti_writer.h"
#include "workbench/volumes/unfinished_file.h"

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

}  // namespace

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

}  // namespace workbench
