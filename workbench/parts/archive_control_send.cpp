// Labels and images to an archive.
#include <algorithm>

#include "workbench/archive/archive_cache.h"
#include "workbench/archive/archive_texts.h"
#include "workbench/archive/secret_hash.h"
#include "workbench/parts/archive_control.h"
#include "workbench/volumes/message_text.h"

namespace workbench {

using archive::Archive_Fault;
using archive::Archive_Settings;

std::optional<archive::Send_Wishes> Archive_Control::Send_Ask(const Archive_Settings& to, const std::string& title,
                                                              const std::string& text) {
    archive::Send_Wishes wishes = host.send_wishes();
    constexpr const char* named = "&Send with names";
    constexpr const char* anonymous = "Send &anonymously";
    const int way = dialogs.Way_Ask(
        title,
        text +
            "\n\nAnonymously: names, numbers, dates and free texts are taken out or replaced, always in the same way "
            "for the same patient. What the pictures themselves show stays, and so do the names of TAGs.\n\n" +
            archive::Way_Text(to) + "\n\nEnter sends anonymously." +
            (wishes.is_anonymous ? " So it was done last." : ""),
        // Always in this order: what Enter does is not to depend on what was done on another day.
        {anonymous, named, "&Cancel"});
    if (way != 0 && way != 1) {
        return std::nullopt;
    }
    const archive::Send_Wishes before = wishes;
    wishes.is_anonymous = way == 0;
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
                                       const archive::Send_Result& sent, bool is_anonymous, int before) {
    if (sent.accepted == 0) {
        return "The " + what + " were not taken. " + archive::Reasons_Text(sent, false);
    }
    const auto remark = std::ranges::find_if(
        sent.files, [](const archive::Sent_File& file) { return file.is_accepted && !file.remark.empty(); });
    std::string text = what + " sent to " + to.name + (is_anonymous ? " anonymously: " : " with names: ") +
                       archive::Objects_Text(before + sent.accepted) + " accepted";
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
        return Send(to, what, held, wishes, before.accepted);
    }
    dialogs.Tell((before.accepted > 0 ? archive::Objects_Text(before.accepted) + " accepted by " + to.name + ", "
                                      : std::string()) +
                 archive::Counted_Text(before.held, "image", "images") + " not sent");
    return {};
}

std::string Archive_Control::Send(const Archive_Settings& to, const std::string& what,
                                  std::span<const std::filesystem::path> files, archive::Send_Wishes wishes,
                                  int before) {
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
        error = Sent_Tell(to, what, sent, wishes.is_anonymous, before);
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
        Send_Ask(*to, "Send labels",
                 "The labels go to " + to->name +
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
        Send_Ask(*to, "Send images",
                 archive::Counted_Text(static_cast<int>(files.size()), "file goes", "files go") + " to " + to->name +
                     " as on the disk, with the patient's name and number.");
    if (!wishes) {
        return;
    }
    if (const std::string error = Send(*to, "images", files, *wishes); !error.empty()) {
        dialogs.Warn(error);
    }
}

}  // namespace workbench
