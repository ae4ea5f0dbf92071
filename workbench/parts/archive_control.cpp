#include "workbench/parts/archive_control.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <system_error>

#include "workbench/archive/archive_cache.h"
#include "workbench/volumes/message_text.h"

namespace workbench {

using archive::Archive_Fault;
using archive::Archive_Settings;

namespace {

constexpr const char* OPEN_TITLE = "Open from an archive";
constexpr const char* SEND_TITLE = "Send labels to an archive";
constexpr const char* IN_CLEAR = "Names and images travel without encryption: use it within a network that you trust.";
constexpr std::uint64_t CACHE_MOST = std::uint64_t{20} << 30U;  // bytes of fetched series that are kept

/** "2024-01-31"; as it is where it is no date. */
std::string Date_Shown(const std::string& date) {
    constexpr std::size_t length = 8;
    return date.size() == length ? date.substr(0, 4) + "-" + date.substr(4, 2) + "-" + date.substr(6) : date;
}

/** "2024-01-31" or "20240131" as archives have it. */
std::string Date_Asked(std::string date) {
    std::erase_if(date, [](char letter) { return letter == '-' || letter == ' '; });
    return date;
}

std::string Counted(int count, const char* one, const char* many) {
    return count < 0 ? std::string()
                     : volumes::Count_Text(static_cast<std::uint64_t>(count)) + " " + (count == 1 ? one : many);
}

std::string Joined(const std::vector<std::string>& parts) {
    std::string joined;
    for (const std::string& part : parts) {
        if (!part.empty()) {
            joined += (joined.empty() ? "" : "   ") + volumes::Printable_Text(part, volumes::FIELD_SHOWN_MOST);
        }
    }
    return joined;
}

std::string Study_Line(const archive::Study& study) {
    return Joined({Date_Shown(study.date), study.patient_name.empty() ? "(no name)" : study.patient_name,
                   study.patient_id, study.birth_date.empty() ? "" : "born " + Date_Shown(study.birth_date),
                   study.modalities, study.description, Counted(study.series_count, "series", "series"),
                   Counted(study.image_count, "image", "images")});
}

std::string Series_Line(const archive::Series& series) {
    return Joined({series.number, series.modality, series.description.empty() ? "(no description)" : series.description,
                   Counted(series.image_count, "image", "images")});
}

std::vector<Archive_Settings> Known(const std::vector<std::string>& lines) {
    std::vector<Archive_Settings> known;
    for (const std::string& line : lines) {
        if (std::optional<Archive_Settings> one = archive::Archive_Of_Line(line)) {
            known.push_back(std::move(*one));
        }
    }
    return known;
}

/** @param kept the lines so far: what is not understood in them stays, for people to mend */
std::vector<std::string> Lines_Of(const std::vector<Archive_Settings>& known, const std::vector<std::string>& kept) {
    std::vector<std::string> lines;
    std::ranges::transform(known, std::back_inserter(lines), archive::Archive_Line);
    std::ranges::copy_if(kept, std::back_inserter(lines),
                         [](const std::string& line) { return !archive::Archive_Of_Line(line); });
    return lines;
}

std::string Cut_Text(bool is_cut) {
    return is_cut ? " (the first " + volumes::Count_Text(archive::ANSWER_MOST) + "; ask for less)" : "";
}

}  // namespace

Archive_Operations Archive_Operations_Of_Network() {
    return {
        archive::Archive_Test, archive::Studies_Search, archive::Series_Search,
        [](const Archive_Settings& asked, const archive::Series& series, const std::filesystem::path& root,
           const volumes::Load_Progress& progress) { return archive::Series_Retrieve(asked, series, root, progress); },
        archive::Files_Send};
}

void Archive_Control::Test(const Archive_Settings& asked) {
    archive::Archive_Outcome outcome;
    archive::Archive_Abilities abilities;
    dialogs.Run("Testing " + asked.name, [&](const volumes::Load_Progress& progress) {
        outcome = operations.test(asked, progress, &abilities);
    });
    if (!outcome.Is_Done()) {
        dialogs.Way_Ask("Test of the connection", outcome.error, {"&Close"});
        return;
    }
    std::string text = archive::Archive_Title(asked) + " answers.";
    if (!abilities.is_searched) {
        text += "\nIt does not let itself be searched.";
    }
    if (!abilities.is_fetched_from) {
        text += "\nIt does not give images by C-GET, so nothing can be opened from it.";
    }
    dialogs.Way_Ask("Test of the connection", text, {"&Close"});
}

std::optional<Archive_Settings> Archive_Control::Settings_Ask(std::optional<std::size_t> index) {
    std::vector<Archive_Settings> known = Known(host.archives());
    Archive_Settings now = index ? known[*index] : Archive_Settings{};
    std::vector<Form_Field> fields = {{"&Name", now.name},
                                      {"&Address (host name)", now.host},
                                      {"&Port", std::to_string(now.port)},
                                      {"AE &title of the archive", now.called_title},
                                      {"AE title of this p&rogram", now.own_title}};
    std::vector<std::string> ways = {"&Keep", "T&est"};
    if (index) {
        ways.emplace_back("&Remove");
    }
    while (true) {
        const int way = host.form("Settings of an archive", IN_CLEAR, fields, ways);
        if (way < 0) {
            return std::nullopt;
        }
        if (way == 2) {
            known.erase(known.begin() + static_cast<std::ptrdiff_t>(*index));
            host.archives_keep(Lines_Of(known, host.archives()));
            return std::nullopt;
        }
        now.name = fields[0].value.empty() ? fields[1].value : fields[0].value;
        now.host = fields[1].value;
        const std::string& port = fields[2].value;
        const auto [end, failure] = std::from_chars(port.data(), port.data() + port.size(), now.port);
        if (failure != std::errc() || end != port.data() + port.size()) {
            now.port = 0;  // which is none
        }
        now.called_title = fields[3].value;
        now.own_title = fields[4].value;
        if (const std::string doubt = archive::Settings_Doubt(now); !doubt.empty()) {
            dialogs.Way_Ask("Settings of an archive", doubt, {"&Close"});
        } else if (way == 1) {
            Test(now);
        } else {
            (index ? known[*index] : known.emplace_back()) = now;
            last_archive = static_cast<int>(index.value_or(known.size() - 1));
            host.archives_keep(Lines_Of(known, host.archives()));
            return now;
        }
    }
}

std::optional<Archive_Settings> Archive_Control::Archive_Choose(const std::string& title) {
    while (true) {
        const std::vector<Archive_Settings> known = Known(host.archives());
        if (known.empty()) {
            return Settings_Ask(std::nullopt);
        }
        std::vector<std::string> lines;
        lines.reserve(known.size() + 2);
        for (const Archive_Settings& one : known) {
            lines.push_back(Joined({one.name, one.host + ":" + std::to_string(one.port), one.called_title}));
        }
        lines.emplace_back("Add an archive...");
        lines.emplace_back("Change the settings of an archive...");
        const int archive_nb = static_cast<int>(known.size());
        const int line =
            dialogs.Line_Ask(title, "Which archive?", lines, std::min(last_archive, archive_nb - 1), "&Choose");
        if (line < 0) {
            return std::nullopt;
        }
        if (line < archive_nb) {
            last_archive = line;
            return known[static_cast<std::size_t>(line)];
        }
        if (line == archive_nb) {
            Settings_Ask(std::nullopt);
            continue;
        }
        lines.resize(known.size());
        const int changed = dialogs.Line_Ask("Settings of an archive", "Which archive?", lines,
                                             std::min(last_archive, archive_nb - 1), "&Change");
        if (changed >= 0 && changed < archive_nb) {
            Settings_Ask(static_cast<std::size_t>(changed));
        }
    }
}

void Archive_Control::Archive_Open() {
    if (host.cache_folder().empty()) {
        return dialogs.Warn("There is no folder to keep fetched images in, because settings are not kept.");
    }
    const std::optional<Archive_Settings> asked = Archive_Choose(OPEN_TITLE);
    if (!asked) {
        return;
    }
    std::vector<Form_Field> fields = {{"Patient &name", last_query.patient_name},
                                      {"Patient &id", last_query.patient_id},
                                      {"&From date (year, month, day)", last_query.date_from},
                                      {"&To date", last_query.date_to},
                                      {"&Modality (MR, CT ...)", last_query.modality},
                                      {"&Description", last_query.description}};
    while (host.form("Search " + asked->name,
                     std::string("What is left empty is not asked for. * stands for any letters. ") + IN_CLEAR, fields,
                     {"&Search"}) == 0) {
        last_query = {fields[0].value, fields[1].value, Date_Asked(fields[2].value), Date_Asked(fields[3].value),
                      fields[4].value, fields[5].value};
        if (Studies_Show(*asked, last_query)) {
            return;
        }
    }
}

bool Archive_Control::Studies_Show(const Archive_Settings& asked, const archive::Study_Query& query) {
    archive::Search_Result<archive::Study> found;
    dialogs.Run("Searching " + asked.name,
                [&](const volumes::Load_Progress& progress) { found = operations.studies(asked, query, progress); });
    if (!found.outcome.Is_Done()) {
        if (found.outcome.fault != Archive_Fault::Cancelled) {
            dialogs.Way_Ask(OPEN_TITLE, found.outcome.error, {"&Close"});
        }
        return false;
    }
    if (found.answers.empty()) {
        dialogs.Way_Ask(OPEN_TITLE, "The archive has no study like that.", {"&Close"});
        return false;
    }
    std::vector<std::string> lines;
    lines.reserve(found.answers.size());
    for (const archive::Study& study : found.answers) {
        lines.push_back(Study_Line(study));
    }
    const std::string label =
        Counted(static_cast<int>(lines.size()), "study", "studies") + Cut_Text(found.is_cut) + ", the latest first:";
    for (int line = 0;;) {
        line = dialogs.Line_Ask("Studies found", label, lines, line, "&Series");
        if (line < 0) {
            return false;
        }
        if (Series_Show(asked, found.answers[static_cast<std::size_t>(line)])) {
            return true;
        }
    }
}

bool Archive_Control::Series_Show(const Archive_Settings& asked, const archive::Study& study) {
    archive::Search_Result<archive::Series> found;
    dialogs.Run("Searching " + asked.name, [&](const volumes::Load_Progress& progress) {
        found = operations.series(asked, study.identifier, progress);
    });
    if (!found.outcome.Is_Done() || found.answers.empty()) {
        if (found.outcome.fault != Archive_Fault::Cancelled) {
            dialogs.Way_Ask(OPEN_TITLE,
                            found.outcome.Is_Done() ? "The archive has no series of this study." : found.outcome.error,
                            {"&Close"});
        }
        return false;
    }
    std::vector<std::string> lines;
    lines.reserve(found.answers.size());
    for (const archive::Series& series : found.answers) {
        lines.push_back(Series_Line(series));
    }
    const int line = dialogs.Line_Ask("Series of the study", Study_Line(study), lines, 0, "&Open");
    return line >= 0 && Fetch(asked, found.answers[static_cast<std::size_t>(line)]);
}

bool Archive_Control::Fetch(const Archive_Settings& asked, const archive::Series& series) {
    const std::filesystem::path root = host.cache_folder();
    std::vector<std::filesystem::path> in_use;
    for (const std::filesystem::path& file : work.volumes.Files()) {
        in_use.push_back(file.parent_path());
    }
    archive::Retrieve_Result result;
    dialogs.Run("Fetching " + (series.description.empty() ? std::string("a series") : series.description),
                [&](const volumes::Load_Progress& progress) {
                    archive::Cache_Trim(root, CACHE_MOST, in_use);
                    result = operations.retrieve(asked, series, root, progress);
                });
    if (result.outcome.fault == Archive_Fault::Cancelled) {
        return false;
    }
    if (result.outcome.fault == Archive_Fault::Incomplete && !result.folder.empty()) {
        if (dialogs.Way_Ask(OPEN_TITLE, result.outcome.error, {"&Open what came", "&Cancel"}) != 0) {
            std::error_code code;
            std::filesystem::remove_all(result.folder, code);
            return false;
        }
    } else if (!result.outcome.Is_Done()) {
        dialogs.Way_Ask(OPEN_TITLE, result.outcome.error, {"&Close"});
        return false;
    }
    host.open(result.folder);
    dialogs.Tell(Counted(result.image_count, "image", "images") + " fetched from " + asked.name);
    return true;
}

std::string Archive_Control::Send(const Archive_Settings& to, const std::filesystem::path& file) {
    if (std::string error = host.labels_write(file); !error.empty()) {
        return error;
    }
    archive::Send_Result sent;
    dialogs.Run("Sending labels to " + to.name, [&](const volumes::Load_Progress& progress) {
        sent = operations.send(to, {&file, 1}, progress);
    });
    if (sent.outcome.fault == Archive_Fault::Cancelled) {
        return "Sending was given up; the archive may have the labels already.";
    }
    if (!sent.outcome.Is_Done()) {
        return sent.outcome.error;
    }
    if (sent.accepted != 1 || sent.refused != 0) {
        return "The labels were not taken. " + (sent.files.empty() ? std::string() : sent.files.front().remark);
    }
    const std::string& remark = sent.files.front().remark;
    dialogs.Tell("Labels sent to " + to.name + ": 1 object accepted" + (remark.empty() ? "" : ". " + remark));
    return {};
}

void Archive_Control::Labels_Send() {
    if (!work.session.Has_Volume()) {
        return dialogs.Warn("Open an image first; labels lie on an image.");
    }
    if (host.cache_folder().empty()) {
        return dialogs.Warn("There is no folder to write the labels into, because settings are not kept.");
    }
    const std::optional<Archive_Settings> to = Archive_Choose(SEND_TITLE);
    if (!to || dialogs.Way_Ask("Send labels",
                               "The labels go to " + to->name +
                                   " as a DICOM segmentation, with the patient's name and number, and the names of the "
                                   "TAGs.\n\n" +
                                   IN_CLEAR,
                               {"&Send", "&Cancel"}) != 0) {
        return;
    }
    // Of its own: other windows of this program may be sending, too. It goes whatever happens.
    const archive::Fetched_Folder going_out(host.cache_folder(), "0");
    if (!going_out.Error().empty()) {
        return dialogs.Warn("The folder for what is sent " + going_out.Error());
    }
    if (const std::string error = Send(*to, going_out.Path() / "labels.dcm"); !error.empty()) {
        dialogs.Warn(error);
    }
}

}  // namespace workbench
