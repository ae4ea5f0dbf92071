// What is said of an association that failed.
#include "workbench/archive/archive_association.h"

#include "dcmtk/dcmnet/assoc.h"
#include "dcmtk/dcmnet/cond.h"
#include "workbench/archive/archive_texts.h"

namespace workbench::archive {

Archive_Failure Archive_Association::Rejection() const {
    T_ASC_RejectParameters rejection = {};
    ASC_getRejectParameters(association->params, &rejection);
    const std::string title = Archive_Title(settings);
    switch (rejection.reason) {
        case ASC_REASON_SU_CALLEDAETITLENOTRECOGNIZED:
            return Failure_Of(Archive_Fault::Called_Title,
                              title + " refuses: its AE title is not \"" + settings.called_title + "\".");
        case ASC_REASON_SU_CALLINGAETITLENOTRECOGNIZED:
            return Failure_Of(Archive_Fault::Own_Title,
                              title + " refuses: it does not know this program by the AE title \"" +
                                  settings.own_title + "\". Whoever looks after it can add it.");
        case ASC_REASON_SP_PRES_TEMPORARYCONGESTION:
        case ASC_REASON_SP_PRES_LOCALLIMITEXCEEDED:
            return Failure_Of(Archive_Fault::Refused, title + " refuses for now: it is busy. Try again later.");
        default:
            return Failure_Of(Archive_Fault::Refused,
                              title +
                                  (rejection.result == ASC_RESULT_REJECTEDTRANSIENT ? " refuses for now" : " refuses") +
                                  " to speak with this program.");
    }
}

Archive_Failure Archive_Association::Nonsense() const {
    return Failure_Of(Archive_Fault::Garbled,
                      Archive_Title(settings) +
                          " sends what does not follow the DICOM protocol. Is it an archive, and the "
                          "port its DICOM port?");
}

std::optional<Archive_Failure> Archive_Association::Own_Failure(const OFCondition& condition) const {
    if (condition.module() == OFM_dcmnet && condition.code() == DULC_TCPINITERROR) {
        return Failure_Of(Archive_Fault::Not_Reached,
                          Archive_Title(settings) +
                              " was reached, but does not take the connection. It may have too "
                              "many, or be ending. Try again later.");
    }
    if (condition == EC_MemoryExhausted || condition == DIMSE_SENDFAILED) {
        return Failure_Of(Archive_Fault::Refused, "What was to go to " + Archive_Title(settings) +
                                                      " could not be sent (" + condition.text() + ").");
    }
    return std::nullopt;
}

Archive_Failure Archive_Association::Failure(const OFCondition& condition) const {
    const std::string title = Archive_Title(settings);
    switch (watch.End()) {
        case Connection_End::Cancelled:
            return Failure_Of(Archive_Fault::Cancelled, title + ": given up.");
        case Connection_End::Silent:
            return Failure_Of(Archive_Fault::Silent,
                              title + " is silent for " +
                                  Seconds_Text(is_associated ? settings.times.silence : settings.times.associate) +
                                  ", so the connection was ended.");
        case Connection_End::Flooded:
            return Failure_Of(Archive_Fault::Garbled,
                              title + " sends more than was asked for, so the connection was ended.");
        case Connection_End::Lost:
            if (!layer.Doubt().empty()) {
                return Failure_Of(Archive_Fault::Encryption, title + layer.Doubt());
            }
            break;
        case Connection_End::Open:
            if (condition != DUL_PEERABORTEDASSOCIATION && condition != DUL_PEERREQUESTEDRELEASE &&
                condition != DUL_NETWORKCLOSED) {
                return Own_Failure(condition).value_or(Nonsense());
            }
    }
    if (condition == DUL_PEERABORTEDASSOCIATION || condition == DUL_PEERREQUESTEDRELEASE) {
        return Failure_Of(Archive_Fault::Lost, title + " has ended the connection.");
    }
    return Failure_Of(Archive_Fault::Lost, "The connection was lost: " + title + " has ended, or the network has.");
}

}  // namespace workbench::archive
