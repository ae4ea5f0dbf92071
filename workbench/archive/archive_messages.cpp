// What goes and comes over an association.
#include "workbench/archive/archive_association.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmnet/assoc.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_stream.h"
#include "workbench/volumes/message_text.h"

namespace workbench::archive {

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

void Archive_Association::Send(T_ASC_PresentationContextID context, T_DIMSE_Message& message, DcmDataset* content) {
    watch.Patience_Set(settings.times.silence, true);
    const OFCondition condition =
        DIMSE_sendMessageUsingMemoryData(association.get(), context, &message, nullptr, content, nullptr, nullptr);
    if (condition.bad()) {
        throw Failure(condition);
    }
}

void Archive_Association::Call_Off(T_ASC_PresentationContextID context, std::uint16_t request) {
    watch.Last_Words_Begin(CALL_OFF_PATIENCE);
    T_DIMSE_Message message = {};
    message.CommandField = DIMSE_C_CANCEL_RQ;
    message.msg.CCancelRQ.MessageIDBeingRespondedTo = request;
    message.msg.CCancelRQ.DataSetType = DIMSE_DATASET_NULL;
    const OFCondition condition =
        DIMSE_sendMessageUsingMemoryData(association.get(), context, &message, nullptr, nullptr, nullptr, nullptr);
    if (condition.good()) {
        // An end that comes at once can overtake it.
        ASC_dataWaiting(association.get(), 1);
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
            // The toolkit closes a connection that it reads from in vain, and then nothing can be called off.
            while (!ASC_dataWaiting(association.get(), 1) && watch.End() == Connection_End::Open) {
            }
            if (watch.End() != Connection_End::Open) {
                throw Failure(DUL_NETWORKCLOSED);
            }
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
            throw Failure_Of(Archive_Fault::Garbled, Archive_Title(settings) + " sends an object of more than " +
                                                         volumes::Size_Text(most) + ".");
        }
        sink({static_cast<const std::uint8_t*>(piece.data), piece.fragmentLength});
        is_last = piece.lastPDV != OFFalse;
    }
}

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
