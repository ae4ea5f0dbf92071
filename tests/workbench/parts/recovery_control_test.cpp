// What is kept of work that is not saved, and what is asked and done about it at the next start.
#include "workbench/parts/recovery_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "tests/workbench/dialogs_double.h"
#include "tests/workbench/label_values_double.h"

using namespace workbench;

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::uint64_t SLOW_MS = RECOVERY_LOSS_MOST_MS / 2;

volumes::Image_Folder Images() {
    volumes::Image_Folder folder;
    for (int at = 0; at < 2; ++at) {
        volumes::Folder_Volume& one = folder.volumes.emplace_back();
        one.title = "volume " + std::to_string(at);
        one.path = "/data/image" + std::to_string(at) + ".nii";
        one.volume.nx = 4;
        one.volume.ny = 3;
        one.volume.nz = 2;
        one.volume.nt = 1;
        one.volume.affine = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 2, 0}}};
        one.volume.spacing = {1, 1, 2};
        one.volume.levels = volumes::Voxel_Levels::Of_Range(24, 0, 0, false);
    }
    return folder;
}

/** One run of the program. */
struct Program {
    explicit Program(const fs::path& its_folder) : folder(its_folder) {}
    void Open() {
        work.volumes.Take(Images(), {}, work.session);
        labels.Opened();
        labels.Enter();
        work.opened_paths = {"/data"};
    }
    void Go(int volume) { labels.Switch(volume); }
    Recovery_Host Host() {
        Recovery_Host host;
        host.now_ms = [this] { return now; };
        host.look_after = [this](int ms) { looks.push_back(ms); };
        host.open = [this](std::span<const fs::path> paths) {
            opened.assign(paths.begin(), paths.end());
            if (is_image_there) {
                Open();
            }
        };
        host.go = [this](int volume) {
            Go(volume);
            shown = volume;
        };
        host.take = [this](const Label_Description& description) { labels.Take(description); };
        host.note = [this](const std::string& text) { notes.push_back(text); };
        return host;
    }

    fs::path folder;
    Workspace work{[] {}};
    Label_Values_Double values;
    Label_Attributes labels{work, values};
    Dialogs_Double dialogs;
    std::uint64_t now = 1000;
    std::vector<int> looks;
    std::vector<fs::path> opened;
    std::vector<std::string> notes;
    int shown = -1;
    bool is_image_there = true;
    Recovery_Control recovery{work, labels, dialogs, Host()};
};

class Recovery_Watch : public ::testing::Test {
  protected:
    Recovery_Watch()
        : folder(fs::temp_directory_path() / ("recovery_control_" + std::to_string(std::random_device{}()))) {}
    ~Recovery_Watch() override {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    /** A run that dies with a marker on its second volume and another name of TAG 3. */
    void A_Run_Dies() const {
        Program died(folder);
        died.recovery.Begin(folder, "1");
        died.Open();
        died.Go(1);
        died.values.Tag_Label_Set(3, "Liver");
        died.work.session.Marker_Set(2, {true, 1, 2, 1});
        EXPECT_TRUE(died.recovery.Look());
        // Its files stay, as nobody ends it.
    }
    std::vector<fs::path> Kept() const {
        std::vector<fs::path> kept;
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (entry.path().extension() == ".work") {
                kept.push_back(entry.path());
            }
        }
        return kept;
    }
    fs::path folder;
};

TEST_F(Recovery_Watch, stands_beside_the_settings) {
    EXPECT_EQ(Recovery_Folder_Of(folder / "mine.txt"), folder / "mine.recovery");
    EXPECT_TRUE(Recovery_Folder_Of({}).empty());
}

TEST_F(Recovery_Watch, without_settings_nothing_is_kept_or_offered) {
    Program program(folder);
    program.recovery.Begin({}, "1");
    EXPECT_FALSE(program.recovery.Look());
    EXPECT_FALSE(program.recovery.Offer());
    EXPECT_THAT(program.looks, IsEmpty());
}

TEST_F(Recovery_Watch, a_folder_that_cannot_be_made_is_told) {
    fs::create_directories(folder.parent_path());
    std::ofstream(folder) << "no folder";
    Program program(folder);
    program.recovery.Begin(folder, "1");
    EXPECT_THAT(program.dialogs.warned, ElementsAre(HasSubstr("nothing can be written to")));
    EXPECT_FALSE(program.recovery.Look());
}

TEST_F(Recovery_Watch, the_work_of_a_dead_run_is_taken_up_and_kept_again) {
    A_Run_Dies();
    Program next(folder);
    next.recovery.Begin(folder, "1");
    next.dialogs.ways = {0};
    EXPECT_TRUE(next.recovery.Offer());
    EXPECT_THAT(next.dialogs.asked, ElementsAre(HasSubstr("Work that was not saved")));
    EXPECT_THAT(next.opened, ElementsAre("/data"));
    EXPECT_EQ(next.shown, 1);
    EXPECT_TRUE(next.work.session.Markers().Get(2).is_placed);
    EXPECT_TRUE(next.work.session.Is_Unsaved());
    EXPECT_EQ(next.labels.Tag_Name(3), "Liver");
    EXPECT_THAT(next.dialogs.told, ElementsAre(HasSubstr("was taken up; it is not saved yet")));
    EXPECT_THAT(Kept(), testing::SizeIs(1));  // that of this run, the former one is gone
    next.recovery.End();
    EXPECT_THAT(Kept(), IsEmpty());
}

TEST_F(Recovery_Watch, what_cannot_be_taken_up_is_offered_again) {
    A_Run_Dies();
    {
        Program next(folder);
        next.is_image_there = false;
        next.recovery.Begin(folder, "1");
        next.dialogs.ways = {0};
        EXPECT_TRUE(next.recovery.Offer());
        EXPECT_THAT(next.dialogs.warned, ElementsAre(HasSubstr("is not there as it was")));
        next.recovery.End();
    }
    EXPECT_THAT(Kept(), testing::SizeIs(1));
    Program later(folder);
    later.recovery.Begin(folder, "1");
    later.dialogs.ways = {1};
    EXPECT_FALSE(later.recovery.Offer());
    EXPECT_THAT(later.dialogs.asked, testing::SizeIs(1));
}

TEST_F(Recovery_Watch, what_is_discarded_is_gone) {
    A_Run_Dies();
    Program next(folder);
    next.recovery.Begin(folder, "1");
    next.dialogs.ways = {2};
    EXPECT_FALSE(next.recovery.Offer());
    EXPECT_THAT(Kept(), IsEmpty());
    EXPECT_THAT(next.dialogs.warned, IsEmpty());
}

TEST_F(Recovery_Watch, looks_when_the_timer_is_late_only) {
    Program program(folder);
    program.recovery.Begin(folder, "1");
    EXPECT_THAT(program.looks, ElementsAre(RECOVERY_LOOK_MS));
    program.Open();
    program.work.session.Marker_Set(2, {true, 1, 2, 1});
    program.recovery.Look_If_Late();
    EXPECT_THAT(program.dialogs.logged, IsEmpty());
    program.now += SLOW_MS;
    program.recovery.Look_If_Late();
    EXPECT_THAT(program.dialogs.logged, ElementsAre("recovery_looked 1"));
    program.recovery.End();
}

TEST_F(Recovery_Watch, a_step_is_noted_once) {
    Program program(folder);
    program.Open();
    program.recovery.Step_Note();
    program.work.session.Marker_Set(2, {true, 1, 2, 1});
    program.recovery.Step_Note();
    program.recovery.Step_Note();
    EXPECT_THAT(program.notes, ElementsAre(HasSubstr("step 0 of 0"), HasSubstr("step 1 of 1")));
}

TEST_F(Recovery_Watch, the_newest_report_of_a_crash_is_named) {
    Program program(folder);
    program.recovery.Crashes_Tell({});
    EXPECT_THAT(program.dialogs.warned, IsEmpty());
    const std::vector<fs::path> reports = {"crash-1.txt", "crash-2.txt"};
    program.recovery.Crashes_Tell(reports);
    EXPECT_THAT(program.dialogs.warned, ElementsAre(testing::AllOf(HasSubstr("crash-2.txt"), HasSubstr("1 more"))));
}

TEST_F(Recovery_Watch, each_volume_gets_its_own_names_back) {
    {
        Program died(folder);
        died.recovery.Begin(folder, "1");
        died.Open();
        for (const int volume : {0, 1}) {
            died.Go(volume);
            died.values.Tag_Label_Set(3, volume == 0 ? "Liver" : "Spleen");
            died.work.session.Marker_Set(2, {true, 1, 2, 1});
        }
        EXPECT_TRUE(died.recovery.Look());
    }
    Program next(folder);
    next.recovery.Begin(folder, "1");
    next.dialogs.ways = {0};
    EXPECT_TRUE(next.recovery.Offer());
    EXPECT_EQ(next.work.volumes.Current(), 0);
    EXPECT_EQ(next.labels.Tag_Name(3), "Liver");
    next.Go(1);
    EXPECT_EQ(next.labels.Tag_Name(3), "Spleen");
}

TEST_F(Recovery_Watch, names_of_several_volumes_survive_the_choice_of_one_set) {
    {
        Program died(folder);
        died.recovery.Begin(folder, "1");
        died.Open();
        for (const int volume : {0, 1}) {
            died.Go(volume);
            died.values.Tag_Label_Set(3, volume == 0 ? "Liver" : "Spleen");
            died.work.session.Marker_Set(2, {true, 1, 2, 1});
        }
        EXPECT_TRUE(died.recovery.Look());
    }
    Program next(folder);
    next.labels.Share(true);
    next.recovery.Begin(folder, "1");
    next.dialogs.ways = {0};
    EXPECT_TRUE(next.recovery.Offer());
    EXPECT_FALSE(next.labels.Is_Shared());
    EXPECT_THAT(next.dialogs.warned, ElementsAre(HasSubstr("names and colours of their own")));
    EXPECT_EQ(next.labels.Tag_Name(3), "Liver");
    next.Go(1);
    EXPECT_EQ(next.labels.Tag_Name(3), "Spleen");
}

TEST_F(Recovery_Watch, names_that_all_volumes_have_are_those_of_the_first) {
    A_Run_Dies();
    Program next(folder);
    next.labels.Share(true);
    next.recovery.Begin(folder, "1");
    next.dialogs.ways = {0};
    EXPECT_TRUE(next.recovery.Offer());
    next.Go(0);
    EXPECT_EQ(next.labels.Tag_Name(3), "Liver");
}

}  // namespace
