// A program that edits, saves and journals is killed at a random moment, again and again; what it leaves must be whole.
#include <gtest/gtest.h>

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <thread>

#include "workbench/model/label_description_file.h"
#include "workbench/model/recovery_folder.h"
#include "workbench/model/recovery_keeper.h"
#include "workbench/model/recovery_recorder.h"
#include "workbench/volumes/nifti_reader.h"
#include "workbench/volumes/unfinished_file.h"

using namespace volumes;
using namespace workbench;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int SIDE = 40;
constexpr int SLICES = 12;
constexpr int LOOK_MS = 10;            // the program looks every 5 s, and may lose 30 s
constexpr int LOSS_MS = 60 * LOOK_MS;  // generous for a loaded machine; only hanging breaks it
constexpr std::uint32_t ROUND_DEFAULT = 25;

/** One edit as the killed program told it: how many it had made, when, and what the TAGs were then. */
struct Told_Edit {
    std::uint32_t nb = 0;
    std::uint32_t tags = 0;      // checksum, in the order of display
    std::uint32_t is_saved = 0;  // the labels were saved before it
    std::int64_t time = 0;       // nanoseconds
};

Image_Folder Opened() {
    Image_Folder folder;
    Folder_Volume& one = folder.volumes.emplace_back();
    one.title = "head";
    one.path = "/data/head.nii";
    one.volume.nx = one.volume.ny = SIDE;
    one.volume.nz = SLICES;
    one.volume.nt = 1;
    one.volume.affine = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    one.volume.levels = volumes::Voxel_Levels::Of_Range(std::size_t{SIDE} * SIDE * SLICES, 0, 0, false);
    return folder;
}

std::uint32_t Sum_Of(const Session& session) {
    return Checksum(session.Labels().All());
}

std::int64_t Now() {
    return Clock::now().time_since_epoch().count();
}

/** A step over about half of the slices. */
Voxel_Change Change_Of_Slices(const Session& session, std::mt19937& random) {
    Voxel_Change change;
    for (int slice = 0; slice < SLICES; ++slice) {
        const std::span<const std::uint8_t> now = session.Labels().Slice(slice);
        std::vector<std::uint8_t> after(now.begin(), now.end());
        std::ranges::fill(std::span(after).subspan(random() % after.size()), static_cast<std::uint8_t>(random() % 6));
        if (auto one = Slice_Difference(slice, now, after); one && random() % 2 == 0) {
            change.slices.push_back(std::move(*one));
        }
    }
    return change;
}

/** Edits until it is killed. */
[[noreturn]] void Edit_For_Ever(const fs::path& folder, int pipe, std::uint32_t seed) {
    std::mt19937 random(seed);
    Open_Volumes volumes;
    Session session;
    volumes.Take(Opened(), {}, session);
    std::optional<Recovery_Claim> claim = Recovery_Claim_Make(folder);
    if (!claim) {
        ::_exit(1);
    }
    Recovery_Keeper keeper(claim->File(), "killed");
    Recovery_Recorder recorder;
    static const unsigned char byte = 1;
    static const unsigned char* const row = &byte;
    const Brush_Footprint dot = {&row, 0};
    Clock::time_point looked = Clock::now();
    std::string kept;
    Told_Edit told;
    for (;;) {
        const std::uint32_t kind = static_cast<std::uint32_t>(random() % 40);
        told.is_saved = 0;
        if (kind == 0) {
            if (!session.Save_Labels(folder / "head.nii.gz", {}, kept).empty()) {
                ::_exit(2);
            }
            told.is_saved = 1;
        } else if (kind < 6) {
            session.Undo();
        } else if (kind < 12) {
            session.Voxels_Change("Many slices", Change_Of_Slices(session, random));
        } else {
            Paint_Ink ink;
            ink.tag = static_cast<std::uint8_t>(random() % 6);
            session.Stroke_Begin(static_cast<int>(random() % SLICES), dot, static_cast<int>(random() % SIDE),
                                 static_cast<int>(random() % SIDE), ink);
            session.Stroke_Move(static_cast<int>(random() % SIDE), static_cast<int>(random() % SIDE));
            session.Stroke_End();
        }
        ++told.nb;
        told.tags = Sum_Of(session);
        told.time = Now();
        if (::write(pipe, &told, sizeof told) != static_cast<ssize_t>(sizeof told)) {
            ::_exit(3);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 1500));
        if (Clock::now() - looked > std::chrono::milliseconds(LOOK_MS)) {
            looked = Clock::now();
            if (auto snapshot = recorder.Look(volumes, session, [](int) { return Label_Description{}; }, {"/data"})) {
                keeper.Offer(std::move(*snapshot));
            }
        }
    }
}

/** Starts an editing program, kills it, and gives what it had told. */
std::vector<Told_Edit> Edit_And_Kill(const fs::path& folder, std::mt19937& random, std::int64_t& killed) {
    int ends[2] = {};
    EXPECT_EQ(::pipe(ends), 0);
    const auto seed = static_cast<std::uint32_t>(random());
    const ::pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        Edit_For_Ever(folder, ends[1], seed);
    }
    ::close(ends[1]);
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(20 + random() % 250);
    std::vector<Told_Edit> told;
    Told_Edit edit;
    std::thread reader([&] {
        while (::read(ends[0], &edit, sizeof edit) == static_cast<ssize_t>(sizeof edit)) {
            told.push_back(edit);
        }
    });
    std::this_thread::sleep_until(end);
    killed = Now();
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "it ended by itself: " << status;
    reader.join();
    ::close(ends[0]);
    return told;
}

/** The last edit that told these TAGs; none: no such edit. */
const Told_Edit* Edit_Of(const std::vector<Told_Edit>& told, std::uint32_t tags) {
    const auto found = std::find_if(told.rbegin(), told.rend(), [&](const Told_Edit& one) { return one.tags == tags; });
    return found != told.rend() ? &*found : nullptr;
}

/** What the next start would have: the saved labels, or the work that was kept. @return checksum of the TAGs */
std::uint32_t Next_Start(const fs::path& folder, std::uint32_t& saved) {
    Open_Volumes volumes;
    Session session;
    volumes.Take(Opened(), {}, session);
    const fs::path labels = folder / "head.nii.gz";
    if (fs::exists(labels)) {
        const Load_Result loaded = Volume_Load(labels);
        EXPECT_TRUE(loaded.volume.has_value()) << "a damaged label file: " << loaded.error;
        if (loaded.volume) {
            EXPECT_EQ(session.Take_Labels(*loaded.volume, labels), "");
        }
        const Label_Description_Loading described = Label_Description_Load(labels, {SLICES, SIDE, SIDE});
        EXPECT_TRUE(described.warning.empty()) << described.warning;
    }
    saved = Sum_Of(session);
    Recovery_Findings findings = Recovery_Find(folder);
    EXPECT_TRUE(findings.told.empty()) << findings.told.front();
    EXPECT_LE(findings.found.size(), 1U);
    for (Recovery_Found& found : findings.found) {
        const Recovery_Volume& volume = found.record.volumes.at(0);
        std::vector<std::uint8_t> tags(volume.grid.Voxel_Nb());
        for (std::size_t slice = 0; slice < SLICES; ++slice) {
            EXPECT_TRUE(Slice_Unpack(volume.slices[slice], std::span(tags).subspan(slice * SIDE * SIDE, SIDE * SIDE)));
        }
        EXPECT_TRUE(session.Take_Up(std::move(tags), {}, volume.labels, volume.stamps));
        EXPECT_TRUE(found.claim.Remove());
    }
    const std::uint32_t sum = Sum_Of(session);
    std::string kept;
    EXPECT_EQ(session.Save_Labels(labels, {}, kept), "");
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        EXPECT_EQ(Unfinished_Target(entry.path()), fs::path()) << entry.path() << " was left";
    }
    return sum;
}

TEST(Recovery_Kill, whenever_the_program_is_killed_no_more_than_the_last_looks_are_lost_and_no_file_is_damaged) {
    const char* wanted = std::getenv("KIT_KILLS");
    const auto rounds =
        wanted != nullptr ? static_cast<std::uint32_t>(std::strtoul(wanted, nullptr, 10)) : ROUND_DEFAULT;
    std::mt19937 random(std::random_device{}());
    std::int64_t worst = 0;
    std::uint32_t kept_nb = 0;
    for (std::uint32_t round = 0; round < rounds && !::testing::Test::HasFailure(); ++round) {
        const fs::path folder = fs::temp_directory_path() / ("recovery_kill_" + std::to_string(random()));
        fs::create_directories(folder);
        std::int64_t killed = 0;
        std::vector<Told_Edit> told = Edit_And_Kill(folder, random, killed);
        told.insert(told.begin(), {0, Checksum(std::vector<std::uint8_t>(std::size_t{SIDE} * SIDE * SLICES)), 0,
                                   told.empty() ? killed : told.front().time});
        std::uint32_t saved = 0;
        const std::uint32_t found = Next_Start(folder, saved);
        const Told_Edit* last_kept = Edit_Of(told, found);
        // The edit that was being told when the program died may be missing from what was told.
        if (last_kept != nullptr) {
            const auto next = std::find_if(told.begin(), told.end(),
                                           [&](const Told_Edit& one) { return one.nb == last_kept->nb + 1; });
            const std::int64_t lost = next != told.end() ? killed - next->time : 0;  // age of the oldest lost edit
            worst = std::max(worst, lost);
            EXPECT_LE(lost, std::int64_t{LOSS_MS} * 1'000'000) << "round " << round;
            kept_nb += found != saved ? 1 : 0;
        } else {
            ADD_FAILURE() << "what was kept in round " << round << " was never there";
        }
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    std::printf("%u kills, %u with work to take up; the oldest lost edit was %.1f ms old, looks are %d ms apart\n",
                rounds, kept_nb, static_cast<double>(worst) / 1e6, LOOK_MS);
    EXPECT_GT(kept_nb, 0U);
}

}  // namespace
