// Long sessions of all operations on labels and strokes in all planes, at random, beside a plain model of the labels.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/workbench/segmentation/plain_edits.h"
#include "workbench/model/session.h"
#include "workbench/model/volume_planes.h"
#include "workbench/segmentation/region_edits.h"
#include "workbench/segmentation/tag_sets.h"
#include "workbench/segmentation/tag_shape.h"

using namespace workbench;
using namespace workbench::segmentation;

namespace {

constexpr std::array<int, 3> VOXEL_NB = {9, 8, 6};
constexpr std::array<double, 3> SPACING = {1.0, 2.0, 3.0};
constexpr int LEVEL_NB = 40;
constexpr int TAG_NB = 5;  // the background and four
constexpr int ROUND_NB = 3000;

enum Action {
    Bands,
    Fill,
    Growth,
    Keep_Largest,
    Drop_Small,
    Keep_At,
    Give,
    Holes_In_Slices,
    Holes_In_Space,
    Smooth,
    Grow,
    Shrink,
    Between,
    Combine,
    Outline,
    Stroke,
    Interrupted_Stroke,
    Back,
    Forth
};
constexpr int ACTION_NB = Forth + 1;

struct Offset {
    int x, y, depth;
};
/** A ball of 7 pixels, as offsets for the model. */
constexpr std::array<Offset, 7> BALL = {
    {{0, 0, -1}, {0, -1, 0}, {-1, 0, 0}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

Brush_Body Ball() {
    Brush_Body ball;
    ball.layers.push_back({-1, Brush_Footprint({{0, 0, 0}})});
    ball.layers.push_back({0, Brush_Footprint({{-1, 0, 0}, {0, -1, 1}, {1, 0, 0}})});
    ball.layers.push_back({1, Brush_Footprint({{0, 0, 0}})});
    return ball;
}

class Random_Edits : public ::testing::TestWithParam<unsigned int> {
  protected:
    Random_Edits() : random(GetParam()) {
        volumes::Volume volume;
        volume.nx = VOXEL_NB[0];
        volume.ny = VOXEL_NB[1];
        volume.nz = VOXEL_NB[2];
        volume.nt = 1;
        volume.affine = {{{0, 2, 0, 0}, {-1, 0, 0, 0}, {0, 0, 3, 0}}};
        volume.spacing = SPACING;
        volume.affine_source = volumes::Affine_Source::Sform;
        // Slopes with some noise, so that bands are regions with ragged edges.
        std::vector<std::int32_t> levels;
        levels.reserve(static_cast<std::size_t>(VOXEL_NB[0]) * VOXEL_NB[1] * VOXEL_NB[2]);
        for (int at = 0; at < VOXEL_NB[0] * VOXEL_NB[1] * VOXEL_NB[2]; ++at) {
            levels.push_back((at % VOXEL_NB[0] * 3 + at / VOXEL_NB[0] % VOXEL_NB[1] * 2 + Random(7)) % LEVEL_NB);
        }
        volume.level_max = LEVEL_NB - 1;
        volume.levels = std::move(levels);
        session.Take(std::move(volume), "image.nii");
        model.grid = {VOXEL_NB[0], VOXEL_NB[1], VOXEL_NB[2], session.Image().spacing};
        model.tags = Seen();
        model.levels.reserve(model.tags.size());
        for (std::size_t at = 0; at < model.tags.size(); ++at) {
            model.levels.push_back(session.Image().levels[at]);
        }
    }

    int Random(int nb) { return static_cast<int>(random() % static_cast<unsigned int>(nb)); }
    std::uint8_t Random_Tag() { return static_cast<std::uint8_t>(1 + Random(TAG_NB - 1)); }
    std::size_t Random_Voxel() { return static_cast<std::size_t>(Random(static_cast<int>(model.tags.size()))); }
    std::vector<std::uint8_t> Seen() const {
        const auto all = std::as_const(session).Labels().All();
        return {all.begin(), all.end()};
    }

    /** Other locks, slices and TAGs that may change. */
    void Limits_Choose() {
        model.locked = {};
        for (int nb = Random(3); nb > 0; --nb) {
            model.locked[Random_Tag()] = 1;
        }
        model.only_inside.reset();
        if (Random(4) == 0) {
            model.only_inside = static_cast<std::uint8_t>(Random(TAG_NB));
        }
        const int first = Random(VOXEL_NB[2]);
        model.slices =
            Random(3) != 0 ? Slice_Range{0, VOXEL_NB[2] - 1} : Slice_Range{first, first + Random(VOXEL_NB[2] - first)};
    }
    Edit_Input Input() const {
        Edit_Input input;
        input.grid = model.grid;
        input.tags = std::as_const(session).Labels().All();
        input.levels = session.Image().levels.View();
        input.slices = model.slices;
        input.locked = model.locked;
        input.only_inside = model.only_inside;
        return input;
    }

    std::pair<std::optional<Label_Edit>, Plain_Tags> Operation(Action action) {
        const Edit_Input input = Input();
        const std::uint8_t tag = Random_Tag();
        const std::size_t at = Random_Voxel();
        const Voxel_Place place = model.Place(at);
        const bool corners = Random(2) == 0;
        const Neighbours neighbours = corners ? Neighbours::Corners : Neighbours::Faces;
        constexpr std::array<double, 5> lengths = {0.0, 1.0, 2.0, 2.3, 4.0};
        const double length = lengths[static_cast<std::size_t>(Random(5))];
        switch (action) {
            case Bands: {
                std::vector<Tag_Levels_Claim> claims;
                const int claim_nb = 1 + Random(3);
                claims.reserve(static_cast<std::size_t>(claim_nb));
                for (int nb = claim_nb; nb > 0; --nb) {
                    const int low = Random(LEVEL_NB);
                    claims.push_back({Random_Tag(), {low, low + Random(12) - 1}});
                }
                return {Bands_Apply(input, claims), model.Bands(claims)};
            }
            case Fill: {
                const Level_Band band = Level_Band_Around(model.levels[at] + Random(3) - 1, Random(8));
                return {Flood_Fill(input, {place, tag, band, neighbours}), model.Fill(at, tag, band, corners)};
            }
            case Growth: {
                const int most = Random(10);
                const int tolerance = Random(most + 1);
                const auto growth = Region_Growth::Find(input, {place, tag, {}, neighbours}, most);
                return {growth->Edit(input, tolerance),
                        model.Fill(at, tag, {model.levels[at] - tolerance, model.levels[at] + tolerance}, corners)};
            }
            case Keep_Largest:
                return {Region_Keep_Largest(input, tag, neighbours), model.Keep_Largest(tag, corners)};
            case Drop_Small: {
                const double mm3 = 6.0 * Random(12);  // of 6 mm3 each
                return {Regions_Drop_Below(input, tag, mm3, neighbours), model.Drop_Below(tag, mm3, corners)};
            }
            case Keep_At:
                return {Region_Keep_At(input, tag, place, neighbours), model.Keep_At(tag, at, corners)};
            case Give:
                return {Region_Give(input, place, tag, neighbours), model.Give(at, tag, corners)};
            case Holes_In_Slices:
                return {Holes_Fill(input, tag, Hole_Kind::Per_Slice), model.Holes(tag, false)};
            case Holes_In_Space:
                return {Holes_Fill(input, tag, Hole_Kind::In_Space), model.Holes(tag, true)};
            case Smooth:
                return {Tag_Smooth(input, tag, length), model.Smooth(tag, length)};
            case Grow:
                return {Tag_Grow(input, tag, length), model.Grow(tag, length)};
            case Shrink:
                return {Tag_Shrink(input, tag, length), model.Shrink(tag, length)};
            case Between:
                return {Slices_Between_Fill(input, tag), model.Between(tag)};
            case Combine: {
                const auto operation = static_cast<Set_Operation>(Random(4));
                const std::uint8_t other = Random_Tag();
                if (Random(2) == 0) {
                    return {Tag_Combine(input, tag, operation, {input.tags, other}),
                            model.Combine(tag, operation, model.tags, other)};
                }
                Plain_Tags of_file(model.tags.size());
                std::ranges::generate(of_file, [this] { return static_cast<std::uint8_t>(Random(TAG_NB)); });
                return {Tag_Combine(input, tag, operation, {of_file, other}),
                        model.Combine(tag, operation, of_file, other)};
            }
            default: {
                std::uniform_real_distribution<double> anywhere(-2.0, 11.0);
                std::vector<Outline_Point> outline(static_cast<std::size_t>(3 + Random(6)));
                std::ranges::generate(outline, [&] { return Outline_Point{anywhere(random), anywhere(random)}; });
                return {Outline_Fill(input, place.z, outline, tag), model.Outline(place.z, outline, tag)};
            }
        }
    }

    /** Along the axes of a picture of any plane. @return the labels after it */
    Plain_Tags Stroke_Paint() {
        const Patient_Axes axes = Patient_Axes_Of(session.Image().affine, session.Order());
        Plane_Cut cut{Plane_Geometry_Of(static_cast<Plane>(Random(PLANE_NB)), axes, VOXEL_NB, SPACING), 0};
        cut.depth = Random(cut.geometry.Depth_Nb());
        Paint_Ink ink;
        ink.tag = static_cast<std::uint8_t>(Random(TAG_NB));
        ink.locked = model.locked;
        ink.only_inside = model.only_inside;
        if (Random(2) == 0) {
            const int low = Random(LEVEL_NB);
            ink.band = Paint_Band{low, low + Random(LEVEL_NB)};
        }
        Plain_Tags after = model.tags;
        int x = Random(cut.geometry.Width() + 2) - 1;
        int y = Random(cut.geometry.Height() + 2) - 1;
        const auto dab = [&] {
            for (const Offset& offset : BALL) {
                const Plane_Pixel pixel{x + offset.x, y + offset.y, cut.depth + offset.depth};
                if (!cut.geometry.Has(pixel.x, pixel.y) || pixel.depth < 0 || pixel.depth >= cut.geometry.Depth_Nb()) {
                    continue;
                }
                const Shown_Voxel voxel = cut.geometry.To_Voxel(pixel);
                const std::size_t at = model.grid.Index(voxel.x, voxel.y, voxel.slice);
                const bool is_open =
                    model.locked[after[at]] == 0 && (!model.only_inside || after[at] == *model.only_inside) &&
                    (!ink.band || (model.levels[at] >= ink.band->low && model.levels[at] <= ink.band->high));
                after[at] = is_open ? ink.tag : after[at];
            }
        };
        session.Stroke_Begin(cut, Ball(), x, y, ink);
        dab();
        for (int move = Random(4); move > 0; --move) {
            int& along = Random(2) == 0 ? x : y;
            const int step = Random(2) == 0 ? 1 : -1;
            for (int pixel = Random(4); pixel >= 0; --pixel) {
                along += step;
                dab();
            }
            session.Stroke_Move(x, y);
        }
        return after;
    }

    void Note(Plain_Tags after) {
        if (after != model.tags) {
            past.push_back(std::exchange(model.tags, std::move(after)));
            future.clear();
            if (past.size() > JOURNAL_STEPS_MAX) {
                past.erase(past.begin());
            }
        }
    }
    void Step_Back() {
        EXPECT_EQ(session.Undo() != nullptr, !past.empty());
        if (!past.empty()) {
            future.push_back(std::exchange(model.tags, past.back()));
            past.pop_back();
        }
    }
    void Step_Forth() {
        EXPECT_EQ(session.Redo() != nullptr, !future.empty());
        if (!future.empty()) {
            past.push_back(std::exchange(model.tags, future.back()));
            future.pop_back();
        }
    }
    void Look(const std::string& when) {
        ASSERT_EQ(Seen(), model.tags) << when;
        ASSERT_EQ(session.Journal().Undo_Nb(), past.size()) << when;
        ASSERT_EQ(session.Journal().Redo_Nb(), future.size()) << when;
        const std::array<std::uint64_t, TAG_MAX> counts = session.Labels().Counts();
        for (int tag = 0; tag < TAG_NB; ++tag) {
            ASSERT_EQ(counts[static_cast<std::size_t>(tag)],
                      static_cast<std::uint64_t>(std::ranges::count(model.tags, static_cast<std::uint8_t>(tag))))
                << when << ", TAG " << tag;
        }
    }
    void Act(Action action) {
        switch (action) {
            case Back:
                return Step_Back();
            case Forth:
                return Step_Forth();
            case Stroke: {
                Plain_Tags after = Stroke_Paint();
                EXPECT_EQ(session.Stroke_End(), after != model.tags);
                return Note(std::move(after));
            }
            case Interrupted_Stroke:
                Note(Stroke_Paint());
                return Step_Back();
            default:
                break;
        }
        auto [edit, after] = Operation(action);
        ASSERT_TRUE(edit.has_value());
        std::uint64_t changed = 0;
        for (std::size_t at = 0; at < after.size(); ++at) {
            changed += after[at] != model.tags[at] ? 1 : 0;
        }
        EXPECT_EQ(edit->voxel_nb, changed);
        EXPECT_EQ(edit->slices.empty(), changed == 0);
        if (!edit->slices.empty()) {
            session.Voxels_Change("Operation", Voxel_Change{std::move(edit->slices)});
        }
        Note(std::move(after));
    }

    std::mt19937 random;
    Session session;
    Plain_Edits model;
    std::vector<Plain_Tags> past, future;
};

TEST_P(Random_Edits, agree_with_a_plain_model_step_by_step_and_come_back_to_the_bits) {
    std::array<int, ACTION_NB> effects{};
    for (int round = 0; round < ROUND_NB; ++round) {
        const auto action = static_cast<Action>(Random(ACTION_NB));
        const std::string when = "round " + std::to_string(round) + ", action " + std::to_string(action);
        Limits_Choose();
        const Plain_Tags before = model.tags;
        const bool has_future = !future.empty();
        Act(action);
        ASSERT_NO_FATAL_FAILURE(Look(when));
        if (model.tags != before || (action == Interrupted_Stroke && has_future && future.size() == 1)) {
            ++effects[action];
        }
        if (model.tags != before && action < Interrupted_Stroke) {
            Step_Back();
            ASSERT_NO_FATAL_FAILURE(Look(when + ", taken back"));
            ASSERT_EQ(model.tags, before);
            Step_Forth();
            ASSERT_NO_FATAL_FAILURE(Look(when + ", done again"));
        }
    }
    for (int action = 0; action < ACTION_NB; ++action) {
        EXPECT_GE(effects[static_cast<std::size_t>(action)], 1) << "action " << action << " never changed anything";
    }
    const std::size_t step_nb = past.size() + future.size();
    EXPECT_GT(step_nb, 100U);
    while (!past.empty()) {
        Step_Back();
        ASSERT_NO_FATAL_FAILURE(Look("on the way back"));
    }
    while (!future.empty()) {
        Step_Forth();
        ASSERT_NO_FATAL_FAILURE(Look("on the way forth"));
    }
    EXPECT_EQ(past.size(), step_nb);
}

INSTANTIATE_TEST_SUITE_P(Seeds, Random_Edits, ::testing::Values(18U, 19U, 20U, 21U));

}  // namespace
