// The analyses while the host answers what they tell: the panel may go, and another analysis may be asked for.
#include "histogram/tool_histo_fit.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/histogram/analysis_panel.h"

namespace {

/** A panel that the host destroys when it hears a message. */
class Heard {
  public:
    explicit Heard(const std::vector<std::uint32_t>& counts) : test(std::make_unique<Analysis_Panel>(counts)) {
        Message_Receiver_Add(Receive, this, true);
    }
    ~Heard() { Message_Receiver_Remove(Receive, this); }
    Heard(const Heard&) = delete;
    Heard& operator=(const Heard&) = delete;

    std::unique_ptr<Analysis_Panel> test;
    std::function<void(int level, const std::string& text)> answer;

  private:
    static void Receive(void* context, HWND /*window*/, int level, const char* text) {
        const auto& self = *static_cast<Heard*>(context);
        if (self.answer) {
            self.answer(level, text);
        }
    }
};

/** Teeth so far apart that no smoothing joins them, so that the derivative method warns. */
std::vector<std::uint32_t> Teeth(int nb) {
    std::vector<std::uint32_t> counts(static_cast<std::size_t>(nb) * 1000, 0);
    for (std::size_t bin = 500; bin < counts.size(); bin += 1000) {
        counts[bin] = 4000000000U;
    }
    return counts;
}

std::vector<std::uint32_t> One_Hill() {
    std::vector<std::uint32_t> counts(300, 5);
    for (int bin = 0; bin < 60; ++bin) {
        counts[static_cast<std::size_t>(100 + bin)] +=
            static_cast<std::uint32_t>(bin < 30 ? 50 * bin : 50 * (60 - bin));
    }
    return counts;
}

using Fit = int (*)(Analysed_Panel&);
int Derivative(Analysed_Panel& panel) {
    return panel.Fit_Derivative(1);
}
int Gaussian(Analysed_Panel& panel) {
    return panel.Fit_Gaussian();
}

}  // namespace

TEST(Histo_Fit, the_panel_may_go_at_every_message) {
    for (const Fit fit : {Derivative, Gaussian}) {
        int message_nb = 0;
        {
            Heard count(One_Hill());
            count.answer = [&](int, const std::string&) { ++message_nb; };
            fit(count.test->panel);
        }
        ASSERT_GE(message_nb, 2);
        for (int at = 0; at < message_nb; ++at) {
            Heard heard(One_Hill());
            int nb = 0;
            heard.answer = [&](int, const std::string&) {
                if (nb++ == at) {
                    heard.test.reset();
                }
            };
            EXPECT_EQ(fit(heard.test->panel), 1);
            EXPECT_EQ(heard.test, nullptr) << at;
        }
    }
}

TEST(Histo_Fit, the_panel_may_go_while_the_user_reads_a_warning) {
    Heard heard(Teeth(8));
    bool warned = false;
    heard.answer = [&](int level, const std::string&) {
        if (level == MESSAGE_WARNING) {
            warned = true;
            heard.test.reset();
        }
    };
    EXPECT_EQ(heard.test->panel.Fit_Derivative(5), 1);
    EXPECT_TRUE(warned);
}

TEST(Histo_Fit, one_analysis_at_a_time) {
    Heard heard(One_Hill());
    std::vector<int> nested;
    heard.answer = [&](int, const std::string& text) {
        if (text.find("Computing Peak Fit") != std::string::npos) {
            nested.push_back(heard.test->panel.Fit_Gaussian());
            nested.push_back(heard.test->panel.Fit_Derivative(2));
        }
    };
    EXPECT_EQ(heard.test->panel.Fit_Gaussian(), 1);
    EXPECT_EQ(nested, (std::vector<int>{0, 0}));
    EXPECT_EQ(heard.test->Data().peak_nb, static_cast<int>(heard.test->Peaks().size()));
    heard.answer = nullptr;
    EXPECT_EQ(heard.test->panel.Fit_Derivative(2), 1) << "the next one runs again";
}

TEST(Histo_Fit, new_counts_meanwhile_leave_the_analysis_on_those_it_began_with) {
    Heard heard(One_Hill());
    heard.answer = [&](int level, const std::string& text) {
        if (level == 4 && text.find("Computing") != std::string::npos) {
            heard.test->Counts_Set({1, 2, 3});
        }
    };
    EXPECT_EQ(heard.test->panel.Fit_Gaussian(), 1);
    EXPECT_EQ(heard.test->Data().curve_nb, 300);
    EXPECT_EQ(heard.test->Data().record->nb_bins, 3);
}
