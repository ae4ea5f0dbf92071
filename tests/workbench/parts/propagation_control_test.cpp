// TAGs are carried from frame to frame, once or often.
#include "workbench/parts/propagation_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/workbench/parts/work_scene.h"

using namespace workbench;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Propagation_Watch : public ::testing::Test, protected Work_Scene {
  protected:
    Propagation_Watch() {
        Open(1);
        static const unsigned char byte = 1;
        static const unsigned char* const row = &byte;
        Paint_Ink ink;
        ink.tag = 2;
        work.session.Stroke_Begin(0, Brush_Footprint{&row, 0}, 1, 1, ink);
        work.session.Stroke_End();
    }
    Propagation_Host Host() {
        Propagation_Host host;
        host.stroke_end = [this] { ++strokes_ended; };
        host.panel_step = [this](int direction) {
            const int carried = propagation.Carry(work.slice, work.slice + direction);
            work.slice += carried != 0 ? direction : 0;
            return carried;
        };
        host.seen = [this] { ++seen; };
        host.repeat = [this](int count, const std::function<bool()>& step) {
            int done = 0;
            while (done < count && done < given_up_at && step()) {
                ++done;
            }
            return done;
        };
        return host;
    }
    int strokes_ended = 0;
    int seen = 0;
    int given_up_at = 100;
    Propagation_Control propagation{work, values, dialogs, Host()};
};

TEST_F(Propagation_Watch, copies_what_is_selected) {
    propagation.Propagation_Kind_Set(Propagation_Kind::Copy);
    EXPECT_EQ(propagation.Carry(0, 1), 1);
    EXPECT_EQ(work.session.Labels().At(1, 1, 1), 2);
    EXPECT_EQ(strokes_ended, 1);
    EXPECT_TRUE(Told().Has(Change::Pixels));
    EXPECT_THAT(dialogs.told.back(), HasSubstr("Propagated by copy from frame 1 to 2: 1 pixels"));
    values.Tag_Select()[2] = 0;
    EXPECT_EQ(propagation.Carry(1, 2), 0);
    EXPECT_THAT(dialogs.told.back(), HasSubstr("frame 2 shows no selected TAG"));
    EXPECT_TRUE(Told().Is_Empty());
}

TEST_F(Propagation_Watch, repeats_as_often_as_wanted_and_there_are_frames) {
    propagation.Propagation_Kind_Set(Propagation_Kind::Copy);
    dialogs.texts = {"2", "100", std::nullopt, "0"};
    propagation.Propagate_Repeat(1);
    EXPECT_EQ(work.slice, 2);
    EXPECT_EQ(seen, 2);
    EXPECT_THAT(dialogs.told.back(), "Propagated to 2 of 2 frames");
    propagation.Propagate_Repeat(1);
    EXPECT_THAT(dialogs.told.back(), "Propagated to 2 of 2 frames");
    EXPECT_EQ(work.slice, 4);
    propagation.Propagate_Repeat(1);
    EXPECT_THAT(dialogs.told.back(), "There is no frame to propagate to");
    propagation.Propagate_Repeat(-1);
    propagation.Propagate_Repeat(-1);
    EXPECT_EQ(work.slice, 4);
}

TEST_F(Propagation_Watch, tells_how_far_it_came) {
    propagation.Propagation_Kind_Set(Propagation_Kind::Copy);
    given_up_at = 1;
    dialogs.texts = {"3"};
    propagation.Propagate_Repeat(1);
    EXPECT_THAT(dialogs.told.back(), "Propagated to 1 of 3 frames");
}

}  // namespace
