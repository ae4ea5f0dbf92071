/** The frames of a volume's slices with their histograms: what takes long of a volume's objects, for any thread. */
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kits/dataset/dataset_host.h"
#include "workbench/volumes/image_folder.h"

namespace workbench {

/** Of every slice of a volume; the levels are the volume's own and must outlive them. */
using Slice_Frames = std::vector<std::unique_ptr<Level_Frame>>;

/** The grid of levels: a bin per level where there are at most 4096, else as many as the panel keeps. */
Histo_Grid Slice_Grid(std::int32_t lowest, std::int32_t highest, float slope, float intercept);
/** (Re)builds the histogram of a slice of a volume. @param mask a byte per pixel, null: all count */
void Slice_Histogram_Build(Level_Frame& frame, const volumes::Volume& image, const unsigned char* mask);
/** The frame of `times` slices from `slice` on, without histogram. Its grey values are in the unit of Panel_Scale_Of.
 */
std::unique_ptr<Level_Frame> Slice_Frame_Make(const volumes::Volume& image, int slice, int times);

/** Makes the frames of all volumes, with histograms. On as many threads as there are processors; reports to nobody.
 *  @param progress called on the caller's thread now and then with the share that is done; may be empty
 *  @return of every volume; empty: `progress` gave up @throw std::bad_alloc */
std::vector<Slice_Frames> Slice_Frames_Make(const std::vector<volumes::Folder_Volume>& opened,
                                            const volumes::Load_Progress& progress = {});

}  // namespace workbench
