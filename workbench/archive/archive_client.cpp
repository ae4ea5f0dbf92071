#include "workbench/archive/archive_client.h"

#include <array>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "dcmtk/ofstd/ofstd.h"
#include "workbench/archive/archive_requests.h"

namespace workbench::archive {

T_DIMSE_Message Request_Of(T_DIMSE_Command command, const std::string& sop_class, std::uint16_t number) {
    T_DIMSE_Message message = {};
    message.CommandField = command;
    const auto fill = [&](auto& request) {
        request.MessageID = number;
        OFStandard::strlcpy(request.AffectedSOPClassUID, sop_class.c_str(), sizeof request.AffectedSOPClassUID);
        request.DataSetType = command == DIMSE_C_ECHO_RQ ? DIMSE_DATASET_NULL : DIMSE_DATASET_PRESENT;
    };
    switch (command) {
        case DIMSE_C_ECHO_RQ:
            fill(message.msg.CEchoRQ);
            break;
        case DIMSE_C_FIND_RQ:
            fill(message.msg.CFindRQ);
            break;
        case DIMSE_C_GET_RQ:
            fill(message.msg.CGetRQ);
            break;
        case DIMSE_C_MOVE_RQ:
            fill(message.msg.CMoveRQ);
            break;
        case DIMSE_C_STORE_RQ:
            fill(message.msg.CStoreRQ);
            break;
        default:
            break;
    }
    return message;
}

void Move_Destination_Set(T_DIMSE_Message& request, const std::string& title) {
    OFStandard::strlcpy(request.msg.CMoveRQ.MoveDestination, title.c_str(), sizeof request.msg.CMoveRQ.MoveDestination);
}

Archive_Failure Refusal(Archive_Fault fault, const Archive_Settings& archive, const std::string& what) {
    return {{fault, Archive_Title(archive) + " " + what}};
}

void Answer_Demand(const Archive_Settings& archive, const Archive_Message& message, T_DIMSE_Command kind,
                   std::uint16_t request) {
    if (message.Number(DCM_CommandField) != kind || message.Number(DCM_MessageIDBeingRespondedTo) != request) {
        throw Refusal(Archive_Fault::Garbled, archive, "answers what it was not asked.");
    }
}

Archive_Outcome Archive_Test(const Archive_Settings& archive, const Load_Progress& progress,
                             Archive_Abilities* abilities) {
    return Outcome_Of(archive, [&] {
        Connection_Watch watch(progress);
        const std::array proposals = {
            Proposal{UID_VerificationSOPClass, Plain_Syntaxes()},
            Proposal{UID_FINDStudyRootQueryRetrieveInformationModel, Plain_Syntaxes()},
            Proposal{archive.is_moved ? UID_MOVEStudyRootQueryRetrieveInformationModel
                                      : UID_GETStudyRootQueryRetrieveInformationModel,
                     Plain_Syntaxes()},
        };
        Archive_Association association(archive, watch, proposals);
        const T_ASC_PresentationContextID context = association.Context_Of(UID_VerificationSOPClass);
        if (context == 0) {
            throw Refusal(Archive_Fault::Refused, archive, "does not let itself be tested.");
        }
        T_DIMSE_Message request = Request_Of(DIMSE_C_ECHO_RQ, UID_VerificationSOPClass, association.Message_Number());
        association.Send(context, request, nullptr);
        const Archive_Message answer = association.Receive();
        if (answer.Number(DCM_CommandField) != DIMSE_C_ECHO_RSP ||
            answer.Number(DCM_MessageIDBeingRespondedTo) != request.msg.CEchoRQ.MessageID) {
            throw Refusal(Archive_Fault::Garbled, archive, "answers what it was not asked.");
        }
        if (answer.Number(DCM_Status) != STATUS_SUCCESS) {
            throw Refusal(Archive_Fault::Refused, archive, "refuses the test: " + Status_Text(answer) + ".");
        }
        if (abilities != nullptr) {
            abilities->is_searched = association.Context_Of(UID_FINDStudyRootQueryRetrieveInformationModel) != 0;
            abilities->is_fetched_from = association.Context_Of(proposals.back().sop_class) != 0;
        }
        association.Release();
    });
}

}  // namespace workbench::archive
