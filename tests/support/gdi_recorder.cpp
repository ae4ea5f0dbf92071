#include "tests/support/gdi_recorder.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <map>
#include <set>
#include <utility>

namespace {

struct Record {
    std::map<void*, std::string> created;               // object -> the call that made it
    std::map<void*, std::string> contexts;              // device context -> the call that got it
    std::map<std::pair<HDC, DWORD>, HGDIOBJ> selected;  // what stood there before the first selection
    std::map<HDC, int> saved;
    std::vector<std::string> wrong;  // what was given back without having been got
    int watched = 0;
    int get_dc_countdown = 0;
};
Record record;

template <typename Handle>
Handle Created(Handle handle, const char* call) {
    record.watched++;
    if (handle != nullptr) {
        record.created[handle] = call;
    }
    return handle;
}

HDC Got(HDC dc, const char* call) {
    record.watched++;
    if (dc != nullptr) {
        record.contexts[dc] = call;
    }
    return dc;
}

void Context_Gone(HDC dc, const char* call) {
    record.watched++;
    record.contexts.erase(dc);
    std::erase_if(record.selected, [dc](const auto& entry) { return entry.first.first == dc; });
    if (record.saved.erase(dc) != 0) {
        record.wrong.emplace_back(std::string(call) + " of a device context whose state was not restored");
    }
}

// ---------------- replacements

HBRUSH WINAPI Create_Brush(COLORREF color) {
    return Created(::CreateSolidBrush(color), "CreateSolidBrush");
}
HBRUSH WINAPI Create_Pattern_Brush(const void* packed_dib, UINT usage) {
    return Created(::CreateDIBPatternBrushPt(packed_dib, usage), "CreateDIBPatternBrushPt");
}
HPEN WINAPI Create_Pen(int style, int width, COLORREF color) {
    return Created(::CreatePen(style, width, color), "CreatePen");
}
HFONT WINAPI Create_Font(const LOGFONTA* font) {
    return Created(::CreateFontIndirectA(font), "CreateFontIndirectA");
}
HFONT WINAPI Create_Font_Of(int height, int width, int turn, int lean, int weight, DWORD italic, DWORD underline,
                            DWORD strike, DWORD set, DWORD precision, DWORD clip, DWORD quality, DWORD pitch,
                            LPCSTR face) {
    return Created(::CreateFontA(height, width, turn, lean, weight, italic, underline, strike, set, precision, clip,
                                 quality, pitch, face),
                   "CreateFontA");
}
HRGN WINAPI Create_Region(int left, int top, int right, int bottom) {
    return Created(::CreateRectRgn(left, top, right, bottom), "CreateRectRgn");
}
HBITMAP WINAPI Create_Bitmap(HDC dc, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section, DWORD offset) {
    return Created(::CreateDIBSection(dc, info, usage, bits, section, offset), "CreateDIBSection");
}
BOOL WINAPI Delete_Object(HGDIOBJ object) {
    record.watched++;
    record.created.erase(object);
    const BOOL done = ::DeleteObject(object);
    if (done == 0) {
        record.wrong.emplace_back("DeleteObject was refused");
    }
    return done;
}
HGDIOBJ WINAPI Select_Object(HDC dc, HGDIOBJ object) {
    record.watched++;
    const DWORD type = ::GetObjectType(object);
    const HGDIOBJ before = ::SelectObject(dc, object);
    if (before == nullptr || type == OBJ_REGION) {
        return before;
    }
    const auto [place, is_first] = record.selected.try_emplace({dc, type}, before);
    if (!is_first && place->second == object) {
        record.selected.erase(place);
    }
    return before;
}
HDC WINAPI Create_Context(HDC like) {
    return Got(::CreateCompatibleDC(like), "CreateCompatibleDC");
}
BOOL WINAPI Delete_Context(HDC dc) {
    Context_Gone(dc, "DeleteDC");
    return ::DeleteDC(dc);
}
HDC WINAPI Get_Context(HWND window) {
    if (record.get_dc_countdown > 0 && --record.get_dc_countdown == 0) {
        record.watched++;
        return nullptr;
    }
    return Got(::GetDC(window), "GetDC");
}
int WINAPI Release_Context(HWND window, HDC dc) {
    Context_Gone(dc, "ReleaseDC");
    return ::ReleaseDC(window, dc);
}
int WINAPI Save_Context(HDC dc) {
    record.watched++;
    record.saved[dc]++;
    return ::SaveDC(dc);
}
BOOL WINAPI Restore_Context(HDC dc, int level) {
    record.watched++;
    if (--record.saved[dc] <= 0) {
        record.saved.erase(dc);
    }
    // What was selected since the state was saved is put back with it.
    const BOOL done = ::RestoreDC(dc, level);
    std::erase_if(record.selected, [dc](const auto& entry) {
        return entry.first.first == dc && ::GetCurrentObject(dc, entry.first.second) == entry.second;
    });
    return done;
}

}  // namespace

Gdi_Recorder::Gdi_Recorder(const char* module) {
    const struct {
        const char* dll;
        const char* function;
        void* replacement;
    } replacements[] = {
        {"gdi32.dll", "CreateSolidBrush", reinterpret_cast<void*>(&Create_Brush)},
        {"gdi32.dll", "CreateDIBPatternBrushPt", reinterpret_cast<void*>(&Create_Pattern_Brush)},
        {"gdi32.dll", "CreatePen", reinterpret_cast<void*>(&Create_Pen)},
        {"gdi32.dll", "CreateFontIndirectA", reinterpret_cast<void*>(&Create_Font)},
        {"gdi32.dll", "CreateFontA", reinterpret_cast<void*>(&Create_Font_Of)},
        {"gdi32.dll", "CreateRectRgn", reinterpret_cast<void*>(&Create_Region)},
        {"gdi32.dll", "CreateDIBSection", reinterpret_cast<void*>(&Create_Bitmap)},
        {"gdi32.dll", "DeleteObject", reinterpret_cast<void*>(&Delete_Object)},
        {"gdi32.dll", "SelectObject", reinterpret_cast<void*>(&Select_Object)},
        {"gdi32.dll", "CreateCompatibleDC", reinterpret_cast<void*>(&Create_Context)},
        {"gdi32.dll", "DeleteDC", reinterpret_cast<void*>(&Delete_Context)},
        {"gdi32.dll", "SaveDC", reinterpret_cast<void*>(&Save_Context)},
        {"gdi32.dll", "RestoreDC", reinterpret_cast<void*>(&Restore_Context)},
        {"user32.dll", "GetDC", reinterpret_cast<void*>(&Get_Context)},
        {"user32.dll", "ReleaseDC", reinterpret_cast<void*>(&Release_Context)},
    };
    record = {};
    for (const auto& one : replacements) {
        hooks.emplace_back(module, one.dll, one.function, one.replacement);
    }
}

Gdi_Recorder::~Gdi_Recorder() {
    hooks.clear();
    record = {};
}

std::string Gdi_Recorder::Unbalanced() {
    std::string text;
    for (const auto& [object, call] : record.created) {
        text += call + " without DeleteObject\n";
    }
    for (const auto& [dc, call] : record.contexts) {
        text += call + " not given back\n";
    }
    for (const auto& [place, before] : record.selected) {
        text += "an object of type " + std::to_string(place.second) + " is still selected\n";
    }
    if (!record.saved.empty()) {
        text += "SaveDC without RestoreDC\n";
    }
    for (const std::string& line : record.wrong) {
        text += line + "\n";
    }
    return text;
}

void Gdi_Recorder::Forget() {
    record = {};
}

int Gdi_Recorder::Watched_Nb() {
    return record.watched;
}

void Gdi_Recorder::Get_DC_Fail(int n) {
    record.get_dc_countdown = n;
}
