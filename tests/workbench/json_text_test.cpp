// JSON, as programs read it that drive the application.
#include "workbench/model/json_text.h"

#include <gtest/gtest.h>

#include <limits>

using workbench::Json_Text;

namespace {

TEST(Json, objects_and_lists_get_their_commas) {
    Json_Text json;
    json.Object_Begin();
    json.Number("a", -3);
    json.List_Begin("b");
    json.Number({}, 1);
    json.Number({}, 2);
    json.List_End();
    json.Object_Begin("c");
    json.Object_End();
    json.Flag("d", true);
    json.Flag("e", false);
    json.Object_End();
    EXPECT_EQ(json.Written(), R"({"a":-3,"b":[1,2],"c":{},"d":true,"e":false})");
}

TEST(Json, texts_keep_quotes_backslashes_and_line_ends) {
    Json_Text json;
    json.List_Begin();
    json.Text({},
              "C:\\x \"y\"\n\x01 Gr\xC3\xB6\xC3\x9F"
              "e");
    json.List_End();
    EXPECT_EQ(json.Written(),
              "[\"C:\\\\x \\\"y\\\"\\u000a\\u0001 Gr\xC3\xB6\xC3\x9F"
              "e\"]");
}

TEST(Json, reals_come_back_as_they_were) {
    Json_Text json;
    json.List_Begin();
    json.Real({}, 0.1);
    json.Real({}, 2.0);
    json.Real({}, 1e-300);
    json.Real({}, std::numeric_limits<double>::infinity());
    json.List_End();
    EXPECT_EQ(json.Written(), "[0.1,2,1e-300,null]");
}

}  // namespace
