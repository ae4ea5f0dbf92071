/** The histograms of images that were opened: counted while the images are shown and worked on already. */
#pragma once

#include <functional>
#include <string>

#include "workbench/frame_counter.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/workspace.h"
#include "workbench/report.h"
#include "workbench/volume_objects.h"

namespace workbench {

/** What it works on, and what it asks of the application. All outlive it. */
struct Counting_Parts {
    Workspace& work;
    Volume_Objects& objects;
    Dialogs& dialogs;
    Report& report;
    std::function<void(int ms)> look_after;            ///< calls Look again and again; 0: no more
    std::function<std::string()> message;              ///< what the status line says, UTF-8
    std::function<void(const std::string&)> progress;  ///< says something else there
    std::function<std::string()> numbers;              ///< of what the histogram counts, in one line
    std::function<void()> scale_suggest;               ///< of the histogram, whose counts were missing until now
};

class Histogram_Counting {
  public:
    explicit Histogram_Counting(Counting_Parts parts) : of(std::move(parts)) {}

    /** Counts all volumes that were opened. @param text about them; stays in the status line until another text comes
     */
    void Begin(const std::string& text);
    /** Must be called before volumes go: nothing of them is used when it returns. */
    void Cancel();
    /** Tells how far it is, and hands over what is counted. */
    void Look();
    bool Is_Busy() const { return counter.Is_Busy(); }

  private:
    /** Tells that there is not enough memory; nothing is coming any more. */
    void Fail();
    /** Whether the status line says still what was said here last. */
    bool Is_Line_Own() const { return of.message() == said; }

    Counting_Parts of;
    std::string opened_text;
    std::string said;
    Frame_Counter counter;
};

}  // namespace workbench
