// libFuzzer: any stream of events, class trees, files and answers of the host on the database panels and their editor.
#include <deque>
#include <memory>
#include <string>

#include "database/edit_diagram.h"
#include "database/editor_places.h"
#include "database/tool_db_class.h"
#include "database/tool_db_file.h"
#include "kits/widgets/headless_windows.h"
#include "tests/database/file_scene.h"
#include "tests/fuzzing/input_bytes.h"
#include "tests/support/headless_windows.h"
#include "tests/support/panel_stage.h"

namespace {

constexpr int WINDOW_WIDTH = 320;
constexpr int WINDOW_HEIGHT = 240;
constexpr int STEPS_MOST = 80;
constexpr int CLASSES_MOST = 24;
constexpr int FILES_MOST = 6;

/** A class tree of one dimension. Record 0 is the root; the others hang somewhere, or nowhere. */
template <class Class>
class Class_Scene {
  public:
    Class_Scene(const char* root_name, Input_Bytes& input) : root(root_name) {
        const int nb = input.Below(CLASSES_MOST);
        for (int i = 0; i < nb; ++i) {
            Class& added = classes.emplace_back();
            added.Title_Set(input.Text(6).c_str());
            added.Name_Set(input.Text(12).c_str());
            Move(i, input.Below(i + 1));
        }
        Variable_Define_Pointer(root, nb > 0 ? &classes[0] : nullptr);
    }
    ~Class_Scene() { Variable_Define_Pointer(root, nullptr); }
    Class_Scene(const Class_Scene&) = delete;
    Class_Scene& operator=(const Class_Scene&) = delete;

    /** What another program would do with the tree: hang a class below another one, or take it out. */
    void Change(Input_Bytes& input) {
        if (classes.empty()) {
            return;
        }
        const int nb = static_cast<int>(classes.size());
        const int one = input.Below(nb);
        if ((input.Take<std::uint8_t>() & 3) == 0) {
            if (Class* const parent = At(one).Parent_Get_Pt(); parent != nullptr) {
                parent->Child_Remove(&At(one));
            }
        } else {
            Move(one, input.Below(nb));
        }
    }
    void Select(Input_Bytes& input) {
        for (Class& one : classes) {
            if ((input.Take<std::uint8_t>() & 1) != 0) {
                one.Flag_Set_On(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
            } else {
                one.Flag_Set_Off(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
            }
        }
    }

  private:
    Class& At(int i) { return classes[static_cast<std::size_t>(i)]; }
    void Move(int child, int parent) {
        if (child != parent && At(parent).Child_Add(&At(child)) != 0) {
            At(child).Parent_Set_Pt(&At(parent));
        }
    }
    const char* root;
    std::deque<Class> classes;
};

/** Everything that the views read. */
struct Host {
    explicit Host(Input_Bytes& input)
        : lines("$DB_1D_ROOT_PT", input), images("$DB_2D_ROOT_PT", input), bodies("$DB_3D_ROOT_PT", input) {
        for (int nb = input.Below(FILES_MOST); nb > 0; --nb) {
            File_Add(input);
        }
    }
    void File_Add(Input_Bytes& input) {
        if ((input.Take<std::uint8_t>() & 7) == 0) {
            files.Add_Null_File();
            return;
        }
        const int frame_nb = input.Below(4);
        File_Scene::File& file = files.Add_File(input.Text(20), frame_nb);
        for (Quorel_2D_Frame* const frame : file.frames) {
            frame->modality = input.Take<std::uint16_t>();
            frame->slices = static_cast<unsigned short>(input.Below(4));
            files.Add_Object(frame);
        }
        if (frame_nb > 0) {
            file.flags[0] = input.Take<std::uint16_t>();
        }
    }
    void Change(Input_Bytes& input) {
        switch (input.Below(5)) {
            case 0:
                lines.Change(input);
                break;
            case 1:
                images.Change(input);
                break;
            case 2:
                bodies.Change(input);
                break;
            case 3:
                if (files.table.size() < FILES_MOST) {
                    File_Add(input);
                }
                break;
            default:
                images.Select(input);
        }
    }
    File_Scene files;
    Class_Scene<Quorel_1D> lines;
    Class_Scene<Quorel_2D> images;
    Class_Scene<Quorel_3D> bodies;
};

class File_View final : public Tool_DB_File {
    using Tool_DB_File::Tool_DB_File;
};
class Class_View final : public Tool_DB_Class {
    using Tool_DB_Class::Tool_DB_Class;
};

/** One panel, of either view, that may end while one of its operations calls the host: on the heap, so that a touch
 *  after that is seen. */
class Panel {
  public:
    Panel(int mode, bool is_file_view) {
        if (is_file_view) {
            files = std::make_unique<File_View>(mode);
        } else {
            classes = std::make_unique<Class_View>(mode);
        }
    }
    /** Null once it has ended. */
    Tool_DB_List* Get() {
        if (files) {
            return files.get();
        }
        return classes.get();
    }
    void End() {
        files.reset();
        classes.reset();
    }
    void Copy() {
        if (files) {
            files = std::make_unique<File_View>(*files);
        } else if (classes) {
            classes = std::make_unique<Class_View>(*classes);
        }
    }

  private:
    std::unique_ptr<File_View> files;
    std::unique_ptr<Class_View> classes;
};

void Event(Tool_DB_List& panel, const Panel_Stage& stage, Input_Bytes& input) {
    switch (input.Below(9)) {
        case 0: {
            Boxs box = stage.Host_Box(input.Below(40), input.Below(40), input.Below(WINDOW_WIDTH) - 5,
                                      input.Below(WINDOW_HEIGHT) - 5);
            box.border = static_cast<unsigned short>(input.Below(6));
            panel.Resize(&box);
            break;
        }
        case 1:
            panel.Draw();
            break;
        case 2:
        case 3:
            panel.Click(input.Take<std::uint8_t>() & 0x77);
            break;
        case 4:
        case 5:
            panel.Motion(input.Take<std::uint8_t>() & 0x71);
            break;
        case 6:
            panel.Scroll(input.Take<std::int8_t>());
            break;
        case 7:
            (input.Take<std::uint8_t>() & 3) == 0 ? panel.Leave() : panel.Update(input.Take<std::uint64_t>());
            break;
        default:
            panel.Keyboard(KEY_DELETE);
    }
}

/** Puts the pointer where something is: on a zone of a node of the editor. @return false when there is none */
bool Aim(const Tool_DB_List& panel, const Panel_Stage& stage, int record, Edit_Zone zone) {
    DB_Node_Box box;
    if (!DB_Editor_Node_Box(panel, record, &box)) {
        return false;
    }
    const DB_List& node = panel.List_Pt()[record];
    const DB_Tree_Point at = Edit_Zone_Point(node, zone);
    const DB_Tree_Point cell = Edit_Cell(node);
    stage.Point_At(box.x + at.x - cell.x, box.y + EDIT_CELL_HEIGHT - (at.y - cell.y));
    return true;
}

/** Drags a node to another one, or opens what is at a node: random places would hardly ever do. */
void Gesture(Panel& panel, const Panel_Stage& stage, Input_Bytes& input) {
    constexpr Edit_Zone zones[] = {Edit_Zone::Body, Edit_Zone::Toggle, Edit_Zone::Parent_Handle,
                                   Edit_Zone::Children_Handle};
    const int record = input.Below(CLASSES_MOST);
    const Edit_Zone zone = zones[input.Below(4)];
    if (!Aim(*panel.Get(), stage, record, zone)) {
        return;
    }
    panel.Get()->Click(zone == Edit_Zone::Body ? MOUSE_PRESS | MOUSE_RIGHT : MOUSE_PRESS | MOUSE_LEFT);
    const int target = input.Below(CLASSES_MOST);
    if (panel.Get() != nullptr && Aim(*panel.Get(), stage, target, Edit_Zone::Children_Handle)) {
        panel.Get()->Motion(MOUSE_DRAG | MOUSE_LEFT);
        panel.Get()->Click(0);
    }
}

/** What arrives at the dialog for a new name. */
bool Dialog_Message(Input_Bytes& input, Headless_Message& message) {
    constexpr unsigned int key = 0x100;
    constexpr unsigned int character = 0x102;
    constexpr unsigned int press = 0x201;
    constexpr unsigned int messages[] = {0x0F,      0x10,  key,   character, character,
                                         character, 0x200, press, press + 1, 0x20A};
    if (input.At_End()) {
        return false;
    }
    message = {messages[input.Below(10)], input.Take<std::uint8_t>(), input.Below(320) | input.Below(160) << 16U};
    return (input.Take<std::uint8_t>() & 31) != 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool is_defined = [] {
        for (const char* name : {"$INTERFACE_SPACE_DIM", "$INTERFACE_BORDER_DIM", "$INTERFACE_VAL_DIM_SML",
                                 "$INTERFACE_BUTTON_DIM_SML", "$INTERFACE_BUTTON_DIM_BIG"}) {
            Variable_Define_Scalar(name, VARIABLE_SIGNED_16, 12);
        }
        return true;
    }();
    Require(is_defined);
    Input_Bytes input(data, size);
    Host host(input);
    const Panel_Stage stage(WINDOW_WIDTH, WINDOW_HEIGHT, Window_Axis::Up);
    Panel panel(input.Below(5) | (input.Take<std::uint8_t>() & (DB_MODE_EDIT | DB_MODE_ADD)), input.Below(4) == 0);
    Request_Recorder requests;
    requests.Answer_At_Once([&](unsigned long long flags) {
        const auto answer = input.Take<std::uint8_t>();
        if ((answer & 3) == 3) {
            host.Change(input);
        }
        if ((answer & 0xF) == 1) {
            panel.End();
        } else if ((answer & 4) != 0 && panel.Get() != nullptr) {
            panel.Get()->Update(flags);
        }
    });
    Headless_Dialog_Set([&](Headless_Message& message) { return Dialog_Message(input, message); });
    Boxs box = stage.Host_Box(10, 10, WINDOW_WIDTH - 20, WINDOW_HEIGHT - 20);
    panel.Get()->Resize(&box);
    panel.Get()->Update(UPDATE_STRUCTURE | UPDATE_LEVEL_1D | UPDATE_LEVEL_2D | UPDATE_LEVEL_3D);
    for (int step = 0; step < STEPS_MOST && !input.At_End() && panel.Get() != nullptr; ++step) {
        stage.Point_At(input.Below(WINDOW_WIDTH), input.Below(WINDOW_HEIGHT));
        Headless_Key_Set(0x11, (input.Take<std::uint8_t>() & 7) == 0);
        switch (input.Below(12)) {
            case 0:
                host.Change(input);
                panel.Get()->Update(UPDATE_STRUCTURE | UPDATE_LEVEL_1D | UPDATE_LEVEL_2D | UPDATE_LEVEL_3D);
                break;
            case 1:
            case 2:
            case 3:
                Gesture(panel, stage, input);
                break;
            case 4:
                (input.Take<std::uint8_t>() & 15) == 0 ? panel.Copy() : panel.Get()->Draw();
                break;
            default:
                Event(*panel.Get(), stage, input);
        }
        requests.Take();
    }
    panel.End();
    Headless_Dialog_Set({});
    return 0;
}
