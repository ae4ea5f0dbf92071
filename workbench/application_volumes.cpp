// The open volumes: opening files and folders, going from one volume to another.
#include <windows.h>

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

#include "workbench/application.h"
#include "workbench/prompt_dialog.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/read_facts.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr std::size_t PROBLEMS_SHOWN = 3;  // in the banner; more are only listed

std::string Problem_Sentence(const volumes::Folder_Problem& problem) {
    return volumes::File_Name_Text(problem.path) + ' ' + problem.reason + '.';
}

}  // namespace

void Application::Open_Paths(std::span<const std::filesystem::path> paths) {
    if (paths.empty() || std::ranges::any_of(paths, &std::filesystem::path::empty)) {
        Warn("The name of the file cannot be used on this system.");
        return;
    }
    volumes::Image_Folder opened;
    std::vector<volumes::Volume_Statistics> numbers;
    std::vector<Slice_Frames> frames;
    dialogs.Run("Loading " + volumes::File_Name_Text(paths.front()), [&](const volumes::Load_Progress& progress) {
        constexpr double read_share = 0.8;  // of the time; the rest goes into the histograms
        opened = volumes::Image_Folder_Open(paths, [&](double done) { return progress(done * read_share); });
        report.Time("read");
        for (const volumes::Folder_Volume& one : opened.volumes) {
            numbers.push_back(volumes::Volume_Statistics_Compute(one.volume));
        }
        report.Time("statistics");
        frames = Slice_Frames_Make(opened.volumes, [&](double done) {
            const bool goes_on = progress(read_share + done * (1.0 - read_share));
            opened.is_cancelled = opened.is_cancelled || !goes_on;
            return goes_on;
        });
    });
    report.Time("histograms");
    if (opened.is_cancelled) {
        Status(L"Loading was given up");
        return;
    }
    if (opened.volumes.empty()) {
        return Problems_Tell(opened, paths.front());
    }
    // Asked only now: files that cannot be loaded cost no work.
    if (!Ask_Unsaved() || (volumes.Nb() > 0 && !Ask_Class_Changes())) {
        return;
    }
    banner.Close();  // what was told of the images before; what these have to tell comes now
    Problems_Tell(opened, paths.front());
    class_history.Images_Leave();
    work.opened_paths.clear();
    for (const std::filesystem::path& path : paths) {
        std::error_code unknown;
        const std::filesystem::path whole = std::filesystem::absolute(path, unknown);
        work.opened_paths.push_back(Path_To_Utf8(unknown ? path : whole));
    }
    report.Time("asked");
    Show_Volumes(paths.front(), std::move(opened), std::move(numbers), std::move(frames));
    if (paths.size() == 1) {
        Recent_Opened(paths.front());
    }
    if (!options.labels.empty()) {
        const std::filesystem::path file = volumes::Path_From_Utf8(std::exchange(options.labels, {}));
        std::error_code unknown;
        if (std::filesystem::exists(file, unknown)) {
            Load_Labels(file);
        } else {
            session.Label_Path_Set(file);
        }
    }
}

void Application::Problems_Tell(const volumes::Image_Folder& opened, const std::filesystem::path& first) {
    std::error_code unknown;
    const bool is_folder = std::filesystem::is_directory(first, unknown);
    read_warnings.clear();
    std::ranges::copy_if(opened.problems, std::back_inserter(read_warnings), &volumes::Folder_Problem::is_opened);
    not_opened = volumes::Image_Folder_Problems_Text(opened, is_folder ? first : first.parent_path());
    for (const volumes::Folder_Problem& problem : opened.problems) {
        report.Line("problem " + Problem_Sentence(problem));
    }
    if (opened.problems.size() > PROBLEMS_SHOWN) {
        Warn(volumes::Image_Folder_Text(opened) + ". File > Files not opened lists what was left out, and why.");
        return;
    }
    for (const volumes::Folder_Problem& problem : opened.problems) {
        Warn(Problem_Sentence(problem));
    }
    if (opened.problems.empty() && opened.volumes.empty()) {
        Warn(volumes::File_Name_Text(first) + " holds no files.");
    }
}

void Application::Show_Volumes(const std::filesystem::path& first, volumes::Image_Folder&& opened,
                               std::vector<volumes::Volume_Statistics>&& numbers, std::vector<Slice_Frames>&& frames) {
    const std::wstring found = Wide_Of_Utf8(volumes::Image_Folder_Text(opened));
    std::string class_problem_found;
    objects.Clear();
    try {
        volumes.Take(std::move(opened), std::move(numbers), session);
        objects.Build(volumes, session, std::move(frames));
        class_problem_found = class_history.Open(objects.Root(), first);
    } catch (const std::bad_alloc&) {
        objects.Clear();
        volumes.Clear(session);
        Warn("There is not enough memory for these images.");
        Class_Changes_Opened(class_history.Open(nullptr, first));
        hub.Note(Change::Opened);
        return Deliver();
    }
    report.Time("objects");
    Volume_Adopt();
    histogram.Plain_Take();
    histogram.All_Take(session.Slice_Nb());
    hosted_histogram.Scale_Release();
    Histogram_Select();
    // Told at once, when all class trees are as these data have them: no message loop may run before.
    hub.Note({Change::Opened, Change::Volume});
    Deliver();
    report.Time("told");
    ::UpdateWindow(window.Handle());
    report.Time("picture");
    Class_Changes_Opened(class_problem_found);
    const std::wstring text = Volume_Text() + L"   " + Histogram_Text();
    Status(volumes.Nb() > 1 ? found + L"   " + text : text);
}

std::wstring Application::Volume_Text() const {
    const volumes::Volume& image_now = session.Image();
    const std::string losses = volumes::Read_Losses_Text(image_now);
    std::wstring text = Wide_Of_Utf8(volumes.Facts(volumes.Current()).title) + L": ";
    if (volumes.Nb() > 1) {
        text = std::to_wstring(volumes.Current() + 1) + L" of " + std::to_wstring(volumes.Nb()) + L", " + text;
    }
    return text + std::to_wstring(image_now.nx) + L" \u00D7 " + std::to_wstring(image_now.ny) + L" \u00D7 " +
           std::to_wstring(image_now.nz) + (losses.empty() ? L"" : L", " + Wide_Of_Utf8(losses));
}

void Application::Read_Facts_Show() {
    if (!session.Has_Volume()) {
        Warn("Open an image first.");
        return;
    }
    const Volume_Facts& facts = volumes.Facts(volumes.Current());
    std::vector<std::string> sentences;
    for (const volumes::Folder_Problem& problem : read_warnings) {
        const bool is_of_this = std::ranges::any_of(facts.file_of_slice, [&](std::int32_t file) {
            return volumes.Files()[static_cast<std::size_t>(file)] == problem.path;
        });
        if (is_of_this) {
            sentences.push_back(Problem_Sentence(problem));
        }
    }
    const std::string text =
        volumes::Read_Facts_Text(facts.title, session.Image(), sentences, volumes.View(volumes.Current()).orientation);
    report.Line("what_was_read " + volumes::Read_Losses_Text(session.Image()));
    read_list.Open(window.Handle(), L"What was read", Wide_Of_Utf8(text));
}

void Application::Orientation_Ask() {
    if (!session.Has_Volume() || session.Image().affine_source != volumes::Affine_Source::Spacing) {
        Warn(session.Has_Volume() ? "The file says how the image lies; there is nothing to choose."
                                  : "Open an image first.");
        return;
    }
    std::string& orientation = volumes.View(volumes.Current()).orientation;
    const auto answer =
        Prompt(window.Handle(), L"Orientation of the image",
               L"Columns, rows and slices run towards (three of R or L, A or P, S or I; empty: unknown):",
               Wide_Of_Utf8(orientation));
    if (!answer) {
        return;
    }
    const std::string letters = Utf8_Of_Wide(*answer);
    Display_Order tried;
    if (!letters.empty() && !Letters_Set(letters, tried)) {
        Warn("An orientation is three letters, one each of R or L, A or P, S or I: LAS, for example.");
        return;
    }
    orientation = letters;
    hub.Note(Change::View);
}

void Application::Volume_Adopt() {
    const Volume_View& view = volumes.View(volumes.Current());
    statistics = view.statistics;
    grey_window = view.window;
    slice = view.slice;
    histogram.Volume_Follow(session.Slice_Nb(), view.background);
    objects.Current_Set(volumes.Current());
    objects.Show(slice);
    labels.Unit_Follow();
    labels.Adopt();
    const volumes::Volume& image_now = session.Image();
    report.Line("volume " + std::to_string(image_now.nx) + " " + std::to_string(image_now.ny) + " " +
                std::to_string(image_now.nz));
}

bool Application::Volume_Set(int wanted) {
    if (wanted < 0 || wanted >= volumes.Nb() || wanted == volumes.Current()) {
        return false;
    }
    tools.Settle();
    if (histogram.Plain_Take()) {
        objects.Histograms_Build(session, {});
    }
    Volume_View& left = volumes.View(volumes.Current());
    left = {statistics, grey_window, slice, histogram.Background(), std::move(left.orientation)};
    volumes.Switch(wanted, session);
    Volume_Adopt();
    hub.Note(Change::Volume);
    Status(Volume_Text());
    return true;
}

void Application::Volume_Go(int wanted) {
    if (!Volume_Set(wanted)) {
        return;
    }
    histogram.All_Take(session.Slice_Nb());
    Histogram_Select();
}

void Application::Frame_Follow(const Quorel_2D* frame) {
    const Frame_Place place = objects.Place_Of(frame);
    if (place.volume < 0) {
        return;
    }
    Volume_Set(place.volume);
    if (place.slice != slice) {
        Slice_Show(place.slice);
    }
}

}  // namespace workbench
