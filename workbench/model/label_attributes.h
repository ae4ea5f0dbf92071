/** What describes the labels beside their voxels: names, colours, thresholds and states, between the panels, the
 *  history, the open volumes and files. No window.
 *
 *  Each open volume has its own; the panels read those of the current one. By the user's choice all have those of the
 *  current one instead.
 */
#pragma once

#include <optional>
#include <string>

#include "workbench/model/label_description.h"
#include "workbench/model/label_state.h"
#include "workbench/model/label_values.h"
#include "workbench/model/workspace.h"

namespace workbench {

/** Grey values between which a TAG claims levels; no value: open to that side. */
struct Claimed_Band {
    std::optional<double> low;
    std::optional<double> high;
    bool Is_Set() const { return low || high; }
};

class Label_Attributes {
  public:
    /** Both outlive it. */
    Label_Attributes(Workspace& workspace, Label_Values& panel_values) : work(workspace), values(panel_values) {}

    /** Makes steps of the names and thresholds that differ from those known. */
    void Note();
    /** Takes names, thresholds and colours as they are, without a step. */
    void Adopt();
    /** As they are now; markers without their places. */
    Label_Description Describe() const;
    /** Of whatever open volume. */
    Label_Description Describe(int volume) const;

    /** After volumes were opened: each begins with names and colours as they are now. Then Enter. */
    void Opened();
    /** Before another volume becomes the current one: keeps what belongs to this one. */
    void Leave();
    /** After another volume became the current one: hands what belongs to it to the panels. */
    void Enter();
    /** Makes another volume the current one for as long as nothing is shown, Leave and Enter included. */
    void Switch(int volume);
    /** Whether all open volumes have the names, colours, thresholds and states of the current one. When they are not to
     *  any more, all begin with the same; but where nothing was changed meanwhile each has its own again. */
    void Share(bool on);
    /** Some other volume has names, colours, thresholds or states that the current one has not. */
    bool Are_Others_Different() const;
    bool Is_Shared() const { return is_shared; }

    /** Takes over what was loaded, without a step. @return names that lost letters which the code page lacks */
    int Take(const Label_Description& description);
    /** Offers so many TAGs at least that the highest is among them. */
    void Nb_Grow(int highest);
    /** The current volume's grey values are told in another unit: brings the thresholds to it. */
    void Unit_Follow();

    /** UTF-8 */
    std::string Tag_Name(int tag) const { return values.Utf8_Of(values.Tag_Name(tag).c_str()); }
    std::string Marker_Name(int marker) const { return values.Utf8_Of(values.Marker_Name(marker).c_str()); }
    double Grey_Of(float told) const { return work.panel_scale.To_Grey(static_cast<double>(told)); }
    /** By the thresholds that the panels show. */
    Claimed_Band Band_Of(int tag) const;
    float Told_Of(double grey) const { return static_cast<float>(work.panel_scale.To_Panel(grey)); }

  private:
    bool Has_Own(int volume) const;
    void All_Keep();

    Workspace& work;
    Label_Values& values;
    bool is_shared = false;
    Label_State shared_first;  // what all had when they began to have the same
};

}  // namespace workbench
