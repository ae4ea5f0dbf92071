/** TAGs, brushes and markers: which ones are in hand, what they are called and what they claim. No window. */
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>

#include "workbench/commands/command_actions.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/label_attributes.h"
#include "workbench/model/label_values.h"
#include "workbench/model/workspace.h"

namespace workbench {

/** What it needs of the application besides the work and the dialogs. */
struct Tag_Host {
    std::function<void()> settle;  ///< ends whatever is being done by a button
    std::function<void(int slice)> slice_show;
    std::function<void(int tag)> scroll_to;  ///< has the panel show a TAG's button
    /** The panel's check mark shows this, and its editor sets thresholds or not. */
    std::function<void(Tag_Mark check_mark, bool is_threshold_mode)> panel_set;
    std::function<bool(int step)> tool_step;  ///< @return true: the tool in hand has made itself larger or smaller
    std::function<void()> shared_keep;        ///< keeps the choice at once: this run may not end well
    std::function<std::string(const std::string& text)> folded;  ///< the same for texts that differ in case only
};

class Tag_Control : public Label_Actions {
  public:
    /** All but the host's functions outlive it. */
    Tag_Control(Workspace& workspace, Label_Values& panel_values, Label_Attributes& attributes,
                Dialogs& application_dialogs, Tag_Host application)
        : work(workspace),
          values(panel_values),
          labels(attributes),
          dialogs(application_dialogs),
          host(std::move(application)) {}

    void Tag_Step_By(int step) override;
    void Tag_Pick(int tag) override { Tag_Set(tag, true); }
    void Tag_Go_To() override;
    void Tag_Rename_Ask() override { Name_Ask(Text_Table::Tag_Labels); }
    void Tag_Toggle(Tag_Mark mark) override;
    bool Has_Tag_Mark(Tag_Mark mark) const override;
    void Threshold_Mode_Set(bool on) override;
    bool Is_Threshold_Mode() const override { return is_threshold_mode; }
    void Threshold_Ask(bool is_upper) override;
    void Tag_More() override { labels.Nb_Grow(values.Tag_Nb()); }
    void Check_Mark_Set(Tag_Mark mark) override;
    bool Is_Check_Mark(Tag_Mark mark) const override { return mark == check_mark; }
    void Labels_Share(bool on) override;
    bool Are_Labels_Shared() const override { return labels.Is_Shared(); }
    void Brush_Step(int step) override;
    void Marker_Step(int step) override { Marker_Set(values.Marker_Cur() + step); }
    void Marker_Rename_Ask() override { Name_Ask(Text_Table::Marker_Labels); }
    void Marker_Remove() override;

    /** Makes another TAG the current one; nothing for one that there is not. */
    void Tag_Set(int tag, bool scroll_to_it);
    void Brush_Set(int brush);
    /** Goes round. Shows the slice where the marker is placed. */
    void Marker_Set(int marker);
    /** One step of the history. */
    void Marker_Place(int marker, const Marker& place);
    /** Marks those that are placed as such for the panel. */
    void Markers_Refresh();

  private:
    std::span<std::uint8_t> Flags_Of(Tag_Mark mark) const;
    void Name_Ask(Text_Table table);

    Workspace& work;
    Label_Values& values;
    Label_Attributes& labels;
    Dialogs& dialogs;
    Tag_Host host;
    bool is_threshold_mode = false;
    Tag_Mark check_mark = Tag_Mark::Enable;
};

}  // namespace workbench
