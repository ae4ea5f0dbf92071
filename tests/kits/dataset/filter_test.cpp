#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kits/dataset/dataset_host.h"

namespace {

/** The texts of a filter up to its double zero. */
std::vector<std::string> Texts(const char* filter) {
    std::vector<std::string> texts;
    while (*filter != 0) {
        texts.emplace_back(filter);
        filter += texts.back().size() + 1;
    }
    return texts;
}

using List = std::vector<std::string>;

class Filter : public testing::Test {
  protected:
    void SetUp() override {
        Variable_Define_Text("$FILE_EXTENSION_EXCEL", "*.csv;*.txt");
        Variable_Define_Text("$FILE_EXTENSION_ALL", "*.*");
    }
    void TearDown() override {
        for (const char* name : {"$FILE_EXTENSION_EXCEL", "$FILE_EXTENSION_ALL", "$LONG", "$NUMBER", "$TEXTS"}) {
            Variable_Undefine(name);
        }
    }
};

}  // namespace

TEST_F(Filter, has_a_label_and_a_pattern_per_pair_and_ends_with_two_zeros) {
    const char* filter =
        Fct_Create_szFilter(2, "DB Files", "$FILE_EXTENSION_EXCEL", "All Files", "$FILE_EXTENSION_ALL");
    EXPECT_EQ(std::string(filter, 37), std::string("DB Files\0*.csv;*.txt\0All Files\0*.*\0\0", 36) + '\0');
    EXPECT_EQ(Texts(filter), (List{"DB Files", "*.csv;*.txt", "All Files", "*.*"}));
}

TEST_F(Filter, a_missing_pattern_stands_for_all_files) {
    Variable_Define_Scalar("$NUMBER", VARIABLE_SIGNED_32, 4);
    Variable_Define_Array("$TEXTS", VARIABLE_TEXT, 2);
    Variable_Define_Text("$LONG", "");
    EXPECT_EQ(Texts(Fct_Create_szFilter(4, "a", "$NOT_THERE", "b", "$NUMBER", "c", "$TEXTS", "d", "$LONG")),
              (List{"a", "*.*", "b", "*.*", "c", "*.*", "d", "*.*"}));
    const char* no_text = nullptr;
    EXPECT_EQ(Texts(Fct_Create_szFilter(2, no_text, "$FILE_EXTENSION_EXCEL", "", no_text)),
              (List{"*.csv;*.txt", "*.csv;*.txt", "*.*", "*.*"}));
}

TEST_F(Filter, of_nothing_is_empty) {
    for (const int n : {0, -1}) {
        const char* filter = Fct_Create_szFilter(n);
        EXPECT_EQ(filter[0], 0);
        EXPECT_EQ(filter[1], 0);
    }
}

TEST_F(Filter, pairs_without_room_are_left_out_whole) {
    Variable_Define_Text("$LONG", std::string(4090, 'x').c_str());
    EXPECT_EQ(Texts(Fct_Create_szFilter(3, "a", "$FILE_EXTENSION_ALL", "long", "$LONG", "z", "$FILE_EXTENSION_ALL")),
              (List{"a", "*.*", "z", "*.*"}));
    for (std::size_t size = 4070; size < 4110; ++size) {
        Variable_Define_Text("$LONG", std::string(size, 'x').c_str());
        const List texts = Texts(Fct_Create_szFilter(1, "l", "$LONG"));
        EXPECT_EQ(texts.size(), size + 1 + 2 <= 4096 - 2 ? 2U : 0U) << size;
    }
}
