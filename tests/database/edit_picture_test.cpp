// The class tree editor in all its looks, written as pictures that people check by eye.
#include "base/gdi_handles.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/database/edit_scene.h"
#include "tests/kits/widgets/test_window.h"

namespace {

constexpr int WIDTH = 1000;
constexpr int HEIGHT = 460;

/** The built icons, beside this program. */
std::string Icon_Folder() {
    char path[MAX_PATH] = {};
    ::GetModuleFileNameA(nullptr, path, MAX_PATH - 1);
    const std::string program = path;
    return program.substr(0, program.find_last_of("/\\") + 1) + "icons";
}

class Edit_Picture : public Edit_Scene<Scene_3D> {
  protected:
    Edit_Picture() : Edit_Scene(WIDTH, HEIGHT) {
        Variable_Define_Text("$DEFAULT_ICON_PATH", Icon_Folder().c_str());
        vertical.x = WIDTH - BOX_X;
        vertical.y = BOX_Y;
        vertical.width = 16;
        vertical.height = HEIGHT - 2 * BOX_Y;
        horizontal.x = BOX_X;
        horizontal.y = BOX_Y - 18;
        horizontal.width = WIDTH - 2 * BOX_X;
        horizontal.height = 16;
    }
    ~Edit_Picture() override { Variable_Undefine("$DEFAULT_ICON_PATH"); }

    Object* Named(Object* parent, const char* title, const char* name, int code = CLASS_PLAIN_3D) {
        Object* const object = Class(parent, title);
        object->Name_Set(name);
        object->class_a = code;
        return object;
    }
    void Make() {
        Object* const anatomy = Named(nullptr, "Anatomy", "Whole body");
        Object* const head = Named(anatomy, "Organ", "Head, with a name that is far too long for its label");
        Object* const brain = Named(head, "Volume", "Brain", 0x3100);
        Named(brain, "Tissue", "Grey matter");
        Named(brain, "Lesion", "White matter");
        Named(head, "Bone", "Skull");
        Named(head, "no icon", "");
        Named(Named(anatomy, "Vessel", "Vessels", 0x3200), "Signal", "only child");
        Object* const closed = Named(anatomy, "Series", "collapsed");
        Named(closed, "Frame", "first");
        Named(closed, "Study", "hidden");
        Build();
        list_pt[Find("Series")].flag ^= DB_FLAG_EXPANDED;
    }
    void Write(const char* file) const { EXPECT_TRUE(Write_Png(file, Pixels())); }
};

TEST_F(Edit_Picture, is_written_with_a_drag_on_grey) {
    box.Set_Color(120, 120, 120);
    Make();
    EXPECT_EQ(Draw(), 1);
    vertical.Draw();
    horizontal.Draw();
    Press_On("Organ", Edit_Zone::Children_Handle);
    Point_At_Tree(300, 345);
    EXPECT_EQ(Motion(LEFT_DRAG), 1);
    Write("database_editor_grey.png");
}

TEST_F(Edit_Picture, is_written_scrolled_and_hovered_on_a_dark_ground) {
    box.Set_Color(60, 64, 68);
    Make();
    Draw();
    horizontal.value = 365.0F;
    Draw();
    vertical.Draw();
    horizontal.Draw();
    Point_At_Zone("Volume", Edit_Zone::Body);
    EXPECT_EQ(Motion(HOVER), 1);
    Write("database_editor_dark.png");
}

}  // namespace
