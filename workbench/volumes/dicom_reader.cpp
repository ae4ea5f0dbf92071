#include "workbench/volumes/dicom_reader.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <mutex>
#include <new>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfcache.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "dcmtk/dcmdata/dcmetinf.h"
#include "dcmtk/dcmdata/dcpixel.h"
#include "dcmtk/dcmdata/dcpixseq.h"
#include "dcmtk/dcmdata/dcpxitem.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "dcmtk/dcmdata/dcvr.h"
#include "dcmtk/oflog/oflog.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_frames.h"
#include "workbench/volumes/dicom_pixels.h"
#include "workbench/volumes/dicom_run_length.h"
#include "workbench/volumes/dicom_stream.h"
#include "workbench/volumes/message_text.h"

namespace {

constexpr std::size_t preamble_size = 128;
constexpr Uint32 value_kept = 4096;  // bytes: longer values are read when they are asked for
constexpr std::uint64_t level_size = sizeof(std::int32_t);
constexpr std::uint16_t modality_unknown = 'O' << 8 | 'T';

/** What is wrong with a file, in the words of Dicom_Result::error. */
struct Refusal {
    std::string text;
};

void Toolkit_Prepare() {
    static std::once_flag once;
    std::call_once(once, [] {
        OFLog::configure(OFLogger::OFF_LOG_LEVEL);  // what is wrong is told by the result
        dcmEnableUnknownVRConversion.set(OFTrue);   // a program that did not know an element's form has written it
    });
}

std::string Toolkit_Text(const OFCondition& condition) {
    std::string text = condition.text();
    std::erase_if(text, [](char letter) { return static_cast<unsigned char>(letter) < ' '; });
    return text;
}

/** What a deflated data set holds. */
std::vector<std::uint8_t> Inflate(std::span<const std::uint8_t> packed, std::uint64_t most) {
    constexpr int raw = -MAX_WBITS;
    constexpr std::size_t step = std::size_t{1} << 18U;
    z_stream stream = {};
    if (inflateInit2(&stream, raw) != Z_OK) {
        throw std::bad_alloc();
    }
    struct End {
        z_stream& ended;
        ~End() { inflateEnd(&ended); }
    } const end{stream};
    std::vector<std::uint8_t> content;
    std::size_t taken = 0;
    for (int state = Z_OK; state != Z_STREAM_END;) {
        if (stream.avail_in == 0) {
            const std::size_t count = std::min(packed.size() - taken, step);
            stream.next_in = const_cast<Bytef*>(packed.data() + taken);  // zlib only reads it
            stream.avail_in = static_cast<uInt>(count);
            taken += count;
        }
        const std::size_t had = content.size();
        if (had + step > most) {
            throw Refusal{"inflates to more than " + Size_Text(most)};
        }
        content.resize(had + step);
        stream.next_out = content.data() + had;
        stream.avail_out = static_cast<uInt>(step);
        state = inflate(&stream, Z_NO_FLUSH);
        content.resize(content.size() - stream.avail_out);
        if (state != Z_OK && state != Z_STREAM_END && state != Z_BUF_ERROR) {
            throw Refusal{"has damaged deflated data"};
        }
        if (state != Z_STREAM_END && stream.avail_in == 0 && taken == packed.size() && stream.avail_out != 0) {
            throw Refusal{"is cut short inside its deflated data"};
        }
    }
    return content;
}

/** One file while it is read. */
class File_Reader {
  public:
    File_Reader(std::span<const std::uint8_t> file_bytes, const Load_Limits& file_limits)
        : bytes(file_bytes), limits(file_limits) {}

    Dicom_Result Read();

  private:
    void Parse();
    void Object_Check();
    void Syntax_Check();
    void Format_Read();
    void Color_Kind_Read(const std::string& photometric, std::int32_t samples);
    void Palette_Read();
    void Size_Check();
    void Names_Read();
    void Frames_Decode();
    DcmPixelSequence& Fragments();
    void Frame_Bytes(std::int32_t frame, DcmFileCache& cache);
    void Frame_Unpack(std::int32_t frame);
    void Levels_Take(std::int32_t place, const Frame_Facts& facts, std::span<const std::int64_t> values);
    void Range_Find();

    std::span<const std::uint8_t> bytes;
    const Load_Limits& limits;
    std::vector<std::uint8_t> inflated;  // outlives the data set
    DcmFileFormat file;
    E_TransferSyntax syntax = EXS_Unknown;
    DcmPixelData* pixel_data = nullptr;  // owned by the data set
    Pixel_Format format;
    Palette palette;
    std::int32_t frame_nb = 1;
    Frame_Plan plan;
    std::vector<std::uint8_t> frame_bytes;
    std::vector<std::int64_t> widest;  // values of a frame
    unsigned shift = 0;                // 32-bit values lose this many low bits
    Dicom_Result result;
    Dicom_Image image;
};

void File_Reader::Parse() {
    Memory_Stream stream(bytes);
    DcmMetaInfo* const meta = file.getMetaInfo();
    meta->transferInit();
    const OFCondition meta_read = meta->read(stream, EXS_Unknown, EGL_noChange, value_kept);
    meta->transferEnd();
    if (meta_read.bad() && meta_read != EC_EndOfStream) {
        throw Refusal{"is broken or cut short (" + Toolkit_Text(meta_read) + ")"};
    }
    const std::string named = Field_Text(*meta, DCM_TransferSyntaxUID);
    DcmDataset* const data_set = file.getDataset();
    OFCondition read = EC_Normal;
    data_set->transferInit();
    if (named == UID_DeflatedExplicitVRLittleEndianTransferSyntax) {
        const auto start = std::min(static_cast<std::size_t>(stream.tell()), bytes.size());
        inflated = Inflate(bytes.subspan(start), limits.decoded_bytes);
        Memory_Stream content(inflated);
        read = data_set->read(content, EXS_LittleEndianExplicit, EGL_noChange, value_kept);
    } else {
        const E_TransferSyntax told = named.empty() ? EXS_Unknown : DcmXfer(named.c_str()).getXfer();
        if (told == EXS_Unknown && !named.empty()) {
            throw Refusal{"has an unknown transfer syntax (" + named + ")"};
        }
        read = data_set->read(stream, told, EGL_noChange, value_kept);
    }
    data_set->transferEnd();
    if (read.bad() && read != EC_EndOfStream) {
        throw Refusal{"is broken or cut short (" + Toolkit_Text(read) + ")"};
    }
    syntax = data_set->getOriginalXfer();
    if (data_set->card() == 0) {
        throw Refusal{"is no DICOM file, or holds nothing"};
    }
}

void File_Reader::Object_Check() {
    DcmDataset& data_set = *file.getDataset();
    std::string kind = Field_Text(data_set, DCM_SOPClassUID);
    if (kind.empty()) {
        kind = Field_Text(*file.getMetaInfo(), DCM_MediaStorageSOPClassUID);
    }
    if (kind == UID_MediaStorageDirectoryStorage) {
        throw Refusal{"is a directory of other files (DICOMDIR) and holds no image"};
    }
    const char* const name = dcmFindNameOfUID(kind.c_str(), kind.c_str());
    const std::string kind_text = kind.empty() ? "no kind of object is named" : name;
    if (data_set.tagExists(DCM_FloatPixelData) || data_set.tagExists(DCM_DoubleFloatPixelData)) {
        throw Refusal{"has floating-point pixels, which are not read"};
    }
    DcmElement* element = nullptr;
    if (data_set.findAndGetElement(DCM_PixelData, element).bad() || element == nullptr) {
        throw Refusal{"holds no image (" + kind_text + ")"};
    }
    pixel_data = dynamic_cast<DcmPixelData*>(element);
    if (pixel_data == nullptr) {
        throw Refusal{"has pixel data of an unusable form"};
    }
}

void File_Reader::Syntax_Check() {
    const DcmXfer transfer(syntax);
    if (transfer.isEncapsulated() && syntax != EXS_RLELossless) {
        throw Refusal{std::string("is compressed in a way that is not decoded (") + transfer.getXferName() + ")"};
    }
}

void File_Reader::Color_Kind_Read(const std::string& photometric, std::int32_t samples) {
    struct Named {
        const char* name;
        Pixel_Format::Kind kind;
        std::int32_t samples;
    };
    constexpr Named kinds[] = {
        {"MONOCHROME2", Pixel_Format::Kind::GREY, 1},      {"MONOCHROME1", Pixel_Format::Kind::GREY_INVERTED, 1},
        {"PALETTE COLOR", Pixel_Format::Kind::PALETTE, 1}, {"RGB", Pixel_Format::Kind::RGB, 3},
        {"YBR_FULL", Pixel_Format::Kind::YBR_FULL, 3},     {"YBR_FULL_422", Pixel_Format::Kind::YBR_FULL_422, 3}};
    for (const Named& one : kinds) {
        if (photometric == one.name) {
            if (samples != one.samples) {
                throw Refusal{"has " + std::to_string(samples) + " samples per pixel, which does not fit " +
                              photometric};
            }
            format.kind = one.kind;
            return;
        }
    }
    if (photometric.empty() && (samples == 1 || samples == 3)) {
        format.kind = samples == 1 ? Pixel_Format::Kind::GREY : Pixel_Format::Kind::RGB;
        result.warnings.emplace_back("does not say what its pixels mean; taken as grey or RGB");
        return;
    }
    throw Refusal{"has pixels of an unknown kind (" + (photometric.empty() ? "no name" : photometric) + ", " +
                  std::to_string(samples) + " samples)"};
}

void File_Reader::Format_Read() {
    DcmDataset& data_set = *file.getDataset();
    constexpr std::int32_t side_most = 65535;
    format.width = Field_Integer(data_set, DCM_Columns).value_or(0);
    format.height = Field_Integer(data_set, DCM_Rows).value_or(0);
    if (format.width < 1 || format.height < 1 || format.width > side_most || format.height > side_most) {
        throw Refusal{"has no usable size (" + std::to_string(format.width) + " x " + std::to_string(format.height) +
                      " pixels)"};
    }
    format.bits_allocated = Field_Integer(data_set, DCM_BitsAllocated).value_or(0);
    if (format.bits_allocated != 8 && format.bits_allocated != 16 && format.bits_allocated != 32) {
        throw Refusal{"has " + std::to_string(format.bits_allocated) +
                      " bits allocated per sample; 8, 16 and 32 are read"};
    }
    format.bits_stored = Field_Integer(data_set, DCM_BitsStored).value_or(format.bits_allocated);
    format.high_bit = Field_Integer(data_set, DCM_HighBit).value_or(format.bits_stored - 1);
    if (format.bits_stored < 1 || format.bits_stored > format.bits_allocated ||
        format.high_bit < format.bits_stored - 1 || format.high_bit >= format.bits_allocated) {
        throw Refusal{"has bits that do not fit one another (" + std::to_string(format.bits_stored) + " stored of " +
                      std::to_string(format.bits_allocated) + ", highest " + std::to_string(format.high_bit) + ")"};
    }
    Color_Kind_Read(Field_Text(data_set, DCM_PhotometricInterpretation),
                    Field_Integer(data_set, DCM_SamplesPerPixel).value_or(1));
    format.is_signed = !format.Is_Color() && Field_Integer(data_set, DCM_PixelRepresentation).value_or(0) == 1;
    format.is_planar = format.Sample_Nb() > 1 && Field_Integer(data_set, DCM_PlanarConfiguration).value_or(0) == 1;
    if (format.kind == Pixel_Format::Kind::YBR_FULL_422 && syntax == EXS_RLELossless) {
        format.kind = Pixel_Format::Kind::YBR_FULL;  // run-length segments hold every sample
    }
    if (format.kind == Pixel_Format::Kind::YBR_FULL_422 && (format.bits_allocated != 8 || format.width % 2 != 0)) {
        throw Refusal{"shares colours between pixels (YBR_FULL_422) in an unusable way"};
    }
    if (format.kind == Pixel_Format::Kind::PALETTE) {
        Palette_Read();
    }
    frame_nb = Field_Integer(data_set, DCM_NumberOfFrames).value_or(1);
    if (frame_nb < 1) {
        throw Refusal{"says that it has " + std::to_string(frame_nb) + " frames"};
    }
}

void File_Reader::Palette_Read() {
    struct Channel {
        DcmTagKey descriptor;
        DcmTagKey data;
    };
    const Channel channels[] = {{DCM_RedPaletteColorLookupTableDescriptor, DCM_RedPaletteColorLookupTableData},
                                {DCM_GreenPaletteColorLookupTableDescriptor, DCM_GreenPaletteColorLookupTableData},
                                {DCM_BluePaletteColorLookupTableDescriptor, DCM_BluePaletteColorLookupTableData}};
    constexpr std::int32_t entries_most = 65536;
    DcmDataset& data_set = *file.getDataset();
    for (unsigned at = 0; at < 3; ++at) {
        const auto descriptor = Field_Numbers<3>(data_set, channels[at].descriptor);
        DcmElement* element = nullptr;
        Uint16* words = nullptr;
        Uint8* octets = nullptr;
        if (!descriptor || data_set.findAndGetElement(channels[at].data, element).bad() || element == nullptr ||
            (element->getUint16Array(words).bad() && element->getUint8Array(octets).bad()) ||
            (words == nullptr && octets == nullptr)) {
            throw Refusal{"has no usable colour palette"};
        }
        auto count = static_cast<std::int32_t>((*descriptor)[0]);
        count = count == 0 ? entries_most : count;
        const auto length = static_cast<std::int32_t>(element->getLength());
        const std::int32_t bits = (*descriptor)[2] > 8 ? 16 : 8;
        const bool is_packed = words == nullptr || (bits == 8 && length < count * 2);
        if (count < 1 || count > entries_most || length < (is_packed ? count : count * 2)) {
            throw Refusal{"has a colour palette shorter than it says"};
        }
        const auto entries = static_cast<std::size_t>(count);
        if (at == 0) {
            palette.first = static_cast<std::int32_t>((*descriptor)[1]);
            palette.colors.assign(entries, 0);
        }
        for (std::size_t entry = 0; entry < std::min(entries, palette.colors.size()); ++entry) {
            unsigned value = 0;
            if (!is_packed) {
                value = bits == 16 ? words[entry] >> 8U : words[entry];
            } else if (octets != nullptr) {
                value = octets[entry];
            } else {
                value = entry % 2 == 0 ? words[entry / 2] : words[entry / 2] >> 8U;
            }
            palette.colors[entry] |= static_cast<std::int32_t>((value & 0xFFU) << (8U * at));
        }
    }
}

void File_Reader::Size_Check() {
    const std::uint64_t pixels = static_cast<std::uint64_t>(format.width) * static_cast<std::uint64_t>(format.height);
    const auto frames = static_cast<std::uint64_t>(frame_nb);
    if (pixels * level_size > limits.decoded_bytes / frames) {
        throw Refusal{"needs more memory than the limit of " + Size_Text(limits.decoded_bytes) + " (" +
                      Count_Text(frames) + " frames of " + Count_Text(pixels) + " pixels)"};
    }
    const std::uint64_t frame_size = format.Frame_Size();
    if (syntax != EXS_RLELossless) {
        const std::uint64_t there = pixel_data->getLength();
        if (there < frame_size * frames) {
            throw Refusal{"has fewer pixels than it says (" + Count_Text(there) + " of " +
                          Count_Text(frame_size * frames) + " bytes)"};
        }
        return;
    }
    DcmPixelSequence& fragments = Fragments();
    // The first one is a table of where the frames begin.
    if (fragments.card() <= frames) {
        throw Refusal{"has fewer compressed frames than it says"};
    }
    std::uint64_t packed = 0;
    for (unsigned long at = 1; at < fragments.card(); ++at) {
        DcmPixelItem* fragment = nullptr;
        if (fragments.getItem(fragment, at).good() && fragment != nullptr) {
            packed += fragment->getLength();
        }
    }
    constexpr std::uint64_t run_most = 64;  // bytes that one byte of run-length data can stand for
    if (packed * run_most < frame_size * frames) {
        throw Refusal{"has compressed data too short for its frames"};
    }
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
    image.acquisition_number = Field_Integer(data_set, DCM_AcquisitionNumber).value_or(0);
    image.temporal_position = Field_Integer(data_set, DCM_TemporalPositionIdentifier).value_or(0);
    image.trigger_time = Field_Number(data_set, DCM_TriggerTime).value_or(0.0);
    const std::string modality = Field_Text(data_set, DCM_Modality);
    image.modality = modality_unknown;
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

DcmPixelSequence& File_Reader::Fragments() {
    DcmPixelSequence* fragments = nullptr;
    if (pixel_data->getEncapsulatedRepresentation(syntax, nullptr, fragments).bad() || fragments == nullptr) {
        throw Refusal{"has fewer compressed frames than it says"};
    }
    return *fragments;
}

void File_Reader::Frame_Unpack(std::int32_t frame) {
    DcmPixelItem* fragment = nullptr;
    Uint8* packed = nullptr;
    const char* wrong = "no data";
    if (Fragments().getItem(fragment, static_cast<unsigned long>(frame) + 1).good() && fragment != nullptr &&
        fragment->getUint8Array(packed).good() && packed != nullptr) {
        wrong = Run_Length_Decode(format, {packed, fragment->getLength()}, frame_bytes);
    }
    if (wrong != nullptr) {
        throw Refusal{"has pixels that cannot be decoded (frame " + std::to_string(frame + 1) + ": " + wrong + ")"};
    }
}

void File_Reader::Frame_Bytes(std::int32_t frame, DcmFileCache& cache) {
    if (syntax == EXS_RLELossless) {
        return Frame_Unpack(frame);
    }
    const auto size = static_cast<Uint32>(frame_bytes.size());
    const std::uint64_t start = static_cast<std::uint64_t>(size) * static_cast<std::uint64_t>(frame);
    const OFCondition taken =
        pixel_data->getPartialValue(frame_bytes.data(), static_cast<Uint32>(start), size, &cache, EBO_LittleEndian);
    if (taken.bad()) {
        throw Refusal{"has pixels that cannot be decoded (frame " + std::to_string(frame + 1) + ": " +
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

void File_Reader::Levels_Take(std::int32_t place, const Frame_Facts& facts, std::span<const std::int64_t> values) {
    Volume& volume = image.volume;
    std::int32_t* const level =
        volume.levels.data() + static_cast<std::size_t>(place) * static_cast<std::size_t>(values.size());
    const bool is_same = facts.slope == volume.slope && facts.intercept == volume.intercept;
    for (std::size_t at = 0; at < values.size(); ++at) {
        std::int64_t value = values[at] >> shift;
        if (!is_same && !volume.color) {
            const double stored = static_cast<double>(values[at]);
            const double number = (stored * facts.slope + facts.intercept - volume.intercept) / volume.slope;
            constexpr double most = LEVEL_LARGEST;
            value = std::llround(std::clamp(number, -most, most));
        }
        level[at] = static_cast<std::int32_t>(value);
    }
    if (!is_same && !volume.color) {
        volume.max_error = std::abs(volume.slope) / 2;
    }
}

void File_Reader::Frames_Decode() {
    Volume& volume = image.volume;
    const auto pixels = static_cast<std::size_t>(format.width) * static_cast<std::size_t>(format.height);
    volume.nx = format.width;
    volume.ny = format.height;
    volume.nz = plan.nz;
    volume.nt = plan.nt;
    volume.spacing = plan.spacing;
    volume.time_step = plan.time_step;
    volume.color = format.Is_Color();
    volume.scalar_type =
        volume.color ? "rgb24" : (format.is_signed ? "int" : "uint") + std::to_string(format.bits_allocated);
    if (!volume.color) {
        // The finest scale of all frames; frames of another scale are brought to it.
        const auto finest =
            std::ranges::min_element(plan.facts, {}, [](const Frame_Facts& facts) { return std::abs(facts.slope); });
        volume.slope = finest->slope;
        volume.intercept = finest->intercept;
        // Levels are smaller than 32-bit values may be.
        shift = format.bits_stored > 30 ? 2U : 0U;
    }
    volume.levels.resize(pixels * static_cast<std::size_t>(frame_nb));
    frame_bytes.resize(static_cast<std::size_t>(format.Frame_Size()));
    widest.resize(pixels);
    DcmFileCache cache;
    std::vector<std::int32_t> place_of(plan.order.size());
    for (std::size_t place = 0; place < plan.order.size(); ++place) {
        place_of[static_cast<std::size_t>(plan.order[place])] = static_cast<std::int32_t>(place);
    }
    if (shift != 0) {
        for (Frame_Facts& facts : plan.facts) {
            facts.slope = volume.slope;
            facts.intercept = volume.intercept;
        }
    }
    for (std::int32_t frame = 0; frame < frame_nb; ++frame) {
        Frame_Bytes(frame, cache);
        Frame_Decode(format, frame_bytes, palette, widest);
        Levels_Take(place_of[static_cast<std::size_t>(frame)], plan.facts[static_cast<std::size_t>(frame)], widest);
    }
    if (shift != 0) {
        volume.max_error = std::abs(volume.slope) * 3;
        volume.slope *= 4;
    }
}

void File_Reader::Range_Find() {
    Volume& volume = image.volume;
    if (!volume.color) {
        const auto [lowest, highest] = std::ranges::minmax(volume.levels);
        volume.level_min = lowest;
        volume.level_max = highest;
        return;
    }
    volume.level_min = 255;
    for (const std::int32_t level : volume.levels) {
        for (const int bits : {0, 8, 16}) {
            volume.level_min = std::min(volume.level_min, level >> bits & 0xFF);
            volume.level_max = std::max(volume.level_max, level >> bits & 0xFF);
        }
    }
}

Dicom_Result File_Reader::Read() {
    Parse();
    Object_Check();
    Syntax_Check();
    Format_Read();
    Size_Check();
    Names_Read();
    plan = Frames_Plan(*file.getDataset(), image.modality, frame_nb);
    Frames_Decode();
    Range_Find();
    const Frame_Facts& first = plan.facts[static_cast<std::size_t>(plan.order.front())];
    image.place = first.place;
    if (image.temporal_position == 0) {
        image.temporal_position = first.temporal_position;
    }
    Slice_Place shown = image.place;
    if (!shown.is_known) {
        shown.along_row = {1, 0, 0};
        shown.along_column = {0, 1, 0};
    }
    std::array<double, 3> step = Slice_Normal(shown);
    for (double& part : step) {
        part *= image.volume.spacing[2];
    }
    image.volume.affine = Affine_Of(shown, image.volume.spacing, step);
    image.volume.affine_source = image.place.is_known ? Affine_Source::QFORM : Affine_Source::SPACING;
    result.image = std::move(image);
    return std::move(result);
}

bool Is_Group(std::uint8_t first, std::uint8_t second) {
    constexpr std::uint8_t identifying = 8;
    return (second == 0 && (first == identifying || first == 2)) ||
           (first == 0 && (second == identifying || second == 2));
}

}  // namespace

bool Dicom_Is_Likely(std::span<const std::uint8_t> head) {
    constexpr std::array<std::uint8_t, 4> mark = {'D', 'I', 'C', 'M'};
    if (head.size() >= preamble_size + mark.size() &&
        std::ranges::equal(head.subspan(preamble_size, mark.size()), mark)) {
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
            Toolkit_Prepare();
            return File_Reader(file, limits).Read();
        }
    } catch (const Refusal& refusal) {
        failed.error = refusal.text;
    } catch (const std::bad_alloc&) {
        failed.error = "needs more memory than there is";
    } catch (...) {
        failed.error = "cannot be read";
    }
    return failed;
}
