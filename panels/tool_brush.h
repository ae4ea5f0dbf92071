/** @file
 *  The brush panel: one row of buttons, each showing a brush as a disc in the colour of the current TAG. */
#pragma once

#include <memory>

#include "host/kit_widgets.h"
#include "panels/protocol/kit_panels.h"

/** Picks the brush that TAGs are painted with, and builds the host's brush masks.
 *
 *  Shared state: "$BRUSH_NB" brushes of "$BRUSH_SIZE"[i] mask pixels, "$BRUSH_CUR" the current one, "$TAG_CUR" and
 *  "$TAG_RED", "$TAG_GRN", "$TAG_BLU" the colour of the discs. The masks "$BRUSH_PT" (one per brush, 2R + 1 row
 *  pointers each, R = "$BRUSH_RADIUS") are the host's memory; the panel only writes them, during Update. "$BRUSH_PT" is
 *  an array of VARIABLE_POINTER with "$BRUSH_NB" elements; each is an unsigned char** that names the 2R + 1 rows, and
 *  each row has 2R + 1 bytes: 1 where the brush covers, else 0. A mask with a null row, and a null element, is left
 *  alone. The host defines all of these before the first Resize. The panel shows at most 8 brushes; further ones get
 *  their mask only.
 *
 *  No operation runs a message loop or calls the host back, but for the traces by Error_Fct.
 *
 *  The panel writes no variable: after a Click that returned 1 the host stores Read() in "$BRUSH_CUR" and announces it.
 *  A copy shares buttons and sizes with its original; they live until the last of both is gone. */
class KIT_PANELS_API Tool_Brush {
  public:
    /** Without memory the panel has no buttons; every operation then does the rest of its work. */
    Tool_Brush();
    ~Tool_Brush();
    ///@{
    /** Shares buttons and sizes with the original, and copies the current brush. */
    Tool_Brush(const Tool_Brush& other);
    Tool_Brush& operator=(const Tool_Brush& other);
    ///@}

    /** Places frame and buttons in the host box, which may be the panel's own frame, and paints the buttons' pictures.
     *  Without a brush no button is placed. @return 1 */
    int Resize(Boxs* box);
    /** @return the height that the panel wants, pixels: "$INTERFACE_LIST_DIM_SML" + 8 + 2 x "$INTERFACE_SPACE_DIM" */
    int Height();
    /** Paints frame and buttons; marks the button of "$BRUSH_CUR" as current. Other current marks stay. */
    void Draw();
    /** A press picks the first button that it falls on; a release does nothing, whichever buttons are still held.
     *  @return 1 when one was picked, else 0 (see Read) */
    int Click(int up_down);
    /** Hover feedback. @return 0 */
    int Motion(int up_down);
    /** Does nothing. @return 1 */
    int Scroll(int val);
    /** Does nothing. @return 0 */
    int Keyboard(int key);
    /** Takes every button out of its hover or pressed look. */
    void Leave();
    /** UPDATE_ALL, UPDATE_BRUSH: follows "$BRUSH_CUR"; when the number of brushes or a size changed, builds all masks
     *  anew, lays out and draws. UPDATE_TAG_CUR: recolours when it is another TAG. UPDATE_ALL, UPDATE_TAG_TABLE:
     *  recolours. Other flags: nothing. */
    void Update(unsigned __int64 flags);
    /** @return the index of the brush last picked or last announced by the host */
    int Read();

  private:
    void Init();
    void Set_Color(int tag);
    void Set_Border();

    int Shown_Nb(int brush_nb) const;
    float Scale(int shown) const;
    bool Brushes_Changed() const;
    void Mark(int index, unsigned short mark);

    unsigned short capacity;                 ///< buttons and sizes allocated
    int current;                             ///< brush last picked or announced; may lie beyond the buttons
    int color_tag;                           ///< TAG whose colour the last change of TAG brought; -1 before the first
    unsigned short brush_nb;                 ///< "$BRUSH_NB" when the masks were built
    std::shared_ptr<unsigned short[]> size;  ///< "$BRUSH_SIZE" when the masks were built, capacity entries; may be null
    Boxs frame;
    std::shared_ptr<Buttons[]> button;  ///< capacity buttons; null without memory
};
