/** What is told of each part to programs that drive the application. */
#pragma once

namespace workbench {

struct Application_Parts;
class Json_Text;

/** Members of an object that has been begun. */
void State_Members_Write(Application_Parts& parts, Json_Text& out);

}  // namespace workbench
