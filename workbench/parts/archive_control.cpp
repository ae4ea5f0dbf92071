#include "workbench/parts/archive_control.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <system_error>

#include "workbench/archive/archive_cache.h"
#include "workbench/archive/archive_texts.h"
#include "workbench/archive/secret_hash.h"
#include "workbench/volumes/message_text.h"

namespace workbench {

using archive::Archive_Fault;
using archive::Archive_Settings;

namespace {

constexpr const char* OPEN_TITLE = "Open from an archive";
constexpr std::uint64_t CACHE_MOST = std::uint64_t{20} << 30U;  // bytes of fetched series that are kept

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
        {"&Own port, for C-MOVE (empty: C-GET)", now.is_moved ? std::to_string(now.own_port) : std::string()}};
    std::vector<std::string> ways = {"&Keep", "T&est"};
    if (index) {
        ways.emplace_back("&Remove");
    }
    while (true) {
        const int way = host.form("Settings of an archive", archive::IN_CLEAR, fields, ways);
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
        now.port = Port_Of(fields[2].value);
        now.is_moved = !fields[5].value.empty();
        now.own_port = now.is_moved ? Port_Of(fields[5].value) : now.own_port;
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
                     std::string("What is left empty is not asked for. * stands for any letters. ") + archive::IN_CLEAR,
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

std::optional<archive::Send_Wishes> Archive_Control::Send_Ask(const std::string& title, const std::string& text) {
    archive::Send_Wishes wishes = host.send_wishes();
    constexpr const char* named = "&Send with names";
    constexpr const char* anonymous = "Send &anonymously";
    const int way = dialogs.Way_Ask(
        title,
        text +
            "\n\nAnonymously: names, numbers, dates and free texts are taken out or replaced, always in the same way "
            "for the same patient. What the pictures themselves show stays, and so do the names of TAGs.\n\n" +
            archive::IN_CLEAR,
        wishes.is_anonymous ? std::vector<std::string>{anonymous, named, "&Cancel"}
                            : std::vector<std::string>{named, anonymous, "&Cancel"});
    if (way != 0 && way != 1) {
        return std::nullopt;
    }
    const archive::Send_Wishes before = wishes;
    wishes.is_anonymous = wishes.is_anonymous == (way == 0);
    if (wishes.is_anonymous && !archive::Is_Secret(wishes.secret)) {
        wishes.secret = archive::Secret_New();
    }
    const bool is_new = wishes.secret != before.secret;
    if (is_new || wishes.is_anonymous != before.is_anonymous) {
        if (!host.send_wishes_keep(wishes) && is_new) {
            // What is sent later would not belong to what is sent now.
            dialogs.Warn(
                "Nothing was sent: the secret that stands for names when images are sent anonymously cannot "
                "be kept in the settings.");
            return std::nullopt;
        }
    }
    return wishes;
}

std::string Archive_Control::Sent_Tell(const Archive_Settings& to, const std::string& what,
                                       const archive::Send_Result& sent) {
    if (sent.accepted == 0) {
        return "The " + what + " were not taken. " + archive::Reasons_Text(sent, false);
    }
    const auto remark = std::ranges::find_if(
        sent.files, [](const archive::Sent_File& file) { return file.is_accepted && !file.remark.empty(); });
    std::string text = what + " sent to " + to.name + ": " + archive::Objects_Text(sent.accepted) + " accepted";
    text[0] = static_cast<char>(text[0] - 'a' + 'A');
    if (sent.refused == 0) {
        dialogs.Tell(text + (remark == sent.files.end() ? "" : ". " + remark->remark));
        return {};
    }
    return text + ", " + archive::Objects_Text(sent.refused) + " not. " + archive::Reasons_Text(sent, false);
}

std::string Archive_Control::Held_Send(const Archive_Settings& to, const std::string& what,
                                       const archive::Send_Result& before, archive::Send_Wishes wishes) {
    std::vector<std::filesystem::path> held;
    for (const archive::Sent_File& file : before.files) {
        if (file.is_held) {
            held.push_back(file.file);
        }
    }
    const std::string text = (held.size() == 1 ? "1 image may show in its picture who the patient is: "
                                               : volumes::Count_Text(held.size()) +
                                                     " images may show in their pictures who the patient is: ") +
                             archive::Reasons_Text(before, true) +
                             ". Texts in pictures are not taken out. Look at them before you send them.";
    if (dialogs.Way_Ask("Send anonymously", text, {"&Do not send them", "&Send them all the same"}) == 1) {
        wishes.is_picture_trusted = true;
        return Send(to, what, held, wishes);
    }
    dialogs.Tell(archive::Counted_Text(before.held, "image", "images") + " not sent");
    return {};
}

std::string Archive_Control::Send(const Archive_Settings& to, const std::string& what,
                                  std::span<const std::filesystem::path> files, archive::Send_Wishes wishes) {
    archive::Send_Result sent;
    dialogs.Run("Sending " + what + " to " + to.name,
                [&](const volumes::Load_Progress& progress) { sent = operations.send(to, files, progress, wishes); });
    const std::string so_far = files.size() > 1
                                   ? " Before that, the archive accepted " + archive::Objects_Text(sent.accepted) + "."
                                   : std::string();
    if (sent.outcome.fault == Archive_Fault::Cancelled) {
        return files.size() > 1 ? "Sending was given up." + so_far
                                : "Sending was given up; the archive may have the " + what + " already.";
    }
    if (!sent.outcome.Is_Done()) {
        return sent.outcome.error + so_far;
    }
    std::string error;
    if (sent.accepted + sent.refused > 0 || sent.held == 0) {
        error = Sent_Tell(to, what, sent);
    }
    if (sent.held > 0) {
        const std::string later = Held_Send(to, what, sent, std::move(wishes));
        error += (error.empty() || later.empty() ? "" : "\n") + later;
    }
    return error;
}

void Archive_Control::Labels_Send() {
    if (!work.session.Has_Volume()) {
        return dialogs.Warn("Open an image first; labels lie on an image.");
    }
    if (host.cache_folder().empty()) {
        return dialogs.Warn("There is no folder to write the labels into, because settings are not kept.");
    }
    const std::optional<Archive_Settings> to = Archive_Choose("Send labels to an archive");
    if (!to) {
        return;
    }
    const std::optional<archive::Send_Wishes> wishes =
        Send_Ask("Send labels", "The labels go to " + to->name +
                                    " as a DICOM segmentation, with the patient's name and number, and the names of "
                                    "the TAGs.");
    if (!wishes) {
        return;
    }
    // Of its own: other windows of this program may be sending, too. It goes whatever happens.
    const archive::Fetched_Folder going_out(host.cache_folder(), "0");
    if (!going_out.Error().empty()) {
        return dialogs.Warn("The folder for what is sent " + going_out.Error());
    }
    const std::filesystem::path file = going_out.Path() / "labels.dcm";
    std::string error = host.labels_write(file);
    if (error.empty()) {
        error = Send(*to, "labels", {&file, 1}, *wishes);
    }
    if (!error.empty()) {
        dialogs.Warn(error);
    }
}

void Archive_Control::Images_Send() {
    const std::vector<std::filesystem::path> files =
        work.session.Has_Volume() ? host.images() : std::vector<std::filesystem::path>();
    if (files.empty()) {
        return dialogs.Warn("Open a DICOM image first.");
    }
    const std::optional<Archive_Settings> to = Archive_Choose("Send images to an archive");
    if (!to) {
        return;
    }
    const std::optional<archive::Send_Wishes> wishes =
        Send_Ask("Send images", archive::Counted_Text(static_cast<int>(files.size()), "file goes", "files go") +
                                    " to " + to->name + " as on the disk, with the patient's name and number.");
    if (!wishes) {
        return;
    }
    if (const std::string error = Send(*to, "images", files, *wishes); !error.empty()) {
        dialogs.Warn(error);
    }
}

}  // namespace workbench
