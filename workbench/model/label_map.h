/** The TAG of every voxel. */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "workbench/model/zeroed_memory.h"

namespace workbench {

/** TAG numbers are 0 (background) .. TAG_MAX - 1. */
inline constexpr int TAG_MAX = 256;

/** One byte per TAG. */
using Tag_Flags = std::array<std::uint8_t, TAG_MAX>;

/** A part of a slice in pixels of the image, not of a window, half-open; empty: right <= left or bottom <= top. */
struct Pixel_Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool Is_Empty() const { return right <= left || bottom <= top; }
    friend bool operator==(const Pixel_Rect&, const Pixel_Rect&) = default;
};
/** The smallest rectangle that holds both; an empty one adds nothing. */
Pixel_Rect Rect_Union(const Pixel_Rect& a, const Pixel_Rect& b);
/** What both cover. */
Pixel_Rect Rect_Common(const Pixel_Rect& a, const Pixel_Rect& b);

/** One TAG per voxel of a volume, slice after slice, rows from the top of the displayed slice, x fastest. */
class Label_Map {
  public:
    Label_Map() = default;
    /** Background everywhere. Sizes are 1 or more. */
    Label_Map(int map_width, int map_height, int map_slices);

    int Width() const { return width; }
    int Height() const { return height; }
    int Slice_Nb() const { return slices; }
    std::size_t Slice_Size() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }

    /** The pixels of a slice, Slice_Size() of them; nothing outside 0 .. Slice_Nb() - 1. */
    std::span<std::uint8_t> Slice(int slice);
    std::span<const std::uint8_t> Slice(int slice) const;
    /** The TAG at a position, 0 outside. */
    std::uint8_t At(int x, int y, int slice) const;

    std::span<std::uint8_t> All() { return tags; }
    std::span<const std::uint8_t> All() const { return tags; }

    /** Voxels per TAG. */
    std::array<std::uint64_t, TAG_MAX> Counts() const;
    /** The highest TAG present, 0 when there is only background. */
    int Highest_Tag() const;

  private:
    int width = 0;
    int height = 0;
    int slices = 0;
    std::vector<std::uint8_t, Zeroed_Memory<std::uint8_t>> tags;  // untouched slices take no room
};

}  // namespace workbench
