// What is asked and told when labels are saved and loaded, and before work is lost.
#include "workbench/parts/label_file_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "tests/workbench/parts/work_scene.h"
#include "workbench/volumes/nifti_writer.h"

using namespace workbench;

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Answer = Dialogs::Answer;

class Label_File_Watch : public ::testing::Test, protected Work_Scene {
  protected:
    Label_File_Host Host() {
        Label_File_Host host;
        host.settle = [this] { ++settled; };
        host.stroke_end = [this] { ++strokes_ended; };
        host.go = [this](int volume) {
            Go(volume);
            gone_to = volume;
        };
        host.colors_change = [this] { ++colors_changed; };
        host.object = [this](const fs::path&) { return object; };
        return host;
    }
    /** A label volume of TAG 2 throughout, written by somebody. */
    void Theirs_Write(const fs::path& path, double first_x = 0.0) const {
        volumes::Volume image = Image();
        image.affine[0][3] = first_x;
        const std::vector<std::uint8_t> tags(image.levels.size(), 2);
        ASSERT_EQ(volumes::Label_Volume_Write(path, image, tags), "");
    }
    std::size_t Tagged_Nb(std::size_t tag) const { return work.session.Labels().Counts()[tag]; }

    int settled = 0;
    int strokes_ended = 0;
    int gone_to = -1;
    int colors_changed = 0;
    std::optional<std::optional<Labels_File>> object;
    Label_File_Control files{work, labels, dialogs, Host()};
};

TEST_F(Label_File_Watch, without_an_image_nothing_is_asked) {
    EXPECT_FALSE(files.Save_Labels(false));
    files.Load_Labels_Ask();
    EXPECT_THAT(dialogs.warned, SizeIs(2));
    EXPECT_THAT(dialogs.asked, IsEmpty());
    EXPECT_EQ(strokes_ended, 1);
}

TEST_F(Label_File_Watch, the_first_saving_asks_for_a_name_and_later_ones_do_not) {
    Open(1);
    Marker_Put(1, 2);
    dialogs.files = {folder / "mine"};
    EXPECT_TRUE(files.Save_Labels(false));
    EXPECT_THAT(dialogs.asked, ElementsAre("Save labels: image0_labels.nii.gz"));
    EXPECT_TRUE(fs::exists(folder / "mine.nii.gz"));
    EXPECT_THAT(dialogs.told, ElementsAre("Labels saved to mine.nii.gz"));
    EXPECT_FALSE(work.session.Is_Unsaved());
    EXPECT_TRUE(Told().Has(Change::Saved));
    Marker_Put(1, 3);
    EXPECT_TRUE(files.Save_Labels(false));
    EXPECT_THAT(dialogs.asked, SizeIs(1));
    dialogs.files = {std::nullopt};
    EXPECT_FALSE(files.Save_Labels(true));
    EXPECT_THAT(dialogs.asked, ElementsAre(testing::_, "Save labels: mine.nii.gz"));
}

TEST_F(Label_File_Watch, what_cannot_be_written_stays_unsaved) {
    Open(1);
    Marker_Put(1, 2);
    dialogs.files = {folder / "no such folder" / "mine.nii"};
    EXPECT_FALSE(files.Save_Labels(false));
    EXPECT_THAT(dialogs.warned, ElementsAre(HasSubstr("mine.nii")));
    EXPECT_TRUE(work.session.Is_Unsaved());
}

TEST_F(Label_File_Watch, a_file_that_somebody_has_written_is_asked_about) {
    Open(1);
    Marker_Put(1, 2);
    dialogs.files = {folder / "mine.nii"};
    ASSERT_TRUE(files.Save_Labels(false));
    Theirs_Write(folder / "mine.nii");
    Marker_Put(1, 3);
    dialogs.ways = {3};
    EXPECT_FALSE(files.Save_Labels(false));
    EXPECT_THAT(dialogs.offered, SizeIs(4));
    EXPECT_TRUE(work.session.Is_Unsaved());
    // Another name: theirs is left alone.
    dialogs.ways = {1};
    dialogs.files = {folder / "other.nii"};
    EXPECT_TRUE(files.Save_Labels(false));
    EXPECT_EQ(work.session.Label_Path(), folder / "other.nii");
    // Theirs in place of the work.
    Theirs_Write(folder / "other.nii");
    Marker_Put(1, 4);
    dialogs.ways = {2};
    EXPECT_FALSE(files.Save_Labels(false));
    EXPECT_EQ(Tagged_Nb(2), std::size_t{NX} * NY * NZ);
    EXPECT_FALSE(work.session.Is_Unsaved());
}

TEST_F(Label_File_Watch, nobody_is_asked_about_saved_work) {
    Open(2);
    EXPECT_TRUE(files.May_Leave());
    EXPECT_THAT(dialogs.asked, IsEmpty());
    EXPECT_EQ(settled, 1);
}

TEST_F(Label_File_Watch, unsaved_work_may_be_given_up_or_kept) {
    Open(1);
    Marker_Put(1, 2);
    dialogs.answers = {Answer::No, Answer::Cancel};
    EXPECT_TRUE(files.May_Leave());
    EXPECT_FALSE(files.May_Leave());
    EXPECT_THAT(dialogs.asked[0], HasSubstr("There is unsaved work. Save"));
}

TEST_F(Label_File_Watch, all_volumes_with_work_are_saved_in_turn) {
    Open(3);
    for (const int volume : {1, 2}) {
        Go(volume);
        Marker_Put(volume, 2);
    }
    Go(0);
    dialogs.answers = {Answer::Yes};
    dialogs.files = {folder / "one.nii", folder / "two.nii"};
    EXPECT_TRUE(files.May_Leave());
    EXPECT_THAT(dialogs.asked[0], HasSubstr("on 2 volumes"));
    EXPECT_TRUE(fs::exists(folder / "one.nii"));
    EXPECT_TRUE(fs::exists(folder / "two.nii"));
    EXPECT_EQ(work.volumes.Current(), 0);
    EXPECT_THAT(work.volumes.Unsaved(work.session), IsEmpty());
}

TEST_F(Label_File_Watch, a_saving_that_is_given_up_keeps_the_rest) {
    Open(3);
    for (const int volume : {1, 2}) {
        Go(volume);
        Marker_Put(volume, 2);
    }
    dialogs.answers = {Answer::Yes};
    dialogs.files = {std::nullopt};
    EXPECT_FALSE(files.May_Leave());
    EXPECT_EQ(work.volumes.Current(), 2);
    EXPECT_THAT(work.volumes.Unsaved(work.session), SizeIs(2));
}

TEST_F(Label_File_Watch, labels_of_the_images_voxels_are_taken_unasked) {
    Open(1);
    Theirs_Write(folder / "theirs.nii");
    dialogs.files = {folder / "theirs.nii"};
    files.Load_Labels_Ask();
    EXPECT_EQ(Tagged_Nb(2), std::size_t{NX} * NY * NZ);
    EXPECT_THAT(dialogs.told, ElementsAre("Labels loaded from theirs.nii"));
    EXPECT_EQ(work.session.Label_Path(), folder / "theirs.nii");
    EXPECT_TRUE(Told().Has(Change::Pixels));
}

TEST_F(Label_File_Watch, labels_that_lie_elsewhere_are_asked_about) {
    Open(1);
    Theirs_Write(folder / "theirs.nii", 0.5);
    dialogs.ways = {-1, 1};
    files.Load(folder / "theirs.nii");
    EXPECT_EQ(Tagged_Nb(2), 0U);
    EXPECT_THAT(dialogs.told, ElementsAre("Labels were not loaded"));
    files.Load(folder / "theirs.nii");
    EXPECT_EQ(Tagged_Nb(2), std::size_t{NX} * NY * NZ);
    EXPECT_THAT(dialogs.warned, ElementsAre(HasSubstr("laid on by index")));
    EXPECT_TRUE(work.session.Label_Path().empty());
}

TEST_F(Label_File_Watch, a_broken_file_changes_nothing) {
    Open(1);
    std::ofstream(folder / "broken.nii") << "no labels";
    files.Load(folder / "broken.nii");
    EXPECT_THAT(dialogs.warned, ElementsAre(HasSubstr("broken.nii")));
    EXPECT_EQ(dialogs.warnings_closed, 0);
}

TEST_F(Label_File_Watch, loading_can_be_given_up) {
    Open(1);
    Theirs_Write(folder / "theirs.nii");
    dialogs.is_given_up = true;
    files.Load(folder / "theirs.nii");
    EXPECT_EQ(Tagged_Nb(2), 0U);
    EXPECT_THAT(dialogs.told, ElementsAre("Loading was given up"));
}

TEST_F(Label_File_Watch, a_segmentation_object_is_not_the_labels_own_file) {
    Open(1);
    Labels_File taken;
    taken.volume = Image();
    taken.volume.levels = volumes::Voxel_Levels::Of_Range(taken.volume.levels.size(), 3, 3, false);
    taken.described.description.tags = {{3, 0x112233, true, true, false, {}, {}, "Lunge \xC3\xBC"}};
    taken.described.is_there = true;
    taken.is_object = true;
    object = taken;
    files.Load(folder / "object.dcm");
    EXPECT_EQ(Tagged_Nb(3), std::size_t{NX} * NY * NZ);
    EXPECT_TRUE(work.session.Label_Path().empty());
    EXPECT_EQ(values.Tag_Color(3), 0x112233U);
    EXPECT_EQ(colors_changed, 1);
    EXPECT_THAT(dialogs.warned, ElementsAre(HasSubstr("became question marks in names: 1")));
    object = std::optional<Labels_File>();
    dialogs.told.clear();
    files.Load(folder / "object.dcm");
    EXPECT_THAT(dialogs.told, IsEmpty());
}

TEST_F(Label_File_Watch, each_volume_is_saved_with_its_own_names) {
    Open(2);
    values.Tag_Label_Set(1, "Liver");
    Marker_Put(1, 2);
    Go(1);
    values.Tag_Label_Set(1, "Spleen");
    Marker_Put(1, 2);
    dialogs.answers = {Answer::Yes};
    dialogs.files = {folder / "liver.nii", folder / "spleen.nii"};
    EXPECT_TRUE(files.May_Leave());
    EXPECT_EQ(labels.Tag_Name(1), "Spleen");
    for (const std::string& organ : {std::string("liver"), std::string("spleen")}) {
        const Label_Description_Loading read = Label_Description_Load(folder / (organ + ".nii"), {NZ, NX, NY});
        ASSERT_TRUE(read.is_there);
        EXPECT_EQ(read.description.tags[1].name, organ == "liver" ? "Liver" : "Spleen");
    }
}

}  // namespace
