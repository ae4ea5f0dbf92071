/** The cursor in a view of the image that keys move. */
#pragma once

namespace workbench {

class Image_Cursor {
  public:
    virtual ~Image_Cursor() = default;

    /** Shows a cursor, in the middle or where the pointer is. Only with a volume. */
    virtual void Cursor_Set(bool on) = 0;
    virtual bool Is_Cursor() const = 0;
    /** By pixels of the slice; the slice moves along when it does not fit. With the pen down it paints. */
    virtual void Cursor_Move(int dx, int dy) = 0;
    /** One touch of the brush, or of the marker in marker mode, at the cursor. */
    virtual void Cursor_Act(bool erase) = 0;
    /** With the pen down the cursor draws a stroke; it ends when the pen is lifted. */
    virtual void Pen_Set(bool down) = 0;
    virtual bool Is_Pen_Down() const = 0;
    /** Takes the TAG under the cursor. */
    virtual void Cursor_Pick() = 0;
    /** Pixels of the slice. */
    virtual int Cursor_X() const = 0;
    virtual int Cursor_Y() const = 0;
};

}  // namespace workbench
