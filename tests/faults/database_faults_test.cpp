// The database panel as browser (class and file view) and as editor, with calls that can fail failing one by one.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "database/edit_diagram.h"
#include "database/tool_db_class.h"
#include "database/tool_db_file.h"
#include "tests/faults/database_scene.h"
#include "tests/faults/fault_run.h"
#include "tests/support/own_window.h"
#include "tests/support/panel_fixture.h"

namespace {

constexpr int WIDTH = 760;
constexpr int HEIGHT = 240;
constexpr int MORE_CLASSES = 8;  // more rows than fit

/** A view in a window, and its host's data. */
template <class View>
class Database_Faults : public Panel_Fixture {
  public:
    using Panel_Fixture::Host_Box;
    using Panel_Fixture::Point_At;

    explicit Database_Faults(int mode_word) : Panel_Fixture(Window_Axis::Up, WIDTH, HEIGHT), mode(mode_word) {
        messages.Listen(false);
        Define_Dimensions();
        Variable_Define_Text("$DEFAULT_ICON_PATH", "icons");
    }
    ~Database_Faults() override {
        panel.reset();
        Variable_Undefine("$DEFAULT_ICON_PATH");
    }
    void Host_Data() {
        classes.emplace(MORE_CLASSES);
        files.emplace();
        File_Scene_Fill(*files);
    }
    void Show() {
        Boxs box = Host_Box(10, 10, WIDTH - 20, HEIGHT - 20);
        box.border = 1;
        panel->Resize(&box);
        panel->Update(UPDATE_STRUCTURE | UPDATE_WINDOW_CUR | UPDATE_SELECTION | UPDATE_LEVEL_2D);
        window.Wipe();
        panel->Draw();
        requests.Take();
    }
    Fault_Subject Subject() {
        Fault_Subject subject;
        subject.build = [this] {
            Host_Data();
            Point_At(0, 0);
            panel.emplace(mode);
            Show();
        };
        subject.settle = [this] {
            Point_At(0, 0);
            if (!panel) {
                panel.emplace(mode);
            }
            panel->Motion(HOVER);
            panel->Leave();
            // The panel's records still name the objects of before; it must not look at them.
            Host_Data();
            Show();
        };
        subject.picture = [this] {
            Window_Picture picture = Pixels();
            // The editor's warning has two wordings that take turns.
            const Labels& line = panel->warning[1];
            for (int y = line.y; y < line.y + line.height; y++) {
                std::fill_n(picture.pixels.begin() + window.Row(y) * WIDTH + line.x, line.width, 0U);
            }
            return picture;
        };
        subject.end = [this] {
            panel.reset();
            classes.reset();
            files.reset();
        };
        return subject;
    }
    void Point_At_Tree(int x, int y) const {
        const Boxs& list = panel->list_box;
        Point_At(list.x + SPACE_DIM + x, list.y + list.height - y);
    }
    void Point_At_Row(int row) const { Point_At_Tree(100, row * DB_ROW_HEIGHT + DB_ROW_HEIGHT / 2); }
    void Point_Into(const Tools& widget) const { Point_At(widget.x + widget.width / 2, widget.y + widget.height / 2); }

    int mode;
    std::optional<Class_Scene> classes;
    std::optional<File_Scene> files;
    std::optional<View> panel;
};

class Class_Faults : public Database_Faults<Tool_DB_Class> {
  public:
    Class_Faults() : Database_Faults(2) {}
};
class File_Faults : public Database_Faults<Tool_DB_File> {
  public:
    File_Faults() : Database_Faults(2) {}
};
class Edit_Faults : public Database_Faults<Tool_DB_Class> {
  public:
    Edit_Faults() : Database_Faults(2 | DB_MODE_EDIT) {}

    void Point_At_Zone(const char* title, Edit_Zone zone) const {
        const DB_List* const list = panel->List_Pt();
        for (int i = 0; i < panel->Nb(); i++) {
            if (list[i].title != nullptr && std::string(list[i].title) == title) {
                const int in_cell = zone == Edit_Zone::Children_Handle ? EDIT_NODE_WIDTH
                                    : zone == Edit_Zone::Toggle        ? EDIT_TOGGLE_X
                                    : zone == Edit_Zone::Body          ? EDIT_NODE_WIDTH / 2
                                                                       : 0;
                Point_At_Tree(EDIT_CELL_WIDTH * list[i].level + in_cell - static_cast<int>(panel->horizontal.value),
                              EDIT_CELL_HEIGHT * list[i].row + EDIT_MIDDLE_Y - static_cast<int>(panel->vertical.value));
                return;
            }
        }
        Point_At(0, 0);
    }
    /** A right press on a class opens the dialog; a timer that the dialog's own loop serves is its user. */
    void Rename(const char* title, bool save) {
        saves = save;
        tick_nb = 0;
        const UINT_PTR timer = ::SetTimer(nullptr, 0, USER_TIMER_MINIMUM, User);
        Point_At_Zone(title, Edit_Zone::Body);
        panel->Click(RIGHT_PRESS);
        ::KillTimer(nullptr, timer);
    }

  private:
    static void CALLBACK User(HWND, UINT, UINT_PTR, DWORD) {
        const HWND dialog = Own_Window({}, L"Class Rename");
        if (dialog == nullptr) {
            return;
        }
        RECT client = {};
        ::GetClientRect(dialog, &client);
        // The button "Save" is at the lower left, "Cancel" at the lower right.
        const LPARAM button =
            MAKELPARAM(saves ? client.right / 4 : 3 * client.right / 4, client.bottom - SPACE_DIM - BUTTON_DIM_BIG / 2);
        switch (tick_nb++) {
            case 0:
                ::UpdateWindow(dialog);
                ::SendMessageA(dialog, WM_MOUSEMOVE, 0, button);
                ::SendMessageA(dialog, WM_KEYDOWN, 'X', 1);
                break;
            case 1:
                ::SendMessageA(dialog, WM_LBUTTONDOWN, MK_LBUTTON, button);
                ::SendMessageA(dialog, WM_LBUTTONUP, 0, button);
                break;
            default:
                ::SendMessageA(dialog, WM_CLOSE, 0, 0);  // a failure kept the button from being met
                break;
        }
    }
    inline static bool saves = true;
    inline static int tick_nb = 0;
};

/** What both browsers can do. */
template <class Fixture>
std::vector<Fault_Operation> Browser_Operations(Fixture* self) {
    return {
        {"construction", [self] { self->panel.emplace(2); }, true},
        {"copy and assignment",
         [self] {
             auto copy(*self->panel);
             *self->panel = copy;
         }},
        {"Resize",
         [self] {
             Boxs box = self->Host_Box(10, 10, WIDTH - 60, HEIGHT - 30);
             self->panel->Resize(&box);
         }},
        {"Height", [self] { self->panel->Height(4); }},
        {"Draw", [self] { self->panel->Draw(); }},
        {"Click on a row's mark",
         [self] {
             self->Point_At_Row(3);
             self->panel->Click(LEFT_PRESS);
             self->panel->Click(RELEASE);
         }},
        {"Click on a branch",
         [self] {
             self->Point_At_Tree(8, DB_ROW_HEIGHT / 2);
             self->panel->Click(LEFT_PRESS);
             self->panel->Click(RELEASE);
         }},
        {"drag over rows",
         [self] {
             self->Point_At_Row(4);
             self->panel->Motion(LEFT_DRAG);
             self->Point_At_Row(6);
             self->panel->Motion(LEFT_DRAG);
             self->panel->Click(RELEASE);
         },
         false,
         [self] {
             self->Point_At_Row(2);
             self->panel->Click(LEFT_PRESS);
         }},
        {"drag into a scroll zone",
         [self] {
             self->Point_Into(self->panel->bottom_zone);
             self->panel->Motion(LEFT_DRAG);
             self->panel->Motion(LEFT_DRAG);
             self->panel->Motion(HOVER);
         },
         false,
         [self] {
             self->Point_At_Row(2);
             self->panel->Click(LEFT_PRESS);
         }},
        {"Click on Select All",
         [self] {
             self->Point_Into(self->panel->select_all);
             self->panel->Click(LEFT_PRESS);
         }},
        {"Click on Select None",
         [self] {
             self->Point_Into(self->panel->select_none);
             self->panel->Click(LEFT_PRESS);
         }},
        {"Click on a slider",
         [self] {
             self->Point_Into(self->panel->vertical);
             self->panel->Click(LEFT_PRESS);
         }},
        {"Motion",
         [self] {
             self->Point_At_Row(2);
             self->panel->Motion(HOVER);
         }},
        {"Scroll",
         [self] {
             self->Point_At_Row(2);
             self->panel->Scroll(-1);
         }},
        {"Keyboard", [self] { self->panel->Keyboard(KEY_DELETE); }},
        {"Update, structure", [self] { self->panel->Update(UPDATE_STRUCTURE | UPDATE_LEVEL_2D); }},
        {"Update, selection", [self] { self->panel->Update(UPDATE_SELECTION | UPDATE_LEVEL_2D); }},
        {"Update, window", [self] { self->panel->Update(UPDATE_WINDOW_CUR); }},
        {"Leave", [self] { self->panel->Leave(); }},
        {"destruction", [self] { self->panel.reset(); }},
    };
}

}  // namespace

TEST_F(Class_Faults, every_operation_survives_a_sample_of_failures_because_all_take_minutes) {
    Faults_Run("Tool_DB_Class", Subject(), Browser_Operations(this));
}

TEST_F(File_Faults, every_operation_survives_a_sample_of_failures_because_all_take_minutes) {
    Faults_Run("Tool_DB_File", Subject(), Browser_Operations(this));
}

TEST_F(Edit_Faults, every_operation_survives_a_sample_of_failures_because_all_take_minutes) {
    const auto press = [this](const char* title, Edit_Zone zone) {
        return [this, title, zone] {
            Point_At_Zone(title, zone);
            panel->Click(LEFT_PRESS);
        };
    };
    const auto drop_on = [this](const char* title) {
        return [this, title] {
            Point_At_Zone("b", Edit_Zone::Body);
            panel->Motion(LEFT_DRAG);
            Point_At_Zone(title, Edit_Zone::Children_Handle);
            panel->Motion(LEFT_DRAG);
            panel->Click(RELEASE);
        };
    };
    Faults_Run(
        "editor", Subject(),
        {
            {"construction", [this] { panel.emplace(mode); }, true},
            {"Draw", [this] { panel->Draw(); }},
            {"Resize",
             [this] {
                 Boxs box = Host_Box(10, 10, WIDTH - 60, HEIGHT - 30);
                 panel->Resize(&box);
             }},
            {"Click on a toggle", press("root", Edit_Zone::Toggle)},
            {"Click on a parent handle", press("c", Edit_Zone::Parent_Handle)},
            {"Click on a children handle", press("a", Edit_Zone::Children_Handle)},
            {"drag of a node and drop", drop_on("root"), false, press("c", Edit_Zone::Parent_Handle)},
            {"drag of children and drop", drop_on("root"), false, press("c", Edit_Zone::Children_Handle)},
            {"drag into a scroll zone",
             [this] {
                 Point_Into(panel->bottom_zone);
                 panel->Motion(LEFT_DRAG);
                 Point_Into(panel->right_zone);
                 panel->Motion(LEFT_DRAG);
                 panel->Motion(HOVER);
             },
             false, press("c", Edit_Zone::Parent_Handle)},
            {"Motion",
             [this] {
                 Point_At_Zone("a", Edit_Zone::Children_Handle);
                 panel->Motion(HOVER);
                 Point_At_Zone("a", Edit_Zone::Body);
                 panel->Motion(HOVER);
             }},
            {"Scroll",
             [this] {
                 Point_At_Zone("a", Edit_Zone::Body);
                 panel->Scroll(-1);
             }},
            {"Keyboard, Delete",
             [this] {
                 Point_At_Zone("a", Edit_Zone::Body);
                 panel->Keyboard(KEY_DELETE);
             }},
            {"Update, structure", [this] { panel->Update(UPDATE_STRUCTURE | UPDATE_LEVEL_2D); }},
            {"Leave", [this] { panel->Leave(); }},
            {"destruction during a drag", [this] { panel.reset(); }, false, press("a", Edit_Zone::Children_Handle)},
            {"rename dialog", [this] { Rename("a", true); }, false, nullptr, true},
            {"rename dialog, cancelled", [this] { Rename("a", false); }, false, nullptr, true},
        });
}
