#include "database/tool_db_file.h"

#include <cstdio>
#include <cstring>

#include "database/frame_index.h"
#include "database/host_classes.h"
#include "host/kit_common.h"
#include "panels/protocol/host_variables.h"

namespace {

constexpr const char* FILE_SOURCE = KIT_SOURCE_ROOT "/database/tool_db_file.cpp";
constexpr std::uint32_t FOLDER_COLOR = 0xFFFFFF;
constexpr unsigned __int64 UPDATE_SELECTION_2D = UPDATE_SELECTION | UPDATE_LEVEL_2D;
constexpr unsigned __int64 REDRAW_SELECTED = 0x8;       ///< after selecting an object
constexpr unsigned __int64 REDRAW_DESELECTED = 0x3FFC;  ///< after deselecting one
constexpr int FRAME_NAME_SIZE = 64;

enum Row_Level : std::uint16_t { LEVEL_FOLDER = 0, LEVEL_FILE = 1, LEVEL_FRAME = 2 };

struct Modality_Icon {
    std::uint16_t code;  ///< two letters, the first in the high byte
    const char* icon;
};
constexpr Modality_Icon MODALITY_ICON[] = {
    {0x4352, "modality rx.tga"},  // CR
    {0x4354, "modality ct.tga"},  // CT
    {0x4D52, "modality mr.tga"},  // MR
    {0x4E4D, "modality nm.tga"},  // NM
    {0x5048, "modality ph.tga"},  // PH
    {0x5054, "modality nm.tga"},  // PT
    {0x5058, "modality rx.tga"},  // PX
    {0x5247, "modality rx.tga"},  // RG
    {0x5343, "modality ph.tga"},  // SC
    {0x5354, "modality nm.tga"},  // ST
    {0x5553, "modality us.tga"},  // US
    {0x5841, "modality xa.tga"},  // XA
};
constexpr const char* MODALITY_ICON_OTHER = "modality ot.tga";

const char* File_Icon(std::uint16_t modality) {
    for (const Modality_Icon& row : MODALITY_ICON) {
        if (row.code == modality) {
            return row.icon;
        }
    }
    return MODALITY_ICON_OTHER;
}

const char* Frame_Icon(const Quorel_2D_Frame* frame) {
    if (frame == nullptr) {
        return DB_ICON_DEFAULT;
    }
    if ((frame->flags & FRAME_FLAG_SCOUT) != 0) {
        return "icon scout.tga";
    }
    if (frame->times >= 2) {
        return "icon cine.tga";
    }
    if (frame->slices >= 2) {
        return "icon volume.tga";
    }
    return frame->slices == 1 && frame->times == 1 ? "icon image.tga" : DB_ICON_DEFAULT;
}

/** The frame's number and size. The ranges begin at the number of the frame itself, also when the frames before it hold
 *  several slices; kept, users read them so. */
void Frame_Name(const Quorel_2D_Frame* frame, int j, char (&name)[FRAME_NAME_SIZE]) {
    const int slices = frame != nullptr ? frame->slices : 0;
    const int times = frame != nullptr ? frame->times : 0;
    const int width = frame != nullptr ? frame->width : 0;
    const int height = frame != nullptr ? frame->height : 0;
    if (slices > 1) {
        std::snprintf(name, sizeof(name), "%d to %d (%dx%d)", j + 1, j + slices, width, height);
    } else if (times < 2) {
        std::snprintf(name, sizeof(name), "%d (%dx%d)", j + 1, width, height);
    } else {
        std::snprintf(name, sizeof(name), "%d to %d", j + 1, j + times);
    }
}

/** Null when the file has no such frame (any more). */
const Quorel_2D_Frame* Frame_Of(const File_Record& file, int j) {
    return j < file.frame_nb && file.frame != nullptr ? file.frame[j] : nullptr;
}

/** The frame of a frame row, null for other rows. */
const Quorel_2D_Frame* Frame_Of(const DB_List& record) {
    const auto* const file = static_cast<const File_Record*>(record.object);
    return record.level == LEVEL_FRAME && file != nullptr ? Frame_Of(*file, record.index) : nullptr;
}

bool Is_Checked(const DB_List& record) {
    return (record.state & DB_STATE_CHECKED) != 0;
}

/** A file's path in its parts; `name` is with the extension. */
struct File_Path {
    char directory[PATH_SIZE];
    char name[PATH_SIZE];
    char extension[PATH_SIZE];

    void Split(const char* path) {
        // A part may be as long as the path, and so a longer one is cut before it is taken apart.
        char cut[PATH_SIZE];
        if (path != nullptr && std::strlen(path) >= sizeof cut) {
            std::snprintf(cut, sizeof cut, "%s", path);
            path = cut;
        }
        Get_Generic_Name(path, directory, name, extension);
        const std::size_t length = std::strlen(name);
        std::snprintf(name + length, sizeof(name) - length, "%s", extension);
    }
};

/** Appends rows to the array. Each operation gives false without memory, reported. */
class File_Lister {
  public:
    File_Lister(int* row_nb, DB_List** row_pt) : nb(row_nb), list_pt(row_pt) {}

    bool Add(File_Record& file, File_Path& path) {
        path.Split(file.path);
        // Only the folder before is compared: a directory that comes back gets a folder of its own again. Kept.
        if ((folder == NONE || std::strcmp(path.directory, Folder_Directory()) != 0) && !Add_Folder(path.directory)) {
            return false;
        }
        DB_List& of_file = (*list_pt)[folder];
        ++of_file.child_nb;
        ++of_file.desc_nb;
        return Add_File(file, path.name) && Add_Frames(file);
    }

  private:
    static constexpr int NONE = -1;

    const char* Folder_Directory() const {
        const char* const title = (*list_pt)[folder].title;
        return title != nullptr ? title : "";
    }

    bool Add_Folder(const char* directory) {
        folder = *nb;
        DB_List* const record = DB_List_Append(nb, list_pt, {FILE_SOURCE, __LINE__});
        if (record == nullptr) {
            return false;
        }
        record->flag = DB_FLAG_EXPANDED;
        record->level = LEVEL_FOLDER;
        record->color = FOLDER_COLOR;
        record->icon = DB_ICON_DEFAULT;
        return DB_List_Text_Copy(&record->title, directory, "title", {FILE_SOURCE, __LINE__});
    }

    bool Add_File(File_Record& file, const char* name) {
        file_row = *nb;
        DB_List* const record = DB_List_Append(nb, list_pt, {FILE_SOURCE, __LINE__});
        if (record == nullptr) {
            return false;
        }
        const Quorel_2D_Frame* const first = Frame_Of(file, 0);
        record->level = LEVEL_FILE;
        record->parent = static_cast<std::uint16_t>(folder);
        record->object = &file;
        record->modality = first != nullptr ? first->modality : std::uint16_t{0};
        record->icon = File_Icon(record->modality);
        record->child_nb = static_cast<std::uint16_t>(file.frame_nb > 0 ? file.frame_nb : 0);
        record->desc_nb = record->child_nb;
        return DB_List_Text_Copy(&record->title, "File", "title", {FILE_SOURCE, __LINE__}) &&
               DB_List_Text_Copy(&record->name, name, "name", {FILE_SOURCE, __LINE__});
    }

    bool Add_Frames(File_Record& file) {
        for (int j = 0; j < file.frame_nb; ++j) {
            DB_List* const record = DB_List_Append(nb, list_pt, {FILE_SOURCE, __LINE__});
            if (record == nullptr) {
                return false;
            }
            const Quorel_2D_Frame* const frame = Frame_Of(file, j);
            record->flag = DB_FLAG_LEAF;
            record->level = LEVEL_FRAME;
            record->parent = static_cast<std::uint16_t>(file_row);
            record->index = static_cast<std::uint16_t>(j);
            record->object = &file;  // the file, not the frame: the index says which one
            record->icon = Frame_Icon(frame);
            if (file.frame_flags != nullptr && (file.frame_flags[j] & FILE_FLAG_NO_ACCESS) != 0) {
                record->state = DB_STATE_NO_ACCESS;
            }
            char name[FRAME_NAME_SIZE];
            Frame_Name(frame, j, name);
            if (!DB_List_Text_Copy(&record->title, "Frame", "title", {FILE_SOURCE, __LINE__}) ||
                !DB_List_Text_Copy(&record->name, name, "name", {FILE_SOURCE, __LINE__})) {
                return false;
            }
            ++(*list_pt)[folder].desc_nb;
        }
        return true;
    }

    int* nb;
    DB_List** list_pt;
    int folder = NONE;
    int file_row = NONE;
};

// ---- selection

Object_Frames Frames_Of(const Quorel_2D& object) {
    return {object.frame, object.frame_more != nullptr ? object.frame_more_nb : 0, object.frame_more};
}

/** Calls `operation(Quorel_2D&)` for the host's 2D objects until it gives false. */
template <class Operation>
void Each_Object(const char* who, Operation operation) {
    const unsigned short iterator = Iterator_Init(who, nullptr);
    if (iterator == 0) {
        return;
    }
    while (Quorel_2D* const object = Iterator_Class_2D(iterator, CLASS_MASK_2D, All_Windows(), 0)) {
        if (!operation(*object)) {
            break;
        }
    }
    Iterator_End(iterator);
}

/** Indexes the frame rows. @return false without memory */
bool Index_Rows(int nb, const DB_List* list_pt, Frame_Index& index) {
    if (!index.Make(nb)) {
        return false;
    }
    for (int i = 0; i < nb; ++i) {
        index.Add({Frame_Of(list_pt[i]), i, Is_Checked(list_pt[i])});
    }
    return true;
}

/** As Frame_Index::Visit_Rows, by comparing every row: for want of memory. */
template <class Visit>
void Visit_Rows_Plainly(int nb, const DB_List* list_pt, const Object_Frames& object, Visit visit) {
    for (int i = 0; i < nb; ++i) {
        const Quorel_2D_Frame* const frame = Frame_Of(list_pt[i]);
        for (int times = frame != nullptr ? object.Count(frame) : 0; times > 0; --times) {
            visit(Frame_Index::Row{frame, i, Is_Checked(list_pt[i])});
        }
    }
}

/** Selects or deselects an object, tells the host, and has the windows drawn unless the panel ended meanwhile. */
void Switch(Quorel_Window* window, Quorel_2D& object, bool on, const Panel_Watch& panel) {
    Object_Select(object, on);
    Fct_Update(UPDATE_SELECTION_2D, All_Windows(), on ? &object : nullptr, nullptr);
    if (!panel.Is_Alive()) {
        return;
    }
    if (on) {
        Fct_Redraw(REDRAW_SELECTED, window, &object, nullptr);
    } else {
        Fct_Redraw(REDRAW_DESELECTED, All_Windows(), nullptr, nullptr);
    }
}

/** Writes without an index. The host may free the rows when it is told of a change, so it is told once, afterwards. */
void Write_Plainly(const char* who, int nb, const DB_List* list_pt) {
    bool changed = false;
    Each_Object(who, [&](Quorel_2D& object) {
        const bool selected = Object_Is_Selected(object);
        Visit_Rows_Plainly(nb, list_pt, Frames_Of(object), [&](const Frame_Index::Row& row) {
            if (row.checked != selected) {
                Object_Select(object, row.checked);
                changed = true;
            }
        });
        return true;
    });
    if (changed) {
        Fct_Update(UPDATE_SELECTION_2D, All_Windows(), nullptr, nullptr);
        Fct_Redraw(REDRAW_DESELECTED, All_Windows(), nullptr, nullptr);
    }
}

}  // namespace

Tool_DB_File::Tool_DB_File(int mode_word) {
    // Files have no place in the class tree: the editor of a file view finds no classes and changes nothing.
    mode = (mode_word & DB_MODE_EDIT) != 0 ? mode_word & ~DB_MODE_DIMENSION : mode_word;
}

Tool_DB_File::~Tool_DB_File() = default;
Tool_DB_File::Tool_DB_File(const Tool_DB_File& other) = default;
Tool_DB_File& Tool_DB_File::operator=(const Tool_DB_File& other) = default;

unsigned short Tool_DB_File::List_Create_From_DB(int* nb, DB_List** list_pt, int /*level*/, int /*parent*/,
                                                 void* /*object*/) {
    const int file_nb = Host_Count("$DB_2D_FILE_NB");
    File_Record** const file = Host_Pointer<File_Record*>("$DB_2D_FILE_PT");
    if (file_nb == 0 || file == nullptr) {
        return 1;
    }
    File_Path path;
    File_Lister lister(nb, list_pt);
    for (int i = 0; i < file_nb; ++i) {
        if (file[i] != nullptr && !lister.Add(*file[i], path)) {
            return 0;
        }
    }
    return 1;
}

void Tool_DB_File::List_Select_From_DB(int nb, DB_List* list_pt) {
    const int row_nb = list_pt != nullptr ? nb : 0;  // null: the count of a failed creation
    for (int i = 0; i < row_nb; ++i) {
        list_pt[i].state = static_cast<std::uint16_t>(list_pt[i].state & ~DB_STATE_CHECKED);
    }
    Frame_Index index;
    const bool indexed = Index_Rows(row_nb, list_pt, index);
    Each_Object("Tool_DB_File::List_Select_From_DB", [&](const Quorel_2D& object) {
        int last = -1;
        const auto check = [&](const Frame_Index::Row& row) {
            if (row.record != last && Object_Is_Selected(object)) {
                list_pt[row.record].state |= DB_STATE_CHECKED;
            }
            last = row.record;
        };
        if (indexed) {
            index.Visit_Rows(Frames_Of(object), check);
        } else {
            Visit_Rows_Plainly(row_nb, list_pt, Frames_Of(object), check);
        }
        return true;
    });
}

void Tool_DB_File::List_Select_To_DB(int nb, DB_List* list_pt) {
    constexpr const char* who = "Tool_DB_File::List_Select_To_DB";
    auto* const window = Host_Pointer<Quorel_Window>("$WINDOW_CUR");
    if (window == nullptr) {
        return;
    }
    const int row_nb = list_pt != nullptr ? nb : 0;
    Frame_Index index;  // holds the check marks: the host may have them read anew after each change
    if (!Index_Rows(row_nb, list_pt, index)) {
        Write_Plainly(who, row_nb, list_pt);
        return;
    }
    const Panel_Watch panel(life);
    Each_Object(who, [&](Quorel_2D& object) {
        const bool selected = Object_Is_Selected(object);  // asked once: the last row that disagrees decides
        index.Visit_Rows(Frames_Of(object), [&](const Frame_Index::Row& row) {
            if (row.checked != selected && panel.Is_Alive()) {
                Switch(window, object, row.checked, panel);
            }
        });
        return panel.Is_Alive();
    });
}
