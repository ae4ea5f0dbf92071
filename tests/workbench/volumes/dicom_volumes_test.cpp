// What becomes of files whose values or places are not plain: true greys, true places, or a word about what is not.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "tests/workbench/volumes/dicom_bytes.h"
#include "tests/workbench/volumes/loading.h"
#include "workbench/volumes/image_folder.h"

using namespace volumes;

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/** A frame of a file with functional groups: 1 x 1 pixel of 2 mm. */
struct Frame {
    double x = 0;
    double y = 0;
    double z = 0;
    int time = 0;
    const char* slope = nullptr;
    const char* direction = "1\\0\\0\\0\\1\\0";
};

Bytes Item_Of(std::uint32_t tag, const char* representation, const std::string& value) {
    return Dicom_Bytes().Clear().Text(tag, representation, value).Elements();
}

Bytes Group_Of(const Frame& frame) {
    Dicom_Bytes content;
    content.Clear();
    if (frame.time != 0) {
        content.Raw(0x00209128, "UL", {static_cast<std::uint8_t>(frame.time), 0, 0, 0});
    }
    const std::string place = std::to_string(frame.x) + '\\' + std::to_string(frame.y) + '\\' + std::to_string(frame.z);
    Dicom_Bytes item;
    item.Clear().Sequence(0x00209111, {content.Elements()});
    item.Sequence(0x00209113, {Item_Of(TAG_PLACE, "DS", place)});
    if (frame.direction != nullptr) {
        item.Sequence(0x00209116, {Item_Of(TAG_DIRECTION, "DS", frame.direction)});
    }
    if (frame.slope != nullptr) {
        item.Sequence(0x00289145, {Item_Of(TAG_SLOPE, "DS", frame.slope)});
    }
    return item.Elements();
}

/** Frames with the values 1, 2, 3 ... */
Dicom_Bytes File_Of(const std::vector<Frame>& frames) {
    Dicom_Bytes measures;
    measures.Clear().Text(TAG_PIXEL_SPACING, "DS", "2\\2").Text(TAG_SLICE_THICKNESS, "DS", "9");
    Dicom_Bytes shared;
    shared.Clear().Sequence(0x00289110, {measures.Elements()});
    std::vector<std::uint8_t> values;
    std::vector<Bytes> groups;
    for (const Frame& frame : frames) {
        values.push_back(static_cast<std::uint8_t>(values.size() + 1));
        groups.push_back(Group_Of(frame));
    }
    Dicom_Bytes bytes;
    bytes.Pixels_8(values, 1, 1).Text(TAG_FRAMES, "IS", std::to_string(frames.size()));
    return bytes.Sequence(TAG_FRAMES_SHARED, {shared.Elements()}).Sequence(TAG_FRAMES_OWN, groups);
}

class Dicom_Volumes : public testing::Test {
  protected:
    void Write(const std::string& name, const Dicom_Bytes& bytes) { File_Put(folder / name.c_str(), bytes.File()); }
    /** A slice of 2 x 1 pixels of 1 mm. */
    static Dicom_Bytes Slice(double z, std::uint8_t value, int number, double y = 0) {
        Dicom_Bytes bytes;
        bytes.Pixels_8({value, value}, 2, 1).Place(0, y, z).Text(TAG_PIXEL_SPACING, "DS", "1\\1");
        return bytes.Text(TAG_INSTANCE_NUMBER, "IS", std::to_string(number)).Remove(TAG_INSTANCE);
    }
    void Open() {
        const std::filesystem::path path = folder.path;
        opened = Image_Folder_Open(std::span(&path, 1));
        for (const Folder_Volume& one : opened.volumes) {
            Expect_Sound(one.volume);
        }
    }
    void Open_One(const Dicom_Bytes& bytes) {
        Write("one.dcm", bytes);
        Open();
    }
    std::vector<std::string> Problems() const {
        std::vector<std::string> texts;
        for (const Folder_Problem& problem : opened.problems) {
            texts.push_back(problem.path.filename().string() + ": " + problem.reason);
        }
        return texts;
    }
    const Volume& First() const {
        static const Volume none;
        return opened.volumes.empty() ? none : opened.volumes.front().volume;
    }
    std::vector<float> Greys(std::size_t volume = 0) const {
        std::vector<float> greys;
        if (volume < opened.volumes.size()) {
            for (const std::int32_t level : opened.volumes[volume].volume.levels) {
                greys.push_back(opened.volumes[volume].volume.grey(level));
            }
        }
        return greys;
    }
    Temporary_Folder folder;
    Image_Folder opened;
};

// Values

TEST_F(Dicom_Volumes, of_slices_with_very_different_slopes_have_true_greys) {
    Write("1.dcm", Slice(1, 0, 1).Pixels_16({100, 32767}, 2, 1).Text(TAG_SLOPE, "DS", "1.2"));
    Write("2.dcm", Slice(2, 0, 2).Pixels_16({0, 0}, 2, 1).Text(TAG_SLOPE, "DS", "1.2e-7"));
    Open();
    ASSERT_THAT(opened.volumes, SizeIs(1));
    EXPECT_THAT(Greys(), ElementsAre(120.0F, 39320.4F, 0.0F, 0.0F));
    EXPECT_EQ(First().max_error, 0);
    EXPECT_THAT(Problems(), IsEmpty());
}

TEST_F(Dicom_Volumes, of_slices_that_are_filled_up_keep_what_fills_them_outside) {
    Write("1.dcm", Slice(1, 0, 1).Pixels_16({100, 7}, 2, 1).Shorts(TAG_PADDING, "US", {7}));
    Write("2.dcm", Slice(2, 0, 2).Pixels_16({9, 7}, 2, 1).Shorts(TAG_PADDING, "US", {9}));
    Write("3.dcm", Slice(3, 0, 3).Pixels_16({9, 9}, 2, 1).Text(TAG_SLOPE, "DS", "2"));
    Open();
    ASSERT_THAT(Greys(), SizeIs(6));
    EXPECT_EQ(Greys()[0], 100.0F);
    EXPECT_TRUE(std::isnan(Greys()[1]));
    EXPECT_TRUE(std::isnan(Greys()[2])) << "each file has its own";
    EXPECT_EQ(Greys()[3], 7.0F);
    EXPECT_EQ(Greys()[5], 18.0F);
    EXPECT_EQ(First().nonfinite_nb, 2U);
    EXPECT_THAT(Problems(), IsEmpty());
}

TEST_F(Dicom_Volumes, of_slices_whose_scales_fit_no_common_one_are_as_near_as_levels_allow_and_told) {
    Write("1.dcm", Slice(1, 0, 1).Pixels_16({100, 32767}, 2, 1).Text(TAG_SLOPE, "DS", "1.2"));
    Write("2.dcm", Slice(2, 0, 2).Pixels_16({0, 32767}, 2, 1).Text(TAG_SLOPE, "DS", "1.2e-7"));
    Open();
    ASSERT_THAT(Greys(), SizeIs(4));
    EXPECT_NEAR(Greys()[1], 39320.4, 0.01);
    EXPECT_NEAR(Greys()[3], 0.00393204, 2e-5);
    EXPECT_GT(First().max_error, 0);
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("1.dcm: has slices of very different scales")));
}

TEST_F(Dicom_Volumes, of_frames_with_very_different_slopes_have_true_greys) {
    Dicom_Bytes bytes = File_Of({{0, 0, 1, 0, "100000"}, {0, 0, 2, 0, "1e-7"}, {0, 0, 3, 0, "0.5"}});
    Open_One(bytes.Pixels_8({0, 200, 0, 0, 1, 100}, 2, 1));
    EXPECT_THAT(Greys(), ElementsAre(0.0F, 2e7F, 0.0F, 0.0F, 0.5F, 50.0F));
    EXPECT_THAT(Problems(), IsEmpty());
}

TEST_F(Dicom_Volumes, of_frames_with_32_bits_keep_their_slopes) {
    Dicom_Bytes bytes = File_Of({{0, 0, 1, 0, "2"}, {0, 0, 2, 0, "0.5"}});
    bytes.Pixels_16({1000, 0, 1001, 0}, 1, 1).Short(TAG_BITS_ALLOCATED, 32).Short(TAG_BITS_STORED, 32);
    Open_One(bytes.Short(TAG_HIGH_BIT, 31));
    EXPECT_THAT(Greys(), ElementsAre(2000.0F, 500.5F));
    EXPECT_EQ(First().max_error, 0);
}

TEST_F(Dicom_Volumes, of_32_bits_keep_large_numbers_whose_range_fits) {
    Dicom_Bytes bytes;
    bytes.Pixels_16({0, 0xC000, 1, 0xC000}, 2, 1).Short(TAG_BITS_ALLOCATED, 32).Short(TAG_BITS_STORED, 32);
    Open_One(bytes.Short(TAG_HIGH_BIT, 31));
    EXPECT_EQ(First().max_error, 0);
    EXPECT_EQ(First().levels[1] * First().slope + First().intercept, 3221225473.0);
}

TEST_F(Dicom_Volumes, take_greys_from_a_table) {
    Dicom_Bytes table;
    table.Clear().Shorts(0x00283002, "US", {3, 20, 16}).Shorts(0x00283006, "US", {1000, 2000, 40000});
    Open_One(Dicom_Bytes().Pixels_8({10, 20, 21, 22, 60, 0}, 3, 2).Sequence(0x00283000, {table.Elements()}));
    EXPECT_THAT(Greys(), ElementsAre(1000, 1000, 2000, 40000, 40000, 1000));
    table.Remove(0x00283006);
    Open_One(Dicom_Bytes().Sequence(0x00283000, {table.Elements()}));
    EXPECT_THAT(Problems(), Contains(HasSubstr("a table of grey values that cannot be used")));
}

TEST_F(Dicom_Volumes, of_doses_have_their_scale) {
    Open_One(Dicom_Bytes().Text(0x3004000E, "DS", "0.001"));
    EXPECT_EQ(First().slope, 0.001);
}

TEST_F(Dicom_Volumes, with_a_slope_of_nothing_are_told_to_show_stored_values) {
    Open_One(Dicom_Bytes().Text(TAG_SLOPE, "DS", "0").Text(TAG_INTERCEPT, "DS", "5"));
    EXPECT_EQ(First().slope, 1);
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("has a slope that cannot be used: stored values are shown")));
}

TEST_F(Dicom_Volumes, of_inverted_grey_keep_their_greys) {
    Open_One(Dicom_Bytes().Text(TAG_PHOTOMETRIC, "CS", "MONOCHROME1").Text(TAG_INTERCEPT, "DS", "-1"));
    EXPECT_THAT(Greys(), ElementsAre(9, 19, 29, 39, 49, 59));
}

Bytes Region(const char* form, const std::vector<std::uint8_t>& delta) {
    Dicom_Bytes region;
    region.Clear().Short(0x00186012, static_cast<std::uint16_t>(form[0] - '0'));
    region.Short(0x00186024, 3).Short(0x00186026, 3).Raw(0x0018602C, "FD", delta).Raw(0x0018602E, "FD", delta);
    return region.Elements();
}

TEST_F(Dicom_Volumes, of_ultrasound_have_the_pixel_size_of_their_region) {
    const std::vector<std::uint8_t> eighth = {0, 0, 0, 0, 0, 0, 0xC0, 0x3F};  // 0.125 cm
    const std::vector<std::uint8_t> quarter = {0, 0, 0, 0, 0, 0, 0xD0, 0x3F};
    Open_One(Dicom_Bytes()
                 .Text(TAG_MODALITY, "CS", "US")
                 .Sequence(0x00186011, {Region("2", quarter), Region("1", eighth), Region("1", eighth)}));
    EXPECT_EQ(First().spacing[0], 1.25);
    EXPECT_EQ(First().spacing[1], 1.25);
    EXPECT_THAT(Problems(), IsEmpty());
    Open_One(Dicom_Bytes().Sequence(0x00186011, {Region("1", eighth), Region("1", quarter)}));
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("regions whose pixels differ in size")));
}

// Places of frames

TEST_F(Dicom_Volumes, of_tilted_frames_have_a_tilted_grid) {
    Open_One(File_Of({{0, 0, 0}, {0, 1.5, 3}, {0, 3, 6}}));
    EXPECT_THAT(First().affine[1], ElementsAre(0, -2, -1.5, 0));
    EXPECT_THAT(First().affine[2], ElementsAre(0, 0, 3, 0));
    EXPECT_EQ(First().spacing[2], 3);
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("has a stack of frames tilted by 26.6 degrees")));
}

TEST_F(Dicom_Volumes, of_frames_at_uneven_distances_are_told) {
    Open_One(File_Of({{0, 0, 0}, {0, 0, 1}, {0, 0, 2}, {0, 0, 4}}));
    EXPECT_THAT(Problems(),
                ElementsAre(HasSubstr("has frames at uneven distances (frame 3): they are shown up to 0.667")));
}

TEST_F(Dicom_Volumes, of_frames_beside_their_line_are_told) {
    Open_One(File_Of({{0, 0, 0}, {1, 0, 1}, {0, 0, 2}}));
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("has frames beside the line of the others (frame 2)")));
}

TEST_F(Dicom_Volumes, of_frames_not_equally_often_at_each_place_stand_in_their_places) {
    Open_One(File_Of({{0, 0, 9}, {0, 0, 6}, {0, 0, 3}, {0, 0, 9}}));
    ASSERT_THAT(opened.volumes, SizeIs(2));
    EXPECT_THAT(First().levels, ElementsAre(3, 2, 1));
    EXPECT_THAT(First().affine[2], ElementsAre(0, 0, 3, 3));
    EXPECT_EQ(opened.volumes[0].title, "MR 7, part 1 of 2");
    EXPECT_EQ(opened.volumes[1].volume.affine[2][3], 9);
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("frames whose places do not occur equally often (frame 4)")));
}

TEST_F(Dicom_Volumes, of_frames_in_three_directions_are_three) {
    const char* const sagittal = "0\\1\\0\\0\\0\\-1";
    const char* const coronal = "1\\0\\0\\0\\0\\-1";
    Open_One(File_Of({{0, 0, 0}, {0, 0, 5}, {1, 2, 3, 0, nullptr, sagittal}, {4, 5, 6, 0, nullptr, coronal}}));
    ASSERT_THAT(opened.volumes, SizeIs(3));
    EXPECT_EQ(First().nz, 2);
    EXPECT_THAT(opened.volumes[1].volume.affine[0], ElementsAre(0, 0, 9, -1));
    EXPECT_THAT(opened.volumes[2].volume.affine[1], ElementsAre(0, 0, -9, -5));
    EXPECT_EQ(opened.volumes[2].title, "MR 7, part 3 of 3");
}

TEST_F(Dicom_Volumes, of_one_place_over_time_are_moments) {
    Open_One(File_Of({{0, 0, 5, 2}, {0, 0, 5, 1}, {0, 0, 5, 3}}));
    ASSERT_THAT(opened.volumes, SizeIs(1));
    EXPECT_TRUE(opened.volumes[0].is_cine);
    EXPECT_THAT(First().levels, ElementsAre(2, 1, 3));
    EXPECT_THAT(Problems(), IsEmpty());
}

TEST_F(Dicom_Volumes, of_frames_whose_times_are_not_said_are_told) {
    Open_One(File_Of({{0, 0, 5}, {0, 0, 6}, {0, 0, 5}, {0, 0, 6}}));
    EXPECT_THAT(opened.volumes, SizeIs(2));
    EXPECT_THAT(Problems(),
                ElementsAre(HasSubstr("does not say which is earlier: they are taken in the file's order")));
}

TEST_F(Dicom_Volumes, of_frames_without_direction_are_in_order_of_position_and_told) {
    Open_One(File_Of({{0, 0, 6, 0, nullptr, nullptr}, {0, 0, 4, 0, nullptr, nullptr}, {0, 0, 2, 0, nullptr, nullptr}}));
    EXPECT_THAT(First().levels, ElementsAre(3, 2, 1));
    EXPECT_EQ(First().spacing[2], 2);
    EXPECT_EQ(First().affine_source, Affine_Source::Spacing);
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("but not how they are turned")));
}

Dicom_Bytes Dose(const char* offsets) {
    Dicom_Bytes bytes;
    bytes.Pixels_8({1, 2, 3}, 1, 1).Text(TAG_FRAMES, "IS", "3").Place(1, 2, 30).Text(TAG_PIXEL_SPACING, "DS", "1\\1");
    return bytes.Text(0x3004000C, "DS", offsets);
}

TEST_F(Dicom_Volumes, of_doses_lie_where_their_offsets_say) {
    Open_One(Dose("0\\-5\\-10"));
    EXPECT_THAT(First().levels, ElementsAre(3, 2, 1));
    EXPECT_THAT(First().affine[2], ElementsAre(0, 0, 5, 20));
    EXPECT_THAT(Problems(), IsEmpty());
    Open_One(Dose("30\\33\\36"));  // heights, not distances
    EXPECT_THAT(First().levels, ElementsAre(1, 2, 3));
    EXPECT_THAT(First().affine[2], ElementsAre(0, 0, 3, 30));
    Open_One(Dose("0\\5\\20"));
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("uneven distances (frame 2)")));
    Open_One(Dose("0\\5"));
    EXPECT_THAT(Problems(), Contains(HasSubstr("a list of frame offsets that does not fit its frames")));
}

TEST_F(Dicom_Volumes, of_heights_downwards_the_normal_are_turned_round) {
    Open_One(Dose("30\\35\\40").Text(TAG_DIRECTION, "DS", "1\\0\\0\\0\\-1\\0"));
    EXPECT_THAT(First().levels, ElementsAre(3, 2, 1));
    EXPECT_THAT(First().affine[2], ElementsAre(0, 0, -5, 40));
}

TEST_F(Dicom_Volumes, of_frames_at_a_negative_distance_go_down) {
    Dicom_Bytes bytes;
    bytes.Pixels_8({1, 2, 3}, 1, 1).Text(TAG_FRAMES, "IS", "3").Place(0, 0, 10).Text(0x00180088, "DS", "-2");
    Open_One(bytes);
    EXPECT_THAT(First().levels, ElementsAre(3, 2, 1));
    EXPECT_THAT(First().affine[2], ElementsAre(0, 0, 2, 6));
    EXPECT_THAT(Problems(), IsEmpty());
    Open_One(bytes.Remove(0x00180088));
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("does not say how far its frames lie apart")));
}

// Places of slices

TEST_F(Dicom_Volumes, of_a_series_with_one_place_twice_lie_where_the_files_say) {
    // Numbered from the top downwards.
    Write("1.dcm", Slice(30, 3, 1));
    Write("2.dcm", Slice(20, 2, 2));
    Write("3.dcm", Slice(20, 9, 3));
    Write("4.dcm", Slice(10, 1, 4));
    Open();
    ASSERT_THAT(opened.volumes, SizeIs(2));
    EXPECT_THAT(First().levels, ElementsAre(1, 1, 2, 2, 3, 3));
    EXPECT_THAT(First().affine[2], ElementsAre(0, 0, 10, 10));
    EXPECT_THAT(opened.volumes[0].file_of_slice, ElementsAre(3, 1, 0));
    EXPECT_THAT(opened.volumes[1].volume.levels, ElementsAre(9, 9));
    EXPECT_EQ(opened.volumes[1].volume.affine[2][3], 20);
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("3.dcm: belongs to a series whose positions do not occur equally")));
}

TEST_F(Dicom_Volumes, of_a_series_that_lacks_a_slice_at_one_time_keep_the_times_apart) {
    int number = 0;
    for (const int time : {1, 2, 3}) {
        for (const int z : {30, 20, 10}) {
            ++number;
            if (time != 2 || z != 20) {
                Write(std::to_string(number) + ".dcm", Slice(z, static_cast<std::uint8_t>(10 * time + z / 10), number)
                                                           .Text(TAG_TEMPORAL_POSITION, "IS", std::to_string(time)));
            }
        }
    }
    Open();
    ASSERT_THAT(opened.volumes, SizeIs(3));
    EXPECT_THAT(Greys(0), ElementsAre(11, 11, 12, 12, 13, 13));
    EXPECT_THAT(Greys(1), ElementsAre(31, 31, 32, 32, 33, 33));
    EXPECT_THAT(Greys(2), ElementsAre(21, 21, 23, 23));
    EXPECT_THAT(opened.volumes[2].volume.affine[2], ElementsAre(0, 0, 20, 10));
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("do not occur equally often")));
}

TEST_F(Dicom_Volumes, of_a_series_do_not_split_where_directions_differ_in_the_last_digit) {
    Write("1.dcm", Slice(1, 1, 1).Text(TAG_DIRECTION, "DS", "0.99999988\\0.00049999\\0\\-0.00049999\\0.99999988\\0"));
    Write("2.dcm", Slice(2, 2, 2).Text(TAG_DIRECTION, "DS", "0.99999987\\0.00050001\\0\\-0.00050001\\0.99999987\\0"));
    Write("3.dcm", Slice(3, 3, 3)
                       .Text(TAG_DIRECTION, "DS", "0.99999988\\0.00049999\\0\\-0.00049999\\0.99999988\\0")
                       .Text(TAG_PIXEL_SPACING, "DS", "1.0005001\\1.0005001"));
    Open();
    EXPECT_THAT(opened.volumes, SizeIs(1));
    EXPECT_THAT(Problems(), IsEmpty());
}

TEST_F(Dicom_Volumes, of_several_acquisitions_with_trigger_times_do_not_mingle) {
    int number = 0;
    for (const int acquisition : {1, 2}) {
        for (const int trigger : {0, 1, 2}) {
            for (const int z : {1, 2}) {
                ++number;
                Write(std::to_string(number) + ".dcm",
                      Slice(z, static_cast<std::uint8_t>(100 * acquisition + 10 * trigger + z), 7 - number % 7)
                          .Text(0x00200012, "IS", std::to_string(acquisition))
                          .Text(0x00181060, "DS", std::to_string(trigger)));
            }
        }
    }
    Open();
    ASSERT_THAT(opened.volumes, SizeIs(6));
    EXPECT_THAT(Greys(0), ElementsAre(101, 101, 102, 102));
    EXPECT_THAT(Greys(1), ElementsAre(111, 111, 112, 112));
    EXPECT_THAT(Greys(2), ElementsAre(121, 121, 122, 122));
    EXPECT_THAT(Greys(3), ElementsAre(201, 201, 202, 202));
    EXPECT_THAT(Greys(5), ElementsAre(221, 221, 222, 222));
    EXPECT_THAT(Problems(), IsEmpty());
}

TEST_F(Dicom_Volumes, of_times_that_no_file_names_are_told) {
    Write("1.dcm", Slice(1, 1, 1));
    Write("2.dcm", Slice(1, 2, 2));
    Open();
    EXPECT_THAT(opened.volumes, SizeIs(2));
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("1.dcm: lies where other slices of its series lie")));
}

TEST_F(Dicom_Volumes, keep_slices_of_one_identifier_at_several_places) {
    Write("1.dcm", Slice(1, 5, 1).Text(TAG_INSTANCE, "UI", "1.7"));
    Write("2.dcm", Slice(2, 5, 2).Text(TAG_INSTANCE, "UI", "1.7"));
    Write("3.dcm", Slice(2, 5, 3).Text(TAG_INSTANCE, "UI", "1.7"));
    Open();
    ASSERT_THAT(opened.volumes, SizeIs(1));
    EXPECT_EQ(First().nz, 2);
    EXPECT_THAT(Problems(), ElementsAre("3.dcm: holds the same image as 2.dcm"));
}

TEST_F(Dicom_Volumes, of_files_that_name_no_series_are_put_together_and_told) {
    Write("1.dcm", Slice(1, 1, 1).Remove(TAG_SERIES));
    Write("2.dcm", Slice(2, 2, 2).Remove(TAG_SERIES));
    Write("3.dcm", Slice(3, 3, 3).Remove(TAG_SERIES).Text(TAG_SERIES_NUMBER, "IS", "8"));
    Open();
    ASSERT_THAT(opened.volumes, SizeIs(2));
    EXPECT_EQ(First().nz, 2);
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("1.dcm: names no series: it was put together with 1 of the same")));
}

TEST_F(Dicom_Volumes, of_slices_without_direction_are_in_order_of_position_and_told) {
    Write("1.dcm", Slice(6, 3, 1).Remove(TAG_DIRECTION));
    Write("2.dcm", Slice(4, 2, 2).Remove(TAG_DIRECTION));
    Write("3.dcm", Slice(2, 1, 3).Remove(TAG_DIRECTION));
    Open();
    ASSERT_THAT(opened.volumes, SizeIs(1));
    EXPECT_THAT(First().levels, ElementsAre(1, 1, 2, 2, 3, 3));
    EXPECT_EQ(First().spacing[2], 2);
    EXPECT_EQ(First().affine_source, Affine_Source::Spacing);
    EXPECT_THAT(Problems(),
                ElementsAre(HasSubstr("1.dcm: belongs to a series that says where slices lie, but not how")));
}

TEST_F(Dicom_Volumes, of_slices_without_any_place_are_told_to_be_in_order_of_number) {
    Write("1.dcm", Slice(1, 1, 2).Remove(TAG_PLACE));
    Write("2.dcm", Slice(1, 2, 1).Remove(TAG_PLACE));
    Open();
    EXPECT_THAT(First().levels, ElementsAre(2, 2, 1, 1));
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("does not say where its slices lie: they are in order of number")));
}

// Files with small mistakes

TEST_F(Dicom_Volumes, of_a_palette_described_by_signed_numbers_have_its_colours) {
    Dicom_Bytes bytes;
    bytes.Pixels_8({4, 255, 128, 9}, 2, 2).Text(TAG_PHOTOMETRIC, "CS", "PALETTE COLOR").Short(TAG_SIGNED, 1);
    for (const std::uint32_t tag : {0x00281101U, 0x00281102U, 0x00281103U}) {
        bytes.Shorts(tag, "SS", {3, 0xFFFF, 16});  // from -1 on
    }
    for (const std::uint32_t tag : {0x00281201U, 0x00281202U, 0x00281203U}) {
        bytes.Shorts(tag, "OW", {0x0100, 0x0200, 0x0300});
    }
    Open_One(bytes);
    EXPECT_THAT(First().levels, ElementsAre(0x030303, 0x010101, 0x010101, 0x030303));
}

TEST_F(Dicom_Volumes, of_no_frames_at_all_show_what_is_there) {
    Open_One(Dicom_Bytes().Text(TAG_FRAMES, "IS", "0"));
    EXPECT_THAT(First().levels, ElementsAre(10, 20, 30, 40, 50, 60));
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("says that it has 0 frames; there is 1")));
}

TEST_F(Dicom_Volumes, are_read_as_written_when_the_header_names_the_wrong_form) {
    Open_One(Dicom_Bytes().Syntax("1.2.840.10008.1.2"));
    EXPECT_THAT(First().levels, ElementsAre(10, 20, 30, 40, 50, 60));
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("says that its elements have no forms (implicit), but they have")));
}

TEST_F(Dicom_Volumes, of_run_lengths_in_several_pieces_are_put_together) {
    const Bytes whole = Run_Length_Of({{10, 20, 30, 40, 50, 60}});
    const Bytes begin(whole.begin(), whole.begin() + 66);
    const Bytes end(whole.begin() + 66, whole.end());
    Open_One(Dicom_Bytes().Syntax(Dicom_Bytes::RUN_LENGTH).Fragments({begin, end}));
    EXPECT_THAT(First().levels, ElementsAre(10, 20, 30, 40, 50, 60));
    Dicom_Bytes two;
    two.Syntax(Dicom_Bytes::RUN_LENGTH).Text(TAG_FRAMES, "IS", "2").Fragments({begin, end, whole});
    Open_One(two);
    EXPECT_THAT(First().levels, ElementsAre(10, 20, 30, 40, 50, 60, 10, 20, 30, 40, 50, 60));
    two.Fragments({begin, Bytes(end.size(), 1), end, end});
    Open_One(two);
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("pieces of compressed data that cannot be shared out")));
}

TEST_F(Dicom_Volumes, damaged_or_of_another_kind_are_told_what_they_are_not) {
    Bytes file = Dicom_Bytes().File();
    file[128] = 'X';
    File_Put(folder / "mark", file);
    std::fill(file.begin() + 128, file.begin() + 160, std::uint8_t{0xEE});
    File_Put(folder / "head.DCM", file);
    File_Put(folder / "text", Bytes(500, 'x'));
    const std::filesystem::path paths[] = {folder / "head.DCM", folder / "mark", folder / "text"};
    opened = Image_Folder_Open(paths);
    EXPECT_THAT(Problems(), ElementsAre("head.DCM: is no DICOM file", "mark: has a damaged mark at its beginning",
                                        "text: is neither a NIfTI nor a DICOM file"));
    EXPECT_THAT(opened.volumes, SizeIs(1));
}

TEST_F(Dicom_Volumes, tell_their_mistakes_in_letters_that_can_be_shown) {
    Open_One(Dicom_Bytes().Text(TAG_PHOTOMETRIC, "CS",
                                "\xFF\xFE\x01"
                                "A"));
    Dicom_Bytes syntax;
    Write("two.dcm", syntax.Syntax("1.2.\xE4"));
    Write("zero.dcm", Dicom_Bytes().Remove(TAG_PIXELS).Text(TAG_KIND, "UI", "9.\xE4"));
    Open();
    EXPECT_THAT(Problems(),
                ElementsAre("one.dcm: has pixels of an unknown kind (\xEF\xBF\xBD\xEF\xBF\xBD A, 1 samples)",
                            "two.dcm: has an unknown transfer syntax (1.2.\xEF\xBF\xBD)",
                            "zero.dcm: holds no image (9.\xEF\xBF\xBD)"));
}

}  // namespace
