#include "workbench/report.h"

#include <algorithm>

#include "workbench/wide_text.h"

namespace workbench {

Report::~Report() {
    if (file != nullptr) {
        std::fclose(file);
    }
}

bool Report::Open(const std::string& path) {
    file = ::_wfopen(Wide_Of_Utf8(path).c_str(), L"ab");
    return file != nullptr;
}

void Report::Line(std::string text) {
    if (file == nullptr) {
        return;
    }
    std::ranges::replace(text, '\n', ' ');
    std::fprintf(file, "%s\n", text.c_str());
    std::fflush(file);
}

}  // namespace workbench
