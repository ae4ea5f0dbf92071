#include "workbench/archive/archive_association.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "dcmtk/dcmnet/assoc.h"

namespace workbench::archive {

Archive_Association::Archive_Association(const Archive_Settings& archive, Connection_Watch& its_watch,
                                         T_ASC_Network& listening, std::span<const Proposal> taken,
                                         Watched_Layer::Welcome its_welcome)
    : settings(archive), watch(its_watch), layer(its_watch, std::move(its_welcome)) {
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
    // Whoever was waiting may have gone, and then the toolkit would wait for another: in the one way, or in the other.
    Socket_Unblock(DUL_networkSocket(listening.network));
    T_ASC_Association* made = nullptr;
    OFCondition condition =
        ASC_receiveAssociation(&listening, &made, ASC_MAXIMUMPDUSIZE, nullptr, nullptr, OFFalse, DUL_NOBLOCK, 0);
    association.reset(made);
    if (condition.bad() || made == nullptr) {
        throw Failure(condition);
    }
    is_associated = true;
    if (const std::optional<T_ASC_RejectParametersReason> doubt = Doubt_Of_Caller()) {
        const T_ASC_RejectParameters rejection = {ASC_RESULT_REJECTEDPERMANENT, ASC_SOURCE_SERVICEUSER, *doubt};
        ASC_rejectAssociation(made, &rejection);
        is_associated = false;
        throw Failure_Of(Archive_Fault::Refused, "Somebody else was refused.");
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

}  // namespace workbench::archive
