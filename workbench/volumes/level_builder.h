/** Turns the voxels of a file into levels. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/narrow_collector.h"
#include "workbench/volumes/nifti_header.h"

namespace volumes {

/** Collects voxels as they are read; memory grows with what has arrived, not with what was announced.
 *
 *  Levels: int8, uint8, int16, uint16 and int32 keep their values. So do uint32, int64 and uint64 as long as every
 *  value lies in -2^31 .. LEVEL_LARGEST. float32 and float64 keep their values where all are whole numbers of a range
 *  up to WHOLE_RANGE. Otherwise they, and other integers, are quantised: the range from the smallest to the largest
 *  finite value is cut into equal steps and each value gets the number of the nearest. There are QUANTISED_STEPS of
 *  them, or fewer where all values lie on a grid of fewer (see Value_Steps): an image of 256 greys between 0 and 1 has
 *  255. The quantised value differs from the file's by at most half a step of QUANTISED_STEPS, (largest - smallest) /
 *  131,070, times the file's scale factor (`Volume::max_error`; rounding of the arithmetic, some 2^-52 of the largest
 *  magnitude, comes on top). Values that are infinite or no number get LEVEL_OUTSIDE and are counted. So do, where the
 *  values could not all keep theirs, those so far from all others that a scale which reached them would flatten the
 *  rest (see Value_Range_Find), and the largest and smallest number of an integer type when they are further from all
 *  others than those are from each other: marks for "no value". Colours are packed with red in the low byte, then
 *  green, then blue; alpha is dropped.
 */
class Level_Builder {
  public:
    /** @param total voxels that will come at most */
    Level_Builder(Voxel_Type voxel_type, Byte_Order byte_order, std::uint64_t total);

    /** Makes room for so many voxels at once, but for no more than will come at most. For those that are known to be
     *  there, or likely. Throws std::bad_alloc. */
    void Reserve(std::uint64_t voxels);
    /** Whether Room and Take may be used in place of Append: there is room for all of many voxels, of up to 16
     *  bits. Then their levels are made and counted while more are read. */
    bool Is_Collecting() const { return collector.has_value(); }
    /** Room for the next bytes, whole voxels; waits until there is one. */
    std::span<std::uint8_t> Room() { return collector->Room(); }
    /** Adds the voxels in the first bytes of the room. @param bytes of whole voxels, no more than are missing */
    void Take(std::size_t bytes);
    /** Adds voxels. @param bytes whole voxels. Throws std::bad_alloc. */
    void Append(std::span<const std::uint8_t> bytes);
    std::uint64_t Voxel_Nb() const { return voxel_nb; }
    /** Moves the levels into `volume` and fills in color, scalar_type, slope, intercept, max_error, nonfinite_nb,
     *  level_min and level_max. Throws std::bad_alloc.
     *  @param file_slope, file_intercept the file's own scale, finite, slope not 0 */
    void Finish(double file_slope, double file_intercept, Volume& volume);
    /** How often each level occurs, after Finish; nothing where they were not counted. */
    std::optional<Level_Tally>& Tally() { return tally; }

  private:
    template <class Stored>
    void Append_As(std::span<const std::uint8_t> bytes);
    void Append_Color(std::span<const std::uint8_t> bytes, std::size_t voxel_size);
    template <class Stored>
    Stored Value(std::size_t i) const;
    void Finish_Narrow(Volume& volume);
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
    /** Leaves outside what is far from all other values. @return whether there is any */
    template <class Stored>
    bool Outliers_Find(Volume& volume);
    /** The ends of an integer type are no values when they are far from all others. */
    template <class Stored>
    bool Type_Ends_Find(Volume& volume);
    bool Is_Inside(double value) const { return value >= inside_low && value <= inside_high; }
    void Levels_Ready();
    void Wide_Release();

    Voxel_Type type;
    Byte_Order order;
    std::uint64_t total_nb;
    std::uint64_t voxel_nb = 0;
    double inside_low = std::numeric_limits<double>::lowest();  // values beyond are LEVEL_OUTSIDE, as are no numbers
    double inside_high = std::numeric_limits<double>::max();
    Level_Code code;                   // of `narrow`
    Level_Codes narrow;                // values of up to 2 bytes: the level's code
    std::vector<std::int32_t> levels;  // values of 4 bytes and colours: the level, or the bits of a uint32 or float32
    std::vector<std::uint64_t> wide;   // the bits of values of 8 bytes
    std::optional<Narrow_Collector> collector;  // fills `narrow`, and ends before it
    std::optional<Level_Tally> tally;
};

/** What a user has to know of the values that a volume leaves outside, each to follow the file's name; nothing when all
 * are inside: "has 3 voxels that are no number; they are shown black and count nowhere". */
std::vector<std::string> Values_Outside_Texts(const Volume& volume);

}  // namespace volumes
