#include "workbench/name_tip.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>

#include "workbench/window_base.h"

namespace workbench {

namespace {

constexpr UINT_PTR TIMER_OF_TIP = 43;
constexpr int ROOM_AROUND = 4;     // pixels at 96 dots per inch, on each side of a name
constexpr int BELOW_POINTER = 20;  // pixels at 96 dots per inch

struct Source {
    const Look* look = nullptr;
    std::function<std::vector<Accessible_Part>()> parts;
};

/** Never takes the mouse or the keys. */
class Tip_Window : public Window_Base {
  public:
    Tip_Window(HWND owner, const Look& shared_look, const std::wstring& name) : look(shared_look), text(name) {
        if (!Create(owner, WS_POPUP | WS_DISABLED, name.c_str())) {
            return;
        }
        ::SetWindowLongPtrW(Handle(), GWL_EXSTYLE, WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE | WS_EX_TRANSPARENT);
    }

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override {
        if (message == WM_ERASEBKGND) {
            return 1;
        }
        if (message != WM_PAINT) {
            return Window_Base::On_Message(message, wparam, lparam);
        }
        const Buffered_Paint paint(Handle());
        Fill(paint.Dc(), paint.Client(), look.heading);
        Frame(paint.Dc(), paint.Client(), look.Px(1), look.text_grey);
        Draw_Line(paint.Dc(), paint.Client(), text, look.Font(), look.text, DT_CENTER);
        return 0;
    }

  private:
    const Look& look;
    std::wstring text;
};

struct Tip {
    std::map<HWND, Source> sources;
    HWND over = nullptr;  // the window that the mouse is in
    POINT at = {-1, -1};
    std::unique_ptr<Tip_Window> shown;
};

Tip& The_Tip() {
    static Tip tip;
    return tip;
}

SIZE Text_Size(HFONT font, const std::wstring& text) {
    const Memory_DC dc(nullptr);
    const Selected_Object selected(dc.Get(), font);
    SIZE size = {};
    ::GetTextExtentPoint32W(dc.Get(), text.c_str(), static_cast<int>(text.size()), &size);
    return size;
}

/** Below the pointer, inside its screen. */
void Tip_Show(HWND owner, const Look& look, const std::wstring& text) {
    const SIZE size = Text_Size(look.Font(), text);
    const int width = size.cx + look.Px(4 * ROOM_AROUND);
    const int height = size.cy + look.Px(ROOM_AROUND);
    POINT place = The_Tip().at;
    ::ClientToScreen(owner, &place);
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    RECT screen = {place.x - width, place.y - height, place.x + width, place.y + 2 * height + look.Px(BELOW_POINTER)};
    if (::GetMonitorInfoW(::MonitorFromPoint(place, MONITOR_DEFAULTTONEAREST), &monitor) != 0) {
        screen = monitor.rcWork;
    }
    const int x = std::max<int>(screen.left, std::min<int>(place.x, screen.right - width));
    const bool is_above = place.y + look.Px(BELOW_POINTER) + height > screen.bottom;
    const int y = is_above ? place.y - height - look.Px(ROOM_AROUND) : place.y + look.Px(BELOW_POINTER);
    The_Tip().shown = std::make_unique<Tip_Window>(::GetAncestor(owner, GA_ROOT), look, text);
    ::SetWindowPos(The_Tip().shown->Handle(), HWND_TOPMOST, x, y, width, height, SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

void CALLBACK On_Rest(HWND window, UINT, UINT_PTR id, DWORD) {
    ::KillTimer(window, id);
    Tip& tip = The_Tip();
    const auto source = tip.sources.find(window);
    if (source == tip.sources.end() || window != tip.over || tip.shown != nullptr) {
        return;
    }
    const Look& look = *source->second.look;
    const std::vector<Accessible_Part> parts = source->second.parts();
    const Accessible_Part* part = Part_Cut_At(parts, tip.at, [&](const std::wstring& name) {
        return static_cast<int>(Text_Size(look.Font(), name).cx) + look.Px(2 * ROOM_AROUND);
    });
    if (part != nullptr) {
        Tip_Show(window, look, part->name);
    }
}

}  // namespace

void Name_Tip_Set(HWND window, const Look& shared_look, std::function<std::vector<Accessible_Part>()> parts) {
    The_Tip().sources[window] = {&shared_look, std::move(parts)};
}

void Name_Tip_Forget(HWND window) {
    if (The_Tip().over == window) {
        Name_Tip_Hide();
    }
    The_Tip().sources.erase(window);
}

void Name_Tip_Follow(HWND window, POINT client) {
    Tip& tip = The_Tip();
    // The system repeats the last move when a window comes or goes.
    if (window == tip.over && client.x == tip.at.x && client.y == tip.at.y) {
        return;
    }
    Name_Tip_Hide();
    if (tip.sources.contains(window)) {
        tip.over = window;
        tip.at = client;
        ::SetTimer(window, TIMER_OF_TIP, NAME_TIP_REST_MS, &On_Rest);
    }
}

void Name_Tip_Hide() {
    Tip& tip = The_Tip();
    if (tip.over != nullptr) {
        ::KillTimer(tip.over, TIMER_OF_TIP);
        tip.over = nullptr;
    }
    tip.shown.reset();
}

HWND Name_Tip_Window() {
    return The_Tip().shown != nullptr ? The_Tip().shown->Handle() : nullptr;
}

const Accessible_Part* Part_Cut_At(const std::vector<Accessible_Part>& parts, POINT client,
                                   const std::function<int(const std::wstring& name)>& width_of) {
    for (const Accessible_Part& part : parts) {
        if (part.name.empty() || ::PtInRect(&part.place, client) == 0) {
            continue;
        }
        const int height = part.place.bottom - part.place.top;
        const int before = (part.level + 1) * height;
        if (width_of(part.name) + before > part.place.right - part.place.left) {
            return &part;
        }
    }
    return nullptr;
}

}  // namespace workbench
