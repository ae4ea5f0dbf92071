/** A host with every panel at once: the data, a window for each panel, and the delivery of changes between them. */
#pragma once

#include <memory>
#include <optional>
#include <random>
#include <vector>

#include "database/tool_db_class.h"
#include "database/tool_db_file.h"
#include "histogram/tool_histo.h"
#include "panels/tool_brush.h"
#include "panels/tool_marker.h"
#include "panels/tool_propagate.h"
#include "panels/tool_tag.h"
#include "tests/faults/database_scene.h"
#include "tests/histogram/histo_scene.h"
#include "tests/panels/brush_scene.h"
#include "tests/support/panel_fixture.h"

class Soak_Host {
  public:
    static constexpr int LABEL_NB = 48;
    static constexpr int FRAME_NB = 6;

    explicit Soak_Host(unsigned int seed);
    ~Soak_Host();
    Soak_Host(const Soak_Host&) = delete;
    Soak_Host& operator=(const Soak_Host&) = delete;

    /** One event at random. */
    void Event();
    /** Meets every size of window and panel and the dialog once, so that fonts and stores for them are made. */
    void Warm_Up();
    /** Ends what is open and brings data and panels into the state of the beginning. */
    void Home();
    /** Kinds of events that happened, each at least once in a long run. */
    const std::vector<long>& Kinds() const { return kind; }

  private:
    enum Kind {
        Click,
        Motion,
        Scroll,
        Keyboard,
        Leave,
        Update,
        Draw,
        Resize,
        Host_Change,
        Enlarged,
        Analysis,
        Rename,
        Copy,
        Kind_Nb
    };
    struct Place {
        Window_Axis axis;
        int width;
        int height;
    };

    int Below(int end) { return static_cast<int>(random() % static_cast<unsigned int>(end)); }
    bool One_In(int nb) { return Below(nb) == 0; }
    unsigned long long Flags();
    Boxs Box(int panel) const;
    void Point(int panel);

    template <class Panel>
    void Panel_Event(int number, Panel& panel, int key);
    void Change_Event();
    void Window_Event();
    void Analysis_Event();
    void Rename_Event();
    void Copies_Event();

    template <class Operation>
    void Every_Panel(Operation operation);
    void Deliver(unsigned long long flags);
    void Labels_Make();
    void Data_Make();
    void Lay_Out_All();
    static void Pump();

    std::mt19937 random;
    std::vector<long> kind = std::vector<long>(Kind_Nb, 0);
    bool delivering = false;

    Histo_Scene scene;
    std::optional<Brush_Masks> masks;
    std::optional<Class_Scene> classes;
    std::optional<File_Scene> files;
    std::vector<std::unique_ptr<Panel_Window>> windows;

    Tool_Tag tag;
    Tool_Marker marker;
    Tool_Brush brush;
    Tool_Propagate propagate;
    Tool_Histo histo;
    Tool_DB_Class browser{2};
    Tool_DB_Class editor{2 | DB_MODE_EDIT};
    Tool_DB_File file_view{2};
};
