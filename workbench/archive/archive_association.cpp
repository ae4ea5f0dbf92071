#include "workbench/archive/archive_association.h"

#include <mutex>
#include <tuple>

#include "dcmtk/dcmdata/dcuid.h"
#include "dcmtk/dcmnet/assoc.h"
#include "dcmtk/dcmnet/cond.h"
#include "dcmtk/oflog/oflog.h"
#include "dcmtk/ofstd/ofstd.h"
#include "workbench/archive/archive_encryption.h"
#include "workbench/archive/archive_texts.h"

namespace workbench::archive {

void Network_Prepare() {
    static std::once_flag once;
    std::call_once(once, [] {
        OFStandard::initializeNetwork();
        OFLog::configure(OFLogger::OFF_LOG_LEVEL);  // what is wrong is told by the result
    });
}

std::vector<const char*> Plain_Syntaxes() {
    return {UID_LittleEndianExplicitTransferSyntax, UID_LittleEndianImplicitTransferSyntax};
}

void Archive_Association::Network_End::operator()(T_ASC_Network* ended) const {
    ASC_dropNetwork(&ended);
}

void Archive_Association::Parameters_End::operator()(T_ASC_Parameters* ended) const {
    ASC_destroyAssociationParameters(&ended);
}

void Archive_Association::Association_End::operator()(T_ASC_Association* ended) const {
    ASC_destroyAssociation(&ended);
}

Archive_Association::Archive_Association(const Archive_Settings& archive, Connection_Watch& its_watch,
                                         std::span<const Proposal> proposals)
    : settings(archive), watch(its_watch), layer(its_watch) {
    if (const std::string doubt = Settings_Doubt(settings); !doubt.empty()) {
        throw Failure_Of(Archive_Fault::Settings, doubt);
    }
    if (settings.is_encrypted) {
        layer.Encrypt(std::make_unique<Encrypted_Channel>(settings));
    }
    Network_Prepare();
    Request(Reach(), proposals);
}

std::string Archive_Association::Reach() {
    watch.Begin();
    watch.Patience_Set(settings.times.connect, false);
    place = Archive_Reach(settings.host, settings.port, settings.times.connect, [this] {
        return watch.May_Go_On() || watch.End() == Connection_End::Silent;  // Archive_Reach has the same patience
    });
    const std::string title = Archive_Title(settings);
    switch (place.fault) {
        case Reach_Fault::Cancelled:
            throw Failure_Of(Archive_Fault::Cancelled, title + ": given up.");
        case Reach_Fault::Unknown_Host:
            throw Failure_Of(Archive_Fault::Unknown_Host,
                             title + " is not found: there is no address for that name on this network.");
        case Reach_Fault::Nothing_Listens:
            throw Failure_Of(
                Archive_Fault::Nothing_Listens,
                title + " is not there: nothing listens at that port. Is the archive running, and the port right?");
        case Reach_Fault::No_Way:
            throw Failure_Of(
                Archive_Fault::Not_Reached,
                title + " cannot be reached: there is no way to it. Is this computer connected to its network?");
        case Reach_Fault::Too_Slow:
            throw Failure_Of(Archive_Fault::Not_Reached, title + " does not answer within " +
                                                             Seconds_Text(settings.times.connect) +
                                                             ". Is the address right, and the network connected?");
        case Reach_Fault::None:
            break;
    }
    return place.address + ":" + std::to_string(settings.port);
}

void Archive_Association::Request(const std::string& address, std::span<const Proposal> proposals) {
    watch.Begin();
    watch.Patience_Set(settings.times.associate, false);
    watch.Room_Set(ROOM_BESIDES);
    dcmConnectionTimeout.set(1);  // nobody can end this wait; and the way was just found
    T_ASC_Network* opened = nullptr;
    OFCondition condition = ASC_initializeNetwork(NET_REQUESTOR, 0, DUL_TIMEOUT, &opened);
    network.reset(opened);
    T_ASC_Parameters* made = nullptr;
    if (condition.good()) {
        condition = ASC_setTransportLayer(opened, &layer, 0);
    }
    if (condition.good()) {
        condition = ASC_createAssociationParameters(&made, ASC_MAXIMUMPDUSIZE);
    }
    std::unique_ptr<T_ASC_Parameters, Parameters_End> parameters(made);
    if (condition.good()) {
        condition = ASC_setAPTitles(made, settings.own_title.c_str(), settings.called_title.c_str(), nullptr);
    }
    if (condition.good()) {
        condition = ASC_setPresentationAddresses(made, "localhost", address.c_str());
    }
    int number = 1;
    for (const Proposal& proposal : proposals) {
        std::vector<const char*> syntaxes = proposal.syntaxes;
        if (condition.good()) {
            condition = ASC_addPresentationContext(
                made, static_cast<T_ASC_PresentationContextID>(number), proposal.sop_class.c_str(), syntaxes.data(),
                static_cast<int>(syntaxes.size()), proposal.is_received ? ASC_SC_ROLE_SCP : ASC_SC_ROLE_DEFAULT);
        }
        number += 2;
    }
    if (condition.bad()) {
        throw Failure_Of(Archive_Fault::Refused,
                         Archive_Title(settings) + " cannot be asked (" + condition.text() + ").");
    }
    T_ASC_Association* requested = nullptr;
    condition = ASC_requestAssociation(opened, made, &requested);
    if (requested != nullptr) {
        association.reset(requested);
        if (requested->params == made) {
            std::ignore = parameters.release();
        }
    }
    if (condition == DUL_ASSOCIATIONREJECTED && requested != nullptr) {
        throw Rejection();
    }
    if (condition.bad()) {
        throw Failure(condition);
    }
    is_associated = true;
    watch.Patience_Set(settings.times.silence, true);
}

Archive_Association::~Archive_Association() {
    if (is_associated && association) {
        watch.Lose();  // what is still to come is not waited for
        ASC_abortAssociation(association.get());
    }
}

void Archive_Association::Release() {
    is_associated = false;
    watch.Patience_Set(GOODBYE_PATIENCE, false);
    watch.Room_Set(ROOM_BESIDES);
    ASC_releaseAssociation(association.get());
}

T_ASC_PresentationContextID Archive_Association::Context_Of(const std::string& sop_class,
                                                            const std::string& syntax) const {
    if (syntax.empty()) {
        return ASC_findAcceptedPresentationContextID(association.get(), sop_class.c_str());
    }
    const T_ASC_PresentationContextID context =
        ASC_findAcceptedPresentationContextID(association.get(), sop_class.c_str(), syntax.c_str());
    return context != 0 && Syntax_Of(context) == syntax ? context : T_ASC_PresentationContextID{0};
}

std::string Archive_Association::Syntax_Of(T_ASC_PresentationContextID context) const {
    T_ASC_PresentationContext agreed = {};
    return ASC_findAcceptedPresentationContext(association->params, context, &agreed).good()
               ? agreed.acceptedTransferSyntax
               : "";
}

std::string Archive_Association::Class_Of(T_ASC_PresentationContextID context) const {
    T_ASC_PresentationContext agreed = {};
    return ASC_findAcceptedPresentationContext(association->params, context, &agreed).good() ? agreed.abstractSyntax
                                                                                             : "";
}

}  // namespace workbench::archive
