/** Asks which TAG gets the grey levels of which peak. */
#pragma once

#include "base/gdi_handles.h"

#include <functional>
#include <string>

#include "workbench/analysis/band_plan.h"

namespace workbench {

/** What the dialog tells of the TAGs. */
struct Tag_Namer {
    std::function<std::string(int)> name;        ///< UTF-8
    std::function<Claimed_Levels(int)> claimed;  ///< now
};

/** A list of the peaks with their TAGs; the marked peak's TAG is changed in a second list. A modal loop: messages of
 *  other windows are handled meanwhile.
 *  @param plan receives the user's choices @return false when the user gave up */
bool Bands_Ask(HWND owner, Band_Plan& plan, const Tag_Namer& namer);

}  // namespace workbench
