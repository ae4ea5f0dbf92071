// The table of all commands, put together from its parts.
#include <algorithm>
#include <array>
#include <iterator>

#include "workbench/commands/analysis_records.h"
#include "workbench/commands/command_table.h"
#include "workbench/commands/view_records.h"
#include "workbench/commands/work_records.h"

namespace workbench {

namespace {

using records::ANALYSIS_RECORDS;
using records::VIEW_RECORDS;
using records::WORK_RECORDS;

constexpr auto RECORDS = [] {
    std::array<Command_Record, std::size(WORK_RECORDS) + std::size(VIEW_RECORDS) + std::size(ANALYSIS_RECORDS)> all{};
    auto at = std::copy(std::begin(WORK_RECORDS), std::end(WORK_RECORDS), all.begin());
    at = std::copy(std::begin(VIEW_RECORDS), std::end(VIEW_RECORDS), at);
    std::copy(std::begin(ANALYSIS_RECORDS), std::end(ANALYSIS_RECORDS), at);
    return all;
}();

/** In the order of Command, and each with somebody who carries it out. */
constexpr bool Is_Complete() {
    if (RECORDS.size() != COMMAND_NB) {
        return false;
    }
    for (std::size_t at = 0; at < RECORDS.size(); ++at) {
        if (static_cast<std::size_t>(RECORDS[at].command) != at || RECORDS[at].run == nullptr) {
            return false;
        }
    }
    return true;
}
static_assert(Is_Complete(), "a command has no record, or the records stand in another order than the commands");

}  // namespace

std::span<const Command_Record> Command_Records() {
    return RECORDS;
}

}  // namespace workbench
