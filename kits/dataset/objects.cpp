#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "host/kit_common.h"
#include "kits/dataset/variables.h"

namespace {

/** Where an object stood when it was removed last. */
struct Former_Place {
    const Quorel* object = nullptr;
    Quorel* parent = nullptr;
    int position = 0;
};

/** The last removals: a caller removes an object, then adds it elsewhere, and may be refused. A few are enough for
 * every such pair. */
constexpr std::size_t FORMER_PLACE_NB = 64;
constinit Former_Place former_places[FORMER_PLACE_NB];
constinit std::size_t former_place_next = 0;

void Former_Place_Forget(const Quorel* object) {
    for (Former_Place& place : former_places) {
        if (place.object == object || place.parent == object) {
            place = {};
        }
    }
}

void Former_Place_Forget_Removal(const Quorel* object) {
    for (Former_Place& place : former_places) {
        if (place.object == object) {
            place = {};
        }
    }
}

void Former_Place_Remember(const Former_Place& new_place) {
    Former_Place_Forget_Removal(new_place.object);
    former_places[former_place_next] = new_place;
    former_place_next = (former_place_next + 1) % FORMER_PLACE_NB;
}

Former_Place Former_Place_Of(const Quorel* object) {
    for (const Former_Place& place : former_places) {
        if (place.object == object) {
            return place;
        }
    }
    return {};
}

void Memory_Error(const char* what) {
    Error_Fct(hwnd, MESSAGE_MEMORY, "memory error in Kit_Dataset (var=%s)", what);
}

void Replace_Text(char*& field, const char* text, const char* what) {
    char* copy = nullptr;
    if (text != nullptr) {
        const std::size_t size = std::strlen(text) + 1;
        copy = static_cast<char*>(std::malloc(size));
        if (copy == nullptr) {
            Memory_Error(what);
            return;
        }
        std::memcpy(copy, text, size);
    }
    std::free(field);
    field = copy;
}

const char* Text_Or_Null(const char* text) {
    return text[0] != 0 ? text : nullptr;
}

}  // namespace

Quorel::~Quorel() {
    if (holder != nullptr) {
        holder->Tree_Remove(holder->Tree_Position(this));
    }
    for (int i = 0; i < child_nb; ++i) {
        child[i]->holder = nullptr;
        if (child[i]->parent == this) {
            child[i]->parent = nullptr;
        }
    }
    Former_Place_Forget(this);
    std::free(child);
    std::free(title);
    std::free(name);
    std::free(flag_word);
}

void Quorel::Title_Set(const char* text) {
    Replace_Text(title, text, "title");
}

void Quorel::Name_Set(const char* text) {
    Replace_Text(name, text, "name");
}

int Quorel::Flag_Get_Bit(int bits, int group, int mask) const {
    for (int i = 0; i < flag_word_nb; ++i) {
        if (flag_word[i].group == group && flag_word[i].mask == mask) {
            return flag_word[i].bits & bits;
        }
    }
    return 0;
}

void Quorel::Flag_Set_On(int bits, int group, int mask) {
    for (int i = 0; i < flag_word_nb; ++i) {
        if (flag_word[i].group == group && flag_word[i].mask == mask) {
            flag_word[i].bits |= bits;
            return;
        }
    }
    const std::size_t size = sizeof(Flag_Word) * (static_cast<std::size_t>(flag_word_nb) + 1);
    auto* grown = static_cast<Flag_Word*>(std::realloc(flag_word, size));
    if (grown == nullptr) {
        Memory_Error("flag_word");
        return;
    }
    flag_word = grown;
    flag_word[flag_word_nb++] = {group, mask, bits};
}

void Quorel::Flag_Set_Off(int bits, int group, int mask) {
    for (int i = 0; i < flag_word_nb; ++i) {
        if (flag_word[i].group == group && flag_word[i].mask == mask) {
            flag_word[i].bits &= ~bits;
        }
    }
}

int Quorel::Tree_Position(const Quorel* object) const {
    if (object == nullptr || object->holder != this) {
        return -1;
    }
    Quorel** end = child + child_nb;
    Quorel** found = std::find(child, end, const_cast<Quorel*>(object));
    return found != end ? static_cast<int>(found - child) : -1;
}

int Quorel::Tree_Remove(int position) {
    if (position < 0 || position >= child_nb) {
        return 0;
    }
    Quorel* object = child[position];
    std::memmove(child + position, child + position + 1,
                 sizeof(Quorel*) * static_cast<std::size_t>(child_nb - position - 1));
    --child_nb;
    object->holder = nullptr;
    if (object->parent == this) {
        object->parent = nullptr;
    }
    Former_Place_Remember({object, this, position});
    return 1;
}

bool Quorel::Tree_Room(int count) {
    if (count <= child_room) {
        return true;
    }
    constexpr int first_room = 4;
    const int room = std::max({count, first_room, child_room > INT_MAX / 2 ? INT_MAX : child_room * 2});
    auto* grown = static_cast<Quorel**>(std::realloc(child, sizeof(Quorel*) * static_cast<std::size_t>(room)));
    if (grown == nullptr) {
        return false;
    }
    child = grown;
    child_room = room;
    return true;
}

bool Quorel::Tree_Is_Below(const Quorel* object) const {
    for (const Quorel* above = this; above != nullptr; above = above->holder) {
        if (above == object) {
            return true;
        }
    }
    return false;
}

void Quorel::Tree_Link(int position, Quorel* object) {
    position = std::clamp(position, 0, child_nb);
    std::memmove(child + position + 1, child + position,
                 sizeof(Quorel*) * static_cast<std::size_t>(child_nb - position));
    child[position] = object;
    ++child_nb;
    object->holder = this;
    object->parent = this;
    Former_Place_Forget_Removal(object);
}

void Quorel::Tree_Put_Back(Quorel* object) {
    const Former_Place place = Former_Place_Of(object);
    if (object->holder == nullptr && place.parent != nullptr && !place.parent->Tree_Is_Below(object) &&
        place.parent->Tree_Room(place.parent->child_nb + 1)) {
        place.parent->Tree_Link(place.position, object);
    }
}

int Quorel::Tree_Insert(int position, Quorel* object) {
    if (object == nullptr) {
        return 0;
    }
    if (Tree_Is_Below(object)) {
        Tree_Put_Back(object);
        const char* shown =
            object->Name_Get() != nullptr && object->Name_Get()[0] != 0 ? object->Name_Get() : object->Title_Get();
        Error_Fct(hwnd, MESSAGE_WARNING,
                  "\xF1\x05WARNING:\x02 \"%s\" cannot be moved below itself; it stays where it was",
                  shown != nullptr ? shown : "");
        return 0;
    }
    if (!Tree_Room(child_nb + 1)) {
        Tree_Put_Back(object);
        Memory_Error("child");
        return 0;
    }
    if (object->holder != nullptr) {
        const int old_position = object->holder->Tree_Position(object);
        // Within one parent the places behind the object move up when it leaves.
        position -= object->holder == this && old_position < position ? 1 : 0;
        object->holder->Tree_Remove(old_position);
    }
    Tree_Link(position, object);
    return 1;
}

Quorel_1D::~Quorel_1D() = default;

const char* Quorel_1D::Icon_Get() {
    return Text_Or_Null(icon);
}

Quorel_3D::~Quorel_3D() = default;

const char* Quorel_3D::Icon_Get() {
    return Text_Or_Null(icon);
}

Quorel_2D::~Quorel_2D() {
    Object_Unregister_2D(this);
    Variable_Forget_Frame(this);
    for (Quorel_Window* window = Quorel_Window::first; window != nullptr; window = window->next) {
        window->volume = window->volume == this ? nullptr : window->volume;
    }
}

const char* Quorel_2D::Icon_2D_Get() {
    return Text_Or_Null(icon);
}

int Quorel_2D::Child_Get_Cur(Quorel_Window* window) const {
    return Child_Get_Id(Window_Frame(window));
}

Quorel_Window* Quorel_Window::first = nullptr;

Quorel_Window::Quorel_Window() : next(first) {
    class_a = CLASS_WINDOW;
    first = this;
}

Quorel_Window::~Quorel_Window() {
    Quorel_Window** link = &first;
    while (*link != this) {
        link = &(*link)->next;
    }
    *link = next;
}
