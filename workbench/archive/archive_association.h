/** One association with an archive: what both sides speak of, and the messages of it. */
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdatset.h"
#include "dcmtk/dcmnet/dimse.h"
#include "workbench/archive/archive_connection.h"
#include "workbench/archive/archive_outcome.h"
#include "workbench/archive/archive_settings.h"
#include "workbench/archive/archive_socket.h"

namespace workbench::archive {

/** One thing to speak of. */
struct Proposal {
    std::string sop_class;
    std::vector<const char*> syntaxes;  ///< one of them is chosen by the archive
    bool is_received = false;           ///< objects of the class come in
};

/** Most proposals of one association. */
inline constexpr std::size_t PROPOSAL_MOST = 128;
/** Most bytes of a message besides the object that comes with it: such messages are small. */
inline constexpr std::size_t COMMAND_MOST = 16U * 1024U;
/** The transfer syntaxes that are not compressed, the clearer one first. */
std::vector<const char*> Plain_Syntaxes();

/** Makes the toolkit ready, once. */
void Network_Prepare();

/** A message that came. */
struct Archive_Message {
    T_ASC_PresentationContextID context = 0;
    std::unique_ptr<DcmDataset> command;

    /** @return -1: the message does not say */
    int Number(const DcmTagKey& tag) const;
    std::string Text(const DcmTagKey& tag) const;
    bool Has_Content() const;
};

class Archive_Association {
  public:
    /** Connects and agrees. @throw Archive_Failure */
    Archive_Association(const Archive_Settings& archive, Connection_Watch& its_watch,
                        std::span<const Proposal> proposals);
    /** Takes the connection that waits, of a caller with the archive's title that asks for this program's; others are
     *  told why not. Nobody is waited for. @param taken what it may send @param its_welcome whether a connection may
     *  say a word; empty: every one @throw Archive_Failure */
    Archive_Association(const Archive_Settings& archive, Connection_Watch& its_watch, T_ASC_Network& listening,
                        std::span<const Proposal> taken, Watched_Layer::Welcome its_welcome = {});
    /** Ends without a word where it was not released. */
    ~Archive_Association();
    Archive_Association(const Archive_Association&) = delete;
    Archive_Association& operator=(const Archive_Association&) = delete;

    /** @param syntax empty: any @return 0: the archive does not speak of it */
    T_ASC_PresentationContextID Context_Of(const std::string& sop_class, const std::string& syntax = {}) const;
    /** The transfer syntax and the class that a context was agreed upon for; empty: there is none. */
    std::string Syntax_Of(T_ASC_PresentationContextID context) const;
    std::string Class_Of(T_ASC_PresentationContextID context) const;

    /** A number for the next request. */
    std::uint16_t Message_Number() { return ++message_number; }
    /** @param content may be null @throw Archive_Failure, also below */
    void Send(T_ASC_PresentationContextID context, T_DIMSE_Message& message, DcmDataset* content);
    Archive_Message Receive();
    /** The same, of a caller. @return no value: it has said goodbye */
    std::optional<Archive_Message> Receive_Or_End();
    /** Takes the object that comes with a message, piece by piece. @param most bytes: more is a failure */
    void Receive_Content(const Archive_Message& message, std::uint64_t most,
                         const std::function<void(std::span<const std::uint8_t>)>& sink);
    /** The same as a data set; for small ones. */
    std::unique_ptr<DcmDataset> Receive_Data_Set(const Archive_Message& message, std::size_t most);
    /** Calls a request off, and gives the other side a moment to hear it. Nobody is asked whether to go on any more.
     *  Never fails. */
    void Call_Off(T_ASC_PresentationContextID context, std::uint16_t request);
    /** Where the archive was found that this asked. */
    const Reached& Place() const { return place; }
    /** Says goodbye. Never fails: what was asked for is done. */
    void Release();

    /** What the watch, or else the toolkit, says of a failure. */
    Archive_Failure Failure(const OFCondition& condition) const;

  private:
    static constexpr std::chrono::milliseconds GOODBYE_PATIENCE{1000};
    static constexpr std::chrono::milliseconds CALL_OFF_PATIENCE{200};
    /** Bytes besides those that were asked for: lengths and marks, and a whole piece that is read ahead. */
    static constexpr std::uint64_t ROOM_BESIDES = 2U * ASC_MAXIMUMPDUSIZE;

    struct Network_End {
        void operator()(T_ASC_Network* ended) const;
    };
    struct Parameters_End {
        void operator()(T_ASC_Parameters* ended) const;
    };
    struct Association_End {
        void operator()(T_ASC_Association* ended) const;
    };

    /** @return the address with its port */
    std::string Reach();
    void Accept(T_ASC_Network& listening, std::span<const Proposal> taken);
    /** @return no value: it may speak */
    std::optional<T_ASC_RejectParametersReason> Doubt_Of_Caller() const;
    void Request(const std::string& address, std::span<const Proposal> proposals);
    Archive_Failure Rejection() const;
    Archive_Failure Nonsense() const;
    /** What this side could not do, or what its system says. */
    std::optional<Archive_Failure> Own_Failure(const OFCondition& condition) const;
    void Pieces_Receive(DUL_DATAPDV kind, T_ASC_PresentationContextID& context, std::uint64_t most,
                        const std::function<void(std::span<const std::uint8_t>)>& sink);

    const Archive_Settings& settings;
    Connection_Watch& watch;
    Watched_Layer layer;
    Reached place;
    std::unique_ptr<T_ASC_Network, Network_End> network;
    std::unique_ptr<T_ASC_Association, Association_End> association;
    std::uint16_t message_number = 0;
    bool has_said_goodbye = false;  ///< the caller
    bool is_associated = false;
};

/** "it has no room (A700)", "it does not know this kind of object (0122)": what a status that is no success means. */
std::string Status_Text(int status);
/** The same, and the archive's own words where a message has some. */
std::string Status_Text(const Archive_Message& message);

}  // namespace workbench::archive
