#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <set>
#include <vector>

#include "kits/dataset/dataset_host.h"
#include "tests/kits/common/message_sink.h"

namespace {

constexpr int ALL_CLASSES = CLASS_MASK_2D;

using List = std::vector<const Quorel_2D*>;

class Iterators : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(Object_Registered_2D_Nb(), 0);
        for (Quorel_2D& object : objects) {
            object.frame = &image;
            volume.Child_Add(&object);
            ASSERT_EQ(Object_Register_2D(&object), 1);
        }
        window.volume = &volume;
    }
    void TearDown() override { EXPECT_EQ(Iterator_Open_Nb(), 0); }

    static List Pass(Quorel_Window* of_window, int selected_only, int mask = ALL_CLASSES) {
        List list;
        const unsigned short handle = Iterator_Init("test", nullptr);
        EXPECT_NE(handle, 0);
        while (const Quorel_2D* object = Iterator_Class_2D(handle, mask, of_window, selected_only)) {
            list.push_back(object);
        }
        EXPECT_EQ(Iterator_Class_2D(handle, mask, of_window, selected_only), nullptr) << "the end stays the end";
        Iterator_End(handle);
        return list;
    }

    Quorel_2D_Frame image;
    Quorel_2D volume;
    Quorel_2D objects[5];
    Quorel_Window window;
};

}  // namespace

TEST_F(Iterators, yield_the_frames_of_a_window_in_their_order) {
    EXPECT_EQ(Pass(&window, 0), (List{&objects[0], &objects[1], &objects[2], &objects[3], &objects[4]}));
    Quorel_2D other_volume;
    Quorel_Window other;
    other.volume = &other_volume;
    EXPECT_EQ(Pass(&other, 0), List{});
    other_volume.Child_Add(&objects[3]);
    EXPECT_EQ(Pass(&other, 0), (List{&objects[3]}));
    EXPECT_EQ(Pass(&window, 0).size(), 4U);
    EXPECT_EQ(Pass(All_Windows(), 0).size(), 5U);
}

TEST_F(Iterators, yield_nothing_for_no_window_or_no_volume) {
    EXPECT_EQ(Pass(nullptr, 0), List{});
    window.volume = nullptr;
    EXPECT_EQ(Pass(&window, 0), List{});
}

TEST_F(Iterators, find_the_volume_anywhere_above) {
    Quorel_2D series;
    volume.Child_Remove(&objects[2]);
    volume.Child_Add(&series);
    series.Child_Add(&objects[2]);
    EXPECT_EQ(Pass(&window, 0).size(), 5U);
}

TEST_F(Iterators, survive_a_ring_of_parent_links) {
    objects[0].Parent_Set_Pt(&objects[1]);
    objects[1].Parent_Set_Pt(&objects[0]);
    EXPECT_EQ(Pass(&window, 0).size(), 3U);
    objects[0].Parent_Set_Pt(nullptr);
    objects[1].Parent_Set_Pt(nullptr);
}

TEST_F(Iterators, yield_only_selected_ones_when_asked) {
    objects[1].Flag_Set_On(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
    objects[2].Flag_Set_On(FLAG_PARTLY_SELECTED | FLAG_CHANGED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
    objects[4].Flag_Set_On(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
    EXPECT_EQ(Pass(&window, 1), (List{&objects[1], &objects[4]}));
    EXPECT_EQ(Pass(&window, 0).size(), 5U);
}

TEST_F(Iterators, yield_only_objects_with_an_image_of_the_class) {
    objects[0].frame = nullptr;
    objects[1].class_a = 0x3FFF;
    objects[2].class_a = 0x2001;
    EXPECT_EQ(Pass(&window, 0), (List{&objects[2], &objects[3], &objects[4]}));
    EXPECT_EQ(Pass(&window, 0, 0x2001), (List{&objects[2]}));
    EXPECT_EQ(Pass(&window, 0, 0), List{});
    objects[3].class_a = 0x0001;
    EXPECT_EQ(Pass(&window, 0), (List{&objects[2], &objects[4]})) << "a code of no dimension";
}

TEST_F(Iterators, nest_and_keep_their_own_places) {
    int pairs = 0;
    const unsigned short outer = Iterator_Init("outer", nullptr);
    while (const Quorel_2D* first = Iterator_Class_2D(outer, ALL_CLASSES, &window, 0)) {
        const unsigned short inner = Iterator_Init("inner", nullptr);
        EXPECT_NE(inner, outer);
        while (const Quorel_2D* second = Iterator_Class_2D(inner, ALL_CLASSES, &window, 0)) {
            pairs += first != second ? 1 : 0;
        }
        Iterator_End(inner);
    }
    Iterator_End(outer);
    EXPECT_EQ(pairs, 20);
}

TEST_F(Iterators, sixteen_are_open_at_once_and_the_next_gets_none) {
    Message_Sink sink;
    std::set<unsigned short> handles;
    for (int i = 0; i < ITERATOR_MAX; ++i) {
        handles.insert(Iterator_Init("many", nullptr));
    }
    EXPECT_EQ(handles.size(), static_cast<std::size_t>(ITERATOR_MAX));
    EXPECT_EQ(handles.count(0), 0U);
    EXPECT_EQ(Iterator_Open_Nb(), ITERATOR_MAX);
    EXPECT_EQ(Iterator_Init("too many", nullptr), 0);
    EXPECT_EQ(Iterator_Init(nullptr, nullptr), 0);
    EXPECT_EQ(Iterator_Class_2D(0, ALL_CLASSES, &window, 0), nullptr);
    Iterator_End(0);
    EXPECT_EQ(Iterator_Open_Nb(), ITERATOR_MAX);
    for (const unsigned short handle : handles) {
        Iterator_End(handle);
    }
    EXPECT_EQ(Iterator_Open_Nb(), 0);
}

TEST_F(Iterators, a_handle_of_an_ended_pass_is_dead) {
    const unsigned short old_handle = Iterator_Init("first", nullptr);
    Iterator_End(old_handle);
    const unsigned short handle = Iterator_Init("second", nullptr);
    EXPECT_EQ(Iterator_Class_2D(old_handle, ALL_CLASSES, &window, 0), nullptr);
    Iterator_End(old_handle);
    EXPECT_EQ(Iterator_Open_Nb(), 1);
    EXPECT_EQ(Iterator_Class_2D(handle, ALL_CLASSES, &window, 0), &objects[0]);
    Iterator_End(handle);
    for (int i = 0; i < 70000; ++i) {
        const unsigned short next = Iterator_Init("again", nullptr);
        ASSERT_NE(next, 0);
        Iterator_End(next);
    }
}

TEST_F(Iterators, go_on_when_objects_leave_during_a_pass) {
    const unsigned short handle = Iterator_Init("test", nullptr);
    EXPECT_EQ(Iterator_Class_2D(handle, ALL_CLASSES, &window, 0), &objects[0]);
    EXPECT_EQ(Iterator_Class_2D(handle, ALL_CLASSES, &window, 0), &objects[1]);
    Object_Unregister_2D(&objects[0]);  // behind
    Object_Unregister_2D(&objects[1]);  // the one just given
    Object_Unregister_2D(&objects[2]);  // the next
    EXPECT_EQ(Iterator_Class_2D(handle, ALL_CLASSES, &window, 0), &objects[3]);
    EXPECT_EQ(Object_Register_2D(&objects[1]), 1);  // comes back at the end
    EXPECT_EQ(Iterator_Class_2D(handle, ALL_CLASSES, &window, 0), &objects[4]);
    EXPECT_EQ(Iterator_Class_2D(handle, ALL_CLASSES, &window, 0), &objects[1]);
    EXPECT_EQ(Iterator_Class_2D(handle, ALL_CLASSES, &window, 0), nullptr);
    Iterator_End(handle);
    EXPECT_EQ(Pass(&window, 0), (List{&objects[3], &objects[4], &objects[1]}));
}

TEST_F(Iterators, go_on_when_every_object_is_destroyed_during_a_pass) {
    std::deque<std::unique_ptr<Quorel_2D>> many;
    for (int i = 0; i < 200; ++i) {
        many.push_back(std::make_unique<Quorel_2D>());
        many.back()->frame = &image;
        Object_Register_2D(many.back().get());
    }
    int yielded = 0;
    const unsigned short handle = Iterator_Init("test", nullptr);
    while (Iterator_Class_2D(handle, ALL_CLASSES, All_Windows(), 0) != nullptr) {
        ++yielded;
        if (yielded > 5 && !many.empty()) {
            many.pop_back();
            many.pop_front();
        }
    }
    many.clear();
    EXPECT_EQ(Iterator_Class_2D(handle, ALL_CLASSES, All_Windows(), 0), nullptr);
    Iterator_End(handle);
    EXPECT_GT(yielded, 50);
    EXPECT_LT(yielded, 205);
    EXPECT_EQ(Object_Registered_2D_Nb(), 5);
    EXPECT_EQ(Pass(All_Windows(), 0).size(), 5U);
}

TEST_F(Iterators, objects_are_registered_once) {
    EXPECT_EQ(Object_Register_2D(&objects[0]), 0);
    EXPECT_EQ(Object_Register_2D(nullptr), 0);
    EXPECT_EQ(Object_Registered_2D_Nb(), 5);
    Object_Unregister_2D(&objects[0]);
    Object_Unregister_2D(&objects[0]);
    Object_Unregister_2D(nullptr);
    EXPECT_EQ(Object_Registered_2D_Nb(), 4);
    {
        Quorel_2D passing;
        Object_Register_2D(&passing);
        EXPECT_EQ(Object_Registered_2D_Nb(), 5);
    }
    EXPECT_EQ(Object_Registered_2D_Nb(), 4);
}

TEST_F(Iterators, the_place_of_sixty_thousand_objects_is_kept_while_they_come_and_go) {
    std::vector<std::unique_ptr<Quorel_2D>> many(60000);
    for (auto& object : many) {
        object = std::make_unique<Quorel_2D>();
        object->frame = &image;
        Object_Register_2D(object.get());
    }
    for (std::size_t i = 0; i < many.size(); i += 3) {
        many[i].reset();
    }
    const unsigned short handle = Iterator_Init("test", nullptr);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(Iterator_Class_2D(handle, ALL_CLASSES, All_Windows(), 0), &objects[i]);
    }
    for (std::size_t i = 0; i < many.size(); ++i) {
        if (many[i] != nullptr) {
            ASSERT_EQ(Iterator_Class_2D(handle, ALL_CLASSES, All_Windows(), 0), many[i].get());
        }
    }
    EXPECT_EQ(Iterator_Class_2D(handle, ALL_CLASSES, All_Windows(), 0), nullptr);
    Iterator_End(handle);
}
