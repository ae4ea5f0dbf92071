// Every allocation of the TAG and the marker panel fails once; a panel without buttons survives every operation.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>

#include "panels/tool_marker.h"
#include "panels/tool_tag.h"
#include "panels/version_export.h"
#include "tests/kits/common/failing_memory.h"
#include "tests/panels/label_scene.h"

using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

constexpr int SCROLLED = 48;  ///< needs the slider

class Tag_Memory : public Tag_Fixture {};
class Marker_Memory : public Marker_Fixture {};

/** Calls `use` with a panel for each allocation of its constructor that can fail, made while that one failed.
 *  @return how many there are */
template <class Panel, class Use>
int With_Each_Failing_Constructor(Use use) {
    for (int n = 1;; n++) {
        Panel panel;
        bool happened = false;
        {
            const Failing_Allocation failing(n);
            panel = Panel();
            happened = Failing_Allocation::Happened();
        }
        if (!happened) {
            return n - 1;
        }
        use(panel);
    }
}

template <class Panel>
void Expect_Works_Without_Buttons(Panel& panel, Boxs box, const std::function<void(int, int)>& at) {
    EXPECT_EQ(panel.Resize(&box), 1);
    panel.Draw();
    for (int y = 0; y < 160; y += 7) {
        for (int x = 0; x < 300; x += 9) {
            at(x, y);
            for (const int code : {LEFT_PRESS, RIGHT_PRESS}) {
                EXPECT_EQ(panel.Click(code), -1);
            }
            panel.Motion(HOVER);
        }
    }
    EXPECT_EQ(panel.Keyboard('a'), 0);
    EXPECT_EQ(panel.Scroll(1), 1);
    panel.Update(~0ULL);
    panel.Leave();
    const Panel copy(panel);
    panel = copy;
    panel.Height(3);
}

}  // namespace

TEST_F(Tag_Memory, a_panel_without_buttons_keeps_frame_and_slider_and_survives_everything) {
    Define_Tags(SCROLLED);
    const Label_Model model(Place(), SCROLLED);
    const int failed = With_Each_Failing_Constructor<Tool_Tag>([&](Tool_Tag& panel) {
        Expect_Works_Without_Buttons(panel, Place(), [&](int x, int y) { Point_At(x, y); });
        Boxs box = Place();
        Point_Away();
        panel.Leave();
        panel.Resize(&box);
        window.Wipe();
        panel.Draw();
        const int x = model.host.x + model.Margin() + 5;
        EXPECT_NE(Pixel(x, model.top + 3), Pixel(model.grid_x + 3, model.top + 3))
            << "the slider is drawn for the number of TAGs that there are";
        Press(panel, x, model.top + model.height - 3);
        EXPECT_EQ(Move(panel, x, 0, LEFT_DRAG), 1) << "the slider works";
        EXPECT_EQ(panel.Read(), 1) << "announced by the host";
        panel.Leave();
    });
    EXPECT_GE(failed, 1);
}

TEST_F(Marker_Memory, a_panel_without_buttons_keeps_frame_and_slider_and_survives_everything) {
    Define_Markers(SCROLLED);
    const Label_Model model(Place(), SCROLLED);
    const int failed = With_Each_Failing_Constructor<Tool_Marker>([&](Tool_Marker& panel) {
        Expect_Works_Without_Buttons(panel, Place(), [&](int x, int y) { Point_At(x, y); });
        Boxs box = Place();
        panel.Resize(&box);
        const int x = model.host.x + model.Margin() + 5;
        Press(panel, x, model.top + model.height - 3);
        EXPECT_EQ(Move(panel, x, 0, LEFT_DRAG), 1) << "the slider works";
        panel.Leave();
    });
    EXPECT_GE(failed, 1);
}

TEST_F(Tag_Memory, a_failed_label_copy_is_reported_and_leaves_the_button_behind_the_closed_editor) {
    Define_Tags(20);
    Boxs box = Place();
    Tool_Tag panel;
    panel.Resize(&box);
    const Label_Model model = Fresh_Model(box, 20);
    Open_Editor(panel, model, 6);
    Type(panel, "Lung");
    Quiet();
    messages.Listen(false);  // so that the copy is the first allocation of the operation
    int result = 1;
    {
        const Failing_Allocation failing(1);
        result = panel.Keyboard(KEY_ENTER);
        EXPECT_TRUE(Failing_Allocation::Happened());
    }
    EXPECT_EQ(result, 0);
    EXPECT_EQ(Labels()[6], nullptr);
    EXPECT_THAT(requests.Take(), IsEmpty());
    EXPECT_EQ(panel.Keyboard('x'), 0) << "the editor is closed";
    EXPECT_EQ(Press_Label(panel, model, 6), -1) << "the button does not react";
    Point_Away();
    panel.Leave();
    EXPECT_EQ(Press_Label(panel, model, 6), -1) << "and stays so";
    panel.Resize(&box);
    EXPECT_EQ(Press_Label(panel, model, 6), 6) << "until it is laid out again, with its number for a caption";
}

namespace {

/** Keeps the reports without allocating anything. */
struct Report_Slot {
    int level = 0;
    char text[512] = {};
    int nb = 0;
    static void Receive(void* context, HWND, int level, const char* text) {
        auto* slot = static_cast<Report_Slot*>(context);
        if (level < 10) {
            slot->level = level;
            std::snprintf(slot->text, sizeof slot->text, "%s", text);
            slot->nb++;
        }
    }
};

}  // namespace

TEST_F(Tag_Memory, the_report_of_a_failed_label_copy_names_line_file_and_destination) {
    Define_Tags(20);
    Boxs box = Place();
    Tool_Tag panel;
    panel.Resize(&box);
    Open_Editor(panel, Fresh_Model(box, 20), 6);
    Type(panel, "Lung");
    messages.Listen(false);
    Report_Slot report;
    Message_Receiver_Add(Report_Slot::Receive, &report, true);
    {
        const Failing_Allocation failing(1);
        EXPECT_EQ(panel.Keyboard(KEY_ENTER), 0);
    }
    Message_Receiver_Remove(Report_Slot::Receive, &report);
    EXPECT_EQ(report.nb, 1);
    EXPECT_EQ(report.level, 1);
    EXPECT_THAT(report.text, MatchesRegex("line 244  of .*/panels/tool_tag.cpp \nmemory error in strdup "
                                          "\\(var=\\(\\*TAG_Label_Pt\\)\\[Tag_Label_Cur\\]\\)"));
}

TEST_F(Marker_Memory, the_report_of_a_failed_label_copy_names_line_file_and_destination) {
    Define_Markers(20);
    Boxs box = Place();
    Tool_Marker panel;
    panel.Resize(&box);
    const Label_Model model = Fresh_Model(box, 20);
    Open_Editor(panel, model, 6);
    Type(panel, "nose");
    Quiet();
    messages.Listen(false);
    Report_Slot report;
    Message_Receiver_Add(Report_Slot::Receive, &report, true);
    {
        const Failing_Allocation failing(1);
        EXPECT_EQ(panel.Keyboard(KEY_ENTER), 0);
    }
    Message_Receiver_Remove(Report_Slot::Receive, &report);
    EXPECT_EQ(report.nb, 1);
    EXPECT_EQ(report.level, 1);
    EXPECT_THAT(report.text, MatchesRegex("line 236  of .*/panels/tool_marker.cpp \nmemory error in strdup "
                                          "\\(var=\\(\\*Marker_Label_Pt\\)\\[ID_Label_Cur\\]\\)"));
    EXPECT_EQ(Labels()[6], nullptr);
    EXPECT_THAT(requests.Take(), IsEmpty());
    EXPECT_EQ(Press_Label(panel, model, 6), -1) << "the button stays behind the closed editor";
}

TEST_F(Tag_Memory, every_operation_survives_every_failing_allocation) {
    Define_Tags(SCROLLED);
    const Label_Model model = Fresh_Model(Place(), SCROLLED);
    messages.Listen(false);
    Request_Listener_Set({});  // neither records, so that nothing but the panel allocates
    const int failed = Fail_Each_Allocation([&] {
        Tool_Tag panel(0x1331);
        Boxs box = Place();
        panel.Resize(&box);
        panel.Draw();
        Press_Label(panel, model, 2);
        Open_Editor(panel, model, 3);
        panel.Keyboard('a');
        panel.Keyboard(KEY_ENTER);
        panel.Flag(0);
        Open_Editor(panel, model, 3);
        panel.Keyboard('a');
        panel.Keyboard(KEY_ENTER);
        Point_At(100, 60);
        panel.Motion(HOVER);
        panel.Scroll(1);
        panel.Update(~0ULL);
        Tool_Tag copy(panel);
        panel = copy;
        panel.Leave();
    });
    EXPECT_GE(failed, 2) << "the buttons and a label at least";
}

TEST_F(Marker_Memory, every_operation_survives_every_failing_allocation) {
    Define_Markers(SCROLLED);
    const Label_Model model = Fresh_Model(Place(), SCROLLED);
    messages.Listen(false);
    Request_Listener_Set({});  // neither records, so that nothing but the panel allocates
    const int failed = Fail_Each_Allocation([&] {
        Tool_Marker panel;
        Boxs box = Place();
        panel.Resize(&box);
        panel.Draw();
        Press_Label(panel, model, 2);
        Open_Editor(panel, model, 3);
        panel.Keyboard('a');
        panel.Keyboard(KEY_ENTER);
        Point_At(100, 60);
        panel.Motion(HOVER);
        panel.Scroll(1);
        panel.Update(~0ULL);
        Tool_Marker copy(panel);
        panel = copy;
        panel.Leave();
    });
    EXPECT_GE(failed, 2);
}

TEST(Version_Memory, the_description_comes_without_the_name_when_there_is_no_memory_for_the_path) {
    const Failing_Allocation failing(1);
    char* description = Get_Version_Quorel_Tools(nullptr);
    EXPECT_TRUE(Failing_Allocation::Happened());
    EXPECT_STREQ(description, ".dll 5.0 (rev-16b)");
}
