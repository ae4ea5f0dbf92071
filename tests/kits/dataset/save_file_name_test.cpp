#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "kits/dataset/dataset_host.h"

namespace {

struct Asked {
    int result = 1;
    std::string title, filter, initial_name, extension;
};

int Answer(void* context, const char* title, const char* filter, const char* initial_name, const char* extension,
           char* buffer) {
    auto& asked = *static_cast<Asked*>(context);
    asked.title = title;
    asked.filter = filter;
    asked.initial_name = initial_name;
    asked.extension = extension;
    EXPECT_EQ(buffer[0], 0);
    std::strcpy(buffer, "C:\\out.csv");
    return asked.result;
}

}  // namespace

TEST(Save_File_Name, a_listener_answers_instead_of_the_dialog) {
    Asked asked;
    Request_Listener listener;
    listener.context = &asked;
    listener.save_file_name = Answer;
    Request_Listener_Set(listener);
    std::vector<char> buffer(FILE_NAME_SIZE, '#');
    EXPECT_NE(Fct_Save_FileName("Write", "A\0*.a\0", "C:\\histogram", "csv", buffer.data(), 0), 0);
    EXPECT_STREQ(buffer.data(), "C:\\out.csv");
    EXPECT_EQ(asked.title, "Write");
    EXPECT_EQ(asked.filter, "A");
    EXPECT_EQ(asked.initial_name, "C:\\histogram");
    EXPECT_EQ(asked.extension, "csv");
    asked.result = 0;
    EXPECT_EQ(Fct_Save_FileName("Write", "", "", "", buffer.data(), 0), 0);
    EXPECT_EQ(Fct_Save_FileName("Write", "", "", "", nullptr, 0), 0);
    Request_Listener_Set({});
}

#if !defined(_WIN32)
TEST(Save_File_Name, without_a_dialog_it_is_cancelled) {
    std::vector<char> buffer(FILE_NAME_SIZE, '#');
    EXPECT_EQ(Fct_Save_FileName("Write", nullptr, nullptr, nullptr, buffer.data(), 0), 0);
    EXPECT_EQ(buffer[0], 0);
}
#endif
