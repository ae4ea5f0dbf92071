/** @file
 *  The propagate panel: steps through the frames of a volume and carries work from frame to frame. */
#pragma once

#include "host/kit_dataset.h"
#include "host/kit_widgets.h"
#include "panels/protocol/kit_panels.h"
#include "panels/protocol/panel_life.h"

/** Steps the focused image window to the next ("Up") or previous ("Down") frame of its volume and runs the host's
 *  propagation function on the frame that was shown and the one that is shown now; jumps to any frame by a list, by
 *  keys or by the wheel without running it.
 *
 *  Shared state: "$WINDOW_CUR" the focused window, "$FRAME_CUR" the frame shown in each window, "$INTERFACE_LOCK_FOCUS"
 *  1 while the function runs. The panel asks for another frame by Fct_Change_Child and learns what is shown by Update,
 *  which the host may call before Fct_Change_Child returns. Frames and volumes are the host's; the panel keeps pointers
 *  to the shown frame and its volume from one Update to the next. They outlive the operation that uses them, whatever
 *  the host does meanwhile.
 *
 *  Click, Scroll, Keyboard and Propagate call out: the drop list of Click runs a message loop until it is closed,
 *  Fct_Change_Child and the propagation function are the host's. In each of these the host may call any operation, and
 *  may destroy the panel: the operation then returns without touching it again, as its last act.
 *
 *  The entry traces of Click, Keyboard, Draw, Height and Update are made only with Flag_Trace >= 6. */
class KIT_PANELS_API Tool_Propagate {
  public:
    /** No frames, no function. */
    Tool_Propagate();
    ~Tool_Propagate();
    ///@{
    /** Shows the same volume and runs the same function; nothing is shared. */
    Tool_Propagate(const Tool_Propagate& other);
    Tool_Propagate& operator=(const Tool_Propagate& other);
    ///@}

    /** Stores the propagation function; null: none. Refreshes nothing: the host sends UPDATE_FRAME_CUR or UPDATE_ALL
     *  afterwards. Without a function Update shows a panel without frames.
     *  @param fct called with the frame that was shown and the frame shown now (Quorel_2D*), on the caller's thread;
     *  its result is that of Propagate. It may change frames, variables and panels, also this one. @return 1 */
    int Set(int (*fct)(void*, void*));
    /** Moves by `direction` frames (1: next, -1: previous) in "$WINDOW_CUR", then runs the function on the frame that
     *  was shown when Propagate was called and the one moved to, also when the host meanwhile answers by Update or
     *  gives the focus to a window with another volume. Without a function the move stays and the user is warned. While
     *  the function runs the focus is locked and the wait cursor shown; both end with it, also by an exception, which
     *  goes no farther, counts as result 0 and is told to the user. Afterwards the panel stands at the frame moved to,
     *  unless an Update during the run told of another frame of that window.
     *  @return the function's result; 0 when nothing was run: at the first and last frame, where nothing moves, without
     *  window, volume or function, when Update told during the move that no volume is shown, and when the panel was
     *  destroyed during it */
    int Propagate(int direction);

    /** Places the widgets in the host box. @return 1 */
    int Resize(Boxs* box);
    /** @return the height that the panel wants, pixels: "$INTERFACE_LIST_DIM_SML" + "$INTERFACE_SPACE_DIM" +
     *  "$INTERFACE_TITLE_DIM_SML" */
    int Height();
    /** Paints frame, list and both buttons. */
    void Draw();
    /** A press: a pick in the list shows that frame, the buttons propagate. A release does nothing, whichever buttons
     * are still held. @return 1 when a widget took the event, else 0 */
    int Click(int up_down);
    /** Hover feedback. @return 0 */
    int Motion(int up_down);
    /** Over the list: shows the frame `val` items before. @param val wheel notches @return 1 */
    int Scroll(int val);
    /** Page Up, Page Down, Home, End, Left, Right, Insert and Delete over the list move it and show that frame. The
     *  arrow keys up and down are left to the host. The list learns the key from the widget library: the host calls
     *  Key_In_Hand_Set (kits/widgets/widgets_host.h) with it before, and with 0 afterwards.
     *  @param key its low 16 bits count. @return 1 when the key was used, else 0 */
    int Keyboard(int key);
    /** Takes every widget out of its hover or pressed look. */
    void Leave();
    /** UPDATE_ALL, UPDATE_FRAME_CUR, or UPDATE_STRUCTURE together with UPDATE_LEVEL_2D: takes over window, frame and
     *  volume and redraws what differs. Other flags: nothing. */
    void Update(unsigned __int64 flags);

  private:
    void Take_Frame();
    void Take_Volume_Size(int nb);
    void Show_Frame_Of_Item();
    void Take_Run(Quorel_Window* window, Quorel_2D* stepped, unsigned int told_before, Quorel_2D* target);
    void Refresh_Item(const Quorel_2D* frames_of, Quorel_Window* window);
    void Refresh_List();
    void Refresh_Buttons();
    void Refresh_Button(Buttons& button, bool active);

    Boxs frame;
    Selects list;  ///< one item per frame; its current item is the shown frame's index
    Buttons up;    ///< next frame
    Buttons down;  ///< previous frame
    int frame_nb;  ///< frames of the volume, 0 without one
    Quorel_2D* frame_cur;
    Quorel_2D* volume;
    int (*propagation)(void*, void*);
    const Quorel_Window* window_told;  ///< of the last Update; only compared
    unsigned int told = 0;             ///< how often frame_cur was learned anew; only compared
    Panel_Life life;
};
