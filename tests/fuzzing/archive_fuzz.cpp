// libFuzzer: any bytes as what an archive says, on a connection of the loopback address, to every operation that asks
// one; and as what a caller says who brings images. Each ends, within the limits, and leaves no file but images.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "workbench/archive/archive_association.h"
#include "workbench/archive/archive_client.h"
#include "workbench/archive/archive_intake.h"

using namespace workbench::archive;

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

constexpr int OPERATION_NB = 4;
constexpr std::size_t INPUT_MOST = 64U * 1024U;

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void Append(Bytes& bytes, const std::string& text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

Bytes Item(std::uint8_t kind, const Bytes& content) {
    Bytes item = {kind, 0, static_cast<std::uint8_t>(content.size() >> 8U), static_cast<std::uint8_t>(content.size())};
    item.insert(item.end(), content.begin(), content.end());
    return item;
}

Bytes Text_Item(std::uint8_t kind, const std::string& text) {
    return Item(kind, {text.begin(), text.end()});
}

Bytes Joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

/** The beginning of every conversation, whole: what follows it is the input's. */
Bytes Beginning(bool is_caller) {
    constexpr std::uint8_t request = 1;
    constexpr std::uint8_t acceptance = 2;
    const std::string explicit_form = "1.2.840.10008.1.2.1";
    Bytes content = {0, 1, 0, 0};
    Append(content, "WORKBENCH       FUZZ            " + std::string(32, '\0'));
    const auto append = [&](const Bytes& item) { content.insert(content.end(), item.begin(), item.end()); };
    append(Text_Item(0x10, "1.2.840.10008.3.1.1.1"));
    for (std::uint8_t context = 1; context < 8; context += 2) {
        const Bytes head = {context, 0, 0, 0};
        const Bytes form = Text_Item(0x40, explicit_form);
        append(is_caller ? Item(0x20, Joined({head, Text_Item(0x30, "1.2.840.10008.5.1.4.1.1.2"), form}))
                         : Item(0x21, Joined({head, form})));
    }
    append(Item(0x50, Joined({Item(0x51, {0, 1, 0, 0}), Text_Item(0x52, "1.2.3")})));
    const std::size_t size = content.size();
    Bytes whole = {is_caller ? request : acceptance, 0, 0, 0, static_cast<std::uint8_t>(size >> 8U),
                   static_cast<std::uint8_t>(size)};
    whole.insert(whole.end(), content.begin(), content.end());
    return whole;
}

sockaddr_in Loopback(int port) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

void Say(int socket, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t went = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (went <= 0) {
            return;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(went));
    }
}

/** Says what it has to say, no more, and hears until the other side goes. */
void Talk(int socket, std::span<const std::uint8_t> bytes) {
    Say(socket, bytes);
    ::shutdown(socket, SHUT_WR);
    const timeval patience = {1, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    std::uint8_t heard[4096];
    while (::recv(socket, heard, sizeof heard, 0) > 0) {
    }
}

/** Listens as an archive does. */
class Peer {
  public:
    Peer() : listening(::socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address = Loopback(0);
        socklen_t size = sizeof address;
        Require(::bind(listening, reinterpret_cast<const sockaddr*>(&address), size) == 0 &&
                ::getsockname(listening, reinterpret_cast<sockaddr*>(&address), &size) == 0 &&
                ::listen(listening, 8) == 0);
        port = ntohs(address.sin_port);
    }
    int Port() const { return port; }
    /** Answers the connections of one operation: one that only looks whether somebody is there, and one that asks. */
    void Serve(std::span<const std::uint8_t> bytes) const {
        for (int connection = 0; connection < 2; ++connection) {
            fd_set set;
            FD_ZERO(&set);
            FD_SET(listening, &set);
            timeval patience = {2, 0};
            if (::select(listening + 1, &set, nullptr, nullptr, &patience) <= 0) {
                return;
            }
            const int socket = ::accept(listening, nullptr, nullptr);
            char first = 0;
            if (::recv(socket, &first, 1, MSG_PEEK) == 1) {
                Talk(socket, bytes);
            }
            ::close(socket);
        }
    }

  private:
    int listening;
    int port = 0;
};

Archive_Settings Settings_At(int port) {
    Archive_Settings settings;
    settings.host = "127.0.0.1";
    settings.port = port;
    settings.called_title = "FUZZ";
    settings.times = {std::chrono::seconds(20), std::chrono::seconds(20), std::chrono::seconds(20)};
    return settings;
}

void Asked(int operation, std::span<const std::uint8_t> bytes, const fs::path& folder) {
    static const Peer peer;
    std::thread answering([&] { peer.Serve(bytes); });
    const Archive_Settings settings = Settings_At(peer.Port());
    Archive_Outcome outcome;
    if (operation == 0) {
        outcome = Archive_Test(settings, {});
    } else if (operation == 1) {
        const Search_Result<Study> found = Studies_Search(settings, {}, {});
        Require(found.answers.size() <= ANSWER_MOST);
        outcome = found.outcome;
    } else {
        const Series series = {.identifier = "1.2.3", .study = "1.2", .number = {}, .modality = {}, .description = {}};
        const Retrieve_Result result = Series_Retrieve(settings, series, folder, {}, {.bytes = 1U << 20U, .images = 4});
        Require(result.image_count <= 4 && (result.folder.empty() || result.image_count > 0));
        outcome = result.outcome;
    }
    answering.join();
    Require(outcome.Is_Done() == outcome.error.empty() && outcome.fault != Archive_Fault::Silent);
}

/** A port of its own for each: the toolkit listens there. */
void Called(std::span<const std::uint8_t> bytes, const fs::path& folder) {
    Archive_Settings settings = Settings_At(1);
    settings.is_moved = true;
    Network_Prepare();
    static T_ASC_Network* const network = [] {
        T_ASC_Network* made = nullptr;
        Require(ASC_initializeNetwork(NET_ACCEPTOR, 0, 2, &made).good());
        return made;
    }();
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    Require(::getsockname(DUL_networkSocket(network->network), reinterpret_cast<sockaddr*>(&address), &size) == 0);
    const int port = ntohs(address.sin_port);
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    address = Loopback(port);
    Require(::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0);
    std::thread calling([&] { Talk(socket, bytes); });
    const Series series = {.identifier = "1.2.3", .study = "1.2", .number = {}, .modality = {}, .description = {}};
    fs::create_directories(folder);
    Series_Intake intake(settings, series, folder, {.bytes = 1U << 20U, .images = 4});
    try {
        Connection_Watch watch({});
        Archive_Association caller(settings, watch, *network, Stored_Proposals());
        while (const std::optional<Archive_Message> message = caller.Receive_Or_End()) {
            intake.Take(caller, *message);
        }
    } catch (const Archive_Failure& failure) {
        Require(failure.outcome.fault != Archive_Fault::Silent);
    }
    Require(intake.Count() <= 4);
    calling.join();
    ::close(socket);
}

}  // namespace

/** A whole object, under its own identifier. */
bool Is_Image(const fs::path& path) {
    DcmFileFormat file;
    OFString identifier;
    return path.extension() == ".dcm" && file.loadFile(path.c_str()).good() &&
           file.getDataset()->findAndGetOFString(DCM_SOPInstanceUID, identifier).good() &&
           path.stem().string() == identifier.c_str();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2 || size > INPUT_MOST) {
        return 0;
    }
    static const fs::path root = fs::temp_directory_path() / ("kit_archive_fuzz_" + std::to_string(::getpid()));
    const int operation = data[0] % OPERATION_NB;
    const bool is_called = operation == OPERATION_NB - 1;
    Bytes bytes = data[1] % 4 != 0 ? Beginning(is_called) : Bytes();
    bytes.insert(bytes.end(), data + 2, data + size);
    if (is_called) {
        Called(bytes, root);
    } else {
        Asked(operation, bytes, root);
    }
    std::error_code error;
    if (fs::exists(root, error)) {
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
            Require(!entry.is_regular_file() || Is_Image(entry.path()));
        }
        fs::remove_all(root, error);
    }
    return 0;
}
