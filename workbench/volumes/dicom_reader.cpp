#include "workbench/volumes/dicom_reader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <optional>
#include <utility>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfcache.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "dcmtk/dcmdata/dcmetinf.h"
#include "dcmtk/dcmdata/dcpixel.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_fragments.h"
#include "workbench/volumes/dicom_frames.h"
#include "workbench/volumes/dicom_lookup.h"
#include "workbench/volumes/dicom_pixels.h"
#include "workbench/volumes/dicom_run_length.h"
#include "workbench/volumes/dicom_window.h"
#include "workbench/volumes/level_range.h"
#include "workbench/volumes/level_scale.h"
#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

constexpr std::uint64_t LEVEL_SIZE = sizeof(std::int32_t);
constexpr std::uint16_t MODALITY_UNKNOWN = 'O' << 8 | 'T';

/** One file while it is read. */
class File_Reader {
  public:
    File_Reader(std::span<const std::uint8_t> file_bytes, const Load_Limits& file_limits)
        : bytes(file_bytes), limits(file_limits) {}

    Dicom_Result Read();

  private:
    void Object_Check();
    void Syntax_Check();
    void Format_Read();
    void Color_Kind_Read(const std::string& photometric, std::int32_t samples);
    void Tables_Read();
    void Padding_Read();
    void Frame_Nb_Read();
    void Size_Check();
    Frame_Size Frame_Size_Of() const;
    void Names_Read();
    void Frame_Bytes(std::int32_t frame);
    void Frame_Unpack(std::int32_t frame);
    /** Decodes a frame into `values`. */
    void Frame_Values(std::int32_t frame);
    void Scales_Read();
    void Stack_Decode(const Frame_Stack& stack, Volume& volume);
    void Images_Make();
    void Warn(const std::string& text) { result.warnings.push_back(text); }

    std::span<const std::uint8_t> bytes;
    const Load_Limits& limits;
    Data_Set_Source source;  // outlives the data set
    DcmFileFormat file;
    DcmFileCache cache;
    E_TransferSyntax syntax = EXS_Unknown;
    DcmPixelData* pixel_data = nullptr;  // owned by the data set
    Pixel_Format format;
    Palette palette;
    std::optional<std::pair<std::int64_t, std::int64_t>> padding;  // stored values that are no part of the image
    std::vector<std::uint8_t> is_padding;                          // of the frame in `values`; empty: none is
    std::optional<Lookup> greys;                                   // grey values of the stored ones
    std::optional<Run_Length_Frames> fragments;                    // of compressed pixels
    std::int32_t frame_nb = 1;
    Frame_Plan plan;
    std::vector<Scaled_Part> scales;  // by the file's frame
    std::vector<std::uint8_t> frame_bytes;
    std::vector<std::int64_t> values;  // of a frame
    Dicom_Result result;
    Dicom_Image image;
};

void File_Reader::Object_Check() {
    DcmDataset& data_set = *file.getDataset();
    std::string kind = Field_Text(data_set, DCM_SOPClassUID);
    if (kind.empty()) {
        kind = Field_Text(*file.getMetaInfo(), DCM_MediaStorageSOPClassUID);
    }
    if (kind == UID_MediaStorageDirectoryStorage) {
        throw Dicom_Refusal{"is a directory of other files (DICOMDIR) and holds no image"};
    }
    const char* const name = dcmFindNameOfUID(kind.c_str(), kind.c_str());
    const std::string kind_text = kind.empty() ? "no kind of object is named" : Printable_Text(name, FIELD_SHOWN_MOST);
    if (data_set.tagExists(DCM_FloatPixelData) || data_set.tagExists(DCM_DoubleFloatPixelData)) {
        throw Dicom_Refusal{"has floating-point pixels, which are not read"};
    }
    DcmElement* element = nullptr;
    if (data_set.findAndGetElement(DCM_PixelData, element).bad() || element == nullptr) {
        throw Dicom_Refusal{"holds no image (" + kind_text + ")"};
    }
    pixel_data = dynamic_cast<DcmPixelData*>(element);
    if (pixel_data == nullptr) {
        throw Dicom_Refusal{"has pixel data of an unusable form"};
    }
}

void File_Reader::Syntax_Check() {
    const DcmXfer transfer(syntax);
    if (transfer.isEncapsulated() && syntax != EXS_RLELossless) {
        throw Dicom_Refusal{std::string("is compressed in a way that is not decoded (") + transfer.getXferName() + ")"};
    }
}

void File_Reader::Color_Kind_Read(const std::string& photometric, std::int32_t samples) {
    struct Named {
        const char* name;
        Pixel_Format::Kind kind;
        std::int32_t samples;
    };
    constexpr Named kinds[] = {
        {"MONOCHROME2", Pixel_Format::Kind::Grey, 1},      {"MONOCHROME1", Pixel_Format::Kind::Grey_Inverted, 1},
        {"PALETTE COLOR", Pixel_Format::Kind::Palette, 1}, {"RGB", Pixel_Format::Kind::Rgb, 3},
        {"YBR_FULL", Pixel_Format::Kind::Ybr_Full, 3},     {"YBR_FULL_422", Pixel_Format::Kind::Ybr_Full_422, 3}};
    for (const Named& one : kinds) {
        if (photometric == one.name) {
            if (samples != one.samples) {
                throw Dicom_Refusal{"has " + std::to_string(samples) + " samples per pixel, which does not fit " +
                                    photometric};
            }
            format.kind = one.kind;
            return;
        }
    }
    if (photometric.empty() && (samples == 1 || samples == 3)) {
        format.kind = samples == 1 ? Pixel_Format::Kind::Grey : Pixel_Format::Kind::Rgb;
        Warn("does not say what its pixels mean; taken as grey or RGB");
        return;
    }
    throw Dicom_Refusal{"has pixels of an unknown kind (" +
                        (photometric.empty() ? "no name" : Printable_Text(photometric, FIELD_SHOWN_MOST)) + ", " +
                        std::to_string(samples) + " samples)"};
}

void File_Reader::Format_Read() {
    DcmDataset& data_set = *file.getDataset();
    constexpr std::int32_t side_most = 65535;
    format.width = Field_Integer(data_set, DCM_Columns).value_or(0);
    format.height = Field_Integer(data_set, DCM_Rows).value_or(0);
    if (format.width < 1 || format.height < 1 || format.width > side_most || format.height > side_most) {
        throw Dicom_Refusal{"has no usable size (" + std::to_string(format.width) + " x " +
                            std::to_string(format.height) + " pixels)"};
    }
    format.bits_allocated = Field_Integer(data_set, DCM_BitsAllocated).value_or(0);
    if (format.bits_allocated != 8 && format.bits_allocated != 16 && format.bits_allocated != 32) {
        throw Dicom_Refusal{"has " + std::to_string(format.bits_allocated) +
                            " bits allocated per sample; 8, 16 and 32 are read"};
    }
    format.bits_stored = Field_Integer(data_set, DCM_BitsStored).value_or(format.bits_allocated);
    format.high_bit = Field_Integer(data_set, DCM_HighBit).value_or(format.bits_stored - 1);
    if (format.bits_stored < 1 || format.bits_stored > format.bits_allocated ||
        format.high_bit < format.bits_stored - 1 || format.high_bit >= format.bits_allocated) {
        throw Dicom_Refusal{"has bits that do not fit one another (" + std::to_string(format.bits_stored) +
                            " stored of " + std::to_string(format.bits_allocated) + ", highest " +
                            std::to_string(format.high_bit) + ")"};
    }
    Color_Kind_Read(Field_Text(data_set, DCM_PhotometricInterpretation),
                    Field_Integer(data_set, DCM_SamplesPerPixel).value_or(1));
    const bool is_indexed = format.kind == Pixel_Format::Kind::Palette;
    format.is_signed =
        (!format.Is_Color() || is_indexed) && Field_Integer(data_set, DCM_PixelRepresentation).value_or(0) == 1;
    format.is_planar = format.Sample_Nb() > 1 && Field_Integer(data_set, DCM_PlanarConfiguration).value_or(0) == 1;
    if (format.kind == Pixel_Format::Kind::Ybr_Full_422 && syntax == EXS_RLELossless) {
        format.kind = Pixel_Format::Kind::Ybr_Full;  // run-length segments hold every sample
    }
    if (format.kind == Pixel_Format::Kind::Ybr_Full_422 && (format.bits_allocated != 8 || format.width % 2 != 0)) {
        throw Dicom_Refusal{"shares colours between pixels (YBR_FULL_422) in an unusable way"};
    }
}

void File_Reader::Tables_Read() {
    DcmDataset& data_set = *file.getDataset();
    Lookup_Failure failure = Lookup_Failure::None;
    if (format.kind == Pixel_Format::Kind::Palette) {
        auto read = Palette_Read(data_set, format.is_signed, failure);
        if (!read) {
            throw Dicom_Refusal{failure == Lookup_Failure::Too_Short ? "has a colour palette shorter than it says"
                                                                     : "has no usable colour palette"};
        }
        palette = std::move(*read);
    }
    DcmItem* const table = format.Is_Color() ? nullptr : Field_Item(data_set, DCM_ModalityLUTSequence);
    if (table != nullptr) {
        greys = Lookup_Read(*table, DCM_LUTDescriptor, DCM_LUTData, format.is_signed, failure);
        if (!greys) {
            Warn("has a table of grey values that cannot be used: stored values are shown as they are");
        }
    }
}

// Contract: scanners fill what lies outside their field with a value of its own; DICOM wants it left out of everything
// that is made of the pixels.
void File_Reader::Padding_Read() {
    DcmDataset& data_set = *file.getDataset();
    const std::optional<std::int32_t> value = Field_Integer(data_set, DCM_PixelPaddingValue);
    if (!value || format.Is_Color()) {
        return;
    }
    // Some programs write a negative number without its sign, and the other way round.
    const auto stored = [&](std::int32_t told) {
        constexpr std::int64_t numbers = 65536;
        const bool is_beyond = format.is_signed ? told >= numbers / 2 && told < numbers : told < 0;
        return is_beyond ? told + (format.is_signed ? -numbers : numbers) : std::int64_t{told};
    };
    const std::int32_t limit = Field_Integer(data_set, DCM_PixelPaddingRangeLimit).value_or(*value);
    // A range of which one end only is such a number would take in nearly everything: then it is the value alone.
    const bool is_range = (stored(*value) == *value) == (stored(limit) == limit);
    padding = std::minmax({stored(*value), stored(is_range ? limit : *value)});
}

void File_Reader::Frame_Nb_Read() {
    constexpr std::int32_t one = 1;
    frame_nb = Field_Integer(*file.getDataset(), DCM_NumberOfFrames).value_or(one);
    if (frame_nb < 0) {
        throw Dicom_Refusal{"says that it has " + std::to_string(frame_nb) + " frames"};
    }
    if (syntax == EXS_RLELossless) {
        DcmPixelSequence* sequence = nullptr;
        if (pixel_data->getEncapsulatedRepresentation(syntax, nullptr, sequence).bad() || sequence == nullptr) {
            throw Dicom_Refusal{"has fewer compressed frames than it says"};
        }
        fragments.emplace(*sequence, static_cast<std::size_t>(format.Sample_Nb()) *
                                         static_cast<std::size_t>(format.bits_allocated / 8));
    }
    if (frame_nb == 0) {
        const auto whole = static_cast<std::uint64_t>(pixel_data->getLength()) / format.Frame_Size();
        constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
        frame_nb = std::max(one, fragments ? fragments->Frame_Nb() : static_cast<std::int32_t>(std::min(whole, most)));
        Warn("says that it has 0 frames; there " + std::string(frame_nb == 1 ? "is " : "are ") +
             std::to_string(frame_nb));
    }
}

void File_Reader::Size_Check() {
    const std::uint64_t pixels = static_cast<std::uint64_t>(format.width) * static_cast<std::uint64_t>(format.height);
    const auto frames = static_cast<std::uint64_t>(frame_nb);
    if (pixels * LEVEL_SIZE > limits.decoded_bytes / frames) {
        throw Dicom_Refusal{"needs more memory than the limit of " + Size_Text(limits.decoded_bytes) + " (" +
                            Count_Text(frames) + " frames of " + Count_Text(pixels) + " pixels)"};
    }
    const std::uint64_t frame_size = format.Frame_Size();
    if (!fragments) {
        const std::uint64_t there = pixel_data->getLength();
        if (there < frame_size * frames) {
            throw Dicom_Refusal{"has fewer pixels than it says (" + Count_Text(there) + " of " +
                                Count_Text(frame_size * frames) + " bytes)"};
        }
        return;
    }
    if (!fragments->Share_Out(frame_nb)) {
        throw Dicom_Refusal{fragments->Fragment_Nb() < frames
                                ? "has fewer compressed frames than it says"
                                : "has pieces of compressed data that cannot be shared out to its frames"};
    }
    constexpr std::uint64_t run_most = 64;  // bytes that one byte of run-length data can stand for
    if (fragments->Packed_Size() * run_most < frame_size * frames) {
        throw Dicom_Refusal{"has compressed data too short for its frames"};
    }
}

Frame_Size File_Reader::Frame_Size_Of() const {
    const double numbers = std::ldexp(1.0, format.bits_stored);
    const double lowest = format.is_signed ? -numbers / 2.0 : 0.0;
    return {format.width, format.height, frame_nb, lowest, lowest + numbers - 1.0};
}

void File_Reader::Names_Read() {
    DcmDataset& data_set = *file.getDataset();
    image.instance = Field_Text(data_set, DCM_SOPInstanceUID);
    image.study = Field_Text(data_set, DCM_StudyInstanceUID);
    image.series = Field_Text(data_set, DCM_SeriesInstanceUID);
    image.series_text = Field_Utf8(data_set, DCM_SeriesDescription);
    if (image.series_text.empty()) {
        image.series_text = Field_Utf8(data_set, DCM_ProtocolName);
    }
    image.series_number = Field_Integer(data_set, DCM_SeriesNumber).value_or(0);
    image.instance_number = Field_Integer(data_set, DCM_InstanceNumber).value_or(0);
    image.moment.acquisition = Field_Integer(data_set, DCM_AcquisitionNumber).value_or(0);
    image.moment.temporal_position = Field_Integer(data_set, DCM_TemporalPositionIdentifier).value_or(0);
    image.moment.trigger = Field_Number(data_set, DCM_TriggerTime).value_or(0.0);
    const std::string modality = Field_Text(data_set, DCM_Modality);
    image.modality = MODALITY_UNKNOWN;
    if (modality.size() >= 2) {
        const auto high = static_cast<unsigned char>(modality[0]);
        const auto low = static_cast<unsigned char>(modality[1]);
        image.modality = static_cast<std::uint16_t>(high << 8U | low);
    }
    constexpr unsigned long kind_most = 8;  // values of the image type that are looked at
    for (unsigned long at = 0; at < kind_most; ++at) {
        const std::string kind = Field_Text(data_set, DCM_ImageType, at);
        image.is_scout = image.is_scout || kind == "LOCALIZER" || kind == "SCOUT";
    }
}

void File_Reader::Frame_Unpack(std::int32_t frame) {
    const std::span<const std::uint8_t> packed = fragments->Frame(frame);
    const char* wrong = "no data";
    if (!packed.empty()) {
        wrong = Run_Length_Decode(format, packed, frame_bytes);
    }
    if (wrong != nullptr) {
        throw Dicom_Refusal{"has pixels that cannot be decoded (frame " + std::to_string(frame + 1) + ": " + wrong +
                            ")"};
    }
}

void File_Reader::Frame_Bytes(std::int32_t frame) {
    if (fragments) {
        return Frame_Unpack(frame);
    }
    const auto size = static_cast<Uint32>(frame_bytes.size());
    const std::uint64_t start = static_cast<std::uint64_t>(size) * static_cast<std::uint64_t>(frame);
    const OFCondition taken =
        pixel_data->getPartialValue(frame_bytes.data(), static_cast<Uint32>(start), size, &cache, EBO_LittleEndian);
    if (taken.bad()) {
        throw Dicom_Refusal{"has pixels that cannot be decoded (frame " + std::to_string(frame + 1) + ": " +
                            Toolkit_Text(taken) + ")"};
    }
    constexpr std::size_t wide = 4;
    if (format.bits_allocated == 8 * wide && DcmXfer(syntax).getByteOrder() == EBO_BigEndian &&
        pixel_data->ident() != EVR_OB) {
        // The toolkit turns the bytes of 16-bit words; the samples are of two words, of which the higher comes first.
        for (std::size_t at = 0; at + wide <= frame_bytes.size(); at += wide) {
            std::swap_ranges(frame_bytes.data() + at, frame_bytes.data() + at + 2, frame_bytes.data() + at + 2);
        }
    }
}

void File_Reader::Frame_Values(std::int32_t frame) {
    Frame_Bytes(frame);
    Frame_Decode(format, frame_bytes, palette, values);
    if (padding) {
        is_padding.resize(values.size());
        std::ranges::transform(values, is_padding.begin(), [this](std::int64_t value) {
            return static_cast<std::uint8_t>(value >= padding->first && value <= padding->second ? 1 : 0);
        });
    }
    if (greys) {
        const auto last = static_cast<std::int64_t>(greys->entries.size()) - 1;
        for (std::int64_t& value : values) {
            value = greys->entries[static_cast<std::size_t>(std::clamp<std::int64_t>(value - greys->first, 0, last))];
        }
    }
}

void File_Reader::Scales_Read() {
    scales.assign(plan.facts.size(), {});
    bool is_one = true;
    for (std::size_t frame = 0; frame < scales.size(); ++frame) {
        if (!greys) {
            scales[frame].slope = plan.facts[frame].slope;
            scales[frame].intercept = plan.facts[frame].intercept;
        }
        is_one = is_one && scales[frame].slope == scales[0].slope && scales[frame].intercept == scales[0].intercept;
    }
    constexpr std::int32_t bits_always_levels = 30;
    if (format.Is_Color() || (is_one && format.bits_stored <= bits_always_levels)) {
        return;
    }
    for (std::size_t frame = 0; frame < scales.size(); ++frame) {
        Frame_Values(static_cast<std::int32_t>(frame));
        const auto [lowest, highest] = std::ranges::minmax(values);
        scales[frame].lowest = lowest;
        scales[frame].highest = highest;
        scales[frame].count = values.size();
    }
}

void File_Reader::Stack_Decode(const Frame_Stack& stack, Volume& volume) {
    volume.nx = format.width;
    volume.ny = format.height;
    volume.nz = stack.nz;
    volume.nt = stack.nt;
    volume.spacing = stack.spacing;
    volume.time_step = stack.time_step;
    volume.color = format.Is_Color();
    volume.is_inverted = format.kind == Pixel_Format::Kind::Grey_Inverted;
    volume.encoding = source.syntax_name;
    volume.place_source = plan.place_source;
    volume.scalar_type =
        volume.color ? "rgb24" : (format.is_signed ? "int" : "uint") + std::to_string(format.bits_allocated);
    Level_Scale scale;
    if (!volume.color) {
        std::vector<Scaled_Part> parts;
        for (const std::int32_t frame : stack.order) {
            parts.push_back(scales[static_cast<std::size_t>(frame)]);
        }
        scale = Level_Scale_Choose(parts);
        volume.slope = scale.slope;
        volume.intercept = scale.intercept;
        volume.max_error = scale.max_error;
        Outside_Note(scale, volume);
    }
    volume.levels.resize(values.size() * stack.order.size());
    auto level = volume.levels.begin();
    for (const std::int32_t frame : stack.order) {
        Frame_Values(frame);
        const Level_Map map(scales[static_cast<std::size_t>(frame)], scale);
        const bool is_level = volume.color || (map.Is_Same() && !scale.Has_Outside());
        level = std::ranges::transform(values, level, [&](std::int64_t value) {
                    return is_level ? static_cast<std::int32_t>(value) : map.Level(value);
                }).out;
        for (std::size_t at = 0; at < is_padding.size(); ++at) {
            if (is_padding[at] != 0) {
                *(level - static_cast<std::ptrdiff_t>(is_padding.size() - at)) = LEVEL_OUTSIDE;
            }
        }
    }
    if (const std::string lost = Level_Scale_Warning(scale, "frames"); !lost.empty()) {
        Warn(lost);
    }
    Level_Range_Find(volume);
}

void File_Reader::Images_Make() {
    values.resize(static_cast<std::size_t>(format.width) * static_cast<std::size_t>(format.height));
    frame_bytes.resize(static_cast<std::size_t>(format.Frame_Size()));
    Scales_Read();
    image.frame_nb = frame_nb;
    image.volume.windows = Windows_Read(*file.getDataset());
    image.part_nb = static_cast<std::int32_t>(plan.stacks.size());
    for (const Frame_Stack& stack : plan.stacks) {
        Dicom_Image one = image;
        one.part = static_cast<std::int32_t>(&stack - plan.stacks.data());
        one.place = stack.place;
        const Slice_Moment& moment = plan.facts[static_cast<std::size_t>(stack.order.front())].moment;
        if (moment != Slice_Moment()) {
            one.moment = moment;
        }
        Stack_Decode(stack, one.volume);
        one.volume.affine = Affine_Of(stack.place, stack.spacing, stack.step);
        one.volume.affine_source = stack.place.is_known ? Affine_Source::Qform : Affine_Source::Spacing;
        if (result.image) {
            result.others.push_back(std::move(one));
        } else {
            result.image = std::move(one);
        }
    }
}

Dicom_Result File_Reader::Read() {
    Data_Set_Read(bytes, limits.decoded_bytes, file, source);
    result.warnings = source.warnings;
    syntax = file.getDataset()->getOriginalXfer();
    Object_Check();
    Syntax_Check();
    Format_Read();
    Tables_Read();
    Padding_Read();
    Frame_Nb_Read();
    Size_Check();
    Names_Read();
    plan = Frames_Plan(*file.getDataset(), image.modality, Frame_Size_Of());
    result.warnings.insert(result.warnings.end(), plan.warnings.begin(), plan.warnings.end());
    Images_Make();
    return std::move(result);
}

bool Is_Group(std::uint8_t first, std::uint8_t second) {
    constexpr std::uint8_t identifying = 8;
    return (second == 0 && (first == identifying || first == 2)) ||
           (first == 0 && (second == identifying || second == 2));
}

}  // namespace

bool Dicom_Is_Likely(std::span<const std::uint8_t> head) {
    if (Dicom_Has_Mark(head) || Dicom_Has_Meta(head)) {
        return true;
    }
    // Without a preamble: a data set that begins with one of the first groups, in either byte order.
    constexpr std::size_t element_least = 8;
    return head.size() >= element_least && Is_Group(head[0], head[1]);
}

Dicom_Result Dicom_Read(std::span<const std::uint8_t> file, const Load_Limits& limits) noexcept {
    Dicom_Result failed;
    try {
        if (file.empty()) {
            failed.error = "is empty";
        } else if (!Dicom_Is_Likely(file)) {
            failed.error = "is no DICOM file";
        } else {
            return File_Reader(file, limits).Read();
        }
    } catch (const Dicom_Refusal& refusal) {
        failed.error = refusal.text;
    } catch (const std::bad_alloc&) {
        failed.error = "needs more memory than there is";
    } catch (...) {
        failed.error = "cannot be read";
    }
    return failed;
}

}  // namespace volumes
