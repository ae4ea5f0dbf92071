#include "volumes/dicom_file.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcistrmb.h>
#include <dcmtk/dcmdata/dcrledrg.h>
#include <dcmtk/dcmdata/dctk.h>
#include <dcmtk/oflog/oflog.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <fstream>
#include <iterator>
#include <new>
#include <span>

#include "volumes/message_text.h"

namespace {

/** A reason to give a file up. */
struct Refused {
    std::string reason;
};

void Library_Prepare() {
    static const bool is_prepared = [] {
        OFLog::configure(OFLogger::OFF_LOG_LEVEL);
        DcmRLEDecoderRegistration::registerCodecs();
        return true;
    }();
    (void)is_prepared;
}

std::string Text(DcmItem& item, const DcmTagKey& tag) {
    OFString value;
    item.findAndGetOFStringArray(tag, value, OFTrue);
    std::string text(value.c_str());
    // The texts' own character sets are not converted.
    std::ranges::replace_if(
        text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) > 0x7E; }, '?');
    return text;
}

int Number(DcmItem& item, const DcmTagKey& tag, int missing) {
    Uint16 value = 0;
    return item.findAndGetUint16(tag, value).good() ? value : missing;
}

int Text_Number(DcmItem& item, const DcmTagKey& tag, int missing) {
    Sint32 value = 0;
    return item.findAndGetSint32(tag, value, 0, OFTrue).good() ? value : missing;
}

/** Also looks inside sequences, where files of many frames keep what all frames share. @return how many were read */
template <std::size_t Nb>
bool Reals(DcmItem& item, const DcmTagKey& tag, std::array<double, Nb>& values) {
    for (std::size_t at = 0; at < Nb; ++at) {
        Float64 value = 0;
        if (item.findAndGetFloat64(tag, value, static_cast<unsigned long>(at), OFTrue).bad() || !std::isfinite(value)) {
            return false;
        }
        values[at] = value;
    }
    return true;
}

double Real(DcmItem& item, const DcmTagKey& tag, double missing) {
    std::array<double, 1> value{};
    return Reals(item, tag, value) ? value[0] : missing;
}

/** How stored pixels are made up. */
struct Pixel_Form {
    int allocated = 0;  // bits
    int stored = 0;
    int high = 0;
    bool is_signed = false;
    int samples = 1;
    bool is_planar = false;
    std::string photometric;
};

Pixel_Form Form_Of(DcmItem& item) {
    Pixel_Form form;
    form.allocated = Number(item, DCM_BitsAllocated, 0);
    form.stored = Number(item, DCM_BitsStored, form.allocated);
    form.high = Number(item, DCM_HighBit, form.stored - 1);
    form.is_signed = Number(item, DCM_PixelRepresentation, 0) == 1;
    form.samples = Number(item, DCM_SamplesPerPixel, 1);
    form.is_planar = Number(item, DCM_PlanarConfiguration, 0) == 1;
    form.photometric = Text(item, DCM_PhotometricInterpretation);
    if (form.allocated != 8 && form.allocated != 16 && form.allocated != 32) {
        throw Refused{"has pixels of " + std::to_string(form.allocated) + " bits, which are not read."};
    }
    if (form.stored < 1 || form.stored > form.allocated || form.high >= form.allocated || form.high < form.stored - 1) {
        throw Refused{"describes its pixels in a way that makes no sense."};
    }
    return form;
}

/** Stored numbers without their neighbours in the same word. */
class Pixel_Reader {
  public:
    Pixel_Reader(std::span<const std::uint8_t> pixel_bytes, const Pixel_Form& pixel_form)
        : bytes(pixel_bytes),
          size(static_cast<std::size_t>(pixel_form.allocated) / 8),
          shift(pixel_form.high + 1 - pixel_form.stored),
          mask(pixel_form.stored == 32 ? 0xFFFFFFFFU : (1U << static_cast<unsigned int>(pixel_form.stored)) - 1U),
          sign(pixel_form.is_signed ? 1U << static_cast<unsigned int>(pixel_form.stored - 1) : 0U) {}

    std::int64_t At(std::size_t index) const {
        std::uint32_t word = 0;
        for (std::size_t byte_nb = size; byte_nb-- > 0;) {
            word = word << 8U | bytes[index * size + byte_nb];
        }
        const std::uint32_t value = (word >> static_cast<unsigned int>(shift)) & mask;
        return (value & sign) != 0 ? static_cast<std::int64_t>(value) - static_cast<std::int64_t>(mask) - 1
                                   : static_cast<std::int64_t>(value);
    }

  private:
    std::span<const std::uint8_t> bytes;
    std::size_t size;
    int shift;
    std::uint32_t mask;
    std::uint32_t sign;
};

std::int32_t Packed(std::int64_t red, std::int64_t green, std::int64_t blue) {
    const auto part = [](std::int64_t value) {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, 0, 255));
    };
    return part(red) | part(green) << 8 | part(blue) << 16;
}

/** Full-range luminance and colour differences to red, green, blue (ITU-R BT.601). */
std::int32_t Packed_Ybr(double y, double b, double r) {
    return Packed(std::lround(y + 1.402 * (r - 128)), std::lround(y - 0.344136 * (b - 128) - 0.714136 * (r - 128)),
                  std::lround(y + 1.772 * (b - 128)));
}

void Take_Grey(const Pixel_Reader& reader, const Pixel_Form& form, Dicom_Image& image) {
    // Where small numbers are bright, the numbers are turned round.
    const bool is_inverted = form.photometric == "MONOCHROME1";
    const std::int64_t turn = form.is_signed ? -1 : (std::int64_t{1} << form.stored) - 1;
    for (std::size_t at = 0; at < image.levels.size(); ++at) {
        const std::int64_t value = is_inverted ? turn - reader.At(at) : reader.At(at);
        image.levels[at] = static_cast<std::int32_t>(std::clamp<std::int64_t>(value, INT32_MIN, LEVEL_LARGEST));
    }
}

void Take_Color(const Pixel_Reader& reader, const Pixel_Form& form, Dicom_Image& image) {
    const bool is_ybr = form.photometric == "YBR_FULL";
    if (form.photometric != "RGB" && !is_ybr) {
        throw Refused{"has colours of the kind " + form.photometric + ", which are not read."};
    }
    const std::size_t frame = static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
    for (std::size_t at = 0; at < image.levels.size(); ++at) {
        const std::size_t first = form.is_planar ? at / frame * frame * 3 + at % frame : at * 3;
        const std::size_t step = form.is_planar ? frame : 1;
        const std::int64_t a = reader.At(first);
        const std::int64_t b = reader.At(first + step);
        const std::int64_t c = reader.At(first + 2 * step);
        image.levels[at] = is_ybr ? Packed_Ybr(static_cast<double>(a), static_cast<double>(b), static_cast<double>(c))
                                  : Packed(a, b, c);
    }
}

/** The colours of a table, 0 .. 255. */
std::vector<int> Palette(DcmItem& item, const DcmTagKey& descriptor, const DcmTagKey& data, int* first) {
    Uint16 entries = 0;
    Uint16 start = 0;
    Uint16 bits = 0;
    const Uint16* words = nullptr;
    unsigned long word_nb = 0;
    if (item.findAndGetUint16(descriptor, entries, 0).bad() || item.findAndGetUint16(descriptor, start, 1).bad() ||
        item.findAndGetUint16(descriptor, bits, 2).bad() || item.findAndGetUint16Array(data, words, &word_nb).bad() ||
        words == nullptr) {
        throw Refused{"names colours by a table that it does not have."};
    }
    *first = start;
    const std::size_t nb = entries == 0 ? 65536U : entries;
    std::vector<int> colors(nb);
    // Tables of 8 bits may have two entries in a word.
    const bool is_dense = word_nb < nb;
    if (is_dense && word_nb * 2 < nb) {
        throw Refused{"has a colour table that ends too early."};
    }
    for (std::size_t at = 0; at < nb; ++at) {
        if (is_dense) {
            colors[at] = words[at / 2] >> (at % 2 * 8) & 0xFF;
        } else {
            colors[at] = bits > 8 ? words[at] >> 8 : words[at] & 0xFF;
        }
    }
    return colors;
}

void Take_Palette(const Pixel_Reader& reader, DcmItem& item, Dicom_Image& image) {
    int first = 0;
    const std::vector<int> red =
        Palette(item, DCM_RedPaletteColorLookupTableDescriptor, DCM_RedPaletteColorLookupTableData, &first);
    const std::vector<int> green =
        Palette(item, DCM_GreenPaletteColorLookupTableDescriptor, DCM_GreenPaletteColorLookupTableData, &first);
    const std::vector<int> blue =
        Palette(item, DCM_BluePaletteColorLookupTableDescriptor, DCM_BluePaletteColorLookupTableData, &first);
    const auto last = static_cast<std::int64_t>(std::min({red.size(), green.size(), blue.size()})) - 1;
    for (std::size_t at = 0; at < image.levels.size(); ++at) {
        const auto entry = static_cast<std::size_t>(std::clamp<std::int64_t>(reader.At(at) - first, 0, last));
        image.levels[at] = Packed(red[entry], green[entry], blue[entry]);
    }
}

void Take_Place(DcmItem& item, Dicom_Image& image) {
    std::array<double, 3> position{};
    std::array<double, 6> orientation{};
    if (Reals(item, DCM_ImagePositionPatient, position)) {
        image.position = position;
    }
    if (Reals(item, DCM_ImageOrientationPatient, orientation)) {
        image.orientation = orientation;
    }
    std::array<double, 2> spacing{};
    if ((Reals(item, DCM_PixelSpacing, spacing) || Reals(item, DCM_ImagerPixelSpacing, spacing)) && spacing[0] > 0 &&
        spacing[1] > 0) {
        image.pixel_spacing = spacing;
    }
    const double between = Real(item, DCM_SpacingBetweenSlices, 0.0);
    image.slice_spacing = between > 0 ? between : std::max(Real(item, DCM_SliceThickness, 0.0), 0.0);
}

void Take_Description(DcmItem& item, Dicom_Image& image) {
    image.study_uid = Text(item, DCM_StudyInstanceUID);
    image.series_uid = Text(item, DCM_SeriesInstanceUID);
    image.study = Text(item, DCM_StudyDescription);
    image.series = Text(item, DCM_SeriesDescription);
    const std::string modality = Text(item, DCM_Modality);
    if (modality.size() >= 2) {
        image.modality = static_cast<std::uint16_t>(static_cast<unsigned char>(modality[0]) << 8 |
                                                    static_cast<unsigned char>(modality[1]));
    }
    image.scout = Text(item, DCM_ImageType).find("LOCALIZER") != std::string::npos;
    image.series_number = Text_Number(item, DCM_SeriesNumber, 0);
    image.instance_number = Text_Number(item, DCM_InstanceNumber, 0);
    image.temporal_position = Text_Number(item, DCM_TemporalPositionIdentifier, 0);
    const double frame_time = Real(item, DCM_FrameTime, 0.0);  // milliseconds
    image.time_step =
        frame_time > 0 ? frame_time / 1000.0 : std::max(Real(item, DCM_RepetitionTime, 0.0) / 1000.0, 0.0);
    image.frames_are_times = image.frame_nb > 1 && (frame_time > 0 || item.tagExistsWithValue(DCM_FrameTimeVector) ||
                                                    modality == "US" || modality == "XA" || modality == "RF");
    image.slope = Real(item, DCM_RescaleSlope, 1.0);
    image.slope = image.slope == 0.0 ? 1.0 : image.slope;
    image.intercept = Real(item, DCM_RescaleIntercept, 0.0);
}

/** The pixels' bytes, least significant first. */
std::vector<std::uint8_t> Pixel_Bytes(DcmDataset& dataset, const Pixel_Form& form, std::uint64_t wanted) {
    std::vector<std::uint8_t> bytes;
    if (form.allocated == 8) {
        const Uint8* data = nullptr;
        unsigned long nb = 0;
        if (dataset.findAndGetUint8Array(DCM_PixelData, data, &nb).good() && data != nullptr && nb >= wanted) {
            bytes.assign(data, data + wanted);
            return bytes;
        }
    }
    const Uint16* words = nullptr;
    unsigned long word_nb = 0;
    if (dataset.findAndGetUint16Array(DCM_PixelData, words, &word_nb).bad() || words == nullptr ||
        std::uint64_t{word_nb} * 2 < wanted) {
        throw Refused{"ends before its last pixel."};
    }
    bytes.resize(wanted);
    for (std::uint64_t at = 0; at < wanted; ++at) {
        bytes[at] = static_cast<std::uint8_t>(words[at / 2] >> (at % 2 * 8));
    }
    return bytes;
}

void Take_Pixels(DcmDataset& dataset, const Load_Limits& limits, Dicom_Image& image) {
    const DcmXfer syntax(dataset.getOriginalXfer());
    if (syntax.isEncapsulated() && dataset.getOriginalXfer() != EXS_RLELossless) {
        throw Refused{std::string("is compressed (") + syntax.getXferName() + "), which is not decoded."};
    }
    const Pixel_Form form = Form_Of(dataset);
    const std::uint64_t pixels = static_cast<std::uint64_t>(image.width) * static_cast<std::uint64_t>(image.height) *
                                 static_cast<std::uint64_t>(image.frame_nb);
    if (pixels > limits.decoded_bytes / 4) {
        throw Refused{"has " + Count_Text(pixels) + " pixels, more than fit."};
    }
    if (form.samples != 1 && (form.samples != 3 || form.allocated != 8)) {
        throw Refused{"has " + std::to_string(form.samples) + " values a pixel, which is not read."};
    }
    if (dataset.chooseRepresentation(EXS_LittleEndianExplicit, nullptr).bad()) {
        throw Refused{"could not be decoded."};
    }
    const std::uint64_t wanted =
        pixels * static_cast<std::uint64_t>(form.samples) * static_cast<std::uint64_t>(form.allocated / 8);
    const std::vector<std::uint8_t> bytes = Pixel_Bytes(dataset, form, wanted);
    const Pixel_Reader reader(bytes, form);
    image.levels.resize(pixels);
    if (form.samples == 3) {
        image.color = true;
        image.scalar_type = "rgb24";
        Take_Color(reader, form, image);
    } else if (form.photometric == "PALETTE COLOR") {
        image.color = true;
        image.scalar_type = "rgb24";
        Take_Palette(reader, dataset, image);
    } else {
        image.scalar_type = (form.is_signed ? "int" : "uint") + std::to_string(form.allocated);
        Take_Grey(reader, form, image);
    }
}

Dicom_Image Parsed(const std::vector<char>& bytes, const std::filesystem::path& name, const Load_Limits& limits) {
    Library_Prepare();
    DcmInputBufferStream stream;
    stream.setBuffer(bytes.data(), static_cast<offile_off_t>(bytes.size()));
    stream.setEos();
    DcmFileFormat file;
    file.transferInit();
    const OFCondition read = file.read(stream);
    file.transferEnd();
    DcmDataset* const dataset = file.getDataset();
    const bool has_mark = bytes.size() >= 132 && std::equal(bytes.begin() + 128, bytes.begin() + 132, "DICM");
    if (dataset == nullptr || dataset->isEmpty() || (read.bad() && !has_mark)) {
        throw Refused{"is no DICOM file."};
    }
    if (read.bad()) {
        throw Refused{std::string("is broken (") + read.text() + ")."};
    }
    if (!dataset->tagExistsWithValue(DCM_PixelData)) {
        const std::string kind = Text(*dataset, DCM_Modality);
        throw Refused{"holds no image" + (kind.empty() ? "." : " (" + kind + ").")};
    }
    Dicom_Image image;
    image.path = name;
    image.width = Number(*dataset, DCM_Columns, 0);
    image.height = Number(*dataset, DCM_Rows, 0);
    image.frame_nb = Text_Number(*dataset, DCM_NumberOfFrames, 1);
    if (image.width < 1 || image.height < 1 || image.frame_nb < 1) {
        throw Refused{"has an image of no size."};
    }
    Take_Description(*dataset, image);
    Take_Place(*dataset, image);
    Take_Pixels(*dataset, limits, image);
    return image;
}

}  // namespace

Dicom_Result Dicom_Load(const std::vector<char>& bytes, const std::filesystem::path& name,
                        const Load_Limits& limits) noexcept {
    Dicom_Result result;
    try {
        try {
            result.image = Parsed(bytes, name, limits);
        } catch (const Refused& refused) {
            result.reason = refused.reason;
        } catch (const std::bad_alloc&) {
            result.reason = "needs more memory than there is.";
        } catch (...) {
            result.reason = "could not be read.";
        }
    } catch (...) {
        result.image.reset();  // not even memory for the reason
    }
    return result;
}

Dicom_Result Dicom_Load(const std::filesystem::path& path, const Load_Limits& limits) noexcept {
    Dicom_Result result;
    try {
        std::error_code error;
        const std::uintmax_t size = std::filesystem::file_size(path, error);
        if (!error && size > limits.decoded_bytes) {
            result.reason = "is too large (" + Size_Text(size) + ").";
            return result;
        }
        std::ifstream file(path, std::ios::binary);
        if (!file) {
            result.reason = "cannot be opened.";
            return result;
        }
        const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        return Dicom_Load(bytes, path, limits);
    } catch (...) {
        result.image.reset();
    }
    return result;
}
