// The panel protocol: state, no drawing of its own.
#include "histogram/tool_histo.h"

#include <algorithm>
#include <cstdarg>
#include <limits>
#include <new>

#include "histogram/tool_histo_compute.h"
#include "histogram/tool_histo_fit.h"
#include "histogram/tool_histo_geometry.h"
#include "histogram/tool_histo_messages.h"
#include "histogram/tool_histo_paint.h"
#include "histogram/tool_histo_window.h"
#include "host/kit_common.h"
#include "panels/protocol/host_variables.h"
#include "panels/protocol/widget_place.h"

namespace {

constexpr float VALUATOR_STEP = 0.05F;

std::shared_ptr<Histo_Data> Data_Make() {
    try {
        return std::make_shared<Histo_Data>();
    } catch (const std::bad_alloc&) {
        Histo_Report_New(__LINE__, TOOL_HISTO_SOURCE);
        return nullptr;  // every operation treats a panel without data as one without a record
    }
}

}  // namespace

Tool_Histo::Tool_Histo() : data(Data_Make()) {
    scale_valuator.value = HISTO_SCALE_MAX;
    scale_valuator.minimum = HISTO_SCALE_MIN;
    scale_valuator.maximum = HISTO_SCALE_MAX;
    scale_valuator.step = VALUATOR_STEP;
    Histo_Window_Panel_Born();
}

// A copy is one more living panel for the enlarged window's class.
Tool_Histo::Tool_Histo(const Tool_Histo& other) : Tool_Histo() {
    *this = other;
}
Tool_Histo& Tool_Histo::operator=(const Tool_Histo& other) = default;

Tool_Histo::~Tool_Histo() {
    // The window closes first and forgets this panel: closing it redraws the panel that it shows.
    data.reset();
    Histo_Window_Panel_Gone(this);
}

int Tool_Histo::Height(unsigned short wanted) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Histo::Height()");
    return wanted;
}

int Tool_Histo::Resize(Boxs* box) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Histo::Resize()");
    if (box == nullptr) {
        return 1;
    }
    const int cursor_dim = Host_Dimension("$INTERFACE_CURSOR_DIM");
    const Histo_Layout layout = Histo_Layout_Make({box->x, box->y, box->width, box->height}, cursor_dim);

    style = STYLE_FRAMED_BOX;
    Take_Look(*box);
    Widget_Place(*this, layout.plot);
    Init(box->window);

    scale = HISTO_SCALE_MAX;
    scale_valuator.style = STYLE_SLIDER_VERTICAL;
    scale_valuator.Take_Look(*box);
    Widget_Place(scale_valuator, layout.valuator);
    scale_valuator.value = HISTO_SCALE_MAX;
    scale_valuator.minimum = HISTO_SCALE_MIN;
    scale_valuator.maximum = HISTO_SCALE_MAX;
    scale_valuator.Init(box->window);

    blow_button.style = STYLE_BUTTON;
    blow_button.Take_Look(*box);
    Widget_Place(blow_button, layout.button);
    blow_button.Set_Name("Blow");
    blow_button.current = Has_Histo_Window() ? 1 : 0;
    blow_button.Init(box->window);
    return 1;
}

void Tool_Histo::Draw() {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Histo::Draw()");
    blow_button.current = Has_Histo_Window() ? 1 : 0;
    Boxs::Draw();
    cursor_position = -1;  // the box has wiped the line, also where no picture follows
    blow_button.Draw();
    scale_valuator.Draw();
    Histo_Paint(*this);
}

int Tool_Histo::Click(int up_down) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Histo::Click(up_down=0x%08x)", static_cast<unsigned int>(up_down));
    if ((up_down & MOUSE_PRESS) == 0) {
        return 0;  // a release, also that of one of two held buttons
    }
    if (blow_button.Select(up_down) != 0) {
        blow_button.current = 1;
        Histo_Window_Open(*this);
        return 1;
    }
    if (scale_valuator.Select(up_down) != 0) {
        // The plot follows with the next motion or repaint, not here.
        scale = scale_valuator.Read();
        scale_valuator.Adjust();
        return 1;
    }
    return 0;
}

int Tool_Histo::Motion(int up_down) {
    blow_button.Select(up_down);
    if (scale_valuator.Select(up_down) == 0) {
        return 0;
    }
    scale = scale_valuator.Read();
    scale_valuator.Adjust();
    Histo_Paint(*this);
    return 1;
}

int Tool_Histo::Scroll(int delta) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Histo::Scroll()");
    scale = scale_valuator.Scroll(-delta);
    scale_valuator.Adjust();
    Histo_Paint(*this);
    return 1;
}

int Tool_Histo::Keyboard(int key) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Histo::Keyboard(key=0x%08x)", static_cast<unsigned int>(key));
    return 0;
}

void Tool_Histo::Leave() {
    blow_button.Deselect();
    scale_valuator.Deselect();
}

void Tool_Histo::Update(unsigned __int64 flags) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Histo::Update()");
    // The rows run in this order and a recomputation does not paint by itself: a host that wants the picture at once
    // sends UPDATE_HISTO_PAINT too.
    if (Has_All(flags, UPDATE_SELECTION | UPDATE_LEVEL_2D)) {
        Histo_Compute(*this);
        Histo_Window_Notify(HISTO_WINDOW_DATA);
    }
    if (Has_Any(flags, UPDATE_HISTO_DATA)) {
        Histo_Compute(*this);
        Histo_Cursor(*this);
        Histo_Window_Notify(HISTO_WINDOW_DATA);
    }
    for (const unsigned __int64 bit : {UPDATE_HISTO_PAINT, UPDATE_TAG_TABLE, UPDATE_TAG_CUR}) {
        if (Has_Any(flags, bit)) {
            Histo_Paint(*this);
            Histo_Window_Notify(HISTO_WINDOW_DATA);
        }
    }
    if (Has_Any(flags, UPDATE_MOUSE_FRAME)) {
        Histo_Cursor(*this);
        Histo_Window_Notify(HISTO_WINDOW_CURSOR);
    }
    if (Has_Any(flags, UPDATE_COLOR_COMPONENT)) {
        static Cached_Variable<std::uint8_t> component("$GLI_COLOR_COMPONENT");
        const std::uint8_t* const value = component.Address();
        if (value == nullptr) {
            return;
        }
        color_component = *value;
        Histo_Cursor(*this);
        Histo_Paint(*this);
        Histo_Window_Notify(HISTO_WINDOW_DATA);
    }
    if (Has_Any(flags, UPDATE_ALL)) {
        blow_button.current = Has_Histo_Window() ? 1 : 0;
        blow_button.Adjust();
    }
}

int Tool_Histo::Set(int n, ...) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Histo::Set()");
    const auto count = static_cast<std::int16_t>(n);
    if (count < 0 || count > HISTO_RANGE_MAX) {
        return 0;
    }
    range_nb = static_cast<std::uint16_t>(count);
    va_list ranges;
    va_start(ranges, n);
    for (int k = 0; k < count; ++k) {
        range_tag[k] = static_cast<std::uint16_t>(va_arg(ranges, int));
        range_min[k] = static_cast<float>(va_arg(ranges, double));
        range_max[k] = static_cast<float>(va_arg(ranges, double));
    }
    va_end(ranges);
    return 1;
}

int Tool_Histo::Fit_Derivative(unsigned char max_peak) {
    return Histo_Fit_Derivative(data, color_component, max_peak);
}

int Tool_Histo::Fit_Gaussian() {
    return Histo_Fit_Gaussian(data, color_component);
}
