// Archives that do wrong, by design or because they are none.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <memory>
#include <random>

#include "dcmtk/dcmdata/dcdatset.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmnet/dcmtrans.h"
#include "tests/workbench/archive/archive_server.h"
#include "tests/workbench/archive/lying_archive.h"
#include "workbench/archive/archive_client.h"
#include "workbench/archive/archive_connection.h"

using namespace workbench::archive;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Talk = Lying_Archive::Talk;

constexpr int GET_SUCCESS = 0x0000;
constexpr int GET_PENDING = 0xFF00;
constexpr int GET_FAILURES = 0xB000;
constexpr int CANNOT_PROCESS = 0xC001;

Series Wanted(int image_count) {
    Series series;
    series.study = "1.2";
    series.identifier = "1.2.3";
    series.image_count = image_count;
    return series;
}

std::size_t Entry_Count(const fs::path& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

/** Files in a folder and below it. */
std::ptrdiff_t File_Count(const fs::path& folder) {
    return std::count_if(fs::recursive_directory_iterator(folder), fs::recursive_directory_iterator(),
                         [](const fs::directory_entry& entry) { return entry.is_regular_file(); });
}

/** What a series ends with that a script gives. */
Retrieve_Result Retrieved(const std::function<void(Talk&)>& script, int promised, const fs::path& cache,
                          const Retrieve_Limits& limits = {}) {
    const Lying_Archive archive(script);
    return Series_Retrieve(archive.Settings(), Wanted(promised), cache, {}, limits);
}

TEST(Lying_Archive_Test, whose_status_is_success_although_an_image_is_missing_is_told) {
    const Temporary_Folder cache;
    const Retrieve_Result result = Retrieved(
        [](Talk& talk) {
            EXPECT_EQ(talk.Store("1.2.3.1"), 0);
            talk.Answer(GET_SUCCESS, nullptr, 2, 0);
        },
        -1, cache.path);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Incomplete);
    EXPECT_THAT(result.outcome.error, HasSubstr("1 of 2 images"));
    EXPECT_EQ(Entry_Count(result.folder), 1U);
}

TEST(Lying_Archive_Test, that_counts_fewer_images_than_came_is_told) {
    const Temporary_Folder cache;
    const Retrieve_Result result = Retrieved(
        [](Talk& talk) {
            talk.Store("1.2.3.1");
            talk.Store("1.2.3.2");
            talk.Answer(GET_SUCCESS, nullptr, 1, 0);
        },
        2, cache.path);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Incomplete);
    EXPECT_THAT(result.outcome.error, HasSubstr("counts 1 images, but 2 came"));
    EXPECT_EQ(result.image_count, 2);
}

TEST(Lying_Archive_Test, that_sends_more_images_than_a_series_has_is_refused) {
    const auto script = [](Talk& talk) {
        for (const std::string end : {"1", "2", "3"}) {
            talk.Store("1.2.3." + end);
        }
        talk.Answer(GET_SUCCESS, nullptr, 3, 0);
    };
    const Temporary_Folder cache;
    const Retrieve_Result result = Retrieved(script, -1, cache.path, {.images = 2});
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Garbled);
    EXPECT_THAT(result.outcome.error, HasSubstr("more than 2 images"));
    EXPECT_EQ(Retrieved(script, -1, cache.path, {.images = 3}).outcome.error, "");
    EXPECT_EQ(Retrieved(script, -1, cache.path, {.bytes = 8192}).outcome.fault, Archive_Fault::Garbled)
        << "small ones take room, too";
}

TEST(Lying_Archive_Test, that_answers_without_end_and_without_images_is_refused) {
    const Temporary_Folder cache;
    const Retrieve_Result result = Retrieved(
        [](Talk& talk) {
            for (int at = 0; at < 7; ++at) {
                talk.Answer(GET_PENDING, nullptr, 0, 0);
            }
            talk.Answer(CANNOT_PROCESS, nullptr, 0, 0);
        },
        -1, cache.path, {.images = 3});
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Garbled) << result.outcome.error;
}

TEST(Lying_Archive_Test, that_counts_failures_beside_success_is_told) {
    const Temporary_Folder cache;
    const Retrieve_Result result = Retrieved(
        [](Talk& talk) {
            talk.Store("1.2.3.1");
            talk.Answer(GET_SUCCESS, nullptr, 1, 1);
        },
        1, cache.path);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Incomplete);
}

TEST(Lying_Archive_Test, whose_last_word_is_no_success_is_told_although_all_images_came) {
    for (const int status : {GET_FAILURES, CANNOT_PROCESS, 0xA702, 0xFE00, 0x0110}) {
        const Temporary_Folder cache;
        const Retrieve_Result result = Retrieved(
            [&](Talk& talk) {
                talk.Store("1.2.3.1");
                talk.Answer(GET_PENDING, nullptr, 1, 0);
                talk.Answer(status, nullptr, 1, 0);
            },
            1, cache.path);
        EXPECT_EQ(result.outcome.fault, Archive_Fault::Incomplete) << status;
    }
}

TEST(Lying_Archive_Test, that_gives_what_it_promised_is_believed) {
    const Temporary_Folder cache;
    const Retrieve_Result result = Retrieved(
        [](Talk& talk) {
            talk.Store("1.2.3.1");
            talk.Answer(GET_PENDING, nullptr, 1, 0);
            talk.Store("1.2.3.2");
            talk.Answer(GET_SUCCESS, nullptr, 2, 0);
        },
        2, cache.path);
    EXPECT_EQ(result.outcome.error, "");
    EXPECT_EQ(result.image_count, 2);
}

TEST(Lying_Archive_Test, that_names_an_image_by_a_path_writes_nowhere) {
    const Temporary_Folder elsewhere;
    for (const std::string& name : {std::string("../../evil"), std::string("../../../evil"), std::string(".."),
                                    (elsewhere.path / "evil").string(), std::string("1.2.3\\evil")}) {
        const Temporary_Folder cache;
        const fs::path root = cache.path / "a" / "b";
        const Retrieve_Result result = Retrieved(
            [&](Talk& talk) {
                talk.Store(name);
                talk.Answer(GET_SUCCESS, nullptr, 1, 0);
            },
            1, root);
        EXPECT_EQ(result.outcome.fault, Archive_Fault::Garbled) << name;
        for (const fs::path& folder : {cache.path, elsewhere.path}) {
            EXPECT_EQ(File_Count(folder), 0) << name;
        }
        EXPECT_EQ(Entry_Count(root), 0U);
    }
}

TEST(Lying_Archive_Test, that_sends_an_image_twice_is_refused) {
    const Temporary_Folder cache;
    const Retrieve_Result result = Retrieved(
        [](Talk& talk) {
            talk.Store("1.2.3.1");
            talk.Store("1.2.3.1");
            talk.Answer(GET_SUCCESS, nullptr, 2, 0);
        },
        2, cache.path);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Garbled);
    EXPECT_EQ(Entry_Count(cache.path), 0U);
}

TEST(Lying_Archive_Test, that_sends_an_image_of_something_else_is_refused) {
    const Stored_Image others[] = {{.series = "1.2.4"}, {.study = "1.3"}, {.identifier = "1.2.3.9"}};
    for (const Stored_Image& other : others) {
        const Temporary_Folder cache;
        const Retrieve_Result result = Retrieved(
            [&](Talk& talk) {
                talk.Store("1.2.3.1", other);
                talk.Answer(GET_SUCCESS, nullptr, 1, 0);
            },
            1, cache.path);
        EXPECT_EQ(result.outcome.fault, Archive_Fault::Garbled);
        EXPECT_THAT(result.outcome.error, HasSubstr("an image of another series"));
        EXPECT_EQ(Entry_Count(cache.path), 0U);
    }
}

/** Bytes of sequences in each other, whose lengths are not told. */
std::vector<unsigned char> Nested(int levels) {
    constexpr std::array<unsigned char, 20> level = {0x08, 0,    0x40, 0x11, 'S', 'Q',  0,    0,    0xFF, 0xFF,
                                                     0xFF, 0xFF, 0xFE, 0xFF, 0,   0xE0, 0xFF, 0xFF, 0xFF, 0xFF};
    std::vector<unsigned char> bytes;
    for (int at = 0; at < levels; ++at) {
        bytes.insert(bytes.end(), level.begin(), level.end());
    }
    return bytes;
}

TEST(Lying_Archive_Test, that_nests_sequences_without_end_is_refused) {
    const Temporary_Folder cache;
    const Retrieve_Result result = Retrieved(
        [](Talk& talk) {
            talk.Answer_Raw(Nested(12000));
            talk.Answer(GET_SUCCESS, nullptr, 0, 0);
        },
        0, cache.path);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Garbled);
    const Lying_Archive archive([](Talk& talk) {
        talk.Answer_Raw(Nested(3000));
        talk.Answer(GET_SUCCESS);
    });
    EXPECT_EQ(Studies_Search(archive.Settings(), {}, {}).outcome.fault, Archive_Fault::Garbled);
}

TEST(Lying_Archive_Test, that_answers_another_question_is_refused) {
    const Temporary_Folder cache;
    const Retrieve_Result result = Retrieved(
        [](Talk& talk) {
            talk.request.msg.CGetRQ.MessageID = 999;
            talk.Answer(GET_SUCCESS, nullptr, 0, 0);
        },
        0, cache.path);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Garbled);
}

TEST(Lying_Archive_Test, that_refuses_a_search_says_why) {
    const Lying_Archive archive([](Talk& talk) { talk.Answer(CANNOT_PROCESS); });
    const Archive_Outcome outcome = Studies_Search(archive.Settings(), {}, {}).outcome;
    EXPECT_EQ(outcome.fault, Archive_Fault::Refused);
    EXPECT_THAT(outcome.error, HasSubstr("it cannot process that (C001)"));
}

TEST(Lying_Archive_Test, that_refuses_the_test_is_not_there) {
    const Lying_Archive archive([](Talk& talk) { talk.Answer(0x0122); });
    EXPECT_EQ(Archive_Test(archive.Settings(), {}).fault, Archive_Fault::Refused);
}

TEST(Lying_Archive_Test, whose_answers_have_no_usable_identifier_are_counted_only) {
    const Lying_Archive archive([](Talk& talk) {
        for (const char* const name : {"../evil", "1.2.3", ""}) {
            DcmDataset answer;
            answer.putAndInsertString(DCM_StudyInstanceUID, name);
            talk.Answer(GET_PENDING, &answer);
        }
        talk.Answer(GET_SUCCESS);
    });
    const Search_Result<Study> result = Studies_Search(archive.Settings(), {}, {});
    EXPECT_EQ(result.outcome.error, "");
    ASSERT_THAT(result.answers, SizeIs(1));
    EXPECT_EQ(result.answers[0].identifier, "1.2.3");
    EXPECT_EQ(result.unusable, 2);
}

TEST(Lying_Archive_Test, that_never_ends_its_answers_is_cut_short) {
    const Lying_Archive archive([](Talk& talk) {
        for (std::size_t at = 0; at < 5 * ANSWER_MOST; ++at) {
            DcmDataset answer;
            answer.putAndInsertString(DCM_StudyInstanceUID, "1.2.3");
            talk.Answer(GET_PENDING, &answer);
        }
    });
    const Search_Result<Study> result = Studies_Search(archive.Settings(), {}, {});
    EXPECT_EQ(result.outcome.error, "");
    EXPECT_TRUE(result.is_cut);
    EXPECT_THAT(result.answers, SizeIs(ANSWER_MOST));
}

TEST(Lying_Archive_Test, whose_answer_is_huge_is_refused) {
    const Lying_Archive archive([](Talk& talk) {
        DcmDataset answer;
        answer.putAndInsertString(DCM_StudyInstanceUID, "1.2.3");
        answer.putAndInsertString(DCM_TextValue, std::string(4U << 20U, 'x').c_str());
        talk.Answer(GET_PENDING, &answer);
    });
    EXPECT_EQ(Studies_Search(archive.Settings(), {}, {}).outcome.fault, Archive_Fault::Garbled);
}

TEST(Lying_Archive_Test, that_refuses_a_file_is_told_with_its_reason) {
    const Temporary_Folder folder;
    const std::vector<fs::path> files = Series_Write(folder.path, {}, 1);
    const Lying_Archive archive([](Talk& talk) { talk.Answer(0xA700); });
    const Send_Result result = Files_Send(archive.Settings(), files, {});
    EXPECT_EQ(result.outcome.error, "");
    EXPECT_EQ(result.refused, 1);
    EXPECT_THAT(result.files[0].remark, HasSubstr("it has no room"));
}

TEST(Lying_Archive_Test, that_takes_a_file_with_a_warning_has_taken_it) {
    const Temporary_Folder folder;
    const std::vector<fs::path> files = Series_Write(folder.path, {}, 1);
    const Lying_Archive archive([](Talk& talk) { talk.Answer(0xB000); });
    const Send_Result result = Files_Send(archive.Settings(), files, {});
    EXPECT_EQ(result.accepted, 1);
    EXPECT_THAT(result.files[0].remark, HasSubstr("with a warning (B000)"));
}

TEST(Watched_Connection, sends_nothing_but_a_goodbye_once_it_was_given_up) {
    int ends[2] = {};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    Connection_Watch watch([](double) { return false; });
    watch.Patience_Set(std::chrono::seconds(5), true);
    Watched_Layer layer(watch);
    const std::unique_ptr<DcmTransportConnection> connection(layer.createConnection(ends[0], OFFalse));
    std::array<char, 1000> bytes{};
    EXPECT_EQ(connection->write(bytes.data(), bytes.size()), -1);
    EXPECT_EQ(watch.End(), Connection_End::Cancelled);
    EXPECT_EQ(::recv(ends[1], bytes.data(), bytes.size(), MSG_DONTWAIT), -1) << "nothing came";
    EXPECT_EQ(connection->write(bytes.data(), 10), 10);
    EXPECT_EQ(::recv(ends[1], bytes.data(), bytes.size(), MSG_DONTWAIT), 10);
    connection->close();
    ::close(ends[1]);
}

/** @return whether all of it went */
bool Put(int socket, const std::vector<unsigned char>& bytes) {
    std::size_t went = 0;
    while (went < bytes.size()) {
        const ssize_t step = ::send(socket, bytes.data() + went, bytes.size() - went, MSG_NOSIGNAL);
        if (step <= 0) {
            return false;
        }
        went += static_cast<std::size_t>(step);
    }
    return true;
}

/** Until the other side goes, bounded. */
void Drain(int socket) {
    timeval patience = {1, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    char bytes[4096];
    while (::recv(socket, bytes, sizeof bytes, 0) > 0) {
    }
}

TEST(Raw_Peer_Test, that_takes_no_second_connection_is_not_reached_soon) {
    // One that nobody takes: the system answers the first connection, and leaves the second one waiting.
    const int listening = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ASSERT_EQ(::bind(listening, reinterpret_cast<const sockaddr*>(&address), size), 0);
    ASSERT_EQ(::getsockname(listening, reinterpret_cast<sockaddr*>(&address), &size), 0);
    ASSERT_EQ(::listen(listening, 0), 0);
    Archive_Settings settings;
    settings.host = "127.0.0.1";
    settings.port = ntohs(address.sin_port);
    settings.called_title = "ANY";
    const auto begin = Clock::now();
    const Archive_Outcome outcome = Archive_Test(settings, {});
    EXPECT_EQ(outcome.fault, Archive_Fault::Not_Reached) << outcome.error;
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(4));
    ::close(listening);
}

TEST(Raw_Peer_Test, that_does_not_know_the_own_title_is_told) {
    const Raw_Peer peer([](int socket) {
        Put(socket, {3, 0, 0, 0, 0, 4, 0, 1, 1, 3});
        Drain(socket);
    });
    const Archive_Outcome outcome = Archive_Test(peer.Settings(), {});
    EXPECT_EQ(outcome.fault, Archive_Fault::Own_Title);
    EXPECT_THAT(outcome.error, HasSubstr("\"WORKBENCH\""));
}

TEST(Raw_Peer_Test, that_is_busy_is_told) {
    const Raw_Peer peer([](int socket) {
        Put(socket, {3, 0, 0, 0, 0, 4, 0, 2, 3, 1});
        Drain(socket);
    });
    EXPECT_THAT(Archive_Test(peer.Settings(), {}).error, HasSubstr("busy"));
}

TEST(Raw_Peer_Test, that_speaks_another_protocol_is_no_archive) {
    const Raw_Peer peer([](int socket) {
        const std::string text = "HTTP/1.1 400 Bad Request\r\nConnection: close\r\n\r\n" + std::string(500, ' ');
        Put(socket, {text.begin(), text.end()});
        Drain(socket);
    });
    EXPECT_EQ(Archive_Test(peer.Settings(), {}).fault, Archive_Fault::Garbled);
}

TEST(Raw_Peer_Test, that_hangs_up_is_lost) {
    const Raw_Peer peer([](int socket) { ::shutdown(socket, SHUT_RDWR); });
    EXPECT_EQ(Archive_Test(peer.Settings(), {}).fault, Archive_Fault::Lost);
}

TEST(Raw_Peer_Test, that_drips_its_answer_is_not_waited_for_beyond_the_time_to_agree) {
    const Raw_Peer peer([](int socket) {
        std::vector<unsigned char> bytes(400, 0);
        bytes[0] = 2;
        bytes[4] = 1;
        bytes[5] = 0x80;
        for (const unsigned char byte : bytes) {
            if (!Put(socket, {byte}) || ::usleep(50000) != 0) {
                return;
            }
        }
    });
    Archive_Settings settings = peer.Settings();
    settings.times.associate = std::chrono::milliseconds(500);
    const auto begin = Clock::now();
    EXPECT_EQ(Archive_Test(settings, {}).fault, Archive_Fault::Silent);
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(4));
}

TEST(Raw_Peer_Test, that_tells_a_huge_length_is_not_believed) {
    for (const int kind : {1, 2, 3, 4, 5, 6, 7, 0x55}) {
        const Raw_Peer peer([&](int socket) {
            Put(socket, {static_cast<unsigned char>(kind), 0, 0xFF, 0xFF, 0xFF, 0xF0});
            Put(socket, std::vector<unsigned char>(300000, 0x41));
            Drain(socket);
        });
        Archive_Settings settings = peer.Settings();
        settings.times.associate = settings.times.silence = std::chrono::milliseconds(300);
        EXPECT_FALSE(Archive_Test(settings, {}).Is_Done()) << kind;
    }
}

TEST(Raw_Peer_Test, whose_bytes_are_chance_ends_with_a_sentence) {
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        std::vector<unsigned char> bytes(random() % 600 + 10);
        for (unsigned char& byte : bytes) {
            byte = static_cast<unsigned char>(random());
        }
        bytes[0] = static_cast<unsigned char>(random() % 9);
        bytes[1] = bytes[2] = bytes[3] = 0;
        bytes[4] = static_cast<unsigned char>((bytes.size() - 6) >> 8U);
        bytes[5] = static_cast<unsigned char>(bytes.size() - 6);
        const Raw_Peer peer([&](int socket) {
            Put(socket, bytes);
            ::shutdown(socket, SHUT_WR);
            Drain(socket);
        });
        Archive_Settings settings = peer.Settings();
        settings.times.associate = settings.times.silence = std::chrono::milliseconds(300);
        const Archive_Outcome outcome = Archive_Test(settings, {});
        EXPECT_FALSE(outcome.Is_Done()) << round;
        EXPECT_NE(outcome.error, "") << round;
    }
}

}  // namespace
