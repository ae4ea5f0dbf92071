/** @file
 *  The TAG panel: one button per TAG (segmentation label) in a grid of four columns. */
#pragma once

#include "host/kit_dataset.h"
#include "host/kit_widgets.h"
#include "panels/label_widgets.h"
#include "panels/protocol/kit_panels.h"

inline constexpr int TAG_CAPACITY = 256;  ///< most TAGs that are shown; further ones have no button

// Bits of the option word: what the buttons mirror.
inline constexpr unsigned short TAG_CHECK_SELECT = 0x0001;    ///< the check mark shows "$TAG_SELECT"
inline constexpr unsigned short TAG_CHECK_LOCK = 0x0010;      ///< the check mark shows "$TAG_LOCK"
inline constexpr unsigned short TAG_GREY_SELECTION = 0x0020;  ///< greyed when not selected and, separately, when
                                                              ///< locked; the later of the two updates decides
inline constexpr unsigned short TAG_CHECK_ENABLE = 0x0100;    ///< the check mark shows "$TAG_ENABLE"
inline constexpr unsigned short TAG_GREY_DISABLED = 0x0200;   ///< greyed when not enabled
inline constexpr unsigned short TAG_THRESHOLD_MODE =
    0x1000;  ///< captions show, and the editor edits, the lower threshold

/** Picks the current TAG, shows each TAG's state, and edits its label or lower threshold in place after a right press.
 *
 *  Lives in a window whose y grows downwards. The top row holds the four highest TAGs, the bottom row TAGs 0 to 3, and
 *  a freshly laid out panel is scrolled to its bottom. Only complete rows are shown, so a host makes the count a
 *  multiple of four. The panel does not write "$TAG_CUR": the host stores what Click returned and announces it; the
 *  host also toggles enable, select and lock. Arrays of the host have "$TAG_NB" elements at least. A copy shares the
 *  buttons with its original; they live until the last of both is gone.
 */
class KIT_PANELS_API Tool_Tag {
  public:
    /** With the option word TAG_GREY_SELECTION. Without memory the panel has no buttons; all else works. */
    Tool_Tag();
    /** @param option_word the sum of TAG_CHECK_*, TAG_GREY_* and TAG_THRESHOLD_MODE bits wanted */
    explicit Tool_Tag(unsigned short option_word);
    ~Tool_Tag();
    ///@{
    /** Shares the buttons with the original; frame, slider, editor, option word and current TAG are its own. */
    Tool_Tag(const Tool_Tag& other);
    Tool_Tag& operator=(const Tool_Tag& other);
    ///@}

    /** Replaces the option word; draws nothing. */
    void Flag(unsigned short option_word);
    /** @return the TAG last picked by a click or announced by the host */
    int Read();
    /** Lays everything out in the host's box; captions and colours are read, marks and greying follow with Update.
     *  @return 1 */
    int Resize(Boxs* box);
    /** @return the height for `rows` rows of buttons, pixels */
    int Height(unsigned short rows);
    /** Paints frame, slider and the buttons in view; not the editor. */
    void Draw();
    /** @return the picked TAG, -1 for none. A right press on the button of a TAG from 1 on opens its editor instead;
     *  any press cancels an open edit. A release does nothing, whichever buttons are still held. */
    int Click(int up_down);
    /** @return 1 when the slider was dragged, else 0 */
    int Motion(int up_down);
    /** Wherever the pointer is. @param val notches, forward positive. @return 1 */
    int Scroll(int val);
    /** Feeds the open editor. A finished text replaces the host's "$TAG_LABEL" element or, in threshold mode, the
     *  "$TAG_THRESHOLD_MIN" element, by the number (float)atof(text); an empty one changes nothing. Both end with
     *  Fct_Update(UPDATE_TAG_LABEL), in which the host may call any operation and may destroy the panel. Labels are the
     *  C runtime's: the old one is given back by free, the new one comes from malloc. So the host's labels come from
     *  the same runtime (Variable_Set_Array_Text of kits/dataset/dataset_host.h sees to that).
     *  @param key its low 16 bits count
     *  @return 1 when an editor took the key; 0 without one, without "$TAG_LABEL", and after a failed copy, which is
     *  reported and leaves the label null */
    int Keyboard(int key);
    /** Cancels an open edit and leaves hover and pressed looks. */
    void Leave();
    /** Tests UPDATE_TAG_ENABLE, _SELECT, _LOCK, _CUR, _LABEL and _TABLE, in this order. A missing array ends the update
     *  at its step, without painting. UPDATE_TAG_TABLE lays out the buttons of the present count and scrolls to the
     *  bottom again. TAGs that it brings can be drawn, picked and edited at once; their captions, marks and greying
     *  come by the flags of the arrays, so a host sends those along. It repaints the buttons only when a colour
     *  changed, so a host that changed the count draws the panel; and the columns stay where Resize put them, so it
     *  lays the panel out when the slider came or went. */
    void Update(unsigned __int64 flags);

  private:
    unsigned short option;
    int current = 0;
    Label_Widgets widgets;
};
