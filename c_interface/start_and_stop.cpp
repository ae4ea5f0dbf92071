// Start, end, errors, events and checks.
#include <algorithm>
#include <cstdio>
#include <exception>

#include "c_interface/code_page_text.h"
#include "c_interface/default_variables.h"
#include "c_interface/image_objects.h"
#include "c_interface/panel.h"
#include "c_interface/session.h"
#include "host/kit_common.h"
#include "kits/common/contract.h"
#include "kits/common/messages.h"
#include "panels/version_export.h"

using namespace c_interface;

namespace {

constexpr std::string_view CONTRACT_PREFIX = "WARNING: Contract: ";
constexpr int TRACE_FIRST = 10;
constexpr float SCALE_MOST = 8.0F;
constexpr std::size_t SETTINGS_LEAST = offsetof(kit_settings, traces) + sizeof(kit_settings::traces);

/** What waits must not throw through a panel: a message without memory is lost. */
template <class Work>
void Without_Exception(Work work) noexcept {
    try {
        work();
    } catch (const std::exception&) {
        Session::The().error = {};
    }
}

void On_Message(void* /*context*/, HWND /*window*/, int level, const char* text) {
    Session& session = Session::The();
    if (level >= TRACE_FIRST && session.settings.traces == 0) {
        return;
    }
    Without_Exception([&] {
        std::string told = Utf8_Of_Page(Message_Plain(text).c_str());
        if (told.starts_with(CONTRACT_PREFIX)) {
            session.mistakes.push_back(told.substr(CONTRACT_PREFIX.size()));
        }
        Event event;
        event.kind = KIT_EVENT_MESSAGE;
        event.level = level;
        event.text = std::move(told);
        session.Tell(std::move(event));
    });
}

void On_Update(void* /*context*/, unsigned __int64 flags, void* /*a*/, void* /*b*/) {
    Without_Exception([&] { Session::The().Tell({.kind = KIT_EVENT_UPDATE, .flags = flags}); });
}

void On_Redraw(void* /*context*/, unsigned __int64 /*flags*/, void* /*a*/, void* /*b*/) {
    Without_Exception([] { Session::The().Tell({.kind = KIT_EVENT_REDRAW}); });
}

void On_Change_Child(void* /*context*/, Quorel_Window* /*window*/, Quorel_2D* new_frame, Quorel_2D* /*old_frame*/) {
    Without_Exception([&] {
        const Frame_Place place = Place_Of_Frame(new_frame);
        Session& session = Session::The();
        session.Tell({.kind = KIT_EVENT_FRAME, .object = place.volume, .index = place.slice});
        session.Tell({.kind = KIT_EVENT_UPDATE, .flags = UPDATE_FRAME_CUR});
    });
}

int On_File_Name(void* context, const char* title, const char* filter, const char* initial_name, const char* extension,
                 char* buffer);

Request_Listener Listener_Of(bool is_asked) {
    Request_Listener listener;
    listener.update = On_Update;
    listener.redraw = On_Redraw;
    listener.change_child = On_Change_Child;
    listener.save_file_name = is_asked ? On_File_Name : nullptr;
    return listener;
}

int On_File_Name(void* /*context*/, const char* title, const char* filter, const char* initial_name,
                 const char* extension, char* buffer) {
    int result = 0;
    Without_Exception([&] {
        Session& session = Session::The();
        session.answer.clear();
        session.is_asking_name = true;
        Event event;
        event.kind = KIT_EVENT_FILE_NAME;
        event.text = Utf8_Of_Page(initial_name != nullptr ? initial_name : "");
        const std::int32_t answer = session.Ask(event, -1);
        session.is_asking_name = false;
        if (answer == 1 && !session.answer.empty()) {
            std::snprintf(buffer, FILE_NAME_SIZE, "%s", session.answer.c_str());
            result = 1;
        } else if (answer == -1) {
            Request_Listener_Set(Listener_Of(false));
            result = Fct_Save_FileName(title, filter, initial_name, extension, buffer, 0);
            Request_Listener_Set(Listener_Of(true));
        }
    });
    return result;
}

void Settings_Check(const kit_settings& wanted) {
    Require((wanted.abi_version >> 16) == (KIT_ABI_VERSION >> 16) && wanted.abi_version <= KIT_ABI_VERSION,
            KIT_ERROR_ARGUMENT, "abi_version is not one that this DLL knows");
    Require(wanted.scale >= 0.0F && wanted.scale <= SCALE_MOST, KIT_ERROR_ARGUMENT, "scale is not from 0 to 8");
    Require(wanted.theme == KIT_THEME_DARK || wanted.theme == KIT_THEME_LIGHT, KIT_ERROR_ARGUMENT, "no such theme");
}

}  // namespace

void Session::Start(const kit_settings& wanted) {
    Settings_Check(wanted);
    const float scale = wanted.scale > 0.0F ? wanted.scale : 1.0F;
    const std::string icons =
        wanted.icon_folder != nullptr ? Page_Text(wanted.icon_folder) : Icon_Folder_Beside_Program();
    World_Make();
    thread = std::this_thread::get_id();
    settings = wanted;
    settings.icon_folder = nullptr;  // the caller's
    error.clear();
    mistakes.clear();
    Contract_Checks_Set(wanted.contract_checks != 0);
    Variables_Define(scale, icons);
    Library_Scale_Set(scale);
    Library_Theme_Set(wanted.theme == KIT_THEME_LIGHT ? Library_Theme::Light : Library_Theme::Dark);
    Message_Receiver_Add(On_Message, nullptr, true);
    Request_Listener_Set(Listener_Of(true));
    is_started = true;
}

extern "C" {

uint32_t kit_panels_abi_version(void) {
    return KIT_ABI_VERSION;
}

const char* kit_status_text(kit_status status) {
    static constexpr const char* texts[] = {"success",
                                            "wrong argument",
                                            "the handle is not alive",
                                            "the handle is of another kind",
                                            "the size of a struct is wrong",
                                            "no memory",
                                            "not possible now",
                                            "not the user-interface thread",
                                            "no such variable",
                                            "too little room",
                                            "the system refused",
                                            "the text cannot be expressed",
                                            "an error of the module"};
    const std::int64_t at = -std::int64_t{status};
    return at >= 0 && at < static_cast<std::int64_t>(std::size(texts)) ? texts[at] : "no status of this interface";
}

kit_status kit_start(const kit_settings* settings) {
    Session& session = Session::The();
    try {
        Require(!session.is_started, KIT_ERROR_STATE, "started already");
        session.Start(Struct_Of(settings, SETTINGS_LEAST));
        return KIT_OK;
    } catch (const Failure& failure) {
        // Nothing of a session that another thread uses is touched.
        return session.is_started ? failure.status : Error_Note("kit_start", 0, failure);
    } catch (...) {
        return KIT_ERROR_MEMORY;
    }
}

kit_status kit_stop(void) {
    const kit_status status = Call("kit_stop", 0, [] {
        Session& session = Session::The();
        Require(session.depth == 1 && !session.is_delivering, KIT_ERROR_STATE, "another function is running");
        Message_Receiver_Remove(On_Message, nullptr);
        Request_Listener_Set({});
        session.Stop();
        hwnd = nullptr;
        Variables_End();
        World_End();
    });
    return status;
}

kit_status kit_error_text(kit_handle handle, char* out, uint32_t room, uint32_t* needed) {
    const Session& session = Session::The();
    if (session.is_started && std::this_thread::get_id() != session.thread) {
        return KIT_ERROR_THREAD;
    }
    try {
        const Object* const object = session.handles.Find(handle);
        Utf8_Out(object != nullptr ? object->error : session.error, out, room, needed);
        return KIT_OK;
    } catch (const Failure& failure) {
        return failure.status;
    } catch (...) {
        return KIT_ERROR_INTERNAL;
    }
}

kit_status kit_module_version(char* out, uint32_t room, uint32_t* needed) {
    return Call("kit_module_version", 0, [&] {
        std::string& kept = Session::The().module_line;  // the module's line costs memory with every question
        if (kept.empty()) {
            const char* const line = Get_Version_Quorel_Tools(nullptr);
            kept = line != nullptr ? Utf8_Of_Page(line) : std::string();
        }
        Utf8_Out(kept, out, room, needed);
    });
}

kit_status kit_answer_text(const char* path) {
    return Call("kit_answer_text", 0, [&] {
        Session& session = Session::The();
        Require(session.is_asking_name, KIT_ERROR_STATE, "no file name is asked for");
        std::string text = Page_Text(path);
        Require(text.size() < static_cast<std::size_t>(FILE_NAME_SIZE), KIT_ERROR_ARGUMENT, "the path is too long");
        session.answer = std::move(text);
    });
}

kit_status kit_deliver(void) {
    return Call("kit_deliver", 0, [] {});
}

kit_status kit_contract_check(uint32_t* count) {
    return Call("kit_contract_check", 0, [&] {
        Require(count != nullptr, KIT_ERROR_ARGUMENT, "count is null");
        Session& session = Session::The();
        if (session.settings.contract_checks != 0) {
            Contract_Check_Variables();
            if (session.depth == 1) {
                Contract_Check_Iterators();
                if (hwnd != nullptr) {  // the first panel names it; before, nothing can have been drawn
                    Contract_Check_Drawing();
                }
            }
        }
        *count = static_cast<uint32_t>(session.mistakes.size());
    });
}

kit_status kit_contract_text(uint32_t index, char* out, uint32_t room, uint32_t* needed) {
    return Call("kit_contract_text", 0, [&] {
        const auto& mistakes = Session::The().mistakes;
        Require(index < mistakes.size(), KIT_ERROR_ARGUMENT, "index is not below the count");
        Utf8_Out(mistakes[index], out, room, needed);
    });
}

}  // extern "C"
