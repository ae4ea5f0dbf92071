/** How panels read the host's variables. */
#pragma once

#include "host/kit_dataset.h"

/** A host variable whose storage address is kept once it was found. A missing variable is asked for again next time.
 *  @tparam Type what the storage holds: the number of a scalar, the pointer of an array, text or object */
template <class Type>
class Cached_Variable {
  public:
    /** @param variable_name a literal; not copied */
    constexpr explicit Cached_Variable(const char* variable_name) : name(variable_name) {}
    /** The storage, null while the variable does not exist. */
    Type* Address() {
        if (address == nullptr) {
            address = static_cast<Type*>(Fct_Variable_Get(name, nullptr, nullptr, nullptr, 0));
        }
        return address;
    }
    /** The value now, or `missing`. */
    Type Value_Or(Type missing) {
        const Type* storage = Address();
        return storage != nullptr ? *storage : missing;
    }

  private:
    const char* name;
    Type* address = nullptr;
};

/** The low 16 bits of a scalar as a signed number (pixels); a missing one is 0. */
inline std::int16_t Host_Dimension(const char* name) {
    return static_cast<std::int16_t>(
        reinterpret_cast<std::uintptr_t>(Fct_Variable_Value(name, nullptr, nullptr, nullptr)));
}

/** The low 16 bits of a scalar as a count or index; a missing one is 0. */
inline std::uint16_t Host_Count(const char* name) {
    return static_cast<std::uint16_t>(
        reinterpret_cast<std::uintptr_t>(Fct_Variable_Value(name, nullptr, nullptr, nullptr)));
}

/** First element of an array, a text, or an object pointer; null when missing. */
template <class Type>
Type* Host_Pointer(const char* name) {
    return static_cast<Type*>(Fct_Variable_Value(name, nullptr, nullptr, nullptr));
}
