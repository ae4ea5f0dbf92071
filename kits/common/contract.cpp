#include "kits/common/contract.h"

#include <algorithm>
#include <new>
#include <string>
#include <vector>

namespace {

bool is_on = false;

std::vector<std::string>& Reported() {
    static std::vector<std::string> texts;
    return texts;
}

}  // namespace

void Contract_Checks_Set(bool on) {
    is_on = on;
    Reported().clear();
}

bool Contract_Checks() {
    return is_on;
}

void Contract_Report(const char* mistake, const char* subject) {
    if (!is_on) {
        return;
    }
    try {
        std::string text = std::string(mistake) + ": " + (subject != nullptr ? subject : "");
        if (std::ranges::find(Reported(), text) != Reported().end()) {
            return;
        }
        Reported().push_back(text);
        Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x05WARNING:\x02 Contract: %s", text.c_str());
    } catch (const std::bad_alloc&) {
        return;  // a check must not be what ends the host
    }
}

int Contract_Report_Nb() {
    return static_cast<int>(Reported().size());
}
