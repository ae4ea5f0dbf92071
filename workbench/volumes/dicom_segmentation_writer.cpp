#include "workbench/volumes/dicom_segmentation_writer.h"

#include <algorithm>
#include <array>
#include <exception>
#include <limits>
#include <map>
#include <new>
#include <optional>
#include <string_view>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "dcmtk/dcmdata/dcostrmb.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "workbench/volumes/byte_order.h"
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_element_write.h"
#include "workbench/volumes/dicom_source_images.h"
#include "workbench/volumes/lab_color.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/output_file.h"
#include "workbench/volumes/unique_identifier.h"

namespace volumes {

namespace {

constexpr std::size_t TAG_NB = 256;
constexpr std::size_t LONG_STRING_MOST = 64;  // letters of DICOM's LO
constexpr const char* PROGRAM = "Kit_Panels workbench";

/** A slice of a segment. */
struct Segment_Frame {
    std::uint16_t segment = 1;  ///< from 1
    std::int32_t z = 0;
};

class Object_Maker {
  public:
    Object_Maker(const Volume& labelled, const Source_Images& source_images, const Segmentation_Content& written)
        : image(labelled), source(source_images), content(written), data_set(*file.getDataset()) {}

    /** The bytes of the file. */
    std::vector<std::uint8_t> Make() {
        Segments_Find();
        Patient_Put();
        General_Put();
        Segments_Put();
        Dimensions_Put();
        Shared_Put();
        for (const Segment_Frame& frame : frames) {
            Frame_Put(frame);
        }
        References_Put();
        Pixels_Put();
        return Bytes_Make();
    }

  private:
    std::size_t Slice_Size() const { return static_cast<std::size_t>(image.nx) * static_cast<std::size_t>(image.ny); }
    std::span<const std::uint8_t> Slice(std::int32_t z) const {
        return content.tags.subspan(static_cast<std::size_t>(z) * Slice_Size(), Slice_Size());
    }

    void Segments_Find() {
        std::vector<std::array<bool, TAG_NB>> is_on_slice(static_cast<std::size_t>(image.nz));
        std::array<bool, TAG_NB> is_used{};
        for (std::int32_t z = 0; z < image.nz; ++z) {
            for (const std::uint8_t tag : Slice(z)) {
                is_on_slice[static_cast<std::size_t>(z)][tag] = true;
                is_used[tag] = true;
            }
        }
        for (std::size_t tag = 1; tag < TAG_NB; ++tag) {
            if (!is_used[tag]) {
                continue;
            }
            const auto told = std::ranges::find(content.segments, static_cast<int>(tag), &Segment::tag);
            Segment one;
            if (told != content.segments.end()) {
                one = *told;
            }
            one.tag = static_cast<int>(tag);
            segments.push_back(std::move(one));
            for (std::int32_t z = 0; z < image.nz; ++z) {
                if (is_on_slice[static_cast<std::size_t>(z)][tag]) {
                    frames.push_back({static_cast<std::uint16_t>(segments.size()), z});
                }
            }
        }
        if (segments.empty()) {
            throw Dicom_Refusal{"There are no labels: no voxel has a TAG but the background."};
        }
        // Positions along the slices count from 1 over those that are there.
        for (const Segment_Frame& frame : frames) {
            position_of_slice[frame.z] = 0;
        }
        std::uint32_t position = 0;
        for (auto& one : position_of_slice) {
            one.second = ++position;
        }
    }

    void Patient_Put() {
        Text_Put(data_set, DCM_SpecificCharacterSet, "ISO_IR 192");
        for (const Repeated_Field& field : source.repeated) {
            // These must be there, even without a value; of the rest an empty one says nothing.
            const bool is_needed = field.tag != DCM_IssuerOfPatientID && field.tag != DCM_StudyDescription &&
                                   field.tag != DCM_PatientAge && field.tag != DCM_PatientSize &&
                                   field.tag != DCM_PatientWeight && field.tag != DCM_PositionReferenceIndicator;
            if (is_needed || !field.value.empty()) {
                Text_Put(data_set, field.tag, field.value);
            }
        }
    }

    void General_Put() {
        const Moment_Text now = Moment_Now();
        Text_Put(data_set, DCM_SOPClassUID, UID_SegmentationStorage);
        Text_Put(data_set, DCM_SOPInstanceUID, Unique_Identifier_New());
        Text_Put(data_set, DCM_Modality, "SEG");
        Text_Put(data_set, DCM_SeriesInstanceUID, Unique_Identifier_New());
        constexpr std::int32_t series_step = 1000;  // beside the numbers that scanners give
        Text_Put(data_set, DCM_SeriesNumber, std::to_string(source.series_number % series_step + series_step));
        Text_Put(data_set, DCM_SeriesDescription,
                 Letters_First("Segmentation" + (source.series_text.empty() ? "" : " of " + source.series_text),
                               LONG_STRING_MOST));
        Text_Put(data_set, DCM_SeriesDate, now.date);
        Text_Put(data_set, DCM_SeriesTime, now.time);
        Text_Put(data_set, DCM_Manufacturer, "Kit_Panels");
        Text_Put(data_set, DCM_ManufacturerModelName, PROGRAM);
        Text_Put(data_set, DCM_DeviceSerialNumber, "0");
        Text_Put(data_set, DCM_SoftwareVersions, Letters_First(content.program_version, LONG_STRING_MOST));
        Text_Put(data_set, DCM_InstanceNumber, "1");
        Text_Put(data_set, DCM_ContentDate, now.date);
        Text_Put(data_set, DCM_ContentTime, now.time);
        Text_Put(data_set, DCM_ContentLabel, "SEGMENTATION");
        Text_Put(data_set, DCM_ContentDescription, "Labels drawn and made by thresholds");
        Text_Put(data_set, DCM_ContentCreatorName, Letters_First(content.creator, LONG_STRING_MOST));
        const std::string& frame_of_reference = source.images.front().frame_of_reference;
        Text_Put(data_set, DCM_FrameOfReferenceUID,
                 frame_of_reference.empty() ? Unique_Identifier_New() : frame_of_reference);
        if (!data_set.tagExists(DCM_PositionReferenceIndicator)) {
            Text_Put(data_set, DCM_PositionReferenceIndicator, "");
        }
        Text_Put(data_set, DCM_ImageType, "DERIVED\\PRIMARY");
        Number_Put(data_set, DCM_SamplesPerPixel, 1);
        Text_Put(data_set, DCM_PhotometricInterpretation, "MONOCHROME2");
        Number_Put(data_set, DCM_Rows, static_cast<std::uint16_t>(image.ny));
        Number_Put(data_set, DCM_Columns, static_cast<std::uint16_t>(image.nx));
        Number_Put(data_set, DCM_BitsAllocated, 1);
        Number_Put(data_set, DCM_BitsStored, 1);
        Number_Put(data_set, DCM_HighBit, 0);
        Number_Put(data_set, DCM_PixelRepresentation, 0);
        Text_Put(data_set, DCM_LossyImageCompression, source.is_lossy ? "01" : "00");
        if (source.is_lossy && !source.lossy_ratio.empty()) {
            Text_Put(data_set, DCM_LossyImageCompressionRatio, source.lossy_ratio);
        }
        if (source.is_lossy && !source.lossy_method.empty()) {
            Text_Put(data_set, DCM_LossyImageCompressionMethod, source.lossy_method);
        }
        Text_Put(data_set, DCM_SegmentationType, "BINARY");
        Text_Put(data_set, DCM_SegmentsOverlap, "NO");
        Text_Put(data_set, DCM_NumberOfFrames, std::to_string(frames.size()));
    }

    void Segments_Put() {
        for (std::size_t at = 0; at < segments.size(); ++at) {
            const Segment& one = segments[at];
            const std::string own = Tag_Description_Text(one.tag);
            DcmItem& item = Item_New(data_set, DCM_SegmentSequence);
            Number_Put(item, DCM_SegmentNumber, static_cast<std::uint16_t>(at + 1));
            Text_Put(item, DCM_SegmentLabel, Letters_First(one.label.empty() ? own : one.label, LONG_STRING_MOST));
            Text_Put(item, DCM_SegmentDescription, own);
            Text_Put(item, DCM_SegmentAlgorithmType, "SEMIAUTOMATIC");
            Text_Put(item, DCM_SegmentAlgorithmName, PROGRAM);
            const Coded_Concept tissue{"85756007", "SCT", "Tissue"};
            Concept_Put(item, DCM_SegmentedPropertyCategoryCodeSequence,
                        one.category.value.empty() ? tissue : one.category);
            Concept_Put(item, DCM_SegmentedPropertyTypeCodeSequence, one.type.value.empty() ? tissue : one.type);
            Text_Put(item, DCM_TrackingID, own);
            Text_Put(item, DCM_TrackingUID, Unique_Identifier_New());
            if (one.color) {
                const Stored_Lab lab = Lab_Of_Color(*one.color);
                Demand(item.putAndInsertUint16Array(DCM_RecommendedDisplayCIELabValue, lab.data(), lab.size()));
            }
        }
    }

    void Dimensions_Put() {
        const std::string organisation = Unique_Identifier_New();
        Text_Put(Item_New(data_set, DCM_DimensionOrganizationSequence), DCM_DimensionOrganizationUID, organisation);
        struct Dimension {
            DcmTagKey pointer;
            DcmTagKey group;
            const char* label;
        };
        for (const Dimension& one :
             {Dimension{DCM_ReferencedSegmentNumber, DCM_SegmentIdentificationSequence, "ReferencedSegmentNumber"},
              Dimension{DCM_ImagePositionPatient, DCM_PlanePositionSequence, "ImagePositionPatient"}}) {
            DcmItem& item = Item_New(data_set, DCM_DimensionIndexSequence);
            Text_Put(item, DCM_DimensionOrganizationUID, organisation);
            Demand(item.putAndInsertTagKey(DCM_DimensionIndexPointer, one.pointer));
            Demand(item.putAndInsertTagKey(DCM_FunctionalGroupPointer, one.group));
            Text_Put(item, DCM_DimensionDescriptionLabel, one.label);
        }
    }

    void Shared_Put() {
        DcmItem& shared = Item_New(data_set, DCM_SharedFunctionalGroupsSequence);
        DcmItem& measures = Item_New(shared, DCM_PixelMeasuresSequence);
        const std::array<double, 2> pixel = {image.spacing[1], image.spacing[0]};  // distance of rows first
        Decimals_Put(measures, DCM_PixelSpacing, pixel);
        Decimals_Put(measures, DCM_SliceThickness, std::span(&image.spacing[2], 1));
        Decimals_Put(measures, DCM_SpacingBetweenSlices, std::span(&image.spacing[2], 1));
        const Source_Slice& first = source.slices.front();
        const Slice_Place& place = source.images[first.image].places[static_cast<std::size_t>(first.frame)];
        std::array<double, 6> sides{};
        std::ranges::copy(place.along_row, sides.begin());
        std::ranges::copy(place.along_column, sides.begin() + 3);
        Decimals_Put(Item_New(shared, DCM_PlaneOrientationSequence), DCM_ImageOrientationPatient, sides);
    }

    void Frame_Put(const Segment_Frame& frame) {
        const Source_Slice& slice = source.slices[static_cast<std::size_t>(frame.z)];
        const Source_Image& from = source.images[slice.image];
        DcmItem& group = Item_New(data_set, DCM_PerFrameFunctionalGroupsSequence);
        DcmItem& derivation = Item_New(group, DCM_DerivationImageSequence);
        Concept_Put(derivation, DCM_DerivationCodeSequence, {"113076", "DCM", "Segmentation"});
        DcmItem& image_item = Item_New(derivation, DCM_SourceImageSequence);
        Text_Put(image_item, DCM_ReferencedSOPClassUID, from.kind);
        Text_Put(image_item, DCM_ReferencedSOPInstanceUID, from.instance);
        if (slice.is_frame_told) {
            Text_Put(image_item, DCM_ReferencedFrameNumber, std::to_string(slice.frame + 1));
        }
        Concept_Put(image_item, DCM_PurposeOfReferenceCodeSequence,
                    {"121322", "DCM", "Source image for image processing operation"});
        Text_Put(image_item, DCM_SpatialLocationsPreserved, "YES");
        DcmItem& frame_content = Item_New(group, DCM_FrameContentSequence);
        const std::array<Uint32, 2> indices = {frame.segment, position_of_slice.at(frame.z)};
        Demand(frame_content.putAndInsertUint32Array(DCM_DimensionIndexValues, indices.data(), indices.size()));
        Decimals_Put(Item_New(group, DCM_PlanePositionSequence), DCM_ImagePositionPatient, slice.corner);
        Number_Put(Item_New(group, DCM_SegmentIdentificationSequence), DCM_ReferencedSegmentNumber, frame.segment);
    }

    void References_Put() {
        std::map<std::string, std::vector<std::size_t>> images_of_series;
        for (std::size_t at = 0; at < source.images.size(); ++at) {
            images_of_series[source.images[at].series].push_back(at);
        }
        for (const auto& [series, images] : images_of_series) {
            DcmItem& item = Item_New(data_set, DCM_ReferencedSeriesSequence);
            Text_Put(item, DCM_SeriesInstanceUID, series);
            for (const std::size_t at : images) {
                DcmItem& instance = Item_New(item, DCM_ReferencedInstanceSequence);
                Text_Put(instance, DCM_ReferencedSOPClassUID, source.images[at].kind);
                Text_Put(instance, DCM_ReferencedSOPInstanceUID, source.images[at].instance);
            }
        }
    }

    /** One bit per voxel, the first in the lowest bit; a frame begins where the one before has ended. */
    void Pixels_Put() {
        const std::uint64_t bits = static_cast<std::uint64_t>(frames.size()) * Slice_Size();
        const std::uint64_t size = (bits / BYTE_BITS + (bits % BYTE_BITS != 0 ? 1 : 0) + 1) / 2 * 2;
        if (size >= std::numeric_limits<std::uint32_t>::max()) {
            throw Dicom_Refusal{"The segmentation object would be larger than the format allows (4 GiB)."};
        }
        std::vector<std::uint8_t> packed(static_cast<std::size_t>(size));
        std::size_t bit = 0;
        for (const Segment_Frame& frame : frames) {
            const auto tag = static_cast<std::uint8_t>(segments[frame.segment - 1U].tag);
            for (const std::uint8_t voxel : Slice(frame.z)) {
                packed[bit / BYTE_BITS] |= static_cast<std::uint8_t>((voxel == tag ? 1U : 0U) << bit % BYTE_BITS);
                ++bit;
            }
        }
        Demand(
            data_set.putAndInsertUint8Array(DCM_PixelData, packed.data(), static_cast<unsigned long>(packed.size())));
    }

    std::vector<std::uint8_t> Bytes_Make() {
        const E_TransferSyntax syntax =
            content.is_deflated ? EXS_DeflatedLittleEndianExplicit : EXS_LittleEndianExplicit;
        Demand(file.validateMetaInfo(syntax));
        std::vector<std::uint8_t> room(std::size_t{1} << 20U);
        DcmOutputBufferStream stream(room.data(), static_cast<offile_off_t>(room.size()));
        std::vector<std::uint8_t> bytes;
        const auto take = [&] {
            void* written = nullptr;
            offile_off_t length = 0;
            stream.flushBuffer(written, length);
            const auto* const first = static_cast<const std::uint8_t*>(written);
            bytes.insert(bytes.end(), first, first + length);
        };
        file.transferInit();
        OFCondition done = EC_StreamNotifyClient;
        while (done == EC_StreamNotifyClient) {
            done = file.write(stream, syntax, EET_ExplicitLength, nullptr, EGL_recalcGL, EPD_withoutPadding);
            if (done == EC_StreamNotifyClient) {
                take();
            }
        }
        file.transferEnd();
        Demand(done);
        while (!stream.isFlushed()) {  // what deflating has kept back
            stream.flush();
            Demand(stream.status());
            take();
        }
        take();
        return bytes;
    }

    const Volume& image;
    const Source_Images& source;
    const Segmentation_Content& content;
    DcmFileFormat file;
    DcmDataset& data_set;
    std::vector<Segment> segments;      // of the TAGs that are used
    std::vector<Segment_Frame> frames;  // in the order that they are written in
    std::map<std::int32_t, std::uint32_t> position_of_slice;
};

/** Empty, or why what was written would not be read as what it is. */
std::string Difference_Of(std::span<const std::uint8_t> bytes, const Volume& image,
                          std::span<const std::uint8_t> tags) {
    Load_Limits limits;
    limits.decoded_bytes = std::numeric_limits<std::uint64_t>::max();
    const Segmentation_Result read = Dicom_Segmentation_Read(bytes, image, {}, limits);
    if (!read.labels) {
        return "it " + read.error;
    }
    const bool is_same = read.is_on_image && std::ranges::equal(read.labels->levels, tags, [](auto level, auto tag) {
                             return level == static_cast<std::int32_t>(tag);
                         });
    return is_same ? "" : "it does not hold the labels";
}

std::string Write(const std::filesystem::path& path, const Volume& image, const Slice_Files& slices,
                  const Segmentation_Content& content, const Load_Progress& progress) {
    constexpr std::int32_t side_most = 65535;
    if (content.tags.size() != image.Voxel_Nb_3D() || image.nx > side_most || image.ny > side_most) {
        return "The labels do not fit the image.";
    }
    const Source_Images source = Source_Images_Read(image, slices, progress);
    const std::vector<std::uint8_t> bytes = Object_Maker(image, source, content).Make();
    if (const std::string difference = Difference_Of(bytes, image, content.tags); !difference.empty()) {
        return "The segmentation object was not written: read back, " + difference + '.';
    }
    Output_File file(path);
    const bool is_written = file.Write(bytes) && file.Commit();
    return is_written ? std::string() : File_Name_Text(path) + ' ' + file.Error() + '.';
}

}  // namespace

std::string Dicom_Segmentation_Write(const std::filesystem::path& path, const Volume& image, const Slice_Files& slices,
                                     const Segmentation_Content& content, const Load_Progress& progress) noexcept {
    try {
        try {
            return Write(path, image, slices, content, progress);
        } catch (const Dicom_Refusal& refusal) {
            return refusal.text;
        } catch (const std::bad_alloc&) {
            return File_Name_Text(path) + " cannot be written for want of memory.";
        } catch (const std::exception& exception) {
            return File_Name_Text(path) + " cannot be written: " + exception.what() + '.';
        }
    } catch (...) {
        return "Out of memory.";  // short enough to need none
    }
}

}  // namespace volumes
