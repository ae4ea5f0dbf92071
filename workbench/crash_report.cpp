#include "workbench/crash_report.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <exception>
#include <iterator>
#include <system_error>

#include "host/platform.h"
#include "workbench/model/activity_log.h"
#include "workbench/volumes/message_text.h"

namespace workbench {

namespace {

constexpr DWORD CODE_OF_COMPILER = 0x20474343;    // how the compiler throws C++ exceptions
constexpr DWORD CODE_OF_TERMINATE = 0xE0000001;   // ours: C++ gave up
constexpr DWORD CODE_OF_ABORT = 0xE0000002;       // ours
constexpr std::size_t REPORT_PATH_SIZE = 600;     // of the folder and the name
constexpr ULONG STACK_FOR_HANDLER = 64U * 1024U;  // kept free for a stack overflow
constexpr int FRAMES_MOST = 64;
constexpr UINT STATUS_CRASHED = 3;

// All that the report needs stands here: after a fault no memory is taken.
wchar_t report_folder[REPORT_PATH_SIZE] = {};
char program_version[64] = {};
char fault_text[512] = {};  // what a C++ exception says
std::atomic<bool> is_reporting = false;

Activity_Log& Activity() {
    static Activity_Log log;
    return log;
}

class Report_File {
  public:
    explicit Report_File(const wchar_t* path)
        : file(::CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                             nullptr)) {}
    ~Report_File() {
        if (file != INVALID_HANDLE_VALUE) {
            ::FlushFileBuffers(file);
            ::CloseHandle(file);
        }
    }
    Report_File(const Report_File&) = delete;
    Report_File& operator=(const Report_File&) = delete;

    void Text(std::string_view text) {
        DWORD written = 0;
        if (file != INVALID_HANDLE_VALUE) {
            ::WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        }
    }
    KIT_PRINTF_FORMAT(2, 3) void Format(const char* form, ...) {
        char text[1024];
        va_list values;
        va_start(values, form);
        const int size = std::vsnprintf(text, sizeof text, form, values);
        va_end(values);
        Text({text, static_cast<std::size_t>(std::clamp(size, 0, static_cast<int>(sizeof text) - 1))});
    }
    /** The module's name and the place in it, so that it means the same wherever the module was loaded. */
    void Place(DWORD64 address) {
        HMODULE module = nullptr;
        wchar_t name[MAX_PATH] = {};
        if (::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                 reinterpret_cast<const wchar_t*>(address), &module) == 0 ||
            ::GetModuleFileNameW(module, name, MAX_PATH) == 0) {
            Format("  ? 0x%llX\n", address);
            return;
        }
        const wchar_t* slash = std::wcsrchr(name, L'\\');
        char plain[MAX_PATH] = {};
        ::WideCharToMultiByte(CP_UTF8, 0, slash != nullptr ? slash + 1 : name, -1, plain, MAX_PATH, nullptr, nullptr);
        Format("  %s+0x%llX\n", plain, address - reinterpret_cast<DWORD64>(module));
    }

  private:
    HANDLE file;
};

bool Is_Readable(DWORD64 address) {
    MEMORY_BASIC_INFORMATION info = {};
    return ::VirtualQuery(reinterpret_cast<const void*>(address), &info, sizeof info) != 0 &&
           info.State == MEM_COMMIT && (info.Protect & (PAGE_NOACCESS | PAGE_GUARD)) == 0;
}

void Stack_Put(Report_File& report, CONTEXT context) {
    for (int frame = 0; frame < FRAMES_MOST; ++frame) {
        if (context.Rip != 0) {
            report.Place(context.Rip);
        } else {
            report.Text("  a call to nowhere\n");
        }
        DWORD64 base = 0;
        const PRUNTIME_FUNCTION function = ::RtlLookupFunctionEntry(context.Rip, &base, nullptr);
        if (!Is_Readable(context.Rsp)) {
            return;
        }
        if (function == nullptr) {  // keeps nothing on the stack but the address to return to
            context.Rip = *reinterpret_cast<const DWORD64*>(context.Rsp);
            context.Rsp += sizeof(DWORD64);
        } else {
            void* data = nullptr;
            DWORD64 establisher = 0;
            ::RtlVirtualUnwind(UNW_FLAG_NHANDLER, base, context.Rip, function, &context, &data, &establisher, nullptr);
        }
        if (context.Rip == 0) {
            return;
        }
    }
}

/** What happened, in a few words. In static memory: a fault may be one of the stack. */
const char* Fault_Words(const EXCEPTION_RECORD& fault) {
    static char words[sizeof fault_text + 40];
    if (fault.ExceptionCode == CODE_OF_TERMINATE) {
        std::snprintf(words, sizeof words, "C++ exception: %s", fault_text);
    } else if (fault.ExceptionCode == CODE_OF_ABORT) {
        std::snprintf(words, sizeof words, "abort");
    } else if (fault.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && fault.NumberParameters >= 2) {
        std::snprintf(words, sizeof words, "access violation, %s 0x%llX",
                      fault.ExceptionInformation[0] == 0   ? "reading"
                      : fault.ExceptionInformation[0] == 1 ? "writing"
                                                           : "executing",
                      static_cast<unsigned long long>(fault.ExceptionInformation[1]));
    } else {
        std::snprintf(words, sizeof words, "0x%08lX", fault.ExceptionCode);
    }
    return words;
}

void Fault_Put(Report_File& report, const EXCEPTION_RECORD& fault) {
    report.Format("fault %s\nat\n", Fault_Words(fault));
    report.Place(reinterpret_cast<DWORD64>(fault.ExceptionAddress));
}

/** Where nothing can be kept of a fault, the user is told at once. */
void Fault_Say(const EXCEPTION_RECORD& fault) {
    wchar_t what[sizeof fault_text + 40] = {};
    ::MultiByteToWideChar(CP_UTF8, 0, Fault_Words(fault), -1, what, static_cast<int>(std::size(what)) - 1);
    wchar_t text[sizeof fault_text + 200] = {};
    ::wsprintfW(text, L"The workbench has to end by a fault: %s.\n\nThere is no folder for a report of it.", what);
    ::MessageBoxW(nullptr, text, L"Workbench", MB_OK | MB_ICONERROR | MB_SETFOREGROUND | MB_TASKMODAL);
}

void Report_Write(const EXCEPTION_RECORD& fault, const CONTEXT& context) {
    if (is_reporting.exchange(true)) {
        return;
    }
    if (report_folder[0] == 0) {
        Fault_Say(fault);
        return;
    }
    SYSTEMTIME now = {};
    ::GetLocalTime(&now);
    wchar_t path[REPORT_PATH_SIZE + 80] = {};
    ::wsprintfW(path, L"%s\\crash-%04u%02u%02u-%02u%02u%02u-%lu.new.txt", report_folder, now.wYear, now.wMonth,
                now.wDay, now.wHour, now.wMinute, now.wSecond, ::GetCurrentProcessId());
    Report_File report(path);
    report.Format("workbench crash report 1\ntime %04u-%02u-%02u %02u:%02u:%02u\nversion %s\n", now.wYear, now.wMonth,
                  now.wDay, now.wHour, now.wMinute, now.wSecond, program_version);
    Fault_Put(report, fault);
    report.Text("stack\n");
    Stack_Put(report, context);
    report.Format("last commands and changes (%u)\n", static_cast<unsigned int>(Activity().Nb()));
    for (std::size_t at = 0; at < Activity().Nb(); ++at) {
        report.Text("  ");
        report.Text(Activity().Line(at));
        report.Text("\n");
    }
    report.Text("end\n");
}

LONG WINAPI On_Fault(EXCEPTION_POINTERS* fault) {
    if (fault->ExceptionRecord->ExceptionCode == CODE_OF_COMPILER) {
        return EXCEPTION_CONTINUE_EXECUTION;  // goes on to std::terminate, which knows what was thrown
    }
    Report_Write(*fault->ExceptionRecord, *fault->ContextRecord);
    return EXCEPTION_EXECUTE_HANDLER;  // the system ends the program
}

[[noreturn]] void End_Here(DWORD code) {
    CONTEXT context = {};
    ::RtlCaptureContext(&context);
    EXCEPTION_RECORD fault = {};
    fault.ExceptionCode = code;
    fault.ExceptionAddress = reinterpret_cast<void*>(context.Rip);
    Report_Write(fault, context);
    ::TerminateProcess(::GetCurrentProcess(), STATUS_CRASHED);
    for (;;) {  // never: the process is gone
    }
}

void On_Terminate() {
    const char* what = "none";
    if (const std::exception_ptr thrown = std::current_exception()) {
        try {
            std::rethrow_exception(thrown);
        } catch (const std::exception& exception) {
            what = exception.what();
        } catch (...) {
            what = "of unknown type";
        }
        std::snprintf(fault_text, sizeof fault_text, "%s", what);
    } else {
        std::snprintf(fault_text, sizeof fault_text, "%s", what);
    }
    std::fprintf(stderr, "workbench: %s\n", fault_text);
    End_Here(CODE_OF_TERMINATE);
}

void On_Abort(int) {
    End_Here(CODE_OF_ABORT);
}

}  // namespace

void Crash_Report_Install(const std::filesystem::path& folder, std::string_view version) {
    if (!folder.empty()) {
        std::error_code ignored;
        std::filesystem::create_directories(folder, ignored);
        const std::wstring whole = std::filesystem::absolute(folder, ignored).wstring();
        if (whole.size() < REPORT_PATH_SIZE) {
            std::ranges::copy(whole, report_folder);
            report_folder[whole.size()] = 0;
        }
    }
    std::snprintf(program_version, sizeof program_version, "%.*s", static_cast<int>(version.size()), version.data());
    ULONG kept_free = STACK_FOR_HANDLER;
    ::SetThreadStackGuarantee(&kept_free);
    ::SetUnhandledExceptionFilter(&On_Fault);
    std::set_terminate(&On_Terminate);
    std::signal(SIGABRT, &On_Abort);
}

void Activity_Note(std::string_view what) {
    SYSTEMTIME now = {};
    ::GetLocalTime(&now);
    char line[ACTIVITY_LINE_SIZE] = {};
    std::snprintf(line, sizeof line, "%02u:%02u:%02u.%03u %.*s", now.wHour, now.wMinute, now.wSecond, now.wMilliseconds,
                  static_cast<int>(std::min<std::size_t>(what.size(), ACTIVITY_LINE_SIZE)), what.data());
    Activity().Add(line);
}

std::vector<std::filesystem::path> Crash_Reports_Take(const std::filesystem::path& folder) {
    constexpr std::string_view ending = ".new.txt";
    std::vector<std::filesystem::path> found;
    std::error_code code;
    for (std::filesystem::directory_iterator entry(folder, code), end; !code && entry != end; entry.increment(code)) {
        const std::string name = volumes::File_Name_Text(entry->path());
        if (name.starts_with("crash-") && name.ends_with(ending)) {
            found.push_back(entry->path());
        }
    }
    std::ranges::sort(found);
    for (std::filesystem::path& path : found) {
        const std::string name = volumes::File_Name_Text(path);
        const std::filesystem::path told = folder / (name.substr(0, name.size() - ending.size()) + ".txt");
        std::filesystem::rename(path, told, code);
        path = code ? path : told;
    }
    return found;
}

}  // namespace workbench
