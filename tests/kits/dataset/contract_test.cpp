#include "kits/common/contract.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "kits/common/messages.h"
#include "kits/dataset/dataset_host.h"
#include "kits/widgets/widgets_host.h"

namespace {

class Contract : public testing::Test {
  protected:
    Contract() {
        Message_Receiver_Add(Receive, this);
        Request_Listener listener;
        listener.update = [](void*, unsigned __int64, void*, void*) {};
        Request_Listener_Set(listener);
        hwnd = reinterpret_cast<HWND>(std::uintptr_t{1});
        Contract_Checks_Set(true);
    }
    ~Contract() override {
        Contract_Checks_Set(false);
        Request_Listener_Set({});
        hwnd = nullptr;
        Message_Receiver_Remove(Receive, this);
    }
    static void Receive(void* context, HWND, int level, const char* text) {
        if (level == MESSAGE_WARNING) {
            static_cast<Contract*>(context)->warnings.push_back(Message_Plain(text));
        }
    }
    std::vector<std::string> Take() { return std::exchange(warnings, {}); }
    std::vector<std::string> warnings;
};

using Texts = std::vector<std::string>;

TEST_F(Contract, a_missing_variable_is_named_once) {
    EXPECT_EQ(Fct_Variable_Value("$NOT_THERE", nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(Fct_Variable_Value("$NOT_THERE", nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(Fct_Variable_Get("$NOR_THERE", nullptr, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(Take(), (Texts{"WARNING: Contract: variable missing: $NOT_THERE",
                             "WARNING: Contract: variable missing: $NOR_THERE"}));
    EXPECT_EQ(Contract_Report_Nb(), 2);
}

TEST_F(Contract, checks_are_off_until_asked_for) {
    Contract_Checks_Set(false);
    Fct_Variable_Value("$NOT_THERE", nullptr, nullptr, nullptr);
    Fct_Update(UPDATE_SELECTION, nullptr, nullptr, nullptr);
    EXPECT_EQ(Take(), Texts{});
    Contract_Checks_Set(true);
    Fct_Variable_Value("$NOT_THERE", nullptr, nullptr, nullptr);
    EXPECT_EQ(static_cast<int>(Take().size()), 1) << "turning the checks on forgets what was reported";
}

TEST_F(Contract, counts_beyond_what_panels_show_or_beyond_their_arrays_are_reported) {
    Variable_Define_Scalar("$MARKER_NB", VARIABLE_UNSIGNED_16, 64);
    Variable_Define_Array("$MARKER_COLOR", VARIABLE_UNSIGNED_32, 64);
    EXPECT_EQ(Contract_Check_Variables(), 0);
    Variable_Define_Array("$MARKER_ENABLE", VARIABLE_UNSIGNED_8, 63);
    EXPECT_EQ(Contract_Check_Variables(), 1);
    EXPECT_EQ(Take(), (Texts{"WARNING: Contract: count cap: $MARKER_ENABLE has 63 elements, $MARKER_NB is 64"}));
    Variable_Define_Scalar("$MARKER_NB", VARIABLE_UNSIGNED_16, 68);
    EXPECT_EQ(Contract_Check_Variables(), 3);
    Take();
    Variable_Define_Scalar("$BRUSH_NB", VARIABLE_UNSIGNED_16, 9);
    Variable_Define_Array("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, 9);
    EXPECT_EQ(Contract_Check_Variables(), 1);
    EXPECT_EQ(Take(), (Texts{"WARNING: Contract: count cap: $BRUSH_NB is 9, panels show 8"}));
    Variable_Define_Array("$BRUSH_PT", VARIABLE_POINTER, 8);
    EXPECT_EQ(Contract_Check_Variables(), 1) << "the masks are not looked at before their radius is there";
    EXPECT_EQ(Take(), (Texts{"WARNING: Contract: count cap: $BRUSH_PT has 8 elements, $BRUSH_NB is 9"}));
    Variable_Undefine("$BRUSH_PT");
    Variable_Undefine("$BRUSH_NB");
    Variable_Undefine("$BRUSH_SIZE");
    Variable_Undefine("$MARKER_NB");
    Variable_Undefine("$MARKER_COLOR");
    Variable_Undefine("$MARKER_ENABLE");
}

TEST_F(Contract, structure_and_selection_need_a_level) {
    Fct_Update(UPDATE_STRUCTURE | UPDATE_LEVEL_3D, nullptr, nullptr, nullptr);
    Fct_Update(UPDATE_SELECTION | UPDATE_LEVEL_1D, nullptr, nullptr, nullptr);
    Fct_Update(UPDATE_TAG_CUR, nullptr, nullptr, nullptr);
    EXPECT_EQ(Take(), Texts{});
    Fct_Update(UPDATE_SELECTION, nullptr, nullptr, nullptr);
    Contract_Check_Update(UPDATE_STRUCTURE);
    EXPECT_EQ(Take(), (Texts{"WARNING: Contract: update flag without its level: UPDATE_SELECTION",
                             "WARNING: Contract: update flag without its level: UPDATE_STRUCTURE"}));
}

TEST_F(Contract, an_open_iterator_is_named_by_who_opened_it) {
    const unsigned short handle = Iterator_Init("Somebody::Walk", nullptr);
    Contract_Check_Iterators();
    EXPECT_EQ(Take(), (Texts{"WARNING: Contract: iterator not ended: Somebody::Walk"}));
    Iterator_End(handle);
    Contract_Checks_Set(true);
    Contract_Check_Iterators();
    EXPECT_EQ(Take(), Texts{});
}

TEST_F(Contract, wait_cursors_are_set_and_reset_evenly) {
    Reset_Curs_Wait(nullptr);
    EXPECT_EQ(Take(), (Texts{"WARNING: Contract: wait cursor set and reset unevenly: reset and not set"}));
    Set_Curs_Wait(nullptr);
    Contract_Check_Drawing();
    EXPECT_EQ(Take(), (Texts{"WARNING: Contract: wait cursor set and reset unevenly: set and not reset"}));
    Reset_Curs_Wait(nullptr);
    Contract_Checks_Set(true);
    Contract_Check_Drawing();
    EXPECT_EQ(Take(), Texts{});
}

}  // namespace
