/** What a matrix and a vector hold. For the kit's own use. */
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

#include "host/kit_common.h"
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

struct Vector_N::Data {
    Double_Array values;
    unsigned int count = 0;
};

struct Matrix_NxM::Data {
    Double_Array values;
    unsigned int columns = 0;
    unsigned int rows = 0;
    bool invalid = false;
    bool unmade = false;  ///< there was no memory for its elements, or for those of the matrix it was copied from

    std::size_t Count() const { return std::size_t{columns} * rows; }
};
