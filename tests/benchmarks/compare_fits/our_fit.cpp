#include <cmath>
#include <string>
#include <string_view>

#include "histogram/tool_histo.h"
#include "histogram/tool_histo_peak.h"
#include "kits/common/messages.h"
#include "tests/benchmarks/compare_fits/fit_problem.h"

namespace {

constexpr int LEVEL_WARNING = 2;

/** What the fit says about itself. */
struct Story {
    struct Candidate {
        int bin;
        bool is_by_zero;
    };
    std::vector<Candidate> candidates;
    int iterations = 0;
    bool is_warned = false;
};

void Listen(void* context, HWND /*window*/, int level, const char* text) {
    auto& story = *static_cast<Story*>(context);
    const std::string plain = Message_Plain(text);
    constexpr std::string_view by_zero = "Locate a peak with zero at x = ";
    constexpr std::string_view by_data = "Locate a peak with data at x = ";
    if (plain.starts_with(by_zero)) {
        story.candidates.push_back({std::stoi(plain.substr(by_zero.size())), true});
    } else if (plain.starts_with(by_data)) {
        story.candidates.push_back({std::stoi(plain.substr(by_data.size())), false});
    } else if (plain.starts_with("++ mse")) {
        ++story.iterations;
    } else if (level == LEVEL_WARNING) {
        story.is_warned = true;
    }
}

class Listening {
  public:
    explicit Listening(Story& story) : listened(story) { Message_Receiver_Add(Listen, &listened, true); }
    ~Listening() { Message_Receiver_Remove(Listen, &listened); }
    Listening(const Listening&) = delete;
    Listening& operator=(const Listening&) = delete;

  private:
    Story& listened;
};

Gaussian Gaussian_Of(const Histo_Peak& peak) {
    Gaussian gaussian{};
    for (int m = 0; m < 3; ++m) {
        gaussian.value[m] = (*peak.param)[m];
        gaussian.low[m] = (*peak.param_min)[m];
        gaussian.high[m] = (*peak.param_max)[m];
    }
    return gaussian;
}

void Start_Set(Histo_Data& histo, const Fit_Problem& problem) {
    histo.Peaks_Free();
    histo.Curves_Free();
    histo.filtered = new double[problem.data.size()];
    std::copy(problem.data.begin(), problem.data.end(), histo.filtered);
    histo.curve_nb = static_cast<int>(problem.data.size());
    Histo_Peak* tail = nullptr;
    for (const Gaussian& start : problem.start) {
        const auto bin = static_cast<int>(std::lround(start.value[0]));
        Histo_Peak* peak = Peak_Gauss_Add(histo, tail, bin, 1.0F, static_cast<float>(start.value[2]));
        (*peak->param)[1] = start.value[1];
    }
}

std::vector<Gaussian> Survivors(const Histo_Data& histo, const std::vector<Gaussian>& start) {
    std::vector<Gaussian> survivors;
    for (const Histo_Peak* peak = histo.peak_first; peak != nullptr; peak = peak->next) {
        for (const Gaussian& candidate : start) {
            if ((*peak->param_min)[0] == candidate.low[0]) {
                survivors.push_back(candidate);
            }
        }
    }
    return survivors;
}

}  // namespace

Fit_Problem Problem_Make(const std::string& name, const std::vector<double>& counts) {
    Fit_Problem problem;
    problem.name = name;
    Histo_Data histo;
    Story story;
    last_zero = 0;
    {
        const Listening listening(story);
        Peak_Fit_Prepare(histo, static_cast<int>(counts.size()), counts.data());
    }
    problem.data.assign(histo.filtered, histo.filtered + counts.size());
    histo.Peaks_Free();
    Histo_Peak* tail = nullptr;
    for (const Story::Candidate& candidate : story.candidates) {
        const Histo_Peak* peak = Peak_Gauss_Add(histo, tail, candidate.bin, candidate.is_by_zero ? 1.0F : 0.25F,
                                                candidate.is_by_zero ? 5.0F : 10.0F);
        problem.start.push_back(Gaussian_Of(*peak));
    }
    // Peaks that the fit drops are no part of the problem: the others do not drop any.
    for (;;) {
        Start_Set(histo, problem);
        Gauss_Newton(histo, static_cast<std::uint16_t>(problem.data.size()), problem.data.data(), problem.change);
        std::vector<Gaussian> survivors = Survivors(histo, problem.start);
        if (survivors.size() == problem.start.size()) {
            return problem;
        }
        problem.start = std::move(survivors);
    }
}

Fit_Outcome Our_Fit(const Fit_Problem& problem) {
    Fit_Outcome outcome{"ours", 0.0, {}, {}};
    Histo_Data histo;
    const auto fit = [&] {
        Start_Set(histo, problem);
        Gauss_Newton(histo, static_cast<std::uint16_t>(problem.data.size()), problem.data.data(), problem.change);
    };
    outcome.seconds = Least_Seconds(fit);
    Story story;
    {
        const Listening listening(story);
        fit();
    }
    for (const Histo_Peak* peak = histo.peak_first; peak != nullptr; peak = peak->next) {
        for (int m = 0; m < 3; ++m) {
            outcome.parameters.push_back((*peak->param)[m]);
        }
    }
    outcome.remark = std::to_string(story.iterations) + " steps" + (story.is_warned ? ", ended with a warning" : "");
    return outcome;
}
