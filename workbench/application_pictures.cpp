// Pictures of what is shown: what the part that saves them gets of the windows.
#include "workbench/application.h"
#include "workbench/file_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

/** A line of light letters on black; empty without memory. */
volumes::Picture Letters_Drawn(const std::wstring& text, HFONT font) {
    const RECT area = {0, 0, Line_Width(font, text), Line_Height(font)};
    const Dib_Picture drawn(nullptr, area.right, area.bottom);
    if (!drawn) {
        return {};
    }
    Fill(drawn.Get_DC(), area, RGB(0, 0, 0));
    Draw_Line(drawn.Get_DC(), area, text, font, RGB(255, 255, 255), DT_LEFT);
    Dib_Picture::Flush();
    volumes::Picture letters{drawn.Width(), drawn.Height(), {}};
    const std::size_t size = static_cast<std::size_t>(drawn.Width()) * static_cast<std::size_t>(drawn.Height());
    letters.pixels.assign(drawn.Pixels(), drawn.Pixels() + size);
    return letters;
}

/** "Slice 91 / 181" and further lines become "Slice 91". */
std::string View_Name(const std::wstring& caption) {
    return Utf8_Of_Wide(caption.substr(0, caption.find(L" /")));
}

}  // namespace

Picture_Host Application::Picture_Services() {
    Picture_Host host;
    host.views = [this] {
        std::vector<Pictured_View> shown;
        const auto add = [&](Image_View& view, const Image_User& user) {
            shown.push_back({View_Name(view.Caption()), [&user] { return user.Content(); },
                             [&view](bool is_plain) { return view.Picture_Now(is_plain); }});
        };
        if (session.Has_Volume()) {
            tools.Stroke_End();
            add(image.Slices(), *this);
            for (int view = 0; view < Plane_Views::VIEW_NB && image.Is_Planes(); ++view) {
                add(image.Other(view), planes.User(view));
            }
        }
        return shown;
    };
    host.slice_nb = [this] { return session.Slice_Nb(); };
    host.slice = [this](int of) { return Slice_Content(of); };
    host.tag_nb = [this] { return variables.Tag_Nb(); };
    host.tag_name = [this](int tag) { return segmentation_services.Tag_Name(tag); };
    host.letters = [this](const std::string& text) { return Letters_Drawn(Wide_Of_Utf8(text), look.Font()); };
    host.line = [this](const std::string& title, const std::string& label, const std::vector<std::string>& lines) {
        return segmentation_services.Line_Ask(title, label, lines, 0);
    };
    host.text = [this](const std::string& title, const std::string& question, const std::string& start) {
        return segmentation_services.Text_Ask(title, question, start);
    };
    host.file = [this](const std::string& title, const std::string& name) {
        return Save_Ask(window.Handle(), Wide_Of_Utf8(title).c_str(), L"Pictures (*.png)\0*.png\0All files\0*.*\0",
                        Wide_Of_Utf8(name), L"png");
    };
    host.run = [this](const std::string& what, const std::function<void(const volumes::Load_Progress&)>& action) {
        dialogs.Run(what, action);
    };
    host.tell = [this](const std::string& text) { Status(Wide_Of_Utf8(text)); };
    host.warn = [this](const std::string& text) { Warn(text); };
    return host;
}

}  // namespace workbench
