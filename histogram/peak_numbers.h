/** Peaks in grey levels and pixels, with what is known of their errors. Needs no window. */
#pragma once

#include <cstdint>

#include "histogram/histo_peaks.h"

struct Histo_Data;

/** Histo_Peaks of the data of a panel. @param component colour component that was analysed */
int Peak_Numbers(const Histo_Data& data, std::uint8_t component, Histo_Peak_Info* out, int most);
