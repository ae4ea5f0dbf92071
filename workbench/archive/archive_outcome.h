/** How something that was asked of an archive ended. */
#pragma once

#include <string>
#include <utility>

namespace workbench::archive {

enum class Archive_Fault {
    None,
    Cancelled,
    Settings,         ///< cannot be right
    Unknown_Host,     ///< no address for the name
    Nothing_Listens,  ///< the host says so
    Not_Reached,      ///< no answer from the host, or no way to it
    Called_Title,     ///< the archive has another title
    Own_Title,        ///< the archive does not know this program's title
    Encryption,       ///< not agreed upon, or the archive is not trusted
    Refused,          ///< whatever else it refuses
    Silent,           ///< no byte for too long
    Lost,             ///< the connection ended too early
    Garbled,          ///< what came is not the protocol
    Disk,             ///< what came could not be written, what goes could not be read
    Incomplete,       ///< fewer images than promised
};

struct Archive_Outcome {
    Archive_Fault fault = Archive_Fault::None;
    std::string error;  ///< one sentence for the user, UTF-8; empty: it went well

    bool Is_Done() const { return fault == Archive_Fault::None; }
};

/** Thrown within this folder where an operation ends; its operations for others catch it. */
struct Archive_Failure {
    Archive_Outcome outcome;
};

inline Archive_Failure Failure_Of(Archive_Fault fault, std::string text) {
    return {{fault, std::move(text)}};
}

}  // namespace workbench::archive
