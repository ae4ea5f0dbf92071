/** All parts of the application, and how they are wired: what each is given of the others. */
#pragma once

#include "workbench/commands/command_table.h"
#include "workbench/database_control.h"
#include "workbench/edits/label_objects.h"
#include "workbench/edits/segmentation_control.h"
#include "workbench/histogram_counting.h"
#include "workbench/histogram_desk.h"
#include "workbench/host_variables.h"
#include "workbench/image_area.h"
#include "workbench/label_object_services.h"
#include "workbench/main_window.h"
#include "workbench/model/command_line.h"
#include "workbench/model/label_attributes.h"
#include "workbench/model/settings_keeper.h"
#include "workbench/model/workspace.h"
#include "workbench/panel_set.h"
#include "workbench/parts/archive_control.h"
#include "workbench/parts/color_advisor.h"
#include "workbench/parts/focus.h"
#include "workbench/parts/history_control.h"
#include "workbench/parts/image_file_control.h"
#include "workbench/parts/keyboard_control.h"
#include "workbench/parts/label_file_control.h"
#include "workbench/parts/layout_control.h"
#include "workbench/parts/level_supply.h"
#include "workbench/parts/picture_control.h"
#include "workbench/parts/propagation_control.h"
#include "workbench/parts/recovery_control.h"
#include "workbench/parts/tag_control.h"
#include "workbench/parts/view_control.h"
#include "workbench/report.h"
#include "workbench/segmentation_services.h"
#include "workbench/slices_user.h"
#include "workbench/state_report.h"
#include "workbench/status_line.h"
#include "workbench/tools/tool_box.h"
#include "workbench/trace_view.h"
#include "workbench/volume_objects.h"
#include "workbench/volume_opener.h"
#include "workbench/warning_banner.h"
#include "workbench/window_control.h"
#include "workbench/window_dialogs.h"

namespace workbench {

/** Does nothing by itself. One object at a time. */
struct Application_Parts {
    /** @param user of the main window */
    Application_Parts(const Command_Line& command_line, Main_Window_User& user);
    ~Application_Parts();
    Application_Parts(const Application_Parts&) = delete;
    Application_Parts& operator=(const Application_Parts&) = delete;

    /** What a panel asks for, outside the events of the database column. */
    void Ask(unsigned __int64 panel_flags);

    // What the parts work on.
    const Command_Line options;
    Look look;
    Report report;
    Settings_Keeper settings;
    Host_Variables variables;
    Workspace work;
    Label_Attributes labels{work, variables};
    Volume_Objects objects;

    // What is seen.
    Main_Window window;
    Status_Line status_line{look};
    Warning_Banner banner;
    Trace_View trace{look};
    Window_Dialogs dialogs;
    Panel_Set panels{look, variables};
    Slices_User slices;
    Plane_Views planes;
    Image_Area image;

    // What can be done.
    Segmentation_Services segmentation_services;
    Segmentation_Control segmentation{segmentation_services};
    Label_Object_Services label_object_services{work, variables, labels, dialogs};
    Label_Objects label_objects{label_object_services};
    Archive_Control archives;
    Tool_Box tools;
    View_Control view;
    Tag_Control tags;
    Color_Advisor color_advisor;
    Propagation_Control propagation;
    History_Control history;
    Label_File_Control label_files;
    Layout_Control layouts;
    Picture_Control pictures;
    Image_File_Control image_files;
    Recovery_Control recovery;
    Histogram_Desk histogram;
    Histogram_Counting counting;
    Database_Control database;
    Level_Supply levels;
    Volume_Opener opener;
    Keyboard_Control keyboard;
    Focus focus;
    Window_Control window_control;
    Command_Table commands;
    State_Report state_report;
};

}  // namespace workbench
