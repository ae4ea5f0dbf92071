/** From floating-point pixels to levels. */
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcitem.h"
#include "workbench/volumes/level_builder.h"
#include "workbench/volumes/volume.h"

namespace volumes {

/** Levels of the frames of one volume. First all scales, then Begin, then all frames in the same order, then Finish. */
class Real_Levels {
  public:
    /** @param data_set says which values are no part of the image @param pixel_bits 32 or 64 */
    Real_Levels(DcmItem& data_set, std::int32_t pixel_bits);
    void Scale_Add(double slope, double intercept);
    void Begin(std::uint64_t value_nb);
    /** @param bytes little-endian values */
    void Frame_Add(std::span<const std::uint8_t> bytes);
    /** Fills in what Level_Builder::Finish does. @return sentences to follow a file's name */
    std::vector<std::string> Finish(Volume& volume);

  private:
    double Value(std::span<const std::uint8_t> bytes, std::size_t number) const;

    std::int32_t bits;
    std::optional<std::pair<double, double>> padding;
    std::vector<std::pair<double, double>> scales;  // of every frame: slope, intercept
    bool is_one_scale = true;
    std::size_t frame_nb = 0;        // added so far
    std::uint64_t padding_nb = 0;    // values
    std::vector<std::uint8_t> made;  // a frame with its scale
    std::optional<Level_Builder> builder;
};

}  // namespace volumes
