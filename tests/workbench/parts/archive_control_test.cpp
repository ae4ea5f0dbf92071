#include "workbench/parts/archive_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tests/workbench/dialogs_double.h"
#include "workbench/archive/secret_hash.h"
#include "workbench/volumes/volume.h"

using namespace workbench;
using archive::Archive_Fault;
using archive::Archive_Settings;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

Archive_Settings Radiology() {
    return {.name = "Radiology",
            .host = "pacs.example",
            .port = 11112,
            .called_title = "PACS",
            .own_title = "ME",
            .times = {},
            .other_callers = {},
            .trusted_file = {},
            .own_file = {}};
}

/** What is entered into a form, by the number of a field; and the button. */
struct Filled_Form {
    std::vector<std::pair<std::size_t, std::string>> entered;
    int way = 0;
};

class Archive_Use : public testing::Test {
  public:
    Archive_Use() {
        archive::Study study;
        study.identifier = "1.2";
        study.patient_name = "Doe Jane";
        study.date = "2024-01-31";
        study.modalities = "MR";
        study.series_count = 1;
        study.image_count = 3;
        studies.answers = {study};
        archive::Series one;
        one.identifier = "1.2.3";
        one.study = "1.2";
        one.modality = "MR";
        one.description = "Sagittal";
        one.image_count = 3;
        series.answers = {one};
        fetched.folder = "/cache/1.2.3";
        fetched.image_count = 3;
        sent.accepted = 1;
        sent.files = {{"/cache/x.dcm", true, false, ""}};
    }

  protected:
    void Volume_Take() {
        volumes::Volume volume;
        volume.nx = volume.ny = volume.nz = volume.nt = 1;
        volume.levels = volumes::Voxel_Levels::Of_Range(1, 0, 0, false);
        work.session.Take(std::move(volume), "a.dcm");
    }

    Archive_Host Host() {
        return {[this] { return lines; },
                [this](const std::vector<std::string>& kept) { lines = kept; },
                [this] { return cache; },
                [this](std::span<const std::filesystem::path> folders) {
                    for (const std::filesystem::path& folder : folders) {
                        opened.push_back(folder.generic_string());
                    }
                },
                [this] { return image_files; },
                [this] { return wishes; },
                [this](const archive::Send_Wishes& kept) {
                    wishes = kept;
                    ++wishes_kept;
                    return are_wishes_kept;
                },
                [this](const std::filesystem::path& file) {
                    written.push_back(file.filename().string());
                    return write_error;
                },
                [this](const std::string& title, const std::string& text, std::vector<Form_Field>& fields,
                       const std::vector<std::string>&) {
                    form_titles.push_back(title);
                    form_text = text;
                    if (forms.empty()) {
                        return -1;
                    }
                    for (const auto& [number, value] : forms.front().entered) {
                        fields[number].value = value;
                    }
                    const int way = forms.front().way;
                    forms.pop_front();
                    return way;
                },
                [this](const std::string&, const std::string& label, const std::vector<std::string>& shown,
                       const std::string&) {
                    series_label = label;
                    series_shown = shown;
                    return series_marked;
                }};
    }
    Archive_Operations Operations() {
        return {
            [this](const Archive_Settings&, const volumes::Load_Progress&, archive::Archive_Abilities* abilities) {
                *abilities = {true, false};
                return tested;
            },
            [this](const Archive_Settings& asked, const archive::Study_Query& query, const volumes::Load_Progress&) {
                asked_of = asked.name;
                queries.push_back(query);
                return studies;
            },
            [this](const Archive_Settings&, const std::string&, const volumes::Load_Progress&) { return series; },
            [this](const Archive_Settings&, const archive::Series& wanted, const std::filesystem::path&,
                   const volumes::Load_Progress&) {
                fetched_series.push_back(wanted.identifier);
                const auto own = fetched_of.find(wanted.identifier);
                return own == fetched_of.end() ? fetched : own->second;
            },
            [this](const Archive_Settings& to, std::span<const std::filesystem::path> files,
                   const volumes::Load_Progress&, const archive::Send_Wishes& how) {
                asked_of = to.name;
                sent_wishes.push_back(how);
                sent_files.emplace_back(files.begin(), files.end());
                if (sent_later && sent_wishes.size() > 1) {
                    return *sent_later;
                }
                return sent;
            },
            true};
    }

    std::vector<std::string> lines = {archive::Archive_Line(Radiology())};
    std::filesystem::path cache = std::filesystem::temp_directory_path() / "archive_use_test";
    std::vector<std::string> opened, written, form_titles;
    std::vector<std::string> fetched_series, series_shown;
    std::vector<int> series_marked = {0};
    std::string form_text, write_error, asked_of, series_label;
    std::vector<std::filesystem::path> image_files = {"/images/1.dcm", "/images/2.dcm"};
    archive::Send_Wishes wishes;
    int wishes_kept = 0;
    bool are_wishes_kept = true;
    std::vector<archive::Send_Wishes> sent_wishes;
    std::vector<std::vector<std::filesystem::path>> sent_files;
    std::optional<archive::Send_Result> sent_later;
    std::map<std::string, archive::Retrieve_Result> fetched_of;
    std::deque<Filled_Form> forms;
    std::vector<archive::Study_Query> queries;
    archive::Archive_Outcome tested;
    archive::Search_Result<archive::Study> studies;
    archive::Search_Result<archive::Series> series;
    archive::Retrieve_Result fetched;
    archive::Send_Result sent;
    Dialogs_Double dialogs;
    Workspace work{[] {}};
    Archive_Control archives{work, dialogs, Host(), Operations()};
};

TEST_F(Archive_Use, searches_fetches_and_opens) {
    dialogs.ways = {0, 0};  // the archive, the study
    forms = {{{{0, "Doe"}, {2, "2024-01-01"}}, 0}};
    archives.Archive_Open();
    EXPECT_EQ(asked_of, "Radiology");
    ASSERT_THAT(queries, SizeIs(1));
    EXPECT_EQ(queries[0].patient_name, "Doe");
    EXPECT_EQ(queries[0].date_from, "20240101");
    EXPECT_THAT(fetched_series, ElementsAre("1.2.3"));
    EXPECT_THAT(opened, ElementsAre("/cache/1.2.3"));
    EXPECT_THAT(dialogs.told, ElementsAre("3 images fetched from Radiology"));
    EXPECT_THAT(dialogs.asked[1], HasSubstr("1 study, the latest first"));
    EXPECT_EQ(series_label, "2024-01-31   Doe Jane   MR   1 series   3 images");
    EXPECT_THAT(series_shown, ElementsAre("MR   Sagittal   3 images"));
}

TEST_F(Archive_Use, says_that_names_travel_in_clear_before_anything_is_asked) {
    dialogs.ways = {0};
    archives.Archive_Open();
    EXPECT_THAT(form_text, HasSubstr("without encryption"));
    EXPECT_THAT(queries, IsEmpty());
}

TEST_F(Archive_Use, goes_back_a_step_where_a_list_is_closed_and_keeps_the_query) {
    series_marked.clear();      // the series are closed
    dialogs.ways = {0, 0, -1};  // and then the studies
    forms = {{{{1, "P7"}}, 0}, {{}, -1}};
    archives.Archive_Open();
    EXPECT_THAT(form_titles, SizeIs(2));
    EXPECT_THAT(opened, IsEmpty());
    series_marked = {0};
    dialogs.ways = {0, 0};
    forms = {{{}, 0}};
    archives.Archive_Open();
    EXPECT_EQ(queries.back().patient_id, "P7");
}

TEST_F(Archive_Use, shows_why_a_search_failed_and_lets_it_be_tried_again) {
    studies.outcome = {Archive_Fault::Silent, "It is silent."};
    dialogs.ways = {0, 0};
    forms = {{{}, 0}};
    archives.Archive_Open();
    EXPECT_THAT(dialogs.asked.back(), HasSubstr("It is silent."));
    EXPECT_THAT(form_titles, SizeIs(2));
}

TEST_F(Archive_Use, says_nothing_more_where_the_user_gave_up) {
    studies.outcome = {Archive_Fault::Cancelled, "given up"};
    dialogs.ways = {0};
    forms = {{{}, 0}};
    archives.Archive_Open();
    EXPECT_THAT(dialogs.asked, SizeIs(1));
}

TEST_F(Archive_Use, opens_an_incomplete_series_only_if_the_user_says_so) {
    fetched.outcome = {Archive_Fault::Incomplete, "2 of 3 images."};
    for (const int answer : {1, 0}) {
        opened.clear();
        dialogs.ways = {0, 0, answer, -1, -1};
        forms = {{{}, 0}};
        archives.Archive_Open();
        EXPECT_EQ(opened.size(), answer == 0 ? 1U : 0U);
    }
}

TEST_F(Archive_Use, opens_nothing_that_failed) {
    fetched = {};
    fetched.outcome = {Archive_Fault::Lost, "The connection was lost."};
    dialogs.ways = {0, 0, 0, -1};
    forms = {{{}, 0}};
    archives.Archive_Open();
    EXPECT_THAT(opened, IsEmpty());
}

/** Three series of the study. */
class Several_Series : public Archive_Use {
  public:
    Several_Series() {
        for (const char* const last : {"4", "5"}) {
            archive::Series more = series.answers.front();
            more.identifier = std::string("1.2.") + last;
            more.description = std::string("Other ") + last;
            series.answers.push_back(more);
            archive::Retrieve_Result result;
            result.folder = "/cache/" + more.identifier;
            result.image_count = 10;
            fetched_of[more.identifier] = result;
        }
        series_marked = {0, 1, 2};
        dialogs.ways = {0, 0};
        forms = {{{}, 0}};
    }
};

TEST_F(Several_Series, are_fetched_one_after_the_other_and_opened_together) {
    archives.Archive_Open();
    EXPECT_THAT(fetched_series, ElementsAre("1.2.3", "1.2.4", "1.2.5"));
    EXPECT_THAT(dialogs.run, testing::Contains("Fetching 2 of 3: Other 4"));
    EXPECT_THAT(opened, ElementsAre("/cache/1.2.3", "/cache/1.2.4", "/cache/1.2.5"));
    EXPECT_THAT(dialogs.told, ElementsAre("23 images fetched from Radiology"));
}

TEST_F(Several_Series, go_on_without_one_that_was_given_up_or_failed) {
    fetched_of["1.2.4"].outcome = {Archive_Fault::Cancelled, "given up"};
    dialogs.ways = {0, 0, 0};
    archives.Archive_Open();
    EXPECT_THAT(dialogs.asked.back(), HasSubstr("A series was given up. Fetch the series that are left?"));
    EXPECT_THAT(opened, ElementsAre("/cache/1.2.3", "/cache/1.2.5"));
    opened.clear();
    fetched_of["1.2.4"].outcome = {Archive_Fault::Lost, "The connection was lost."};
    dialogs.ways = {0, 0, 0};
    forms = {{{}, 0}};
    archives.Archive_Open();
    EXPECT_THAT(dialogs.asked.back(), HasSubstr("The connection was lost. Fetch the series that are left?"));
    EXPECT_THAT(opened, ElementsAre("/cache/1.2.3", "/cache/1.2.5"));
}

TEST_F(Several_Series, are_given_up_all_together_and_what_came_is_opened) {
    fetched_of["1.2.4"].outcome = {Archive_Fault::Cancelled, "given up"};
    dialogs.ways = {0, 0, 1};
    archives.Archive_Open();
    EXPECT_THAT(fetched_series, ElementsAre("1.2.3", "1.2.4"));
    EXPECT_THAT(opened, ElementsAre("/cache/1.2.3"));
}

TEST_F(Archive_Use, asks_for_the_settings_where_there_is_no_archive_and_keeps_what_can_be_right) {
    lines.clear();
    dialogs.ways = {0};                                                  // the doubt is read
    forms = {{{{1, "pacs"}, {2, "104x"}, {3, "PACS"}, {0, "Mine"}}, 0},  // the port is no number
             {{{2, "104"}, {3, ""}}, -1}};                               // given up
    archives.Archive_Open();
    EXPECT_THAT(lines, IsEmpty());
    dialogs.ways = {0};
    forms = {{{{1, "pacs"}, {2, "70000"}, {3, "PACS"}}, 0}, {{{2, "11112"}}, 0}};  // and then the search is closed
    archives.Archive_Open();
    ASSERT_THAT(lines, SizeIs(1));
    const auto kept = archive::Archive_Of_Line(lines[0]);
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->name, "pacs");
    EXPECT_EQ(kept->port, 11112);
    EXPECT_EQ(kept->own_title, "WORKBENCH");
}

TEST_F(Archive_Use, tests_a_connection_and_tells_what_the_archive_does_not_do) {
    dialogs.ways = {1, 0, -1};  // add an archive; read the result; no archive
    forms = {{{{0, "B"}, {1, "b"}, {3, "B"}}, 1}};
    archives.Archive_Open();
    EXPECT_THAT(dialogs.asked[1], HasSubstr("answers.\nIt does not give images by C-GET"));
    EXPECT_THAT(lines, SizeIs(1));
}

TEST_F(Archive_Use, keeps_the_port_that_images_are_brought_to) {
    lines.clear();
    dialogs.ways = {0};  // the doubt is read
    forms = {{{{1, "pacs"}, {3, "PACS"}, {5, "70000"}}, 0}, {{{5, "11113"}}, 0}};
    archives.Archive_Open();
    EXPECT_THAT(dialogs.asked[0], HasSubstr("The own port"));
    ASSERT_THAT(lines, SizeIs(1));
    const auto kept = archive::Archive_Of_Line(lines[0]);
    ASSERT_TRUE(kept);
    EXPECT_TRUE(kept->is_moved);
    EXPECT_EQ(kept->own_port, 11113);
    dialogs.ways = {2, 0, -1};  // change settings, of the first
    forms = {{{{5, ""}}, 0}};
    archives.Archive_Open();
    EXPECT_FALSE(archive::Archive_Of_Line(lines[0])->is_moved) << lines[0];
}

TEST_F(Archive_Use, keeps_who_else_may_bring_images_and_only_beside_that_archive) {
    lines.clear();
    dialogs.ways = {0};  // the doubt is read
    forms = {{{{1, "pacs"}, {3, "PACS"}, {5, "11113"}, {6, "pacs2"}}, 0}, {{{6, "10.1.2.3 10.1.2.4"}}, 0}};
    archives.Archive_Open();
    EXPECT_THAT(dialogs.asked[0], HasSubstr("four numbers"));
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_EQ(archive::Archive_Of_Line(lines[0])->other_callers, "10.1.2.3 10.1.2.4");
    dialogs.ways = {2, 0, 0, -1};  // change settings, of the first; what is told is read
    forms = {{{{1, "other"}}, 0}, {{}, 0}};
    archives.Archive_Open();
    EXPECT_EQ(archive::Archive_Of_Line(lines[0])->other_callers, "");
    EXPECT_THAT(dialogs.asked, Contains(HasSubstr("trusted beside pacs and are left out")));
}

TEST_F(Archive_Use, keeps_who_else_may_bring_images_when_an_address_is_put_right) {
    lines.clear();
    dialogs.ways = {0};  // the doubt is read
    forms = {{{{1, "pasc"}, {3, "PACS"}, {5, "70000"}, {6, "10.1.2.3"}}, 0}, {{{1, "pacs"}, {5, "11113"}}, 0}};
    archives.Archive_Open();
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_EQ(archive::Archive_Of_Line(lines[0])->other_callers, "10.1.2.3");
}

TEST_F(Archive_Use, keeps_how_it_is_encrypted_and_says_so_before_anything_is_asked) {
    lines.clear();
    forms = {{{{1, "pacs"}, {3, "PACS"}, {7, "system"}, {8, "own.pem"}}, 0}};  // and then the search is closed
    archives.Archive_Open();
    EXPECT_THAT(form_text, HasSubstr("travel encrypted"));
    ASSERT_THAT(lines, SizeIs(1));
    const auto kept = archive::Archive_Of_Line(lines[0]);
    ASSERT_TRUE(kept);
    EXPECT_TRUE(kept->is_encrypted);
    EXPECT_EQ(kept->trusted_file, "");
    EXPECT_EQ(kept->own_file, "own.pem");
    dialogs.ways = {2, 0, 0, -1};  // change settings, of the first; the doubt is read
    forms = {{{{5, "4242"}}, 0}, {{{5, ""}, {7, "ca.pem"}}, 0}};
    archives.Archive_Open();
    EXPECT_THAT(dialogs.asked[2], HasSubstr("C-GET"));
    EXPECT_EQ(archive::Archive_Of_Line(lines[0])->trusted_file, "ca.pem");
    dialogs.ways = {2, 0, -1};
    forms = {{{{7, ""}}, 0}};
    archives.Archive_Open();
    EXPECT_FALSE(archive::Archive_Of_Line(lines[0])->is_encrypted);
    EXPECT_EQ(archive::Archive_Of_Line(lines[0])->own_file, "");
}

TEST_F(Archive_Use, removes_an_archive) {
    dialogs.ways = {2, 0};  // change settings, of the first
    forms = {{{}, 2}};
    archives.Archive_Open();
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(Archive_Use, leaves_alone_what_cannot_be_a_setting) {
    lines = {"nonsense", archive::Archive_Line(Radiology()), "a|b|c"};
    dialogs.ways = {-1};
    archives.Archive_Open();
    EXPECT_THAT(dialogs.offered, SizeIs(3));
}

TEST_F(Archive_Use, keeps_lines_that_are_not_understood_when_another_is_removed) {
    lines = {"nonsense", archive::Archive_Line(Radiology())};
    dialogs.ways = {2, 0};
    forms = {{{}, 2}};
    archives.Archive_Open();
    EXPECT_THAT(lines, ElementsAre("nonsense"));
}

TEST_F(Archive_Use, needs_a_folder_for_what_it_fetches) {
    cache.clear();
    archives.Archive_Open();
    EXPECT_THAT(dialogs.warned, ElementsAre(HasSubstr("no folder")));
}

TEST_F(Archive_Use, sends_labels_after_a_question_and_tells_what_became_of_them) {
    Volume_Take();
    dialogs.ways = {0, 1};
    archives.Labels_Send();
    EXPECT_THAT(written, SizeIs(1));
    EXPECT_EQ(asked_of, "Radiology");
    EXPECT_THAT(dialogs.asked.back(), HasSubstr("without encryption"));
    EXPECT_THAT(dialogs.told, ElementsAre(HasSubstr("1 object accepted")));
    EXPECT_TRUE(std::filesystem::is_empty(cache)) << "what was written for it goes";
    EXPECT_THAT(dialogs.warned, IsEmpty());
}

TEST_F(Archive_Use, sends_nothing_without_an_image_or_a_yes) {
    archives.Labels_Send();
    EXPECT_THAT(dialogs.warned, SizeIs(1));
    Volume_Take();
    dialogs.ways = {0, 2};
    archives.Labels_Send();
    EXPECT_THAT(written, IsEmpty());
}

TEST_F(Archive_Use, tells_why_labels_did_not_arrive) {
    Volume_Take();
    write_error = "No space.";
    dialogs.ways = {0, 1};
    archives.Labels_Send();
    EXPECT_EQ(dialogs.warned.back(), "No space.");
    EXPECT_EQ(asked_of, "");
    write_error.clear();
    sent.accepted = 0;
    sent.refused = 1;
    sent.files = {{"/cache/x.dcm", false, false, "The archive refuses it: no room."}};
    dialogs.ways = {0, 1};
    archives.Labels_Send();
    EXPECT_THAT(dialogs.warned.back(), HasSubstr("not taken. The archive refuses it: no room."));
    sent = {};
    sent.outcome = {Archive_Fault::Lost, "The connection was lost."};
    dialogs.ways = {0, 1};
    archives.Labels_Send();
    EXPECT_EQ(dialogs.warned.back(), "The connection was lost.");
    sent.outcome = {Archive_Fault::Cancelled, "given up"};
    dialogs.ways = {0, 1};
    archives.Labels_Send();
    EXPECT_THAT(dialogs.warned.back(), HasSubstr("the archive may have the labels already"));
    EXPECT_THAT(dialogs.told, IsEmpty());
}

TEST_F(Archive_Use, sends_images_as_they_lie_on_the_disk_and_tells_how_many_were_taken) {
    Volume_Take();
    sent.accepted = 2;
    dialogs.ways = {0, 1};
    archives.Images_Send();
    ASSERT_THAT(sent_files, SizeIs(1));
    EXPECT_EQ(sent_files[0], image_files);
    EXPECT_FALSE(sent_wishes[0].is_anonymous);
    EXPECT_THAT(dialogs.told, ElementsAre("Images sent to Radiology with names: 2 objects accepted"));
    EXPECT_EQ(wishes_kept, 0);
    sent.accepted = 1;
    sent.refused = 1;
    sent.files = {{"/images/1.dcm", true, false, ""},
                  {"/images/2.dcm", false, false, "The archive refuses it: no room."}};
    dialogs.ways = {0, 1};
    archives.Images_Send();
    EXPECT_EQ(dialogs.warned.back(),
              "Images sent to Radiology with names: 1 object accepted, 1 object not. The archive refuses it: no room.");
    sent.outcome = {Archive_Fault::Cancelled, "given up"};
    dialogs.ways = {0, 1};
    archives.Images_Send();
    EXPECT_EQ(dialogs.warned.back(), "Sending was given up. Before that, the archive accepted 1 object.");
}

TEST_F(Archive_Use, sends_no_images_where_there_are_none) {
    archives.Images_Send();
    Volume_Take();
    image_files.clear();
    archives.Images_Send();
    EXPECT_THAT(dialogs.warned, ElementsAre(HasSubstr("Open a DICOM image"), HasSubstr("Open a DICOM image")));
    EXPECT_THAT(sent_files, IsEmpty());
}

TEST_F(Archive_Use, sends_nothing_anonymously_when_the_secret_cannot_be_kept) {
    Volume_Take();
    are_wishes_kept = false;
    dialogs.ways = {0, 0};
    archives.Images_Send();
    EXPECT_THAT(sent_files, IsEmpty());
    EXPECT_THAT(dialogs.warned, ElementsAre(HasSubstr("cannot be kept")));
    wishes = {};
    dialogs.ways = {0, 1};
    archives.Images_Send();
    EXPECT_THAT(sent_wishes, SizeIs(1)) << "with names it needs none";
}

TEST_F(Archive_Use, sends_anonymously_by_enter_whatever_was_done_last_and_tells_which_it_was) {
    Volume_Take();
    sent.accepted = 2;
    dialogs.ways = {0, 0};
    archives.Images_Send();
    EXPECT_THAT(dialogs.offered, ElementsAre("Send &anonymously", "&Send with names", "&Cancel"));
    EXPECT_THAT(dialogs.told.back(), HasSubstr("Images sent to Radiology anonymously: 2"));
    EXPECT_TRUE(sent_wishes.back().is_anonymous);
    EXPECT_FALSE(sent_wishes.back().is_picture_trusted);
    EXPECT_TRUE(archive::Is_Secret(wishes.secret));
    EXPECT_EQ(wishes_kept, 1);
    const std::string secret = wishes.secret;
    dialogs.ways = {0, 1};
    archives.Labels_Send();
    EXPECT_FALSE(sent_wishes.back().is_anonymous);
    EXPECT_THAT(dialogs.told.back(), HasSubstr("Labels sent to Radiology with names"));
    EXPECT_EQ(wishes.secret, secret);
    dialogs.ways = {0, 0};
    archives.Images_Send();
    EXPECT_THAT(dialogs.offered, ElementsAre("Send &anonymously", "&Send with names", "&Cancel"));
    EXPECT_TRUE(sent_wishes.back().is_anonymous) << "with names is no habit";
    EXPECT_EQ(sent_wishes.back().secret, secret) << "the same for good";
    dialogs.ways = {0, 2};
    archives.Images_Send();
    EXPECT_THAT(sent_wishes, SizeIs(3));
}

TEST_F(Archive_Use, sends_pictures_with_texts_in_them_only_after_another_question) {
    Volume_Take();
    wishes = {.is_anonymous = true, .is_picture_trusted = false, .secret = std::string(64, '1')};
    sent = {};
    sent.held = 2;
    sent.files = {{"/images/1.dcm", false, true, "they are ultrasound"},
                  {"/images/2.dcm", false, true, "they are ultrasound"}};
    dialogs.ways = {0, 0, 0};
    archives.Images_Send();
    EXPECT_THAT(dialogs.asked.back(),
                HasSubstr("2 images may show in their pictures who the patient is: they are ultrasound."));
    EXPECT_THAT(sent_wishes, SizeIs(1));
    EXPECT_THAT(dialogs.told, ElementsAre("2 images not sent"));
    sent_wishes.clear();
    sent_later.emplace().accepted = 2;
    dialogs.ways = {0, 0, 1};
    archives.Images_Send();
    ASSERT_THAT(sent_wishes, SizeIs(2));
    EXPECT_TRUE(sent_wishes[1].is_picture_trusted);
    EXPECT_EQ(sent_files.back(), image_files);
    EXPECT_THAT(dialogs.told.back(), HasSubstr("2 objects accepted"));
}

TEST_F(Archive_Use, tells_of_all_that_was_accepted_when_some_pictures_were_held_back) {
    Volume_Take();
    wishes = {.is_anonymous = true, .is_picture_trusted = false, .secret = std::string(64, '1')};
    sent.accepted = 3;
    sent.held = 1;
    sent.files = {{"/images/2.dcm", false, true, "it is ultrasound"}};
    dialogs.ways = {0, 0, 0};
    archives.Images_Send();
    EXPECT_EQ(dialogs.told.back(), "3 objects accepted by Radiology, 1 image not sent");
    sent_wishes.clear();
    sent_later.emplace().accepted = 1;
    dialogs.ways = {0, 0, 1};
    archives.Images_Send();
    EXPECT_EQ(dialogs.told.back(), "Images sent to Radiology anonymously: 4 objects accepted");
}

TEST(Archive_Lines, say_everything_of_an_archive) {
    Archive_Settings settings = Radiology();
    settings.name = "R|a\nb";
    settings.times.silence = std::chrono::seconds(77);
    const auto back = archive::Archive_Of_Line(archive::Archive_Line(settings));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->name, "R a b");
    EXPECT_EQ(back->host, "pacs.example");
    EXPECT_EQ(back->port, 11112);
    EXPECT_EQ(back->called_title, "PACS");
    EXPECT_EQ(back->own_title, "ME");
    EXPECT_EQ(back->times.silence, std::chrono::seconds(77));
    EXPECT_EQ(back->times.connect, std::chrono::seconds(5));
    EXPECT_FALSE(back->is_moved);
    settings.is_moved = true;
    settings.own_port = 4242;
    const auto moved = archive::Archive_Of_Line(archive::Archive_Line(settings));
    ASSERT_TRUE(moved);
    EXPECT_TRUE(moved->is_moved);
    EXPECT_EQ(moved->own_port, 4242);
    EXPECT_EQ(moved->other_callers, "");
    settings.other_callers = "10.1.2.3 10.1.2.4";
    const auto of_several = archive::Archive_Of_Line(archive::Archive_Line(settings));
    ASSERT_TRUE(of_several);
    EXPECT_TRUE(of_several->is_moved);
    EXPECT_EQ(of_several->other_callers, "10.1.2.3 10.1.2.4");
    settings = Radiology();
    settings.is_encrypted = true;
    const auto encrypted = archive::Archive_Of_Line(archive::Archive_Line(settings));
    ASSERT_TRUE(encrypted);
    EXPECT_TRUE(encrypted->is_encrypted);
    EXPECT_EQ(encrypted->trusted_file, "");
    settings.trusted_file = "C:/certificates/tls_own=.pem";
    settings.own_file = "C:/own.pem";
    const auto with_files = archive::Archive_Of_Line(archive::Archive_Line(settings));
    ASSERT_TRUE(with_files);
    EXPECT_TRUE(with_files->is_encrypted);
    EXPECT_FALSE(with_files->is_moved);
    EXPECT_EQ(with_files->trusted_file, "C:/certificates/tls_own=.pem");
    EXPECT_EQ(with_files->own_file, "C:/own.pem");
    for (const char* const line :
         {"a|b|104|C|D|5|5|30|4242|tls=", "a|b|104|C|D|5|5|30|tls_own=x", "a|b|104|C|D|5|5|30|tls=x|tls=y", "",
          "|||||||", "a|b|0|C|D|5|5|30", "a|b|104|C|D|5|5|0", "a|b|104|C|D|5|5|30|0", "a|b|104|C|D|5|5|30|x",
          "a|b|104|C|D|5|5|30|1|x", "a|b|104|C|D|5|5|30|1|", "a|b|104|C|D|5|5|30|1|2|3", "a|b c|104|C|D|5|5|30"}) {
        EXPECT_FALSE(archive::Archive_Of_Line(line)) << line;
    }
}

}  // namespace
