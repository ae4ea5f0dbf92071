#include "workbench/model/session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <new>
#include <numeric>
#include <random>

#include "tests/workbench/volumes/failing_allocation.h"
#include "workbench/model/label_description_file.h"
#include "workbench/volumes/nifti_reader.h"

using namespace volumes;
using namespace workbench;

namespace {

constexpr int NX = 12;
constexpr int NY = 9;
constexpr int NZ = 5;

Volume Image(double x_direction = 1.0) {
    Volume volume;
    volume.nx = NX;
    volume.ny = NY;
    volume.nz = NZ;
    volume.nt = 1;
    volume.affine[0][0] = x_direction;
    volume.affine[0][3] = x_direction < 0.0 ? NX - 1 : 0;  // the same place, stored the other way round
    volume.affine[1][1] = 1.0;
    volume.affine[2][2] = 2.0;
    volume.spacing = {1.0, 1.0, 2.0};
    volume.scalar_type = "int16";
    std::vector<std::int32_t> levels(NX * NY * NZ);
    std::iota(levels.begin(), levels.end(), 0);
    volume.levels = std::move(levels);
    volume.level_max = NX * NY * NZ - 1;
    return volume;
}

Volume Labels_Of(std::vector<std::int32_t> levels, double x_direction = 1.0) {
    Volume volume = Image(x_direction);
    volume.levels = std::move(levels);
    return volume;
}

Brush_Footprint Dot() {
    static const unsigned char byte = 1;
    static const unsigned char* const row = &byte;
    return {&row, 0};
}

Paint_Ink Ink(int tag) {
    Paint_Ink ink;
    ink.tag = static_cast<std::uint8_t>(tag);
    return ink;
}

class Session_Test : public ::testing::Test {
  protected:
    void SetUp() override { session.Take(Image(), "image.nii"); }
    void Paint(int slice, int x0, int x1, int y, int tag) {
        session.Stroke_Begin(slice, Dot(), x0, y, Ink(tag));
        session.Stroke_Move(x1, y);
        session.Stroke_End();
    }
    Session session;
    std::string kept;
};

/** Voxels of several slices that get a TAG, none to the same. */
Voxel_Change Change_Of_Slices(const Session& of, std::span<const int> slices, std::uint32_t seed) {
    std::mt19937 random(seed);
    Voxel_Change change;
    for (const int slice : slices) {
        const std::span<const std::uint8_t> now = of.Labels().Slice(slice);
        std::vector<std::uint8_t> after(now.begin(), now.end());
        for (std::uint8_t& tag : after) {
            tag = static_cast<std::uint8_t>(tag + random() % 3);
        }
        after.front() = static_cast<std::uint8_t>(now.front() + 1);
        change.slices.push_back(*Slice_Difference(slice, now, after));
    }
    return change;
}

std::vector<std::uint8_t> Tags_Of(const Session& of) {
    return {of.Labels().All().begin(), of.Labels().All().end()};
}

TEST_F(Session_Test, voxels_of_many_slices_change_in_one_step_and_come_back_in_one) {
    Paint(1, 2, 6, 3, 9);
    const std::vector<std::uint8_t> before = Tags_Of(session);
    const std::uint64_t known = session.Change_Nb();
    const int slices[] = {0, 1, 4};
    session.Voxels_Change("Apply bands", Change_Of_Slices(session, slices, 5));
    const std::vector<std::uint8_t> after = Tags_Of(session);
    EXPECT_NE(before, after);
    EXPECT_EQ(session.Journal().List().back(), "2  Apply bands, slices 1 to 5");
    for (int slice = 0; slice < NZ; ++slice) {
        EXPECT_EQ(session.Slice_Change_Nb(slice) > known, std::ranges::find(slices, slice) != std::end(slices))
            << slice;
    }
    const std::uint64_t changed = session.Change_Nb();
    EXPECT_EQ(session.Undo()->title, "Apply bands");
    EXPECT_EQ(Tags_Of(session), before);
    EXPECT_GT(session.Slice_Change_Nb(4), changed);
    EXPECT_EQ(session.Redo()->title, "Apply bands");
    EXPECT_EQ(Tags_Of(session), after);
    session.Voxels_Change("Nothing", {});
    EXPECT_EQ(session.Journal().Undo_Nb(), 2U);
}

TEST_F(Session_Test, a_stroke_that_is_being_made_ends_before_voxels_change) {
    session.Stroke_Begin(2, Dot(), 3, 3, Ink(4));
    const int slices[] = {2};
    session.Voxels_Change("Fill", Change_Of_Slices(session, slices, 6));
    EXPECT_FALSE(session.Is_Stroking());
    EXPECT_EQ(session.Undo()->title, "Fill");
    EXPECT_EQ(session.Undo()->title, "Stroke");
    EXPECT_EQ(Tags_Of(session), std::vector<std::uint8_t>(std::size_t{NX} * NY * NZ));
}

TEST_F(Session_Test, a_change_of_many_slices_that_finds_no_memory_changes_none) {
    const int slices[] = {0, 1, 2, 3, 4};
    int failures = 0;
    for (bool is_done = false; !is_done; ++failures) {
        SetUp();
        Paint(1, 2, 6, 3, 9);
        const std::vector<std::uint8_t> before = Tags_Of(session);
        Voxel_Change change = Change_Of_Slices(session, slices, 7);
        try {
            const Failing_Allocation failure(failures);
            session.Voxels_Change("A title that is too long to need no memory of its own", std::move(change));
            is_done = !failure.Happened();
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(Tags_Of(session), before) << failures;
            EXPECT_EQ(session.Journal().Undo_Nb(), 1U) << failures;
            EXPECT_TRUE(session.Is_Unsaved());
        }
    }
    EXPECT_GT(failures, NZ);  // a slice each, and the step
    const std::vector<std::uint8_t> after = Tags_Of(session);
    failures = 0;
    for (bool is_done = false; !is_done; ++failures) {
        try {
            const Failing_Allocation failure(failures);
            session.Undo();
            is_done = true;
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(Tags_Of(session), after) << failures;
            EXPECT_EQ(session.Journal().Undo_Nb(), 2U) << failures;
        }
    }
    EXPECT_GE(failures, NZ);
    EXPECT_EQ(session.Journal().Undo_Nb(), 1U);
}

TEST_F(Session_Test, shows_the_image_turned_and_names_voxels_of_the_file) {
    EXPECT_EQ(session.Levels(0)[0], (NY - 1) * NX + NX - 1);  // upper left: last column and row of the file
    const File_Voxel voxel = session.To_File(0, 0, 3);
    EXPECT_EQ(voxel.x, NX - 1);
    EXPECT_EQ(voxel.y, NY - 1);
    EXPECT_EQ(voxel.z, 3);
    EXPECT_FLOAT_EQ(session.Grey(0, 0, 3), static_cast<float>((3 * NY + voxel.y) * NX + voxel.x));
    EXPECT_FLOAT_EQ(session.Grey(-1, 0, 0), 0.0F);
    EXPECT_TRUE(session.Levels(NZ).empty());
}

TEST_F(Session_Test, a_stroke_is_one_step_that_undo_takes_back) {
    Paint(2, 3, 8, 4, 7);
    EXPECT_EQ(session.Labels().Counts()[7], 6U);
    EXPECT_EQ(session.Journal().Undo_Nb(), 1U);
    EXPECT_TRUE(session.Is_Unsaved());
    ASSERT_NE(session.Undo(), nullptr);
    EXPECT_EQ(session.Labels().Counts()[7], 0U);
    EXPECT_FALSE(session.Is_Unsaved());
    ASSERT_NE(session.Redo(), nullptr);
    EXPECT_EQ(session.Labels().At(3, 4, 2), 7);
}

TEST_F(Session_Test, a_stroke_without_memory_for_its_step_is_unsaved_work_all_the_same) {
    bool happened = true;
    for (int failing = 0; happened; ++failing) {
        SetUp();
        session.Stroke_Begin(2, Dot(), 3, 4, Ink(7));
        bool is_whole = false;
        {
            const Failing_Allocation failure(failing);
            try {
                is_whole = session.Stroke_End();
            } catch (const std::bad_alloc&) {
                is_whole = false;
            }
            happened = failure.Happened();
        }
        EXPECT_NE(is_whole, happened) << failing;
        EXPECT_EQ(session.Labels().At(3, 4, 2), 7) << failing;
        EXPECT_TRUE(session.Is_Unsaved()) << failing;
        EXPECT_EQ(session.Journal().Undo_Nb(), is_whole ? 1U : 0U) << failing;
        EXPECT_EQ(session.Undo() != nullptr, is_whole) << failing;
        EXPECT_EQ(session.Is_Unsaved(), !is_whole) << failing;
    }
}

TEST_F(Session_Test, a_stroke_that_changes_nothing_is_no_step) {
    Paint(2, 3, 8, 4, 0);
    EXPECT_EQ(session.Journal().Undo_Nb(), 0U);
    session.Stroke_Begin(99, Dot(), 3, 3, Ink(1));
    EXPECT_FALSE(session.Is_Stroking());
    EXPECT_FALSE(session.Stroke_End());
}

TEST_F(Session_Test, undo_during_a_stroke_ends_it_first) {
    session.Stroke_Begin(1, Dot(), 3, 3, Ink(1));
    session.Undo();
    EXPECT_FALSE(session.Is_Stroking());
    EXPECT_EQ(session.Labels().Counts()[1], 0U);
}

TEST_F(Session_Test, propagation_is_one_step_and_refuses_slices_outside) {
    Paint(1, 2, 9, 4, 3);
    Propagation_Tags tags;
    tags.carried.fill(1);
    EXPECT_EQ(session.Propagate(Propagation_Kind::Copy, 1, 2, tags), 8U);
    EXPECT_EQ(session.Labels().Counts()[3], 16U);
    EXPECT_EQ(session.Propagate(Propagation_Kind::Copy, 1, NZ, tags), 0U);
    EXPECT_EQ(session.Propagate(Propagation_Kind::Copy, -1, 1, tags), 0U);
    EXPECT_EQ(session.Propagate(Propagation_Kind::Grow, 1, 1, tags), 0U);
    session.Undo();
    EXPECT_EQ(session.Labels().Counts()[3], 8U);
}

TEST_F(Session_Test, markers_can_be_placed_moved_removed_and_all_of_it_undone) {
    session.Marker_Set(2, {true, 1, 2, 3});
    session.Marker_Set(2, {true, 4, 5, 3});
    session.Marker_Set(2, {true, 4, 5, 3});  // no change, no step
    session.Marker_Set(2, {});
    EXPECT_EQ(session.Journal().Undo_Nb(), 3U);
    session.Undo();
    EXPECT_EQ(session.Markers().Get(2), (Marker{true, 4, 5, 3}));
    session.Undo();
    EXPECT_EQ(session.Markers().Get(2), (Marker{true, 1, 2, 3}));
    session.Undo();
    EXPECT_FALSE(session.Markers().Get(2).is_placed);
    session.Redo();
    EXPECT_TRUE(session.Markers().Get(2).is_placed);
}

TEST_F(Session_Test, names_that_a_panel_wrote_become_steps_with_both_texts) {
    const char* names[] = {"a", nullptr, "c"};
    session.Adopt_Labels(Text_Table::Tag_Labels, names);
    EXPECT_EQ(session.Note_Labels(Text_Table::Tag_Labels, names), 0);
    names[1] = "new";
    names[2] = "other";
    EXPECT_EQ(session.Note_Labels(Text_Table::Tag_Labels, names), 2);
    const Undo_Step* step = session.Undo();
    ASSERT_NE(step, nullptr);
    const auto* text = std::get_if<Text_Change>(&step->change);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->index, 2);
    EXPECT_EQ(text->before, "c");
    EXPECT_EQ(text->after, "other");
    names[2] = "c";  // what the application writes back is known already
    EXPECT_EQ(session.Note_Labels(Text_Table::Tag_Labels, names), 0);
    session.Undo();
    EXPECT_EQ(session.Journal().Undo_Nb(), 0U);
}

TEST_F(Session_Test, thresholds_that_a_panel_wrote_become_steps) {
    float low[] = {-100000.0F, -100000.0F, -100000.0F};
    float high[] = {100000.0F, 100000.0F, 100000.0F};
    session.Adopt_Thresholds(low, high);
    low[1] = 40.0F;
    EXPECT_EQ(session.Note_Thresholds(low, high), 1);
    EXPECT_EQ(session.Note_Thresholds(low, high), 0);
    session.Undo();
    low[1] = -100000.0F;
    EXPECT_EQ(session.Note_Thresholds(low, high), 0);
    low[1] = 10.0F;
    high[2] = 20.0F;  // several at once are one step
    EXPECT_EQ(session.Note_Thresholds(low, high), 1);
    EXPECT_EQ(session.Journal().Undo_Nb(), 1U);
    const Undo_Step* step = session.Undo();
    ASSERT_NE(step, nullptr);
    const auto* change = std::get_if<Threshold_Change>(&step->change);
    ASSERT_NE(change, nullptr);
    ASSERT_EQ(change->entries.size(), 2U);
    EXPECT_EQ(change->entries[1].after, (Tag_Band{-100000.0F, 20.0F}));
}

TEST_F(Session_Test, labels_of_another_size_kind_or_place_are_refused_with_a_reason) {
    Paint(1, 2, 9, 4, 3);
    Volume smaller = Labels_Of(std::vector<std::int32_t>(NX * NY * (NZ - 1)));
    smaller.nz = NZ - 1;
    EXPECT_NE(session.Take_Labels(smaller, "x.nii").find("12 x 9 x 4"), std::string::npos);
    Volume fraction = Labels_Of(std::vector<std::int32_t>(NX * NY * NZ, 1));
    fraction.slope = 0.5;
    EXPECT_NE(session.Take_Labels(fraction, "x.nii").find("no TAG numbers"), std::string::npos);
    EXPECT_FALSE(session.Take_Labels(Labels_Of(std::vector<std::int32_t>(NX * NY * NZ, 256)), "x.nii").empty());
    EXPECT_FALSE(session.Take_Labels(Labels_Of(std::vector<std::int32_t>(NX * NY * NZ, -1)), "x.nii").empty());
    Volume color = Labels_Of(std::vector<std::int32_t>(NX * NY * NZ, 1));
    color.color = true;
    EXPECT_FALSE(session.Take_Labels(color, "x.nii").empty());
    EXPECT_EQ(session.Labels().Counts()[3], 8U) << "a refused file must change nothing";
    EXPECT_FALSE(Session().Take_Labels(Image(), "x.nii").empty());
}

TEST_F(Session_Test, labels_stored_in_the_other_direction_come_to_lie_on_the_same_place) {
    std::vector<std::int32_t> levels(NX * NY * NZ);
    levels[0] = 9;
    ASSERT_EQ(session.Take_Labels(Labels_Of(levels), "a.nii"), "");
    EXPECT_EQ(session.Labels().At(NX - 1, NY - 1, 0), 9);
    ASSERT_EQ(session.Take_Labels(Labels_Of(levels, -1.0), "b.nii"), "");
    EXPECT_EQ(session.Labels().At(0, NY - 1, 0), 9);
}

TEST_F(Session_Test, labels_that_lie_elsewhere_are_laid_on_only_as_the_user_chose) {
    std::vector<std::int32_t> levels(NX * NY * NZ);
    levels[NX * NY] = 9;  // first voxel of the second slice
    Volume moved = Labels_Of(levels);
    moved.affine[2][3] = 4.0;  // two slices
    Paint(1, 2, 9, 4, 3);
    EXPECT_NE(session.Take_Labels(moved, "x.nii").find("lies elsewhere"), std::string::npos);
    EXPECT_EQ(session.Labels().Counts()[3], 8U) << "a refused file must change nothing";
    EXPECT_EQ(session.Labels_Compare(moved).relation, Grid_Relation::Other);

    const std::filesystem::path path = "x.nii";
    ASSERT_EQ(session.Take_Labels({moved, path}, Grid_Choice::Resample), "");
    EXPECT_EQ(session.Labels().At(NX - 1, NY - 1, 3), 9);
    EXPECT_EQ(session.Labels().Counts()[9], 1U);
    EXPECT_EQ(session.Label_Path(), "") << "saving must not replace a file of another geometry unasked";
    EXPECT_TRUE(session.Is_Unsaved()) << "no file holds the labels as they lie now";
    ASSERT_EQ(session.Take_Labels({moved, path}, Grid_Choice::By_Index), "");
    EXPECT_EQ(session.Labels().At(NX - 1, NY - 1, 1), 9);

    Volume smaller = moved;
    smaller.nz = NZ - 1;
    EXPECT_FALSE(session.Take_Labels({smaller, path}, Grid_Choice::By_Index).empty());
    ASSERT_EQ(session.Take_Labels({smaller, path}, Grid_Choice::Resample), "");
    EXPECT_EQ(session.Labels().At(NX - 1, NY - 1, 3), 9);
}

TEST_F(Session_Test, saved_labels_come_back_the_same_and_count_as_saved) {
    Paint(1, 2, 9, 4, 3);
    Paint(4, 0, 0, 0, 200);
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "workbench_session_test_labels.nii.gz";
    ASSERT_EQ(session.Save_Labels(path, {}, kept), "");
    EXPECT_FALSE(session.Is_Unsaved());
    EXPECT_EQ(session.Label_Path(), path);
    const std::vector<std::uint8_t> saved(session.Labels().All().begin(), session.Labels().All().end());
    const Load_Result loaded = Volume_Load(path);
    ASSERT_TRUE(loaded.volume.has_value()) << loaded.error;
    // The file is in the order of the image's file: what stands at the upper left is its last column and row.
    EXPECT_EQ(loaded.volume->levels[loaded.volume->Index(NX - 1, NY - 1, 4)], 200);
    Paint(2, 0, NX - 1, 5, 8);
    ASSERT_EQ(session.Take_Labels(*loaded.volume, path), "");
    EXPECT_TRUE(std::ranges::equal(session.Labels().All(), saved));
    EXPECT_FALSE(session.Is_Unsaved());
    std::filesystem::remove(path);
    std::filesystem::remove(Label_Description_Path(path));
}

TEST_F(Session_Test, a_file_that_cannot_be_written_leaves_the_work_unsaved) {
    Paint(1, 2, 9, 4, 3);
    EXPECT_FALSE(session.Save_Labels("no_such_folder_anywhere/x.nii", {}, kept).empty());
    EXPECT_TRUE(session.Is_Unsaved());
    EXPECT_FALSE(Session().Save_Labels("x.nii", {}, kept).empty());
}

/** A label file of the test's own, gone with what stands beside it. */
class Session_Files : public Session_Test {
  protected:
    void SetUp() override {
        Session_Test::SetUp();
        folder = std::filesystem::temp_directory_path() / ("session_test_" + std::to_string(std::random_device{}()));
        std::filesystem::create_directories(folder);
        labels = folder / "head.nii.gz";
        described.tags = {{3, 0x010203, true, true, false, {}, 9.0F, "Three"}};
        described.markers = {{0, 0x040506, {}, "M1"}, {5, 0x040506, Label_Voxel{1, 1, 1}, "M6"}};
    }
    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    Label_Description_Loading Load_Description() const { return Label_Description_Load(labels, {NZ, NX, NY}); }

    std::filesystem::path folder;
    std::filesystem::path labels;
    Label_Description described;
};

TEST_F(Session_Files, markers_are_saved_without_a_single_painted_voxel_and_come_back) {
    session.Marker_Set(0, {true, 2, 3, 4});
    EXPECT_TRUE(session.Is_Unsaved());
    ASSERT_EQ(session.Save_Labels(labels, described, kept), "");
    EXPECT_FALSE(session.Is_Unsaved());
    const Label_Description_Loading loading = Load_Description();
    ASSERT_TRUE(loading.is_there) << loading.warning;
    EXPECT_EQ(loading.description.tags, described.tags);
    // The upper left of the display is the last column and row of the file.
    EXPECT_EQ(loading.description.markers.at(0).place, (Label_Voxel{4, NX - 1 - 2, NY - 1 - 3}));
    EXPECT_EQ(loading.description.markers.at(1).place, std::nullopt) << "it is not placed now";

    Session other;
    other.Take(Image(), "image.nii");
    other.Marker_Set(5, {true, 1, 1, 1});
    other.Marker_Set(7, {true, 6, 6, 1});
    const Load_Result loaded = Volume_Load(labels);
    ASSERT_TRUE(loaded.volume.has_value()) << loaded.error;
    ASSERT_EQ(other.Take_Labels(*loaded.volume, labels, &loading.description), "");
    EXPECT_EQ(other.Markers().Get(0), (Marker{true, 2, 3, 4}));
    EXPECT_FALSE(other.Markers().Get(5).is_placed) << "described as not placed";
    EXPECT_TRUE(other.Markers().Get(7).is_placed) << "not described";
    EXPECT_FALSE(other.Is_Unsaved());
    EXPECT_EQ(other.Undo(), nullptr);
}

TEST_F(Session_Files, markers_of_a_file_in_the_other_direction_come_to_lie_on_the_same_place) {
    described.markers[0].place = Label_Voxel{2, 0, 0};
    ASSERT_EQ(session.Take_Labels(Labels_Of(std::vector<std::int32_t>(NX * NY * NZ), -1.0), labels, &described), "");
    EXPECT_EQ(session.Markers().Get(0), (Marker{true, 0, NY - 1, 2}));
    ASSERT_EQ(session.Take_Labels(Labels_Of(std::vector<std::int32_t>(NX * NY * NZ)), labels, &described), "");
    EXPECT_EQ(session.Markers().Get(0), (Marker{true, NX - 1, NY - 1, 2}));
}

TEST_F(Session_Files, labels_that_are_refused_leave_the_markers) {
    session.Marker_Set(0, {true, 2, 3, 4});
    const Volume wrong = Labels_Of(std::vector<std::int32_t>(NX * NY * NZ, -1));
    EXPECT_FALSE(session.Take_Labels(wrong, labels, &described).empty());
    EXPECT_TRUE(session.Markers().Get(0).is_placed);
    EXPECT_FALSE(session.Markers().Get(5).is_placed);
}

TEST_F(Session_Files, a_description_that_cannot_be_written_leaves_the_voxels_saved_and_the_work_unsaved) {
    Paint(1, 2, 9, 4, 3);
    std::filesystem::create_directories(folder / "head.labels.txt" / "occupied");
    const std::string error = session.Save_Labels(labels, described, kept);
    EXPECT_EQ(
        error,
        "The labels are saved, but not their names, colours, thresholds and markers: head.labels.txt is a folder, "
        "not a file.");
    EXPECT_TRUE(session.Is_Unsaved());
    EXPECT_EQ(session.Label_Path(), labels);
    const Load_Result loaded = Volume_Load(labels);
    ASSERT_TRUE(loaded.volume.has_value()) << loaded.error;
    EXPECT_EQ(std::ranges::count(loaded.volume->levels, 3), 8);
    std::filesystem::remove_all(folder / "head.labels.txt");
    EXPECT_EQ(session.Save_Labels(labels, described, kept), "");
    EXPECT_FALSE(session.Is_Unsaved());
}

TEST_F(Session_Files, a_label_file_of_two_programs_is_told_before_it_is_saved) {
    Paint(1, 2, 9, 4, 3);
    EXPECT_TRUE(session.Doubts_Before(labels, true).Is_None());
    ASSERT_EQ(session.Save_Labels(labels, described, kept), "");
    EXPECT_TRUE(session.Doubts_Before(labels, false).Is_None()) << "as it was saved here";
    std::filesystem::copy_file(labels, folder / "mine.nii.gz");

    Session other;  // the second program
    other.Take(Image(), "image.nii");
    ASSERT_EQ(other.Take_Labels(*Volume_Load(labels).volume, labels), "");
    other.Stroke_Begin(0, Dot(), 1, 1, Ink(9));
    other.Stroke_End();
    EXPECT_TRUE(other.Doubts_Before(labels, false).Is_None()) << "as it was read";
    ASSERT_EQ(other.Save_Labels(labels, described, kept), "");

    Save_Doubts doubts = session.Doubts_Before(labels, false);
    EXPECT_TRUE(doubts.is_theirs);
    EXPECT_NE(doubts.changed.find("head.nii.gz was written by another program"), std::string::npos);
    ASSERT_EQ(session.Save_Labels(labels, described, kept), "") << "the user said so";
    EXPECT_TRUE(session.Doubts_Before(labels, false).Is_None());

    std::ofstream(folder / "head.labels.txt", std::ios::app) << "# edited\n";
    doubts = session.Doubts_Before(labels, false);
    EXPECT_NE(doubts.changed.find("head.labels.txt was"), std::string::npos);
    EXPECT_FALSE(doubts.is_theirs);
    EXPECT_TRUE(session.Doubts_Before(labels, true).Is_None()) << "the dialog has asked";
    std::filesystem::remove(labels);
    EXPECT_FALSE(session.Doubts_Before(labels, true).Is_None()) << "the dialog saw no file to ask about";

    session.Label_Path_Set(folder / "mine.nii.gz");
    EXPECT_TRUE(session.Doubts_Before(folder / "mine.nii.gz", false).is_theirs) << "never read here";
}

TEST_F(Session_Files, protected_files_are_told_and_stay_protected_when_the_user_wants_them_replaced) {
    Paint(1, 2, 9, 4, 3);
    ASSERT_EQ(session.Save_Labels(labels, described, kept), "");
    ASSERT_EQ(File_Read_Only_Set(labels, true), "");
    ASSERT_EQ(File_Read_Only_Set(folder / "head.labels.txt", true), "");
    EXPECT_EQ(session.Doubts_Before(labels, false).read_only,
              "head.nii.gz and head.labels.txt are protected: they may only be read.");
    EXPECT_FALSE(session.Doubts_Before(labels, true).read_only.empty()) << "no file dialog asks about that";
    Paint(2, 2, 9, 4, 3);
    ASSERT_EQ(session.Save_Labels(labels, described, kept), "");
    EXPECT_TRUE(File_Is_Read_Only(labels));
    EXPECT_TRUE(File_Is_Read_Only(folder / "head.labels.txt"));
    EXPECT_EQ(std::ranges::count(Volume_Load(labels).volume->levels, 3), 16);
    File_Read_Only_Set(labels, false);
    File_Read_Only_Set(folder / "head.labels.txt", false);
}

TEST_F(Session_Files, a_description_kept_aside_is_told) {
    std::ofstream(folder / "head.labels.txt") << "label description 2\n";
    EXPECT_EQ(session.Save_Labels(labels, described, kept), "");
    EXPECT_EQ(kept, "The former head.labels.txt is kept as head.labels.txt.newer.");
    EXPECT_EQ(session.Save_Labels(labels, described, kept), "");
    EXPECT_EQ(kept, "");
}

TEST_F(Session_Test, changed_colours_are_one_step_and_unsaved_work) {
    std::vector<std::uint32_t> colors = {1, 2, 3, 4};
    session.Adopt_Colors(colors);
    EXPECT_EQ(session.Note_Colors(colors), 0);
    EXPECT_FALSE(session.Is_Unsaved());
    colors[1] = 20;
    colors[3] = 40;
    EXPECT_EQ(session.Note_Colors(colors), 1);
    EXPECT_EQ(session.Note_Colors(colors), 0) << "known now";
    EXPECT_TRUE(session.Is_Unsaved());
    const Undo_Step* step = session.Undo();
    ASSERT_NE(step, nullptr);
    EXPECT_EQ(step->title, "TAG colours");
    const auto* change = std::get_if<Color_Change>(&step->change);
    ASSERT_NE(change, nullptr);
    ASSERT_EQ(change->entries.size(), 2U);
    EXPECT_EQ(change->entries[1].tag, 3);
    EXPECT_EQ(change->entries[1].before, 4U);
    EXPECT_EQ(change->entries[1].after, 40U);
    EXPECT_FALSE(session.Is_Unsaved());
    EXPECT_EQ(session.Note_Colors(std::vector<std::uint32_t>{1, 2, 3, 4}), 0) << "the former colours are known again";
    ASSERT_NE(session.Undo(), step);
    EXPECT_EQ(session.Note_Colors(std::vector<std::uint32_t>{1, 2, 3, 5}), 1);
    EXPECT_EQ(session.Undo()->title, "TAG colour");
}

TEST_F(Session_Test, another_volume_starts_afresh) {
    Paint(1, 2, 9, 4, 3);
    session.Marker_Set(0, {true, 1, 1, 1});
    session.Take(Image(-1.0), "other.nii");
    EXPECT_EQ(session.Labels().Highest_Tag(), 0);
    EXPECT_EQ(session.Markers().Placed_Nb(), 0);
    EXPECT_EQ(session.Undo(), nullptr);
    EXPECT_FALSE(session.Is_Unsaved());
    EXPECT_FALSE(session.Order().flip_x);
}

}  // namespace
