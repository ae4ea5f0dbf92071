#include "tests/database/host_calls.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

std::string Hex(unsigned __int64 number) {
    char text[32];
    std::snprintf(text, sizeof(text), "0x%llx", number);
    return text;
}

std::string Flag_Call(const char* call, const Quorel* object, int bits, int group, int mask) {
    return std::string(call) + "(" + Host_Calls::current->Name_Of(object) + ", " +
           Hex(static_cast<unsigned int>(bits)) + ", " + std::to_string(group) + ", " + std::to_string(mask) + ")";
}

// A hook is set in the program only, so these reach the module itself by the address that was there before.
int (*real_get)(const Quorel*, int, int, int) = nullptr;
void (*real_on)(Quorel*, int, int, int) = nullptr;
void (*real_off)(Quorel*, int, int, int) = nullptr;
void (*real_change)(Quorel_Window*, Quorel_2D*, Quorel_2D*) = nullptr;
unsigned short (*real_init)(const char*, Quorel*) = nullptr;
Quorel_2D* (*real_next)(unsigned short, int, Quorel_Window*, int) = nullptr;
void (*real_end)(unsigned short) = nullptr;

int Get(const Quorel* object, int bits, int group, int mask) {
    const int value = real_get(object, bits, group, mask);
    Host_Calls::current->Add(Flag_Call("get", object, bits, group, mask) + " = " + Hex(static_cast<unsigned>(value)));
    return value;
}
void Set_On(Quorel* object, int bits, int group, int mask) {
    Host_Calls::current->Add(Flag_Call("on", object, bits, group, mask));
    real_on(object, bits, group, mask);
}
void Set_Off(Quorel* object, int bits, int group, int mask) {
    Host_Calls::current->Add(Flag_Call("off", object, bits, group, mask));
    real_off(object, bits, group, mask);
}
void Change_Child(Quorel_Window* window, Quorel_2D* shown, Quorel_2D* before) {
    const Host_Calls& host = *Host_Calls::current;
    Host_Calls::current->Add("child(" + host.Name_Of(window) + ", " + host.Name_Of(shown) + ", " +
                             host.Name_Of(before) + ")");
    real_change(window, shown, before);
}
void Update(unsigned __int64 flags, void* a, void* b, Region_2D* region) {
    Host_Calls& host = *Host_Calls::current;
    host.Add("update(" + Hex(flags) + ", " + host.Name_Of(a) + ", " + host.Name_Of(b) + ", " + host.Name_Of(region) +
             ")");
    host.Answer(flags);
}
void Redraw(unsigned __int64 flags, void* a, void* b, Region_2D* region) {
    Host_Calls& host = *Host_Calls::current;
    host.Add("redraw(" + Hex(flags) + ", " + host.Name_Of(a) + ", " + host.Name_Of(b) + ", " + host.Name_Of(region) +
             ")");
}
unsigned short Init(const char* who, Quorel* object) {
    const unsigned short handle = real_init(who, object);
    Host_Calls::current->Add("open(" + std::string(who) + ", " + Host_Calls::current->Name_Of(object) +
                             (handle != 0 ? ")" : ") = 0"));
    return handle;
}
Quorel_2D* Next(unsigned short handle, int mask, Quorel_Window* window, int selected_only) {
    Quorel_2D* const object = real_next(handle, mask, window, selected_only);
    Host_Calls::current->Add("next(" + std::to_string(mask) + ", " + Host_Calls::current->Name_Of(window) + ", " +
                             std::to_string(selected_only) + ") = " + Host_Calls::current->Name_Of(object));
    return object;
}
void End(unsigned short handle) {
    Host_Calls::current->Add("close");
    real_end(handle);
}

template <class Function>
Import_Hook Watch(const char* name, Function* replacement, Function** real) {
    Import_Hook hook("", "Kit_Dataset.dll", name, reinterpret_cast<void*>(replacement));
    if (real != nullptr) {
        *real = reinterpret_cast<Function*>(hook.Original());
    }
    return hook;
}

}  // namespace

Host_Calls* Host_Calls::current = nullptr;

Host_Calls::Host_Calls() {
    current = this;
    hooks.push_back(Watch("_ZNK6Quorel12Flag_Get_BitEiii", Get, &real_get));
    hooks.push_back(Watch("_ZN6Quorel11Flag_Set_OnEiii", Set_On, &real_on));
    hooks.push_back(Watch("_ZN6Quorel12Flag_Set_OffEiii", Set_Off, &real_off));
    hooks.push_back(Watch("_Z16Fct_Change_ChildP13Quorel_WindowP9Quorel_2DS2_", Change_Child, &real_change));
    hooks.push_back(Watch<decltype(Update)>("_Z10Fct_UpdateyPvS_P9Region_2D", Update, nullptr));
    hooks.push_back(Watch<decltype(Redraw)>("_Z10Fct_RedrawyPvS_P9Region_2D", Redraw, nullptr));
    hooks.push_back(Watch("_Z13Iterator_InitPKcP6Quorel", Init, &real_init));
    hooks.push_back(Watch("_Z17Iterator_Class_2DtiP13Quorel_Windowi", Next, &real_next));
    hooks.push_back(Watch("_Z12Iterator_Endt", End, &real_end));
    for (const Import_Hook& hook : hooks) {
        if (!hook.Is_Set()) {
            std::printf("a host function is not imported: its calls are not seen\n");
            std::abort();
        }
    }
}

Host_Calls::~Host_Calls() {
    hooks.clear();
    current = nullptr;
}

Calls Host_Calls::Take() {
    return std::exchange(calls, {});
}

void Host_Calls::Add(const std::string& call) {
    if (listening) {
        calls.push_back(call);
    }
}

std::string Host_Calls::Name_Of(const void* object) const {
    const auto found = names.find(object);
    if (found != names.end()) {
        return found->second;
    }
    return object == nullptr ? "-" : reinterpret_cast<std::uintptr_t>(object) == ALL_OBJECTS ? "all" : "?";
}

void Host_Calls::Answer(unsigned __int64 flags) {
    if (on_update && !answering) {
        answering = true;
        on_update(flags);
        answering = false;
    }
}
