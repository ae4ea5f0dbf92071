#include "workbench/archive/archive_connection.h"

#include <algorithm>
#include <utility>

#include "dcmtk/dcmnet/cond.h"
#include "dcmtk/dcmnet/dcmtrans.h"
#include "workbench/archive/archive_encryption.h"
#include "workbench/archive/archive_socket.h"

namespace workbench::archive {

namespace {

class Watched_Connection : public DcmTCPConnection {
  public:
    /** @param secret null: nothing is encrypted @param told where it is said why the encryption failed */
    Watched_Connection(DcmNativeSocketType open_socket, Connection_Watch& its_watch,
                       std::unique_ptr<Encrypted_Channel> secret, std::string& told)
        : DcmTCPConnection(open_socket), watch(its_watch), encrypted(std::move(secret)), doubt(told) {}

    OFCondition clientSideHandshake() override;
    ssize_t read(void* bytes, size_t count) override;
    ssize_t write(void* bytes, size_t count) override;
    OFBool networkDataAvailable(int timeout) override;
    OFBool isTransparentConnection() override { return OFFalse; }  // the toolkit is not to wait on its own

  private:
    bool Prepare();
    std::ptrdiff_t Receive(void* bytes, std::size_t count);
    std::ptrdiff_t Send(const void* bytes, std::size_t count);

    Connection_Watch& watch;
    std::unique_ptr<Encrypted_Channel> encrypted;
    std::string& doubt;
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

std::ptrdiff_t Watched_Connection::Receive(void* bytes, std::size_t count) {
    return encrypted ? encrypted->Receive(bytes, count) : Socket_Receive(getSocket(), bytes, count);
}

std::ptrdiff_t Watched_Connection::Send(const void* bytes, std::size_t count) {
    return encrypted ? encrypted->Send(bytes, count) : Socket_Send(getSocket(), bytes, count);
}

OFCondition Watched_Connection::clientSideHandshake() {
    if (!encrypted) {
        return EC_Normal;
    }
    // Prepared once more before the first bytes: see there.
    while (Socket_Prepare(getSocket()) && watch.May_Go_On()) {
        const int step = encrypted->Handshake();
        if (step > 0) {
            return EC_Normal;
        }
        if (step < 0) {
            doubt = encrypted->Doubt();
            watch.Lose();
            break;
        }
        Is_Socket_Readable(getSocket());
    }
    return DUL_NETWORKCLOSED;
}

ssize_t Watched_Connection::read(void* bytes, size_t count) {
    while (Prepare() && watch.May_Go_On()) {
        const std::ptrdiff_t got = Receive(bytes, count);
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
        const std::ptrdiff_t step = Send(from + went, count - went);
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
        if ((encrypted && encrypted->Has_More()) || Is_Socket_Readable(getSocket())) {
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

Watched_Layer::Watched_Layer(Connection_Watch& its_watch, Welcome its_welcome)
    : watch(its_watch), welcome(std::move(its_welcome)) {}

Watched_Layer::~Watched_Layer() = default;

void Watched_Layer::Encrypt(std::unique_ptr<Encrypted_Channel> channel) {
    secret = std::move(channel);
    is_encrypted = true;
}

DcmTransportConnection* Watched_Layer::createConnection(DcmNativeSocketType open_socket, OFBool is_secure) {
    if (is_secure || (welcome && !welcome(open_socket))) {
        return nullptr;  // what is not made the toolkit closes
    }
    if (is_encrypted && !secret) {
        return nullptr;  // one connection has it already: no other one goes in clear
    }
    if (secret) {
        secret->Attach(open_socket);
    }
    return new Watched_Connection(open_socket, watch, std::move(secret), doubt);
}

}  // namespace workbench::archive
