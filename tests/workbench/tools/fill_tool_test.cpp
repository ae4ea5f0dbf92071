// Filling from a click, and growing a region that is seen before it is taken.
#include "workbench/tools/fill_tool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>

#include "tests/workbench/tools/tool_double.h"
#include "workbench/tools/growth_mask.h"
#include "workbench/tools/growth_tool.h"

using namespace workbench;

namespace {

constexpr std::array<Plane, PLANE_NB> PLANES = {Plane::Axial, Plane::Coronal, Plane::Sagittal};

/** A volume of few levels in patches, so that regions hang together and end. */
volumes::Volume Patches(unsigned seed) {
    volumes::Volume volume = Tool_Volume();
    std::mt19937 random(seed);
    volume.slope = 2.0;
    for (std::size_t at = 0; at < volume.levels.size(); ++at) {
        volume.levels.Set(at, static_cast<std::int32_t>(random() % 4) * 10);
    }
    return volume;
}

class Fill_Test : public ::testing::Test {
  protected:
    Fill_Test() { app.session.Take(Patches(5), "patches.nii"); }
    /** By definition: voxel after voxel, in the picture or in space. */
    std::vector<std::uint8_t> Flooded(const Tool_Spot& spot, std::int32_t low, std::int32_t high) const {
        std::vector<std::uint8_t> tags = app.Tags();
        const auto index = [](const Shown_Voxel& at) {
            return static_cast<std::size_t>((at.slice * TOOL_VOXEL_NB[1] + at.y) * TOOL_VOXEL_NB[0] + at.x);
        };
        const auto is_taken = [&](const Shown_Voxel& at) {
            const std::int32_t level = app.session.Image().levels[index(at)];
            const std::uint8_t tag = tags[index(at)];
            const bool may = (tag == 0 || app.locked[tag] == 0) && (!app.only_inside || *app.only_inside == tag);
            return level >= low && level <= high && (may || tag == app.tag);
        };
        std::vector<bool> is_seen(tags.size());
        std::deque<Shown_Voxel> waiting;
        const auto see = [&](const Shown_Voxel& at) {
            if (is_taken(at) && !is_seen[index(at)]) {
                is_seen[index(at)] = true;
                waiting.push_back(at);
            }
        };
        see(spot.Voxel());
        while (!waiting.empty()) {
            const Shown_Voxel at = waiting.front();
            waiting.pop_front();
            for (int step = 0; step < 27; ++step) {
                const std::array<int, 3> by = {step % 3 - 1, step / 3 % 3 - 1, step / 9 - 1};
                const int moved = std::abs(by[0]) + std::abs(by[1]) + std::abs(by[2]);
                const Shown_Voxel next = {at.x + by[0], at.y + by[1], at.slice + by[2]};
                const bool is_inside = next.x >= 0 && next.x < TOOL_VOXEL_NB[0] && next.y >= 0 &&
                                       next.y < TOOL_VOXEL_NB[1] && next.slice >= app.slices.first &&
                                       next.slice <= app.slices.last;
                const bool is_near = settings.is_over_corners ? moved > 0 : moved == 1;
                const bool is_here = settings.is_in_space || spot.cut.geometry.To_Pixel(next).depth == spot.cut.depth;
                if (is_inside && is_near && is_here) {
                    see(next);
                }
            }
        }
        for (std::size_t at = 0; at < tags.size(); ++at) {
            tags[at] = is_seen[at] ? static_cast<std::uint8_t>(app.tag) : tags[at];
        }
        return tags;
    }
    void Click(Image_Tool& tool, const Tool_Spot& spot) {
        tool.Press(spot, Tool_Hand::Left);
        tool.Release();
    }
    std::int32_t Level(const Tool_Spot& spot) const {
        const Shown_Voxel at = spot.Voxel();
        return app.session.Image().levels[app.session.Image().Index(at.x, at.y, at.slice)];
    }
    Tool_Double app;
    Tool_Host host = app.Host();
    Fill_Settings settings;
    Fill_Tool fill{host, settings};
    Growth_Tool growth{host, settings};
};

TEST_F(Fill_Test, without_a_band_it_says_so_and_outside_nothing_happens) {
    Click(fill, app.In_Slice(4.5, 4.5, 3));
    EXPECT_EQ(app.told, "T1 has no band: set its thresholds, or fill by a tolerance");
    app.told.clear();
    Click(fill, app.In_Slice(-4.5, 4.5, 3));
    EXPECT_EQ(app.told, "");
    EXPECT_EQ(app.Step_Nb(), 0U);
    settings.is_in_space = settings.is_by_tolerance = true;
    app.is_given_up = true;
    Click(fill, app.In_Slice(4.5, 4.5, 3));
    EXPECT_EQ(app.told, "Fill with T1 was given up: nothing has changed");
    EXPECT_EQ(app.Step_Nb(), 0U);
}

TEST_F(Fill_Test, a_tolerance_beyond_all_levels_grows_over_all_of_them) {
    settings.is_in_space = true;
    settings.tolerance = 1e12;
    Click(growth, app.In_Slice(4.5, 4.5, 3));
    ASSERT_TRUE(growth.Is_Growing());
    EXPECT_TRUE(growth.Step(1));
    EXPECT_TRUE(growth.Accept());
    EXPECT_EQ(std::ranges::count(app.Tags(), 1), std::ssize(app.Tags()));
}

TEST_F(Fill_Test, what_is_told_while_a_region_is_found_does_not_take_it_from_the_thread) {
    const auto run = host.run;
    host.run = [&](const std::string& what, const std::function<void(const segmentation::Edit_Progress&)>& action) {
        growth.Follow(Change::Pixels);
        run(what, action);
        growth.Follow(Change::Pixels);
    };
    settings.tolerance = 20.0;
    Click(growth, app.In_Slice(4.5, 4.5, 3));
    EXPECT_TRUE(growth.Is_Growing());
    settings.tolerance = 40.0;
    EXPECT_TRUE(growth.Step(3));
    EXPECT_TRUE(growth.Accept());
}

TEST_F(Fill_Test, a_slider_sets_the_tolerance_in_the_plane_that_was_clicked) {
    const Plane_Cut cut = app.In_Slice(0, 0, 3).cut;
    EXPECT_FALSE(growth.Slider(cut)) << "nothing is growing";
    settings.tolerance = 0.0;
    Click(growth, app.In_Slice(4.5, 4.5, 3));
    ASSERT_TRUE(growth.Slider(cut));
    EXPECT_DOUBLE_EQ(growth.Slider(cut)->share, 0.0);
    EXPECT_FALSE(growth.Slider(app.Spot(Plane::Coronal, 0, 0, 3).cut));
    const volumes::Volume& image = app.session.Image();
    const double most = (image.level_max - image.level_min) * image.slope;
    ASSERT_GT(most, 0.0);
    for (const double share : {0.5, 1.0, 0.1, 0.0}) {
        growth.Slide(share);
        EXPECT_NEAR(settings.tolerance, share * share * most, image.slope / 2.0) << share;
        EXPECT_EQ(std::remainder(settings.tolerance, image.slope), 0.0) << "whole levels";
        EXPECT_NEAR(growth.Slider(cut)->share, std::sqrt(settings.tolerance / most), 1e-9) << share;
        EXPECT_NE(app.told.find(growth.Slider(cut)->text), std::string::npos) << app.told;
    }
    growth.Slide(0.8);
    const std::vector<std::uint8_t> expected = Flooded(
        app.In_Slice(4.5, 4.5, 3), Level(app.In_Slice(4.5, 4.5, 3)) - static_cast<int>(settings.tolerance / 2.0),
        Level(app.In_Slice(4.5, 4.5, 3)) + static_cast<int>(settings.tolerance / 2.0));
    EXPECT_TRUE(growth.Accept());
    EXPECT_EQ(app.Tags(), expected);
    EXPECT_FALSE(growth.Slider(cut));
    growth.Slide(0.5);
    EXPECT_FALSE(growth.Is_Growing()) << "there is nothing to slide";
}

TEST_F(Fill_Test, random_fills_and_growths_in_all_planes_agree_with_a_plain_model) {
    std::mt19937 random(11);
    const auto below = [&random](int most) { return std::uniform_int_distribution<int>(0, most - 1)(random); };
    std::vector<std::vector<std::uint8_t>> past;
    std::vector<std::vector<std::uint8_t>> future;
    int taken = 0;
    for (int round = 0; round < 600; ++round) {
        std::vector<std::uint8_t> model = app.Tags();
        const std::vector<std::uint8_t> before = model;
        const int action = below(10);
        if (action < 2) {
            EXPECT_EQ(app.session.Undo() != nullptr, !past.empty());
            if (!past.empty()) {
                future.push_back(model);
                model = past.back();
                past.pop_back();
            }
        } else if (action < 3) {
            EXPECT_EQ(app.session.Redo() != nullptr, !future.empty());
            if (!future.empty()) {
                past.push_back(model);
                model = future.back();
                future.pop_back();
            }
        } else {
            app.tag = below(4);
            app.locked = {};
            app.locked[static_cast<std::size_t>(below(6))] = 1;
            app.only_inside = below(3) == 0 ? std::optional(static_cast<std::uint8_t>(below(4))) : std::nullopt;
            settings.is_in_space = below(2) == 0;
            settings.is_over_corners = below(2) == 0;
            settings.is_by_tolerance = below(2) == 0;
            settings.tolerance = 10.0 * below(7);
            const Plane plane = PLANES[static_cast<std::size_t>(below(PLANE_NB))];
            const Plane_Geometry geometry = app.Spot(plane, 0, 0, 0).cut.geometry;
            const Tool_Spot spot =
                app.Spot(plane, below(geometry.Width()), below(geometry.Height()), below(geometry.Depth_Nb()));
            app.slices = {0, TOOL_VOXEL_NB[2] - 1};
            if (settings.is_in_space && below(2) == 0) {
                app.slices = {std::max(spot.Voxel().slice - 1, 0), spot.Voxel().slice};
            }
            const std::int32_t low = 10 * below(4);
            app.band = segmentation::Level_Band{low, low + 10 * below(3)};
            const auto reach = static_cast<std::int32_t>(settings.tolerance / 2.0);  // the slope is 2
            const bool is_growth = below(2) == 0;
            model = is_growth || settings.is_by_tolerance ? Flooded(spot, Level(spot) - reach, Level(spot) + reach)
                                                          : Flooded(spot, app.band->low, app.band->high);
            if (is_growth) {
                settings.tolerance = 10.0 * below(7);
                Click(growth, spot);
                ASSERT_TRUE(growth.Is_Growing());
                const double wanted = 2.0 * reach;
                growth.Step(1 - 2 * below(2));
                settings.tolerance = wanted;
                ASSERT_TRUE(growth.Step(0));
                EXPECT_EQ(app.Tags(), before) << "nothing changes before it is taken over";
                // What is seen in the picture is what will be.
                std::vector<std::uint8_t> picture(geometry.Pixel_Nb());
                Plane_Copy(std::span<const std::uint8_t>(before), geometry, spot.cut.depth, geometry.Whole(),
                           std::span(picture));
                growth.Preview(spot.cut, picture);
                std::vector<std::uint8_t> expected(geometry.Pixel_Nb());
                Plane_Copy(std::span<const std::uint8_t>(model), geometry, spot.cut.depth, geometry.Whole(),
                           std::span(expected));
                EXPECT_EQ(picture, expected);
                if (below(4) == 0) {
                    EXPECT_TRUE(growth.Cancel());
                    model = before;
                } else {
                    EXPECT_TRUE(growth.Accept());
                    ++taken;
                }
                EXPECT_FALSE(growth.Is_Growing());
            } else {
                Click(fill, spot);
            }
            if (model != before) {
                past.push_back(before);
                future.clear();
            }
        }
        ASSERT_EQ(app.Tags(), model) << round;
        ASSERT_EQ(app.Step_Nb(), past.size());
    }
    EXPECT_GT(past.size(), 30U);
    EXPECT_GT(taken, 50);
}

TEST_F(Fill_Test, every_picture_of_all_planes_shows_the_region_while_its_tolerance_goes_up_and_down) {
    settings.is_in_space = true;
    settings.tolerance = 60.0;
    const Tool_Spot spot = app.In_Slice(4.5, 4.5, 3);
    const std::int32_t level = Level(spot);
    const std::vector<std::uint8_t> before = app.Tags();
    growth.Press(spot, Tool_Hand::Left);
    growth.Release();
    std::size_t different = 0;
    for (const int reach : {30, 0, 20, 10, 10, 0, 30}) {
        settings.tolerance = 2.0 * reach;  // the slope is 2
        ASSERT_TRUE(growth.Step(0));
        const std::vector<std::uint8_t> expected = Flooded(spot, level - reach, level + reach);
        different += expected != before ? 1 : 0;
        for (const Plane plane : PLANES) {
            const Plane_Geometry geometry = app.Spot(plane, 0, 0, 0).cut.geometry;
            for (int depth = 0; depth < geometry.Depth_Nb(); ++depth) {
                std::vector<std::uint8_t> picture(geometry.Pixel_Nb());
                std::vector<std::uint8_t> wanted(geometry.Pixel_Nb());
                Plane_Copy(std::span<const std::uint8_t>(before), geometry, depth, geometry.Whole(),
                           std::span(picture));
                Plane_Copy(std::span<const std::uint8_t>(expected), geometry, depth, geometry.Whole(),
                           std::span(wanted));
                growth.Preview({geometry, depth}, picture);
                ASSERT_EQ(picture, wanted) << reach << ", " << Plane_Name(plane) << ' ' << depth;
            }
        }
    }
    EXPECT_EQ(different, 7U);
}

TEST(Growth_Mask, turns_only_the_voxels_that_come_or_go) {
    const std::vector<std::size_t> voxels = {7, 2, 5, 0};
    Growth_Mask mask;
    mask.Begin(9);
    const auto had = [&] {
        std::vector<std::size_t> all;
        for (std::size_t at = 0; at < mask.Voxel_Nb(); ++at) {
            if (mask[at]) {
                all.push_back(at);
            }
        }
        return all;
    };
    EXPECT_EQ(mask.Follow(voxels, 3), 3U);
    EXPECT_EQ(had(), (std::vector<std::size_t>{2, 5, 7}));
    EXPECT_EQ(mask.Follow(voxels, 3), 0U) << "the next view of the same region";
    EXPECT_EQ(mask.Follow(voxels, 4), 1U);
    EXPECT_EQ(had(), (std::vector<std::size_t>{0, 2, 5, 7}));
    EXPECT_EQ(mask.Follow(voxels, 1), 3U);
    EXPECT_EQ(had(), (std::vector<std::size_t>{7}));
    mask.Begin(9);
    EXPECT_TRUE(had().empty());
    EXPECT_EQ(mask.Follow(voxels, 2), 2U);
    EXPECT_EQ(had(), (std::vector<std::size_t>{2, 7}));
}

TEST_F(Fill_Test, dragging_widens_the_tolerance_and_a_change_of_the_labels_drops_the_region) {
    settings.tolerance = 0.0;
    growth.Press(app.In_Slice(4.5, 4.5, 3), Tool_Hand::Left);
    growth.Move(app.In_Slice(9.5, 4.5, 3));
    EXPECT_EQ(settings.tolerance, 10.0) << "a level for each pixel";
    EXPECT_NE(app.told.find("by a tolerance of 10"), std::string::npos) << app.told;
    growth.Move(app.In_Slice(-4.5, 4.5, 3));
    EXPECT_EQ(settings.tolerance, 0.0);
    growth.Release();
    EXPECT_TRUE(growth.Is_Growing());
    growth.Follow(Change::Position);
    EXPECT_TRUE(growth.Is_Growing());
    growth.Follow(Change::Pixels);
    EXPECT_FALSE(growth.Is_Growing());
    EXPECT_FALSE(growth.Step(1));
    EXPECT_FALSE(growth.Accept());
    EXPECT_EQ(app.Step_Nb(), 0U);
    app.is_given_up = true;
    growth.Press(app.In_Slice(4.5, 4.5, 3), Tool_Hand::Left);
    EXPECT_FALSE(growth.Is_Growing());
    EXPECT_EQ(app.told, "Growing was given up: nothing has changed");
}

}  // namespace
