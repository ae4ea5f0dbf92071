/** How slices that know their places make up volumes. Slices of a series and frames of a file go through here alike. */
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/slice_place.h"

namespace volumes {

/** When a slice was taken, as far as its file says: the members are compared in this order; 0 where nothing is said. */
struct Slice_Moment {
    std::int32_t temporal_position = 0;
    std::int32_t acquisition = 0;
    double trigger = 0;                                     ///< ms
    auto operator<=>(const Slice_Moment&) const = default;  // NOLINT(modernize-use-nullptr): the generated 0 is none
};

struct Stack_Slice {
    Slice_Place place;
    Slice_Moment moment;
    std::array<double, 2> pixel{1, 1};       ///< mm along a row, along a column; positive
    std::array<std::int32_t, 2> size{1, 1};  ///< pixels of a row, of a column
};

/** Slices of one direction and one regular grid, as far as they make one up, at one or several times. */
struct Slice_Stack {
    enum class Kind {
        Regular,   ///< straight and even
        Tilted,    ///< even, but not straight along the normal: the step says so
        Uneven,    ///< slices lie off the grid that the stack stands for
        Scattered  ///< too many directions: slices of all of them, as they came; there is no place
    };
    Kind kind = Kind::Regular;
    std::int32_t nz = 1;
    std::int32_t nt = 1;
    std::vector<std::int32_t> order;  ///< numbers of the slices: all places of the first time first, along the normal
    std::array<double, 3> step{};     ///< mm from one place to the next, in the coordinates of Slice_Place; nz of 1: 0
    double distance = 0;              ///< mm between places along the normal; nz of 1: 0
    double error = 0;                 ///< mm: how far a slice lies from its place in the grid at most
};

struct Stack_Warning {
    enum class Kind {
        Tilted,        ///< amount: degrees
        Uneven,        ///< distances differ; amount: mm that slices lie off at most
        Curved,        ///< slices lie beside the line; amount: mm that slices lie off at most
        Turned,        ///< directions or pixel sizes differ a little; amount: mm that pixels lie off at most
        Unequal,       ///< places do not occur equally often: several stacks
        Time_Guessed,  ///< slices of one place do not say which is earlier
        Scattered      ///< amount: stacks that there would be
    };
    Kind kind = Kind::Uneven;
    std::int32_t slice = 0;  ///< the number of a slice that it is about
    double amount = 0;
};

struct Stack_Plan {
    std::vector<Slice_Stack> stacks;      ///< by direction, then by time; together they have every slice once
    std::vector<Stack_Warning> warnings;  ///< at most one of a kind for each stack
};

/** Slices whose directions and pixel sizes differ by less than half a pixel at the far end of the picture belong
 *  together. @return their numbers, in rising order; groups in order of their first. A place that is not known has
 *  no direction. */
std::vector<std::vector<std::int32_t>> Slices_Alike(std::span<const Stack_Slice> slices);

/** Makes stacks of slices. Where places do not occur equally often, or slices lie beside one another, or in several
 *  directions, there are several. Tolerances are parts of a voxel.
 *  @param slices one or more, of known places */
Stack_Plan Slices_Stack(std::span<const Stack_Slice> slices);

/** What a warning says, to follow a file's name. @param is_frame the slices are frames of that file, else files; the
 *  name is then that of the slice warned of */
std::string Stack_Warning_Text(const Stack_Warning& warning, bool is_frame);

}  // namespace volumes
