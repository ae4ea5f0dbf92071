#include "workbench/archive/archive_receiver.h"

#include <algorithm>
#include <chrono>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmnet/assoc.h"
#include "workbench/archive/archive_requests.h"
#include "workbench/archive/archive_socket.h"

namespace workbench::archive {

void Store_Receiver::Network_End::operator()(T_ASC_Network* ended) const {
    ASC_dropNetwork(&ended);
}

Store_Receiver::Store_Receiver(const Archive_Settings& its_archive, Reached its_place, Series_Intake& its_intake)
    : archive(its_archive), place(std::move(its_place)), intake(its_intake) {
    T_ASC_Network* opened = nullptr;
    const auto patience =  // for the first word of whoever connects; the watch ends it when the fetching ends
        std::max(std::chrono::ceil<std::chrono::seconds>(archive.times.associate), std::chrono::seconds(1));
    const OFCondition condition =
        ASC_initializeNetwork(NET_ACCEPTOR, archive.own_port, static_cast<int>(patience.count()), &opened);
    network.reset(opened);
    if (condition.bad()) {
        throw Archive_Failure{
            {Archive_Fault::Settings, "Images cannot be received at port " + std::to_string(archive.own_port) +
                                          ": another program has it, or this one is not allowed to. Choose another own "
                                          "port, and tell whoever looks after the archive."}};
    }
    thread = std::thread([this] { Run(); });
}

void Store_Receiver::End() {
    is_ended = true;
    if (thread.joinable()) {
        thread.join();
    }
    network.reset();
}

void Store_Receiver::Fail(const Archive_Failure& what) {
    if (!is_ended) {
        failure = what;
        has_failed = true;
    }
}

void Store_Receiver::Run() noexcept {
    try {
        while (!is_ended && !has_failed) {
            if (ASC_associationWaiting(network.get(), 0)) {
                Serve();
            } else {
                std::this_thread::sleep_for(WAIT_SLICE / 4);
            }
        }
    } catch (...) {
        failure.emplace();
        failure->outcome.fault = Archive_Fault::Refused;
        failure->outcome.error = "Out of memory.";  // short enough to need none
        has_failed = true;
    }
}

bool Store_Receiver::Is_Welcome(DcmNativeSocketType socket) {
    const Socket_Ends ends = Ends_Of(socket);
    // An archive on this computer may call from another of its addresses, which is this side's then.
    if (ends.peer == place.address || (place.is_own_machine && ends.peer == ends.own)) {
        return true;
    }
    const std::string others = " " + archive.other_callers + " ";
    if (!ends.peer.empty() && others.find(" " + ends.peer + " ") != std::string::npos) {
        return true;
    }
    refused_address = ends.peer;
    return false;
}

void Store_Receiver::Serve() {
    Connection_Watch watch([this](double) { return !is_ended; });
    std::unique_ptr<Archive_Association> caller;
    try {
        caller =
            std::make_unique<Archive_Association>(archive, watch, *network, Stored_Proposals(),
                                                  [this](DcmNativeSocketType socket) { return Is_Welcome(socket); });
    } catch (const Archive_Failure&) {
        return;  // whoever it was: the archive may still come
    }
    try {
        while (true) {
            ++signs;
            const std::optional<Archive_Message> message = caller->Receive_Or_End();
            if (!message) {
                return;
            }
            if (message->Number(DCM_CommandField) != DIMSE_C_STORE_RQ) {
                throw Refusal(Archive_Fault::Garbled, archive, "sends what it was not asked for.");
            }
            intake.Take(*caller, *message, [this] { ++signs; });
        }
    } catch (const Archive_Failure& what) {
        if (what.outcome.fault != Archive_Fault::Lost) {  // it may come again; what is missing is counted at the end
            Fail(what);
        }
    }
}

}  // namespace workbench::archive
