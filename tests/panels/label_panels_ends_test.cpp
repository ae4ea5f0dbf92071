// The host destroys the TAG or the marker panel inside the one call that leads out of it, the announcement of a
// finished edit: nothing of the panel is touched afterwards.
#include <gtest/gtest.h>

#include "panels/tool_marker.h"
#include "panels/tool_tag.h"
#include "tests/panels/ending_panel.h"
#include "tests/panels/label_scene.h"

namespace {

constexpr int NB = 20;
constexpr const char* TYPED[] = {"12", ""};  // an empty text is announced, too

class Tag_Ends : public Tag_Fixture {};
class Marker_Ends : public Marker_Fixture {};

}  // namespace

TEST_F(Tag_Ends, when_a_finished_edit_is_announced) {
    Define_Tags(NB);
    Boxs box = Place();
    for (const unsigned short option : {TAG_GREY_SELECTION, TAG_THRESHOLD_MODE}) {
        for (const char* typed : TYPED) {
            Tool_Tag panel(option);
            panel.Resize(&box);
            Ending_Panel<Tool_Tag> ending(panel);
            requests.Answer_At_Once([&ending](unsigned long long) { ending.End(); });
            Open_Editor(*ending, Fresh_Model(box, NB), 6);
            ending->Keyboard(KEY_BACKSPACE);
            Type(*ending, typed);
            EXPECT_EQ(ending->Keyboard(KEY_ENTER), 1) << typed;
            EXPECT_TRUE(ending.Has_Ended()) << typed;
            EXPECT_TRUE(ending.Is_Untouched()) << typed;
            requests.Answer_Never();
        }
    }
    EXPECT_STREQ(Labels()[6], "12") << "the text is the host's all the same";
    EXPECT_EQ(Thresholds()[6], 12.0F);
}

TEST_F(Marker_Ends, when_a_finished_edit_is_announced) {
    Define_Markers(NB);
    Boxs box = Place();
    for (const char* typed : TYPED) {
        Tool_Marker panel;
        panel.Resize(&box);
        Ending_Panel<Tool_Marker> ending(panel);
        requests.Answer_At_Once([&ending](unsigned long long) { ending.End(); });
        Open_Editor(*ending, Fresh_Model(box, NB), 6);
        ending->Keyboard(KEY_BACKSPACE);
        Type(*ending, typed);
        EXPECT_EQ(ending->Keyboard(KEY_ENTER), 1) << typed;
        EXPECT_TRUE(ending.Has_Ended()) << typed;
        EXPECT_TRUE(ending.Is_Untouched()) << typed;
        requests.Answer_Never();
    }
    EXPECT_STREQ(Labels()[6], "12");
}
