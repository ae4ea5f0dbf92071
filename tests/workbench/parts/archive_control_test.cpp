#include "workbench/parts/archive_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/workbench/dialogs_double.h"
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
            .times = {}};
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
        study.date = "20240131";
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
        sent.files = {{"/cache/x.dcm", true, ""}};
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
                [this](const std::filesystem::path& folder) { opened.push_back(folder.generic_string()); },
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
                fetched_series = wanted.identifier;
                return fetched;
            },
            [this](const Archive_Settings& to, std::span<const std::filesystem::path>, const volumes::Load_Progress&) {
                asked_of = to.name;
                return sent;
            }};
    }

    std::vector<std::string> lines = {archive::Archive_Line(Radiology())};
    std::filesystem::path cache = std::filesystem::temp_directory_path() / "archive_use_test";
    std::vector<std::string> opened, written, form_titles;
    std::string form_text, write_error, asked_of, fetched_series;
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
    dialogs.ways = {0, 0, 0};  // the archive, the study, the series
    forms = {{{{0, "Doe"}, {2, "2024-01-01"}}, 0}};
    archives.Archive_Open();
    EXPECT_EQ(asked_of, "Radiology");
    ASSERT_THAT(queries, SizeIs(1));
    EXPECT_EQ(queries[0].patient_name, "Doe");
    EXPECT_EQ(queries[0].date_from, "20240101");
    EXPECT_EQ(fetched_series, "1.2.3");
    EXPECT_THAT(opened, ElementsAre("/cache/1.2.3"));
    EXPECT_THAT(dialogs.told, ElementsAre("3 images fetched from Radiology"));
    EXPECT_THAT(dialogs.asked[1], HasSubstr("1 study, the latest first"));
    EXPECT_THAT(dialogs.asked[2], HasSubstr("2024-01-31   Doe Jane   MR   1 series   3 images"));
    EXPECT_THAT(dialogs.offered, ElementsAre("MR   Sagittal   3 images"));
}

TEST_F(Archive_Use, says_that_names_travel_in_clear_before_anything_is_asked) {
    dialogs.ways = {0};
    archives.Archive_Open();
    EXPECT_THAT(form_text, HasSubstr("without encryption"));
    EXPECT_THAT(queries, IsEmpty());
}

TEST_F(Archive_Use, goes_back_a_step_where_a_list_is_closed_and_keeps_the_query) {
    dialogs.ways = {0, 0, -1, -1};  // the series are closed, then the studies
    forms = {{{{1, "P7"}}, 0}, {{}, -1}};
    archives.Archive_Open();
    EXPECT_THAT(form_titles, SizeIs(2));
    EXPECT_THAT(opened, IsEmpty());
    dialogs.ways = {0, 0, 0};
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
        dialogs.ways = {0, 0, 0, answer, -1, -1};
        forms = {{{}, 0}};
        archives.Archive_Open();
        EXPECT_EQ(opened.size(), answer == 0 ? 1U : 0U);
    }
}

TEST_F(Archive_Use, opens_nothing_that_failed) {
    fetched = {};
    fetched.outcome = {Archive_Fault::Lost, "The connection was lost."};
    dialogs.ways = {0, 0, 0, 0, -1};
    forms = {{{}, 0}};
    archives.Archive_Open();
    EXPECT_THAT(opened, IsEmpty());
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
    dialogs.ways = {0, 0};
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
    dialogs.ways = {0, 1};
    archives.Labels_Send();
    EXPECT_THAT(written, IsEmpty());
}

TEST_F(Archive_Use, tells_why_labels_did_not_arrive) {
    Volume_Take();
    write_error = "No space.";
    dialogs.ways = {0, 0};
    archives.Labels_Send();
    EXPECT_EQ(dialogs.warned.back(), "No space.");
    EXPECT_EQ(asked_of, "");
    write_error.clear();
    sent.accepted = 0;
    sent.refused = 1;
    sent.files = {{"/cache/x.dcm", false, "The archive refuses it: no room."}};
    dialogs.ways = {0, 0};
    archives.Labels_Send();
    EXPECT_THAT(dialogs.warned.back(), HasSubstr("not taken. The archive refuses it: no room."));
    sent = {};
    sent.outcome = {Archive_Fault::Lost, "The connection was lost."};
    dialogs.ways = {0, 0};
    archives.Labels_Send();
    EXPECT_EQ(dialogs.warned.back(), "The connection was lost.");
    sent.outcome = {Archive_Fault::Cancelled, "given up"};
    dialogs.ways = {0, 0};
    archives.Labels_Send();
    EXPECT_THAT(dialogs.warned.back(), HasSubstr("the archive may have the labels already"));
    EXPECT_THAT(dialogs.told, IsEmpty());
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
    for (const char* const line :
         {"", "|||||||", "a|b|0|C|D|5|5|30", "a|b|104|C|D|5|5|0", "a|b|104|C|D|5|5|30|9", "a|b c|104|C|D|5|5|30"}) {
        EXPECT_FALSE(archive::Archive_Of_Line(line)) << line;
    }
}

}  // namespace
