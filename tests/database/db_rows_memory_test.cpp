// Rows and the index of frames when memory is missing.
#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

#include "database/db_list.h"
#include "database/frame_index.h"
#include "host/kit_dataset.h"
#include "kits/common/messages.h"
#include "tests/kits/common/failing_memory.h"

namespace {

constexpr DB_Source HERE{"some/view.cpp", 321};

/** Keeps the last message; allocates nothing while it is told. */
class Last_Message {
  public:
    Last_Message() { Message_Receiver_Add(Receive, this, true); }
    ~Last_Message() { Message_Receiver_Remove(Receive, this); }
    Last_Message(const Last_Message&) = delete;
    Last_Message& operator=(const Last_Message&) = delete;
    int nb = 0;
    int level = 0;
    char text[300] = {};

  private:
    static void Receive(void* context, HWND, int message_level, const char* message) {
        auto& self = *static_cast<Last_Message*>(context);
        ++self.nb;
        self.level = message_level;
        std::snprintf(self.text, sizeof(self.text), "%s", message);
    }
};

TEST(DB_List_Append_Memory, failed_growth_leaves_a_null_array_and_the_old_count) {
    for (const int count : {0, 1, 2, 4, 8, 64}) {
        int nb = 0;
        DB_List* list_pt = nullptr;
        for (int i = 0; i < count; ++i) {
            DB_List* const record = DB_List_Append(&nb, &list_pt, HERE);
            ASSERT_NE(record, nullptr);
            ASSERT_TRUE(DB_List_Text_Copy(&record->title, "freed with the array", "title", HERE));
        }
        Last_Message last;
        {
            const Failing_Allocation failing(1);
            EXPECT_EQ(DB_List_Append(&nb, &list_pt, HERE), nullptr);
            EXPECT_TRUE(Failing_Allocation::Happened());
        }
        EXPECT_EQ(nb, count);
        EXPECT_EQ(list_pt, nullptr);
        EXPECT_EQ(last.nb, 1);
        EXPECT_EQ(last.level, MESSAGE_MEMORY);
        char text[200];
        std::snprintf(text, sizeof(text),
                      "line 321  of some/view.cpp \nmemory error in realloc (var=(*list_pt), dim=%dx%d)", count + 1,
                      static_cast<int>(sizeof(DB_List)));
        EXPECT_STREQ(last.text, text);

        // Whatever comes next finds no records.
        DB_List_Set_State(nb, list_pt);
        if (count > 0) {
            EXPECT_EQ(DB_List_Append(&nb, &list_pt, HERE), nullptr);
            EXPECT_EQ(nb, count);
            EXPECT_EQ(list_pt, nullptr);
        }
        DB_List_Array_Free(&nb, &list_pt);
        EXPECT_EQ(nb, 0);
        EXPECT_NE(DB_List_Append(&nb, &list_pt, HERE), nullptr);
        DB_List_Array_Free(&nb, &list_pt);
    }
}

TEST(DB_List_Append_Memory, growing_takes_memory_at_powers_of_two_only) {
    const int failures = Fail_Each_Allocation([] {
        int nb = 0;
        DB_List* list_pt = nullptr;
        while (nb < 1000 && DB_List_Append(&nb, &list_pt, HERE) != nullptr) {
        }
        DB_List_Array_Free(&nb, &list_pt);
    });
    EXPECT_EQ(failures, 11);  // rooms of 1, 2, 4 ... 1024 records
}

TEST(DB_List_Text_Copy_Memory, failed_copy_names_the_field_and_leaves_null) {
    for (const char* field_name : {"title", "name"}) {
        char* field = nullptr;
        Last_Message last;
        {
            const Failing_Allocation failing(1);
            EXPECT_FALSE(DB_List_Text_Copy(&field, "text", field_name, HERE));
        }
        EXPECT_EQ(field, nullptr);
        EXPECT_EQ(last.nb, 1);
        EXPECT_EQ(last.level, MESSAGE_MEMORY);
        char text[200];
        std::snprintf(text, sizeof(text), "line 321  of some/view.cpp \nmemory error in strdup (var=(*list_pt)[nb].%s)",
                      field_name);
        EXPECT_STREQ(last.text, text);
    }
}

TEST(Frame_Index_Memory, index_is_refused_when_either_of_its_tables_is) {
    for (int n = 1; n <= 2; ++n) {
        Frame_Index index;
        const Failing_Allocation failing(n);
        EXPECT_FALSE(index.Make(100)) << n;
    }
    Frame_Index index;
    bool made = false;
    {
        const Failing_Allocation failing(3);
        made = index.Make(100);
    }
    EXPECT_TRUE(made);
}

TEST(Frame_Index_Memory, objects_of_several_frames_are_found_without_memory_too) {
    const std::vector<Quorel_2D_Frame> frames(5);
    const std::vector<const Quorel_2D_Frame*> more{&frames[1], nullptr, &frames[0], &frames[1]};
    const Object_Frames object{&frames[4], 4, more.data()};
    std::vector<int> expected;
    std::vector<int> found(300);  // no allocation while they are visited
    for (int n = 1;; ++n) {
        Frame_Index index;
        ASSERT_TRUE(index.Make(100));
        for (int i = 0; i < 100; ++i) {
            const Quorel_2D_Frame* const frame = i % 9 == 0 ? nullptr : &frames[static_cast<std::size_t>(i * i % 5)];
            index.Add({frame, i, i % 7 == 0});
            if (n == 1 && frame != nullptr) {
                expected.insert(expected.end(), static_cast<std::size_t>(object.Count(frame)), i);
            }
        }
        found.clear();
        const Failing_Allocation failing(n);
        index.Visit_Rows(object, [&](const Frame_Index::Row& row) { found.push_back(row.record); });
        ASSERT_EQ(found, expected) << n;
        if (!Failing_Allocation::Happened()) {
            ASSERT_GT(n, 2);
            break;
        }
    }
}

}  // namespace
