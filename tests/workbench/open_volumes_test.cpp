#include "workbench/model/open_volumes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

using namespace volumes;
using namespace workbench;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Folder_Volume Opened(const std::string& title, int nz, bool is_scout = false) {
    Folder_Volume made;
    made.title = title;
    made.is_scout = is_scout;
    made.path = title + ".dcm";
    made.volume.nx = 3;
    made.volume.ny = 2;
    made.volume.nz = nz;
    made.volume.nt = 1;
    made.volume.affine[0][0] = made.volume.affine[1][1] = made.volume.affine[2][2] = 1.0;
    std::vector<std::int32_t> levels(made.volume.Voxel_Nb_3D());
    std::iota(levels.begin(), levels.end(), 100 * nz);
    made.volume.levels = std::move(levels);
    made.file_of_slice.assign(static_cast<std::size_t>(nz), 0);
    return made;
}

class Open_Volumes_Test : public ::testing::Test {
  protected:
    void SetUp() override {
        Image_Folder folder;
        folder.files = {"a.dcm"};
        folder.volumes.push_back(Opened("scout", 1, true));
        folder.volumes.push_back(Opened("first", 4));
        folder.volumes.push_back(Opened("second", 3));
        std::vector<Volume_Statistics> numbers(3);
        numbers[1].window_high = 7;
        volumes.Take(std::move(folder), std::move(numbers), session);
    }
    void Paint() {
        static const unsigned char byte = 1;
        static const unsigned char* const row = &byte;
        Paint_Ink ink;
        ink.tag = 3;
        session.Stroke_Begin(0, Brush_Footprint(&row, 0), 1, 1, ink);
        session.Stroke_End();
    }
    Open_Volumes volumes;
    Session session;
};

TEST_F(Open_Volumes_Test, the_first_volume_that_is_no_scout_is_the_current_one) {
    EXPECT_EQ(volumes.Nb(), 3);
    EXPECT_EQ(volumes.Current(), 1);
    EXPECT_EQ(session.Slice_Nb(), 4);
    EXPECT_EQ(session.Path(), "first.dcm");
    EXPECT_EQ(volumes.Facts(1).title, "first");
    EXPECT_EQ(volumes.View(1).window.high, 7.0F);
    EXPECT_EQ(volumes.View(1).slice, 2);
    EXPECT_EQ(volumes.Session_Of(2, session).Slice_Nb(), 3);
    EXPECT_EQ(&volumes.Session_Of(1, session), &session);
}

TEST_F(Open_Volumes_Test, the_volume_with_most_slices_is_the_current_one_at_its_middle) {
    Image_Folder folder;
    folder.volumes.push_back(Opened("scout", 30, true));
    folder.volumes.push_back(Opened("single", 1));
    folder.volumes.push_back(Opened("many", 11));
    folder.volumes.push_back(Opened("as_many", 11));
    folder.volumes[2].volume.level_max = 1000;
    folder.volumes[2].volume.windows = {{"", 50, 20, Window_Function::Linear_Exact}};
    volumes.Take(std::move(folder), {}, session);
    EXPECT_EQ(volumes.Current(), 2);
    EXPECT_EQ(session.Slice_Nb(), 11);
    EXPECT_EQ(volumes.View(2).slice, 5);
    EXPECT_EQ(volumes.View(2).window, (Grey_Window{40.0F, 60.0F, false})) << "the file's own window";
}

TEST_F(Open_Volumes_Test, a_scout_is_the_current_one_when_there_is_nothing_else) {
    Image_Folder folder;
    folder.volumes.push_back(Opened("scout", 1, true));
    volumes.Take(std::move(folder), {}, session);
    EXPECT_EQ(volumes.Current(), 0);
    EXPECT_EQ(session.Slice_Nb(), 1);
}

TEST_F(Open_Volumes_Test, levels_stay_where_they_are_when_volumes_change_hands) {
    const Level_View first = session.Levels(0);
    const Level_View second = volumes.Session_Of(2, session).Levels(0);
    volumes.Switch(2, session);
    EXPECT_TRUE(session.Levels(0).Is_At(second));
    EXPECT_TRUE(volumes.Session_Of(1, session).Levels(0).Is_At(first));
    volumes.Switch(1, session);
    EXPECT_TRUE(session.Levels(0).Is_At(first));
}

TEST_F(Open_Volumes_Test, every_volume_keeps_the_work_on_it) {
    Paint();
    volumes.Switch(2, session);
    EXPECT_EQ(session.Journal().Undo_Nb(), 0U);
    EXPECT_EQ(session.Labels().At(1, 1, 0), 0);
    EXPECT_THAT(volumes.Unsaved(session), ElementsAre(1));
    Paint();
    EXPECT_THAT(volumes.Unsaved(session), ElementsAre(1, 2));
    session.Undo();
    volumes.Switch(0, session);
    volumes.Switch(1, session);
    EXPECT_EQ(session.Labels().At(1, 1, 0), 3);
    EXPECT_NE(session.Undo(), nullptr);
    EXPECT_THAT(volumes.Unsaved(session), IsEmpty());
}

TEST_F(Open_Volumes_Test, a_volume_that_is_not_there_does_not_come_into_hand) {
    for (const int wanted : {-1, 3, 1}) {
        volumes.Switch(wanted, session);
        EXPECT_EQ(volumes.Current(), 1);
        EXPECT_EQ(session.Slice_Nb(), 4);
    }
}

TEST_F(Open_Volumes_Test, clearing_leaves_no_current_volume) {
    volumes.Clear(session);
    EXPECT_EQ(volumes.Nb(), 0);
    EXPECT_EQ(volumes.Current(), -1);
    EXPECT_FALSE(session.Has_Volume());
    EXPECT_THAT(volumes.Unsaved(session), IsEmpty());
}

}  // namespace
