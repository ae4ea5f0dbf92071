/** Colours, fonts and scale of the application's own drawing. */
#pragma once

#include "base/gdi_handles.h"

#include <optional>
#include <string_view>

#include "kits/widgets/widgets_host.h"

namespace workbench {

/** The colours are those of model/theme_colors.h, where it is checked that they can be read. */
class Look {
  public:
    COLORREF ground = 0;   ///< tool area and status line
    COLORREF heading = 0;  ///< headings of the tool area
    COLORREF heading_hover = 0;
    COLORREF image_ground = 0;  ///< around the slice
    COLORREF text = 0;
    COLORREF text_grey = 0;
    COLORREF line = 0;
    COLORREF accent = 0;
    COLORREF accent_text = 0;
    COLORREF thumb = 0;    ///< slice slider
    COLORREF warning = 0;  ///< banner
    COLORREF warning_text = 0;
    unsigned short panel[3] = {};  ///< face of the panels: red, green, blue

    Look();
    void Theme_Set(Library_Theme theme);
    Library_Theme Theme() const { return theme; }
    /** Takes over a screen's dots per inch. */
    void Dpi_Set(int dpi);
    float Scale() const { return scale; }
    /** Pixels of this screen for pixels at 96 dots per inch. */
    int Px(int pixels) const;
    HFONT Font() const { return font.Get(); }
    HFONT Bold() const { return bold.Get(); }
    HFONT Fixed() const { return fixed.Get(); }

  private:
    Library_Theme theme = Library_Theme::Dark;
    float scale = 1.0F;
    Gdi_Font font;
    Gdi_Font bold;
    Gdi_Font fixed;
};

/** Fills a rectangle with one colour. */
void Fill(HDC dc, const RECT& area, COLORREF color);
/** The edges of a rectangle, to the inside. @param thickness pixels */
void Frame(HDC dc, const RECT& area, int thickness, COLORREF color);
/** Draws one line of text, centred in height, cut with an ellipsis, in another font where this one lacks its letters.
 *  @param format DT_LEFT, DT_RIGHT or DT_CENTER @return its width */
int Draw_Line(HDC dc, const RECT& area, std::wstring_view text, HFONT font, COLORREF color, UINT format);
/** A line of light letters that are dark on every side, so they can be read on dark and on bright images. */
void Draw_Line_Shadowed(HDC dc, const RECT& area, std::wstring_view text, HFONT font, UINT format);
/** Pixels from one line of a font to the next. */
int Line_Height(HFONT font);
/** Pixels that Draw_Line takes for a text. */
int Line_Width(HFONT font, std::wstring_view text);
/** Dots per inch of a window's screen; 96 where the system does not tell. */
int Window_Dpi(HWND window);

/** The whole client area drawn off screen and shown at once: paint into Dc() while it lives. Only inside WM_PAINT. */
class Buffered_Paint {
  public:
    explicit Buffered_Paint(HWND of_window);
    ~Buffered_Paint();
    Buffered_Paint(const Buffered_Paint&) = delete;
    Buffered_Paint& operator=(const Buffered_Paint&) = delete;
    HDC Dc() const { return memory ? memory.Get() : paint.Get(); }
    const RECT& Client() const { return client; }

  private:
    Paint_DC paint;
    RECT client = {};
    Memory_DC memory;
    Gdi_Bitmap bitmap;
    std::optional<Selected_Object> selected;
};

}  // namespace workbench
