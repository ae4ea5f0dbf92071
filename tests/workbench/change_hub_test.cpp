#include "workbench/model/change_hub.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/kit_dataset.h"

using namespace workbench;

namespace {

struct Expectation {
    Change change;
    unsigned long long panel_flags;
    std::string shown;  // a letter for each: image, its other views, outline of the brush, notes, title, voxel,
                        // colours, peaks' source
};

constexpr unsigned long long STATES = UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK;
constexpr unsigned long long VOLUME = UPDATE_WINDOW_CUR | UPDATE_FRAME_CUR | UPDATE_SELECTION | UPDATE_LEVEL_2D |
                                      UPDATE_TAG_ENABLE | UPDATE_TAG_LABEL | UPDATE_HISTO_PAINT;
const Expectation EXPECTED[] = {
    {Change::Stroke, 0, "ov"},
    {Change::Pixels, 0, "itvc"},
    {Change::Markers, UPDATE_TAG_ENABLE, "it"},
    {Change::Marker_Drag, 0, "i"},
    {Change::Texts, UPDATE_TAG_LABEL, "intv"},
    {Change::Bands, UPDATE_TAG_LABEL | UPDATE_HISTO_PAINT, "it"},
    {Change::Colors, UPDATE_TAG_TABLE, "itc"},
    {Change::Tag_Nb, UPDATE_TAG_TABLE | UPDATE_TAG_LABEL | STATES, "inc"},
    {Change::Tag_Shown, UPDATE_TAG_ENABLE, "inc"},
    {Change::Tag_Selected, UPDATE_TAG_SELECT | UPDATE_TAG_LOCK, "n"},
    {Change::Tag_Locked, UPDATE_TAG_SELECT | UPDATE_TAG_LOCK, "n"},
    {Change::Current_Tag, UPDATE_TAG_CUR, "in"},
    {Change::Current_Marker, UPDATE_TAG_CUR, "in"},
    {Change::Brush, UPDATE_BRUSH, "bn"},
    {Change::Position, UPDATE_FRAME_CUR, "ivc"},
    {Change::Volume, VOLUME, "intvcp"},
    {Change::Opened, VOLUME | UPDATE_ALL | UPDATE_STRUCTURE | UPDATE_LEVEL_1D | UPDATE_LEVEL_3D, "ibntvcp"},
    {Change::Selection, UPDATE_SELECTION | UPDATE_LEVEL_2D | UPDATE_HISTO_PAINT, "np"},
    {Change::Counting, 0, "n"},
    {Change::Counted, UPDATE_HISTO_DATA | UPDATE_HISTO_PAINT, "np"},
    {Change::Component, UPDATE_COLOR_COMPONENT, ""},
    {Change::Peaks, UPDATE_HISTO_PAINT, ""},
    {Change::Class_Tree, UPDATE_STRUCTURE, ""},
    {Change::View, 0, "iv"},
    {Change::Mode, 0, "n"},
    {Change::Mouse, UPDATE_MOUSE_FRAME, "v"},
    {Change::Saved, 0, "t"},
};

/** Stands for all that is told: what, and in which order. */
struct Heard {
    explicit Heard(Change_Hub& hub) {
        hub.Listen(Change_Hub::Stage::Views, [this](Told_Changes& told) {
            for (int shown = 0; shown < SHOWN_NB; ++shown) {
                if (Is_Shown_In(static_cast<Shown>(shown), told.changes)) {
                    views += "iobntvcp"[shown];
                }
            }
        });
        hub.Listen(Change_Hub::Stage::Panels, [this](Told_Changes& told) { flags.push_back(told.panel_flags); });
    }
    std::vector<unsigned long long> flags;
    std::string views;
};

class Hub_Of_Changes : public ::testing::Test {
  protected:
    int wakes = 0;
    Change_Hub hub{[this] { ++wakes; }};
};

TEST(Changes, every_kind_is_told_to_its_panels_views_and_notes_once) {
    ASSERT_EQ(std::size(EXPECTED), static_cast<std::size_t>(CHANGE_NB));
    for (int at = 0; at < CHANGE_NB; ++at) {
        const Expectation& expected = EXPECTED[at];
        ASSERT_EQ(static_cast<int>(expected.change), at);
        Change_Hub hub([] {});
        Heard heard(hub);
        hub.Note(expected.change);
        hub.Note(expected.change);
        hub.Deliver();
        hub.Deliver();
        EXPECT_EQ(heard.flags, std::vector<unsigned long long>{expected.panel_flags}) << "change " << at;
        EXPECT_EQ(heard.views, expected.shown) << "change " << at;
    }
}

TEST(Changes, a_panel_is_answered_with_the_flags_it_has_asked_for) {
    for (int bit = 0; bit < 64; ++bit) {
        Change_Hub hub([] {});
        Heard heard(hub);
        hub.Ask(1ULL << bit);
        hub.Deliver();
        EXPECT_EQ(heard.flags, std::vector<unsigned long long>{1ULL << bit}) << "bit " << bit;
    }
}

TEST(Changes, what_a_panel_asks_for_is_known_as_a_change) {
    EXPECT_EQ(Changes_Of_Panel(UPDATE_TAG_ENABLE | UPDATE_TAG_LABEL), (Changes{Change::Tag_Shown, Change::Texts}));
    EXPECT_EQ(Changes_Of_Panel(UPDATE_LEVEL_2D), Changes());
    EXPECT_TRUE(Is_Shown_In(Shown::Image, Changes_Of_Panel(UPDATE_ALL)));
    EXPECT_FALSE(Is_Shown_In(Shown::Image, Changes_Of_Panel(UPDATE_MOUSE_FRAME)));
}

TEST_F(Hub_Of_Changes, all_changes_of_an_event_are_told_together_and_stage_by_stage) {
    std::string order;
    const auto listen = [&](Change_Hub::Stage stage, char letter) {
        hub.Listen(stage, [&order, letter](Told_Changes&) { order += letter; });
    };
    listen(Change_Hub::Stage::Report, 'r');
    listen(Change_Hub::Stage::Views, 'v');
    listen(Change_Hub::Stage::Derived, 'd');
    listen(Change_Hub::Stage::Panels, 'p');
    listen(Change_Hub::Stage::Views, 'w');
    Heard heard(hub);
    hub.Note(Change::Pixels);
    hub.Note({Change::Colors, Change::Brush});
    hub.Ask(UPDATE_LEVEL_1D);
    EXPECT_EQ(order, "") << "not before the event is over";
    EXPECT_EQ(wakes, 1);
    hub.Deliver();
    EXPECT_EQ(order, "dpvwr");
    EXPECT_EQ(heard.flags, (std::vector<unsigned long long>{UPDATE_TAG_TABLE | UPDATE_BRUSH | UPDATE_LEVEL_1D}));
    hub.Deliver();
    EXPECT_EQ(order, "dpvwr") << "nothing has changed since";
    hub.Note(Change::Saved);
    EXPECT_EQ(wakes, 2);
}

TEST_F(Hub_Of_Changes, what_follows_from_a_change_is_told_with_it) {
    hub.Listen(Change_Hub::Stage::Derived, [](Told_Changes& told) {
        if (told.changes.Has(Change::Pixels)) {
            Add_To(told, Change::Counted);
        }
    });
    Heard heard(hub);
    hub.Note(Change::Pixels);
    hub.Deliver();
    EXPECT_EQ(heard.flags, std::vector<unsigned long long>{UPDATE_HISTO_DATA | UPDATE_HISTO_PAINT});
    EXPECT_EQ(heard.views, "intvcp");
}

TEST_F(Hub_Of_Changes, what_listeners_change_makes_a_round_of_its_own) {
    Heard heard(hub);
    hub.Listen(Change_Hub::Stage::Panels, [this](Told_Changes& told) {
        if (told.changes.Has(Change::Brush)) {
            hub.Ask(UPDATE_TAG_CUR);
            hub.Deliver();  // as a panel that runs a message loop would: nothing comes in between
        }
    });
    hub.Note(Change::Brush);
    hub.Deliver();
    EXPECT_EQ(heard.flags, (std::vector<unsigned long long>{UPDATE_BRUSH, UPDATE_TAG_CUR}));
    EXPECT_EQ(heard.views, "bnin");
    EXPECT_EQ(wakes, 1) << "nobody need be woken who is at it";
}

TEST_F(Hub_Of_Changes, listeners_that_answer_for_ever_are_stopped_and_nothing_stays_behind) {
    int told_nb = 0;
    hub.Listen(Change_Hub::Stage::Panels, [&](Told_Changes&) {
        ++told_nb;
        hub.Note(Change::Brush);
    });
    hub.Note(Change::Brush);
    hub.Deliver();
    EXPECT_EQ(told_nb, Change_Hub::ROUNDS_MOST);
    EXPECT_FALSE(hub.Is_Pending());
}

TEST_F(Hub_Of_Changes, an_action_for_afterwards_runs_once_when_all_is_told) {
    std::string order;
    hub.Listen(Change_Hub::Stage::Report, [&](Told_Changes&) { order += 'r'; });
    hub.Then([&] {
        order += 'a';
        hub.Note(Change::Mode);
    });
    EXPECT_EQ(wakes, 1);
    hub.Note(Change::Selection);
    EXPECT_EQ(wakes, 1);
    hub.Deliver();
    EXPECT_EQ(order, "rar");
    hub.Then([&] { order += 'b'; });
    hub.Deliver();
    EXPECT_EQ(order, "rarb") << "an action alone tells nobody";
}

TEST_F(Hub_Of_Changes, a_listener_that_fails_keeps_no_other_from_being_told) {
    bool is_first = true;
    hub.Listen(Change_Hub::Stage::Derived, [&](Told_Changes&) {
        if (std::exchange(is_first, false)) {
            throw std::runtime_error("no memory for a histogram");
        }
    });
    Heard heard(hub);
    bool is_done = false;
    hub.Then([&] { is_done = true; });
    hub.Note(Change::Brush);
    EXPECT_THROW(hub.Deliver(), std::runtime_error);
    EXPECT_EQ(heard.views, "bn");
    EXPECT_TRUE(is_done);
    hub.Note(Change::Brush);
    hub.Deliver();
    EXPECT_EQ(heard.views, "bnbn") << "the next event is told as ever";
}

}  // namespace
