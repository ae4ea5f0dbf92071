// Images that an archive brings over a connection of its own (C-MOVE), of a real one and of some that do wrong.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "tests/workbench/archive/lying_archive.h"
#include "tests/workbench/archive/own_archive.h"
#include "workbench/archive/archive_association.h"
#include "workbench/archive/archive_client.h"
#include "workbench/archive/archive_intake.h"

using namespace workbench::archive;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Talk = Lying_Archive::Talk;

constexpr int SUCCESS = 0x0000;

std::vector<fs::path> Files_Below(const fs::path& folder) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    std::ranges::sort(files);
    return files;
}

std::string File_Text(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

Series Wanted(int image_count) {
    Series series;
    series.study = "1.2";
    series.identifier = "1.2.3";
    series.image_count = image_count;
    return series;
}

/** The connection that an archive makes to who asked it. */
class Caller {
  public:
    Caller(int port, const char* own_title, const char* called_title) {
        ASC_initializeNetwork(NET_REQUESTOR, 0, 5, &network);
        T_ASC_Parameters* parameters = nullptr;
        ASC_createAssociationParameters(&parameters, ASC_DEFAULTMAXPDU);
        ASC_setAPTitles(parameters, own_title, called_title, nullptr);
        ASC_setPresentationAddresses(parameters, "localhost", ("127.0.0.1:" + std::to_string(port)).c_str());
        const char* syntaxes[] = {UID_JPEGProcess1TransferSyntax, UID_LittleEndianExplicitTransferSyntax};
        ASC_addPresentationContext(parameters, 1, UID_MRImageStorage, syntaxes, 2);
        is_taken = ASC_requestAssociation(network, parameters, &association).good();
    }
    ~Caller() {
        if (is_taken && !has_hung_up) {
            ASC_releaseAssociation(association);
        }
        if (association != nullptr) {
            ASC_destroyAssociation(&association);
        }
        ASC_dropNetwork(&network);
    }
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    bool Is_Taken() const { return is_taken; }
    /** How images are to be written that are sent. */
    std::string Syntax() const {
        T_ASC_PresentationContext context = {};
        return ASC_findAcceptedPresentationContext(association->params, 1, &context).good()
                   ? context.acceptedTransferSyntax
                   : "";
    }
    int Store(const std::string& identifier, const Stored_Image& image = {}) {
        Talk talk = {association, 0, {}};
        return talk.Store(identifier, image);
    }
    /** Announces an image and goes. */
    void Hang_Up_Within(const std::string& identifier) {
        T_DIMSE_Message message = {};
        message.CommandField = DIMSE_C_STORE_RQ;
        message.msg.CStoreRQ.MessageID = 5;
        message.msg.CStoreRQ.DataSetType = DIMSE_DATASET_PRESENT;
        OFStandard::strlcpy(message.msg.CStoreRQ.AffectedSOPClassUID, UID_MRImageStorage, 65);
        OFStandard::strlcpy(message.msg.CStoreRQ.AffectedSOPInstanceUID, identifier.c_str(), 65);
        DIMSE_sendMessageUsingMemoryData(association, 1, &message, nullptr, nullptr, nullptr, nullptr);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        ASC_abortAssociation(association);
        has_hung_up = true;
    }

  private:
    T_ASC_Network* network = nullptr;
    T_ASC_Association* association = nullptr;
    bool is_taken = false;
    bool has_hung_up = false;
};

/** A connection to a port of this machine, from an address of it. */
class Bare_Caller {
  public:
    Bare_Caller(int port, const char* own_address) : socket(::socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        ::inet_pton(AF_INET, own_address, &address.sin_addr);
        is_there = ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        ::inet_pton(AF_INET, "127.0.0.1", &address.sin_addr);
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        is_there = is_there && ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }
    ~Bare_Caller() { ::close(socket); }
    Bare_Caller(const Bare_Caller&) = delete;
    Bare_Caller& operator=(const Bare_Caller&) = delete;

    bool Is_There() const { return is_there; }
    /** Whether the other side hangs up, within a second, before it heard a word. */
    bool Is_Hung_Up_On() const {
        const timeval patience = {1, 0};
        ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        char letter = 0;
        return ::recv(socket, &letter, 1, 0) == 0;
    }

  private:
    int socket;
    bool is_there = false;
};

/** Asks a lying archive for images by C-MOVE. */
class Moved_Images : public testing::Test {
  protected:
    Retrieve_Result Retrieved(const std::function<void(Talk&)>& script, int promised,
                              const volumes::Load_Progress& progress = {}) {
        const Lying_Archive archive(script);
        Archive_Settings settings = archive.Settings();
        settings.is_moved = true;
        settings.own_port = own_port;
        settings.times.silence = silence;
        settings.other_callers = other_callers;
        return Series_Retrieve(settings, Wanted(promised), cache.path, progress);
    }

    int own_port = Free_Port();
    std::chrono::milliseconds silence{2000};
    std::string other_callers;
    Temporary_Folder cache;
};

}  // namespace

TEST_F(Moved_Images, come_over_a_connection_that_the_archive_makes) {
    std::string destination;
    const Retrieve_Result result = Retrieved(
        [&](Talk& talk) {
            destination = talk.request.msg.CMoveRQ.MoveDestination;
            {
                Caller caller(own_port, "LIAR", "WORKBENCH");
                EXPECT_EQ(caller.Syntax(), UID_LittleEndianExplicitTransferSyntax)
                    << "nothing lossy where it need not be";
                EXPECT_EQ(caller.Store("1.2.3.1"), SUCCESS);
            }
            Caller again(own_port, "LIAR", "WORKBENCH");
            EXPECT_EQ(again.Store("1.2.3.2"), SUCCESS);
            talk.Answer(SUCCESS, nullptr, 2, 0);
        },
        2);
    EXPECT_EQ(result.outcome.error, "");
    EXPECT_EQ(result.image_count, 2);
    EXPECT_EQ(destination, "WORKBENCH");
    EXPECT_THAT(Files_Below(result.folder), SizeIs(2));
    EXPECT_FALSE(Caller(own_port, "LIAR", "WORKBENCH").Is_Taken()) << "nothing listens any more";
}

TEST_F(Moved_Images, are_taken_from_nobody_else) {
    const Retrieve_Result result = Retrieved(
        [&](Talk& talk) {
            EXPECT_FALSE(Caller(own_port, "STRANGER", "WORKBENCH").Is_Taken());
            EXPECT_FALSE(Caller(own_port, "LIAR", "SOMEBODY").Is_Taken());
            talk.Answer(SUCCESS, nullptr, 1, 0);
        },
        1);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Incomplete);
    EXPECT_THAT(Files_Below(cache.path), IsEmpty());
}

TEST_F(Moved_Images, come_after_somebody_else_was_refused) {
    const Retrieve_Result result = Retrieved(
        [&](Talk& talk) {
            EXPECT_FALSE(Caller(own_port, "STRANGER", "WORKBENCH").Is_Taken());
            EXPECT_FALSE(Caller(own_port, "LIAR", "SOMEBODY").Is_Taken());
            EXPECT_EQ(Caller(own_port, "LIAR", "WORKBENCH").Store("1.2.3.1"), SUCCESS);
            talk.Answer(SUCCESS, nullptr, 1, 0);
        },
        1);
    EXPECT_EQ(result.outcome.error, "");
    EXPECT_EQ(result.image_count, 1);
}

TEST_F(Moved_Images, come_from_the_address_of_the_archive_only) {
    const auto script = [&](Talk& talk) {
        const Bare_Caller stranger(own_port, "127.0.0.2");
        EXPECT_TRUE(stranger.Is_There());
        EXPECT_EQ(stranger.Is_Hung_Up_On(), other_callers.empty());
        talk.Answer(SUCCESS, nullptr, 1, 0);
    };
    const Retrieve_Result result = Retrieved(script, 1);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Incomplete);
    EXPECT_THAT(result.outcome.error, HasSubstr("127.0.0.2 was refused"));
    const Retrieve_Result failed = Retrieved(
        [&](Talk& talk) {
            const Bare_Caller stranger(own_port, "127.0.0.2");
            EXPECT_TRUE(stranger.Is_Hung_Up_On());
            talk.Answer(0xA702, nullptr, 0, 1);  // as archives say that could not connect
        },
        1);
    EXPECT_EQ(failed.outcome.fault, Archive_Fault::Refused);
    EXPECT_THAT(failed.outcome.error, HasSubstr("127.0.0.2 was refused"));
    other_callers = "10.1.2.3 127.0.0.2";
    const Retrieve_Result allowed = Retrieved(script, 1);
    EXPECT_THAT(allowed.outcome.error, Not(HasSubstr("was refused")));
}

TEST_F(Moved_Images, are_not_waited_for_where_a_caller_has_gone_before_it_is_taken) {
    T_ASC_Network* listening = nullptr;
    ASSERT_TRUE(ASC_initializeNetwork(NET_ACCEPTOR, own_port, 5, &listening).good());
    Archive_Settings settings;
    settings.times.associate = std::chrono::milliseconds(500);
    std::future<bool> end = std::async(std::launch::async, [&] {
        Connection_Watch watch({});
        try {
            const Archive_Association none(settings, watch, *listening, Stored_Proposals());
            return false;
        } catch (const Archive_Failure&) {
            return true;
        }
    });
    EXPECT_EQ(end.wait_for(std::chrono::seconds(2)), std::future_status::ready);
    { const Bare_Caller caller(own_port, "127.0.0.1"); }  // ends the wait where there is one
    EXPECT_TRUE(end.get());
    ASC_dropNetwork(&listening);
}

TEST_F(Moved_Images, that_come_again_after_a_lost_connection_count_once) {
    const Retrieve_Result result = Retrieved(
        [&](Talk& talk) {
            {
                Caller caller(own_port, "LIAR", "WORKBENCH");
                EXPECT_EQ(caller.Store("1.2.3.1"), SUCCESS);
                EXPECT_EQ(caller.Store("1.2.3.2"), SUCCESS);
                caller.Hang_Up_Within("1.2.3.3");
            }
            Caller again(own_port, "LIAR", "WORKBENCH");
            EXPECT_EQ(again.Store("1.2.3.2"), SUCCESS) << "it cannot know that it had come";
            EXPECT_EQ(again.Store("1.2.3.3"), SUCCESS);
            talk.Answer(SUCCESS, nullptr, 3, 0);
        },
        3);
    EXPECT_EQ(result.outcome.error, "");
    EXPECT_EQ(result.image_count, 3);
    EXPECT_THAT(Files_Below(result.folder), SizeIs(3));
}

TEST_F(Moved_Images, that_come_again_with_other_content_end_it) {
    for (const char* const other : {"Roe", "Doe, who is longer", ""}) {
        const Retrieve_Result result = Retrieved(
            [&](Talk& talk) {
                Caller caller(own_port, "LIAR", "WORKBENCH");
                EXPECT_EQ(caller.Store("1.2.3.1"), SUCCESS);
                caller.Store("1.2.3.1", {.identifier = {}, .patient = other});
                std::this_thread::sleep_for(std::chrono::milliseconds(200));
                talk.Answer(SUCCESS, nullptr, 1, 0);
            },
            1);
        EXPECT_EQ(result.outcome.fault, Archive_Fault::Garbled) << other;
        EXPECT_THAT(result.outcome.error, HasSubstr("twice"));
        EXPECT_THAT(Files_Below(cache.path), IsEmpty());
    }
}

TEST_F(Moved_Images, that_are_fewer_than_the_archive_counts_are_told) {
    const Retrieve_Result result = Retrieved(
        [&](Talk& talk) {
            Caller(own_port, "LIAR", "WORKBENCH").Store("1.2.3.1");
            talk.Answer(SUCCESS, nullptr, 3, 0);
        },
        -1);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Incomplete);
    EXPECT_THAT(result.outcome.error, HasSubstr("1 of 3 images"));
    EXPECT_EQ(result.image_count, 1);
}

TEST_F(Moved_Images, of_another_series_end_it_and_leave_nothing) {
    const Retrieve_Result result = Retrieved(
        [&](Talk& talk) {
            Caller caller(own_port, "LIAR", "WORKBENCH");
            caller.Store("1.2.3.1");
            caller.Store("1.2.3.2", {.study = "1.2", .series = "1.2.4", .identifier = {}});
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            talk.Answer(SUCCESS, nullptr, 2, 0);
        },
        2);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Garbled);
    EXPECT_THAT(result.outcome.error, HasSubstr("of another series"));
    EXPECT_THAT(Files_Below(cache.path), IsEmpty());
}

TEST_F(Moved_Images, leave_no_half_file_where_the_caller_hangs_up) {
    const Retrieve_Result result = Retrieved(
        [&](Talk& talk) {
            Caller caller(own_port, "LIAR", "WORKBENCH");
            caller.Store("1.2.3.1");
            caller.Hang_Up_Within("1.2.3.2");
            talk.Answer(SUCCESS, nullptr, 2, 0);
        },
        2);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Incomplete);
    ASSERT_THAT(Files_Below(cache.path), SizeIs(1));
    EXPECT_EQ(Files_Below(cache.path)[0].filename(), "1.2.3.1.dcm");
}

TEST_F(Moved_Images, come_although_others_speak_nonsense_to_the_port) {
    const Retrieve_Result result = Retrieved(
        [&](Talk& talk) {
            const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
            sockaddr_in address = {};
            address.sin_family = AF_INET;
            address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            address.sin_port = htons(static_cast<std::uint16_t>(own_port));
            EXPECT_EQ(::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
            const std::string nonsense = "GET / HTTP/1.1\r\nHost: somebody\r\n\r\n";
            EXPECT_EQ(::send(socket, nonsense.data(), nonsense.size(), 0), static_cast<ssize_t>(nonsense.size()));
            ::close(socket);
            EXPECT_EQ(Caller(own_port, "LIAR", "WORKBENCH").Store("1.2.3.1"), SUCCESS);
            talk.Answer(SUCCESS, nullptr, 1, 0);
        },
        1);
    EXPECT_EQ(result.outcome.error, "");
}

TEST_F(Moved_Images, keep_a_silent_archive_waited_for) {
    silence = std::chrono::milliseconds(500);
    const Retrieve_Result result = Retrieved(
        [&](Talk& talk) {
            Caller caller(own_port, "LIAR", "WORKBENCH");
            for (int image = 1; image <= 5; ++image) {
                std::this_thread::sleep_for(std::chrono::milliseconds(250));
                EXPECT_EQ(caller.Store("1.2.3." + std::to_string(image)), SUCCESS);
            }
            talk.Answer(SUCCESS, nullptr, 5, 0);
        },
        5);
    EXPECT_EQ(result.outcome.error, "");
}

TEST_F(Moved_Images, that_never_come_are_not_waited_for_beyond_the_silence) {
    silence = std::chrono::milliseconds(300);
    const Retrieve_Result result =
        Retrieved([](Talk&) { std::this_thread::sleep_for(std::chrono::milliseconds(900)); }, 5);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Silent);
    EXPECT_THAT(Files_Below(cache.path), IsEmpty());
}

TEST_F(Moved_Images, are_given_up_at_once) {
    const Clock::time_point until = Clock::now() + std::chrono::milliseconds(400);
    Clock::time_point asked;
    const Retrieve_Result result =
        Retrieved([](Talk&) { std::this_thread::sleep_for(std::chrono::milliseconds(1200)); }, 5,
                  [&](double) {
                      asked = asked == Clock::time_point() && Clock::now() >= until ? Clock::now() : asked;
                      return Clock::now() < until;
                  });
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Cancelled);
    EXPECT_THAT(Files_Below(cache.path), IsEmpty());
}

TEST_F(Moved_Images, that_are_given_up_are_called_off) {
    int called_off = -1;
    int asked = -1;
    std::atomic<bool> is_to_end = false;
    const Retrieve_Result result = Retrieved(
        [&](Talk& talk) {
            asked = talk.request.msg.CMoveRQ.MessageID;
            is_to_end = true;
            T_ASC_PresentationContextID context = 0;
            T_DIMSE_Message message = {};
            if (DIMSE_receiveCommand(talk.association, DIMSE_NONBLOCKING, 5, &context, &message, nullptr).good() &&
                message.CommandField == DIMSE_C_CANCEL_RQ) {
                called_off = message.msg.CCancelRQ.MessageIDBeingRespondedTo;
                talk.Answer(0xFE00, nullptr, 0, 0);
            }
        },
        5, [&](double) { return !is_to_end; });
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Cancelled);
    EXPECT_EQ(called_off, asked);
    EXPECT_THAT(Files_Below(cache.path), IsEmpty());
}

TEST_F(Moved_Images, need_a_port_that_nobody_has) {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(own_port));
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(socket, 1), 0);
    const Retrieve_Result result = Retrieved([](Talk&) {}, 1);
    ::close(socket);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Settings);
    EXPECT_THAT(result.outcome.error, HasSubstr("port " + std::to_string(own_port)));
}

using Archive_That_Moves = Own_Archive;

TEST_F(Archive_That_Moves, brings_the_same_files_as_one_that_is_fetched_from) {
    const Image_Facts facts;
    const auto files = Series_Write(source.path, facts, 4);
    ASSERT_EQ(Files_Send(server->Settings(), files, {}).accepted, 4);
    Series series;
    series.study = facts.study;
    series.identifier = facts.series;
    series.image_count = 4;
    const Retrieve_Result fetched = Series_Retrieve(server->Settings(), series, cache.path, {});
    ASSERT_EQ(fetched.outcome.error, "");
    Archive_Settings settings = server->Settings();
    settings.is_moved = true;
    Archive_Abilities abilities;
    EXPECT_EQ(Archive_Test(settings, {}, &abilities).error, "");
    EXPECT_TRUE(abilities.is_fetched_from);
    double done = 0;
    const Retrieve_Result moved = Series_Retrieve(settings, series, cache.path, [&](double now) {
        done = std::max(done, now);
        return true;
    });
    ASSERT_EQ(moved.outcome.error, "");
    const std::vector<fs::path> one = Files_Below(fetched.folder);
    const std::vector<fs::path> other = Files_Below(moved.folder);
    ASSERT_THAT(one, SizeIs(4));
    ASSERT_EQ(other.size(), one.size());
    for (std::size_t at = 0; at < one.size(); ++at) {
        EXPECT_EQ(one[at].filename(), other[at].filename());
        EXPECT_EQ(File_Text(one[at]), File_Text(other[at]));
    }
    settings.own_title = "NOBODY";
    const Retrieve_Result unknown = Series_Retrieve(settings, series, cache.path, {});
    EXPECT_FALSE(unknown.outcome.Is_Done());
    EXPECT_EQ(unknown.image_count, 0);
}
