#include "workbench/volumes/read_facts.h"

#include <gtest/gtest.h>

#include <vector>

using namespace volumes;

namespace {

TEST(Read_Facts, the_page_tells_what_an_exact_volume_is) {
    Volume volume;
    volume.nx = 91;
    volume.ny = 109;
    volume.nz = 1000;
    volume.spacing = {2, 2, 2.5};
    volume.scalar_type = "int16";
    volume.encoding = "NIfTI-1, little-endian";
    volume.affine_source = Affine_Source::Sform;
    volume.stored.sform_code = 4;
    volume.affine = {{{-2, 0, 0, 90}, {0, 2, 0, -126}, {0, 0, 2.5, -72}}};
    EXPECT_EQ(Read_Facts_Text("head.nii", volume, {}, ""),
              "head.nii\n\n"
              "Size: 91 x 109 x 1,000 voxels of 2 x 2 x 2.5 mm\n"
              "File: NIfTI-1, little-endian\n"
              "Type: int16\n"
              "Scale: the stored values are the greys\n"
              "Largest error: none, every value is exact\n"
              "Values outside the scale: none\n"
              "Orientation: the file's sform (code 4)\n"
              "Warnings: none\n");
    EXPECT_EQ(Read_Losses_Text(volume), "");
    volume.affine[1] = {0, 0, 2.2, 0};
    volume.affine[2] = {0, 2.4, 0, 0};
    EXPECT_NE(Read_Facts_Text("head.nii", volume, {}, "")
                  .find("the file's sform (code 4), in which voxels lie 2 x 2.4 x 2.2 mm apart\n"),
              std::string::npos)
        << "a registration has scaled the head";
    volume.nonfinite_nb = 1234;
    volume.place_source = "the files";
    EXPECT_NE(Read_Facts_Text("head.nii", volume, {}, "")
                  .find("outside the scale: 1,234 that only fill the picture up or have "),
              std::string::npos);
}

TEST(Read_Facts, the_page_tells_what_was_lost) {
    Volume volume;
    volume.nx = volume.ny = volume.nz = 1;
    volume.scalar_type = "float32";
    volume.slope = 0.5;
    volume.intercept = -3;
    volume.max_error = 0.25;
    volume.nonfinite_nb = 2;
    volume.outlier_nb = 1234;
    volume.outlier_lowest = volume.outlier_highest = 1e30;
    const std::vector<std::string> warnings = {"a.nii has something."};
    EXPECT_EQ(Read_Facts_Text("a", volume, warnings, "LAS"),
              "a\n\n"
              "Size: 1 x 1 x 1 voxels of 1 x 1 x 1 mm\n"
              "File: not known\n"
              "Type: float32\n"
              "Scale: grey = level * 0.5 - 3\n"
              "Largest error: 0.25\n"
              "Values outside the scale: 2 that are no number, 1,234 far from all others (1e+30)\n"
              "Orientation: chosen by the user: columns, rows and slices run towards LAS\n"
              "Warnings:\n"
              "- a.nii has something.\n");
    EXPECT_EQ(Read_Losses_Text(volume), "largest error 0.25, 1,236 values outside");
}

TEST(Read_Facts, an_orientation_that_no_file_tells_is_not_made_up) {
    Volume volume;
    volume.stored.present = true;
    EXPECT_NE(Read_Facts_Text("a", volume, {}, "").find("Orientation: not known"), std::string::npos);
    volume.stored.present = false;
    volume.affine_source = Affine_Source::Qform;
    EXPECT_NE(Read_Facts_Text("a", volume, {}, "").find("Orientation: positions and directions in the files"),
              std::string::npos);
}

}  // namespace
