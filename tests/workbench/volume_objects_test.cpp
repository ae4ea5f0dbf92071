#include "workbench/volume_objects.h"

#include <gtest/gtest.h>

namespace {

class Volume_Objects_Test : public ::testing::Test {
  protected:
    void SetUp() override {
        Volume volume;
        volume.nx = 4;
        volume.ny = 3;
        volume.nz = 5;
        volume.nt = 1;
        volume.affine[0][0] = volume.affine[1][1] = volume.affine[2][2] = 1.0;
        for (int at = 0; at < 60; ++at) {
            volume.levels.push_back(at % 7);
        }
        volume.level_max = 6;
        session.Take(std::move(volume), "brain.nii");
        objects.Build(session);
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
    Volume_Objects objects;
};

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
    objects.Histograms_Build(session, 4);
    for (int slice = 0; slice < 5; ++slice) {
        const Histo_Record* record = objects.Frame(slice)->frame->Histogram_Get();
        std::uint32_t pixels = 0;
        for (int bin = 0; record != nullptr && bin < record->nb_bins; ++bin) {
            pixels += record->counts[bin];
        }
        EXPECT_EQ(pixels, slice == 2 ? 1U : 0U);
    }
}

TEST_F(Volume_Objects_Test, selection_is_what_the_iterators_yield) {
    objects.Select(0, 4);
    EXPECT_EQ(Selected_Nb(), 5);
    objects.Select(1, 2);
    EXPECT_EQ(Selected_Nb(), 2);
    objects.Select(3, 3);
    EXPECT_EQ(Selected_Nb(), 1);
}

}  // namespace
