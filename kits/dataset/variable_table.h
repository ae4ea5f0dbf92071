/** Names to variables: a hash table that never gives a record back. For the kit's own use. */
#pragma once

#include "kits/dataset/variables.h"

class Variable_Table {
  public:
    /** The record of a name, null when there is none. */
    Variable* Find(const char* name) const;
    /** The record of a name, made when needed; null without memory or without a name. */
    Variable* Find_Or_Make(const char* name);
    /** Number of records. */
    std::size_t Size() const { return count; }
    /** Calls `visit` with every record. */
    template <typename Visit>
    void For_Each(Visit visit) const {
        for (std::size_t i = 0; i < room; ++i) {
            if (slots[i] != nullptr) {
                visit(*slots[i]);
            }
        }
    }

  private:
    /** A name with what is needed to compare it. */
    struct Key {
        const char* name;
        std::size_t size;
        std::uint64_t hash;
    };
    static Key Key_Of(const char* name);
    /** The name's record, or the empty place where it belongs. There is always an empty place when room > 0. */
    Variable** Slot(const Key& key) const;
    bool Grow();

    Variable** slots = nullptr;
    std::size_t room = 0;  // a power of two, or 0
    std::size_t count = 0;
};
