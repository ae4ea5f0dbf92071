// libFuzzer: any bytes as a DICOM file, alone and beside itself at another place of the same series, and as a
// segmentation object of a small image. Whatever is read must be sound, and so must be what it is put together to.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>

#include "workbench/volumes/dicom_head.h"
#include "workbench/volumes/dicom_reader.h"
#include "workbench/volumes/dicom_segmentation.h"
#include "workbench/volumes/dicom_series.h"
#include "workbench/volumes/volume_statistics.h"

using namespace volumes;

namespace {

constexpr std::uint64_t DECODED_MOST = 1U
                                       << 20U;  // bytes: enough for every path, little enough for many runs per second

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void Check(const Volume& volume) {
    Require(volume.nx > 0 && volume.ny > 0 && volume.nz > 0 && volume.nt > 0);
    Require(volume.levels.size() == volume.Voxel_Nb_3D() * static_cast<std::size_t>(volume.nt));
    Require(std::isfinite(volume.slope) && volume.slope != 0 && std::isfinite(volume.intercept));
    Require(std::isfinite(volume.grey(volume.level_min)) && std::isfinite(volume.grey(volume.level_max)));
    for (const auto& row : volume.affine) {
        for (const double element : row) {
            Require(std::isfinite(element));
        }
    }
    for (const std::int32_t level : volume.levels) {
        Require(level <= LEVEL_LARGEST || level == LEVEL_OUTSIDE);
        Require(volume.color || level == LEVEL_OUTSIDE || (level >= volume.level_min && level <= volume.level_max));
    }
    const Volume_Statistics statistics = Volume_Statistics_Compute(volume);
    Require(statistics.window_low < statistics.window_high);
}

std::size_t Slice_Nb(const Dicom_Image& image) {
    return static_cast<std::size_t>(image.volume.nz) * static_cast<std::size_t>(image.volume.nt);
}

/** The image that the objects of the corpus belong to: 12 x 9 x 7 voxels, turned by ten degrees. */
Volume Segmented_Image() {
    Volume image;
    image.nx = 12;
    image.ny = 9;
    image.nz = 7;
    image.nt = 1;
    image.spacing = {0.8, 1.1, 2.5};
    image.affine_source = Affine_Source::Qform;
    image.affine = {{{-0.7878462024097664, 0.19101299543362338, 0.0, 31.5},
                     {-0.13891854213354424, -1.0832885283134289, 0.0, -12.25},
                     {0.0, 0.0, 2.5, 80.0}}};
    return image;
}

void Segmentation_Check(std::span<const std::uint8_t> bytes) {
    static const Volume image = Segmented_Image();
    Segmentation_Result read = Dicom_Segmentation_Read(bytes, image, 0.5, Load_Limits{DECODED_MOST});
    if (read.is_other_object) {
        read = Dicom_Structure_Set_Read(bytes, image, Load_Limits{DECODED_MOST});
    }
    Require(read.labels.has_value() == read.error.empty());
    if (read.labels) {
        Check(*read.labels);
        Require(read.labels->level_min >= 0 && read.labels->level_max <= 255);
        Require(!read.is_on_image || read.labels->nx == image.nx);
    }
}

/** A head that can wait says what the whole file says. */
void Head_Check(std::span<const std::uint8_t> bytes, const Dicom_Result& whole) {
    const std::optional<Dicom_Head> head = Dicom_Head_Of(bytes);
    if (!head || !head->image) {
        return;
    }
    const Volume& listed = head->image->volume;
    Require(listed.levels.empty() && listed.nx >= 1 && listed.ny >= 1 && listed.nz == 1 && listed.nt == 1);
    if (whole.image) {
        const Volume& read = whole.image->volume;
        Require(whole.others.empty() && Identity_Of(*head->image) == Identity_Of(*whole.image));
        Require(listed.nx == read.nx && listed.ny == read.ny && listed.color == read.color);
        Require(listed.is_inverted == read.is_inverted && listed.affine == read.affine);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Segmentation_Check(std::span(data, size));
    Dicom_Result result = Dicom_Read(std::span(data, size), Load_Limits{DECODED_MOST});
    Require(result.image.has_value() == result.error.empty());
    Head_Check(std::span(data, size), result);
    if (!result.image) {
        return 0;
    }
    Check(result.image->volume);
    for (const std::string& warning : result.warnings) {
        Require(std::ranges::all_of(warning, [](char letter) { return letter >= ' ' && letter < 0x7F; }));
    }
    Image_Folder folder;
    folder.files = {"first.dcm", "second.dcm", "third.dcm"};
    const std::size_t slices = Slice_Nb(*result.image);
    std::size_t wanted = slices * 3;
    Series_Part other = {*result.image, 1, false, {}};
    other.image.place.corner[size % 3] += static_cast<double>(size % 7);
    other.image.place.along_row[size % 3] += static_cast<double>(size % 5) * 1e-3;
    other.image.volume.slope /= 2;
    other.image.instance.clear();
    Series_Part third = {*result.image, 2, false, {}};
    third.image.place.is_known = size % 2 == 0;
    third.image.volume.slope *= size % 3 == 0 ? 1e12 : 1;
    third.image.instance.clear();
    std::vector<Series_Part> parts;
    parts.push_back(std::move(other));
    parts.push_back(std::move(third));
    parts.push_back({std::move(*result.image), 0, false, {}});
    for (Dicom_Image& part : result.others) {
        Check(part.volume);
        wanted += Slice_Nb(part);
        parts.push_back({std::move(part), 0, false, {}});
    }
    Series_Assemble(std::move(parts), folder);
    Require(!folder.volumes.empty());
    std::size_t shown = 0;
    for (const Folder_Volume& one : folder.volumes) {
        Check(one.volume);
        shown += static_cast<std::size_t>(one.volume.nz);
        Require(one.volume.nt == 1 && one.file_of_slice.size() == static_cast<std::size_t>(one.volume.nz));
        Require(!Image_Folder_Problems_Text(folder, {}).starts_with(": "));
    }
    Require(shown == wanted);
    return 0;
}
