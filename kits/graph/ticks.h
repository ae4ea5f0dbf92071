/** Round tick values of an axis and their numbers. */
#pragma once

#include <cstdint>
#include <string>

/** Ticks at first x step, (first + 1) x step, ... last x step, all inside the range. */
struct Tick_Scale {
    double step = 0.0;  ///< 1, 2 or 5 times a power of ten
    std::int64_t first = 0;
    std::int64_t last = -1;  ///< less than `first`: no tick
    double Value(std::int64_t index) const { return static_cast<double>(index) * step; }
    std::int64_t Count() const { return last >= first ? last - first + 1 : 0; }
};

/** True when both are finite and from < to. */
bool Is_Range_Valid(float from, float to);

/** The finest scale whose ticks are at least `least` apart. @param least in the units of the range, above 0; a valid
 * range */
Tick_Scale Tick_Scale_Make(double from, double to, double least);
/** The next coarser scale: 1 to 2 to 5 to 10. */
Tick_Scale Tick_Scale_Coarser(double from, double to, const Tick_Scale& scale);

/** The next finer scale: 10 to 5 to 2 to 1. */
Tick_Scale Tick_Scale_Finer(double from, double to, const Tick_Scale& scale);

/** How the numbers of one axis are written: all with the same unit and decimals. */
struct Tick_Format {
    int exponent = 0;  ///< the numbers are divided by ten to this power, a multiple of three
    int decimals = 0;
};
/** Plain numbers from 0.001 to 99999; beyond that in thousands, millions, ... @param compact thousands already from
 * 1000 on */
Tick_Format Tick_Format_Make(const Tick_Scale& scale, bool compact);
/** The number of a tick: "0", "250", "0.5", "12k", "1.5M", "2e-6". */
std::string Tick_Text(const Tick_Scale& scale, const Tick_Format& format, std::int64_t index);
