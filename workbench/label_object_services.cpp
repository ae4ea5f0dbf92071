#include "workbench/label_object_services.h"

#include "workbench/wide_text.h"

namespace workbench {

std::string Label_Object_Services::Volume_Title() const {
    return work.volumes.Facts(work.volumes.Current()).title;
}

volumes::Slice_Files Label_Object_Services::Slices() const {
    return {work.volumes.Files(), work.volumes.Facts(work.volumes.Current()).file_of_slice};
}

void Label_Object_Services::Tag_Name_Set(int tag, const std::string& name) {
    variables.Tag_Label_Set(tag, variables.Panel_Text_Of(name).c_str());
    labels.Note();
}

std::string Label_Object_Services::Program_Version() const {
    return WORKBENCH_VERSION;
}

std::string Label_Object_Services::User_Name() const {
    const wchar_t* const name = ::_wgetenv(L"USERNAME");
    return name != nullptr ? Utf8_Of_Wide(name) : std::string();
}

std::optional<std::filesystem::path> Label_Object_Services::Object_File_Ask(const std::filesystem::path& start) {
    return dialogs.File_To_Save("Save as DICOM segmentation", File_Kind::Segmentations, start);
}

std::optional<std::string> Label_Object_Services::Text_Ask(const std::string& title, const std::string& question,
                                                           const std::string& start) {
    return dialogs.Text_Ask(title, question, start);
}

int Label_Object_Services::Line_Ask(const std::string& title, const std::string& label,
                                    const std::vector<std::string>& lines, int current) {
    return dialogs.Line_Ask(title, label, lines, current, "&Choose");
}

int Label_Object_Services::Way_Ask(const std::string& title, const std::string& text,
                                   const std::vector<std::string>& ways) {
    return dialogs.Way_Ask(title, text, ways);
}

void Label_Object_Services::Run(const std::string& what,
                                const std::function<void(const volumes::Load_Progress&)>& action) {
    dialogs.Run(what, action);
}

}  // namespace workbench
