// Labels and levels to work on, small enough to be written down or drawn from a seed.
#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string_view>
#include <vector>

#include "workbench/segmentation/label_edit.h"

namespace workbench::segmentation {

/** Owns what an Edit_Input looks at. */
struct Label_Scene {
    Label_Grid grid;
    std::vector<std::uint8_t> tags;
    std::vector<std::int32_t> levels;

    Edit_Input Input() const {
        Edit_Input input;
        input.grid = grid;
        input.tags = tags;
        input.levels = levels;
        input.slices = {0, grid.slices - 1};
        return input;
    }
    std::vector<std::uint8_t> After(const Label_Edit& edit) const {
        std::vector<std::uint8_t> after = tags;
        Edit_Apply(edit, true, grid, after);
        return after;
    }
};

/** Background and level 0 everywhere. */
inline Label_Scene Scene_Of(int width, int height, int slices) {
    Label_Scene scene;
    scene.grid = {width, height, slices, {1.0, 1.0, 1.0}};
    scene.tags.resize(scene.grid.Voxel_Nb());
    scene.levels.resize(scene.grid.Voxel_Nb());
    return scene;
}

/** One slice of rows of equal length: '.' is background, a digit its TAG. */
inline Label_Scene Scene_Of(std::span<const std::string_view> rows) {
    Label_Scene scene = Scene_Of(static_cast<int>(rows[0].size()), static_cast<int>(rows.size()), 1);
    std::size_t at = 0;
    for (const std::string_view row : rows) {
        for (const char mark : row) {
            scene.tags[at++] = static_cast<std::uint8_t>(mark == '.' ? 0 : mark - '0');
        }
    }
    return scene;
}

/** TAGs 0 .. tag_nb - 1 and levels -50 .. 50. */
inline Label_Scene Random_Scene(unsigned int seed, int width, int height, int slices, int tag_nb) {
    Label_Scene scene = Scene_Of(width, height, slices);
    std::mt19937 random(seed);
    for (std::size_t at = 0; at < scene.tags.size(); ++at) {
        scene.tags[at] = static_cast<std::uint8_t>(random() % static_cast<unsigned int>(tag_nb));
        scene.levels[at] = static_cast<std::int32_t>(random() % 101) - 50;
    }
    return scene;
}

}  // namespace workbench::segmentation
