#include "workbench/application_parts.h"

#include <windows.h>

#include <exception>

#include "workbench/archive_wiring.h"
#include "workbench/part_wiring.h"
#include "workbench/state_members.h"
#include "workbench/wide_text.h"
#include "workbench/window_wiring.h"

namespace workbench {

namespace {

// For what the system and the propagation panel call without saying whom they mean.
Application_Parts* the_parts = nullptr;

void CALLBACK Recovery_Timer(HWND /*window*/, UINT /*message*/, UINT_PTR /*id*/, DWORD /*time*/) {
    if (the_parts != nullptr) {
        the_parts->recovery.Look();
    }
}

void CALLBACK Counting_Timer(HWND /*window*/, UINT /*message*/, UINT_PTR /*id*/, DWORD /*time*/) {
    if (the_parts != nullptr) {
        try {
            the_parts->counting.Look();
        } catch (const std::exception&) {  // no memory; nothing may be thrown through the system's loops
            the_parts->counting.Cancel();
        }
    }
}

int Carry(void* from, void* to) {
    if (the_parts == nullptr) {
        return 0;
    }
    const Volume_Objects& objects = the_parts->objects;
    return the_parts->propagation.Carry(objects.Slice_Of(static_cast<Quorel_2D*>(from)),
                                        objects.Slice_Of(static_cast<Quorel_2D*>(to)));
}

}  // namespace

Application_Parts::Application_Parts(const Command_Line& command_line, Main_Window_User& user)
    : options(command_line),
      work([this] { window.Deliver_Soon(); }),
      window(user),
      banner(look, [&user] { user.Lay_Out(); }),
      dialogs(look, status_line, banner, report, [this] { return window.Handle(); }),
      slices({work, variables, labels, objects, settings.Now(), tools, tags, view, segmentation, segmentation_services,
              planes, status_line}),
      planes(work.session, slices.Plane_Services()),
      image(look, slices, planes),
      segmentation_services(Segmentation_Wires(*this)),
      archives(work, dialogs, Archive_Wires(*this)),
      tools(Tool_Wires(*this)),
      view(work, settings.Now(), dialogs, View_Wires(*this)),
      tags(work, variables, labels, dialogs, Tag_Wires(*this)),
      color_advisor(Color_Wires(*this)),
      propagation(work, variables, dialogs, Propagation_Wires(*this, [&user] { user.Deliver(); })),
      history(work, variables, dialogs, History_Wires(*this)),
      label_files(work, labels, dialogs, Label_File_Wires(*this)),
      layouts(Layout_Wires(*this)),
      pictures(Picture_Wires(*this)),
      image_files(work, dialogs),
      recovery(work, labels, dialogs, Recovery_Wires(*this, &Recovery_Timer)),
      histogram({look, work, variables, labels, objects, panels.Histogram(), dialogs, settings,
                 [this] { return window.Handle(); }, [this] { panels.Histogram_Enlarge(); },
                 [this](int step) { panels.Histogram_Scale_Step(step); }, [this] { panels.Histogram_Scale_Suggest(); },
                 [this] { panels.Histogram_Hosted().Scale_Release(); }}),
      counting(Counting_Wires(*this, &Counting_Timer)),
      database({look, work, objects, dialogs, [&user] { user.Lay_Out(); },
                [this] { histogram.Control().Checked_Take(); },
                [this](const Quorel_2D* frame) { opener.Frame_Follow(frame); },
                [this](unsigned __int64 flags) { Ask(flags); }}),
      levels(work, dialogs, Level_Wires(*this)),
      opener(Opener_Wires(*this, [&user] { user.Deliver(); }), options.labels),
      keyboard(work, variables, dialogs, image.Slices(),
               Keyboard_Wires(*this, [&user](const Command_Call& call) { user.Execute(call); })),
      focus(Focus_Wires(*this)),
      window_control(Window_Wires(*this, [&user] { user.Lay_Out(); })),
      commands({opener,      label_files,   histogram.Exports(), label_objects, archives,  history,
                tags,        tools,         color_advisor,       view,          layouts,   pictures,
                image_files, keyboard,      propagation,         segmentation,  histogram, database,
                focus,       window_control}),
      state_report({[this] { return window.Handle(); }, [&user](HMENU menu) { user.Menu_Refresh(menu); },
                    [this](Json_Text& out) { State_Members_Write(*this, out); }},
                   report) {
    the_parts = this;
    panels.Propagation_Set(&Carry);
}

Application_Parts::~Application_Parts() {
    the_parts = nullptr;
    counting.Cancel();
    objects.Clear();
}

void Application_Parts::Ask(unsigned __int64 panel_flags) {
    work.hub.Ask(panel_flags);
    if (Has_Any(panel_flags, UPDATE_TAG_LABEL)) {
        labels.Note();
    }
}

}  // namespace workbench
