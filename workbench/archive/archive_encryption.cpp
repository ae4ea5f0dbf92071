#include "workbench/archive/archive_encryption.h"

#include <algorithm>
#include <limits>

#ifdef _WIN32
#include <winsock2.h>

#include <wincrypt.h>
#endif

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include "workbench/archive/archive_client.h"
#include "workbench/archive/archive_outcome.h"
#include "workbench/archive/archive_socket.h"
#include "workbench/volumes/message_text.h"

namespace workbench::archive {

namespace {

// ---- the toolkit's bytes over a socket of this program: no signal, no wait, its marks of an end

int Chunk(std::size_t count) {
    return static_cast<int>(std::min<std::size_t>(count, std::numeric_limits<int>::max()));
}

DcmNativeSocketType Socket_Of(BIO* bio) {
    return static_cast<DcmNativeSocketType>(reinterpret_cast<std::intptr_t>(BIO_get_data(bio)));
}

int Socket_Bytes_Write(BIO* bio, const char* bytes, int count) {
    BIO_clear_retry_flags(bio);
    const std::ptrdiff_t went = Socket_Send(Socket_Of(bio), bytes, static_cast<std::size_t>(std::max(count, 0)));
    if (went == 0) {
        BIO_set_retry_write(bio);
    }
    return went > 0 ? static_cast<int>(went) : -1;
}

int Socket_Bytes_Read(BIO* bio, char* bytes, int count) {
    BIO_clear_retry_flags(bio);
    const std::ptrdiff_t came = Socket_Receive(Socket_Of(bio), bytes, static_cast<std::size_t>(std::max(count, 0)));
    if (came == 0) {
        BIO_set_retry_read(bio);
    }
    return came > 0 ? static_cast<int>(came) : -1;
}

long Socket_Control(BIO*, int command, long, void*) {
    return command == BIO_CTRL_FLUSH ? 1 : 0;
}

BIO_METHOD* Socket_Method() {
    static BIO_METHOD* const method = [] {
        BIO_METHOD* made = BIO_meth_new(BIO_get_new_index() | BIO_TYPE_SOURCE_SINK, "socket without waiting");
        if (made != nullptr) {
            BIO_meth_set_write(made, &Socket_Bytes_Write);
            BIO_meth_set_read(made, &Socket_Bytes_Read);
            BIO_meth_set_ctrl(made, &Socket_Control);
        }
        return made;
    }();
    return method;
}

// ---- what is trusted

#ifdef _WIN32
/** The toolkit does not know where this system keeps the certificates that it trusts. */
bool System_Trust(SSL_CTX* context) {
    const HCERTSTORE store = ::CertOpenSystemStoreW(0, L"ROOT");
    if (store == nullptr) {
        return false;
    }
    for (const CERT_CONTEXT* one = nullptr; (one = ::CertEnumCertificatesInStore(store, one)) != nullptr;) {
        const unsigned char* bytes = one->pbCertEncoded;
        if (X509* const certificate = d2i_X509(nullptr, &bytes, static_cast<long>(one->cbCertEncoded))) {
            X509_STORE_add_cert(SSL_CTX_get_cert_store(context), certificate);
            X509_free(certificate);
        }
    }
    ::CertCloseStore(store, 0);
    return true;
}
#else
bool System_Trust(SSL_CTX* context) {
    return SSL_CTX_set_default_verify_paths(context) == 1;
}
#endif

/** What the toolkit says, and forgets. */
std::string Reason() {
    const unsigned long error = ERR_peek_last_error();
    ERR_clear_error();
    const char* const text = error != 0 ? ERR_reason_error_string(error) : nullptr;
    return text != nullptr ? text : "no reason is told";
}

bool Is_Address(const std::string& host) {
    return host.find_first_not_of("0123456789.") == std::string::npos;
}

}  // namespace

bool Can_Encrypt() {
    return true;
}

struct Encrypted_Channel::Toolkit {
    ~Toolkit() {
        SSL_free(connection);
        SSL_CTX_free(context);
    }
    Toolkit() = default;
    Toolkit(const Toolkit&) = delete;
    Toolkit& operator=(const Toolkit&) = delete;

    SSL_CTX* context = nullptr;
    SSL* connection = nullptr;
};

Encrypted_Channel::Encrypted_Channel(const Archive_Settings& settings) : toolkit(std::make_unique<Toolkit>()) {
    const auto demand = [&](bool is_good, const std::string& what) {
        if (!is_good) {
            throw Failure_Of(Archive_Fault::Settings, Archive_Title(settings) + " was not asked: " + what + " (" +
                                                          Reason() + "). Nothing was sent.");
        }
    };
    const auto file_text = [](const std::string& file) {
        return volumes::Printable_Text(file, volumes::FIELD_SHOWN_MOST);
    };
    ERR_clear_error();
    toolkit->context = SSL_CTX_new(TLS_client_method());
    SSL_CTX* const context = toolkit->context;
    demand(context != nullptr && SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION) == 1,
           "encryption cannot be begun");
    SSL_CTX_set_verify(context, SSL_VERIFY_PEER, nullptr);
    SSL_CTX_set_mode(context, SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    if (settings.trusted_file.empty()) {
        demand(System_Trust(context), "the certificates that this computer trusts cannot be read");
    } else {
        demand(SSL_CTX_load_verify_locations(context, settings.trusted_file.c_str(), nullptr) == 1,
               "the file of trusted certificates " + file_text(settings.trusted_file) + " cannot be read");
    }
    if (!settings.own_file.empty()) {
        const char* const file = settings.own_file.c_str();
        demand(SSL_CTX_use_certificate_chain_file(context, file) == 1 &&
                   SSL_CTX_use_PrivateKey_file(context, file, SSL_FILETYPE_PEM) == 1,
               "the file of the own certificate and its key " + file_text(settings.own_file) + " cannot be used");
    }
    toolkit->connection = SSL_new(context);
    SSL* const connection = toolkit->connection;
    BIO* const bytes = Socket_Method() != nullptr ? BIO_new(Socket_Method()) : nullptr;
    const auto name_set = [&] {
        X509_VERIFY_PARAM* const expected = SSL_get0_param(connection);
        return Is_Address(settings.host)
                   ? X509_VERIFY_PARAM_set1_ip_asc(expected, settings.host.c_str()) == 1
                   : X509_VERIFY_PARAM_set1_host(expected, settings.host.c_str(), settings.host.size()) == 1 &&
                         SSL_set_tlsext_host_name(connection, settings.host.c_str()) == 1;
    };
    const bool is_made = connection != nullptr && bytes != nullptr && name_set();
    if (!is_made) {
        BIO_free(bytes);
    }
    demand(is_made, "encryption cannot be begun");
    SSL_set_bio(connection, bytes, bytes);  // takes it over
    SSL_set_connect_state(connection);
}

Encrypted_Channel::~Encrypted_Channel() = default;

void Encrypted_Channel::Attach(DcmNativeSocketType open_socket) {
    BIO* const bytes = SSL_get_rbio(toolkit->connection);
    BIO_set_data(bytes, reinterpret_cast<void*>(static_cast<std::intptr_t>(open_socket)));
    BIO_set_init(bytes, 1);
}

int Encrypted_Channel::Handshake() {
    ERR_clear_error();
    SSL* const connection = toolkit->connection;
    const int result = SSL_do_handshake(connection);
    if (result == 1) {
        return 1;
    }
    const int error = SSL_get_error(connection, result);
    if (error == SSL_ERROR_WANT_READ || error == SSL_ERROR_WANT_WRITE) {
        return 0;
    }
    const long doubted = SSL_get_verify_result(connection);
    if (doubted != X509_V_OK) {
        doubt = std::string(" shows a certificate that is not trusted (") + X509_verify_cert_error_string(doubted) +
                "). Nothing was sent. If it is the right archive, its settings can name the file of the certificate "
                "that signed it.";
    } else if (error == SSL_ERROR_SSL) {
        doubt = " does not agree on encryption (" + Reason() + "). Is the port its encrypted one?";
    } else {
        doubt =
            " ended the connection instead of encrypting it. Is the port its encrypted one, and does it want a "
            "certificate of this program?";
    }
    return -1;
}

std::ptrdiff_t Encrypted_Channel::Receive(void* bytes, std::size_t count) {
    ERR_clear_error();
    const int came = SSL_read(toolkit->connection, bytes, Chunk(count));
    if (came > 0) {
        return came;
    }
    const int error = SSL_get_error(toolkit->connection, came);
    return error == SSL_ERROR_WANT_READ || error == SSL_ERROR_WANT_WRITE ? 0 : -1;
}

std::ptrdiff_t Encrypted_Channel::Send(const void* bytes, std::size_t count) {
    ERR_clear_error();
    const int went = SSL_write(toolkit->connection, bytes, Chunk(count));
    if (went > 0) {
        return went;
    }
    const int error = SSL_get_error(toolkit->connection, went);
    return error == SSL_ERROR_WANT_READ || error == SSL_ERROR_WANT_WRITE ? 0 : -1;
}

bool Encrypted_Channel::Has_More() const {
    return SSL_has_pending(toolkit->connection) != 0;
}

}  // namespace workbench::archive
