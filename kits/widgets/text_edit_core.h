/** The editing model of a one-line text: caret, selection, insertion and deletion. Knows no window and no font. Texts
 *  are in the system's code page.
 *
 *  Offsets count bytes and always stand on a whole character; an offset from outside is moved back to one.
 */
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

inline constexpr unsigned char FIRST_PRINTABLE = 32;  ///< controls come before

/** A text under edit. The characters stay in the caller's zero-terminated buffer. */
class Text_Edit {
  public:
    /** @param buffer owned by the caller, who may have changed its text since; @param size bytes of the buffer, 1 at
     *  least, the terminating zero included; @param caret and @param anchor the two ends of the selection */
    Text_Edit(char* buffer, int size, int caret, int anchor);

    std::string_view Text() const { return {buffer, static_cast<std::size_t>(length)}; }
    int Length() const { return length; }
    int Caret() const { return caret; }
    int Anchor() const { return anchor; }
    int Selection_Start() const { return caret < anchor ? caret : anchor; }
    int Selection_End() const { return caret < anchor ? anchor : caret; }
    bool Has_Selection() const { return caret != anchor; }
    std::string_view Selected() const;

    // Moves of the caret. `select` keeps the other end of the selection; without it the selection ends.
    void Move_To(int offset, bool select);
    /** One character back; without `select` from a selection: to its start. */
    void Left(bool select);
    /** One character forward; without `select` from a selection: to its end. */
    void Right(bool select);
    /** To the start of this word or the one before. Words are parted by blanks. */
    void Word_Left(bool select);
    /** To the start of the next word. */
    void Word_Right(bool select);
    void Home(bool select) { Move_To(0, select); }
    void End(bool select) { Move_To(length, select); }
    void Select_All();

    /** Replaces the selection. Line ends and tabulators become blanks (those at the end are dropped), other control
     *  characters are dropped. What exceeds the buffer is cut at a whole character.
     *  @return false when nothing of it could be inserted; the selection is deleted all the same unless `inserted`
     *  holds nothing that could be */
    bool Insert(std::string_view inserted);
    /** Inserts one character, "?" when the system's code page has none such. Surrogates, control characters and numbers
     * beyond 0x10FFFF are refused. */
    bool Insert_Code_Point(std::uint32_t code_point);
    /** Deletes the selection, or the character before the caret. @return false when there is none */
    bool Backspace();
    /** Deletes the selection, or the character after the caret. @return false when there is none */
    bool Delete();

  private:
    void Erase(int start, int end);

    char* buffer;
    int size;
    int length;
    int caret;
    int anchor;
};

/** The start of the character that contains the byte at `offset`; offsets outside become the ends of the text. */
int Text_Whole_Character(std::string_view text, int offset);

/** The part of `text` that fits into `bytes` bytes without cutting a character. */
std::string_view Text_Cut(std::string_view text, int bytes);

/** First character to show so that the caret is in view and no room is wasted beyond the end.
 *  @param position first character shown until now; @param room pixels of the field; @param width pixels of a text */
int Text_First_Shown(std::string_view text, int caret, int position, int room,
                     const std::function<int(std::string_view)>& width);
