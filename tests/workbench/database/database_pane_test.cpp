// The database column: how often its trees are built.
#include "workbench/database/database_pane.h"

#include <gtest/gtest.h>

#include "tests/workbench/told_window.h"
#include "workbench/database/tree_parts.h"
#include "workbench/host_variables.h"

using namespace workbench;

namespace {

constexpr int WIDTH = 500;  // pixels
constexpr int HEIGHT = 400;

/** Counts how often a tree is built: its icon is asked for then, and only then. */
class Counted_Root : public Quorel_2D {
  public:
    const char* Icon_2D_Get() override {
        ++built;
        return Quorel_2D::Icon_2D_Get();
    }
    int built = 0;
};

/** root(a, b) in the column, as the application has it: what a panel asks for is done when its event is over. */
class Database_Pane_Builds : public ::testing::Test {
  protected:
    Database_Pane_Builds() {
        variables.Define();
        root.Title_Set("root");
        a.Title_Set("a");
        b.Title_Set("b");
        root.Child_Add(&a);
        root.Child_Add(&b);
        Variable_Define_Pointer("$DB_2D_ROOT_PT", &root);
        Request_Listener listener;
        listener.context = this;
        listener.update = [](void* context, unsigned __int64 flags, void*, void*) {
            static_cast<Database_Pane_Builds*>(context)->asked |= flags;
        };
        Request_Listener_Set(listener);
    }
    ~Database_Pane_Builds() override {
        Request_Listener_Set({});
        Variable_Define_Pointer("$DB_2D_ROOT_PT", nullptr);
    }
    Database_Pane_Builds(const Database_Pane_Builds&) = delete;
    Database_Pane_Builds& operator=(const Database_Pane_Builds&) = delete;

    void SetUp() override {
        ASSERT_TRUE(parent.Make());
        parent.Place({0, 0, WIDTH, HEIGHT});
        ASSERT_TRUE(pane.Make(parent.Handle()));
        pane.Show(true);
        pane.Place({0, 0, WIDTH, HEIGHT});
        pane.Lay_Out();
        pane.View_Set(Database_View::Classes_2D);
        root.built = 0;
    }
    Database_Host Services() {
        Database_Host services;
        services.run = [this](const std::function<void()>& event) {
            event();
            if (const unsigned __int64 flags = std::exchange(asked, 0); flags != 0) {
                pane.Update(flags);
            }
        };
        services.may_remove = [](const std::string&) { return true; };
        services.width_set = [](int) {};
        services.changed = [this] { pane.Lay_Out(); };
        services.origin_of = [](const void*) { return nullptr; };
        return services;
    }
    /** The pointer goes to a node of the shown panel. */
    void Point_At(const std::wstring& title) {
        for (const Accessible_Part& part : Tree_Parts(pane.Panel(), -1, pane.Panel_Window())) {
            if (part.name.starts_with(title)) {
                POINT point = {part.place.left + 15, (part.place.top + part.place.bottom) / 2};
                ::ClientToScreen(pane.Panel_Window(), &point);
                ::SetCursorPos(point.x, point.y);
                return;
            }
        }
        ADD_FAILURE() << "no such node is shown";
    }

    Host_Variables variables;
    Counted_Root root;
    Quorel_2D a;
    Quorel_2D b;
    unsigned __int64 asked = 0;
    Look look;
    Told_Window parent;
    Database_Pane pane{look, Services()};
};

TEST_F(Database_Pane_Builds, an_announced_change_builds_the_shown_tree_once_and_no_other) {
    pane.Update(UPDATE_STRUCTURE | UPDATE_LEVEL_2D);
    EXPECT_EQ(root.built, 1);
    EXPECT_EQ(pane.Panel().Nb(), 3);
}

TEST_F(Database_Pane_Builds, a_tree_that_missed_a_change_is_built_once_when_it_is_shown) {
    pane.View_Set(Database_View::Files);
    a.Child_Add(&b);
    Quorel_2D c;
    b.Child_Add(&c);
    pane.Update(UPDATE_STRUCTURE | UPDATE_LEVEL_2D);
    EXPECT_EQ(root.built, 0) << "nobody sees it";
    pane.View_Set(Database_View::Classes_2D);
    EXPECT_EQ(root.built, 1);
    EXPECT_EQ(pane.Panel().Nb(), 4);
    pane.View_Set(Database_View::Files);
    pane.View_Set(Database_View::Classes_2D);
    EXPECT_EQ(root.built, 1) << "nothing changed";
}

TEST_F(Database_Pane_Builds, a_change_in_the_editor_builds_its_tree_once) {
    pane.Editor_Set(true);
    root.built = 0;
    Point_At(L"a");
    EXPECT_TRUE(pane.Key(KEY_DELETE));
    ASSERT_EQ(root.Child_Get_Nb(), 1);
    EXPECT_EQ(root.built, 1);
    EXPECT_EQ(pane.Panel().Nb(), 2);
    pane.Update(UPDATE_STRUCTURE | UPDATE_LEVEL_2D);
    EXPECT_EQ(root.built, 2) << "another one's change";
    // The tree beside the editor is told of it as of any other.
    pane.Editor_Set(false);
    EXPECT_EQ(root.built, 3);
    EXPECT_EQ(pane.Panel().Nb(), 2);
}

}  // namespace
