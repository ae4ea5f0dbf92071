#include "workbench/volume_objects.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

#include "database/tool_db_file.h"

using namespace volumes;
using namespace workbench;

namespace {

using testing::ElementsAre;

Volume Image(int nz) {
    Volume volume;
    volume.nx = 4;
    volume.ny = 3;
    volume.nz = nz;
    volume.nt = 1;
    volume.affine[0][0] = volume.affine[1][1] = volume.affine[2][2] = 1.0;
    std::vector<std::int32_t> levels;
    for (int at = 0; at < 12 * nz; ++at) {
        levels.push_back(at % 7);
    }
    volume.levels = std::move(levels);
    volume.level_max = 6;
    return volume;
}

Folder_Volume Opened(const char* title, int nz, const std::vector<std::int32_t>& file_of_slice) {
    Folder_Volume made;
    made.title = title;
    made.path = title;
    made.modality = 'C' << 8 | 'T';
    made.volume = Image(nz);
    made.file_of_slice = file_of_slice;
    return made;
}

class Volume_Objects_Test : public ::testing::Test {
  protected:
    void SetUp() override {
        Image_Folder folder;
        folder.files = {"brain.nii"};
        folder.volumes.push_back(Opened("brain.nii", 5, {0, 0, 0, 0, 0}));
        Build(std::move(folder));
    }
    void Build(Image_Folder&& folder, bool is_counted = true) {
        objects.Clear();
        volumes.Take(std::move(folder), {}, session);
        objects.Build(volumes, session);
        if (is_counted) {
            std::vector<Slices_To_Count> counted = objects.Counting_Begin(volumes, session);
            ASSERT_TRUE(Slices_Count(counted));
            objects.Counts_Take(std::move(counted));
        }
    }
    /** A series of three slices in two files, a cine and a scout of a file each, and a file that gave nothing. */
    void Build_Folder() {
        Image_Folder folder;
        const std::filesystem::path base = std::filesystem::path("disk") / "study";
        folder.files = {base / "a.dcm", base / "b.dcm", base / "c.dcm", base / "d.dcm", base / "more" / "e.dcm"};
        folder.volumes.push_back(Opened("CT 1", 3, {1, 0, 1}));
        folder.volumes.push_back(Opened("CT 2", 2, {2, 2}));
        folder.volumes.back().is_cine = true;
        folder.volumes.push_back(Opened("CT 3", 1, {4}));
        folder.volumes.back().is_scout = true;
        Build(std::move(folder));
    }
    int Selected_Nb() {
        const unsigned short handle = Iterator_Init("test", nullptr);
        int count = 0;
        while (Iterator_Class_2D(handle, CLASS_MASK_2D, All_Windows(), 1) != nullptr) {
            ++count;
        }
        Iterator_End(handle);
        return count;
    }
    Session session;
    Open_Volumes volumes;
    Volume_Objects objects;
};

/** The rows that the file view makes of the variables. */
class Rows {
  public:
    Rows() { view.List_Create_From_DB(&nb, &list, 0, 0, nullptr); }
    ~Rows() {
        for (int at = 0; at < nb; ++at) {
            std::free(list[at].title);
            std::free(list[at].name);
        }
        std::free(list);
    }
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (int at = 0; at < nb; ++at) {
            const char* const text = list[at].level == 0 ? list[at].title : list[at].name;
            texts.push_back(std::string(list[at].level, ' ') + (text != nullptr ? text : "") + "|" + list[at].icon);
        }
        return texts;
    }
    Tool_DB_File view{2};
    int nb = 0;
    DB_List* list = nullptr;
};

TEST_F(Volume_Objects_Test, histograms_arrive_when_all_slices_of_all_volumes_are_counted) {
    Image_Folder folder;
    folder.files = {"a.nii", "b.nii"};
    folder.volumes.push_back(Opened("a.nii", 2, {0, 0}));
    folder.volumes.push_back(Opened("b.nii", 3, {1, 1, 1}));
    Build(std::move(folder), false);
    ASSERT_EQ(volumes.Current(), 1);
    EXPECT_EQ(objects.Counting(), Counting_State::Coming);
    EXPECT_EQ(objects.Frame(2)->frame->Histogram_Get(), nullptr) << "nothing rather than something wrong";
    EXPECT_EQ(objects.Frame(2)->frame->modality, 'C' << 8 | 'T');
    std::vector<Slices_To_Count> counted = objects.Counting_Begin(volumes, session);
    ASSERT_TRUE(Slices_Count(counted));
    const Histo_Record* const expected = counted[1].frames[2]->histogram;
    objects.Counts_Take(std::move(counted));
    EXPECT_EQ(objects.Counting(), Counting_State::Done);
    EXPECT_EQ(objects.Frame(2)->frame->Histogram_Get(), expected) << "not counted again";
    objects.Current_Set(0);
    EXPECT_NE(objects.Frame(1)->frame->Histogram_Get(), nullptr);
    EXPECT_TRUE(objects.Counting_Begin(volumes, session)[0].frames.empty()) << "nothing is left to be counted";
}

TEST_F(Volume_Objects_Test, a_volume_that_was_counted_in_another_way_meanwhile_keeps_its_histograms) {
    Image_Folder folder;
    folder.files = {"a.nii"};
    folder.volumes.push_back(Opened("a.nii", 3, {0, 0, 0}));
    Build(std::move(folder), false);
    std::vector<Slices_To_Count> counted = objects.Counting_Begin(volumes, session);
    ASSERT_TRUE(Slices_Count(counted));
    objects.Histograms_Build(session, {4, false, std::nullopt});  // of a TAG that no pixel has
    objects.Counts_Take(std::move(counted));
    const Histo_Record* const record = objects.Frame(1)->frame->Histogram_Get();
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(std::accumulate(record->counts, record->counts + record->nb_bins, 0U), 0U);
}

TEST_F(Volume_Objects_Test, a_volume_that_was_not_counted_for_want_of_memory_takes_no_histograms_of_other_pixels) {
    Image_Folder folder;
    folder.files = {"a.nii"};
    folder.volumes.push_back(Opened("a.nii", 3, {0, 0, 0}));
    Build(std::move(folder), false);
    std::vector<Slices_To_Count> counted = objects.Counting_Begin(volumes, session);
    ASSERT_TRUE(Slices_Count(counted));
    objects.Counts_Fail();  // as a count of other pixels that was asked for meanwhile
    objects.Counts_Take(std::move(counted));
    EXPECT_EQ(objects.Counting(), Counting_State::Failed);
    EXPECT_EQ(objects.Frame(1)->frame->Histogram_Get(), nullptr);
}

TEST_F(Volume_Objects_Test, nothing_is_coming_any_more_when_the_count_has_failed) {
    Image_Folder folder;
    folder.files = {"a.nii", "b.nii"};
    folder.volumes.push_back(Opened("a.nii", 2, {0, 0}));
    folder.volumes.push_back(Opened("b.nii", 3, {1, 1, 1}));
    Build(std::move(folder), false);
    EXPECT_TRUE(objects.Histograms_Build(session, {}));
    objects.Counts_Fail();
    EXPECT_EQ(objects.Counting(), Counting_State::Done) << "it has its histograms";
    objects.Current_Set(0);
    EXPECT_EQ(objects.Counting(), Counting_State::Failed);
    EXPECT_FALSE(objects.Counting_Begin(volumes, session)[0].frames.empty()) << "whoever asks anew gets them";
    EXPECT_EQ(objects.Counting(), Counting_State::Coming);
}

TEST_F(Volume_Objects_Test, makes_one_frame_per_slice_of_one_volume) {
    ASSERT_NE(objects.Frame(0), nullptr);
    const Quorel_2D* volume = objects.Frame(0)->Parent_Get_Pt();
    ASSERT_NE(volume, nullptr);
    EXPECT_EQ(volume->Child_Get_Nb(), 5);
    EXPECT_STREQ(volume->Name_Get(), "brain.nii");
    for (int slice = 0; slice < 5; ++slice) {
        EXPECT_EQ(objects.Slice_Of(objects.Frame(slice)), slice);
    }
    EXPECT_EQ(objects.Frame(5), nullptr);
    EXPECT_EQ(objects.Frame(-1), nullptr);
    EXPECT_EQ(objects.Slice_Of(nullptr), -1);
    EXPECT_EQ(objects.Slice_Of(volume), -1);
}

TEST_F(Volume_Objects_Test, the_window_shows_the_slice_that_is_asked_for) {
    objects.Show(3);
    EXPECT_EQ(Window_Frame(objects.Window()), objects.Frame(3));
    EXPECT_EQ(objects.Frame(3)->Parent_Get_Pt()->Child_Get_Cur(objects.Window()), 3);
    objects.Clear();
    EXPECT_EQ(Window_Frame(objects.Window()), nullptr);
    EXPECT_EQ(Object_Registered_2D_Nb(), 0);
}

TEST_F(Volume_Objects_Test, frames_show_the_turned_slices) {
    const float position[] = {0.0F, 0.0F};
    const int first[] = {0, 0};
    EXPECT_EQ(objects.Frame(2)->frame->Sample(position, first), session.Levels(2)[0]);
}

TEST_F(Volume_Objects_Test, every_frame_has_a_histogram_on_one_grid) {
    std::uint32_t pixels = 0;
    for (int slice = 0; slice < 5; ++slice) {
        const Histo_Record* record = objects.Frame(slice)->frame->Histogram_Get();
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->nb_bins, objects.Frame(0)->frame->Histogram_Get()->nb_bins);
        for (int bin = 0; bin < record->nb_bins; ++bin) {
            pixels += record->counts[bin];
        }
    }
    EXPECT_EQ(pixels, 60U);
}

TEST_F(Volume_Objects_Test, histograms_of_one_tag_count_its_pixels_only) {
    static const unsigned char byte = 1;
    static const unsigned char* const row = &byte;
    Paint_Ink ink;
    ink.tag = 4;
    session.Stroke_Begin(2, Brush_Footprint(&row, 0), 1, 1, ink);
    session.Stroke_End();
    objects.Histograms_Build(session, {4, false, std::nullopt});
    for (int slice = 0; slice < 5; ++slice) {
        const Histo_Record* record = objects.Frame(slice)->frame->Histogram_Get();
        std::uint32_t pixels = 0;
        for (int bin = 0; record != nullptr && bin < record->nb_bins; ++bin) {
            pixels += record->counts[bin];
        }
        EXPECT_EQ(pixels, slice == 2 ? 1U : 0U);
    }
}

TEST_F(Volume_Objects_Test, smoothed_histograms_count_every_pixel_in_ninths_of_a_level) {
    const Histo_Record* plain = objects.Frame(0)->frame->Histogram_Get();
    ASSERT_NE(plain, nullptr);
    const float level = plain->bin_width;
    objects.Histograms_Build(session, {-1, true, std::nullopt});
    for (int slice = 0; slice < 5; ++slice) {
        const Histo_Record* record = objects.Frame(slice)->frame->Histogram_Get();
        ASSERT_NE(record, nullptr);
        EXPECT_FLOAT_EQ(record->bin_width, level / 9.0F);
        std::uint32_t pixels = 0;
        double moment = 0.0;
        for (int bin = 0; bin < record->nb_bins; ++bin) {
            pixels += record->counts[bin];
            moment += static_cast<double>(record->counts[bin]) * bin;
        }
        EXPECT_EQ(pixels, 12U);
        // The sum over all 3 x 3 sums, by hand: edges count their nearest pixels again.
        const auto levels = session.Levels(slice);
        const int width = session.Image().nx;
        const int height = session.Image().ny;
        long long expected = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                for (int k = 0; k < 9; ++k) {
                    const int at_y = std::clamp(y + k / 3 - 1, 0, height - 1);
                    const int at_x = std::clamp(x + k % 3 - 1, 0, width - 1);
                    expected += levels[static_cast<std::size_t>(at_y * width + at_x)] - session.Image().level_min;
                }
            }
        }
        EXPECT_EQ(static_cast<long long>(moment), expected);
    }
    objects.Histograms_Build(session, {});
    EXPECT_EQ(objects.Frame(0)->frame->Histogram_Get()->bin_width, level);
}

TEST_F(Volume_Objects_Test, the_background_around_the_image_is_left_out) {
    // Only a frame's middle lies above the threshold: the rest reaches the edge.
    const auto levels = session.Levels(0);
    const double above = session.Image().grey(*std::ranges::max_element(levels));
    objects.Histograms_Build(session, {-1, false, above - 0.5});
    const Histo_Record* record = objects.Frame(0)->frame->Histogram_Get();
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(std::accumulate(record->counts, record->counts + record->nb_bins, 0U), 1U);
    objects.Histograms_Build(session, {});
    record = objects.Frame(0)->frame->Histogram_Get();
    EXPECT_EQ(std::accumulate(record->counts, record->counts + record->nb_bins, 0U), 12U);
}

TEST_F(Volume_Objects_Test, selected_frames_are_told_by_volume_and_slice) {
    objects.Select(1, 2);
    const std::vector<Frame_Place> selected = objects.Selected();
    ASSERT_EQ(selected.size(), 2U);
    EXPECT_EQ(selected[0].volume, 0);
    EXPECT_EQ(selected[0].slice, 1);
    EXPECT_EQ(selected[1].slice, 2);
}

TEST(Volume_Objects_Scale, a_small_range_fills_the_bins_of_the_panel) {
    // Grey values 0 to 0.003 in 65,536 levels.
    Image_Folder folder;
    Folder_Volume opened;
    opened.path = "diffusion.nii";
    opened.title = "diffusion";
    opened.volume.nx = 256;
    opened.volume.ny = 256;
    opened.volume.nz = opened.volume.nt = 1;
    opened.volume.slope = 0.003 / 65535;
    opened.volume.level_max = 65535;
    std::vector<std::int32_t> levels(65536);
    std::iota(levels.begin(), levels.end(), 0);
    opened.volume.levels = std::move(levels);
    opened.file_of_slice = {0};
    folder.files = {"diffusion.nii"};
    folder.volumes.push_back(std::move(opened));
    Open_Volumes volumes;
    Session session;
    volumes.Take(std::move(folder), {}, session);
    Volume_Objects objects;
    objects.Build(volumes, session);
    objects.Histograms_Build(session, {});
    const Histo_Record* record = objects.Frame(0)->frame->Histogram_Get();
    ASSERT_NE(record, nullptr);
    EXPECT_GT(record->nb_bins, 3500);
    // The panel adds 1 to the range before it counts bins, and keeps within 4097.
    const float edge = static_cast<float>(record->nb_bins) * record->bin_width + record->origin;
    EXPECT_LE(std::trunc((edge - record->origin + 1.0F) / record->bin_width), 4097.0F);
    for (int bin = 0; bin + 1 < record->nb_bins; ++bin) {
        EXPECT_EQ(record->counts[bin], record->counts[0]) << "whole levels, and as many in each: no comb, bin " << bin;
    }
    EXPECT_NEAR(Fct_GLI_2_Float(objects.Frame(0), 65535), 3000.0F, 0.01F) << "told in millionths";
}

TEST_F(Volume_Objects_Test, selection_is_what_the_iterators_yield) {
    objects.Select(0, 4);
    EXPECT_EQ(Selected_Nb(), 5);
    objects.Select(1, 2);
    EXPECT_EQ(Selected_Nb(), 2);
    objects.Select(3, 3);
    EXPECT_EQ(Selected_Nb(), 1);
}

TEST_F(Volume_Objects_Test, the_file_view_lists_a_volume_and_its_slices) {
    const Rows rows;
    EXPECT_THAT(rows.Texts(), ElementsAre("|icon folder.tga", " brain.nii|modality ct.tga", "  1 (4x3)|icon image.tga",
                                          "  2 (4x3)|icon image.tga", "  3 (4x3)|icon image.tga",
                                          "  4 (4x3)|icon image.tga", "  5 (4x3)|icon image.tga"));
}

TEST_F(Volume_Objects_Test, the_file_view_lists_each_file_of_a_folder_with_its_own_frames) {
    Build_Folder();
    const Rows rows;
    EXPECT_THAT(rows.Texts(),
                ElementsAre("study|icon folder.tga", " a.dcm|modality ct.tga", "  1 (4x3)|icon image.tga",
                            " b.dcm|modality ct.tga", "  1 (4x3)|icon image.tga", "  2 (4x3)|icon image.tga",
                            " c.dcm|modality ct.tga", "  1 to 2|icon cine.tga", "study\\more|icon folder.tga",
                            " e.dcm|modality ct.tga", "  1 (4x3)|icon scout.tga"));
}

TEST_F(Volume_Objects_Test, checked_rows_of_the_file_view_select_frames_of_any_volume) {
    Build_Folder();
    objects.Select(-1, -1);
    Rows rows;
    const auto check = [&](int row) {
        for (int at = 0; at < rows.nb; ++at) {
            rows.list[at].state = at == row ? DB_STATE_CHECKED : DB_STATE_NONE;
        }
        rows.view.List_Select_To_DB(rows.nb, rows.list);
    };
    check(2);  // a.dcm holds the middle slice of the first volume
    EXPECT_EQ(Selected_Nb(), 1);
    EXPECT_EQ(objects.Selected_Frame(), objects.Frame(1));
    check(7);  // the cine means each of its moments
    EXPECT_EQ(Selected_Nb(), 2);
    const Frame_Place moment = objects.Place_Of(objects.Selected_Frame());
    EXPECT_EQ(moment.volume, 1);
    EXPECT_EQ(moment.slice, 0);
    check(10);
    EXPECT_EQ(objects.Place_Of(objects.Selected_Frame()).volume, 2);
}

TEST_F(Volume_Objects_Test, a_selected_frame_that_is_shown_stays) {
    Build_Folder();
    objects.Show(2);
    objects.Select(0, 2);
    EXPECT_EQ(objects.Selected_Frame(), objects.Frame(2));
    objects.Select(0, 1);
    EXPECT_EQ(objects.Selected_Frame(), objects.Frame(0));
    objects.Select(-1, -1);
    EXPECT_EQ(objects.Selected_Frame(), nullptr);
}

TEST_F(Volume_Objects_Test, another_volume_becomes_the_current_one) {
    Build_Folder();
    Quorel_2D* const first = objects.Frame(0);
    volumes.Switch(1, session);
    objects.Current_Set(1);
    EXPECT_NE(objects.Frame(0), first);
    EXPECT_EQ(objects.Slice_Of(first), -1);
    EXPECT_EQ(objects.Place_Of(first).volume, 0);
    objects.Show(1);
    EXPECT_EQ(objects.Window()->volume, objects.Frame(0)->Parent_Get_Pt());
    EXPECT_STREQ(objects.Window()->volume->Title_Get(), "Cine");
    const int moment[] = {0, 1};
    const float corner[] = {0.0F, 0.0F};
    EXPECT_EQ(objects.Frame(0)->frame_more[0]->Sample(corner, moment), session.Levels(1)[0]);
}

TEST_F(Volume_Objects_Test, nothing_is_left_in_the_variables_when_all_is_closed) {
    Build_Folder();
    objects.Clear();
    const Rows rows;
    EXPECT_EQ(rows.nb, 0);
    EXPECT_EQ(Object_Registered_2D_Nb(), 0);
    EXPECT_EQ(Fct_Variable_Value("$DB_2D_ROOT_PT", nullptr, nullptr, nullptr), nullptr);
}

TEST_F(Volume_Objects_Test, pixels_that_are_not_read_are_outside_and_not_counted) {
    Image_Folder folder;
    folder.files = {"a.dcm", "b.dcm"};
    folder.volumes.push_back(Opened("a", 2, {0, 0}));
    folder.volumes.push_back(Opened("b", 1, {1}));
    Volume levels = Image(1);
    folder.volumes[1].volume.levels = {};
    folder.volumes[1].volume.level_max = 0;
    folder.volumes[1].waiting.resize(1);
    Build(std::move(folder));
    volumes.Switch(1, session);
    objects.Current_Set(1);
    Level_Frame* const frame = static_cast<Level_Frame*>(objects.Frame(0)->frame);
    const float corner[] = {1.0F, 0.0F};
    EXPECT_EQ(frame->Sample(corner, nullptr), LEVEL_OUTSIDE);
    EXPECT_EQ(objects.Counting(), Counting_State::Waiting);
    EXPECT_EQ(objects.Counting_Begin(volumes, session)[1].frames.size(), 0U);
    EXPECT_EQ(frame->histogram, nullptr);

    levels.slope = 2.0;
    volumes.Levels_Take(1, std::move(levels), {}, session);
    objects.Levels_Came(1, session);
    EXPECT_EQ(objects.Counting(), Counting_State::Coming);
    EXPECT_EQ(frame->Sample(corner, nullptr), 3) << "frames show turned slices";
    EXPECT_EQ(frame->slope, 2.0F);
    std::vector<Slices_To_Count> counted = objects.Counting_Begin(volumes, session);
    ASSERT_EQ(counted[1].frames.size(), 1U);
    ASSERT_TRUE(Slices_Count(counted));
    objects.Counts_Take(std::move(counted));
    EXPECT_EQ(objects.Counting(), Counting_State::Done);
    EXPECT_NE(frame->histogram, nullptr);

    volumes.Switch(0, session);
    objects.Current_Set(0);
    volumes.Levels_Leave(1);
    objects.Levels_Gone(1);
    EXPECT_EQ(frame->Sample(corner, nullptr), LEVEL_OUTSIDE);
    EXPECT_EQ(frame->histogram, nullptr);
    EXPECT_EQ(objects.Counting(), Counting_State::Done) << "the other volume's are there";
}

}  // namespace
