#include "kits/common/messages.h"

#include <algorithm>
#include <cstdarg>

#include "kits/common/message_format.h"

HWND hwnd = nullptr;
signed char Flag_Trace = 0;
const char* Prog_Name = "Host";

namespace {

struct Registration {
    Message_Receiver receiver = nullptr;
    void* context = nullptr;
    bool with_traces = false;
};

constexpr int TRACE_FIRST = 10;
constexpr int TRACE_LAST = 17;

/** Whether only receivers that ask for traces get the message. */
bool Is_Asked_For(int level) {
    return level >= TRACE_FIRST && level <= TRACE_LAST && Flag_Trace == 0;
}

/** Who receives messages. A place that is left while messages are being delivered stays empty until the delivery is
 * over, so that receivers may come, go and send messages themselves. */
class Receiver_List {
  public:
    int Add(Message_Receiver receiver, void* context, bool with_traces) {
        if (receiver == nullptr || Find(receiver, context) != nullptr) {
            return 0;
        }
        try {
            registrations.push_back({receiver, context, with_traces});
        } catch (...) {
            return 0;
        }
        return 1;
    }

    int Remove(Message_Receiver receiver, void* context) {
        Registration* found = receiver != nullptr ? Find(receiver, context) : nullptr;
        if (found == nullptr) {
            return 0;
        }
        *found = {};
        Drop_Empty();
        return 1;
    }

    /** Whether somebody gets messages of that level. */
    bool Has_Receiver(int level) const {
        return std::ranges::any_of(
            registrations, [is_asked_for = Is_Asked_For(level)](const Registration& registration) {
                return registration.receiver != nullptr && (registration.with_traces || !is_asked_for);
            });
    }

    void Deliver(HWND window, int level, const char* text) {
        // A receiver that answers every message with another one would never end.
        constexpr int depth_max = 8;
        if (depth >= depth_max) {
            return;
        }
        ++depth;
        const bool is_asked_for = Is_Asked_For(level);
        const std::size_t count = registrations.size();
        for (std::size_t i = 0; i < count; ++i) {
            const Registration registration = registrations[i];
            if (registration.receiver == nullptr || (is_asked_for && !registration.with_traces)) {
                continue;
            }
            try {
                registration.receiver(registration.context, window, level, text);
            } catch (...) {
                // A receiver that fails has lost its message; the others still get theirs, and the panel that sent it
                // goes on.
            }
        }
        --depth;
        Drop_Empty();
    }

  private:
    Registration* Find(Message_Receiver receiver, void* context) {
        for (Registration& registration : registrations) {
            if (registration.receiver == receiver && registration.context == context) {
                return &registration;
            }
        }
        return nullptr;
    }

    void Drop_Empty() {
        if (depth == 0) {
            std::erase_if(registrations,
                          [](const Registration& registration) { return registration.receiver == nullptr; });
        }
    }

    std::vector<Registration> registrations;
    int depth = 0;
};

/** Holds the list without ever destroying it: messages may come until the very end of the process. */
union Receiver_Storage {
    Receiver_Storage() : list() {}
    ~Receiver_Storage() {}
    Receiver_List list;
};

Receiver_List& Receivers() {
    static Receiver_Storage storage;
    return storage.list;
}

}  // namespace

int Message_Receiver_Add(Message_Receiver receiver, void* context, bool with_traces) {
    return Receivers().Add(receiver, context, with_traces);
}

int Message_Receiver_Add(Message_Receiver receiver, void* context) {
    return Message_Receiver_Add(receiver, context, false);
}

int Message_Receiver_Remove(Message_Receiver receiver, void* context) {
    return Receivers().Remove(receiver, context);
}

int Error_Fct(HWND window, int level, const char* format, ...) {
    Receiver_List& receivers = Receivers();
    if (format == nullptr || !receivers.Has_Receiver(level)) {
        return 1;
    }
    Message_Text text;
    std::va_list arguments;
    va_start(arguments, format);
    text.Print(format, arguments);
    va_end(arguments);
    receivers.Deliver(window, level, text.Text());
    return 1;
}

int System_Message(int level, char* name, HWND window, unsigned int message) {
    return Error_Fct(window, level, "%s: window message 0x%04x", name != nullptr ? name : "", message);
}
