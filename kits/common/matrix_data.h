/** What a matrix and a vector hold. For the kit's own use. */
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

#include "host/kit_common.h"

struct Free_Memory {
    void operator()(double* values) const { std::free(values); }
};
/** Doubles of the C heap: zeroed memory costs nothing until it is used. */
using Double_Array = std::unique_ptr<double[], Free_Memory>;

/** `count` zeroed doubles; null without memory and for none. */
Double_Array Doubles_Zeroed(std::size_t count);

struct Vector_N::Data {
    Double_Array values;
    unsigned int count = 0;
};

struct Matrix_NxM::Data {
    Double_Array values;
    unsigned int columns = 0;
    unsigned int rows = 0;
    bool invalid = false;

    std::size_t Count() const { return std::size_t{columns} * rows; }
};
