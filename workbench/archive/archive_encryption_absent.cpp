// A build without OpenSSL: nothing can be encrypted.
#include "workbench/archive/archive_encryption.h"

#include "workbench/archive/archive_client.h"
#include "workbench/archive/archive_outcome.h"

namespace workbench::archive {

bool Can_Encrypt() {
    return false;
}

struct Encrypted_Channel::Toolkit {};

Encrypted_Channel::Encrypted_Channel(const Archive_Settings& settings) {
    throw Failure_Of(Archive_Fault::Settings, Archive_Title(settings) +
                                                  " is to be spoken to by TLS, and this build cannot encrypt. "
                                                  "Nothing was sent.");
}

Encrypted_Channel::~Encrypted_Channel() = default;

void Encrypted_Channel::Attach(DcmNativeSocketType) {}

int Encrypted_Channel::Handshake() {
    return -1;
}

std::ptrdiff_t Encrypted_Channel::Receive(void*, std::size_t) {
    return -1;
}

std::ptrdiff_t Encrypted_Channel::Send(const void*, std::size_t) {
    return -1;
}

bool Encrypted_Channel::Has_More() const {
    return false;
}

}  // namespace workbench::archive
