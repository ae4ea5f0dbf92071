#include "workbench/volumes/dicom_real_levels.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "workbench/volumes/byte_order.h"
#include "workbench/volumes/dicom_fields.h"

namespace volumes {

namespace {

constexpr std::int32_t WIDE_BITS = 64;

bool Is_Scale(std::pair<double, double> scale) {
    return std::isfinite(scale.first) && scale.first != 0.0 && std::isfinite(scale.second);
}

/** A number of either width to its last bit: the toolkit's decimal text has not all digits of it. */
std::optional<double> Real_Field(DcmItem& data_set, const DcmTagKey& tag) {
    Float64 wide = 0.0;
    if (data_set.findAndGetFloat64(tag, wide).good()) {
        return std::isfinite(wide) ? std::optional(wide) : std::nullopt;
    }
    Float32 narrow = 0.0F;
    if (data_set.findAndGetFloat32(tag, narrow).good()) {
        return std::isfinite(narrow) ? std::optional<double>(narrow) : std::nullopt;
    }
    return Field_Number(data_set, tag);
}

}  // namespace

Real_Levels::Real_Levels(DcmItem& data_set, std::int32_t pixel_bits) : bits(pixel_bits) {
    const bool is_wide = bits == WIDE_BITS;
    const auto value = Real_Field(data_set, is_wide ? DCM_DoubleFloatPixelPaddingValue : DCM_FloatPixelPaddingValue);
    if (value) {
        const auto limit =
            Real_Field(data_set, is_wide ? DCM_DoubleFloatPixelPaddingRangeLimit : DCM_FloatPixelPaddingRangeLimit);
        padding = std::minmax({*value, limit.value_or(*value)});
    }
}

void Real_Levels::Scale_Add(double slope, double intercept) {
    scales.emplace_back(slope, intercept);
    is_one_scale = is_one_scale && scales.back() == scales.front() && Is_Scale(scales.back());
}

void Real_Levels::Begin(std::uint64_t value_nb) {
    const bool is_kept = is_one_scale && !padding && bits != WIDE_BITS;
    builder.emplace(is_kept ? Voxel_Type::Float32 : Voxel_Type::Float64, Byte_Order::Little, value_nb);
}

double Real_Levels::Value(std::span<const std::uint8_t> bytes, std::size_t number) const {
    return bits == WIDE_BITS ? Value_Read<double>(bytes.data() + number * sizeof(double), Byte_Order::Little)
                             : Value_Read<float>(bytes.data() + number * sizeof(float), Byte_Order::Little);
}

void Real_Levels::Frame_Add(std::span<const std::uint8_t> bytes) {
    const auto [slope, intercept] = scales[frame_nb++];
    if (is_one_scale && !padding) {
        return builder->Append(bytes);
    }
    const std::size_t count = bytes.size() * BYTE_BITS / static_cast<std::size_t>(bits);
    made.resize(count * sizeof(double));
    for (std::size_t at = 0; at < count; ++at) {
        double value = Value(bytes, at);
        const bool is_padding = padding && value >= padding->first && value <= padding->second;
        padding_nb += is_padding ? 1U : 0U;
        if (is_padding || !Is_Scale({slope, intercept})) {
            value = std::numeric_limits<double>::quiet_NaN();
        } else if (!is_one_scale) {
            value = value * slope + intercept;
        }
        std::memcpy(made.data() + at * sizeof(double), &value, sizeof value);
    }
    builder->Append(made);
}

std::vector<std::string> Real_Levels::Finish(Volume& volume) {
    builder->Finish(is_one_scale ? scales.front().first : 1.0, is_one_scale ? scales.front().second : 0.0, volume);
    volume.scalar_type = Voxel_Type_Name(bits == WIDE_BITS ? Voxel_Type::Float64 : Voxel_Type::Float32);
    const std::uint64_t nonfinite_nb = volume.nonfinite_nb;
    volume.nonfinite_nb -= std::min(padding_nb, nonfinite_nb);  // what the file itself leaves out is not told
    std::vector<std::string> texts = Values_Outside_Texts(volume);
    volume.nonfinite_nb = nonfinite_nb;
    return texts;
}

}  // namespace volumes
