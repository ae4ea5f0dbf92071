// Pixels of volumes that were listed by heads: when they are read, and when they are freed.
#include "workbench/parts/level_supply.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/workbench/parts/work_scene.h"
#include "tests/workbench/volumes/dicom_bytes.h"
#include "tests/workbench/volumes/loading.h"

using namespace workbench;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint64_t SERIES_BYTES = std::uint64_t{2} * 40 * 30 * 2;  // 2 slices of 40 x 30 voxels in 16 bits

class Level_Watch : public ::testing::Test, protected Work_Scene {
  protected:
    std::filesystem::path Path(int series, int z) const {
        return folder / ("series" + std::to_string(series)) / (std::to_string(z) + ".dcm");
    }
    /** Series of two slices each, all listed by heads. */
    void List(int series_nb) {
        for (int series = 0; series < series_nb; ++series) {
            std::filesystem::create_directories(Path(series, 0).parent_path());
            for (int z = 0; z < 2; ++z) {
                Dicom_Bytes bytes;
                bytes.Pixels_8(std::vector<std::uint8_t>(1200, static_cast<std::uint8_t>(10 * (series + 1) + z)), 40,
                               30);
                bytes.Place(0, 0, z).Text(TAG_SERIES, "UI", "1.2." + std::to_string(series + 1));
                bytes.Text(TAG_SERIES_NUMBER, "IS", std::to_string(series + 1));
                bytes.Text(TAG_INSTANCE, "UI", "1.2." + std::to_string(series + 1) + '.' + std::to_string(z + 1));
                File_Put(Path(series, z), bytes.File());
            }
        }
        listed = volumes::Image_Folder_Open(std::span(&folder, 1), {}, {}, 0);
        numbers.resize(listed.volumes.size());
    }
    /** Opens what was listed, as the application does. */
    void Take() {
        ASSERT_TRUE(supply.First_Read(listed, numbers));
        work.volumes.Take(std::move(listed), std::move(numbers), work.session);
        labels.Opened();
        labels.Enter();
    }
    void Show(int volume) {
        ASSERT_TRUE(supply.Make_Ready(volume));
        labels.Switch(volume);
        supply.Room_Keep();
    }
    Level_Supply_Host Host() {
        Level_Supply_Host host;
        host.memory_most = [this] { return memory; };
        host.problems_note = [this](std::span<const volumes::Folder_Problem> problems) {
            return volumes::Problems_Add(problems, noted);
        };
        host.came = [this](int volume) { came.push_back(volume); };
        host.counting_cancel = [this] { ++cancelled; };
        host.gone = [this](int volume) { gone.push_back(volume); };
        return host;
    }
    volumes::Image_Folder listed;
    std::vector<volumes::Volume_Statistics> numbers;
    std::uint64_t memory = 1 << 20;
    std::vector<volumes::Folder_Problem> noted;
    std::vector<int> came;
    std::vector<int> gone;
    int cancelled = 0;
    Level_Supply supply{work, dialogs, Host()};
};

TEST_F(Level_Watch, the_volume_that_is_shown_first_is_read) {
    List(3);
    Take();
    EXPECT_EQ(work.volumes.Read_Nb(work.session), 1);
    EXPECT_TRUE(work.session.Has_Levels());
    EXPECT_EQ(work.session.Grey(0, 0, 1), 11.0F);
    EXPECT_EQ(work.volumes.View(0).statistics.max, 11.0);
    EXPECT_TRUE(work.volumes.Is_Waiting(1, work.session));
    EXPECT_THAT(dialogs.run, ElementsAre(HasSubstr("Reading MR 1")));
}

TEST_F(Level_Watch, a_volume_is_read_when_it_is_shown_and_only_then) {
    List(3);
    Take();
    Show(2);
    EXPECT_EQ(work.session.Grey(3, 2, 0), 30.0F);
    EXPECT_EQ(work.volumes.View(2).statistics.min, 30.0);
    EXPECT_THAT(came, ElementsAre(2));
    EXPECT_THAT(dialogs.run, SizeIs(2));
    Show(0);
    Show(2);
    EXPECT_THAT(dialogs.run, SizeIs(2)) << "what is there is not read again";
    EXPECT_THAT(gone, IsEmpty());
    EXPECT_EQ(cancelled, 0);
}

TEST_F(Level_Watch, reading_that_is_given_up_leaves_everything_as_it_was) {
    List(2);
    Take();
    dialogs.is_given_up = true;
    EXPECT_FALSE(supply.Make_Ready(1));
    EXPECT_TRUE(work.volumes.Is_Waiting(1, work.session));
    EXPECT_THAT(dialogs.told, ElementsAre("Reading was given up"));
    EXPECT_THAT(dialogs.warned, IsEmpty());
    EXPECT_THAT(came, IsEmpty());
}

TEST_F(Level_Watch, opening_that_is_given_up_is_told) {
    List(2);
    dialogs.is_given_up = true;
    EXPECT_FALSE(supply.First_Read(listed, numbers));
}

TEST_F(Level_Watch, a_first_volume_that_cannot_be_read_makes_room_for_the_next) {
    List(2);
    std::filesystem::remove(Path(0, 0));
    std::filesystem::remove(Path(0, 1));
    EXPECT_TRUE(supply.First_Read(listed, numbers));
    ASSERT_THAT(listed.volumes, SizeIs(1));
    ASSERT_THAT(numbers, SizeIs(1));
    EXPECT_EQ(listed.volumes[0].volume.level_min, 20);
    EXPECT_EQ(numbers[0].min, 20.0);
    ASSERT_THAT(listed.problems, SizeIs(1));
    EXPECT_FALSE(listed.problems[0].is_opened);
    EXPECT_THAT(listed.problems[0].reason, HasSubstr("which cannot be read any more"));
}

TEST_F(Level_Watch, a_volume_that_cannot_be_read_is_told_and_stays_waiting) {
    List(2);
    Take();
    std::filesystem::remove_all(Path(1, 0).parent_path());
    EXPECT_FALSE(supply.Make_Ready(1));
    EXPECT_THAT(dialogs.warned, ElementsAre(HasSubstr("cannot be shown: it cannot be read any more: 0.dcm does not")));
    EXPECT_TRUE(work.volumes.Is_Waiting(1, work.session));
}

TEST_F(Level_Watch, slices_that_are_gone_are_told_and_noted) {
    List(2);
    Take();
    std::filesystem::remove(Path(1, 1));
    EXPECT_TRUE(supply.Make_Ready(1));
    EXPECT_THAT(dialogs.warned, ElementsAre("1.dcm does not exist: its slice is empty."));
    EXPECT_THAT(noted, SizeIs(1));
    labels.Switch(1);
    memory = 0;
    labels.Switch(0);
    supply.Room_Keep();
    ASSERT_TRUE(work.volumes.Is_Waiting(1, work.session));
    memory = 1 << 20;
    EXPECT_TRUE(supply.Make_Ready(1));
    EXPECT_THAT(dialogs.warned, SizeIs(1)) << "once is enough";
}

TEST_F(Level_Watch, the_volume_longest_not_looked_at_leaves_when_memory_is_short) {
    List(4);
    Take();
    memory = 2 * SERIES_BYTES;
    Show(1);
    EXPECT_THAT(gone, IsEmpty());
    Show(0);
    Show(2);
    EXPECT_THAT(gone, ElementsAre(1));
    EXPECT_EQ(cancelled, 1) << "nobody may count what is freed";
    Show(3);
    EXPECT_THAT(gone, ElementsAre(1, 0));
    EXPECT_EQ(work.volumes.Read_Nb(work.session), 2);
}

TEST_F(Level_Watch, a_volume_with_unsaved_work_stays_and_what_was_done_to_the_others_comes_back) {
    List(3);
    Take();
    memory = SERIES_BYTES;
    Marker_Put(1, 1);
    Show(1);
    EXPECT_THAT(gone, IsEmpty()) << "the first has unsaved work, the second is shown";
    Show(2);
    EXPECT_THAT(gone, ElementsAre(1));
    EXPECT_FALSE(work.volumes.Is_Waiting(0, work.session));
    work.volumes.View(1).window.low = 5.0F;
    Show(1);
    EXPECT_EQ(work.session.Grey(0, 0, 0), 20.0F);
    EXPECT_EQ(work.volumes.View(1).window.low, 5.0F) << "the window that was chosen stays";
}

TEST_F(Level_Watch, labels_of_a_volume_that_left_are_there_when_it_comes_back) {
    List(2);
    Take();
    std::vector<std::uint8_t> tags(2400, 0);
    tags[5] = 3;
    memory = SERIES_BYTES;
    labels.Switch(1);  // as work of a former run is taken up: nothing is shown yet
    ASSERT_TRUE(work.session.Take_Up(std::move(tags), {}, {}, {}));
    labels.Switch(0);
    ASSERT_TRUE(work.volumes.Is_Waiting(1, work.session));
    Show(1);
    EXPECT_EQ(work.session.Tags_In_File_Order()[5], 3);
    EXPECT_EQ(work.session.Grey(0, 0, 0), 20.0F);
}

TEST_F(Level_Watch, a_volume_larger_than_the_memory_is_told) {
    List(2);
    Take();
    memory = SERIES_BYTES / 2;
    EXPECT_FALSE(supply.Make_Ready(1));
    ASSERT_THAT(dialogs.warned, SizeIs(1));
    EXPECT_THAT(dialogs.warned[0], HasSubstr("memory"));
}

}  // namespace
