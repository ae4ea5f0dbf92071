#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <numeric>
#include <utility>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "dcmtk/dcmdata/dcmetinf.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_frames.h"
#include "workbench/volumes/dicom_label_reading.h"
#include "workbench/volumes/dicom_pixels.h"
#include "workbench/volumes/dicom_segmentation.h"
#include "workbench/volumes/dicom_stored_frames.h"
#include "workbench/volumes/frame_voxels.h"
#include "workbench/volumes/lab_color.h"
#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

constexpr const char* LABEL_MAP_CLASS = "1.2.840.10008.5.1.4.1.1.66.7";  // Label Map Segmentation Storage
constexpr const char* TAG_DESCRIPTION = "TAG ";
constexpr int TAG_MOST = 255;
constexpr std::int32_t SEGMENT_NUMBER_MOST = 65535;

enum class Kind { Binary, Label_Map, Shares };

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

/** One object while it is read. */
class Segmentation_Reader {
  public:
    Segmentation_Reader(std::span<const std::uint8_t> file_bytes, const Volume& shown_image,
                        std::optional<double> share_threshold, const Load_Limits& file_limits,
                        const Load_Progress& file_progress)
        : bytes(file_bytes),
          image(shown_image),
          threshold(share_threshold),
          limits(file_limits),
          progress(file_progress) {}

    Segmentation_Result Read();

  private:
    struct Frame {
        std::int32_t number = 0;  ///< of the file, from 0
        std::int32_t segment = 0;
        Picture_Voxels voxels;
    };

    DcmDataset& Data_Set() { return *file.getDataset(); }
    void Kind_Read();
    void Segments_Read();
    void Tags_Give(const std::vector<std::string>& descriptions);
    void Format_Read();
    std::int32_t Segment_Of_Frame(std::int32_t frame, DcmItem* own, DcmItem* shared);
    void Frames_Read();
    Placed_Picture Picture_Of(std::int32_t frame) const;
    bool Is_Coarser(const std::map<std::array<std::int32_t, 3>, double>& depth_of) const;
    bool On_Image();
    void On_Own_Grid();
    bool Is_Distance_Told();
    double Own_Distance(const std::vector<double>& depths, const std::array<double, 3>& spacing);
    void Labels_Begin(const Volume& like);
    void Labels_Fill();
    /** Gives voxels to a TAG, or to those of a label map. */
    void Frame_Lay(const Frame& frame, std::span<const std::int64_t> values);
    void Warnings_Tell();

    std::span<const std::uint8_t> bytes;
    const Volume& image;
    std::optional<double> threshold;
    const Load_Limits& limits;
    const Load_Progress& progress;
    Data_Set_Source source;  // outlives the data set
    DcmFileFormat file;
    std::optional<Stored_Frames> stored;
    Kind kind = Kind::Binary;
    Pixel_Format format;
    std::int64_t share_whole = 0;  // value of a voxel that is wholly of the segment
    std::map<std::int32_t, int> tag_of_segment;
    Frame_Plan plan;
    std::vector<Frame> frames;
    std::uint64_t overlapping_nb = 0;
    std::uint64_t outside_nb = 0;
    std::uint64_t unknown_nb = 0;  // of a label map: numbers that are no segments
    bool has_damage = false;       // frames that their codec had errors with
    Segmentation_Result result;
};

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

Placed_Picture Segmentation_Reader::Picture_Of(std::int32_t frame) const {
    const Frame_Facts& facts = plan.facts[static_cast<std::size_t>(frame)];
    return {facts.place, {facts.spacing[0], facts.spacing[1]}, {format.width, format.height}};
}

// Its frames lie on slices of the image, but stand for thicker ones: those between must not stay empty.
bool Segmentation_Reader::Is_Coarser(const std::map<std::array<std::int32_t, 3>, double>& depth_of) const {
    if (depth_of.size() < 2) {
        return false;
    }
    std::vector<double> depths;
    depths.reserve(depth_of.size());
    for (const auto& [origin, depth] : depth_of) {
        depths.push_back(depth);
    }
    std::ranges::sort(depths);
    double gap = depths.back() - depths.front();
    for (std::size_t at = 1; at < depths.size(); ++at) {
        gap = std::min(gap, depths[at] - depths[at - 1]);
    }
    const std::array<double, 3> normal = Slice_Normal(Picture_Of(frames.front().number).place);
    double step = 0.0;  // mm from slice to slice of the image
    for (std::size_t axis = 0; axis < 3; ++axis) {
        double along = 0.0;
        for (std::size_t row = 0; row < 3; ++row) {
            along += image.affine[row][axis] * normal[row] * (row < 2 ? -1.0 : 1.0);
        }
        step = std::max(step, std::abs(along));
    }
    constexpr double coarser = 1.5;
    const double told = plan.facts[static_cast<std::size_t>(frames.front().number)].spacing[2];
    return gap > coarser * step && told > coarser * step;
}

bool Segmentation_Reader::On_Image() {
    std::map<std::array<std::int32_t, 3>, double> depth_of;  // of the slices of the image that frames lie on
    double off = 0.0;
    for (Frame& frame : frames) {
        const Placed_Picture picture = Picture_Of(frame.number);
        const std::optional<Picture_Voxels> found = Picture_Voxels_Find(image, picture);
        if (!found) {
            return false;
        }
        frame.voxels = *found;
        off = std::max(off, found->off);
        // Two frames that lie apart must not become one slice.
        const double depth = Slice_Depth(picture.place);
        constexpr double apart = 0.02;  // mm
        const auto [place, is_new] = depth_of.emplace(found->origin, depth);
        if (!is_new && std::abs(place->second - depth) > apart) {
            return false;
        }
    }
    if (Is_Coarser(depth_of)) {
        return false;
    }
    constexpr double told_above = 0.1;
    if (off > told_above) {
        result.warnings.push_back("has frames that lie up to " + Amount_Text(off) +
                                  " slices beside those of the image; each is on the nearest");
    }
    Labels_Begin(image);
    result.is_on_image = true;
    return true;
}

bool Segmentation_Reader::Is_Distance_Told() {
    DcmItem* const shared = Field_Item(Data_Set(), DCM_SharedFunctionalGroupsSequence);
    DcmItem* const measures = shared != nullptr ? Field_Item(*shared, DCM_PixelMeasuresSequence) : nullptr;
    return measures != nullptr && Field_Number(*measures, DCM_SpacingBetweenSlices).has_value();
}

double Segmentation_Reader::Own_Distance(const std::vector<double>& depths, const std::array<double, 3>& spacing) {
    if (depths.size() < 2) {
        return spacing[2];
    }
    std::vector<double> gaps(depths.size());
    std::adjacent_difference(depths.begin(), depths.end(), gaps.begin());
    gaps.erase(gaps.begin());
    const double least = std::ranges::min(gaps);
    for (const double distance : {Is_Distance_Told() ? spacing[2] : least, least}) {
        constexpr double off_most = 0.05;  // of the distance
        const bool is_even = std::ranges::all_of(gaps, [&](double gap) {
            const double steps = std::round(gap / distance);
            return steps >= 1.0 && std::abs(gap - steps * distance) <= off_most * distance;
        });
        if (is_even) {
            return distance;
        }
    }
    throw Dicom_Refusal{"has frames that lie neither on the voxels of the image nor at even distances"};
}

void Segmentation_Reader::On_Own_Grid() {
    Placed_Picture first = Picture_Of(frames.front().number);
    std::vector<double> depths;
    depths.reserve(frames.size());
    for (const Frame& frame : frames) {
        depths.push_back(Slice_Depth(Picture_Of(frame.number).place));
        first = depths.back() < Slice_Depth(first.place) ? Picture_Of(frame.number) : first;
    }
    std::ranges::sort(depths);
    constexpr double same = 0.02;  // mm
    const auto is_same = [](double a, double b) { return b - a <= same; };
    depths.erase(std::unique(depths.begin(), depths.end(), is_same), depths.end());
    const std::array<double, 3>& spacing = plan.facts[static_cast<std::size_t>(frames.front().number)].spacing;
    const double distance = Own_Distance(depths, spacing);
    const double slices = std::round((depths.back() - depths.front()) / distance) + 1.0;
    constexpr double slices_most = 65535;
    if (!(slices <= slices_most)) {
        throw Dicom_Refusal{"has frames that lie too far from one another"};
    }
    std::array<double, 3> normal = Slice_Normal(first.place);
    for (double& part : normal) {
        part *= distance;
    }
    Volume own;
    own.nx = format.width;
    own.ny = format.height;
    own.nz = static_cast<std::int32_t>(slices);
    own.nt = 1;
    own.spacing = {first.pixel[0], first.pixel[1], distance};
    own.affine = Affine_Of(first.place, own.spacing, normal);
    own.affine_source = Affine_Source::Qform;
    for (Frame& frame : frames) {
        const std::optional<Picture_Voxels> found = Picture_Voxels_Find(own, Picture_Of(frame.number));
        if (!found) {
            throw Dicom_Refusal{"has frames that do not lie on one another"};
        }
        frame.voxels = *found;
    }
    Labels_Begin(own);
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

}  // namespace

std::string Tag_Description_Text(int tag) {
    return TAG_DESCRIPTION + std::to_string(tag);
}

Segmentation_Result Dicom_Segmentation_Read(std::span<const std::uint8_t> file, const Volume& image,
                                            std::optional<double> threshold, const Load_Limits& limits,
                                            const Load_Progress& progress) noexcept {
    return Labels_Read_Guarded<Segmentation_Reader>(file, image, threshold, limits, progress);
}

}  // namespace volumes
