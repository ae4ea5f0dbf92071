/** Which views of the image there are, whether they go along with one another, and how smooth they are. No window. */
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "workbench/commands/command_actions.h"
#include "workbench/model/settings.h"

namespace workbench {

/** What the part needs of the application. */
struct Layout_Host {
    std::function<Settings&()> settings;  ///< where the choice is kept
    std::function<void(const Views_Shown& views)> arrange;
    std::function<void()> redraw;                     ///< all pictures
    std::function<std::string(int view)> plane_name;  ///< of the slices (0) and the two other planes
    std::function<void(const std::string& text)> tell;
};

class Layout_Control : public Layout_Actions {
  public:
    explicit Layout_Control(Layout_Host application) : host(std::move(application)) {}

    void Arrangement_Set(View_Arrangement wanted) override;
    View_Arrangement Arrangement_Now() const override { return Views().arrangement; }
    void Large_Plane_Next() override;
    void Views_Link(bool on) override;
    bool Is_Linked() const override { return Views().is_linked; }
    void Linear_Set(bool on) override;
    bool Is_Linear() const override { return host.settings().is_linear; }

    /** The slices are wanted where they are not to be seen. */
    void Slices_Show();

  private:
    Views_Shown& Views() const { return host.settings().views; }

    Layout_Host host;
};

}  // namespace workbench
