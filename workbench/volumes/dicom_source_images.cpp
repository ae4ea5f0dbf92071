#include "workbench/volumes/dicom_source_images.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "workbench/volumes/byte_source.h"
#include "workbench/volumes/decoded_source.h"
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_reader.h"
#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

Dicom_Refusal Refusal_Of(const std::filesystem::path& path, const std::string& what) {
    return {"The image " + File_Name_Text(path) + " " + what + '.'};
}

std::vector<std::uint8_t> Bytes_Of(const std::filesystem::path& path, std::uint64_t most) {
    File_Source plain(path);
    if (!plain.Error().empty()) {
        throw Refusal_Of(path, plain.Error());
    }
    Decoded_Source decoded(plain);
    std::vector<std::uint8_t> bytes;
    constexpr std::size_t step = std::size_t{1} << 20U;
    while (decoded.End() == Decode_End::Not_Yet) {
        const std::size_t had = bytes.size();
        if (had > most) {
            throw Refusal_Of(path, "is larger than " + Size_Text(most));
        }
        bytes.resize(had + std::max(step, had));
        bytes.resize(had + decoded.Read(std::span(bytes).subspan(had)));
    }
    if (!Dicom_Is_Likely(bytes)) {
        throw Dicom_Refusal{File_Name_Text(path) + " is no DICOM image; segmentation objects belong to DICOM images."};
    }
    if (decoded.End() != Decode_End::Complete) {
        throw Refusal_Of(path, "cannot be read to its end");
    }
    return bytes;
}

/** What patient and study are, in the order of their tags' meaning. */
constexpr std::pair<std::uint16_t, std::uint16_t> REPEATED[] = {
    {0x0010, 0x0010}, {0x0010, 0x0020}, {0x0010, 0x0021}, {0x0010, 0x0030}, {0x0010, 0x0040},  // patient
    {0x0020, 0x000D}, {0x0008, 0x0020}, {0x0008, 0x0030}, {0x0008, 0x0090}, {0x0020, 0x0010},  // study
    {0x0008, 0x0050}, {0x0008, 0x1030}, {0x0010, 0x1010}, {0x0010, 0x1020}, {0x0010, 0x1030}, {0x0020, 0x1040}};

class Images_Reader {
  public:
    Images_Reader(const Volume& labelled, const Slice_Files& slice_files, const Load_Progress& read_progress)
        : image(labelled), files(slice_files), progress(read_progress) {}

    Source_Images Read() {
        for (std::int32_t z = 0; z < image.nz; ++z) {
            if (progress && !progress(static_cast<double>(z) / image.nz)) {
                throw Dicom_Refusal{"Writing was given up."};
            }
            const auto at = static_cast<std::size_t>(z);
            const std::int32_t file = at < files.file_of_slice.size() ? files.file_of_slice[at] : -1;
            if (file < 0 || static_cast<std::size_t>(file) >= files.files.size()) {
                throw Dicom_Refusal{"It is not known which file slice " + std::to_string(z + 1) + " came from."};
            }
            Slice_Find(z, file);
        }
        return std::move(read);
    }

  private:
    std::size_t Image_Of(std::int32_t file) {
        const auto known = image_of_file.find(file);
        if (known != image_of_file.end()) {
            return known->second;
        }
        read.images.push_back(Image_Read(files.files[static_cast<std::size_t>(file)]));
        image_of_file[file] = read.images.size() - 1;
        return read.images.size() - 1;
    }

    Source_Image Image_Read(const std::filesystem::path& path) {
        const std::vector<std::uint8_t> bytes = Bytes_Of(path, file_most);
        Data_Set_Source source;
        DcmFileFormat file;
        try {
            Data_Set_Read(bytes, file_most, file, source);
        } catch (const Dicom_Refusal& refusal) {
            throw Refusal_Of(path, refusal.text);
        }
        DcmDataset& data_set = *file.getDataset();
        Source_Image one;
        one.kind = Field_Text(data_set, DCM_SOPClassUID);
        one.instance = Field_Text(data_set, DCM_SOPInstanceUID);
        one.series = Field_Text(data_set, DCM_SeriesInstanceUID);
        one.study = Field_Text(data_set, DCM_StudyInstanceUID);
        one.frame_of_reference = Field_Text(data_set, DCM_FrameOfReferenceUID);
        if (one.kind.empty() || one.instance.empty() || one.series.empty() || one.study.empty()) {
            throw Refusal_Of(path,
                             "does not name itself, its series or its study; a segmentation object could not refer "
                             "to it");
        }
        const Frame_Size size{Field_Integer(data_set, DCM_Columns).value_or(0),
                              Field_Integer(data_set, DCM_Rows).value_or(0),
                              std::clamp(Field_Integer(data_set, DCM_NumberOfFrames).value_or(1), 1, 1'000'000), 0, 0};
        if (size.width != image.nx || size.height != image.ny) {
            throw Refusal_Of(path, "has another size than when it was opened");
        }
        if (Field_Text(data_set, DCM_LossyImageCompression) == "01") {
            read.is_lossy = true;
            read.lossy_ratio = Field_Text(data_set, DCM_LossyImageCompressionRatio);
            read.lossy_method = Field_Text(data_set, DCM_LossyImageCompressionMethod);
        }
        const Frame_Plan plan = Frames_Plan(data_set, 0, size);
        for (const Frame_Facts& facts : plan.facts) {
            one.places.push_back(facts.place);
        }
        one.spacing = plan.facts.front().spacing;
        if (!read.images.empty()) {
            if (one.study != read.images.front().study ||
                one.frame_of_reference != read.images.front().frame_of_reference) {
                throw Refusal_Of(path, "is of another study or another frame of reference than the first one");
            }
            return one;
        }
        for (const auto& [group, element] : REPEATED) {
            const DcmTagKey tag(group, element);
            read.repeated.push_back({tag, Field_Utf8(data_set, tag)});
        }
        read.series_text = Field_Utf8(data_set, DCM_SeriesDescription);
        read.series_number = Field_Integer(data_set, DCM_SeriesNumber).value_or(0);
        return one;
    }

    /** The frame of the file that lies where the slice was read to lie. */
    void Slice_Find(std::int32_t z, std::int32_t file) {
        const std::size_t at = Image_Of(file);
        const Source_Image& source = read.images[at];
        const std::filesystem::path& path = files.files[static_cast<std::size_t>(file)];
        std::array<double, 3> corner{};  // DICOM's axes run to the left and back
        for (std::size_t axis = 0; axis < 3; ++axis) {
            corner[axis] = (image.affine[axis][2] * z + image.affine[axis][3]) * (axis < 2 ? -1.0 : 1.0);
        }
        // Slices that lie unevenly are beside the grid that stands for them.
        const double farthest = image.nz > 1 ? 0.5 * image.spacing[2] + 1e-3 : 1e-3;
        std::optional<std::int32_t> nearest;
        double least = farthest;
        bool is_several = false;
        for (std::size_t frame = 0; frame < source.places.size(); ++frame) {
            const Slice_Place& place = source.places[frame];
            if (!place.is_known) {
                throw Refusal_Of(path, "does not say where it lies in the patient, which segmentation objects need");
            }
            const double off =
                std::hypot(place.corner[0] - corner[0], place.corner[1] - corner[1], place.corner[2] - corner[2]);
            constexpr double same_place = 1e-3;  // mm
            if (nearest && std::abs(off - least) < same_place) {
                is_several = true;  // at other times
            } else if (off <= least) {
                least = off;
                nearest = static_cast<std::int32_t>(frame);
                is_several = false;
            }
        }
        if (!nearest || !Has_Directions(source.places[static_cast<std::size_t>(*nearest)])) {
            throw Refusal_Of(
                path, "does not lie where the volume has its slice; a segmentation object could not refer to it");
        }
        read.slices.push_back({at, *nearest, !is_several && source.places.size() > 1,
                               source.places[static_cast<std::size_t>(*nearest)].corner});
    }

    bool Has_Directions(const Slice_Place& place) const {
        constexpr double same = 1e-3;  // mm from one voxel to the next
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double sign = axis < 2 ? -1.0 : 1.0;
            if (std::abs(image.affine[axis][0] - sign * place.along_row[axis] * image.spacing[0]) > same ||
                std::abs(image.affine[axis][1] - sign * place.along_column[axis] * image.spacing[1]) > same) {
                return false;
            }
        }
        return true;
    }

    const Volume& image;
    const Slice_Files& files;
    const Load_Progress& progress;
    const std::uint64_t file_most = Limits_Beside(image).decoded_bytes;
    std::map<std::int32_t, std::size_t> image_of_file;
    Source_Images read;
};

}  // namespace

Source_Images Source_Images_Read(const Volume& image, const Slice_Files& slices, const Load_Progress& progress) {
    return Images_Reader(image, slices, progress).Read();
}

Object_Owner Object_Owner_Read(const std::filesystem::path& file, const Load_Limits& limits) noexcept {
    try {
        const std::vector<std::uint8_t> bytes = Bytes_Of(file, limits.decoded_bytes);
        Data_Set_Source source;
        DcmFileFormat format;
        Data_Set_Read(bytes, limits.decoded_bytes, format, source);
        return Owner_Of(*format.getDataset());
    } catch (...) {
        return {};
    }
}

}  // namespace volumes
