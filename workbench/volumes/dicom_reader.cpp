#include "workbench/volumes/dicom_reader.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <mutex>
#include <new>
#include <numeric>
#include <optional>
#include <utility>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "dcmtk/dcmdata/dcmetinf.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_frames.h"
#include "workbench/volumes/dicom_lookup.h"
#include "workbench/volumes/dicom_pixels.h"
#include "workbench/volumes/dicom_real_levels.h"
#include "workbench/volumes/dicom_stored_frames.h"
#include "workbench/volumes/dicom_window.h"
#include "workbench/volumes/level_range.h"
#include "workbench/volumes/level_scale.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/work_share.h"

namespace volumes {

namespace {

constexpr std::uint64_t LEVEL_SIZE = sizeof(std::int32_t);
constexpr std::int32_t BITS_ALWAYS_LEVELS = 30;  // values of so many bits can all be levels
constexpr std::uint16_t MODALITY_UNKNOWN = 'O' << 8 | 'T';

/** A frame's values: every thread that decodes has room for one. */
struct Value_Room {
    Frame_Room frame;
    std::vector<std::int64_t> values;
    std::vector<std::uint8_t> is_padding;  // of the values; empty: none is
    std::vector<std::int32_t> levels;
};

/** The progress callback gave up. */
struct Given_Up {};

/** One file while it is read. */
class File_Reader {
  public:
    File_Reader(std::span<const std::uint8_t> file_bytes, const Load_Limits& file_limits,
                const Load_Progress& file_progress, std::vector<std::uint8_t>& spare_room)
        : bytes(file_bytes), limits(file_limits), progress(file_progress), spare(spare_room) {}

    Dicom_Result Read();

  private:
    void Object_Check();
    void Format_Read();
    void Color_Kind_Read(const std::string& photometric, std::int32_t samples);
    void Tables_Read();
    void Padding_Read();
    void Frames_Open();
    void Memory_Check() const;
    Frame_Size Frame_Size_Of() const;
    void Names_Read();
    /** Makes values of the bytes of the room's frame. */
    void Values_Make(Value_Room& room) const;
    /** Whether the stored values of the pixels are all that counts, and fit into levels. */
    bool Is_Plain() const {
        return !format.Is_Color() && !padding && !greys && format.bits_stored <= BITS_ALWAYS_LEVELS;
    }
    /** Gets the bytes of frames, on several threads where that is possible, and gives each frame to `take` with its
     * number in the list. */
    void Frames_Decode(std::span<const std::int32_t> frames, const std::function<void(std::size_t, Value_Room&)>& take);
    void Scales_Read();
    void Stack_Decode(const Frame_Stack& stack, Volume& volume);
    void Levels_Decode(const Frame_Stack& stack, Volume& volume);
    /** From where to where the values of pixels can be, if 16 bits may be enough for them. */
    std::optional<std::pair<std::int32_t, std::int32_t>> Value_Range() const;
    /** Makes levels of the room's frame. @param is_level the values are levels as they are; if not, `map` makes them */
    void Frame_Levels_Make(bool is_level, const Level_Map& map, Value_Room& room, std::span<std::int32_t> levels) const;
    void Real_Levels_Decode(const Frame_Stack& stack, Volume& volume);
    void Warnings_Tell();
    void Images_Make();
    void Warn(const std::string& text) { result.warnings.push_back(text); }

    std::span<const std::uint8_t> bytes;
    const Load_Limits& limits;
    const Load_Progress& progress;
    std::vector<std::uint8_t>& spare;  // room for a frame's bytes
    Data_Set_Source source;            // outlives the data set
    DcmFileFormat file;
    E_TransferSyntax syntax = EXS_Unknown;
    std::optional<Stored_Frames> stored;
    Pixel_Format format;
    Palette palette;
    std::optional<std::pair<std::int64_t, std::int64_t>> padding;  // stored values that are no part of the image
    std::optional<Lookup> greys;                                   // grey values of the stored ones
    std::int32_t frame_nb = 1;
    Frame_Plan plan;
    std::vector<Scaled_Part> scales;  // by the file's frame
    std::size_t decoded_nb = 0;       // frames, each as often as it is needed
    std::size_t needed_nb = 0;
    std::vector<std::uint8_t> has_warnings;  // by the file's frame: 1 where it was decoded with errors
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
    try {
        stored.emplace(data_set, syntax);
    } catch (Dicom_Refusal& refusal) {
        if (refusal.text == "holds no image") {
            refusal.text += " (" + kind_text + ")";
        }
        throw;
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
        {"YBR_FULL", Pixel_Format::Kind::Ybr_Full, 3},     {"YBR_FULL_422", Pixel_Format::Kind::Ybr_Full_422, 3},
        {"YBR_RCT", Pixel_Format::Kind::Rgb, 3},           {"YBR_ICT", Pixel_Format::Kind::Rgb, 3}};
    // The last two are ways of JPEG 2000 to store red, green, blue, which it undoes itself.
    const std::size_t known_nb =
        Frame_Codec_Of(syntax) == Frame_Codec::Jpeg_2000 ? std::size(kinds) : std::size(kinds) - 2;
    for (const Named& one : std::span(kinds).first(known_nb)) {
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
    format.bits_allocated = Field_Integer(data_set, DCM_BitsAllocated).value_or(stored->Real_Bits());
    if (format.bits_allocated == 1 && stored->Real_Bits() == 0) {
        format.is_bits = true;
        format.bits_allocated = 8;
    } else if (stored->Real_Bits() != 0 && format.bits_allocated != stored->Real_Bits()) {
        throw Dicom_Refusal{"has floating-point pixels of " + std::to_string(format.bits_allocated) +
                            " bits, which is no form of them"};
    } else if (format.bits_allocated != 8 && format.bits_allocated != 16 && format.bits_allocated != 32 &&
               stored->Real_Bits() == 0) {
        throw Dicom_Refusal{"has " + std::to_string(format.bits_allocated) +
                            " bits allocated per sample; 1, 8, 16 and 32 are read"};
    }
    if (stored->Real_Bits() != 0) {
        format.bits_stored = format.bits_allocated;
    } else {
        format.bits_stored =
            format.is_bits ? 1 : Field_Integer(data_set, DCM_BitsStored).value_or(format.bits_allocated);
    }
    const bool is_told = !format.is_bits && stored->Real_Bits() == 0;
    format.high_bit =
        is_told ? Field_Integer(data_set, DCM_HighBit).value_or(format.bits_stored - 1) : format.bits_stored - 1;
    if (format.bits_stored < 1 || format.bits_stored > format.bits_allocated ||
        format.high_bit < format.bits_stored - 1 || format.high_bit >= format.bits_allocated) {
        throw Dicom_Refusal{"has bits that do not fit one another (" + std::to_string(format.bits_stored) +
                            " stored of " + std::to_string(format.bits_allocated) + ", highest " +
                            std::to_string(format.high_bit) + ")"};
    }
    Color_Kind_Read(Field_Text(data_set, DCM_PhotometricInterpretation),
                    Field_Integer(data_set, DCM_SamplesPerPixel).value_or(1));
    const bool is_indexed = format.kind == Pixel_Format::Kind::Palette;
    format.is_signed = (!format.Is_Color() || is_indexed) && !format.is_bits &&
                       Field_Integer(data_set, DCM_PixelRepresentation).value_or(0) == 1;
    format.is_planar = format.Sample_Nb() > 1 && Field_Integer(data_set, DCM_PlanarConfiguration).value_or(0) == 1;
    if (format.kind == Pixel_Format::Kind::Ybr_Full_422 && syntax == EXS_RLELossless) {
        format.kind = Pixel_Format::Kind::Ybr_Full;  // run-length segments hold every sample
    }
    const bool is_decoded = Frame_Codec_Of(syntax) != Frame_Codec::None;
    if (format.kind == Pixel_Format::Kind::Ybr_Full_422 && !is_decoded &&
        (format.bits_allocated != 8 || format.width % 2 != 0)) {
        throw Dicom_Refusal{"shares colours between pixels (YBR_FULL_422) in an unusable way"};
    }
    if ((format.is_bits || stored->Real_Bits() != 0) && format.Is_Color()) {
        throw Dicom_Refusal{"has pixels of an unknown kind (colours of one bit or of floating-point numbers)"};
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

// Contract: users count on histograms and means without the padding, the value by which scanners fill what lies outside
// their field; DICOM wants it left out of everything that is made of the pixels.
void File_Reader::Padding_Read() {
    DcmDataset& data_set = *file.getDataset();
    const std::optional<std::int32_t> value = Field_Integer(data_set, DCM_PixelPaddingValue);
    if (!value || format.Is_Color()) {
        return;
    }
    // Some programs write a negative number without its sign, and the other way round.
    const auto as_stored = [&](std::int32_t told) {
        constexpr std::int64_t numbers = 65536;
        const bool is_beyond = format.is_signed ? told >= numbers / 2 && told < numbers : told < 0;
        return is_beyond ? told + (format.is_signed ? -numbers : numbers) : std::int64_t{told};
    };
    const std::int32_t limit = Field_Integer(data_set, DCM_PixelPaddingRangeLimit).value_or(*value);
    // A range of which one end only is such a number would take in nearly everything: then it is the value alone.
    const bool is_range = (as_stored(*value) == *value) == (as_stored(limit) == limit);
    padding = std::minmax({as_stored(*value), as_stored(is_range ? limit : *value)});
}

void File_Reader::Memory_Check() const {
    const std::uint64_t pixels = static_cast<std::uint64_t>(format.width) * static_cast<std::uint64_t>(format.height);
    const auto frames = static_cast<std::uint64_t>(frame_nb);
    if (pixels * LEVEL_SIZE > limits.decoded_bytes / frames) {
        throw Dicom_Refusal{"needs more memory than the limit of " + Size_Text(limits.decoded_bytes) + " (" +
                            Count_Text(frames) + " frames of " + Count_Text(pixels) + " pixels)"};
    }
}

void File_Reader::Frames_Open() {
    const std::int32_t told = Field_Integer(*file.getDataset(), DCM_NumberOfFrames).value_or(1);
    if (told < 0) {
        throw Dicom_Refusal{"says that it has " + std::to_string(told) + " frames"};
    }
    frame_nb = std::max(told, 1);
    Memory_Check();
    frame_nb = stored->Open(told, format);
    if (told == 0) {
        Warn("says that it has 0 frames; there " + std::string(frame_nb == 1 ? "is " : "are ") +
             std::to_string(frame_nb));
        Memory_Check();
    }
    stored->Length_Check();
    has_warnings.assign(static_cast<std::size_t>(frame_nb), 0);
}

Frame_Size File_Reader::Frame_Size_Of() const {
    const double numbers = std::ldexp(1.0, format.bits_stored);
    const double lowest = format.is_signed ? -numbers / 2.0 : 0.0;
    return {format.width, format.height, frame_nb, lowest, lowest + numbers - 1.0};
}

void File_Reader::Names_Read() {
    DcmDataset& data_set = *file.getDataset();
    image.instance = Field_Text(data_set, DCM_SOPInstanceUID);
    image.origin.patient_name = Field_Person(data_set, DCM_PatientName);
    image.origin.patient_id = Field_Utf8(data_set, DCM_PatientID);
    image.origin.study = Field_Text(data_set, DCM_StudyInstanceUID);
    image.origin.study_date = Field_Date(data_set, DCM_StudyDate);
    image.origin.study_text = Field_Utf8(data_set, DCM_StudyDescription);
    image.origin.series = Field_Text(data_set, DCM_SeriesInstanceUID);
    image.origin.series_text = Field_Utf8(data_set, DCM_SeriesDescription);
    if (image.origin.series_text.empty()) {
        image.origin.series_text = Field_Utf8(data_set, DCM_ProtocolName);
    }
    image.origin.series_number = Field_Integer(data_set, DCM_SeriesNumber).value_or(0);
    image.origin.instance_number = Field_Integer(data_set, DCM_InstanceNumber).value_or(0);
    image.moment.acquisition = Field_Integer(data_set, DCM_AcquisitionNumber).value_or(0);
    image.moment.temporal_position = Field_Integer(data_set, DCM_TemporalPositionIdentifier).value_or(0);
    image.moment.trigger = Field_Number(data_set, DCM_TriggerTime).value_or(0.0);
    const std::string modality = Field_Text(data_set, DCM_Modality);
    image.origin.modality = MODALITY_UNKNOWN;
    if (modality.size() >= 2) {
        const auto high = static_cast<unsigned char>(modality[0]);
        const auto low = static_cast<unsigned char>(modality[1]);
        image.origin.modality = static_cast<std::uint16_t>(high << 8U | low);
    }
    constexpr unsigned long kind_most = 8;  // values of the image type that are looked at
    for (unsigned long at = 0; at < kind_most; ++at) {
        const std::string kind = Field_Text(data_set, DCM_ImageType, at);
        image.is_scout = image.is_scout || kind == "LOCALIZER" || kind == "SCOUT";
    }
}

void File_Reader::Values_Make(Value_Room& room) const {
    std::vector<std::int64_t>& values = room.values;
    values.resize(static_cast<std::size_t>(format.width) * static_cast<std::size_t>(format.height));
    Frame_Decode(format, room.frame.bytes, palette, values);
    if (padding) {
        room.is_padding.resize(values.size());
        std::ranges::transform(values, room.is_padding.begin(), [this](std::int64_t value) {
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

void File_Reader::Frames_Decode(std::span<const std::int32_t> frames,
                                const std::function<void(std::size_t, Value_Room&)>& take) {
    constexpr std::size_t rooms_most = std::size_t{1} << 28U;  // bytes of all threads' rooms together
    const auto room_size = static_cast<std::size_t>(format.Frame_Size()) + static_cast<std::size_t>(format.width) *
                                                                               static_cast<std::size_t>(format.height) *
                                                                               (sizeof(std::int64_t) + 1);
    const std::size_t threads =
        stored->Is_Shared() ? Work_Thread_Nb(std::max<std::size_t>(rooms_most / room_size, 1)) : 1;
    std::vector<Value_Room> rooms(threads);
    spare.clear();  // what a damaged frame leaves out is zero, not a part of another file
    rooms.front().frame.bytes = std::move(spare);
    std::vector<Value_Room*> idle;
    idle.reserve(rooms.size());
    for (Value_Room& room : rooms) {
        idle.push_back(&room);
    }
    std::mutex mutex;
    const auto decode = [&](std::size_t at) {
        std::unique_lock lock(mutex);
        Value_Room& room = *idle.back();
        idle.pop_back();
        lock.unlock();
        struct Back {  // the room, also when decoding fails
            std::mutex& mutex;
            std::vector<Value_Room*>& idle;
            Value_Room& room;
            ~Back() {
                const std::lock_guard lock(mutex);
                idle.push_back(&room);
            }
        } const back{mutex, idle, room};
        stored->Frame(frames[at], room.frame);
        if (room.frame.has_warnings) {
            has_warnings[static_cast<std::size_t>(frames[at])] = 1;
        }
        take(at, room);
    };
    const auto go_on = [&](std::size_t done) {
        return !progress || progress(static_cast<double>(decoded_nb + done) / static_cast<double>(needed_nb));
    };
    if (!Work_Share(frames.size(), threads, decode, go_on)) {
        throw Given_Up();
    }
    decoded_nb += frames.size();
    spare = std::move(rooms.front().frame.bytes);
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
    needed_nb = scales.size();
    if (format.Is_Color() || stored->Real_Bits() != 0 || (is_one && format.bits_stored <= BITS_ALWAYS_LEVELS)) {
        return;
    }
    needed_nb += scales.size();
    std::vector<std::int32_t> all(scales.size());
    std::iota(all.begin(), all.end(), 0);
    Frames_Decode(all, [this](std::size_t frame, Value_Room& room) {
        Values_Make(room);
        const auto [lowest, highest] = std::ranges::minmax(room.values);
        scales[frame].lowest = lowest;
        scales[frame].highest = highest;
        scales[frame].count = room.values.size();
    });
}

std::optional<std::pair<std::int32_t, std::int32_t>> File_Reader::Value_Range() const {
    constexpr std::int32_t bits_most = 16;
    if (format.Is_Color() || padding) {
        return std::nullopt;
    }
    if (greys) {
        const auto [lowest, highest] = std::ranges::minmax(greys->entries);
        return std::pair(lowest, highest);
    }
    if (format.bits_stored > bits_most) {
        return std::nullopt;
    }
    const std::int32_t value_nb = std::int32_t{1} << format.bits_stored;
    return format.is_signed ? std::pair(-value_nb / 2, value_nb / 2 - 1) : std::pair(0, value_nb - 1);
}

void File_Reader::Frame_Levels_Make(bool is_level, const Level_Map& map, Value_Room& room,
                                    std::span<std::int32_t> levels) const {
    if (is_level && Is_Plain()) {
        return Levels_Decode_Grey(format, room.frame.bytes, levels);
    }
    Values_Make(room);
    for (std::size_t pixel = 0; pixel < levels.size(); ++pixel) {
        const bool is_outside = !room.is_padding.empty() && room.is_padding[pixel] != 0;
        const std::int64_t value = room.values[pixel];
        levels[pixel] = is_outside ? LEVEL_OUTSIDE : (is_level ? static_cast<std::int32_t>(value) : map.Level(value));
    }
}

void File_Reader::Levels_Decode(const Frame_Stack& stack, Volume& volume) {
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
    const auto pixels = static_cast<std::size_t>(format.width) * static_cast<std::size_t>(format.height);
    const auto map_of = [&](std::int32_t frame) { return Level_Map(scales[static_cast<std::size_t>(frame)], scale); };
    const auto is_level = [&](std::int32_t frame) {
        return volume.color || (map_of(frame).Is_Same() && !scale.Has_Outside());
    };
    const auto range = std::ranges::all_of(stack.order, is_level) ? Value_Range() : std::nullopt;
    Voxel_Levels known;
    std::vector<std::int32_t> unknown;  // of a range that shows when all are there
    if (range) {
        known = Voxel_Levels::Of_Range(pixels * stack.order.size(), range->first, range->second, false);
    } else {
        unknown.resize(pixels * stack.order.size());
    }
    Frames_Decode(stack.order, [&](std::size_t at, Value_Room& room) {
        const std::int32_t frame = stack.order[at];
        room.levels.resize(range ? pixels : 0);
        const std::span levels = range ? std::span(room.levels) : std::span(unknown).subspan(at * pixels, pixels);
        Frame_Levels_Make(is_level(frame), map_of(frame), room, levels);
        if (range) {
            known.Put(at * pixels, levels);
        }
    });
    volume.levels = range ? std::move(known) : Voxel_Levels(std::move(unknown));
    if (const std::string lost = Level_Scale_Warning(scale, "frames"); !lost.empty()) {
        Warn(lost);
    }
    Level_Range_Find(volume);
}

void File_Reader::Real_Levels_Decode(const Frame_Stack& stack, Volume& volume) {
    Real_Levels levels(*file.getDataset(), stored->Real_Bits());
    for (const std::int32_t frame : stack.order) {
        const Scaled_Part& part = scales[static_cast<std::size_t>(frame)];
        levels.Scale_Add(part.slope, part.intercept);
    }
    levels.Begin(static_cast<std::uint64_t>(format.width) * static_cast<std::uint64_t>(format.height) *
                 stack.order.size());
    Frame_Room room;
    for (const std::int32_t frame : stack.order) {
        stored->Frame(frame, room);
        levels.Frame_Add(room.bytes);
        ++decoded_nb;
        if (progress && !progress(static_cast<double>(decoded_nb) / static_cast<double>(needed_nb))) {
            throw Given_Up();
        }
    }
    for (const std::string& text : levels.Finish(volume)) {
        Warn(text);
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
    volume.is_size_known = plan.is_size_known;
    volume.scalar_type =
        volume.color ? "rgb24" : (format.is_signed ? "int" : "uint") + std::to_string(format.bits_allocated);
    if (stored->Real_Bits() != 0) {
        return Real_Levels_Decode(stack, volume);
    }
    Levels_Decode(stack, volume);
}

// Contract: users judge by what they see: a damaged picture is shown, for it may be all that there is, but never
// without a word.
void File_Reader::Warnings_Tell() {
    const auto wrong_nb = std::ranges::count(has_warnings, 1);
    if (wrong_nb > 0) {
        const auto first = std::ranges::find(has_warnings, 1) - has_warnings.begin() + 1;
        Warn("was decoded with errors (frame " + std::to_string(first) +
             (wrong_nb > 1 ? " and " + Count_Text(static_cast<std::uint64_t>(wrong_nb) - 1) + " more" : "") +
             "): its picture may be damaged");
    }
}

void File_Reader::Images_Make() {
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
    Format_Read();
    Frames_Open();
    Tables_Read();
    Padding_Read();
    Names_Read();
    plan = Frames_Plan(*file.getDataset(), image.origin.modality, Frame_Size_Of());
    result.warnings.insert(result.warnings.end(), plan.warnings.begin(), plan.warnings.end());
    Images_Make();
    Warnings_Tell();
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

Dicom_Result Dicom_Read(std::span<const std::uint8_t> file, const Load_Limits& limits, const Load_Progress& progress,
                        Reading_Room* room) noexcept {
    Dicom_Result failed;
    try {
        if (file.empty()) {
            failed.error = "is empty";
        } else if (!Dicom_Is_Likely(file)) {
            failed.error = "is no DICOM file";
        } else {
            std::vector<std::uint8_t> own;
            return File_Reader(file, limits, progress, room != nullptr ? room->frame : own).Read();
        }
    } catch (const Dicom_Refusal& refusal) {
        failed.error = refusal.text;
    } catch (const Given_Up&) {
        failed.is_cancelled = true;
        failed.error = "was given up";
    } catch (const std::bad_alloc&) {
        failed.error = "needs more memory than there is";
    } catch (...) {
        failed.error = "cannot be read";
    }
    return failed;
}

}  // namespace volumes
