/** What a panel says and asks for, kept in order. Uses only what the kits export, so that panel and test share one
 * state of the kits. */
#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "kits/common/messages.h"
#include "kits/dataset/dataset_host.h"

struct Panel_Message {
    int level = 0;
    std::string text;
    friend bool operator==(const Panel_Message&, const Panel_Message&) = default;
};
/** For the failure texts of tests. */
std::ostream& operator<<(std::ostream& out, const Panel_Message& message);

/** Keeps every message of its life time, in order. */
class Message_Recorder {
  public:
    Message_Recorder() { Message_Receiver_Add(Receive, this, true); }
    ~Message_Recorder() { Message_Receiver_Remove(Receive, this); }
    Message_Recorder(const Message_Recorder&) = delete;
    Message_Recorder& operator=(const Message_Recorder&) = delete;

    const std::vector<Panel_Message>& All() const { return messages; }
    /** Everything since the last Take. */
    std::vector<Panel_Message> Take();
    /** Messages below the trace levels (10 and more) since the last Take. */
    std::vector<Panel_Message> Take_Reports();
    /** While it is off, nothing is kept and nothing allocated: for tests that count allocations. */
    void Listen(bool on) { listening = on; }

  private:
    static void Receive(void* context, HWND window, int level, const char* text);
    std::vector<Panel_Message> messages;
    bool listening = true;
};

struct Panel_Request {
    enum class Kind { Update, Redraw, Change_Child };
    Kind kind = Kind::Update;
    unsigned long long flags = 0;
    void* a = nullptr;  ///< Change_Child: the window
    void* b = nullptr;  ///< Change_Child: the new frame
    void* c = nullptr;  ///< Change_Child: the old frame
    friend bool operator==(const Panel_Request&, const Panel_Request&) = default;
};

/** Keeps every request of the panels, and answers Fct_Update as a host does: by Update of its panels. */
class Request_Recorder {
  public:
    Request_Recorder();
    ~Request_Recorder();
    Request_Recorder(const Request_Recorder&) = delete;
    Request_Recorder& operator=(const Request_Recorder&) = delete;

    /** Requests are only kept. */
    void Answer_Never() { answer = nullptr; }
    /** `update` is called inside Fct_Update, on the panel's own call stack; not while an earlier call is running. */
    void Answer_At_Once(std::function<void(unsigned long long)> update);
    /** `update` is called by Deliver, once for each request since. */
    void Answer_Queued(std::function<void(unsigned long long)> update);
    void Deliver();

    const std::vector<Panel_Request>& All() const { return requests; }
    std::vector<Panel_Request> Take();
    /** Flags of the Fct_Update requests since the last Take. */
    std::vector<unsigned long long> Take_Updates();

    /** Called inside every Fct_Change_Child that changes a frame. */
    std::function<void(const Panel_Request&)> on_change_child;

  private:
    void Receive(const Panel_Request& request);

    std::vector<Panel_Request> requests;
    std::vector<unsigned long long> queue;
    std::function<void(unsigned long long)> answer;
    bool queued = false;
    bool answering = false;
};
