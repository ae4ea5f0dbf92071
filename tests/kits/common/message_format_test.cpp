#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <limits>
#include <random>

#include "tests/kits/common/message_sink.h"

namespace {

template <typename... Values>
std::string Message(const char* format, Values... values) {
    Message_Sink sink;
    // The formats of these tests are checked against printf at run time, not by the compiler.
    int (*report)(HWND, int, const char*, ...) = Error_Fct;
    report(nullptr, 16, format, values...);
    return sink.Last();
}

template <typename... Values>
std::string Printed(const char* format, Values... values) {
    int (*print)(char*, std::size_t, const char*, ...) = std::snprintf;
    std::string text(static_cast<std::size_t>(print(nullptr, 0, format, values...)), '\0');
    print(text.data(), text.size() + 1, format, values...);
    return text;
}

}  // namespace

TEST(Message_Format, writes_the_panels_messages) {
    EXPECT_EQ(Message("in Tool_Tag::Resize(dim=%dx%d)", 200, -3), "in Tool_Tag::Resize(dim=200x-3)");
    EXPECT_EQ(Message("in Tool_Tag::Click(up_down=0x%08x)", 0x12), "in Tool_Tag::Click(up_down=0x00000012)");
    EXPECT_EQ(Message("in Tool_Propagate::Update(flag:%016llx)", 0x1000000000000402ULL),
              "in Tool_Propagate::Update(flag:1000000000000402)");
    EXPECT_EQ(Message("Mode Histo: Histo_Blow_Click(up_down=%08X)", 0xAB),
              "Mode Histo: Histo_Blow_Click(up_down=000000AB)");
    EXPECT_EQ(Message("line %-4d of %s \nmemory error in strdup (var=%s)", 244, "panels/tool_tag.cpp", "x"),
              "line 244  of panels/tool_tag.cpp \nmemory error in strdup (var=x)");
    EXPECT_EQ(Message("line %-4d of %s \nmemory error in calloc (var=%s, dim=%dx%d)", 897, "h", "histo", 56, 1),
              "line 897  of h \nmemory error in calloc (var=histo, dim=56x1)");
    EXPECT_EQ(Message("org: %.2f/%.2f  scale: %.2f/%.2f", 1.0, -2.5, 0.125, 1e6),
              "org: 1.00/-2.50  scale: 0.12/1000000.00");
    EXPECT_EQ(Message("loop:%03d nb peak:%d", 7, 12), "loop:007 nb peak:12");
    EXPECT_EQ(Message("Peak[%d] = %4d %4d/%-4d", 1, 20, 3, 40), "Peak[1] =   20    3/40  ");
    EXPECT_EQ(Message("nb pts:%d max val: %f", 5, 0.5), "nb pts:5 max val: 0.500000");
    EXPECT_EQ(Message("before[%d]: C=%10.2f  A=%10.2f W=%10.2f", 0, 12.345, 1e9, -1.0),
              "before[0]: C=     12.35  A=1000000000.00 W=     -1.00");
    EXPECT_EQ(Message("++ mse: %.4f%% delta mse = %10.2g", 12.5, 0.00001234),
              "++ mse: 12.5000% delta mse =    1.2e-05");
    EXPECT_EQ(Message("  -> Stop after \x01%d\x02 iterations", 11),
              "  -> Stop after \x01"
              "11\x02 iterations");
    EXPECT_EQ(Message("\xF1\x05WARNING:\x02 No histogram to export!"), "\xF1\x05WARNING:\x02 No histogram to export!");
    EXPECT_EQ(Message("\xF1\x09\x01%s", "C:\\out.csv"),
              "\xF1\x09\x01"
              "C:\\out.csv");
    EXPECT_EQ(Message("\xF1\x09 %ls", L"Permission denied"), "\xF1\x09 Permission denied");
    EXPECT_EQ(Message("%s.dll %s (rev-%s)", "Kit_Panels", "5.0", "16b"), "Kit_Panels.dll 5.0 (rev-16b)");
    EXPECT_EQ(Message("%zu of %zd", std::size_t{1} << 40, std::ptrdiff_t{-5}), "1099511627776 of -5");
}

TEST(Message_Format, takes_wide_text_of_the_code_page_in_any_locale) {
#if defined(_WIN32)
    EXPECT_EQ(Message("<%ls>", L"caf\xE9 \x20AC"), "<caf\xE9 \x80>");
#else
    EXPECT_EQ(Message("<%ls>", L"caf\xE9 \x20AC"), "<caf\xC3\xA9 \xE2\x82\xAC>");
#endif
    EXPECT_EQ(Message("<%8ls><%-8ls><%.2ls>", L"abc", L"abc", L"abc"), "<     abc><abc     ><ab>");
    EXPECT_EQ(Message("<%S%lc%C>", L"wide", static_cast<int>(L'c'), static_cast<int>(L'd')), "<widecd>");
    const wchar_t* none = nullptr;
    EXPECT_EQ(Message("<%ls>", none), "<(null)>");
}

TEST(Message_Format, wide_text_without_a_place_in_the_code_page_does_not_lose_the_rest) {
    const wchar_t lone_surrogate[] = {L'a', static_cast<wchar_t>(0xD800), L'b', 0};
    const std::string text = Message("<%ls> end", lone_surrogate);
    EXPECT_EQ(text.front(), '<');
    EXPECT_NE(text.find("b> end"), std::string::npos) << text;
}

TEST(Message_Format, agrees_with_printf) {
    std::mt19937 generator(5);
    const char* flag_sets[] = {"", "-", "0", "+", " ", "#", "-+", "0 ", "+0", "-#"};
    const char* widths[] = {"", "1", "4", "12", "30"};
    const char* precisions[] = {"", ".", ".0", ".3", ".9"};
    for (const char* flags : flag_sets) {
        for (const char* width : widths) {
            for (const char* precision : precisions) {
                const std::string start = std::string("[%") + flags + width + precision;
                for (int round = 0; round < 4; ++round) {
                    const auto number = static_cast<int>(generator());
                    const long long big = static_cast<long long>(generator()) * number;
                    const double real =
                        static_cast<double>(number) / static_cast<double>(1U << (generator() % 40 % 31));
                    for (const char* type : {"d]", "i]", "u]", "x]", "X]", "o]", "hd]", "hhu]"}) {
                        const std::string format = start + type;
                        EXPECT_EQ(Message(format.c_str(), number), Printed(format.c_str(), number)) << format;
                    }
                    for (const char* type : {"lld]", "llx]", "jd]", "zu]"}) {
                        const std::string format = start + type;
                        EXPECT_EQ(Message(format.c_str(), big), Printed(format.c_str(), big)) << format;
                    }
                    for (const char* type : {"f]", "e]", "g]", "G]"}) {
                        const std::string format = start + type;
                        EXPECT_EQ(Message(format.c_str(), real), Printed(format.c_str(), real)) << format;
                    }
                }
                if (std::string(flags).find_first_of("0+ #") == std::string::npos) {
                    const std::string format = start + "s]";
                    EXPECT_EQ(Message(format.c_str(), "hello"), Printed(format.c_str(), "hello")) << format;
                }
            }
        }
    }
    EXPECT_EQ(Message("%*d|%-*d|%.*f|%.*s", 5, 1, 5, 2, 2, 0.5, 3, "abcdef"), "    1|2    |0.50|abc");
    EXPECT_EQ(Message("%*d|%.*f", -5, 1, -1, 0.5), "1    |0.500000");
    EXPECT_EQ(Message("%c%3c|%-3c|", 'a', 'b', 'c'), "a  b|c  |");
    EXPECT_EQ(Message("%Lf %I64d", 0.5L, 1LL << 40), "0.500000 1099511627776");
    EXPECT_EQ(Message("%f %f", std::numeric_limits<double>::infinity(), 1e300),
              Printed("%f %f", std::numeric_limits<double>::infinity(), 1e300));
}

TEST(Message_Format, keeps_texts_of_any_length) {
    for (const std::size_t size : {std::size_t{1022}, std::size_t{1023}, std::size_t{1024}, std::size_t{1025},
                                   std::size_t{70000}, std::size_t{5000000}}) {
        const std::string text(size, 'x');
        EXPECT_EQ(Message("%s", text.c_str()), text);
        EXPECT_EQ(Message(text.c_str()), text);
        EXPECT_EQ(Message("%s%d", text.c_str(), 42), text + "42");
    }
    const std::wstring wide(70000, L'w');
    EXPECT_EQ(Message("%ls", wide.c_str()).size(), 70000U);
    EXPECT_EQ(Message("%9000d", 1).size(), 9000U);
}

TEST(Message_Format, survives_odd_formats) {
    EXPECT_EQ(Message("100%"), "100%");
    EXPECT_EQ(Message("%5"), "%5");
    EXPECT_EQ(Message("%y%%"), "%y%");
    EXPECT_EQ(Message("%"), "%");
    const char* none = nullptr;
    EXPECT_EQ(Message("%s|%5.3s|", none, none), "(null)|  (nu|");
    EXPECT_LE(Message("%99999999999d", 1).size(), 70000U);
    int untouched = 7;
    EXPECT_EQ(Message("a%nb", &untouched), "ab");
    EXPECT_EQ(untouched, 7);
}
