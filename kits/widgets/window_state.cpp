#include "kits/widgets/window_state.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <span>
#include <unordered_map>
#include <vector>

#include "host/kit_widgets.h"
#include "kits/common/contract.h"
#include "kits/widgets/shown_widgets_note.h"

namespace {

struct Window_State {
    Window_Axis axis = Window_Axis::Up;
    bool axis_declared = false;
    int buffer_depth = 0;
    bool buffer_ready = false;  // there is memory
    bool buffer_whole = false;  // it holds what the window shows, not only what has changed
    bool changed_all = false;
    Size buffer_size;
    Memory_Picture buffer;
    std::vector<Rect> changed;
};

constexpr std::size_t CHANGED_MAX = 512;  // more parts than this are shown as one

std::unordered_map<HWND, Window_State>& States() {
    static std::unordered_map<HWND, Window_State> states;
    return states;
}

Window_State* State_Find(HWND window) {
    const auto found = States().find(window);
    return found == States().end() ? nullptr : &found->second;
}

Window_State* State_Make(HWND window) {
    if (window == nullptr) {
        return nullptr;
    }
    try {
        return &States()[window];
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

Window_State* Buffered(HWND window) {
    Window_State* state = State_Find(window);
    return state != nullptr && state->buffer_depth > 0 && state->buffer_ready ? state : nullptr;
}

Surface Buffer_View(Window_State& state) {
    return state.buffer.View(state.buffer_size.width, state.buffer_size.height);
}

bool Is_Inside(const Rect& inner, const Rect& outer) {
    return outer.left <= inner.left && outer.top <= inner.top && inner.Right() <= outer.Right() &&
           inner.Bottom() <= outer.Bottom();
}

/** Reads what the window shows, as far as it has not changed. Most drawings need none of it, and those that do have
 * painted their ground before. */
void Buffer_Complete(HWND window, Window_State& state) {
    if (state.buffer_whole) {
        return;
    }
    state.buffer_whole = true;
    Surface view = Buffer_View(state);
    const Rect all = view.Area();
    const auto largest = std::max_element(state.changed.begin(), state.changed.end(), [](const Rect& a, const Rect& b) {
        return static_cast<std::int64_t>(a.width) * a.height < static_cast<std::int64_t>(b.width) * b.height;
    });
    if (largest == state.changed.end()) {
        Screen_Read(window, all, view);
        return;
    }
    const Rect known = *largest;
    std::swap(*largest, state.changed.front());
    if (const std::span<const Rect> others = std::span(state.changed).subspan(1); !others.empty()) {
        Screen_Show(window, {0, 0}, view, others);
    }
    for (const Rect& unknown :
         {Rect{0, 0, all.width, known.top}, Rect{0, known.Bottom(), all.width, all.height - known.Bottom()},
          Rect{0, known.top, known.left, known.height},
          Rect{known.Right(), known.top, all.width - known.Right(), known.height}}) {
        if (!unknown.Is_Empty()) {
            const Rect before = view.Clip_Set(unknown);
            Screen_Read(window, all, view);
            view.Clip_Set(before);
        }
    }
}

void Changed_Add(HWND window, Window_State& state, const Rect& rect) {
    if (state.changed_all || rect.Is_Empty() ||
        std::any_of(state.changed.begin(), state.changed.end(),
                    [&rect](const Rect& other) { return Is_Inside(rect, other); })) {
        return;
    }
    try {
        if (state.changed.size() < CHANGED_MAX) {
            state.changed.push_back(rect);
            return;
        }
    } catch (const std::bad_alloc&) {
    }
    if (state.buffer_whole) {
        state.changed_all = true;
        return;
    }
    Surface view = Buffer_View(state);
    Screen_Show(window, {0, 0}, view, state.changed);
    Screen_Show(window, {0, 0}, view, {&rect, 1});
    state.changed.clear();
}

}  // namespace

// ---- axis

void Window_Axis_Set(HWND window, Window_Axis axis) {
    if (Window_State* state = State_Make(window)) {
        state->axis = axis;
        state->axis_declared = true;
    }
}

void Window_Drawn_Note(HWND window) {
    if (Contract_Checks()) {
        State_Make(window);
    }
}

void Contract_Check_Axes() {
    Size client;
    for (const auto& [window, state] : States()) {
        if (!state.axis_declared && Window_Client_Size(window, &client)) {
            Contract_Report(CONTRACT_AXIS, "Window_Axis_Set before the first panel is laid out");
        }
    }
}

Window_Axis Window_Axis_Get(HWND window) {
    const Window_State* state = State_Find(window);
    return state != nullptr ? state->axis : Window_Axis::Up;
}

void Window_Forget(HWND window) {
    States().erase(window);
    Shown_Forget(window);
}

// ---- back buffer

void Window_Buffer_Begin(HWND window) {
    Window_State* state = State_Make(window);
    if (state == nullptr || state->buffer_depth++ > 0) {
        return;
    }
    state->changed.clear();
    state->changed_all = false;
    Size size;
    state->buffer_ready = Window_Client_Size(window, &size) && size.width > 0 && size.height > 0 &&
                          state->buffer.Reserve(size.width, size.height);
    state->buffer_whole = false;
    state->buffer_size = size;
}

void Window_Buffer_End(HWND window) {
    Window_State* state = State_Find(window);
    if (state == nullptr || state->buffer_depth == 0 || --state->buffer_depth > 0 || !state->buffer_ready) {
        return;
    }
    state->buffer_ready = false;
    Surface view = Buffer_View(*state);
    if (state->changed_all) {
        const Rect all = view.Area();
        Screen_Show(window, {0, 0}, view, {&all, 1});
    } else if (!state->changed.empty()) {
        Screen_Show(window, {0, 0}, view, state->changed);
    }
}

HDC Window_Buffer_DC(HWND window) {
    Window_State* state = Buffered(window);
    if (state == nullptr) {
        return nullptr;
    }
    Buffer_Complete(window, *state);
    state->changed_all = true;
    return state->buffer.Get_DC();
}

namespace {
/** The parts of a picture that the clip of a running drawing in its window leaves; at most as many as there is room
 * for. */
std::span<const Rect> Parts_Clip(HWND window, const Rect& target, std::span<const Rect> parts,
                                 std::span<Rect> clipped) {
    if (Y_DC == nullptr || Y_Window != window) {
        return parts;
    }
    const Rect seen = Dc_Clip(Y_DC, target);
    if (seen == target || parts.size() > clipped.size()) {
        return parts;
    }
    for (std::size_t i = 0; i < parts.size(); i++) {
        clipped[i] = Rect_Common(parts[i], {seen.left - target.left, seen.top - target.top, seen.width, seen.height});
    }
    return clipped.first(parts.size());
}
}  // namespace

void Window_Show(HWND window, const Rect& target, Surface& picture, std::span<const Rect> whole_parts) {
    constexpr std::size_t parts_max = 8;  // more than a painter has
    Rect clipped[parts_max];
    const std::span<const Rect> parts = Parts_Clip(window, target, whole_parts, clipped);
    Window_State* state = Buffered(window);
    if (state == nullptr) {
        Screen_Show(window, {target.left, target.top}, picture, parts);
        return;
    }
    Device_Flush();
    Surface view = Buffer_View(*state);
    for (const Rect& part : parts) {
        const Rect inside = Rect_Common(part, picture.Held());
        const Rect there = {target.left + inside.left, target.top + inside.top, inside.width, inside.height};
        view.Blit(there, inside.Is_Empty() ? nullptr : picture.Pixels_From(inside.left, inside.top), picture.Stride());
        Changed_Add(window, *state, Rect_Common(there, view.Area()));
    }
}

bool Window_Fill(HWND window, const Rect& target, Rgb color) {
    Window_State* state = Buffered(window);
    if (state == nullptr) {
        return false;
    }
    const Rect whole = {0, 0, target.width, target.height};
    Rect clipped[1];
    const Rect part = Parts_Clip(window, target, {&whole, 1}, clipped).front();
    Device_Flush();
    Surface view = Buffer_View(*state);
    const Rect there =
        Rect_Common({target.left + part.left, target.top + part.top, part.width, part.height}, view.Area());
    view.Fill(there, color);
    Changed_Add(window, *state, there);
    return true;
}

bool Window_Read(HWND window, const Rect& target, std::uint32_t* pixels) {
    if (target.Is_Empty() || pixels == nullptr) {
        return false;
    }
    Surface out(pixels, target.width, target.height, target.width, nullptr);
    if (Window_State* state = Buffered(window)) {
        Buffer_Complete(window, *state);
        Device_Flush();
        Surface view = Buffer_View(*state);
        const Rect inside = Rect_Common(target, view.Area());
        out.Blit({inside.left - target.left, inside.top - target.top, inside.width, inside.height},
                 view.Pixels() + static_cast<std::ptrdiff_t>(inside.top) * view.Stride() + inside.left, view.Stride());
        return !inside.Is_Empty();
    }
    Scratch_Picture scratch(target.width, target.height);
    if (!scratch.Has_Pixels() || !Screen_Read(window, target, scratch.View())) {
        return false;
    }
    out.Blit(out.Area(), scratch.View().Pixels(), scratch.View().Stride());
    return true;
}

// ---- scratch

namespace {
constexpr int SCRATCH_DEPTH_MAX = 4;
Memory_Picture scratch_pictures[SCRATCH_DEPTH_MAX];
int scratch_depth = 0;
}  // namespace

Scratch_Picture::Scratch_Picture(int width, int height, const Rect& held) {
    if (scratch_depth < SCRATCH_DEPTH_MAX && !held.Is_Empty() &&
        scratch_pictures[scratch_depth].Reserve(held.width, held.height)) {
        Surface pixels = scratch_pictures[scratch_depth].View(held.width, held.height);
        view = Surface(pixels.Pixels(), width, height, held, pixels.Stride(), pixels.Get_DC());
        has_pixels = true;
    }
    scratch_depth++;
}

Scratch_Picture::~Scratch_Picture() {
    scratch_depth--;
}
