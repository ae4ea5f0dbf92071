// libFuzzer: any stream of calls of the C interface.
#include "tests/c_interface/call_stream.h"
#include "tests/c_interface/own_windows.h"
#include "tests/support/panel_window.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Panel_Window window(Window_Axis::Down, 300, 200);
    Call_Stream stream(data, size, window.Get(), true);
    const Own_Windows windows(stream);
    stream.Run();
    return 0;
}
