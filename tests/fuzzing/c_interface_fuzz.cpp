// libFuzzer: any stream of calls of the C interface.
#include "kits/widgets/select_drop_list.h"
#include "tests/c_interface/call_stream.h"
#include "tests/support/panel_window.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Drop_List_Runner_Set([](const Drop_List_Request&) { return -1; });  // a list that nobody picks from
    const Panel_Window window(Window_Axis::Down, 300, 200);
    Call_Stream(data, size, window.Get(), true).Run();
    return 0;
}
