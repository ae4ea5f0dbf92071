/** Any stream of calls of the C interface: right ones, and with handles that are dead, of another kind or made up,
 * sizes that are wrong, null, and call-backs that call back. For fuzzing and for tests. */
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "c_interface/kit_panels.h"
#include "tests/fuzzing/input_bytes.h"

class Call_Stream {
  public:
    /** @param host_window for the panels; @param has_modal_loops false: nothing is pressed that runs a loop */
    Call_Stream(const std::uint8_t* data, std::size_t size, void* host_window, bool with_modal_loops)
        : input(data, size), window(host_window), has_modal_loops(with_modal_loops) {}

    Input_Bytes& Input() { return input; }
    /** What happens between two calls, for example to windows of the module's own. */
    void Between_Calls_Set(std::function<void(Input_Bytes&)> work) { between_calls = std::move(work); }
    /** A call from within another one: of a call-back, or of a loop that the module runs. */
    void Step_Inside() {
        if (is_quiet || nested == NESTED_MOST || input.At_End()) {
            return;
        }
        ++nested;
        if (input.Below(4) == 0) {
            kit_panel_destroy(at_work);
        }
        Step();
        // A loop that a window of the module's own runs is inside of no function of the interface: there it ends.
        const kit_status stopped = kit_stop();
        Require(stopped == KIT_ERROR_STATE || (stopped == KIT_OK && running == 0));
        is_stopped = is_stopped || stopped == KIT_OK;
        --nested;
    }

    /** From the start to the end, whatever happens between. */
    void Run() {
        kit_settings settings = {};
        settings.size = sizeof settings;
        settings.abi_version = KIT_ABI_VERSION;
        settings.on_event = On_Event;
        settings.context = this;
        settings.contract_checks = input.Take<std::uint8_t>() & 1;
        settings.traces = input.Take<std::uint8_t>() & 1;
        Require(kit_start(&settings) == KIT_OK);
        for (int step = 0; step < STEPS_MOST && !input.At_End() && !is_stopped; ++step) {
            Step();
            if (between_calls) {
                between_calls(input);
            }
        }
        is_quiet = true;
        Require(kit_stop() == (is_stopped ? KIT_ERROR_STATE : KIT_OK));
        for (const kit_handle handle : handles) {
            Require(kit_panel_draw(handle) == KIT_ERROR_STATE);
        }
    }

  private:
    static constexpr int STEPS_MOST = 80;
    static constexpr int NESTED_MOST = 3;

    static std::int32_t On_Event(void* context, const kit_event* event) {
        auto& stream = *static_cast<Call_Stream*>(context);
        Require(event->size == sizeof(kit_event) && event->kind >= KIT_EVENT_MESSAGE &&
                event->kind <= KIT_EVENT_FILE_NAME);
        stream.Step_Inside();
        return stream.is_quiet || stream.input.At_End() ? 0 : stream.input.Below(3) - 1;
    }

    kit_handle Handle() {
        switch (input.Below(8)) {
            case 0:
                return input.Take<std::uint64_t>();
            case 1:
                return 0;
            default:
                return handles.empty()
                           ? 1
                           : handles[static_cast<std::size_t>(input.Below(static_cast<int>(handles.size())))];
        }
    }
    void Keep(kit_handle handle) {
        if (handle != 0) {
            handles.push_back(handle);
        }
    }
    std::uint32_t Size(std::size_t right) {
        return input.Below(12) == 0 ? input.Take<std::uint32_t>() : static_cast<std::uint32_t>(right);
    }
    std::string Text() { return input.Text(40); }

    void Step() {
        ++running;
        Call();
        --running;
    }

    void Call() {
        switch (input.Below(13)) {
            case 12:
                Click_Around();
                break;
            case 0:
                Panel_Make();
                break;
            case 1:
                Volume_Make();
                break;
            case 2:
            case 3:
            case 4:
                Event();
                break;
            case 5:
                Panel_Call();
                break;
            case 6:
                Table_Call();
                break;
            case 7:
                Table_Question();
                break;
            case 8:
                Variable_Call();
                break;
            case 9:
                Volume_Call();
                break;
            case 10:
                Tree_Call();
                break;
            default:
                Other_Call();
        }
    }

    void Panel_Make() {
        kit_panel_settings settings = {};
        settings.size = Size(sizeof settings);
        settings.kind = static_cast<std::uint32_t>(input.Below(9));
        settings.option = input.Below(4) == 0 ? input.Take<std::int32_t>() : input.Below(4);
        if (!has_modal_loops) {
            settings.option &= ~KIT_DATABASE_EDIT;
        }
        settings.window = input.Below(16) == 0 ? nullptr : window;
        settings.x = input.Below(40);
        settings.y = input.Below(40);
        settings.width = input.Below(300);
        settings.height = input.Below(200);
        settings.axis_up = input.Below(2);
        settings.border = static_cast<std::uint8_t>(input.Below(4));
        settings.font_height = input.Below(40);
        kit_handle panel = 0;
        kit_panel_create(&settings, input.Below(16) == 0 ? nullptr : &panel);
        Keep(panel);
    }

    void Volume_Make() {
        kit_volume_settings settings = {};
        settings.size = Size(sizeof settings);
        settings.pixel = static_cast<std::uint32_t>(input.Below(7));
        settings.width = input.Below(9);
        settings.height = input.Below(9);
        settings.slices = input.Below(5);
        settings.slope = static_cast<float>(input.Below(300)) / 100.0F;
        settings.intercept = static_cast<float>(input.Below(300)) - 150.0F;
        settings.times = input.Below(4);
        settings.context = this;
        settings.on_row = [](void* context, std::int32_t, std::int32_t, void* out) {
            auto& stream = *static_cast<Call_Stream*>(context);
            static_cast<std::uint8_t*>(out)[0] = stream.input.Take<std::uint8_t>();
            return static_cast<std::int32_t>(stream.input.Below(200) == 7 ? 0 : 1);
        };
        const std::string name = Text();
        settings.name = name.c_str();
        kit_handle volume = 0;
        kit_volume_create(&settings, &volume);
        Keep(volume);
        kit_volume_show(volume, 0);
    }

    bool May_Press(kit_handle panel) const {
        std::uint32_t kind = 0;
        kit_panel_kind(panel, &kind);
        return has_modal_loops || (kind != KIT_PANEL_PROPAGATE && kind != KIT_PANEL_HISTOGRAM);
    }

    /** Clicks all over a panel: by chance alone hardly any would meet a list, a node or a button. */
    void Click_Around() {
        const kit_handle panel = Handle();
        const std::uint32_t button = input.Below(2) == 0 ? KIT_BUTTON_LEFT : KIT_BUTTON_RIGHT;
        if (!May_Press(panel)) {
            return;
        }
        constexpr int step = 22;
        for (int y = step / 2; y < 200 && !input.At_End(); y += step) {
            for (int x = step / 2; x < 300; x += 2 * step) {
                kit_input event = {sizeof event, KIT_INPUT_PRESS, x + 40, y + 30, button, 0};
                at_work = panel;
                kit_panel_input(panel, &event, nullptr);
                event.kind = KIT_INPUT_RELEASE;
                event.buttons = 0;
                kit_panel_input(panel, &event, nullptr);
            }
        }
    }

    void Event() {
        const kit_handle panel = Handle();
        kit_input event = {};
        event.size = Size(sizeof event);
        event.kind = static_cast<std::uint32_t>(input.Below(8));
        if (event.kind == KIT_INPUT_PRESS && !May_Press(panel)) {
            return;
        }
        event.x = input.Below(300);
        event.y = input.Below(200);
        event.buttons = static_cast<std::uint32_t>(input.Below(8)) << 4;
        event.value = input.Below(3) == 0 ? input.Take<std::int32_t>() : input.Below(256);
        std::int32_t used = 0;
        at_work = panel;
        kit_panel_input(panel, input.Below(20) == 0 ? nullptr : &event, input.Below(2) == 0 ? nullptr : &used);
    }

    void Panel_Call() {
        const kit_handle panel = Handle();
        std::int32_t height = 0;
        switch (input.Below(6)) {
            case 0:
                kit_panel_destroy(panel);
                break;
            case 1:
                kit_panel_place(panel, input.Below(60), input.Below(60), input.Below(300), input.Below(200));
                break;
            case 2:
                kit_panel_height(panel, input.Take<std::uint32_t>(), &height);
                break;
            case 3:
                kit_panel_update(panel, input.Take<std::uint64_t>());
                break;
            case 4:
                kit_panel_message(panel, input.Take<std::uint16_t>() | 0x8000U, 0, 0, nullptr);
                break;
            default:
                kit_panel_draw(panel);
        }
    }

    void Table_Call() {
        const std::string text = Text();
        std::array<kit_label, 16> labels = {};
        for (kit_label& label : labels) {
            label.size = Size(sizeof label);
            label.flags = static_cast<std::uint32_t>(input.Below(9));
            label.text = input.Below(4) == 0 ? nullptr : text.c_str();
            label.red = input.Take<std::uint8_t>();
        }
        const auto count = static_cast<std::uint32_t>(input.Below(5) * 4);
        const std::array<std::uint16_t, 8> sizes = {1, 2, static_cast<std::uint16_t>(input.Below(200)), 4, 5, 6, 7, 8};
        switch (input.Below(7)) {
            case 0:
                // A wrong first size would be the step from one to the next.
                if (labels[0].size == sizeof(kit_label)) {
                    kit_tags_set(labels.data(), count);
                }
                break;
            case 1:
                if (labels[0].size == sizeof(kit_label)) {
                    kit_markers_set(labels.data(), count);
                }
                break;
            case 2:
                kit_tag_set(static_cast<std::uint32_t>(input.Below(20)), labels.data());
                break;
            case 3:
                kit_marker_set(static_cast<std::uint32_t>(input.Below(20)), labels.data());
                break;
            case 4:
                kit_brushes_set(sizes.data(), static_cast<std::uint32_t>(input.Below(9)));
                break;
            case 5:
                kit_tag_pick(static_cast<std::uint32_t>(input.Below(20)));
                kit_marker_pick(static_cast<std::uint32_t>(input.Below(20)));
                break;
            default:
                kit_brush_pick(static_cast<std::uint32_t>(input.Below(10)));
        }
    }

    void Table_Question() {
        std::array<char, 64> text = {};
        std::vector<std::uint8_t> mask(static_cast<std::size_t>(input.Below(2000)));
        std::uint32_t needed = 0;
        const auto index = static_cast<std::uint32_t>(input.Below(20));
        const auto room = static_cast<std::uint32_t>(input.Below(65));
        kit_label label = {};
        label.size = sizeof label;
        kit_tag_get(index, &label);
        kit_marker_get(index, &label);
        kit_tag_text(index, text.data(), room, &needed);
        kit_marker_text(index, text.data(), room, nullptr);
        kit_brush_mask(index, mask.data(), static_cast<std::uint32_t>(mask.size()), &needed, nullptr);
        std::uint16_t size = 0;
        kit_brushes_count(&needed);
        kit_brush_size(index, &size);
        kit_error_text(Handle(), text.data(), room, &needed);
        kit_contract_check(&needed);
        kit_contract_text(index, text.data(), room, &needed);
    }

    void Variable_Call() {
        static constexpr const char* names[] = {"$TAG_NB",
                                                "$TAG_CUR",
                                                "$TAG_LOCK",
                                                "$BRUSH_SIZE",
                                                "$BRUSH_PT",
                                                "$WINDOW_CUR",
                                                "$INTERFACE_SPACE_DIM",
                                                "$TAG_LABEL",
                                                "$FRAME_CUR",
                                                "$DB_2D_FILE_PT",
                                                "$GLI_HISTO_BINS_MAX",
                                                "$MARKER_ENABLE",
                                                "$TAG_THRESHOLD_MIN",
                                                "$REGIONAL_FILLER"};
        const std::string made_up = Text();
        const int at = input.Below(16);
        const char* const name = at < 14 ? names[at] : (at == 14 ? made_up.c_str() : nullptr);
        std::array<std::uint64_t, 300> numbers = {};
        numbers[0] = input.Take<std::uint64_t>();
        std::uint32_t needed = 0;
        double number = 0;
        kit_variable_type(name, &needed, input.Below(2) == 0 ? nullptr : &needed);
        kit_variable_set_number(name, static_cast<double>(input.Take<std::int32_t>()));
        kit_variable_number(name, &number);
        kit_variable_set_text(name, made_up.c_str());
        kit_variable_text(name, reinterpret_cast<char*>(numbers.data()), sizeof numbers, &needed);
        const auto type = static_cast<std::uint32_t>(input.Below(10));
        kit_variable_set_array(name, type, numbers.data(), static_cast<std::uint32_t>(input.Below(301)));
        kit_variable_array(name, type, numbers.data(), 300, &needed);
    }

    void Volume_Call() {
        const kit_handle volume = Handle();
        const int slice = input.Below(7) - 1;
        std::int32_t number = 0;
        kit_handle shown = 0;
        std::array<std::uint32_t, 40> counts = {};
        const std::array<std::uint8_t, 64> mask = {1, 0, 1, 1};
        switch (input.Below(9)) {
            case 0:
                kit_volume_destroy(volume);
                break;
            case 1:
                kit_volume_show(volume, slice);
                break;
            case 2:
                kit_volume_select(volume, slice, input.Below(3));
                break;
            case 3:
                kit_volume_selected(volume, slice, &number);
                kit_volume_slices(volume, &number);
                break;
            case 4:
                kit_volume_pointer(volume, slice, static_cast<float>(input.Below(20)),
                                   static_cast<float>(input.Below(20)));
                break;
            case 5:
                kit_volume_histogram(volume, slice, nullptr, counts.data(), 40, nullptr);
                break;
            case 6:
                kit_volume_mask_set(volume, slice, input.Below(3) == 0 ? nullptr : mask.data(), 0);
                break;
            case 7:
                kit_volume_times(volume, &number);
                kit_volume_time_show(volume, slice);
                kit_volume_time_shown(volume, &number);
                break;
            default:
                kit_volume_shown(&shown, &number);
        }
    }

    void Tree_Call() {
        const kit_handle handle = Handle();
        const kit_handle other = Handle();
        const std::string text = Text();
        kit_handle made = 0;
        std::int32_t number = 0;
        std::array<char, 64> name = {};
        switch (input.Below(9)) {
            case 0:
            case 1:
                kit_class_create(static_cast<std::uint32_t>(input.Below(5)), text.c_str(), text.c_str(), nullptr,
                                 handle, &made);
                break;
            case 2:
                kit_class_destroy(handle);
                break;
            case 3:
                kit_class_move(handle, other, input.Below(5) - 1);
                break;
            case 4:
                kit_class_place(handle, &made, &number);
                made = 0;
                break;
            case 5:
                kit_class_name(handle, name.data(), 64, nullptr);
                kit_class_select(handle, input.Below(2));
                kit_class_selected(handle, &number);
                break;
            case 6:
                kit_file_create(text.c_str(), handle, &made);
                break;
            case 7:
                kit_file_destroy(handle);
                break;
            default:
                kit_file_access(handle, input.Below(5), input.Below(2));
        }
        Keep(made);
    }

    void Histogram_Read(kit_handle panel) {
        std::vector<std::uint32_t> counts(static_cast<std::size_t>(input.Below(300)));
        kit_histogram histogram = {};
        histogram.size = Size(sizeof histogram);
        std::uint32_t needed = 0;
        kit_histogram_read(panel, input.Below(2) == 0 ? nullptr : &histogram, counts.data(),
                           static_cast<std::uint32_t>(counts.size()), &needed);
    }

    void Other_Call() {
        const kit_handle panel = Handle();
        std::array<kit_peak, 20> peaks = {};
        peaks[0].size = Size(sizeof(kit_peak));
        kit_range range = {Size(sizeof range), input.Take<std::uint32_t>() & 0x1FFFF, 1.0F, 20.0F};
        std::uint32_t needed = 0;
        kit_settings settings = {};
        settings.size = sizeof settings;
        settings.abi_version = KIT_ABI_VERSION;
        switch (input.Below(8)) {
            case 0:
                kit_histogram_fit(panel, static_cast<std::uint32_t>(input.Below(5)),
                                  static_cast<std::uint32_t>(input.Below(300)));
                break;
            case 6:
                Histogram_Read(panel);
                break;
            case 7:
                kit_histogram_export(panel, input.Below(2) == 0 ? "/dev/null" : "no/such/folder/histogram.csv");
                break;
            case 1:
                // A size of another version that fits would be the step from one to the next.
                if (peaks[0].size <= sizeof(kit_peak)) {
                    kit_histogram_peaks(panel, peaks.data(), 20, &needed);
                }
                break;
            case 2:
                kit_histogram_ranges(panel, &range, 1);
                break;
            case 3:
                Require(is_stopped || kit_start(&settings) == KIT_ERROR_STATE);
                break;
            case 4:
                kit_answer_text("made/up.csv");
                break;
            default:
                kit_deliver();
        }
    }

    Input_Bytes input;
    void* window;
    bool has_modal_loops;
    std::function<void(Input_Bytes&)> between_calls;
    bool is_quiet = false;
    kit_handle at_work = 0;  // what a call inside of another one ends now and then
    int nested = 0;
    int running = 0;  // calls of the interface, one inside of another
    bool is_stopped = false;
    std::vector<kit_handle> handles;
};
