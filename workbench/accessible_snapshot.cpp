#include "workbench/accessible_snapshot.h"

#include <exception>
#include <map>
#include <mutex>
#include <utility>

namespace workbench {

namespace {

constexpr UINT PATIENCE = 5000;  // milliseconds for a window that is busy

UINT Message_Number() {
    static const UINT number = ::RegisterWindowMessageW(L"Workbench_Accessible_Snapshot");
    return number;
}

struct Question {
    std::mutex guard;
    std::optional<Accessible_Snapshot> answer;
};

/** Questions under way. The message carries a number, not an address: it may come late, or from another program. */
class Questions {
  public:
    WPARAM Begin(const std::shared_ptr<Question>& question) {
        const std::lock_guard lock(guard);
        const WPARAM number = ++last;
        waiting[number] = question;
        return number;
    }
    void End(WPARAM number) {
        const std::lock_guard lock(guard);
        waiting.erase(number);
    }
    std::shared_ptr<Question> Find(WPARAM number) {
        const std::lock_guard lock(guard);
        const auto found = waiting.find(number);
        return found != waiting.end() ? found->second : nullptr;
    }

  private:
    std::mutex guard;
    std::map<WPARAM, std::shared_ptr<Question>> waiting;
    WPARAM last = 0;
};
Questions& Under_Way() {
    static Questions questions;
    return questions;
}

void To_Screen(HWND window, RECT& place) {
    ::MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&place), 2);
}

Accessible_Snapshot Snapshot_Make(HWND window, const Accessible_Source& source) {
    Accessible_Snapshot snapshot;
    snapshot.role = source.role;
    snapshot.name = source.name ? source.name() : L"";
    snapshot.value = source.value ? source.value() : L"";
    ::GetClientRect(window, &snapshot.place);
    To_Screen(window, snapshot.place);
    if (source.parts) {
        snapshot.parts = source.parts();
    }
    for (Accessible_Part& part : snapshot.parts) {
        To_Screen(window, part.place);
    }
    return snapshot;
}

}  // namespace

std::optional<Accessible_Snapshot> Accessible_Snapshot_Ask(HWND window) {
    const auto question = std::make_shared<Question>();
    const WPARAM number = Under_Way().Begin(question);
    DWORD_PTR result = 0;
    ::SendMessageTimeoutW(window, Message_Number(), number, 0, SMTO_ABORTIFHUNG, PATIENCE, &result);
    Under_Way().End(number);
    const std::lock_guard lock(question->guard);
    return std::move(question->answer);
}

bool Accessible_Snapshot_Answer(HWND window, UINT message, WPARAM wparam,
                                const std::shared_ptr<Accessible_Source>& source) {
    if (message != Message_Number()) {
        return false;
    }
    const std::shared_ptr<Question> question = source != nullptr ? Under_Way().Find(wparam) : nullptr;
    if (question != nullptr) {
        try {
            Accessible_Snapshot snapshot = Snapshot_Make(window, *source);
            const std::lock_guard lock(question->guard);
            question->answer = std::move(snapshot);
        } catch (const std::exception&) {
            // There is no answer then.
        }
    }
    return true;
}

}  // namespace workbench
