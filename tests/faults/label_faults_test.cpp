// The TAG and the marker panel with calls that can fail failing one by one.
#include <gtest/gtest.h>

#include <optional>

#include "panels/tool_marker.h"
#include "panels/tool_tag.h"
#include "tests/faults/fault_run.h"
#include "tests/panels/label_scene.h"

namespace {

constexpr int NB = 24;    ///< needs the slider
constexpr int LABEL = 6;  ///< in view

class Tag_Faults : public Tag_Fixture {
  protected:
    Tag_Faults() { messages.Listen(false); }
    void Build() {
        Define_Tags(NB);
        Point_Away();
        panel.emplace();
        Show();
        model = Fresh_Model(box, NB);
        requests.Take();
    }
    void Show() {
        box = Place();
        box.style |= STYLE_SHOW_CHECK;
        panel->Flag(TAG_CHECK_SELECT | TAG_GREY_DISABLED);
        panel->Resize(&box);
        panel->Update(~0ULL);
        window.Wipe();
        panel->Draw();
    }
    void Settle() {
        if (!panel) {
            panel.emplace();
        }
        Point_Away();
        panel->Leave();
        Define_Tags(NB);
        Show();
    }
    Fault_Subject Subject() {
        return {[this] { Build(); }, [this] { Settle(); }, [this] { return Pixels(); }, [this] { panel.reset(); }};
    }

    Boxs box;
    std::optional<Tool_Tag> panel;
    Label_Model model;
};

class Marker_Faults : public Marker_Fixture {
  protected:
    Marker_Faults() { messages.Listen(false); }
    void Build() {
        Define_Markers(NB);
        Point_Away();
        panel.emplace();
        Show();
        model = Fresh_Model(box, NB);
        requests.Take();
    }
    void Show() {
        box = Place();
        box.style |= STYLE_SHOW_CHECK;
        panel->Resize(&box);
        panel->Update(~0ULL);
        window.Wipe();
        panel->Draw();
    }
    void Settle() {
        if (!panel) {
            panel.emplace();
        }
        Point_Away();
        panel->Leave();
        Define_Markers(NB);
        Show();
    }
    Fault_Subject Subject() {
        return {[this] { Build(); }, [this] { Settle(); }, [this] { return Pixels(); }, [this] { panel.reset(); }};
    }

    Boxs box;
    std::optional<Tool_Marker> panel;
    Label_Model model;
};

}  // namespace

TEST_F(Tag_Faults, every_operation_survives_a_sample_of_failures_because_all_take_minutes) {
    const auto edit = [this] { Open_Editor(*panel, model, LABEL); };
    const auto edit_and_type = [this] {
        Open_Editor(*panel, model, LABEL);
        panel->Keyboard('a');
    };
    Faults_Run(
        "Tool_Tag", Subject(),
        {
            {"construction", [this] { panel.emplace(); }, true},
            {"copy and assignment",
             [this] {
                 Tool_Tag copy(*panel);
                 *panel = copy;
             }},
            {"Resize", [this] { panel->Resize(&box); }},
            {"Height", [this] { panel->Height(3); }},
            {"Draw", [this] { panel->Draw(); }},
            {"Click on a button", [this] { Press_Label(*panel, model, LABEL); }},
            {"Click on the slider", [this] { Press(*panel, model.host.x + 8, model.top + 4); }},
            {"Click that opens the editor", edit},
            {"Keyboard", [this] { panel->Keyboard('b'); }, false, edit},
            {"Keyboard that ends the editor", [this] { panel->Keyboard(KEY_ENTER); }, false, edit_and_type},
            {"Keyboard that cancels it", [this] { panel->Keyboard(KEY_ESCAPE); }, false, edit_and_type},
            {"Motion", [this] { Move(*panel, model.grid_x + 5, model.top + 5); }},
            {"drag of the slider",
             [this] {
                 Move(*panel, model.host.x + 8, model.top + 5, LEFT_DRAG);
                 Move(*panel, model.host.x + 8, model.top + 30, LEFT_DRAG);
                 panel->Motion(RELEASE);
             },
             false, [this] { Press(*panel, model.host.x + 8, model.top + 4); }},
            {"Scroll", [this] { panel->Scroll(1); }},
            {"Update, current TAG", [this] { panel->Update(UPDATE_TAG_CUR); }, false,
             [this] { Variable_Set("$TAG_CUR", LABEL); }},
            {"Update, enable", [this] { panel->Update(UPDATE_TAG_ENABLE); }, false,
             [this] { Flags("$TAG_ENABLE")[LABEL] ^= 1U; }},
            {"Update, select", [this] { panel->Update(UPDATE_TAG_SELECT); }, false,
             [this] { Flags("$TAG_SELECT")[LABEL] ^= 1U; }},
            {"Update, lock", [this] { panel->Update(UPDATE_TAG_LOCK); }, false,
             [this] {
                 panel->Flag(TAG_GREY_SELECTION);
                 Flags("$TAG_LOCK")[LABEL] ^= 1U;
             }},
            {"Update, label", [this] { panel->Update(UPDATE_TAG_LABEL); }, false,
             [this] { Variable_Set_Array_Text("$TAG_LABEL", LABEL, "other"); }},
            {"Update, table", [this] { panel->Update(UPDATE_TAG_TABLE); }, false,
             [this] { Set_Color(LABEL, 0x123456); }},
            {"Update, all", [this] { panel->Update(~0ULL); }},
            {"Leave", [this] { panel->Leave(); }, false, [this] { Move(*panel, model.grid_x + 5, model.top + 5); }},
            {"destruction", [this] { panel.reset(); }},
        });
}

TEST_F(Marker_Faults, every_operation_survives_a_sample_of_failures_because_all_take_minutes) {
    const auto edit = [this] { Open_Editor(*panel, model, LABEL); };
    const auto edit_and_type = [this] {
        Open_Editor(*panel, model, LABEL);
        panel->Keyboard('a');
    };
    Faults_Run(
        "Tool_Marker", Subject(),
        {
            {"construction", [this] { panel.emplace(); }, true},
            {"copy and assignment",
             [this] {
                 Tool_Marker copy(*panel);
                 *panel = copy;
             }},
            {"Resize", [this] { panel->Resize(&box); }},
            {"Draw", [this] { panel->Draw(); }},
            {"Click on a button", [this] { Press_Label(*panel, model, LABEL); }},
            {"Click that opens the editor", edit},
            {"Keyboard", [this] { panel->Keyboard('b'); }, false, edit},
            {"Keyboard that ends the editor", [this] { panel->Keyboard(KEY_ENTER); }, false, edit_and_type},
            {"Motion", [this] { Move(*panel, model.grid_x + 5, model.top + 5); }},
            {"Scroll", [this] { panel->Scroll(1); }},
            {"Update, all", [this] { panel->Update(~0ULL); }, false,
             [this] {
                 Variable_Set("$MARKER_CUR", LABEL);
                 Enable()[LABEL] ^= 1U;
                 Colors_Array()[LABEL + 1] ^= 0x10101U;
                 Variable_Set_Array_Text("$MARKER_LABEL", LABEL, "other");
             }},
            {"Leave", [this] { panel->Leave(); }, false, [this] { Move(*panel, model.grid_x + 5, model.top + 5); }},
            {"destruction", [this] { panel.reset(); }},
        });
}
