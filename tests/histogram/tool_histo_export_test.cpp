// The export command of the enlarged window: what it asks, what it writes, and what may happen while it asks.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>

#include "tests/histogram/blow_stage.h"

namespace {

constexpr const char* FILE_NAME = "blow_export_test.csv";

struct Question {
    std::string title;
    std::string filter;  ///< with its zeros
    std::string initial_name;
    std::string extension;
};

class Blow_Export : public Blow_Stage {
  protected:
    Blow_Export() {
        Variable_Define_Text("$DEFAULT_FILE_PATH", "C:\\data\\");
        Variable_Define_Text("$FILE_EXTENSION_EXCEL", "*.csv");
        Variable_Define_Text("$FILE_EXTENSION_ALL", "*.*");
        Request_Listener listener;
        listener.context = this;
        listener.save_file_name = Answer;
        Request_Listener_Set(listener);
        std::filesystem::remove(FILE_NAME);
        Open();
    }
    ~Blow_Export() override {
        Request_Listener_Set({});
        std::filesystem::remove(FILE_NAME);
        Variable_Undefine("$DEFAULT_FILE_PATH");
    }
    static std::string First_Line() {
        std::ifstream file(FILE_NAME);
        std::string line;
        std::getline(file, line);
        return line;
    }
    static void Press_Export() {
        const Buttons& button = histo_blow.export_button;
        Press(button.x + 5, button.y + 5);
        if (Window() != nullptr) {
            Release(button.x + 5, button.y + 5);
        }
        held = 0;
    }

    std::vector<Question> questions;
    int confirmed = 1;
    std::function<void()> meanwhile;  ///< what happens while the user is asked

  private:
    static int Answer(void* context, const char* title, const char* filter, const char* initial_name,
                      const char* extension, char* buffer) {
        auto& self = *static_cast<Blow_Export*>(context);
        const char* end = filter;
        while (*end != 0) {
            end += std::strlen(end) + 1;
        }
        self.questions.push_back({title, {filter, end}, initial_name, extension});
        if (self.meanwhile) {
            self.meanwhile();
        }
        std::strcpy(buffer, FILE_NAME);
        return self.confirmed;
    }
};

}  // namespace

TEST_F(Blow_Export, asks_for_a_name_and_writes_there) {
    int shown_pressed = 0;
    unsigned int look_ups = 0;
    meanwhile = [&] {
        shown_pressed = histo_blow.export_button.current;
        look_ups = Variable_Look_Ups("$REGIONAL_SEPARATOR");
    };
    Variable_Look_Ups_Reset();
    Press_Export();
    EXPECT_EQ(look_ups, 1U) << "read before the question, and not used";
    ASSERT_EQ(questions.size(), 1U);
    EXPECT_EQ(questions[0].title, "Write histogram info to file");
    using namespace std::string_literals;
    EXPECT_EQ(questions[0].filter, "DB Files\0*.csv\0All Files\0*.*\0"s);
    EXPECT_EQ(questions[0].initial_name, "C:\\data\\histogram");
    EXPECT_EQ(questions[0].extension, "csv");
    EXPECT_EQ(shown_pressed, 1);
    EXPECT_EQ(histo_blow.export_button.current, 0);
    EXPECT_EQ(First_Line(), "sep=\t");
}

TEST_F(Blow_Export, the_pressed_look_ends_with_the_command) {
    const Buttons& button = histo_blow.export_button;
    Press(button.x + 5, button.y + 5);
    EXPECT_EQ(questions.size(), 1U);
    EXPECT_EQ(button.state, 0) << "the mouse has not moved since";
}

TEST_F(Blow_Export, without_a_folder_the_name_stands_alone) {
    Variable_Undefine("$DEFAULT_FILE_PATH");
    Press_Export();
    ASSERT_EQ(questions.size(), 1U);
    EXPECT_EQ(questions[0].initial_name, "histogram");
}

TEST_F(Blow_Export, cancelled_it_writes_nothing) {
    confirmed = 0;
    Press_Export();
    EXPECT_EQ(questions.size(), 1U);
    EXPECT_FALSE(std::filesystem::exists(FILE_NAME));
    EXPECT_EQ(histo_blow.export_button.current, 0);
}

TEST_F(Blow_Export, without_counts_it_does_not_ask) {
    panel->data->Record_Empty();
    Send(DATA);
    Press_Export();
    EXPECT_EQ(questions.size(), 0U);
}

TEST_F(Blow_Export, leaves_no_drag_behind) {
    meanwhile = [] { held = 0; };  // the dialog takes the release
    const Buttons& button = histo_blow.export_button;
    Press(button.x + 5, button.y + 5);
    EXPECT_FALSE(histo_blow.dragging);
    EXPECT_NE(::GetCapture(), Window());
}

TEST_F(Blow_Export, asks_once_at_a_time) {
    meanwhile = [&] { Press_Export(); };
    Press_Export();
    EXPECT_EQ(questions.size(), 1U);
}

TEST_F(Blow_Export, the_window_may_close_meanwhile) {
    meanwhile = [] { Send(WM_CLOSE); };
    Press_Export();
    EXPECT_EQ(Window(), nullptr);
    EXPECT_EQ(First_Line(), "sep=\t") << "what was confirmed is written";
    meanwhile = nullptr;
    std::filesystem::remove(FILE_NAME);
    Open();
    Press_Export();
    EXPECT_EQ(First_Line(), "sep=\t") << "a later export works";
}

TEST_F(Blow_Export, another_panel_may_go_meanwhile_and_the_window_with_it) {
    auto other = std::make_unique<Tool_Histo>();
    meanwhile = [&] { other.reset(); };
    Press_Export();
    EXPECT_EQ(Window(), nullptr);
    EXPECT_EQ(First_Line(), "sep=\t");
}

TEST_F(Blow_Export, the_panel_may_go_meanwhile) {
    meanwhile = [&] { panel.reset(); };
    Press_Export();
    EXPECT_EQ(Window(), nullptr);
    EXPECT_FALSE(std::filesystem::exists(FILE_NAME));
}

TEST_F(Blow_Export, the_data_may_go_meanwhile) {
    meanwhile = [&] { panel->data->Record_Empty(); };
    Press_Export();
    EXPECT_FALSE(std::filesystem::exists(FILE_NAME));
    EXPECT_EQ(Lines("No histogram to export!").size(), 1U);
}

TEST_F(Blow_Export, a_raised_window_does_not_stay_above_the_dialog) {
    const auto is_topmost = [] { return (::GetWindowLongPtrA(Window(), GWL_EXSTYLE) & WS_EX_TOPMOST) != 0; };
    Press_Blow(*panel);
    ASSERT_TRUE(is_topmost());
    bool above_dialog = true;
    meanwhile = [&] { above_dialog = is_topmost(); };
    Press_Export();
    EXPECT_FALSE(above_dialog);
    EXPECT_TRUE(is_topmost()) << "raised again afterwards";
}

TEST_F(Blow_Export, takes_no_other_click_meanwhile) {
    meanwhile = [] { EXPECT_EQ(::IsWindowEnabled(Window()), 0) << "as under every dialog of the system"; };
    Press_Export();
    EXPECT_NE(::IsWindowEnabled(Window()), 0);
}
