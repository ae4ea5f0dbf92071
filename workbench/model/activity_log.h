/** The last things that the user did, kept where a program that has crashed can still read them. */
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace workbench {

inline constexpr std::size_t ACTIVITY_LINES = 50;
inline constexpr std::size_t ACTIVITY_LINE_SIZE = 160;  ///< bytes; what is longer is cut

/** Takes no memory; lines are plain bytes in place. For one writing thread. */
class Activity_Log {
  public:
    void Add(std::string_view line);
    /** Lines that are there, at most ACTIVITY_LINES. */
    std::size_t Nb() const { return added < ACTIVITY_LINES ? added : ACTIVITY_LINES; }
    /** @param index 0: the oldest that is there; less than Nb() */
    std::string_view Line(std::size_t index) const;

  private:
    struct Kept_Line {
        std::array<char, ACTIVITY_LINE_SIZE> text{};
        std::size_t size = 0;
    };
    std::array<Kept_Line, ACTIVITY_LINES> lines{};
    std::size_t added = 0;
};

}  // namespace workbench
