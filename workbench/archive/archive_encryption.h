/** The encrypted connection to an archive: TLS 1.2 or later, with the archive's certificate checked. */
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmnet/dntypes.h"
#include "workbench/archive/archive_settings.h"

namespace workbench::archive {

/** One connection, asked from this side. Nothing of it waits; the socket is that of the caller. */
class Encrypted_Channel {
  public:
    /** Reads the certificates that the settings name. @throw Archive_Failure with a sentence: they cannot be read, or
     *  this build has no encryption */
    explicit Encrypted_Channel(const Archive_Settings& settings);
    ~Encrypted_Channel();
    Encrypted_Channel(const Encrypted_Channel&) = delete;
    Encrypted_Channel& operator=(const Encrypted_Channel&) = delete;

    /** @param open_socket its operations return at once, or are made so before those below are called; not owned */
    void Attach(DcmNativeSocketType open_socket);
    /** Agrees upon the encryption. @return positive: done; 0: to be called again, when something has come; negative: it
     *  has failed, see Doubt */
    int Handshake();
    /** Bytes of one operation; 0: none now; negative: the connection has ended. */
    std::ptrdiff_t Receive(void* bytes, std::size_t count);
    std::ptrdiff_t Send(const void* bytes, std::size_t count);
    /** Whether bytes have come that were not received yet: the socket no longer knows of them. */
    bool Has_More() const;
    /** Why the handshake failed: the end of a sentence that begins with the archive's title. */
    const std::string& Doubt() const { return doubt; }

  private:
    struct Toolkit;
    std::unique_ptr<Toolkit> toolkit;
    std::string doubt;
};

}  // namespace workbench::archive
