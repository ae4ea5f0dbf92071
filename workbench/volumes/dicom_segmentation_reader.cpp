#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcmetinf.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_label_reading.h"
#include "workbench/volumes/dicom_segmentation_object.h"
#include "workbench/volumes/lab_color.h"
#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

constexpr const char* LABEL_MAP_CLASS = "1.2.840.10008.5.1.4.1.1.66.7";  // Label Map Segmentation Storage
constexpr const char* TAG_DESCRIPTION = "TAG ";
constexpr std::int32_t SEGMENT_NUMBER_MOST = 65535;

Coded_Concept Concept_Read(DcmItem& item, const DcmTagKey& tag) {
    DcmItem* const code = Field_Item(item, tag);
    if (code == nullptr) {
        return {};
    }
    return {Field_Text(*code, DCM_CodeValue), Field_Text(*code, DCM_CodingSchemeDesignator),
            Field_Utf8(*code, DCM_CodeMeaning)};
}

/** The TAG that a segment was, where this program wrote it; else 0. */
int Tag_Of_Description(const std::string& text) {
    const std::string_view mark = TAG_DESCRIPTION;
    int tag = 0;
    const char* const end = text.data() + text.size();
    if (!text.starts_with(mark) || std::from_chars(text.data() + mark.size(), end, tag).ptr != end) {
        return 0;
    }
    return tag >= 1 && tag <= TAG_MOST ? tag : 0;
}

}  // namespace

void Segmentation_Reader::Kind_Read() {
    std::string object = Field_Text(Data_Set(), DCM_SOPClassUID);
    if (object.empty()) {
        object = Field_Text(*file.getMetaInfo(), DCM_MediaStorageSOPClassUID);
    }
    if (object != UID_SegmentationStorage && object != LABEL_MAP_CLASS) {
        result.is_other_object = true;
        result.error = "is no segmentation object";
        return;
    }
    const std::string type = Field_Text(Data_Set(), DCM_SegmentationType);
    if (type == "LABELMAP" || object == LABEL_MAP_CLASS) {
        kind = Kind::Label_Map;
    } else if (type == "FRACTIONAL") {
        kind = Kind::Shares;
    } else if (type == "BINARY") {
        kind = Kind::Binary;
    } else {
        throw Dicom_Refusal{"is of an unknown kind of segmentation (" + Printable_Text(type, FIELD_SHOWN_MOST) + ")"};
    }
    stored.emplace(Data_Set(), Data_Set().getOriginalXfer());
}

void Segmentation_Reader::Segments_Read() {
    std::vector<std::string> descriptions;
    std::vector<std::int32_t> numbers;
    for (DcmItem* const item : Field_Items(Data_Set(), DCM_SegmentSequence)) {
        // A label map may describe its background.
        const std::optional<std::int32_t> number = Field_Integer(*item, DCM_SegmentNumber);
        if (kind == Kind::Label_Map && number == 0) {
            continue;
        }
        if (!number || *number < 1 || *number > SEGMENT_NUMBER_MOST) {
            throw Dicom_Refusal{"has a segment without a usable number"};
        }
        Segment one;
        one.label = Field_Utf8(*item, DCM_SegmentLabel);
        const auto lab = Field_Numbers<3>(*item, DCM_RecommendedDisplayCIELabValue);
        if (lab) {
            one.color = Color_Of_Lab({(*lab)[0], (*lab)[1], (*lab)[2]});
        }
        one.category = Concept_Read(*item, DCM_SegmentedPropertyCategoryCodeSequence);
        one.type = Concept_Read(*item, DCM_SegmentedPropertyTypeCodeSequence);
        if (one.label.empty()) {
            one.label = one.type.meaning;
        }
        if (numbers.size() == static_cast<std::size_t>(TAG_MOST)) {
            throw Dicom_Refusal{"has more than " + std::to_string(TAG_MOST) + " segments, as there are TAGs"};
        }
        if (std::ranges::find(numbers, *number) != numbers.end()) {
            throw Dicom_Refusal{"has two segments of the number " + std::to_string(*number)};
        }
        numbers.push_back(*number);
        descriptions.push_back(Field_Utf8(*item, DCM_SegmentDescription));
        result.segments.push_back(std::move(one));
    }
    if (numbers.empty()) {
        throw Dicom_Refusal{"describes no segment"};
    }
    for (std::size_t at = 0; at < numbers.size(); ++at) {
        result.segments[at].tag = numbers[at];
    }
    Tags_Give(descriptions);
    for (std::size_t at = 0; at < numbers.size(); ++at) {
        tag_of_segment[numbers[at]] = result.segments[at].tag;
    }
}

// On entry the TAGs are the segments' numbers.
void Segmentation_Reader::Tags_Give(const std::vector<std::string>& descriptions) {
    std::vector<int> told;
    told.reserve(descriptions.size());
    for (const std::string& text : descriptions) {
        told.push_back(Tag_Of_Description(text));
    }
    std::vector<int> sorted = told;
    std::ranges::sort(sorted);
    const bool is_told = sorted.front() > 0 && std::ranges::adjacent_find(sorted) == sorted.end();
    const bool is_number = std::ranges::all_of(result.segments, [](const Segment& one) { return one.tag <= TAG_MOST; });
    int next = 1;
    for (std::size_t at = 0; at < result.segments.size(); ++at) {
        int& tag = result.segments[at].tag;
        tag = is_told ? told[at] : is_number ? tag : next++;
    }
    if (!is_told && !is_number) {
        result.warnings.push_back("numbers its segments beyond " + std::to_string(TAG_MOST) +
                                  ": they became TAGs 1 to " + std::to_string(next - 1));
    }
}

void Segmentation_Reader::Format_Read() {
    constexpr std::int32_t side_most = 65535;
    format.width = Field_Integer(Data_Set(), DCM_Columns).value_or(0);
    format.height = Field_Integer(Data_Set(), DCM_Rows).value_or(0);
    if (format.width < 1 || format.height < 1 || format.width > side_most || format.height > side_most) {
        throw Dicom_Refusal{"has no usable size (" + std::to_string(format.width) + " x " +
                            std::to_string(format.height) + " pixels)"};
    }
    const std::int32_t bits = Field_Integer(Data_Set(), DCM_BitsAllocated).value_or(0);
    const bool is_fit = (bits == 1 && kind == Kind::Binary) || bits == 8 || (bits == 16 && kind == Kind::Label_Map);
    if (!is_fit || Field_Integer(Data_Set(), DCM_SamplesPerPixel).value_or(1) != 1 || stored->Real_Bits() != 0) {
        throw Dicom_Refusal{"has pixels that no segmentation has (" + std::to_string(bits) + " bits)"};
    }
    format.is_bits = bits == 1;
    format.bits_allocated = bits == 1 ? 8 : bits;
    format.bits_stored = bits;
    format.high_bit = bits - 1;
    const std::uint64_t frame_room = static_cast<std::uint64_t>(format.width) *
                                     static_cast<std::uint64_t>(format.height) * (sizeof(std::int64_t) + 1);
    if (frame_room > limits.decoded_bytes) {
        throw Dicom_Refusal{"needs more memory than the limit of " + Size_Text(limits.decoded_bytes)};
    }
    // A number that is nearly another one is another segment.
    const E_TransferSyntax syntax = Data_Set().getOriginalXfer();
    const bool is_lossy = syntax == EXS_JPEGProcess1 || syntax == EXS_JPEGProcess2_4 || syntax == EXS_JPEGLSLossy;
    if (is_lossy && kind != Kind::Shares) {
        throw Dicom_Refusal{"is compressed with losses, so that its segments cannot be told"};
    }
    if (kind == Kind::Shares) {
        share_whole = Field_Integer(Data_Set(), DCM_MaximumFractionalValue).value_or(0);
        if (share_whole < 1 || share_whole > TAG_MOST) {
            throw Dicom_Refusal{"does not say which value is a whole voxel"};
        }
    }
}

std::int32_t Segmentation_Reader::Segment_Of_Frame(std::int32_t frame, DcmItem* own, DcmItem* shared) {
    for (DcmItem* const group : {own, shared}) {
        DcmItem* const named = group != nullptr ? Field_Item(*group, DCM_SegmentIdentificationSequence) : nullptr;
        const auto number = named != nullptr ? Field_Integer(*named, DCM_ReferencedSegmentNumber) : std::nullopt;
        if (number) {
            if (!tag_of_segment.contains(*number)) {
                throw Dicom_Refusal{"has a frame of segment " + std::to_string(*number) +
                                    ", which it does not describe"};
            }
            return *number;
        }
    }
    if (tag_of_segment.size() > 1) {
        throw Dicom_Refusal{"does not say which segment frame " + std::to_string(frame + 1) + " belongs to"};
    }
    return tag_of_segment.begin()->first;
}

void Segmentation_Reader::Frames_Read() {
    const std::int32_t told = Field_Integer(Data_Set(), DCM_NumberOfFrames).value_or(1);
    constexpr std::int32_t frames_most = 1'000'000;
    if (told < 1 || told > frames_most) {
        throw Dicom_Refusal{"says that it has " + std::to_string(told) + " frames"};
    }
    const std::int32_t frame_nb = stored->Open(told, format);
    stored->Length_Check();
    constexpr double largest = 65535;
    plan = volumes::Frames_Read(Data_Set(), {format.width, format.height, frame_nb, 0, largest});
    if (!plan.is_size_known) {
        throw Dicom_Refusal{"does not say how large its pixels are"};
    }
    const std::vector<DcmItem*> own = Field_Items(Data_Set(), DCM_PerFrameFunctionalGroupsSequence);
    DcmItem* const shared = Field_Item(Data_Set(), DCM_SharedFunctionalGroupsSequence);
    frames.resize(static_cast<std::size_t>(frame_nb));
    for (std::int32_t at = 0; at < frame_nb; ++at) {
        Frame& frame = frames[static_cast<std::size_t>(at)];
        frame.number = at;
        DcmItem* const group = static_cast<std::size_t>(at) < own.size() ? own[static_cast<std::size_t>(at)] : nullptr;
        frame.segment = kind == Kind::Label_Map ? 0 : Segment_Of_Frame(at, group, shared);
        if (!plan.facts[static_cast<std::size_t>(at)].place.is_known) {
            throw Dicom_Refusal{"does not say where frame " + std::to_string(at + 1) + " lies in the patient"};
        }
    }
    // The one with the higher number is laid on last.
    std::ranges::stable_sort(frames, {}, &Frame::segment);
}

void Segmentation_Reader::Labels_Begin(const Volume& like) {
    result.labels = Labels_Like(like, limits);
    result.labels->encoding = source.syntax_name;
}

void Segmentation_Reader::Frame_Lay(const Frame& frame, std::span<const std::int64_t> values) {
    Volume& labels = *result.labels;
    const std::array<std::int32_t, 3> size = {labels.nx, labels.ny, labels.nz};
    const int own_tag = kind == Kind::Label_Map ? 0 : tag_of_segment.at(frame.segment);
    for (std::int32_t row = 0; row < format.height; ++row) {
        for (std::int32_t column = 0; column < format.width; ++column) {
            const std::int64_t value = values[static_cast<std::size_t>(row) * static_cast<std::size_t>(format.width) +
                                              static_cast<std::size_t>(column)];
            const bool is_part =
                kind == Kind::Shares
                    ? static_cast<double>(value) >= *threshold * static_cast<double>(share_whole) && value > 0
                    : value != 0;
            if (!is_part) {
                continue;
            }
            int tag = own_tag;
            if (kind == Kind::Label_Map) {
                const auto found = tag_of_segment.find(static_cast<std::int32_t>(value));
                if (found == tag_of_segment.end()) {
                    ++unknown_nb;
                    continue;
                }
                tag = found->second;
            }
            std::array<std::int32_t, 3> at{};
            bool is_inside = true;
            for (std::size_t axis = 0; axis < 3; ++axis) {
                at[axis] = frame.voxels.origin[axis] + column * frame.voxels.along_row[axis] +
                           row * frame.voxels.along_column[axis];
                is_inside = is_inside && at[axis] >= 0 && at[axis] < size[axis];
            }
            if (!is_inside) {
                ++outside_nb;
                continue;
            }
            const std::size_t voxel = labels.Index(at[0], at[1], at[2]);
            const std::int32_t before = labels.levels[voxel];
            overlapping_nb += before != 0 && before != tag ? 1 : 0;
            labels.levels.Set(voxel, tag);
        }
    }
}

void Segmentation_Reader::Labels_Fill() {
    Frame_Room room;
    const Palette none;
    std::vector<std::int64_t> values(static_cast<std::size_t>(format.width) * static_cast<std::size_t>(format.height));
    for (std::size_t at = 0; at < frames.size(); ++at) {
        if (progress && !progress(static_cast<double>(at) / static_cast<double>(frames.size()))) {
            throw Label_Reading_Given_Up();
        }
        stored->Frame(frames[at].number, room);
        has_damage = has_damage || room.has_warnings;
        Frame_Decode(format, room.bytes, none, values);
        Frame_Lay(frames[at], values);
    }
    if (outside_nb > 0 && std::ranges::all_of(result.labels->levels, [](std::int32_t level) { return level == 0; })) {
        throw Dicom_Refusal{"lies wholly beyond the image"};
    }
    const auto [lowest, highest] = std::ranges::minmax(result.labels->levels);
    result.labels->level_min = lowest;
    result.labels->level_max = highest;
}

// Contract: nothing of a person's segments is left out, moved or decided without a word.
void Segmentation_Reader::Warnings_Tell() {
    const auto voxels = [](std::uint64_t count) { return Count_Text(count) + (count == 1 ? " voxel" : " voxels"); };
    if (overlapping_nb > 0) {
        result.warnings.push_back("has segments that overlap: " + voxels(overlapping_nb) +
                                  " went to the segment with the higher number");
    }
    if (outside_nb > 0) {
        result.warnings.push_back("has segments that reach beyond the image: " + voxels(outside_nb) + " were left out");
    }
    if (unknown_nb > 0) {
        result.warnings.push_back("has " + voxels(unknown_nb) + " of segments that it does not describe; left out");
    }
    if (has_damage) {
        result.warnings.emplace_back("was decoded with errors: its segments may be damaged");
    }
}

Segmentation_Result Segmentation_Reader::Read() {
    Data_Set_Read(bytes, limits.decoded_bytes, file, source);
    result.warnings = source.warnings;
    Image_Place_Demand(image);
    result.owner = Owner_Of(Data_Set());
    Kind_Read();
    if (result.is_other_object) {
        return std::move(result);
    }
    Segments_Read();
    Format_Read();
    if (kind == Kind::Shares && !threshold) {
        result.needs_threshold = true;
        result.error = "holds shares of voxels; a threshold is needed";
        return std::move(result);
    }
    Frames_Read();
    if (!On_Image()) {
        On_Own_Grid();
    }
    Labels_Fill();
    Warnings_Tell();
    return std::move(result);
}

std::string Tag_Description_Text(int tag) {
    return TAG_DESCRIPTION + std::to_string(tag);
}

Segmentation_Result Dicom_Segmentation_Read(std::span<const std::uint8_t> file, const Volume& image,
                                            std::optional<double> threshold, const Load_Limits& limits,
                                            const Load_Progress& progress) noexcept {
    return Labels_Read_Guarded<Segmentation_Reader>(file, image, threshold, limits, progress);
}

}  // namespace volumes
