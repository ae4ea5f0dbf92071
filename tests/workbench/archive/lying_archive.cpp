#include "tests/workbench/archive/lying_archive.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "dcmtk/oflog/oflog.h"
#include "dcmtk/ofstd/ofstd.h"
#include "tests/workbench/archive/archive_server.h"

using namespace workbench::archive;

namespace {

constexpr int WAIT_US = 20000;

bool Is_Readable(int socket) {
    fd_set set;
    FD_ZERO(&set);
    FD_SET(socket, &set);
    timeval patience = {0, WAIT_US};
    return ::select(socket + 1, &set, nullptr, nullptr, &patience) > 0;
}

Archive_Settings Settings_At(int port) {
    Archive_Settings settings;
    settings.name = "Liar";
    settings.host = "127.0.0.1";
    settings.port = port;
    settings.called_title = "LIAR";
    settings.times.associate = std::chrono::milliseconds(2000);
    settings.times.silence = std::chrono::milliseconds(2000);
    return settings;
}

}  // namespace

Raw_Peer::Raw_Peer(std::function<void(int)> its_script) : script(std::move(its_script)) {
    listening = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const bool is_listening = ::bind(listening, reinterpret_cast<const sockaddr*>(&address), size) == 0 &&
                              ::getsockname(listening, reinterpret_cast<sockaddr*>(&address), &size) == 0 &&
                              ::listen(listening, 8) == 0;
    port = is_listening ? ntohs(address.sin_port) : 0;
    thread = std::thread([this] { Run(); });
}

Raw_Peer::~Raw_Peer() {
    is_ended = true;
    thread.join();
    ::close(listening);
}

void Raw_Peer::Run() {
    while (!is_ended) {
        if (!Is_Readable(listening)) {
            continue;
        }
        const int socket = ::accept(listening, nullptr, nullptr);
        while (!is_ended && !Is_Readable(socket)) {
        }
        char first = 0;
        if (::recv(socket, &first, 1, MSG_PEEK) == 1) {
            script(socket);
        }
        ::close(socket);
    }
}

Archive_Settings Raw_Peer::Settings() const {
    return Settings_At(port);
}

Lying_Archive::Lying_Archive(std::function<void(Talk&)> its_script) : script(std::move(its_script)) {
    OFStandard::initializeNetwork();
    OFLog::configure(OFLogger::OFF_LOG_LEVEL);
    port = Free_Port();
    ASC_initializeNetwork(NET_ACCEPTOR, port, 1, &network);
    thread = std::thread([this] { Run(); });
}

Lying_Archive::~Lying_Archive() {
    is_ended = true;
    thread.join();
    ASC_dropNetwork(&network);
}

Archive_Settings Lying_Archive::Settings() const {
    return Settings_At(port);
}

void Lying_Archive::Run() {
    while (!is_ended) {
        if (!ASC_associationWaiting(network, 0)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            continue;
        }
        T_ASC_Association* association = nullptr;
        if (ASC_receiveAssociation(network, &association, ASC_DEFAULTMAXPDU).good()) {
            Serve(association);
        }
        if (association != nullptr) {
            ASC_dropSCPAssociation(association, 1);
            ASC_destroyAssociation(&association);
        }
    }
}

void Lying_Archive::Serve(T_ASC_Association* association) {
    const char* syntaxes[] = {UID_LittleEndianExplicitTransferSyntax};
    for (int at = 0; at < ASC_countPresentationContexts(association->params); ++at) {
        T_ASC_PresentationContext proposed;
        ASC_getPresentationContext(association->params, at, &proposed);
        const char* classes[] = {proposed.abstractSyntax};
        ASC_acceptContextsWithPreferredTransferSyntaxes(association->params, classes, 1, syntaxes, 1,
                                                        ASC_SC_ROLE_DEFAULT);
    }
    Talk talk = {association, 0, {}};
    if (ASC_acknowledgeAssociation(association).bad() ||
        DIMSE_receiveCommand(association, DIMSE_NONBLOCKING, 5, &talk.context, &talk.request, nullptr).bad()) {
        return;
    }
    DcmDataset* keys = nullptr;
    T_ASC_PresentationContextID context = 0;
    if (talk.request.CommandField != DIMSE_C_ECHO_RQ) {
        DIMSE_receiveDataSetInMemory(association, DIMSE_NONBLOCKING, 5, &context, &keys, nullptr, nullptr);
    }
    delete keys;
    script(talk);
    // Until the other side goes.
    T_DIMSE_Message message;
    DIMSE_receiveCommand(association, DIMSE_NONBLOCKING, 5, &context, &message, nullptr);
    ASC_acknowledgeRelease(association);
}

void Lying_Archive::Talk::Answer(int status, DcmDataset* content, int completed, int failed) {
    T_DIMSE_Message message = {};
    const T_DIMSE_DataSetType kind = content != nullptr ? DIMSE_DATASET_PRESENT : DIMSE_DATASET_NULL;
    switch (request.CommandField) {
        case DIMSE_C_FIND_RQ:
            message.CommandField = DIMSE_C_FIND_RSP;
            message.msg.CFindRSP.MessageIDBeingRespondedTo = request.msg.CFindRQ.MessageID;
            message.msg.CFindRSP.DimseStatus = static_cast<DIC_US>(status);
            message.msg.CFindRSP.DataSetType = kind;
            break;
        case DIMSE_C_GET_RQ:
            message.CommandField = DIMSE_C_GET_RSP;
            message.msg.CGetRSP.MessageIDBeingRespondedTo = request.msg.CGetRQ.MessageID;
            message.msg.CGetRSP.DimseStatus = static_cast<DIC_US>(status);
            message.msg.CGetRSP.DataSetType = kind;
            if (completed >= 0) {
                message.msg.CGetRSP.NumberOfCompletedSubOperations = static_cast<DIC_US>(completed);
                message.msg.CGetRSP.opts |= O_GET_NUMBEROFCOMPLETEDSUBOPERATIONS;
            }
            if (failed >= 0) {
                message.msg.CGetRSP.NumberOfFailedSubOperations = static_cast<DIC_US>(failed);
                message.msg.CGetRSP.opts |= O_GET_NUMBEROFFAILEDSUBOPERATIONS;
            }
            break;
        case DIMSE_C_MOVE_RQ:
            message.CommandField = DIMSE_C_MOVE_RSP;
            message.msg.CMoveRSP.MessageIDBeingRespondedTo = request.msg.CMoveRQ.MessageID;
            message.msg.CMoveRSP.DimseStatus = static_cast<DIC_US>(status);
            message.msg.CMoveRSP.DataSetType = kind;
            if (completed >= 0) {
                message.msg.CMoveRSP.NumberOfCompletedSubOperations = static_cast<DIC_US>(completed);
                message.msg.CMoveRSP.opts |= O_MOVE_NUMBEROFCOMPLETEDSUBOPERATIONS;
            }
            if (failed >= 0) {
                message.msg.CMoveRSP.NumberOfFailedSubOperations = static_cast<DIC_US>(failed);
                message.msg.CMoveRSP.opts |= O_MOVE_NUMBEROFFAILEDSUBOPERATIONS;
            }
            break;
        case DIMSE_C_ECHO_RQ:
            message.CommandField = DIMSE_C_ECHO_RSP;
            message.msg.CEchoRSP.MessageIDBeingRespondedTo = request.msg.CEchoRQ.MessageID;
            message.msg.CEchoRSP.DimseStatus = static_cast<DIC_US>(status);
            message.msg.CEchoRSP.DataSetType = kind;
            break;
        default:
            message.CommandField = DIMSE_C_STORE_RSP;
            message.msg.CStoreRSP.MessageIDBeingRespondedTo = request.msg.CStoreRQ.MessageID;
            message.msg.CStoreRSP.DimseStatus = static_cast<DIC_US>(status);
            message.msg.CStoreRSP.DataSetType = kind;
            break;
    }
    DIMSE_sendMessageUsingMemoryData(association, context, &message, nullptr, content, nullptr, nullptr);
}

namespace {

void Pieces_Send(T_ASC_Association& association, T_ASC_PresentationContextID context, DUL_DATAPDV kind,
                 std::vector<unsigned char> bytes) {
    constexpr std::size_t piece_most = 8192;
    for (std::size_t at = 0; at < bytes.size(); at += piece_most) {
        const std::size_t size = std::min(piece_most, bytes.size() - at);
        DUL_PDV piece = {};
        piece.fragmentLength = static_cast<unsigned long>(size);
        piece.presentationContextID = context;
        piece.pdvType = kind;
        piece.lastPDV = at + size == bytes.size() ? OFTrue : OFFalse;
        piece.data = bytes.data() + at;
        DUL_PDVLIST pieces = {};
        pieces.count = 1;
        pieces.pdv = &piece;
        DUL_WritePDVs(&association.DULassociation, &pieces);
    }
}

}  // namespace

void Lying_Archive::Talk::Answer_Raw(std::vector<unsigned char> bytes) {
    const bool is_get = request.CommandField == DIMSE_C_GET_RQ;
    const int answered = is_get ? request.msg.CGetRQ.MessageID : request.msg.CFindRQ.MessageID;
    std::vector<unsigned char> command;
    const auto append = [&](int element, int value) {
        for (const int byte : {0, 0, element & 0xFF, element >> 8, 2, 0, 0, 0, value & 0xFF, value >> 8}) {
            command.push_back(static_cast<unsigned char>(byte));
        }
    };
    append(0x0100, is_get ? DIMSE_C_GET_RSP : DIMSE_C_FIND_RSP);
    append(0x0120, answered);
    append(0x0800, DIMSE_DATASET_PRESENT);
    append(0x0900, 0xFF00);  // there is more to come
    Pieces_Send(*association, context, DUL_COMMANDPDV, command);
    Pieces_Send(*association, context, DUL_DATASETPDV, std::move(bytes));
}

int Lying_Archive::Talk::Store(const std::string& identifier, const Stored_Image& image) {
    const std::string sop_class = UID_MRImageStorage;
    DcmDataset content;
    content.putAndInsertString(DCM_StudyInstanceUID, image.study.c_str());
    content.putAndInsertString(DCM_SeriesInstanceUID, image.series.c_str());
    content.putAndInsertString(DCM_SOPInstanceUID, (image.identifier.empty() ? identifier : image.identifier).c_str());
    content.putAndInsertString(DCM_SOPClassUID, sop_class.c_str());
    content.putAndInsertString(DCM_PatientName, image.patient.c_str());
    T_DIMSE_Message message = {};
    message.CommandField = DIMSE_C_STORE_RQ;
    message.msg.CStoreRQ.MessageID = 77;
    message.msg.CStoreRQ.DataSetType = DIMSE_DATASET_PRESENT;
    OFStandard::strlcpy(message.msg.CStoreRQ.AffectedSOPClassUID, sop_class.c_str(), 65);
    OFStandard::strlcpy(message.msg.CStoreRQ.AffectedSOPInstanceUID, identifier.c_str(), 65);
    const T_ASC_PresentationContextID stored = ASC_findAcceptedPresentationContextID(association, UID_MRImageStorage);
    DIMSE_sendMessageUsingMemoryData(association, stored, &message, nullptr, &content, nullptr, nullptr);
    T_DIMSE_Message answer = {};
    T_ASC_PresentationContextID answered = 0;
    return DIMSE_receiveCommand(association, DIMSE_NONBLOCKING, 5, &answered, &answer, nullptr).good() &&
                   answer.CommandField == DIMSE_C_STORE_RSP
               ? answer.msg.CStoreRSP.DimseStatus
               : -1;
}
