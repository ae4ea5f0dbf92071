#include "workbench/model/voxel_text.h"

#include <gtest/gtest.h>

using namespace volumes;
using namespace workbench;

namespace {

Session Session_Of(std::vector<std::int32_t> levels, double slope, double intercept) {
    Volume volume;
    volume.nx = static_cast<std::int32_t>(levels.size());
    volume.ny = volume.nz = volume.nt = 1;
    volume.slope = slope;
    volume.intercept = intercept;
    volume.affine = {{{-0.5, 0, 0, 90.25}, {0, -1, 0, 0}, {0, 0, 1, -72}}};
    volume.level_max = 65535;
    volume.levels = std::move(levels);
    Session session;
    session.Take(std::move(volume), "image.nii");
    return session;
}

TEST(Voxel_Text, tells_place_grey_and_tag) {
    const Session session = Session_Of({7, 8, 9}, 1.0, 0.0);
    EXPECT_EQ(Voxel_Text(session, 1, 0, 0, "Background"), "(1, 0, 0)   89.8, 0, -72 mm   grey 8   TAG 0 Background");
}

TEST(Voxel_Text, small_grey_values_have_three_digits) {
    const Session session = Session_Of({0, 1, 16016, LEVEL_OUTSIDE}, 0.003 / 65535, -0.00002);
    const auto grey = [&](int x) {
        const std::string text = Voxel_Text(session, x, 0, 0, "");
        const std::size_t at = text.find("grey ") + 5;
        return text.substr(at, text.find("   TAG") - at);
    };
    EXPECT_EQ(grey(0), "-2.000e-5");
    EXPECT_EQ(grey(2), "0.00071317");
    EXPECT_EQ(grey(3), "none");
}

TEST(Voxel_Text, follows_strokes_and_undo) {
    Session session = Session_Of({7, 8, 9}, 1.0, 0.0);
    const auto tag = [&] {
        const std::string text = Voxel_Text(session, 1, 0, 0, "name");
        return text.substr(text.find("TAG "));
    };
    EXPECT_EQ(tag(), "TAG 0 name");
    const unsigned char one = 1;
    const unsigned char* const rows[] = {&one};
    const Brush_Footprint dot(rows, 0);
    Paint_Ink ink;
    ink.tag = 5;
    session.Stroke_Begin(0, dot, 1, 0, ink);
    session.Stroke_End();
    EXPECT_EQ(tag(), "TAG 5 name");
    session.Undo();
    EXPECT_EQ(tag(), "TAG 0 name");
}

TEST(Voxel_Text, outside_there_is_nothing_to_tell) {
    const Session session = Session_Of({7, 8, 9}, 1.0, 0.0);
    EXPECT_EQ(Voxel_Text(session, 3, 0, 0, ""), "");
    EXPECT_EQ(Voxel_Text(session, -1, 0, 0, ""), "");
    EXPECT_EQ(Voxel_Text(session, 0, 0, 1, ""), "");
    EXPECT_EQ(Voxel_Text(Session(), 0, 0, 0, ""), "");
}

}  // namespace
