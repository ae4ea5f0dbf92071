/** Runs an operation of a panel once for every call in it that can fail, with exactly that call failing, and looks at
 *  what is left of the panel, of memory and of the window system's objects. */
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/support/window_picture.h"

/** A panel with its host's data. Every run builds it, lets it do one operation, and ends it. */
struct Fault_Subject {
    std::function<void()> build;  ///< host's data and a panel that was laid out, updated and drawn
    /** The host puts right what is the host's, and shows the panel again by Resize, Update and Draw. */
    std::function<void()> settle;
    std::function<Window_Picture()> picture;
    std::function<void()> end;
};

struct Fault_Operation {
    std::string name;
    std::function<void()> act;
    /** The panel keeps for good what it could not get (its buttons): afterwards it only has to answer. */
    bool may_lose = false;
    /** What makes the operation possible, without faults. */
    std::function<void()> before = nullptr;
    /** Timers decide how often it paints, so a call of one run may be missing in the next. */
    bool may_vary = false;
};

/** One line of the table. */
struct Fault_Row {
    std::string panel;
    std::string operation;
    int allocations = 0;   ///< of the panels' module, each failed once
    int calls = 0;         ///< of the panels' module
    int kit_calls = 0;     ///< of the kits on the panel's behalf, allocations included
    int failed = 0;        ///< runs with a failure
    int unmet = 0;         ///< calls that were not made again
    int same_picture = 0;  ///< runs after which the panel shows what a panel without a failure shows
    int leaks = 0;
    int escaped = 0;  ///< exceptions that left the panel
};

/** Runs them all; every defect is also a failure of the running test. */
void Faults_Run(const std::string& panel, const Fault_Subject& subject, const std::vector<Fault_Operation>& operations);

/** One operation; leaves no row behind. */
Fault_Row Faults_Run_One(const std::string& panel, const Fault_Subject& subject, const Fault_Operation& operation);

/** The rows of every panel so far, as a table. */
std::string Fault_Table();
