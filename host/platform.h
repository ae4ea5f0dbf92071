/** @file
 *  What differs between compilers and systems, in one place.
 *
 *  Everything else in the repository is standard C++20 plus the Windows API. This header declares the few Windows
 *  handle types that the host contract mentions without pulling in <windows.h>, so that geometry, state and numeric
 *  code compile everywhere. The declarations agree with those of <windows.h>; both may be included, in either order.
 */
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(_WIN32)
/** Marks what a module offers, while it is built. */
#define KIT_EXPORT __declspec(dllexport)
/** Marks what another module offers. */
#define KIT_IMPORT __declspec(dllimport)
#else
#define KIT_EXPORT
#define KIT_IMPORT
#ifndef __int64
/** The contract's 64-bit integer type; a compiler keyword on Windows. */
#define __int64 long long
#endif
#endif

#if defined(__MINGW32__)
/** Lets the compiler check calls of a printf-like operation; both numbers count from 1, a member's `this` included. */
#define KIT_PRINTF_FORMAT(format_index, first_argument) \
    __attribute__((format(gnu_printf, format_index, first_argument)))
#elif defined(__GNUC__)
#define KIT_PRINTF_FORMAT(format_index, first_argument) __attribute__((format(printf, format_index, first_argument)))
#else
#define KIT_PRINTF_FORMAT(format_index, first_argument)
#endif

struct HWND__;
struct HDC__;
struct HFONT__;
typedef struct HWND__* HWND;    ///< a window
typedef struct HDC__* HDC;      ///< a device context
typedef struct HFONT__* HFONT;  ///< a created font

#if defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
/** True when the processor and the system offer AVX2. */
inline bool Processor_Has_Avx2() {
    int registers[4] = {};
    __cpuidex(registers, 1, 0);
    const bool state_saved = (registers[2] & (1 << 27)) != 0 && (_xgetbv(0) & 6) == 6;
    __cpuidex(registers, 7, 0);
    return state_saved && (registers[1] & (1 << 5)) != 0;
}
/** Where the caller's frame lies on the stack. */
#define KIT_FRAME_ADDRESS() _AddressOfReturnAddress()
#else
/** Where the caller's frame lies on the stack: of locals, sanitizers may make copies elsewhere. */
#define KIT_FRAME_ADDRESS() __builtin_frame_address(0)
/** True when the processor and the system offer AVX2. */
inline bool Processor_Has_Avx2() {
    return __builtin_cpu_supports("avx2") != 0;
}
#endif
