/** @file
 *  The marker panel: one button per marker in a grid of four columns. */
#pragma once

#include "host/kit_dataset.h"
#include "host/kit_widgets.h"
#include "panels/label_widgets.h"
#include "panels/protocol/kit_panels.h"

inline constexpr int MARKER_CAPACITY = 64;  ///< most markers that are shown; further ones have no button

/** Picks the current marker and edits its label in place after a right press (not marker 0's).
 *
 *  Works like Tool_Tag, with "$MARKER_NB", "$MARKER_CUR" and "$MARKER_LABEL". What differs: colours come from
 *  "$MARKER_COLOR" (0x00BBGGRR) and marker 0 has no colour of its own; there is no option word, no threshold mode and
 *  no greying; the check mark shows "$MARKER_ENABLE" where the host box asks for check marks (STYLE_SHOW_CHECK); a
 *  change of "$MARKER_NB" needs a Resize.
 */
class KIT_PANELS_API Tool_Marker {
  public:
    /** Without memory the panel has no buttons; all else works. */
    Tool_Marker();
    ~Tool_Marker();
    ///@{
    /** Shares the buttons with the original; frame, slider, editor and the current marker are its own. */
    Tool_Marker(const Tool_Marker& other);
    Tool_Marker& operator=(const Tool_Marker& other);
    ///@}

    /** @return the marker last picked by a click or announced by the host */
    int Read();
    /** Lays everything out in the host's box, with captions, colours and the current mark.
     *  Contract: a host whose box does not ask for check marks keeps those that the last Update brought. @return 1 */
    int Resize(Boxs* box);
    /** @return the height for `rows` rows of buttons, pixels */
    int Height(unsigned short rows);
    /** Paints frame, slider and the buttons in view; not the editor. */
    void Draw();
    /** @return the picked marker, -1 for none. A right press on the button of a marker from 1 on opens its editor
     *  instead; any press cancels an open edit. A release does nothing, whichever buttons are still held. */
    int Click(int up_down);
    /** @return 1 when the slider was dragged, else 0 */
    int Motion(int up_down);
    /** Wherever the pointer is. @param val notches, forward positive. @return 1 */
    int Scroll(int val);
    /** Feeds the open editor. A finished text replaces the host's "$MARKER_LABEL" element; an empty one changes
     *  nothing. Both end with Fct_Update(UPDATE_TAG_LABEL), the flag that markers share with TAGs, in which the host
     *  may call any operation and may destroy the panel. Labels are the C runtime's, as those of Tool_Tag.
     *  @param key its low 16 bits count
     *  @return 1 when an editor took the key; 0 without one, without "$MARKER_LABEL", and after a failed copy, which is
     *  reported and leaves the label null */
    int Keyboard(int key);
    /** Cancels an open edit and leaves hover and pressed looks. */
    void Leave();
    /** Tests UPDATE_TAG_CUR, _LABEL, _ENABLE and _TABLE, in this order. A missing array ends the update at its step,
     *  without painting. Never lays anything out. */
    void Update(unsigned __int64 flags);

  private:
    [[maybe_unused]] unsigned short unused = 0;  // where the TAG panel has its option word; never read
    int current = 0;
    Label_Widgets widgets;
};
