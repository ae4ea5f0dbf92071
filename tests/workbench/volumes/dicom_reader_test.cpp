#include "workbench/volumes/dicom_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>

#include "tests/workbench/volumes/dicom_bytes.h"
#include "tests/workbench/volumes/loading.h"

using namespace volumes;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

Dicom_Image Opened(const Bytes& file) {
    Dicom_Result result = Dicom_Read(file);
    EXPECT_EQ(result.error, "");
    if (!result.image) {
        return {};
    }
    Expect_Sound(result.image->volume);
    return std::move(*result.image);
}

std::string Error_Of(const Bytes& file, const Load_Limits& limits = {}) {
    const Dicom_Result result = Dicom_Read(file, limits);
    EXPECT_FALSE(result.image.has_value());
    return result.error;
}

std::int32_t Packed(int red, int green, int blue) {
    return red | green << 8 | blue << 16;
}

TEST(Dicom_Reader, gives_stored_values_size_and_names) {
    Dicom_Bytes bytes;
    bytes.Text(TAG_SERIES_TEXT, "LO", "t1 sagittal").Text(TAG_INSTANCE_NUMBER, "IS", "12");
    const Dicom_Image image = Opened(bytes.File());
    EXPECT_EQ(image.volume.nx, 3);
    EXPECT_EQ(image.volume.ny, 2);
    EXPECT_EQ(image.volume.nz, 1);
    EXPECT_EQ(image.volume.nt, 1);
    EXPECT_THAT(image.volume.levels, ElementsAre(10, 20, 30, 40, 50, 60));
    EXPECT_EQ(image.volume.level_min, 10);
    EXPECT_EQ(image.volume.level_max, 60);
    EXPECT_EQ(image.volume.scalar_type, "uint8");
    EXPECT_EQ(image.volume.encoding, "Little Endian Explicit");
    EXPECT_EQ(image.volume.place_source, "no position; no pixel size, taken as 1 mm");
    EXPECT_FALSE(image.volume.is_size_known);
    EXPECT_EQ(image.origin.modality, 'M' << 8 | 'R');
    EXPECT_EQ(image.origin.study, "1.2.3");
    EXPECT_EQ(image.origin.series, "1.2.3.4");
    EXPECT_EQ(image.origin.series_number, 7);
    EXPECT_EQ(image.origin.instance_number, 12);
    EXPECT_EQ(image.origin.series_text, "t1 sagittal");
    EXPECT_FALSE(image.is_scout);
    EXPECT_FALSE(image.place.is_known);
}

TEST(Dicom_Reader, tells_whose_image_it_is) {
    Dicom_Bytes bytes;
    bytes.Text(0x00100010, "PN", "Doe^Jane^^Dr=ideographic")
        .Text(0x00100020, "LO", "17")
        .Text(0x00080020, "DA", "20040119")
        .Text(0x00081030, "LO", "Head");
    const File_Origin origin = Opened(bytes.File()).origin;
    EXPECT_EQ(origin.patient_name, "Doe Jane Dr");
    EXPECT_EQ(origin.patient_id, "17");
    EXPECT_EQ(origin.study_date, "2004-01-19");
    EXPECT_EQ(origin.study_text, "Head");
}

TEST(Dicom_Reader, old_dates_and_what_is_no_date) {
    Dicom_Bytes old;
    old.Text(0x00080020, "DA", "1993.08.22");
    EXPECT_EQ(Opened(old.File()).origin.study_date, "1993-08-22");
    Dicom_Bytes wrong;
    wrong.Text(0x00080020, "DA", "someday").Text(0x00100010, "PN", "^^=^^=");
    EXPECT_EQ(Opened(wrong.File()).origin.study_date, "someday");
    EXPECT_EQ(Opened(wrong.File()).origin.patient_name, "");
}

TEST(Dicom_Reader, tells_scouts_by_their_image_type) {
    Dicom_Bytes bytes;
    bytes.Text(TAG_IMAGE_TYPE, "CS", "ORIGINAL\\PRIMARY\\LOCALIZER");
    EXPECT_TRUE(Opened(bytes.File()).is_scout);
    bytes.Text(TAG_IMAGE_TYPE, "CS", "ORIGINAL\\PRIMARY\\AXIAL");
    EXPECT_FALSE(Opened(bytes.File()).is_scout);
}

TEST(Dicom_Reader, turns_descriptions_into_utf_8) {
    Dicom_Bytes bytes;
    bytes.Text(TAG_SERIES_TEXT, "LO",
               "Sch\xE4"
               "del");
    EXPECT_EQ(Opened(bytes.File()).origin.series_text,
              "Sch\xC3\xA4"
              "del");
    bytes.Text(0x00080005, "CS", "ISO_IR 192")
        .Text(TAG_SERIES_TEXT, "LO",
              "Sch\xC3\xA4"
              "del");
    EXPECT_EQ(Opened(bytes.File()).origin.series_text,
              "Sch\xC3\xA4"
              "del");
    bytes.Text(0x00080005, "CS", "ISO_IR 144").Text(TAG_SERIES_TEXT, "LO", "a\xE4");
    EXPECT_EQ(Opened(bytes.File()).origin.series_text, "a\u0444");
}

TEST(Dicom_Reader, masks_bits_outside_the_stored_ones_and_extends_the_sign) {
    Dicom_Bytes bytes;
    bytes.Pixels_16({0xF123, 0x0FFF, 0x0800, 0x07FF}, 2, 2).Short(TAG_BITS_STORED, 12).Short(TAG_HIGH_BIT, 11);
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(0x123, 0xFFF, 0x800, 0x7FF));
    bytes.Short(TAG_SIGNED, 1);
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(0x123, -1, -2048, 2047));
    bytes.Short(TAG_HIGH_BIT, 15);
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(-238, 0xFF, 0x80, 0x7F));
}

TEST(Dicom_Reader, brings_thirty_two_bits_into_the_range_of_levels) {
    Dicom_Bytes bytes;
    bytes.Pixels_16({0xFFFF, 0xFFFF, 0x0400, 0, 0, 0, 0, 0x8000}, 2, 2);
    bytes.Short(TAG_BITS_ALLOCATED, 32).Short(TAG_BITS_STORED, 32).Short(TAG_HIGH_BIT, 31);
    const Volume volume = Opened(bytes.File()).volume;
    const std::vector<double> stored = {0xFFFFFFFF, 0x400, 0, 0x80000000};
    for (std::size_t at = 0; at < stored.size(); ++at) {
        EXPECT_NEAR(volume.levels[at] * volume.slope + volume.intercept, stored[at], 2.01);
    }
    EXPECT_LE(volume.max_error, 2.01);
}

TEST(Dicom_Reader, applies_slope_and_intercept) {
    Dicom_Bytes bytes;
    bytes.Text(TAG_SLOPE, "DS", "2.5").Text(TAG_INTERCEPT, "DS", "-1024");
    const Volume volume = Opened(bytes.File()).volume;
    EXPECT_EQ(volume.slope, 2.5);
    EXPECT_EQ(volume.intercept, -1024);
    EXPECT_EQ(volume.grey(volume.levels[0]), -999.0F);
    bytes.Text(TAG_SLOPE, "DS", "0");
    EXPECT_EQ(Opened(bytes.File()).volume.slope, 1) << "a slope of 0 is a mistake";
}

TEST(Dicom_Reader, pixels_that_only_fill_the_picture_up_have_no_grey) {
    Dicom_Bytes bytes;
    bytes.Shorts(TAG_PADDING, "US", {20}).Text(TAG_INTERCEPT, "DS", "-5");
    Volume volume = Opened(bytes.File()).volume;
    EXPECT_THAT(volume.levels, ElementsAre(10, LEVEL_OUTSIDE, 30, 40, 50, 60));
    EXPECT_TRUE(std::isnan(volume.grey(volume.levels[1])));
    EXPECT_EQ(volume.nonfinite_nb, 1U);
    bytes.Shorts(TAG_PADDING, "US", {60}).Shorts(TAG_PADDING_LIMIT, "US", {45});
    volume = Opened(bytes.File()).volume;
    EXPECT_THAT(volume.levels, ElementsAre(10, 20, 30, 40, LEVEL_OUTSIDE, LEVEL_OUTSIDE))
        << "a range, either end first";
    EXPECT_EQ(volume.level_max, 40);
    bytes.Shorts(TAG_PADDING, "US", {0}).Shorts(TAG_PADDING_LIMIT, "US", {255});
    volume = Opened(bytes.File()).volume;
    EXPECT_EQ(volume.nonfinite_nb, 6U) << "nothing is left";
    EXPECT_EQ(volume.level_max, 0);
}

TEST(Dicom_Reader, takes_padding_as_it_is_stored_whatever_sign_it_is_written_with) {
    Dicom_Bytes bytes;
    bytes.Pixels_16({0xF830, 5, 6, 0x07D0}, 2, 2).Short(TAG_SIGNED, 1).Shorts(TAG_PADDING, "US", {0xF830});
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(LEVEL_OUTSIDE, 5, 6, 2000));
    bytes.Shorts(TAG_PADDING, "SS", {0xF830});
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(LEVEL_OUTSIDE, 5, 6, 2000));
    bytes.Short(TAG_SIGNED, 0);
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(LEVEL_OUTSIDE, 5, 6, 2000));
}

TEST(Dicom_Reader, a_padding_range_of_two_kinds_of_numbers_is_its_value_alone) {
    Dicom_Bytes bytes;
    bytes.Pixels_16({0xF830, 5, 6, 0x07D0}, 2, 2).Short(TAG_SIGNED, 0);
    bytes.Shorts(TAG_PADDING, "SS", {0xF830}).Shorts(TAG_PADDING_LIMIT, "SS", {0});
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(LEVEL_OUTSIDE, 5, 6, 2000));
}

TEST(Dicom_Reader, colours_have_no_padding) {
    Dicom_Bytes bytes;
    bytes.Pixels_8({1, 2, 3, 4, 5, 6}, 2, 1).Short(TAG_SAMPLES, 3).Text(TAG_PHOTOMETRIC, "CS", "RGB");
    bytes.Shorts(TAG_PADDING, "US", {0}).Shorts(TAG_PADDING_LIMIT, "US", {0xFFFF});
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(Packed(1, 2, 3), Packed(4, 5, 6)));
}

TEST(Dicom_Reader, leaves_inverted_grey_to_the_display) {
    Dicom_Bytes bytes;
    bytes.Text(TAG_PHOTOMETRIC, "CS", "MONOCHROME1");
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(10, 20, 30, 40, 50, 60));
    EXPECT_TRUE(Opened(bytes.File()).volume.is_inverted);
    EXPECT_FALSE(Opened(Dicom_Bytes().File()).volume.is_inverted);
}

TEST(Dicom_Reader, packs_colours_of_either_arrangement) {
    Dicom_Bytes bytes;
    bytes.Pixels_8({1, 2, 3, 4, 5, 6}, 2, 1).Short(TAG_SAMPLES, 3).Text(TAG_PHOTOMETRIC, "CS", "RGB");
    const Volume volume = Opened(bytes.File()).volume;
    EXPECT_TRUE(volume.color);
    EXPECT_THAT(volume.levels, ElementsAre(Packed(1, 2, 3), Packed(4, 5, 6)));
    EXPECT_EQ(volume.level_min, 1);
    EXPECT_EQ(volume.level_max, 6);
    bytes.Short(TAG_PLANAR, 1);
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(Packed(1, 3, 5), Packed(2, 4, 6)));
}

TEST(Dicom_Reader, converts_luminance_colours) {
    Dicom_Bytes bytes;
    bytes.Pixels_8({76, 85, 255, 200, 128, 128}, 2, 1).Short(TAG_SAMPLES, 3).Text(TAG_PHOTOMETRIC, "CS", "YBR_FULL");
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(Packed(254, 0, 0), Packed(200, 200, 200)));
    bytes.Pixels_8({76, 200, 128, 128}, 2, 1).Text(TAG_PHOTOMETRIC, "CS", "YBR_FULL_422");
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(Packed(76, 76, 76), Packed(200, 200, 200)));
}

Dicom_Bytes Palette_File() {
    Dicom_Bytes bytes;
    bytes.Pixels_8({4, 5, 6, 9}, 2, 2).Text(TAG_PHOTOMETRIC, "CS", "PALETTE COLOR");
    for (const std::uint32_t tag : {0x00281101U, 0x00281102U, 0x00281103U}) {
        bytes.Shorts(tag, "US", {3, 5, 16});
    }
    bytes.Shorts(0x00281201, "OW", {0x0100, 0x0200, 0x03FF});
    bytes.Shorts(0x00281202, "OW", {0x1100, 0x1200, 0x1300});
    return bytes.Shorts(0x00281203, "OW", {0x2100, 0x2200, 0x2300});
}

TEST(Dicom_Reader, looks_colours_up_in_the_palette) {
    EXPECT_THAT(Opened(Palette_File().File()).volume.levels, ElementsAre(Packed(1, 0x11, 0x21), Packed(1, 0x11, 0x21),
                                                                         Packed(2, 0x12, 0x22), Packed(3, 0x13, 0x23)));
}

TEST(Dicom_Reader, refuses_a_missing_or_short_palette) {
    EXPECT_THAT(Error_Of(Palette_File().Remove(0x00281202).File()), HasSubstr("no usable colour palette"));
    EXPECT_THAT(Error_Of(Palette_File().Remove(0x00281103).File()), HasSubstr("no usable colour palette"));
    EXPECT_THAT(Error_Of(Palette_File().Shorts(0x00281201, "OW", {1}).File()), HasSubstr("shorter than it says"));
}

TEST(Dicom_Reader, decodes_run_lengths) {
    Dicom_Bytes bytes;
    bytes.Syntax(Dicom_Bytes::RUN_LENGTH).Fragments({Run_Length_Of({{10, 20, 30, 40, 50, 60}})});
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(10, 20, 30, 40, 50, 60));
    bytes.Pixels_16({}, 2, 1).Text(TAG_FRAMES, "IS", "2");
    bytes.Fragments({Run_Length_Of({{1, 2}, {3, 4}}), Run_Length_Of({{5, 6}, {7, 8}})});
    EXPECT_THAT(Opened(bytes.File()).volume.levels, ElementsAre(0x103, 0x204, 0x507, 0x608));
}

TEST(Dicom_Reader, refuses_run_lengths_that_are_damaged_or_missing) {
    Dicom_Bytes bytes;
    bytes.Syntax(Dicom_Bytes::RUN_LENGTH).Fragments({Run_Length_Of({{10, 20}})});
    EXPECT_THAT(Error_Of(bytes.File()), HasSubstr("cannot be decoded (frame 1"));
    bytes.Fragments({});
    EXPECT_THAT(Error_Of(bytes.File()), HasSubstr("fewer compressed frames"));
    bytes.Pixels_8({}, 60000, 60).Fragments({Run_Length_Of({{10, 20}})});
    EXPECT_THAT(Error_Of(bytes.File()), HasSubstr("too short for its frames"));
}

Bytes Deflated(const Dicom_Bytes& source) {
    Dicom_Bytes empty = source;
    Bytes file = empty.Syntax(Dicom_Bytes::DEFLATED).Clear().File();
    Bytes elements = source.Elements();
    Bytes packed(elements.size() + 100);
    z_stream stream = {};
    EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY), Z_OK);
    stream.next_in = elements.data();
    stream.avail_in = static_cast<uInt>(elements.size());
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(packed.size() - stream.avail_out);
    deflateEnd(&stream);
    file.insert(file.end(), packed.begin(), packed.end());
    return file;
}

TEST(Dicom_Reader, inflates_deflated_data_sets) {
    const Bytes file = Deflated(Dicom_Bytes());
    EXPECT_THAT(Opened(file).volume.levels, ElementsAre(10, 20, 30, 40, 50, 60));
    EXPECT_THAT(Error_Of(Bytes(file.begin(), file.end() - 9)), HasSubstr("cut short inside its deflated data"));
    Bytes damaged = file;
    std::fill(damaged.end() - 60, damaged.end(), std::uint8_t{0xFF});
    EXPECT_THAT(Error_Of(damaged), HasSubstr("deflated data"));
    EXPECT_THAT(Error_Of(file, Load_Limits{1000}), HasSubstr("inflates to more than"));
}

TEST(Dicom_Reader, reads_geometry) {
    Dicom_Bytes bytes;
    bytes.Place(-10, -20, 30).Text(TAG_PIXEL_SPACING, "DS", "2\\0.5").Text(TAG_SLICE_THICKNESS, "DS", "4");
    const Dicom_Image image = Opened(bytes.File());
    ASSERT_TRUE(image.place.is_known);
    EXPECT_THAT(image.volume.spacing, ElementsAre(0.5, 2, 4)) << "rows are stored first";
    EXPECT_EQ(Slice_Depth(image.place), 30);
    // To the right, front and top.
    EXPECT_THAT(image.volume.affine[0], ElementsAre(-0.5, 0, 0, 10));
    EXPECT_THAT(image.volume.affine[1], ElementsAre(0, -2, 0, 20));
    EXPECT_THAT(image.volume.affine[2], ElementsAre(0, 0, 4, 30));
}

TEST(Dicom_Reader, ignores_geometry_that_makes_no_sense) {
    Dicom_Bytes bytes;
    bytes.Place(1, 2, 3).Text(TAG_DIRECTION, "DS", "0\\0\\0\\0\\0\\0").Text(TAG_PIXEL_SPACING, "DS", "-1\\nan");
    const Dicom_Image image = Opened(bytes.File());
    EXPECT_FALSE(image.place.is_known);
    EXPECT_THAT(image.volume.spacing, ElementsAre(1, 1, 1));
    bytes.Text(TAG_DIRECTION, "DS", "1\\0\\0\\1\\0\\0");
    EXPECT_FALSE(Opened(bytes.File()).place.is_known) << "rows along columns";
    bytes.Place(1e300, 0, 0);
    EXPECT_FALSE(Opened(bytes.File()).place.is_known);
}

TEST(Dicom_Reader, takes_frames_with_a_time_as_cine) {
    Dicom_Bytes bytes;
    bytes.Pixels_8({1, 2, 3, 4, 5, 6}, 1, 2).Text(TAG_FRAMES, "IS", "3").Text(TAG_FRAME_TIME, "DS", "40");
    const Volume volume = Opened(bytes.File()).volume;
    EXPECT_EQ(volume.nz, 1);
    EXPECT_EQ(volume.nt, 3);
    EXPECT_DOUBLE_EQ(volume.time_step, 0.04);
    EXPECT_THAT(volume.levels, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(Dicom_Reader, takes_other_frames_as_slices) {
    Dicom_Bytes bytes;
    bytes.Pixels_8({1, 2, 3, 4, 5, 6}, 1, 2).Text(TAG_FRAMES, "IS", "3");
    EXPECT_EQ(Opened(bytes.File()).volume.nz, 3);
    bytes.Text(0x00200105, "IS", "3");  // temporal positions
    EXPECT_EQ(Opened(bytes.File()).volume.nt, 3);
    bytes.Text(0x00200105, "IS", "2");
    EXPECT_EQ(Opened(bytes.File()).volume.nz, 3) << "three frames are not two times";
}

/** The functional groups of one frame. */
Bytes Frame_Item(double z, int time, const char* slope = nullptr) {
    Dicom_Bytes position;
    position.Clear().Text(TAG_PLACE, "DS", "0\\0\\" + std::to_string(z));
    Dicom_Bytes content;
    content.Clear().Raw(0x00209128, "UL", {static_cast<std::uint8_t>(time), 0, 0, 0});
    Dicom_Bytes item;
    item.Clear().Sequence(0x00209111, {content.Elements()}).Sequence(0x00209113, {position.Elements()});
    if (slope != nullptr) {
        Dicom_Bytes scale;
        scale.Clear().Text(TAG_SLOPE, "DS", slope).Text(TAG_INTERCEPT, "DS", "0");
        item.Sequence(0x00289145, {scale.Elements()});
    }
    return item.Elements();
}

Dicom_Bytes Enhanced_File(const std::vector<Bytes>& frames) {
    Dicom_Bytes direction;
    direction.Clear().Text(TAG_DIRECTION, "DS", "1\\0\\0\\0\\1\\0");
    Dicom_Bytes measures;
    measures.Clear().Text(TAG_PIXEL_SPACING, "DS", "0.5\\0.25").Text(TAG_SLICE_THICKNESS, "DS", "9");
    Dicom_Bytes shared;
    shared.Clear().Sequence(0x00209116, {direction.Elements()}).Sequence(0x00289110, {measures.Elements()});
    Dicom_Bytes bytes;
    std::vector<std::uint8_t> values;
    for (std::size_t at = 0; at < frames.size(); ++at) {
        values.push_back(static_cast<std::uint8_t>(10 * (at + 1)));
    }
    bytes.Pixels_8(values, 1, 1).Text(TAG_FRAMES, "IS", std::to_string(frames.size()));
    return bytes.Sequence(TAG_FRAMES_SHARED, {shared.Elements()}).Sequence(TAG_FRAMES_OWN, frames);
}

TEST(Dicom_Reader, orders_frames_by_time_and_position) {
    const Dicom_Image image =
        Opened(Enhanced_File({Frame_Item(6, 2), Frame_Item(3, 2), Frame_Item(6, 1), Frame_Item(3, 1)}).File());
    EXPECT_EQ(image.volume.nz, 2);
    EXPECT_EQ(image.volume.nt, 2);
    EXPECT_THAT(image.volume.levels, ElementsAre(40, 30, 20, 10));
    EXPECT_THAT(image.volume.spacing, ElementsAre(0.25, 0.5, 3)) << "positions say more than the thickness";
    EXPECT_EQ(image.place.corner[2], 3);
}

TEST(Dicom_Reader, gives_frames_off_the_grid_of_the_others_an_image_of_their_own) {
    const Dicom_Result result =
        Dicom_Read(Enhanced_File({Frame_Item(6, 1), Frame_Item(3, 1), Frame_Item(6, 2)}).File());
    ASSERT_TRUE(result.image.has_value());
    ASSERT_EQ(result.others.size(), 1U);
    EXPECT_THAT(result.image->volume.levels, ElementsAre(20, 10));
    EXPECT_THAT(result.others[0].volume.levels, ElementsAre(30));
    EXPECT_EQ(result.others[0].part, 1);
    EXPECT_EQ(result.others[0].place.corner[2], 6);
}

TEST(Dicom_Reader, brings_frames_of_several_scales_to_the_finest) {
    const Volume volume = Opened(Enhanced_File({Frame_Item(1, 1, "1"), Frame_Item(2, 1, "0.5")}).File()).volume;
    EXPECT_EQ(volume.slope, 0.5);
    EXPECT_THAT(volume.levels, ElementsAre(20, 20));
}

TEST(Dicom_Reader, takes_frames_that_all_lie_at_one_place_as_slices_unless_they_have_a_time) {
    Dicom_Bytes bytes;
    bytes.Pixels_8({1, 2, 3, 4}, 2, 1).Text(TAG_FRAMES, "IS", "2").Place(1, 2, 3);
    bytes.Text(0x3004000C, "DS", "0\\5");
    const Volume volume = Opened(bytes.File()).volume;
    EXPECT_EQ(volume.nz, 2);
    EXPECT_EQ(volume.nt, 1);
    EXPECT_EQ(volume.spacing[2], 5);
}

TEST(Dicom_Reader, understands_elements_of_unknown_form) {
    Dicom_Bytes bytes;
    const auto raw = [](const std::string& text) { return Bytes(text.begin(), text.end()); };
    bytes.Raw(TAG_MODALITY, "UN", raw("CT")).Raw(TAG_SERIES_NUMBER, "UN", raw("12"));
    bytes.Raw(TAG_PIXEL_SPACING, "UN", raw("2\\3 ")).Raw(TAG_ROWS, "UN", {2, 0});
    const Dicom_Image image = Opened(bytes.File());
    EXPECT_EQ(image.origin.modality, 'C' << 8 | 'T');
    EXPECT_EQ(image.origin.series_number, 12);
    EXPECT_EQ(image.volume.spacing[0], 3);
    EXPECT_EQ(image.volume.ny, 2);
}

TEST(Dicom_Reader, reads_a_file_without_preamble) {
    EXPECT_THAT(Opened(Dicom_Bytes().Elements()).volume.levels, ElementsAre(10, 20, 30, 40, 50, 60));
}

TEST(Dicom_Reader, refuses_what_is_no_dicom_file) {
    EXPECT_EQ(Error_Of({}), "is empty");
    EXPECT_EQ(Error_Of(Bytes(500, 'x')), "is no DICOM file");
    EXPECT_EQ(Error_Of({8, 0}), "is no DICOM file");
}

TEST(Dicom_Reader, refuses_objects_without_image) {
    Dicom_Bytes bytes;
    bytes.Remove(TAG_PIXELS).Text(TAG_KIND, "UI", "1.2.840.10008.5.1.4.1.1.481.3");
    EXPECT_THAT(Error_Of(bytes.File()), HasSubstr("holds no image (RTStructureSetStorage"));
    EXPECT_THAT(Error_Of(bytes.Remove(TAG_KIND).File()), HasSubstr("holds no image"));
    bytes.Text(TAG_KIND, "UI", "1.2.840.10008.1.3.10");
    EXPECT_THAT(Error_Of(bytes.File()), HasSubstr("a directory of other files (DICOMDIR)"));
}

TEST(Dicom_Reader, names_a_transfer_syntax_that_it_does_not_know) {
    Dicom_Bytes bytes;
    bytes.Fragments({{1, 2, 3, 4}});
    EXPECT_THAT(Error_Of(bytes.Syntax("1.2.3.4.5.6").File()), HasSubstr("unknown transfer syntax (1.2.3.4.5.6)"));
}

TEST(Dicom_Reader, refuses_sizes_and_bits_that_make_no_sense) {
    EXPECT_THAT(Error_Of(Dicom_Bytes().Short(TAG_ROWS, 0).File()), HasSubstr("no usable size (3 x 0"));
    EXPECT_THAT(Error_Of(Dicom_Bytes().Remove(TAG_COLUMNS).File()), HasSubstr("no usable size"));
    EXPECT_THAT(Error_Of(Dicom_Bytes().Short(TAG_BITS_ALLOCATED, 12).File()), HasSubstr("12 bits allocated"));
    EXPECT_THAT(Error_Of(Dicom_Bytes().Short(TAG_BITS_STORED, 9).File()), HasSubstr("do not fit one another"));
    EXPECT_THAT(Error_Of(Dicom_Bytes().Short(TAG_BITS_STORED, 0).File()), HasSubstr("do not fit one another"));
    EXPECT_THAT(Error_Of(Dicom_Bytes().Short(TAG_HIGH_BIT, 8).File()), HasSubstr("do not fit one another"));
    EXPECT_THAT(Error_Of(Dicom_Bytes().Short(TAG_HIGH_BIT, 6).File()), HasSubstr("do not fit one another"));
    EXPECT_THAT(Error_Of(Dicom_Bytes().Short(TAG_SAMPLES, 3).File()), HasSubstr("3 samples per pixel"));
    EXPECT_THAT(Error_Of(Dicom_Bytes().Text(TAG_PHOTOMETRIC, "CS", "HSV").File()), HasSubstr("unknown kind (HSV"));
    EXPECT_THAT(Error_Of(Dicom_Bytes().Text(TAG_FRAMES, "IS", "-1").File()), HasSubstr("-1 frames"));
    EXPECT_THAT(Error_Of(Dicom_Bytes().Text(TAG_FRAMES, "IS", "2").File()), HasSubstr("fewer pixels than it says"));
    EXPECT_THAT(Error_Of(Dicom_Bytes().Text(TAG_FRAMES, "IS", "2147483647").File()), HasSubstr("more memory than"));
    EXPECT_THAT(Error_Of(Dicom_Bytes().Short(TAG_ROWS, 65535).Short(TAG_COLUMNS, 65535).File()),
                HasSubstr("more memory than the limit of 2.0 GiB"));
    Dicom_Bytes halved;
    halved.Short(TAG_SAMPLES, 3).Text(TAG_PHOTOMETRIC, "CS", "YBR_FULL_422");
    EXPECT_THAT(Error_Of(halved.File()), HasSubstr("YBR_FULL_422"));
}

TEST(Dicom_Reader, says_that_the_kind_of_pixels_is_not_named) {
    const Dicom_Result result = Dicom_Read(Dicom_Bytes().Remove(TAG_PHOTOMETRIC).File());
    ASSERT_TRUE(result.image.has_value());
    EXPECT_THAT(result.warnings, ElementsAre(HasSubstr("does not say what its pixels mean")));
}

TEST(Dicom_Reader, refuses_a_file_cut_at_any_byte) {
    const Bytes file = Enhanced_File({Frame_Item(1, 1), Frame_Item(2, 1, "0.5")}).Place(1, 2, 3).File();
    ASSERT_TRUE(Dicom_Read(file).image.has_value());
    for (std::size_t size = 0; size < file.size(); ++size) {
        // In a block of its own, so that reading behind the end is noticed.
        const Dicom_Result result = Dicom_Read(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)));
        ASSERT_FALSE(result.image.has_value()) << size;
        ASSERT_NE(result.error, "") << size;
    }
}

TEST(Dicom_Reader, gives_an_image_or_a_reason_whatever_byte_is_changed) {
    Dicom_Bytes packed;
    packed.Syntax(Dicom_Bytes::RUN_LENGTH).Fragments({Run_Length_Of({{10, 20, 30, 40, 50, 60}})});
    for (const Bytes& file :
         {Enhanced_File({Frame_Item(1, 1), Frame_Item(2, 1)}).File(), packed.File(), Palette_File().File()}) {
        for (std::size_t at = 132; at < file.size(); ++at) {
            for (const int value : {0x00, 0x7F, 0xFF}) {
                Bytes changed = file;
                changed[at] = static_cast<std::uint8_t>(value);
                const Dicom_Result result = Dicom_Read(changed, Load_Limits{1U << 20U});
                ASSERT_EQ(result.image.has_value(), result.error.empty()) << at;
                if (result.image) {
                    Expect_Sound(result.image->volume);
                }
            }
        }
    }
}

TEST(Dicom_Reader, refuses_sequences_nested_without_end) {
    Bytes nested;
    constexpr int levels = 200000;
    for (int level = 0; level < levels; ++level) {
        const Bytes open = {0x08, 0x00, 0x40, 0x11, 'S',  'Q',  0,    0,    0xFF, 0xFF,
                            0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0xE0, 0xFF, 0xFF, 0xFF, 0xFF};
        nested.insert(nested.end(), open.begin(), open.end());
    }
    Bytes file = Dicom_Bytes().Clear().File();
    file.insert(file.end(), nested.begin(), nested.end());
    EXPECT_THAT(Error_Of(file), HasSubstr("broken"));
}

}  // namespace
