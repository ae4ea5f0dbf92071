#include "workbench/archive/archive_connection.h"

#include <algorithm>

#include "dcmtk/dcmnet/dcmtrans.h"
#include "workbench/archive/archive_socket.h"

namespace workbench::archive {

namespace {

class Watched_Connection : public DcmTCPConnection {
  public:
    Watched_Connection(DcmNativeSocketType open_socket, Connection_Watch& its_watch)
        : DcmTCPConnection(open_socket), watch(its_watch) {}

    ssize_t read(void* bytes, size_t count) override;
    ssize_t write(void* bytes, size_t count) override;
    OFBool networkDataAvailable(int timeout) override;
    OFBool isTransparentConnection() override { return OFFalse; }  // the toolkit is not to wait on its own

  private:
    bool Prepare();

    Connection_Watch& watch;
    bool is_prepared = false;
};

/** Most bytes of a message that ends an association. */
constexpr std::size_t GOODBYE_MOST = 64;

/** The toolkit repeats what was interrupted; nothing that ends here was. */
ssize_t Ended() {
    Socket_Ended_Tell();
    return -1;
}

bool Watched_Connection::Prepare() {
    // Not earlier: the toolkit sets options of its own after it has made the connection.
    if (!is_prepared && !Socket_Prepare(getSocket())) {
        watch.Lose();
        return false;
    }
    is_prepared = true;
    return true;
}

ssize_t Watched_Connection::read(void* bytes, size_t count) {
    while (Prepare() && watch.May_Go_On()) {
        const std::ptrdiff_t got = Socket_Receive(getSocket(), bytes, count);
        if (got > 0) {
            return watch.Came(static_cast<std::size_t>(got)) ? static_cast<ssize_t>(got) : Ended();
        }
        if (got < 0) {
            watch.Lose();
            break;
        }
        Is_Socket_Readable(getSocket());
    }
    return Ended();
}

ssize_t Watched_Connection::write(void* bytes, size_t count) {
    const auto* from = static_cast<const char*>(bytes);
    std::size_t went = 0;
    while (went < count && Prepare()) {
        // What says goodbye after the end goes out where it can at once.
        const bool may_wait = watch.May_Go_On();
        if (!may_wait && count > GOODBYE_MOST) {
            return Ended();
        }
        const std::ptrdiff_t step = Socket_Send(getSocket(), from + went, count - went);
        if (step > 0) {
            went += static_cast<std::size_t>(step);
            watch.Moved();
            continue;
        }
        if (step < 0) {
            watch.Lose();
        }
        if (step < 0 || !may_wait) {
            break;
        }
        Is_Socket_Writable(getSocket());
    }
    return went == count ? static_cast<ssize_t>(went) : Ended();
}

OFBool Watched_Connection::networkDataAvailable(int timeout) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(std::max(timeout, 0));
    while (Prepare() && watch.May_Go_On()) {
        if (Is_Socket_Readable(getSocket())) {
            return OFTrue;
        }
        if (std::chrono::steady_clock::now() >= until) {
            break;
        }
    }
    return OFFalse;
}

}  // namespace

void Connection_Watch::Patience_Set(std::chrono::milliseconds time, bool is_renewed) {
    patience = time;
    is_patience_renewed = is_renewed;
    until = Clock::now() + time;
}

void Connection_Watch::Last_Words_Begin(std::chrono::milliseconds time) {
    progress = nullptr;
    end = Connection_End::Open;
    Patience_Set(time, false);
}

bool Connection_Watch::May_Go_On() {
    if (end != Connection_End::Open) {
        return false;
    }
    const Clock::time_point now = Clock::now();
    if (progress && now - asked >= WAIT_SLICE) {
        asked = now;
        if (!progress(fraction)) {
            end = Connection_End::Cancelled;
            return false;
        }
    }
    if (now >= until) {
        end = Connection_End::Silent;
        return false;
    }
    return true;
}

void Connection_Watch::Moved() {
    if (is_patience_renewed) {
        until = Clock::now() + patience;
    }
}

bool Connection_Watch::Came(std::size_t bytes) {
    Moved();
    if (bytes > room) {
        end = Connection_End::Flooded;
        return false;
    }
    room -= bytes;
    return true;
}

void Connection_Watch::Lose() {
    if (end == Connection_End::Open) {
        end = Connection_End::Lost;
    }
}

DcmTransportConnection* Watched_Layer::createConnection(DcmNativeSocketType open_socket, OFBool is_secure) {
    // What is not made the toolkit closes.
    return is_secure || (welcome && !welcome(open_socket)) ? nullptr : new Watched_Connection(open_socket, watch);
}

}  // namespace workbench::archive
