// A host that does everything right, and the same host with one mistake planted: the checks name it, and nothing else.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "kits/common/contract.h"
#include "kits/common/messages.h"
#include "kits/dataset/dataset_host.h"
#include "kits/dataset/variable_rules.h"
#include "kits/widgets/widgets_host.h"
#include "tests/kits/widgets/test_window.h"

namespace {

constexpr int LEVELS = 256;

/** A host with one window, one volume of one selected frame, two brushes and a panel's window. */
class Sound_Host {
  public:
    Sound_Host() : panel_window(60, 40, Window_Axis::Down) {
        for (int level = 0; level < LEVELS; ++level) {
            levels.push_back(level);
        }
        grey = std::make_unique<Level_Frame>(levels.data(), 16, 16, 1, 1, 1.0F, 0.0F, false);
        Frame_Histogram_Build(grey.get(), Histo_Grid_Of_Levels(0, LEVELS - 1, 1.0F, 0.0F, LEVELS + 1), nullptr);
        frame.frame = grey.get();
        frame.Name_Set("7");
        frame.Flag_Set_On(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
        volume.Child_Add(&frame);
        Object_Register_2D(&frame);
        window.volume = &volume;
        Variable_Define_Pointer("$WINDOW_CUR", &window);
        Variable_Define_Scalar("$GLI_HISTO_BINS_MAX", VARIABLE_UNSIGNED_16, LEVELS + 1);
        Brushes_Define();
        Variable_Define_Recommended(1.0F);
        hwnd = panel_window.Get();
        Request_Listener listener;
        listener.update = [](void*, unsigned __int64, void*, void*) {};
        Request_Listener_Set(listener);
    }
    ~Sound_Host() {
        int nb = 0;
        const Variable_Rule* rules = Variable_Rules(&nb);
        for (int k = 0; k < nb; ++k) {
            Variable_Undefine(rules[k].name);
        }
        Variable_Undefine("$TAG_SELECTED");
        Variable_Undefine("$HISTO_WINDOW_PARENT");
        Request_Listener_Set({});
        hwnd = nullptr;
    }
    Sound_Host(const Sound_Host&) = delete;
    Sound_Host& operator=(const Sound_Host&) = delete;

    Test_Window panel_window;
    Quorel_Window window;
    Quorel_2D volume;
    Quorel_2D frame;
    std::unique_ptr<Level_Frame> grey;
    std::array<std::array<unsigned char*, 5>, 2> rows{};
    std::array<unsigned char, 5> row{};

  private:
    void Brushes_Define() {
        Variable_Define_Scalar("$BRUSH_NB", VARIABLE_UNSIGNED_16, 2);
        Variable_Define_Scalar("$BRUSH_RADIUS", VARIABLE_UNSIGNED_16, 2);
        auto* sizes = static_cast<std::uint16_t*>(Variable_Define_Array("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, 2));
        auto** masks = static_cast<void**>(Variable_Define_Array("$BRUSH_PT", VARIABLE_POINTER, 2));
        for (int brush = 0; brush < 2; ++brush) {
            sizes[brush] = static_cast<std::uint16_t>(brush + 2);
            rows[static_cast<std::size_t>(brush)].fill(row.data());
            masks[brush] = rows[static_cast<std::size_t>(brush)].data();
        }
    }
    std::vector<std::int32_t> levels;
};

struct Mistake {
    const char* name;
    const char* told;
    void (*plant)(Sound_Host& host);
};

void PrintTo(const Mistake& mistake, std::ostream* out) {
    *out << mistake.told;
}

void Panel_Draws(const Sound_Host& host) {
    if (HDC dc = Y_setup(host.panel_window.Get(), "a panel")) {
        Y_release(host.panel_window.Get(), dc);
    }
}

/** What a host calls after its events, and a panel that draws before it. */
void Look(const Sound_Host& host) {
    Panel_Draws(host);
    Contract_Check_Variables();
    Contract_Check_Iterators();
    Contract_Check_Drawing();
    Fct_Update(UPDATE_TAG_CUR, nullptr, nullptr, nullptr);
}

const Mistake MISTAKES[] = {
    {"a_variable_is_missing", "variable missing: $TAG_LOCK",
     [](Sound_Host&) {
         Variable_Undefine("$TAG_LOCK");
         Fct_Variable_Value("$TAG_LOCK", nullptr, nullptr, nullptr);
     }},
    {"a_number_of_another_width", "variable of another type: $TAG_ENABLE is signed 32-bit, panels read unsigned 8-bit",
     [](Sound_Host&) { Variable_Define_Array("$TAG_ENABLE", VARIABLE_SIGNED_32, 256); }},
    {"a_whole_number_for_a_float", "variable of another type: $TAG_THRESHOLD_MIN is unsigned 16-bit, panels read float",
     [](Sound_Host&) { Variable_Define_Array("$TAG_THRESHOLD_MIN", VARIABLE_UNSIGNED_16, 256); }},
    {"an_array_for_a_scalar", "variable of another shape: $BRUSH_RADIUS is an array, panels read a scalar",
     [](Sound_Host&) { Variable_Define_Array("$BRUSH_RADIUS", VARIABLE_UNSIGNED_16, 2); }},
    {"a_scalar_for_an_array", "variable of another shape: $TAG_RED is a scalar, panels read an array",
     [](Sound_Host&) { Variable_Define_Scalar("$TAG_RED", VARIABLE_UNSIGNED_16, 0xC000); }},
    {"a_number_for_a_text", "variable of another shape: $REGIONAL_FILLER is a scalar, panels read a text",
     [](Sound_Host&) { Variable_Define_Scalar("$REGIONAL_FILLER", VARIABLE_UNSIGNED_8, '0'); }},
    {"an_array_of_windows", "variable of another shape: $WINDOW_CUR is an array, panels read an object pointer",
     [](Sound_Host&) { Variable_Define_Array("$WINDOW_CUR", VARIABLE_POINTER, 1); }},
    {"an_array_shorter_than_its_count", "count cap: $TAG_LABEL has 4 elements, $TAG_NB is 8",
     [](Sound_Host&) { Variable_Define_Array("$TAG_LABEL", VARIABLE_TEXT, 4); }},
    {"an_array_shorter_than_panels_read", "count cap: $MOUSE_FRM has 1 elements, panels read 2",
     [](Sound_Host&) { Variable_Define_Array("$MOUSE_FRM", VARIABLE_FLOAT, 1); }},
    {"more_markers_than_are_shown", "count cap: $MARKER_NB is 68, panels show 64",
     [](Sound_Host&) {
         for (const char* name : {"$MARKER_ENABLE", "$MARKER_COLOR", "$MARKER_LABEL"}) {
             Variable_Define_Array(name, Variable_Rule_Find(name)->type, 68);
         }
         Variable_Set("$MARKER_NB", 68);
     }},
    {"a_place_without_a_height", "count cap: $HISTO_WINDOW_PLACE has 3 elements, panels read 4",
     [](Sound_Host&) { Variable_Define_Array("$HISTO_WINDOW_PLACE", VARIABLE_SIGNED_32, 3); }},
    {"a_misspelt_name_of_the_enlarged_window", "variable that no panel knows: $HISTO_WINDOW_PARENT",
     [](Sound_Host&) { Variable_Define_Pointer("$HISTO_WINDOW_PARENT", nullptr); }},
    {"a_row_of_tags_that_is_not_complete", "count not a multiple: $TAG_NB is 6, panels show complete rows of 4",
     [](Sound_Host&) { Variable_Set("$TAG_NB", 6); }},
    {"a_current_tag_that_is_none", "current beyond the count: $TAG_CUR is 8, $TAG_NB is 8",
     [](Sound_Host&) { Variable_Set("$TAG_CUR", 8); }},
    {"a_name_that_is_misspelt", "variable that no panel knows: $TAG_SELECTED",
     [](Sound_Host&) { Variable_Define_Array("$TAG_SELECTED", VARIABLE_UNSIGNED_8, 8); }},
    {"a_brush_larger_than_its_mask", "brush mask: brush 1 of size 4 is cut, $BRUSH_RADIUS is 2 and should be 3",
     [](Sound_Host&) {
         static_cast<std::uint16_t*>(Variable_Array("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, nullptr))[1] = 4;
     }},
    {"a_brush_without_a_mask", "brush mask: $BRUSH_PT element 1 is null",
     [](Sound_Host&) { static_cast<void**>(Variable_Array("$BRUSH_PT", VARIABLE_POINTER, nullptr))[1] = nullptr; }},
    {"a_mask_without_a_row", "brush mask: $BRUSH_PT element 0 has a row that is null",
     [](Sound_Host& host) { host.rows[0][4] = nullptr; }},
    {"half_the_resolution",
     "histogram bins merged: $GLI_HISTO_BINS_MAX is 256, the bins of the selected frames need 257",
     [](Sound_Host&) { Variable_Set("$GLI_HISTO_BINS_MAX", LEVELS); }},
    {"a_histogram_without_a_bin_width", "histogram record: frame 7 has no bins or no bin width",
     [](Sound_Host& host) { host.grey->histogram->bin_width = 0.0F; }},
    {"colours_without_components", "histogram record: frame 7 is coloured and lacks counts of a component",
     [](Sound_Host& host) { host.grey->histogram->flags = HISTO_COLOR; }},
    {"a_frame_that_iterators_do_not_find", "frame out of reach: frame 7 is not registered",
     [](Sound_Host& host) { Object_Unregister_2D(&host.frame); }},
    {"a_window_without_a_place", "frame out of reach: window 16 has no place in $FRAME_CUR, of 16 elements",
     [](Sound_Host& host) { host.window.class_b = 16; }},
    {"a_file_that_is_null", "file table: $DB_2D_FILE_PT element 0 is null",
     [](Sound_Host&) {
         Variable_Define_Array("$DB_2D_FILE_PT", VARIABLE_POINTER, 1);
         Variable_Set("$DB_2D_FILE_NB", 1);
     }},
    {"a_folder_without_its_separator", "folder without its separator: $DEFAULT_FILE_PATH is C:\\work",
     [](Sound_Host&) { Variable_Define_Text("$DEFAULT_FILE_PATH", "C:\\work"); }},
    {"a_change_without_its_level", "update flag without its level: UPDATE_STRUCTURE",
     [](Sound_Host&) { Contract_Check_Update(UPDATE_STRUCTURE); }},
    {"an_iterator_that_stays_open", "iterator not ended: the host's loop",
     [](Sound_Host&) { Iterator_Init("the host's loop", nullptr); }},
    {"a_device_context_that_is_kept", "device context not released: the host's picture",
     [](Sound_Host& host) { Y_setup(host.panel_window.Get(), "the host's picture"); }},
    {"a_wait_cursor_that_stays", "wait cursor set and reset unevenly: set and not reset",
     [](Sound_Host&) { Set_Curs_Wait(nullptr); }},
    {"a_window_without_an_axis", "axis of a window never declared: Window_Axis_Set before the first panel is laid out",
     [](Sound_Host& host) { Window_Forget(host.panel_window.Get()); }},
    {"requests_that_nobody_hears", "nobody listens to requests: Fct_Update",
     [](Sound_Host&) { Request_Listener_Set({}); }},
    {"a_main_window_that_is_not_named", "main window never named: hwnd of host/kit_common.h",
     [](Sound_Host&) { hwnd = nullptr; }},
};

class Planted_Mistake : public testing::TestWithParam<Mistake> {
  protected:
    Planted_Mistake() {
        Message_Receiver_Add(Receive, this);
        Contract_Checks_Set(true);
    }
    ~Planted_Mistake() override {
        Contract_Checks_Set(false);
        Message_Receiver_Remove(Receive, this);
        while (Y_DC != nullptr && Y_release(Y_Window, Y_DC) != 0) {
        }
        for (unsigned short handle = 1; Iterator_Open_Nb() > 0 && handle != 0; ++handle) {
            Iterator_End(handle);
        }
        Reset_Curs_Wait(nullptr);
    }
    static void Receive(void* context, HWND, int level, const char* text) {
        if (level == MESSAGE_WARNING) {
            static_cast<Planted_Mistake*>(context)->told.push_back(Message_Plain(text));
        }
    }
    std::vector<std::string> told;
};

TEST_P(Planted_Mistake, is_named) {
    Sound_Host host;
    Look(host);
    ASSERT_EQ(told, std::vector<std::string>{}) << "nothing is wrong yet";
    GetParam().plant(host);
    Look(host);
    const std::string expected = std::string("WARNING: Contract: ") + GetParam().told;
    EXPECT_EQ(told, std::vector<std::string>{expected});
    Look(host);
    EXPECT_EQ(told.size(), 1U) << "once";
}

std::string Mistake_Name(const testing::TestParamInfo<Mistake>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Host, Planted_Mistake, testing::ValuesIn(MISTAKES), Mistake_Name);

TEST_F(Planted_Mistake, is_not_what_panels_can_do_without) {
    Sound_Host host;
    for (const char* name : {"$HISTO_WINDOW_OWNER", "$HISTO_WINDOW_PLACE"}) {
        Variable_Undefine(name);
        EXPECT_EQ(Fct_Variable_Value(name, nullptr, nullptr, nullptr), nullptr);
        EXPECT_EQ(Fct_Variable_Get(name, nullptr, nullptr, nullptr, 0), nullptr);
    }
    Look(host);
    EXPECT_EQ(told, std::vector<std::string>{});
}

TEST(Variable_Rules, a_table_of_files_is_as_long_as_the_count_that_the_host_defined) {
    Variable_Define_Scalar("$DB_2D_FILE_NB", VARIABLE_SIGNED_32, 5000);
    Variable_Define_Recommended(1.0F);
    int files = 0;
    ASSERT_NE(Variable_Array("$DB_2D_FILE_PT", VARIABLE_POINTER, &files), nullptr);
    EXPECT_EQ(files, 5000);
    int nb = 0;
    const Variable_Rule* rules = Variable_Rules(&nb);
    for (int k = 0; k < nb; ++k) {
        Variable_Undefine(rules[k].name);
    }
    for (const double wrong : {0.0, -7.0}) {
        Variable_Define_Scalar("$DB_2D_FILE_NB", VARIABLE_SIGNED_32, wrong);
        Variable_Define_Recommended(1.0F);
        files = -1;
        Variable_Array("$DB_2D_FILE_PT", VARIABLE_POINTER, &files);
        EXPECT_EQ(files, 0) << wrong;
        for (int k = 0; k < nb; ++k) {
            Variable_Undefine(rules[k].name);
        }
    }
}

TEST(Variable_Rules, recommended_values_leave_what_the_host_defined) {
    Variable_Define_Scalar("$TAG_NB", VARIABLE_UNSIGNED_16, 12);
    const int defined = Variable_Define_Recommended(2.0F);
    int nb = 0;
    const Variable_Rule* rules = Variable_Rules(&nb);
    EXPECT_EQ(defined, nb - 1);
    EXPECT_EQ(Variable_Number("$TAG_NB", 0), 12);
    EXPECT_EQ(Variable_Number("$INTERFACE_BUTTON_DIM_SML", 0), 48) << "pixels are scaled";
    EXPECT_EQ(Variable_Number("$GLI_HISTO_BINS_MAX", 0), 4097) << "bins are not";
    int tags = 0;
    const auto* lowest = static_cast<float*>(Variable_Array("$TAG_THRESHOLD_MIN", VARIABLE_FLOAT, &tags));
    ASSERT_EQ(tags, 256);
    EXPECT_EQ(lowest[255], -100000.0F);
    EXPECT_EQ(static_cast<std::uint8_t*>(Variable_Array("$TAG_ENABLE", VARIABLE_UNSIGNED_8, nullptr))[255], 1);
    EXPECT_STREQ(static_cast<char*>(Fct_Variable_Value("$INTERFACE_TOOL_FONT_NAME", nullptr, nullptr, nullptr)),
                 "Arial");
    EXPECT_EQ(Variable_Define_Recommended(1.0F), 0) << "all are there";
    Variable_Set("$INTERFACE_LOCK_FOCUS", 1);
    EXPECT_EQ(Variable_Scale(1.3F), 13);
    EXPECT_EQ(Variable_Number("$INTERFACE_TITLE_FONT_SCALE", 0), 20)
        << "15 pixels times 1.3 in single precision are 19.5";
    EXPECT_EQ(Variable_Number("$INTERFACE_TOOL_FONT_SCALE", 0), 17);
    EXPECT_EQ(Variable_Number("$INTERFACE_LOCK_FOCUS", 0), 1) << "no size";
    EXPECT_EQ(Variable_Define_Interface(1.0F), 18);
    EXPECT_EQ(Variable_Number("$INTERFACE_TITLE_FONT_SCALE", 0), 15);
    EXPECT_EQ(Variable_Number("$INTERFACE_LOCK_FOCUS", 0), 0);
    EXPECT_EQ(Variable_Number("$TAG_NB", 0), 12) << "the host's";
    for (int k = 0; k < nb; ++k) {
        EXPECT_EQ(Variable_Undefine(rules[k].name), 1) << rules[k].name;
    }
}

}  // namespace
