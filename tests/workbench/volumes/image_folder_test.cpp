#include "workbench/volumes/image_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <thread>

#include "tests/workbench/volumes/coded_frames.h"
#include "tests/workbench/volumes/dicom_bytes.h"
#include "tests/workbench/volumes/listed_by_heads.h"
#include "tests/workbench/volumes/loading.h"
#include "workbench/volumes/unfinished_file.h"
#include "workbench/volumes/volume_statistics.h"

using namespace volumes;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class Dicom_Folder : public testing::Test {
  protected:
    void Write(const std::string& name, const Bytes& bytes) {
        const std::filesystem::path path = folder / name.c_str();
        std::filesystem::create_directories(path.parent_path());
        File_Put(path, bytes);
    }
    Image_Folder Open(const Load_Limits& limits = {}) {
        const std::filesystem::path path = folder.path;
        Image_Folder opened = Image_Folder_Open(std::span(&path, 1), {}, limits);
        if (limits.decoded_bytes == Load_Limits().decoded_bytes) {
            waiting_nb = Expect_Same_By_Heads(path, opened);
        }
        return opened;
    }
    int waiting_nb = 0;  // volumes whose pixels were read afterwards
    /** A slice of 2 x 1 pixels at a depth. */
    static Dicom_Bytes Slice(double depth, std::uint8_t value, int number = 1) {
        Dicom_Bytes bytes;
        bytes.Pixels_8({value, value}, 2, 1).Place(0, 0, depth);
        bytes.Text(TAG_INSTANCE_NUMBER, "IS", std::to_string(number));
        bytes.Remove(TAG_INSTANCE);
        return bytes;
    }
    std::vector<std::string> Problems(const Image_Folder& opened) {
        std::vector<std::string> texts;
        for (const Folder_Problem& problem : opened.problems) {
            texts.push_back(problem.path.filename().string() + ": " + problem.reason);
        }
        return texts;
    }
    Temporary_Folder folder;
};

TEST_F(Dicom_Folder, orders_the_slices_of_a_series_by_position) {
    Write("c.dcm", Slice(10, 1).File());
    Write("a.dcm", Slice(14, 3).File());
    Write("b.dcm", Slice(12, 2).File());
    const Image_Folder opened = Open();
    EXPECT_THAT(Problems(opened), IsEmpty());
    ASSERT_THAT(opened.volumes, SizeIs(1));
    const Folder_Volume& one = opened.volumes[0];
    Expect_Sound(one.volume);
    EXPECT_EQ(one.volume.nz, 3);
    EXPECT_EQ(one.volume.nt, 1);
    EXPECT_THAT(one.volume.levels, ElementsAre(1, 1, 2, 2, 3, 3));
    EXPECT_EQ(one.volume.spacing[2], 2);
    EXPECT_EQ(one.volume.level_min, 1);
    EXPECT_EQ(one.volume.level_max, 3);
    EXPECT_EQ(one.title, "MR 7");
    EXPECT_THAT(one.file_of_slice, ElementsAre(2, 1, 0));
    EXPECT_EQ(opened.files[2].filename(), "c.dcm");
    EXPECT_EQ(Image_Folder_Text(opened), "1 volume of 3 files");
    EXPECT_EQ(waiting_nb, 1);
}

TEST_F(Dicom_Folder, recognises_files_by_what_they_hold_whatever_they_are_called) {
    Nifti_Bytes nifti;
    nifti.dim = {3, 2, 1, 1, 1, 1, 1, 1};
    nifti.Add(std::uint8_t{1});
    nifti.Add(std::uint8_t{2});
    Write("IM0001", nifti.File());
    Write("volume.dcm", Gzip(nifti.File()));
    nifti.version = 2;
    Write("x.dat", nifti.File());
    Write("slice.nii", Slice(10, 5).File());
    Write("slice.nii.gz", Gzip(Slice(12, 6, 2).File()));
    const Image_Folder opened = Open();
    EXPECT_THAT(Problems(opened), IsEmpty());
    EXPECT_THAT(opened.volumes, SizeIs(4)) << "three volumes, and one series of two slices";
}

TEST_F(Dicom_Folder, separates_studies_series_sizes_directions_and_scouts) {
    Write("1.dcm", Slice(1, 1).File());
    Write("2.dcm", Slice(2, 2).Text(TAG_SERIES, "UI", "1.2.3.9").File());
    Write("3.dcm", Slice(2, 3).Text(TAG_STUDY, "UI", "1.2.9").File());
    Write("4.dcm", Slice(2, 4).Pixels_8({4, 4, 4, 4}, 2, 2).File());
    Write("5.dcm", Slice(2, 5).Text(TAG_DIRECTION, "DS", "0\\1\\0\\0\\0\\1").File());
    Write("6.dcm", Slice(2, 6).Text(TAG_IMAGE_TYPE, "CS", "ORIGINAL\\PRIMARY\\LOCALIZER").File());
    const Image_Folder opened = Open();
    EXPECT_THAT(opened.volumes, SizeIs(6));
    EXPECT_EQ(std::ranges::count(opened.volumes, true, &Folder_Volume::is_scout), 1);
}

TEST_F(Dicom_Folder, makes_one_volume_of_every_time) {
    int number = 0;
    for (const int time : {2, 1}) {
        for (const int depth : {5, 3}) {
            ++number;
            Write(std::to_string(number) + ".dcm", Slice(depth, static_cast<std::uint8_t>(10 * time + depth))
                                                       .Text(TAG_TEMPORAL_POSITION, "IS", std::to_string(time))
                                                       .File());
        }
    }
    const Image_Folder opened = Open();
    ASSERT_THAT(opened.volumes, SizeIs(2));
    EXPECT_THAT(opened.volumes[0].volume.levels, ElementsAre(13, 13, 15, 15));
    EXPECT_THAT(opened.volumes[1].volume.levels, ElementsAre(23, 23, 25, 25));
    EXPECT_EQ(opened.volumes[0].title, "MR 7, time 1 of 2");
    EXPECT_THAT(opened.volumes[1].file_of_slice, ElementsAre(1, 0));
}

TEST_F(Dicom_Folder, makes_moments_of_one_place_the_slices_of_a_cine) {
    Write("cine.dcm", Dicom_Bytes()
                          .Pixels_8({1, 2, 3, 4, 5, 6}, 2, 1)
                          .Text(TAG_FRAMES, "IS", "3")
                          .Text(TAG_FRAME_TIME, "DS", "40")
                          .File());
    const Image_Folder opened = Open();
    ASSERT_THAT(opened.volumes, SizeIs(1));
    EXPECT_TRUE(opened.volumes[0].is_cine);
    EXPECT_EQ(opened.volumes[0].volume.nz, 3);
    EXPECT_EQ(opened.volumes[0].volume.nt, 1);
    EXPECT_EQ(opened.volumes[0].volume.time_step, 0.04);
    EXPECT_THAT(opened.volumes[0].file_of_slice, ElementsAre(0, 0, 0));
    Expect_Sound(opened.volumes[0].volume);
}

TEST_F(Dicom_Folder, shows_a_copy_of_an_image_once) {
    Write("1.dcm", Slice(1, 1).Text(TAG_INSTANCE, "UI", "1.7").File());
    Write("2.dcm", Slice(1, 1).Text(TAG_INSTANCE, "UI", "1.7").File());
    Write("3.dcm", Slice(2, 2).Text(TAG_INSTANCE, "UI", "1.7").File());
    const Image_Folder opened = Open();
    ASSERT_THAT(opened.volumes, SizeIs(1));
    EXPECT_THAT(opened.volumes[0].file_of_slice, ElementsAre(0, 2));
    EXPECT_THAT(Problems(opened), ElementsAre("2.dcm: holds the same image as 1.dcm"));
}

TEST_F(Dicom_Folder, names_the_slice_after_a_gap) {
    Write("1.dcm", Slice(1, 1).File());
    Write("2.dcm", Slice(2, 2).File());
    Write("3.dcm", Slice(4, 3).File());
    EXPECT_THAT(Problems(Open()), ElementsAre(HasSubstr("uneven distance")));
}

TEST_F(Dicom_Folder, brings_slices_of_several_scales_to_the_finest) {
    Write("1.dcm", Slice(1, 10).Text(TAG_SLOPE, "DS", "1").File());
    Write("2.dcm", Slice(2, 10).Text(TAG_SLOPE, "DS", "0.5").Text(TAG_INTERCEPT, "DS", "1").File());
    const Image_Folder opened = Open();
    ASSERT_THAT(opened.volumes, SizeIs(1));
    const Volume& volume = opened.volumes[0].volume;
    EXPECT_EQ(volume.slope, 0.5);
    EXPECT_EQ(volume.grey(volume.levels[0]), 10);
    EXPECT_EQ(volume.grey(volume.levels[2]), 6);
    Expect_Sound(volume);
}

TEST_F(Dicom_Folder, lists_what_it_cannot_open_and_goes_on) {
    Write("1 text.txt", Bytes(300, 'x'));
    Write("2 empty", {});
    Bytes cut = Dicom_Bytes().File();
    cut.resize(cut.size() - 3);
    Write("3 cut.dcm", cut);
    Write("4 jpeg.dcm", Dicom_Bytes().Syntax("1.2.840.10008.1.2.4.50").Fragments({{1, 2}}).File());
    Write("5 report.dcm", Dicom_Bytes().Remove(TAG_PIXELS).File());
    Write("6 broken.nii", Bytes(20, 1));
    Write("7 good.dcm", Dicom_Bytes().File());
    const Image_Folder opened = Open();
    ASSERT_THAT(opened.volumes, SizeIs(1));
    EXPECT_THAT(
        Problems(opened),
        ElementsAre("1 text.txt: is no DICOM file", "2 empty: is empty", HasSubstr("3 cut.dcm: is broken or cut"),
                    HasSubstr("4 jpeg.dcm: has pixels that cannot be decoded (frame 1: its beginning is damaged or of "
                              "a form that is not read)"),
                    HasSubstr("5 report.dcm: holds no image"), HasSubstr("6 broken.nii: is ")));
    EXPECT_EQ(Image_Folder_Text(opened), "1 volume of 1 file; 6 files were not opened");
    const std::string text = Image_Folder_Problems_Text(opened, folder.path);
    EXPECT_EQ(std::ranges::count(text, '\n'), 6);
    EXPECT_THAT(text, testing::StartsWith("1 text.txt: is no DICOM file\n2 empty: is empty\n"));
}

TEST_F(Dicom_Folder, is_given_up_inside_a_file_of_many_frames) {
    const Coded_Sample& sample = Coded_Sample_Of("JPEG 2000 16");
    Write("1.dcm", Coded_File(sample, std::vector<Bytes>(40, sample.stream), 40).File());
    std::vector<double> told;
    const auto open = [&](double last) {
        told.clear();
        return Image_Folder_Open(std::span(&folder.path, 1), [&](double done) {
            told.push_back(done);
            return done < last;
        });
    };
    const Image_Folder given_up = open(0.01);
    EXPECT_TRUE(given_up.is_cancelled);
    EXPECT_THAT(given_up.volumes, IsEmpty());
    EXPECT_THAT(given_up.problems, IsEmpty());
    EXPECT_LE(told.back(), 1.0);
    const Image_Folder whole = open(2.0);
    EXPECT_FALSE(whole.is_cancelled);
    EXPECT_THAT(whole.volumes, SizeIs(1));
    EXPECT_TRUE(std::ranges::is_sorted(told));
}

TEST_F(Dicom_Folder, opens_nifti_volumes_beside_dicom_and_each_of_their_times) {
    Write("b.dcm", Dicom_Bytes().File());
    Nifti_Bytes nifti;
    nifti.dim = {4, 2, 1, 2, 2, 1, 1, 1};
    for (int value = 1; value <= 8; ++value) {
        nifti.Add(static_cast<std::uint8_t>(value));
    }
    Write("a.nii", nifti.File());
    const Image_Folder opened = Open();
    EXPECT_THAT(Problems(opened), IsEmpty());
    ASSERT_THAT(opened.volumes, SizeIs(3));
    EXPECT_EQ(opened.volumes[0].title, "MR 7");
    EXPECT_EQ(opened.volumes[1].title, "a.nii, time 1 of 2");
    EXPECT_THAT(opened.volumes[2].volume.levels, ElementsAre(5, 6, 7, 8));
    EXPECT_EQ(opened.volumes[2].volume.nt, 1);
    EXPECT_EQ(opened.volumes[2].volume.level_min, 5);
    EXPECT_THAT(opened.volumes[1].file_of_slice, ElementsAre(0, 0));
}

TEST_F(Dicom_Folder, goes_into_folders_and_keeps_the_files_of_each_together) {
    Write("b/2.dcm", Slice(1, 1).File());
    Write("z.dcm", Slice(2, 1).File());
    Write("b/c/3.dcm", Slice(3, 1).File());
    Write("a.dcm", Slice(4, 1).File());
    const Image_Folder opened = Open();
    std::vector<std::string> names;
    for (const auto& file : opened.files) {
        names.push_back(file.filename().string());
    }
    EXPECT_THAT(names, ElementsAre("a.dcm", "z.dcm", "2.dcm", "3.dcm"));
    EXPECT_THAT(opened.volumes, SizeIs(1));
}

TEST_F(Dicom_Folder, does_not_take_for_an_image_what_a_killed_save_left) {
    Write("a.dcm", Slice(10, 1).File());
    Write(Unfinished_Name("a.dcm", 7).string(), Slice(12, 2).File());
    const Image_Folder opened = Open();
    EXPECT_THAT(Problems(opened), IsEmpty());
    ASSERT_THAT(opened.volumes, SizeIs(1));
    EXPECT_EQ(opened.volumes[0].volume.nz, 1);
}

TEST_F(Dicom_Folder, opens_several_named_files_whatever_their_names) {
    Write("picture", Dicom_Bytes().File());
    Write("volume.bin", Small_File().File());
    Write("left.dcm", Dicom_Bytes().File());
    const std::filesystem::path paths[] = {folder / "picture", folder / "volume.bin", folder / "missing.nii"};
    const Image_Folder opened = Image_Folder_Open(paths);
    EXPECT_THAT(opened.volumes, SizeIs(2));
    EXPECT_THAT(opened.files, SizeIs(2));
    EXPECT_THAT(Problems(opened), ElementsAre(HasSubstr("missing.nii: does not exist")));
}

TEST_F(Dicom_Folder, leaves_out_volumes_that_do_not_fit_beside_the_others) {
    const std::vector<std::uint8_t> pixels(1600, 7);
    Write("1.dcm", Dicom_Bytes().Pixels_8(pixels, 40, 40).Text(TAG_SERIES, "UI", "1").File());
    Write("2.dcm", Dicom_Bytes().Pixels_8(pixels, 40, 40).Text(TAG_SERIES, "UI", "2").File());
    const Image_Folder one = Open(Load_Limits{6000});  // levels of two bytes
    EXPECT_THAT(one.volumes, SizeIs(1));
    EXPECT_THAT(Problems(one), ElementsAre(HasSubstr("2.dcm: does not fit beside the other images")));
    EXPECT_THAT(Open(Load_Limits{6400}).volumes, SizeIs(2));
}

TEST_F(Dicom_Folder, a_tally_is_that_of_the_volume_beside_it) {
    Nifti_Bytes bytes = Small_File();
    bytes.datatype = 4;
    bytes.bitpix = 16;
    bytes.voxels.assign(std::size_t{2} * 1200 * 1000, 1);
    bytes.dim = {4, 120, 100, 50, 2, 1, 1, 1};
    Write("times.nii", bytes.File());
    bytes.dim = {3, 120, 100, 100, 1, 1, 1, 1};
    Write("whole.nii", bytes.File());
    const Image_Folder opened = Open();
    ASSERT_THAT(opened.volumes, SizeIs(3));
    EXPECT_FALSE(opened.volumes[0].tally) << "it would be that of both times";
    EXPECT_FALSE(opened.volumes[1].tally);
    ASSERT_TRUE(opened.volumes[2].tally);
    EXPECT_THAT(opened.volumes[2].tally->times, ElementsAre(1'200'000));
}

TEST_F(Dicom_Folder, files_read_side_by_side_share_one_limit_as_if_they_were_read_one_after_the_other) {
    constexpr int file_nb = 40;
    for (int at = 0; at < file_nb; ++at) {
        const std::int32_t side = at % 2 == 0 ? 40 : 20;  // what does not fit in place of a large one may be small
        const std::vector<std::uint8_t> pixels(static_cast<std::size_t>(side * side), 7);
        const std::string number = std::to_string(100 + at);
        Write(number + ".dcm", Dicom_Bytes().Pixels_8(pixels, side, side).Text(TAG_SERIES, "UI", number).File());
    }
    const Load_Limits limits{18500};
    for (int round = 0; round < 10; ++round) {
        const Image_Folder opened = Open(limits);
        std::vector<std::string> names;
        for (const std::filesystem::path& file : opened.files) {
            names.push_back(file.filename().string());
        }
        // Four of 3,200 bytes and of 800 each; then only small ones find room.
        EXPECT_THAT(names, ElementsAre("100.dcm", "101.dcm", "102.dcm", "103.dcm", "104.dcm", "105.dcm", "106.dcm",
                                       "107.dcm", "109.dcm", "111.dcm", "113.dcm"));
        EXPECT_THAT(opened.problems, SizeIs(file_nb - 11));
    }
}

TEST_F(Dicom_Folder, what_is_packed_inside_a_small_file_counts_as_well) {
    const std::vector<std::uint8_t> pixels(1600, 7);
    Write("1.dcm", Gzip(Dicom_Bytes().Pixels_8(pixels, 40, 40).Text(TAG_SERIES, "UI", "1").File()));
    Write("2.dcm", Dicom_Bytes().Pixels_8(pixels, 40, 40).Text(TAG_SERIES, "UI", "2").File());
    Write("3.dcm", Dicom_Bytes().Pixels_8(pixels, 40, 40).Text(TAG_SERIES, "UI", "3").File());
    const Image_Folder opened = Open(Load_Limits{6400});
    EXPECT_THAT(opened.files, ElementsAre(folder / "1.dcm", folder / "2.dcm"));
    EXPECT_THAT(Problems(opened), ElementsAre(HasSubstr("3.dcm: does not fit beside the other images")));
}

TEST_F(Dicom_Folder, a_volume_under_another_name_has_its_room_before_the_files_behind_it) {
    Nifti_Bytes volume = Small_File();
    volume.datatype = 2;
    volume.bitpix = 8;
    volume.voxels.assign(1600, 7);
    volume.dim = {3, 40, 40, 1, 1, 1, 1, 1};
    Write("1", volume.File());
    const std::vector<std::uint8_t> pixels(1600, 7);
    Write("2.dcm", Dicom_Bytes().Pixels_8(pixels, 40, 40).Text(TAG_SERIES, "UI", "1").File());
    Write("3.dcm", Dicom_Bytes().Pixels_8(pixels, 40, 40).Text(TAG_SERIES, "UI", "2").File());
    const Image_Folder opened = Open(Load_Limits{6400});
    EXPECT_THAT(opened.files, ElementsAre(folder / "1", folder / "2.dcm"));
    EXPECT_THAT(Problems(opened), ElementsAre(HasSubstr("3.dcm: does not fit beside the other images")));
}

TEST_F(Dicom_Folder, leaves_out_volumes_with_more_slices_than_can_be_listed) {
    const auto cine = [](std::size_t moments, const char* series) {
        Dicom_Bytes bytes;
        bytes.Pixels_8(std::vector<std::uint8_t>(moments, 5), 1, 1).Text(TAG_FRAME_TIME, "DS", "40");
        bytes.Text(TAG_FRAMES, "IS", std::to_string(moments)).Text(TAG_SERIES, "UI", series).Remove(TAG_INSTANCE);
        return bytes.File();
    };
    Write("1.dcm", cine(FOLDER_SLICES_MOST - 1, "1"));
    Write("2.dcm", cine(2, "2"));
    const Image_Folder opened = Open();
    ASSERT_THAT(opened.volumes, SizeIs(1));
    EXPECT_EQ(opened.volumes[0].volume.nz, static_cast<std::int32_t>(FOLDER_SLICES_MOST) - 1);
    EXPECT_THAT(Problems(opened), ElementsAre(HasSubstr("2.dcm: was left out (MR 7)")));
}

TEST_F(Dicom_Folder, stops_when_progress_says_so) {
    constexpr std::size_t file_nb = 70;
    for (std::size_t at = 10; at < 10 + file_nb; ++at) {
        Write(std::to_string(at) + ".dcm", Dicom_Bytes().Text(TAG_SERIES, "UI", std::to_string(at)).File());
    }
    const std::filesystem::path path = folder.path;
    const Image_Folder opened = Image_Folder_Open(std::span(&path, 1), [](double done) { return done <= 0.95; });
    EXPECT_TRUE(opened.is_cancelled);
    EXPECT_THAT(opened.files, SizeIs(testing::AllOf(testing::Ge(1U), testing::Lt(file_nb))));
}

TEST_F(Dicom_Folder, reads_many_small_files_as_it_reads_them_one_by_one) {
    // Kinds of files in turn: images, a copy of one, damaged ones, others. Whatever reads them, the outcome is in
    // order.
    const Bytes image = Dicom_Bytes().File();
    for (int at = 100; at < 230; ++at) {
        const std::string name = std::to_string(at);
        switch (at % 5) {
            case 0:
                Write(name + ".dcm", Dicom_Bytes().Text(TAG_SERIES, "UI", name).Text(TAG_INSTANCE, "UI", name).File());
                break;
            case 1:
                Write(name + ".dcm", image);
                break;
            case 2:
                Write(name + ".dcm", Bytes(image.begin(), image.end() - 3));
                break;
            case 3:
                Write(name + ".txt", {'n', 'o', 'n', 'e'});
                break;
            default:
                Write(name + ".dcm", {});
        }
    }
    const Image_Folder opened = Open();
    EXPECT_FALSE(opened.is_cancelled);
    EXPECT_EQ(opened.volumes.size(), 27U);  // the copies are one
    EXPECT_EQ(opened.files.size(), 52U);
    EXPECT_TRUE(std::ranges::is_sorted(opened.files));
    EXPECT_EQ(std::ranges::count(opened.problems, false, &Folder_Problem::is_opened), 78);
    EXPECT_EQ(std::ranges::count(opened.problems, true, &Folder_Problem::is_opened), 25);
    EXPECT_TRUE(std::ranges::is_sorted(opened.problems, {}, &Folder_Problem::path));
    for (const Folder_Volume& one : opened.volumes) {
        EXPECT_EQ(opened.files[static_cast<std::size_t>(one.file_of_slice.front())], one.path);
    }
}

TEST_F(Dicom_Folder, may_be_given_up_by_another_thread_at_any_moment) {
    constexpr int side = 64;
    constexpr int file_nb = 90;
    for (int at = 0; at < file_nb; ++at) {
        Dicom_Bytes bytes;
        bytes.Pixels_8(std::vector<std::uint8_t>(side * side, static_cast<std::uint8_t>(at)), side, side);
        bytes.Place(0, 0, at).Text(TAG_INSTANCE_NUMBER, "IS", std::to_string(at + 1)).Remove(TAG_INSTANCE);
        Write(std::to_string(100 + at) + ".dcm", bytes.File());
    }
    const std::filesystem::path path = folder.path;
    int cancelled_nb = 0;
    constexpr int turns = 20;
    for (int turn = 0; turn < turns; ++turn) {
        std::atomic<bool> is_given_up = turn == 0;
        std::atomic<double> share = 0.0;
        Image_Folder opened;
        Volume_Statistics statistics;
        std::thread reader([&] {
            opened = Image_Folder_Open(std::span(&path, 1), [&](double done) {
                EXPECT_GE(done, share);
                share = done;
                return !is_given_up;
            });
            if (!opened.volumes.empty()) {
                statistics = Volume_Statistics_Compute(opened.volumes.front().volume);
            }
        });
        while (turn < turns - 1 && share * turns < turn) {  // the last turn reads to the end
            std::this_thread::yield();
        }
        is_given_up = is_given_up || turn < turns - 1;
        reader.join();
        cancelled_nb += opened.is_cancelled ? 1 : 0;
        EXPECT_THAT(Problems(opened), IsEmpty());
        if (!opened.is_cancelled) {
            ASSERT_THAT(opened.volumes, SizeIs(1));
            EXPECT_EQ(opened.volumes[0].volume.nz, file_nb);
            EXPECT_EQ(statistics.max, file_nb - 1);
        }
    }
    EXPECT_GE(cancelled_nb, 1);
    EXPECT_LT(cancelled_nb, turns);
}

TEST_F(Dicom_Folder, gives_a_reason_for_a_folder_that_is_not_there) {
    const std::filesystem::path path = folder / "nothing";
    const Image_Folder opened = Image_Folder_Open(std::span(&path, 1));
    EXPECT_THAT(Problems(opened), ElementsAre("nothing: does not exist"));
    EXPECT_EQ(Image_Folder_Text(opened), "0 volumes of 0 files; 1 file was not opened");
}

}  // namespace
