/** Spreads independent pieces of work over the processors. */
#pragma once

#include <cstddef>
#include <functional>

namespace volumes {

/** How many threads are worth having. @param most at least 1 */
std::size_t Work_Thread_Nb(std::size_t most);

/** Calls work(0) .. work(count - 1), each once, in ascending order of beginning, on `threads` threads; on the caller's
 *  own where that is 1 or no other can be had.
 *
 *  An exception of a piece ends the handing out; when all that began have ended, that of the lowest number is thrown
 *  on.
 *  @param on_done called on the caller's thread now and then with the number of pieces done. @return false to give up:
 *  no more pieces begin. May be empty
 *  @return false: it was given up */
bool Work_Share(std::size_t count, std::size_t threads, const std::function<void(std::size_t)>& work,
                const std::function<bool(std::size_t)>& on_done);

}  // namespace volumes
