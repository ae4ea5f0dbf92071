#include "kits/common/messages.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/kits/common/message_sink.h"

namespace {

HWND Some_Window() {
    return reinterpret_cast<HWND>(std::uintptr_t{0x1234});
}

std::vector<std::string> order;

void Note_Name(void* context, HWND, int, const char* text) {
    order.push_back(std::string(static_cast<const char*>(context)) + text);
}

void Remove_Itself(void* context, HWND, int, const char*) {
    order.emplace_back("once");
    EXPECT_EQ(Message_Receiver_Remove(Remove_Itself, context), 1);
}

char late_name[] = "late:";

void Add_Another(void*, HWND, int, const char*) {
    Message_Receiver_Add(Note_Name, late_name, true);
}

void Answer(void*, HWND, int, const char* text) {
    order.emplace_back(text);
    Error_Fct(nullptr, 16, "answer to %s", text);
}

void Fail(void*, HWND, int, const char*) {
    throw std::runtime_error("no disk");
}

class Messages : public testing::Test {
  protected:
    void SetUp() override { order.clear(); }
};

}  // namespace

TEST_F(Messages, reach_a_receiver_with_window_and_level) {
    Message_Sink sink;
    EXPECT_EQ(Error_Fct(Some_Window(), 2, "%d of %s", 3, "four"), 1);
    ASSERT_EQ(sink.messages.size(), 1U);
    EXPECT_EQ(sink.messages[0].window, Some_Window());
    EXPECT_EQ(sink.messages[0].level, 2);
    EXPECT_EQ(sink.messages[0].text, "3 of four");
}

TEST_F(Messages, reach_receivers_in_the_order_of_their_registration) {
    char first[] = "a:";
    char second[] = "b:";
    EXPECT_EQ(Message_Receiver_Add(Note_Name, first, true), 1);
    EXPECT_EQ(Message_Receiver_Add(Note_Name, second, true), 1);
    EXPECT_EQ(Message_Receiver_Add(Note_Name, first, true), 0) << "registered already";
    Error_Fct(nullptr, 4, "x");
    EXPECT_EQ(order, (std::vector<std::string>{"a:x", "b:x"}));
    EXPECT_EQ(Message_Receiver_Remove(Note_Name, first), 1);
    EXPECT_EQ(Message_Receiver_Remove(Note_Name, first), 0);
    Error_Fct(nullptr, 4, "y");
    EXPECT_EQ(order.back(), "b:y");
    EXPECT_EQ(order.size(), 3U);
    EXPECT_EQ(Message_Receiver_Remove(Note_Name, second), 1);
}

TEST_F(Messages, nobody_listening_and_no_format_are_harmless) {
    EXPECT_EQ(Error_Fct(nullptr, 1, "to nobody %d", 1), 1);
    Message_Sink sink;
    int (*report)(HWND, int, const char*, ...) = Error_Fct;
    EXPECT_EQ(report(nullptr, 1, nullptr), 1);
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(Message_Receiver_Add(nullptr, nullptr, true), 0);
    EXPECT_EQ(Message_Receiver_Remove(nullptr, nullptr), 0);
}

TEST_F(Messages, a_receiver_may_leave_while_it_is_called) {
    char after[] = "after:";
    Message_Receiver_Add(Remove_Itself, nullptr, true);
    Message_Receiver_Add(Note_Name, after, true);
    Error_Fct(nullptr, 4, "1");
    Error_Fct(nullptr, 4, "2");
    EXPECT_EQ(order, (std::vector<std::string>{"once", "after:1", "after:2"}));
    Message_Receiver_Remove(Note_Name, after);
}

TEST_F(Messages, a_receiver_that_comes_during_a_delivery_gets_the_next_message) {
    Message_Receiver_Add(Add_Another, nullptr, true);
    Error_Fct(nullptr, 4, "1");
    EXPECT_TRUE(order.empty());
    Error_Fct(nullptr, 4, "2");
    EXPECT_EQ(order, (std::vector<std::string>{"late:2"}));
    Message_Receiver_Remove(Add_Another, nullptr);
    EXPECT_EQ(Message_Receiver_Remove(Note_Name, late_name), 1);
}

TEST_F(Messages, a_receiver_that_answers_every_message_comes_to_an_end) {
    Message_Receiver_Add(Answer, nullptr, true);
    Error_Fct(nullptr, 4, "q");
    Message_Receiver_Remove(Answer, nullptr);
    ASSERT_GE(order.size(), 2U);
    EXPECT_EQ(order[1], "answer to q");
    EXPECT_LE(order.size(), 16U);
    order.clear();
    Message_Sink sink;
    Error_Fct(nullptr, 4, "again");
    EXPECT_EQ(sink.Last(), "again") << "later messages are delivered as ever";
}

TEST_F(Messages, a_receiver_that_throws_harms_nobody) {
    Message_Receiver_Add(Fail, nullptr, true);
    Message_Sink sink;
    EXPECT_EQ(Error_Fct(nullptr, 4, "on"), 1);
    EXPECT_EQ(sink.Last(), "on");
    Message_Receiver_Remove(Fail, nullptr);
}

TEST_F(Messages, a_window_message_names_its_procedure_and_number) {
    Message_Sink sink;
    char name[] = "WndProc_Histo_Blow";
    EXPECT_EQ(System_Message(8, name, Some_Window(), 0x200), 1);
    ASSERT_EQ(sink.messages.size(), 1U);
    EXPECT_EQ(sink.messages[0].level, 8);
    EXPECT_EQ(sink.messages[0].window, Some_Window());
    EXPECT_NE(sink.Last().find("WndProc_Histo_Blow"), std::string::npos);
    EXPECT_NE(sink.Last().find("0x0200"), std::string::npos);
    EXPECT_EQ(System_Message(8, nullptr, nullptr, 1), 1);
}

TEST_F(Messages, globals_have_safe_defaults) {
    EXPECT_EQ(hwnd, nullptr);
    EXPECT_EQ(Flag_Trace, 0);
    ASSERT_NE(Prog_Name, nullptr);
    EXPECT_STRNE(Prog_Name, "");
}

TEST(Message_Traces, come_to_who_asks_or_while_they_are_switched_on) {
    std::vector<int> plain;
    std::vector<int> tracing;
    const Message_Receiver take = [](void* context, HWND, int level, const char*) {
        static_cast<std::vector<int>*>(context)->push_back(level);
    };
    Message_Receiver_Add(take, &plain);
    Message_Receiver_Add(take, &tracing, true);
    for (const int level : {MESSAGE_WARNING, 9, 10, TRACE_LEVEL, 17, 18}) {
        Error_Fct(nullptr, level, "level %d", level);
    }
    EXPECT_EQ(plain, (std::vector<int>{MESSAGE_WARNING, 9, 18}));
    EXPECT_EQ(tracing, (std::vector<int>{MESSAGE_WARNING, 9, 10, TRACE_LEVEL, 17, 18}));
    plain.clear();
    Flag_Trace = 1;
    Error_Fct(nullptr, TRACE_LEVEL, "a trace");
    Flag_Trace = 0;
    EXPECT_EQ(plain, std::vector<int>{TRACE_LEVEL});
    Message_Receiver_Remove(take, &plain);
    Message_Receiver_Remove(take, &tracing);
}
