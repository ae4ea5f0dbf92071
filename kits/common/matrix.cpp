#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <thread>
#include <utility>

#include "kits/common/matrix_data.h"
#include "kits/common/matrix_numeric.h"

void Matrix_NxM::Data::Finish() {
    // Several threads may read one matrix: one makes the values, the others wait.
    Elements expected = Elements::Pending;
    if (!elements.compare_exchange_strong(expected, Elements::In_Work, std::memory_order_acquire)) {
        while (elements.load(std::memory_order_acquire) != Elements::Made) {
            std::this_thread::yield();
        }
        return;
    }
    std::fill_n(values.get(), Count(), 0.0);
    for (std::size_t i = 0; i < rows; ++i) {
        values[i * columns + i] = 1.0;
    }
    factors.Solve(values.get(), columns);
    elements.store(Elements::Made, std::memory_order_release);
}

Matrix_NxM::Matrix_NxM(unsigned int columns, unsigned int rows, unsigned char /*flag*/)
    : data(new (std::nothrow) Data) {
    if (data == nullptr) {
        return;
    }
    data->columns = columns;
    data->rows = rows;
    data->values = Doubles_Zeroed(data->Count());
    if (data->values == nullptr && data->Count() != 0) {
        data->columns = data->rows = 0;
        data->invalid = data->unmade = true;
    }
}

Matrix_NxM::Matrix_NxM(const Matrix_NxM& other) : Matrix_NxM(other.Columns(), other.Rows(), sizeof(double)) {
    if (data == nullptr) {
        return;
    }
    if (data->values != nullptr) {
        std::memcpy(data->values.get(), other.data->Finished(), data->Count() * sizeof(double));
    }
    data->invalid = data->invalid || other.data == nullptr || other.data->invalid;
    data->unmade = data->unmade || other.data == nullptr || other.data->unmade;
}

Matrix_NxM::Matrix_NxM(Matrix_NxM&& other) noexcept = default;

Matrix_NxM& Matrix_NxM::operator=(const Matrix_NxM& other) {
    if (this != &other) {
        *this = Matrix_NxM(other);
    }
    return *this;
}

Matrix_NxM& Matrix_NxM::operator=(Matrix_NxM&& other) noexcept = default;

Matrix_NxM::~Matrix_NxM() = default;

double* Matrix_NxM::operator[](int row) {
    return data != nullptr && data->values != nullptr
               ? data->Finished() + std::size_t{data->columns} * static_cast<std::size_t>(row)
               : nullptr;
}

const double* Matrix_NxM::operator[](int row) const {
    return const_cast<Matrix_NxM&>(*this)[row];
}

int Matrix_NxM::Invalid(int clear) {
    if (data == nullptr) {
        return 1;
    }
    const int invalid = data->invalid ? 1 : 0;
    if (clear != 0) {
        data->invalid = data->unmade;
    }
    return invalid;
}

unsigned int Matrix_NxM::Columns() const {
    return data != nullptr ? data->columns : 0;
}

unsigned int Matrix_NxM::Rows() const {
    return data != nullptr ? data->rows : 0;
}

Matrix_NxM Matrix_NxM::operator~() const {
    Matrix_NxM result(Rows(), Columns(), sizeof(double));
    if (result.data == nullptr || data == nullptr) {
        return result;
    }
    if (result.data->values != nullptr) {
        Transpose(data->Finished(), data->rows, data->columns, result.data->values.get());
    }
    result.data->invalid = result.data->invalid || data->invalid;
    return result;
}

Matrix_NxM Matrix_NxM::operator!() const {
    Matrix_NxM result(Columns(), Rows(), sizeof(double));
    if (result.data == nullptr || result.data->invalid || data == nullptr || data->invalid ||
        data->columns != data->rows) {
        if (result.data != nullptr) {
            result.data->invalid = true;
        }
        return result;
    }
    if (result.data->values != nullptr) {
        result.data->Invert_From(data->Finished());
    }
    return result;
}

void Matrix_NxM::Data::Invert_From(const double* source) {
    if (const Band band = Band_Of(source, rows); Band_Is_Narrow(band, rows)) {
        if (factors.Make(source, rows, band) && factors.Is_Inverse_Bounded(values.get())) {
            elements.store(Elements::Pending, std::memory_order_release);
            return;
        }
    }
    // Whatever is doubtful about the factors of the band, those of the whole matrix decide.
    invalid = !Invert(source, rows, values.get());
}

Matrix_NxM Matrix_NxM::operator*(const Matrix_NxM& right) const {
    Matrix_NxM result(right.Columns(), Rows(), sizeof(double));
    if (result.data == nullptr) {
        return result;
    }
    const bool usable = data != nullptr && right.data != nullptr && !data->invalid && !right.data->invalid &&
                        data->columns == right.data->rows;
    if (!usable) {
        result.data->invalid = true;
        return result;
    }
    if (result.data->values != nullptr && data->values != nullptr && right.data->values != nullptr &&
        !Multiply({data->Finished(), data->rows, data->columns},
                  {right.data->Finished(), right.data->rows, right.data->columns}, result.data->values.get())) {
        result.data->invalid = true;
    }
    return result;
}

Vector_N Matrix_NxM::operator*(const Vector_N& right) const {
    if (Columns() != right.Size()) {
        return Vector_N(0, sizeof(double));
    }
    Vector_N result(Rows(), sizeof(double));
    if (result.Size() == 0 || data->values == nullptr) {
        return result;
    }
    if (!data->Is_Made()) {
        std::copy_n(right.data->values.get(), right.Size(), result.data->values.get());
        data->factors.Solve(result.data->values.get(), 1);
    } else {
        Multiply_Vector({data->values.get(), data->rows, data->columns}, right.data->values.get(),
                        result.data->values.get());
    }
    return result;
}
