/** @file
 *  The contract's short global names inside a namespace, for hosts that have names of their own like them.
 *
 *  The contract's declarations stay global, because the names of exported operations are part of it. A host whose own
 *  `Labels` or `BORDER` stands in a namespace of its own says kit::Labels and kit::BORDER for the contract's. Types and
 *  variables are the same as the global ones; there are no macros here. */
#pragma once

#include "host/kit_common.h"
#include "host/kit_dataset.h"
#include "host/kit_widgets.h"

namespace kit {

using ::Boxs;
using ::Buttons;
using ::Colors;
using ::Labels;
using ::Selects;
using ::Sliders;
using ::Texts;
using ::Tools;
using ::Valuators;

using ::BORDER;
using ::Flag_Trace;
using ::hwnd;
using ::Prog_Name;
using ::SPACE;
using ::Y_DC;
using ::Y_Window;
using ::YCursor_X;
using ::YCursor_Y;

using ::getbutton;
using ::getkey;

}  // namespace kit
