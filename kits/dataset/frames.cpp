#include <cmath>

#include "kits/dataset/dataset_host.h"

namespace {

constexpr int DIMENSION_MAX = 65535;

bool Is_Dimension(int value) {
    return value >= 1 && value <= DIMENSION_MAX;
}

}  // namespace

Quorel_2D_Frame::~Quorel_2D_Frame() {
    Frame_Histogram_Free(this);
}

int Quorel_2D_Frame::Sample(const float* /*position*/, const int* /*slice*/) const {
    return SAMPLE_OUTSIDE;
}

Level_Frame::Level_Frame(const std::int32_t* frame_levels, int frame_width, int frame_height, int frame_slices,
                         int frame_times, float frame_slope, float frame_intercept, bool packed_color)
    : levels(frame_levels), slope(frame_slope), intercept(frame_intercept) {
    color = packed_color;
    const bool usable = frame_levels != nullptr && Is_Dimension(frame_width) && Is_Dimension(frame_height) &&
                        Is_Dimension(frame_slices) && Is_Dimension(frame_times);
    width = static_cast<unsigned short>(usable ? frame_width : 0);
    height = static_cast<unsigned short>(usable ? frame_height : 0);
    slices = static_cast<unsigned short>(usable ? frame_slices : 0);
    times = static_cast<unsigned short>(usable ? frame_times : 0);
}

Level_Frame::~Level_Frame() = default;

int Level_Frame::Sample(const float* position, const int* slice_index) const {
    const int slice = slice_index != nullptr ? slice_index[0] : 0;
    const int time = slice_index != nullptr ? slice_index[1] : 0;
    // Written so that a position that is not a number is outside.
    const bool inside = levels != nullptr && position != nullptr && position[0] >= 0.0F &&
                        position[0] < static_cast<float>(width) && position[1] >= 0.0F &&
                        position[1] < static_cast<float>(height) && slice >= 0 && slice < slices && time >= 0 &&
                        time < times;
    if (!inside) {
        return SAMPLE_OUTSIDE;
    }
    const auto x = static_cast<std::size_t>(position[0]);
    const auto y = static_cast<std::size_t>(position[1]);
    const std::size_t plane = static_cast<std::size_t>(time) * slices + static_cast<std::size_t>(slice);
    return levels[(plane * height + y) * width + x];
}

float Fct_GLI_2_Float(Quorel_2D* frame, int value) {
    const auto* grey = frame != nullptr ? dynamic_cast<const Level_Frame*>(frame->frame) : nullptr;
    if (grey == nullptr || grey->color) {
        return static_cast<float>(value);
    }
    return static_cast<float>(static_cast<double>(value) * static_cast<double>(grey->slope) +
                              static_cast<double>(grey->intercept));
}
