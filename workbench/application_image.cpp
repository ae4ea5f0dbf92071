// The image: slices, painting, markers, window and level, what is under the mouse.
#include <algorithm>
#include <cmath>
#include <cwchar>

#include "workbench/application.h"
#include "workbench/wide_text.h"

namespace {

constexpr int marker_reach = 5;  // slice pixels within which a press takes hold of a marker

std::wstring Number_Text(double value, int decimals) {
    wchar_t text[64] = {};
    std::swprintf(text, 64, L"%.*f", decimals, value);
    return text;
}

}  // namespace

Tag_Overlay Application::Overlay_Now() const {
    Tag_Overlay overlay;
    for (int tag = 0; tag < TAG_MAX; ++tag) {
        overlay.color[static_cast<std::size_t>(tag)] = variables.Tag_Color(tag);
    }
    if (is_overlay_shown) {
        std::ranges::copy(variables.Tag_Enable(), overlay.shown.begin());
    }
    return overlay;
}

Image_Content Application::Content() const {
    Image_Content content;
    if (!session.Has_Volume()) {
        return content;
    }
    const Volume& volume = session.Image();
    content.source = {session.Width(),
                      session.Height(),
                      session.Levels(slice),
                      volume.color,
                      static_cast<float>(volume.slope),
                      static_cast<float>(volume.intercept),
                      session.Labels().Slice(slice)};
    content.window = grey_window;
    content.overlay = Overlay_Now();
    const auto tag = static_cast<std::size_t>(variables.Tag_Cur());
    const float low = variables.Threshold_Min()[tag];
    const float high = variables.Threshold_Max()[tag];
    if ((is_threshold_mode || is_range_shown) && (low > TAG_THRESHOLD_MIN_UNSET || high < TAG_THRESHOLD_MAX_UNSET)) {
        content.range = Range_Overlay{low, high, variables.Tag_Color(variables.Tag_Cur())};
    }
    content.order = session.Order();
    const std::string& orientation = volumes.View(volumes.Current()).orientation;
    const bool is_lost = volume.affine_source == Affine_Source::SPACING;
    if (is_lost && !Letters_Set(orientation, content.order)) {
        // The file does not say how the patient lies.
        content.order.left = content.order.right = content.order.top = content.order.bottom = ' ';
    }
    for (int marker = 0; marker < MARKER_NB; ++marker) {
        const Marker place = session.Markers().Get(marker);
        if (place.is_placed && place.slice == slice) {
            content.markers.push_back({place.x, place.y, variables.Marker_Color(marker),
                                       Wide_Of_Panel(variables.Marker_Name(marker).c_str()),
                                       marker == variables.Marker_Cur()});
        }
    }
    content.slice = slice;
    content.slice_nb = session.Slice_Nb();
    content.pixel_aspect = volume.spacing[1] / volume.spacing[0];
    content.caption = L"Slice " + std::to_wstring(slice + 1) + L" / " + std::to_wstring(session.Slice_Nb()) + L"\nW " +
                      Number_Text(grey_window.high - grey_window.low, 1) + L"  L " +
                      Number_Text((grey_window.high + grey_window.low) / 2.0, 1);
    if (is_lost) {
        content.caption += orientation.empty() ? L"\nOrientation not known" : L"\nOrientation as chosen";
    }
    return content;
}

void Application::Slice_Show(int wanted, bool tell_panels) {
    if (!session.Has_Volume()) {
        return;
    }
    Stroke_End();
    slice = std::clamp(wanted, 0, session.Slice_Nb() - 1);
    objects.Show(slice);
    unsigned __int64 flags = UPDATE_FRAME_CUR;
    if (is_histogram_of_shown) {
        Histogram_Select();
        flags |= UPDATE_SELECTION | UPDATE_LEVEL_2D | UPDATE_HISTO_PAINT;
    }
    if (tell_panels) {
        Announce(flags);
    }
    report.Line("slice " + std::to_string(slice));
}

void Application::Slice_Go(int wanted) {
    if (session.Has_Volume() && std::clamp(wanted, 0, session.Slice_Nb() - 1) != slice) {
        Slice_Show(wanted, true);
    }
}

void Application::Window_Reset() {
    grey_window = {static_cast<float>(statistics.window_low), static_cast<float>(statistics.window_high)};
    image.Refresh();
}

void Application::Window_Drag(float dx, float dy) {
    grey_window = grey_window.Dragged(dx, dy, static_cast<float>(statistics.max - statistics.min));
    image.Refresh();
}

Paint_Ink Application::Ink(bool erase) {
    Paint_Ink ink;
    ink.tag = erase ? std::uint8_t{0} : static_cast<std::uint8_t>(variables.Tag_Cur());
    std::ranges::copy(variables.Tag_Lock(), ink.locked.begin());
    // The background cannot be locked away from painting: there would be nothing to paint on.
    ink.locked[0] = 0;
    return ink;
}

Pixel_Rect Application::Stroke_Begin(int x, int y, bool erase) {
    if (!erase && variables.Tag_Enable()[static_cast<std::size_t>(variables.Tag_Cur())] == 0) {
        Status(L"The current TAG is hidden: press E to show it");
    }
    return session.Stroke_Begin(slice, variables.Brush(), x, y, Ink(erase));
}

Pixel_Rect Application::Stroke_Move(int x, int y) {
    return session.Stroke_Move(x, y);
}

void Application::Stroke_End() {
    if (session.Stroke_End()) {
        Title_Refresh();
        Histogram_Tag_Refresh();
        report.Line("stroke");
    }
}

void Application::Pick(int x, int y) {
    Tag_Set(session.Labels().At(x, y, slice), true);
}

void Application::Marker_Press(int x, int y) {
    if (x < 0 || x >= session.Width() || y < 0 || y >= session.Height()) {
        return;
    }
    dragged_marker = session.Markers().Near(x, y, slice, marker_reach).value_or(variables.Marker_Cur());
    marker_before = session.Markers().Get(dragged_marker);
    if (dragged_marker != variables.Marker_Cur()) {
        Marker_Set(dragged_marker);
    }
    Marker_Move(x, y);
}

void Application::Marker_Move(int x, int y) {
    if (dragged_marker < 0) {
        return;
    }
    const Marker place = {true, std::clamp(x, 0, session.Width() - 1), std::clamp(y, 0, session.Height() - 1), slice};
    session.Marker_Preview(dragged_marker, place);
    image.Refresh();
}

void Application::Marker_Release() {
    if (dragged_marker < 0) {
        return;
    }
    // The whole way is one step of the history.
    const int marker = std::exchange(dragged_marker, -1);
    const Marker place = session.Markers().Get(marker);
    session.Marker_Preview(marker, marker_before);
    Marker_Place(marker, place);
}

void Application::Hover(int x, int y) {
    const bool is_inside = x >= 0 && x < session.Width() && y >= 0 && y < session.Height();
    variables.Mouse_Set(is_inside ? objects.Frame(slice) : nullptr, static_cast<float>(x), static_cast<float>(y));
    Announce(UPDATE_MOUSE_FRAME);
    if (is_inside) {
        Voxel_Text(x, y);
    } else {
        status_line.Voxel_Set(L"");
    }
}

void Application::Hover_End() {
    variables.Mouse_Set(nullptr, 0.0F, 0.0F);
    Announce(UPDATE_MOUSE_FRAME);
    status_line.Voxel_Set(L"");
}

void Application::Voxel_Text(int x, int y) {
    const Volume& volume = session.Image();
    const File_Voxel voxel = session.To_File(x, y, slice);
    std::wstring text =
        L"(" + std::to_wstring(voxel.x) + L", " + std::to_wstring(voxel.y) + L", " + std::to_wstring(voxel.z) + L")   ";
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto& row = volume.affine[axis];
        text += Number_Text(row[0] * voxel.x + row[1] * voxel.y + row[2] * voxel.z + row[3], 1) +
                (axis < 2 ? L", " : L" mm");
    }
    text += L"   grey " + Number_Text(session.Grey(x, y, slice), volume.slope == 1.0 ? 0 : 2);
    const int tag = session.Labels().At(x, y, slice);
    text += L"   TAG " + std::to_wstring(tag) + L" " + Wide_Of_Panel(variables.Tag_Name(tag).c_str());
    status_line.Voxel_Set(text);
}
