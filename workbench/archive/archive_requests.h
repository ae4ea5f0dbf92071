/** The requests that operations are made of. */
#pragma once

#include <string>

#include "workbench/archive/archive_association.h"
#include "workbench/archive/archive_client.h"

namespace workbench::archive {

inline constexpr int STATUS_SUCCESS = 0x0000;

/** 0xFF00 and 0xFF01: there is more to come. */
inline bool Is_Pending(int status) {
    return status == 0xFF00 || status == 0xFF01;
}

/** 0xBxxx, and two others: done, but. */
inline bool Is_Warning(int status) {
    return (status & 0xF000) == 0xB000 || status == 0x0107 || status == 0x0116;
}

/** A request with nothing in it but its class and number. */
T_DIMSE_Message Request_Of(T_DIMSE_Command command, const std::string& sop_class, std::uint16_t number);

/** Names whom the images of a C-MOVE request go to. */
void Move_Destination_Set(T_DIMSE_Message& request, const std::string& title);

/** A failure of the archive's own doing. */
Archive_Failure Refusal(Archive_Fault fault, const Archive_Settings& archive, const std::string& what);

/** @throw Archive_Failure: a message is no answer of that kind to that request */
void Answer_Demand(const Archive_Settings& archive, const Archive_Message& message, T_DIMSE_Command kind,
                   std::uint16_t request);

/** The outcome of an operation that ends by returning, or throws whatever it likes. */
template <class Operation>
Archive_Outcome Outcome_Of(const Archive_Settings& archive, const Operation& operation) noexcept {
    try {
        try {
            operation();
            return {};
        } catch (const Archive_Failure& failure) {
            return failure.outcome;
        } catch (const std::bad_alloc&) {
            return {Archive_Fault::Refused, Archive_Title(archive) + ": there is not enough memory."};
        } catch (const std::exception& error) {
            return {Archive_Fault::Refused, Archive_Title(archive) + " cannot be asked (" + error.what() + ")."};
        }
    } catch (...) {
        return {Archive_Fault::Refused, "Not enough memory."};  // short enough to need none
    }
}

}  // namespace workbench::archive
