// Random events, updates, tables, boxes and missing variables: nothing may break, and the state stays one that a fresh
// Resize brings in order. Run under the sanitizers.
#include <gtest/gtest.h>

#include <random>

#include "panels/tool_marker.h"
#include "panels/tool_tag.h"
#include "tests/panels/label_scene.h"

namespace {

constexpr int EVENT_NB = 50000;  ///< for each panel

class Storm {
  public:
    explicit Storm(unsigned int seed) : random(seed) {}
    int Below(int end) { return static_cast<int>(random() % static_cast<unsigned int>(end)); }
    int Between(int low, int high) { return low + Below(high - low + 1); }
    bool Chance(int one_in) { return Below(one_in) == 0; }
    unsigned long long Flags() {
        unsigned long long flags = 0;
        for (int i = Between(0, 5); i >= 0; i--) {
            flags |= 1ULL << Below(64);
        }
        return Chance(3) ? ~0ULL : flags | (Chance(2) ? 0x0000F04000400000ULL : 0);
    }

  private:
    std::mt19937 random;
};

/** One event at random; the same for both panels. */
template <class Panel>
void Event(Panel& panel, Storm& storm, Panel_Window& window, const Boxs& place) {
    constexpr int codes[] = {0, 1, 0x11, 0x12, 0x12, 0x12, 0x42, 0x42, 0x42, 0x22, 0x40, 0x72};
    constexpr int keys[] = {'a', '7', KEY_ENTER, KEY_TAB, KEY_ESCAPE, KEY_BACKSPACE, KEY_HOME, KEY_DELETE, 0xFFFF};
    window.Point_At(storm.Between(-5, 305), storm.Between(-5, 165));
    const int code = codes[storm.Below(static_cast<int>(std::size(codes)))];
    switch (storm.Below(12)) {
        case 0:
        case 1:
        case 2:
            panel.Click(code);
            break;
        case 3:
        case 4:
            panel.Motion(code);
            break;
        case 5:
            panel.Scroll(storm.Between(-3, 3));
            break;
        case 6:
        case 7:
            panel.Keyboard(keys[storm.Below(static_cast<int>(std::size(keys)))]);
            break;
        case 8:
            panel.Update(storm.Flags());
            break;
        case 9:
            panel.Leave();
            break;
        case 10:
            storm.Chance(8) ? panel.Draw() : panel.Update(UPDATE_TAG_CUR);
            break;
        default: {
            if (!storm.Chance(10)) {
                break;
            }
            Boxs box = place;
            box.style = storm.Chance(2) ? STYLE_FRAMED_BOX : STYLE_FRAMED_BOX | STYLE_SHOW_CHECK;
            box.width = static_cast<short>(storm.Between(-10, 290));
            box.height = static_cast<short>(storm.Between(-10, 150));
            panel.Resize(&box);
            break;
        }
    }
}

}  // namespace

namespace {
class Tag_Storm : public Tag_Fixture {};
class Marker_Storm : public Marker_Fixture {};
}  // namespace

TEST_F(Tag_Storm, the_tag_panel_survives_random_events_and_missing_variables) {
    messages.Listen(false);
    Storm storm(4711);
    Define_Tags(40);
    Boxs box = Place();
    Tool_Tag panel;
    requests.Answer_At_Once([&](unsigned long long flags) { panel.Update(flags); });
    panel.Resize(&box);
    for (int i = 0; i < EVENT_NB; i++) {
        if (storm.Chance(500)) {
            constexpr const char* names[] = {"$TAG_NB",
                                             "$TAG_CUR",
                                             "$TAG_RED",
                                             "$TAG_GRN",
                                             "$TAG_BLU",
                                             "$TAG_LABEL",
                                             "$TAG_LOCK",
                                             "$TAG_THRESHOLD_MIN",
                                             "$TAG_ENABLE",
                                             "$TAG_SELECT",
                                             "$INTERFACE_BUTTON_DIM_SML"};
            Variable_Undefine(names[storm.Below(static_cast<int>(std::size(names)))]);
        }
        if (storm.Chance(400)) {
            Define_Dimensions();
            Define_Tags(storm.Chance(4) ? storm.Between(0, 300) : storm.Between(0, 50));
        }
        if (storm.Chance(50)) {
            Variable_Set("$TAG_CUR", storm.Between(0, 60));
            panel.Flag(static_cast<unsigned short>(storm.Below(0x2000)));
        }
        if (auto* locks = Flags("$TAG_LOCK"); locks != nullptr && storm.Chance(20)) {
            locks[0] = static_cast<std::uint8_t>(storm.Below(3));
        }
        if (storm.Chance(1000)) {
            const Tool_Tag copy(panel);
            panel = copy;
        }
        Event(panel, storm, window, box);
        requests.Take();
    }
    requests.Answer_Never();
    // After all that a fresh layout shows what it must.
    Define_Dimensions();
    Define_Tags(40);
    panel.Flag(0);
    panel.Leave();
    panel.Resize(&box);
    Variable_Set("$TAG_CUR", 299);
    panel.Update(UPDATE_TAG_CUR);
    Point_Away();
    panel.Leave();
    window.Wipe();
    panel.Draw();
    EXPECT_EQ(Wrong_Pixels(Fresh_Model(box, 40)), 0);
}

TEST_F(Marker_Storm, the_marker_panel_survives_random_events_and_missing_variables) {
    messages.Listen(false);
    Storm storm(1147);
    Define_Markers(40);
    Boxs box = Place();
    Tool_Marker panel;
    requests.Answer_At_Once([&](unsigned long long flags) { panel.Update(flags); });
    panel.Resize(&box);
    for (int i = 0; i < EVENT_NB; i++) {
        if (storm.Chance(500)) {
            constexpr const char* names[] = {"$MARKER_NB",     "$MARKER_CUR",   "$MARKER_COLOR",
                                             "$MARKER_ENABLE", "$MARKER_LABEL", "$INTERFACE_CURSOR_DIM"};
            Variable_Undefine(names[storm.Below(static_cast<int>(std::size(names)))]);
        }
        if (storm.Chance(400)) {
            Define_Dimensions();
            Define_Markers(storm.Chance(4) ? storm.Between(0, 100) : storm.Between(0, 50));
        }
        if (storm.Chance(50)) {
            Variable_Set("$MARKER_CUR", storm.Between(0, 60));
        }
        if (auto* enable = Enable(); enable != nullptr && storm.Chance(20)) {
            enable[0] = static_cast<std::uint8_t>(storm.Below(3));
        }
        if (storm.Chance(1000)) {
            const Tool_Marker copy(panel);
            panel = copy;
        }
        Event(panel, storm, window, box);
        requests.Take();
    }
    requests.Answer_Never();
    Define_Dimensions();
    Define_Markers(40);
    box.style |= STYLE_SHOW_CHECK;
    panel.Leave();
    panel.Resize(&box);
    Point_Away();
    panel.Leave();
    window.Wipe();
    panel.Draw();
    EXPECT_EQ(Wrong_Pixels(Fresh_Model(box, 40)), 0);
}
