// Every allocation of the histogram panel fails once: what is said, what is left, and that all else goes on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <cmath>
#include <cstring>
#include <functional>

#include "histogram/tool_histo_compute.h"
#include "histogram/tool_histo_paint.h"
#include "histogram/tool_histo_peak.h"
#include "kits/common/messages.h"
#include "tests/histogram/histo_scene.h"
#include "tests/kits/common/failing_memory.h"
#include "tests/support/import_hook.h"

namespace {

/** Keeps what is reported (no traces) without allocating anything itself. */
class Reports {
  public:
    Reports() { Message_Receiver_Add(Receive, this, true); }
    ~Reports() { Message_Receiver_Remove(Receive, this); }
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

    std::vector<std::string> Take() {
        std::vector<std::string> texts(text, text + nb);
        nb = 0;
        return texts;
    }

  private:
    static constexpr int TEXTS = 32;
    static constexpr std::size_t SIZE = 600;

    static void Receive(void* context, HWND, int level, const char* said) {
        auto* self = static_cast<Reports*>(context);
        if (level <= MESSAGE_WARNING && self->nb < TEXTS) {
            std::snprintf(self->text[self->nb++], SIZE, "%d %s", level, said);
        }
    }
    char text[TEXTS][SIZE] = {};
    int nb = 0;
};

class Histo_Memory : public testing::Test {
  protected:
    ~Histo_Memory() override { EXPECT_EQ(Iterator_Open_Nb(), 0); }

    /** Runs `operation` on a fresh panel that `prepare` made ready, with its n-th allocation failing. */
    bool Fails_At(int n, const std::function<void(Tool_Histo&)>& prepare,
                  const std::function<int(Tool_Histo&)>& operation,
                  const std::function<void(Tool_Histo&, int, const std::vector<std::string>&)>& check) {
        Tool_Histo panel;
        prepare(panel);
        reports.Take();
        int result = 0;
        happened = false;
        {
            const Failing_Allocation failing(n);
            result = operation(panel);
            happened = Failing_Allocation::Happened();
        }
        check(panel, result, reports.Take());
        // Whatever is missing now: every other operation takes it.
        Histo_Paint(panel);
        Histo_Cursor(panel);
        panel.Fit_Derivative(2);
        panel.Fit_Gaussian();
        Histo_Compute(panel);
        return happened;
    }
    /** True when the allocation that was to fail has been reached. */
    bool Failed() const { return happened; }
    static void Expect_List(const Tool_Histo& panel) {
        int nb = 0;
        const Histo_Peak* before = nullptr;
        for (const Histo_Peak* peak = panel.data->peak_first; peak != nullptr; peak = peak->next, ++nb) {
            EXPECT_EQ(peak->prev, before);
            before = peak;
        }
        EXPECT_EQ(panel.data->peak_nb, nb);
    }

    Histo_Scene scene;
    Reports reports;

  private:
    bool happened = false;
};

testing::Matcher<std::string> Memory_Report(int line, const std::string& file, const std::string& rest) {
    return testing::AllOf(testing::StartsWith("1 line " + std::to_string(line) +
                                              (line < 100    ? "   of "
                                               : line < 1000 ? "  of "
                                                             : " of ")),
                          testing::EndsWith("histogram/" + file + " \nmemory error in " + rest));
}

std::vector<std::uint32_t> Two_Hills(int n) {
    std::vector<std::uint32_t> counts;
    for (int bin = 0; bin < n; ++bin) {
        const double a = (bin - n * 0.3) / 9.0;
        const double b = (bin - n * 0.7) / 9.0;
        counts.push_back(static_cast<std::uint32_t>(std::lround(2000 * std::exp(-a * a) + 1500 * std::exp(-b * b))));
    }
    return counts;
}

}  // namespace

TEST_F(Histo_Memory, each_array_of_a_computation_has_its_own_report) {
    scene.Add_Color({}, {1, 2, 3});
    const std::string tool = "tool_histo.cpp";
    const std::string record_size = std::to_string(sizeof(Histo_Record));
    const testing::Matcher<std::string> expected[] = {
        Memory_Report(897, tool, "calloc (var=histo, dim=" + record_size + "x1)"),
        Memory_Report(987, tool, "new"),
        Memory_Report(1019, tool, "new"),
        Memory_Report(1021, tool, "new"),
        Memory_Report(1023, tool, "new"),
        Memory_Report(1025, tool, "new"),
    };
    for (int n = 1; n <= 6; ++n) {
        SCOPED_TRACE(n);
        EXPECT_TRUE(Fails_At(
            n, [](Tool_Histo&) {}, [](Tool_Histo& panel) { return Histo_Compute(panel); },
            [&](Tool_Histo& panel, int result, const std::vector<std::string>& said) {
                EXPECT_EQ(result, 0);
                EXPECT_THAT(said, testing::ElementsAre(expected[n - 1]));
                const Histo_Record* record = panel.data->record;
                ASSERT_EQ(record != nullptr, n > 1);
                if (record != nullptr) {
                    EXPECT_EQ(record->counts != nullptr, n > 2);
                    EXPECT_EQ(record->counts_red != nullptr, n > 3);
                    EXPECT_EQ(record->counts_green != nullptr, n > 4);
                    EXPECT_EQ(record->counts_blue != nullptr, n > 5);
                    EXPECT_EQ(record->counts_component0, nullptr);
                }
            }));
    }
    EXPECT_FALSE(Fails_At(
        7, [](Tool_Histo&) {}, [](Tool_Histo& panel) { return Histo_Compute(panel); },
        [&](Tool_Histo& panel, int result, const std::vector<std::string>& said) {
            EXPECT_EQ(result, 1);
            EXPECT_TRUE(said.empty());
            EXPECT_TRUE(panel.data->Has_Counts());
        }));
}

TEST_F(Histo_Memory, a_panel_without_memory_for_its_data_does_nothing) {
    scene.Add_Grey({}, {1, 2, 3});
    for (int n = 1;; ++n) {
        reports.Take();
        const Failing_Allocation failing(n);
        Tool_Histo panel;
        if (!Failing_Allocation::Happened()) {
            break;
        }
        const std::vector<std::string> said = reports.Take();
        ASSERT_EQ(said.size(), panel.data == nullptr ? 1U : 0U);
        if (panel.data == nullptr) {
            EXPECT_THAT(said[0], testing::EndsWith("histogram/tool_histo.cpp \nmemory error in new"));
        }
        Tool_Histo copy(panel);
        if (panel.data == nullptr) {
            EXPECT_EQ(Histo_Compute(panel), 0);
            EXPECT_EQ(Histo_Paint(panel), 0);
            EXPECT_EQ(Histo_Cursor(panel), 0);
            EXPECT_EQ(panel.Fit_Derivative(2), 0);
            EXPECT_EQ(panel.Fit_Gaussian(), 0);
            EXPECT_EQ(panel.Write("never_made.csv"), 0);
            panel.Update(~0ULL);
            panel.Draw();
        }
    }
}

TEST_F(Histo_Memory, the_list_of_selected_frames_that_cannot_grow_leaves_an_empty_file) {
    scene.Add_Frame();
    scene.Add_Frame();
    char path[MAX_PATH] = {};
    ::GetTempPathA(MAX_PATH, path);
    std::strcat(path, "histo_memory_test.csv");
    for (int n = 1; n <= 2; ++n) {
        EXPECT_TRUE(Fails_At(
            n, [](Tool_Histo& panel) { Histo_Record_Give(panel, {}, {1}); },
            [&](Tool_Histo& panel) { return panel.Write(path); },
            [&](Tool_Histo&, int result, const std::vector<std::string>& said) {
                EXPECT_EQ(result, 0);
                EXPECT_THAT(said,
                            testing::ElementsAre(Memory_Report(
                                688, "tool_histo.cpp", "realloc (var=frame_pt, dim=" + std::to_string(n) + "x8)")));
                EXPECT_EQ(Iterator_Open_Nb(), 0);
            }));
        WIN32_FILE_ATTRIBUTE_DATA found = {};
        ASSERT_TRUE(::GetFileAttributesExA(path, GetFileExInfoStandard, &found));
        EXPECT_EQ(found.nFileSizeLow, 0U);
        EXPECT_TRUE(::DeleteFileA(path));
    }
}

TEST_F(Histo_Memory, segments_that_cannot_be_made_are_left_out) {
    int record_reports = 0;
    int curve_reports = 0;
    int whole_curves = 0;
    for (int n = 1;; ++n) {
        SCOPED_TRACE(n);
        const bool failed = Fails_At(
            n, [](Tool_Histo& panel) { Histo_Record_Give(panel, {}, Two_Hills(200)); },
            [](Tool_Histo& panel) { return panel.Fit_Derivative(2); },
            [&](Tool_Histo& panel, int result, const std::vector<std::string>& said) {
                EXPECT_EQ(result, 1);
                Expect_List(panel);
                ASSERT_EQ(said.size(), Failed() ? 1U : 0U) << "every failure is told";
                if (said.empty()) {
                    return;
                }
                const std::string file = "tool_histo_derivative.cpp";
                if (testing::Matches(Memory_Report(48, file, "new"))(said[0])) {
                    ++record_reports;
                    EXPECT_EQ(panel.data->peak_nb, 1);
                    EXPECT_NE(panel.data->peak_first->curve, nullptr);
                } else if (!testing::Matches(Memory_Report(280, file, "new"))(said[0])) {
                    ++whole_curves;
                    EXPECT_THAT(said[0], testing::StartsWith("1 line "));
                    EXPECT_THAT(said[0], testing::EndsWith("\nmemory error in new"));
                } else {
                    ++curve_reports;
                    EXPECT_EQ(panel.data->peak_nb, 2);
                    EXPECT_EQ(panel.data->peak_first->next->curve, nullptr) << "the walk stops";
                }
            });
        if (!failed) {
            break;
        }
    }
    EXPECT_EQ(record_reports, 4) << "record and parameters of two segments";
    EXPECT_EQ(curve_reports, 2);
    EXPECT_EQ(whole_curves, 4) << "the counts' copy, the two curves of the analysis, and the smoothing's scratch";
}

TEST_F(Histo_Memory, a_fit_goes_on_without_what_it_cannot_have) {
    int record_reports = 0;
    int curve_reports = 0;
    int other_reports = 0;
    for (int n = 1;; ++n) {
        SCOPED_TRACE(n);
        last_zero = 0;
        const bool failed = Fails_At(
            n, [](Tool_Histo& panel) { Histo_Record_Give(panel, {}, Two_Hills(200)); },
            [](Tool_Histo& panel) { return panel.Fit_Gaussian(); },
            [&](Tool_Histo& panel, int result, const std::vector<std::string>& said) {
                EXPECT_EQ(result, 1);
                Expect_List(panel);
                const std::string file = "tool_histo_gauss_newton.cpp";
                ASSERT_EQ(said.empty(), !Failed()) << "every failure is told";
                for (const std::string& one : said) {
                    if (testing::Matches(Memory_Report(69, file, "new"))(one)) {
                        ++record_reports;
                    } else if (testing::Matches(Memory_Report(321, file, "new"))(one)) {
                        ++curve_reports;
                        const Histo_Peak* last = panel.data->peak_first;
                        while (last != nullptr && last->next != nullptr) {
                            last = last->next;
                        }
                        ASSERT_NE(last, nullptr);
                        EXPECT_EQ(last->curve, nullptr) << "later records keep no curve";
                    } else if (one[0] == '1') {
                        ++other_reports;
                        EXPECT_THAT(one, testing::EndsWith("\nmemory error in new"));
                    } else {
                        EXPECT_EQ(one, "2 \xF1\x05WARNING:\x02 Gauss_Newton invalid matrix");
                        EXPECT_EQ(said.size(), 2U) << "after the report";
                        EXPECT_GT(panel.data->peak_nb, 0);
                    }
                }
            });
        if (!failed) {
            break;
        }
        ASSERT_LT(n, 500);
    }
    EXPECT_EQ(record_reports, 8) << "record and three vectors of two candidates";
    EXPECT_EQ(curve_reports, 2);
    EXPECT_GE(other_reports, 5) << "the counts' copy, three curves, and those of every step";
}

TEST_F(Histo_Memory, a_fit_without_memory_for_its_matrices_warns_and_keeps_its_peaks) {
    // 12,000 bins: matrices of the size whose blocks are kept from one step to the next.
    for (const int bins : {200, 12000}) {
        SCOPED_TRACE(bins);
        int complete = 0;
        int warned = 0;
        int told = 0;
        int records_missing = 0;
        const auto fit = [&] {
            Tool_Histo panel;
            Histo_Record_Give(panel, {}, Two_Hills(bins));
            last_zero = 0;
            reports.Take();
            EXPECT_EQ(panel.Fit_Gaussian(), 1);
            const std::vector<std::string> said = reports.Take();
            Expect_List(panel);
            if (said.empty()) {
                ++complete;
                EXPECT_GT(panel.data->peak_nb, 0);
            } else if (said.back() == "2 \xF1\x05WARNING:\x02 Gauss_Newton invalid matrix") {
                ++warned;
                // What the inverse needs inside the library only makes it invalid.
                if (said.size() > 1) {
                    ++told;
                    ASSERT_EQ(said.size(), 2U);
                    EXPECT_THAT(said[0], testing::StartsWith("1 line "));
                    EXPECT_THAT(said[0], testing::EndsWith("tool_histo_gauss_newton.cpp \nmemory error in new"));
                }
                EXPECT_GT(panel.data->peak_nb, 0);
                EXPECT_NE(panel.data->peak_first->curve, nullptr) << "curves are sampled after the warning too";
            } else {
                ++records_missing;
                EXPECT_THAT(said[0], Memory_Report(69, "tool_histo_gauss_newton.cpp", "new"));
            }
        };
        const int failed = Fail_Each_Import_Allocation("Kit_Common.dll", fit);
        EXPECT_GE(failed, 20);
        EXPECT_GE(warned, 10) << complete << " complete, " << records_missing << " without a record";
        EXPECT_GE(records_missing, 6);
        EXPECT_GE(told, 10) << "matrices and vectors without memory, of " << warned;
        EXPECT_EQ(complete, 1) << "no failure goes unsaid";
        EXPECT_EQ(complete + warned + records_missing, failed + 1);
    }
}

TEST_F(Histo_Memory, a_curve_of_a_peak_that_cannot_be_made_is_reported) {
    Vector_N parameters(PEAK_PARAM_NB, 8);
    parameters[PEAK_CENTRE] = 5;
    parameters[PEAK_AMPLITUDE] = 2;
    parameters[PEAK_WIDTH] = 3;
    {
        const Failing_Allocation failing(1);
        EXPECT_EQ(Peak_Curve(PEAK_GAUSS, 10, parameters), nullptr);
    }
    EXPECT_THAT(reports.Take(), testing::ElementsAre(Memory_Report(96, "tool_histo_peak.cpp", "new")));
    double* curve = Peak_Curve(PEAK_GAUSS, 10, parameters);
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(curve[5], 2.0);
    delete[] curve;
}
