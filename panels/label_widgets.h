/** @file
 *  What a panel of label buttons is made of. The TAG and the marker panel hold it; what happens with it is theirs. */
#pragma once

#include <cstdint>
#include <memory>

#include "host/kit_widgets.h"

/** Copies share the buttons; each copy has its own frame, slider and editor. */
struct Label_Widgets {
    Boxs frame;                          ///< the panel's outline
    Boxs grid_box;                       ///< the area of the buttons; not drawn
    std::shared_ptr<Buttons[]> buttons;  ///< `capacity` buttons, made once; null without memory
    Sliders slider;                      ///< its value: pixels by which the grid is scrolled
    Texts editor;                        ///< its style is the only record of an open edit
    std::uint16_t edited = 0;            ///< label whose editor is or was open
    ///@{
    int visible_top = 0;  ///< smallest and largest y of a visible button, pixels
    int visible_bottom = -1;
    ///@}
    int row_height = 0;  ///< pixels
    int capacity = 0;    ///< most labels that have a button
};
