#include "workbench/analysis/fit_log.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace workbench {

namespace {

constexpr int LEVEL_WARNING = 2;
constexpr int LEVEL_STEP = 11;
constexpr char STYLE_BYTE = '\xF1';

/** The text without style bytes. */
std::string Plain(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == STYLE_BYTE) {
            ++i;  // its style byte
        } else if (static_cast<unsigned char>(text[i]) >= ' ') {
            plain += text[i];
        }
    }
    return plain;
}

/** The rest of `text` behind `begin`; false when it does not begin so. */
bool Behind(std::string_view text, std::string_view begin, std::string& rest) {
    if (text.substr(0, begin.size()) != begin) {
        return false;
    }
    rest = text.substr(begin.size());
    return true;
}

/** The number that a text begins with; 0 when it begins with none. */
int Whole_Number(const char* text) {
    return static_cast<int>(std::strtol(text, nullptr, 10));
}

}  // namespace

void Fit_Log::Clear() {
    *this = Fit_Log();
}

void Fit_Log::Drop(double centre, std::string_view reason) {
    // A centre moves at most a bin or two from where it was found: the nearest candidate that still stands is meant.
    Fit_Candidate* nearest = nullptr;
    double distance = std::numeric_limits<double>::max();
    for (Fit_Candidate& candidate : candidates) {
        const double away = std::abs(candidate.bin - centre);
        if (candidate.dropped.empty() && away < distance) {
            distance = away;
            nearest = &candidate;
        }
    }
    if (nearest != nullptr) {
        nearest->dropped = reason;
        nearest->dropped_at = centre;
    }
}

void Fit_Log::Add(int level, std::string_view text) {
    if (level == LEVEL_WARNING) {
        warnings.push_back(Plain(text));
        return;
    }
    if (level != LEVEL_STEP) {
        return;
    }
    std::string rest;
    if (Behind(text, "Locate a peak with zero at x = ", rest)) {
        candidates.push_back({Whole_Number(rest.c_str()), true, {}, 0.0});
    } else if (Behind(text, "Locate a peak with data at x = ", rest)) {
        candidates.push_back({Whole_Number(rest.c_str()), false, {}, 0.0});
    } else if (Behind(text, "******* Delete peak at ", rest)) {
        const std::size_t colon = rest.find(": ");
        Drop(std::strtod(rest.c_str(), nullptr), colon == std::string::npos ? "deleted" : rest.substr(colon + 2));
    } else if (Behind(text, "++ ", rest)) {
        iterations.push_back(rest);
    } else if (Behind(text, "  -> Stop after ", rest)) {
        stop = "Stop after " + Plain(rest);
    } else if (Behind(text, "loop:", rest)) {
        ++passes;
        const std::size_t colon = rest.rfind(':');
        last_maxima = colon == std::string::npos ? 0 : Whole_Number(rest.c_str() + colon + 1);
    }
}

std::vector<std::string> Fit_Log::Lines() const {
    std::vector<std::string> lines;
    char line[512];
    if (passes > 0) {
        std::snprintf(line, sizeof line, "Derivative method: %d smoothing %s, %d %s left", passes,
                      passes == 1 ? "pass" : "passes", last_maxima, last_maxima == 1 ? "maximum" : "maxima");
        lines.emplace_back(line);
    }
    for (const Fit_Candidate& candidate : candidates) {
        const char* source = candidate.by_zero ? "zero crossing of the derivative" : "maximum of the data";
        if (candidate.dropped.empty()) {
            std::snprintf(line, sizeof line, "Candidate at bin %d (%s): kept", candidate.bin, source);
        } else {
            std::snprintf(line, sizeof line, "Candidate at bin %d (%s): dropped at %.2f, %s", candidate.bin, source,
                          candidate.dropped_at, candidate.dropped.c_str());
        }
        lines.emplace_back(line);
    }
    int number = 0;
    for (const std::string& iteration : iterations) {
        std::snprintf(line, sizeof line, "Iteration %d: %s", number++, iteration.c_str());
        lines.emplace_back(line);
    }
    lines.insert(lines.end(), warnings.begin(), warnings.end());
    if (!stop.empty()) {
        lines.push_back(stop);
    }
    return lines;
}

}  // namespace workbench
