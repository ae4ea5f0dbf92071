// The tools in the image: what they are told, and what they ask for.
#include <algorithm>

#include "workbench/application.h"
#include "workbench/wide_text.h"

namespace workbench {

Pixel_Rect Application::Tool_Press(const Slice_Point& at, Tool_Hand hand) {
    return session.Has_Volume() ? tools.Press(Spot(at), hand) : Pixel_Rect{};
}

Pixel_Rect Application::Tool_Move(const Slice_Point& at) {
    return session.Has_Volume() ? tools.Move(Spot(at)) : Pixel_Rect{};
}

Brush_Footprint Application::Tool_Outline(const Slice_Point& at) const {
    return session.Has_Volume() ? tools.Outline(Spot(at)) : Brush_Footprint();
}

std::vector<Shown_Path> Application::Tool_Paths() const {
    return session.Has_Volume() ? tools.Paths(Spot({}).cut) : std::vector<Shown_Path>();
}

Tool_Host Application::Tool_Services() {
    Tool_Host host;
    host.work = [this]() -> Session& { return session; };
    host.tag = [this] { return variables.Tag_Cur(); };
    host.tag_name = [this](int tag) { return segmentation_services.Tag_Name(tag); };
    host.is_tag_hidden = [this] { return variables.Tag_Enable()[static_cast<std::size_t>(variables.Tag_Cur())] == 0; };
    host.locked = [this] {
        Tag_Flags locked{};
        std::ranges::copy(variables.Tag_Lock(), locked.begin());
        return locked;
    };
    host.only_inside = [this] { return segmentation_control.Only_Inside(); };
    host.slices = [this] { return segmentation_control.Slices(); };
    host.band = [this]() -> std::optional<segmentation::Level_Band> {
        for (const Tag_Claim& claim : segmentation_services.Claims()) {
            if (claim.tag == variables.Tag_Cur() && session.Has_Volume()) {
                return segmentation::Level_Band_Of(claim.band, session.Image());
            }
        }
        return std::nullopt;
    };
    host.brush = [this] { return variables.Brush(); };
    host.marker = [this] { return variables.Marker_Cur(); };
    host.marker_pick = [this](int marker) { Marker_Set(marker); };
    host.marker_place = [this](int marker, const Marker& place) { Marker_Place(marker, place); };
    host.note = [this](Changes changes) { hub.Note(changes); };
    host.pen_lifted = [this] { image.Slices().Pen_Lifted(); };
    host.run = [this](const std::string& what,
                      const std::function<void(const segmentation::Edit_Progress& progress)>& action) {
        segmentation_services.Run(what, action);
    };
    host.text_ask = [this](const std::string& title, const std::string& question, const std::string& start) {
        return segmentation_services.Text_Ask(title, question, start);
    };
    host.tell = [this](const std::string& text) { Status(Wide_Of_Utf8(text)); };
    host.warn = [this](const std::string& text) { Warn(text); };
    host.log = [this](const std::string& line) { report.Line(line); };
    return host;
}

}  // namespace workbench
