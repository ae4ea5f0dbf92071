#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "kits/dataset/dataset_host.h"

namespace {

struct Heard {
    int update_nb = 0;
    int redraw_nb = 0;
    int change_nb = 0;
    unsigned __int64 flags = 0;
    void* a = nullptr;
    void* b = nullptr;
    Quorel_Window* window = nullptr;
    Quorel_2D* new_frame = nullptr;
    Quorel_2D* old_frame = nullptr;
    Quorel_2D* shown = nullptr;
    Quorel_2D* volume = nullptr;
};

Request_Listener Listener_Of(Heard& heard) {
    Request_Listener listener;
    listener.context = &heard;
    listener.update = [](void* context, unsigned __int64 flags, void* a, void* b) {
        auto& into = *static_cast<Heard*>(context);
        ++into.update_nb;
        into.flags = flags;
        into.a = a;
        into.b = b;
    };
    listener.redraw = [](void* context, unsigned __int64 flags, void* a, void* b) {
        auto& into = *static_cast<Heard*>(context);
        ++into.redraw_nb;
        into.flags = flags;
        into.a = a;
        into.b = b;
    };
    listener.change_child = [](void* context, Quorel_Window* window, Quorel_2D* new_frame, Quorel_2D* old_frame) {
        auto& into = *static_cast<Heard*>(context);
        ++into.change_nb;
        into.window = window;
        into.new_frame = new_frame;
        into.old_frame = old_frame;
        into.shown = Window_Frame(window);
        into.volume = window->volume;
    };
    return listener;
}

class Requests : public testing::Test {
  protected:
    void SetUp() override {
        Variable_Undefine("$FRAME_CUR");
        Request_Listener_Set(Listener_Of(heard));
        volume.Child_Add(&first);
        volume.Child_Add(&second);
    }
    void TearDown() override {
        Request_Listener_Set({});
        Variable_Undefine("$FRAME_CUR");
    }

    Heard heard;
    Quorel_2D volume, first, second;
    Quorel_Window window;
};

}  // namespace

TEST_F(Requests, updates_and_redraws_reach_the_listener_as_they_are) {
    Fct_Update(UPDATE_SELECTION | UPDATE_LEVEL_2D, All_Windows(), &first, nullptr);
    EXPECT_EQ(heard.update_nb, 1);
    EXPECT_EQ(heard.flags, 0x102U);
    EXPECT_EQ(heard.a, All_Windows());
    EXPECT_EQ(heard.b, &first);
    Fct_Redraw(0x3FFF0000, nullptr, nullptr, nullptr);
    EXPECT_EQ(heard.redraw_nb, 1);
    EXPECT_EQ(heard.update_nb, 1);
    EXPECT_EQ(heard.flags, 0x3FFF0000U);
}

TEST_F(Requests, nobody_needs_to_listen) {
    Request_Listener_Set({});
    Fct_Update(UPDATE_ALL, nullptr, nullptr, nullptr);
    Fct_Redraw(8, nullptr, nullptr, nullptr);
    Fct_Change_Child(&window, &first, nullptr);
    EXPECT_EQ(Window_Frame(&window), &first) << "the shown frame changes all the same";
    EXPECT_EQ(heard.update_nb + heard.redraw_nb + heard.change_nb, 0);
}

TEST_F(Requests, a_change_of_the_frame_is_made_before_the_listener_hears_of_it) {
    window.class_b = 3;
    Fct_Change_Child(&window, &second, &first);
    EXPECT_EQ(heard.change_nb, 1);
    EXPECT_EQ(heard.window, &window);
    EXPECT_EQ(heard.new_frame, &second);
    EXPECT_EQ(heard.old_frame, &first);
    EXPECT_EQ(heard.shown, &second);
    EXPECT_EQ(heard.volume, &volume);
    auto** frames = static_cast<Quorel_2D**>(Fct_Variable_Value("$FRAME_CUR", nullptr, nullptr, nullptr));
    ASSERT_NE(frames, nullptr);
    EXPECT_EQ(frames[3], &second);
    EXPECT_EQ(frames[0], nullptr);
    Fct_Change_Child(&window, &first, nullptr);
    EXPECT_EQ(heard.old_frame, nullptr);
}

TEST_F(Requests, a_change_without_frame_or_window_is_ignored) {
    Fct_Change_Child(&window, &first, nullptr);
    Fct_Change_Child(&window, nullptr, &first);
    Fct_Change_Child(nullptr, &second, nullptr);
    Fct_Change_Child(All_Windows(), &second, nullptr);
    Fct_Change_Child(&window, reinterpret_cast<Quorel_2D*>(ALL_OBJECTS), nullptr);
    EXPECT_EQ(heard.change_nb, 1);
    EXPECT_EQ(Window_Frame(&window), &first);
}

TEST_F(Requests, the_listener_may_be_replaced_from_within) {
    struct State {
        int nb = 0;
    } state;
    Request_Listener listener;
    listener.context = &state;
    listener.update = [](void* context, unsigned __int64, void*, void*) {
        Request_Listener_Set({});
        ++static_cast<State*>(context)->nb;
    };
    Request_Listener_Set(listener);
    Fct_Update(1, nullptr, nullptr, nullptr);
    Fct_Update(1, nullptr, nullptr, nullptr);
    EXPECT_EQ(state.nb, 1);
}

TEST_F(Requests, a_request_may_be_made_from_within_another) {
    struct State {
        int depth = 0;
        int deepest = 0;
    } state;
    Request_Listener listener;
    listener.context = &state;
    listener.update = [](void* context, unsigned __int64 flags, void*, void*) {
        auto& into = *static_cast<State*>(context);
        into.deepest = std::max(into.deepest, ++into.depth);
        if (flags > 0) {
            Fct_Update(flags - 1, nullptr, nullptr, nullptr);
        }
        --into.depth;
    };
    Request_Listener_Set(listener);
    Fct_Update(5, nullptr, nullptr, nullptr);
    EXPECT_EQ(state.deepest, 6);
}

TEST_F(Requests, frames_of_windows_stand_side_by_side) {
    Quorel_Window last;
    last.class_b = WINDOW_NUMBER_MAX - 1;
    Window_Frame_Set(&window, &first);
    Window_Frame_Set(&last, &second);
    EXPECT_EQ(Window_Frame(&window), &first);
    EXPECT_EQ(Window_Frame(&last), &second);
    EXPECT_EQ(heard.change_nb, 0) << "setting tells nobody";
    Window_Frame_Set(&window, nullptr);
    EXPECT_EQ(Window_Frame(&window), nullptr);
    EXPECT_EQ(window.volume, nullptr);
    EXPECT_EQ(Window_Frame(nullptr), nullptr);
    EXPECT_EQ(Window_Frame(All_Windows()), nullptr);
    Window_Frame_Set(nullptr, &first);
    Window_Frame_Set(All_Windows(), &first);
}

TEST_F(Requests, a_window_number_beyond_the_table_is_ignored) {
    Quorel_Window other;
    for (const bool table_exists : {false, true}) {
        window.class_b = WINDOW_NUMBER_MAX;
        Fct_Change_Child(&window, &first, nullptr);
        EXPECT_EQ(Window_Frame(&window), nullptr) << table_exists;
        Window_Frame_Set(&other, &second);
    }
    window.class_b = 65535;
    Window_Frame_Set(&window, &first);
    EXPECT_EQ(Window_Frame(&window), nullptr);
}

TEST_F(Requests, the_applications_own_table_of_frames_is_used) {
    std::array<Quorel_2D*, 20> frames{};
    Variable_Define_Array_At("$FRAME_CUR", VARIABLE_POINTER, 20, frames.data());
    window.class_b = 18;
    Window_Frame_Set(&window, &first);
    EXPECT_EQ(frames[18], &first);
    EXPECT_EQ(Window_Frame(&window), &first);
}

TEST_F(Requests, a_destroyed_frame_is_no_longer_shown) {
    auto passing = std::make_unique<Quorel_2D>();
    Window_Frame_Set(&window, passing.get());
    EXPECT_EQ(Window_Frame(&window), passing.get());
    passing.reset();
    EXPECT_EQ(Window_Frame(&window), nullptr);
}
