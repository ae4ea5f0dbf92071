#include <algorithm>
#include <memory>
#include <optional>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "dcmtk/ofstd/ofstd.h"
#include "workbench/archive/archive_client.h"
#include "workbench/archive/archive_requests.h"
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/file_operations.h"
#include "workbench/volumes/message_text.h"

namespace workbench::archive {

namespace {

constexpr std::size_t FILE_MOST = std::size_t{2} << 30U;  // bytes, and of what a deflated one inflates to

/** A file in memory, as it goes out. */
struct Outgoing {
    std::string bytes;
    volumes::Data_Set_Source source;
    DcmFileFormat file;
    std::string sop_class;
    std::string identifier;
    std::string syntax;

    DcmDataset& Data_Set() { return *file.getDataset(); }
};

/** @return empty, or what is wrong, to follow the file's name */
std::string Outgoing_Read(const std::filesystem::path& path, Outgoing& out) {
    if (const std::error_code code = volumes::File_Operations_In_Use().read(path, FILE_MOST, out.bytes)) {
        return "cannot be read: " + code.message();
    }
    try {
        volumes::Data_Set_Read({reinterpret_cast<const std::uint8_t*>(out.bytes.data()), out.bytes.size()}, FILE_MOST,
                               out.file, out.source);
    } catch (const volumes::Dicom_Refusal& refusal) {
        return refusal.text;
    }
    out.sop_class = volumes::Field_Text(out.Data_Set(), DCM_SOPClassUID);
    out.identifier = volumes::Field_Text(out.Data_Set(), DCM_SOPInstanceUID);
    if (!Is_Identifier(out.sop_class) || !Is_Identifier(out.identifier)) {
        return "has no usable identifiers";
    }
    const DcmXfer form(out.Data_Set().getOriginalXfer());
    out.syntax = form.getXferID();
    // Long values are read now: the memory that they come from is not to be asked for while something waits for them.
    out.Data_Set().loadAllDataIntoMemory();
    return {};
}

class Sending {
  public:
    Sending(const Archive_Settings& its_archive, const Load_Progress& progress)
        : archive(its_archive), watch(progress) {}

    /** @throw Archive_Failure */
    Sent_File Send(const std::filesystem::path& path);
    void Done_Set(double done) { watch.Done_Set(done); }
    void End() {
        if (association) {
            association->Release();
            association.reset();
        }
    }
    /** @throw Archive_Failure */
    void Ask();

  private:
    T_ASC_PresentationContextID Context_For(const Outgoing& out);

    const Archive_Settings& archive;
    Connection_Watch watch;
    std::optional<Archive_Association> association;
    std::string proposed;  ///< class and form that the association was made for
};

void Sending::Ask() {
    if (!watch.May_Go_On() && watch.End() == Connection_End::Cancelled) {
        throw Refusal(Archive_Fault::Cancelled, archive, "was sent nothing more: given up.");
    }
}

T_ASC_PresentationContextID Sending::Context_For(const Outgoing& out) {
    const std::string wanted = out.sop_class + " " + out.syntax;
    if (!association || proposed != wanted) {
        End();
        const Proposal proposals[] = {
            {out.sop_class, {out.syntax.c_str()}},
            {out.sop_class, Plain_Syntaxes()},
        };
        association.emplace(archive, watch, proposals);
        proposed = wanted;
    }
    const T_ASC_PresentationContextID same = association->Context_Of(out.sop_class, out.syntax);
    if (same != 0) {
        return same;
    }
    for (const char* const syntax : Plain_Syntaxes()) {
        if (const T_ASC_PresentationContextID context = association->Context_Of(out.sop_class, syntax)) {
            return context;
        }
    }
    return 0;
}

Sent_File Sending::Send(const std::filesystem::path& path) {
    Sent_File sent;
    sent.file = path;
    Outgoing out;
    if (std::string error = Outgoing_Read(path, out); !error.empty()) {
        sent.remark = volumes::File_Name_Text(path) + " " + error + ".";
        return sent;
    }
    const T_ASC_PresentationContextID context = Context_For(out);
    if (context == 0) {
        sent.remark = "The archive does not take this kind of object.";
        return sent;
    }
    const E_TransferSyntax form = DcmXfer(association->Syntax_Of(context).c_str()).getXfer();
    if (!out.Data_Set().canWriteXfer(form, out.Data_Set().getOriginalXfer())) {
        sent.remark = "The archive does not take images that are compressed like this.";
        return sent;
    }
    T_DIMSE_Message request = Request_Of(DIMSE_C_STORE_RQ, out.sop_class, association->Message_Number());
    OFStandard::strlcpy(request.msg.CStoreRQ.AffectedSOPInstanceUID, out.identifier.c_str(),
                        sizeof request.msg.CStoreRQ.AffectedSOPInstanceUID);
    association->Send(context, request, &out.Data_Set());
    const Archive_Message answer = association->Receive();
    Answer_Demand(archive, answer, DIMSE_C_STORE_RSP, request.msg.CStoreRQ.MessageID);
    const int status = answer.Number(DCM_Status);
    sent.is_accepted = status == STATUS_SUCCESS || Is_Warning(status);
    if (status != STATUS_SUCCESS) {
        sent.remark = std::string("The archive ") + (sent.is_accepted ? "accepts it " : "refuses it: ") +
                      Status_Text(answer) + ".";
    }
    return sent;
}

}  // namespace

Send_Result Files_Send(const Archive_Settings& archive, std::span<const std::filesystem::path> files,
                       const Load_Progress& progress) {
    Send_Result result;
    result.outcome = Outcome_Of(archive, [&] {
        Sending sending(archive, progress);
        for (std::size_t at = 0; at < files.size(); ++at) {
            sending.Done_Set(static_cast<double>(at) / static_cast<double>(files.size()));
            sending.Ask();
            Sent_File sent = sending.Send(files[at]);
            ++(sent.is_accepted ? result.accepted : result.refused);
            result.files.push_back(std::move(sent));
        }
        sending.End();
    });
    return result;
}

}  // namespace workbench::archive
