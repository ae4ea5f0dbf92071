#include "histogram/peak_smoothing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "host/platform.h"

namespace {

struct Outcome {
    std::vector<double> curve;
    std::vector<float> derivative;
    std::vector<int> maxima;
};

/** The smoothing as it is said, one bin and one pass at a time. */
Outcome Smooth_Plainly(std::vector<double> f, float threshold, int max_maxima, int max_passes) {
    Outcome outcome;
    const int n = static_cast<int>(f.size());
    std::vector<float> d(f.size());
    const auto at = [](int i) { return static_cast<std::size_t>(i); };
    int pass = 0;
    int maxima = 0;
    do {
        for (int i = 1; i <= n - 1; ++i) {
            double sum = 2 * f[at(i)];
            int weight = 2;
            if (i > 1) {
                sum += f[at(i - 1)];
                weight = 3;
            }
            if (i < n - 1) {
                sum += f[at(i + 1)];
                ++weight;
            }
            f[at(i)] = sum / weight;
        }
        f[0] = f[1];
        for (int i = 1; i <= n - 2; ++i) {
            const float right = static_cast<float>(f[at(i + 1)]) - threshold;
            const float left = static_cast<float>(f[at(i - 1)]) - threshold;
            d[at(i)] = (right > 0 ? right : 0.0F) - (left > 0 ? left : 0.0F);
        }
        d[0] = 0;
        d[at(n - 1)] = d[at(n - 2)];
        maxima = 0;
        for (int i = 0; i <= n - 2; ++i) {
            maxima += d[at(i)] >= 0 && d[at(i + 1)] < 0 ? 1 : 0;
        }
        outcome.maxima.push_back(maxima);
    } while (maxima > max_maxima && ++pass < max_passes);
    outcome.curve = f;
    outcome.derivative = d;
    return outcome;
}

/** How much scratch memory there is. */
enum class Room { None, Curve, Whole };

std::vector<double> Room_Make(Room room, std::size_t n) {
    return std::vector<double>(room == Room::None ? 0 : (room == Room::Curve ? n : Smoothing_Scratch_Nb(n)));
}

Outcome Smooth(std::vector<double> f, float threshold, int max_maxima, int max_passes, Smoothing_Path path,
               Room with = Room::Whole) {
    Outcome outcome;
    std::vector<double> room = Room_Make(with, f.size());
    outcome.derivative.resize(f.size());
    const auto sink = [](void* context, int pass, int maxima) {
        auto& list = *static_cast<std::vector<int>*>(context);
        EXPECT_EQ(static_cast<std::size_t>(pass), list.size());
        list.push_back(maxima);
    };
    const Smoothing_Result result =
        Smooth_To_Maxima(f, room, {threshold, max_maxima, max_passes}, path, sink, &outcome.maxima);
    EXPECT_EQ(static_cast<std::size_t>(result.passes), outcome.maxima.size());
    EXPECT_EQ(result.maxima, outcome.maxima.back());
    Thresholded_Derivative(f, threshold, outcome.derivative);
    outcome.curve = std::move(f);
    return outcome;
}

void Expect_Same_Bits(const Outcome& a, const Outcome& b) {
    EXPECT_EQ(std::memcmp(a.curve.data(), b.curve.data(), a.curve.size() * sizeof(double)), 0);
    for (std::size_t i = 0; i < a.derivative.size(); ++i) {
        ASSERT_EQ(a.derivative[i], b.derivative[i]) << "bin " << i;
    }
    EXPECT_EQ(a.maxima, b.maxima);
}

std::vector<double> Random_Curve(std::mt19937& random, int n) {
    std::vector<double> curve(static_cast<std::size_t>(n));
    const int middle = n / 2;
    const auto kind = random() % 5;
    for (int i = 0; i < n; ++i) {
        double& value = curve[static_cast<std::size_t>(i)];
        switch (kind) {
            case 0:
                value = static_cast<double>(random() % 1000);
                break;
            case 1:
                value = random() % 40 == 0 ? static_cast<double>(random() % 100000) : 0.0;
                break;
            case 2:
                value = std::floor(1000.0 * std::exp(-std::pow((i - middle) / 20.0, 2)));
                break;
            case 3:
                value = static_cast<double>(random() % 3);
                break;
            default:
                value = i == n / 3 ? 4294967295.0 : 0.0;  // a lone bin: long runs of subnormal numbers
                break;
        }
    }
    return curve;
}

std::vector<Smoothing_Path> Paths() {
    std::vector<Smoothing_Path> paths = {Smoothing_Path::Plain, Smoothing_Path::Baseline};
    if (Processor_Has_Avx2()) {
        paths.push_back(Smoothing_Path::Wide);
    }
    return paths;
}

TEST(Smooth_To_Maxima, gives_the_same_bits_on_every_path_as_the_plain_loop) {
    std::mt19937 random(3);
    for (int round = 0; round < 1200; ++round) {
        const std::vector<double> curve = Random_Curve(random, 2 + static_cast<int>(random() % 600));
        const int max_maxima = static_cast<int>(random() % 6);
        float sum = 0.0F;
        for (const double value : curve) {
            sum += static_cast<float>(value);
        }
        const float threshold = sum / (2000.0F * static_cast<float>(max_maxima * max_maxima));
        const int max_passes = 1 + static_cast<int>(random() % 120);
        const Outcome plain = Smooth_Plainly(curve, threshold, max_maxima, max_passes);
        for (const Smoothing_Path path : Paths()) {
            SCOPED_TRACE(::testing::Message() << "round " << round << " path " << static_cast<int>(path));
            Expect_Same_Bits(Smooth(curve, threshold, max_maxima, max_passes, path), plain);
            Expect_Same_Bits(Smooth(curve, threshold, max_maxima, max_passes, path, Room::Curve), plain);
        }
    }
}

TEST(Smooth_To_Maxima, stays_exact_in_subnormal_numbers) {
    std::vector<double> curve(400, 0.0);
    curve[0] = curve[1] = 1e-300;
    const Outcome plain = Smooth_Plainly(curve, 0.0F, -1, 300);
    for (const Smoothing_Path path : Paths()) {
        Expect_Same_Bits(Smooth(curve, 0.0F, -1, 300, path), plain);
        Expect_Same_Bits(Smooth(curve, 0.0F, -1, 300, path, Room::Curve), plain);
    }
}

TEST(Smooth_To_Maxima, stops_at_the_first_pass_that_satisfies_the_limit_although_counts_may_rise_again) {
    std::mt19937 random(8);
    int inside_groups = 0;
    for (int round = 0; round < 300; ++round) {
        const std::vector<double> curve = Random_Curve(random, 300);
        const Outcome plain = Smooth_Plainly(curve, 0.5F, 12, 10000);
        const Outcome fast = Smooth(curve, 0.5F, 12, 10000, Smoothing_Path_Best());
        ASSERT_EQ(fast.maxima.size(), plain.maxima.size());
        Expect_Same_Bits(fast, plain);
        inside_groups += plain.maxima.size() % 8 != 0 ? 1 : 0;
    }
    EXPECT_GT(inside_groups, 0) << "no round ended inside a group of passes: the redo was not reached";
}

TEST(Smooth_To_Maxima, keeps_the_bits_of_whichever_pass_is_the_last_and_around_every_length) {
    std::mt19937 random(11);
    // Lengths at which the paths change, and each lane as the one that makes the last pass.
    for (const int n : {63, 64, 65, 66, 127, 128, 256, 511, 512, 513}) {
        const std::vector<double> curve = Random_Curve(random, n);
        for (int passes = 1; passes <= 50; ++passes) {
            const Outcome plain = Smooth_Plainly(curve, 0.5F, -1, passes);
            for (const Smoothing_Path path : Paths()) {
                SCOPED_TRACE(::testing::Message()
                             << n << " bins, " << passes << " passes, path " << static_cast<int>(path));
                Expect_Same_Bits(Smooth(curve, 0.5F, -1, passes, path), plain);
            }
        }
    }
}

TEST(Smooth_To_Maxima, needs_no_scratch_curve) {
    std::mt19937 random(4);
    const std::vector<double> curve = Random_Curve(random, 500);
    Expect_Same_Bits(Smooth(curve, 1.0F, 2, 500, Smoothing_Path_Best(), Room::None),
                     Smooth_Plainly(curve, 1.0F, 2, 500));
}

TEST(Smooth_To_Maxima, bin_0_never_enters_the_smoothing_of_bin_1) {
    std::vector<double> curve = {1000.0, 0.0, 0.0, 0.0};
    Smooth_To_Maxima(curve, {}, {0.0F, 0, 1}, Smoothing_Path::Plain, nullptr, nullptr);
    for (const double value : curve) {
        EXPECT_EQ(value, 0.0);
    }
}

TEST(Smooth_To_Maxima, an_infinite_or_undefined_threshold_leaves_no_maximum) {
    std::mt19937 random(4);
    for (const float threshold : {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        for (const Smoothing_Path path : Paths()) {
            const Outcome outcome = Smooth(Random_Curve(random, 300), threshold, 0, 10000, path);
            EXPECT_EQ(outcome.maxima, std::vector<int>{0});
        }
    }
}

TEST(Thresholded_Derivative, rounds_to_single_precision_before_the_threshold_is_subtracted) {
    const std::vector<double> curve = {16777216.0, 16777217.0, 16777219.0, 16777221.0};
    std::vector<float> derivative(4);
    Thresholded_Derivative(curve, 16777215.0F, derivative);
    EXPECT_EQ(derivative[0], 0.0F);
    EXPECT_EQ(derivative[1], (static_cast<float>(16777219.0) - 16777215.0F) - (16777216.0F - 16777215.0F));
    EXPECT_EQ(derivative[3], derivative[2]);
}

}  // namespace
