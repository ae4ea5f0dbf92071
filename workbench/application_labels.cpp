// What describes the labels: names, colours, thresholds and state of the TAGs, and the markers.
#include <algorithm>
#include <utility>

#include "workbench/application.h"
#include "workbench/choice_dialog.h"
#include "workbench/model/label_description_file.h"
#include "workbench/volumes/message_text.h"
#include "workbench/wide_text.h"

namespace workbench {

void Application::Labels_Adopt(const Label_Description& description) {
    if (const int changed_names = labels.Take(description); changed_names > 0) {
        Warn("Letters that this system's code page lacks became question marks in names: " +
             std::to_string(changed_names) + ".");
    }
    color_advisor.Former_Forget();
}

std::optional<Grid_Choice> Application::Labels_Place_Ask(const volumes::Volume& loaded,
                                                         const std::filesystem::path& path) {
    const Grid_Match match = session.Labels_Compare(loaded);
    if (match.relation != Grid_Relation::Other || loaded.color) {
        return Grid_Choice::Refuse;  // nothing is to be chosen
    }
    std::vector<std::wstring> ways;
    std::vector<Grid_Choice> choices;
    const auto offer = [&](const wchar_t* text, Grid_Choice choice) {
        ways.emplace_back(text);
        choices.push_back(choice);
    };
    if (match.is_placed) {
        offer(L"&Resample: every voxel of the image takes the nearest label", Grid_Choice::Resample);
    }
    if (match.is_same_size) {
        offer(L"Lay on by &index: voxel on voxel, whatever their places", Grid_Choice::By_Index);
    }
    ways.emplace_back(L"&Cancel");
    const std::wstring text = Wide_Of_Utf8(volumes::File_Name_Text(path)) +
                              L" does not lie on the voxels of the image.\n\nLabels: " +
                              Wide_Of_Utf8(Volume_Grid_Text(Volume_Grid_Of(loaded))) + L".\n\nImage: " +
                              Wide_Of_Utf8(Volume_Grid_Text(Volume_Grid_Of(session.Image()))) + L".";
    report.Line("ask labels_place " + Utf8_Of_Wide(text));
    const int way = Choice_Ask(window.Handle(), L"Labels of another geometry", text, ways);
    if (way < 0 || static_cast<std::size_t>(way) >= choices.size()) {
        return std::nullopt;
    }
    return choices[static_cast<std::size_t>(way)];
}

std::string Application::Labels_Place_Text(const volumes::Volume& loaded, const std::filesystem::path& path,
                                           Grid_Choice choice) const {
    const Grid_Match match = session.Labels_Compare(loaded);
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

std::optional<Application::Labels_File> Application::Labels_File_Read(const std::filesystem::path& path) {
    if (Label_Objects::Is_Object_File(path)) {
        banner.Close(Warning_Subject::Label_File);  // what was told of other label files
        std::optional<Object_Labels> object = label_objects.Load(path);
        if (!object) {
            return std::nullopt;
        }
        return Labels_File{std::move(object->volume), {std::move(object->description), true, {}}, true};
    }
    std::optional<volumes::Load_Result> loaded = Load_With_Progress(path);
    if (!loaded) {
        return std::nullopt;
    }
    volumes::Volume& volume = *loaded->volume;
    Label_Description_Loading described = Label_Description_Load(path, {volume.nz, volume.nx, volume.ny});
    return Labels_File{std::move(volume), std::move(described), false};
}

Label_Object_Wiring Application::Label_Object_Wires() {
    return {session,
            volumes,
            variables,
            [this] { return window.Handle(); },
            [this] { return labels.Describe(); },
            [this] { labels.Note(); },
            [this](const std::wstring& what, const std::function<void(const volumes::Load_Progress&)>& action) {
                dialogs.Run(Utf8_Of_Wide(what), action);
            },
            [this](const std::wstring& text) { Status(text); },
            [this](const std::string& text) { Warn(text, Warning_Subject::Label_File); }};
}

void Application::Load_Labels(const std::filesystem::path& path) {
    const Label_Stamps stamps = Label_Stamps_Of(path);  // before it is read: what is written meanwhile is a change
    const std::optional<Labels_File> loaded = Labels_File_Read(path);
    if (!loaded) {
        return;
    }
    const volumes::Volume& volume = loaded->volume;
    const Label_Description_Loading& described = loaded->described;
    const std::optional<Grid_Choice> choice = Labels_Place_Ask(volume, path);
    if (!choice) {
        Status(L"Labels were not loaded");
        return;
    }
    const std::string placed = Labels_Place_Text(volume, path, *choice);
    const Label_Description* description = described.is_there ? &described.description : nullptr;
    if (const std::string error = session.Take_Labels({volume, path, description, stamps}, *choice); !error.empty()) {
        Warn(error, Warning_Subject::Label_File);
        return;
    }
    if (loaded->is_object) {
        session.Label_Path_Set({});
    }
    for (const std::string& sentence : {placed, described.warning}) {
        if (!sentence.empty()) {
            Warn(sentence, Warning_Subject::Label_File);
        }
    }
    labels.Nb_Grow(session.Labels().Highest_Tag());
    if (described.is_there) {
        Labels_Adopt(described.description);
    }
    hub.Note({Change::Pixels, Change::Markers, Change::Saved});
    Status(L"Labels loaded from " + Wide_Of_Utf8(volumes::File_Name_Text(path)));
}

}  // namespace workbench
