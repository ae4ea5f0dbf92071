#include "database/frame_index.h"

#include <algorithm>
#include <bit>
#include <new>

namespace {

constexpr std::uint64_t SPREAD = 0x9E3779B97F4A7C15;  ///< 2^64 / golden ratio: neighbouring pointers land far apart
constexpr int HASH_BITS = 64;

}  // namespace

int Object_Frames::Count(const Quorel_2D_Frame* wanted) const {
    int count = frame == wanted ? 1 : 0;
    for (int i = 0; i < more_nb; ++i) {
        count += more[i] == wanted ? 1 : 0;
    }
    return count;
}

bool Frame_Index::Make(int room) {
    const auto most = static_cast<std::size_t>(std::max(room, 1));
    const std::size_t slot_nb = std::bit_ceil(2 * most);
    entries.reset(static_cast<Entry*>(std::malloc(most * sizeof(Entry))));
    slots.reset(static_cast<int*>(std::malloc(slot_nb * sizeof(int))));
    if (entries == nullptr || slots == nullptr) {
        return false;
    }
    std::fill_n(slots.get(), slot_nb, NONE);
    slot_bits = std::countr_zero(slot_nb);
    return true;
}

std::size_t Frame_Index::Slot(const Quorel_2D_Frame* frame) const {
    const auto mask = (std::size_t{1} << slot_bits) - 1;
    const auto key = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(frame));
    auto slot = static_cast<std::size_t>(key * SPREAD >> (HASH_BITS - slot_bits));
    while (slots[slot] != NONE && entries[Place(slots[slot])].row.frame != frame) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

void Frame_Index::Add(const Row& row) {
    if (row.frame == nullptr) {
        return;
    }
    const int added = entry_nb++;
    entries[Place(added)] = {row, NONE, added};
    int& first = slots[Slot(row.frame)];
    if (first == NONE) {
        first = added;
    } else {
        Entry& head = entries[Place(first)];
        entries[Place(head.last)].next = added;
        head.last = added;
    }
}

bool Frame_Index::Gather(const Object_Frames& object) {
    found.clear();
    try {
        for (int frame = -1; frame < object.more_nb; ++frame) {
            int i = First(frame < 0 ? object.frame : object.more[frame]);
            for (; i != NONE; i = entries[Place(i)].next) {
                found.push_back(i);
            }
        }
    } catch (const std::bad_alloc&) {
        return false;
    }
    std::sort(found.begin(), found.end());
    return true;
}
