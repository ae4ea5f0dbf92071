// Strokes on the pictures of the three planes.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <new>
#include <random>
#include <utility>
#include <vector>

#include "tests/workbench/volumes/failing_allocation.h"
#include "workbench/model/session.h"
#include "workbench/model/volume_planes.h"

using namespace workbench;

namespace {

constexpr std::array<int, 3> VOXEL_NB = {9, 7, 5};
constexpr std::array<Plane, PLANE_NB> PLANES = {Plane::Axial, Plane::Coronal, Plane::Sagittal};

volumes::Volume Blank_Volume() {
    volumes::Volume volume;
    volume.nx = VOXEL_NB[0];
    volume.ny = VOXEL_NB[1];
    volume.nz = VOXEL_NB[2];
    volume.nt = 1;
    volume.affine = {{{0, 2, 0, 0}, {-1, 0, 0, 0}, {0, 0, 3, 0}}};
    volume.spacing = {1.0, 2.0, 3.0};
    volume.affine_source = volumes::Affine_Source::Sform;
    volume.levels = volumes::Voxel_Levels::Of_Range(volume.Voxel_Nb_3D(), 0, 0, false);
    return volume;
}

/** A square of three pixels' side. */
Brush_Footprint Square() {
    static const unsigned char bytes[3] = {1, 1, 1};
    static const unsigned char* const rows[3] = {bytes, bytes, bytes};
    return {rows, 1};
}

Paint_Ink Ink(int tag) {
    Paint_Ink ink;
    ink.tag = static_cast<std::uint8_t>(tag);
    return ink;
}

class Session_Planes : public ::testing::Test {
  protected:
    Session_Planes() { session.Take(Blank_Volume(), "image.nii"); }
    Plane_Cut Cut(Plane plane, int depth) const {
        const Patient_Axes axes = Patient_Axes_Of(session.Image().affine, session.Order());
        return {Plane_Geometry_Of(plane, axes, VOXEL_NB, session.Image().spacing), depth};
    }
    std::vector<std::uint8_t> All() const {
        const auto all = std::as_const(session).Labels().All();
        return {all.begin(), all.end()};
    }
    Session session;
};

TEST_F(Session_Planes, a_stroke_through_many_slices_is_one_step) {
    const Plane_Cut cut = Cut(Plane::Coronal, 2);
    EXPECT_EQ(session.Stroke_Begin(cut, Square(), 1, 1, Ink(4)), (Pixel_Rect{0, 0, 3, 3}));
    EXPECT_TRUE(session.Is_Stroking());
    EXPECT_EQ(session.Stroke_Move(1, 3), (Pixel_Rect{0, 0, 3, 5}));
    EXPECT_TRUE(session.Stroke_End());
    EXPECT_EQ(session.Labels().Counts()[4], 15U);
    for (int y = 0; y < 5; ++y) {
        const Shown_Voxel voxel = cut.geometry.To_Voxel({1, y, 2});
        EXPECT_EQ(session.Labels().At(voxel.x, voxel.y, voxel.slice), 4) << y;
    }
    EXPECT_EQ(session.Journal().Undo_Nb(), 1U);
    EXPECT_TRUE(session.Is_Unsaved());
    const std::uint64_t before = session.Slice_Change_Nb(0);
    ASSERT_NE(session.Undo(), nullptr);
    EXPECT_EQ(session.Labels().Counts()[4], 0U);
    EXPECT_GT(session.Slice_Change_Nb(0), before) << "the work that is kept must be told of every slice";
    ASSERT_NE(session.Redo(), nullptr);
    EXPECT_EQ(session.Labels().Counts()[4], 15U);
}

TEST_F(Session_Planes, what_is_painted_is_told_to_be_new_in_the_slices_that_it_touches) {
    const Plane_Cut cut = Cut(Plane::Sagittal, 1);
    session.Stroke_Begin(cut, Square(), 3, 0, Ink(2));
    // The top is the last slice.
    EXPECT_GT(session.Slice_Change_Nb(4), 0U);
    EXPECT_GT(session.Slice_Change_Nb(3), 0U);
    EXPECT_EQ(session.Slice_Change_Nb(2), 0U);
}

TEST_F(Session_Planes, locked_tags_stay_and_strokes_outside_change_nothing) {
    const Plane_Cut cut = Cut(Plane::Coronal, 0);
    session.Stroke_Begin(cut, Square(), 4, 2, Ink(1));
    session.Stroke_End();
    Paint_Ink careful = Ink(2);
    careful.locked[1] = 1;
    session.Stroke_Begin(cut, Square(), 4, 2, careful);
    EXPECT_FALSE(session.Stroke_End());
    EXPECT_EQ(session.Stroke_Begin(cut, Square(), -9, -9, Ink(3)), (Pixel_Rect{}));
    EXPECT_FALSE(session.Stroke_End());
    EXPECT_EQ(session.Journal().Undo_Nb(), 1U);
    // A picture that is not of this volume.
    for (const int depth : {-1, 99}) {
        session.Stroke_Begin(Cut(Plane::Coronal, depth), Square(), 1, 1, Ink(3));
        EXPECT_FALSE(session.Is_Stroking());
    }
    Plane_Cut foreign = cut;
    foreign.geometry.voxel_nb = {2, 2, 2};
    session.Stroke_Begin(foreign, Square(), 1, 1, Ink(3));
    EXPECT_FALSE(session.Is_Stroking());
}

TEST_F(Session_Planes, a_stroke_without_memory_for_its_step_is_unsaved_work_all_the_same) {
    const Plane_Cut cut = Cut(Plane::Coronal, 1);
    for (int fails = 0; fails < 20; ++fails) {
        session.Take(Blank_Volume(), "image.nii");
        session.Stroke_Begin(cut, Square(), 3, 2, Ink(5));
        bool is_short = false;
        try {
            const Failing_Allocation failing(fails);
            session.Stroke_End();
        } catch (const std::bad_alloc&) {
            is_short = true;
        }
        EXPECT_EQ(session.Labels().Counts()[5], 9U);
        EXPECT_TRUE(session.Is_Unsaved()) << fails;
        EXPECT_EQ(session.Journal().Undo_Nb(), is_short ? 0U : 1U);
        if (!is_short) {
            EXPECT_GT(fails, 0);
            return;
        }
    }
    FAIL() << "it never succeeded";
}

TEST_F(Session_Planes, random_strokes_in_all_planes_agree_with_a_plain_model) {
    std::mt19937 random(18);
    const auto below = [&random](int most) { return std::uniform_int_distribution<int>(0, most - 1)(random); };
    std::vector<std::uint8_t> model = All();
    std::vector<std::vector<std::uint8_t>> past;
    std::vector<std::vector<std::uint8_t>> future;
    for (int round = 0; round < 3000; ++round) {
        const int action = below(10);
        if (action < 2) {
            EXPECT_EQ(session.Undo() != nullptr, !past.empty());
            if (!past.empty()) {
                future.push_back(std::exchange(model, past.back()));
                past.pop_back();
            }
        } else if (action < 4) {
            EXPECT_EQ(session.Redo() != nullptr, !future.empty());
            if (!future.empty()) {
                past.push_back(std::exchange(model, future.back()));
                future.pop_back();
            }
        } else {
            const Plane plane = PLANES[static_cast<std::size_t>(below(PLANE_NB))];
            Plane_Cut cut = Cut(plane, 0);
            cut.depth = below(cut.geometry.Depth_Nb());
            Paint_Ink ink = Ink(below(4));
            ink.locked[static_cast<std::size_t>(1 + below(5))] = 1;
            const std::vector<std::uint8_t> before = model;
            int x = below(cut.geometry.Width() + 4) - 2;
            int y = below(cut.geometry.Height() + 4) - 2;
            session.Stroke_Begin(cut, Square(), x, y, ink);
            // Straight along an axis, so that the model needs no line of its own.
            const int moves = below(4);
            std::vector<std::array<int, 2>> centres = {{x, y}};
            for (int move = 0; move < moves; ++move) {
                const int step = below(2) == 0 ? 1 : -1;
                int& along = below(2) == 0 ? x : y;
                for (int pixel = below(4); pixel >= 0; --pixel) {
                    along += step;
                    centres.push_back({x, y});
                }
                session.Stroke_Move(x, y);
            }
            for (const auto& [cx, cy] : centres) {
                for (int at = 0; at < 9; ++at) {
                    const int px = cx + at % 3 - 1;
                    const int py = cy + at / 3 - 1;
                    if (!cut.geometry.Has(px, py)) {
                        continue;
                    }
                    const Shown_Voxel voxel = cut.geometry.To_Voxel({px, py, cut.depth});
                    std::uint8_t& tag =
                        model[static_cast<std::size_t>((voxel.slice * VOXEL_NB[1] + voxel.y) * VOXEL_NB[0] + voxel.x)];
                    tag = ink.locked[tag] != 0 ? tag : ink.tag;
                }
            }
            EXPECT_EQ(session.Stroke_End(), model != before);
            if (model != before) {
                past.push_back(before);
                future.clear();
            }
        }
        ASSERT_EQ(All(), model) << round;
    }
    EXPECT_GT(past.size(), 100U);
}

}  // namespace
