/** How the frames of a file make up slices and time points. */
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcitem.h"
#include "workbench/volumes/dicom_reader.h"

/** What a frame says of itself. */
struct Frame_Facts {
    Slice_Place place;
    double slope = 1;
    double intercept = 0;
    std::int32_t temporal_position = 0;
};

struct Frame_Plan {
    std::int32_t nz = 1;
    std::int32_t nt = 1;
    std::vector<std::int32_t>
        order;                       ///< the file's frame for slice 0 of time 0, slice 1 of time 0 ...; nz * nt of them
    std::vector<Frame_Facts> facts;  ///< by the file's frame
    std::array<double, 3> spacing{1, 1, 1};
    double time_step = 0;  ///< seconds
};

/** @param modality two letters, the first in the high byte; @param frame_nb 1 or more */
Frame_Plan Frames_Plan(DcmItem& data_set, std::uint16_t modality, std::int32_t frame_nb);
