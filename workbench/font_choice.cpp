#include "workbench/font_choice.h"

#include <algorithm>
#include <vector>

namespace workbench {

namespace {

constexpr WORD NO_GLYPH = 0xFFFF;
constexpr wchar_t LAST_COMMON = 0x24F;  // Latin letters, which every face of ours has

Gdi_Font Font_Of_Face(HFONT usual, const wchar_t* face) {
    LOGFONTW description = {};
    ::GetObjectW(usual, sizeof description, &description);
    ::lstrcpynW(description.lfFaceName, face, LF_FACESIZE);
    return Gdi_Font(::CreateFontIndirectW(&description));
}

/** Half of a letter outside the first 65,536: fonts are asked about whole ones only. */
bool Is_Half(wchar_t unit) {
    return unit >= 0xD800 && unit <= 0xDFFF;
}

}  // namespace

std::span<const wchar_t* const> Faces_Of_Scripts() {
    static constexpr const wchar_t* faces[] = {L"Segoe UI",     L"Microsoft YaHei UI", L"Microsoft JhengHei UI",
                                               L"Yu Gothic UI", L"Malgun Gothic",      L"MS UI Gothic",
                                               L"SimSun",       L"Arial Unicode MS",   L"Noto Sans CJK SC"};
    return faces;
}

std::size_t Letters_Missing(HDC dc, HFONT font, std::wstring_view text) {
    if (std::ranges::all_of(text, [](wchar_t unit) { return unit <= LAST_COMMON; })) {
        return 0;
    }
    const Selected_Object selected(dc, font);
    std::vector<WORD> glyphs(text.size(), NO_GLYPH);
    if (::GetGlyphIndicesW(dc, text.data(), static_cast<int>(text.size()), glyphs.data(),
                           GGI_MARK_NONEXISTING_GLYPHS) == GDI_ERROR) {
        return 0;
    }
    std::size_t missing = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        missing += glyphs[at] == NO_GLYPH && !Is_Half(text[at]) ? 1 : 0;
    }
    return missing;
}

const wchar_t* Face_Choose(std::size_t missing, std::span<const wchar_t* const> faces,
                           const std::function<std::size_t(const wchar_t* face)>& missing_of) {
    const wchar_t* chosen = nullptr;
    for (auto face = faces.begin(); face != faces.end() && missing > 0; ++face) {
        const std::size_t of_face = missing_of(*face);
        if (of_face < missing) {
            missing = of_face;
            chosen = *face;
        }
    }
    return chosen;
}

HFONT Font_For(HDC dc, HFONT usual, std::wstring_view text, Gdi_Font& made) {
    const std::size_t missing = Letters_Missing(dc, usual, text);
    if (missing == 0) {
        return usual;
    }
    const wchar_t* const face = Face_Choose(missing, Faces_Of_Scripts(), [&](const wchar_t* name) {
        const Gdi_Font font = Font_Of_Face(usual, name);
        return font ? Letters_Missing(dc, font.Get(), text) : text.size();
    });
    if (face == nullptr) {
        return usual;
    }
    made = Font_Of_Face(usual, face);
    return made ? made.Get() : usual;
}

}  // namespace workbench
