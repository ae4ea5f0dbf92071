#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "host/kit_common.h"
#include "kits/common/contract.h"
#include "kits/dataset/dataset_host.h"

namespace {

constexpr int HANDLE_BITS = 4;  // of a handle: the iterator's place; above: the number of the pass
static_assert(ITERATOR_MAX == 1 << HANDLE_BITS);
constexpr int CLASS_FAMILY_SHIFT = 12;
constexpr int CLASS_FAMILY_2D = 2;
constexpr int LEVEL_MAX = 4096;  // parent links may be set to anything, also to a ring

struct Pass {
    int next = 0;
    bool open = false;
    unsigned short number = 0;
    char who[64] = {};  // the beginning of who opened it
};

/** The registered objects in order. An object that leaves an open pass leaves a gap; gaps are closed when no pass is
 * open. */
struct Object_List {
    Quorel_2D** objects = nullptr;
    int size = 0;  // with gaps
    int room = 0;
    int gap_nb = 0;
};

// Never destroyed: objects may outlive every other static object.
constinit Object_List list;
constinit Pass passes[ITERATOR_MAX];

void Close_Gaps() {
    // Only when they are many: closing visits all objects.
    if (list.gap_nb * 2 < list.size || Iterator_Open_Nb() > 0) {
        return;
    }
    int kept = 0;
    for (int i = 0; i < list.size; ++i) {
        if (list.objects[i] != nullptr) {
            list.objects[i]->registered_at = kept;
            list.objects[kept++] = list.objects[i];
        }
    }
    list.size = kept;
    list.gap_nb = 0;
}

bool Room_For_One() {
    if (list.size < list.room) {
        return true;
    }
    constexpr int first_room = 64;
    const int room = list.room == 0 ? first_room : list.room * 2;
    auto* grown =
        static_cast<Quorel_2D**>(std::realloc(list.objects, static_cast<std::size_t>(room) * sizeof(Quorel_2D*)));
    if (grown == nullptr) {
        return false;
    }
    list.objects = grown;
    list.room = room;
    return true;
}

Pass* Pass_Of(unsigned short handle) {
    Pass& pass = passes[handle & (ITERATOR_MAX - 1)];
    return pass.open && pass.number == handle >> HANDLE_BITS ? &pass : nullptr;
}

bool Is_Of_Class(const Quorel_2D& object, int mask) {
    const int code = object.Class_A_Get();
    return (code & mask) == code && code >> CLASS_FAMILY_SHIFT == CLASS_FAMILY_2D;
}

bool Is_Shown_By(const Quorel_2D& object, const Quorel_Window* window) {
    if (window == All_Windows()) {
        return true;
    }
    if (window == nullptr || window->volume == nullptr) {
        return false;
    }
    const Quorel_2D* above = object.Parent_Get_Pt();
    for (int level = 0; above != nullptr && level < LEVEL_MAX; ++level) {
        if (above == window->volume) {
            return true;
        }
        above = above->Parent_Get_Pt();
    }
    return false;
}

}  // namespace

int Object_Register_2D(Quorel_2D* object) {
    if (object == nullptr || object->registered_at >= 0) {
        return 0;
    }
    Close_Gaps();
    if (!Room_For_One()) {
        return 0;
    }
    object->registered_at = list.size;
    list.objects[list.size++] = object;
    return 1;
}

void Object_Unregister_2D(Quorel_2D* object) {
    if (object == nullptr || object->registered_at < 0) {
        return;
    }
    list.objects[object->registered_at] = nullptr;
    object->registered_at = -1;
    ++list.gap_nb;
    if (list.gap_nb == list.size) {
        Close_Gaps();
    }
}

int Object_Registered_2D_Nb() {
    return list.size - list.gap_nb;
}

int Iterator_Open_Nb() {
    return static_cast<int>(
        std::count_if(std::begin(passes), std::end(passes), [](const Pass& pass) { return pass.open; }));
}

unsigned short Iterator_Init(const char* who, Quorel* /*object*/) {
    for (int place = 0; place < ITERATOR_MAX; ++place) {
        Pass& pass = passes[place];
        if (pass.open) {
            continue;
        }
        constexpr int number_max = 0xFFFF >> HANDLE_BITS;
        pass.number = static_cast<unsigned short>(pass.number % number_max + 1);
        pass.open = true;
        pass.next = 0;
        std::snprintf(pass.who, sizeof pass.who, "%s", who != nullptr ? who : "");
        return static_cast<unsigned short>(pass.number << HANDLE_BITS | place);
    }
    Error_Fct(hwnd, TRACE_LEVEL, "Iterator_Init(%s): no iterator left", who != nullptr ? who : "");
    return 0;
}

Quorel_2D* Iterator_Class_2D(unsigned short handle, int mask, Quorel_Window* window, int selected_only) {
    Pass* pass = Pass_Of(handle);
    while (pass != nullptr && pass->next < list.size) {
        Quorel_2D* object = list.objects[pass->next++];
        if (object == nullptr || object->frame == nullptr || !Is_Of_Class(*object, mask)) {
            continue;
        }
        if (selected_only != 0 && object->Flag_Get_Bit(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION) == 0) {
            continue;
        }
        if (Is_Shown_By(*object, window)) {
            return object;
        }
    }
    return nullptr;
}

void Iterator_End(unsigned short handle) {
    if (Pass* pass = Pass_Of(handle)) {
        pass->open = false;
        Close_Gaps();
    }
}

void Contract_Check_Iterators() {
    for (const Pass& pass : passes) {
        if (pass.open) {
            Contract_Report(CONTRACT_ITERATOR, pass.who);
        }
    }
}
