#include <optional>
#include <utility>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/ofstd/ofstd.h"
#include "workbench/archive/anonymous_object.h"
#include "workbench/archive/archive_client.h"
#include "workbench/archive/archive_requests.h"
#include "workbench/archive/picture_comments.h"
#include "workbench/archive/secret_hash.h"
#include "workbench/archive/stored_object.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/message_text.h"

namespace workbench::archive {

namespace {

/** A file in memory, as it goes out. @return empty, or what is wrong, to follow the file's name */
std::string Outgoing_Read(const std::filesystem::path& path, Stored_Object& out) {
    if (std::string error = Object_Read(path, out); !error.empty()) {
        return error;
    }
    if (!Is_Identifier(out.sop_class) || !Is_Identifier(out.identifier)) {
        return "has no usable identifiers";
    }
    // Long values are read now: the memory that they come from is not to be asked for while something waits for them.
    out.Data_Set().loadAllDataIntoMemory();
    return {};
}

class Sending {
  public:
    Sending(const Archive_Settings& its_archive, const Load_Progress& progress, const Send_Wishes& its_wishes)
        : archive(its_archive), watch(progress), wishes(its_wishes), anonymiser(its_wishes.secret) {}

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
    /** Takes the patient's identity away where that is wished.
     *  @return whether it may go */
    bool Prepare(Stored_Object& out, Sent_File& sent) const;
    T_ASC_PresentationContextID Context_For(const Stored_Object& out);

    const Archive_Settings& archive;
    Connection_Watch watch;
    const Send_Wishes& wishes;
    Anonymiser anonymiser;
    std::optional<Archive_Association> association;
    std::string proposed;  ///< class and form that the association was made for
};

void Sending::Ask() {
    if (!watch.May_Go_On() && watch.End() == Connection_End::Cancelled) {
        throw Refusal(Archive_Fault::Cancelled, archive, "was sent nothing more: given up.");
    }
}

T_ASC_PresentationContextID Sending::Context_For(const Stored_Object& out) {
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

bool Sending::Prepare(Stored_Object& out, Sent_File& sent) const {
    if (!wishes.is_anonymous) {
        return true;
    }
    // Never sent, whoever has looked at the picture: its comments are not to be seen there.
    if (const std::string unknown = Picture_Comments_Blank(out.Data_Set()); !unknown.empty()) {
        sent.remark = volumes::File_Name_Text(sent.file) + " does not go anonymously: " + unknown + ".";
        return false;
    }
    std::string doubt = Burnt_In_Doubt(out.Data_Set());
    if (!wishes.is_picture_trusted && !doubt.empty()) {
        sent.is_held = true;
        sent.remark = std::move(doubt);
        return false;
    }
    if (const std::string error = anonymiser.Anonymise(out.Data_Set()); !error.empty()) {
        sent.remark = volumes::File_Name_Text(sent.file) + " " + error + ".";
        return false;
    }
    out.identifier = volumes::Field_Text(out.Data_Set(), DCM_SOPInstanceUID);
    return true;
}

Sent_File Sending::Send(const std::filesystem::path& path) {
    Sent_File sent;
    sent.file = path;
    Stored_Object out;
    if (std::string error = Outgoing_Read(path, out); !error.empty()) {
        sent.remark = volumes::File_Name_Text(path) + " " + error + ".";
        return sent;
    }
    if (!Prepare(out, sent)) {
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
                       const Load_Progress& progress, const Send_Wishes& wishes) {
    Send_Result result;
    result.outcome = Outcome_Of(archive, [&] {
        if (wishes.is_anonymous && !Is_Secret(wishes.secret)) {
            throw Archive_Failure{{Archive_Fault::Settings, "There is no secret to anonymise with."}};
        }
        Sending sending(archive, progress, wishes);
        for (std::size_t at = 0; at < files.size(); ++at) {
            sending.Done_Set(static_cast<double>(at) / static_cast<double>(files.size()));
            sending.Ask();
            Sent_File sent = sending.Send(files[at]);
            ++(sent.is_accepted ? result.accepted : sent.is_held ? result.held : result.refused);
            result.files.push_back(std::move(sent));
        }
        sending.End();
    });
    return result;
}

}  // namespace workbench::archive
