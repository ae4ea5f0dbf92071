#include <cmath>
#include <cstring>
#include <new>
#include <utility>

#include "kits/common/matrix_data.h"
#include "kits/common/matrix_numeric.h"

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
        std::memcpy(data->values.get(), other.data->values.get(), data->Count() * sizeof(double));
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
               ? data->values.get() + std::size_t{data->columns} * static_cast<std::size_t>(row)
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
        Transpose(data->values.get(), data->rows, data->columns, result.data->values.get());
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
    if (result.data->values != nullptr && !Invert(data->values.get(), data->rows, result.data->values.get())) {
        result.data->invalid = true;
    }
    return result;
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
        !Multiply({data->values.get(), data->rows, data->columns},
                  {right.data->values.get(), right.data->rows, right.data->columns}, result.data->values.get())) {
        result.data->invalid = true;
    }
    return result;
}

Vector_N Matrix_NxM::operator*(const Vector_N& right) const {
    if (Columns() != right.Size()) {
        return Vector_N(0, sizeof(double));
    }
    Vector_N result(Rows(), sizeof(double));
    if (result.Size() > 0 && data->values != nullptr) {
        Multiply_Vector({data->values.get(), data->rows, data->columns}, right.data->values.get(),
                        result.data->values.get());
    }
    return result;
}
