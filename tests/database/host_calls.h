/** What a view asks of the host and tells it, call by call: the program's imports from the host's module are watched.
 */
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "host/kit_dataset.h"
#include "tests/support/import_hook.h"

using Calls = std::vector<std::string>;

/** One at a time. Flags are read and written, frames made current and iterators opened as ever; updates and redraws are
 *  only written down. */
class Host_Calls {
  public:
    Host_Calls();
    ~Host_Calls();
    Host_Calls(const Host_Calls&) = delete;
    Host_Calls& operator=(const Host_Calls&) = delete;

    /** How an object or window is called in the log. */
    void Name(const void* object, const std::string& name) { names[object] = name; }
    /** The calls since the last Take. */
    Calls Take();
    /** While it is off nothing is written down. */
    void Listen(bool on) { listening = on; }

    /** Called inside Fct_Update, as a host that answers at once does; not while it is running. */
    std::function<void(unsigned __int64)> on_update;

    // For the watched functions.
    void Add(const std::string& call);
    std::string Name_Of(const void* object) const;
    void Answer(unsigned __int64 flags);
    static Host_Calls* current;

  private:
    std::map<const void*, std::string> names;
    Calls calls;
    bool listening = true;
    bool answering = false;
    std::vector<Import_Hook> hooks;
};
