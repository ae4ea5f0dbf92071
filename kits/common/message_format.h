/** The text of a message, made by printf rules. For the kit's own use. */
#pragma once

#include <cstdarg>
#include <cstddef>

/** A growing text that never throws: short ones take no memory, and one that finds no memory is cut. */
class Message_Text {
  public:
    Message_Text() = default;
    ~Message_Text();
    Message_Text(const Message_Text&) = delete;
    Message_Text& operator=(const Message_Text&) = delete;

    /** The text, zero-terminated. */
    const char* Text() const { return text; }
    std::size_t Size() const { return size; }

    /** Appends what `format` and its arguments give. Beyond plain printf: "%ls", "%S", "%lc" and "%C" take wide text
     * and write the system's code page, whatever the locale; "%I64" is the 64-bit length; null texts are "(null)"; "%n"
     * writes nothing. */
    void Print(const char* format, std::va_list arguments);

  private:
    struct Conversion;
    struct Arguments;
    static constexpr std::size_t FIXED_SIZE = 1024;

    /** `count` more bytes, with room for the terminating zero; null without memory. */
    char* Room(std::size_t count);
    void Append(const char* bytes, std::size_t count);
    void Append_Wide(const wchar_t* wide, int most_units, const Conversion& conversion);
    void Append_Padded(const char* bytes, std::size_t count, const Conversion& conversion);
    void Pad(std::size_t from, const Conversion& conversion);
    template <typename Number>
    void Append_Number(const Conversion& conversion, const char* length, Number number);
    const char* Print_Conversion(const char* format, Arguments& arguments);
    void Print_Value(const Conversion& conversion, Arguments& arguments);
    void Print_Signed(const Conversion& conversion, Arguments& arguments);
    void Print_Unsigned(const Conversion& conversion, Arguments& arguments);

    char fixed[FIXED_SIZE] = {};
    char* text = fixed;
    std::size_t size = 0;
    std::size_t room = FIXED_SIZE;
};
