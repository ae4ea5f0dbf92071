/** Message formats and source names that the files of the histogram panel share. */
#pragma once

#include "host/kit_common.h"

// The panel is one concern to its host, whatever files it is written in: every message names this one.
inline constexpr const char* TOOL_HISTO_SOURCE = KIT_SOURCE_ROOT "/histogram/tool_histo.cpp";
inline constexpr const char* TOOL_HISTO_DERIVATIVE_SOURCE = KIT_SOURCE_ROOT "/histogram/tool_histo_derivative.cpp";
inline constexpr const char* TOOL_HISTO_GAUSS_NEWTON_SOURCE = KIT_SOURCE_ROOT "/histogram/tool_histo_gauss_newton.cpp";
inline constexpr const char* TOOL_HISTO_PEAK_SOURCE = KIT_SOURCE_ROOT "/histogram/tool_histo_peak.cpp";

inline constexpr char HISTO_MESSAGE_NEW[] = "line %-4d of %s \nmemory error in new";
inline constexpr char HISTO_MESSAGE_CALLOC[] = "line %-4d of %s \nmemory error in calloc (var=%s, dim=%dx%d)";
inline constexpr char HISTO_MESSAGE_REALLOC[] = "line %-4d of %s \nmemory error in realloc (var=%s, dim=%dx%d)";

/** Reports an allocation by `new` that failed. Hosts match some of the lines, so those stay as they are. */
inline void Histo_Report_New(int line, const char* source) {
    Error_Fct(hwnd, MESSAGE_MEMORY, HISTO_MESSAGE_NEW, line, source);
}
