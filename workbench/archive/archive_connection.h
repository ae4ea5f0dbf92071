/** The connection to an archive under the toolkit's protocol: every wait of it ends when the user gives up, when the
 *  archive is silent for too long, and when it sends more than was asked for. */
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmnet/dcmlayer.h"
#include "workbench/volumes/volume_load.h"

namespace workbench::archive {

class Encrypted_Channel;

enum class Connection_End { Open, Cancelled, Silent, Lost, Flooded };

/** What holds for all connections of one operation. Used on one thread, on which it calls the progress. */
class Connection_Watch {
  public:
    explicit Connection_Watch(volumes::Load_Progress given_progress) : progress(std::move(given_progress)) {}

    /** How far the operation is, 0 .. 1. */
    void Done_Set(double done) { fraction = done; }
    double Done() const { return fraction; }
    /** From now on. @param is_renewed by every byte; else all has to be over by then */
    void Patience_Set(std::chrono::milliseconds time, bool is_renewed);
    /** Bytes that may come from now on. */
    void Room_Set(std::uint64_t bytes) { room = bytes; }
    /** From now on nobody is asked whether to go on: something is to be said that takes no longer than that. */
    void Last_Words_Begin(std::chrono::milliseconds time);
    /** A new connection begins. */
    void Begin() { end = Connection_End::Open; }

    /** Asks the user now and then. @return false: the connection has ended, see End */
    bool May_Go_On();
    /** Bytes have gone or come. */
    void Moved();
    bool Came(std::size_t bytes);
    void Lose();
    Connection_End End() const { return end; }

  private:
    using Clock = std::chrono::steady_clock;

    volumes::Load_Progress progress;
    double fraction = 0.0;
    Clock::time_point asked;
    Clock::time_point until;
    std::chrono::milliseconds patience{0};
    bool is_patience_renewed = false;
    std::uint64_t room = 0;
    Connection_End end = Connection_End::Open;
};

/** Makes the toolkit's connections; must outlive them, and the watch must outlive it. */
class Watched_Layer : public DcmTransportLayer {
  public:
    using Welcome = std::function<bool(DcmNativeSocketType)>;
    /** @param its_welcome whether a connection is wanted; empty: every one */
    explicit Watched_Layer(Connection_Watch& its_watch, Welcome its_welcome = {});
    ~Watched_Layer() override;
    Watched_Layer(const Watched_Layer&) = delete;
    Watched_Layer& operator=(const Watched_Layer&) = delete;
    /** The next connection is encrypted by that. */
    void Encrypt(std::unique_ptr<Encrypted_Channel> channel);
    /** Why the encryption was not agreed upon: the end of a sentence; empty: no doubt. */
    const std::string& Doubt() const { return doubt; }
    DcmTransportConnection* createConnection(DcmNativeSocketType open_socket, OFBool is_secure) override;

  private:
    Connection_Watch& watch;
    Welcome welcome;
    std::unique_ptr<Encrypted_Channel> secret;
    bool is_encrypted = false;
    std::string doubt;
};

}  // namespace workbench::archive
