// Both views with every allocation failing once, and whatever is done with the rows afterwards.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

#include "database/tool_db_class.h"
#include "database/tool_db_file.h"
#include "kits/common/messages.h"
#include "tests/database/file_scene.h"
#include "tests/kits/common/failing_memory.h"

namespace {

constexpr int SELECTED = 0x10;
constexpr int GROUP = 4;
constexpr int MASK = 512;

bool Is_Selected(const Quorel& object) {
    return object.Flag_Get_Bit(SELECTED, GROUP, MASK) != 0;
}

/** Keeps the last message; allocates nothing while it is told. */
class Last_Message {
  public:
    Last_Message() { Message_Receiver_Add(Receive, this, true); }
    ~Last_Message() { Message_Receiver_Remove(Receive, this); }
    Last_Message(const Last_Message&) = delete;
    Last_Message& operator=(const Last_Message&) = delete;
    bool Says(const char* words) const { return std::strstr(text, words) != nullptr; }
    int nb = 0;
    int level = 0;
    char text[500] = {};

  private:
    static void Receive(void* context, HWND, int message_level, const char* message) {
        auto& self = *static_cast<Last_Message*>(context);
        ++self.nb;
        self.level = message_level;
        std::snprintf(self.text, sizeof(self.text), "%s", message);
    }
};

/** Rows of a view, made while an allocation fails, and then used. */
struct Rows {
    int nb = 0;
    DB_List* list_pt = nullptr;

    void Use(Tool_DB_List& view) {
        DB_List_Set_State(nb, list_pt);
        view.List_Select_From_DB(nb, list_pt);
        for (int i = 0; list_pt != nullptr && i < nb; ++i) {
            list_pt[i].state = DB_STATE_CHECKED;
        }
        view.List_Select_To_DB(nb, list_pt);
        DB_List_Array_Free(&nb, &list_pt);
        EXPECT_EQ(nb, 0);
        EXPECT_EQ(list_pt, nullptr);
    }
};

/** What a creation left and said that met a failed allocation. */
void Check_Failed(const Rows& rows, int result, const Last_Message& last, const char* source) {
    EXPECT_EQ(last.nb, 1);
    EXPECT_EQ(last.level, MESSAGE_MEMORY);
    EXPECT_TRUE(last.Says(source)) << last.text;
    EXPECT_EQ(std::strncmp(last.text, "line ", 5), 0);
    if (last.Says("memory error in realloc (var=(*list_pt), dim=")) {
        char dim[40];
        std::snprintf(dim, sizeof(dim), "dim=%dx%d)", rows.nb + 1, static_cast<int>(sizeof(DB_List)));
        EXPECT_TRUE(last.Says(dim)) << last.text;
        EXPECT_EQ(rows.list_pt, nullptr);
        EXPECT_EQ(result, 0);
    } else {
        EXPECT_TRUE(last.Says("memory error in strdup (var=(*list_pt)[nb].title)") ||
                    last.Says("memory error in strdup (var=(*list_pt)[nb].name)"))
            << last.text;
        EXPECT_NE(rows.list_pt, nullptr);
    }
}

/** Creates with each allocation failing in turn, checks what stays and uses it. @return failed allocations */
int Fail_Each_Creation(Tool_DB_List& view, const char* source, int whole_nb) {
    for (int n = 1;; ++n) {
        Rows rows;
        Last_Message last;
        int result = 0;
        {
            const Failing_Allocation failing(n);
            result = view.List_Create_From_DB(&rows.nb, &rows.list_pt, 0, 0, nullptr);
        }
        const bool failed = Failing_Allocation::Happened();
        if (failed) {
            Check_Failed(rows, result, last, source);
            rows.Use(view);
            EXPECT_NE(view.List_Create_From_DB(&rows.nb, &rows.list_pt, 0, 0, nullptr), 0);
        }
        EXPECT_EQ(rows.nb, whole_nb);
        rows.Use(view);
        if (!failed) {
            return n - 1;
        }
    }
}

TEST(Tool_DB_File_Memory, every_failed_creation_is_reported_and_leaves_usable_rows) {
    File_Scene scene;
    scene.Add_File("a\\x.dcm", 3);
    scene.Add_File("b\\y.dcm", 0);
    scene.Add_File("b\\z.dcm", 2);
    scene.Add_Object(scene.files[0].frames[1]);
    Tool_DB_File view(2);
    // 10 rows: rooms of 1, 2, 4, 8 and 16; 2 titles of folders, 2 texts of 3 files and of 5 frames.
    EXPECT_EQ(Fail_Each_Creation(view, "database/tool_db_file.cpp", 10), 5 + 2 + 6 + 10);
}

TEST(Tool_DB_Class_Memory, every_failed_creation_is_reported_and_leaves_usable_rows) {
    std::deque<Quorel_3D> classes(7);
    for (std::size_t i = 1; i < classes.size(); ++i) {
        classes[(i - 1) / 2].Child_Add(&classes[i]);
    }
    for (auto& object : classes) {
        object.Title_Set("title");
        object.Name_Set("name");
    }
    Variable_Define_Pointer("$DB_3D_ROOT_PT", &classes[0]);
    Tool_DB_Class view(3);
    EXPECT_EQ(Fail_Each_Creation(view, "database/tool_db_class.cpp", 7), 4 + 14);
    Variable_Undefine("$DB_3D_ROOT_PT");
}

TEST(Tool_DB_Class_Memory, failed_text_drops_the_subtree_and_the_next_child_follows) {
    std::deque<Quorel_1D> classes(4);
    classes[0].Child_Add(&classes[1]);
    classes[1].Child_Add(&classes[2]);
    classes[0].Child_Add(&classes[3]);
    classes[1].Title_Set("the only text");
    Variable_Define_Pointer("$DB_1D_ROOT_PT", &classes[0]);
    Tool_DB_Class view(1);
    Rows rows;
    int result = 0;
    {
        const Failing_Allocation failing(3);  // the rooms of 1 and 2 records, then the title
        result = view.List_Create_From_DB(&rows.nb, &rows.list_pt, 0, 0, nullptr);
        EXPECT_TRUE(Failing_Allocation::Happened());
    }
    EXPECT_EQ(result, 2);
    ASSERT_EQ(rows.nb, 3);
    EXPECT_EQ(rows.list_pt[0].desc_nb, 1);  // the record without title is not counted
    EXPECT_EQ(rows.list_pt[0].child_nb, 2);
    EXPECT_EQ(rows.list_pt[1].object, &classes[1]);
    EXPECT_EQ(rows.list_pt[1].child_nb, 0);
    EXPECT_EQ(rows.list_pt[2].object, &classes[3]);
    rows.Use(view);
    Variable_Undefine("$DB_1D_ROOT_PT");
}

TEST(Tool_DB_File_Memory, reading_needs_no_memory) {
    File_Scene scene;
    auto& file = scene.Add_File("x", 6);
    for (std::size_t i = 0; i < 6; i += 2) {
        scene.Add_Object(file.frames[i], {file.frames[(i + 1) % 6], file.frames[i]})
            .Flag_Set_On(i == 2 ? 0 : SELECTED, GROUP, MASK);
    }
    Tool_DB_File view(2);
    Rows rows;
    view.List_Create_From_DB(&rows.nb, &rows.list_pt, 0, 0, nullptr);
    const int failures = Fail_Each_Allocation([&] {
        view.List_Select_From_DB(rows.nb, rows.list_pt);
        const int expected[] = {0, 0, 2, 2, 0, 0, 2, 2};
        for (int i = 0; i < rows.nb; ++i) {
            EXPECT_EQ(rows.list_pt[i].state, expected[i]) << i;
        }
    });
    EXPECT_GE(failures, 3);
    DB_List_Array_Free(&rows.nb, &rows.list_pt);
}

/** Every request of the views. */
class Requests {
  public:
    Requests() {
        Request_Listener listener;
        listener.context = this;
        listener.update = [](void* context, unsigned __int64, void*, void*) {
            ++static_cast<Requests*>(context)->update_nb;
        };
        listener.change_child = [](void* context, Quorel_Window*, Quorel_2D* child, Quorel_2D*) {
            static_cast<Requests*>(context)->shown = child;
        };
        Request_Listener_Set(listener);
    }
    ~Requests() { Request_Listener_Set({}); }
    Requests(const Requests&) = delete;
    Requests& operator=(const Requests&) = delete;
    int update_nb = 0;
    Quorel_2D* shown = nullptr;
};

TEST(Tool_DB_File_Memory, every_check_mark_is_written_without_memory_too) {
    File_Scene scene;
    auto& file = scene.Add_File("x", 6);
    for (std::size_t i = 0; i < 6; ++i) {
        scene.Add_Object(file.frames[i], {file.frames[i]});
    }
    Tool_DB_File view(2);
    Rows rows;
    view.List_Create_From_DB(&rows.nb, &rows.list_pt, 0, 0, nullptr);
    Requests requests;
    const int failures = Fail_Each_Allocation([&] {
        for (std::size_t i = 0; i < 6; ++i) {
            scene.objects[i].Flag_Set_Off(SELECTED, GROUP, MASK);
            if (i < 2) {
                scene.objects[i].Flag_Set_On(SELECTED, GROUP, MASK);
            }
            rows.list_pt[2 + i].state = i % 2 == 0 ? 2 : 0;
        }
        requests.update_nb = 0;
        view.List_Select_To_DB(rows.nb, rows.list_pt);
        for (std::size_t i = 0; i < 6; ++i) {
            EXPECT_EQ(Is_Selected(scene.objects[i]), i % 2 == 0) << i;
        }
        EXPECT_GE(requests.update_nb, 1);
    });
    EXPECT_GE(failures, 3);
    DB_List_Array_Free(&rows.nb, &rows.list_pt);
}

TEST(Tool_DB_Class_Memory, every_check_mark_is_written_without_memory_too) {
    std::deque<Quorel_2D> classes(9);
    for (std::size_t i = 1; i < classes.size(); ++i) {
        classes[0].Child_Add(&classes[i]);
        classes[i].Flag_Set_On(SELECTED, GROUP, MASK);
    }
    Quorel_Window window;
    Variable_Define_Pointer("$DB_2D_ROOT_PT", &classes[0]);
    Variable_Define_Pointer("$WINDOW_CUR", &window);
    Tool_DB_Class view(2);
    Rows rows;
    view.List_Create_From_DB(&rows.nb, &rows.list_pt, 0, 0, nullptr);
    for (int i = 1; i < rows.nb; ++i) {
        rows.list_pt[i].state = i % 3 == 0 ? 2 : 0;
    }
    Fct_Change_Child(&window, &classes[1], nullptr);  // the host's own table has its room already
    Requests requests;
    const int failures = Fail_Each_Allocation([&] {
        requests.shown = nullptr;
        view.List_Select_To_DB(rows.nb, rows.list_pt);
        EXPECT_EQ(requests.shown, &classes[3]);  // the first checked one
        for (std::size_t i = 1; i < classes.size(); ++i) {
            EXPECT_EQ(Is_Selected(classes[i]), i % 3 == 0) << i;
        }
    });
    EXPECT_GE(failures, 1);
    DB_List_Array_Free(&rows.nb, &rows.list_pt);
    for (const char* name : {"$DB_2D_ROOT_PT", "$WINDOW_CUR", "$FRAME_CUR"}) {
        Variable_Undefine(name);
    }
}

}  // namespace
