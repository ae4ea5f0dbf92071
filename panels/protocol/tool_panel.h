/** The protocol that every tool panel follows.
 *
 *  A panel is a plain exported class, owned by the host and used on the host's user-interface thread only. It holds no
 *  pointer to the host: shared state is read from host variables (host/kit_dataset.h) whenever it is needed, and what a
 *  panel changes it announces by Fct_Update and Fct_Redraw. No operation lets an exception out.
 *
 *  Order of calls: constructor; Resize, before anything else; then Height, Draw, the events and Update in any order,
 *  Resize again whenever the panel's rectangle changes; destructor.
 *
 *  Resize(box)      takes over the rectangle, fonts, colour, border and window of the host box and lays everything out;
 *                   draws nothing. The result is 1.
 *  Height(...)      the height that the panel wants, pixels. The TAG and marker panels take a number of button rows.
 *  Draw()           paints everything.
 *  Click(up_down)   a mouse button went down or up over the panel; the code is made of MOUSE_PRESS, MOUSE_LEFT,
 *                   MOUSE_MIDDLE and MOUSE_RIGHT. The TAG and marker panels return the picked index, -1 for none; the
 *                   others 1 when they used the event, else 0. A code without MOUSE_PRESS is a release and is
 *                   ignored, whichever buttons it names as held.
 *  Motion(up_down)  the pointer moved over the panel; MOUSE_DRAG while a button is held. 1 when the panel's own display
 *                   changed, for example because its slider is being dragged.
 *  Scroll(val)      the wheel turned by whole notches, forward positive.
 *  Keyboard(key)    a key was typed while the pointer is over the panel: a character code, or KEY_SPECIAL plus the
 *                   virtual-key code of a key without a character; the low 16 bits count. Panels with lists want
 *                   Key_In_Hand_Set of the kits called with the key before. 1 when the panel used it.
 *  Leave()          the pointer left the panel: ends in-place editing, hover and pressed looks.
 *  Update(flags)    shared state changed; `flags` (UPDATE_*) say what. The panel reads it again and repaints only what
 *                   differs. A panel's own Fct_Update comes back to it too, possibly before that call returns.
 *
 *  Some operations call out: they run a drop list or a dialog, or end in Fct_Update, Fct_Change_Child or a function of
 *  the host; each header names its own. In there the host may call any operation of any panel, and may destroy the very
 *  panel: the operation then returns without touching it again. Objects that an operation was given, or that it shows,
 *  outlive it.
 *
 *  The host sets YCursor_X and YCursor_Y before every event. A host variable that does not exist makes an operation
 *  return at once, without a message; a scalar that does not exist counts as 0.
 *
 *  Every operation but Motion, Leave, Read and Flag is traced by Error_Fct at TRACE_LEVEL, the marker panel's one level
 *  below: hosts filter by level.
 */
#pragma once

#include <concepts>

#include "host/kit_dataset.h"
#include "host/kit_widgets.h"

/** True for a class that a host can place in its tool area. */
template <class Panel>
concept Tool_Panel = std::copyable<Panel> && requires(Panel panel, Boxs* box, int code, unsigned __int64 flags) {
    { panel.Resize(box) } -> std::same_as<int>;
    { panel.Draw() } -> std::same_as<void>;
    { panel.Click(code) } -> std::same_as<int>;
    { panel.Motion(code) } -> std::same_as<int>;
    { panel.Scroll(code) } -> std::same_as<int>;
    { panel.Keyboard(code) } -> std::same_as<int>;
    { panel.Leave() } -> std::same_as<void>;
    { panel.Update(flags) } -> std::same_as<void>;
};
