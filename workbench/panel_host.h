/** A panel in a window of its own: events go in, drawing comes out at once. */
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/kit_dataset.h"
#include "kits/widgets/panel_window.h"
#include "kits/widgets/widgets_host.h"
#include "workbench/accessible.h"
#include "workbench/look.h"
#include "workbench/window_base.h"

namespace workbench {

using kit::Hosted_Panel;
using kit::Panel_Of;

/** The window of one panel, in the look of the workbench, with names for screen readers and tips. */
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
    void Update(unsigned __int64 flags) { core.Update(flags); }
    /** Draws the panel anew, at once. */
    void Refresh() { core.Refresh(); }
    /** The wheel over this window. @param delta of the message; parts of a notch are kept */
    void Wheel(int delta) { core.Wheel(delta); }
    /** @return true when the panel used the key */
    bool Key(int key) { return core.Key(key); }
    /** Runs a call of the panel and shows everything that it draws at once. */
    template <class Call>
    std::invoke_result_t<Call> Buffered(Call call) {
        return core.Buffered(call);
    }
    bool Is_Ready() const { return core.Is_Ready(); }

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override;

  private:
    Hosted_Panel& panel;
    const Look& look;
    kit::Panel_Window core;
    unsigned short face_grey = 0;  // 0: the look's
    int face_font = 0;
    bool is_watched = false;  // the library notes what it paints, from the first question on
};

}  // namespace workbench
