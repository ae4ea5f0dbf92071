/** The frames of a volume's slices with their histograms: what takes long of a volume's objects, for any thread. */
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kits/dataset/dataset_host.h"
#include "workbench/volumes/image_folder.h"

namespace workbench {

/** A frame over levels of either width, without a copy of them: its member `levels` is null. */
class Slice_Frame : public Level_Frame {
  public:
    /** @param voxels width x height x times levels, which must outlive the frame, or none; for the rest see Level_Frame
     */
    Slice_Frame(const volumes::Level_View& voxels, int frame_width, int frame_height, int frame_times,
                float frame_slope, float frame_intercept, bool packed_color);
    int Sample(const float* position, const int* slice_index) const override;
    const volumes::Level_View& Voxels() const { return voxels; }
    /** Other levels in their place, or none any more: then every sample is outside. */
    void Voxels_Set(const volumes::Level_View& other) { voxels = other; }

  private:
    volumes::Level_View voxels;
};

/** Of every slice of a volume; the levels are the volume's own and must outlive them. */
using Slice_Frames = std::vector<std::unique_ptr<Slice_Frame>>;
/** Room for the levels of one slice in 32 bits, which histograms are counted from; kept from slice to slice. */
using Level_Room = std::vector<std::int32_t>;

/** The levels of a frame of one time in 32 bits: its own, or in the room where they are narrow. */
const std::int32_t* Slice_Levels(const Slice_Frame& frame, Level_Room& room);
/** Gives a frame the histogram of other levels in its place. @param levels width x height of them, in either unit
 *  @throw std::bad_alloc the frame has the histogram that it had */
void Frame_Histogram_Of(Slice_Frame& frame, const std::int32_t* levels, float slope, const Histo_Grid& grid,
                        const unsigned char* mask);

/** The grid of levels: a bin per level where there are at most 4096, else as many as the panel keeps. */
Histo_Grid Slice_Grid(std::int32_t lowest, std::int32_t highest, float slope, float intercept);
/** (Re)builds the histogram of a slice of a volume whose levels are lowest .. highest.
 *  @param mask a byte per pixel, null: all count @throw std::bad_alloc the frame has the histogram that it had */
void Slice_Histogram_Build(Slice_Frame& frame, std::int32_t lowest, std::int32_t highest, const unsigned char* mask,
                           Level_Room& room);
/** Levels and scale of `times` slices of a volume from `slice` on; the scale is in the unit of Panel_Scale_Of. Of a
 *  volume without levels there are none. */
void Slice_Frame_Fill(Slice_Frame& frame, const volumes::Volume& image, int slice, int times);
/** The frame of `times` slices from `slice` on, filled in, without histogram. */
std::unique_ptr<Slice_Frame> Slice_Frame_Make(const volumes::Volume& image, int slice, int times);

/** The slices of a volume, to be counted on any thread: no more of the volume is needed than where its levels are. */
struct Slices_To_Count {
    Slice_Frames frames;
    std::int32_t lowest = 0;  ///< of the whole volume's levels
    std::int32_t highest = 0;
};
/** Of a whole volume, without histograms. */
Slices_To_Count Slices_To_Count_Of(const volumes::Volume& image);

/** Gives all frames of all volumes their histograms. On as many threads as there are processors; reports to nobody.
 *  @param progress called on the caller's thread now and then with the share that is done; may be empty
 *  @return false: `progress` gave up; some are missing @throw std::bad_alloc */
bool Slices_Count(std::vector<Slices_To_Count>& wanted, const volumes::Load_Progress& progress = {});

}  // namespace workbench
