#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/benchmarks/compare_fits/fit_problem.h"

namespace {

namespace fs = std::filesystem;

constexpr int FITYK_FITS = 10;

/** The Gaussians at the start, with their bounds. */
void Model_Write(std::ofstream& out, const Fit_Problem& problem) {
    std::string sum;
    for (std::size_t k = 0; k < problem.start.size(); ++k) {
        const Gaussian& peak = problem.start[k];
        out << "%p" << k << " = Gaussian(";
        for (const int m : {1, 0, 2}) {  // its order: height, centre, half width
            out << (m == 1 ? "" : ", ") << "~" << peak.value[m] << " [" << peak.low[m] << ":" << peak.high[m] << "]";
        }
        out << ")\n";
        sum += (k == 0 ? "" : " + ") + ("%p" + std::to_string(k));
    }
    out << "F = " << sum << "\n";
}

void Script_Write(const fs::path& script, const fs::path& data, const Fit_Problem& problem, const std::string& method,
                  double final_error, bool with_fit) {
    std::ofstream out(script);
    out.precision(17);
    out << "set verbosity=-1\nset default_sigma=one\nset numeric_format='%.15g'\nset function_cutoff=1e-20\n";
    out << "set fitting_method=" << method << "\n";
    const double change = problem.change / final_error;
    out << "set lm_stop_rel_change=" << change << "\nset ftol_rel=" << change << "\nset max_wssr_evaluations=10000\n";
    out << "@0 < '" << data.string() << "'\n";
    // Several times, so that the start of the program and the reading of the file matter less.
    for (int round = 0; round < FITYK_FITS; ++round) {
        Model_Write(out, problem);
        if (with_fit) {
            out << "fit\n";
        }
    }
    for (std::size_t k = 0; k < problem.start.size(); ++k) {
        out << "print %p" << k << ".center, %p" << k << ".height, %p" << k << ".hwhm\n";
    }
}

/** What the program prints. */
std::string Output_Of(const fs::path& script) {
    const std::string command = "cfityk -I -n -q '" + script.string() + "' 2>/dev/null";
    std::string text;
    std::FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return text;
    }
    char part[4096];
    while (std::fgets(part, sizeof part, pipe) != nullptr) {
        text += part;
    }
    ::pclose(pipe);
    return text;
}

}  // namespace

Fit_Outcome Fityk_Fit(const Fit_Problem& problem, const std::string& method, double final_error) {
    const fs::path folder = fs::temp_directory_path() / ("compare_fits_" + std::to_string(::getpid()));
    fs::create_directories(folder);
    {
        std::ofstream out(folder / "curve.dat");
        out.precision(17);
        for (std::size_t bin = 0; bin < problem.data.size(); ++bin) {
            out << bin << " " << problem.data[bin] << "\n";
        }
    }
    Script_Write(folder / "with.fit", folder / "curve.dat", problem, method, final_error, true);
    Script_Write(folder / "without.fit", folder / "curve.dat", problem, method, final_error, false);
    Fit_Outcome outcome{"fityk (" + method + ")", 0.0, {}, "time of its fit command alone"};
    std::string text;
    const double with = Least_Seconds([&] { text = Output_Of(folder / "with.fit"); });
    const double without = Least_Seconds([&] { Output_Of(folder / "without.fit"); });
    outcome.seconds = (with - without) / FITYK_FITS;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream numbers(line);
        double value[3];
        if (numbers >> value[0] >> value[1] >> value[2]) {  // not an echoed command
            outcome.parameters.insert(outcome.parameters.end(), value, value + 3);
        }
    }
    fs::remove_all(folder);
    return outcome;
}
