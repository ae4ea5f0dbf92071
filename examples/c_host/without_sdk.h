/* The few declarations of the system and of the universal C runtime that host.c uses, for a machine that has a compiler
 * for the Microsoft target and no Windows SDK. With an SDK include <windows.h> and the C headers instead. */
#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>

#define IMPORTED __declspec(dllimport)

typedef void* HWND;
typedef uint64_t WPARAM;
typedef int64_t LPARAM;
typedef struct MSG {
    HWND window;
    uint32_t message;
    WPARAM wparam;
    LPARAM lparam;
    uint32_t time;
    int32_t x;
    int32_t y;
    uint32_t reserved;
} MSG;

#define WS_OVERLAPPEDWINDOW 0x00CF0000u
#define WS_VISIBLE 0x10000000u
#define PM_REMOVE 1
#define WM_LBUTTONDOWN 0x0201
#define WM_LBUTTONUP 0x0202
#define WM_RBUTTONDOWN 0x0204
#define WM_RBUTTONUP 0x0205
#define WM_CHAR 0x0102
#define MK_LBUTTON 1
#define MK_RBUTTON 2

IMPORTED HWND CreateWindowExA(uint32_t, const char*, const char*, uint32_t, int, int, int, int, HWND, void*, void*,
                              void*);
IMPORTED int IsWindow(HWND);
IMPORTED int GetMessageA(MSG*, HWND, uint32_t, uint32_t);
IMPORTED int PeekMessageA(MSG*, HWND, uint32_t, uint32_t, uint32_t);
IMPORTED int TranslateMessage(const MSG*);
IMPORTED int64_t DispatchMessageA(const MSG*);
IMPORTED int64_t SendMessageA(HWND, uint32_t, WPARAM, LPARAM);

typedef struct FILE FILE;
IMPORTED FILE* fopen(const char*, const char*);
IMPORTED size_t fread(void*, size_t, size_t, FILE*);
IMPORTED int fclose(FILE*);
IMPORTED void* malloc(size_t);
IMPORTED void free(void*);
IMPORTED int atoi(const char*);
IMPORTED void exit(int);
IMPORTED void* memset(void*, int, size_t);
IMPORTED FILE* __acrt_iob_func(unsigned);
IMPORTED int __stdio_common_vfprintf(uint64_t, FILE*, const char*, void*, va_list);
IMPORTED int _configure_narrow_argv(int);
IMPORTED int* __p___argc(void);
IMPORTED char*** __p___argv(void);

int _fltused = 0; /* the linker asks for it where floating point numbers are used */

static int printf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int written = __stdio_common_vfprintf(0, __acrt_iob_func(1), format, NULL, arguments);
    va_end(arguments);
    return written;
}

int main(int argc, char** argv);

/* Where the program begins: what the runtime's own start-up object would do. */
void mainCRTStartup(void) {
    _configure_narrow_argv(1);
    exit(main(*__p___argc(), *__p___argv()));
}
