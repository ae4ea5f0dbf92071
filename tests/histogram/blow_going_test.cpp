// Panels that the host destroys inside an operation that calls out: a drop list, a dialog, messages, a window that
// opens.
#include <filesystem>
#include <functional>

#include "kits/widgets/select_drop_list.h"
#include "tests/histogram/blow_stage.h"
#include "tests/support/import_hook.h"

namespace {

/** A panel whose memory cannot be touched once it is gone. */
class Going_Panel {
  public:
    Going_Panel() : memory(::VirtualAlloc(nullptr, sizeof(Tool_Histo), MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE)) {
        panel = new (memory) Tool_Histo();
    }
    ~Going_Panel() {
        Go();
        ::VirtualFree(memory, 0, MEM_RELEASE);
    }
    Going_Panel(const Going_Panel&) = delete;
    Going_Panel& operator=(const Going_Panel&) = delete;

    void Go() {
        if (panel != nullptr) {
            Tool_Histo* going = panel;
            panel = nullptr;
            going->~Tool_Histo();
            DWORD before = 0;
            ::VirtualProtect(memory, sizeof(Tool_Histo), PAGE_NOACCESS, &before);
        }
    }
    bool Is_Gone() const { return panel == nullptr; }
    Tool_Histo& Panel() const { return *panel; }

  private:
    void* memory;
    Tool_Histo* panel;
};

/** What the host does inside the call. */
std::function<void()> answer;

void Answer_Once() {
    if (answer) {
        const auto once = std::move(answer);
        answer = nullptr;
        once();
    }
}

void CALLBACK On_Timer(HWND /*window*/, UINT /*message*/, UINT_PTR timer, DWORD /*time*/) {
    ::KillTimer(nullptr, timer);
    Answer_Once();
}

Import_Hook shown;
BOOL WINAPI Show_Window(HWND window, int command) {
    Answer_Once();
    return reinterpret_cast<decltype(&::ShowWindow)>(shown.Original())(window, command);
}

class Blow_Going : public Blow_Stage {
  protected:
    Blow_Going() {
        panel.reset();
        going.emplace();
        stage.Lay_Out(going->Panel());
        Give_Record(going->Panel());
    }
    ~Blow_Going() override {
        answer = nullptr;
        shown = {};
        Request_Listener_Set({});
        Message_Receiver_Remove(Count, this);
        Message_Receiver_Remove(Answer_Message, this);
        std::filesystem::remove(FILE_NAME);
    }
    void Open_Going() {
        Press_Blow(going->Panel());
        Client_Size_Set(CLIENT_WIDTH, CLIENT_HEIGHT);
        Settle();
    }
    void Again() {
        going.reset();
        going.emplace();
        stage.Lay_Out(going->Panel());
        Give_Record(going->Panel());
        held = 0;
    }
    /** How many messages an operation tells. */
    int Messages_Of(const std::function<void(Tool_Histo&)>& operation) {
        message_nb = 0;
        Message_Receiver_Add(Count, this, true);
        operation(going->Panel());
        Message_Receiver_Remove(Count, this);
        return message_nb;
    }
    /** The panel goes at each message in turn. */
    void Goes_At_Each_Message(const std::function<void(Tool_Histo&)>& operation) {
        const int nb = Messages_Of(operation);
        ASSERT_GT(nb, 0);
        for (int at = 0; at < nb; ++at) {
            Again();
            wait_for = at;
            answer = [this] { going->Go(); };
            Message_Receiver_Add(Answer_Message, this, true);
            operation(going->Panel());
            Message_Receiver_Remove(Answer_Message, this);
            EXPECT_TRUE(going->Is_Gone()) << at;
        }
        Again();
    }

    static constexpr const char* FILE_NAME = "blow_going_test.csv";
    std::optional<Going_Panel> going;

  private:
    /** What a host may answer by destroying the panel: not the traces with which operations begin. */
    static bool Is_Answered(int level) { return level < TRACE_OF_OPERATIONS; }
    static void Count(void* context, HWND, int level, const char*) {
        static_cast<Blow_Going*>(context)->message_nb += Is_Answered(level) ? 1 : 0;
    }
    static void Answer_Message(void* context, HWND, int level, const char*) {
        if (Is_Answered(level) && static_cast<Blow_Going*>(context)->wait_for-- == 0) {
            Answer_Once();
        }
    }
    static constexpr int TRACE_OF_OPERATIONS = 14;
    int message_nb = 0;
    int wait_for = 0;
};

}  // namespace

TEST_F(Blow_Going, while_the_drop_list_of_any_selector_is_open) {
    for (Selects* select : {&histo_blow.cursor_select, &histo_blow.tag_select, &histo_blow.peak_select}) {
        Again();
        Peaks_Give(going->Panel(), PEAK_GAUSS, 2);
        Open_Going();
        answer = [this] { going->Go(); };
        ::SetTimer(nullptr, 0, 10, On_Timer);
        Send(WM_LBUTTONDOWN, MK_LBUTTON, Field_Of(*select));
        EXPECT_TRUE(going->Is_Gone());
        EXPECT_EQ(Window(), nullptr);
        EXPECT_EQ(histo_blow.panel, nullptr);
        EXPECT_FALSE(histo_blow.dragging);
    }
}

TEST_F(Blow_Going, and_another_panel_opens_the_window_before_the_drop_list_returns) {
    Open_Going();
    std::optional<Tool_Histo> other;
    answer = [&] {
        going->Go();
        other.emplace();
        stage.Lay_Out(*other);
        Press_Blow(*other);
        ::PostMessageA(Window(), WM_NULL, 0, 0);
    };
    ::SetTimer(nullptr, 0, 10, On_Timer);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, Field_Of(histo_blow.tag_select));
    ASSERT_NE(Window(), nullptr);
    EXPECT_EQ(histo_blow.panel, &*other);
    EXPECT_EQ(histo_blow.display_tag, 0) << "the choice was another window's";
    EXPECT_FALSE(histo_blow.dragging);
}

TEST_F(Blow_Going, and_another_panel_opens_the_window_before_a_picked_item_is_told) {
    Open_Going();
    std::optional<Tool_Histo> other;
    answer = [&] {
        going->Go();
        other.emplace();
        stage.Lay_Out(*other);
        Press_Blow(*other);
    };
    Drop_List_Runner_Set([](const Drop_List_Request& /*request*/) {
        Answer_Once();
        return 1;
    });
    Send(WM_LBUTTONDOWN, MK_LBUTTON, Field_Of(histo_blow.tag_select));
    Drop_List_Runner_Set(nullptr);
    ASSERT_NE(Window(), nullptr);
    EXPECT_EQ(histo_blow.panel, &*other);
    EXPECT_EQ(histo_blow.display_tag, 0) << "the pick was another window's";
}

TEST_F(Blow_Going, while_the_export_asks_for_a_file) {
    Request_Listener listener;
    int confirmed = 1;
    listener.context = &confirmed;
    listener.save_file_name = [](void* context, const char*, const char*, const char*, const char*, char* buffer) {
        Answer_Once();
        std::snprintf(buffer, 64, "%s", FILE_NAME);
        return *static_cast<const int*>(context);
    };
    Request_Listener_Set(listener);
    for (const int yes : {1, 0}) {
        Again();
        confirmed = yes;
        Open_Going();
        answer = [this] { going->Go(); };
        const Buttons& button = histo_blow.export_button;
        Press(button.x + 5, button.y + 5);
        EXPECT_TRUE(going->Is_Gone());
        EXPECT_EQ(Window(), nullptr);
        EXPECT_FALSE(std::filesystem::exists(FILE_NAME));
    }
}

TEST_F(Blow_Going, while_the_export_tells_of_a_file_that_cannot_be_written) {
    Request_Listener listener;
    listener.save_file_name = [](void*, const char*, const char*, const char*, const char*, char* buffer) {
        std::snprintf(buffer, 64, "no/such/folder/file.csv");
        return 1;
    };
    Request_Listener_Set(listener);
    Goes_At_Each_Message([this](Tool_Histo& of) {
        Press_Blow(of);
        if (Window() != nullptr) {
            const Buttons& button = histo_blow.export_button;
            Press(button.x + 5, button.y + 5);
        }
    });
}

TEST_F(Blow_Going, while_its_window_opens) {
    shown = Import_Hook("", "user32.dll", "ShowWindow", reinterpret_cast<void*>(Show_Window));
    ASSERT_TRUE(shown.Is_Set());
    answer = [this] { going->Go(); };
    Press_Blow(going->Panel());
    EXPECT_TRUE(going->Is_Gone());
    EXPECT_EQ(Window(), nullptr) << "not the handle of a window that is gone";
    EXPECT_EQ(histo_blow.panel, nullptr);
    Again();
    Press_Blow(going->Panel());
    EXPECT_NE(Window(), nullptr) << "the next panel's opens";
}

TEST_F(Blow_Going, while_its_window_is_raised) {
    Open_Going();
    shown = Import_Hook("", "user32.dll", "ShowWindow", reinterpret_cast<void*>(Show_Window));
    answer = [this] { going->Go(); };
    Press_Blow(going->Panel());
    EXPECT_TRUE(going->Is_Gone());
    EXPECT_EQ(Window(), nullptr);
}

TEST_F(Blow_Going, at_every_message_of_a_fit_and_of_a_file) {
    Goes_At_Each_Message([](Tool_Histo& of) {
        last_zero = 0;  // the same candidates every time
        of.Fit_Gaussian();
    });
    Goes_At_Each_Message([](Tool_Histo& of) { of.Fit_Derivative(1); });
    Goes_At_Each_Message([](Tool_Histo& of) { of.Write("no/such/folder/file.csv"); });
    Goes_At_Each_Message([](Tool_Histo& of) { of.Write(nullptr); });
    Goes_At_Each_Message([](Tool_Histo& of) {
        of.data->Record_Empty();
        of.Write(FILE_NAME);
    });
}
