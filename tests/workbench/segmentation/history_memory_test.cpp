// The memory of a long session stays flat: the history forgets, and says truly what it holds.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "workbench/model/session.h"
#include "workbench/segmentation/level_bands.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KIT_COUNTED_BYTES
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define KIT_COUNTED_BYTES
#endif
#ifdef KIT_COUNTED_BYTES
#include <sanitizer/allocator_interface.h>
#endif

using namespace workbench;
using namespace workbench::segmentation;

namespace {

constexpr int SIDE = 32;
constexpr int SLICE_NB = 4;
constexpr int OPERATION_NB = 1500;
constexpr int TAG_NB = 250;

/** Bytes that the program holds; 0: not counted in this build. */
std::size_t Bytes_Held() {
#ifdef KIT_COUNTED_BYTES
    return __sanitizer_get_current_allocated_bytes();
#else
    return 0;
#endif
}

TEST(History_Memory, stays_flat_when_a_thousand_operations_are_kept_and_is_told_truly) {
    volumes::Volume volume;
    volume.nx = volume.ny = SIDE;
    volume.nz = SLICE_NB;
    volume.nt = 1;
    volume.affine = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    volume.spacing = {1.0, 1.0, 1.0};
    std::mt19937 random(18);
    std::vector<std::int32_t> levels(volume.Voxel_Nb_3D());
    for (std::int32_t& level : levels) {
        level = static_cast<std::int32_t>(random() % TAG_NB);
    }
    volume.levels = std::move(levels);
    volume.level_max = TAG_NB - 1;
    Session session;
    session.Take(std::move(volume), "image.nii");

    const std::size_t bytes_before = Bytes_Held();
    std::size_t most_held = 0;
    std::size_t held_when_full = 0;
    for (int at = 0; at < OPERATION_NB; ++at) {
        // Every level another TAG than before: each step changes nearly all voxels, and noise packs badly.
        std::vector<Tag_Levels_Claim> claims;
        claims.reserve(TAG_NB);
        for (int level = 0; level < TAG_NB; ++level) {
            claims.push_back({static_cast<std::uint8_t>((level * 7 + at * 31) % TAG_NB), {level, level}});
        }
        Edit_Input input;
        input.grid = {SIDE, SIDE, SLICE_NB, session.Image().spacing};
        input.tags = std::as_const(session).Labels().All();
        input.levels = session.Image().levels.View();
        input.slices = {0, SLICE_NB - 1};
        std::optional<Label_Edit> edit = Bands_Apply(input, claims);
        ASSERT_TRUE(edit.has_value());
        ASSERT_GT(edit->voxel_nb, input.grid.Voxel_Nb() / 2);
        session.Voxels_Change("Apply all bands", Voxel_Change{std::move(edit->slices)});
        ASSERT_LE(session.Journal().Bytes(), JOURNAL_BYTES) << at;
        ASSERT_LE(session.Journal().Undo_Nb(), JOURNAL_STEPS_MAX) << at;
        const std::size_t held = Bytes_Held() - bytes_before;
        most_held = std::max(most_held, held);
        if (held_when_full == 0 && session.Journal().Forgotten_Nb() > 0) {
            held_when_full = held;
        }
    }
    EXPECT_EQ(session.Journal().Undo_Nb(), JOURNAL_STEPS_MAX);
    EXPECT_EQ(session.Journal().Forgotten_Nb(), OPERATION_NB - JOURNAL_STEPS_MAX);
    // A twentieth for the lists around the steps, and for what steps of noise differ by.
    EXPECT_LE(most_held, session.Journal().Bytes() + session.Journal().Bytes() / 20);
    EXPECT_LE(most_held, held_when_full + held_when_full / 20) << "it grows although the history is full";
    // What the history says is the sum of its steps, and goes with them.
    const std::size_t told = session.Journal().Bytes();
    std::size_t sum = 0;
    while (const Undo_Step* step = session.Undo()) {
        sum += step->Bytes();
    }
    EXPECT_EQ(sum, told);
    EXPECT_EQ(session.Journal().Bytes(), told) << "what was undone can be done again";
}

}  // namespace
