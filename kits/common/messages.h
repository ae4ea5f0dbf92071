/** @file
 *  The application's side of Kit_Common's messages: who receives them, and how their inline styles are read. */
#pragma once

#include <string>
#include <vector>

#include "host/kit_common.h"

/** Receives every message. Must not call a panel. @param context as registered; @param text the finished text with its
 * style bytes, not kept */
using Message_Receiver = void (*)(void* context, HWND window, int level, const char* text);

/** Registers a receiver; it is called after those registered before it.
 *  @param receiver, context called with the context as first argument
 *  @param with_traces also the traces (levels 10 to 17), which panels send by the hundred; without it they come only
 *  while Flag_Trace is not 0
 *  @return 1; 0 when it is registered already with that context */
KIT_COMMON_API int Message_Receiver_Add(Message_Receiver receiver, void* context, bool with_traces);
/** The same without traces. */
KIT_COMMON_API int Message_Receiver_Add(Message_Receiver receiver, void* context);
/** @return 1, or 0 when it was not registered */
KIT_COMMON_API int Message_Receiver_Remove(Message_Receiver receiver, void* context);

/** How a run of a message is to be shown. */
enum class Message_Style { Plain, Warning, Strong, Indented };

/** A run of one style. */
struct Message_Run {
    Message_Style style = Message_Style::Plain;  ///< how to show it
    std::string text;                            ///< without style bytes, in the code page of the message
};

/** Splits a message into its runs; style bytes are consumed, never part of a run's text. 0xF1 0x05 opens a warning run,
 * 0xF1 0x09 an indented one, 0x01 a strong one, 0x02 ends the run. An unknown style byte opens a plain run. Only
 * control bytes are style bytes: before any other byte, and before an end of line, 0xF1 is a letter of the code page.
 * Runs are not empty, but for an indented one before a run of another style: it stands for the indent of what follows.
 */
KIT_COMMON_API std::vector<Message_Run> Message_Runs(const char* text);
/** The message without any style byte. */
KIT_COMMON_API std::string Message_Plain(const char* text);
