/** Writes JSON (RFC 8259) piece by piece. */
#pragma once

#include <string>
#include <string_view>

namespace workbench {

/** Members and items get their commas by themselves. An empty name writes an item of a list, any other one a member of
 *  an object; the caller keeps the two apart and closes what was opened. */
class Json_Text {
  public:
    void Object_Begin(std::string_view name = {});
    void Object_End();
    void List_Begin(std::string_view name = {});
    void List_End();
    /** @param value UTF-8 */
    void Text(std::string_view name, std::string_view value);
    void Number(std::string_view name, long long value);
    /** What is not finite is written as null, which JSON has in its place. */
    void Real(std::string_view name, double value);
    void Flag(std::string_view name, bool value);
    /** What has been written, on one line. */
    const std::string& Written() const { return text; }

  private:
    void Next(std::string_view name);
    void Quoted(std::string_view value);
    std::string text;
    bool is_first = true;  // of its object or list
};

}  // namespace workbench
