/** Keeps every message while it lives. */
#pragma once

#include <string>
#include <vector>

#include "kits/common/messages.h"

class Message_Sink {
  public:
    struct Message {
        HWND window;
        int level;
        std::string text;
    };

    Message_Sink() { Message_Receiver_Add(Receive, this, true); }
    ~Message_Sink() { Message_Receiver_Remove(Receive, this); }
    Message_Sink(const Message_Sink&) = delete;
    Message_Sink& operator=(const Message_Sink&) = delete;

    /** The last message's text; empty when there was none. */
    std::string Last() const { return messages.empty() ? std::string() : messages.back().text; }

    std::vector<Message> messages;

  private:
    static void Receive(void* context, HWND window, int level, const char* text) {
        static_cast<Message_Sink*>(context)->messages.push_back({window, level, text});
    }
};
