/** @file
 *  Checks of what a host owes its panels. Off by default; a host turns them on while it is being written.
 *
 *  Every mistake is reported once as a warning of the form "WARNING: Contract: MISTAKE: SUBJECT", for example
 *  "Contract: variable missing: $TAG_NB", and counted. */
#pragma once

#include <string>

#include "host/kit_common.h"

// Kinds of mistakes, the first part of a report.
inline constexpr char CONTRACT_VARIABLE_MISSING[] = "variable missing";  ///< asked for and not defined
inline constexpr char CONTRACT_COUNT_CAP[] = "count cap";  ///< more than panels show, or an array too short
inline constexpr char CONTRACT_FLAG_LEVEL[] =
    "update flag without its level";                                  ///< structure or selection with no UPDATE_LEVEL_*
inline constexpr char CONTRACT_ITERATOR[] = "iterator not ended";     ///< no Iterator_End after a pass
inline constexpr char CONTRACT_DC[] = "device context not released";  ///< no Y_release after a Y_setup
inline constexpr char CONTRACT_WAIT_CURSOR[] =
    "wait cursor set and reset unevenly";  ///< Set_Curs_Wait, Reset_Curs_Wait

inline constexpr char CONTRACT_TYPE[] = "variable of another type";         ///< its numbers are read as others
inline constexpr char CONTRACT_SHAPE[] = "variable of another shape";       ///< an array for a scalar and the like
inline constexpr char CONTRACT_MULTIPLE[] = "count not a multiple";         ///< TAGs and markers stand in rows of four
inline constexpr char CONTRACT_CURRENT[] = "current beyond the count";      ///< "$TAG_CUR" and the like
inline constexpr char CONTRACT_UNKNOWN[] = "variable that no panel knows";  ///< named like one of the panels' variables
inline constexpr char CONTRACT_MASK[] = "brush mask";                       ///< rows missing, or smaller than the brush
inline constexpr char CONTRACT_BINS[] = "histogram bins merged";  ///< "$GLI_HISTO_BINS_MAX" is too small for the frames
inline constexpr char CONTRACT_HISTOGRAM[] = "histogram record";  ///< that cannot be merged
inline constexpr char CONTRACT_FRAME[] = "frame out of reach";    ///< not registered, or no place in "$FRAME_CUR"
inline constexpr char CONTRACT_FILE[] = "file table";             ///< an entry is null
inline constexpr char CONTRACT_FOLDER[] = "folder without its separator";   ///< "$DEFAULT_FILE_PATH"
inline constexpr char CONTRACT_LISTENER[] = "nobody listens to requests";   ///< no Request_Listener_Set
inline constexpr char CONTRACT_AXIS[] = "axis of a window never declared";  ///< no Window_Axis_Set before drawing
inline constexpr char CONTRACT_MAIN_WINDOW[] = "main window never named";   ///< `hwnd` is null

/** Turns the checks on or off, and forgets what was reported. */
KIT_COMMON_API void Contract_Checks_Set(bool on);
/** True while the checks are on. */
KIT_COMMON_API bool Contract_Checks();
/** Reports a mistake when the checks are on. @param mistake one of CONTRACT_*; @param subject what it concerns; the
 * pair is reported once */
KIT_COMMON_API void Contract_Report(const char* mistake, const char* subject);
/** The same with a subject that is put together. */
inline void Contract_Report(const char* mistake, const std::string& subject) {
    Contract_Report(mistake, subject.c_str());
}
/** Mistakes reported since the checks were turned on. */
KIT_COMMON_API int Contract_Report_Nb();
