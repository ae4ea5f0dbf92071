/** A panel in a window of its own: events go in, drawing comes out at once. */
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/wheel_remainder.h"
#include "host/kit_dataset.h"
#include "kits/widgets/widgets_host.h"
#include "workbench/accessible.h"
#include "workbench/look.h"
#include "workbench/window_base.h"

namespace workbench {

/** A panel of any class, as its window hosts it. */
class Hosted_Panel {
  public:
    Hosted_Panel() = default;
    virtual ~Hosted_Panel() = default;
    Hosted_Panel(const Hosted_Panel&) = delete;
    Hosted_Panel& operator=(const Hosted_Panel&) = delete;
    virtual void Resize(Boxs* box) = 0;
    virtual int Height() = 0;
    virtual void Draw() = 0;
    virtual int Click(int up_down) = 0;
    virtual int Motion(int up_down) = 0;
    virtual int Scroll(int notches) = 0;
    virtual int Keyboard(int key) = 0;
    virtual void Leave() = 0;
    virtual void Update(unsigned __int64 flags) = 0;
};

/** A panel of the module, hosted as it is. @tparam Panel one of its classes */
template <class Panel>
class Panel_Of : public Hosted_Panel {
  public:
    /** @param wanted the height that the panel wants, pixels */
    Panel_Of(Panel& hosted, std::function<int(Panel&)> wanted) : panel(hosted), height(std::move(wanted)) {}
    void Resize(Boxs* box) override { panel.Resize(box); }
    int Height() override { return height(panel); }
    void Draw() override { panel.Draw(); }
    int Click(int up_down) override { return panel.Click(up_down); }
    int Motion(int up_down) override { return panel.Motion(up_down); }
    int Scroll(int notches) override { return panel.Scroll(notches); }
    int Keyboard(int key) override { return panel.Keyboard(key); }
    void Leave() override { panel.Leave(); }
    void Update(unsigned __int64 flags) override { panel.Update(flags); }

  private:
    Panel& panel;
    std::function<int(Panel&)> height;
};

/** The window of one panel. Sets the pointer globals before every event, forwards it, and shows what the panel drew in
 *  one piece. */
class Panel_Host : public Window_Base {
  public:
    /** @param hosted outlives the window
     *  @param on_click called with what Click returned and the event code, after every click */
    Panel_Host(Hosted_Panel& hosted, const Look& shared_look, std::function<void(int, int)> on_click);
    ~Panel_Host() override;
    /** Creates the window, hidden. @return false when the system refuses */
    bool Make(HWND parent, Window_Axis axis);

    /** Another face than the look's, with texts of a fixed height: for panels whose colours are made for it.
     *  @param grey of the face; @param font_height pixels at 96 dots per inch */
    void Face_Set(unsigned short grey, int font_height) {
        face_grey = grey;
        face_font = font_height;
    }
    /** What the panel is called for screen readers.
     *  @param part_name names parts without a caption, by their number among these; may be empty
     *  @param own_parts for panels that draw more than the library's widgets; may be empty */
    void Accessible_Names(const std::wstring& name, std::function<std::wstring(int)> part_name = {},
                          std::function<std::vector<Accessible_Part>()> own_parts = {});
    /** Gives the panel the whole window as its box. To be called again after a change of the look. */
    void Lay_Out();
    int Wanted_Height() { return panel.Height(); }
    void Update(unsigned __int64 flags);
    /** Draws the panel anew, at once. */
    void Refresh() { Paint(); }
    /** The wheel over this window. @param delta of the message; parts of a notch are kept */
    void Wheel(int delta);
    /** @return true when the panel used the key */
    bool Key(int key);
    /** Runs a call of the panel and shows everything that it draws at once. */
    template <class Call>
    auto Buffered(Call call) {
        const Buffer buffer(Handle());
        return call();
    }
    bool Is_Ready() const { return is_laid_out; }

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override;

  private:
    struct Buffer {
        explicit Buffer(HWND of_window) : window(of_window) { Window_Buffer_Begin(window); }
        ~Buffer() { Window_Buffer_End(window); }
        Buffer(const Buffer&) = delete;
        Buffer& operator=(const Buffer&) = delete;
        HWND window;
    };
    void Click(LPARAM position, int up_down);
    void Clear();
    void Paint();

    Hosted_Panel& panel;
    const Look& look;
    std::function<void(int, int)> clicked;
    unsigned short face_grey = 0;  // 0: the look's
    int face_font = 0;
    Wheel_Remainder wheel;
    bool is_laid_out = false;
    bool is_watched = false;  // the library notes what it paints, from the first question on
};

}  // namespace workbench
