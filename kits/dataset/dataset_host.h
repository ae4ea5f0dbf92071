/** @file
 *  The application's side of Kit_Dataset: what a host defines so that panels find it.
 *
 *  A host defines its variables, creates its objects, registers one listener for the panels' requests, and from then on
 *  changes values with the setters below and announces each change to its panels by their Update.
 */
#pragma once

#include "host/kit_dataset.h"

// ---- variables
//
// Storage addresses are stable for the life of the process: a variable that is undefined and defined again keeps its
// storage. Defining a variable anew with another form changes form and value, not the address.

/** Defines a scalar number (8, 16 or 32 bits, or float); the value is cut as by Variable_Set. @return 1; 0 without
 * memory, for a null name and for a type that is no number */
KIT_DATASET_API int Variable_Define_Scalar(const char* name, Variable_Type type, double value);
/** Defines an array of `nb` elements, zeroed. An existing array of the same type that this call made keeps its first
 *  elements. Texts are freed when cut off.
 *  @return the first element, not null for an empty array either; null without memory, for a negative count or
 *  VARIABLE_NONE (the variable then keeps its old array) */
KIT_DATASET_API void* Variable_Define_Array(const char* name, Variable_Type type, int nb);
/** Defines an array that belongs to the application; the kit stores its address only.
 * @return 1; 0 without memory, for a null name, a negative count or VARIABLE_NONE */
KIT_DATASET_API int Variable_Define_Array_At(const char* name, Variable_Type type, int nb, void* first);
/** Defines a text; copied. null: the variable exists with no value. */
KIT_DATASET_API int Variable_Define_Text(const char* name, const char* text);
/** Defines an object pointer. */
KIT_DATASET_API int Variable_Define_Pointer(const char* name, void* object);
/** The variable no longer exists for panels (Value and Get give null; an address that a panel kept holds zero). @return
 * 1; 0 when there was none */
KIT_DATASET_API int Variable_Undefine(const char* name);

/** Sets a defined scalar. A number beyond the variable's type gives the nearest one, not a number gives 0. @return 0
 * when it is not a defined scalar */
KIT_DATASET_API int Variable_Set(const char* name, double value);
/** A defined scalar's value; `missing` when it is not one. */
KIT_DATASET_API double Variable_Number(const char* name, double missing);
/** First element of a defined array; null when it is not an array of that type. @param name, type the variable;
 * @param nb receives the count, 0 when it is none; may be null */
KIT_DATASET_API void* Variable_Array(const char* name, Variable_Type type, int* nb);
/** Replaces a text of a text array (frees the old one, keeps a copy on the C runtime's heap). null: none. @return 1 or
 * 0 */
KIT_DATASET_API int Variable_Set_Array_Text(const char* name, int index, const char* text);
/** How often a name, defined or not, was asked for by Fct_Variable_Value and Fct_Variable_Get since the last reset.
 *  @param name null: all together */
KIT_DATASET_API unsigned int Variable_Look_Ups(const char* name);
/** All these counts start again from 0. */
KIT_DATASET_API void Variable_Look_Ups_Reset();

// ---- requests

/** What the application does with the panels' requests. Null members are skipped. Called on the panel's own call stack.
 */
struct Request_Listener {
    ///@{
    /** Fct_Update and Fct_Redraw with the arguments of the panel. */
    void (*update)(void* context, unsigned __int64 flags, void* a, void* b) = nullptr;
    void (*redraw)(void* context, unsigned __int64 flags, void* a, void* b) = nullptr;
    ///@}
    /** new_frame is never null and window's shown frame has been changed already. */
    void (*change_child)(void* context, Quorel_Window* window, Quorel_2D* new_frame, Quorel_2D* old_frame) = nullptr;
    /** Answers Fct_Save_FileName instead of the system's dialog; null: the dialog. */
    int (*save_file_name)(void* context, const char* title, const char* filter, const char* initial_name,
                          const char* extension, char* buffer) = nullptr;
    void* context = nullptr;  ///< first argument of every call
};
/** Replaces the listener. A default one: nobody listens. */
KIT_DATASET_API void Request_Listener_Set(const Request_Listener& listener);

// ---- objects

inline constexpr int WINDOW_NUMBER_MAX = 16;  ///< class B numbers of windows are 0 .. 15

/** The frame that a window shows now (element Class_B_Get() of "$FRAME_CUR"); null when none, and for null or
 * All_Windows(). */
KIT_DATASET_API Quorel_2D* Window_Frame(const Quorel_Window* window);
/** Makes `frame` (null allowed) the one that the window shows and its parent the window's volume (null: none); tells
 * nobody. Defines "$FRAME_CUR" when needed. A destroyed frame leaves "$FRAME_CUR" by itself. */
KIT_DATASET_API void Window_Frame_Set(Quorel_Window* window, Quorel_2D* frame);

/** Objects that the iterators yield, in this order. The application registers what it created; destruction of an object
 * removes it. Open iterators go on: they skip what has left and reach what has come. @return 1; 0 when it is null,
 * registered already or memory is missing */
KIT_DATASET_API int Object_Register_2D(Quorel_2D* object);
/** The iterators yield it no longer. Null and an object that is not registered are ignored. */
KIT_DATASET_API void Object_Unregister_2D(Quorel_2D* object);
/** Objects registered now. */
KIT_DATASET_API int Object_Registered_2D_Nb();

/** Iterators open now; 0 when every pass was closed. */
KIT_DATASET_API int Iterator_Open_Nb();
inline constexpr int ITERATOR_MAX = 16;  ///< open at once

// ---- frames

/** A frame over stored levels that the application owns: grey level = level * slope + intercept, or packed colours. */
class KIT_DATASET_API Level_Frame : public Quorel_2D_Frame {
  public:
    /** @param levels width x height x slices x times values, x fastest, rows from the top, then slices, then
     *  times; must outlive the frame. Null, or a dimension outside 1 .. 65535: a frame of size 0
     *  @param frame_width, frame_height pixels; @param frame_slices, frame_times planes and repetitions, 1 at least
     *  @param frame_slope, frame_intercept grey level of a level, see above; not used for colours
     *  @param packed_color levels are colours, red in the lowest byte, then green and blue */
    Level_Frame(const std::int32_t* levels, int frame_width, int frame_height, int frame_slices, int frame_times,
                float frame_slope, float frame_intercept, bool packed_color);
    ~Level_Frame() override;
    /** @param position whole and fractional pixels, cut; @param slice_index slice and time, null: the first of both */
    int Sample(const float* position, const int* slice_index) const override;

    const std::int32_t* levels = nullptr;  ///< not owned
    float slope = 1.0F;                    ///< grey levels per level
    float intercept = 0.0F;                ///< grey level of level 0
};

/** The grid that all frames of a volume share, so that merging drops no bin. */
struct Histo_Grid {
    float origin = 0.0F;     ///< GLI value of the lower edge of bin 0
    float bin_width = 1.0F;  ///< GLI units, > 0
    int nb_bins = 1;         ///< 1 .. 65535
};
/** The grid of levels lowest .. highest: one bin per stored level, or the smallest whole number of levels with which a
 *  histogram panel keeps the bins as they are.
 *  @param lowest, highest stored levels, in either order; @param slope, intercept grey level of a level
 *  @param most_bins what "$GLI_HISTO_BINS_MAX" is. The panel counts one grey level more than the frames cover, so one
 *  bin per level needs the number of levels and 1 / slope more (257 for 256 levels of slope 1); with less it would join
 *  bins, and this joins levels instead: frames and panel show the same bins */
KIT_DATASET_API Histo_Grid Histo_Grid_Of_Levels(std::int32_t lowest, std::int32_t highest, float slope, float intercept,
                                                int most_bins);

/** (Re)builds a frame's stored histogram from all slices and times.
 *  @param frame must have its levels
 *  @param grid values outside it do not count; not used for colour frames
 *  @param mask width x height bytes: only the first slice of the first time counts, and of it only pixels whose byte is
 *  not zero; null: all. Colour frames get all five arrays on 256 bins from 0 (`counts` and `counts_component0` count
 *  the largest component).
 *  @return 1; 0 without levels, with a dimension of 0, without memory, or with a grid outside what Histo_Grid says or
 *  not finite (the frame then has no histogram) */
KIT_DATASET_API int Frame_Histogram_Build(Level_Frame* frame, const Histo_Grid& grid, const unsigned char* mask);
/** Frees the record that Frame_Histogram_Build made; one of the application's is only forgotten. */
KIT_DATASET_API void Frame_Histogram_Free(Quorel_2D_Frame* frame);

// ---- pen and touch

/** What the system says of a pen, in screen pixels. */
struct Pen_State {
    ///@{
    int x = 0;  ///< of the tip; y down
    int y = 0;
    ///@}
    bool contact = false;  ///< the tip touches
    bool barrel = false;   ///< the barrel button is held
    bool eraser = false;   ///< the other end is used
};
/** One finger of a touch message, in screen pixels. */
struct Touch_Point {
    std::uint32_t finger = 0;  ///< the same from touching down to lifting
    ///@{
    float x = 0.0F;  ///< y down
    float y = 0.0F;
    ///@}
    bool down = true;  ///< false: lifted by this message
};
/** Where pen and touch input comes from. The default is the system. */
struct Pointer_System {
    /** @return 1 and the state when the pointer of that number is a pen, 0 otherwise */
    int (*pen)(void* context, unsigned int pointer, Pen_State* state) = nullptr;
    /** Reads the fingers of a touch message and gives its handle back to the system. @return how many of `most` were
     * written */
    int (*touch)(void* context, std::uintptr_t wparam, std::intptr_t lparam, Touch_Point* point, int most) = nullptr;
    void* context = nullptr;  ///< first argument of both
};
/** Replaces the source of pen and touch input, for tests and recorded input; null members give no input. @param system
 * null: the system again */
KIT_DATASET_API void Pointer_System_Set(const Pointer_System* system);
inline constexpr float GESTURE_STEP =
    1.09F;  ///< largest zoom factor of one Gesture_Record, smallest is its reciprocal; the rest follows in the next one

// ---- checks of the host, see kits/common/contract.h

/** Compares every variable with the table of kits/dataset/variable_rules.h, and looks at masks, files, frames and
 * histograms that they lead to. To be called when no panel operation is running. @return mistakes found that were not
 * reported yet */
KIT_DATASET_API int Contract_Check_Variables();
/** To be told of every set of change flags that the host sends to its panels: structure and selection need a level. */
KIT_DATASET_API void Contract_Check_Update(unsigned __int64 flags);
/** To be called when no panel operation is running: reports iterators that are still open, by the name of who opened
 *  them. */
KIT_DATASET_API void Contract_Check_Iterators();
