/** Which part of the window the keys act on. No window. */
#pragma once

#include <functional>
#include <utility>

#include "workbench/commands/command_actions.h"
#include "workbench/commands/pane.h"

namespace workbench {

/** What it needs of the application. */
struct Focus_Host {
    std::function<bool()> is_database;                ///< the database column is shown
    std::function<void(Pane)> mark;                   ///< draws the frame of a part, and no other one
    std::function<void()> cursor_end;                 ///< the keyboard's cursor in the image goes
    std::function<void(int tool)> fold;               ///< folds or unfolds a panel of the tool area
    std::function<void(const char* utf8_text)> tell;  ///< a word for the user
};

class Focus : public Focus_Actions {
  public:
    explicit Focus(Focus_Host application) : host(std::move(application)) {}

    Pane Now() const { return pane; }
    void Set(Pane wanted);
    /** To the next part or the one before it, round and round; from none to the first or the last. */
    void Focus_Step(int step) override;
    void Panel_Fold() override;

  private:
    Focus_Host host;
    Pane pane = Pane::None;
};

}  // namespace workbench
