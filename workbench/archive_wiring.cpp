// What archives in the network get of the application.
#include "workbench/archive_wiring.h"

#include <algorithm>

#include "workbench/application_parts.h"
#include "workbench/form_dialog.h"
#include "workbench/list_choice_dialog.h"
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

/** Files that the volume in hand came from, those of it alone, once each. */
std::vector<std::filesystem::path> Images_In_Hand(const Application_Parts& parts) {
    const Open_Volumes& volumes = parts.work.volumes;
    if (volumes.Current() < 0) {
        return {};
    }
    std::vector<std::int32_t> indices = volumes.Facts(volumes.Current()).file_of_slice;
    std::ranges::sort(indices);
    const auto repeated = std::ranges::unique(indices);
    indices.erase(repeated.begin(), repeated.end());
    std::vector<std::filesystem::path> files;
    for (const std::int32_t index : indices) {
        if (index >= 0 && static_cast<std::size_t>(index) < volumes.Files().size()) {
            files.push_back(volumes.Files()[static_cast<std::size_t>(index)]);
        }
    }
    return files;
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
            [&parts](std::span<const std::filesystem::path> folders) { parts.opener.Open(folders); },
            [&parts] { return Images_In_Hand(parts); },
            [&parts] {
                parts.settings.Secret_Read();
                const Settings& settings = parts.settings.Now();
                return archive::Send_Wishes{.is_anonymous = settings.is_sent_anonymously,
                                            .is_picture_trusted = false,
                                            .secret = settings.archive_secret};
            },
            [&parts](const archive::Send_Wishes& wishes) {
                parts.settings.Now().is_sent_anonymously = wishes.is_anonymous;
                parts.settings.Now().archive_secret = wishes.secret;
                return !parts.settings.File().empty() && parts.settings.Keep();
            },
            [&parts](const std::filesystem::path& file) { return parts.label_objects.Object_Write(file, false); },
            [&parts](const std::string& title, const std::string& text, std::vector<Form_Field>& fields,
                     const std::vector<std::string>& ways) {
                parts.report.Line("ask form " + title);
                return Fields_Ask(parts.window.Handle(), title, text, fields, ways);
            },
            [&parts](const std::string& title, const std::string& label, const std::vector<std::string>& lines,
                     const std::string& accept) {
                parts.report.Line("ask lines " + title);
                std::vector<std::wstring> wide_lines;
                for (const std::string& line : lines) {
                    wide_lines.push_back(Wide_Of_Utf8(line));
                }
                return List_Choices_Ask(parts.window.Handle(), Wide_Of_Utf8(title), Wide_Of_Utf8(label), wide_lines,
                                        Wide_Of_Utf8(accept).c_str());
            }};
}

}  // namespace workbench
