// Archives that are spoken to by TLS: whom the program trusts, and what it says when it does not.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "tests/workbench/archive/archive_server.h"
#include "workbench/archive/archive_client.h"

using namespace workbench::archive;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

/** Certificates of two authorities, made once: the one that the archive's are signed with, and another one. */
class Certificates {
  public:
    Certificates() {
        is_made = Authority("authority") && Authority("stranger") && Signed("archive", "IP:127.0.0.1") &&
                  Signed("elsewhere", "DNS:elsewhere.example") && Signed("caller", "DNS:caller.example") &&
                  Run("cat caller.pem caller.key > caller_both.pem");
    }
    std::string File(const std::string& name) const { return (folder.path / name).string(); }
    bool is_made = false;

  private:
    bool Run(const std::string& command) const {
        return std::system(("cd '" + folder.path.string() + "' && (" + command + ") >/dev/null 2>&1").c_str()) == 0;
    }
    bool Authority(const std::string& name) const {
        return Run("openssl req -x509 -newkey rsa:2048 -nodes -keyout " + name + ".key -out " + name +
                   ".pem -days 2 -subj /CN=" + name);
    }
    bool Signed(const std::string& name, const std::string& place) const {
        std::ofstream(folder.path / (name + ".txt")) << "subjectAltName=" << place << '\n';
        return Run("openssl req -newkey rsa:2048 -nodes -keyout " + name + ".key -out " + name +
                   ".csr -subj /CN=" + name) &&
               Run("openssl x509 -req -in " + name +
                   ".csr -CA authority.pem -CAkey authority.key -CAcreateserial -out " + name +
                   ".pem -days 2 -extfile " + name + ".txt");
    }
    Temporary_Folder folder;
};

class Archive_By_Tls : public testing::Test {
  public:
    static void SetUpTestSuite() { certificates = new Certificates; }
    static void TearDownTestSuite() {
        delete certificates;
        certificates = nullptr;
    }
    void SetUp() override {
        ASSERT_TRUE(certificates->is_made) << "openssl makes no certificates";
        if (!Archive_Server::Is_Installed()) {
            GTEST_SKIP() << "not run: orthanc is missing";
        }
    }

  protected:
    static std::string File(const std::string& name) { return certificates->File(name); }
    static Server_Encryption Encryption() {
        Server_Encryption made;
        made.certificate = File("archive.pem");
        made.key = File("archive.key");
        made.trusted = File("authority.pem");
        made.caller.trusted_file = File("authority.pem");
        return made;
    }
    /** @return what is said; empty: it went well */
    static std::string Said(const Archive_Settings& settings, Archive_Fault fault = Archive_Fault::Encryption) {
        const Archive_Outcome outcome = Archive_Test(settings, {});
        EXPECT_EQ(outcome.fault, fault) << outcome.error;
        return outcome.error;
    }
    static inline Certificates* certificates = nullptr;
};

TEST_F(Archive_By_Tls, keeps_sends_and_gives_images) {
    const Archive_Server server(Encryption());
    ASSERT_TRUE(server.Is_Ready());
    const Temporary_Folder source;
    const Temporary_Folder cache;
    Image_Facts facts;
    facts.side = 300;  // so that an image takes more than one piece
    const auto files = Series_Write(source.path, facts, 5);
    EXPECT_EQ(Files_Send(server.Settings(), files, {}).accepted, 5);
    Series series;
    series.study = facts.study;
    series.identifier = facts.series;
    series.image_count = 5;
    const Retrieve_Result got = Series_Retrieve(server.Settings(), series, cache.path, {});
    EXPECT_EQ(got.outcome.error, "");
    std::size_t file_nb = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(got.folder)) {
        file_nb += entry.is_regular_file() && entry.file_size() > 300 * 300 * 2 ? 1 : 0;
    }
    EXPECT_EQ(file_nb, 5U);
}

TEST_F(Archive_By_Tls, is_not_spoken_to_when_a_stranger_signed_its_certificate) {
    const Archive_Server server(Encryption());
    ASSERT_TRUE(server.Is_Ready());
    Archive_Settings settings = server.Settings();
    settings.trusted_file = File("stranger.pem");
    EXPECT_THAT(Said(settings), HasSubstr("shows a certificate that is not trusted ("));
    settings.trusted_file.clear();  // this computer knows none of them
    EXPECT_THAT(Said(settings), HasSubstr("shows a certificate that is not trusted ("));
}

TEST_F(Archive_By_Tls, is_not_spoken_to_when_the_certificate_is_of_another_computer) {
    Server_Encryption encryption = Encryption();
    const Archive_Server right(encryption);
    ASSERT_TRUE(right.Is_Ready());
    Archive_Settings settings = right.Settings();
    settings.host = "localhost";  // the certificate names the address
    EXPECT_THAT(Said(settings), HasSubstr("ostname mismatch"));
}

TEST_F(Archive_By_Tls, an_archive_that_knows_its_callers_wants_the_own_certificate) {
    Server_Encryption encryption = Encryption();
    encryption.is_caller_checked = true;
    encryption.caller.own_file = File("caller_both.pem");
    const Archive_Server server(encryption);
    ASSERT_TRUE(server.Is_Ready());
    Archive_Settings settings = server.Settings();
    settings.own_file.clear();
    EXPECT_NE(Archive_Test(settings, {}).error, "");
    EXPECT_EQ(Said(server.Settings(), Archive_Fault::None), "");
}

TEST_F(Archive_By_Tls, and_one_without_do_not_understand_each_other) {
    const Archive_Server plain;
    ASSERT_TRUE(plain.Is_Ready());
    Archive_Settings settings = plain.Settings();
    settings.is_encrypted = true;
    settings.trusted_file = File("authority.pem");
    settings.times.associate = std::chrono::seconds(2);
    const Archive_Outcome outcome = Archive_Test(settings, {});
    EXPECT_FALSE(outcome.Is_Done());
    EXPECT_THAT(outcome.error, HasSubstr("Test"));

    const Archive_Server encrypted(Encryption());
    ASSERT_TRUE(encrypted.Is_Ready());
    settings = encrypted.Settings();
    settings.is_encrypted = false;
    settings.times.associate = std::chrono::seconds(2);
    EXPECT_FALSE(Archive_Test(settings, {}).Is_Done());
}

TEST_F(Archive_By_Tls, that_stands_still_is_given_up_in_time_and_on_demand) {
    const Archive_Server server(Encryption());
    ASSERT_TRUE(server.Is_Ready());
    server.Freeze();
    Archive_Settings settings = server.Settings();
    settings.times.associate = std::chrono::milliseconds(500);
    EXPECT_THAT(Said(settings, Archive_Fault::Silent), HasSubstr("silent"));
    const auto begin = std::chrono::steady_clock::now();
    settings.times.associate = std::chrono::seconds(30);
    const Archive_Outcome outcome = Archive_Test(
        settings, [&](double) { return std::chrono::steady_clock::now() - begin < std::chrono::milliseconds(200); });
    EXPECT_EQ(outcome.fault, Archive_Fault::Cancelled);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    server.Go_On();
    EXPECT_EQ(Said(server.Settings(), Archive_Fault::None), "");
}

TEST_F(Archive_By_Tls, is_not_asked_when_the_files_of_certificates_cannot_be_used) {
    Archive_Settings settings;
    settings.host = "127.0.0.1";
    settings.port = Free_Port();
    settings.called_title = "ARCHIVE";
    settings.is_encrypted = true;
    settings.trusted_file = File("missing.pem");
    EXPECT_THAT(Said(settings, Archive_Fault::Settings), HasSubstr("missing.pem cannot be read"));
    settings.trusted_file = File("authority.pem");
    settings.own_file = File("authority.pem");  // it has no key
    EXPECT_THAT(Said(settings, Archive_Fault::Settings), HasSubstr("authority.pem cannot be used"));
}

}  // namespace
