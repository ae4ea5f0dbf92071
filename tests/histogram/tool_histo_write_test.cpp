#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "histogram/tool_histo_peak.h"
#include "kits/common/messages.h"
#include "tests/histogram/histo_scene.h"

namespace {

using Lines = std::vector<std::string>;

/** Lines end as the platform ends text lines. */
std::string Platform_Lines(std::string text) {
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2) {
        text.insert(at, "\r");
    }
    return text;
}

class Histo_Export : public testing::Test {
  protected:
    Histo_Export() {
        char folder[MAX_PATH] = {};
        ::GetTempPathA(MAX_PATH, folder);
        path = std::string(folder) + "histo_export_test.csv";
        std::remove(path.c_str());
        Message_Receiver_Add(Receive, this, true);
    }
    ~Histo_Export() override {
        Message_Receiver_Remove(Receive, this);
        std::remove(path.c_str());
        EXPECT_EQ(Iterator_Open_Nb(), 0);
    }
    static std::string Read(const std::string& name) {
        std::FILE* file = std::fopen(name.c_str(), "rb");
        if (file == nullptr) {
            return "(no file)";
        }
        std::string text;
        for (int byte = 0; (byte = std::fgetc(file)) != EOF;) {
            text += static_cast<char>(byte);
        }
        std::fclose(file);
        return text;
    }
    std::string Written() {
        EXPECT_EQ(panel.Write(path.c_str()), 1);
        return Read(path);
    }
    void Gauss(double centre, double height, double width) {
        Histo_Peak* peak = Peak_Make(PEAK_GAUSS, true);
        (*peak->param)[PEAK_CENTRE] = centre;
        (*peak->param)[PEAK_AMPLITUDE] = height;
        (*peak->param)[PEAK_WIDTH] = width;
        Peak_Append(*panel.data, tail, peak);
    }
    void Filtered(const std::vector<double>& values) {
        panel.data->Curves_Free();
        panel.data->filtered = new double[values.size()];
        std::copy(values.begin(), values.end(), panel.data->filtered);
        panel.data->curve_nb = static_cast<int>(values.size());
    }
    static void Receive(void* context, HWND, int level, const char* text) {
        static_cast<Histo_Export*>(context)->said.push_back(std::to_string(level) + " " + text);
    }

    Histo_Scene scene;
    Tool_Histo panel;
    Histo_Peak* tail = nullptr;
    std::string path;
    Lines said;
};

}  // namespace

TEST_F(Histo_Export, writes_heading_names_and_one_line_per_bin) {
    scene.Add_Frame();
    scene.Tags(3);
    Variable_Set_Array_Text("$TAG_LABEL", 1, "Fat");
    scene.tag_max[1] = 50.0F;
    Histo_Record_Give(panel, {49.0F, 1.0F}, {7, 0, 4000000000U});
    EXPECT_EQ(Written(), Platform_Lines("sep=\t\n"
                                        "=========== Histogram information (1 frames) =========\n"
                                        "\n"
                                        "GLI Value\tNb of pixels\tFat\tTAG   2\n"
                                        "49\t7\t1\t0\n"
                                        "50\t0\t0\t0\n"
                                        "51\t-294967296\t0\t0\n"
                                        "\n"));
    EXPECT_EQ(said, Lines{}) << "nothing is reported";
}

TEST_F(Histo_Export, separates_by_the_low_byte_of_the_regional_separator) {
    Histo_Record_Give(panel, {}, {7});
    Gauss(1, 2, 3);
    for (const int code : {0x2C, 0x3B, 0x20, 0x7C, 0x13B, 0x109, 0xA7}) {
        Variable_Define_Scalar("$REGIONAL_SEPARATOR", VARIABLE_UNSIGNED_16, code);
        const std::string s(1, static_cast<char>(code & 0xFF));
        EXPECT_EQ(Written(), Platform_Lines("sep=" + s +
                                            "\n=========== Histogram information (0 frames) =========\n\n"
                                            "GLI Value" +
                                            s + "Nb of pixels\n0" + s + "7\n\n\n\nWe found 1 Gausian peaks \n" +
                                            "Peak Number" + s + "Peak Center" + s + "Peak Height" + s + "Peak Width" +
                                            s + "\n1" + s + "1.00" + s + "2.00" + s + "3.00\n\n"));
    }
    for (const int code : {0, 0x100}) {
        Variable_Define_Scalar("$REGIONAL_SEPARATOR", VARIABLE_UNSIGNED_16, code);
        EXPECT_THAT(Written(), testing::StartsWith("sep=\t\r\n")) << code;
    }
}

TEST_F(Histo_Export, counts_selected_frames_among_all_of_the_window) {
    Histo_Record_Give(panel, {}, {});
    const auto heading = [this] {
        const std::string text = Written();
        return text.substr(0, text.find("\r\n\r\n")).substr(text.find('\n') + 1);
    };
    EXPECT_EQ(heading(), "=========== Histogram information (0 frames) =========");
    for (int k = 0; k < 5; ++k) {
        scene.Add_Frame();
    }
    EXPECT_EQ(heading(), "=========== Histogram information (5 frames) =========");
    scene.objects[1]->Select(false);
    scene.objects[4]->Select(false);
    EXPECT_EQ(heading(), "=========== Histogram information (3 frames out of 5) =========");
    Quorel_2D other;
    scene.window.volume = &other;
    EXPECT_EQ(heading(), "=========== Histogram information (0 frames) =========");
}

TEST_F(Histo_Export, the_total_is_a_signed_16_bit_number) {
    Histo_Record_Give(panel, {}, {});
    constexpr int frames = 32769;
    for (int k = 0; k < frames; ++k) {
        scene.Add_Frame();
    }
    const std::string text = Written();
    EXPECT_NE(text.find("Histogram information (32769 frames out of -32767) ="), std::string::npos)
        << text.substr(0, 99);
}

TEST_F(Histo_Export, without_a_free_iterator_both_counts_are_0) {
    Histo_Record_Give(panel, {}, {});
    scene.Add_Frame();
    std::vector<unsigned short> taken;
    while (const unsigned short handle = Iterator_Init("test", nullptr)) {
        taken.push_back(handle);
    }
    EXPECT_THAT(Written(), testing::HasSubstr("information (0 frames) ="));
    for (const unsigned short handle : taken) {
        Iterator_End(handle);
    }
}

TEST_F(Histo_Export, has_no_tag_columns_for_0_or_1_tags) {
    Histo_Record_Give(panel, {}, {7});
    const std::string none = Platform_Lines(
        "sep=\t\n"
        "=========== Histogram information (0 frames) =========\n"
        "\n"
        "GLI Value\tNb of pixels\n"
        "0\t7\n"
        "\n");
    EXPECT_EQ(Written(), none);
    scene.Tags(1);
    EXPECT_EQ(Written(), none);
    Variable_Set("$TAG_NB", 0);
    EXPECT_EQ(Written(), none);
}

TEST_F(Histo_Export, a_tag_claims_the_bins_whose_exact_centre_lies_within_its_thresholds) {
    scene.Tags(7);
    scene.tag_max[1] = 11.0F;  // only the upper one
    scene.tag_min[2] = 11.0F;  // only the lower one
    scene.tag_min[3] = 11.0F;  // both, equal to a centre
    scene.tag_max[3] = 11.0F;
    scene.tag_min[4] = 10.9F;  // 11 lies above, though both are written as whole numbers
    scene.tag_max[4] = 10.99F;
    scene.tag_min[5] = 13.0F;  // reversed
    scene.tag_max[5] = 9.0F;
    Variable_Define_Text("$REGIONAL_FILLER", "n/a");
    Histo_Record_Give(panel, {8.0F, 2.0F}, {1, 2, 3});
    EXPECT_THAT(Written(), testing::HasSubstr(Platform_Lines("TAG   6\n"
                                                             "9\t1\t1\tn/a\tn/a\tn/a\tn/a\tn/a\n"
                                                             "11\t2\t1\t1\t1\tn/a\tn/a\tn/a\n"
                                                             "13\t3\tn/a\t1\tn/a\tn/a\tn/a\tn/a\n"
                                                             "\n")));
}

TEST_F(Histo_Export, tests_the_centre_before_it_is_cut_to_a_whole_number) {
    scene.Tags(2);
    scene.tag_min[1] = 0.25F;
    Histo_Record_Give(panel, {-2.0F, 1.0F}, {1, 2, 3});
    // Centres -1.5, -0.5 and 0.5, cut toward zero.
    EXPECT_THAT(Written(), testing::HasSubstr(Platform_Lines("\n-1\t1\t0\n0\t2\t0\n0\t3\t1\n\n")));
}

TEST_F(Histo_Export, a_centre_beyond_whole_numbers_is_the_nearest_of_them) {
    Histo_Record_Give(panel, {-3.0e9F, 1.0e9F}, {1, 2, 3, 4, 5, 6});
    EXPECT_THAT(Written(), testing::HasSubstr(Platform_Lines("\n-2147483648\t1\n-1500000000\t2\n-500000000\t3\n"
                                                             "500000000\t4\n1499999744\t5\n2147483647\t6\n\n")));
}

TEST_F(Histo_Export, missing_thresholds_count_as_unset) {
    scene.Tags(2);
    scene.tag_min[1] = 1.0F;
    scene.tag_max[1] = 2.0F;
    Histo_Record_Give(panel, {}, {1, 2, 3});
    Variable_Undefine("$TAG_THRESHOLD_MIN");
    EXPECT_THAT(Written(), testing::HasSubstr(Platform_Lines("\n0\t1\t1\n1\t2\t1\n2\t3\t0\n\n")));
    Variable_Undefine("$TAG_THRESHOLD_MAX");
    EXPECT_THAT(Written(), testing::HasSubstr(Platform_Lines("\n0\t1\t0\n1\t2\t0\n2\t3\t0\n\n")));
}

TEST_F(Histo_Export, an_empty_filler_and_an_empty_name_are_written_as_they_are) {
    scene.Tags(2);
    Variable_Set_Array_Text("$TAG_LABEL", 1, "");
    Variable_Define_Text("$REGIONAL_FILLER", "");
    Histo_Record_Give(panel, {}, {5});
    EXPECT_THAT(Written(), testing::HasSubstr(Platform_Lines("\nGLI Value\tNb of pixels\t\n0\t5\t\n\n")));
}

TEST_F(Histo_Export, without_names_the_tags_have_their_numbers) {
    scene.Tags(2);
    Variable_Undefine("$TAG_LABEL");
    Histo_Record_Give(panel, {}, {5});
    EXPECT_THAT(Written(), testing::HasSubstr("\tTAG   1\r\n"));
}

TEST_F(Histo_Export, writes_the_filtered_curve_and_0_where_it_is_shorter_than_the_record) {
    scene.Tags(2);
    Histo_Record_Give(panel, {}, {5, 6, 7});
    Filtered({1.25, 1234567.0123456789});
    EXPECT_THAT(Written(), testing::HasSubstr(Platform_Lines("GLI Value\tNb of pixels\tFiltered\tTAG   1\n"
                                                             "0\t5\t1.250000\t0\n"
                                                             "1\t6\t1234567.012346\t0\n"
                                                             "2\t7\t0.000000\t0\n"
                                                             "\n")));
}

TEST_F(Histo_Export, writes_peaks_without_half_bin_shift_and_with_their_width_in_bins) {
    Histo_Record_Give(panel, {0.0F, 2.0F}, std::vector<std::uint32_t>(11, 3));
    Gauss(10.0, 123.456, 4.0);
    Gauss(12.375, 1e-3, 0.125);
    const std::string text = Written();
    EXPECT_THAT(text, testing::HasSubstr("\r\n21\t3\r\n\r\n")) << "bin 10 itself";
    EXPECT_THAT(text, testing::EndsWith(Platform_Lines("\n\n\n\nWe found 2 Gausian peaks \n"
                                                       "Peak Number\tPeak Center\tPeak Height\tPeak Width\t\n"
                                                       "1\t20.00\t123.46\t4.00\n"
                                                       "2\t24.75\t0.00\t0.12\n"
                                                       "\n")));
}

TEST_F(Histo_Export, peak_numbers_pass_through_single_precision) {
    Histo_Record_Give(panel, {}, {1});
    Gauss(16777217.0, 123456789.0, 0.005);
    EXPECT_THAT(Written(), testing::HasSubstr("\r\n1\t16777216.00\t123456792.00\t0.00\r\n"));
}

TEST_F(Histo_Export, segments_are_written_like_peaks) {
    Histo_Record_Give(panel, {10.0F, 1.0F}, {1, 2, 3});
    Peak_Segment_Add(*panel.data, tail, 1, 0, 2);
    EXPECT_THAT(Written(), testing::HasSubstr("We found 1 Gausian peaks \r\n"));
    EXPECT_THAT(Written(), testing::HasSubstr("\r\n1\t11.00\t0.00\t2.00\r\n"));
}

TEST_F(Histo_Export, replaces_a_file_that_exists) {
    Histo_Record_Give(panel, {}, std::vector<std::uint32_t>(100, 1));
    const std::size_t longer = Written().size();
    Histo_Record_Give(panel, {}, {1});
    EXPECT_LT(Written().size(), longer);
}

TEST_F(Histo_Export, writes_to_a_path_with_letters_beyond_ascii) {
    const wchar_t* const letters = L"\u00E9t\u00FCde_\u00DF.csv";
    wchar_t folder[MAX_PATH] = {};
    ::GetTempPathW(MAX_PATH, folder);
    const std::wstring wide = std::wstring(folder) + letters;
    char narrow[MAX_PATH] = {};
    BOOL lost = FALSE;
    ::WideCharToMultiByte(CP_ACP, 0, wide.c_str(), -1, narrow, MAX_PATH, nullptr,
                          ::GetACP() == CP_UTF8 ? nullptr : &lost);
    if (lost != FALSE) {
        GTEST_SKIP() << "the system's code page has no such letters";
    }
    ::DeleteFileW(wide.c_str());
    Histo_Record_Give(panel, {}, {1});
    EXPECT_EQ(panel.Write(narrow), 1);
    EXPECT_NE(::GetFileAttributesW(wide.c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_TRUE(::DeleteFileW(wide.c_str()));
}

TEST_F(Histo_Export, equals_the_example_of_the_manual) {
    const std::string manual = Read(KIT_SOURCE_ROOT "/docs/export_format.md");
    const std::size_t begin = manual.find("```\nsep=");
    ASSERT_NE(begin, std::string::npos);
    const std::string example = manual.substr(begin + 4, manual.find("```", begin + 4) - begin - 4);
    for (int k = 0; k < 3; ++k) {
        scene.Add_Frame();
    }
    scene.objects[0]->Select(false);
    scene.Tags(3);
    Variable_Set_Array_Text("$TAG_LABEL", 1, "Fat");
    scene.tag_max[1] = 5.0F;
    scene.tag_min[2] = 5.0F;
    scene.tag_max[2] = 9.0F;
    Variable_Define_Text("$REGIONAL_FILLER", "-");
    Variable_Define_Scalar("$REGIONAL_SEPARATOR", VARIABLE_UNSIGNED_8, 0x3B);
    Histo_Record_Give(panel, {0.0F, 2.0F}, {12, 40, 35, 9, 3});
    Filtered({10.5, 31.25, 30.0, 16.75, 6.0});
    Gauss(1.625, 38.4, 1.2);
    EXPECT_EQ(Written(), Platform_Lines(example));
}

// ---------------- failures

TEST_F(Histo_Export, without_a_record_warns_and_makes_no_file) {
    EXPECT_EQ(panel.Write(path.c_str()), 0);
    Histo_Record_Give(panel, {}, {1});
    panel.data->Record_Empty();
    EXPECT_EQ(panel.Write(path.c_str()), 0);
    EXPECT_EQ(said, Lines(2, "2 \xF1\x05WARNING:\x02 No histogram to export!"));
    EXPECT_EQ(Read(path), "(no file)");
}

TEST_F(Histo_Export, a_file_that_cannot_be_opened_is_reported_with_path_and_reason) {
    Histo_Record_Give(panel, {}, {1});
    const std::string nowhere = path + ".no_such_folder\\file.csv";
    EXPECT_EQ(panel.Write(nowhere.c_str()), 0);
    ASSERT_EQ(said.size(), 4U);
    EXPECT_THAT(said[0], testing::StartsWith("11 file:"));
    EXPECT_THAT(said[0], testing::EndsWith("histogram/tool_histo.cpp line:657"));
    EXPECT_EQ(said[1], "2 \xF1\x05WARNING:\x02 Unable to open the file");
    EXPECT_EQ(said[2], "2 \xF1\x09\x01" + nowhere);
    EXPECT_EQ(said[3], std::string("2 \xF1\x09 ") + std::strerror(ENOENT));
}

TEST_F(Histo_Export, no_path_is_a_file_that_cannot_be_opened) {
    Histo_Record_Give(panel, {}, {1});
    EXPECT_EQ(panel.Write(nullptr), 0);
    ASSERT_EQ(said.size(), 4U);
    EXPECT_EQ(said[1], "2 \xF1\x05WARNING:\x02 Unable to open the file");
}

TEST_F(Histo_Export, without_a_window_an_empty_file_stays) {
    Histo_Record_Give(panel, {}, {1});
    Variable_Define_Pointer("$WINDOW_CUR", nullptr);
    EXPECT_EQ(panel.Write(path.c_str()), 0);
    EXPECT_EQ(Read(path), "");
    EXPECT_EQ(said, Lines{});
    EXPECT_EQ(std::remove(path.c_str()), 0) << "and is closed";
}

TEST_F(Histo_Export, a_full_disk_is_reported_and_gives_0) {
    // The device that is always full, as the system below the emulation has it.
    const char* const full = "\\\\?\\unix\\dev\\full";
    std::FILE* probe = std::fopen(full, "w");
    if (probe == nullptr) {
        GTEST_SKIP() << "this system has no device that is always full";
    }
    std::fclose(probe);
    for (const std::size_t bins : {std::size_t{1}, std::size_t{20000}}) {
        Histo_Record_Give(panel, {}, std::vector<std::uint32_t>(bins, 1));
        said.clear();
        EXPECT_EQ(panel.Write(full), 0) << bins << " bins";
        ASSERT_EQ(said.size(), 3U);
        EXPECT_EQ(said[0], "2 \xF1\x05WARNING:\x02 Unable to write the file");
        EXPECT_EQ(said[1], std::string("2 \xF1\x09\x01") + full);
        EXPECT_EQ(said[2], std::string("2 \xF1\x09 ") + std::strerror(ENOSPC));
    }
}
