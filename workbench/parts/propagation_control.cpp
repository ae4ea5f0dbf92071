#include "workbench/parts/propagation_control.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "workbench/model/number_text.h"

namespace workbench {

namespace {

constexpr int COUNT_OFFERED = 5;

}  // namespace

int Propagation_Control::Carry(int from, int to) {
    host.stroke_end();
    Propagation_Tags tags;
    std::ranges::copy(values.Tag_Select(), tags.carried.begin());
    std::ranges::copy(values.Tag_Lock(), tags.locked.begin());
    tags.locked[0] = 0;  // see Ink
    const std::size_t carried = work.session.Propagate(kind, from, to, tags);
    if (carried == 0) {
        dialogs.Tell("Nothing to carry: frame " + std::to_string(from + 1) + " shows no selected TAG");
        return 0;
    }
    const double score = Overlap(work.session.Labels().Slice(from), work.session.Labels().Slice(to), tags.carried);
    dialogs.Tell(std::string("Propagated by ") + (kind == Propagation_Kind::Copy ? "copy" : "grow") + " from frame " +
                 std::to_string(from + 1) + " to " + std::to_string(to + 1) + ": " + std::to_string(carried) +
                 " pixels, overlap " + Number_Text(score));
    work.hub.Note(Change::Pixels);
    return static_cast<int>(std::min<std::size_t>(carried, INT_MAX));
}

void Propagation_Control::Propagation_Kind_Set(Propagation_Kind wanted) {
    kind = wanted;
    work.hub.Note(Change::Mode);
    dialogs.Tell(kind == Propagation_Kind::Copy ? "Propagation copies TAGs as they are"
                                                : "Propagation lets TAGs grow to the grey levels of the next frame");
}

void Propagation_Control::Propagate_Repeat(int direction) {
    const int room = direction > 0 ? work.session.Slice_Nb() - 1 - work.slice : work.slice;
    if (room <= 0) {
        dialogs.Tell("There is no frame to propagate to");
        return;
    }
    const auto answer = dialogs.Text_Ask(
        "Repeat propagation",
        "Number of frames (at most " + std::to_string(room) + "):", std::to_string(std::min(room, COUNT_OFFERED)));
    const long wanted = answer ? std::strtol(answer->c_str(), nullptr, 10) : 0;
    if (wanted <= 0) {
        return;
    }
    const int count = static_cast<int>(std::min<long>(wanted, room));
    const int done = host.repeat(count, [&] {
        const bool is_carried = host.panel_step(direction) != 0;
        if (is_carried) {
            host.seen();
        }
        return is_carried;
    });
    dialogs.Tell("Propagated to " + std::to_string(done) + " of " + std::to_string(count) + " frames");
}

}  // namespace workbench
