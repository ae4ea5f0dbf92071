/** Arrays of doubles that matrices and vectors live in. For the kit's own use. */
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

#include "kits/common/block_cache.h"

struct Free_Memory {
    std::size_t size = 0;  ///< bytes

    void operator()(double* values) const {
        if (!Block_Cache_Keep(values, size)) {
            std::free(values);
        }
    }
};
/** Doubles of the C heap, or of the blocks kept from it. */
using Double_Array = std::unique_ptr<double[], Free_Memory>;

/** `count` zeroed doubles; null without memory and for none. */
Double_Array Doubles_Zeroed(std::size_t count);
/** `count` doubles of any value, to be overwritten; null without memory and for none. */
Double_Array Doubles_Raw(std::size_t count);
