#include "workbench/model/activity_log.h"

#include <algorithm>

namespace workbench {

void Activity_Log::Add(std::string_view line) {
    Kept_Line& kept = lines[added % ACTIVITY_LINES];
    kept.size = std::min(line.size(), kept.text.size());
    while (kept.size < line.size() && kept.size > 0 && (static_cast<unsigned char>(line[kept.size]) & 0xC0U) == 0x80U) {
        --kept.size;  // not within a letter
    }
    std::ranges::transform(line.substr(0, kept.size), kept.text.begin(),
                           [](char unit) { return unit == '\n' || unit == '\r' ? ' ' : unit; });
    ++added;
}

std::string_view Activity_Log::Line(std::size_t index) const {
    const Kept_Line& kept = lines[(added < ACTIVITY_LINES ? index : added + index) % ACTIVITY_LINES];
    return {kept.text.data(), kept.size};
}

}  // namespace workbench
