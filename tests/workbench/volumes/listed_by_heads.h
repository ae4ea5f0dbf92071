/** Listing a folder by the heads of its files, and reading all pixels afterwards, beside reading it whole. */
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>
#include <utility>

#include "workbench/volumes/image_folder.h"
#include "workbench/volumes/waiting_levels.h"

inline volumes::Waiting_Levels Waiting_Of(const volumes::Image_Folder& opened, const volumes::Folder_Volume& one) {
    return volumes::Waiting_Levels_Of(one.volume, one.file_of_slice, opened.files, one.waiting);
}

inline void Expect_Same_Volume(const volumes::Folder_Volume& one, const volumes::Folder_Volume& whole) {
    SCOPED_TRACE(whole.title);
    EXPECT_EQ(std::tie(one.title, one.descriptor, one.modality, one.is_scout, one.is_cine, one.path, one.file_of_slice),
              std::tie(whole.title, whole.descriptor, whole.modality, whole.is_scout, whole.is_cine, whole.path,
                       whole.file_of_slice));
    const volumes::Volume& left = one.volume;
    const volumes::Volume& right = whole.volume;
    EXPECT_EQ(std::tie(left.nx, left.ny, left.nz, left.nt, left.spacing, left.time_step, left.is_size_known),
              std::tie(right.nx, right.ny, right.nz, right.nt, right.spacing, right.time_step, right.is_size_known));
    EXPECT_EQ(std::tie(left.affine, left.affine_source, left.scalar_type, left.color, left.is_inverted),
              std::tie(right.affine, right.affine_source, right.scalar_type, right.color, right.is_inverted));
    EXPECT_EQ(std::tie(left.slope, left.intercept, left.max_error, left.nonfinite_nb, left.outlier_nb),
              std::tie(right.slope, right.intercept, right.max_error, right.nonfinite_nb, right.outlier_nb));
    EXPECT_EQ(std::tie(left.level_min, left.level_max, left.encoding, left.place_source, left.windows),
              std::tie(right.level_min, right.level_max, right.encoding, right.place_source, right.windows));
    EXPECT_EQ(left.levels, right.levels);
}

/** @return volumes whose pixels were read afterwards */
inline int Expect_Same_By_Heads(const std::filesystem::path& path, const volumes::Image_Folder& whole) {
    int waiting_nb = 0;
    volumes::Image_Folder listed = volumes::Image_Folder_Open(std::span(&path, 1), {}, {}, 0);
    EXPECT_EQ(listed.files, whole.files);
    EXPECT_EQ(listed.volumes.size(), whole.volumes.size());
    for (std::size_t at = 0; at < std::min(listed.volumes.size(), whole.volumes.size()); ++at) {
        volumes::Folder_Volume& one = listed.volumes[at];
        if (!one.waiting.empty()) {
            EXPECT_EQ(one.waiting.size(), static_cast<std::size_t>(one.volume.nz));
            EXPECT_TRUE(one.volume.levels.empty());
            volumes::Levels_Result read = volumes::Waiting_Levels_Read(Waiting_Of(listed, one));
            EXPECT_TRUE(read.volume) << one.title << ' ' << read.error;
            if (read.volume) {
                one.volume = std::move(*read.volume);
            }
            volumes::Problems_Add(read.problems, listed.problems);
            ++waiting_nb;
        }
        Expect_Same_Volume(one, whole.volumes[at]);
    }
    return waiting_nb;
}
