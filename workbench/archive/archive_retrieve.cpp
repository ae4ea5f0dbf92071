#include <algorithm>
#include <array>
#include <cerrno>
#include <set>
#include <system_error>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "dcmtk/ofstd/ofstd.h"
#include "workbench/archive/archive_cache.h"
#include "workbench/archive/archive_client.h"
#include "workbench/archive/archive_requests.h"
#include "workbench/archive/stored_object.h"
#include "workbench/volumes/file_operations.h"
#include "workbench/volumes/message_text.h"

namespace workbench::archive {

namespace {

constexpr std::size_t LIST_MOST = 256U * 1024U;  // bytes of the list of those that failed
constexpr std::uint64_t FILE_LEAST = 4096;       // bytes that a file takes on a disk, however small it is
constexpr std::size_t PENDING_EACH = 2;          // answers for an image, at most
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

std::vector<Proposal> Proposals() {
    std::vector<Proposal> proposals = {{UID_GETStudyRootQueryRetrieveInformationModel, Plain_Syntaxes()}};
    for (const char* const stored : STORED_CLASSES) {
        proposals.push_back({stored, Plain_Syntaxes(), true});
        proposals.push_back({stored, Compressed_Syntaxes(), true});
    }
    static_assert(1 + 2 * STORED_CLASSES.size() <= PROPOSAL_MOST);
    return proposals;
}

/** A file that is being received. The folder that it stands in takes its name only when all is there. */
class Received_File {
  public:
    explicit Received_File(const std::filesystem::path& path)
        : descriptor(volumes::File_Operations_In_Use().create(path)) {
        if (descriptor < 0) {
            error = std::generic_category().message(errno);
        }
    }
    ~Received_File() { Close(); }
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
        descriptor = -1;
    }
    const std::string& Error() const { return error; }

  private:
    int descriptor;
    std::string error;
};

/** @param why "cannot be written: ..." */
Archive_Failure Not_Kept(const std::filesystem::path& path, const std::string& why) {
    return {{Archive_Fault::Disk, "The images cannot be kept: " + volumes::File_Name_Text(path) + " " + why + "."}};
}

class Retrieval {
  public:
    Retrieval(const Archive_Settings& its_archive, const Series& its_series, const Load_Progress& progress,
              const Retrieve_Limits& limits)
        : archive(its_archive),
          series(its_series),
          room(limits.bytes),
          image_most(limits.images),
          watch(progress),
          association(its_archive, watch, Proposals()) {}

    /** @throw Archive_Failure */
    void Run(const std::filesystem::path& into);
    int Image_Count() const { return static_cast<int>(received.size()); }

  private:
    void Ask();
    void Take(const Archive_Message& message, const std::filesystem::path& into);
    /** Whether what came is what was asked for. */
    void Image_Check(std::string bytes, const std::string& identifier) const;
    void Answer(const Archive_Message& message, const std::string& sop_class, const std::string& identifier,
                int status);
    /** @return whether that was the last answer */
    bool Note(const Archive_Message& message);
    void Check(const Archive_Message& last) const;
    void Progress_Tell(int remaining);

    const Archive_Settings& archive;
    const Series& series;
    std::uint64_t room;
    std::size_t image_most;
    std::size_t pending = 0;  ///< answers that came
    Connection_Watch watch;
    Archive_Association association;
    std::uint16_t number = 0;
    std::set<std::string> received;
    int failed = -1;
    int completed = -1;
    int warned = 0;
};

void Retrieval::Ask() {
    const std::string model = UID_GETStudyRootQueryRetrieveInformationModel;
    const T_ASC_PresentationContextID context = association.Context_Of(model);
    if (context == 0) {
        throw Refusal(Archive_Fault::Refused, archive, "does not give images by C-GET.");
    }
    DcmDataset keys;
    if (keys.putAndInsertString(DCM_QueryRetrieveLevel, "SERIES").bad() ||
        keys.putAndInsertString(DCM_StudyInstanceUID, series.study.c_str()).bad() ||
        keys.putAndInsertString(DCM_SeriesInstanceUID, series.identifier.c_str()).bad()) {
        throw std::bad_alloc();
    }
    number = association.Message_Number();
    T_DIMSE_Message request = Request_Of(DIMSE_C_GET_RQ, model, number);
    association.Send(context, request, &keys);
}

void Retrieval::Answer(const Archive_Message& message, const std::string& sop_class, const std::string& identifier,
                       int status) {
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

void Retrieval::Take(const Archive_Message& message, const std::filesystem::path& into) {
    const std::string sop_class = message.Text(DCM_AffectedSOPClassUID);
    const std::string identifier = message.Text(DCM_AffectedSOPInstanceUID);
    const std::string syntax = association.Syntax_Of(message.context);
    if (!Is_Identifier(identifier) || syntax.empty() || association.Class_Of(message.context) != sop_class ||
        !message.Has_Content()) {
        throw Refusal(Archive_Fault::Garbled, archive, "sends an image without a usable identifier or kind.");
    }
    if (received.contains(identifier)) {
        throw Refusal(Archive_Fault::Garbled, archive, "sends an image twice.");
    }
    if (received.size() >= image_most) {
        throw Refusal(Archive_Fault::Garbled, archive,
                      "sends more than " + volumes::Count_Text(image_most) + " images.");
    }
    const std::filesystem::path path = into / (identifier + ".dcm");
    const std::uint64_t room_before = room;
    Received_File file(path);
    std::string bytes = File_Head(sop_class, identifier, syntax);
    file.Write({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    const std::uint64_t most = std::min<std::uint64_t>(room, STORED_OBJECT_MOST - bytes.size());
    association.Receive_Content(message, most, [&](std::span<const std::uint8_t> piece) {
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
        Answer(message, sop_class, identifier, STATUS_OUT_OF_ROOM);
        throw Not_Kept(path, "cannot be written: " + file.Error());
    }
    Image_Check(std::move(bytes), identifier);
    received.insert(identifier);
    Progress_Tell(-1);
    Answer(message, sop_class, identifier, STATUS_SUCCESS);
}

void Retrieval::Image_Check(std::string bytes, const std::string& identifier) const {
    Stored_Object image;
    image.bytes = std::move(bytes);
    if (const std::string error = Object_Parse(image); !error.empty()) {
        throw Refusal(Archive_Fault::Garbled, archive, "sends an image that " + error + ".");
    }
    if (image.study != series.study || image.series != series.identifier || image.identifier != identifier) {
        throw Refusal(Archive_Fault::Garbled, archive, "sends an image of another series.");
    }
}

void Retrieval::Progress_Tell(int remaining) {
    const int done = Image_Count();
    const int all = series.image_count > 0 ? series.image_count : remaining >= 0 ? done + remaining : 0;
    if (all > 0) {
        watch.Done_Set(std::max(watch.Done(), std::min(1.0, static_cast<double>(done) / all)));
    }
}

bool Retrieval::Note(const Archive_Message& message) {
    Answer_Demand(archive, message, DIMSE_C_GET_RSP, number);
    if (message.Has_Content()) {
        association.Receive_Data_Set(message, LIST_MOST);
    }
    Progress_Tell(message.Number(DCM_NumberOfRemainingSuboperations));
    failed = std::max(failed, message.Number(DCM_NumberOfFailedSuboperations));
    completed = std::max(completed, message.Number(DCM_NumberOfCompletedSuboperations));
    warned = std::max(warned, message.Number(DCM_NumberOfWarningSuboperations));
    if (!Is_Pending(message.Number(DCM_Status))) {
        return true;
    }
    if (++pending > PENDING_EACH * image_most) {
        throw Refusal(Archive_Fault::Garbled, archive, "answers without end.");
    }
    return false;
}

void Retrieval::Check(const Archive_Message& last) const {
    const int status = last.Number(DCM_Status);
    const int came = Image_Count();
    // What the archive counts, whatever its final word is.
    const int claimed = completed < 0 ? came : completed + std::max(warned, 0);
    const int promised = std::max(series.image_count, claimed + std::max(failed, 0));
    if (came == 0 && status != STATUS_SUCCESS) {
        throw Refusal(Archive_Fault::Refused, archive, "does not give the series: " + Status_Text(last) + ".");
    }
    if (came == 0) {
        throw Refusal(Archive_Fault::Incomplete, archive, "sent no image of the series.");
    }
    if (came < promised) {
        throw Refusal(Archive_Fault::Incomplete, archive,
                      "sent " + volumes::Count_Text(static_cast<std::uint64_t>(came)) + " of " +
                          volumes::Count_Text(static_cast<std::uint64_t>(promised)) + " images" +
                          (status == STATUS_SUCCESS ? "." : ": " + Status_Text(last) + "."));
    }
    const int last_completed = last.Number(DCM_NumberOfCompletedSuboperations);
    const int last_claimed = last_completed + std::max(0, last.Number(DCM_NumberOfWarningSuboperations));
    if (status == STATUS_SUCCESS && last_completed >= 0 && last_claimed != came) {
        throw Refusal(Archive_Fault::Incomplete, archive,
                      "counts " + volumes::Count_Text(static_cast<std::uint64_t>(last_claimed)) + " images, but " +
                          volumes::Count_Text(static_cast<std::uint64_t>(came)) + " came.");
    }
    if (status != STATUS_SUCCESS || failed > 0) {
        throw Refusal(Archive_Fault::Incomplete, archive,
                      "ends with a failure, although " + volumes::Count_Text(static_cast<std::uint64_t>(came)) +
                          " images came: " + Status_Text(last) + ".");
    }
}

void Retrieval::Run(const std::filesystem::path& into) {
    Ask();
    while (true) {
        const Archive_Message message = association.Receive();
        switch (message.Number(DCM_CommandField)) {
            case DIMSE_C_STORE_RQ:
                Take(message, into);
                break;
            case DIMSE_C_GET_RSP:
                if (Note(message)) {
                    association.Release();
                    Check(message);
                    return;
                }
                break;
            default:
                throw Refusal(Archive_Fault::Garbled, archive, "answers what it was not asked.");
        }
    }
}

}  // namespace

Retrieve_Result Series_Retrieve(const Archive_Settings& archive, const Series& series,
                                const std::filesystem::path& root, const Load_Progress& progress,
                                const Retrieve_Limits& limits) {
    Retrieve_Result result;
    result.outcome = Outcome_Of(archive, [&] {
        if (!Is_Identifier(series.study) || !Is_Identifier(series.identifier)) {
            throw Archive_Failure{{Archive_Fault::Settings, "The series has no usable identifier."}};
        }
        Retrieval retrieval(archive, series, progress, limits);
        Fetched_Folder folder(root, series.identifier);
        const auto check = [&](bool is_good) {
            if (!is_good) {
                throw Archive_Failure{
                    {Archive_Fault::Disk, "The images cannot be kept: their folder " + folder.Error() + "."}};
            }
        };
        check(folder.Error().empty());
        const auto keep = [&] {
            result.image_count = retrieval.Image_Count();
            result.folder = folder.Keep();
            check(!result.folder.empty());
        };
        try {
            retrieval.Run(folder.Path());
        } catch (const Archive_Failure& failure) {
            if (failure.outcome.fault == Archive_Fault::Incomplete && retrieval.Image_Count() > 0) {
                keep();
            }
            throw;
        }
        keep();
    });
    return result;
}

}  // namespace workbench::archive
