/** What the system is to refuse this process from now on: a flaw in what reads files of strangers finds less to use. */
#pragma once

#include <windows.h>

namespace workbench {

/** SetProcessMitigationPolicy, or what stands for it. */
using Limit_Setter = BOOL(WINAPI*)(PROCESS_MITIGATION_POLICY, void*, SIZE_T);

/** Libraries that are asked for by their names are the system's and those beside the program: what lies in the current
 *  folder or in one of PATH is none of them. */
void Library_Search_Narrow();

/** No libraries from other computers or from places that anybody may write to; no handle that is not one. Each for
 *  itself: a system that does not know one goes without. Programs may still be started: the system's dialogs do so.
 *  @param set null: the system's, where it has it @return how many the system took */
int Process_Limits_Set(Limit_Setter set = nullptr);

}  // namespace workbench
