// A long random session of the enlarged window: whatever comes in whatever order, its invariants hold.
#include <algorithm>
#include <cmath>
#include <random>

#include "tests/histogram/blow_stage.h"
#include "tests/support/import_hook.h"
#include "tests/support/own_window.h"

namespace {

constexpr int EVENT_NB = 20000;

/** What the window shows in one direction, and where on the screen. */
struct Shown {
    Blow_Range range;
    Blow_Range full;
    int first = 0;  ///< pixel of the range's start
    int pixels = 0;

    bool Is_Empty() const { return pixels <= 0 || !(range.start < range.end); }
    float Extent() const { return range.end - range.start; }
    float Value(int pixel) const {
        return range.start + Extent() * static_cast<float>(pixel - first) / static_cast<float>(pixels);
    }
    bool Contains(int pixel) const { return pixel >= first && pixel <= first + pixels; }
    /** True when a limit holds the view: then the data may move under the pointer. */
    bool Is_At_Limit() const {
        const float slack = 1e-3F * Extent();
        return range.start <= full.start + slack || range.end >= full.end - slack;
    }
    /** Rounding of single precision in numbers of this size, and a thousandth of what is seen. */
    float Slack() const { return 1e-3F * Extent() + 1e-5F * (std::abs(full.start) + std::abs(full.end)); }
};

Shown Shown_X() {
    const Blow_View& view = histo_blow.view;
    return {view.Visible_X(), view.X().full, histo_blow.area.x, histo_blow.area.width};
}
Shown Shown_Y() {
    const Blow_View& view = histo_blow.view;
    return {view.Visible_Y(), view.Y().full, histo_blow.area.y, histo_blow.area.height};
}

/** True when the unzoomed view cuts off a part of where the view stands: then the pixels stand for other data. */
bool Is_Cut(const Blow_Direction& direction) {
    const Blow_Range seen = direction.Visible(true);
    const float end = direction.at.origin + static_cast<float>(direction.pixels) * direction.at.scale;
    const float slack = 1e-3F * (seen.end - seen.start);
    return direction.at.origin < seen.start - slack || end > seen.end + slack;
}

/** An origin is where the clamp leaves it: at the full start, or not so far up that a view of this extent passes the
 * end. New data may leave a view that is larger than they are. */
void Expect_Origin_In_Limits(float origin, const Blow_Range& full, float extent) {
    const float slack = 1e-3F * (std::abs(full.end) + std::abs(full.start) + 1.0F);
    const float highest = full.end - extent;
    EXPECT_GE(origin, std::min(full.start, highest) - slack);
    EXPECT_LE(origin, std::max(full.start, highest) + slack);
}

/** Fonts that the library has made for its callers, who delete them. */
std::uint64_t fonts_made = 0;
decltype(&Y_Create_Font) font_make = nullptr;

HFONT Font_Make(HWND window, const char* name, const char* weight, int pixel_height) {
    ++fonts_made;
    return font_make(window, name, weight, pixel_height);
}

Import_Hook Font_Hook() {
    for (const std::string& name : Import_Names("", "Kit_Widgets.dll")) {
        if (name.find("Y_Create_Font") != std::string::npos) {
            return {"", "Kit_Widgets.dll", name.c_str(), reinterpret_cast<void*>(&Font_Make)};
        }
    }
    return {};
}

/** What the panel takes of the device and gives back. */
class Device_Balance {
  public:
    Device_Balance() : fonts(Font_Hook()) {
        fonts_made = 0;
        font_make = reinterpret_cast<decltype(&Y_Create_Font)>(fonts.Original());
    }
    void Expect_Even() const {
        // The system deletes a class's brush with the class.
        EXPECT_EQ(gdi.Calls("CreateSolidBrush") + gdi.Calls("CreateDIBSection") + gdi.Calls("CreatePen") + fonts_made,
                  gdi.Calls("DeleteObject") + user.Calls("UnregisterClassA"))
            << gdi.Text();
        EXPECT_EQ(gdi.Calls("CreateCompatibleDC"), gdi.Calls("DeleteDC"));
        EXPECT_EQ(gdi.Calls("SaveDC"), gdi.Calls("RestoreDC"));
        EXPECT_EQ(user.Calls("GetDC"), user.Calls("ReleaseDC"));
        EXPECT_EQ(user.Calls("BeginPaint"), user.Calls("EndPaint"));
        EXPECT_GT(fonts_made, 100U);
        EXPECT_GT(gdi.Calls("CreateDIBSection"), 50U);
    }

  private:
    Import_Hook fonts;
    Import_Counter gdi{"", "gdi32.dll"};
    Import_Counter user{"", "user32.dll"};
};

class Blow_Storm : public Blow_Stage {
  protected:
    int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
    bool One_In(int nb) { return Pick(1, nb) == 1; }
    int Any_X() { return Pick(-5, histo_blow.width + 5); }
    int Any_Y() { return Pick(-5, histo_blow.height + 5); }
    bool Can_Zoom() const { return panel->data != nullptr && panel->data->Has_Counts() && !histo_blow.area.Is_Empty(); }

    /** One notch, and what must hold after it. */
    void Notch() {
        Histo_Blow_Draw();  // news that wait would move the view between the two looks at it
        const int x = Any_X();
        const int y = Any_Y();
        const bool over = x >= 1 && y >= 1 && x < histo_blow.width - 1 && y < histo_blow.height - 1;
        const int delta = One_In(2) ? 120 : -120;
        const bool turned = std::abs(histo_blow.wheel.Rest() + delta) >= 120;
        const Shown before_x = Shown_X();
        const Shown before_y = Shown_Y();
        const bool cut_x = Is_Cut(histo_blow.view.X());
        const bool cut_y = Is_Cut(histo_blow.view.Y());
        SCOPED_TRACE("a notch");
        Wheel(delta, x, y);
        if (!turned || !over || !Can_Zoom()) {
            return;
        }
        const Blow_View& view = histo_blow.view;
        EXPECT_TRUE(view.Is_Zoomed());
        Expect_Origin_In_Limits(view.X().at.origin, view.X().full,
                                view.X().at.scale * static_cast<float>(Shown_X().pixels));
        Expect_Origin_In_Limits(view.Y().at.origin, view.Y().full,
                                view.Y().at.scale * static_cast<float>(Shown_Y().pixels));
        if (!cut_x) {
            Expect_Fixed(before_x, Shown_X(), x);
        }
        if (!cut_y) {
            Expect_Fixed(before_y, Shown_Y(), y);
        }
    }
    void Expect_Fixed(const Shown& before, const Shown& now, int pixel) {
        if (before.Is_Empty() || now.pixels != before.pixels || now.Is_At_Limit() || !before.Contains(pixel)) {
            return;
        }
        EXPECT_NEAR(now.Value(pixel), before.Value(pixel), before.Slack());
        ++fixed_nb;
    }

    void Pinch() {
        Histo_Blow_Draw();
        const float f = static_cast<float>(Pick(80, 115)) / 100.0F;
        const Blow_Direction x = histo_blow.view.X();
        const Blow_Direction y = histo_blow.view.Y();
        SCOPED_TRACE("a pinch");
        const int done = Histo_Blow_Pinch({f, f, static_cast<float>(Pick(-50, 50)), static_cast<float>(Pick(-50, 50))});
        EXPECT_EQ(done, Can_Zoom() && f <= 1.1F ? 1 : 0);
        if (done != 0) {
            // The fingers' way is limited before the scale changes.
            Expect_Origin_In_Limits(histo_blow.view.X().at.origin, x.full, static_cast<float>(x.pixels) * x.at.scale);
            Expect_Origin_In_Limits(histo_blow.view.Y().at.origin, y.full, static_cast<float>(y.pixels) * y.at.scale);
        }
    }

    /** Presses stay below the controls: a selector's field would open its list and wait for somebody. */
    int Any_Press_Y() {
        int y = Any_Y();
        for (const Selects* select : {&histo_blow.tag_select, &histo_blow.cursor_select, &histo_blow.peak_select}) {
            y = std::min(y, select->y - 1);
        }
        return y;
    }
    void Drag_With_Another_Button() {
        Press(Any_X(), Any_Press_Y());
        if (One_In(2)) {
            held |= MOUSE_RIGHT;
        }
        Move(Pick(0, histo_blow.width), Pick(0, histo_blow.height));
        held &= ~MOUSE_RIGHT;
        Release(Any_X(), Any_Press_Y());
    }

    void New_Data() {
        if (One_In(5)) {
            std::vector<std::uint32_t> counts;
            const int nb = Pick(2, 300);  // one bin has no extent in x
            for (int bin = 0; bin < nb; ++bin) {
                counts.push_back(static_cast<std::uint32_t>(Pick(0, 5000)));
            }
            counts.back() = 17;  // some count: an empty direction has no scale
            Histo_Record_Give(*panel, {static_cast<float>(Pick(-1000, 1000)), static_cast<float>(Pick(1, 9))}, counts);
        } else if (One_In(10)) {
            panel->data->Record_Empty();
        }
        ::PostMessageA(Window(), DATA, 0, 0);
    }

    /** Panels come and go while the window is open; any panel that goes takes it along. */
    void Panel_Comes_And_Goes() {
        const HWND window = Window();
        if (One_In(2)) {
            auto second = std::make_unique<Tool_Histo>();
            stage.Lay_Out(*second);
            Press_Blow(*second);
            EXPECT_EQ(Window(), window) << "only raised";
            EXPECT_EQ(histo_blow.panel, &*panel);
            second.reset();
        } else {
            panel.emplace();
            stage.Lay_Out(*panel);
        }
        EXPECT_EQ(::IsWindow(window), 0);
        EXPECT_EQ(Window(), nullptr);
        if (!panel->data->Has_Counts()) {
            Give_Record(*panel);
        }
        Press_Blow(*panel);
    }

    void Any_Event() {
        switch (Pick(0, 12)) {
            case 0:
            case 1:
                return Notch();
            case 2:
                return Wheel(Pick(-500, 500), Any_X(), Any_Y());
            case 3:
                return Drag(Any_X(), Any_Press_Y(), Pick(0, histo_blow.width), Pick(0, histo_blow.height));
            case 4:
                return Pinch();
            case 5:
                return One_In(10) ? Client_Size_Set(Pick(120, 900), Pick(60, 500)) : Settle();
            case 6:
                return New_Data();
            case 7:
                return Peaks_Give(*panel, One_In(2) ? PEAK_GAUSS : PEAK_SEGMENT, Pick(0, 3));
            case 8:
                Click_On(histo_blow.reset_button);
                EXPECT_FALSE(histo_blow.view.Is_Zoomed());
                return;
            case 9:
                if (histo_blow.tag_select.arrow > 0) {
                    Next_On(histo_blow.tag_select);
                    Previous_On(histo_blow.cursor_select);
                }
                return;
            case 10:
                return Drag_With_Another_Button();
            case 11:
                return One_In(20) ? Panel_Comes_And_Goes() : static_cast<void>(Send(CURSOR));
            default:
                return Settle();
        }
    }

    int fixed_nb = 0;  ///< how often a value under the pointer was compared

  private:
    std::mt19937 random{20261121};
};

}  // namespace

TEST_F(Blow_Storm, twenty_thousand_random_events_keep_every_invariant) {
    const Device_Balance balance;
    Open();
    Send(DATA);
    for (int event = 0; event < EVENT_NB && !HasFailure(); ++event) {
        SCOPED_TRACE(event);
        Any_Event();
        ASSERT_NE(Window(), nullptr);
        const Blow_View& view = histo_blow.view;
        EXPECT_TRUE(std::isfinite(view.X().at.origin) && std::isfinite(view.Y().at.origin));
        EXPECT_GT(view.X().at.scale, 0.0F);
        EXPECT_GT(view.Y().at.scale, 0.0F);
        EXPECT_FALSE(histo_blow.dragging) << "event " << event;
        EXPECT_EQ(Y_DC, nullptr) << "every drawing has ended";
        if (event % 100 == 0) {
            EXPECT_EQ(Find_Own_Windows(L"Histogram", {}).count, 1);
        }
        stage.Take_Messages();
    }
    Send(WM_CLOSE);
    balance.Expect_Even();
    EXPECT_GT(fixed_nb, 200);
}
