#include "workbench/volumes/message_text.h"

#include <gtest/gtest.h>

using namespace volumes;

namespace {

TEST(Message_Text, separates_thousands_and_chooses_units) {
    EXPECT_EQ(Count_Text(0), "0");
    EXPECT_EQ(Count_Text(999), "999");
    EXPECT_EQ(Count_Text(1000), "1,000");
    EXPECT_EQ(Count_Text(7109137), "7,109,137");
    EXPECT_EQ(Size_Text(1023), "1023 bytes");
    EXPECT_EQ(Size_Text(1536), "1.5 KiB");
    EXPECT_EQ(Size_Text(std::uint64_t{2} << 30U), "2.0 GiB");
    EXPECT_EQ(Size_Text(1048575), "1,023.9 KiB");
}

TEST(Message_Text, bytes_of_a_file_become_valid_text) {
    EXPECT_EQ(Printable_Text("plain \xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80"),
              "plain \xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80");
    EXPECT_EQ(Printable_Text("M\xFCller\n"), "M\xEF\xBF\xBDller ");
    EXPECT_EQ(Printable_Text("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD") << "half a pair";
    EXPECT_EQ(Printable_Text("\xC0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD") << "longer than needed";
    EXPECT_EQ(Printable_Text("cut \xE2\x82"), "cut \xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(Printable_Text("1\xC3\xA4\xE2\x82\xAC", 3), "1\xC3\xA4\xE2\x82\xAC");
    EXPECT_EQ(Printable_Text("1\xC3\xA4\xE2\x82\xAC.", 3), "1\xC3\xA4\xE2\x82\xAC...");
}

TEST(Message_Text, values_have_six_digits_in_every_language) {
    EXPECT_EQ(Value_Text(0.1), "0.1");
    EXPECT_EQ(Value_Text(-1234567), "-1.23457e+06");
    EXPECT_EQ(Value_Text(1e300), "1e+300");
}

}  // namespace
