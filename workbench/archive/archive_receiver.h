/** Listens at a port for the archive that was asked to send images there (C-MOVE), while they are wanted. */
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "workbench/archive/archive_intake.h"

namespace workbench::archive {

/** Takes connections one after the other, on a thread of its own; only of a caller at the archive's address that has
 *  the archive's title and asks for this program's. */
class Store_Receiver {
  public:
    /** Listens from now on. Both outlive it. @param its_place of the archive: nobody else is listened to @throw
     * Archive_Failure: the port cannot be had */
    Store_Receiver(const Archive_Settings& its_archive, Reached its_place, Series_Intake& its_intake);
    ~Store_Receiver() { End(); }
    Store_Receiver(const Store_Receiver&) = delete;
    Store_Receiver& operator=(const Store_Receiver&) = delete;

    /** Listens no more; what is still coming in is cut off. */
    void End();
    /** A number that changes while something comes in. */
    std::uint64_t Signs_Of_Life() const { return signs; }
    bool Has_Failed() const { return has_failed; }
    /** After End. No value: nothing went wrong. */
    const std::optional<Archive_Failure>& Failure() const { return failure; }
    /** After End. The last address that was not listened to; empty: there was none. */
    const std::string& Refused_Address() const { return refused_address; }

  private:
    struct Network_End {
        void operator()(T_ASC_Network* ended) const;
    };

    void Run() noexcept;
    bool Is_Welcome(DcmNativeSocketType socket);
    /** Serves a caller until it goes. */
    void Serve();
    void Fail(const Archive_Failure& what);

    const Archive_Settings& archive;
    Reached place;
    Series_Intake& intake;
    std::unique_ptr<T_ASC_Network, Network_End> network;
    std::optional<Archive_Failure> failure;
    std::string refused_address;
    std::atomic<bool> has_failed = false;
    std::atomic<bool> is_ended = false;
    std::atomic<std::uint64_t> signs = 0;
    std::thread thread;
};

}  // namespace workbench::archive
