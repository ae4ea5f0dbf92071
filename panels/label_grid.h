/** @file
 *  A grid of label buttons with slider and in-place editor: what the TAG and the marker panel share.
 *
 *  The panels say how many labels there are, what a button looks like and what a finished edit means; the grid does the
 *  rest. It reads no label variable itself. Counts are numbers of labels in the host's tables, cut at the capacity by
 *  Fitting; without memory for buttons there are none, and everything else works all the same. Internal to the panels:
 *  they hold Label_Widgets, and each operation works on them by a Label_Grid of its own.
 */
#pragma once

#include <cstdint>
#include <memory>

#include "host/kit_widgets.h"
#include "panels/label_grid_geometry.h"
#include "panels/label_widgets.h"

/** What an Update changed, collected so that only what differs is painted. */
struct Label_Change {
    static constexpr unsigned int MARK = 1;        ///< current or checked mark
    static constexpr unsigned int REDRAW = 2;      ///< caption, colour or activity
    static constexpr unsigned int BACKGROUND = 4;  ///< the panel colour shows through
    static constexpr unsigned int INIT = 8;        ///< the button's pictures
    static constexpr unsigned int SLIDER = 16;     ///< range or position of the slider

    unsigned int mask = 0;  ///< sum of the bits above; 0: nothing differs

    /** Notes a difference. */
    void Add(unsigned int bits) { mask |= bits; }
    /** Any of the bits. */
    bool Has(unsigned int bits) const { return (mask & bits) != 0; }
    /** Nothing but marks changed. */
    bool Is_Mark_Only() const { return mask == MARK; }
};

/** See the top of this file. */
class Label_Grid {
  public:
    static constexpr int NONE = -1;  ///< answer of Button_Hit: no button

    /** Widgets with a closed editor, without slider and with this many buttons, made once, for good. */
    static Label_Widgets Widgets_Make(int button_nb);
    /** @param widgets outlive the grid */
    explicit Label_Grid(Label_Widgets& widgets);

    /** A table's count, cut at the capacity. */
    int Fitting(int count) const;
    /** How many of these labels have a button: all, or none without memory. */
    int Button_Nb(int count) const { return buttons != nullptr ? Fitting(count) : 0; }
    /** @param index 0 .. Button_Nb - 1, not checked */
    Buttons& Button(int index) { return buttons[index]; }
    /** True for a button that lies in the grid box as a whole, give or take a pixel; half hidden ones are neither drawn
     * nor hit. */
    bool Is_Visible(const Buttons& button) const {
        return button.y >= visible_top && button.y <= visible_bottom && button.y != LABEL_NOWHERE;
    }

    // ---- layout

    /** Places everything in the host's box and makes it; an open edit ends. Every pass over the buttons, this one and
     *  those of Relayout and Scroll_Apply, makes those of complete rows for the panel's window and hides all others.
     *  @param dress (Buttons&, int index) is called for each button that has its place, before it is made */
    template <class Dress>
    void Resize(const Boxs& host, int count, Dress dress) {
        Frame_Resize(host, count);
        Buttons_Lay_Out(count, [&](Buttons& button, int index, const Label_Cell& cell) {
            Button_Place(button, cell);
            dress(button, index);
        });
        Editor_Resize(host);
    }
    /** Gives a button the host's fonts and border. */
    static void Button_Dress(Buttons& button, const Boxs& host);
    /** Fits the slider to the number of labels, back at its bottom end, and lays the buttons out again. Paints nothing.
     *  Contract: hosts find a label in the column of their last Resize: a slider that comes or goes moves none. */
    void Relayout(int count);

    // ---- painting

    /** Frame, slider and visible buttons. */
    void Draw(int count);
    /** Paints what changed, one mask for all.
     *  Contract: hosts that painted over the panel get every visible button again, whichever of them differs. */
    void Paint(int count, const Label_Change& change);

    // ---- events

    /** Puts the buttons where the slider's value says, their columns stay; the panel draws afterwards. */
    void Scroll_Apply(int count);
    /** Moves the slider by notches. */
    void Scroll(int notches) { slider.Scroll(notches); }
    /** Feeds an event to the slider. @return true when it took the event; its value is taken over then */
    bool Slider_Take(int up_down);
    /** The first visible button from `first` on that the event falls on, or NONE. */
    int Button_Hit(int first, int count, int up_down);
    /** Hover feedback of all visible buttons and the editor. */
    void Hover(int count, int up_down);
    /** Takes every visible button and the slider out of hover and pressed looks. */
    void Leave(int count);

    // ---- editing

    /** The label whose editor is or was open. */
    int Edited() const { return edited; }
    /** True while an edit is open. The editor's style is the only record of it. */
    bool Is_Editing() const { return editor.style == STYLE_EDIT_OPEN; }
    /** What the editor itself says of the keyboard: open and active. */
    bool Editor_Has_Keyboard() { return editor.Select(1, 0, 0) != 0; }
    /** Opens the editor over a button, loaded with its caption. An edit that is still open is cancelled.
     *  @param index of a button, 0 .. Button_Nb(count) - 1; @param count as everywhere; @param window handed to the
     *  editor; null keeps its own */
    void Edit_Open(int index, int count, HWND window);
    /** Cancels an open edit. @param count as everywhere; @param redraw also draws its button */
    void Edit_Cancel(int count, bool redraw);
    /** Feeds a key. @return the finished text (the editor's own buffer, writable, closed by then); null while editing
     *  goes on */
    char* Edit_Key(int key);
    /** Shows the edited button again. @param count as everywhere; @param text its new caption, cut here at what a
     * button holds; null: it keeps its own */
    void Edit_Close(int count, char* text);

  private:
    /** The one pass over the buttons. @param place (Buttons&, int index, const Label_Cell&) gives a button its place */
    template <class Place>
    void Buttons_Lay_Out(int count, Place place) {
        const int laid_out = Fitting(count);
        for (int index = Button_Nb(capacity) - 1; index >= 0; index--) {
            Buttons& button = buttons[index];
            const Label_Cell cell = Label_Cell_Of(index, laid_out);
            if (!cell.is_laid_out) {
                button.y = LABEL_NOWHERE;
                continue;
            }
            place(button, index, cell);
            button.Init(frame.window);
        }
    }
    void Frame_Resize(const Boxs& host, int count);
    /** By the slider's value. */
    void Button_Place(Buttons& button, const Label_Cell& cell) const;
    void Editor_Resize(const Boxs& host);
    void Slider_Set(const Label_Slider& scroll);
    /** The button behind the editor, null when the table has shrunk below it. */
    Buttons* Edited_Button(int count);

    // The panel's own, by the names that they have there.
    Boxs& frame;
    Boxs& grid_box;
    std::shared_ptr<Buttons[]>& buttons;
    Sliders& slider;
    Texts& editor;
    std::uint16_t& edited;
    int& visible_top;
    int& visible_bottom;
    int& row_height;
    const int capacity;
};
