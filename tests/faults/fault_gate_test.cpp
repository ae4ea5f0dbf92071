// That the gate makes calls fail and that defects are seen at all; and the table at the end of the program.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <stdexcept>
#include <vector>

#include "base/gdi_handles.h"
#include "host/kit_widgets.h"
#include "tests/faults/fault_gate.h"
#include "tests/faults/fault_run.h"
#include "tests/faults/gui_objects.h"
#include "tests/support/panel_fixture.h"

TEST(Gui_Objects, are_counted) {
    const int before = Gdi_Object_Nb();
    EXPECT_GT(before, 0);
    std::vector<Gdi_Pen> pens;
    for (int i = 0; i < 20; i++) {
        pens.emplace_back(::CreatePen(PS_SOLID, 1, RGB(i, 2, 3)));
    }
    EXPECT_EQ(Gdi_Object_Nb(), before + 20);
    pens.clear();
    EXPECT_EQ(Gdi_Object_Nb(), before);
    const Panel_Window first(Window_Axis::Up, 50, 40);
    const int windows = Window_Nb();
    {
        const Panel_Window window(Window_Axis::Up, 50, 40);
        EXPECT_EQ(Window_Nb(), windows + 1);
    }
    EXPECT_EQ(Window_Nb(), windows);
    EXPECT_GT(Private_Byte_Nb(), 100000U);
}

TEST(Fault_Gate, makes_exactly_the_chosen_call_fail) {
    const Panel_Window window(Window_Axis::Down, 50, 50);
    HDC plain = Y_setup(window.Get(), "");
    ASSERT_NE(plain, nullptr);
    Y_release(window.Get(), plain);
    const Fault_Gate gate({"Kit_Widgets.dll"});
    Fault_Gate::Arm(0, true);
    Y_release(window.Get(), Y_setup(window.Get(), ""));
    Fault_Gate::Disarm();
    EXPECT_FALSE(Fault_Gate::Happened());
    int get_dc = 0;
    for (std::size_t i = 0; i < Fault_Gate::Calls().size(); i++) {
        if (Fault_Gate::Name(Fault_Gate::Calls()[i]).starts_with("GetDC from Kit_Widgets.dll+0x")) {
            get_dc = static_cast<int>(i) + 1;
        }
    }
    ASSERT_GT(get_dc, 0);
    Fault_Gate::Arm(get_dc, false);
    EXPECT_EQ(Y_setup(window.Get(), ""), nullptr);
    Fault_Gate::Disarm();
    EXPECT_TRUE(Fault_Gate::Happened());
}

TEST(Fault_Gate, knows_what_the_modules_hold) {
    const Fault_Gate gate({"Kit_Widgets.dll", "Kit_Dataset.dll"});
    Variable_Define_Text("$FAULT_GATE_TEXT", "the table keeps the name");
    Variable_Undefine("$FAULT_GATE_TEXT");
    const long before = Fault_Gate::Live_Block_Nb();
    Variable_Define_Text("$FAULT_GATE_TEXT", "a text that needs a block of its own, however short others may be");
    EXPECT_GT(Fault_Gate::Live_Block_Nb(), before);
    Variable_Undefine("$FAULT_GATE_TEXT");
    EXPECT_EQ(Fault_Gate::Live_Block_Nb(), before);
}

namespace {

/** What is reported of an operation that does `defect` when a window gives no device context. */
Fault_Row Defect_Row(const std::function<void(const Panel_Window&)>& defect, int* reports) {
    const Panel_Window window(Window_Axis::Down, 30, 20);
    Fault_Subject subject;
    subject.build = [&] { window.Wipe(); };
    subject.settle = [] {};
    subject.picture = [&] { return window.Read(); };
    subject.end = [] {};
    testing::TestPartResultArray results;
    Fault_Row row;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &results);
        row = Faults_Run_One("harness", subject, {"defect", [&] {
                                                      HDC dc = Y_setup(window.Get(), "");
                                                      if (dc == nullptr) {
                                                          defect(window);
                                                      } else {
                                                          Y_release(window.Get(), dc);
                                                      }
                                                  }});
    }
    *reports = results.size();
    return row;
}

}  // namespace

TEST(Faults_Run, reports_nothing_of_an_operation_that_does_nothing_when_a_call_fails) {
    int reports = 0;
    const Fault_Row row = Defect_Row([](const Panel_Window&) {}, &reports);
    EXPECT_EQ(reports, 0);
    EXPECT_GT(row.failed, 0);
    EXPECT_EQ(row.same_picture, row.failed);
    EXPECT_EQ(row.leaks, 0);
}

TEST(Faults_Run, reports_what_is_not_given_back_when_a_call_fails) {
    std::vector<Gdi_Pen> pens;
    int reports = 0;
    const Fault_Row row =
        Defect_Row([&](const Panel_Window&) { pens.emplace_back(::CreatePen(PS_SOLID, 1, 0)); }, &reports);
    EXPECT_GT(row.leaks, 0);
    EXPECT_EQ(row.leaks, reports);
}

TEST(Faults_Run, reports_what_looks_different_after_a_call_has_failed) {
    int reports = 0;
    const Fault_Row row =
        Defect_Row([](const Panel_Window& window) { Panel_Window_Fill(window.Get(), 1, 1, 0x334455); }, &reports);
    EXPECT_LT(row.same_picture, row.failed);
    EXPECT_EQ(reports, row.failed - row.same_picture);
}

TEST(Faults_Run, reports_exceptions) {
    int reports = 0;
    const Fault_Row row = Defect_Row([](const Panel_Window&) { throw std::runtime_error("a defect"); }, &reports);
    EXPECT_GT(row.escaped, 0);
    EXPECT_EQ(row.escaped, reports);
}

namespace {

class Table_Printer : public testing::Environment {
  public:
    void TearDown() override { std::printf("%s", Fault_Table().c_str()); }
};
const testing::Environment* const TABLE_PRINTER = testing::AddGlobalTestEnvironment(new Table_Printer);

}  // namespace
