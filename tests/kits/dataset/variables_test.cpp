#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <random>
#include <string>

#include "kits/dataset/dataset_host.h"

namespace {

struct Answer {
    void* value = nullptr;
    int nb = -1;
    unsigned short type = 99;
    int (*fct)(void) = [] { return 1; };
};

Answer Value(const char* name) {
    Answer answer;
    answer.value = Fct_Variable_Value(name, &answer.nb, &answer.type, &answer.fct);
    return answer;
}

std::intptr_t Number(const char* name) {
    return reinterpret_cast<std::intptr_t>(Fct_Variable_Value(name, nullptr, nullptr, nullptr));
}

void* Storage(const char* name) {
    return Fct_Variable_Get(name, nullptr, nullptr, nullptr, 0);
}

template <typename Type>
Type Stored(const char* name) {
    Type value;
    std::memcpy(&value, Storage(name), sizeof(value));
    return value;
}

class Variables : public testing::Test {
  protected:
    void TearDown() override {
        for (const char* name : {"$A", "$B", "$C"}) {
            Variable_Undefine(name);
        }
    }
};

}  // namespace

TEST_F(Variables, a_missing_one_is_null_and_described_as_none) {
    const Answer answer = Value("$MISSING");
    EXPECT_EQ(answer.value, nullptr);
    EXPECT_EQ(answer.nb, 0);
    EXPECT_EQ(answer.type, VARIABLE_NONE);
    EXPECT_EQ(answer.fct, nullptr);
    int nb = 7;
    EXPECT_EQ(Fct_Variable_Get("$MISSING", &nb, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(nb, 0);
    EXPECT_EQ(Fct_Variable_Value(nullptr, nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(Fct_Variable_Get("", nullptr, nullptr, nullptr, 0), nullptr);
}

TEST_F(Variables, scalars_are_widened_to_their_number) {
    struct Case {
        Variable_Type type;
        double value;
        std::intptr_t widened;
    };
    const Case cases[] = {{VARIABLE_UNSIGNED_8, 255, 255},
                          {VARIABLE_SIGNED_16, 300, 300},
                          {VARIABLE_SIGNED_16, -1, -1},
                          {VARIABLE_SIGNED_16, -32768, -32768},
                          {VARIABLE_UNSIGNED_16, 65535, 65535},
                          {VARIABLE_SIGNED_32, -2147483648.0, INT32_MIN},
                          {VARIABLE_UNSIGNED_32, 4294967295.0, 4294967295LL},
                          {VARIABLE_FLOAT, 12.75, 12},
                          {VARIABLE_FLOAT, -12.75, -12}};
    for (const Case& each : cases) {
        ASSERT_EQ(Variable_Define_Scalar("$A", each.type, each.value), 1);
        const Answer answer = Value("$A");
        EXPECT_EQ(reinterpret_cast<std::intptr_t>(answer.value), each.widened);
        EXPECT_EQ(answer.nb, 1);
        EXPECT_EQ(answer.type, each.type);
        EXPECT_EQ(answer.fct, nullptr);
        EXPECT_EQ(Variable_Number("$A", -7), each.value);
    }
}

TEST_F(Variables, the_low_sixteen_bits_of_a_negative_one_are_the_number) {
    Variable_Define_Scalar("$A", VARIABLE_SIGNED_16, -5);
    EXPECT_EQ(static_cast<std::int16_t>(Number("$A")), -5);
    EXPECT_EQ(static_cast<std::uint16_t>(Number("$A")), 0xFFFB);
}

TEST_F(Variables, a_scalar_of_zero_is_null_by_value_but_has_an_address) {
    Variable_Define_Scalar("$A", VARIABLE_UNSIGNED_16, 0);
    const Answer answer = Value("$A");
    EXPECT_EQ(answer.value, nullptr);
    EXPECT_EQ(answer.nb, 1);
    EXPECT_EQ(answer.type, VARIABLE_UNSIGNED_16);
    EXPECT_NE(Storage("$A"), nullptr);
}

TEST_F(Variables, the_storage_of_a_scalar_is_the_number_in_its_own_width) {
    Variable_Define_Scalar("$A", VARIABLE_SIGNED_16, -2);
    EXPECT_EQ(Stored<std::int16_t>("$A"), -2);
    Variable_Set("$A", 77);
    EXPECT_EQ(Stored<std::int16_t>("$A"), 77);
    Variable_Define_Scalar("$A", VARIABLE_FLOAT, 0.25);
    EXPECT_EQ(Stored<float>("$A"), 0.25F);
    const std::uint8_t one = 1;
    Variable_Define_Scalar("$A", VARIABLE_UNSIGNED_8, 0);
    std::memcpy(Storage("$A"), &one, 1);
    EXPECT_EQ(Number("$A"), 1) << "a panel writes through the address";
    EXPECT_EQ(Variable_Number("$A", -1), 1);
}

TEST_F(Variables, numbers_beyond_the_type_become_the_nearest) {
    Variable_Define_Scalar("$A", VARIABLE_UNSIGNED_8, 300);
    EXPECT_EQ(Number("$A"), 255);
    EXPECT_EQ(Variable_Set("$A", -3), 1);
    EXPECT_EQ(Number("$A"), 0);
    Variable_Set("$A", std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(Number("$A"), 0);
    Variable_Define_Scalar("$A", VARIABLE_SIGNED_32, 1e300);
    EXPECT_EQ(Number("$A"), INT32_MAX);
    Variable_Define_Scalar("$A", VARIABLE_FLOAT, std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isinf(Stored<float>("$A")));
    EXPECT_EQ(Number("$A"), INT32_MAX);
    Variable_Set("$A", 1e300);
    EXPECT_EQ(Stored<float>("$A"), std::numeric_limits<float>::max());
}

TEST_F(Variables, wrong_definitions_are_refused) {
    EXPECT_EQ(Variable_Define_Scalar(nullptr, VARIABLE_FLOAT, 1), 0);
    EXPECT_EQ(Variable_Define_Scalar("$A", VARIABLE_TEXT, 1), 0);
    EXPECT_EQ(Variable_Define_Scalar("$A", VARIABLE_NONE, 1), 0);
    EXPECT_EQ(Variable_Define_Array("$A", VARIABLE_NONE, 3), nullptr);
    EXPECT_EQ(Variable_Define_Array("$A", VARIABLE_FLOAT, -1), nullptr);
    EXPECT_EQ(Variable_Define_Array_At("$A", VARIABLE_NONE, 1, nullptr), 0);
    EXPECT_EQ(Variable_Define_Text(nullptr, "x"), 0);
    EXPECT_EQ(Variable_Define_Pointer("", nullptr), 0);
    EXPECT_EQ(Variable_Undefine("$A"), 0);
    EXPECT_EQ(Variable_Undefine(nullptr), 0);
    EXPECT_EQ(Storage("$A"), nullptr);
}

TEST_F(Variables, setting_needs_a_scalar) {
    EXPECT_EQ(Variable_Set("$A", 1), 0);
    Variable_Define_Text("$A", "t");
    EXPECT_EQ(Variable_Set("$A", 1), 0);
    EXPECT_EQ(Variable_Number("$A", -7), -7);
    EXPECT_STREQ(static_cast<const char*>(Value("$A").value), "t");
}

TEST_F(Variables, an_array_gives_its_first_element_and_its_storage_points_there) {
    auto* colors = static_cast<std::uint16_t*>(Variable_Define_Array("$A", VARIABLE_UNSIGNED_16, 8));
    ASSERT_NE(colors, nullptr);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(colors[i], 0);
        colors[i] = static_cast<std::uint16_t>(100 + i);
    }
    const Answer answer = Value("$A");
    EXPECT_EQ(answer.value, colors);
    EXPECT_EQ(answer.nb, 8);
    EXPECT_EQ(answer.type, VARIABLE_UNSIGNED_16);
    EXPECT_EQ(Stored<void*>("$A"), colors);
    int nb = 0;
    EXPECT_EQ(Variable_Array("$A", VARIABLE_UNSIGNED_16, &nb), colors);
    EXPECT_EQ(nb, 8);
    EXPECT_EQ(Variable_Array("$A", VARIABLE_SIGNED_16, &nb), nullptr);
    EXPECT_EQ(nb, 0);
}

TEST_F(Variables, a_resized_array_keeps_its_first_elements) {
    auto* first = static_cast<std::uint8_t*>(Variable_Define_Array("$A", VARIABLE_UNSIGNED_8, 3));
    first[0] = 1;
    first[2] = 3;
    const void* storage = Storage("$A");
    first = static_cast<std::uint8_t*>(Variable_Define_Array("$A", VARIABLE_UNSIGNED_8, 5));
    EXPECT_EQ(first[0], 1);
    EXPECT_EQ(first[2], 3);
    EXPECT_EQ(first[3], 0);
    EXPECT_EQ(Storage("$A"), storage);
    first = static_cast<std::uint8_t*>(Variable_Define_Array("$A", VARIABLE_UNSIGNED_8, 1));
    EXPECT_EQ(first[0], 1);
    first = static_cast<std::uint8_t*>(Variable_Define_Array("$A", VARIABLE_UNSIGNED_8, 3));
    EXPECT_EQ(first[2], 0) << "what was cut off is gone";
    auto* other = static_cast<std::uint16_t*>(Variable_Define_Array("$A", VARIABLE_UNSIGNED_16, 3));
    EXPECT_EQ(other[0], 0) << "another type keeps nothing";
    EXPECT_NE(Variable_Define_Array("$A", VARIABLE_UNSIGNED_16, 0), nullptr);
    EXPECT_EQ(Value("$A").nb, 0);
    EXPECT_NE(Value("$A").value, nullptr);
}

TEST_F(Variables, an_array_of_texts_owns_them_on_the_c_heap) {
    ASSERT_NE(Variable_Define_Array("$A", VARIABLE_TEXT, 4), nullptr);
    EXPECT_EQ(Variable_Set_Array_Text("$A", 0, "zero"), 1);
    EXPECT_EQ(Variable_Set_Array_Text("$A", 3, "three"), 1);
    EXPECT_EQ(Variable_Set_Array_Text("$A", 4, "x"), 0);
    EXPECT_EQ(Variable_Set_Array_Text("$A", -1, "x"), 0);
    EXPECT_EQ(Variable_Set_Array_Text("$B", 0, "x"), 0);
    auto** texts = static_cast<char**>(Value("$A").value);
    EXPECT_STREQ(texts[0], "zero");
    EXPECT_EQ(texts[1], nullptr);
    // A panel replaces one with a text of its own.
    std::free(texts[0]);
    texts[0] = static_cast<char*>(std::malloc(4));
    std::memcpy(texts[0], "new", 4);
    Variable_Define_Array("$A", VARIABLE_TEXT, 2);
    texts = static_cast<char**>(Value("$A").value);
    EXPECT_STREQ(texts[0], "new");
    EXPECT_EQ(Variable_Set_Array_Text("$A", 0, texts[0]), 1) << "its own text is copied before it is freed";
    EXPECT_STREQ(texts[0], "new");
    EXPECT_EQ(Variable_Set_Array_Text("$A", 0, nullptr), 1);
    EXPECT_EQ(texts[0], nullptr);
}

TEST_F(Variables, an_array_of_the_application_is_only_named) {
    float position[3] = {1.0F, 2.0F, 3.0F};
    EXPECT_EQ(Variable_Define_Array_At("$A", VARIABLE_FLOAT, 3, position), 1);
    EXPECT_EQ(Value("$A").value, position);
    EXPECT_EQ(Stored<void*>("$A"), position);
    // Freeing it would be an error that the sanitizers report.
    auto* own = static_cast<float*>(Variable_Define_Array("$A", VARIABLE_FLOAT, 3));
    EXPECT_EQ(own[0], 0.0F);
    EXPECT_EQ(position[0], 1.0F);
    Variable_Define_Array_At("$A", VARIABLE_FLOAT, 0, nullptr);
    EXPECT_EQ(Value("$A").value, nullptr);
}

TEST_F(Variables, a_text_is_copied_and_its_storage_points_to_it) {
    char text[] = "path/";
    EXPECT_EQ(Variable_Define_Text("$A", text), 1);
    text[0] = 'X';
    const Answer answer = Value("$A");
    EXPECT_STREQ(static_cast<const char*>(answer.value), "path/");
    EXPECT_EQ(answer.nb, 1);
    EXPECT_EQ(answer.type, VARIABLE_TEXT);
    EXPECT_EQ(Stored<void*>("$A"), answer.value);
    EXPECT_EQ(Variable_Define_Text("$A", static_cast<const char*>(answer.value)), 1) << "its own text";
    EXPECT_STREQ(static_cast<const char*>(Value("$A").value), "path/");
    EXPECT_EQ(Variable_Define_Text("$A", nullptr), 1);
    EXPECT_EQ(Value("$A").value, nullptr);
    EXPECT_NE(Storage("$A"), nullptr);
}

TEST_F(Variables, an_object_pointer_is_the_value_and_stands_in_the_storage) {
    int object = 0;
    EXPECT_EQ(Variable_Define_Pointer("$A", &object), 1);
    const Answer answer = Value("$A");
    EXPECT_EQ(answer.value, &object);
    EXPECT_EQ(answer.type, VARIABLE_POINTER);
    EXPECT_EQ(Stored<void*>("$A"), &object);
}

TEST_F(Variables, an_undefined_one_is_missing_and_its_kept_address_holds_zero) {
    Variable_Define_Text("$A", "x");
    void* storage = Storage("$A");
    EXPECT_EQ(Variable_Undefine("$A"), 1);
    EXPECT_EQ(Variable_Undefine("$A"), 0);
    EXPECT_EQ(Value("$A").value, nullptr);
    EXPECT_EQ(Storage("$A"), nullptr);
    void* held;
    std::memcpy(&held, storage, sizeof(held));
    EXPECT_EQ(held, nullptr);
    Variable_Define_Pointer("$A", storage);
    EXPECT_EQ(Storage("$A"), storage);
}

TEST_F(Variables, addresses_never_change_over_ten_thousand_random_definitions) {
    std::mt19937 generator(1);
    std::map<std::string, void*> addresses;
    for (int round = 0; round < 10000; ++round) {
        const std::string name = "$RANDOM_" + std::to_string(generator() % 700);
        switch (generator() % 6) {
            case 0:
                Variable_Define_Scalar(name.c_str(), VARIABLE_UNSIGNED_16, generator() % 65536);
                break;
            case 1:
                Variable_Define_Array(name.c_str(), VARIABLE_FLOAT, static_cast<int>(generator() % 100));
                break;
            case 2:
                Variable_Define_Text(name.c_str(), name.c_str());
                break;
            case 3:
                Variable_Define_Pointer(name.c_str(), &generator);
                break;
            case 4:
                Variable_Define_Array(name.c_str(), VARIABLE_TEXT, static_cast<int>(generator() % 5));
                break;
            default:
                Variable_Undefine(name.c_str());
                break;
        }
        Variable_Set_Array_Text(name.c_str(), 1, "label");
        if (void* storage = Storage(name.c_str())) {
            void*& known = addresses[name];
            ASSERT_TRUE(known == nullptr || known == storage) << name;
            known = storage;
        }
    }
    EXPECT_GT(addresses.size(), 600U);
    for (const auto& [name, address] : addresses) {
        Variable_Define_Scalar(name.c_str(), VARIABLE_SIGNED_32, 5);
        EXPECT_EQ(Storage(name.c_str()), address);
        Variable_Undefine(name.c_str());
    }
}

TEST_F(Variables, names_that_share_a_beginning_are_different) {
    Variable_Define_Scalar("$A", VARIABLE_SIGNED_32, 1);
    EXPECT_EQ(Storage("$"), nullptr);
    EXPECT_EQ(Storage("$AA"), nullptr);
    Variable_Define_Scalar("$INTERFACE_BUTTON_DIM_SML", VARIABLE_SIGNED_32, 2);
    Variable_Define_Scalar("$INTERFACE_BUTTON_DIM_BIG", VARIABLE_SIGNED_32, 3);
    EXPECT_EQ(Number("$INTERFACE_BUTTON_DIM_SML"), 2);
    EXPECT_EQ(Number("$INTERFACE_BUTTON_DIM_BIG"), 3);
    Variable_Undefine("$INTERFACE_BUTTON_DIM_SML");
    Variable_Undefine("$INTERFACE_BUTTON_DIM_BIG");
}

TEST_F(Variables, look_ups_are_counted_also_of_missing_names) {
    Variable_Look_Ups_Reset();
    EXPECT_EQ(Variable_Look_Ups(nullptr), 0U);
    Variable_Define_Scalar("$A", VARIABLE_FLOAT, 1);
    Variable_Set("$A", 2);
    Variable_Number("$A", 0);
    EXPECT_EQ(Variable_Look_Ups("$A"), 0U) << "the application's own access is not a look-up";
    Number("$A");
    Storage("$A");
    Number("$ABSENT");
    EXPECT_EQ(Variable_Look_Ups("$A"), 2U);
    EXPECT_EQ(Variable_Look_Ups("$ABSENT"), 1U);
    EXPECT_EQ(Variable_Look_Ups("$NEVER"), 0U);
    EXPECT_EQ(Variable_Look_Ups(nullptr), 3U);
    EXPECT_EQ(Storage("$ABSENT"), nullptr) << "asking does not define";
    Variable_Look_Ups_Reset();
    EXPECT_EQ(Variable_Look_Ups("$A"), 0U);
    EXPECT_EQ(Variable_Look_Ups(nullptr), 0U);
}
