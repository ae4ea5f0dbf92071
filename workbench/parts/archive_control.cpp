#include "workbench/parts/archive_control.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <system_error>

#include "workbench/archive/archive_cache.h"
#include "workbench/archive/archive_texts.h"
#include "workbench/volumes/message_text.h"

namespace workbench {

using archive::Archive_Fault;
using archive::Archive_Settings;

namespace {

constexpr const char* OPEN_TITLE = "Open from an archive";
constexpr std::uint64_t CACHE_MOST = std::uint64_t{20} << 30U;  // bytes of fetched series that are kept

constexpr const char* SYSTEM_TRUST = "system";
constexpr const char* SECRET_TEXT =
    " With TLS it is encrypted: name the file of the certificates that are trusted, or \"system\" for those of this "
    "computer.";

/** "2024-01-31" or "20240131" as archives have it. */
std::string Date_Asked(std::string date) {
    std::erase_if(date, [](char letter) { return letter == '-' || letter == ' '; });
    return date;
}

/** @return 0, which is none: the text is no number */
int Port_Of(const std::string& text) {
    int port = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), port);
    return failure == std::errc() && end == text.data() + text.size() ? port : 0;
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
        archive::Archive_Test,
        archive::Studies_Search,
        archive::Series_Search,
        [](const Archive_Settings& asked, const archive::Series& series, const std::filesystem::path& root,
           const volumes::Load_Progress& progress) { return archive::Series_Retrieve(asked, series, root, progress); },
        archive::Files_Send,
        archive::Can_Encrypt()};
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
        text += std::string("\nIt does not give images by ") + (asked.is_moved ? "C-MOVE" : "C-GET") +
                ", so nothing can be opened from it.";
    }
    dialogs.Way_Ask("Test of the connection", text, {"&Close"});
}

std::optional<Archive_Settings> Archive_Control::Settings_Ask(std::optional<std::size_t> index) {
    std::vector<Archive_Settings> known = Known(host.archives());
    Archive_Settings now = index ? known[*index] : Archive_Settings{};
    std::vector<Form_Field> fields = {
        {"&Name", now.name},
        {"&Address (host name)", now.host},
        {"&Port", std::to_string(now.port)},
        {"AE &title of the archive", now.called_title},
        {"AE title of this p&rogram", now.own_title},
        {"&Own port, only for C-MOVE", now.is_moved ? std::to_string(now.own_port) : std::string()},
        {"Other a&ddresses (C-MOVE)", now.other_callers}};
    const std::string text = operations.can_encrypt ? archive::IN_CLEAR + std::string(SECRET_TEXT) : archive::IN_CLEAR;
    if (operations.can_encrypt) {
        const std::string trusted = now.trusted_file.empty() ? std::string(SYSTEM_TRUST) : now.trusted_file;
        fields.push_back({"TL&S: trusted certificates", now.is_encrypted ? trusted : std::string()});
        fields.push_back({"TLS: o&wn certificate and key", now.own_file});
    }
    const std::string kept_host = now.host;
    std::string kept_callers = now.other_callers;
    std::vector<std::string> ways = {"&Keep", "T&est"};
    if (index) {
        ways.emplace_back("&Remove");
    }
    while (true) {
        const int way = host.form("Settings of an archive", text, fields, ways);
        if (way < 0) {
            return std::nullopt;
        }
        if (way == 2) {
            known.erase(known.begin() + static_cast<std::ptrdiff_t>(*index));
            host.archives_keep(Lines_Of(known, host.archives()));
            return std::nullopt;
        }
        if (!kept_callers.empty() && kept_host != fields[1].value && kept_callers == fields[6].value) {
            dialogs.Way_Ask("Settings of an archive",
                            "The other addresses were trusted beside " + kept_host +
                                " and are left out now. Put in those that bring images of this archive.",
                            {"&Close"});
            fields[6].value.clear();
            kept_callers.clear();  // once
            continue;
        }
        now.name = fields[0].value.empty() ? fields[1].value : fields[0].value;
        now.host = fields[1].value;
        now.port = Port_Of(fields[2].value);
        now.is_moved = !fields[5].value.empty();
        now.own_port = now.is_moved ? Port_Of(fields[5].value) : now.own_port;
        now.other_callers = now.is_moved ? fields[6].value : std::string();
        if (operations.can_encrypt) {
            now.is_encrypted = !fields[7].value.empty();
            now.trusted_file = fields[7].value == SYSTEM_TRUST ? std::string() : fields[7].value;
            now.own_file = now.is_encrypted ? fields[8].value : std::string();
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
            lines.push_back(
                archive::Joined_Text({one.name, one.host + ":" + std::to_string(one.port), one.called_title}));
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
                     std::string("What is left empty is not asked for. * stands for any letters. ") +
                         archive::Way_Text(*asked),
                     fields, {"&Search"}) == 0) {
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
        lines.push_back(archive::Study_Text(study));
    }
    const std::string label = archive::Counted_Text(static_cast<int>(lines.size()), "study", "studies") +
                              Cut_Text(found.is_cut) + ", the latest first:";
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
        lines.push_back(archive::Series_Text(series));
    }
    return Series_Choose(asked, archive::Study_Text(study), lines, found.answers);
}

bool Archive_Control::Series_Choose(const Archive_Settings& asked, const std::string& study,
                                    const std::vector<std::string>& lines, const std::vector<archive::Series>& found) {
    const std::vector<int> chosen = host.lines_ask(
        "Series of the study", study + (lines.size() > 1 ? "\nCtrl and Shift mark several." : ""), lines, "&Open");
    std::vector<archive::Series> wanted;
    wanted.reserve(chosen.size());
    for (const int line : chosen) {
        wanted.push_back(found[static_cast<std::size_t>(line)]);
    }
    return !wanted.empty() && Fetch(asked, wanted);
}

Archive_Control::Fetched Archive_Control::Fetch_One(const Archive_Settings& asked, const archive::Series& series,
                                                    const std::string& title,
                                                    std::span<const std::filesystem::path> in_use,
                                                    archive::Retrieve_Result& result, std::string& error) {
    dialogs.Run(title, [&](const volumes::Load_Progress& progress) {
        archive::Cache_Trim(host.cache_folder(), CACHE_MOST, in_use);
        result = operations.retrieve(asked, series, host.cache_folder(), progress);
    });
    if (result.outcome.fault == Archive_Fault::Cancelled) {
        return Fetched::Given_Up;
    }
    if (result.outcome.fault == Archive_Fault::Incomplete && !result.folder.empty()) {
        if (dialogs.Way_Ask(OPEN_TITLE, result.outcome.error, {"&Open what came", "&Cancel"}) != 0) {
            std::error_code code;
            std::filesystem::remove_all(result.folder, code);
            return Fetched::Given_Up;
        }
    } else if (!result.outcome.Is_Done()) {
        error = result.outcome.error;
        return Fetched::Not_There;
    }
    return Fetched::Kept;
}

bool Archive_Control::Fetch(const Archive_Settings& asked, std::span<const archive::Series> wanted) {
    std::vector<std::filesystem::path> in_use;
    for (const std::filesystem::path& file : work.volumes.Files()) {
        in_use.push_back(file.parent_path());
    }
    std::vector<std::filesystem::path> folders;
    int image_nb = 0;
    for (std::size_t at = 0; at < wanted.size(); ++at) {
        const std::string name = wanted[at].description.empty() ? "a series" : wanted[at].description;
        const std::string title =
            "Fetching " +
            (wanted.size() == 1 ? name : std::to_string(at + 1) + " of " + std::to_string(wanted.size()) + ": " + name);
        archive::Retrieve_Result result;
        std::string error;
        const Fetched fetched = Fetch_One(asked, wanted[at], title, in_use, result, error);
        if (fetched == Fetched::Kept) {
            folders.push_back(result.folder);
            in_use.push_back(result.folder);  // the next ones do not push it out
            image_nb += result.image_count;
            continue;
        }
        const bool is_last = at + 1 == wanted.size();
        if (is_last && !error.empty()) {
            dialogs.Way_Ask(OPEN_TITLE, error, {"&Close"});
        } else if (!is_last && dialogs.Way_Ask(OPEN_TITLE,
                                               (error.empty() ? "A series was given up." : error) +
                                                   " Fetch the series that are left?",
                                               {"&Fetch them", "&Stop"}) != 0) {
            break;
        }
    }
    if (folders.empty()) {
        return false;
    }
    host.open(folders);
    dialogs.Tell(archive::Counted_Text(image_nb, "image", "images") + " fetched from " + asked.name);
    return true;
}

}  // namespace workbench
