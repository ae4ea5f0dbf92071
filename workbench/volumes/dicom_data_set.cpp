#include "workbench/volumes/dicom_data_set.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <new>
#include <string_view>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcmetinf.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "dcmtk/dcmdata/dcvr.h"
#include "dcmtk/oflog/oflog.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_segmentation.h"
#include "workbench/volumes/dicom_stream.h"
#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

constexpr Uint32 VALUE_KEPT = 4096;  // bytes: longer values are read when they are asked for
constexpr std::size_t MARK_SIZE = 4;

void Toolkit_Prepare() {
    static std::once_flag once;
    std::call_once(once, [] {
        OFLog::configure(OFLogger::OFF_LOG_LEVEL);  // what is wrong is told by the result
        dcmEnableUnknownVRConversion.set(OFTrue);   // a program that did not know an element's form has written it
    });
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
            throw Dicom_Refusal{"inflates to more than " + Size_Text(most)};
        }
        content.resize(had + step);
        stream.next_out = content.data() + had;
        stream.avail_out = static_cast<uInt>(step);
        state = inflate(&stream, Z_NO_FLUSH);
        content.resize(content.size() - stream.avail_out);
        if (state != Z_OK && state != Z_STREAM_END && state != Z_BUF_ERROR) {
            throw Dicom_Refusal{"has damaged deflated data"};
        }
        if (state != Z_STREAM_END && stream.avail_in == 0 && taken == packed.size() && stream.avail_out != 0) {
            throw Dicom_Refusal{"is cut short inside its deflated data"};
        }
    }
    return content;
}

/** Whether the first element of a data set names the form of its value. */
bool Is_Explicit(std::span<const std::uint8_t> data_set) {
    constexpr std::size_t form_at = 4;
    constexpr std::size_t head_size = 6;
    if (data_set.size() < head_size) {
        return false;
    }
    const char form[] = {static_cast<char>(data_set[form_at]), static_cast<char>(data_set[form_at + 1]), 0};
    return DcmVR(form).isStandard();
}

/** The syntax that little-endian elements are written in, whatever the header says. */
E_TransferSyntax Form_Found(E_TransferSyntax told, std::span<const std::uint8_t> data_set,
                            std::vector<std::string>& warnings) {
    constexpr std::size_t element_least = 8;
    if ((told != EXS_LittleEndianExplicit && told != EXS_LittleEndianImplicit) || data_set.size() < element_least) {
        return told;
    }
    const E_TransferSyntax found = Is_Explicit(data_set) ? EXS_LittleEndianExplicit : EXS_LittleEndianImplicit;
    if (found != told) {
        warnings.emplace_back(
            found == EXS_LittleEndianExplicit
                ? "says that its elements have no forms (implicit), but they have; read as written"
                : "says that its elements have forms (explicit), but they have none; read as written");
    }
    return found;
}

}  // namespace

std::string Toolkit_Text(const OFCondition& condition) {
    std::string text = condition.text();
    std::erase_if(text, [](char letter) { return static_cast<unsigned char>(letter) < ' '; });
    return text;
}

bool Dicom_Has_Mark(std::span<const std::uint8_t> head) {
    constexpr std::array<std::uint8_t, MARK_SIZE> mark = {'D', 'I', 'C', 'M'};
    return head.size() >= DICOM_PREAMBLE_SIZE + mark.size() &&
           std::ranges::equal(head.subspan(DICOM_PREAMBLE_SIZE, mark.size()), mark);
}

bool Dicom_Has_Meta(std::span<const std::uint8_t> head) {
    // The length of group 2, in four bytes.
    constexpr std::array<std::uint8_t, 8> length = {2, 0, 0, 0, 'U', 'L', 4, 0};
    constexpr std::size_t at = DICOM_PREAMBLE_SIZE + MARK_SIZE;
    return head.size() >= at + length.size() && std::ranges::equal(head.subspan(at, length.size()), length);
}

Object_Owner Owner_Of(DcmItem& data_set) {
    Object_Owner owner{Field_Utf8(data_set, DCM_PatientID), Field_Text(data_set, DCM_FrameOfReferenceUID)};
    if (DcmItem* const referenced = Field_Item(data_set, DCM_ReferencedFrameOfReferenceSequence);
        referenced != nullptr && owner.frame_of_reference.empty()) {
        owner.frame_of_reference = Field_Text(*referenced, DCM_FrameOfReferenceUID);  // of a structure set
    }
    return owner;
}

namespace {

/** Whether the last bytes are what stands before the value of pixels, in either byte order. */
bool Is_Pixel_Head(std::span<const std::uint8_t> bytes, bool is_explicit) {
    constexpr std::array<std::uint8_t, 2> group = {0xE0, 0x7F};
    constexpr std::size_t form_at = 4;
    const std::size_t size = is_explicit ? 12 : 8;  // tag, form and length, or tag and length
    if (bytes.size() < size) {
        return false;
    }
    const std::span head = bytes.last(size);
    const std::string_view form(reinterpret_cast<const char*>(head.data()) + form_at, 2);
    // With such a form it cannot be four bytes of another element and a shorter head.
    return ((head[0] == group[0] && head[1] == group[1]) || (head[0] == group[1] && head[1] == group[0])) &&
           (!is_explicit || form == "OB" || form == "OW" || form == "OF" || form == "OD" || form == "UN");
}

/** Reads meta information and the data set before `stop`, or before what stands out of order.
 *  @return what was read, with tag and length of what follows */
std::span<const std::uint8_t> Read_Before(const DcmTagKey& stop, std::span<const std::uint8_t> bytes,
                                          std::uint64_t most, DcmFileFormat& file, Data_Set_Source& source) {
    Toolkit_Prepare();
    if (!Dicom_Has_Mark(bytes) && Dicom_Has_Meta(bytes)) {
        source.warnings.emplace_back("has a damaged mark at its beginning");
        bytes = bytes.subspan(DICOM_PREAMBLE_SIZE + MARK_SIZE);
    }
    Memory_Stream stream(bytes);
    DcmMetaInfo* const meta = file.getMetaInfo();
    meta->transferInit();
    const OFCondition meta_read = meta->read(stream, EXS_Unknown, EGL_noChange, VALUE_KEPT);
    meta->transferEnd();
    if (meta_read.bad() && meta_read != EC_EndOfStream) {
        throw Dicom_Refusal{"is broken or cut short (" + Toolkit_Text(meta_read) + ")"};
    }
    const std::string named = Field_Text(*meta, DCM_TransferSyntaxUID);
    const auto start = std::min(static_cast<std::size_t>(stream.tell()), bytes.size());
    DcmDataset* const data_set = file.getDataset();
    OFCondition read = EC_Normal;
    data_set->transferInit();
    if (named == UID_DeflatedExplicitVRLittleEndianTransferSyntax) {
        source.inflated = Inflate(bytes.subspan(start), most);
        source.syntax_name = "Deflated Explicit VR Little Endian";
        Memory_Stream content(source.inflated);
        read = data_set->readUntilTag(content, EXS_LittleEndianExplicit, EGL_noChange, VALUE_KEPT, stop);
    } else {
        const E_TransferSyntax told = named.empty() ? EXS_Unknown : DcmXfer(named.c_str()).getXfer();
        if (told == EXS_Unknown && !named.empty()) {
            throw Dicom_Refusal{"has an unknown transfer syntax (" + Printable_Text(named, FIELD_SHOWN_MOST) + ")"};
        }
        read = data_set->readUntilTag(stream, Form_Found(told, bytes.subspan(start), source.warnings), EGL_noChange,
                                      VALUE_KEPT, stop);
    }
    data_set->transferEnd();
    if (read.bad() && read != EC_EndOfStream) {
        throw Dicom_Refusal{"is broken or cut short (" + Toolkit_Text(read) + ")"};
    }
    if (data_set->card() == 0) {
        throw Dicom_Refusal{"is no DICOM file, or holds nothing"};
    }
    if (source.syntax_name.empty()) {
        source.syntax_name = DcmXfer(data_set->getOriginalXfer()).getXferName();
    }
    return bytes.first(std::min(static_cast<std::size_t>(stream.tell()), bytes.size()));
}

}  // namespace

void Data_Set_Read(std::span<const std::uint8_t> bytes, std::uint64_t most, DcmFileFormat& file,
                   Data_Set_Source& source) {
    Read_Before(DCM_UndefinedTagKey, bytes, most, file, source);
}

bool Data_Set_Head_Read(std::span<const std::uint8_t> bytes, std::uint64_t most, DcmFileFormat& file,
                        Data_Set_Source& source) {
    const std::span read = Read_Before(DCM_FloatPixelData, bytes, most, file, source);
    return Is_Pixel_Head(read, DcmXfer(file.getDataset()->getOriginalXfer()).isExplicitVR());
}

}  // namespace volumes
