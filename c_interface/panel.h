/** A panel behind a handle. */
#pragma once

#include <memory>

#include "base/wheel_remainder.h"
#include "c_interface/session.h"
#include "host/kit_widgets.h"
#include "kits/widgets/widgets_host.h"

class Tool_Histo;

namespace c_interface {

/** What all panel classes have in common. Not the kits' Hosted_Panel: that one comes with a window system's headers,
 * which the native build has not, and knows its number of rows, which a caller of this interface gives with each
 * question. */
class Panel_Work {
  public:
    Panel_Work() = default;
    virtual ~Panel_Work() = default;
    Panel_Work(const Panel_Work&) = delete;
    Panel_Work& operator=(const Panel_Work&) = delete;
    virtual void Resize(Boxs* box) = 0;
    virtual int Height(unsigned short rows) = 0;
    virtual void Draw() = 0;
    virtual int Click(int up_down) = 0;
    virtual int Motion(int up_down) = 0;
    virtual int Scroll(int notches) = 0;
    virtual int Keyboard(int key) = 0;
    virtual void Leave() = 0;
    virtual void Update(unsigned __int64 flags) = 0;
    /** The brush or TAG that was picked last; -1 for panels without picks. */
    virtual int Read() { return -1; }
    /** The panel itself when it is a histogram. */
    virtual Tool_Histo* Histogram() { return nullptr; }
};

/** The panel of a kind. @param option see KIT_PANEL_ numbers. Throws Failure for a wrong one */
std::unique_ptr<Panel_Work> Panel_Work_Make(std::uint32_t kind, std::int32_t option);

/** One panel, its place and its window. */
class Panel : public Object {
  public:
    static constexpr Kind KIND = Kind::Panel;
    Panel(const kit_panel_settings& wanted, std::unique_ptr<Panel_Work> panel_work);
    ~Panel() override;

    std::uint32_t Panel_Kind() const { return settings.kind; }
    HWND Window() const { return window; }
    bool Is_Own_Window() const { return is_own; }
    Panel_Work& Work() { return *work; }
    /** Makes the own window when one is wanted; to be called once the handle is there. Throws Failure. */
    void Window_Make();
    /** The window is gone by another hand. */
    void Window_Lost();
    /** The handle is gone and the panel soon will be. */
    void Window_Hide() const;
    void Place(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height);
    /** Gives the panel its rectangle: an own window's whole client area. */
    void Lay_Out();
    /** Lays out again where it stands, for a table that has another length. */
    void Lay_Out_Again();
    void Paint();
    void Update(std::uint64_t flags);
    /** @return 1 when the panel took it */
    int Input(const kit_input& input);
    /** The wheel by parts of a notch. @param delta of the message @return notches, the rest is kept */
    int Wheel_Notches(int delta);
    bool Is_Laid_Out() const { return is_laid_out; }

  private:
    int Click(int up_down);

    kit_panel_settings settings;
    std::unique_ptr<Panel_Work> work;
    HWND window = nullptr;
    bool is_own = false;
    bool is_laid_out = false;
    Wheel_Remainder wheel;
};

/** The panel, with a window to draw in, or a Failure. */
Panel& Panel_Of_Handle(kit_handle handle);
/** Lays every panel of a kind out again and paints it. */
void Panels_Lay_Out(std::uint32_t kind);

// ---- what differs between window systems

/** A visible child window that hands its messages on to the panel with that handle; null when refused. */
HWND Child_Window_Make(HWND parent, int x, int y, int width, int height, kit_handle handle);
void Child_Window_End(HWND window);
void Child_Window_Hide(HWND window);
void Child_Window_Move(HWND window, int x, int y, int width, int height);
/** The client area, pixels; false without a window system. */
bool Client_Size(HWND window, int* width, int* height);
/** Has Settle called by the message loop. */
void Settle_Later();
/** No message calls Settle any more. */
void Settle_Later_End();
/** @return 1 used, 0 not, -1 without a window system */
int Window_Message(Panel& panel, std::uint32_t message, std::uint64_t wparam, std::int64_t lparam);

}  // namespace c_interface
