// The brush and the markers, and which tool is in hand.
#include "workbench/tools/tool_box.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/workbench/tools/tool_double.h"

using namespace workbench;

namespace {

constexpr std::array<Plane, PLANE_NB> PLANES = {Plane::Axial, Plane::Coronal, Plane::Sagittal};

class Tool_Box_Test : public ::testing::Test {
  protected:
    void Stroke(const Tool_Spot& spot, Tool_Hand hand = Tool_Hand::Left) {
        box.Press(spot, hand);
        box.Release();
    }
    Tool_Double app;
    Tool_Box box{app.Host()};
};

TEST_F(Tool_Box_Test, the_brush_paints_with_the_left_button_and_erases_with_the_right_one) {
    EXPECT_EQ(box.Press(app.In_Slice(4.2, 4.9, 3), Tool_Hand::Left), (Pixel_Rect{3, 3, 6, 6}));
    EXPECT_TRUE(app.noted.Has(Change::Stroke));
    EXPECT_EQ(app.Nb(1), 5U);
    EXPECT_EQ(box.Move(app.In_Slice(6.5, 4.5, 3)), (Pixel_Rect{3, 3, 8, 6}));
    box.Release();
    EXPECT_EQ(app.Nb(1), 11U);
    EXPECT_TRUE(app.noted.Has(Change::Pixels));
    EXPECT_EQ(app.logged, "stroke");
    EXPECT_EQ(app.Step_Nb(), 1U);
    Stroke(app.In_Slice(4.5, 4.5, 3), Tool_Hand::Right);
    EXPECT_EQ(app.Nb(1), 6U);
    EXPECT_EQ(app.session.Journal().Next_Undo()->title, "Erase");
    box.Move(app.In_Slice(9.5, 4.5, 3));
    EXPECT_EQ(app.Nb(1), 6U) << "no button is down";
}

TEST_F(Tool_Box_Test, a_stroke_ends_when_another_one_begins_or_something_ends_it) {
    box.Press(app.In_Slice(2.5, 2.5, 3), Tool_Hand::Pen);
    box.Press(app.Spot(Plane::Coronal, 5, 2, 4), Tool_Hand::Left);
    EXPECT_EQ(app.Step_Nb(), 1U);
    EXPECT_GT(app.pens_lifted, 0);
    box.Stroke_End();
    EXPECT_EQ(app.Step_Nb(), 2U);
    box.Move(app.Spot(Plane::Coronal, 9, 2, 4));
    box.Release();
    EXPECT_EQ(app.Step_Nb(), 2U);
    EXPECT_FALSE(app.session.Is_Stroking());
}

TEST_F(Tool_Box_Test, locked_tags_stay_and_only_those_of_a_chosen_one_change_but_the_background_cannot_be_locked) {
    app.tag = 2;
    Stroke(app.In_Slice(4.5, 4.5, 3));
    app.tag = 1;
    app.locked[0] = app.locked[2] = 1;
    Stroke(app.In_Slice(5.5, 4.5, 3));
    EXPECT_EQ(app.Nb(2), 5U);
    EXPECT_EQ(app.Nb(1), 3U);
    app.locked = {};
    app.only_inside = 2;
    Stroke(app.In_Slice(5.5, 4.5, 3));
    EXPECT_EQ(app.Nb(2), 3U);
    EXPECT_EQ(app.Nb(1), 5U);
    Stroke(app.In_Slice(9.5, 4.5, 3));
    EXPECT_EQ(app.Nb(1), 5U) << "nothing there is TAG 2";
}

TEST_F(Tool_Box_Test, within_the_band_it_takes_only_what_the_outline_shows) {
    // Level = x + 11 y + 99 slice.
    app.band = segmentation::Level_Band{99 * 3 + 11 * 4 + 4, 99 * 3 + 11 * 4 + 30};
    box.Band_Only_Set(true);
    EXPECT_EQ(app.told, "The brush paints only within the band of T1");
    const Tool_Spot spot = app.In_Slice(4.5, 4.5, 3);
    const Brush_Footprint outline = box.Outline(spot);
    EXPECT_EQ(outline.Pixel_Nb(), 3U);
    EXPECT_TRUE(outline.Covers(0, 0));
    EXPECT_TRUE(outline.Covers(1, 0));
    EXPECT_TRUE(outline.Covers(0, 1));
    EXPECT_EQ(box.Outline(app.In_Slice(1.5, 1.5, 3)).Pixel_Nb(), 0U);
    Stroke(spot);
    EXPECT_EQ(app.Nb(1), 3U);
    EXPECT_EQ(box.Outline(spot).Pixel_Nb(), 3U) << "what has the TAG already stays in the outline";
    app.locked[1] = 1;
    app.tag = 2;
    EXPECT_EQ(box.Outline(spot).Pixel_Nb(), 0U) << "what is locked is not taken";
    app.locked = {};
    app.tag = 1;
    Stroke(app.In_Slice(4.5, 5.5, 3), Tool_Hand::Right);
    EXPECT_EQ(app.Nb(1), 1U) << "the eraser keeps to it, too";
    app.band.reset();
    Stroke(spot);
    EXPECT_EQ(app.Nb(1), 1U);
    EXPECT_EQ(app.told, "T1 has no band: set its thresholds, or paint without one");
    box.Band_Only_Set(false);
    Stroke(spot);
    EXPECT_EQ(app.Nb(1), 5U);
    EXPECT_EQ(box.Outline(spot).Pixel_Nb(), 5U);
}

TEST_F(Tool_Box_Test, a_ball_paints_the_pictures_before_and_behind_in_true_millimetres) {
    app.brush = Brush_Footprint({{-2, -2, 2}, {-1, -3, 3}, {0, -3, 3}, {1, -3, 3}, {2, -2, 2}});  // radius 4
    box.Ball_Set(true);
    box.Brush_Mm_Set(true);
    EXPECT_EQ(app.told, "The brush reaches 4 mm");
    EXPECT_EQ(box.Brush_Note(), ", in mm, ball");
    Stroke(app.In_Slice(5.5, 4.5, 3));
    std::uint64_t expected = 0;
    for (int z = 0; z < TOOL_VOXEL_NB[2]; ++z) {
        for (int y = 0; y < TOOL_VOXEL_NB[1]; ++y) {
            for (int x = 0; x < TOOL_VOXEL_NB[0]; ++x) {
                const int dx = x - 5;
                const int dy = 2 * (y - 4);
                const int dz = 3 * (z - 3);
                const bool is_near = dx * dx + dy * dy + dz * dz < 16;
                EXPECT_EQ(app.session.Labels().At(x, y, z), is_near ? 1 : 0);
                expected += is_near ? 1 : 0;
            }
        }
    }
    EXPECT_GT(app.session.Labels().At(5, 4, 2), 0);
    EXPECT_EQ(app.Step_Nb(), 1U);
    EXPECT_GT(app.session.Slice_Change_Nb(2), 0U) << "the work that is kept must be told of every slice";
    EXPECT_EQ(app.session.Slice_Change_Nb(0), 0U);
    app.session.Undo();
    EXPECT_EQ(app.Nb(1), 0U);
    app.session.Redo();
    EXPECT_EQ(app.Nb(1), expected);
}

TEST_F(Tool_Box_Test, a_hidden_tag_is_told_of) {
    app.is_tag_hidden = true;
    Stroke(app.In_Slice(4.5, 4.5, 3), Tool_Hand::Right);
    EXPECT_EQ(app.told, "");
    Stroke(app.In_Slice(4.5, 4.5, 3));
    EXPECT_EQ(app.told, "The current TAG is hidden: press E to show it");
}

TEST_F(Tool_Box_Test, markers_are_placed_caught_and_dragged_in_one_step) {
    box.Tool_Choose(Tool_Kind::Markers);
    EXPECT_EQ(app.told, "The left button places the current marker, or moves the one it hits");
    EXPECT_EQ(box.Outline(app.In_Slice(4.5, 4.5, 3)).Pixel_Nb(), 0U);
    app.marker = 2;
    box.Press(app.In_Slice(4.5, 4.5, 3), Tool_Hand::Left);
    EXPECT_TRUE(app.noted.Has(Change::Marker_Drag));
    EXPECT_EQ(app.Step_Nb(), 0U);
    box.Release();
    EXPECT_EQ(app.session.Markers().Get(2), (Marker{true, 4, 4, 3}));
    EXPECT_EQ(app.Step_Nb(), 1U);
    app.marker = 5;
    const Tool_Spot in_coronal = {{app.Spot(Plane::Coronal, 0, 0, 0).cut.geometry, 0}, {}};
    const Plane_Pixel seen = in_coronal.cut.geometry.To_Pixel({4, 4, 3});
    box.Press(app.Spot(Plane::Coronal, seen.x + 2, seen.y, seen.depth), Tool_Hand::Left);
    EXPECT_EQ(app.marker, 2) << "the one that was hit";
    box.Move(app.Spot(Plane::Coronal, 99, 1, seen.depth));
    box.Stroke_End();
    box.Release();
    const Shown_Voxel expected = in_coronal.cut.geometry.To_Voxel({TOOL_VOXEL_NB[0] - 1, 1, seen.depth});
    EXPECT_EQ(app.session.Markers().Get(2), (Marker{true, expected.x, expected.y, expected.slice}));
    EXPECT_EQ(app.Step_Nb(), 2U);
    app.session.Undo();
    EXPECT_EQ(app.session.Markers().Get(2), (Marker{true, 4, 4, 3}));
    Stroke(app.In_Slice(-3.5, 4.5, 3));
    EXPECT_FALSE(app.session.Markers().Get(5).is_placed) << "outside";
    Stroke(app.Spot(Plane::Coronal, seen.x, seen.y, seen.depth == 0 ? 1 : seen.depth - 1));
    EXPECT_EQ(app.marker, 2) << "that one lies in another picture";
    Stroke(app.In_Slice(4.5, 4.5, 3), Tool_Hand::Right);
    EXPECT_EQ(app.session.Journal().Undo_Nb(), 2U) << "the right button erases";
}

TEST_F(Tool_Box_Test, random_strokes_of_all_brushes_in_all_planes_agree_with_a_plain_model) {
    std::mt19937 random(7);
    const auto below = [&random](int most) { return std::uniform_int_distribution<int>(0, most - 1)(random); };
    std::vector<std::uint8_t> model = app.Tags();
    std::vector<std::vector<std::uint8_t>> past;
    std::vector<std::vector<std::uint8_t>> future;
    for (int round = 0; round < 1500; ++round) {
        const int action = below(10);
        if (action < 2) {
            EXPECT_EQ(app.session.Undo() != nullptr, !past.empty());
            if (!past.empty()) {
                future.push_back(std::exchange(model, past.back()));
                past.pop_back();
            }
        } else if (action < 3) {
            EXPECT_EQ(app.session.Redo() != nullptr, !future.empty());
            if (!future.empty()) {
                past.push_back(std::exchange(model, future.back()));
                future.pop_back();
            }
        } else {
            const std::vector<std::uint8_t> before = model;
            const int radius = 1 + below(4);
            app.brush = Brush_Footprint({{0, 1 - radius, radius - 1}});  // only its radius counts for balls
            const bool is_ball = below(2) == 0;
            const bool is_mm = below(2) == 0 || !is_ball;
            box.Ball_Set(is_ball);
            box.Brush_Mm_Set(is_mm);
            app.tag = below(4);
            app.locked = {};
            app.locked[static_cast<std::size_t>(below(6))] = 1;
            app.only_inside = below(3) == 0 ? std::optional(static_cast<std::uint8_t>(below(4))) : std::nullopt;
            const int low = below(600);
            app.band = segmentation::Level_Band{low, low + below(300)};
            box.Band_Only_Set(below(2) == 0);
            const Tool_Spot axes = app.Spot(PLANES[static_cast<std::size_t>(below(PLANE_NB))], 0, 0, 0);
            const Plane_Geometry& geometry = axes.cut.geometry;
            Plane_Pixel at = {below(geometry.Width() + 4) - 2, below(geometry.Height() + 4) - 2,
                              below(geometry.Depth_Nb())};
            const bool erase = below(4) == 0;
            const Plane_Cut cut = {geometry, at.depth};
            box.Press({cut, {at.x + 0.5, at.y + 0.5}}, erase ? Tool_Hand::Right : Tool_Hand::Left);
            std::vector<Plane_Pixel> centres = {at};
            for (int step = below(4); step > 0; --step) {
                at.x += 1;
                centres.push_back(at);
            }
            box.Move({cut, {at.x + 0.5, at.y + 0.5}});
            box.Release();
            const std::array<double, 3> mm = {1.0, 2.0, 3.0};
            const auto ink = static_cast<std::uint8_t>(erase ? 0 : app.tag);
            std::size_t index = 0;
            for (int z = 0; z < TOOL_VOXEL_NB[2]; ++z) {
                for (int y = 0; y < TOOL_VOXEL_NB[1]; ++y) {
                    for (int x = 0; x < TOOL_VOXEL_NB[0]; ++x, ++index) {
                        const Plane_Pixel pixel = geometry.To_Pixel({x, y, z});
                        const auto is_near = [&](const Plane_Pixel& centre) {
                            const Shown_Voxel middle = geometry.To_Voxel(centre);
                            const double dx = (x - middle.x) * (is_mm ? mm[0] : 1.0);
                            const double dy = (y - middle.y) * (is_mm ? mm[1] : 1.0);
                            const double dz = (z - middle.slice) * (is_mm ? mm[2] : 1.0);
                            return pixel == centre || (dx * dx + dy * dy + dz * dz < radius * radius &&
                                                       (is_ball || pixel.depth == centre.depth));
                        };
                        const auto level = static_cast<std::int32_t>(index);
                        const std::uint8_t tag = model[index];
                        const bool may = (tag == 0 || app.locked[tag] == 0) &&
                                         (!app.only_inside || *app.only_inside == tag) &&
                                         (!box.Is_Band_Only() || app.band->Has(level));
                        if (may && std::ranges::any_of(centres, is_near)) {
                            model[index] = ink;
                        }
                    }
                }
            }
            if (model != before) {
                past.push_back(before);
                future.clear();
            }
        }
        ASSERT_EQ(app.Tags(), model) << round;
    }
    EXPECT_GT(past.size(), 100U);
}

}  // namespace
