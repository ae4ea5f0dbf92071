/** Shows what has changed: views, notes in the headings, the window's title. */
#pragma once

#include "workbench/application_parts.h"

namespace workbench {

class Change_Views {
  public:
    /** @param application_parts outlive it */
    explicit Change_Views(Application_Parts& application_parts) : of(application_parts) {}

    /** From now on it is told of changes, and has all others told in their order. Once. */
    void Listen();

  private:
    /** Makes data anew that are made of what has changed. */
    void Derive(Told_Changes& told);
    void Show(Changes changes);
    void Notes_Show();
    void Title_Show();

    Application_Parts& of;
};

}  // namespace workbench
