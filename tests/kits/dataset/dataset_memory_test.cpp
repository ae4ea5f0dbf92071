#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "kits/common/messages.h"
#include "kits/dataset/dataset_host.h"
#include "tests/kits/common/failing_memory.h"

namespace {

int memory_message_nb = 0;

/** Takes no memory itself. */
void Count_Memory_Messages(void*, HWND, int level, const char* text) {
    memory_message_nb += level == MESSAGE_MEMORY && std::strstr(text, "memory error") != nullptr ? 1 : 0;
}

class Without_Memory : public testing::Test {
  protected:
    void SetUp() override {
        memory_message_nb = 0;
        Message_Receiver_Add(Count_Memory_Messages, nullptr, true);
    }
    void TearDown() override { Message_Receiver_Remove(Count_Memory_Messages, nullptr); }
};

bool Happened() {
    return Failing_Allocation::Happened();
}

/** A name that no test has used. */
std::string New_Name() {
    static int number = 0;
    return "$NEW_VARIABLE_" + std::to_string(number++);
}

}  // namespace

TEST_F(Without_Memory, a_new_variable_is_not_defined) {
    const std::string names[] = {New_Name(), New_Name(), New_Name(), New_Name(), New_Name(), New_Name()};
    int round = 0;
    const int failed = Fail_Each_Allocation([&] {
        const char* name = names[round++].c_str();
        const int defined = Variable_Define_Scalar(name, VARIABLE_FLOAT, 1.0);
        EXPECT_EQ(defined, Happened() ? 0 : 1);
        EXPECT_EQ(Fct_Variable_Get(name, nullptr, nullptr, nullptr, 0) != nullptr, defined == 1);
        EXPECT_EQ(Variable_Define_Scalar(name, VARIABLE_FLOAT, 1.0), 1);
    });
    EXPECT_GE(failed, 2);
}

TEST_F(Without_Memory, the_table_of_names_keeps_what_it_has) {
    std::vector<std::string> names;
    for (int i = 0; i < 1000; ++i) {
        names.push_back(New_Name());
    }
    int refused = 0;
    for (int i = 0; i < 1000; ++i) {
        const Failing_Allocation failing(1);
        refused +=
            Variable_Define_Scalar(names[static_cast<std::size_t>(i)].c_str(), VARIABLE_SIGNED_32, i) == 0 ? 1 : 0;
    }
    EXPECT_EQ(refused, 1000);
    for (int i = 0; i < 1000; ++i) {
        const char* name = names[static_cast<std::size_t>(i)].c_str();
        if (Variable_Define_Scalar(name, VARIABLE_SIGNED_32, i) == 1) {
            const std::string other = New_Name();
            const Failing_Allocation failing(1 + i % 3);
            Variable_Define_Scalar(other.c_str(), VARIABLE_SIGNED_32, 0);
        }
    }
    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(Variable_Number(names[static_cast<std::size_t>(i)].c_str(), -1), i);
    }
}

TEST_F(Without_Memory, an_array_keeps_its_old_elements) {
    auto* old = static_cast<std::uint16_t*>(Variable_Define_Array("$ARRAY", VARIABLE_UNSIGNED_16, 4));
    old[3] = 33;
    const int failed = Fail_Each_Allocation([&] {
        const void* first = Variable_Define_Array("$ARRAY", VARIABLE_UNSIGNED_16, 9);
        EXPECT_EQ(first == nullptr, Happened());
        int nb = 0;
        const auto* now = static_cast<std::uint16_t*>(Fct_Variable_Value("$ARRAY", &nb, nullptr, nullptr));
        EXPECT_EQ(nb, Happened() ? 4 : 9);
        EXPECT_EQ(now[3], 33);
    });
    EXPECT_EQ(failed, 1);
}

TEST_F(Without_Memory, a_text_keeps_its_old_value) {
    Variable_Define_Text("$TEXT", "old");
    const int failed = Fail_Each_Allocation([] {
        const int defined = Variable_Define_Text("$TEXT", "new");
        EXPECT_EQ(defined, Happened() ? 0 : 1);
        EXPECT_STREQ(static_cast<char*>(Fct_Variable_Value("$TEXT", nullptr, nullptr, nullptr)),
                     Happened() ? "old" : "new");
    });
    EXPECT_EQ(failed, 1);
    Variable_Define_Array("$TEXTS", VARIABLE_TEXT, 2);
    Variable_Set_Array_Text("$TEXTS", 1, "old");
    EXPECT_EQ(Fail_Each_Allocation([] {
                  const int set = Variable_Set_Array_Text("$TEXTS", 1, "new");
                  EXPECT_EQ(set, Happened() ? 0 : 1);
                  EXPECT_STREQ(static_cast<char**>(Variable_Array("$TEXTS", VARIABLE_TEXT, nullptr))[1],
                               Happened() ? "old" : "new");
              }),
              1);
}

TEST_F(Without_Memory, a_look_up_of_a_missing_name_still_answers) {
    const std::string name = New_Name();
    EXPECT_GE(
        Fail_Each_Allocation([&] { EXPECT_EQ(Fct_Variable_Value(name.c_str(), nullptr, nullptr, nullptr), nullptr); }),
        2);
}

TEST_F(Without_Memory, the_shown_frame_is_not_set_but_nothing_breaks) {
    Quorel_Window window;
    Quorel_2D frame;
    Variable_Undefine("$FRAME_CUR");
    const int failed = Fail_Each_Allocation([&] {
        Variable_Undefine("$FRAME_CUR");
        Fct_Change_Child(&window, &frame, nullptr);
        EXPECT_EQ(Window_Frame(&window), Happened() ? nullptr : &frame);
    });
    EXPECT_GE(failed, 1);
    Variable_Undefine("$FRAME_CUR");
}

TEST_F(Without_Memory, a_child_goes_back_under_its_former_parent) {
    Quorel_2D parent, before, node, after, target;
    parent.Child_Add(&before);
    parent.Child_Add(&node);
    parent.Child_Add(&after);
    const int failed = Fail_Each_Allocation([&] {
        parent.Child_Remove(&node);
        const int added = target.Child_Add(&node);
        EXPECT_EQ(added, Happened() ? 0 : 1);
        EXPECT_EQ(node.Parent_Get_Pt(), Happened() ? &parent : &target);
        EXPECT_EQ(parent.Child_Get_Id(&node), Happened() ? 1 : -1);
        EXPECT_EQ(target.Child_Get_Nb(), Happened() ? 0 : 1);
    });
    EXPECT_EQ(failed, 1);
    EXPECT_EQ(memory_message_nb, 1);
}

TEST_F(Without_Memory, a_linked_child_stays_where_it_is) {
    Quorel_2D parent, node, target;
    parent.Child_Add(&node);
    const int failed = Fail_Each_Allocation([&] {
        target.Child_Add(&node);
        EXPECT_EQ(node.Parent_Get_Pt(), Happened() ? &parent : &target);
        EXPECT_EQ(parent.Child_Get_Nb() + target.Child_Get_Nb(), 1);
    });
    EXPECT_EQ(failed, 1);
}

TEST_F(Without_Memory, names_and_flags_keep_their_old_value) {
    Quorel_2D object;
    object.Name_Set("old");
    object.Flag_Set_On(1, 2, 3);
    EXPECT_EQ(Fail_Each_Allocation([&] {
                  object.Name_Set("new");
                  EXPECT_STREQ(object.Name_Get(), Happened() ? "old" : "new");
              }),
              1);
    EXPECT_EQ(Fail_Each_Allocation([&] {
                  object.Flag_Set_On(0x10, 4, 512);
                  EXPECT_EQ(object.Flag_Get_Bit(0x10, 4, 512), Happened() ? 0 : 0x10);
                  EXPECT_EQ(object.Flag_Get_Bit(1, 2, 3), 1);
              }),
              1);
    EXPECT_EQ(memory_message_nb, 2);
}

TEST_F(Without_Memory, an_object_is_not_registered) {
    Quorel_2D objects[200];
    for (Quorel_2D& object : objects) {
        Fail_Each_Allocation([&] {
            Object_Unregister_2D(&object);
            const int registered = Object_Register_2D(&object);
            EXPECT_EQ(registered, Happened() ? 0 : 1);
        });
    }
    EXPECT_EQ(Object_Registered_2D_Nb(), 200);
}

TEST_F(Without_Memory, a_frame_has_no_histogram) {
    const std::vector<std::int32_t> levels = {1, 2, 3, 1};
    Level_Frame grey(levels.data(), 4, 1, 1, 1, 1.0F, 0.0F, false);
    Level_Frame color(levels.data(), 4, 1, 1, 1, 1.0F, 0.0F, true);
    int without = 0;
    const int failed_grey = Fail_Each_Allocation([&] {
        const int built = Frame_Histogram_Build(&grey, {0.0F, 1.0F, 4}, nullptr);
        EXPECT_EQ(grey.histogram != nullptr, built == 1);
        without += built == 0 ? 1 : 0;
        if (built == 1) {
            EXPECT_EQ(grey.histogram->counts[1], 2U) << "without its work memory it counts directly";
        }
    });
    EXPECT_EQ(failed_grey, 3);
    EXPECT_EQ(without, 2);
    const int failed_color = Fail_Each_Allocation([&] {
        const int built = Frame_Histogram_Build(&color, {}, nullptr);
        EXPECT_EQ(built, Happened() ? 0 : 1);
        EXPECT_EQ(color.histogram == nullptr, Happened());
    });
    EXPECT_EQ(failed_color, 6);
}
