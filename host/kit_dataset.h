/** @file
 *  Kit_Dataset: the host's shared state: named variables, update and redraw requests, data objects, iterators, frames.
 *
 *  Texts are zero-terminated and in the system's code page.
 *
 *  Lifetimes. Volumes, frames and class objects outlive the panel operation that uses them. Objects and files that a
 *  database panel shows live until the next change of structure is announced, and their texts do not change in place. A
 *  histogram record and its arrays stay valid until the iterator that led to its frame has ended.
 *
 *  Memory. What a panel stores in a variable for the host to keep (the labels in "$TAG_LABEL" and "$MARKER_LABEL")
 *  comes from malloc of the C runtime, and panels free the label that they replace: a host that fills these arrays
 *  itself uses malloc of the same C runtime (Variable_Set_Array_Text does). Texts of objects belong to the object and
 *  are copied.
 */
#pragma once

#include "host/platform.h"

/** Exported while the module itself is built, imported by everyone else. */
#if defined(KIT_DATASET_BUILD)
#define KIT_DATASET_API KIT_EXPORT
#else
#define KIT_DATASET_API KIT_IMPORT
#endif

// ---------------- change flags

inline constexpr unsigned __int64 UPDATE_ALL = 0x1000000000000000ULL;         ///< everything may have changed
inline constexpr unsigned __int64 UPDATE_TAG_LABEL = 0x0000800000000000ULL;   ///< "$TAG_LABEL" or "$MARKER_LABEL"
inline constexpr unsigned __int64 UPDATE_TAG_SELECT = 0x0000400000000000ULL;  ///< "$TAG_SELECT"
inline constexpr unsigned __int64 UPDATE_TAG_ENABLE = 0x0000200000000000ULL;  ///< "$TAG_ENABLE" or "$MARKER_ENABLE"
inline constexpr unsigned __int64 UPDATE_TAG_LOCK = 0x0000100000000000ULL;    ///< "$TAG_LOCK"
inline constexpr unsigned __int64 UPDATE_COLOR_COMPONENT = 0x0000008000000000ULL;  ///< "$GLI_COLOR_COMPONENT"
inline constexpr unsigned __int64 UPDATE_TAG_TABLE = 0x0000004000000000ULL;  ///< count or colours of TAGs or markers
inline constexpr unsigned __int64 UPDATE_WINDOW_CUR =
    0x0000000100110000ULL;  ///< any of its three bits: the current window
inline constexpr unsigned __int64 UPDATE_HISTO_PAINT =
    0x0000000080000000ULL;  ///< the histogram's picture must be painted anew
inline constexpr unsigned __int64 UPDATE_HISTO_DATA = 0x0000000001000000ULL;  ///< the frames' stored histograms changed
inline constexpr unsigned __int64 UPDATE_BRUSH = 0x0000000000800000ULL;  ///< "$BRUSH_CUR", "$BRUSH_NB" or "$BRUSH_SIZE"
inline constexpr unsigned __int64 UPDATE_TAG_CUR = 0x0000000000400000ULL;    ///< "$TAG_CUR" or "$MARKER_CUR"
inline constexpr unsigned __int64 UPDATE_FRAME_CUR = 0x0000000000200000ULL;  ///< the current frame
inline constexpr unsigned __int64 UPDATE_MOUSE_FRAME =
    0x0000000000040000ULL;  ///< "$FRAME_OVR" or "$MOUSE_FRM": the image mouse moved
inline constexpr unsigned __int64 UPDATE_STRUCTURE =
    0x0000000000000400ULL;  ///< the tree of data objects (with a level bit)
inline constexpr unsigned __int64 UPDATE_SELECTION =
    0x0000000000000100ULL;  ///< the selection of data objects (with a level bit)
inline constexpr unsigned __int64 UPDATE_LEVEL_3D = 0x0000000000000004ULL;  ///< the change concerns 3D objects
inline constexpr unsigned __int64 UPDATE_LEVEL_2D = 0x0000000000000002ULL;  ///< the change concerns 2D objects
inline constexpr unsigned __int64 UPDATE_LEVEL_1D = 0x0000000000000001ULL;  ///< the change concerns 1D objects

/** True when `flags` has at least one bit of `mask`. */
inline constexpr bool Has_Any(unsigned __int64 flags, unsigned __int64 mask) {
    return (flags & mask) != 0;
}
/** True when `flags` has every bit of `mask`. */
inline constexpr bool Has_All(unsigned __int64 flags, unsigned __int64 mask) {
    return (flags & mask) == mask;
}

class Quorel;
class Quorel_Window;
class Quorel_1D;
class Quorel_2D;
class Quorel_3D;
class Quorel_2D_Frame;
struct Region_2D;  ///< opaque; panels pass null

/** The pointer value that means "all windows" or "all objects" wherever a window or object is asked for. Never
 * dereferenced. */
inline constexpr std::uintptr_t ALL_OBJECTS = 4;
/** ALL_OBJECTS as a window. */
inline Quorel_Window* All_Windows() {
    return reinterpret_cast<Quorel_Window*>(ALL_OBJECTS);
}

// ---------------- variables

/** Form of a host variable, returned through `type`. */
enum Variable_Type : unsigned short {
    VARIABLE_NONE = 0,
    VARIABLE_UNSIGNED_8,
    VARIABLE_SIGNED_16,
    VARIABLE_UNSIGNED_16,
    VARIABLE_SIGNED_32,
    VARIABLE_UNSIGNED_32,
    VARIABLE_FLOAT,
    VARIABLE_TEXT,     ///< a text; as an array: one text per element
    VARIABLE_POINTER,  ///< an object; as an array: one pointer per element
};

/** The value of a host variable, widened to pointer width.
 *  @return scalar: the number itself (keep the low 16 bits of a 16-bit variable; a float is cut to its whole part), so
 *  a scalar 0 and a missing scalar both give null; array or text: the address of the first element; object pointer: the
 *  pointer; null: no such variable, or no value
 *  @param name           the variable's name with its "$"
 *  @param nb, type, fct  receive the element count (1 for all but arrays), the Variable_Type and the change function
 *  (null in this kit); each may be null. A missing variable gives 0, VARIABLE_NONE and null
 */
KIT_DATASET_API void* Fct_Variable_Value(const char* name, int* nb, unsigned short* type, int (**fct)(void));

/** The address of a host variable's storage, null when there is no such variable. The address stays the same for the
 *  life of the process. Scalar: storage of the number; array: storage holds the pointer to the first element; text:
 *  storage holds the text pointer; object: storage holds the pointer.
 *  @param name, nb, type, fct  as for Fct_Variable_Value
 *  @param flag  0
 */
KIT_DATASET_API void* Fct_Variable_Get(const char* name, int* nb, unsigned short* type, int (**fct)(void), char flag);

///@{
/** "$TAG_THRESHOLD_MIN" and "$TAG_THRESHOLD_MAX" of a TAG without a lower or an upper threshold, grey levels. */
inline constexpr float TAG_THRESHOLD_MIN_UNSET = -100000.0F;
inline constexpr float TAG_THRESHOLD_MAX_UNSET = 100000.0F;
///@}

// ---------------- requests

/** Tells the host, and through it every panel's Update, that shared state changed. The host may call Update before this
 *  returns.
 *  @param flags UPDATE_* bits; @param a, b the objects concerned, null or ALL_OBJECTS; @param region null */
KIT_DATASET_API void Fct_Update(unsigned __int64 flags, void* a, void* b, Region_2D* region);
/** Asks the host to redraw its image windows. The mask is the host's. */
KIT_DATASET_API void Fct_Redraw(unsigned __int64 flags, void* a, void* b, Region_2D* region);
/** Makes another frame the one that an image window shows; then tells the host, which may call Update before this
 * returns. @param window null or All_Windows() is ignored; @param new_frame so is null; @param old_frame the frame
 * shown before, may be null */
KIT_DATASET_API void Fct_Change_Child(Quorel_Window* window, Quorel_2D* new_frame, Quorel_2D* old_frame);

// ---------------- iterators

inline constexpr int CLASS_MASK_2D = 0x2FFF;  ///< class mask of the plain 2D class

/** Opens an iterator over the data objects. @param who names the caller in reports, copied; @param object null.
 * @return a handle; 0 when 16 are open already. */
KIT_DATASET_API unsigned short Iterator_Init(const char* who, Quorel* object);
/** The next object, in the order in which the host registered them; null at the end and for a handle that is not open.
 *  Passed over are objects without a frame of their own (volumes and classes), objects whose class code is of another
 *  dimension or has bits outside `mask`, objects that are not below the volume of `window` (at any depth, by their
 *  parent links; a window without a volume has none), and with `selected_only` those without FLAG_SELECTED in the
 *  selection's flag word. What the host selects or moves between two calls counts from the next call on.
 *  @param handle from Iterator_Init; @param mask CLASS_MASK_2D; @param window the window whose frames are meant, null:
 *  none, or All_Windows(): all, also frames that no window shows; @param selected_only non-zero: only selected ones */
KIT_DATASET_API Quorel_2D* Iterator_Class_2D(unsigned short handle, int mask, Quorel_Window* window, int selected_only);
/** Closes an iterator; to be called after every pass. */
KIT_DATASET_API void Iterator_End(unsigned short handle);

// ---------------- dialogs, input

/** Stored value of a frame to its grey level; the value itself for a colour frame and for one without slope and
 * intercept. */
KIT_DATASET_API float Fct_GLI_2_Float(Quorel_2D* frame, int value);
/** A double-zero ended file filter from n pairs (label, name of the variable with the pattern). A static buffer, valid
 * until the next call. A pair that does not fit is left out. */
KIT_DATASET_API const char* Fct_Create_szFilter(int n, ...);
/** Longest path, with its zero, that Fct_Save_FileName can write. */
inline constexpr int FILE_NAME_SIZE = 32768;
/** Asks for the name of a file to write, in a modal loop. @param title of the dialog; @param filter from
 * Fct_Create_szFilter;
 * @param initial_name name to begin with; @param extension added to a name without one, without its dot; @param buffer
 * FILE_NAME_SIZE bytes, empty after a failure; @param flags 0. @return non-zero: confirmed, `buffer`
 * holds the path; 0: cancelled */
KIT_DATASET_API int Fct_Save_FileName(const char* title, const char* filter, const char* initial_name,
                                      const char* extension, char* buffer, int flags);

/** A pen's state: screen position and button bits in the coding of the mouse event codes. */
struct Pointer_Record {
    int x = 0;        ///< screen pixels
    int y = 0;        ///< screen pixels, y down
    int buttons = 0;  ///< MOUSE_LEFT: tip; MOUSE_RIGHT: tip with the barrel button; MOUSE_MIDDLE: eraser; 0: hovering
};
/** A two-finger gesture since the last record: zoom factors (1: unchanged) and movement in device pixels (y down). */
struct Gesture_Record {
    float fx = 1.0F;  ///< change of the fingers' distance in x, within 1.09 and its reciprocal
    float fy = 1.0F;  ///< the same in y
    float dx = 0.0F;  ///< movement of the point between the fingers in x
    float dy = 0.0F;  ///< movement of that point in y
};
/** The pen record of a pointer message, null when the message is not a pen's. Static, valid until the next call. */
KIT_DATASET_API const Pointer_Record* Fct_Pointer_Pen(HWND window, unsigned int message, std::uintptr_t wparam,
                                                      std::intptr_t lparam);
/** The gesture record of a touch message, null when there is no gesture yet. Static, valid until the next call. */
KIT_DATASET_API const Gesture_Record* Fct_Pointer_Touch(HWND window, unsigned int message, std::uintptr_t wparam,
                                                        std::intptr_t lparam);

// ---------------- objects

inline constexpr int FLAG_GROUP_SELECTION = 4;     ///< flag group of the selection
inline constexpr int FLAG_MASK_SELECTION = 512;    ///< flag mask of the selection
inline constexpr int FLAG_SELECTED = 0x10;         ///< in that group: selected
inline constexpr int FLAG_PARTLY_SELECTED = 0x20;  ///< in that group: partly selected
inline constexpr int FLAG_CHANGED = 0x40;          ///< in that group: changed

inline constexpr int CLASS_PLAIN_1D = 0x1FFF;    ///< class code of a Quorel_1D; the highest four bits are the dimension
inline constexpr int CLASS_PLAIN_2D = 0x2FFF;    ///< class code of a Quorel_2D
inline constexpr int CLASS_PLAIN_3D = 0x3FFF;    ///< class code of a Quorel_3D
inline constexpr int CLASS_WINDOW = 256;         ///< image window of the application
inline constexpr int CLASS_WINDOW_LOCKED = 257;  ///< window in which the database selection cannot be changed

/** Base of all data objects. Owned by the host. */
class KIT_DATASET_API Quorel {
  public:
    Quorel() = default;
    virtual ~Quorel();
    Quorel(const Quorel&) = delete;
    Quorel& operator=(const Quorel&) = delete;

    int Class_A_Get() const { return class_a; }  ///< class code
    unsigned short Class_B_Get() const {
        return class_b;
    }  ///< number of the object in its class; for a window: index into "$FRAME_CUR"
    const char* Title_Get() const { return title; }  ///< may be null or empty; owned by the object
    const char* Name_Get() const { return name; }    ///< may be null or empty; owned by the object
    void Title_Set(const char* text);                ///< copies; null allowed
    void Name_Set(const char* text);                 ///< copies; null allowed

    /** Bits of the flag word of (group, mask) that are set among `bits`. */
    int Flag_Get_Bit(int bits, int group, int mask) const;
    /** Sets bits; without memory for a new flag word nothing is set, and that is reported. */
    void Flag_Set_On(int bits, int group, int mask);
    /** Clears bits of a flag word; one that was never set reads as 0 and stays so. */
    void Flag_Set_Off(int bits, int group, int mask);

    int class_a = 0;             ///< see Class_A_Get; set by the constructors, the host may set another one
    unsigned short class_b = 0;  ///< see Class_B_Get; set by the host

  protected:
    ///@{
    char* title = nullptr;  ///< owned copy, may be null
    char* name = nullptr;
    ///@}
    Quorel* parent = nullptr;  ///< as Parent_Set_Pt left it; null for roots
    Quorel** child = nullptr;  ///< child_nb pointers, not owned
    int child_nb = 0;          ///< pointers in use
    int child_room = 0;        ///< pointers that `child` has room for
    Quorel* holder = nullptr;  ///< whose `child` names this object; unlike `parent` changed by the tree operations only
    /** The bits kept under one (group, mask). */
    struct Flag_Word {
        int group;  ///< for example FLAG_GROUP_SELECTION
        int mask;   ///< for example FLAG_MASK_SELECTION
        int bits;   ///< for example FLAG_SELECTED
    };
    Flag_Word* flag_word = nullptr;  ///< flag_word_nb words, owned
    int flag_word_nb = 0;            ///< pairs (group, mask) that were ever set

    ///@{
    /** Tree operations of all classes; see Quorel_Tree for their rules. */
    int Tree_Insert(int position, Quorel* object);
    int Tree_Remove(int position);
    int Tree_Position(const Quorel* object) const;
    ///@}

  private:
    bool Tree_Room(int count);
    bool Tree_Is_Below(const Quorel* object) const;
    void Tree_Link(int position, Quorel* object);
    static void Tree_Put_Back(Quorel* object);
};

/** Tree operations, typed for one class. Children are not owned. An object is the child of one object at most: adding
 * it to another one takes it from the first. A destroyed object leaves its parent, and its children become roots. */
template <class Class>
class Quorel_Tree : public Quorel {
  public:
    Class* Parent_Get_Pt() const { return static_cast<Class*>(parent); }  ///< null for roots
    /** Sets the parent link alone: the object does not become a child of `object`. Child_Add sets both. */
    void Parent_Set_Pt(Class* object) { parent = object; }
    /** Direct children. */
    int Child_Get_Nb() const { return child_nb; }
    /** The child at `position`; null outside 0 .. Child_Get_Nb() - 1. */
    Class* Child_Get_Pt(int position) const {
        return position >= 0 && position < child_nb ? static_cast<Class*>(child[position]) : nullptr;
    }
    /** Position of a child, -1 when it is not one. */
    int Child_Get_Id(const Class* object) const { return Tree_Position(object); }
    /** Appends. An object that is this one or one of its ancestors is refused and the user is warned: it stays where it
     *  is, or, when it was removed just before, goes back under its former parent at its former position. The same is
     *  done when memory is missing.
     *  @return 1, or 0 when refused, null or out of memory */
    int Child_Add(Class* object) { return Tree_Insert(child_nb, object); }
    /** Inserts before the child at `position` (clamped to 0 .. Child_Get_Nb()). The position counts the children as
     * they stand before the call: a child of this object that moves back is counted at its old place too, so that it
     * comes to stand one place lower. Otherwise as Child_Add. */
    int Child_Insert(int position, Class* object) { return Tree_Insert(position, object); }
    /** Unlinks; the object lives on. Its parent link is cleared when it still names this object. @return 1, or 0 when
     * there is no such child */
    int Child_Remove(int position) { return Tree_Remove(position); }
    /** The same by the child itself. */
    int Child_Remove(Class* object) { return Tree_Remove(Tree_Position(object)); }
};

/** A 1D class object: its children are the classes below it. */
class KIT_DATASET_API Quorel_1D : public Quorel_Tree<Quorel_1D> {
  public:
    Quorel_1D() { class_a = CLASS_PLAIN_1D; }
    ~Quorel_1D() override;
    virtual const char* Icon_Get();  ///< icon file name or null
    char icon[64] = {};              ///< what Icon_Get answers; empty: null
};

/** A 3D class object: its children are the classes below it. */
class KIT_DATASET_API Quorel_3D : public Quorel_Tree<Quorel_3D> {
  public:
    Quorel_3D() { class_a = CLASS_PLAIN_3D; }
    ~Quorel_3D() override;
    virtual const char* Icon_Get();  ///< icon file name or null
    char icon[64] = {};              ///< what the icon operation answers; empty: null
};

/** A 2D class object: a volume (children are its frames) or a frame. */
class KIT_DATASET_API Quorel_2D : public Quorel_Tree<Quorel_2D> {
  public:
    Quorel_2D() { class_a = CLASS_PLAIN_2D; }
    ~Quorel_2D() override;
    virtual const char* Icon_2D_Get();  ///< icon file name or null
    /** Position of the child that a window shows, -1 when none. */
    int Child_Get_Cur(Quorel_Window* window) const;

    Quorel_2D_Frame* frame = nullptr;        ///< the image data; null for volumes and classes; not owned
    int frame_more_nb = 0;                   ///< further frames
    Quorel_2D_Frame** frame_more = nullptr;  ///< frame_more_nb pointers; owned by the host application
    const char* descriptor = nullptr;        ///< series or modality text, may be null; owned by the host application
    int slice[2] = {0, 0};                   ///< slice and time index inside `frame`
    char icon[64] = {};                      ///< what the icon operation answers; empty: null
    int registered_at = -1;                  ///< for the kit only: place among the objects that iterators yield
};

/** An image window. */
class KIT_DATASET_API Quorel_Window : public Quorel {
  public:
    Quorel_Window();
    ~Quorel_Window() override;
    /** The volume whose frames the window shows, null when none; not owned. A destroyed volume leaves it by itself. */
    Quorel_2D* volume = nullptr;

  private:
    friend class Quorel_2D;
    static Quorel_Window* first;    ///< of all windows that exist
    Quorel_Window* next = nullptr;  ///< the one made before
};

inline constexpr unsigned short HISTO_COLOR = 0x1;  ///< bit of Histo_Record::flags: the four component arrays exist

/** A grey-level histogram, of one frame or merged. Bin i covers origin + i * bin_width to origin + (i + 1) * bin_width.
 */
struct Histo_Record {
    std::uint16_t flags = 0;          ///< HISTO_COLOR or 0
    std::uint16_t nb_bins = 0;        ///< length of every array
    float origin = 0.0F;              ///< GLI value of the lower edge of bin 0
    float bin_width = 0.0F;           ///< GLI units
    std::uint32_t max_count = 0;      ///< largest value of any array
    std::uint32_t* counts = nullptr;  ///< nb_bins values, all components; null: an emptied record
    ///@{
    std::uint32_t* counts_red = nullptr;  ///< nb_bins values each, only with HISTO_COLOR
    std::uint32_t* counts_green = nullptr;
    std::uint32_t* counts_blue = nullptr;
    std::uint32_t* counts_component0 = nullptr;
    ///@}
};

inline constexpr int SAMPLE_OUTSIDE = 0x7FFFFFFE;         ///< Sample: this and more mean outside the image
inline constexpr unsigned short FRAME_FLAG_SCOUT = 0x10;  ///< bit of Quorel_2D_Frame::flags

/** The image data of a frame. */
class KIT_DATASET_API Quorel_2D_Frame {
  public:
    Quorel_2D_Frame() = default;
    virtual ~Quorel_2D_Frame();
    Quorel_2D_Frame(const Quorel_2D_Frame&) = delete;
    Quorel_2D_Frame& operator=(const Quorel_2D_Frame&) = delete;

    /** The stored histogram, null when there is none. Belongs to the frame's maker: the kit frees only the one that it
     * built itself. The record and its arrays must stay as they are until the iterator that gave the frame has ended:
     * a panel may read the counts of several frames at once. */
    Histo_Record* Histogram_Get() { return histogram; }
    /** The stored value at a position: grey: the stored level; colour: red in the low byte, green, blue above.
     *  SAMPLE_OUTSIDE or more: outside.
     *  @param position x, y in pixels of the frame; @param slice slice and time index */
    virtual int Sample(const float* position, const int* slice) const;

    unsigned short modality = 0;              ///< two letters, the first in the high byte
    unsigned short flags = 0;                 ///< FRAME_FLAG_SCOUT
    unsigned short width = 0;                 ///< pixels
    unsigned short height = 0;                ///< pixels
    unsigned short slices = 1;                ///< planes of one time
    unsigned short times = 1;                 ///< repetitions of all planes
    bool color = false;                       ///< samples are packed colours
    Histo_Record* histogram = nullptr;        ///< see Histogram_Get; the host may point it at a record of its own
    Histo_Record* histogram_built = nullptr;  ///< for the kit only: the record that it built and frees
};

inline constexpr unsigned short FILE_FLAG_NO_ACCESS = 0x40;  ///< bit of a file's flag entry of a frame

/** A loaded image file. Owned by the host application. */
struct File_Record {
    const char* path = nullptr;             ///< folders separated by either separator; owned by the application
    int frame_nb = 0;                       ///< length of both arrays below
    Quorel_2D_Frame** frame = nullptr;      ///< frame_nb pointers, null entries allowed
    unsigned short* frame_flags = nullptr;  ///< frame_nb entries, FILE_FLAG_NO_ACCESS or 0
};
