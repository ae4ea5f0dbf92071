#include "workbench/volumes/message_text.h"

#include <gtest/gtest.h>

namespace {

TEST(Message_Text, SeparatesThousandsAndChoosesUnits) {
    EXPECT_EQ(Count_Text(0), "0");
    EXPECT_EQ(Count_Text(999), "999");
    EXPECT_EQ(Count_Text(1000), "1,000");
    EXPECT_EQ(Count_Text(7109137), "7,109,137");
    EXPECT_EQ(Size_Text(1023), "1023 bytes");
    EXPECT_EQ(Size_Text(1536), "1.5 KiB");
    EXPECT_EQ(Size_Text(std::uint64_t{2} << 30U), "2.0 GiB");
    EXPECT_EQ(Size_Text(1048575), "1,023.9 KiB");
}

}  // namespace
