#include "workbench/parts/label_file_control.h"

#include <vector>

#include "workbench/model/grid_match.h"
#include "workbench/model/recovery_recorder.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/nifti_reader.h"

namespace workbench {

namespace {

constexpr const char* NO_IMAGE = "Open an image first; labels lie on an image.";

}  // namespace

std::optional<volumes::Load_Result> Label_File_Control::Read_Volume(const std::filesystem::path& path) {
    volumes::Load_Result result;
    const volumes::Load_Limits limits = volumes::Limits_Beside(work.session.Image());
    dialogs.Run("Loading " + volumes::File_Name_Text(path),
                [&](const volumes::Load_Progress& progress) { result = volumes::Volume_Load(path, progress, limits); });
    if (result.cancelled) {
        dialogs.Tell("Loading was given up");
        return std::nullopt;
    }
    if (!result.volume) {
        dialogs.Warn(result.error, Warning_Subject::Label_File);
        return std::nullopt;
    }
    dialogs.Warnings_Close(Warning_Subject::Label_File);  // what was told of other label files
    for (const std::string& warning : result.warnings) {
        dialogs.Warn(warning, Warning_Subject::Label_File);
    }
    return result;
}

std::optional<Labels_File> Label_File_Control::Read(const std::filesystem::path& path) {
    if (std::optional<std::optional<Labels_File>> object = host.object(path)) {
        return std::move(*object);
    }
    std::optional<volumes::Load_Result> loaded = Read_Volume(path);
    if (!loaded) {
        return std::nullopt;
    }
    volumes::Volume& volume = *loaded->volume;
    Label_Description_Loading described = Label_Description_Load(path, {volume.nz, volume.nx, volume.ny});
    return Labels_File{std::move(volume), std::move(described), false};
}

std::optional<Grid_Choice> Label_File_Control::Place_Ask(const volumes::Volume& loaded,
                                                         const std::filesystem::path& path) {
    const Grid_Match match = work.session.Labels_Compare(loaded);
    if (match.relation != Grid_Relation::Other || loaded.color) {
        return Grid_Choice::Refuse;  // nothing is to be chosen
    }
    std::vector<std::string> ways;
    std::vector<Grid_Choice> choices;
    const auto offer = [&](const char* text, Grid_Choice choice) {
        ways.emplace_back(text);
        choices.push_back(choice);
    };
    if (match.is_placed) {
        offer("&Resample: every voxel of the image takes the nearest label", Grid_Choice::Resample);
    }
    if (match.is_same_size) {
        offer("Lay on by &index: voxel on voxel, whatever their places", Grid_Choice::By_Index);
    }
    ways.emplace_back("&Cancel");
    const std::string text = volumes::File_Name_Text(path) + " does not lie on the voxels of the image.\n\nLabels: " +
                             Volume_Grid_Text(Volume_Grid_Of(loaded)) +
                             ".\n\nImage: " + Volume_Grid_Text(Volume_Grid_Of(work.session.Image())) + ".";
    dialogs.Log("ask labels_place " + text);
    const int way = dialogs.Way_Ask("Labels of another geometry", text, ways);
    if (way < 0 || static_cast<std::size_t>(way) >= choices.size()) {
        return std::nullopt;
    }
    return choices[static_cast<std::size_t>(way)];
}

std::string Label_File_Control::Place_Text(const volumes::Volume& loaded, const std::filesystem::path& path,
                                           Grid_Choice choice) const {
    const Grid_Match match = work.session.Labels_Compare(loaded);
    if (match.relation == Grid_Relation::Turned) {
        return volumes::File_Name_Text(path) + " holds the image's voxels in another order (" + Grid_Turn_Text(match) +
               "); they were put in the image's order, voxel for voxel.";
    }
    if (match.relation == Grid_Relation::Same) {
        return {};
    }
    return volumes::File_Name_Text(path) +
           (choice == Grid_Choice::Resample ? " was resampled to the voxels of the image."
                                            : " was laid on by index, although its voxels lie elsewhere.") +
           " It is not the file of these labels: saving asks for a name.";
}

void Label_File_Control::Load(const std::filesystem::path& path) {
    const Label_Stamps stamps = Label_Stamps_Of(path);  // before it is read: what is written meanwhile is a change
    const std::optional<Labels_File> loaded = Read(path);
    if (!loaded) {
        return;
    }
    const volumes::Volume& volume = loaded->volume;
    const Label_Description_Loading& described = loaded->described;
    const std::optional<Grid_Choice> choice = Place_Ask(volume, path);
    if (!choice) {
        dialogs.Tell("Labels were not loaded");
        return;
    }
    const std::string placed = Place_Text(volume, path, *choice);
    const Label_Description* description = described.is_there ? &described.description : nullptr;
    if (const std::string error = work.session.Take_Labels({volume, path, description, stamps}, *choice);
        !error.empty()) {
        dialogs.Warn(error, Warning_Subject::Label_File);
        return;
    }
    if (loaded->is_object) {
        work.session.Label_Path_Set({});
    }
    for (const std::string& sentence : {placed, described.warning}) {
        if (!sentence.empty()) {
            dialogs.Warn(sentence, Warning_Subject::Label_File);
        }
    }
    labels.Nb_Grow(work.session.Labels().Highest_Tag());
    if (described.is_there) {
        Take(described.description);
    }
    work.hub.Note({Change::Pixels, Change::Markers, Change::Saved});
    dialogs.Tell("Labels loaded from " + volumes::File_Name_Text(path));
}

void Label_File_Control::Take(const Label_Description& description) {
    if (const int changed_names = labels.Take(description); changed_names > 0) {
        dialogs.Warn("Letters that this system's code page lacks became question marks in names: " +
                     std::to_string(changed_names) + ".");
    }
    host.colors_change();
}

std::optional<Label_File_Control::Outcome> Label_File_Control::Doubts_Ask(const std::filesystem::path& path,
                                                                          bool is_chosen) {
    const Save_Doubts doubts = work.session.Doubts_Before(path, is_chosen);
    if (doubts.Is_None()) {
        return Outcome::Saved;
    }
    std::vector<std::string> ways = {doubts.read_only.empty() ? "&Overwrite" : "&Overwrite all the same",
                                     "&Save under another name..."};
    if (doubts.is_theirs) {
        ways.emplace_back("&Load theirs; the work here is lost");
    }
    ways.emplace_back("&Cancel");
    const std::string gap = doubts.changed.empty() || doubts.read_only.empty() ? "" : "\n\n";
    const std::string text = doubts.changed + gap + doubts.read_only;
    dialogs.Log("ask save_doubts " + text);
    const int way = dialogs.Way_Ask("Save labels", text, ways);
    if (way == 0) {
        return Outcome::Saved;
    }
    if (way == 1) {
        return std::nullopt;
    }
    return doubts.is_theirs && way == 2 ? Outcome::Load_Theirs : Outcome::Not_Saved;
}

Label_File_Control::Outcome Label_File_Control::Save_Asking(bool ask_for_name) {
    if (!work.session.Has_Volume()) {
        dialogs.Warn(NO_IMAGE);
        return Outcome::Not_Saved;
    }
    std::filesystem::path path = work.session.Label_Path();
    for (bool is_asked = ask_for_name || path.empty();; is_asked = true) {
        if (is_asked) {
            const std::filesystem::path start =
                path.empty()
                    ? Label_Path_Proposed(work.session.Path(), work.volumes.Facts(work.volumes.Current()).title)
                    : path;
            dialogs.Log("ask save_as " + Path_To_Utf8(start));
            std::optional<std::filesystem::path> answer =
                dialogs.File_To_Save("Save labels", File_Kind::Label_Volumes, start);
            if (!answer) {
                return Outcome::Not_Saved;
            }
            if (!answer->has_extension()) {
                *answer += ".nii.gz";
            }
            path = *answer;
        }
        const std::optional<Outcome> wanted = Doubts_Ask(path, is_asked);
        if (wanted && *wanted != Outcome::Saved) {
            return *wanted;
        }
        if (wanted) {
            return Write(path);
        }
    }
}

Label_File_Control::Outcome Label_File_Control::Write(const std::filesystem::path& path) {
    std::string kept;
    const std::string error = work.session.Save_Labels(path, labels.Describe(), kept);
    for (const std::string& sentence : {kept, error}) {
        if (!sentence.empty()) {
            dialogs.Warn(sentence);
        }
    }
    work.hub.Note(Change::Saved);
    if (!error.empty()) {
        return Outcome::Not_Saved;
    }
    dialogs.Tell("Labels saved to " + volumes::File_Name_Text(path));
    return Outcome::Saved;
}

bool Label_File_Control::Save_Labels(bool ask_for_name) {
    const Outcome outcome = Save_Asking(ask_for_name);
    if (outcome == Outcome::Load_Theirs) {
        Load(work.session.Label_Path());
    }
    return outcome == Outcome::Saved;
}

bool Label_File_Control::May_Leave() {
    host.settle();  // also what a pen that is held down has drawn is work
    const std::vector<int> unsaved = work.volumes.Unsaved(work.session);
    if (unsaved.empty()) {
        return true;
    }
    const std::string question = unsaved.size() == 1 && unsaved.front() == work.volumes.Current()
                                     ? "There is unsaved work. Save the labels first?"
                                     : "There is unsaved work on " + std::to_string(unsaved.size()) +
                                           (unsaved.size() == 1 ? " other volume." : " volumes.") +
                                           " Save the labels first?";
    dialogs.Log("ask unsaved " + question);
    const Dialogs::Answer answer = dialogs.Yes_No_Cancel_Ask("Unsaved work", question);
    if (answer != Dialogs::Answer::Yes) {
        return answer == Dialogs::Answer::No;
    }
    // Each in turn is the current volume while it is saved; nothing of it is shown.
    const int shown = work.volumes.Current();
    Outcome outcome = Outcome::Saved;
    int last = shown;
    for (std::size_t at = 0; at < unsaved.size() && outcome == Outcome::Saved; ++at) {
        last = unsaved[at];
        labels.Switch(last);
        outcome = Save_Asking(false);
    }
    labels.Switch(shown);
    work.hub.Note(Change::Saved);
    if (outcome == Outcome::Load_Theirs) {
        host.go(last);
        Load(work.session.Label_Path());
    }
    return outcome == Outcome::Saved;
}

void Label_File_Control::Load_Labels_Ask() {
    host.stroke_end();
    if (!work.session.Has_Volume()) {
        dialogs.Warn(NO_IMAGE);
    } else if (!work.session.Is_Unsaved() || May_Leave()) {
        if (const auto path = dialogs.File_To_Open("Load labels", File_Kind::Labels)) {
            Load(*path);
        }
    }
}

}  // namespace workbench
