// The Gaussian fit of 30 peaks on 2,048 bins: plain matrices with one call per value against Gauss_Newton. And fits of
// many peaks on long curves, which the plain way would take minutes for.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "histogram/tool_histo.h"
#include "histogram/tool_histo_peak.h"
#include "tests/benchmarks/peak_memory.h"
#include "tests/benchmarks/ratio.h"

namespace {

constexpr int PEAK_NB = 30;
constexpr int BIN_NB = 2048;
constexpr int ROUNDS = 9;
constexpr double THRESHOLD = 0.1;

using Matrix = std::vector<std::vector<double>>;

struct Start {
    double value[3];
    double low[3];
    double high[3];
};

Matrix Product(const Matrix& a, const Matrix& b) {
    Matrix product(a.size(), std::vector<double>(b[0].size()));
    for (std::size_t row = 0; row < a.size(); ++row) {
        for (std::size_t column = 0; column < b[0].size(); ++column) {
            for (std::size_t k = 0; k < b.size(); ++k) {
                product[row][column] += a[row][k] * b[k][column];
            }
        }
    }
    return product;
}

Matrix Transpose(const Matrix& a) {
    Matrix turned(a[0].size(), std::vector<double>(a.size()));
    for (std::size_t row = 0; row < a.size(); ++row) {
        for (std::size_t column = 0; column < a[0].size(); ++column) {
            turned[column][row] = a[row][column];
        }
    }
    return turned;
}

/** Gauss and Jordan, with the largest pivot of the column. */
Matrix Inverse(Matrix a) {
    const std::size_t n = a.size();
    Matrix inverse(n, std::vector<double>(n));
    for (std::size_t k = 0; k < n; ++k) {
        inverse[k][k] = 1.0;
    }
    for (std::size_t k = 0; k < n; ++k) {
        std::size_t pivot = k;
        for (std::size_t row = k + 1; row < n; ++row) {
            pivot = std::abs(a[row][k]) > std::abs(a[pivot][k]) ? row : pivot;
        }
        std::swap(a[k], a[pivot]);
        std::swap(inverse[k], inverse[pivot]);
        const double divisor = a[k][k];
        for (std::size_t column = 0; column < n; ++column) {
            a[k][column] /= divisor;
            inverse[k][column] /= divisor;
        }
        for (std::size_t row = 0; row < n; ++row) {
            const double factor = a[row][k];
            if (row == k || factor == 0.0) {
                continue;
            }
            for (std::size_t column = 0; column < n; ++column) {
                a[row][column] -= factor * a[k][column];
                inverse[row][column] -= factor * inverse[k][column];
            }
        }
    }
    return inverse;
}

int Fit_Plainly(std::vector<Start>& peaks, const std::vector<double>& data) {
    double previous = 0.0;
    Vector_N param(3, 8);
    int iteration = 0;
    for (; iteration < 10; ++iteration) {
        Matrix jacobian(BIN_NB, std::vector<double>(3 * peaks.size()));
        Matrix residual(BIN_NB, std::vector<double>(1));
        double squares = 0.0;
        for (std::size_t i = 0; i < BIN_NB; ++i) {
            for (std::size_t k = 0; k < peaks.size(); ++k) {
                for (int m = 0; m < 3; ++m) {
                    param[m] = peaks[k].value[m];
                }
                residual[i][0] -= Peak_Value(PEAK_GAUSS, static_cast<double>(i), param);
                for (std::uint8_t m = 0; m < 3; ++m) {
                    jacobian[i][3 * k + m] = Peak_Deriv(PEAK_GAUSS, m, static_cast<double>(i), param);
                }
            }
            residual[i][0] += data[i];
            squares += residual[i][0] * residual[i][0];
        }
        if (std::abs(squares - previous) < THRESHOLD) {
            break;
        }
        previous = squares;
        const Matrix turned = Transpose(jacobian);
        const Matrix step = Product(Inverse(Product(turned, jacobian)), Product(turned, residual));
        for (std::size_t k = 0; k < peaks.size(); ++k) {
            for (std::size_t m = 0; m < 3; ++m) {
                const double moved = std::max(peaks[k].low[m], peaks[k].value[m] + step[3 * k + m][0]);
                peaks[k].value[m] = std::min(peaks[k].high[m], moved);
            }
        }
    }
    return iteration;
}

class Fit_Bench {
  public:
    Fit_Bench() : data(BIN_NB) {
        peak_centre_tol = 1.25F;
        peak_width_max = BIN_NB / 5.0F;
        for (std::size_t i = 0; i < BIN_NB; ++i) {
            for (int k = 0; k < PEAK_NB; ++k) {
                const double width = 9.0 + k % 5;
                const double away = (static_cast<double>(i) - Centre(k) - 0.4) / width;
                data[i] += (500.0 + 37.0 * (k % 7)) * std::exp(-0.693147181 * away * away);
            }
        }
    }
    void Plain() {
        plain.clear();
        for (int k = 0; k < PEAK_NB; ++k) {
            const double x = std::round(Centre(k));
            const double height = data[static_cast<std::size_t>(x)];
            plain.push_back({{x, height, 5.0},
                             {x - 1.25, 0.0, 1.0},
                             {x + 1.25, 2.0 * height, static_cast<double>(peak_width_max)}});
        }
        iterations = Fit_Plainly(plain, data);
    }
    void Ours() {
        ours.Peaks_Free();
        ours.Curves_Free();
        ours.filtered = new double[BIN_NB];
        std::copy(data.begin(), data.end(), ours.filtered);
        ours.curve_nb = BIN_NB;
        Histo_Peak* tail = nullptr;
        for (int k = 0; k < PEAK_NB; ++k) {
            Peak_Gauss_Add(ours, tail, static_cast<int>(std::round(Centre(k))), 1.0F, 5.0F);
        }
        Gauss_Newton(ours, BIN_NB, data.data(), THRESHOLD);
    }
    /** The largest relative difference of the two results; 1 when a peak was lost. */
    double Difference() const {
        double largest = 0.0;
        std::size_t k = 0;
        for (const Histo_Peak* peak = ours.peak_first; peak != nullptr; peak = peak->next, ++k) {
            for (int m = 0; m < 3; ++m) {
                const double other = plain[k].value[m];
                largest = std::max(largest, std::abs((*peak->param)[m] - other) / std::abs(other));
            }
        }
        return k == PEAK_NB ? largest : 1.0;
    }
    int iterations = 0;

  private:
    static double Centre(int k) { return 40.0 + 66.0 * k; }

    std::vector<double> data;
    std::vector<Start> plain;
    Histo_Data ours;
};

void Bench_Fit(benchmark::State& state) {
    Fit_Bench fit;
    Paired_Times times;
    for (auto _ : state) {
        times = Pair_Time(
            ROUNDS, [&] { fit.Plain(); }, [&] { fit.Ours(); });
    }
    state.counters["plain_ms"] = times.plain * 1e3;
    state.counters["ours_ms"] = times.ours * 1e3;
    state.counters["ratio"] = times.Ratio();
    state.counters["steps"] = fit.iterations;
    state.counters["difference"] = fit.Difference();
    if (!(fit.Difference() < 1e-6)) {
        state.SkipWithError("the two ways differ");
    }
}

/** Peaks that overlap as those above do, on a longer curve. */
class Long_Fit {
  public:
    Long_Fit(int bins, int peaks) : bin_nb(bins), peak_nb(peaks), data(static_cast<std::size_t>(bins)) {
        stretch = static_cast<double>(bins) / peaks / (static_cast<double>(BIN_NB) / PEAK_NB);
        for (int k = 0; k < peaks; ++k) {
            for (std::size_t i = 0; i < data.size(); ++i) {
                const double away = (static_cast<double>(i) - Centre(k)) / Width(k);
                data[i] += std::abs(away) > 10.0 ? 0.0 : Height(k) * std::exp(-0.693147181 * away * away);
            }
        }
    }
    void Run() {
        peak_centre_tol = 1.25F;
        peak_width_max = static_cast<float>(bin_nb) / 5.0F;
        histo.Peaks_Free();
        histo.Curves_Free();
        histo.filtered = new double[data.size()];
        std::copy(data.begin(), data.end(), histo.filtered);
        histo.curve_nb = bin_nb;
        Histo_Peak* tail = nullptr;
        for (int k = 0; k < peak_nb; ++k) {
            const double start_width = 5.0 * stretch;
            Peak_Gauss_Add(histo, tail, static_cast<int>(std::round(Centre(k))), 1.0F, static_cast<float>(start_width));
        }
        Gauss_Newton(histo, static_cast<std::uint16_t>(bin_nb), data.data(), THRESHOLD);
    }
    /** Whether every peak has been found as it was put into the curve. */
    bool Is_Found() const {
        int k = 0;
        for (const Histo_Peak* peak = histo.peak_first; peak != nullptr; peak = peak->next, ++k) {
            if (!(std::abs((*peak->param)[PEAK_CENTRE] - Centre(k)) < 0.01 &&
                  std::abs((*peak->param)[PEAK_AMPLITUDE] - Height(k)) < 1e-3 * Height(k) &&
                  std::abs((*peak->param)[PEAK_WIDTH] - Width(k)) < 1e-3 * Width(k))) {
                return false;
            }
        }
        return k == peak_nb;
    }

  private:
    double Centre(int k) const { return (40.0 + 66.0 * k) * stretch + 0.4; }
    double Width(int k) const { return (9.0 + k % 5) * stretch; }
    static double Height(int k) { return 500.0 + 37.0 * (k % 7); }

    int bin_nb;
    int peak_nb;
    double stretch = 1.0;
    std::vector<double> data;
    Histo_Data histo;
};

/** The least time of several fits: what the machine does besides only adds to it. */
void Bench_Long_Fit(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    Long_Fit fit(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    double least = 0.0;
    for (auto _ : state) {
        for (int round = 0; round < ROUNDS; ++round) {
            const auto start = Clock::now();
            fit.Run();
            const double time = std::chrono::duration<double>(Clock::now() - start).count();
            least = round == 0 ? time : std::min(least, time);
        }
    }
    state.counters["least_ms"] = least * 1e3;
    state.counters["memory_mb"] = Peak_Memory();
    if (!fit.Is_Found()) {
        state.SkipWithError("the peaks are not found");
    }
}

}  // namespace

BENCHMARK(Bench_Fit)->Iterations(1);
// Bins, peaks.
BENCHMARK(Bench_Long_Fit)->Args({16384, 60})->Args({65535, 200})->Iterations(1);
