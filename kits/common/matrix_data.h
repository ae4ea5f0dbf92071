/** What a matrix and a vector hold. For the kit's own use. */
#pragma once

#include <atomic>
#include <cstddef>

#include "host/kit_common.h"
#include "kits/common/double_array.h"
#include "kits/common/matrix_band.h"

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
    /** Pending: the matrix is the inverse of what the factors are of, and its elements are made when they are read. */
    enum class Elements : unsigned char { Made, Pending, In_Work };
    std::atomic<Elements> elements = Elements::Made;
    Band_Factors factors;

    std::size_t Count() const { return std::size_t{columns} * rows; }
    bool Is_Made() const { return elements.load(std::memory_order_acquire) == Elements::Made; }
    /** The elements; null without memory. Takes none. */
    double* Finished() {
        if (!Is_Made()) {
            Finish();
        }
        return values.get();
    }
    /** Makes the inverse of the `rows` x `rows` matrix, or of its factors all that is needed to make it. */
    void Invert_From(const double* source);

  private:
    void Finish();
};
