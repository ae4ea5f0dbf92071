#include "workbench/analysis/export_check.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using namespace workbench;

namespace {

// The example of docs/export_format.md.
const std::string TEXT =
    "sep=;\n"
    "=========== Histogram information (2 frames out of 3) =========\n"
    "\n"
    "GLI Value;Nb of pixels;Filtered;Fat;TAG   2\n"
    "1;12;10.500000;1;-\n"
    "3;40;31.250000;1;-\n"
    "5;35;30.000000;1;1\n"
    "7;9;16.750000;-;1\n"
    "9;3;6.000000;-;1\n"
    "\n"
    "\n"
    "\n"
    "We found 1 Gausian peaks \n"
    "Peak Number;Peak Center;Peak Height;Peak Width;\n"
    "1;3.25;38.40;1.20\n"
    "\n";
const std::vector<std::uint32_t> COUNTS = {12, 40, 35, 9, 3};
const std::vector<double> FILTERED = {10.5, 31.25, 30.0, 16.75, 6.0};

Export_Expected Example() {
    Export_Expected expected;
    expected.separator = ';';
    expected.filler = "-";
    expected.curve = {COUNTS, FILTERED, 0.0, 2.0};
    expected.columns = {{"Fat", true, -100000.0F, 5.0F}, {"TAG   2", true, 5.0F, 9.0F}};
    expected.peaks = {{false, 1.625, 38.4, 1.2}};
    return expected;
}

std::string Changed(const std::string& from, const std::string& to) {
    std::string changed = TEXT;
    changed.replace(changed.find(from), from.size(), to);
    return changed;
}

std::vector<std::string> Differences(const std::string& of) {
    return Export_Check_Text(of, Example()).differences;
}

using Lines = std::vector<std::string>;

TEST(Export_Check, the_file_of_the_format_agrees) {
    const Export_Check check = Export_Check_Text(TEXT, Example());
    EXPECT_EQ(check.differences, Lines{});
    EXPECT_EQ(check.difference_nb, 0U);
    EXPECT_EQ(check.bin_nb, 5U);
    EXPECT_EQ(check.pixel_nb, 99U);
    EXPECT_EQ(check.peak_nb, 1U);
    EXPECT_EQ(Export_Check_Report(check, "a.csv"),
              "a.csv agrees with the histogram: 5 bins with 99 pixels and 1 peaks.\n");
}

TEST(Export_Check, a_count_beyond_signed_numbers_is_written_as_a_negative_one) {
    const std::vector<std::uint32_t> counts = {12, 4000000000U, 35, 9, 3};
    Export_Expected expected = Example();
    expected.curve.counts = counts;
    const Export_Check check = Export_Check_Text(Changed("3;40;", "3;-294967296;"), expected);
    EXPECT_EQ(check.differences, Lines{});
    EXPECT_EQ(check.pixel_nb, 4000000059U);
}

TEST(Export_Check, lines_may_end_as_windows_ends_them) {
    std::string windows = TEXT;
    for (std::size_t at = windows.find('\n'); at != std::string::npos; at = windows.find('\n', at + 2)) {
        windows.insert(at, 1, '\r');
    }
    EXPECT_EQ(Differences(windows), Lines{});
}

TEST(Export_Check, every_number_is_compared) {
    EXPECT_EQ(Differences(Changed("3;40;", "3;41;")), Lines{"line 6: bin 1, the count should be 40 and is \"41\""});
    EXPECT_EQ(Differences(Changed("3;40;", "4;40;")), Lines{"line 6: bin 1, the grey level should be 3 and is \"4\""});
    EXPECT_EQ(Differences(Changed("31.250000", "31.250002")),
              Lines{"line 6: bin 1, the filtered count should be 31.250000 and is \"31.250002\""});
    EXPECT_EQ(Differences(Changed("7;9;16.750000;-", "7;9;16.750000;1")),
              Lines{"line 8: bin 3, Fat should be \"-\" and is \"1\""});
    EXPECT_EQ(Differences(Changed("1;12;10.500000;1", "1;12;10.500000;0")),
              Lines{"line 5: bin 0, Fat should be \"1\" and is \"0\""});
    EXPECT_EQ(Differences(Changed("3.25", "3.27")),
              Lines{"line 15: peak 1, the centre should be 3.250000 and is \"3.27\""});
    EXPECT_EQ(Differences(Changed("38.40", "nan")),
              Lines{"line 15: peak 1, the height should be 38.400000 and is \"nan\""});
    EXPECT_EQ(Differences(Changed("1.20", "1,20")),
              Lines{"line 15: peak 1, the width should be 1.200000 and is \"1,20\""});
}

TEST(Export_Check, the_words_are_compared) {
    EXPECT_EQ(Differences(Changed("sep=;", "sep=,")).at(0),
              "line 1: the separator should be \"sep=;\" and is \"sep=,\"");
    EXPECT_EQ(Differences(Changed("=========== Hist", "Hist")), Lines{"line 2: the heading is missing"});
    EXPECT_EQ(Differences(Changed("Fat", "Fett")).size(), 1U);
    EXPECT_EQ(Differences(Changed("found 1", "found 2")).size(), 1U);
    EXPECT_EQ(Differences(Changed("Peak Width;", "Peak Width")).size(), 1U);
    EXPECT_EQ(Differences(Changed("6.000000;-;1", "6.000000;-;1;1")),
              Lines{"line 9: bin 4, there is more than expected: \"1\""});
    EXPECT_EQ(Differences(Changed("1.20", "1.20;7")), Lines{"line 15: peak 1, there is more than expected: \"7\""});
    EXPECT_EQ(Differences(TEXT + "more\n").size(), 1U);
}

TEST(Export_Check, a_file_cut_off_is_told_once) {
    EXPECT_EQ(Differences(TEXT.substr(0, TEXT.find("7;9"))).at(0), "line 7: the file ends after 3 of 5 bins");
    EXPECT_GT(Export_Check_Text("", Example()).difference_nb, 0U);
}

TEST(Export_Check, a_curve_that_is_shorter_than_the_counts_goes_on_with_zeros) {
    Export_Expected expected = Example();
    expected.curve.filtered = std::span(FILTERED).first(4);
    EXPECT_EQ(Export_Check_Text(TEXT, expected).difference_nb, 1U);
    EXPECT_EQ(Export_Check_Text(Changed("6.000000", "0.000000"), expected).difference_nb, 0U);
}

TEST(Export_Check, without_curve_tags_and_peaks_the_file_is_short) {
    Export_Expected expected;
    expected.curve = {COUNTS, {}, 0.0, 2.0};
    const std::string plain =
        "sep=,\n=========== Histogram information (3 frames) =========\n\nGLI Value,Nb of pixels\n1,12\n3,40\n5,35\n"
        "7,9\n9,3\n\n";
    EXPECT_EQ(Export_Check_Text(plain, expected).difference_nb, 0U);
    expected.peaks = {{false, 1.0, 1.0, 1.0}};
    EXPECT_GT(Export_Check_Text(plain, expected).difference_nb, 0U) << "the peaks are missing";
}

TEST(Export_Check, a_centre_on_the_edge_of_single_precision_may_stand_on_either_side) {
    Export_Expected expected;
    expected.curve = {std::span(COUNTS).first(1), {}, 29.95, 0.1};  // the centre is 30, or a little less
    for (const char* level : {"29", "30"}) {
        EXPECT_EQ(Export_Check_Text("sep=,\n=========== Histogram information (1 frames) =========\n\n"
                                    "GLI Value,Nb of pixels\n" +
                                        std::string(level) + ",12\n\n",
                                    expected)
                      .difference_nb,
                  0U);
    }
}

TEST(Export_Check, many_differences_are_counted_and_the_first_told) {
    std::vector<std::uint32_t> many(100, 1);
    Export_Expected expected;
    expected.curve = {many, {}, 0.0, 1.0};
    std::string wrong = "sep=,\n=========== Histogram information (1 frames) =========\n\nGLI Value,Nb of pixels\n";
    for (int bin = 0; bin < 100; ++bin) {
        wrong += std::to_string(bin) + ",2\n";
    }
    const Export_Check check = Export_Check_Text(wrong + "\n", expected);
    EXPECT_EQ(check.difference_nb, 100U);
    EXPECT_EQ(check.differences.size(), EXPORT_DIFFERENCES_TOLD);
    const std::string report = Export_Check_Report(check, "a.csv");
    EXPECT_TRUE(
        report.starts_with("a.csv does not agree with the histogram. Read: 100 bins with 200 pixels and 0 "
                           "peaks.\nDifferences: 100\n\nline 5: bin 0, the count should be 1 and is \"2\"\n"))
        << report;
    EXPECT_TRUE(report.ends_with("and 80 more\n"));
}

TEST(Export_Check, every_single_wrong_byte_but_in_unread_places_is_found) {
    std::mt19937 random(7);
    int found = 0;
    int nb = 0;
    for (std::size_t at = 0; at < TEXT.size(); ++at) {
        // The numbers of frames are not compared.
        if (at >= TEXT.find("2 frames") && at < TEXT.find("GLI")) {
            continue;
        }
        std::string wrong = TEXT;
        wrong[at] = static_cast<char>('F' + random() % 20);  // no E, which makes an exponent
        if (wrong == TEXT) {
            continue;
        }
        ++nb;
        found += Export_Check_Text(wrong, Example()).difference_nb > 0 ? 1 : 0;
    }
    EXPECT_EQ(found, nb);
    EXPECT_GT(nb, 200);
}

}  // namespace
