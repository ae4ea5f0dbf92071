#include "workbench/edits/segmentation_control.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <numeric>
#include <random>
#include <utility>

#include "workbench/edits/segmentation_tables.h"

using namespace workbench;

namespace {

namespace fs = std::filesystem;

constexpr int SIDE = 6;
constexpr int SLICES = 4;
constexpr std::size_t SLICE_SIZE = std::size_t{SIDE} * SIDE;

/** Levels 0 .. 143 along the voxels of the file; grey = 2 * level - 100. */
volumes::Volume Image() {
    volumes::Volume volume;
    volume.nx = volume.ny = SIDE;
    volume.nz = SLICES;
    volume.nt = 1;
    volume.affine = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 2, 0}}};
    volume.spacing = {1.0, 1.0, 2.0};
    volume.slope = 2.0;
    volume.intercept = -100.0;
    volume.scalar_type = "int16";
    std::vector<std::int32_t> levels(SLICE_SIZE * SLICES);
    std::iota(levels.begin(), levels.end(), 0);
    volume.levels = std::move(levels);
    volume.level_max = static_cast<std::int32_t>(volume.levels.size()) - 1;
    return volume;
}

/** Answers questions with what was set before; runs actions at once. */
class Told_Host : public Segmentation_Host {
  public:
    Session& Work() override { return session; }
    Segmentation_Hand Hand() const override { return hand; }
    std::vector<Tag_Claim> Claims() const override { return claims; }
    std::string Tag_Name(int tag) const override { return "T" + std::to_string(tag); }
    std::string Grey_Unit() const override { return "HU"; }
    std::optional<std::string> Text_Ask(const std::string& title, const std::string& question,
                                        const std::string& start) override {
        asked = title + "|" + question + "|" + start;
        return text_answer;
    }
    int Line_Ask(const std::string& title, const std::string& label, const std::vector<std::string>& shown,
                 int current) override {
        asked = title + "|" + label + "|" + std::to_string(current);
        lines = shown;
        const int answer = line_answers.empty() ? -1 : line_answers.front();
        line_answers.erase(line_answers.begin(), line_answers.begin() + (line_answers.empty() ? 0 : 1));
        return answer;
    }
    std::optional<fs::path> Label_File_Ask(const std::string&) override { return file_answer; }
    std::optional<fs::path> Csv_File_Ask(const std::string&, const std::string&) override { return csv_answer; }
    void Run(const std::string&,
             const std::function<void(const segmentation::Edit_Progress& progress)>& action) override {
        if (has_no_memory) {
            throw std::bad_alloc();
        }
        action([this](double) { return !is_given_up; });
    }
    void Stroke_End() override {
        ++stroke_end_nb;
        session.Stroke_End();
    }
    void Labels_Changed(int slice) override { changed_slice = slice; }
    void Limits_Changed() override { ++limits_nb; }
    void Preview_Changed() override { ++preview_nb; }
    void Statistics_Show(const std::string& title, const std::string& text) override {
        is_statistics_shown = true;
        table = title + "\n" + text;
    }
    bool Is_Statistics_Shown() const override { return is_statistics_shown; }
    void Histogram_Of(int tag, const segmentation::Slice_Range& slices) override {
        told = "histogram of " + std::to_string(tag) + " in " + std::to_string(slices.first) + " to " +
               std::to_string(slices.last);
    }
    bool Table_Show(const std::string& title, const std::string& text) override {
        table = title + "\n" + text;
        return csv_answer.has_value();
    }
    void Tell(const std::string& text) override { told = text; }
    void Warn(const std::string& text) override { warned = text; }

    Session session;
    Segmentation_Hand hand{1, 1, 8, {}, {}};
    std::vector<Tag_Claim> claims;
    std::optional<std::string> text_answer;
    std::vector<int> line_answers;
    std::optional<fs::path> file_answer, csv_answer;
    bool is_given_up = false;
    bool has_no_memory = false;
    bool is_statistics_shown = false;
    int changed_slice = -1;
    int preview_nb = 0;
    int limits_nb = 0;
    int stroke_end_nb = 0;
    std::vector<std::string> lines;
    std::string asked, told, warned, table;
};

class Segmentation_Control_Test : public ::testing::Test {
  protected:
    Segmentation_Control_Test() { host.session.Take(Image(), "image.nii"); }
    std::vector<std::uint8_t> Tags() const {
        const std::span<const std::uint8_t> all = std::as_const(host.session).Labels().All();
        return {all.begin(), all.end()};
    }
    std::uint64_t Nb(int tag) const { return host.session.Labels().Counts()[static_cast<std::size_t>(tag)]; }
    std::size_t Step_Nb() const { return host.session.Journal().Undo_Nb(); }
    /** Gives voxels a TAG as a user would have. */
    void Set(int slice, const std::vector<std::size_t>& at, int tag) {
        const std::span<const std::uint8_t> now = std::as_const(host.session).Labels().Slice(slice);
        std::vector<std::uint8_t> after(now.begin(), now.end());
        for (const std::size_t one : at) {
            after[one] = static_cast<std::uint8_t>(tag);
        }
        Voxel_Change change;
        change.slices.push_back(*Slice_Difference(slice, now, after));
        host.session.Voxels_Change("Set", std::move(change));
    }

    Told_Host host;
    Segmentation_Control control{host};
};

TEST_F(Segmentation_Control_Test, all_bands_become_labels_of_the_volume_in_one_step) {
    host.claims = {{1, {-100.0F, -80.0F}}, {2, {100.0F, {}}}};  // levels 0 .. 10 and 100 .. 143
    control.Bands_Apply(true);
    EXPECT_EQ(Nb(1), 11U);
    EXPECT_EQ(Nb(2), 44U);
    const std::vector<std::uint8_t> tags = Tags();
    for (std::size_t at = 0; at < tags.size(); ++at) {
        const std::int32_t level = host.session.Image().levels[at];
        EXPECT_EQ(tags[at], level <= 10 ? 1 : level >= 100 ? 2 : 0) << at;
    }
    EXPECT_EQ(Step_Nb(), 1U);
    EXPECT_EQ(host.told, "Apply all bands: 55 voxels in 3 slices");
    EXPECT_EQ(host.changed_slice, 0);  // the nearest to the shown one, and the first of those
    host.session.Undo();
    EXPECT_EQ(Tags(), std::vector<std::uint8_t>(SLICE_SIZE * SLICES));
    host.session.Redo();
    EXPECT_EQ(Tags(), tags);
}

TEST_F(Segmentation_Control_Test, a_stroke_is_ended_by_the_host_whose_pen_it_is) {
    host.claims = {{1, {-100.0F, -80.0F}}};
    static const unsigned char dot = 1;
    static const unsigned char* const mask[] = {&dot};
    Paint_Ink ink;
    ink.tag = 2;
    host.session.Stroke_Begin(3, Brush_Footprint(mask, 0), 1, 1, ink);
    control.Bands_Apply(true);
    EXPECT_EQ(host.stroke_end_nb, 1);
    EXPECT_FALSE(host.session.Is_Stroking());
    EXPECT_EQ(Step_Nb(), 2U) << "the stroke, and the operation";
}

TEST_F(Segmentation_Control_Test, the_band_of_one_tag_leaves_the_others_alone) {
    host.claims = {{1, {-100.0F, -80.0F}}, {2, {100.0F, {}}}};
    host.hand.tag = 2;
    control.Bands_Apply(false);
    EXPECT_EQ(Nb(1), 0U);
    EXPECT_EQ(Nb(2), 44U);
    host.hand.tag = 3;
    control.Bands_Apply(false);
    EXPECT_EQ(host.told, "T3 has no band: set its thresholds");
    host.claims.clear();
    control.Bands_Apply(true);
    EXPECT_EQ(host.told, "No TAG has a band: set thresholds, or make bands of peaks (Analyze)");
    EXPECT_EQ(Step_Nb(), 1U);
}

TEST_F(Segmentation_Control_Test, works_on_the_chosen_slices_only) {
    host.claims = {{1, {}}};
    control.Scope_Set(Edit_Scope::Shown_Slice);
    EXPECT_EQ(host.limits_nb, 1);  // a region that is growing goes
    control.Bands_Apply(true);
    EXPECT_EQ(Nb(1), SLICE_SIZE);
    EXPECT_EQ(host.told, "Apply all bands: 36 voxels in slice 2");
    host.session.Undo();
    host.text_answer = "2 - 3";
    control.Scope_Set(Edit_Scope::Range);
    EXPECT_EQ(host.asked, "Range of slices|First and last slice (1 to 4):|2 to 2");
    EXPECT_EQ(control.Scope_Now(), Edit_Scope::Range);
    EXPECT_EQ(host.told, "Operations on TAGs work on slices 2 to 3");
    control.Bands_Apply(true);
    EXPECT_EQ(Nb(1), 2 * SLICE_SIZE);
    EXPECT_EQ(host.session.Labels().At(0, 0, 0), 0);
    EXPECT_EQ(host.session.Labels().At(0, 0, 2), 1);
    control.Volume_Follow();
    EXPECT_EQ(control.Scope_Now(), Edit_Scope::Volume);
}

TEST_F(Segmentation_Control_Test, a_range_that_names_no_slices_is_refused_and_the_former_choice_stays) {
    control.Scope_Set(Edit_Scope::Shown_Slice);
    for (const char* answer : {"", "0 to 3", "2 to 5", "1 2 3", "all", "99999999999999"}) {
        host.warned.clear();
        host.text_answer = answer;
        control.Scope_Set(Edit_Scope::Range);
        EXPECT_NE(host.warned, "") << answer;
        EXPECT_EQ(control.Scope_Now(), Edit_Scope::Shown_Slice) << answer;
    }
    host.warned.clear();
    host.text_answer.reset();
    control.Scope_Set(Edit_Scope::Range);
    EXPECT_EQ(host.warned, "");
    EXPECT_EQ(control.Scope_Now(), Edit_Scope::Shown_Slice);
    EXPECT_EQ(host.limits_nb, 1);  // the first choice alone
}

TEST_F(Segmentation_Control_Test, changes_only_voxels_inside_the_chosen_tag_and_never_locked_ones) {
    Set(0, {0, 1, 2}, 3);
    Set(0, {7, 8}, 4);
    host.claims = {{1, {}}};
    host.line_answers = {4};  // "Only 3"
    control.Only_Inside_Ask();
    ASSERT_GE(host.lines.size(), 5U);
    EXPECT_EQ(host.lines[1], "Only 0  Background");
    EXPECT_EQ(host.lines[4], "Only 3  T3");
    EXPECT_EQ(control.Only_Inside_Name(), "T3");
    EXPECT_EQ(host.limits_nb, 1);
    control.Bands_Apply(true);
    EXPECT_EQ(Nb(1), 3U);
    EXPECT_EQ(Nb(4), 2U);
    host.session.Undo();
    host.line_answers = {0};
    control.Only_Inside_Ask();
    EXPECT_EQ(control.Only_Inside_Name(), std::nullopt);
    host.hand.locked[4] = 1;
    host.hand.locked[0] = 1;  // the background gives way all the same
    control.Bands_Apply(true);
    EXPECT_EQ(Nb(4), 2U);
    EXPECT_EQ(Nb(1), SLICE_SIZE * SLICES - 2);
    host.session.Undo();
    host.line_answers = {1};
    control.Only_Inside_Ask();
    EXPECT_EQ(control.Only_Inside_Name(), "Background");
    control.Bands_Apply(true);
    EXPECT_EQ(Nb(3), 3U);
    EXPECT_EQ(Nb(1), SLICE_SIZE * SLICES - 5);
}

TEST_F(Segmentation_Control_Test, what_is_given_up_or_has_no_memory_changes_nothing) {
    host.claims = {{1, {}}};
    const std::vector<std::uint8_t> before = Tags();
    host.is_given_up = true;
    control.Bands_Apply(true);
    EXPECT_EQ(host.told, "Apply all bands was given up: nothing has changed");
    host.is_given_up = false;
    host.has_no_memory = true;
    control.Bands_Apply(true);
    EXPECT_EQ(host.warned, "Apply all bands: there is not enough memory. Nothing has changed.");
    EXPECT_EQ(Tags(), before);
    EXPECT_EQ(Step_Nb(), 0U);
    EXPECT_EQ(host.changed_slice, -1);
}

TEST_F(Segmentation_Control_Test, an_operation_that_changes_nothing_is_no_step_and_says_what_limits_it) {
    Set(0, {0, 1, 14}, 1);
    host.hand.locked[1] = 1;
    host.line_answers = {3};
    control.Only_Inside_Ask();
    control.Region_Keep_Largest();
    EXPECT_EQ(host.told,
              "Keep the largest region of T1: no voxel changes in all 4 slices; only voxels of T2 may change; T1 is "
              "locked");
    EXPECT_EQ(Step_Nb(), 1U);
}

TEST_F(Segmentation_Control_Test, fills_from_the_cursor_within_grey_values) {
    control.Flood(true);
    EXPECT_EQ(host.told, "Point at a voxel with the mouse and press the key, or show the keyboard's cursor (I)");
    host.hand.cursor = {2, 3, 1};
    const std::int32_t level = host.session.Image().levels[host.session.Image().Index(2, 3, 1)];
    host.text_answer = "4";  // two levels either way: the voxels beside it in its row, as far as the row goes
    control.Flood(true);
    EXPECT_EQ(host.asked, "Fill by tolerance|Grey values at most so far from the voxel's own:|10");
    const std::vector<std::uint8_t> tags = Tags();
    for (std::size_t at = 0; at < tags.size(); ++at) {
        const std::int32_t own = host.session.Image().levels[at];
        const bool is_row = at / SIDE == (SLICE_SIZE + 3 * SIDE) / SIDE;
        EXPECT_EQ(tags[at], is_row && std::abs(own - level) <= 2 ? 1 : 0) << at;
    }
    host.session.Undo();
    control.Flood(false);
    EXPECT_EQ(host.told, "T1 has no band: set its thresholds, or fill by tolerance (Ctrl+K)");
    host.claims = {{1, {{}, 1000.0F}}};
    control.Flood(false);
    EXPECT_EQ(Nb(1), SLICE_SIZE * SLICES);
    host.text_answer = "-1";
    control.Flood(true);
    EXPECT_EQ(host.warned, "\"-1\" is no number of 0 or more.");
    host.hand.slice = 3;
    control.Scope_Set(Edit_Scope::Shown_Slice);
    control.Flood(false);
    EXPECT_EQ(host.told, "The shown slice is not among those that are worked on: slice 4");
}

TEST_F(Segmentation_Control_Test, chooses_regions_of_the_tag) {
    const std::vector<std::size_t> large = {0, 1, 2};
    const std::vector<std::size_t> small = {28, 29};
    Set(1, large, 1);
    Set(1, small, 1);
    control.Region_Keep_Largest();
    EXPECT_EQ(Nb(1), 3U);
    EXPECT_EQ(host.session.Labels().At(0, 0, 1), 1);
    host.session.Undo();
    host.hand.cursor = {28 % SIDE, 28 / SIDE, 1};
    control.Region_Keep_At_Cursor();
    EXPECT_EQ(Nb(1), 2U);
    EXPECT_EQ(host.session.Labels().At(0, 0, 1), 0);
    host.session.Undo();
    host.text_answer = "5";  // a voxel has 2 mm3
    control.Regions_Drop_Small();
    EXPECT_EQ(Nb(1), 3U);
    EXPECT_EQ(host.session.Journal().Next_Undo()->title, "Drop regions of T1 below 5 mm\xC2\xB3");
    host.session.Undo();
    host.hand.tag = 5;
    control.Region_Take_At_Cursor();
    EXPECT_EQ(Nb(5), 2U);
    EXPECT_EQ(Nb(1), 3U);
    host.hand.cursor = {5, 5, 3};
    control.Region_Take_At_Cursor();
    EXPECT_EQ(host.told, "There is only background where you point at: fill it by its band (F) or tolerance (Ctrl+K)");
    control.Region_Keep_At_Cursor();
    EXPECT_EQ(host.told, "There is no region of T5 where you point at");
}

TEST_F(Segmentation_Control_Test, corrects_the_shape_of_the_tag) {
    const std::vector<std::size_t> ring = {7, 8, 9, 13, 15, 19, 20, 21};
    Set(1, ring, 1);
    control.Holes_Fill(true);
    EXPECT_EQ(host.told, "Fill holes of T1 in space: no voxel changes in all 4 slices");
    control.Holes_Fill(false);
    EXPECT_EQ(Nb(1), 9U);
    host.text_answer = "1";
    control.Tag_Resize(1);
    EXPECT_EQ(Nb(1), 9U + 12U);  // one voxel each way in the slice; the next slices are 2 mm off
    EXPECT_EQ(host.session.Journal().Next_Undo()->title, "Grow T1 by 1 mm");
    control.Tag_Resize(-1);
    EXPECT_EQ(Nb(1), 9U + 2U);  // it does not shrink from the image's edges, which it has reached
    Set(1, {35}, 1);
    host.text_answer = "1,5";
    control.Tag_Smooth();
    EXPECT_EQ(host.session.Labels().At(5, 5, 1), 0);
    EXPECT_EQ(host.session.Journal().Next_Undo()->title, "Smooth T1 by 1.50 mm");
    host.hand.tag = 0;
    control.Tag_Smooth();
    EXPECT_EQ(host.told, "The background is no TAG that could be corrected: pick another one");
}

TEST_F(Segmentation_Control_Test, fills_between_painted_slices) {
    Set(0, {14, 15}, 1);
    Set(3, {14, 15}, 1);
    control.Slices_Between_Fill();
    EXPECT_EQ(Nb(1), 8U);
    EXPECT_EQ(host.session.Labels().At(14 % SIDE, 14 / SIDE, 2), 1);
}

TEST_F(Segmentation_Control_Test, takes_over_another_tag) {
    Set(0, {0}, 1);
    Set(0, {5, 6}, 4);
    host.line_answers = {2};  // TAGs 2, 3, 4 ...
    control.Tag_Merge();
    ASSERT_EQ(host.lines.size(), 6U);
    EXPECT_EQ(host.lines[2], "4  T4");
    EXPECT_EQ(Nb(1), 3U);
    EXPECT_EQ(Nb(4), 0U);
    EXPECT_EQ(host.session.Journal().Next_Undo()->title, "T4 to T1");
}

TEST_F(Segmentation_Control_Test, without_an_image_nothing_runs) {
    Told_Host empty;
    Segmentation_Control none(empty);
    none.Bands_Apply(true);
    none.Flood(false);
    none.Region_Keep_Largest();
    none.Regions_Drop_Small();
    none.Region_Keep_At_Cursor();
    none.Region_Take_At_Cursor();
    none.Holes_Fill(true);
    none.Tag_Smooth();
    none.Tag_Resize(1);
    none.Slices_Between_Fill();
    none.Tag_Merge();
    none.Tag_Join_File();
    none.Scope_Set(Edit_Scope::Range);
    none.Statistics_Show();
    none.Statistics_Save();
    none.Labels_Compare_Ask();
    none.Labels_Follow();
    none.Volume_Follow();
    EXPECT_EQ(empty.told, "There is no image: open one first");
    EXPECT_EQ(empty.asked, "");
    EXPECT_EQ(empty.table, "");
}

/** A file of labels on the same image, and its removal. */
class With_Label_File : public Segmentation_Control_Test {
  protected:
    With_Label_File() {
        fs::create_directories(folder);
        Session other;
        other.Take(Image(), "image.nii");
        const std::span<const std::uint8_t> now = std::as_const(other).Labels().Slice(1);
        std::vector<std::uint8_t> after(now.begin(), now.end());
        after[0] = after[1] = after[2] = 1;
        after[30] = 6;
        Voxel_Change change;
        change.slices.push_back(*Slice_Difference(1, now, after));
        other.Voxels_Change("Set", std::move(change));
        std::string kept;
        EXPECT_EQ(other.Save_Labels(folder / "other.nii.gz", {}, kept), "");
        host.file_answer = folder / "other.nii.gz";
    }
    ~With_Label_File() override {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    static std::string Text_Of(const fs::path& file) {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    fs::path folder = fs::temp_directory_path() / ("segmentation_control_" + std::to_string(std::random_device{}()));
};

TEST_F(With_Label_File, joins_with_a_tag_of_the_file) {
    struct Case {
        int joining;
        std::vector<std::size_t> after;
    };
    for (const Case& one : {Case{0, {0, 1, 2}}, Case{1, {0, 1, 2, 3}}, Case{2, {3}}, Case{3, {1, 2}}}) {
        Set(1, {1, 2, 3}, 1);
        host.line_answers = {0, one.joining};
        control.Tag_Join_File();
        std::vector<std::size_t> found;
        const std::span<const std::uint8_t> slice = std::as_const(host.session).Labels().Slice(1);
        for (std::size_t at = 0; at < slice.size(); ++at) {
            if (slice[at] == 1) {
                found.push_back(at);
            }
        }
        EXPECT_EQ(found, one.after) << one.joining;
        host.session.Undo();
        host.session.Undo();
    }
    host.line_answers = {0};
    control.Tag_Join_File();
    EXPECT_EQ(Step_Nb(), 0U);
}

TEST_F(With_Label_File, tells_how_labels_agree_with_the_file_and_saves_it) {
    Set(1, {1, 2, 3}, 1);
    host.csv_answer = folder / "agreement.csv";
    control.Labels_Compare_Ask();
    EXPECT_EQ(host.table.substr(0, host.table.find('\n')), "Agreement with the file: all 4 slices");
    EXPECT_EQ(Text_Of(folder / "agreement.csv"),
              "TAG,Name,Voxels here,Voxels in the file,Common voxels,Dice,Jaccard,Volume difference (ml),"
              "Hausdorff (mm),Hausdorff 95 % (mm),Mean surface distance (mm)\n"
              "1,T1,3,3,2,0.6666666666666666,0.5,0,1,0.8999999999999999,0.3333333333333333\n"
              "6,T6,0,1,0,0,0,0.002,,,\n");
    host.file_answer = folder / "none.nii";
    host.warned.clear();
    control.Labels_Compare_Ask();
    EXPECT_NE(host.warned.find("none.nii"), std::string::npos);
}

TEST_F(With_Label_File, shows_where_labels_differ_from_those_compared_with) {
    control.Differences_Show(true);
    EXPECT_EQ(host.told, "Compare with a label file first: the differences to its labels are shown then");
    EXPECT_FALSE(control.Is_Differences());
    Set(1, {1, 2, 3}, 1);  // the file: 0, 1, 2, and TAG 6 at 30
    control.Labels_Compare_Ask();
    EXPECT_EQ(host.told, "Differences in all 4 slices: 1 voxel only here, 2 only in the file, 0 of another TAG");
    ASSERT_EQ(control.Compared().size(), SLICE_SIZE * SLICES);
    const std::span<const std::uint8_t> slice = control.Compared().subspan(SLICE_SIZE, SLICE_SIZE);
    for (std::size_t at = 0; at < SLICE_SIZE; ++at) {
        EXPECT_EQ(slice[at], at < 3 ? 1 : at == 30 ? 6 : 0) << at;
    }
    const int drawn = host.preview_nb;
    control.Differences_Show(false);
    EXPECT_TRUE(control.Compared().empty());
    EXPECT_EQ(host.preview_nb, drawn + 1);
    control.Differences_Show(true);
    EXPECT_TRUE(control.Is_Differences()) << "without another comparison";
    host.session.Take(Image(), "other.nii");
    EXPECT_TRUE(control.Compared().empty()) << "they are labels of another volume";
    control.Volume_Follow();
    control.Differences_Show(true);
    EXPECT_FALSE(control.Is_Differences()) << "what the volume was compared with is gone with it";
}

TEST_F(With_Label_File, a_size_that_is_not_known_is_not_told_in_mm) {
    volumes::Volume image = Image();
    image.is_size_known = false;
    host.session.Take(std::move(image), "image.nii");
    Set(1, {1, 2, 3}, 1);
    control.Statistics_Show();
    EXPECT_EQ(host.table.find("mm"), std::string::npos) << host.table;
    EXPECT_EQ(host.table.find("ml"), std::string::npos) << host.table;
    EXPECT_NE(host.table.find("1000 voxels"), std::string::npos);
    for (const bool is_comparison : {false, true}) {
        host.csv_answer = folder / "unknown.csv";
        is_comparison ? control.Labels_Compare_Ask() : control.Statistics_Save();
        EXPECT_EQ(Text_Of(*host.csv_answer).find("(mm"), std::string::npos);
        EXPECT_EQ(Text_Of(*host.csv_answer).find("(ml)"), std::string::npos);
        EXPECT_NE(Text_Of(*host.csv_answer).find("voxels)"), std::string::npos);
    }
    EXPECT_EQ(host.table.find("mm"), std::string::npos) << host.table;
    control.Tag_Smooth();
    EXPECT_EQ(host.asked.substr(0, host.asked.rfind('|')), "Smooth|Radius, voxels:");
    control.Tag_Resize(1);
    EXPECT_EQ(host.asked.substr(0, host.asked.rfind('|')), "Grow|Distance, voxels:");
    control.Regions_Drop_Small();
    EXPECT_EQ(host.asked.substr(0, host.asked.rfind('|')),
              "Drop small regions|Least volume of a region that stays, voxels:");
}

TEST_F(Segmentation_Control_Test, a_row_of_the_statistics_is_the_histogram_of_its_tag) {
    Set(1, {1, 2, 3}, 1);
    Set(2, {7, 8}, 5);
    host.hand.tag = 5;
    control.Statistics_Show();
    const std::string table = host.table.substr(host.table.find('\n') + 1);  // without the title
    std::vector<std::string> told;
    const auto lines = static_cast<int>(std::ranges::count(table, '\n'));
    ASSERT_GT(lines, 8) << "the areas of the TAG follow";
    for (int line = -1; line <= lines + 1; ++line) {
        host.told.clear();
        control.Statistics_Row(line);
        if (!host.told.empty()) {
            told.push_back(host.told);
        }
    }
    const bool has_background = table.find("Background") != std::string::npos;
    std::vector<std::string> expected = {"histogram of 1 in 0 to 3", "histogram of 5 in 0 to 3"};
    if (has_background) {
        expected.insert(expected.begin(), "histogram of 0 in 0 to 3");
    }
    EXPECT_EQ(told, expected);
    host.hand.slice = 2;
    control.Scope_Set(Edit_Scope::Shown_Slice);
    control.Statistics_Show();
    control.Statistics_Row(has_background ? 2 : 1);
    EXPECT_EQ(host.told, "histogram of 5 in 2 to 2") << "in the slices that the table counts";
}

TEST_F(With_Label_File, labels_that_lie_elsewhere_are_refused) {
    Session other;
    volumes::Volume elsewhere = Image();
    elsewhere.affine[0][3] = 40.0;
    other.Take(std::move(elsewhere), "image.nii");
    std::string kept;
    ASSERT_EQ(other.Save_Labels(folder / "elsewhere.nii.gz", {}, kept), "");
    host.file_answer = folder / "elsewhere.nii.gz";
    control.Labels_Compare_Ask();
    EXPECT_NE(host.warned.find("lies elsewhere than the image"), std::string::npos) << host.warned;
    EXPECT_EQ(host.table, "");
}

TEST_F(With_Label_File, saves_the_statistics_as_a_table_with_units) {
    Set(1, {0, 1, 2}, 1);
    host.csv_answer = folder / "statistics.csv";
    control.Statistics_Save();
    const std::string text = Text_Of(folder / "statistics.csv");
    EXPECT_EQ(text.substr(0, text.find('\n')),
              "TAG,Name,Voxels,Volume (ml),Mean (HU),SD (HU),Minimum (HU),Median (HU),Maximum (HU),Percentile 5 (HU),"
              "Percentile 95 (HU),Regions,First slice,Last slice");
    // The image is shown turned: the upper left pixels of slice 2 are levels 71, 70, 69 of the file.
    EXPECT_NE(text.find("1,T1,3,0.006,40,1.632993161855452,38,40,42,"), std::string::npos) << text;
    host.csv_answer = folder / "no folder" / "statistics.csv";
    control.Statistics_Save();
    EXPECT_NE(host.warned.find("The table was not saved: statistics.csv"), std::string::npos) << host.warned;
}

TEST_F(Segmentation_Control_Test, the_area_of_the_tag_in_each_slice_is_a_curve_below_the_table) {
    Set(1, {0, 1, 2, 6}, 1);
    Set(3, {5}, 1);
    control.Statistics_Show();
    EXPECT_NE(host.table.find("\n\nArea of T1 in each slice\n\nSlice  mm\xC2\xB2\n"), std::string::npos) << host.table;
    for (const std::string& wanted : {"\n    2    4  |" + std::string(50, '#') + '\n', std::string("\n    3    0  |\n"),
                                      "\n    4    1  |" + std::string(13, '#') + '\n'}) {
        EXPECT_NE(host.table.find(wanted), std::string::npos) << wanted << host.table;
    }
    host.hand.tag = 5;
    control.Statistics_Show();
    EXPECT_EQ(host.table.find("Area of"), std::string::npos) << "the TAG has no voxel";
}

TEST_F(Segmentation_Control_Test, the_table_follows_the_labels_while_it_is_shown) {
    control.Labels_Follow();
    EXPECT_EQ(host.table, "");
    control.Statistics_Show();
    EXPECT_EQ(host.table.find("T1"), std::string::npos);
    Set(1, {0, 1, 2}, 1);
    control.Labels_Follow();
    EXPECT_NE(host.table.find("\n1    T1               3  0.006000       40"), std::string::npos) << host.table;
    EXPECT_EQ(host.table.substr(0, host.table.find('\n')), "Statistics of the TAGs: all 4 slices");
    control.Scope_Set(Edit_Scope::Shown_Slice);
    EXPECT_EQ(host.table.substr(0, host.table.find('\n')), "Statistics of the TAGs: slice 2");
}

TEST_F(Segmentation_Control_Test, the_preview_is_told_when_it_is_turned) {
    control.Bands_Preview_Set(true);
    EXPECT_TRUE(control.Is_Bands_Preview());
    EXPECT_EQ(host.preview_nb, 1);
    EXPECT_EQ(host.told, "No TAG has a band yet: set thresholds, or make bands of peaks (Analyze)");
    control.Bands_Preview_Set(false);
    EXPECT_FALSE(control.Is_Bands_Preview());
}

TEST_F(Segmentation_Control_Test, random_operations_spare_what_is_locked_and_outside_and_come_back_step_by_step) {
    std::mt19937 random(21);
    host.claims = {{1, {-60.0F, 20.0F}}, {2, {0.0F, 60.0F}}, {3, {100.0F, {}}}};
    std::vector<std::vector<std::uint8_t>> states = {Tags()};
    for (int round = 0; round < 1500; ++round) {
        host.hand.tag = 1 + static_cast<int>(random() % 3);
        host.hand.slice = static_cast<int>(random() % SLICES);
        host.hand.locked = {};
        host.hand.locked[1 + random() % 4] = 1;
        host.hand.cursor = {static_cast<int>(random() % SIDE), static_cast<int>(random() % SIDE), host.hand.slice};
        host.text_answer = std::to_string(random() % 4);
        host.line_answers = {static_cast<int>(random() % 4) - 1};
        if (random() % 4 == 0) {
            control.Only_Inside_Ask();
        }
        control.Scope_Set(random() % 2 == 0 ? Edit_Scope::Shown_Slice : Edit_Scope::Volume);
        host.line_answers = {static_cast<int>(random() % 3)};
        const std::vector<std::uint8_t> before = Tags();
        switch (random() % 12) {
            case 0:
                control.Bands_Apply(true);
                break;
            case 1:
                control.Bands_Apply(false);
                break;
            case 2:
                control.Flood(true);
                break;
            case 3:
                control.Region_Keep_Largest();
                break;
            case 4:
                control.Regions_Drop_Small();
                break;
            case 5:
                control.Region_Take_At_Cursor();
                break;
            case 6:
                control.Holes_Fill(random() % 2 == 0);
                break;
            case 7:
                control.Tag_Smooth();
                break;
            case 8:
                control.Tag_Resize(1);
                break;
            case 9:
                control.Tag_Resize(-1);
                break;
            case 10:
                control.Slices_Between_Fill();
                break;
            default:
                control.Tag_Merge();
                break;
        }
        const std::vector<std::uint8_t> after = Tags();
        for (std::size_t at = 0; at < after.size(); ++at) {
            const bool may_change =
                host.hand.locked[before[at]] == 0 && (control.Scope_Now() == Edit_Scope::Volume ||
                                                      at / SLICE_SIZE == static_cast<std::size_t>(host.hand.slice));
            ASSERT_TRUE(may_change || before[at] == after[at]) << round << ": " << host.told;
        }
        if (after != before) {
            states.push_back(after);
        }
        ASSERT_EQ(Step_Nb(), states.size() - 1) << round << ": " << host.told;
    }
    EXPECT_GT(states.size(), 100U);
    for (std::size_t at = states.size() - 1; at > 0; --at) {
        ASSERT_EQ(Tags(), states[at]) << at;
        host.session.Undo();
    }
    EXPECT_EQ(Tags(), states[0]);
    for (std::size_t at = 1; at < states.size(); ++at) {
        host.session.Redo();
        ASSERT_EQ(Tags(), states[at]) << at;
    }
}

TEST(Columns_Text, columns_stand_one_below_the_other_also_with_letters_of_several_bytes) {
    const std::vector<std::string> rows[] = {{"TAG", "Name", "ml"},
                                             {"1",
                                              "Gr\xC3\xBC"
                                              "n",
                                              "12.5"},
                                             {"20", "", "3"}};
    EXPECT_EQ(Columns_Text(rows, 2), "TAG  Name    ml\n1    Gr\xC3\xBCn  12.5\n20            3\n");
}

}  // namespace
