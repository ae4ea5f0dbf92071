/** Turns the voxels of a file into levels. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "workbench/volumes/nifti_header.h"

/** Collects voxels as they are read; memory grows with what has arrived, not with what was announced.
 *
 *  Levels: int8, uint8, int16, uint16 and int32 keep their values. So do uint32, int64 and uint64 as long as every
 * value lies in -2^31 .. LEVEL_LARGEST. float32 and float64 keep their values where all are whole numbers of a range
 * up to WHOLE_RANGE. Otherwise they, and other integers, are quantised: the range from the smallest to the largest
 * finite value is cut into equal steps and each value gets the number of the nearest. There are QUANTISED_STEPS of
 * them, or fewer where all values lie on a grid of fewer (see Value_Steps): an image of 256 greys between 0 and 1 has
 * 255. The quantised value differs from the file's by at most half a step of QUANTISED_STEPS, (largest - smallest) /
 * 131,070, times the file's scale factor (`Volume::max_error`; rounding of the arithmetic, some 2^-52 of the largest
 * magnitude, comes on top). Values that are infinite or no number get LEVEL_OUTSIDE and are counted. Colours are packed
 * with red in the low byte, then green, then blue; alpha is dropped.
 */
class Level_Builder {
  public:
    /** @param total voxels that will come at most */
    Level_Builder(Voxel_Type voxel_type, Byte_Order byte_order, std::uint64_t total);

    /** Adds voxels. @param bytes whole voxels. Throws std::bad_alloc. */
    void Append(std::span<const std::uint8_t> bytes);
    std::uint64_t Voxel_Nb() const { return voxel_nb; }
    /** Moves the levels into `volume` and fills in color, scalar_type, slope, intercept, max_error, nonfinite_nb,
     * level_min and level_max.
     *  @param file_slope, file_intercept the file's own scale, finite, slope not 0 */
    void Finish(double file_slope, double file_intercept, Volume& volume);

  private:
    template <class Stored>
    void Append_As(std::span<const std::uint8_t> bytes);
    void Append_Color(std::span<const std::uint8_t> bytes, std::size_t voxel_size);
    template <class Stored>
    Stored Value(std::size_t i) const;
    template <class Stored>
    void Finish_Integer(Volume& volume);
    template <class Stored>
    void Finish_Real(Volume& volume);
    /** Levels are the values themselves. */
    template <class Stored>
    void Finish_Whole(double smallest, double largest, Volume& volume);
    /** Levels are numbers of steps from the smallest value. */
    template <class Stored>
    void Finish_Steps(double smallest, double largest, Volume& volume);
    void Finish_Color(Volume& volume) const;
    void Levels_Ready();
    void Wide_Release();

    Voxel_Type type;
    Byte_Order order;
    std::uint64_t total_nb;
    std::uint64_t voxel_nb = 0;
    std::vector<std::int32_t> levels;  // values of up to 4 bytes: the level, or the bits of a uint32 or float32
    std::vector<std::uint64_t> wide;   // the bits of values of 8 bytes
};
