#include "workbench/process_limits.h"

#include "workbench/system_library.h"

namespace workbench {

void Library_Search_Narrow() {
    using Narrow = BOOL(WINAPI*)(DWORD);
    const auto narrow = System_Library(L"kernel32.dll").Find<Narrow>("SetDefaultDllDirectories");
    if (narrow != nullptr) {
        narrow(LOAD_LIBRARY_SEARCH_SYSTEM32 | LOAD_LIBRARY_SEARCH_APPLICATION_DIR);
    }
}

int Process_Limits_Set(Limit_Setter set) {
    if (set == nullptr) {
        set = System_Library(L"kernel32.dll").Find<Limit_Setter>("SetProcessMitigationPolicy");
    }
    if (set == nullptr) {
        return 0;
    }
    int taken = 0;
    const auto limit = [&](PROCESS_MITIGATION_POLICY policy, auto content) {
        taken += set(policy, &content, sizeof content) != 0 ? 1 : 0;
    };
    PROCESS_MITIGATION_IMAGE_LOAD_POLICY images = {};
    images.NoRemoteImages = 1;
    images.NoLowMandatoryLabelImages = 1;
    images.PreferSystem32Images = 1;
    limit(ProcessImageLoadPolicy, images);
    // Extension points stay: older input methods, and programs that read the screen aloud, come by them.
    PROCESS_MITIGATION_STRICT_HANDLE_CHECK_POLICY handles = {};
    handles.RaiseExceptionOnInvalidHandleReference = 1;
    handles.HandleExceptionsPermanentlyEnabled = 1;
    limit(ProcessStrictHandleCheckPolicy, handles);
    return taken;
}

}  // namespace workbench
