#include "workbench/model/session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <numeric>

#include "volumes/nifti_reader.h"

namespace {

constexpr int nx = 12;
constexpr int ny = 9;
constexpr int nz = 5;

Volume Image(double x_direction = 1.0) {
    Volume volume;
    volume.nx = nx;
    volume.ny = ny;
    volume.nz = nz;
    volume.nt = 1;
    volume.affine[0][0] = x_direction;
    volume.affine[1][1] = 1.0;
    volume.affine[2][2] = 2.0;
    volume.spacing = {1.0, 1.0, 2.0};
    volume.scalar_type = "int16";
    volume.levels.resize(nx * ny * nz);
    std::iota(volume.levels.begin(), volume.levels.end(), 0);
    volume.level_max = nx * ny * nz - 1;
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
};

TEST_F(Session_Test, shows_the_image_turned_and_names_voxels_of_the_file) {
    EXPECT_EQ(session.Levels(0)[0], (ny - 1) * nx + nx - 1);  // upper left: last column and row of the file
    const File_Voxel voxel = session.To_File(0, 0, 3);
    EXPECT_EQ(voxel.x, nx - 1);
    EXPECT_EQ(voxel.y, ny - 1);
    EXPECT_EQ(voxel.z, 3);
    EXPECT_FLOAT_EQ(session.Grey(0, 0, 3), static_cast<float>((3 * ny + voxel.y) * nx + voxel.x));
    EXPECT_FLOAT_EQ(session.Grey(-1, 0, 0), 0.0F);
    EXPECT_TRUE(session.Levels(nz).empty());
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
    EXPECT_EQ(session.Propagate(Propagation_Kind::COPY, 1, 2, tags), 8U);
    EXPECT_EQ(session.Labels().Counts()[3], 16U);
    EXPECT_EQ(session.Propagate(Propagation_Kind::COPY, 1, nz, tags), 0U);
    EXPECT_EQ(session.Propagate(Propagation_Kind::COPY, -1, 1, tags), 0U);
    EXPECT_EQ(session.Propagate(Propagation_Kind::GROW, 1, 1, tags), 0U);
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
    session.Adopt_Labels(Text_Table::TAG_LABELS, names);
    EXPECT_EQ(session.Note_Labels(Text_Table::TAG_LABELS, names), 0);
    names[1] = "new";
    names[2] = "other";
    EXPECT_EQ(session.Note_Labels(Text_Table::TAG_LABELS, names), 2);
    const Undo_Step* step = session.Undo();
    ASSERT_NE(step, nullptr);
    const auto* text = std::get_if<Text_Change>(&step->change);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->index, 2);
    EXPECT_EQ(text->before, "c");
    EXPECT_EQ(text->after, "other");
    names[2] = "c";  // what the application writes back is known already
    EXPECT_EQ(session.Note_Labels(Text_Table::TAG_LABELS, names), 0);
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
    Volume smaller = Labels_Of(std::vector<std::int32_t>(nx * ny * (nz - 1)));
    smaller.nz = nz - 1;
    EXPECT_NE(session.Take_Labels(smaller, "x.nii").find("12 x 9 x 4"), std::string::npos);
    Volume fraction = Labels_Of(std::vector<std::int32_t>(nx * ny * nz, 1));
    fraction.slope = 0.5;
    EXPECT_NE(session.Take_Labels(fraction, "x.nii").find("no TAG numbers"), std::string::npos);
    EXPECT_FALSE(session.Take_Labels(Labels_Of(std::vector<std::int32_t>(nx * ny * nz, 256)), "x.nii").empty());
    EXPECT_FALSE(session.Take_Labels(Labels_Of(std::vector<std::int32_t>(nx * ny * nz, -1)), "x.nii").empty());
    Volume color = Labels_Of(std::vector<std::int32_t>(nx * ny * nz, 1));
    color.color = true;
    EXPECT_FALSE(session.Take_Labels(color, "x.nii").empty());
    EXPECT_EQ(session.Labels().Counts()[3], 8U) << "a refused file must change nothing";
    EXPECT_FALSE(Session().Take_Labels(Image(), "x.nii").empty());
}

TEST_F(Session_Test, labels_stored_in_the_other_direction_come_to_lie_on_the_same_place) {
    std::vector<std::int32_t> levels(nx * ny * nz);
    levels[0] = 9;
    ASSERT_EQ(session.Take_Labels(Labels_Of(levels), "a.nii"), "");
    EXPECT_EQ(session.Labels().At(nx - 1, ny - 1, 0), 9);
    ASSERT_EQ(session.Take_Labels(Labels_Of(levels, -1.0), "b.nii"), "");
    EXPECT_EQ(session.Labels().At(0, ny - 1, 0), 9);
}

TEST_F(Session_Test, saved_labels_come_back_the_same_and_count_as_saved) {
    Paint(1, 2, 9, 4, 3);
    Paint(4, 0, 0, 0, 200);
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "workbench_session_test_labels.nii.gz";
    ASSERT_EQ(session.Save_Labels(path), "");
    EXPECT_FALSE(session.Is_Unsaved());
    EXPECT_EQ(session.Label_Path(), path);
    const std::vector<std::uint8_t> saved(session.Labels().All().begin(), session.Labels().All().end());
    const Load_Result loaded = Volume_Load(path);
    ASSERT_TRUE(loaded.volume.has_value()) << loaded.error;
    // The file is in the order of the image's file: what stands at the upper left is its last column and row.
    EXPECT_EQ(loaded.volume->levels[loaded.volume->Index(nx - 1, ny - 1, 4)], 200);
    Paint(2, 0, nx - 1, 5, 8);
    ASSERT_EQ(session.Take_Labels(*loaded.volume, path), "");
    EXPECT_TRUE(std::ranges::equal(session.Labels().All(), saved));
    EXPECT_FALSE(session.Is_Unsaved());
    std::filesystem::remove(path);
}

TEST_F(Session_Test, a_file_that_cannot_be_written_leaves_the_work_unsaved) {
    Paint(1, 2, 9, 4, 3);
    EXPECT_FALSE(session.Save_Labels("no_such_folder_anywhere/x.nii").empty());
    EXPECT_TRUE(session.Is_Unsaved());
    EXPECT_FALSE(Session().Save_Labels("x.nii").empty());
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
