/** What a window shows, as tests read it back. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/** Rows from the top, pixels 0x00RRGGBB. */
struct Window_Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
    std::uint32_t At(int x, int row) const {
        return pixels[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
    friend bool operator==(const Window_Picture&, const Window_Picture&) = default;
};
