// What archives are asked, with one that a test starts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "dcmtk/dcmdata/dcpixel.h"
#include "dcmtk/dcmdata/dcpixseq.h"
#include "dcmtk/dcmdata/dcpxitem.h"
#include "tests/workbench/archive/own_archive.h"
#include "workbench/archive/anonymous_object.h"
#include "workbench/archive/archive_cache.h"
#include "workbench/archive/archive_client.h"
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/file_operations.h"
#include "workbench/volumes/image_folder.h"

using namespace workbench::archive;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int SERIES_SIZE = 3;

std::string File_Text(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<fs::path> Files_In(const fs::path& folder) {
    std::vector<fs::path> files;
    std::error_code code;
    for (const auto& entry : fs::directory_iterator(folder, code)) {
        files.push_back(entry.path());
    }
    std::ranges::sort(files);
    return files;
}

/** Pixels and names of a file, to compare. */
std::string Content_Of(const fs::path& file) {
    const std::string bytes = File_Text(file);
    DcmFileFormat read;
    volumes::Data_Set_Source source;
    try {
        volumes::Data_Set_Read({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, 1U << 20U, read,
                               source);
    } catch (const volumes::Dicom_Refusal& refusal) {
        return refusal.text;
    }
    const Uint16* pixels = nullptr;
    unsigned long count = 0;
    read.getDataset()->findAndGetUint16Array(DCM_PixelData, pixels, &count);
    std::string content = volumes::Field_Utf8(*read.getDataset(), DCM_PatientName) + "|" +
                          volumes::Field_Text(*read.getDataset(), DCM_SOPInstanceUID) + "|";
    for (unsigned long at = 0; at < count; ++at) {
        content += std::to_string(pixels[at]) + " ";
    }
    return content;
}

/** One archive for all tests that leave it as it is: two patients. */
class Archive_Client : public testing::Test {
  public:
    static void SetUpTestSuite() {
        if (!Archive_Server::Is_Installed()) {
            return;
        }
        server.emplace();
        source.emplace();
        Image_Facts jane;
        Image_Facts other;
        other.patient_name = "Müller^Jörg";
        other.patient_id = "P2";
        other.date = "20230101";
        other.study = "1.2.3.2";
        other.study_text = "Thorax";
        other.series = "1.2.3.2.1";
        other.modality = "CT";
        stored = Series_Write(source->path / "jane", jane, SERIES_SIZE);
        const auto more = Series_Write(source->path / "other", other, 2);
        stored.insert(stored.end(), more.begin(), more.end());
        sent = Files_Send(server->Settings(), stored, {});
    }
    static void TearDownTestSuite() {
        server.reset();
        source.reset();
    }
    void SetUp() override {
        if (!server) {
            GTEST_SKIP() << "not run: orthanc is missing";
        }
        ASSERT_TRUE(server->Is_Ready());
        ASSERT_EQ(sent.outcome.error, "");
    }

  protected:
    static Series Janes() {
        Series series;
        series.study = "1.2.3.1";
        series.identifier = "1.2.3.1.1";
        series.image_count = SERIES_SIZE;
        return series;
    }
    static std::vector<std::string> Names(const Study_Query& query) {
        const Search_Result<Study> result = Studies_Search(server->Settings(), query, {});
        std::vector<std::string> names{result.outcome.error};
        for (const Study& study : result.answers) {
            names.push_back(study.patient_name);
        }
        return names;
    }

    static inline std::optional<Archive_Server> server;
    static inline std::optional<Temporary_Folder> source;
    static inline std::vector<fs::path> stored;
    static inline Send_Result sent;
    Temporary_Folder cache;
};

TEST_F(Archive_Client, is_told_that_the_archive_is_there_and_what_it_does) {
    Archive_Abilities abilities;
    EXPECT_EQ(Archive_Test(server->Settings(), {}, &abilities).error, "");
    EXPECT_TRUE(abilities.is_searched);
    EXPECT_TRUE(abilities.is_fetched_from);
}

TEST_F(Archive_Client, stores_every_file_and_says_so) {
    EXPECT_EQ(sent.accepted, SERIES_SIZE + 2);
    EXPECT_EQ(sent.refused, 0);
    EXPECT_THAT(sent.files, SizeIs(SERIES_SIZE + 2));
}

TEST_F(Archive_Client, finds_all_studies_the_latest_first_in_their_own_letters) {
    EXPECT_THAT(Names({}), ElementsAre("", "Doe Jane", "Müller Jörg"));
}

TEST_F(Archive_Client, finds_by_every_field) {
    EXPECT_THAT(Names({.patient_name = "doe"}), ElementsAre("", "Doe Jane"));
    EXPECT_THAT(Names({.patient_name = "Mül"}), ElementsAre("", "Müller Jörg"));
    EXPECT_THAT(Names({.patient_id = "P2"}), ElementsAre("", "Müller Jörg"));
    EXPECT_THAT(Names({.date_from = "20240101"}), ElementsAre("", "Doe Jane"));
    EXPECT_THAT(Names({.date_to = "20231231"}), ElementsAre("", "Müller Jörg"));
    EXPECT_THAT(Names({.modality = "CT"}), ElementsAre("", "Müller Jörg"));
    EXPECT_THAT(Names({.description = "rout"}), ElementsAre("", "Doe Jane"));
    EXPECT_THAT(Names({.patient_name = "nobody"}), ElementsAre(""));
}

TEST_F(Archive_Client, says_what_is_wrong_with_a_query_without_asking) {
    Archive_Settings nowhere;
    EXPECT_EQ(Studies_Search(nowhere, {.date_from = "31.1.2024"}, {}).outcome.fault, Archive_Fault::Settings);
    EXPECT_THAT(Query_Doubt({.date_from = "20240102", .date_to = "20240101"}), HasSubstr("before"));
    EXPECT_EQ(Query_Doubt({.patient_name = "Doe", .date_from = "20240101", .date_to = "20240101"}), "");
}

TEST_F(Archive_Client, knows_of_a_study_and_its_series_what_the_archive_knows) {
    const Search_Result<Study> studies = Studies_Search(server->Settings(), {.patient_id = "P1"}, {});
    ASSERT_THAT(studies.answers, SizeIs(1));
    const Study& study = studies.answers[0];
    EXPECT_EQ(study.identifier, "1.2.3.1");
    EXPECT_EQ(study.date, "2024-01-31");
    EXPECT_EQ(study.description, "Head routine");
    EXPECT_EQ(study.modalities, "MR");
    EXPECT_EQ(study.series_count, 1);
    EXPECT_EQ(study.image_count, SERIES_SIZE);
    const Search_Result<Series> series = Series_Search(server->Settings(), study.identifier, {});
    EXPECT_EQ(series.outcome.error, "");
    ASSERT_THAT(series.answers, SizeIs(1));
    EXPECT_EQ(series.answers[0].identifier, "1.2.3.1.1");
    EXPECT_EQ(series.answers[0].study, "1.2.3.1");
    EXPECT_EQ(series.answers[0].number, "3");
    EXPECT_EQ(series.answers[0].modality, "MR");
    EXPECT_EQ(series.answers[0].description, "Sagittal");
    EXPECT_EQ(series.answers[0].image_count, SERIES_SIZE);
}

TEST_F(Archive_Client, fetches_a_series_as_it_was_stored_and_it_opens) {
    double last = 0;
    bool is_falling = false;
    const Retrieve_Result result = Series_Retrieve(server->Settings(), Janes(), cache.path, [&](double done) {
        is_falling = is_falling || done < last;
        last = done;
        return true;
    });
    ASSERT_EQ(result.outcome.error, "");
    EXPECT_FALSE(is_falling);
    EXPECT_EQ(result.image_count, SERIES_SIZE);
    const std::vector<fs::path> files = Files_In(result.folder);
    ASSERT_THAT(files, SizeIs(SERIES_SIZE));
    for (int at = 0; at < SERIES_SIZE; ++at) {
        EXPECT_EQ(files[at].filename(), "1.2.3.1.1." + std::to_string(at + 1) + ".dcm");
        EXPECT_EQ(Content_Of(files[at]), Content_Of(stored[at]));
    }
    EXPECT_THAT(Files_In(cache.path), ElementsAre(result.folder));
}

TEST_F(Archive_Client, fetches_a_series_again_beside_the_first_one) {
    const Retrieve_Result first = Series_Retrieve(server->Settings(), Janes(), cache.path, {});
    const Retrieve_Result second = Series_Retrieve(server->Settings(), Janes(), cache.path, {});
    EXPECT_EQ(second.outcome.error, "");
    EXPECT_NE(first.folder, second.folder);
    EXPECT_THAT(Files_In(first.folder), SizeIs(SERIES_SIZE));
    EXPECT_THAT(Files_In(second.folder), SizeIs(SERIES_SIZE));
}

TEST_F(Archive_Client, tells_fewer_images_than_were_promised_and_keeps_what_came) {
    Series promised = Janes();
    promised.image_count = SERIES_SIZE + 2;
    const Retrieve_Result result = Series_Retrieve(server->Settings(), promised, cache.path, {});
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Incomplete);
    EXPECT_THAT(result.outcome.error, HasSubstr("3 of 5 images"));
    EXPECT_THAT(Files_In(result.folder), SizeIs(SERIES_SIZE));
}

TEST_F(Archive_Client, tells_a_series_that_is_not_there) {
    Series unknown = Janes();
    unknown.identifier = "9.9.9";
    unknown.image_count = -1;
    const Retrieve_Result result = Series_Retrieve(server->Settings(), unknown, cache.path, {});
    EXPECT_FALSE(result.outcome.Is_Done());
    EXPECT_TRUE(result.folder.empty());
    EXPECT_THAT(Files_In(cache.path), IsEmpty());
}

TEST_F(Archive_Client, takes_no_more_bytes_than_it_was_allowed) {
    const Retrieve_Result result = Series_Retrieve(server->Settings(), Janes(), cache.path, {}, {.bytes = 500});
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Garbled);
    EXPECT_THAT(result.outcome.error, HasSubstr("more than"));
    EXPECT_THAT(Files_In(cache.path), IsEmpty());
}

TEST_F(Archive_Client, tells_a_full_disk_and_leaves_nothing_behind) {
    const volumes::File_Operations before = volumes::File_Operations_In_Use();
    volumes::File_Operations_In_Use().write = [](int, const std::uint8_t*, std::size_t) -> long long {
        errno = ENOSPC;
        return -1;
    };
    const Retrieve_Result result = Series_Retrieve(server->Settings(), Janes(), cache.path, {});
    volumes::File_Operations_In_Use() = before;
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Disk);
    EXPECT_THAT(result.outcome.error, HasSubstr("No space left"));
    EXPECT_THAT(Files_In(cache.path), IsEmpty());
}

TEST_F(Archive_Client, tells_a_folder_that_cannot_be_made) {
    const fs::path file = cache.path / "file";
    std::ofstream(file) << "x";
    const Retrieve_Result result = Series_Retrieve(server->Settings(), Janes(), file / "below", {});
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Disk);
}

TEST_F(Archive_Client, refuses_to_send_what_is_no_image_and_goes_on) {
    const fs::path text = cache.path / "notes.txt";
    std::ofstream(text) << "nothing of DICOM";
    const std::vector<fs::path> files = {text, stored[0], cache.path / "missing.dcm"};
    const Send_Result result = Files_Send(server->Settings(), files, {});
    EXPECT_EQ(result.outcome.error, "");
    EXPECT_EQ(result.accepted, 1);
    EXPECT_EQ(result.refused, 2);
    EXPECT_FALSE(result.files[0].is_accepted);
    EXPECT_THAT(result.files[0].remark, HasSubstr("notes.txt"));
    EXPECT_TRUE(result.files[1].is_accepted);
}

TEST_F(Archive_Client, sends_images_without_who_the_patient_is) {
    Temporary_Folder folder;
    Image_Facts facts;
    facts.patient_name = "Roe^Richard";
    facts.patient_id = "P3";
    facts.study = "1.2.3.3";
    facts.series = "1.2.3.3.1";
    const auto files = Series_Write(folder.path / "r", facts, 2);
    const std::string before = File_Text(files[0]);
    const Send_Wishes wishes = {.is_anonymous = true, .is_picture_trusted = false, .secret = std::string(64, '5')};
    const Send_Result result = Files_Send(server->Settings(), files, {}, wishes);
    EXPECT_EQ(result.outcome.error, "");
    EXPECT_EQ(result.accepted, 2);
    EXPECT_EQ(File_Text(files[0]), before) << "the file on the disk stays";
    const Anonymiser anonymiser(wishes.secret);
    Study_Query query;
    query.patient_id = "P3";
    EXPECT_THAT(Names(query), ElementsAre(""));
    query.patient_id = anonymiser.Patient_Name("P3");
    const Search_Result<Study> found = Studies_Search(server->Settings(), query, {});
    ASSERT_THAT(found.answers, SizeIs(1));
    EXPECT_EQ(found.answers[0].identifier, anonymiser.Identifier("1.2.3.3"));
    EXPECT_EQ(found.answers[0].patient_name, anonymiser.Patient_Name("P3"));
    EXPECT_EQ(found.answers[0].description, "");
    Series series;
    series.study = found.answers[0].identifier;
    series.identifier = anonymiser.Identifier("1.2.3.3.1");
    series.image_count = 2;
    const Retrieve_Result back = Series_Retrieve(server->Settings(), series, cache.path, {});
    ASSERT_EQ(back.outcome.error, "");
    const std::vector<fs::path> came = Files_In(back.folder);
    ASSERT_THAT(came, SizeIs(2));
    std::vector<std::string> pixels;
    for (const fs::path& file : {files[0], came[0], came[1]}) {
        const std::string content = Content_Of(file);
        pixels.push_back(content.substr(content.rfind('|')));
    }
    EXPECT_TRUE(pixels[0] == pixels[1] || pixels[0] == pixels[2]);
    for (const fs::path& file : came) {
        EXPECT_THAT(File_Text(file), testing::Not(testing::AnyOf(HasSubstr("Roe"), HasSubstr("1.2.3.3"))));
    }
}

TEST_F(Archive_Client, holds_back_pictures_that_may_show_who_the_patient_is) {
    Temporary_Folder folder;
    Image_Facts facts;
    facts.patient_id = "P4";
    facts.study = "1.2.3.4";
    facts.series = "1.2.3.4.1";
    facts.modality = "US";
    const auto files = Series_Write(folder.path / "u", facts, 1);
    Send_Wishes wishes = {.is_anonymous = true, .is_picture_trusted = false, .secret = std::string(64, '5')};
    Send_Result result = Files_Send(server->Settings(), files, {}, wishes);
    EXPECT_EQ(result.accepted + result.refused, 0);
    ASSERT_EQ(result.held, 1);
    EXPECT_EQ(result.files[0].remark, "they are ultrasound");
    Study_Query query;
    query.patient_id = Anonymiser(wishes.secret).Patient_Name("P4");
    EXPECT_THAT(Studies_Search(server->Settings(), query, {}).answers, IsEmpty());
    wishes.is_picture_trusted = true;
    result = Files_Send(server->Settings(), files, {}, wishes);
    EXPECT_EQ(result.accepted, 1);
    EXPECT_THAT(Studies_Search(server->Settings(), query, {}).answers, SizeIs(1));
}

TEST_F(Archive_Client, sends_no_picture_anonymously_whose_comments_cannot_be_found_whoever_trusts_it) {
    Temporary_Folder folder;
    const auto files = Series_Write(folder.path / "c", {}, 1);
    DcmFileFormat image;
    ASSERT_TRUE(image.loadFile(files[0].c_str()).good());
    auto* const sequence = new DcmPixelSequence(DcmTag(DCM_PixelData, EVR_OB));
    for (const std::vector<Uint8>& bytes : {std::vector<Uint8>{}, std::vector<Uint8>{'D', 'o', 'e', ' '}}) {
        auto* const item = new DcmPixelItem(DcmTag(DCM_PixelItemTag, EVR_OB));
        ASSERT_TRUE(item->putUint8Array(bytes.data(), bytes.size()).good());
        ASSERT_TRUE(sequence->insert(item).good());
    }
    auto* const pixels = new DcmPixelData(DcmTag(DCM_PixelData, EVR_OB));
    pixels->putOriginalRepresentation(EXS_JPEGProcess1, nullptr, sequence);
    ASSERT_TRUE(image.getDataset()->insert(pixels, true).good());
    ASSERT_TRUE(image.saveFile(files[0].c_str(), EXS_JPEGProcess1).good());
    const Send_Wishes wishes = {.is_anonymous = true, .is_picture_trusted = true, .secret = std::string(64, '5')};
    const Send_Result result = Files_Send(server->Settings(), files, {}, wishes);
    EXPECT_EQ(result.accepted + result.held, 0);
    ASSERT_EQ(result.refused, 1);
    EXPECT_THAT(result.files[0].remark, HasSubstr("does not go anonymously: its compressed pictures cannot be looked"));
}

TEST_F(Archive_Client, sends_nothing_anonymously_without_a_secret) {
    Send_Wishes wishes;
    wishes.is_anonymous = true;
    const Send_Result result = Files_Send(server->Settings(), stored, {}, wishes);
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Settings);
    EXPECT_THAT(result.files, IsEmpty());
}

TEST_F(Archive_Client, tells_a_wrong_title) {
    Archive_Settings wrong = server->Settings();
    wrong.called_title = "OTHER";
    const Archive_Outcome outcome = Archive_Test(wrong, {});
    EXPECT_EQ(outcome.fault, Archive_Fault::Called_Title);
    EXPECT_THAT(outcome.error, HasSubstr("\"OTHER\""));
}

TEST_F(Archive_Client, leaves_no_descriptor_open) {
    const auto count = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()); };
    ASSERT_TRUE(Archive_Test(server->Settings(), {}).Is_Done());
    const auto before = count();
    for (int at = 0; at < 30; ++at) {
        EXPECT_TRUE(Archive_Test(server->Settings(), {}).Is_Done());
        Series_Retrieve(server->Settings(), Janes(), cache.path, [&](double done) { return done < 0.5; });
    }
    EXPECT_EQ(count(), before);
}

/** Archives that end or stop meanwhile: each test has its own. */
class Failing_Archive : public Own_Archive {
  public:
    void SetUp() override {
        Own_Archive::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        Image_Facts facts;
        facts.side = 256;  // so that the series does not come in one piece
        const std::vector<fs::path> files = Series_Write(source.path, facts, IMAGE_COUNT);
        ASSERT_EQ(Files_Send(server->Settings(), files, {}).accepted, IMAGE_COUNT);
        settings = server->Settings();
        settings.times.associate = settings.times.silence = std::chrono::milliseconds(600);
        series.study = facts.study;
        series.identifier = facts.series;
        series.image_count = IMAGE_COUNT;
    }

  protected:
    static constexpr int IMAGE_COUNT = 20;
    Archive_Settings settings;
    Series series;
};

TEST_F(Failing_Archive, that_is_frozen_before_it_answers_is_silent) {
    server->Freeze();
    const auto begin = Clock::now();
    const Archive_Outcome outcome = Studies_Search(settings, {}, {}).outcome;
    EXPECT_EQ(outcome.fault, Archive_Fault::Silent);
    EXPECT_THAT(outcome.error, HasSubstr("silent for 0.6 seconds"));
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(5));
    server->Go_On();
    EXPECT_TRUE(Archive_Test(server->Settings(), {}).Is_Done());
}

TEST_F(Failing_Archive, that_is_frozen_while_it_gives_a_series_is_silent_and_nothing_is_left) {
    const Retrieve_Result result = Series_Retrieve(settings, series, cache.path, [&](double done) {
        if (done > 0) {
            server->Freeze();
        }
        return true;
    });
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Silent) << result.outcome.error;
    EXPECT_TRUE(result.folder.empty());
    EXPECT_THAT(Files_In(cache.path), IsEmpty());
}

TEST_F(Failing_Archive, that_is_killed_while_it_gives_a_series_is_lost_and_nothing_is_left) {
    const Retrieve_Result result = Series_Retrieve(settings, series, cache.path, [&](double done) {
        if (done > 0) {
            server->Kill();
        }
        return true;
    });
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Lost) << result.outcome.error;
    EXPECT_THAT(Files_In(cache.path), IsEmpty());
}

TEST_F(Failing_Archive, that_is_killed_while_it_takes_files_is_lost_and_those_before_are_told) {
    const std::vector<fs::path> files = Files_In(source.path);
    const Send_Result result = Files_Send(settings, files, [&](double done) {
        if (done >= 0.5) {
            server->Kill();
        }
        return true;
    });
    EXPECT_TRUE(result.outcome.fault == Archive_Fault::Lost || result.outcome.fault == Archive_Fault::Nothing_Listens)
        << result.outcome.error;
    EXPECT_GE(result.accepted, IMAGE_COUNT / 2 - 1);
    EXPECT_LT(result.accepted, IMAGE_COUNT);
}

TEST_F(Failing_Archive, is_given_up_at_once_while_it_is_silent) {
    settings.times.associate = settings.times.silence = std::chrono::seconds(60);
    server->Freeze();
    const auto begin = Clock::now();
    const Archive_Outcome outcome = Series_Retrieve(settings, series, cache.path, [&](double) {
                                        return Clock::now() - begin < std::chrono::milliseconds(300);
                                    }).outcome;
    EXPECT_EQ(outcome.fault, Archive_Fault::Cancelled);
    EXPECT_LT(Clock::now() - begin, std::chrono::milliseconds(1300));
}

TEST_F(Failing_Archive, is_given_up_at_once_while_it_gives_a_series) {
    settings.times.silence = std::chrono::seconds(60);
    std::optional<Clock::time_point> given_up;
    const Retrieve_Result result = Series_Retrieve(settings, series, cache.path, [&](double done) {
        if (done > 0 && !given_up) {
            server->Freeze();
            given_up = Clock::now();
        }
        return !given_up;
    });
    EXPECT_EQ(result.outcome.fault, Archive_Fault::Cancelled);
    ASSERT_TRUE(given_up);
    EXPECT_LT(Clock::now() - *given_up, std::chrono::milliseconds(1000));
    EXPECT_THAT(Files_In(cache.path), IsEmpty());
}

TEST(Archive_Address, at_which_nothing_listens_is_told) {
    Archive_Settings settings;
    settings.host = "127.0.0.1";
    settings.port = Free_Port();
    settings.called_title = "ANY";
    const Archive_Outcome outcome = Archive_Test(settings, {});
    EXPECT_EQ(outcome.fault, Archive_Fault::Nothing_Listens);
    EXPECT_THAT(outcome.error, HasSubstr("nothing listens"));
}

TEST(Archive_Address, to_which_there_is_no_way_is_told) {
    Archive_Settings settings;
    settings.host = "255.255.255.255";  // of all, so of nobody
    settings.port = 104;
    settings.called_title = "ANY";
    const Archive_Outcome outcome = Archive_Test(settings, {});
    EXPECT_EQ(outcome.fault, Archive_Fault::Not_Reached);
    EXPECT_THAT(outcome.error, HasSubstr("no way to it"));
}

TEST(Archive_Address, that_does_not_exist_is_told) {
    Archive_Settings settings;
    settings.host = "no-such-host.invalid";
    settings.called_title = "ANY";
    EXPECT_EQ(Archive_Test(settings, {}).fault, Archive_Fault::Unknown_Host);
}

TEST(Archive_Address, and_titles_are_checked) {
    EXPECT_TRUE(Is_Title("A"));
    EXPECT_TRUE(Is_Title("SIXTEEN LETTERS."));
    EXPECT_FALSE(Is_Title("SEVENTEEN LETTERS"));
    EXPECT_FALSE(Is_Title(""));
    EXPECT_FALSE(Is_Title("  "));
    EXPECT_FALSE(Is_Title("A\\B"));
    EXPECT_FALSE(Is_Title("Ä"));
    Archive_Settings settings{.host = "pacs", .port = 104, .called_title = "A"};
    EXPECT_EQ(Settings_Doubt(settings), "");
    settings.port = 65536;
    EXPECT_THAT(Settings_Doubt(settings), HasSubstr("port"));
    settings = {.host = "a b", .port = 104, .called_title = "A"};
    EXPECT_THAT(Settings_Doubt(settings), HasSubstr("address"));
    settings = {.host = "pacs:104", .port = 104, .called_title = "A"};
    EXPECT_THAT(Settings_Doubt(settings), HasSubstr("address"));
}

TEST(Archive_Identifier, is_numbers_between_dots_and_nothing_else) {
    EXPECT_TRUE(Is_Identifier("1.2.840.10008"));
    EXPECT_TRUE(Is_Identifier(std::string(64, '1')));
    EXPECT_FALSE(Is_Identifier(std::string(65, '1')));
    EXPECT_FALSE(Is_Identifier(""));
    EXPECT_FALSE(Is_Identifier(".."));
    EXPECT_FALSE(Is_Identifier(".1"));
    EXPECT_FALSE(Is_Identifier("1."));
    EXPECT_FALSE(Is_Identifier("1..2"));
    EXPECT_FALSE(Is_Identifier("../1"));
    EXPECT_FALSE(Is_Identifier("1/2"));
    EXPECT_FALSE(Is_Identifier("1.2\\3"));
    EXPECT_FALSE(Is_Identifier("1.2a"));
}

/** A series in the cache. @param age hours */
fs::path Cached(const fs::path& root, const std::string& name, std::size_t bytes, int age) {
    fs::path folder = root / name;
    fs::create_directories(folder);
    std::ofstream(folder / "1.2.dcm") << std::string(bytes, 'x');
    fs::last_write_time(folder, fs::file_time_type::clock::now() - std::chrono::hours(age));
    return folder;
}

TEST(Archive_Cache, removes_the_oldest_series_until_there_is_room) {
    const Temporary_Folder root;
    const fs::path oldest = Cached(root.path, "1.1", 1000, 30);
    const fs::path middle = Cached(root.path, "1.2-2", 1000, 20);
    const fs::path latest = Cached(root.path, "1.3", 1000, 1);
    EXPECT_EQ(Cache_Trim(root.path, 2500, {}), 2000U);
    EXPECT_THAT(Files_In(root.path), ElementsAre(middle, latest));
    EXPECT_EQ(Cache_Trim(root.path, 0, std::vector<fs::path>{middle}), 1000U);
    EXPECT_THAT(Files_In(root.path), ElementsAre(middle));
}

TEST(Archive_Cache, leaves_alone_what_is_not_its_own) {
    const Temporary_Folder root;
    const fs::path other = Cached(root.path, "holiday", 1000, 500);
    const fs::path elsewhere = Cached(root.path, "elsewhere", 1000, 500);
    fs::create_directory_symlink(elsewhere, root.path / "1.9");
    std::ofstream(root.path / "1.8") << "a file";
    Cache_Trim(root.path, 0, {});
    EXPECT_TRUE(fs::exists(other / "1.2.dcm"));
    EXPECT_TRUE(fs::exists(elsewhere / "1.2.dcm"));
    EXPECT_TRUE(fs::exists(root.path / "1.8"));
}

TEST(Archive_Cache, leaves_alone_what_somebody_has_saved_beside_the_images) {
    const Temporary_Folder root;
    const fs::path worked_on = Cached(root.path, "1.1", 1000, 500);
    std::ofstream(worked_on / "head_labels.nii.gz") << "work";
    fs::last_write_time(worked_on, fs::file_time_type::clock::now() - std::chrono::hours(500));
    Cache_Trim(root.path, 0, {});
    EXPECT_THAT(Files_In(root.path), ElementsAre(worked_on));
    EXPECT_TRUE(fs::exists(worked_on / "1.2.dcm")) << "what the labels lie on";
}

TEST(Archive_Cache, knows_a_folder_in_use_by_another_name) {
    const Temporary_Folder root;
    const fs::path used = Cached(root.path, "1.1", 1000, 500);
    Cache_Trim(root.path, 0, std::vector<fs::path>{root.path / "nothing" / ".." / "1.1", used / "." / "."});
    EXPECT_TRUE(fs::exists(used));
    Cache_Trim(root.path, 0, std::vector<fs::path>{fs::relative(used)});
    EXPECT_TRUE(fs::exists(used));
    Cache_Trim(root.path, 0, {});
    EXPECT_FALSE(fs::exists(used));
}

TEST(Archive_Cache, removes_what_a_killed_program_left_behind_a_day_ago) {
    const Temporary_Folder root;
    const fs::path old = Cached(root.path, "1.1.fetching-77", 10, 25);
    const fs::path fresh = Cached(root.path, "1.1.fetching-78", 10, 1);
    Cache_Trim(root.path, 1000, {});
    EXPECT_FALSE(fs::exists(old));
    EXPECT_TRUE(fs::exists(fresh));
}

}  // namespace
