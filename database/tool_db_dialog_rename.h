/** The dialog that asks for a class's new name. */
#pragma once

inline constexpr int DIALOG_RENAME_SIZE = 256;  ///< bytes of the text buffer, the terminating zero included

/** Copies as many whole characters of the system's code page as fit. Null counts as empty.
 *  @return false when something did not fit */
bool Dialog_Text_Take(const char* text, char (&buffer)[DIALOG_RENAME_SIZE]);

/** Edits the text in place, modally over the active window. The buffer holds what was typed also after Cancel.
 *  @param buffer DIALOG_RENAME_SIZE bytes. @return 1 Save, 2 Cancel, 0 closed, -1 when the dialog could not be made */
int Dialog_Rename(char* buffer);
