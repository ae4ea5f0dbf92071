#include "workbench/archive/archive_association.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <tuple>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "dcmtk/dcmnet/assoc.h"
#include "dcmtk/dcmnet/cond.h"
#include "dcmtk/oflog/oflog.h"
#include "dcmtk/ofstd/ofstd.h"
#include "workbench/archive/archive_socket.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_stream.h"
#include "workbench/volumes/message_text.h"

namespace workbench::archive {

namespace {

constexpr std::chrono::milliseconds GOODBYE_PATIENCE{1000};
/** Bytes besides those that were asked for: lengths and marks, and a whole piece that is read ahead. */
constexpr std::uint64_t ROOM_BESIDES = 2U * ASC_MAXIMUMPDUSIZE;

void Network_Prepare() {
    static std::once_flag once;
    std::call_once(once, [] {
        OFStandard::initializeNetwork();
        OFLog::configure(OFLogger::OFF_LOG_LEVEL);  // what is wrong is told by the result
    });
}

Archive_Failure Fail(Archive_Fault fault, std::string text) {
    return {{fault, std::move(text)}};
}

std::string Seconds_Text(std::chrono::milliseconds time) {
    return volumes::Amount_Text(std::chrono::duration<double>(time).count()) + " seconds";
}

}  // namespace

std::vector<const char*> Plain_Syntaxes() {
    return {UID_LittleEndianExplicitTransferSyntax, UID_LittleEndianImplicitTransferSyntax};
}

int Archive_Message::Number(const DcmTagKey& tag) const {
    Uint16 number = 0;
    return command->findAndGetUint16(tag, number).good() ? number : -1;
}

std::string Archive_Message::Text(const DcmTagKey& tag) const {
    OFString text;
    // All of it: an identifier with a backslash is none.
    if (command->findAndGetOFStringArray(tag, text).bad()) {
        return {};
    }
    const std::string whole(text.c_str(), text.size());
    const std::size_t last = whole.find_last_not_of(std::string_view(" \0", 2));
    return last == std::string::npos ? std::string() : whole.substr(0, last + 1);
}

bool Archive_Message::Has_Content() const {
    const int kind = Number(DCM_CommandDataSetType);
    return kind >= 0 && kind != DIMSE_DATASET_NULL;
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
        throw Fail(Archive_Fault::Settings, doubt);
    }
    Network_Prepare();
    Request(Reach(), proposals);
}

Archive_Association::Archive_Association(const Archive_Settings& archive, Connection_Watch& its_watch,
                                         T_ASC_Network& listening, std::span<const Proposal> taken)
    : settings(archive), watch(its_watch), layer(its_watch) {
    Network_Prepare();
    watch.Begin();
    watch.Patience_Set(settings.times.associate, false);
    watch.Room_Set(ROOM_BESIDES);
    Accept(listening, taken);
}

std::optional<T_ASC_RejectParametersReason> Archive_Association::Doubt_Of_Caller() const {
    constexpr std::size_t room = 64;
    std::array<char, room> calling{};
    std::array<char, room> called{};
    std::array<char, room> responding{};
    if (ASC_getAPTitles(association->params, calling.data(), room, called.data(), room, responding.data(), room)
            .bad()) {
        return ASC_REASON_SU_NOREASON;
    }
    const auto is_same = [](std::string_view one, std::string_view other) {
        const auto bare = [](std::string_view text) {
            const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
            return text.substr(first, text.find_last_not_of(' ') + 1 - first);
        };
        return bare(one) == bare(other);
    };
    if (!is_same(called.data(), settings.own_title)) {
        return ASC_REASON_SU_CALLEDAETITLENOTRECOGNIZED;
    }
    if (!is_same(calling.data(), settings.called_title)) {
        return ASC_REASON_SU_CALLINGAETITLENOTRECOGNIZED;
    }
    return std::nullopt;
}

void Archive_Association::Accept(T_ASC_Network& listening, std::span<const Proposal> taken) {
    dcmDisableGethostbyaddr.set(OFTrue);  // nobody can end the wait for a name that is not needed
    ASC_setTransportLayer(&listening, &layer, 0);
    T_ASC_Association* made = nullptr;
    OFCondition condition = ASC_receiveAssociation(&listening, &made, ASC_MAXIMUMPDUSIZE);
    association.reset(made);
    if (condition.bad() || made == nullptr) {
        throw Failure(condition);
    }
    is_associated = true;
    if (const std::optional<T_ASC_RejectParametersReason> doubt = Doubt_Of_Caller()) {
        const T_ASC_RejectParameters rejection = {ASC_RESULT_REJECTEDPERMANENT, ASC_SOURCE_SERVICEUSER, *doubt};
        ASC_rejectAssociation(made, &rejection);
        is_associated = false;
        throw Fail(Archive_Fault::Refused, "Somebody else was refused.");
    }
    // Contract: the toolkit lets the last acceptance of a class stand, so those that come first are accepted last.
    for (std::size_t left = taken.size(); left-- > 0;) {
        const Proposal& proposal = taken[left];
        std::vector<const char*> syntaxes = proposal.syntaxes;
        const char* classes[] = {proposal.sop_class.c_str()};
        if (condition.good()) {
            condition = ASC_acceptContextsWithPreferredTransferSyntaxes(made->params, classes, 1, syntaxes.data(),
                                                                        static_cast<int>(syntaxes.size()));
        }
    }
    if (condition.good()) {
        condition = ASC_acknowledgeAssociation(made);
    }
    if (condition.bad()) {
        throw Failure(condition);
    }
    watch.Patience_Set(settings.times.silence, true);
}

std::string Archive_Association::Reach() {
    watch.Begin();
    watch.Patience_Set(settings.times.connect, false);
    const Reached reached = Archive_Reach(settings.host, settings.port, settings.times.connect, [this] {
        return watch.May_Go_On() || watch.End() == Connection_End::Silent;  // Archive_Reach has the same patience
    });
    const std::string title = Archive_Title(settings);
    switch (reached.fault) {
        case Reach_Fault::Cancelled:
            throw Fail(Archive_Fault::Cancelled, title + ": given up.");
        case Reach_Fault::Unknown_Host:
            throw Fail(Archive_Fault::Unknown_Host,
                       title + " is not found: there is no address for that name on this network.");
        case Reach_Fault::Nothing_Listens:
            throw Fail(
                Archive_Fault::Nothing_Listens,
                title + " is not there: nothing listens at that port. Is the archive running, and the port right?");
        case Reach_Fault::No_Way:
            throw Fail(Archive_Fault::Not_Reached,
                       title + " cannot be reached: there is no way to it. Is this computer connected to its network?");
        case Reach_Fault::Too_Slow:
            throw Fail(Archive_Fault::Not_Reached, title + " does not answer within " +
                                                       Seconds_Text(settings.times.connect) +
                                                       ". Is the address right, and the network connected?");
        case Reach_Fault::None:
            break;
    }
    return reached.address + ":" + std::to_string(settings.port);
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
        throw Fail(Archive_Fault::Refused, Archive_Title(settings) + " cannot be asked (" + condition.text() + ").");
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

Archive_Failure Archive_Association::Rejection() const {
    T_ASC_RejectParameters rejection = {};
    ASC_getRejectParameters(association->params, &rejection);
    const std::string title = Archive_Title(settings);
    switch (rejection.reason) {
        case ASC_REASON_SU_CALLEDAETITLENOTRECOGNIZED:
            return Fail(Archive_Fault::Called_Title,
                        title + " refuses: its AE title is not \"" + settings.called_title + "\".");
        case ASC_REASON_SU_CALLINGAETITLENOTRECOGNIZED:
            return Fail(Archive_Fault::Own_Title, title + " refuses: it does not know this program by the AE title \"" +
                                                      settings.own_title + "\". Whoever looks after it can add it.");
        case ASC_REASON_SP_PRES_TEMPORARYCONGESTION:
        case ASC_REASON_SP_PRES_LOCALLIMITEXCEEDED:
            return Fail(Archive_Fault::Refused, title + " refuses for now: it is busy. Try again later.");
        default:
            return Fail(Archive_Fault::Refused,
                        title + (rejection.result == ASC_RESULT_REJECTEDTRANSIENT ? " refuses for now" : " refuses") +
                            " to speak with this program.");
    }
}

Archive_Failure Archive_Association::Nonsense() const {
    return Fail(Archive_Fault::Garbled, Archive_Title(settings) +
                                            " sends what does not follow the DICOM protocol. Is it an archive, and the "
                                            "port its DICOM port?");
}

std::optional<Archive_Failure> Archive_Association::Own_Failure(const OFCondition& condition) const {
    if (condition.module() == OFM_dcmnet && condition.code() == DULC_TCPINITERROR) {
        return Fail(Archive_Fault::Not_Reached, Archive_Title(settings) +
                                                    " was reached, but does not take the connection. It may have too "
                                                    "many, or be ending. Try again later.");
    }
    if (condition == EC_MemoryExhausted || condition == DIMSE_SENDFAILED) {
        return Fail(Archive_Fault::Refused,
                    "What was to go to " + Archive_Title(settings) + " could not be sent (" + condition.text() + ").");
    }
    return std::nullopt;
}

Archive_Failure Archive_Association::Failure(const OFCondition& condition) const {
    const std::string title = Archive_Title(settings);
    switch (watch.End()) {
        case Connection_End::Cancelled:
            return Fail(Archive_Fault::Cancelled, title + ": given up.");
        case Connection_End::Silent:
            return Fail(Archive_Fault::Silent,
                        title + " is silent for " +
                            Seconds_Text(is_associated ? settings.times.silence : settings.times.associate) +
                            ", so the connection was ended.");
        case Connection_End::Flooded:
            return Fail(Archive_Fault::Garbled, title + " sends more than was asked for, so the connection was ended.");
        case Connection_End::Lost:
            break;
        case Connection_End::Open:
            if (condition != DUL_PEERABORTEDASSOCIATION && condition != DUL_PEERREQUESTEDRELEASE &&
                condition != DUL_NETWORKCLOSED) {
                return Own_Failure(condition).value_or(Nonsense());
            }
    }
    if (condition == DUL_PEERABORTEDASSOCIATION || condition == DUL_PEERREQUESTEDRELEASE) {
        return Fail(Archive_Fault::Lost, title + " has ended the connection.");
    }
    return Fail(Archive_Fault::Lost, "The connection was lost: " + title + " has ended, or the network has.");
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

void Archive_Association::Send(T_ASC_PresentationContextID context, T_DIMSE_Message& message, DcmDataset* content) {
    watch.Patience_Set(settings.times.silence, true);
    const OFCondition condition =
        DIMSE_sendMessageUsingMemoryData(association.get(), context, &message, nullptr, content, nullptr, nullptr);
    if (condition.bad()) {
        throw Failure(condition);
    }
}

void Archive_Association::Pieces_Receive(DUL_DATAPDV kind, T_ASC_PresentationContextID& context, std::uint64_t most,
                                         const std::function<void(std::span<const std::uint8_t>)>& sink) {
    watch.Room_Set(most + ROOM_BESIDES + most / 8);  // pieces may be small
    std::uint64_t got = 0;
    for (bool is_last = false; !is_last;) {
        DUL_PDV piece = {};
        OFCondition condition = DUL_NextPDV(&association->DULassociation, &piece);
        if (condition.bad()) {
            condition = DUL_ReadPDVs(&association->DULassociation, nullptr, DUL_BLOCK, 0);
            if (condition != DUL_PDATAPDUARRIVED) {
                has_said_goodbye = condition == DUL_PEERREQUESTEDRELEASE && kind == DUL_COMMANDPDV && context == 0;
                throw Failure(condition);
            }
            condition = DUL_NextPDV(&association->DULassociation, &piece);
        }
        if (condition.bad() || piece.pdvType != kind || (context != 0 && piece.presentationContextID != context)) {
            throw Nonsense();
        }
        context = piece.presentationContextID;
        got += piece.fragmentLength;
        if (got > most) {
            throw Fail(Archive_Fault::Garbled,
                       Archive_Title(settings) + " sends an object of more than " + volumes::Size_Text(most) + ".");
        }
        sink({static_cast<const std::uint8_t*>(piece.data), piece.fragmentLength});
        is_last = piece.lastPDV != OFFalse;
    }
}

namespace {

/** Longest value that is read at once: a length that is told makes no room for it before the bytes are there. */
constexpr Uint32 VALUE_READ_MOST = 4096;

/** @return nothing: not a data set */
std::unique_ptr<DcmDataset> Parsed(const std::vector<std::uint8_t>& bytes, E_TransferSyntax syntax) {
    auto parsed = std::make_unique<DcmDataset>();
    volumes::Memory_Stream stream(bytes);
    parsed->transferInit();
    const OFCondition condition = parsed->read(stream, syntax, EGL_noChange, VALUE_READ_MOST);
    parsed->transferEnd();
    // All of it now: the bytes are gone after this.
    if ((condition.bad() && condition != EC_EndOfStream) || parsed->loadAllDataIntoMemory().bad()) {
        return nullptr;
    }
    return parsed;
}

}  // namespace

Archive_Message Archive_Association::Receive() {
    Archive_Message message;
    std::vector<std::uint8_t> bytes;
    Pieces_Receive(DUL_COMMANDPDV, message.context, COMMAND_MOST,
                   [&](std::span<const std::uint8_t> piece) { bytes.insert(bytes.end(), piece.begin(), piece.end()); });
    message.command = Parsed(bytes, EXS_LittleEndianImplicit);
    if (!message.command || message.Number(DCM_CommandField) < 0) {
        throw Nonsense();
    }
    return message;
}

std::optional<Archive_Message> Archive_Association::Receive_Or_End() {
    try {
        return Receive();
    } catch (const Archive_Failure&) {
        if (!has_said_goodbye) {
            throw;
        }
    }
    is_associated = false;
    watch.Patience_Set(GOODBYE_PATIENCE, false);
    ASC_acknowledgeRelease(association.get());
    return std::nullopt;
}

void Archive_Association::Receive_Content(const Archive_Message& message, std::uint64_t most,
                                          const std::function<void(std::span<const std::uint8_t>)>& sink) {
    T_ASC_PresentationContextID context = message.context;
    Pieces_Receive(DUL_DATASETPDV, context, most, sink);
}

std::unique_ptr<DcmDataset> Archive_Association::Receive_Data_Set(const Archive_Message& message, std::size_t most) {
    std::vector<std::uint8_t> bytes;
    Receive_Content(message, most, [&](std::span<const std::uint8_t> piece) {
        bytes.insert(bytes.end(), piece.begin(), piece.end());
    });
    const std::string syntax = Syntax_Of(message.context);
    std::unique_ptr<DcmDataset> parsed;
    if (std::ranges::any_of(Plain_Syntaxes(), [&](const char* plain) { return syntax == plain; })) {
        parsed = Parsed(bytes, DcmXfer(syntax.c_str()).getXfer());
    }
    if (!parsed) {
        throw Nonsense();
    }
    return parsed;
}

void Archive_Association::Release() {
    is_associated = false;
    watch.Patience_Set(GOODBYE_PATIENCE, false);
    watch.Room_Set(ROOM_BESIDES);
    ASC_releaseAssociation(association.get());
}

std::string Status_Text(int status) {
    constexpr int class_mask = 0xF000;
    constexpr int family_mask = 0xFF00;
    std::string meaning = "it gives no reason";
    if ((status & family_mask) == 0xA700) {
        meaning = "it has no room, or no time";
    } else if ((status & family_mask) == 0xA900) {
        meaning = "what was sent does not fit its kind";
    } else if (status == 0xA801) {
        meaning = "it does not know where to send to";
    } else if ((status & class_mask) == 0xC000) {
        meaning = "it cannot process that";
    } else if (status == 0x0122) {
        meaning = "it does not take this kind of object";
    } else if (status == 0x0124) {
        meaning = "this program is not allowed to";
    } else if (status == 0x0110) {
        meaning = "it failed";
    } else if (status == 0xFE00) {
        meaning = "it gave up";
    } else if ((status & class_mask) == 0xB000) {
        meaning = "with a warning";
    }
    std::array<char, 8> digits{};
    std::snprintf(digits.data(), digits.size(), "%04X", static_cast<unsigned>(status) & 0xFFFFU);
    return meaning + " (" + digits.data() + ")";
}

std::string Status_Text(const Archive_Message& message) {
    const std::string comment = message.Text(DCM_ErrorComment);
    const std::string text = Status_Text(message.Number(DCM_Status));
    return comment.empty() ? text : text + ": " + volumes::Printable_Text(comment, volumes::FIELD_SHOWN_MOST);
}

}  // namespace workbench::archive
