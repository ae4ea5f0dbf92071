#include "workbench/archive/archive_socket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <limits>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "dcmtk/ofstd/ofsockad.h"
#ifdef _WIN32
using Address_Size = int;
#else
#include <fcntl.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <sys/select.h>
#include <unistd.h>
using Address_Size = socklen_t;
#endif

namespace workbench::archive {

namespace {

using Clock = std::chrono::steady_clock;

#ifdef _WIN32
constexpr DcmNativeSocketType NO_SOCKET = INVALID_SOCKET;
constexpr int SEND_OPTIONS = 0;
constexpr int REFUSED = WSAECONNREFUSED;

int Last_Code() {
    return ::WSAGetLastError();
}

void Socket_Close(DcmNativeSocketType socket) {
    ::closesocket(socket);
}

bool Is_To_Be_Repeated() {
    const int code = ::WSAGetLastError();
    return code == WSAEWOULDBLOCK || code == WSAEINPROGRESS || code == WSAEINTR;
}

bool Fits_Set(DcmNativeSocketType) {
    return true;  // a set of Windows has as many as it was given
}

int Set_Width(DcmNativeSocketType) {
    return 0;  // Windows does not look at it
}
#else
constexpr DcmNativeSocketType NO_SOCKET = -1;
constexpr int SEND_OPTIONS = MSG_NOSIGNAL;  // an ended connection is an error, not a signal
constexpr int REFUSED = ECONNREFUSED;

int Last_Code() {
    return errno;
}

void Socket_Close(DcmNativeSocketType socket) {
    ::close(socket);
}

bool Is_To_Be_Repeated() {
    return errno == EWOULDBLOCK || errno == EAGAIN || errno == EINPROGRESS || errno == EINTR;
}

bool Fits_Set(DcmNativeSocketType socket) {
    return socket >= 0 && socket < FD_SETSIZE;
}

int Set_Width(DcmNativeSocketType socket) {
    return socket + 1;
}
#endif

class Socket_Owner {
  public:
    explicit Socket_Owner(DcmNativeSocketType opened) : socket(opened) {}
    ~Socket_Owner() {
        if (socket != NO_SOCKET) {
            Socket_Close(socket);
        }
    }
    Socket_Owner(const Socket_Owner&) = delete;
    Socket_Owner& operator=(const Socket_Owner&) = delete;

    DcmNativeSocketType Get() const { return socket; }

  private:
    DcmNativeSocketType socket;
};

/** @return whether the socket is ready within WAIT_SLICE */
bool Socket_Wait(DcmNativeSocketType socket, bool is_for_sending) {
    if (!Fits_Set(socket)) {
        return true;  // the operation itself fails then
    }
    fd_set ready;
    fd_set failed;
    FD_ZERO(&ready);
    FD_ZERO(&failed);
    FD_SET(socket, &ready);
    FD_SET(socket, &failed);
    timeval patience = {};
    patience.tv_usec = static_cast<decltype(patience.tv_usec)>(std::chrono::microseconds(WAIT_SLICE).count());
    return ::select(Set_Width(socket), is_for_sending ? nullptr : &ready, is_for_sending ? &ready : nullptr, &failed,
                    &patience) > 0;
}

std::vector<sockaddr_in> Addresses(const std::string& host, int flags) {
    addrinfo wanted = {};
    wanted.ai_family = AF_INET;  // the toolkit knows no other
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = flags;
    addrinfo* found = nullptr;
    std::vector<sockaddr_in> addresses;
    if (::getaddrinfo(host.c_str(), nullptr, &wanted, &found) != 0) {
        return addresses;
    }
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, &::freeaddrinfo);
    for (const addrinfo* one = found; one != nullptr; one = one->ai_next) {
        if (one->ai_family == AF_INET && one->ai_addrlen >= sizeof(sockaddr_in)) {
            addresses.push_back(*reinterpret_cast<const sockaddr_in*>(one->ai_addr));
        }
    }
    return addresses;
}

/** What a thread finds out that nobody can stop; who waited for it may be gone. */
struct Lookup {
    std::mutex mutex;
    std::condition_variable ended;
    bool is_ended = false;
    std::vector<sockaddr_in> addresses;
};

/** @return none: unknown, or given up (see `fault`) */
std::vector<sockaddr_in> Host_Find(const std::string& host, Clock::time_point until,
                                   const std::function<bool()>& may_go_on, Reach_Fault& fault) {
    std::vector<sockaddr_in> numeric = Addresses(host, AI_NUMERICHOST);
    if (!numeric.empty()) {
        return numeric;
    }
    const auto lookup = std::make_shared<Lookup>();
    std::thread([lookup, host] {
        std::vector<sockaddr_in> addresses = Addresses(host, 0);
        const std::lock_guard lock(lookup->mutex);
        lookup->addresses = std::move(addresses);
        lookup->is_ended = true;
        lookup->ended.notify_all();
    }).detach();
    std::unique_lock lock(lookup->mutex);
    while (!lookup->ended.wait_for(lock, WAIT_SLICE, [&] { return lookup->is_ended; })) {
        if (!may_go_on()) {
            fault = Reach_Fault::Cancelled;
            return {};
        }
        if (Clock::now() >= until) {
            break;
        }
    }
    if (lookup->addresses.empty()) {
        fault = Reach_Fault::Unknown_Host;
    }
    return lookup->addresses;
}

/** Only a host that refuses says that nothing listens there. */
Reach_Fault Fault_Of(int code) {
    return code == REFUSED ? Reach_Fault::Nothing_Listens : Reach_Fault::No_Way;
}

std::string Address_Text(const sockaddr_in& address) {
    std::array<char, INET_ADDRSTRLEN> text{};
    return address.sin_family != AF_INET || ::inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size()) == nullptr
               ? std::string()
               : text.data();
}

std::string Own_Address(DcmNativeSocketType socket) {
    sockaddr_in address = {};
    Address_Size size = sizeof address;
    return ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) == 0 ? Address_Text(address) : "";
}

/** @param is_own_machine receives whether the address is one of this computer */
Reach_Fault Address_Try(sockaddr_in address, int port, Clock::time_point until, const std::function<bool()>& may_go_on,
                        bool& is_own_machine) {
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    const Socket_Owner socket(::socket(AF_INET, SOCK_STREAM, 0));
    if (socket.Get() == NO_SOCKET || !Fits_Set(socket.Get()) || !Socket_Unblock(socket.Get())) {
        return Reach_Fault::No_Way;
    }
    if (::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        if (!Is_To_Be_Repeated()) {
            return Fault_Of(Last_Code());
        }
        while (!Socket_Wait(socket.Get(), true)) {
            if (!may_go_on()) {
                return Reach_Fault::Cancelled;
            }
            if (Clock::now() >= until) {
                return Reach_Fault::Too_Slow;
            }
        }
    }
    int code = 0;
    Address_Size size = sizeof code;
    if (::getsockopt(socket.Get(), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&code), &size) != 0) {
        return Reach_Fault::No_Way;
    }
    is_own_machine = Own_Address(socket.Get()) == Address_Text(address);
    return code == 0 ? Reach_Fault::None : Fault_Of(code);
}

/** What the system takes at once. */
int Bounded(std::size_t count) {
    return static_cast<int>(std::min(count, static_cast<std::size_t>(std::numeric_limits<int>::max())));
}

}  // namespace

Reached Archive_Reach(const std::string& host, int port, std::chrono::milliseconds patience,
                      const std::function<bool()>& may_go_on) {
    const Clock::time_point until = Clock::now() + patience;
    Reached reached;
    for (const sockaddr_in& address : Host_Find(host, until, may_go_on, reached.fault)) {
        const Reach_Fault fault = Address_Try(address, port, until, may_go_on, reached.is_own_machine);
        reached.fault = fault;
        if (fault == Reach_Fault::None) {
            reached.address = Address_Text(address);
            break;
        }
        if (fault == Reach_Fault::Cancelled) {
            break;
        }
    }
    return reached;
}

bool Socket_Prepare(DcmNativeSocketType socket) {
    const int is_on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&is_on), sizeof is_on);
    return Fits_Set(socket) && Socket_Unblock(socket);
}

bool Socket_Unblock(DcmNativeSocketType socket) {
#ifdef _WIN32
    u_long is_on = 1;
    return ::ioctlsocket(socket, FIONBIO, &is_on) == 0;
#else
    const int flags = ::fcntl(socket, F_GETFL, 0);
    return flags >= 0 && ::fcntl(socket, F_SETFL, flags | O_NONBLOCK) == 0;
#endif
}

bool Is_Socket_Readable(DcmNativeSocketType socket) {
    return Socket_Wait(socket, false);
}

bool Is_Socket_Writable(DcmNativeSocketType socket) {
    return Socket_Wait(socket, true);
}

Socket_Ends Ends_Of(DcmNativeSocketType socket) {
    sockaddr_in address = {};
    Address_Size size = sizeof address;
    const bool is_known = ::getpeername(socket, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    return {Own_Address(socket), is_known ? Address_Text(address) : std::string()};
}

void Socket_Ended_Tell() {
    errno = ECONNABORTED;
#ifdef _WIN32
    ::WSASetLastError(WSAECONNABORTED);  // what would have to wait left a mark that asks for a repetition
#endif
}

std::ptrdiff_t Socket_Receive(DcmNativeSocketType socket, void* bytes, std::size_t count) {
    const auto got = ::recv(socket, static_cast<char*>(bytes), Bounded(count), 0);
    if (got > 0) {
        return got;
    }
    return got < 0 && Is_To_Be_Repeated() ? 0 : -1;
}

std::ptrdiff_t Socket_Send(DcmNativeSocketType socket, const void* bytes, std::size_t count) {
    const auto went = ::send(socket, static_cast<const char*>(bytes), Bounded(count), SEND_OPTIONS);
    if (went > 0) {
        return went;
    }
    return went < 0 && Is_To_Be_Repeated() ? 0 : -1;
}

}  // namespace workbench::archive
