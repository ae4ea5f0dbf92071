#include "workbench/volumes/dicom_text.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/workbench/volumes/dicom_bytes.h"
#include "workbench/volumes/dicom_reader.h"

using namespace volumes;

namespace {

struct Text_Case {
    const char* name;
    const char* sets;
    std::string bytes;
    const char* text;
};

// The right column is what pydicom makes of it.
const Text_Case CASES[] = {
    {"arabic", "ISO_IR 127", "\342\310\307\346\352^\344\346\322\307\321",
     "\u0642\u0628\u0627\u0646\u064A^\u0644\u0646\u0632\u0627\u0631"},
    {"french", "ISO_IR 100", "Buc^J\351r\364me", "Buc^J\u00E9r\u00F4me"},
    {"polish", "ISO_IR 101", "\261\346\352", "\u0105\u0107\u0119"},
    {"greek", "ISO_IR 126", "\304\351\357\355\365\363\351\357\362",
     "\u0394\u03B9\u03BF\u03BD\u03C5\u03C3\u03B9\u03BF\u03C2"},
    {"hebrew", "ISO_IR 138", "\371\370\345\357^\343\341\345\370\344",
     "\u05E9\u05E8\u05D5\u05DF^\u05D3\u05D1\u05D5\u05E8\u05D4"},
    {"russian", "ISO_IR 144", "\273\356\332ce\334\321yp\323", "\u041B\u044E\u043Ace\u043C\u0431yp\u0433"},
    {"turkish", "ISO_IR 148", "\375\376\360", "\u0131\u015F\u011F"},
    {"thai", "ISO_IR 166", "\312\307\321\312", "\u0E2A\u0E27\u0E31\u0E2A"},
    {"japanese", "\\ISO 2022 IR 87",
     "Yamada^Tarou=\033$B;3ED\033(B^\033$BB@O:\033(B=\033$B$d$^$@\033(B^\033$B$\?$m$&\033(B",
     "Yamada^Tarou=\u5C71\u7530^\u592A\u90CE=\u3084\u307E\u3060^\u305F\u308D\u3046"},
    {"japanese with katakana", "ISO 2022 IR 13\\ISO 2022 IR 87",
     "\324\317\300\336^\300\333\263=\033$B;3ED\033(J^\033$BB@O:\033(J",
     "\uFF94\uFF8F\uFF80\uFF9E^\uFF80\uFF9B\uFF73=\u5C71\u7530^\u592A\u90CE"},
    {"rare kanji", "\\ISO 2022 IR 159", "\033$(D0!\033(B.", "\u4E02."},
    {"korean", "\\ISO 2022 IR 149",
     "Hong^Gildong=\033$)C\373\363^\033$)C\321\316\324\327=\033$)C\310\253^\033$)C\261\346\265\277",
     "Hong^Gildong=\u6D2A^\u5409\u6D1E=\uD64D^\uAE38\uB3D9"},
    {"chinese between escapes", "\\ISO 2022 IR 58", "Zhang=\033$)A\325\305^\033$)A\320\241\266\253",
     "Zhang=\u5F20^\u5C0F\u4E1C"},
    {"chinese", "GB18030", "Wang^XiaoDong=\315\365^\320\241\266\253", "Wang^XiaoDong=\u738B^\u5C0F\u4E1C"},
    {"chinese with a backslash inside", "GBK", "\201\\\\b", "\u4E57\\b"},
    {"unicode", "ISO_IR 192", "Wang=\347\216\213^\345\260\217\344\270\234", "Wang=\u738B^\u5C0F\u4E1C"},
    {"russian and latin", "ISO 2022 IR 100\\ISO 2022 IR 144", "J\351 \033-L\273\356", "J\u00E9 \u041B\u044E"},
};

TEST(Dicom_Text, every_set_becomes_unicode) {
    for (const Text_Case& one : CASES) {
        EXPECT_EQ(Dicom_Text_Utf8(one.bytes, one.sets, true), one.text) << one.name;
    }
}

TEST(Dicom_Text, parts_of_names_and_values_begin_anew) {
    // The Cyrillic set ends with the part of the name; in other texts it does not.
    const std::string bytes = "\033-L\273\356^\351";
    EXPECT_EQ(Dicom_Text_Utf8(bytes, "ISO 2022 IR 100\\ISO 2022 IR 144", true), "\u041B\u044E^\u00E9");
    EXPECT_EQ(Dicom_Text_Utf8(bytes, "ISO 2022 IR 100\\ISO 2022 IR 144", false), "\u041B\u044E^\u0449");
    EXPECT_EQ(Dicom_Text_Utf8("\033-L\273\\\351", "ISO 2022 IR 100\\ISO 2022 IR 144", false), "\u041B\\\u00E9");
}

TEST(Dicom_Text, what_is_no_character_is_marked_and_the_rest_stays) {
    EXPECT_EQ(Dicom_Text_Utf8("a\377b", "ISO_IR 192", false), "a\uFFFDb");
    EXPECT_EQ(Dicom_Text_Utf8("a\253b", "ISO_IR 126", false).substr(0, 1), "a");
    EXPECT_EQ(Dicom_Text_Utf8("ab\033$B;", "\\ISO 2022 IR 87", false), "ab\uFFFD");
    EXPECT_EQ(Dicom_Text_Utf8("\351", "ISO_IR 999", false), "\u00E9");
    EXPECT_EQ(Dicom_Text_Utf8("\351", "", false), "\u00E9");
    EXPECT_EQ(Dicom_Text_Utf8("\316", "GB18030", false), "\uFFFD");
    EXPECT_EQ(Dicom_Text_Utf8("", "ISO_IR 100", true), "");
    EXPECT_EQ(Dicom_Text_Utf8("a\033", "ISO_IR 100", true), "a ");
}

TEST(Dicom_Text, every_byte_after_every_other_ends) {
    for (const char* sets : {"", "\\ISO 2022 IR 87", "\\ISO 2022 IR 149", "GB18030", "ISO 2022 IR 13", "ISO_IR 192"}) {
        for (int first = 0; first < 256; ++first) {
            for (int second = 0; second < 256; second += 17) {
                const std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
                const std::string text = Dicom_Text_Utf8(bytes, sets, false);
                EXPECT_LE(text.size(), 8U);
                EXPECT_LE(Dicom_Text_Utf8("\033$B" + bytes, sets, false).size(), 9U);
            }
        }
    }
}

TEST(Dicom_Text, a_series_has_its_name) {
    constexpr std::uint32_t sets = 0x00080005;
    Dicom_Bytes bytes;
    bytes.Text(sets, "CS", "\\ISO 2022 IR 87").Text(TAG_SERIES_TEXT, "LO", "T1 \033$B;3ED\033(B\\two");
    EXPECT_EQ(Dicom_Read(bytes.File()).image->origin.series_text, "T1 \u5C71\u7530");
    // The second byte of a character is the one that separates values elsewhere.
    bytes.Text(sets, "CS", "GBK").Text(TAG_SERIES_TEXT, "LO", "\201\\ b\\two");
    EXPECT_EQ(Dicom_Read(bytes.File()).image->origin.series_text, "\u4E57 b");
    bytes.Text(sets, "CS", "ISO_IR 144").Text(TAG_SERIES_TEXT, "LO", "\273\356\332");
    EXPECT_EQ(Dicom_Read(bytes.File()).image->origin.series_text, "\u041B\u044E\u043A");
}

}  // namespace
