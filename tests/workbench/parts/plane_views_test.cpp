// What the views of the other planes show and tell, without their windows.
#include "workbench/parts/plane_views.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <vector>

using namespace workbench;

namespace {

constexpr int NX = 7;
constexpr int NY = 5;
constexpr int NZ = 4;

/** A volume whose level tells its place: x + 10 y + 100 slice, in the order of the file. */
volumes::Volume Numbered_Volume() {
    volumes::Volume volume;
    volume.nx = NX;
    volume.ny = NY;
    volume.nz = NZ;
    volume.nt = 2;
    volume.spacing = {1.0, 2.0, 4.0};
    volume.affine = {{{1, 0, 0, 0}, {0, 2, 0, 0}, {0, 0, 4, 0}}};
    volume.affine_source = volumes::Affine_Source::Sform;
    std::vector<std::int32_t> levels;
    for (int t = 0; t < volume.nt; ++t) {
        for (int z = 0; z < NZ; ++z) {
            for (int y = 0; y < NY; ++y) {
                for (int x = 0; x < NX; ++x) {
                    levels.push_back(x + 10 * y + 100 * z + 1000 * t);
                }
            }
        }
    }
    volume.levels = std::move(levels);
    return volume;
}

/** An application that notes what it is asked for. */
class Plane_Watch : public ::testing::Test {
  protected:
    void SetUp() override {
        session.Take(Numbered_Volume(), "numbered.nii");
        views.Volume_Look();
    }
    Plane_Host Host() {
        Plane_Host host;
        host.slice = [this] { return slice; };
        host.slice_go = [this](int wanted) {
            slice = wanted;
            ++slice_moves;
        };
        host.sides = [this] { return sides; };
        host.ground = [] {
            Image_Content content;
            content.window = {3.0F, 9.0F};
            content.source.slope = 2.0F;
            content.caption = L"of the slices";
            content.markers.push_back({1, 1, 0, L"of the slices", true});
            return content;
        };
        host.markers = [this] { return markers; };
        host.tool_press = [this](const Plane_Cut& cut, const Slice_Point& at, Tool_Hand by) {
            stroke = cut.geometry.To_Voxel({static_cast<int>(at.x), static_cast<int>(at.y), cut.depth});
            hand = by;
            return Pixel_Rect{2, 1, 3, 2};
        };
        host.tool_move = [](const Plane_Cut&, const Slice_Point&) { return Pixel_Rect{2, 1, 3, 2}; };
        host.tool_release = [this] { ++tool_releases; };
        host.tool_outline = [](const Plane_Cut& cut, const Slice_Point&) {
            return Brush_Footprint({{cut.depth, 0, 0}});
        };
        host.tool_paths = [](const Plane_Cut& cut) {
            Shown_Path path;
            path.text = std::to_string(cut.depth);
            return std::vector<Shown_Path>{path};
        };
        host.tool_preview = [this](const Plane_Cut&, std::span<const std::uint8_t> tags) {
            seen.assign(tags.begin(), tags.end());
            if (is_growing) {
                seen[0] = 9;
            }
            return std::span<const std::uint8_t>(seen);
        };
        host.compared = [this] { return std::span<const std::uint8_t>(compared); };
        host.stroke_end = [this] { ++stroke_ends; };
        host.pick = [this](const Shown_Voxel& voxel) { picked = voxel; };
        host.hover = [this](const Image_User& by, const Plane_Cut& cut, const Slice_Point& at) {
            hovered_by = &by;
            hovered = cut.geometry.To_Voxel({static_cast<int>(at.x), static_cast<int>(at.y), cut.depth});
        };
        host.hover_end = [this](const Image_User& by) {
            hovered_by = &by;
            hovered.reset();
        };
        host.window_drag = [](float, float) {};
        host.moved = [this] { ++moves; };
        return host;
    }
    /** The level that stands at a place of the display. */
    std::int32_t Level(const Shown_Voxel& voxel) const {
        return session.Image().levels[session.Image().Index(voxel.x, voxel.y, voxel.slice)];
    }

    Session session;
    int slice = 1;
    int slice_moves = 0;
    int moves = 0;
    int stroke_ends = 0;
    int tool_releases = 0;
    bool is_growing = false;
    std::vector<std::uint8_t> seen;
    std::vector<std::uint8_t> compared;
    Tool_Hand hand = Tool_Hand::Left;
    std::string sides;
    std::vector<Placed_Marker> markers;
    std::optional<Shown_Voxel> stroke;
    std::optional<Shown_Voxel> picked;
    std::optional<Shown_Voxel> hovered;
    const Image_User* hovered_by = nullptr;
    Plane_Views views{session, Host()};
};

TEST_F(Plane_Watch, shows_what_labels_are_compared_with_in_its_own_plane) {
    EXPECT_TRUE(views.User(0).Content().source.compared.empty());
    compared.resize(std::size_t{NX} * NY * NZ);
    const Shown_Voxel marked = {5, 2, 3};  // in the coronal picture of the cross-hair, and not in the sagittal one
    compared[(static_cast<std::size_t>(marked.slice) * NY + marked.y) * NX + marked.x] = 7;
    for (const int view : {0, 1}) {
        const Image_Content content = views.User(view).Content();
        ASSERT_EQ(content.source.compared.size(), content.source.tags.size());
        const Plane_Pixel at = views.Geometry_Of(view).To_Pixel(marked);
        EXPECT_EQ(at.depth == content.slice, view == 0);
        for (std::size_t pixel = 0; pixel < content.source.compared.size(); ++pixel) {
            const bool is_marked = view == 0 && pixel == static_cast<std::size_t>(at.y * content.source.width + at.x);
            EXPECT_EQ(content.source.compared[pixel], is_marked ? 7 : 0) << view << " " << pixel;
        }
    }
    compared.clear();
    EXPECT_TRUE(views.User(0).Content().source.compared.empty());
}

TEST_F(Plane_Watch, shows_the_planes_that_the_slices_do_not_lie_in) {
    EXPECT_EQ(views.Slice_Plane(), Plane::Axial);
    EXPECT_EQ(views.Plane_Of(0), Plane::Coronal);
    EXPECT_EQ(views.Plane_Of(1), Plane::Sagittal);
    EXPECT_EQ(views.Cross(), (Shown_Voxel{3, 2, 1}));
    const Image_Content coronal = views.User(0).Content();
    EXPECT_EQ(coronal.source.width, NX);
    EXPECT_EQ(coronal.source.height, NZ);
    EXPECT_EQ(coronal.slice_nb, NY);
    EXPECT_DOUBLE_EQ(coronal.pixel_aspect, 4.0);
    EXPECT_DOUBLE_EQ(coronal.pixel_mm, 1.0);
    EXPECT_EQ(coronal.order.top, 'S');
    EXPECT_EQ(coronal.order.left, 'R');
    const Image_Content sagittal = views.User(1).Content();
    EXPECT_EQ(sagittal.source.width, NY);
    EXPECT_EQ(sagittal.source.height, NZ);
    EXPECT_DOUBLE_EQ(sagittal.pixel_aspect, 2.0);
    EXPECT_DOUBLE_EQ(sagittal.pixel_mm, 2.0);
    // The window is the slices' own; the texts and markers are not.
    EXPECT_EQ(sagittal.window.low, 3.0F);
    EXPECT_EQ(sagittal.source.slope, 2.0F);
    EXPECT_EQ(sagittal.caption, L"Sagittal 4 / 7");
    EXPECT_TRUE(sagittal.markers.empty());
    // Top left of the coronal picture: the right side of the last slice, in the row of the cross-hair.
    EXPECT_EQ(coronal.source.levels[0], Level({0, 2, NZ - 1}));
    EXPECT_EQ(coronal.source.levels[NX * (NZ - 1) + 2], Level({2, 2, 0}));
    EXPECT_EQ(sagittal.source.levels[1], Level({3, 1, NZ - 1}));
}

TEST_F(Plane_Watch, a_volume_of_sagittal_slices_gets_the_other_two) {
    volumes::Volume volume = Numbered_Volume();
    volume.affine = {{{0, 0, 4, 0}, {1, 0, 0, 0}, {0, 2, 0, 0}}};
    session.Take(std::move(volume), "sagittal.nii");
    views.Volume_Look();
    EXPECT_EQ(views.Slice_Plane(), Plane::Sagittal);
    EXPECT_EQ(views.Plane_Of(0), Plane::Axial);
    EXPECT_EQ(views.Plane_Of(1), Plane::Coronal);
    const Image_Content axial = views.User(0).Content();
    EXPECT_EQ(axial.source.width, NZ);
    EXPECT_EQ(axial.source.height, NX);
    EXPECT_EQ(axial.order.left, 'R');
    EXPECT_EQ(axial.order.top, 'A');
}

TEST_F(Plane_Watch, sides_that_the_file_does_not_tell_are_the_users) {
    volumes::Volume volume = Numbered_Volume();
    volume.affine_source = volumes::Affine_Source::Spacing;
    session.Take(std::move(volume), "unknown.nii");
    views.Volume_Look();
    EXPECT_EQ(views.User(0).Content().order.left, ' ');
    sides = "ASR";
    views.Volume_Look();
    EXPECT_EQ(views.Slice_Plane(), Plane::Sagittal);
    EXPECT_EQ(views.User(0).Content().order.left, 'R');
    // The other side: the same picture, mirrored.
    sides = "RAS";
    views.Volume_Look();
    const Image_Content right = views.User(0).Content();
    const std::vector<std::int32_t> row(right.source.levels.begin(), right.source.levels.begin() + NX);
    sides = "LAS";
    views.Volume_Look();
    const Image_Content left = views.User(0).Content();
    EXPECT_TRUE(std::equal(row.rbegin(), row.rend(), left.source.levels.begin()));
    EXPECT_NE(row.front(), left.source.levels[0]);
}

TEST_F(Plane_Watch, the_cross_hair_ties_the_views) {
    views.User(0).Cross_Move(5, 0);  // the coronal picture's top is the last slice
    EXPECT_EQ(views.Cross(), (Shown_Voxel{5, 2, NZ - 1}));
    EXPECT_EQ(slice, NZ - 1);
    EXPECT_EQ(slice_moves, 1);
    EXPECT_EQ(moves, 1);
    EXPECT_EQ(views.Cross_In_Slice(), (Image_Cross{5, 2}));
    EXPECT_EQ(views.User(1).Content().cross, (Image_Cross{2, 0}));
    EXPECT_EQ(views.User(0).Content().cross, (Image_Cross{5, 0}));
    views.User(0).Cross_Move(-9, 99);
    EXPECT_EQ(views.Cross(), (Shown_Voxel{0, 2, 0}));
    // The wheel moves it through the other planes, and stops at their ends.
    views.User(0).Slice_Go(99);
    EXPECT_EQ(views.Cross(), (Shown_Voxel{0, 0, 0})) << "depth rises to the front, which is the first row";
    EXPECT_EQ(views.Depth(0), NY - 1);
    views.User(0).Slice_Go(-1);
    EXPECT_EQ(views.Cross(), (Shown_Voxel{0, NY - 1, 0}));
    EXPECT_EQ(slice_moves, 2) << "no slice was left";
    EXPECT_EQ(views.User(0).Content().source.levels[0], Level({0, NY - 1, NZ - 1}));
}

TEST_F(Plane_Watch, another_volume_takes_the_cross_hair_to_its_middle) {
    views.Cross_Set({0, 0, 0});
    views.Volume_Look();
    EXPECT_EQ(views.Cross().x, 0);
    session.Take(Numbered_Volume(), "another.nii");
    EXPECT_TRUE(views.User(0).Content().source.levels.empty()) << "it was not looked at yet";
    views.Volume_Look();
    EXPECT_EQ(views.Cross().x, 3);
    Session none;
    Plane_Views empty(none, Host());
    empty.Volume_Look();
    empty.Cross_Set({1, 1, 1});
    empty.User(0).Slice_Go(1);
    EXPECT_TRUE(empty.User(0).Content().source.levels.empty());
}

TEST_F(Plane_Watch, a_stroke_shows_at_once_where_it_was_painted) {
    const Image_Content content = views.User(1).Content();
    Voxel_Change change;
    const Voxel_Run run = {2 * NX + 3, 1, 0, 6};  // x 3, y 2
    change.slices.emplace_back(2, std::span(&run, 1));
    session.Voxels_Change("Painted", std::move(change));
    // In the sagittal picture: column y, row from the top.
    EXPECT_EQ(content.source.tags[1 * NY + 2], 0);
    EXPECT_EQ(views.User(1).Tool_Press({2.5, 1.5}, Tool_Hand::Right), (Pixel_Rect{2, 1, 3, 2}));
    EXPECT_EQ(stroke, (Shown_Voxel{3, 2, 2}));
    EXPECT_EQ(hand, Tool_Hand::Right);
    EXPECT_EQ(content.source.tags[1 * NY + 2], 6);
    EXPECT_EQ(views.User(1).Tool_Move({2.5, 1.5}), (Pixel_Rect{2, 1, 3, 2}));
    views.User(1).Tool_Release();
    EXPECT_EQ(tool_releases, 1);
    EXPECT_EQ(stroke_ends, 0);
    views.User(1).Slice_Go(0);
    EXPECT_EQ(stroke_ends, 1) << "a stroke does not go on in another picture";
}

TEST_F(Plane_Watch, the_pointer_is_told_as_a_voxel) {
    views.User(1).Hover(1, 3);
    EXPECT_EQ(hovered, (Shown_Voxel{3, 1, 0}));
    EXPECT_EQ(hovered_by, &views.User(1));
    views.User(1).Hover(1, NZ);
    EXPECT_FALSE(hovered.has_value());
    views.User(0).Hover_End();
    EXPECT_EQ(hovered_by, &views.User(0)) << "who has gone must be known: another view may have the pointer already";
    views.User(1).Pick(4, 0);
    EXPECT_EQ(picked, (Shown_Voxel{3, 4, 3}));
    picked.reset();
    views.User(1).Pick(-1, 0);
    EXPECT_FALSE(picked.has_value());
}

TEST_F(Plane_Watch, markers_are_shown_in_their_picture_only) {
    markers = {{2, {3, 4, 0}, 0xFF, L"in the sagittal picture", false},
               {3, {3, 4, 0}, 0xFF, L"above it", true},
               {4, {2, 4, 0}, 0xFF, L"beside the picture", false}};
    const Image_Content content = views.User(1).Content();
    ASSERT_EQ(content.markers.size(), 2U);
    EXPECT_EQ(content.markers[0].x, 4);
    EXPECT_EQ(content.markers[0].y, NZ - 1);
    EXPECT_TRUE(content.markers[1].is_current);
}

TEST_F(Plane_Watch, what_a_tool_has_not_taken_over_yet_is_seen) {
    EXPECT_EQ(views.User(1).Content().source.tags[0], 0);
    is_growing = true;
    EXPECT_EQ(views.User(1).Content().source.tags[0], 9);
    is_growing = false;
    EXPECT_EQ(views.User(1).Content().source.tags[0], 0);
}

TEST_F(Plane_Watch, a_tool_is_told_which_picture_it_is_over) {
    const int depth = views.User(1).Content().slice;
    EXPECT_EQ(views.User(1).Tool_Outline({0.5, 0.5}).Rows()[0].y, depth);
    EXPECT_EQ(views.User(1).Tool_Paths()[0].text, std::to_string(depth));
}

}  // namespace
