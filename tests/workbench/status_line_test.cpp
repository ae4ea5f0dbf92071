// The line at the foot of the window.
#include "workbench/status_line.h"

#include <gtest/gtest.h>

using namespace workbench;

namespace {

/** A window that holds the line. */
class Holder : public Window_Base {
  public:
    Holder() { Create(nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE, L"holder"); }
};

TEST(Status_Line_Window, a_new_size_paints_all_of_it) {
    const Look look;
    const Holder holder;
    Status_Line line(look);
    ASSERT_TRUE(line.Make(holder.Handle()));
    line.Place({0, 0, 300, 26});
    line.Voxel_Set(L"(1, 2, 3)   grey 5");
    ::UpdateWindow(line.Handle());
    ASSERT_EQ(::GetUpdateRect(line.Handle(), nullptr, FALSE), 0) << "everything is painted";
    // The text stands at the right: where it stood must be painted too.
    line.Place({0, 0, 500, 26});
    RECT stale = {};
    ASSERT_NE(::GetUpdateRect(line.Handle(), &stale, FALSE), 0);
    EXPECT_EQ(stale.left, 0);
    EXPECT_EQ(stale.right, 500);
}

}  // namespace
