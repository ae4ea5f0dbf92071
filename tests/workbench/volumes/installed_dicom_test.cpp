// DICOM files that others wrote: those of the distribution's packages.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/workbench/volumes/listed_by_heads.h"
#include "tests/workbench/volumes/loading.h"
#include "workbench/volumes/image_folder.h"

using namespace volumes;

// Set by the build: the folders of the packages' files; empty when they are not installed.
#if !defined(KIT_DICOM_PYTHON3_PYDICOM) || !defined(KIT_DICOM_OCTAVE_DICOM) || !defined(KIT_DICOM_PYTHON3_NIBABEL)
#error "the build names the folders"
#endif

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class Installed_Dicom : public testing::Test {
  protected:
    /** Opens a package's folder, or skips the test. */
    void Open(const char* named) {
        if (std::string(named).empty()) {
            GTEST_SKIP() << "the package was not there when the build was configured";
        }
        path = named;
        opened = Image_Folder_Open(std::span(&path, 1));
        for (const Folder_Volume& one : opened.volumes) {
            Expect_Sound(one.volume);
            ASSERT_EQ(one.volume.nt, 1) << one.title;
            ASSERT_EQ(one.file_of_slice.size(), static_cast<std::size_t>(one.volume.nz)) << one.title;
        }
    }
    std::vector<std::string> Reasons() const {
        std::vector<std::string> texts;
        for (const Folder_Problem& problem : opened.problems) {
            texts.push_back(problem.path.filename().string() + ": " + problem.reason);
        }
        return texts;
    }
    std::size_t Refused_Nb() const {
        return static_cast<std::size_t>(std::ranges::count(opened.problems, false, &Folder_Problem::is_opened));
    }
    std::size_t File_Nb() const {
        std::vector<Folder_Problem> none;
        return Folder_Files(path, none).size();
    }
    const Folder_Volume* Titled(const std::string& title) const {
        const auto found = std::ranges::find(opened.volumes, title, &Folder_Volume::title);
        return found != opened.volumes.end() ? &*found : nullptr;
    }
    /** One file alone. */
    Volume Alone(const char* name) const {
        const std::filesystem::path file = path / name;
        Image_Folder one = Image_Folder_Open(std::span(&file, 1));
        EXPECT_EQ(one.volumes.size(), 1U) << name;
        return one.volumes.empty() ? Volume() : std::move(one.volumes.front().volume);
    }
    std::filesystem::path path;
    Image_Folder opened;
};

TEST_F(Installed_Dicom, of_pydicom_every_file_is_shown_or_named_with_a_reason_if_installed) {
    Open(KIT_DICOM_PYTHON3_PYDICOM);
    if (IsSkipped()) {
        return;
    }
    EXPECT_EQ(opened.files.size() + Refused_Nb(), File_Nb());
    EXPECT_GE(opened.volumes.size(), 30U);
    EXPECT_THAT(Reasons(), Not(Contains(HasSubstr("is compressed in a way that is not decoded"))));
    EXPECT_THAT(Reasons(), Contains(HasSubstr("MR_truncated.dcm: is broken or cut short")));
    EXPECT_THAT(Reasons(), Contains(HasSubstr("rtplan.dcm: holds no image (RTPlanStorage)")));
    EXPECT_THAT(Reasons(), Contains(HasSubstr("DICOMDIR: is a directory of other files")));
    EXPECT_THAT(Reasons(), Contains(HasSubstr("rtplan.dump: is no DICOM file")));
}

TEST_F(Installed_Dicom, of_pydicom_series_are_stacked_by_position_if_installed) {
    Open(KIT_DICOM_PYTHON3_PYDICOM);
    if (IsSkipped()) {
        return;
    }
    const Folder_Volume* const gated = Titled("CT 5: SmartScore - Gated 0.5 sec");
    ASSERT_NE(gated, nullptr);
    EXPECT_EQ(gated->volume.nz, 5);
    EXPECT_EQ(gated->volume.spacing[2], 2.5);
    EXPECT_EQ(gated->modality, 'C' << 8 | 'T');
    const Folder_Volume* const scout = Titled("CT 4: Scout");
    ASSERT_NE(scout, nullptr);
    EXPECT_TRUE(scout->is_scout);
}

TEST_F(Installed_Dicom, of_pydicom_one_image_is_the_same_in_every_form_of_storage_if_installed) {
    Open(KIT_DICOM_PYTHON3_PYDICOM);
    if (IsSkipped()) {
        return;
    }
    const Volume plain = Alone("MR_small.dcm");
    EXPECT_EQ(plain.nx, 64);
    for (const char* name : {"MR_small_RLE.dcm", "MR_small_bigendian.dcm", "MR_small_expb.dcm", "MR_small_implicit.dcm",
                             "MR_small_padded.dcm"}) {
        EXPECT_EQ(Alone(name).levels, plain.levels) << name;
    }
    const Volume dose = Alone("rtdose.dcm");
    EXPECT_EQ(dose.nz, 15);
    EXPECT_EQ(dose.spacing[2], 5);
    EXPECT_EQ(Alone("rtdose_expb.dcm").levels, dose.levels);
    EXPECT_EQ(Alone("rtdose_rle.dcm").levels, dose.levels);
    // Ten bands of ten rows; read with an independent program.
    const Volume colors = Alone("SC_rgb_rle.dcm");
    ASSERT_TRUE(colors.color);
    const std::vector<std::int32_t> bands = {0x0000FF, 0x00FF00, 0xFF0000, 0x000000, 0xC0C0C0};
    for (std::int32_t band = 0; band < 5; ++band) {
        EXPECT_EQ(colors.levels[colors.Index(5, 20 * band, 0)], bands[static_cast<std::size_t>(band)]);
    }
    EXPECT_EQ(Alone("SC_rgb_rle_16bit.dcm").levels, colors.levels);
    EXPECT_EQ(Alone("SC_rgb_rle_32bit.dcm").levels, colors.levels);
}

TEST_F(Installed_Dicom, of_octave_images_of_every_kind_are_opened_if_installed) {
    Open(KIT_DICOM_OCTAVE_DICOM);
    if (IsSkipped()) {
        return;
    }
    EXPECT_EQ(opened.files.size() + Refused_Nb(), File_Nb());
    EXPECT_EQ(opened.volumes.size(), 4U);
    const Folder_Volume* const echo = Titled("US 5829: PS LAX MR & AI");
    ASSERT_NE(echo, nullptr);
    EXPECT_TRUE(echo->is_cine);
    EXPECT_TRUE(echo->volume.color);
    EXPECT_EQ(echo->volume.nz, 10);
    EXPECT_THAT(Reasons(), Contains("rtstruct.dcm: holds no image (RTStructureSetStorage)"));
}

TEST_F(Installed_Dicom, of_nibabel_frames_of_one_file_make_a_volume_if_installed) {
    Open(KIT_DICOM_PYTHON3_NIBABEL);
    if (IsSkipped()) {
        return;
    }
    EXPECT_EQ(opened.files.size() + Refused_Nb(), File_Nb());
    const auto frames = std::ranges::max_element(opened.volumes, {}, [](const auto& one) { return one.volume.nz; });
    ASSERT_NE(frames, opened.volumes.end());
    EXPECT_EQ(frames->title, "MR 301: MPRAGE_S2");
    EXPECT_EQ(frames->volume.nz, 176);
    EXPECT_THAT(Reasons(), Contains(HasSubstr("csa_slice_norm.dcm: holds no image (MRImageStorage)")));
}

TEST_F(Installed_Dicom, listed_by_heads_and_read_afterwards_is_the_same_if_installed) {
    int waiting_nb = 0;
    for (const char* const folder : {KIT_DICOM_PYTHON3_PYDICOM, KIT_DICOM_OCTAVE_DICOM, KIT_DICOM_PYTHON3_NIBABEL}) {
        Open(folder);
        if (IsSkipped()) {
            return;
        }
        waiting_nb += Expect_Same_By_Heads(path, opened);
    }
    EXPECT_GE(waiting_nb, 20);
}

}  // namespace
