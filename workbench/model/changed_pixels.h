/** Which pixels of a slice change, sought a word of 64 at a time. Pure code. */
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "workbench/model/label_map.h"
#include "workbench/model/slice_change.h"

namespace workbench {

constexpr std::size_t WORD_BITS = 64;
constexpr std::size_t WORD_BYTES = sizeof(std::uint64_t);
constexpr std::size_t LAYER_HEAD = 2;  // bytes before a layer's words: TAG before, TAG after

/** A slice's pixels in words of 64; the last one is filled up with zeros. */
class Pixel_Words {
  public:
    explicit Pixel_Words(std::span<const std::uint8_t> of) : pixels(of) {
        const std::size_t whole = pixels.size() / WORD_BITS * WORD_BITS;
        std::ranges::copy(pixels.subspan(whole), rest.begin());
    }
    const std::uint8_t* Word(std::size_t at) const {
        return (at + 1) * WORD_BITS <= pixels.size() ? &pixels[at * WORD_BITS] : rest.data();
    }
    std::uint8_t operator[](std::size_t at) const { return pixels[at]; }
    std::size_t size() const { return pixels.size(); }
    std::size_t Word_Nb() const { return (pixels.size() + WORD_BITS - 1) / WORD_BITS; }

  private:
    std::span<const std::uint8_t> pixels;
    std::array<std::uint8_t, WORD_BITS> rest{};
};

/** Both states of the slice outlive it. */
class Changed_Pixels {
  public:
    /** @param of_before, of_after of one size @param stays pixels that had such a TAG do not change; null: none */
    Changed_Pixels(const Pixel_Words& of_before, const Pixel_Words& of_after, const Tag_Flags* stays);

    std::uint64_t Voxel_Nb() const { return voxel_nb; }
    /** That has the first pixel that changes. */
    std::size_t First_Word() const { return first; }
    std::vector<Voxel_Run> Runs() const;
    /** One layer for each pair of TAGs: before, after, and the words from the first to the last that change.
     *  @return how many; 0: too many, or they would take more than runs */
    std::size_t Layers(std::vector<std::uint8_t>& packed) const;

  private:
    std::size_t Span_Bytes() const { return (behind - first) * WORD_BYTES; }
    /** Adds pixels of a word that all change, as runs of one pair of TAGs each. @param begin, end bits of the word */
    void Stretch_Put(std::size_t word, unsigned int begin, unsigned int end, std::vector<Voxel_Run>& runs) const;
    /** Takes the pair of the first pixel that is left. @return its pixels */
    std::uint64_t Layer_Put(std::vector<std::uint64_t>& rest, std::vector<std::uint8_t>& packed) const;

    const Pixel_Words& before;
    const Pixel_Words& after;
    std::vector<std::uint64_t> words;
    std::uint64_t voxel_nb = 0;
    std::size_t stretch_nb = 0;
    std::size_t first = 0;
    std::size_t behind = 0;  // the last word with a pixel that changes
};

}  // namespace workbench
