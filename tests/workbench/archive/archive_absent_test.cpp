// The application in a build that speaks with no archives: linked without the network, it says so.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/workbench/dialogs_double.h"
#include "workbench/parts/archive_control.h"

using namespace workbench;
using testing::HasSubstr;

TEST(Absent_Archives, are_told_by_every_operation) {
    const Archive_Operations operations = Archive_Operations_Of_Network();
    const archive::Archive_Settings any;
    const std::string expected = "This build speaks with no archives.";
    EXPECT_EQ(operations.test(any, {}, nullptr).error, expected);
    EXPECT_EQ(operations.studies(any, {}, {}).outcome.error, expected);
    EXPECT_EQ(operations.series(any, "1.2", {}).outcome.error, expected);
    EXPECT_EQ(operations.retrieve(any, {}, {}, {}).outcome.error, expected);
    EXPECT_EQ(operations.send(any, {}, {}, {}).outcome.error, expected);
    EXPECT_EQ(archive::Query_Doubt({}), "");
}
