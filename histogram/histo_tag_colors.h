/** The host's TAG colours, as the panel and the enlarged window shade with them. */
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "histogram/histo_colors.h"
#include "panels/protocol/host_variables.h"

/** Colours of all TAGs, looked up once per picture. */
struct Histo_Tag_Colors {
    const std::uint16_t* red = nullptr;
    const std::uint16_t* green = nullptr;
    const std::uint16_t* blue = nullptr;
    int nb = 0;

    void Look_Up() {
        static Cached_Variable<std::uint16_t*> reds("$TAG_RED");
        static Cached_Variable<std::uint16_t*> greens("$TAG_GRN");
        static Cached_Variable<std::uint16_t*> blues("$TAG_BLU");
        red = reds.Value_Or(nullptr);
        green = greens.Value_Or(nullptr);
        blue = blues.Value_Or(nullptr);
        nb = Tag_Nb();
    }
    /** 0x00BBGGRR; grey for TAGs that the host does not have. */
    std::uint32_t Of(int tag) const {
        if (tag >= nb || red == nullptr || green == nullptr || blue == nullptr) {
            return HISTO_COLOR_GREY;
        }
        return Histo_Tag_Color(red[tag], green[tag], blue[tag]);
    }

  private:
    /** The host's number of TAGs; of one that does not tell it, as many as there are colours of. */
    static int Tag_Nb() {
        int defined = 0;
        const auto value = static_cast<std::uint16_t>(
            reinterpret_cast<std::uintptr_t>(Fct_Variable_Value("$TAG_NB", &defined, nullptr, nullptr)));
        if (defined > 0) {
            return value;
        }
        int least = std::numeric_limits<std::uint16_t>::max();
        for (const char* const name : {"$TAG_RED", "$TAG_GRN", "$TAG_BLU"}) {
            int color_nb = 0;
            Fct_Variable_Value(name, &color_nb, nullptr, nullptr);
            least = std::min(least, color_nb);
        }
        return least;
    }
};
