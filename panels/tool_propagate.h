/** @file
 *  The propagate panel: steps through the frames of a volume and carries work from frame to frame. */
#pragma once

#include "host/kit_dataset.h"
#include "host/kit_widgets.h"
#include "panels/protocol/kit_panels.h"

/** Steps the focused image window to the next ("Up") or previous ("Down") frame of its volume and runs the host's
 *  propagation function on the frame that was shown and the one that is shown now; jumps to any frame by a list, by
 * keys or by the wheel without running it.
 *
 *  Shared state: "$WINDOW_CUR" the focused window, "$FRAME_CUR" the frame shown in each window, "$INTERFACE_LOCK_FOCUS"
 *  1 while the function runs. The panel asks for another frame by Fct_Change_Child and learns what is shown by Update,
 *  which the host may call before Fct_Change_Child returns. Frames and volumes are the host's; the panel keeps pointers
 *  to the shown frame and its volume from one Update to the next.
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
     * its result is that of Propagate. It may change frames, variables and panels, also this one. @return 1 */
    int Set(int (*fct)(void*, void*));
    /** Moves by `direction` frames (1: next, -1: previous), then runs the function. Without a function the move stays
     * and the user is warned. While the function runs the focus is locked and the wait cursor shown; both end with it,
     * also by an exception, which goes no farther and counts as result 0.
     *  @return the function's result; 0 when nothing was run, also at the first and last frame, where nothing moves */
    int Propagate(int direction);

    /** Places the widgets in the host box. @return 1 */
    int Resize(Boxs* box);
    /** @return the height that the panel wants, pixels: "$INTERFACE_LIST_DIM_SML" + "$INTERFACE_SPACE_DIM" +
     *  "$INTERFACE_TITLE_DIM_SML" */
    int Height();
    /** Paints frame, list and both buttons. */
    void Draw();
    /** A pick in the list shows that frame; the buttons propagate. @return 1 when a widget took the event, else 0 */
    int Click(int up_down);
    /** Hover feedback. @return 0 */
    int Motion(int up_down);
    /** Over the list: shows the frame `val` items before. @param val wheel notches @return 1 */
    int Scroll(int val);
    /** Page Up, Page Down, Home, End, Left, Right, Insert and Delete over the list move it and show that frame. The
     *  arrow keys up and down are left to the host. @return 1 when the key was used, else 0 */
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
    void Refresh_Item(Quorel_Window* window);
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
};
