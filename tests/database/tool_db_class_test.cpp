#include "database/tool_db_class.h"

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/database/host_calls.h"
#include "tests/support/panel_fixture.h"

namespace {

constexpr int SELECTED = 0x10;
constexpr int GROUP = 4;
constexpr int MASK = 512;

bool Is_Selected(const Quorel& object) {
    return object.Flag_Get_Bit(SELECTED, GROUP, MASK) != 0;
}
int Flags(const Quorel& object) {
    return object.Flag_Get_Bit(0xFFFF, GROUP, MASK);
}
void Set_Icon(Quorel_1D& object, const char* icon) {
    std::snprintf(object.icon, sizeof(object.icon), "%s", icon);
}
void Set_Icon(Quorel_2D& object, const char* icon) {
    std::snprintf(object.icon, sizeof(object.icon), "%s", icon);
}
void Set_Icon(Quorel_3D& object, const char* icon) {
    std::snprintf(object.icon, sizeof(object.icon), "%s", icon);
}

/** What the tests know of a dimension. */
template <class Class, int NUMBER, int PLAIN_CODE, unsigned UPDATE_FLAGS>
struct Dimension {
    using Object = Class;
    static constexpr int D = NUMBER;
    static constexpr int PLAIN = PLAIN_CODE;
    static constexpr unsigned UPDATE = UPDATE_FLAGS;
    static const char* Root() {
        static const std::string name = "$DB_" + std::to_string(NUMBER) + "D_ROOT_PT";
        return name.c_str();
    }
};
using Dimensions = testing::Types<Dimension<Quorel_1D, 1, 8191, 0x101>, Dimension<Quorel_2D, 2, 12287, 0x102>,
                                  Dimension<Quorel_3D, 3, 16383, 0x104>>;

/** Classes of one dimension in the host. */
template <class Class>
class Classes {
  public:
    explicit Classes(const char* root_variable) : variable(root_variable) {}
    ~Classes() {
        Variable_Undefine(variable);
        while (!objects.empty()) {
            objects.pop_front();
        }
    }
    Classes(const Classes&) = delete;
    Classes& operator=(const Classes&) = delete;

    /** @param parent null: the root */
    Class& Add(Class* parent, const std::string& title = "") {
        Class& object = objects.emplace_back();
        object.Title_Set(title.c_str());
        if (parent != nullptr) {
            parent->Child_Add(&object);
        } else {
            Variable_Define_Pointer(variable, &object);
        }
        return object;
    }
    std::deque<Class> objects;

  private:
    const char* variable;
};

/** The records of a view, as a panel keeps them. */
struct Rows {
    int nb = 0;
    DB_List* list_pt = nullptr;
    Rows() = default;
    ~Rows() { Free(); }
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;
    void Free() { DB_List_Array_Free(&nb, &list_pt); }
    unsigned short Create(Tool_DB_List& view, int level = 0, int parent = 0, void* object = nullptr) {
        return view.List_Create_From_DB(&nb, &list_pt, level, parent, object);
    }
    DB_List& operator[](int i) const { return list_pt[i]; }
};

template <class Dimension_Type>
class Tool_DB_Class_Test : public testing::Test {
  protected:
    using Object = typename Dimension_Type::Object;
    Tool_DB_Class_Test() : view(Dimension_Type::D), classes(Dimension_Type::Root()) {
        host.Name(&window, "window");
        Variable_Define_Pointer("$WINDOW_CUR", &window);
    }
    ~Tool_DB_Class_Test() override { Variable_Undefine("$WINDOW_CUR"); }

    Object& Add(Object* parent, const std::string& title = "") {
        Object& object = classes.Add(parent, title);
        host.Name(&object, title);
        return object;
    }
    Calls Write(Rows& written) {
        host.Take();
        view.List_Select_To_DB(written.nb, written.list_pt);
        return host.Take();
    }

    Quorel_Window window;
    Tool_DB_Class view;
    Classes<Object> classes;
    Rows rows;
    Host_Calls host;
    Message_Recorder messages;
};
TYPED_TEST_SUITE(Tool_DB_Class_Test, Dimensions);

TYPED_TEST(Tool_DB_Class_Test, root_without_children_yields_a_single_leaf) {
    auto& root = this->Add(nullptr, "root");
    root.Name_Set("its name");
    EXPECT_EQ(this->rows.Create(this->view), 1);
    ASSERT_EQ(this->rows.nb, 1);
    const DB_List& record = this->rows[0];
    EXPECT_EQ(record.flag, DB_FLAG_LEAF);
    EXPECT_EQ(record.state, 0);
    EXPECT_EQ(record.object, &root);
    EXPECT_STREQ(record.title, "root");
    EXPECT_STREQ(record.name, "its name");
    EXPECT_STREQ(record.icon, "icon folder.tga");
    EXPECT_EQ(record.child_nb | record.desc_nb | record.level | record.parent, 0);
    EXPECT_EQ(record.row | record.modality | record.index | record.column_nb, 0);
    EXPECT_EQ(record.color, 0U);
}

TYPED_TEST(Tool_DB_Class_Test, records_follow_the_hierarchy_depth_first) {
    auto& root = this->Add(nullptr, "root");
    auto& left = this->Add(&root, "left");
    auto& right = this->Add(&root, "right");
    auto& below = this->Add(&left, "below");
    auto& deep = this->Add(&below, "deep");
    Set_Icon(left, "icon left.tga");
    EXPECT_EQ(this->rows.Create(this->view), 5);
    ASSERT_EQ(this->rows.nb, 5);
    const void* const object[] = {&root, &left, &below, &deep, &right};
    const int level[] = {0, 1, 2, 3, 1};
    const int parent[] = {0, 0, 1, 2, 0};
    const int child_nb[] = {2, 1, 1, 0, 0};
    const int desc_nb[] = {4, 2, 1, 0, 0};
    for (int i = 0; i < 5; ++i) {
        const DB_List& record = this->rows[i];
        EXPECT_EQ(record.object, object[i]) << i;
        EXPECT_EQ(record.level, level[i]) << i;
        EXPECT_EQ(record.parent, parent[i]) << i;
        EXPECT_EQ(record.child_nb, child_nb[i]) << i;
        EXPECT_EQ(record.desc_nb, desc_nb[i]) << i;
        EXPECT_EQ(record.flag, child_nb[i] > 0 ? DB_FLAG_EXPANDED : DB_FLAG_LEAF) << i;
        EXPECT_STREQ(record.icon, i == 1 ? "icon left.tga" : "icon folder.tga") << i;
        EXPECT_EQ(record.name, nullptr) << i;
    }
}

TYPED_TEST(Tool_DB_Class_Test, given_object_level_and_parent_are_used_and_rows_appended) {
    auto& root = this->Add(nullptr, "root");
    auto& branch = this->Add(&root, "branch");
    this->Add(&branch, "leaf");
    EXPECT_EQ(this->rows.Create(this->view, 7, 3, &branch), 2);
    EXPECT_EQ(this->rows.Create(this->view, 0, 0, nullptr), 3);
    ASSERT_EQ(this->rows.nb, 5);
    EXPECT_EQ(this->rows[0].level, 7);
    EXPECT_EQ(this->rows[0].parent, 3);
    EXPECT_EQ(this->rows[1].level, 8);
    EXPECT_EQ(this->rows[1].parent, 0);
    EXPECT_EQ(this->rows[3].parent, 2);
    EXPECT_EQ(this->rows[4].parent, 3);
}

TYPED_TEST(Tool_DB_Class_Test, empty_title_and_name_stay_null) {
    auto& root = this->Add(nullptr, "");
    root.Name_Set("");
    this->rows.Create(this->view);
    EXPECT_EQ(this->rows[0].title, nullptr);
    EXPECT_EQ(this->rows[0].name, nullptr);
    root.Title_Set(nullptr);
    this->rows.Create(this->view);
    EXPECT_EQ(this->rows[1].title, nullptr);
}

TYPED_TEST(Tool_DB_Class_Test, leaf_of_another_class_is_locked_and_its_selection_shown_at_creation) {
    auto& root = this->Add(nullptr, "root");
    root.class_a = 77;  // a branch: never locked
    auto& plain = this->Add(&root, "plain");
    auto& other = this->Add(&root, "other");
    other.class_a = TypeParam::PLAIN + 1;
    for (auto* object : {&root, &plain, &other}) {
        object->Flag_Set_On(SELECTED, GROUP, MASK);
    }
    this->rows.Create(this->view);
    EXPECT_EQ(this->rows[0].flag, DB_FLAG_EXPANDED);
    EXPECT_EQ(this->rows[0].state, 0);
    EXPECT_EQ(this->rows[1].flag, DB_FLAG_LEAF);
    EXPECT_EQ(this->rows[1].state, DB_STATE_CHECKED);
    EXPECT_EQ(this->rows[2].flag, DB_FLAG_LEAF | DB_FLAG_LOCKED);
    EXPECT_EQ(this->rows[2].state, DB_STATE_CHECKED);
}

TYPED_TEST(Tool_DB_Class_Test, flag_of_a_leaf_is_asked_once_at_creation) {
    auto& root = this->Add(nullptr, "root");
    this->Add(&root, "leaf");
    this->rows.Create(this->view);
    EXPECT_EQ(this->host.Take(), (Calls{"get(leaf, 0x10, 4, 512) = 0x0"}));
}

TYPED_TEST(Tool_DB_Class_Test, without_a_root_there_is_no_record) {
    EXPECT_EQ(this->rows.Create(this->view), 0);
    EXPECT_EQ(this->rows.nb, 0);
    EXPECT_EQ(this->rows.list_pt, nullptr);
    EXPECT_EQ(this->Write(this->rows), Calls{});
}

TYPED_TEST(Tool_DB_Class_Test, without_rows_the_root_is_written_and_the_host_told) {
    this->Add(nullptr, "root");
    const Calls calls = this->Write(this->rows);
    ASSERT_EQ(calls.size(), 3U);
    EXPECT_EQ(calls[0], "off(root, 0x30, 4, 512)");
}

TYPED_TEST(Tool_DB_Class_Test, without_a_window_2d_classes_are_not_written) {
    auto& root = this->Add(nullptr, "root");
    this->Add(&root, "leaf");
    this->rows.Create(this->view);
    this->rows[1].state = DB_STATE_CHECKED;
    Variable_Undefine("$WINDOW_CUR");
    if (TypeParam::D == 2) {
        EXPECT_EQ(this->Write(this->rows), Calls{});
    } else {
        EXPECT_EQ(this->Write(this->rows).size(), 4U) << "root, leaf, update, redraw";
    }
}

TYPED_TEST(Tool_DB_Class_Test, reading_skips_branches_and_locked_leaves) {
    auto& root = this->Add(nullptr, "root");
    auto& plain = this->Add(&root, "plain");
    auto& other = this->Add(&root, "other");
    other.class_a = 5;
    this->rows.Create(this->view);
    for (auto* object : {&root, &plain, &other}) {
        object->Flag_Set_On(SELECTED, GROUP, MASK);
    }
    this->host.Take();
    this->view.List_Select_From_DB(this->rows.nb, this->rows.list_pt);
    EXPECT_EQ(this->host.Take(), (Calls{"get(plain, 0x10, 4, 512) = 0x10"}));
    EXPECT_EQ(this->rows[0].state, 0);
    EXPECT_EQ(this->rows[1].state, DB_STATE_CHECKED);
    EXPECT_EQ(this->rows[2].state, 0);
}

TYPED_TEST(Tool_DB_Class_Test, reading_a_set_flag_drops_the_no_access_bit_and_a_clear_one_leaves_it) {
    auto& root = this->Add(nullptr, "root");
    this->Add(&root, "clear");
    auto& set = this->Add(&root, "set");
    this->rows.Create(this->view);
    set.Flag_Set_On(SELECTED, GROUP, MASK);
    for (int i = 0; i < 3; ++i) {
        this->rows[i].state = 0xFFFF;
    }
    this->view.List_Select_From_DB(this->rows.nb, this->rows.list_pt);
    EXPECT_EQ(this->rows[0].state, 0xFFFF);
    EXPECT_EQ(this->rows[1].state, 0xFFFD);
    EXPECT_EQ(this->rows[2].state, DB_STATE_CHECKED);
}

TYPED_TEST(Tool_DB_Class_Test, writing_goes_from_the_last_leaf_to_the_first) {
    auto& root = this->Add(nullptr, "root");
    auto& one = this->Add(&root, "one");
    auto& branch = this->Add(&root, "branch");
    auto& two = this->Add(&branch, "two");
    auto& locked = this->Add(&branch, "locked");
    locked.class_a = 5;
    auto& three = this->Add(&root, "three");
    root.Flag_Set_On(0x70, GROUP, MASK);
    two.Flag_Set_On(0x70, GROUP, MASK);
    this->rows.Create(this->view);
    for (int i = 0; i < this->rows.nb; ++i) {
        this->rows[i].state = DB_STATE_CHECKED;  // as "Select All" does
    }
    this->rows[3].state = 1 | DB_STATE_NO_ACCESS;  // two
    const Calls calls = this->Write(this->rows);
    Calls expected{"off(root, 0x30, 4, 512)"};
    for (const char* name : {"three", "two", "one"}) {
        if (std::string(name) == "two") {
            expected.emplace_back("off(two, 0x10, 4, 512)");
            continue;
        }
        expected.push_back("on(" + std::string(name) + ", 0x50, 4, 512)");
        if (TypeParam::D == 2) {
            expected.push_back("child(window, " + std::string(name) + ", -)");
            expected.emplace_back("update(0x200000, -, -, -)");
        }
    }
    char update[40];
    std::snprintf(update, sizeof(update), "update(0x%x, all, -, -)", TypeParam::UPDATE);
    expected.emplace_back(update);
    expected.emplace_back("redraw(0x3fff, -, -, -)");
    EXPECT_EQ(calls, expected);
    EXPECT_EQ(Flags(root), 0x40);
    EXPECT_EQ(Flags(one), 0x50);
    EXPECT_EQ(Flags(two), 0x60);
    EXPECT_EQ(Flags(branch), 0);
    EXPECT_EQ(Flags(locked), 0);
    EXPECT_EQ(Flags(three), 0x50);
}

TYPED_TEST(Tool_DB_Class_Test, host_that_answers_at_once_does_not_disturb_the_writing) {
    auto& root = this->Add(nullptr, "root");
    for (int i = 0; i < 20; ++i) {
        this->Add(&root, "leaf" + std::to_string(i));
    }
    this->rows.Create(this->view);
    for (int i = 1; i < this->rows.nb; i += 3) {
        this->rows[i].state = DB_STATE_CHECKED;
    }
    const Calls expected = this->Write(this->rows);
    std::vector<bool> selected;
    for (const auto& object : this->classes.objects) {
        selected.push_back(Is_Selected(object));
    }
    for (auto& object : this->classes.objects) {
        object.Flag_Set_Off(0xFFFF, GROUP, MASK);
    }
    this->host.on_update = [this](unsigned __int64) {
        this->host.Listen(false);
        this->view.List_Select_From_DB(this->rows.nb, this->rows.list_pt);
        DB_List_Set_State(this->rows.nb, this->rows.list_pt);
        this->host.Listen(true);
    };
    EXPECT_EQ(this->Write(this->rows), expected);
    for (std::size_t i = 0; i < selected.size(); ++i) {
        EXPECT_EQ(Is_Selected(this->classes.objects[i]), selected[i]) << i;
    }
}

TYPED_TEST(Tool_DB_Class_Test, rows_may_be_built_anew_while_they_are_written) {
    auto& root = this->Add(nullptr, "root");
    for (int i = 0; i < 20; ++i) {
        this->Add(&root, "leaf" + std::to_string(i));
    }
    this->rows.Create(this->view);
    for (int i = 1; i < this->rows.nb; ++i) {
        this->rows[i].state = DB_STATE_CHECKED;
    }
    this->host.on_update = [this](unsigned __int64) {
        this->rows.Free();
        this->rows.Create(this->view);
    };
    this->Write(this->rows);
    for (std::size_t i = 1; i < this->classes.objects.size(); ++i) {
        EXPECT_TRUE(Is_Selected(this->classes.objects[i])) << i;
    }
}

TYPED_TEST(Tool_DB_Class_Test, count_without_an_array_is_taken_for_no_rows) {
    auto& root = this->Add(nullptr, "root");
    root.Flag_Set_On(0x70, GROUP, MASK);
    this->view.List_Select_From_DB(9, nullptr);
    this->host.Take();
    this->view.List_Select_To_DB(9, nullptr);
    EXPECT_EQ(this->host.Take().size(), 3U);
    EXPECT_EQ(Flags(root), 0x40);
    this->rows.nb = 9;
    EXPECT_EQ(this->rows.Create(this->view), 0);
    EXPECT_EQ(this->rows.nb, 9);
    EXPECT_EQ(this->rows.list_pt, nullptr);
    EXPECT_TRUE(this->messages.Take_Reports().empty());
}

TYPED_TEST(Tool_DB_Class_Test, mode_bits_above_the_dimension_change_nothing) {
    this->Add(nullptr, "root");
    Tool_DB_Class other(TypeParam::D | DB_MODE_EDIT | DB_MODE_ADD);
    EXPECT_EQ(other.mode, TypeParam::D | DB_MODE_EDIT | DB_MODE_ADD);
    EXPECT_EQ(this->rows.Create(other), 1);
}

TYPED_TEST(Tool_DB_Class_Test, random_hierarchies_agree_with_descending_them) {
    std::mt19937 random(5);
    for (const int nb : {2, 5, 20, 200, 2000}) {
        while (!this->classes.objects.empty()) {
            this->classes.objects.pop_front();
        }
        this->Add(nullptr, "root");
        for (int i = 1; i < nb; ++i) {
            // Mostly under a recent class: deep trees
            const auto size = static_cast<unsigned int>(this->classes.objects.size());
            const unsigned int back = random() % std::min(size, random() % 3U == 0 ? size : 3U);
            auto& object = this->Add(&this->classes.objects[size - 1 - back], "c" + std::to_string(i));
            if (random() % 3U == 0) {
                object.Flag_Set_On(SELECTED, GROUP, MASK);
            }
        }
        this->rows.Free();
        EXPECT_EQ(this->rows.Create(this->view), nb);
        ASSERT_EQ(this->rows.nb, nb);
        int next = 0;
        const auto descend = [&](auto& self, auto& object, int level, int parent) -> int {
            const int at = next++;
            const DB_List& record = this->rows[at];
            EXPECT_EQ(record.object, &object);
            EXPECT_EQ(record.level, level);
            EXPECT_EQ(record.parent, parent);
            EXPECT_EQ(record.child_nb, object.Child_Get_Nb());
            EXPECT_EQ(record.state, object.Child_Get_Nb() == 0 && Is_Selected(object) ? 2 : 0);
            int below = 0;
            for (int i = 0; i < object.Child_Get_Nb(); ++i) {
                below += self(self, *object.Child_Get_Pt(i), level + 1, at);
            }
            EXPECT_EQ(record.desc_nb, below);
            return below + 1;
        };
        EXPECT_EQ(descend(descend, this->classes.objects[0], 0, 0), nb);
    }
}

TYPED_TEST(Tool_DB_Class_Test, chain_is_cut_at_level_4096) {
    auto* object = &this->Add(nullptr, "root");
    for (int i = 0; i < 5000; ++i) {
        object = &this->classes.Add(object);
    }
    EXPECT_EQ(this->rows.Create(this->view), 4096);
    EXPECT_EQ(this->rows.nb, 4096);
    EXPECT_EQ(this->rows[4095].level, 4095);
    EXPECT_EQ(this->rows[4095].child_nb, 1);
    EXPECT_EQ(this->rows[4095].desc_nb, 0);
    EXPECT_EQ(this->rows[0].desc_nb, 4095);
    while (!this->classes.objects.empty()) {
        this->classes.objects.pop_back();  // from the end: each has no children then
    }
}

TYPED_TEST(Tool_DB_Class_Test, counts_wrap_but_every_record_is_made) {
    auto& root = this->Add(nullptr, "root");
    constexpr int leaves = 65540;
    for (int i = 0; i < leaves; ++i) {
        this->classes.Add(&root);
    }
    EXPECT_EQ(this->rows.Create(this->view), leaves + 1 - 65536);
    ASSERT_EQ(this->rows.nb, leaves + 1);
    EXPECT_EQ(this->rows[0].desc_nb, leaves - 65536);
    EXPECT_EQ(this->rows[0].child_nb, leaves - 65536);
    EXPECT_EQ(this->rows[leaves].object, &this->classes.objects.back());
    while (!this->classes.objects.empty()) {
        this->classes.objects.pop_back();
    }
}

TEST(Tool_DB_Class_Modes, other_dimensions_only_redraw) {
    for (const int mode : {0, 4, 15, DB_MODE_EDIT}) {
        Quorel_2D root;
        for (const char* name : {"$DB_1D_ROOT_PT", "$DB_2D_ROOT_PT", "$DB_3D_ROOT_PT"}) {
            Variable_Define_Pointer(name, &root);
        }
        Host_Calls host;
        Tool_DB_Class view(mode);
        EXPECT_EQ(view.mode, mode);
        Rows rows;
        EXPECT_EQ(rows.Create(view), 0);
        EXPECT_EQ(rows.Create(view, 0, 0, &root), 0);
        EXPECT_EQ(rows.nb, 0);
        DB_List record{};
        record.flag = DB_FLAG_LEAF;
        record.state = 0x13;
        record.object = &root;
        view.List_Select_From_DB(1, &record);
        EXPECT_EQ(record.state, 0x13);
        view.List_Select_To_DB(1, &record);
        EXPECT_EQ(host.Take(), (Calls{"redraw(0x3fff, -, -, -)"}));
        for (const char* name : {"$DB_1D_ROOT_PT", "$DB_2D_ROOT_PT", "$DB_3D_ROOT_PT"}) {
            Variable_Undefine(name);
        }
    }
}

}  // namespace
