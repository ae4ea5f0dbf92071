/** Named points in a volume. */
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace workbench {

inline constexpr int MARKER_NB = 8;  ///< a multiple of four, for the marker panel lays out complete rows only

struct Marker {
    bool is_placed = false;
    int x = 0;  ///< pixel of the displayed slice
    int y = 0;
    int slice = 0;
    friend bool operator==(const Marker&, const Marker&) = default;
};

class Marker_Table {
  public:
    /** A marker; an unplaced one for an index outside 0 .. MARKER_NB - 1. */
    Marker Get(int index) const;
    /** @return false for an index outside the table */
    bool Set(int index, const Marker& marker);
    int Placed_Nb() const;

  private:
    std::array<Marker, MARKER_NB> marker{};
};

/** The colours markers start with, 0x00BBGGRR. */
std::uint32_t Marker_Default_Color(int index);

}  // namespace workbench
