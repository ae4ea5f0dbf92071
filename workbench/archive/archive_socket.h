/** Sockets without waiting in them: whoever waits can be asked to stop. */
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmnet/dntypes.h"

namespace workbench::archive {

enum class Reach_Fault { None, Unknown_Host, Nothing_Listens, No_Way, Too_Slow, Cancelled };

struct Reached {
    Reach_Fault fault = Reach_Fault::None;
    std::string address;          ///< four numbers with dots, of the first address that answers
    bool is_own_machine = false;  ///< the address is one of this computer
};

/** Longest time between two questions whether to go on. */
inline constexpr std::chrono::milliseconds WAIT_SLICE{20};

/** Connects to a port and closes the connection again: tells what the toolkit would find out slowly, and not tell.
 *  @param may_go_on asked at least every WAIT_SLICE, also while the name is looked up */
Reached Archive_Reach(const std::string& host, int port, std::chrono::milliseconds patience,
                      const std::function<bool()>& may_go_on);

/** Lets operations of a connected socket return at once, and small messages go out at once. */
bool Socket_Prepare(DcmNativeSocketType socket);
/** Waits for WAIT_SLICE at most. @return whether there is something to receive, or the end */
bool Is_Socket_Readable(DcmNativeSocketType socket);
/** Waits for WAIT_SLICE at most. @return whether something can be sent, or the end be seen */
bool Is_Socket_Writable(DcmNativeSocketType socket);

/** Lets operations of a socket return at once. */
bool Socket_Unblock(DcmNativeSocketType socket);

struct Socket_Ends {
    std::string own;   ///< four numbers with dots; empty: not known, also below
    std::string peer;  ///< the other side's
};
Socket_Ends Ends_Of(DcmNativeSocketType socket);

/** Leaves the mark of an ended connection where the toolkit looks for what went wrong last. */
void Socket_Ended_Tell();

/** Bytes of one operation; 0: none now; negative: the connection has ended. */
std::ptrdiff_t Socket_Receive(DcmNativeSocketType socket, void* bytes, std::size_t count);
std::ptrdiff_t Socket_Send(DcmNativeSocketType socket, const void* bytes, std::size_t count);

}  // namespace workbench::archive
