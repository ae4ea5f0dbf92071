/** Machine-readable lines about what the application does, for scripts that drive it. */
#pragma once

#include <cstdio>
#include <string>

namespace workbench {

/** Appends to a file; without a file it does nothing. Every line is written out at once. */
class Report {
  public:
    Report() = default;
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;
    /** @param path UTF-8 @return false when the file cannot be written */
    bool Open(const std::string& path);
    bool Is_Open() const { return file != nullptr; }
    /** One line; line ends inside become blanks. */
    void Line(std::string text);
    /** "time WHAT MS": milliseconds since the process was made. For any thread, but not for two at once. */
    void Time(const char* what);

  private:
    std::FILE* file = nullptr;
};

}  // namespace workbench
