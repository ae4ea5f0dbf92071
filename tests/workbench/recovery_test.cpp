#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>

#include "workbench/model/activity_log.h"
#include "workbench/model/label_description_file.h"
#include "workbench/model/recovery_folder.h"
#include "workbench/model/recovery_keeper.h"
#include "workbench/model/recovery_recorder.h"
#include "workbench/model/recovery_text.h"
#include "workbench/model/text_file.h"
#include "workbench/volumes/file_operations.h"
#include "workbench/volumes/nifti_reader.h"
#include "workbench/volumes/nifti_writer.h"
#include "workbench/volumes/unfinished_file.h"

using namespace volumes;
using namespace workbench;

namespace {

namespace fs = std::filesystem;

constexpr int NX = 14;
constexpr int NY = 11;
constexpr int NZ = 6;

Volume Image() {
    Volume volume;
    volume.nx = NX;
    volume.ny = NY;
    volume.nz = NZ;
    volume.nt = 1;
    volume.affine = {{{1, 0, 0, -3}, {0, 1, 0, 4}, {0, 0, 2, 5}}};
    volume.spacing = {1, 1, 2};
    volume.levels = volumes::Voxel_Levels::Of_Range(std::size_t{NX} * NY * NZ, 0, 0, false);
    return volume;
}

Image_Folder Folder(int volume_nb) {
    Image_Folder folder;
    for (int at = 0; at < volume_nb; ++at) {
        Folder_Volume& one = folder.volumes.emplace_back();
        one.title = "volume " + std::to_string(at);
        one.path = "/data/image" + std::to_string(at) + ".nii";
        one.volume = Image();
    }
    return folder;
}

Brush_Footprint Dot() {
    static const unsigned char byte = 1;
    static const unsigned char* const row = &byte;
    return {&row, 0};
}

Paint_Ink Ink(int tag) {
    Paint_Ink ink;
    ink.tag = static_cast<std::uint8_t>(tag);
    return ink;
}

Label_Description Described() {
    Label_Description description;
    description.tags = {{3, 0x010203, true, true, false, {}, 9.0F, "Three"}};
    description.markers = {{0, 0x040506, {}, "M1"}, {5, 0x040506, {}, "M6"}};
    return description;
}

/** Lets the n-th operation on files fail, and all later ones when the disk is full for good. */
class Failing_Operations {
  public:
    explicit Failing_Operations(int first_failing, bool stays = false) {
        left = first_failing;
        is_for_good = stays;
        has_failed = false;
        File_Operations& used = File_Operations_In_Use();
        used.create = [](const fs::path& path) { return Fails() ? -1 : File_Operations_Of_System().create(path); };
        used.write = [](int descriptor, const std::uint8_t* bytes, std::size_t count) -> long long {
            if (Fails()) {
                // A part of it still fits.
                File_Operations_Of_System().write(descriptor, bytes, count / 2);
                errno = ENOSPC;
                return -1;
            }
            return File_Operations_Of_System().write(descriptor, bytes, count);
        };
        used.flush = [](int descriptor) { return !Fails() && File_Operations_Of_System().flush(descriptor); };
        used.close = [](int descriptor) {
            const bool fails = Fails();
            const bool closed = File_Operations_Of_System().close(descriptor);
            errno = ENOSPC;
            return closed && !fails;
        };
        used.rename = [](const fs::path& from, const fs::path& to) {
            return Fails() ? std::make_error_code(std::errc::no_space_on_device)
                           : File_Operations_Of_System().rename(from, to);
        };
        used.remove = [](const fs::path& path) {
            return Fails() ? std::make_error_code(std::errc::permission_denied)
                           : File_Operations_Of_System().remove(path);
        };
        used.read = [](const fs::path& path, std::size_t most, std::string& bytes) {
            bytes.clear();
            return Fails() ? std::make_error_code(std::errc::io_error)
                           : File_Operations_Of_System().read(path, most, bytes);
        };
    }
    ~Failing_Operations() { File_Operations_In_Use() = File_Operations_Of_System(); }
    Failing_Operations(const Failing_Operations&) = delete;
    Failing_Operations& operator=(const Failing_Operations&) = delete;
    /** Whether there was an operation of that number. */
    static bool Has_Failed() { return has_failed; }

  private:
    static bool Fails() {
        const bool fails = left == 0 || (is_for_good && left < 0);
        --left;
        has_failed = has_failed || fails;
        errno = ENOSPC;
        return fails;
    }
    static inline std::atomic<int> left = 0;
    static inline std::atomic<bool> is_for_good = false;
    static inline std::atomic<bool> has_failed = false;
};

class Recovery : public ::testing::Test {
  protected:
    void SetUp() override {
        folder = fs::temp_directory_path() / ("recovery_test_" + std::to_string(std::random_device{}()));
        fs::create_directories(folder);
        journal = folder / "session-1.work";
        volumes.Take(Folder(2), {}, session);
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    void Paint(int slice, int x0, int x1, int y, int tag) {
        session.Stroke_Begin(slice, Dot(), x0, y, Ink(tag));
        session.Stroke_Move(x1, y);
        session.Stroke_End();
    }
    std::optional<Recovery_Snapshot> Look() {
        return recorder.Look(volumes, session, [](int) { return Described(); }, {"/data/image0.nii"});
    }
    Recovery_Record Read() const {
        std::string bytes;
        EXPECT_EQ(Text_File_Read(journal, RECOVERY_FILE_MOST, bytes), "");
        Recovery_Reading reading = Recovery_Decode(bytes);
        EXPECT_TRUE(reading.record.has_value()) << reading.problem;
        return reading.record.value_or(Recovery_Record{});
    }
    /** TAGs of a kept volume, in the order of its file. */
    static std::vector<std::uint8_t> Tags_Of(const Recovery_Volume& volume) {
        std::vector<std::uint8_t> tags(std::size_t{NX} * NY * NZ);
        for (std::size_t slice = 0; slice < volume.slices.size(); ++slice) {
            EXPECT_TRUE(Slice_Unpack(volume.slices[slice], std::span(tags).subspan(slice * NX * NY, NX * NY)));
        }
        return tags;
    }
    std::string Any_Record() {
        Recovery_Record record;
        record.time = 1234567;
        record.program = "1";
        record.opened = {"/a", "/b"};
        Recovery_Volume& volume = record.volumes.emplace_back();
        volume.grid = Volume_Grid_Of(Image());
        std::vector<std::uint8_t> tags(std::size_t{NX} * NY);
        std::iota(tags.begin(), tags.end(), std::uint8_t{0});
        for (int slice = 0; slice < NZ; ++slice) {
            volume.slices.push_back(Slice_Pack(tags));
        }
        return Recovery_Encode(record);
    }

    fs::path folder;
    fs::path journal;
    Open_Volumes volumes;
    Session session;
    Recovery_Recorder recorder;
};

TEST(Slice_Pack, gives_every_slice_back_and_is_small_for_areas) {
    std::mt19937 random(2);
    for (const unsigned int kinds : {1U, 2U, 256U}) {
        std::vector<std::uint8_t> tags(40000);
        for (std::uint8_t& tag : tags) {
            tag = static_cast<std::uint8_t>(random() % kinds);
        }
        const Packed_Slice packed = Slice_Pack(tags);
        std::vector<std::uint8_t> back(tags.size());
        ASSERT_TRUE(Slice_Unpack(packed, back));
        EXPECT_EQ(back, tags);
    }
    EXPECT_LE(Slice_Pack(std::vector<std::uint8_t>(512 * 512, 7)).size(), 4U);
}

TEST(Slice_Unpack, refuses_runs_that_do_not_fill_a_slice) {
    std::vector<std::uint8_t> tags(10);
    const auto refused = [&](const Packed_Slice& packed) { return !Slice_Unpack(packed, tags); };
    EXPECT_FALSE(refused({10, 3}));
    EXPECT_TRUE(refused({9, 3}));
    EXPECT_TRUE(refused({11, 3}));
    EXPECT_TRUE(refused({10}));
    EXPECT_TRUE(refused({0, 3, 10, 3}));
    EXPECT_TRUE(refused({0x8A}));
    EXPECT_TRUE(refused({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 1}));
    EXPECT_TRUE(refused({}));
}

TEST_F(Recovery, every_damaged_byte_and_every_cut_is_found) {
    const std::string whole = Any_Record();
    ASSERT_TRUE(Recovery_Decode(whole).record.has_value());
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x10);
        ASSERT_FALSE(Recovery_Decode(damaged).record.has_value()) << at;
        ASSERT_FALSE(Recovery_Decode(std::string_view(whole).substr(0, at)).record.has_value()) << at;
    }
    EXPECT_FALSE(Recovery_Decode(whole + "x").record.has_value());
}

TEST_F(Recovery, contents_that_lie_about_themselves_are_refused_whatever_their_checksum_says) {
    const std::string whole = Any_Record();
    constexpr std::size_t header = 13 + 4 + 8 + 4;
    std::mt19937 random(4);
    for (int round = 0; round < 3000; ++round) {
        std::string body = whole.substr(header);
        for (int change = 0; change < 1 + round % 4; ++change) {
            body[random() % body.size()] = static_cast<char>(random());
        }
        std::string file = whole.substr(0, 25);
        const std::uint32_t sum = Checksum({reinterpret_cast<const std::uint8_t*>(body.data()), body.size()});
        for (unsigned int at = 0; at < 4; ++at) {
            file += static_cast<char>(sum >> (8 * at));
        }
        const Recovery_Reading reading = Recovery_Decode(file + body);  // must not crash, nor take much memory
        if (reading.record) {
            for (const Recovery_Volume& volume : reading.record->volumes) {
                ASSERT_EQ(volume.slices.size(), static_cast<std::size_t>(volume.grid.size[2]));
            }
        }
    }
}

TEST_F(Recovery, a_later_version_is_told_apart_from_damage) {
    std::string later = Any_Record();
    later[13] = 9;
    EXPECT_TRUE(Recovery_Decode(later).is_newer);
    EXPECT_EQ(Recovery_Decode(later).problem, "was written by a later version");
    EXPECT_EQ(Recovery_Decode("something else").problem, "is damaged");
}

TEST_F(Recovery, only_what_is_not_saved_is_looked_at_and_only_what_changed_is_copied) {
    EXPECT_FALSE(Look().has_value());
    Paint(1, 2, 9, 4, 3);
    std::optional<Recovery_Snapshot> first = Look();
    ASSERT_TRUE(first.has_value());
    ASSERT_EQ(first->parts.size(), 1U);
    EXPECT_TRUE(first->parts[0].is_whole);
    ASSERT_EQ(first->parts[0].slices.size(), 1U) << "the others are background";
    EXPECT_EQ(first->parts[0].slices[0].first, 1);
    EXPECT_FALSE(Look().has_value()) << "nothing new";
    Paint(4, 2, 9, 4, 3);
    std::optional<Recovery_Snapshot> second = Look();
    ASSERT_TRUE(second.has_value());
    ASSERT_EQ(second->parts[0].slices.size(), 1U);
    EXPECT_EQ(second->parts[0].slices[0].first, 4);
    session.Undo();
    second = Look();
    ASSERT_TRUE(second.has_value());
    ASSERT_EQ(second->parts[0].slices.size(), 1U);
    EXPECT_EQ(second->parts[0].slices[0].first, 4);
    session.Marker_Set(0, {true, 1, 1, 1});
    second = Look();
    ASSERT_TRUE(second.has_value());
    EXPECT_TRUE(second->parts[0].slices.empty());
}

/** A volume so large that one look does not suffice. */
class Recovery_Of_Large : public Recovery {
  protected:
    static constexpr int SIDE = 1024;
    static constexpr int SLICES = 20;
    static constexpr int AT_ONCE = static_cast<int>(RECOVERY_COPY_MOST / (std::size_t{SIDE} * SIDE));
    static constexpr int LOOKS = (SLICES + AT_ONCE - 1) / AT_ONCE;
    void SetUp() override {
        Recovery::SetUp();
        Image_Folder large = Folder(1);
        Volume& image = large.volumes[0].volume;
        image.nx = image.ny = SIDE;
        image.nz = SLICES;
        image.levels = volumes::Voxel_Levels::Of_Range(std::size_t{SIDE} * SIDE * SLICES, 0, 0, false);
        volumes.Take(std::move(large), {}, session);
        std::vector<std::uint8_t> tags(std::size_t{SIDE} * SIDE * SLICES, 7);
        ASSERT_TRUE(session.Take_Up(std::move(tags), {}, {}, {}));
    }
};

TEST_F(Recovery_Of_Large, no_look_copies_more_than_a_few_milliseconds_worth_and_together_they_give_the_last_state) {
    std::optional<Recovery_Snapshot> all = Look();
    int looks = 1;
    for (; recorder.Is_Unfinished() && looks < 100; ++looks) {
        ASSERT_FALSE(all.has_value());
        Paint(0, 5 * looks, 5 * looks, 1, 9);            // copied already
        Paint(SLICES - 1, 5 * looks, 5 * looks, 1, 11);  // not yet
        all = Look();
    }
    EXPECT_EQ(looks, LOOKS);
    ASSERT_TRUE(all.has_value());
    ASSERT_EQ(all->parts.size(), 1U);
    ASSERT_EQ(all->parts[0].slices.size(), std::size_t{SLICES});
    for (const auto& [slice, tags] : all->parts[0].slices) {
        EXPECT_TRUE(std::ranges::equal(tags, std::as_const(session).Labels().Slice(slice))) << slice;
    }
    Paint(3, 1, 2, 1, 12);
    const std::optional<Recovery_Snapshot> next = Look();
    ASSERT_TRUE(next.has_value());
    EXPECT_EQ(next->parts[0].slices.size(), 1U);
}

TEST_F(Recovery_Of_Large, what_is_saved_between_two_looks_is_forgotten) {
    EXPECT_FALSE(Look().has_value());
    EXPECT_TRUE(recorder.Is_Unfinished());
    std::string kept;
    ASSERT_EQ(session.Save_Labels(folder / "large.nii.gz", {}, kept), "");
    EXPECT_FALSE(Look().has_value());
    EXPECT_FALSE(recorder.Is_Unfinished());
    // All is to be copied again when there is work again: nothing of the copies was kept.
    Paint(0, 1, 2, 1, 9);
    for (int looks = 1; looks < LOOKS; ++looks) {
        EXPECT_FALSE(Look().has_value()) << looks;
    }
    EXPECT_TRUE(Look().has_value());
}

TEST_F(Recovery, when_the_state_before_is_lost_all_is_asked_for_again_and_the_journal_stays) {
    Recovery_Keeper keeper(journal, "test");
    Paint(1, 2, 9, 4, 3);
    keeper.Offer(*Look());
    ASSERT_TRUE(keeper.Wait());
    EXPECT_FALSE(keeper.Wants_Whole_Take());
    Paint(2, 2, 9, 4, 3);
    std::optional<Recovery_Snapshot> second = Look();
    second->parts[0].serial += 1000;  // as if there had been no memory for what it builds on
    keeper.Offer(std::move(*second));
    EXPECT_FALSE(keeper.Wait());
    EXPECT_EQ(Read().volumes[0].tagged_nb, 8U);
    EXPECT_TRUE(keeper.Wants_Whole_Take());
    EXPECT_FALSE(keeper.Wants_Whole_Take());
    recorder.Forget();
    keeper.Offer(*Look());
    EXPECT_TRUE(keeper.Wait());
    EXPECT_EQ(Read().volumes[0].tagged_nb, 16U);
}

TEST_F(Recovery, a_stroke_is_looked_at_while_the_button_is_held) {
    session.Stroke_Begin(2, Dot(), 1, 1, Ink(5));
    ASSERT_TRUE(Look().has_value());
    EXPECT_FALSE(Look().has_value());
    session.Stroke_Move(5, 1);
    const std::optional<Recovery_Snapshot> moved = Look();
    ASSERT_TRUE(moved.has_value());
    EXPECT_EQ(moved->parts[0].slices.size(), 1U);
    session.Stroke_End();
    EXPECT_TRUE(Look().has_value());
}

TEST_F(Recovery, the_work_on_all_volumes_comes_back_with_names_markers_and_the_label_file) {
    Paint(1, 2, 9, 4, 3);
    session.Marker_Set(5, {true, 3, 2, 4});
    session.Label_Path_Set("/data/mine.nii.gz");
    const std::vector<std::uint8_t> first(session.Labels().All().begin(), session.Labels().All().end());
    volumes.Switch(1, session);
    Paint(0, 0, NX - 1, 10, 200);
    const std::vector<std::uint8_t> second(session.Labels().All().begin(), session.Labels().All().end());
    {
        Recovery_Keeper keeper(journal, "test 1");
        keeper.Offer(*Look());
        ASSERT_TRUE(keeper.Wait()) << keeper.Problem_Take();
    }
    const Recovery_Record record = Read();
    EXPECT_EQ(record.program, "test 1");
    EXPECT_EQ(record.opened, std::vector<std::string>{"/data/image0.nii"});
    EXPECT_GT(record.time, 1'600'000'000);
    ASSERT_EQ(record.volumes.size(), 2U);
    EXPECT_EQ(record.volumes[0].tagged_nb, 8U);
    EXPECT_EQ(record.volumes[1].tagged_nb, std::uint64_t{NX});

    Open_Volumes later;  // the next start
    Session hand;
    later.Take(Folder(2), {}, hand);
    for (const Recovery_Volume& volume : record.volumes) {
        const int at = Recovery_Volume_Find(later, hand, volume);
        ASSERT_GE(at, 0);
        later.Switch(at, hand);
        const Label_Description description = Label_Description_Parse(volume.description, {NZ, NX, NY}).description;
        EXPECT_EQ(description.tags, Described().tags);
        EXPECT_FALSE(hand.Take_Up(std::vector<std::uint8_t>(5), {}, "", {}));
        ASSERT_TRUE(hand.Take_Up(Tags_Of(volume), description.markers, volume.labels, volume.stamps));
        EXPECT_TRUE(hand.Is_Unsaved());
        EXPECT_TRUE(std::ranges::equal(hand.Labels().All(), at == 0 ? first : second));
    }
    later.Switch(0, hand);
    EXPECT_EQ(hand.Markers().Get(5), (Marker{true, 3, 2, 4}));
    EXPECT_EQ(hand.Label_Path(), fs::path("/data/mine.nii.gz"));
}

TEST_F(Recovery, changes_build_on_one_another_and_what_was_saved_goes) {
    Recovery_Keeper keeper(journal, "test");
    std::mt19937 random(8);
    for (int round = 0; round < 40; ++round) {
        if (random() % 4 == 0) {
            volumes.Switch(static_cast<int>(random() % 2), session);
        }
        if (random() % 5 == 0) {
            session.Undo();
        } else {
            Paint(static_cast<int>(random() % NZ), static_cast<int>(random() % NX), static_cast<int>(random() % NX),
                  static_cast<int>(random() % NY), static_cast<int>(random() % 5));
        }
        if (std::optional<Recovery_Snapshot> snapshot = Look()) {
            keeper.Offer(std::move(*snapshot));
        }
        if (round % 5 != 4 || volumes.Unsaved(session).empty()) {
            continue;
        }
        ASSERT_TRUE(keeper.Wait());
        for (const Recovery_Volume& volume : Read().volumes) {
            const Session& there = volumes.Session_Of(volume.index, session);
            std::vector<std::uint8_t> shown = Tags_Of(volume);
            Slices_Turn(std::span(shown), NX, NY, there.Order());
            ASSERT_TRUE(std::ranges::equal(there.Labels().All(), shown)) << round;
        }
    }
    for (int volume = 0; volume < 2; ++volume) {
        volumes.Switch(volume, session);
        Paint(0, 0, 3, 3, 1 + volume);
        ASSERT_EQ(session.Take_Labels(Image(), "saved.nii"), "");
        keeper.Offer(Look().value_or(Recovery_Snapshot{}));
    }
    ASSERT_TRUE(keeper.Wait());
    EXPECT_FALSE(fs::exists(journal)) << "all is saved";
}

TEST_F(Recovery, of_equal_images_the_place_in_the_list_decides_and_others_are_not_taken) {
    Image_Folder twins = Folder(3);
    for (Folder_Volume& one : twins.volumes) {
        one.title = "twin";
        one.path = "/data/twin.dcm";
    }
    volumes.Take(std::move(twins), {}, session);
    Recovery_Volume wanted;
    wanted.image = "/data/twin.dcm";
    wanted.title = "twin";
    wanted.grid = Volume_Grid_Of(Image());
    wanted.index = 2;
    EXPECT_EQ(Recovery_Volume_Find(volumes, session, wanted), 2);
    wanted.index = 7;
    EXPECT_EQ(Recovery_Volume_Find(volumes, session, wanted), 0);
    wanted.grid.affine[2][3] += 30;
    EXPECT_EQ(Recovery_Volume_Find(volumes, session, wanted), -1);
}

TEST_F(Recovery, a_running_program_keeps_its_journal_from_others_and_a_dead_one_leaves_it) {
    std::optional<Recovery_Claim> claim = Recovery_Claim_Make(folder);
    ASSERT_TRUE(claim.has_value());
    std::ofstream(claim->File(), std::ios::binary) << Any_Record();
    EXPECT_TRUE(Recovery_Find(folder).found.empty()) << "it runs";
    const std::optional<Recovery_Claim> other = Recovery_Claim_Make(folder);
    ASSERT_TRUE(other.has_value());
    EXPECT_NE(other->File(), claim->File());
    const fs::path left = claim->File();
    claim.reset();  // as when the program is gone
    const fs::path half = Unfinished_Name(left, 7);
    std::ofstream(half) << "half";
    {
        Recovery_Findings findings = Recovery_Find(folder);
        ASSERT_EQ(findings.found.size(), 1U);
        EXPECT_EQ(findings.found[0].claim.File(), left);
        EXPECT_EQ(findings.found[0].record.time, 1234567);
        EXPECT_FALSE(fs::exists(half));
        EXPECT_TRUE(Recovery_Find(folder).found.empty()) << "somebody is asking the user about it";
    }
    Recovery_Findings findings = Recovery_Find(folder);
    ASSERT_EQ(findings.found.size(), 1U) << "still there when it was not taken";
    EXPECT_TRUE(findings.found[0].claim.Remove());
    EXPECT_FALSE(fs::exists(left));
}

TEST_F(Recovery, a_damaged_journal_and_one_of_a_later_version_are_told_and_kept_aside) {
    std::ofstream(journal, std::ios::binary) << Any_Record().substr(0, 100);
    std::string later = Any_Record();
    later[13] = 2;
    std::ofstream(folder / "session-2.work", std::ios::binary) << later;
    const Recovery_Findings findings = Recovery_Find(folder);
    EXPECT_TRUE(findings.found.empty());
    ASSERT_EQ(findings.told.size(), 2U);
    EXPECT_EQ(findings.told[0],
              "Work that was not saved cannot be taken up: session-1.work is damaged. It is kept as "
              "session-1.work.damaged.");
    EXPECT_TRUE(fs::exists(folder / "session-1.work.damaged"));
    EXPECT_TRUE(fs::exists(folder / "session-2.work.newer"));
    EXPECT_TRUE(Recovery_Find(folder).told.empty()) << "told once";
}

TEST_F(Recovery, a_journal_that_cannot_be_read_stays_where_it_is) {
    std::ofstream(journal, std::ios::binary) << Any_Record();
    {
        const Failing_Operations failing(0);
        const Recovery_Findings findings = Recovery_Find(folder);
        EXPECT_TRUE(findings.found.empty());
        ASSERT_EQ(findings.told.size(), 1U);
        EXPECT_NE(findings.told[0].find("cannot be read"), std::string::npos);
    }
    EXPECT_EQ(Recovery_Find(folder).found.size(), 1U);
}

TEST_F(Recovery, a_damaged_journal_that_cannot_be_kept_aside_stays_and_that_is_told) {
    std::ofstream(journal, std::ios::binary) << Any_Record().substr(0, 100);
    {
        const Failing_Operations failing(1);  // behind reading
        const Recovery_Findings findings = Recovery_Find(folder);
        EXPECT_TRUE(Failing_Operations::Has_Failed());
        ASSERT_EQ(findings.told.size(), 1U);
        EXPECT_NE(findings.told[0].find("is damaged. It cannot be kept aside"), std::string::npos) << findings.told[0];
    }
    EXPECT_EQ(fs::file_size(journal), 100U);
    EXPECT_EQ(Recovery_Find(folder).told.size(), 1U) << "the next start tries again";
}

TEST_F(Recovery, a_journal_whose_lock_cannot_be_made_is_told) {
    std::ofstream(journal, std::ios::binary) << Any_Record();
    fs::create_directory(folder / "session-1.lock");  // as good as a folder that may not be written to
    const Recovery_Findings findings = Recovery_Find(folder);
    EXPECT_TRUE(findings.found.empty());
    ASSERT_EQ(findings.told.size(), 1U);
    EXPECT_NE(findings.told[0].find("session-1.work, which cannot be taken up"), std::string::npos);
    EXPECT_EQ(fs::file_size(journal), Any_Record().size());
}

TEST_F(Recovery, work_that_cannot_be_discarded_is_offered_again) {
    std::ofstream(journal, std::ios::binary) << Any_Record();
    {
        Recovery_Findings findings = Recovery_Find(folder);
        ASSERT_EQ(findings.found.size(), 1U);
        const Failing_Operations failing(0);
        EXPECT_FALSE(findings.found[0].claim.Remove());
    }
    EXPECT_EQ(Recovery_Find(folder).found.size(), 1U);
}

#if defined(__linux__)
TEST_F(Recovery, a_disk_that_cannot_be_read_is_no_exception) {
    std::string bytes = "former";
    EXPECT_EQ(Text_File_Read("/proc/self/mem", RECOVERY_FILE_MOST, bytes), "cannot be read");
    EXPECT_EQ(bytes, "");
}
#endif

TEST_F(Recovery, what_was_found_is_told_in_words_that_count) {
    Recovery_Record record = *Recovery_Decode(Any_Record()).record;
    Recovery_Volume& volume = record.volumes[0];
    volume.title = "head";
    volume.image = "/data/head.nii";
    volume.tagged_nb = 1;
    Label_Description described = Described();
    described.markers[1].place = Label_Voxel{1, 2, 3};
    volume.description = Label_Description_Text(described);
    EXPECT_NE(Recovery_Found_Text(record).find("\n-\xC2\xA0head: 1 voxel with a TAG, 1 marker (/data/head.nii)\n"),
              std::string::npos)
        << Recovery_Found_Text(record);
    volume.tagged_nb = 12345;
    described.markers[0].place = Label_Voxel{1, 2, 3};
    volume.description = Label_Description_Text(described);
    EXPECT_NE(Recovery_Found_Text(record).find("head: 12,345 voxels with TAGs, 2 markers ("), std::string::npos);
    record.volumes.resize(10, record.volumes[0]);
    EXPECT_NE(Recovery_Found_Text(record).find("\n- and 2 more\n"), std::string::npos);
}

TEST_F(Recovery, when_any_operation_of_keeping_fails_the_former_journal_is_whole_and_it_is_told_once) {
    Recovery_Keeper keeper(journal, "test");
    Paint(1, 2, 9, 4, 3);
    keeper.Offer(*Look());
    ASSERT_TRUE(keeper.Wait());
    for (int failing = 0;; ++failing) {
        const std::vector<std::uint8_t> before = Tags_Of(Read().volumes.at(0));
        Paint(failing % NZ, failing % NX, NX - 1, failing % NY, 10 + failing);
        {
            const Failing_Operations operations(failing);
            keeper.Offer(*Look());
            const bool is_kept = keeper.Wait();
            if (!Failing_Operations::Has_Failed()) {
                EXPECT_TRUE(is_kept);
                EXPECT_GE(failing, 5) << "create, write, flush, close, rename";
                break;
            }
            EXPECT_FALSE(is_kept) << failing;
        }
        EXPECT_EQ(Tags_Of(Read().volumes.at(0)), before) << failing;
        EXPECT_FALSE(keeper.Problem_Take().empty()) << failing;
        EXPECT_TRUE(keeper.Problem_Take().empty()) << "once";
        keeper.Retry();
        EXPECT_TRUE(keeper.Wait());
        EXPECT_NE(Tags_Of(Read().volumes.at(0)), before) << "the next try holds all";
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1) << "nothing half written";
}

TEST_F(Recovery, a_disk_that_stays_full_is_told_once) {
    Recovery_Keeper keeper(journal, "test");
    const Failing_Operations operations(0, true);
    int told = 0;
    for (int round = 0; round < 4; ++round) {
        Paint(round, 2, 9, 4, 3);
        keeper.Offer(*Look());
        EXPECT_FALSE(keeper.Wait());
        told += keeper.Problem_Take().empty() ? 0 : 1;
        keeper.Retry();
        EXPECT_FALSE(keeper.Wait());
    }
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(keeper.Has_Failed());
}

TEST_F(Recovery, a_journal_that_cannot_be_removed_is_told) {
    Recovery_Keeper keeper(journal, "test");
    Paint(1, 2, 9, 4, 3);
    keeper.Offer(*Look());
    ASSERT_TRUE(keeper.Wait());
    const Failing_Operations operations(0, true);
    session.Undo();
    keeper.Offer(*Look());
    EXPECT_FALSE(keeper.Wait());
    EXPECT_NE(keeper.Problem_Take().find("cannot be removed"), std::string::npos);
}

TEST_F(Recovery, when_any_operation_of_saving_labels_fails_each_file_is_the_old_or_the_new_one_and_it_is_told) {
    const fs::path labels = folder / "head.nii.gz";
    const fs::path text = folder / "head.labels.txt";
    std::string kept;
    Label_Description old_names = Described();
    Label_Description new_names = Described();
    new_names.tags[0].name = "New";
    for (int failing = 0;; ++failing) {
        Open_Volumes opened;
        Session work;
        opened.Take(Folder(1), {}, work);
        std::error_code ignored;
        fs::remove(labels, ignored);
        fs::remove(text, ignored);
        work.Stroke_Begin(1, Dot(), 3, 3, Ink(1));
        work.Stroke_End();
        ASSERT_EQ(work.Save_Labels(labels, old_names, kept), "");
        work.Stroke_Begin(1, Dot(), 4, 3, Ink(2));
        work.Stroke_End();
        std::string error;
        {
            const Failing_Operations operations(failing);
            error = work.Save_Labels(labels, new_names, kept);
        }
        const Load_Result loaded = Volume_Load(labels);
        ASSERT_TRUE(loaded.volume.has_value()) << failing << loaded.error;
        const bool is_new = std::ranges::count(loaded.volume->levels, 2) == 1;
        EXPECT_EQ(std::ranges::count(loaded.volume->levels, 1), 1) << failing;
        const Label_Description_Loading described = Label_Description_Load(labels, {NZ, NX, NY});
        if (described.is_there) {
            EXPECT_TRUE(described.warning.empty()) << failing << described.warning;
            const bool is_new_text = described.description.tags == new_names.tags;
            EXPECT_TRUE(is_new_text || described.description.tags == old_names.tags) << failing;
            EXPECT_TRUE(is_new || !is_new_text) << failing;
        } else {
            // It could not be read, so it was not overwritten but kept.
            EXPECT_NE(error + kept, "") << failing;
            EXPECT_TRUE(fs::exists(text.string() + ".damaged")) << failing;
        }
        EXPECT_EQ(work.Is_Unsaved(), !error.empty()) << failing;
        if (error.empty()) {
            EXPECT_TRUE(is_new) << failing << ": what is not told has not happened";
            EXPECT_EQ(described.description.tags, new_names.tags) << failing;
        }
        std::vector<fs::path> parts;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
            if (entry.path().string().find(".part") != std::string::npos) {
                parts.push_back(entry.path());
            }
        }
        EXPECT_TRUE(parts.empty()) << failing;
        if (!Failing_Operations::Has_Failed()) {
            EXPECT_EQ(error, "");
            EXPECT_TRUE(is_new);
            EXPECT_GE(failing, 11) << "twice create, write, flush, close, rename, and reading the former text";
            break;
        }
    }
}

TEST(Activity_Log, keeps_the_last_lines_cut_between_letters_and_in_one_line) {
    Activity_Log log;
    EXPECT_EQ(log.Nb(), 0U);
    log.Add("a\nb");
    EXPECT_EQ(log.Line(0), "a b");
    for (int at = 1; at <= 60; ++at) {
        log.Add("line " + std::to_string(at));
    }
    EXPECT_EQ(log.Nb(), ACTIVITY_LINES);
    EXPECT_EQ(log.Line(0), "line 11");
    EXPECT_EQ(log.Line(ACTIVITY_LINES - 1), "line 60");
    log.Add(std::string(ACTIVITY_LINE_SIZE - 1, 'x') + "\xC3\xA9");
    EXPECT_EQ(log.Line(ACTIVITY_LINES - 1), std::string(ACTIVITY_LINE_SIZE - 1, 'x'));
}

}  // namespace
