#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "kits/common/matrix_data.h"

namespace {

/** Where elements outside a vector are read and written. */
thread_local double spare_element;

enum class Fill { Zeros, Anything };

Double_Array Doubles_Make(std::size_t count, Fill fill) {
    if (count == 0 || count > std::numeric_limits<std::ptrdiff_t>::max() / sizeof(double)) {
        return nullptr;
    }
    const std::size_t wanted = count * sizeof(double);
    std::size_t size = wanted;
    void* memory = Block_Cache_Take(size);
    if (memory == nullptr) {
        memory = fill == Fill::Zeros ? std::calloc(count, sizeof(double)) : std::malloc(wanted);
    } else if (fill == Fill::Zeros) {
        std::memset(memory, 0, wanted);
    }
    return Double_Array(static_cast<double*>(memory), Free_Memory{size});
}

}  // namespace

Double_Array Doubles_Zeroed(std::size_t count) {
    return Doubles_Make(count, Fill::Zeros);
}

Double_Array Doubles_Raw(std::size_t count) {
    return Doubles_Make(count, Fill::Anything);
}

Vector_N::Vector_N(unsigned int count, unsigned char /*flag*/) : data(new (std::nothrow) Data) {
    if (data == nullptr) {
        return;
    }
    data->values = Doubles_Zeroed(count);
    data->count = data->values != nullptr ? count : 0;
}

Vector_N::Vector_N(const Vector_N& other) : Vector_N(other.Size(), sizeof(double)) {
    if (Size() > 0) {
        std::memcpy(data->values.get(), other.data->values.get(), Size() * sizeof(double));
    }
}

Vector_N::Vector_N(Vector_N&& other) noexcept = default;

Vector_N& Vector_N::operator=(const Vector_N& other) {
    if (this != &other) {
        *this = Vector_N(other);
    }
    return *this;
}

Vector_N& Vector_N::operator=(Vector_N&& other) noexcept = default;

Vector_N::~Vector_N() = default;

double& Vector_N::operator[](int index) {
    if (static_cast<unsigned int>(index) < Size()) {
        return data->values[static_cast<std::size_t>(index)];
    }
    spare_element = 0.0;
    return spare_element;
}

const double& Vector_N::operator[](int index) const {
    return const_cast<Vector_N&>(*this)[index];
}

Vector_N& Vector_N::operator+=(const Vector_N& other) {
    const unsigned int count = std::min(Size(), other.Size());
    for (unsigned int i = 0; i < count; ++i) {
        data->values[i] += other.data->values[i];
    }
    return *this;
}

unsigned int Vector_N::Size() const {
    return data != nullptr ? data->count : 0;
}
