#include "workbench/archive/archive_intake.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <span>
#include <system_error>
#include <utility>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "dcmtk/ofstd/ofstd.h"
#include "workbench/archive/archive_requests.h"
#include "workbench/archive/stored_object.h"
#include "workbench/volumes/file_operations.h"
#include "workbench/volumes/message_text.h"

namespace workbench::archive {

namespace {

constexpr std::uint64_t FILE_LEAST = 4096;  // bytes that a file takes on a disk, however small it is
constexpr int STATUS_OUT_OF_ROOM = 0xA700;

/** Objects with pixels, and those that labels come in. */
constexpr std::array STORED_CLASSES = {
    UID_CTImageStorage,
    UID_EnhancedCTImageStorage,
    UID_LegacyConvertedEnhancedCTImageStorage,
    UID_MRImageStorage,
    UID_EnhancedMRImageStorage,
    UID_EnhancedMRColorImageStorage,
    UID_LegacyConvertedEnhancedMRImageStorage,
    UID_PositronEmissionTomographyImageStorage,
    UID_EnhancedPETImageStorage,
    UID_LegacyConvertedEnhancedPETImageStorage,
    UID_NuclearMedicineImageStorage,
    UID_UltrasoundImageStorage,
    UID_UltrasoundMultiframeImageStorage,
    UID_EnhancedUSVolumeStorage,
    UID_ComputedRadiographyImageStorage,
    UID_DigitalXRayImageStorageForPresentation,
    UID_DigitalXRayImageStorageForProcessing,
    UID_DigitalMammographyXRayImageStorageForPresentation,
    UID_DigitalMammographyXRayImageStorageForProcessing,
    UID_DigitalIntraOralXRayImageStorageForPresentation,
    UID_DigitalIntraOralXRayImageStorageForProcessing,
    UID_BreastTomosynthesisImageStorage,
    UID_XRayAngiographicImageStorage,
    UID_EnhancedXAImageStorage,
    UID_XRay3DAngiographicImageStorage,
    UID_XRay3DCraniofacialImageStorage,
    UID_XRayRadiofluoroscopicImageStorage,
    UID_EnhancedXRFImageStorage,
    UID_SecondaryCaptureImageStorage,
    UID_MultiframeSingleBitSecondaryCaptureImageStorage,
    UID_MultiframeGrayscaleByteSecondaryCaptureImageStorage,
    UID_MultiframeGrayscaleWordSecondaryCaptureImageStorage,
    UID_MultiframeTrueColorSecondaryCaptureImageStorage,
    UID_VLEndoscopicImageStorage,
    UID_VLMicroscopicImageStorage,
    UID_VLSlideCoordinatesMicroscopicImageStorage,
    UID_VLPhotographicImageStorage,
    UID_VLWholeSlideMicroscopyImageStorage,
    UID_OphthalmicPhotography8BitImageStorage,
    UID_OphthalmicPhotography16BitImageStorage,
    UID_OphthalmicTomographyImageStorage,
    UID_IntravascularOpticalCoherenceTomographyImageStorageForPresentation,
    UID_IntravascularOpticalCoherenceTomographyImageStorageForProcessing,
    UID_ParametricMapStorage,
    UID_SegmentationStorage,
    UID_RTImageStorage,
    UID_RTDoseStorage,
    UID_RTStructureSetStorage,
};

/** Compressed ways that images are read in, those without loss first. */
std::vector<const char*> Compressed_Syntaxes() {
    return {UID_JPEGProcess14SV1TransferSyntax,     UID_JPEGProcess14TransferSyntax, UID_JPEGLSLosslessTransferSyntax,
            UID_JPEG2000LosslessOnlyTransferSyntax, UID_RLELosslessTransferSyntax,   UID_JPEGProcess1TransferSyntax,
            UID_JPEGProcess2_4TransferSyntax,       UID_JPEGLSLossyTransferSyntax,   UID_JPEG2000TransferSyntax};
}

}  // namespace

std::vector<Proposal> Stored_Proposals() {
    std::vector<Proposal> proposals;
    for (const char* const stored : STORED_CLASSES) {
        proposals.push_back({stored, Plain_Syntaxes(), true});
        proposals.push_back({stored, Compressed_Syntaxes(), true});
    }
    static_assert(2 + 2 * STORED_CLASSES.size() <= PROPOSAL_MOST);
    return proposals;
}

namespace {

/** A file that is being received; it goes with this unless it was kept. */
class Received_File {
  public:
    explicit Received_File(std::filesystem::path its_path)
        : path(std::move(its_path)), descriptor(volumes::File_Operations_In_Use().create(path)) {
        if (descriptor < 0) {
            error = std::generic_category().message(errno);
        }
    }
    ~Received_File() {
        const bool is_made = descriptor >= 0;
        Close();
        if ((is_made || is_closed) && !is_kept) {
            volumes::File_Operations_In_Use().remove(path);
        }
    }
    Received_File(const Received_File&) = delete;
    Received_File& operator=(const Received_File&) = delete;

    void Write(std::span<const std::uint8_t> bytes) {
        while (error.empty() && !bytes.empty()) {
            errno = 0;
            const long long count = volumes::File_Operations_In_Use().write(descriptor, bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count <= 0) {
                error = std::generic_category().message(count == 0 ? ENOSPC : errno);
                return;
            }
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
    }
    void Close() {
        if (descriptor >= 0 && !volumes::File_Operations_In_Use().close(descriptor) && error.empty()) {
            error = std::generic_category().message(errno);
        }
        is_closed = is_closed || descriptor >= 0;
        descriptor = -1;
    }
    void Keep() { is_kept = true; }
    const std::string& Error() const { return error; }

  private:
    std::filesystem::path path;
    int descriptor;
    bool is_closed = false;
    bool is_kept = false;
    std::string error;
};

/** @param why "cannot be written: ..." */
Archive_Failure Not_Kept(const std::filesystem::path& path, const std::string& why) {
    return {{Archive_Fault::Disk, "The images cannot be kept: " + volumes::File_Name_Text(path) + " " + why + "."}};
}

}  // namespace

void Series_Intake::Answer(Archive_Association& association, const Archive_Message& message,
                           const std::string& sop_class, const std::string& identifier, int status) {
    T_DIMSE_Message answer = {};
    answer.CommandField = DIMSE_C_STORE_RSP;
    T_DIMSE_C_StoreRSP& content = answer.msg.CStoreRSP;
    content.MessageIDBeingRespondedTo = static_cast<DIC_US>(message.Number(DCM_MessageID));
    OFStandard::strlcpy(content.AffectedSOPClassUID, sop_class.c_str(), sizeof content.AffectedSOPClassUID);
    OFStandard::strlcpy(content.AffectedSOPInstanceUID, identifier.c_str(), sizeof content.AffectedSOPInstanceUID);
    content.DataSetType = DIMSE_DATASET_NULL;
    content.DimseStatus = static_cast<DIC_US>(status);
    content.opts = O_STORE_AFFECTEDSOPCLASSUID | O_STORE_AFFECTEDSOPINSTANCEUID;
    association.Send(message.context, answer, nullptr);
}

void Series_Intake::Take(Archive_Association& association, const Archive_Message& message,
                         const std::function<void()>& on_piece) {
    const std::string sop_class = message.Text(DCM_AffectedSOPClassUID);
    const std::string identifier = message.Text(DCM_AffectedSOPInstanceUID);
    const std::string syntax = association.Syntax_Of(message.context);
    if (!Is_Identifier(identifier) || syntax.empty() || association.Class_Of(message.context) != sop_class ||
        !message.Has_Content()) {
        throw Refusal(Archive_Fault::Garbled, archive, "sends an image without a usable identifier or kind.");
    }
    if (received.contains(identifier)) {
        // An archive whose connection was lost does not know what had come.
        if (!archive.is_moved) {
            throw Refusal(Archive_Fault::Garbled, archive, "sends an image twice.");
        }
        Repeated_Take(association, message, sop_class, identifier, on_piece);
        return;
    }
    if (received.size() >= image_most) {
        throw Refusal(Archive_Fault::Garbled, archive,
                      "sends more than " + volumes::Count_Text(image_most) + " images.");
    }
    const std::filesystem::path path = folder / (identifier + ".dcm");
    const std::uint64_t room_before = room;
    Received_File file(path);
    std::string bytes = File_Head(sop_class, identifier, syntax);
    file.Write({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    const std::uint64_t most = std::min<std::uint64_t>(room, STORED_OBJECT_MOST - bytes.size());
    association.Receive_Content(message, most, [&](std::span<const std::uint8_t> piece) {
        on_piece();
        room -= piece.size();
        bytes.append(piece.begin(), piece.end());
        file.Write(piece);
        if (!file.Error().empty()) {
            throw Not_Kept(path, "cannot be written: " + file.Error());
        }
    });
    room = std::min(room, room_before - std::min(room_before, FILE_LEAST));
    file.Close();
    if (!file.Error().empty()) {
        Answer(association, message, sop_class, identifier, STATUS_OUT_OF_ROOM);
        throw Not_Kept(path, "cannot be written: " + file.Error());
    }
    Image_Check(std::move(bytes), identifier);
    received.insert(identifier);
    ++count;
    file.Keep();
    Answer(association, message, sop_class, identifier, STATUS_SUCCESS);
}

void Series_Intake::Repeated_Take(Archive_Association& association, const Archive_Message& message,
                                  const std::string& sop_class, const std::string& identifier,
                                  const std::function<void()>& on_piece) {
    std::string bytes = File_Head(sop_class, identifier, association.Syntax_Of(message.context));
    const std::uint64_t most = std::min<std::uint64_t>(room, STORED_OBJECT_MOST - bytes.size());
    association.Receive_Content(message, most, [&](std::span<const std::uint8_t> piece) {
        on_piece();
        room -= piece.size();  // or it could go on for ever
        bytes.append(piece.begin(), piece.end());
    });
    room -= std::min(room, FILE_LEAST);
    std::ifstream file(folder / (identifier + ".dcm"), std::ios::binary);
    const std::string kept((std::istreambuf_iterator<char>(file)), {});
    if (!file || kept != bytes) {
        throw Refusal(Archive_Fault::Garbled, archive, "sends an image twice, with different content.");
    }
    Answer(association, message, sop_class, identifier, STATUS_SUCCESS);
}

void Series_Intake::Image_Check(std::string bytes, const std::string& identifier) const {
    Stored_Object image;
    image.bytes = std::move(bytes);
    if (const std::string error = Object_Parse(image); !error.empty()) {
        throw Refusal(Archive_Fault::Garbled, archive, "sends an image that " + error + ".");
    }
    if (image.study != series.study || image.series != series.identifier || image.identifier != identifier) {
        throw Refusal(Archive_Fault::Garbled, archive, "sends an image of another series.");
    }
}

}  // namespace workbench::archive
