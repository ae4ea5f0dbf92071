#include "workbench/volume_opener.h"

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

#include "workbench/commands/command_table.h"
#include "workbench/model/recovery_recorder.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/read_facts.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr const char* TIMES = " \xC3\x97 ";
constexpr std::size_t PROBLEMS_SHOWN = 3;  // in the banner; more are only listed

std::string Problem_Sentence(const volumes::Folder_Problem& problem) {
    return volumes::File_Name_Text(problem.path) + ' ' + problem.reason + '.';
}

}  // namespace

void Volume_Opener::Read_Ahead(std::span<const std::filesystem::path> paths) {
    Ahead_Drop();  // two readings at once would each want the memory
    volumes::Load_Limits limits;
    limits.decoded_bytes = of.memory_most();
    const std::uint64_t whole_most = static_cast<std::uint64_t>(of.settings.whole_folder) << 20U;  // from MiB
    ahead = std::make_unique<volumes::Ahead_Reading>(paths, limits, whole_most);
}

void Volume_Opener::Open(std::span<const std::filesystem::path> paths) {
    if (paths.empty() || std::ranges::any_of(paths, &std::filesystem::path::empty)) {
        of.dialogs.Warn("The name of the file cannot be used on this system.");
        return;
    }
    if (ahead == nullptr || !ahead->Is_Of(paths)) {
        Read_Ahead(paths);
    }
    const std::unique_ptr<volumes::Ahead_Reading> reading = std::move(ahead);
    volumes::Image_Folder opened;
    std::vector<volumes::Volume_Statistics> numbers;
    of.dialogs.Run("Loading " + volumes::File_Name_Text(paths.front()), [&](const volumes::Load_Progress& progress) {
        opened = reading->Take(progress);
        of.report.Time("read");
        for (const volumes::Folder_Volume& one : opened.volumes) {
            numbers.push_back(one.waiting.empty()
                                  ? volumes::Volume_Statistics_Compute(one.volume, one.tally ? &*one.tally : nullptr)
                                  : volumes::Volume_Statistics());
        }
        of.report.Time("statistics");
    });
    if (opened.is_cancelled || !of.first_read(opened, numbers)) {
        of.dialogs.Tell("Loading was given up");
        return;
    }
    if (opened.volumes.empty()) {
        return Problems_Tell(opened, paths.front());
    }
    // Asked only now: files that cannot be loaded cost no work.
    if (!of.labels_may_leave() || (of.work.volumes.Nb() > 0 && !of.classes_may_leave())) {
        return;
    }
    of.dialogs.Warnings_Close({});  // what was told of the images before; what these have to tell comes now
    Problems_Tell(opened, paths.front());
    of.classes_leave();
    Paths_Note(paths);
    of.report.Time("asked");
    Show(paths.front(), std::move(opened), std::move(numbers));
    if (paths.size() == 1) {
        Recent_Add(of.settings.recent, of.work.opened_paths.front());
        of.settings_keep();
    }
    Labels_Take();
}

void Volume_Opener::Paths_Note(std::span<const std::filesystem::path> paths) {
    of.work.opened_paths.clear();
    for (const std::filesystem::path& path : paths) {
        std::error_code unknown;
        const std::filesystem::path whole = std::filesystem::absolute(path, unknown);
        of.work.opened_paths.push_back(Path_To_Utf8(unknown ? path : whole));
    }
}

void Volume_Opener::Labels_Take() {
    if (first_labels.empty()) {
        return;
    }
    const std::filesystem::path file = volumes::Path_From_Utf8(std::exchange(first_labels, {}));
    std::error_code unknown;
    if (std::filesystem::exists(file, unknown)) {
        of.labels_load(file);
    } else {
        of.work.session.Label_Path_Set(file);
    }
}

void Volume_Opener::Problems_Tell(const volumes::Image_Folder& opened, const std::filesystem::path& first) {
    std::error_code unknown;
    const bool is_folder = std::filesystem::is_directory(first, unknown);
    read_warnings.clear();
    std::ranges::copy_if(opened.problems, std::back_inserter(read_warnings), &volumes::Folder_Problem::is_opened);
    not_opened = volumes::Image_Folder_Problems_Text(opened, is_folder ? first : first.parent_path());
    for (const volumes::Folder_Problem& problem : opened.problems) {
        of.dialogs.Log("problem " + Problem_Sentence(problem));
    }
    if (opened.problems.size() > PROBLEMS_SHOWN) {
        of.dialogs.Warn(volumes::Image_Folder_Text(opened) +
                        ". File > Files not opened lists what was left out, and why.");
        return;
    }
    for (const volumes::Folder_Problem& problem : opened.problems) {
        of.dialogs.Warn(Problem_Sentence(problem));
    }
    if (opened.problems.empty() && opened.volumes.empty()) {
        of.dialogs.Warn(volumes::File_Name_Text(first) + " holds no files.");
    }
}

void Volume_Opener::Show(const std::filesystem::path& first, volumes::Image_Folder&& opened,
                         std::vector<volumes::Volume_Statistics>&& numbers) {
    const std::string found = volumes::Image_Folder_Text(opened);
    std::string class_problem_found;
    of.counting_cancel();  // it reads the voxels of the images that go
    of.objects.Clear();
    try {
        of.work.volumes.Take(std::move(opened), std::move(numbers), of.work.session);
        of.labels.Opened();
        of.objects.Build(of.work.volumes, of.work.session);
        class_problem_found = of.classes_open(of.objects.Root(), first);
    } catch (const std::bad_alloc&) {
        of.objects.Clear();
        of.work.volumes.Clear(of.work.session);
        of.dialogs.Warn("There is not enough memory for these images.");
        of.classes_told(of.classes_open(nullptr, first));
        of.work.hub.Note(Change::Opened);
        return of.deliver();
    }
    of.report.Time("objects");
    Adopt();
    of.histogram_take();
    // Told at once, when all class trees are as these data have them: no message loop may run before.
    of.work.hub.Note({Change::Opened, Change::Volume});
    of.deliver();
    of.report.Time("told");
    ::UpdateWindow(of.window());
    of.report.Time("picture");
    of.classes_told(class_problem_found);
    of.counting_begin(of.work.volumes.Nb() > 1 ? found + "   " + Volume_Text() : Volume_Text());
}

std::string Volume_Opener::Volume_Text() const {
    const volumes::Volume& image = of.work.session.Image();
    const std::string losses = volumes::Read_Losses_Text(image);
    std::string text = of.work.volumes.Facts(of.work.volumes.Current()).title + ": ";
    if (of.work.volumes.Nb() > 1) {
        text =
            std::to_string(of.work.volumes.Current() + 1) + " of " + std::to_string(of.work.volumes.Nb()) + ", " + text;
    }
    return text + std::to_string(image.nx) + TIMES + std::to_string(image.ny) + TIMES + std::to_string(image.nz) +
           (losses.empty() ? "" : ", " + losses);
}

long long Volume_Opener::Not_Opened_Nb() const {
    return std::ranges::count(not_opened, '\n');
}

void Volume_Opener::Open_Ask() {
    if (const auto path = of.dialogs.File_To_Open("Open volume", File_Kind::Images)) {
        Open(std::span(&*path, 1));
    }
}

void Volume_Opener::Open_Folder_Ask() {
    if (const auto path = of.dialogs.Folder_To_Open("Open folder")) {
        Open(std::span(&*path, 1));
    }
}

void Volume_Opener::Not_Opened_Show() {
    not_opened_list.Open(of.window(), L"Files not opened",
                         not_opened.empty() ? L"All files were opened." : Wide_Of_Utf8(not_opened));
}

void Volume_Opener::Read_Facts_Show() {
    if (!of.work.session.Has_Volume()) {
        of.dialogs.Warn("Open an image first.");
        return;
    }
    const Volume_Facts& facts = of.work.volumes.Facts(of.work.volumes.Current());
    std::vector<std::string> sentences;
    for (const volumes::Folder_Problem& problem : read_warnings) {
        const bool is_of_this = std::ranges::any_of(facts.file_of_slice, [&](std::int32_t file) {
            return of.work.volumes.Files()[static_cast<std::size_t>(file)] == problem.path;
        });
        if (is_of_this) {
            sentences.push_back(Problem_Sentence(problem));
        }
    }
    const std::string text = volumes::Read_Facts_Text(facts.title, of.work.session.Image(), sentences,
                                                      of.work.volumes.View(of.work.volumes.Current()).orientation);
    of.dialogs.Log("what_was_read " + volumes::Read_Losses_Text(of.work.session.Image()));
    read_list.Open(of.window(), L"What was read", Wide_Of_Utf8(text));
}

void Volume_Opener::Orientation_Ask() {
    if (!of.work.session.Has_Volume() || of.work.session.Image().affine_source != volumes::Affine_Source::Spacing) {
        of.dialogs.Warn(of.work.session.Has_Volume() ? "The file says how the image lies; there is nothing to choose."
                                                     : "Open an image first.");
        return;
    }
    std::string& orientation = of.work.volumes.View(of.work.volumes.Current()).orientation;
    const auto answer = of.dialogs.Text_Ask(
        "Orientation of the image",
        "Columns, rows and slices run towards (three of R or L, A or P, S or I; empty: unknown):", orientation);
    if (!answer) {
        return;
    }
    const std::string& letters = *answer;
    Display_Order tried;
    if (!letters.empty() && !Letters_Set(letters, tried)) {
        of.dialogs.Warn("An orientation is three letters, one each of R or L, A or P, S or I: LAS, for example.");
        return;
    }
    orientation = letters;
    of.work.hub.Note(Change::View);
}

void Volume_Opener::Adopt() {
    const Volume_View& view = of.work.volumes.View(of.work.volumes.Current());
    of.work.statistics = view.statistics;
    of.work.grey_window = view.window;
    of.work.slice = view.slice;
    of.histogram_follow(of.work.session.Slice_Nb(), view.background);
    of.objects.Current_Set(of.work.volumes.Current());
    of.objects.Show(of.work.slice);
    of.labels.Enter();
    const volumes::Volume& image_now = of.work.session.Image();
    of.dialogs.Log("volume " + std::to_string(image_now.nx) + " " + std::to_string(image_now.ny) + " " +
                   std::to_string(image_now.nz));
}

bool Volume_Opener::Set(int wanted) {
    if (wanted < 0 || wanted >= of.work.volumes.Nb() || wanted == of.work.volumes.Current()) {
        return false;
    }
    of.settle();
    const bool was_waiting = of.work.volumes.Is_Waiting(wanted, of.work.session);
    if (!of.make_ready(wanted)) {
        return false;
    }
    of.histogram_leave();
    Volume_View& left = of.work.volumes.View(of.work.volumes.Current());
    left = {of.work.statistics, of.work.grey_window, of.work.slice, of.background(), std::move(left.orientation)};
    of.labels.Leave();
    of.work.volumes.Switch(wanted, of.work.session);
    Adopt();
    of.work.hub.Note(Change::Volume);
    const bool is_counting_lost = of.room_keep();
    if (was_waiting || is_counting_lost) {
        of.counting_begin(Volume_Text());
    } else {
        of.dialogs.Tell(Volume_Text());
    }
    return true;
}

void Volume_Opener::Go(int wanted) {
    if (!Set(wanted)) {
        return;
    }
    of.histogram_of_all();
}

void Volume_Opener::Frame_Follow(const Quorel_2D* frame) {
    const Frame_Place place = of.objects.Place_Of(frame);
    if (place.volume < 0) {
        return;
    }
    Set(place.volume);
    if (place.slice != of.work.slice) {
        of.slice_show(place.slice);
    }
}

std::vector<Numbered_Entry> Volume_Opener::Recent_Entries() const {
    std::vector<Numbered_Entry> entries;
    for (const std::string& path : of.settings.recent) {
        entries.push_back({"&" + std::to_string(entries.size() + 1) + "  " + Menu_Text(path)});
    }
    return entries;
}

void Volume_Opener::Recent_Open(int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= of.settings.recent.size()) {
        return;
    }
    const std::filesystem::path path = volumes::Path_From_Utf8(of.settings.recent[static_cast<std::size_t>(index)]);
    Open({&path, 1});
}

}  // namespace workbench
