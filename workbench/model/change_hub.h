/** Collects the changes of one event and tells everybody of them once, when it is over. */
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "workbench/model/change.h"

namespace workbench {

/** One round of telling. */
struct Told_Changes {
    Changes changes;
    unsigned long long panel_flags = 0;  ///< UPDATE_*: those of the changes, and what panels have asked for
};

/** Listeners are told stage by stage, in the order of the stages; within one in the order in which they came. What is
 *  noted while they are told makes another round, right after. One thread; told only from within Deliver. */
class Change_Hub {
  public:
    /** Listeners that go on answering each other are stopped after so many rounds; the rest is forgotten. */
    static constexpr int ROUNDS_MOST = 16;

    enum class Stage {
        Derived,  ///< data made of other data; these listeners add what follows to the round that is told
        Panels,
        Views,
        Report
    };
    using Listener = std::function<void(Told_Changes& told)>;

    /** @param pending_begins called when something was noted and nothing was before: Deliver is to be called soon, also
     *  when the event that goes on runs a message loop of its own. Not called from within Deliver. */
    explicit Change_Hub(std::function<void()> pending_begins) : wake(std::move(pending_begins)) {}

    void Listen(Stage stage, Listener listener);
    /** Something has changed. */
    void Note(Changes changes) { Add(changes, Panel_Flags_Of(changes)); }
    /** A panel asks for flags: something has changed that it knows best. */
    void Ask(unsigned long long flags) { Add(Changes_Of_Panel(flags), flags); }
    /** Has an action done once, when everybody knows all that was noted so far. */
    void Then(std::function<void()> action);
    bool Is_Pending() const { return !pending.changes.Is_Empty() || pending.panel_flags != 0 || !after.empty(); }
    bool Is_Delivering() const { return is_delivering; }
    /** Tells of all that was noted; nothing when nothing was, or from within itself. When listeners throw, the others
     *  are told all the same, and what the first one threw is passed on. */
    void Deliver();

  private:
    void Add(Changes changes, unsigned long long flags);
    void Round();

    std::function<void()> wake;
    std::vector<std::pair<Stage, Listener>> listeners;  // in the order in which they are told
    Told_Changes pending;
    std::vector<std::function<void()>> after;
    bool is_delivering = false;
};

/** Derived data: adds changes to the round that is told. */
inline void Add_To(Told_Changes& told, Changes changes) {
    told.changes |= changes;
    told.panel_flags |= Panel_Flags_Of(changes);
}

}  // namespace workbench
