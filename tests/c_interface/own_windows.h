/** What a user and the system do to windows of the module's own while a stream of calls runs: the enlarged histogram,
 *  the dialog for a new name, drop lists. Their loops let the host call again, as a message loop does. Without a window
 *  system only. */
#pragma once

#include "histogram/tool_histo_blow.h"
#include "kits/widgets/select_drop_list.h"
#include "tests/c_interface/call_stream.h"
#include "tests/support/headless_windows.h"

class Own_Windows {
  public:
    explicit Own_Windows(Call_Stream& stream) {
        current = &stream;
        Drop_List_Runner_Set([](const Drop_List_Request&) {
            current->Step_Inside();
            return current->Input().Below(6) - 1;  // below 0: nobody picks
        });
        Headless_Dialog_Set([&stream](Headless_Message& message) {
            stream.Step_Inside();
            return Dialog_Message(stream.Input(), message);
        });
        stream.Between_Calls_Set([](Input_Bytes& input) { Enlarged_Message(input); });
    }
    ~Own_Windows() {
        Drop_List_Runner_Set(nullptr);
        Headless_Dialog_Set({});
    }
    Own_Windows(const Own_Windows&) = delete;
    Own_Windows& operator=(const Own_Windows&) = delete;

  private:
    inline static Call_Stream* current = nullptr;  // a drop list's runner carries nothing

    /** @return false: the user closes the dialog */
    static bool Dialog_Message(Input_Bytes& input, Headless_Message& message) {
        // paint, close, key, characters, move, press, release, wheel
        constexpr unsigned int messages[] = {0x0F, 0x10, 0x100, 0x102, 0x102, 0x102, 0x200, 0x201, 0x202, 0x20A};
        if (input.At_End()) {
            return false;
        }
        message = {messages[input.Below(10)], input.Take<std::uint8_t>(), input.Below(320) | input.Below(160) << 16U};
        return (input.Take<std::uint8_t>() & 15) != 0;
    }
    static void Enlarged_Message(Input_Bytes& input) {
        // size, close, paint, move, press, release, wheel, left, capture lost, data, cursor
        constexpr unsigned int messages[] = {0x05, 0x10, 0x0F, 0x200, 0x201, 0x202, 0x20A, 0x2A3, 0x215, 0x400, 0x401};
        if (histo_blow.window == nullptr) {
            return;
        }
        const unsigned int message = messages[input.Below(11)];
        const auto wheel = static_cast<std::uint32_t>(input.Take<std::int8_t>() * 60) << 16U;
        Headless_Message_Send(histo_blow.window, {message, wheel, input.Below(900) | input.Below(500) << 16U});
        Headless_Messages_Deliver();
    }
};
