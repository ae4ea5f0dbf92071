#include "workbench/label_object_services.h"

#include "workbench/choice_dialog.h"
#include "workbench/file_dialog.h"
#include "workbench/list_choice_dialog.h"
#include "workbench/prompt_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

std::vector<std::wstring> Wide_Lines(const std::vector<std::string>& lines) {
    std::vector<std::wstring> wide;
    for (const std::string& line : lines) {
        wide.push_back(Wide_Of_Utf8(line));
    }
    return wide;
}

}  // namespace

std::string Label_Object_Services::Volume_Title() const {
    return wiring.volumes.Facts(wiring.volumes.Current()).title;
}

volumes::Slice_Files Label_Object_Services::Slices() const {
    return {wiring.volumes.Files(), wiring.volumes.Facts(wiring.volumes.Current()).file_of_slice};
}

void Label_Object_Services::Tag_Name_Set(int tag, const std::string& name) {
    wiring.variables.Tag_Label_Set(tag, Panel_Of_Wide(Wide_Of_Utf8(name)).c_str());
    wiring.labels_note();
}

std::string Label_Object_Services::Program_Version() const {
    return WORKBENCH_VERSION;
}

std::string Label_Object_Services::User_Name() const {
    const wchar_t* const name = ::_wgetenv(L"USERNAME");
    return name != nullptr ? Utf8_Of_Wide(name) : std::string();
}

std::optional<std::filesystem::path> Label_Object_Services::Object_File_Ask(const std::filesystem::path& start) {
    return Save_Ask(wiring.owner(), L"Save as DICOM segmentation",
                    L"DICOM segmentation objects (*.dcm)\0*.dcm\0All files\0*.*\0", start, L"dcm");
}

std::optional<std::string> Label_Object_Services::Text_Ask(const std::string& title, const std::string& question,
                                                           const std::string& start) {
    const std::optional<std::wstring> answer =
        Prompt(wiring.owner(), Wide_Of_Utf8(title), Wide_Of_Utf8(question), Wide_Of_Utf8(start));
    return answer ? std::optional(Utf8_Of_Wide(*answer)) : std::nullopt;
}

int Label_Object_Services::Line_Ask(const std::string& title, const std::string& label,
                                    const std::vector<std::string>& lines, int current) {
    return List_Choice_Ask(wiring.owner(), Wide_Of_Utf8(title), Wide_Of_Utf8(label), Wide_Lines(lines), current,
                           L"&Choose");
}

int Label_Object_Services::Way_Ask(const std::string& title, const std::string& text,
                                   const std::vector<std::string>& ways) {
    return Choice_Ask(wiring.owner(), Wide_Of_Utf8(title), Wide_Of_Utf8(text), Wide_Lines(ways));
}

void Label_Object_Services::Run(const std::string& what,
                                const std::function<void(const volumes::Load_Progress&)>& action) {
    wiring.run(Wide_Of_Utf8(what), action);
}

void Label_Object_Services::Tell(const std::string& text) {
    wiring.tell(Wide_Of_Utf8(text));
}

}  // namespace workbench
