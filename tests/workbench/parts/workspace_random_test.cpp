// A long session on several volumes, at random, beside a plain model of what the work must be after each step.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/workbench/parts/work_scene.h"
#include "workbench/parts/history_control.h"

using namespace workbench;

namespace {

constexpr int VOLUME_NB = 3;
#ifdef __OPTIMIZE__
constexpr int STEP_NB = 100'000;
#else
constexpr int STEP_NB = 20'000;  // each takes ten times as long
#endif
constexpr std::size_t LOOK_EVERY = 7;  // steps between two comparisons of everything
constexpr std::size_t SLICE_SIZE = std::size_t{Work_Scene::NX} * Work_Scene::NY;
constexpr std::size_t NAMED_NB = 6;  // TAGs and markers that are changed

/** Everything that a step back brings back. */
struct Work_State {
    std::array<std::uint8_t, SLICE_SIZE * Work_Scene::NZ> tags{};
    std::map<int, std::array<int, 3>> markers;  // x, y, slice of those that are placed
    std::array<std::string, NAMED_NB> tag_names;
    std::array<std::string, NAMED_NB> marker_names;
    std::array<float, NAMED_NB> low{};
    std::array<float, NAMED_NB> high{};
    std::array<std::uint32_t, NAMED_NB> colors{};
    friend bool operator==(const Work_State&, const Work_State&) = default;
};

/** The states of a volume's work, and where in them it is. */
struct Plain_History {
    std::vector<Work_State> states;
    std::size_t now = 0;
    std::array<std::uint8_t, NAMED_NB> locked{};  // no step

    Work_State& Now() { return states[now]; }
    /** A step leads to another state; what had been undone goes, and the oldest beyond what is kept. */
    void Push(const Work_State& next) {
        states.resize(now + 1);
        states.push_back(next);
        ++now;
        if (now > JOURNAL_STEPS_MAX) {
            states.erase(states.begin());
            --now;
        }
    }
};

class Random_Session : public ::testing::Test, protected Work_Scene {
  protected:
    Random_Session() { Open(VOLUME_NB); }

    int Random(int nb) { return static_cast<int>(random() % static_cast<std::uint64_t>(nb)); }
    std::size_t Random_Named() { return 1 + static_cast<std::size_t>(Random(NAMED_NB - 1)); }
    Plain_History& Plain() { return plain[static_cast<std::size_t>(work.volumes.Current())]; }

    static std::string Name_Of(const char* label) { return label != nullptr ? label : "-"; }

    /** What the program has of the current volume. */
    Work_State Seen() {
        Work_State seen;
        for (int slice = 0; slice < NZ; ++slice) {
            std::ranges::copy(work.session.Labels().Slice(slice),
                              seen.tags.begin() + static_cast<std::ptrdiff_t>(SLICE_SIZE) * slice);
        }
        for (int marker = 0; marker < MARKER_NB; ++marker) {
            if (const Marker& place = work.session.Markers().Get(marker); place.is_placed) {
                seen.markers[marker] = {place.x, place.y, place.slice};
            }
        }
        for (std::size_t at = 0; at < NAMED_NB; ++at) {
            seen.tag_names[at] = Name_Of(values.Tag_Labels()[at]);
            seen.marker_names[at] = Name_Of(values.Marker_Labels()[at]);
            seen.low[at] = values.Threshold_Min()[at];
            seen.high[at] = values.Threshold_Max()[at];
            seen.colors[at] = values.Tag_Color(static_cast<int>(at));
        }
        return seen;
    }

    /** Voxels of one slice or two become a TAG. */
    void Voxels() {
        const auto tag = static_cast<std::uint8_t>(Random(5));
        Work_State next = Plain().Now();
        Voxel_Change change;
        const int first = Random(NZ);
        for (int slice = first; slice <= std::min(first + Random(2), NZ - 1); ++slice) {
            const std::span<const std::uint8_t> before = work.session.Labels().Slice(slice);
            std::vector<std::uint8_t> after(before.begin(), before.end());
            for (int nb = 1 + Random(4); nb > 0; --nb) {
                after[static_cast<std::size_t>(Random(static_cast<int>(SLICE_SIZE)))] = tag;
            }
            if (std::optional<Slice_Change> found = Slice_Difference(slice, before, after)) {
                change.slices.push_back(std::move(*found));
                std::ranges::copy(after, next.tags.begin() + static_cast<std::ptrdiff_t>(SLICE_SIZE) * slice);
            }
        }
        if (!change.slices.empty()) {
            work.session.Voxels_Change("Voxels", std::move(change));
            Plain().Push(next);
        }
    }

    void Marker_Move() {
        const int marker = Random(MARKER_NB);
        const std::array<int, 3> place = {Random(NX), Random(NY), Random(NZ)};
        Work_State next = Plain().Now();
        const bool is_placed = Random(3) != 0;
        if (is_placed) {
            next.markers[marker] = place;
        } else {
            next.markers.erase(marker);
        }
        if (next != Plain().Now()) {
            Plain().Push(next);
        }
        work.session.Marker_Set(marker, is_placed ? Marker{true, place[0], place[1], place[2]} : Marker{});
    }

    void Rename() {
        const std::size_t at = Random_Named();
        const std::string name = Random(5) == 0 ? "-" : "name " + std::to_string(Random(20));
        const char* const label = name == "-" ? nullptr : name.c_str();
        Work_State next = Plain().Now();
        if (Random(2) == 0) {
            next.tag_names[at] = name;
            values.Tag_Label_Set(static_cast<int>(at), label);
        } else {
            next.marker_names[at] = name;
            values.Marker_Label_Set(static_cast<int>(at), label);
        }
        Named(next);
    }

    void Threshold() {
        const std::size_t at = Random_Named();
        Work_State next = Plain().Now();
        next.low[at] = static_cast<float>(Random(40)) * 0.7F;
        next.high[at] = Random(4) == 0 ? TAG_THRESHOLD_MAX_UNSET : 50.0F + static_cast<float>(Random(40)) * 0.3F;
        values.Threshold_Min()[at] = next.low[at];
        values.Threshold_Max()[at] = next.high[at];
        Named(next);
    }

    /** Told at once, or only when the volume is left. */
    void Named(const Work_State& next) {
        if (next != Plain().Now()) {
            Plain().Push(next);
        }
        if (Random(3) != 0) {
            labels.Note();
        } else {
            Leave();
        }
    }

    void Color() {
        const std::size_t at = Random_Named();
        Work_State next = Plain().Now();
        next.colors[at] = static_cast<std::uint32_t>(Random(1 << 24));
        values.Tag_Color_Set(static_cast<int>(at), next.colors[at]);
        work.session.Note_Colors(values.Tag_Colors());
        if (next != Plain().Now()) {
            Plain().Push(next);
        }
    }

    void Lock() {
        const std::size_t at = Random_Named();
        values.Tag_Lock()[at] ^= 1U;
        Plain().locked[at] ^= 1U;
    }

    /** To another volume. */
    void Leave() { Go((work.volumes.Current() + 1 + Random(VOLUME_NB - 1)) % VOLUME_NB); }

    void Step_Back_Or_Forth() {
        const bool redo = Random(2) == 0;
        for (int nb = 1 + Random(3); nb > 0; --nb) {
            Plain_History& history_of = Plain();
            if (redo) {
                history_of.now = std::min(history_of.now + 1, history_of.states.size() - 1);
            } else {
                history_of.now -= history_of.now > 0 ? 1 : 0;
            }
            history.Undo_Or_Redo(redo);
        }
        dialogs.told.clear();
    }

    void Look(int step) {
        ASSERT_EQ(work.session.Journal().Undo_Nb(), Plain().now) << "after step " << step;
        ASSERT_EQ(work.session.Journal().Redo_Nb(), Plain().states.size() - 1 - Plain().now) << "after step " << step;
        ASSERT_TRUE(Seen() == Plain().Now()) << "after step " << step;
        for (std::size_t at = 0; at < NAMED_NB; ++at) {
            ASSERT_EQ(values.Tag_Lock()[at], Plain().locked[at]) << "TAG " << at << " after step " << step;
        }
    }

    std::mt19937_64 random{20};
    std::array<Plain_History, VOLUME_NB> plain;
    History_Control history{work, values, dialogs, {[] {}, [](int) {}}};
};

TEST_F(Random_Session, on_several_volumes_agrees_with_a_plain_model) {
    for (Plain_History& one : plain) {
        one.states = {Seen()};
    }
    for (int step = 0; step < STEP_NB; ++step) {
        switch (Random(12)) {
            case 0:
            case 1:
            case 2:
                Voxels();
                break;
            case 3:
            case 4:
                Marker_Move();
                break;
            case 5:
                Rename();
                break;
            case 6:
                Threshold();
                break;
            case 7:
                Color();
                break;
            case 8:
                Lock();
                break;
            case 9:
                Leave();
                break;
            default:
                Step_Back_Or_Forth();
                break;
        }
        if (static_cast<std::size_t>(step) % LOOK_EVERY == 0) {
            Look(step);
            if (HasFatalFailure()) {
                return;
            }
        }
    }
    EXPECT_GT(work.session.Journal().Undo_Nb() + work.session.Journal().Redo_Nb(), 0U);
}

}  // namespace
