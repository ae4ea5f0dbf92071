/** How the frames of a file make up slices and time points. */
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcitem.h"
#include "workbench/volumes/dicom_reader.h"
#include "workbench/volumes/slice_stack.h"

namespace volumes {

/** What a frame says of itself. */
struct Frame_Facts {
    Slice_Place place;
    bool is_own_place = false;  ///< the place is that of the frame, not of the file
    bool has_scale = false;     ///< slope and intercept are said
    double slope = 1;
    double intercept = 0;
    Slice_Moment moment;
    std::array<double, 3> spacing{1, 1, 1};  ///< mm; the third is the distance or thickness that the file names
};

/** Frames that make up one volume. */
struct Frame_Stack {
    std::int32_t nz = 1;
    std::int32_t nt = 1;
    std::vector<std::int32_t>
        order;          ///< the file's frame for slice 0 of time 0, slice 1 of time 0 ...; nz * nt of them
    Slice_Place place;  ///< of the first slice; is_known is false where directions were assumed
    std::array<double, 3> spacing{1, 1, 1};
    std::array<double, 3> step{0, 0, 1};  ///< mm from one slice to the next, in the coordinates of Slice_Place
    double time_step = 0;                 ///< seconds
};

struct Frame_Plan {
    std::vector<Frame_Facts> facts;     ///< by the file's frame
    std::vector<Frame_Stack> stacks;    ///< one or more; together they have every frame once
    std::string place_source;           ///< for people: where the places come from
    bool is_size_known = true;          ///< as Volume::is_size_known
    std::vector<std::string> warnings;  ///< as Dicom_Result::warnings
};

struct Frame_Size {
    std::int32_t width = 1;
    std::int32_t height = 1;
    std::int32_t frame_nb = 1;
    double stored_lowest = 0;  ///< that pixels can have
    double stored_highest = 0;
};

/** @param modality two letters, the first in the high byte */
Frame_Plan Frames_Plan(DcmItem& data_set, std::uint16_t modality, const Frame_Size& size);

/** The facts alone, and whether the size of a pixel is known: no stacks. */
Frame_Plan Frames_Read(DcmItem& data_set, const Frame_Size& size);

}  // namespace volumes
