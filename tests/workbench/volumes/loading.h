/** Loading from memory, for the tests of the reader. */
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "tests/workbench/volumes/nifti_bytes.h"
#include "workbench/volumes/nifti_reader.h"

inline volumes::Load_Result Load(const Bytes& bytes, const volumes::Load_Limits& limits = {},
                                 const volumes::Load_Progress& progress = {}) {
    volumes::Memory_Source source(bytes, "test.nii");
    return volumes::Volume_Load(source, nullptr, progress, limits);
}

inline volumes::Load_Result Load_Pair(const Bytes& header, const Bytes& image) {
    volumes::Memory_Source source(header, "test.hdr");
    volumes::Memory_Source image_source(image, "test.img");
    return volumes::Volume_Load(source, &image_source);
}

// Twelve voxels whose value is ten times their number.
inline Nifti_Bytes Small_File() {
    Nifti_Bytes bytes;
    for (int i = 0; i < 12; ++i) {
        bytes.Add(static_cast<std::uint8_t>(10 * i));
    }
    return bytes;
}

// What must hold of every volume, whatever the file said.
inline void Expect_Sound(const volumes::Volume& volume) {
    ASSERT_GE(volume.nx, 1);
    ASSERT_GE(volume.ny, 1);
    ASSERT_GE(volume.nz, 1);
    ASSERT_GE(volume.nt, 1);
    ASSERT_EQ(volume.levels.size(), volume.Voxel_Nb_3D() * static_cast<std::size_t>(volume.nt));
    ASSERT_TRUE(std::isfinite(volume.slope) && volume.slope != 0 && std::isfinite(volume.intercept));
    ASSERT_GE(volume.max_error, 0);
    for (const double spacing : volume.spacing) {
        ASSERT_TRUE(std::isfinite(spacing) && spacing > 0);
    }
    for (const auto& row : volume.affine) {
        for (const double element : row) {
            ASSERT_TRUE(std::isfinite(element));
        }
    }
    for (const std::int32_t level : volume.levels) {
        ASSERT_EQ(std::isfinite(volume.grey(level)), level != volumes::LEVEL_OUTSIDE);
        if (!volume.color && level != volumes::LEVEL_OUTSIDE) {
            ASSERT_GE(level, volume.level_min);
            ASSERT_LE(level, volume.level_max);
        }
    }
}
