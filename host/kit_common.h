/** @file
 *  Kit_Common: messages, paths, text conversion and dense linear algebra that the host offers to the panels.
 *
 *  Texts are zero-terminated and in the system's code page, which may have characters of several bytes, UTF-8 among
 *  them. None is kept beyond the call that it is given to, but for Prog_Name. Vectors and matrices hold memory of
 *  Kit_Common's own. */
#pragma once

#include <memory>

#include "host/platform.h"

/** Exported while the module itself is built, imported by everyone else. */
#if defined(KIT_COMMON_BUILD)
#define KIT_COMMON_API KIT_EXPORT
#else
#define KIT_COMMON_API KIT_IMPORT
#endif

// ---------------- messages

/** Levels of Error_Fct. Levels that are not listed (10 to 17) are traces; `TRACE_LEVEL` is the usual one. */
inline constexpr int MESSAGE_MEMORY = 1;   ///< a failed allocation
inline constexpr int MESSAGE_WARNING = 2;  ///< a warning that the user must read; carries inline style bytes
inline constexpr int MESSAGE_STATUS = 4;   ///< a line for the status display
inline constexpr int TRACE_LEVEL = 16;     ///< entry trace of a panel operation

/** The host's main window, or null while there is none. First argument of every message. */
extern KIT_COMMON_API HWND hwnd;

/** How much is traced: 0 nothing; 1 and more extra curves in the enlarged histogram; 4, 6 and 8 and more ever finer
 * entry traces. */
extern KIT_COMMON_API signed char Flag_Trace;

/** The program's name; also the second folder in which icons are looked up. Never null. */
extern KIT_COMMON_API const char* Prog_Name;

/** Reports one message.
 *
 *  The text is made by printf rules (also "%ls" for wide text). In the text, byte 0xF1 followed by a style byte starts
 *  a styled run and byte 0x02 ends it. Which levels the user sees is decided by the receivers that the application
 *  registered. Never calls back into a panel.
 *  @param window the window that the message belongs to, may be null
 *  @param level  see the constants above
 *  @param format printf format of the text; its arguments follow
 *  @return 1
 */
KIT_COMMON_API int Error_Fct(HWND window, int level, const char* format, ...) KIT_PRINTF_FORMAT(3, 4);

/** Reports one window message of a window procedure.
 *  @param level   trace level
 *  @param name    the window procedure's name; not kept
 *  @param window  the window
 *  @param message the message number
 *  @return 1
 */
KIT_COMMON_API int System_Message(int level, char* name, HWND window, unsigned int message);

// ---------------- paths and texts

/** Longest path, with its terminating zero, that Get_Generic_Name can produce in any of its outputs. */
inline constexpr int PATH_SIZE = 32768;

/** Splits a path. Both separators are understood. An output that is null is skipped.
 *  @param path      the path, zero-terminated; null counts as empty
 *  @param directory receives the directory without its trailing separator; empty when the path has none
 *  @param name      receives the file name without directory and extension
 *  @param extension receives the extension with its dot; empty when there is none
 *  Outputs need as much room as the path itself.
 */
KIT_COMMON_API void Get_Generic_Name(const char* path, char* directory, char* name, char* extension);

/** Converts a text of the system's code page to wide characters.
 *  @param text     zero-terminated, or null
 *  @param out      receives the zero-terminated wide text
 *  @param out_size room in `out` in wide characters, the terminating zero included; longer texts are cut at a whole
 *  character
 *  @return the number of wide characters written, the terminating zero not counted; 0 for a null text or no room
 */
KIT_COMMON_API int Char_2_Wchar(const char* text, wchar_t* out, int out_size);

// ---------------- linear algebra

/** Dense vector of doubles. Zero at creation; copies are deep. */
class KIT_COMMON_API Vector_N {
  public:
    /** @param count number of elements; @param flag bytes of an element, always 8 */
    Vector_N(unsigned int count, unsigned char flag);
    ///@{
    /** A copy without memory is empty; a moved-from vector is. */
    Vector_N(const Vector_N& other);
    Vector_N(Vector_N&& other) noexcept;
    Vector_N& operator=(const Vector_N& other);
    Vector_N& operator=(Vector_N&& other) noexcept;
    ///@}
    ~Vector_N();

    ///@{
    /** Element `index`, 0 .. Size() - 1. Any other index gives a spare double that reads as zero, so that a vector
     * without memory is harmless. */
    double& operator[](int index);
    const double& operator[](int index) const;
    ///@}
    /** Adds element by element. Sizes must agree; elements beyond the shorter one are left alone. */
    Vector_N& operator+=(const Vector_N& other);
    /** Number of elements; 0 when the allocation failed. */
    unsigned int Size() const;

  private:
    struct Data;
    std::unique_ptr<Data> data;
    friend class Matrix_NxM;
};

/** Dense matrix of doubles, stored by rows. Zero at creation; copies are deep; a failed allocation marks the matrix
 * invalid. */
class KIT_COMMON_API Matrix_NxM {
  public:
    /** @param columns number of columns; @param rows number of rows; @param flag bytes of an element, always 8 */
    Matrix_NxM(unsigned int columns, unsigned int rows, unsigned char flag);
    ///@{
    /** A copy is invalid when its original is, and without memory; a moved-from matrix is 0 x 0 and invalid. */
    Matrix_NxM(const Matrix_NxM& other);
    Matrix_NxM(Matrix_NxM&& other) noexcept;
    Matrix_NxM& operator=(const Matrix_NxM& other);
    Matrix_NxM& operator=(Matrix_NxM&& other) noexcept;
    ///@}
    ~Matrix_NxM();

    ///@{
    /** The contiguous doubles of row `row`, 0 .. Rows() - 1; not checked. Null when the allocation failed (Invalid
     * tells). */
    double* operator[](int row);
    const double* operator[](int row) const;
    ///@}
    /** The transposed matrix. */
    Matrix_NxM operator~() const;
    /** The inverse, by LU factorisation with partial pivoting. A matrix that is not square, has an exactly zero pivot
     * or a result that is not finite gives a matrix marked invalid; there is no tolerance. The empty 0 x 0 matrix is
     * its own inverse. */
    Matrix_NxM operator!() const;
    /** Matrix product; blocks of zeros are found and skipped. Marked invalid when the inner dimensions differ. */
    Matrix_NxM operator*(const Matrix_NxM& right) const;
    /** Matrix times column vector: an element per row. Empty when the vector has not an element per column, and without
     * memory. */
    Vector_N operator*(const Vector_N& right) const;
    /** Non-zero when the matrix is marked invalid. @param clear non-zero: the mark is cleared afterwards, but for a
     * matrix that could not be made at all */
    int Invalid(int clear);
    ///@{
    /** 0 when the allocation failed. */
    unsigned int Columns() const;
    unsigned int Rows() const;
    ///@}

  private:
    struct Data;
    std::unique_ptr<Data> data;
};
