/** What was found of work that was not saved, in words. */
#pragma once

#include <string>

#include "workbench/model/label_description.h"
#include "workbench/model/recovery_record.h"

namespace workbench {

/** The day and the time of this place; "?" when the system has none. @param seconds since 1970 began */
std::string Recovery_Time_Text(std::int64_t seconds);

/** When the work was kept, on which volumes it is and how much; UTF-8, several lines. Long lists end in how many more
 *  there are. */
std::string Recovery_Found_Text(const Recovery_Record& record);

/** What stands beside the labels of a volume that was found. */
Label_Description Recovery_Description(const Recovery_Volume& volume);

}  // namespace workbench
