#include "kits/dataset/variable_table.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr std::size_t WORD_SIZE = sizeof(std::uint64_t);

std::uint64_t Word_At(const char* text) {
    std::uint64_t word;
    std::memcpy(&word, text, WORD_SIZE);
    return word;
}

/** Whether two texts of `size` bytes agree. Written out: names are short, and a call of the C library costs more than
 * the comparison. */
bool Is_Equal(const char* a, const char* b, std::size_t size) {
    if (size < WORD_SIZE) {
        for (std::size_t i = 0; i < size; ++i) {
            if (a[i] != b[i]) {
                return false;
            }
        }
        return true;
    }
    for (std::size_t i = 0; i + WORD_SIZE < size; i += WORD_SIZE) {
        if (Word_At(a + i) != Word_At(b + i)) {
            return false;
        }
    }
    return Word_At(a + size - WORD_SIZE) == Word_At(b + size - WORD_SIZE);
}

}  // namespace

Variable_Table::Key Variable_Table::Key_Of(const char* name) {
    constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15ULL;
    const std::size_t size = std::strlen(name);
    std::uint64_t hash = size;
    std::uint64_t last = 0;
    if (size < WORD_SIZE) {
        for (std::size_t at = 0; at < size; ++at) {
            last = last << 8 | static_cast<unsigned char>(name[at]);
        }
    } else {
        for (std::size_t at = 0; at + WORD_SIZE < size; at += WORD_SIZE) {
            hash = (hash ^ Word_At(name + at)) * multiplier;
            hash ^= hash >> 32;
        }
        last = Word_At(name + size - WORD_SIZE);  // some bytes again
    }
    hash = (hash ^ last) * multiplier;
    return {name, size, hash ^ hash >> 32};
}

Variable** Variable_Table::Slot(const Key& key) const {
    std::size_t at = key.hash & (room - 1);
    for (;; at = (at + 1) & (room - 1)) {
        const Variable* variable = slots[at];
        if (variable == nullptr || (variable->hash == key.hash && variable->name_size == key.size &&
                                    Is_Equal(variable->name, key.name, key.size))) {
            return &slots[at];
        }
    }
}

Variable* Variable_Table::Find(const char* name) const {
    return name != nullptr && room > 0 ? *Slot(Key_Of(name)) : nullptr;
}

bool Variable_Table::Grow() {
    constexpr std::size_t first_room = 256;
    const std::size_t new_room = room == 0 ? first_room : room * 2;
    auto** new_slots = static_cast<Variable**>(std::calloc(new_room, sizeof(Variable*)));
    if (new_slots == nullptr) {
        return false;
    }
    Variable** old_slots = slots;
    const std::size_t old_room = room;
    slots = new_slots;
    room = new_room;
    for (std::size_t i = 0; i < old_room; ++i) {
        if (old_slots[i] != nullptr) {
            *Slot({old_slots[i]->name, old_slots[i]->name_size, old_slots[i]->hash}) = old_slots[i];
        }
    }
    std::free(old_slots);
    return true;
}

Variable* Variable_Table::Find_Or_Make(const char* name) {
    if (name == nullptr || *name == 0) {
        return nullptr;
    }
    const Key key = Key_Of(name);
    if (room > 0) {
        if (Variable* found = *Slot(key)) {
            return found;
        }
    }
    if ((count + 1) * 2 > room && !Grow()) {
        return nullptr;
    }
    auto* variable = new (std::nothrow) Variable;
    auto* copy = static_cast<char*>(std::malloc(key.size + 1));
    if (variable == nullptr || copy == nullptr) {
        delete variable;
        std::free(copy);
        return nullptr;
    }
    std::memcpy(copy, name, key.size + 1);
    variable->name = copy;
    variable->name_size = key.size;
    variable->hash = key.hash;
    *Slot(key) = variable;
    ++count;
    return variable;
}
