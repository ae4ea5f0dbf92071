// What archives in the network get of the application.
#include "workbench/archive_wiring.h"

#include "workbench/application_parts.h"
#include "workbench/form_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

int Fields_Ask(HWND owner, const std::string& title, const std::string& text, std::vector<Form_Field>& fields,
               const std::vector<std::string>& ways) {
    std::vector<Form_Line> lines;
    for (const Form_Field& field : fields) {
        lines.push_back({Wide_Of_Utf8(field.label), Wide_Of_Utf8(field.value)});
    }
    std::vector<std::wstring> wide_ways;
    for (const std::string& way : ways) {
        wide_ways.push_back(Wide_Of_Utf8(way));
    }
    const int way = Form_Ask(owner, Wide_Of_Utf8(title), Wide_Of_Utf8(text), lines, wide_ways);
    for (std::size_t at = 0; at < fields.size(); ++at) {
        fields[at].value = Utf8_Of_Wide(lines[at].value);
    }
    return way;
}

}  // namespace

Archive_Host Archive_Wires(Application_Parts& parts) {
    return {[&parts] { return parts.settings.Now().archives; },
            [&parts](const std::vector<std::string>& lines) {
                parts.settings.Now().archives = lines;
                parts.window_control.Settings_Keep();
            },
            [&parts] {
                const std::filesystem::path& file = parts.settings.File();
                return file.empty() ? std::filesystem::path() : file.parent_path() / "from_archives";
            },
            [&parts](const std::filesystem::path& folder) {
                parts.opener.Open({&folder, 1});
            },
            [&parts](const std::filesystem::path& file) { return parts.label_objects.Object_Write(file, false); },
            [&parts](const std::string& title, const std::string& text, std::vector<Form_Field>& fields,
                     const std::vector<std::string>& ways) {
                parts.report.Line("ask form " + title);
                return Fields_Ask(parts.window.Handle(), title, text, fields, ways);
            }};
}

}  // namespace workbench
