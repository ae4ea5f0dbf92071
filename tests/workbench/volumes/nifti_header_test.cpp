#include "workbench/volumes/nifti_header.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/workbench/volumes/nifti_bytes.h"
#include "workbench/volumes/nifti_geometry.h"

using namespace volumes;

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

Nifti_Header_Result Decode(const Nifti_Bytes& bytes) {
    return Nifti_Header_Decode(bytes.Header());
}

// Both versions in both byte orders.
std::vector<Nifti_Bytes> Variants() {
    std::vector<Nifti_Bytes> variants;
    for (const int version : {1, 2}) {
        for (const bool big : {false, true}) {
            Nifti_Bytes bytes;
            bytes.version = version;
            bytes.big = big;
            variants.push_back(bytes);
        }
    }
    return variants;
}

Volume Geometry_Of(const Nifti_Bytes& bytes) {
    const Nifti_Header_Result result = Decode(bytes);
    EXPECT_THAT(result.error, IsEmpty());
    Volume volume;
    Geometry_Apply(result.header.geometry, volume);
    return volume;
}

void Expect_Affine(const Affine& affine, const std::array<double, 12>& expected, double tolerance = 1e-6) {
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_NEAR(affine[i / 4][i % 4], expected[i], tolerance) << "element " << i;
    }
}

TEST(Nifti_Header, reads_every_field_of_both_versions_in_both_byte_orders) {
    for (Nifti_Bytes bytes : Variants()) {
        bytes.dim = {5, 7, 8, 9, 2, 3, 1, 1};
        bytes.datatype = 512;
        bytes.bitpix = 16;
        bytes.vox_offset = 560;
        bytes.slope = 0.5;
        bytes.intercept = -3;
        bytes.pixdim = {-1, 0.5, 0.75, 2, 1.5, 0, 0, 0};
        bytes.units = 10;
        bytes.qform_code = 1;
        bytes.sform_code = 4;
        bytes.quatern = {0.25, 0.5, 0.125};
        bytes.qoffset = {1, 2, 3};
        bytes.srow = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
        const auto [header, error] = Decode(bytes);
        ASSERT_THAT(error, IsEmpty());
        EXPECT_EQ(header.format, bytes.version == 2 ? Nifti_Format::Nifti_2 : Nifti_Format::Nifti_1);
        EXPECT_EQ(header.order, bytes.big ? Byte_Order::Big : Byte_Order::Little);
        EXPECT_TRUE(header.single_file);
        EXPECT_EQ(header.size, (std::array<std::int32_t, 4>{7, 8, 9, 6}));
        EXPECT_EQ(header.voxel_nb, 7U * 8U * 9U * 6U);
        EXPECT_EQ(header.type, Voxel_Type::Uint16);
        EXPECT_EQ(header.voxel_offset, 560U);
        EXPECT_EQ(header.slope, 0.5);
        EXPECT_EQ(header.intercept, -3);
        const Stored_Geometry& geometry = header.geometry;
        EXPECT_TRUE(geometry.present);
        EXPECT_EQ(geometry.pixdim, bytes.pixdim);
        EXPECT_EQ(geometry.units, 10);
        EXPECT_EQ(geometry.qform_code, 1);
        EXPECT_EQ(geometry.sform_code, 4);
        EXPECT_EQ(geometry.quatern, bytes.quatern);
        EXPECT_EQ(geometry.qoffset, bytes.qoffset);
        Expect_Affine(geometry.srow, bytes.srow, 0);
    }
}

TEST(Nifti_Header, recognises_pairs_and_analyze) {
    for (Nifti_Bytes bytes : Variants()) {
        bytes.pair = true;
        const auto [header, error] = Decode(bytes);
        ASSERT_THAT(error, IsEmpty());
        EXPECT_FALSE(header.single_file);
        EXPECT_EQ(header.voxel_offset, 0U);
    }
    Nifti_Bytes bytes;
    bytes.version = 0;
    bytes.vox_offset = 0;
    bytes.slope = 0;
    bytes.pixdim = {0, 2, 3, 4, 0, 0, 0, 0};
    const auto [header, error] = Decode(bytes);
    ASSERT_THAT(error, IsEmpty());
    EXPECT_EQ(header.format, Nifti_Format::Analyze);
    EXPECT_FALSE(header.single_file);
    EXPECT_EQ(header.slope, 1);
    EXPECT_EQ(header.geometry.pixdim[2], 3);
}

TEST(Nifti_Header, refuses_foreign_and_damaged_marks) {
    const Bytes zeros(348);
    EXPECT_THAT(Nifti_Header_Decode(zeros).error, HasSubstr("not a NIfTI file"));
    EXPECT_THAT(Nifti_Header_Decode(Bytes(3)).error, HasSubstr("not a NIfTI file"));
    Nifti_Bytes bytes;
    bytes.version = 2;
    Bytes header = bytes.Header();
    EXPECT_THAT(Nifti_Header_Decode(std::span(header).first(348)).error, HasSubstr("not a NIfTI file"));
    header[9] = '?';
    EXPECT_THAT(Nifti_Header_Decode(header).error, HasSubstr("mark"));
}

TEST(Nifti_Header, refuses_wrong_dimensions) {
    for (const Nifti_Bytes& right : Variants()) {
        const auto error_with = [&](std::size_t i, std::int64_t value) {
            Nifti_Bytes bytes = right;
            bytes.dim[i] = value;
            return Decode(bytes).error;
        };
        EXPECT_THAT(error_with(0, 0), HasSubstr("0 dimensions"));
        EXPECT_THAT(error_with(0, 8), HasSubstr("8 dimensions"));
        EXPECT_THAT(error_with(0, -1), HasSubstr("-1 dimensions"));
        EXPECT_THAT(error_with(0, 7), IsEmpty());
        EXPECT_THAT(error_with(1, 0), HasSubstr("size 0 in dimension 1"));
        EXPECT_THAT(error_with(2, -5), HasSubstr("size -5 in dimension 2"));
        EXPECT_THAT(error_with(3, 0), HasSubstr("size 0 in dimension 3"));
        EXPECT_THAT(error_with(5, -5), IsEmpty()) << "an unused dimension";
    }
}

TEST(Nifti_Header, takes_zero_beyond_the_third_dimension_as_none) {
    Nifti_Bytes bytes;
    bytes.dim = {4, 3, 2, 2, 0, 0, 0, 0};
    const auto [header, error] = Decode(bytes);
    EXPECT_THAT(error, IsEmpty());
    EXPECT_EQ(header.size[3], 1);
    bytes.dim[4] = -1;
    EXPECT_THAT(Decode(bytes).error, HasSubstr("size -1 in dimension 4"));
}

TEST(Nifti_Header, refuses_sizes_whose_product_overflows) {
    Nifti_Bytes bytes;
    bytes.version = 2;
    const std::int64_t half = std::int64_t{1} << 31U;
    bytes.dim = {1, half - 1, 1, 1, 1, 1, 1, 1};
    EXPECT_THAT(Decode(bytes).error, IsEmpty());
    bytes.dim = {1, half, 1, 1, 1, 1, 1, 1};
    EXPECT_THAT(Decode(bytes).error, HasSubstr("too large"));
    bytes.dim = {3, half - 1, half - 1, 4, 1, 1, 1, 1};
    EXPECT_THAT(Decode(bytes).error, HasSubstr("too large"));
    bytes.dim = {7, 1, 1, 1, 65536, 65536, 65536, 65536};
    EXPECT_THAT(Decode(bytes).error, HasSubstr("too large"));
    bytes.dim = {3, std::numeric_limits<std::int64_t>::max(), 2, 2, 1, 1, 1, 1};
    EXPECT_THAT(Decode(bytes).error, HasSubstr("too large"));
    bytes.version = 1;
    bytes.dim = {7, 32767, 32767, 32767, 32767, 32767, 1, 1};
    EXPECT_THAT(Decode(bytes).error, HasSubstr("too large"));
}

TEST(Nifti_Header, refuses_unknown_and_contradictory_voxel_types) {
    Nifti_Bytes bytes;
    const auto error_with = [&](int datatype, int bitpix) {
        bytes.datatype = datatype;
        bytes.bitpix = bitpix;
        return Decode(bytes).error;
    };
    const std::array<std::array<int, 2>, 12> right = {{{2, 8},
                                                       {4, 16},
                                                       {8, 32},
                                                       {16, 32},
                                                       {64, 64},
                                                       {128, 24},
                                                       {256, 8},
                                                       {512, 16},
                                                       {768, 32},
                                                       {1024, 64},
                                                       {1280, 64},
                                                       {2304, 32}}};
    for (const auto& [datatype, bitpix] : right) {
        EXPECT_THAT(error_with(datatype, bitpix), IsEmpty()) << datatype;
        EXPECT_THAT(error_with(datatype, bitpix + 8), HasSubstr("contradicts itself")) << datatype;
    }
    EXPECT_THAT(error_with(32, 64), HasSubstr("complex"));
    EXPECT_THAT(error_with(1, 1), HasSubstr("one bit"));
    EXPECT_THAT(error_with(1536, 128), HasSubstr("128 bits"));
    EXPECT_THAT(error_with(0, 0), HasSubstr("unknown type"));
    EXPECT_THAT(error_with(77, 8), HasSubstr("type 77, which does not exist"));
}

TEST(Nifti_Header, checks_the_position_of_the_voxels) {
    for (Nifti_Bytes bytes : Variants()) {
        const double least = bytes.version == 2 ? 544 : 352;
        bytes.vox_offset = 0;
        EXPECT_EQ(Decode(bytes).header.voxel_offset, static_cast<std::uint64_t>(least));
        bytes.vox_offset = least - 1;
        EXPECT_THAT(Decode(bytes).error, HasSubstr("inside the header"));
        bytes.vox_offset = 1e18;
        EXPECT_THAT(Decode(bytes).error, IsEmpty()) << "the reader compares it with the file";
    }
    Nifti_Bytes bytes;
    for (const double wrong : {352.5, 1e19, 3e38, std::numeric_limits<double>::infinity()}) {
        bytes.vox_offset = wrong;
        EXPECT_THAT(Decode(bytes).error, HasSubstr("impossible position")) << wrong;
    }
    bytes.vox_offset = 352;
    Bytes header = bytes.Header();
    header[111] = 0xFF;  // a negative float
    EXPECT_THAT(Nifti_Header_Decode(header).error, HasSubstr("impossible position"));
    header[110] = 0xFF;  // no number
    EXPECT_THAT(Nifti_Header_Decode(header).error, HasSubstr("impossible position"));
    bytes.version = 2;
    header = bytes.Header();
    header[168 + 7] = 0xFF;
    EXPECT_THAT(Nifti_Header_Decode(header).error, HasSubstr("impossible position"));
}

TEST(Nifti_Header, ignores_a_scale_that_is_none) {
    for (Nifti_Bytes bytes : Variants()) {
        bytes.intercept = 5;
        for (const double none : {0.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
            bytes.slope = none;
            EXPECT_EQ(Decode(bytes).header.slope, 1);
            EXPECT_EQ(Decode(bytes).header.intercept, 0);
        }
        bytes.slope = 2;
        bytes.intercept = std::nan("");
        EXPECT_EQ(Decode(bytes).header.slope, 2);
        EXPECT_EQ(Decode(bytes).header.intercept, 0);
    }
}

TEST(Nifti_Header, refuses_voxel_sizes_that_are_no_numbers) {
    Nifti_Bytes bytes;
    bytes.pixdim[2] = std::nan("");
    EXPECT_THAT(Decode(bytes).error, HasSubstr("voxel size that is no number in dimension 2"));
    bytes.dim[0] = 1;
    EXPECT_THAT(Decode(bytes).error, IsEmpty()) << "an unused dimension";
}

TEST(Nifti_Header, takes_what_leaves_no_doubt) {
    for (Nifti_Bytes bytes : Variants()) {
        bytes.bitpix = 0;
        EXPECT_THAT(Decode(bytes).error, IsEmpty()) << "the type tells the size";
        bytes.pixdim[2] = std::nan("");
        bytes.sform_code = 1;
        bytes.srow = {2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0};
        EXPECT_THAT(Decode(bytes).error, IsEmpty()) << "the sform tells the voxel size";
        EXPECT_EQ(Geometry_Of(bytes).spacing[1], 3);
    }
}

TEST(Nifti_Header, the_scale_that_programs_add_to_analyze_is_read) {
    Nifti_Bytes bytes;
    bytes.version = 0;
    bytes.pair = true;
    bytes.slope = 0.5;
    EXPECT_EQ(Decode(bytes).header.slope, 0.5);
    for (const double none : {0.0, 1e30, 1e-30, std::nan("")}) {
        bytes.slope = none;
        EXPECT_EQ(Decode(bytes).header.slope, 1) << none;
    }
}

TEST(Nifti_Geometry, prefers_the_sform) {
    for (Nifti_Bytes bytes : Variants()) {
        bytes.pixdim = {1, 2, 3, 4, 0, 0, 0, 0};
        bytes.qform_code = 1;
        bytes.sform_code = 2;
        bytes.srow = {0, -3, 0, 10, 2, 0, 0, 20, 0, 0, 4, 30};
        const Volume volume = Geometry_Of(bytes);
        EXPECT_EQ(volume.affine_source, Affine_Source::Sform);
        Expect_Affine(volume.affine, bytes.srow);
        EXPECT_EQ(volume.spacing, (std::array<double, 3>{2, 3, 4}));
    }
}

TEST(Nifti_Geometry, voxel_sizes_that_are_not_the_sforms_are_told_when_no_registration_meant_them) {
    const auto told = [](int code, double scale) {
        Nifti_Bytes bytes;
        bytes.pixdim = {1, 2, 3, 4, 0, 0, 0, 0};
        bytes.sform_code = code;
        bytes.srow = {0, -3 * scale, 0, 10, 2, 0, 0, 20, 0, 0, 4, 30};
        Volume volume = Geometry_Of(bytes);
        volume.nx = volume.ny = volume.nz = 5;  // an axis of one voxel has no steps
        return Geometry_Warnings(Decode(bytes).header.geometry, volume).size();
    };
    EXPECT_EQ(told(1, 1.0), 0U);
    for (const int code : {2, 3, 4}) {
        EXPECT_EQ(told(code, 1.12), 0U) << "the head was scaled to fit, code " << code;
        EXPECT_EQ(told(code, 10.0), 1U) << "centimetres are no registration";
    }
    EXPECT_EQ(told(1, 1.12), 1U) << "the scanner's own space has the scanner's voxels";
}

TEST(Nifti_Geometry, takes_the_qform_when_the_sform_is_absent_or_unusable) {
    Nifti_Bytes bytes;
    bytes.pixdim = {1, 2, 3, 4, 0, 0, 0, 0};
    bytes.qform_code = 1;
    bytes.quatern = {0, 0, std::sqrt(0.5)};  // a quarter turn about z: x becomes y
    bytes.qoffset = {7, 8, 9};
    const std::array<double, 12> quarter_turn = {0, -3, 0, 7, 2, 0, 0, 8, 0, 0, 4, 9};
    Expect_Affine(Geometry_Of(bytes).affine, quarter_turn);
    EXPECT_EQ(Geometry_Of(bytes).affine_source, Affine_Source::Qform);
    bytes.sform_code = 1;  // all zero: no volume at all
    Expect_Affine(Geometry_Of(bytes).affine, quarter_turn);
    bytes.srow = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, std::nan(""), 0};
    Expect_Affine(Geometry_Of(bytes).affine, quarter_turn);
}

TEST(Nifti_Geometry, mirrors_the_third_axis_of_a_left_handed_qform) {
    Nifti_Bytes bytes;
    bytes.pixdim = {-1, 2, 3, 4, 0, 0, 0, 0};
    bytes.qform_code = 1;
    bytes.qoffset = {7, 8, 9};
    Expect_Affine(Geometry_Of(bytes).affine, {2, 0, 0, 7, 0, 3, 0, 8, 0, 0, -4, 9});
}

TEST(Nifti_Geometry, takes_a_half_turn_whose_quaternion_is_slightly_too_long) {
    Nifti_Bytes bytes;
    bytes.qform_code = 1;
    bytes.quatern = {0, 1.0001, 0};  // half a turn about y
    Expect_Affine(Geometry_Of(bytes).affine, {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0});
    const double each = std::sqrt(1.0 / 3.0) * 1.0001;  // half a turn about the diagonal
    bytes.quatern = {each, each, each};
    const double one = -1.0 / 3.0;
    const double two = 2.0 / 3.0;
    Expect_Affine(Geometry_Of(bytes).affine, {one, two, two, 0, two, one, two, 0, two, two, one, 0});
}

TEST(Nifti_Geometry, falls_back_on_the_voxel_sizes) {
    Nifti_Bytes bytes;
    bytes.pixdim = {1, -2, 3, 0, 0, 0, 0, 0};
    const Volume volume = Geometry_Of(bytes);
    EXPECT_EQ(volume.affine_source, Affine_Source::Spacing);
    EXPECT_EQ(volume.spacing, (std::array<double, 3>{2, 3, 1}));
    Expect_Affine(volume.affine, {2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 1, 0});
}

TEST(Nifti_Geometry, takes_missing_voxel_sizes_from_the_sform) {
    Nifti_Bytes bytes;
    bytes.pixdim = {1, 0, 0, 0, 0, 0, 0, 0};
    bytes.sform_code = 1;
    bytes.srow = {3, 0, 0, 0, 4, 2, 0, 0, 0, 0, 6, 0};
    EXPECT_EQ(Geometry_Of(bytes).spacing, (std::array<double, 3>{5, 2, 6}));
}

TEST(Nifti_Geometry, converts_units) {
    Nifti_Bytes bytes;
    bytes.version = 2;
    bytes.pixdim = {1, 2, 3, 4, 500, 0, 0, 0};
    bytes.sform_code = 1;
    bytes.srow = {2, 0, 0, 10, 0, 3, 0, 20, 0, 0, 4, 30};
    bytes.units = 1 + 16;  // metres, milliseconds
    Volume volume = Geometry_Of(bytes);
    EXPECT_EQ(volume.spacing, (std::array<double, 3>{2000, 3000, 4000}));
    Expect_Affine(volume.affine, {2000, 0, 0, 10000, 0, 3000, 0, 20000, 0, 0, 4000, 30000});
    EXPECT_NEAR(volume.time_step, 0.5, 1e-12);
    bytes.units = 3 + 24;  // micrometres, microseconds
    volume = Geometry_Of(bytes);
    EXPECT_NEAR(volume.spacing[1], 0.003, 1e-12);
    EXPECT_NEAR(volume.affine[2][3], 0.03, 1e-12);
    EXPECT_NEAR(volume.time_step, 0.0005, 1e-12);
    bytes.units = 0;
    volume = Geometry_Of(bytes);
    EXPECT_EQ(volume.spacing[0], 2);
    EXPECT_EQ(volume.time_step, 0);
}

}  // namespace
