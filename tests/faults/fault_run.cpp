#include "tests/faults/fault_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <utility>

#include "tests/faults/fault_gate.h"
#include "tests/faults/gui_objects.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace {

// The panels' module comes first.
const std::vector<std::string> MODULES = {"Kit_Panels.dll", "Kit_Widgets.dll", "Kit_Graph.dll", "Kit_Dataset.dll",
                                          "Kit_Common.dll"};
// A place in a loop calls the same function again and again; so many of its first calls fail, and its last one. Every
// allocation of the panels' module fails.
constexpr std::size_t OWN_CALLS_OF_A_PLACE = 3;
constexpr std::size_t KIT_CALLS_OF_A_PLACE = 1;
constexpr std::size_t KIT_ALLOCATIONS_OF_A_PLACE = 6;
// All of them take minutes: without the environment variable an operation has this many failures, spread evenly.
constexpr const char* ALL_VARIABLE = "KIT_FAULTS_ALL";
constexpr std::size_t SAMPLE_NB = 12;
constexpr int REPORTS_OF_AN_OPERATION = 6;

std::vector<Fault_Row>& Rows() {
    static std::vector<Fault_Row> rows;
    return rows;
}

std::string running;  // what to name when the process dies

LONG WINAPI On_Crash(EXCEPTION_POINTERS* what) {
    std::fprintf(stderr, "crash %08lx in: %s\n", what->ExceptionRecord->ExceptionCode, running.c_str());
    std::fflush(stderr);
    return EXCEPTION_EXECUTE_HANDLER;
}

struct Holdings {
    long blocks = 0;
    int gdi = 0;
    int windows = 0;
    static Holdings Now() { return {Fault_Gate::Live_Block_Nb(), Gdi_Object_Nb(), Window_Nb()}; }
    /** More than before; what is kept for later may have been dropped. */
    bool Exceeds(const Holdings& other) const {
        return blocks > other.blocks || gdi > other.gdi || windows > other.windows;
    }
    std::string Text() const {
        return std::to_string(blocks) + " blocks, " + std::to_string(gdi) + " GDI objects, " + std::to_string(windows) +
               " windows";
    }
};

struct Run_Result {
    bool happened = false;
    bool escaped = false;
    Window_Picture picture;
};

Run_Result Run_Once(const Fault_Subject& subject, const Fault_Operation& operation, int n, bool keep_calls) {
    Run_Result result;
    subject.build();
    if (operation.before) {
        operation.before();
    }
    Fault_Gate::Arm(n, keep_calls);
    try {
        operation.act();
    } catch (...) {
        result.escaped = true;
    }
    Fault_Gate::Disarm();
    result.happened = Fault_Gate::Happened();
    subject.settle();
    result.picture = subject.picture();
    subject.end();
    return result;
}

/** Where two pictures differ. */
std::string Difference(const Window_Picture& a, const Window_Picture& b) {
    int nb = 0;
    int left = a.width;
    int right = -1;
    int top = a.height;
    int bottom = -1;
    for (int y = 0; y < a.height; y++) {
        for (int x = 0; x < a.width; x++) {
            if (a.At(x, y) != b.At(x, y)) {
                nb++;
                left = std::min(left, x);
                right = std::max(right, x);
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
        }
    }
    return std::to_string(nb) + " pixels in columns " + std::to_string(left) + " to " + std::to_string(right) +
           ", rows " + std::to_string(top) + " to " + std::to_string(bottom);
}

/** The numbers (from 1) of the calls that are to fail. */
std::vector<int> Chosen(const std::vector<Fault_Call>& calls) {
    std::map<std::pair<int, const void*>, std::vector<int>> places;
    for (std::size_t i = 0; i < calls.size(); i++) {
        places[{calls[i].function, calls[i].from}].push_back(static_cast<int>(i));
    }
    std::set<int> chosen;
    for (const auto& [place, numbers] : places) {
        const Fault_Call& first = calls[static_cast<std::size_t>(numbers.front())];
        const bool own = first.module == 0;
        const std::size_t most = own ? (first.is_allocation ? calls.size() : OWN_CALLS_OF_A_PLACE)
                                     : (first.is_allocation ? KIT_ALLOCATIONS_OF_A_PLACE : KIT_CALLS_OF_A_PLACE);
        for (std::size_t i = 0; i < most && i < numbers.size(); i++) {
            chosen.insert(numbers[i] + 1);
        }
        chosen.insert(numbers.back() + 1);
    }
    std::vector<int> all(chosen.begin(), chosen.end());
    static const bool at_length = std::getenv(ALL_VARIABLE) != nullptr;
    if (at_length || all.size() <= SAMPLE_NB) {
        return all;
    }
    std::vector<int> sample;
    for (std::size_t i = 0; i < SAMPLE_NB; i++) {
        sample.push_back(all[i * all.size() / SAMPLE_NB]);
    }
    return sample;
}

Fault_Row Run_Operation(const std::string& panel, const Fault_Subject& subject, const Fault_Operation& operation) {
    Fault_Row row;
    row.panel = panel;
    row.operation = operation.name;
    running = panel + ", " + operation.name;
    // What libraries keep for the whole process is made by the first runs.
    Run_Once(subject, operation, 0, false);
    Run_Once(subject, operation, 0, false);
    const Run_Result plain = Run_Once(subject, operation, 0, true);
    const std::vector<Fault_Call> calls = Fault_Gate::Calls();
    Holdings held = Holdings::Now();
    int reports = 0;
    const auto report = [&](const std::string& text) {
        if (++reports <= REPORTS_OF_AN_OPERATION) {
            ADD_FAILURE() << running << ": " << text;
        }
    };
    for (const int n : Chosen(calls)) {
        const Fault_Call& call = calls[static_cast<std::size_t>(n) - 1];
        running = panel + ", " + operation.name + ", call " + std::to_string(n) + " " + Fault_Gate::Name(call);
        const Run_Result result = Run_Once(subject, operation, n, false);
        if (!result.happened) {
            row.unmet++;
            if (!operation.may_vary) {
                report("the call was not reached again");
            }
            continue;
        }
        (call.module != 0 ? row.kit_calls : call.is_allocation ? row.allocations : row.calls)++;
        row.failed++;
        if (result.escaped) {
            row.escaped++;
            report("an exception left the panel");
        }
        if (result.picture == plain.picture) {
            row.same_picture++;
        } else if (!operation.may_lose) {
            report("the panel looks different afterwards: " + Difference(plain.picture, result.picture));
        }
        Holdings now = Holdings::Now();
        if (now.Exceeds(held)) {
            // What is kept for the process may just have grown: what leaks, leaks again.
            Run_Once(subject, operation, n, false);
            const Holdings again = Holdings::Now();
            if (again.Exceeds(now)) {
                row.leaks++;
                report("leaks: " + now.Text() + " instead of " + held.Text());
            }
            now = again;
        }
        held = now;
    }
    std::printf("  %-14s %-34s %4d %4d %5d  same %d of %d\n", panel.c_str(), operation.name.c_str(), row.allocations,
                row.calls, row.kit_calls, row.same_picture, row.failed);
    std::fflush(stdout);
    return row;
}

}  // namespace

void Faults_Run(const std::string& panel, const Fault_Subject& subject,
                const std::vector<Fault_Operation>& operations) {
    ::SetUnhandledExceptionFilter(On_Crash);
    const Fault_Gate gate(MODULES);
    for (const Fault_Operation& operation : operations) {
        Rows().push_back(Run_Operation(panel, subject, operation));
    }
}

Fault_Row Faults_Run_One(const std::string& panel, const Fault_Subject& subject, const Fault_Operation& operation) {
    const Fault_Gate gate(MODULES);
    return Run_Operation(panel, subject, operation);
}

std::string Fault_Table() {
    std::string text =
        "| Panel | Operation | Allocations | Calls | Kits' calls | Failures survived | Same picture afterwards | "
        "Leaks |\n|---|---|---|---|---|---|---|---|\n";
    Fault_Row sum;
    const auto add = [&text](const Fault_Row& row) {
        char line[400] = {};
        std::snprintf(line, sizeof line, "| %s | %s | %d | %d | %d | %d of %d | %d | %d |\n", row.panel.c_str(),
                      row.operation.c_str(), row.allocations, row.calls, row.kit_calls, row.failed - row.escaped,
                      row.allocations + row.calls + row.kit_calls, row.same_picture, row.leaks);
        text += line;
    };
    for (const Fault_Row& row : Rows()) {
        add(row);
        sum.allocations += row.allocations;
        sum.calls += row.calls;
        sum.kit_calls += row.kit_calls;
        sum.failed += row.failed;
        sum.same_picture += row.same_picture;
        sum.leaks += row.leaks;
        sum.escaped += row.escaped;
    }
    sum.panel = "all";
    add(sum);
    return text;
}
