// What holds for the TAG and the marker panel word for word.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "panels/tool_marker.h"
#include "panels/tool_tag.h"
#include "tests/panels/label_scene.h"

namespace {

constexpr int NONE = -1;
constexpr int ALL_IN_VIEW = 20;
constexpr int SCROLLED = 48;  ///< labels that need the slider

class Tag_Host : public Tag_Fixture {
  protected:
    using Panel_Type = Tool_Tag;
    using Tag_Fixture::Tag_Fixture;
    void Define(int nb) { Define_Tags(nb); }
};

class Marker_Host : public Marker_Fixture {
  protected:
    using Panel_Type = Tool_Marker;
    using Marker_Fixture::Marker_Fixture;
    void Define(int nb) { Define_Markers(nb); }
};

using Hosts = testing::Types<Tag_Host, Marker_Host>;

template <class Host>
class Label_Panel_Down : public Host {
  protected:
    Label_Panel_Down() : Host(Window_Axis::Down) {}
    using typename Host::Panel_Type;
};
TYPED_TEST_SUITE(Label_Panel_Down, Hosts, );

template <class Host>
class Label_Panel_Up : public Host {
  protected:
    Label_Panel_Up() : Host(Window_Axis::Up) {}
    using typename Host::Panel_Type;

    void Expect_Shows(Panel_Type& panel, const Label_Model& model, const char* when) {
        this->window.Wipe();
        panel.Draw();
        EXPECT_EQ(this->Wrong_Pixels(model), 0) << when;
    }
};
TYPED_TEST_SUITE(Label_Panel_Up, Hosts, );

TYPED_TEST(Label_Panel_Down, a_new_panel_asks_for_nothing_and_draws_nothing) {
    this->messages.Take();
    Variable_Look_Ups_Reset();
    this->Take_Counters();
    const typename TestFixture::Panel_Type fresh;
    EXPECT_EQ(Variable_Look_Ups(nullptr), 0U);
    EXPECT_EQ(this->Take_Counters().inits, 0U);
    EXPECT_THAT(this->messages.Take(), testing::IsEmpty());
}

TYPED_TEST(Label_Panel_Up, in_a_window_that_counts_upwards_everything_works_with_the_rows_turned_over) {
    typename TestFixture::Panel_Type panel;
    for (const int nb : {ALL_IN_VIEW, SCROLLED}) {
        this->Define(nb);
        Boxs box = this->Place();
        EXPECT_EQ(panel.Resize(&box), 1);
        Label_Model model = this->Fresh_Model(box, nb);
        this->Expect_Shows(panel, model, "up");
        EXPECT_EQ(this->Press_Label(panel, model, 3), 3);
        panel.Leave();
        EXPECT_EQ(this->Open_Editor(panel, model, 2), NONE);
        EXPECT_EQ(panel.Keyboard(KEY_ENTER), 1);
        this->Point_Away();
        panel.Leave();
        panel.Scroll(1);
        model.scroll = nb == SCROLLED ? model.scroll - Label_Model::ROW : 0;
        this->Expect_Shows(panel, model, "scrolled up");
    }
}

}  // namespace
