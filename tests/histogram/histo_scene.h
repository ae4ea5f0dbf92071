/** Frames with histograms in a window, and the host's variables, as the histogram panel finds them. */
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "histogram/tool_histo.h"
#include "kits/dataset/dataset_host.h"

/** A frame whose stored value is what the test says. */
class Scene_Frame : public Quorel_2D_Frame {
  public:
    int Sample(const float* position, const int* slice) const override {
        asked_x = position[0];
        asked_y = position[1];
        asked_slice = slice[0];
        return sample;
    }
    int sample = SAMPLE_OUTSIDE;
    mutable float asked_x = -1.0F;
    mutable float asked_y = -1.0F;
    mutable int asked_slice = -1;
};

/** A registered 2D object with its frame and that frame's histogram. */
struct Scene_Object {
    Quorel_2D object;
    Scene_Frame frame;
    Histo_Record record;
    std::vector<std::uint32_t> counts[5];  ///< all, red, green, blue, fourth

    void Select(bool on) {
        if (on) {
            object.Flag_Set_On(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
        } else {
            object.Flag_Set_Off(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
        }
    }
    void Histogram_Drop() { frame.histogram = nullptr; }
};

/** The grid of a frame's histogram. */
struct Scene_Grid {
    float origin = 0.0F;
    float bin_width = 1.0F;
};

/** A window with a volume whose frames take part, and every variable that the panel reads. */
class Histo_Scene {
  public:
    static constexpr int CURSOR_DIM = 15;

    Histo_Scene() {
        window.volume = &volume;
        Variable_Define_Pointer("$WINDOW_CUR", &window);
        Variable_Define_Scalar("$GLI_COLOR_COMPONENT", VARIABLE_UNSIGNED_8, 0);
        Variable_Define_Scalar("$GLI_HISTO_BINS_MAX", VARIABLE_UNSIGNED_16, 4096);
        Variable_Define_Scalar("$GLI_HISTO_BINS_NB", VARIABLE_UNSIGNED_16, 0);
        Variable_Define_Scalar("$SELECT_GLI_MIN", VARIABLE_FLOAT, 0);
        Variable_Define_Scalar("$SELECT_GLI_MAX", VARIABLE_FLOAT, 0);
        Variable_Define_Scalar("$INTERFACE_CURSOR_DIM", VARIABLE_SIGNED_16, CURSOR_DIM);
        Variable_Define_Scalar("$REGIONAL_SEPARATOR", VARIABLE_UNSIGNED_8, 0);
        Variable_Define_Pointer("$FRAME_OVR", nullptr);
        mouse = static_cast<float*>(Variable_Define_Array("$MOUSE_FRM", VARIABLE_FLOAT, 2));
    }
    ~Histo_Scene() {
        Tags(0);
        Variable_Define_Pointer("$WINDOW_CUR", nullptr);
        Variable_Define_Pointer("$FRAME_OVR", nullptr);
        Variable_Undefine("$REGIONAL_FILLER");
    }
    Histo_Scene(const Histo_Scene&) = delete;
    Histo_Scene& operator=(const Histo_Scene&) = delete;

    /** A selected frame of the window without a histogram. */
    Scene_Object& Add_Frame(const char* descriptor = nullptr) {
        objects.push_back(std::make_unique<Scene_Object>());
        Scene_Object& one = *objects.back();
        one.object.frame = &one.frame;
        one.object.descriptor = descriptor;
        one.Select(true);
        volume.Child_Add(&one.object);
        one.object.Parent_Set_Pt(&volume);
        Object_Register_2D(&one.object);
        return one;
    }
    Scene_Object& Add_Grey(Scene_Grid grid, std::vector<std::uint32_t> counts, const char* descriptor = nullptr) {
        Scene_Object& one = Add_Frame(descriptor);
        one.counts[0] = std::move(counts);
        Histogram_Give(one, grid, 1);
        return one;
    }
    /** The component arrays are `counts` times 2, 3, 4 and 5. */
    Scene_Object& Add_Color(Scene_Grid grid, std::vector<std::uint32_t> counts, const char* descriptor = nullptr) {
        Scene_Object& one = Add_Frame(descriptor);
        for (std::uint32_t k = 0; k < 5; ++k) {
            for (const std::uint32_t count : counts) {
                one.counts[k].push_back(count * (k + 1));
            }
        }
        Histogram_Give(one, grid, 5);
        one.frame.color = true;
        return one;
    }
    /** Defines the TAG variables for this many TAGs: no names, colours 0, thresholds unset. 0: they do not exist. */
    void Tags(int nb) {
        const char* const names[] = {"$TAG_LABEL", "$TAG_RED",           "$TAG_GRN",
                                     "$TAG_BLU",   "$TAG_THRESHOLD_MIN", "$TAG_THRESHOLD_MAX"};
        for (const char* name : names) {
            Variable_Undefine(name);
        }
        Variable_Undefine("$TAG_NB");
        if (nb == 0) {
            return;
        }
        Variable_Define_Scalar("$TAG_NB", VARIABLE_UNSIGNED_16, nb);
        Variable_Define_Array("$TAG_LABEL", VARIABLE_TEXT, nb);
        tag_red = static_cast<std::uint16_t*>(Variable_Define_Array("$TAG_RED", VARIABLE_UNSIGNED_16, nb));
        tag_green = static_cast<std::uint16_t*>(Variable_Define_Array("$TAG_GRN", VARIABLE_UNSIGNED_16, nb));
        tag_blue = static_cast<std::uint16_t*>(Variable_Define_Array("$TAG_BLU", VARIABLE_UNSIGNED_16, nb));
        tag_min = static_cast<float*>(Variable_Define_Array("$TAG_THRESHOLD_MIN", VARIABLE_FLOAT, nb));
        tag_max = static_cast<float*>(Variable_Define_Array("$TAG_THRESHOLD_MAX", VARIABLE_FLOAT, nb));
        for (int tag = 0; tag < nb; ++tag) {
            tag_red[tag] = tag_green[tag] = tag_blue[tag] = 0;
            tag_min[tag] = TAG_THRESHOLD_MIN_UNSET;
            tag_max[tag] = TAG_THRESHOLD_MAX_UNSET;
        }
    }
    void Tag_Color(int tag, int red, int green, int blue) const {
        tag_red[tag] = static_cast<std::uint16_t>(red << 8 | 0x55);
        tag_green[tag] = static_cast<std::uint16_t>(green << 8 | 0x55);
        tag_blue[tag] = static_cast<std::uint16_t>(blue << 8 | 0x55);
    }
    /** The image mouse is over this frame, whose value there is `sample`. */
    void Mouse_Over(Scene_Object& one, int sample) const {
        one.frame.sample = sample;
        Variable_Define_Pointer("$FRAME_OVR", &one.object);
    }
    void Mouse_Away() const { Variable_Define_Pointer("$FRAME_OVR", nullptr); }

    Quorel_2D volume;
    Quorel_Window window;
    std::vector<std::unique_ptr<Scene_Object>> objects;
    float* mouse = nullptr;
    float* tag_min = nullptr;
    float* tag_max = nullptr;
    std::uint16_t* tag_red = nullptr;
    std::uint16_t* tag_green = nullptr;
    std::uint16_t* tag_blue = nullptr;

  private:
    static void Histogram_Give(Scene_Object& one, Scene_Grid grid, int array_nb) {
        Histo_Record& record = one.record;
        record.flags = array_nb == 5 ? HISTO_COLOR : 0;
        record.nb_bins = static_cast<std::uint16_t>(one.counts[0].size());
        record.origin = grid.origin;
        record.bin_width = grid.bin_width;
        record.counts = one.counts[0].data();
        if (array_nb == 5) {
            record.counts_red = one.counts[1].data();
            record.counts_green = one.counts[2].data();
            record.counts_blue = one.counts[3].data();
            record.counts_component0 = one.counts[4].data();
        }
        one.frame.histogram = &record;
    }
};

/** Gives a panel a grey record on a grid, as a computation would. */
inline void Histo_Record_Give(Tool_Histo& panel, Scene_Grid grid, const std::vector<std::uint32_t>& counts) {
    panel.data->Record_Free();
    auto* record = new Histo_Record();
    record->nb_bins = static_cast<std::uint16_t>(counts.size());
    record->origin = grid.origin;
    record->bin_width = grid.bin_width;
    record->counts = new std::uint32_t[counts.size()];
    for (std::size_t bin = 0; bin < counts.size(); ++bin) {
        record->counts[bin] = counts[bin];
        record->max_count = counts[bin] > record->max_count ? counts[bin] : record->max_count;
    }
    panel.data->record = record;
}
