// What the advisor on TAG colours needs.
#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "workbench/application.h"
#include "workbench/text_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

Color_Host Application::Color_Services() {
    Color_Host services;
    services.colors = [this] { return variables.Tag_Colors(); };
    services.shown_tags = [this] {
        std::vector<int> tags;
        for (int tag = 1; tag < variables.Tag_Nb(); ++tag) {  // the background is not drawn over the image
            if (variables.Tag_Enable()[static_cast<std::size_t>(tag)] != 0) {
                tags.push_back(tag);
            }
        }
        return tags;
    };
    services.slice = [this] {
        return session.Has_Volume() ? std::span<const std::uint8_t>(session.Labels().Slice(slice))
                                    : std::span<const std::uint8_t>();
    };
    services.used_tags = [this] {
        std::vector<bool> used(TAG_MAX, false);
        if (session.Has_Volume()) {
            const auto counts = session.Labels().Counts();
            for (std::size_t tag = 0; tag < used.size(); ++tag) {
                used[tag] = counts[tag] != 0;
            }
        }
        return used;
    };
    services.name = [this](int tag) { return Utf8_Of_Wide(Wide_Of_Panel(variables.Tag_Name(tag).c_str())); };
    services.mark = [this](const std::string& text) { status_line.Mark_Set(Wide_Of_Utf8(text)); };
    services.tell = [this](const std::string& text) { Status(Wide_Of_Utf8(text)); };
    services.found = [this](int pairs) { report.Line("alike_pairs " + std::to_string(pairs)); };
    services.change = [this](const std::vector<std::uint32_t>& wanted) {
        for (int tag = 1; tag < TAG_MAX; ++tag) {
            variables.Tag_Color_Set(tag, wanted[static_cast<std::size_t>(tag)]);
        }
        session.Note_Colors(variables.Tag_Colors());
        hub.Note(Change::Colors);
    };
    services.ask = [this](const std::string& text, const std::vector<std::string>& choices) {
        std::vector<std::wstring> buttons;
        for (const std::string& choice : choices) {
            buttons.push_back(Wide_Of_Utf8(choice));
        }
        return Text_Show(window.Handle(), L"TAG colours", Wide_Of_Utf8(text), look.Fixed(), buttons);
    };
    return services;
}

}  // namespace workbench
