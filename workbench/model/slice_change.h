/** Which voxels of a slice changed from which TAG to which, packed for the history. Pure code. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "workbench/model/label_map.h"

namespace workbench {

/** Neighbouring pixels of a slice that changed from one TAG to another. */
struct Voxel_Run {
    std::uint32_t offset = 0;  ///< first pixel, counted through the slice
    std::uint32_t length = 0;
    std::uint8_t before = 0;
    std::uint8_t after = 0;
};

/** Pixels of one slice. Few runs are kept as such, many as a bit for each pixel, whichever takes less memory. */
class Slice_Change {
  public:
    Slice_Change() = default;
    /** @param runs by ascending offset, none over another */
    Slice_Change(int of_slice, std::span<const Voxel_Run> runs);
    /** What two states of a slice of one size differ in; no value when that is nothing.
     *  @param stays pixels that had such a TAG (not 0) count as equal; null: none */
    static std::optional<Slice_Change> Of_Difference(int slice, std::span<const std::uint8_t> before,
                                                     std::span<const std::uint8_t> after,
                                                     const Tag_Flags* stays = nullptr);
    int slice = 0;
    std::vector<Voxel_Run> Runs() const;
    /** Writes the state after the change (redo) or before it. What lies beyond `pixels` is ignored. */
    void Apply(bool redo, std::span<std::uint8_t> pixels) const;
    /** Memory that the change takes, packed. */
    std::size_t Bytes() const { return packed.capacity(); }
    /** Pixels that change. */
    std::uint64_t Voxel_Nb() const { return voxel_nb; }

  private:
    std::vector<Voxel_Run> Layer_Runs() const;
    std::vector<Voxel_Run> Packed_Runs() const;

    std::size_t run_nb = 0;
    std::size_t layer_nb = 0;    // 0: `packed` holds runs
    std::size_t plain_size = 0;  // bytes before compression; 0: not compressed
    std::uint64_t voxel_nb = 0;
    std::uint32_t first_word = 0;  // of layers: 64 pixels are a word; those before it do not change
    // Runs: gap to the run before and length in groups of 7 bits, before, after. Layers: before, after and the words.
    std::vector<std::uint8_t> packed;
};

}  // namespace workbench
