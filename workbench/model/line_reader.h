/** Lines of words, numbers and texts between quotation marks: what the workbench's readable files are made of. */
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace workbench {

/** A text between quotation marks, \" and \\ for those two characters and \xHH for control characters. */
std::string Quoted_Text(std::string_view text);
/** Whether all bytes are UTF-8: no broken, overlong or surrogate character. */
bool Is_Utf8(std::string_view text);
/** Takes the first line off a text, without its end ("\n" or "\r\n"). */
std::string_view Line_Take(std::string_view& text);

/** Reads one line from its start to its end, parts set apart by blanks. The first thing that is wrong is kept; what is
 *  read after it means nothing. */
class Line_Reader {
  public:
    explicit Line_Reader(std::string_view of_line) : rest(of_line) {}

    /** A bare word; empty at the end of the line. */
    std::string_view Word();
    /** Whether the next part begins so; takes nothing. */
    bool Is_Next(std::string_view start);
    /** Takes the next word if it is this one. */
    bool Take(std::string_view word);
    void Expect(std::string_view word);
    /** 0 to `most`; 0 when there is none. */
    std::size_t Number(std::size_t most);
    /** A number as people write it; 0 when there is none, or one that is not finite. */
    float Real();
    /** A text as Quoted_Text writes it. */
    std::string Text();
    /** Nothing may follow. */
    void End();
    void Fail(const std::string& what);
    /** Empty, or the first thing that was wrong: "a number is expected". */
    const std::string& Error() const { return error; }

  private:
    void Blanks();
    char Escape();

    std::string_view rest;
    std::string error;
};

}  // namespace workbench
