/** A panel that a test destroys while one of its operations runs, in memory that tells who touches it afterwards. */
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KIT_ENDING_PANEL_POISON 1
#include <sanitizer/asan_interface.h>
#endif
#endif

template <class Panel>
class Ending_Panel {
  public:
    /** A copy of a panel that is laid out. */
    explicit Ending_Panel(const Panel& original) : panel(new (memory) Panel(original)) {}
    ~Ending_Panel() {
        if (panel != nullptr) {
            panel->~Panel();
        }
        Open();
    }
    Ending_Panel(const Ending_Panel&) = delete;
    Ending_Panel& operator=(const Ending_Panel&) = delete;

    Panel* operator->() const { return panel; }
    Panel& operator*() const { return *panel; }
    bool Has_Ended() const { return panel == nullptr; }
    /** Destroys the panel; the second time nothing. Reading its memory ends the test under a sanitizer. */
    void End() {
        if (panel == nullptr) {
            return;
        }
        panel->~Panel();
        panel = nullptr;
        std::memset(memory, REMAINS, sizeof memory);
#if defined(KIT_ENDING_PANEL_POISON)
        ASAN_POISON_MEMORY_REGION(memory, sizeof memory);
#endif
    }
    /** True when nothing was written since End. */
    bool Is_Untouched() {
        Open();
        return panel == nullptr &&
               std::all_of(memory, memory + sizeof memory, [](unsigned char byte) { return byte == REMAINS; });
    }

  private:
    static constexpr unsigned char REMAINS =
        0x23;  // the widgets of such a panel do not react, so that a late click shows
    void Open() {
#if defined(KIT_ENDING_PANEL_POISON)
        ASAN_UNPOISON_MEMORY_REGION(memory, sizeof memory);
#endif
    }
    alignas(Panel) unsigned char memory[sizeof(Panel)];
    Panel* panel;
};
