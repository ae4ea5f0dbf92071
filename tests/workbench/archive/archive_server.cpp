#include "tests/workbench/archive/archive_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <random>
#include <thread>
#include <utility>

using namespace workbench::archive;

namespace {

namespace fs = std::filesystem;

constexpr int START_NB = 3;
constexpr const char* PROGRAM = "/usr/sbin/Orthanc";

void Text_Write(const fs::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

}  // namespace

int Free_Port() {
    // Not one that the system chooses: it gives those to every connection that begins meanwhile, too.
    constexpr int first = 20000;
    constexpr int last = 32000;
    constexpr int attempts = 100;
    std::random_device random;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const int port = std::uniform_int_distribution<int>(first, last)(random);
        const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_ANY);
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        const bool is_bound = ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        ::close(socket);
        if (is_bound) {
            return port;
        }
    }
    return 0;
}

bool Archive_Server::Is_Installed() {
    return ::access(PROGRAM, X_OK) == 0;
}

Archive_Server::Archive_Server(Server_Encryption server_encryption) : encryption(std::move(server_encryption)) {
    // Somebody else may take the port before the archive does; it ends then.
    for (int attempt = 0; attempt < START_NB && !is_ready; ++attempt) {
        Kill();
        Start();
    }
}

void Archive_Server::Start() {
    port = Free_Port();
    called_port = Free_Port();
    const std::string place = folder.path.string();
    const auto file = [](const std::string& name) { return "\"" + name + "\""; };
    const std::string secret =
        encryption.certificate.empty()
            ? std::string()
            : ", \"DicomTlsEnabled\": true, \"DicomTlsCertificate\": " + file(encryption.certificate) +
                  ", \"DicomTlsPrivateKey\": " + file(encryption.key) +
                  ", \"DicomTlsTrustedCertificates\": " + file(encryption.trusted) +
                  ", \"DicomTlsRemoteCertificateRequired\": " + (encryption.is_caller_checked ? "true" : "false");
    Text_Write(folder.path / "archive.json",
               "{\"StorageDirectory\": \"" + place + "/images\", \"IndexDirectory\": \"" + place +
                   "/images\", \"Plugins\": [], \"HttpServerEnabled\": false, \"DicomServerEnabled\": true, "
                   "\"DicomAet\": \"" +
                   TITLE + "\", \"DicomCheckCalledAet\": true, \"DicomPort\": " + std::to_string(port) +
                   ", \"DicomAlwaysAllowEcho\": true, \"DicomAlwaysAllowStore\": true, \"DicomAlwaysAllowFind\": true, "
                   "\"DicomAlwaysAllowGet\": true, \"DicomAlwaysAllowMove\": true, \"DicomModalities\": {\"caller\": "
                   "[\"WORKBENCH\", \"127.0.0.1\", " +
                   std::to_string(called_port) + "]}, \"RemoteAccessAllowed\": false, \"DefaultEncoding\": \"Utf8\"" +
                   secret + "}");
    const std::string configuration = place + "/archive.json";
    const pid_t own = ::getpid();
    process = ::fork();
    if (process == 0) {
        if (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || ::getppid() != own) {
            ::_exit(127);
        }
        ::setenv("TCP_NODELAY", "1", 1);
        const int nothing = ::open("/dev/null", O_RDWR);
        ::dup2(nothing, 0);
        ::dup2(nothing, 1);
        ::dup2(nothing, 2);
        ::execl(PROGRAM, PROGRAM, configuration.c_str(), nullptr);
        ::_exit(127);
    }
    for (int attempt = 0; process > 0 && attempt < 300 && !is_ready; ++attempt) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        if (::waitpid(process, nullptr, WNOHANG) != 0) {
            process = 0;  // ended by itself
            return;
        }
        is_ready = Archive_Test(Settings(), {}).Is_Done();
    }
}

Archive_Server::~Archive_Server() {
    Kill();
}

Archive_Settings Archive_Server::Settings() const {
    Archive_Settings settings;
    settings.name = "Test";
    settings.host = "127.0.0.1";
    settings.port = port;
    settings.called_title = TITLE;
    settings.own_port = called_port;
    settings.is_encrypted = !encryption.certificate.empty();
    settings.trusted_file = encryption.caller.trusted_file;
    settings.own_file = encryption.caller.own_file;
    return settings;
}

void Archive_Server::Freeze() const {
    ::kill(process, SIGSTOP);
    // The signal is only sent: on a busy machine it would still answer. The news stay, for the next call.
    siginfo_t news = {};
    ::waitid(P_PID, static_cast<id_t>(process), &news, WSTOPPED | WNOWAIT);
}

void Archive_Server::Go_On() const {
    ::kill(process, SIGCONT);
}

void Archive_Server::Kill() {
    if (process > 0) {
        ::kill(process, SIGKILL);
        ::waitpid(process, nullptr, 0);
        process = 0;
    }
}

Bytes Image_File(const Image_Facts& facts) {
    std::vector<std::uint16_t> values;
    values.reserve(static_cast<std::size_t>(facts.side) * static_cast<std::size_t>(facts.side));
    for (int at = 0; at < facts.side * facts.side; ++at) {
        values.push_back(static_cast<std::uint16_t>(facts.number * 7 + at));
    }
    return Dicom_Bytes()
        .Text(TAG_KIND, "UI", "1.2.840.10008.5.1.4.1.1.4")
        .Text(0x00080005, "CS", facts.character_set)
        .Text(TAG_INSTANCE, "UI", facts.series + "." + std::to_string(facts.number))
        .Text(0x00080020, "DA", facts.date)
        .Text(TAG_MODALITY, "CS", facts.modality)
        .Text(0x00081030, "LO", facts.study_text)
        .Text(TAG_SERIES_TEXT, "LO", "Sagittal")
        .Text(0x00100010, "PN", facts.patient_name)
        .Text(0x00100020, "LO", facts.patient_id)
        .Text(TAG_STUDY, "UI", facts.study)
        .Text(TAG_SERIES, "UI", facts.series)
        .Text(TAG_SERIES_NUMBER, "IS", "3")
        .Text(TAG_INSTANCE_NUMBER, "IS", std::to_string(facts.number))
        .Place(0, 0, facts.number)
        .Pixels_16(values, facts.side, facts.side)
        .File();
}

std::vector<fs::path> Series_Write(const fs::path& folder, Image_Facts facts, int count) {
    std::vector<fs::path> files;
    fs::create_directories(folder);
    for (facts.number = 1; facts.number <= count; ++facts.number) {
        const Bytes bytes = Image_File(facts);
        files.push_back(folder / (facts.series + "." + std::to_string(facts.number)));
        Text_Write(files.back(), {bytes.begin(), bytes.end()});
    }
    return files;
}
