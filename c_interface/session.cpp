#include "c_interface/session.h"

#include <algorithm>
#include <utility>

#include "c_interface/code_page_text.h"
#include "c_interface/image_objects.h"
#include "c_interface/panel.h"

namespace c_interface {

namespace {

constexpr int SLOT_BITS = 24;
constexpr int GENERATION_BITS = 32;
constexpr std::size_t SLOTS_MOST = (std::size_t{1} << SLOT_BITS) - 2;
constexpr int EVENTS_AT_ONCE = 4096;  // a host that answers every event by making another one must come to an end

kit_handle Handle_Of(Kind kind, std::uint32_t generation, std::size_t slot) {
    return (static_cast<kit_handle>(kind) << (SLOT_BITS + GENERATION_BITS)) |
           (static_cast<kit_handle>(generation) << SLOT_BITS) | static_cast<kit_handle>(slot + 1);
}

}  // namespace

kit_handle Handle_Table::Add(std::unique_ptr<Object> object) {
    std::size_t at = 0;
    while (at < slots.size() && slots[at].object != nullptr) {
        ++at;
    }
    if (at == slots.size()) {
        Require(at < SLOTS_MOST, KIT_ERROR_MEMORY, "too many handles");
        slots.emplace_back();
    }
    Slot& slot = slots[at];
    slot.generation += 1;
    slot.made = ++made_nb;
    object->handle = Handle_Of(object->kind, slot.generation, at);
    slot.object = std::move(object);
    return slot.object->handle;
}

Object* Handle_Table::Find(kit_handle handle) const {
    const std::size_t at = static_cast<std::size_t>(handle & ((kit_handle{1} << SLOT_BITS) - 1)) - 1;
    return at < slots.size() && slots[at].object != nullptr && slots[at].object->handle == handle
               ? slots[at].object.get()
               : nullptr;
}

std::unique_ptr<Object> Handle_Table::Take(kit_handle handle) {
    if (Find(handle) == nullptr) {
        return nullptr;
    }
    return std::move(slots[static_cast<std::size_t>(handle & ((kit_handle{1} << SLOT_BITS) - 1)) - 1].object);
}

std::vector<kit_handle> Handle_Table::All(Kind kind) const {
    std::vector<const Slot*> found;
    for (const Slot& slot : slots) {
        if (slot.object != nullptr && slot.object->kind == kind) {
            found.push_back(&slot);
        }
    }
    std::ranges::sort(found, {}, &Slot::made);
    std::vector<kit_handle> handles;
    handles.reserve(found.size());
    for (const Slot* slot : found) {
        handles.push_back(slot->object->handle);
    }
    return handles;
}

void Handle_Table::Clear() {
    for (Slot& slot : slots) {
        slot.object.reset();  // the generations stay: handles of an earlier start are dead
    }
}

Session& Session::The() {
    static Session session;
    return session;
}

void Session::Tell(Event event) {
    if (event.kind == KIT_EVENT_UPDATE) {
        requested |= event.flags;
    } else if (settings.on_event != nullptr) {
        const bool is_known = event.kind == KIT_EVENT_REDRAW && std::ranges::any_of(waiting, [](const Event& one) {
                                  return one.kind == KIT_EVENT_REDRAW;
                              });
        if (!is_known) {
            waiting.push_back(std::move(event));
        }
    }
    if (depth == 0 && !is_delivering) {
        Settle_Later();  // a window of the module's own is at work
    }
}

std::int32_t Session::Call_Host(const Event& event) {
    kit_event told = {};
    told.size = sizeof told;
    told.kind = event.kind;
    told.panel = event.panel;
    told.object = event.object;
    told.flags = event.flags;
    told.level = event.level;
    told.index = event.index;
    told.from = event.from;
    told.text = event.kind == KIT_EVENT_MESSAGE || !event.text.empty() ? event.text.c_str() : nullptr;
    return settings.on_event(settings.context, &told);
}

std::int32_t Session::Ask(const Event& event, std::int32_t otherwise) {
    if (settings.on_event == nullptr) {
        return otherwise;
    }
    const Running running;  // whatever the host calls meanwhile settles nothing
    return Call_Host(event);
}

void Session::Give_Back(std::unique_ptr<Object> object) {
    if (object->kind == Kind::Panel) {
        static_cast<const Panel&>(*object).Window_Hide();
    }
    gone.push_back(std::move(object));
}

void Session::Bury() {
    std::uint64_t flags = 0;
    for (const std::unique_ptr<Object>& object : gone) {
        if (object->kind != Kind::Panel) {
            flags |= UPDATE_GONE;
            Object_Leave(*object);
        }
    }
    if (flags != 0) {
        Panels_Learn(flags);  // while they exist: rows of the database panels name them
    }
    // Their ends may report something, but make no object go.
    const std::vector<std::unique_ptr<Object>> now = std::move(gone);
    gone.clear();
}

void Session::Panels_Learn(std::uint64_t flags) {
    for (const kit_handle handle : handles.All(Kind::Panel)) {
        if (auto* const panel = static_cast<Panel*>(handles.Find(handle)); panel != nullptr) {
            panel->Update(flags);
        }
    }
}

void Session::Deliver() {
    for (int nb = 0; nb < EVENTS_AT_ONCE; ++nb) {
        if (const std::uint64_t flags = requested | announced; flags != 0) {
            const std::uint64_t by_panels = std::exchange(requested, 0);
            announced = 0;
            {
                const Running running;
                Panels_Learn(flags);
            }
            if (by_panels != 0 && settings.on_event != nullptr) {
                waiting.insert(waiting.begin(), Event{.kind = KIT_EVENT_UPDATE, .flags = by_panels});
            }
        }
        if (waiting.empty()) {
            return;
        }
        const Event event = std::move(waiting.front());
        waiting.erase(waiting.begin());
        if (settings.on_event != nullptr) {
            Call_Host(event);
        }
    }
    Settle_Later();
}

void Session::Settle() {
    if (depth > 0) {
        return;
    }
    if (!gone.empty()) {
        const Running running;
        Bury();
    }
    if (!is_delivering && (requested != 0 || announced != 0 || !waiting.empty())) {
        is_delivering = true;
        Deliver();
        is_delivering = false;
    }
}

void Session::Stop() {
    const Running running;
    for (const Kind kind : {Kind::Panel, Kind::File, Kind::Volume, Kind::Class}) {
        for (const kit_handle handle : handles.All(kind)) {
            Give_Back(handles.Take(handle));
        }
    }
    // Panels first: nobody learns of the rest.
    std::erase_if(gone, [](const std::unique_ptr<Object>& object) { return object->kind == Kind::Panel; });
    Bury();
    Settle_Later_End();
    waiting.clear();
    requested = 0;
    announced = 0;
    settings = {};
    is_started = false;
}

kit_status Error_Note(const char* function, kit_handle handle, const Failure& failure) noexcept {
    try {
        Session& session = Session::The();
        Object* const object = session.handles.Find(handle);
        std::string& error = object != nullptr ? object->error : session.error;
        error = function;
        error += ": ";
        error += failure.reason;
    } catch (...) {
        return failure.status;  // without memory the sentence is lost, not the status
    }
    return failure.status;
}

void Call_End() noexcept {
    try {
        Session::The().Settle();
    } catch (...) {
        Session::The().is_delivering = false;  // without memory: what waits is told next time
    }
}

void Utf8_Out(const std::string& text, char* out, std::uint32_t room, std::uint32_t* needed) {
    Array_Out<char>({text.c_str(), text.size() + 1}, out, room, needed);
}

void Text_Out(const char* text, char* out, std::uint32_t room, std::uint32_t* needed) {
    Utf8_Out(text != nullptr ? Utf8_Of_Page(text) : std::string(), out, room, needed);
}

std::string Page_Text(const char* text) {
    Require(text != nullptr, KIT_ERROR_ARGUMENT, "a text is null");
    std::string out;
    Require(Page_Of_Utf8(text, out), KIT_ERROR_TEXT,
            "a text is not UTF-8, or the system's code page has not its characters");
    return out;
}

}  // namespace c_interface
