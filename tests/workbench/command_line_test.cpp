#include "workbench/model/command_line.h"

#include <gtest/gtest.h>

using namespace workbench;

namespace {

Command_Line Parse(std::vector<std::string> arguments) {
    return Command_Line_Parse(arguments);
}

TEST(Command_Line, takes_everything_without_a_dash_as_a_file) {
    const Command_Line line = Parse({"a.nii", "folder/b.nii.gz"});
    EXPECT_EQ(line.files, (std::vector<std::string>{"a.nii", "folder/b.nii.gz"}));
    EXPECT_TRUE(line.error.empty());
    EXPECT_FALSE(line.help);
}

TEST(Command_Line, reads_options_with_their_values) {
    const Command_Line line = Parse({"--trace", "--labels", "l.nii.gz", "a.nii", "--report", "r.txt"});
    EXPECT_TRUE(line.trace);
    EXPECT_EQ(line.labels, "l.nii.gz");
    EXPECT_EQ(line.report, "r.txt");
    EXPECT_EQ(line.files, std::vector<std::string>{"a.nii"});
}

TEST(Command_Line, names_an_unknown_option) {
    EXPECT_EQ(Parse({"--frobnicate"}).error, "There is no option \"--frobnicate\"; --help lists them.");
    EXPECT_FALSE(Parse({"-x"}).error.empty());
}

TEST(Command_Line, names_an_option_without_its_value) {
    EXPECT_EQ(Parse({"--labels"}).error, "The option --labels needs a file name.");
    EXPECT_FALSE(Parse({"--report", ""}).error.empty());
}

TEST(Command_Line, takes_names_that_begin_with_a_dash_after_two_dashes) {
    const Command_Line line = Parse({"--", "--trace", "-"});
    EXPECT_EQ(line.files, (std::vector<std::string>{"--trace", "-"}));
    EXPECT_FALSE(line.trace);
    EXPECT_FALSE(line.check);
    EXPECT_TRUE(Parse({"--check"}).check);
}

TEST(Command_Line, help_names_every_option) {
    const std::string help = Command_Line_Help();
    for (const char* option : {"--labels", "--trace", "--check", "--report", "--help"}) {
        EXPECT_NE(help.find(option), std::string::npos) << option;
    }
    EXPECT_TRUE(Parse({"--help"}).help);
    EXPECT_TRUE(Parse({"-h"}).help);
}

}  // namespace
