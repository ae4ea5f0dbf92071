#include "workbench/slice_frames.h"

#include <cmath>
#include <mutex>
#include <new>
#include <type_traits>
#include <utility>

#include "workbench/model/panel_scale.h"
#include "workbench/volumes/work_share.h"

namespace workbench {

namespace {

constexpr int GRID_BINS_FIRST = 4097;  // 4096 levels, and the one that a panel counts beyond them
constexpr int GRID_BINS_MOST = 65535;  // that a panel can be asked for
constexpr std::int32_t ANY_LEVEL = 0;

/** Whether there is anything to count, and a grid to count it on: then only memory can be missing. */
bool Is_Countable(const Level_Frame& frame, const Histo_Grid& grid) {
    const bool is_grid = std::isfinite(grid.origin) && std::isfinite(grid.bin_width) && grid.bin_width > 0.0F;
    return frame.width != 0 && frame.height != 0 && (frame.color || is_grid);
}

}  // namespace

// The base class takes no size without levels, and then has none of its own.
Slice_Frame::Slice_Frame(const volumes::Level_View& frame_voxels, int frame_width, int frame_height, int frame_times,
                         float frame_slope, float frame_intercept, bool packed_color)
    : Level_Frame(&ANY_LEVEL, frame_width, frame_height, 1, frame_times, frame_slope, frame_intercept, packed_color),
      voxels(frame_voxels) {
    levels = nullptr;
}

int Slice_Frame::Sample(const float* position, const int* slice_index) const {
    const int slice = slice_index != nullptr ? slice_index[0] : 0;
    const int time = slice_index != nullptr ? slice_index[1] : 0;
    // Written so that a position that is not a number is outside.
    const bool is_inside = position != nullptr && position[0] >= 0.0F && position[0] < static_cast<float>(width) &&
                           position[1] >= 0.0F && position[1] < static_cast<float>(height) && slice == 0 && time >= 0 &&
                           time < times;
    if (!is_inside || voxels.empty()) {
        return SAMPLE_OUTSIDE;
    }
    const auto x = static_cast<std::size_t>(position[0]);
    const auto y = static_cast<std::size_t>(position[1]);
    return voxels[(static_cast<std::size_t>(time) * height + y) * width + x];
}

const std::int32_t* Slice_Levels(const Slice_Frame& frame, Level_Room& room) {
    return frame.Voxels().Visit([&](const auto& own) -> const std::int32_t* {
        if constexpr (std::is_same_v<std::decay_t<decltype(own)>, volumes::Wide_Levels>) {
            return own.data();
        } else {
            room.resize(own.size());
            frame.Voxels().Copy_To(room);
            return room.data();
        }
    });
}

Histo_Grid Slice_Grid(std::int32_t lowest, std::int32_t highest, float slope, float intercept) {
    const bool is_one_level = std::int64_t{highest} - lowest + 1 < GRID_BINS_FIRST;
    return Histo_Grid_Of_Levels(lowest, highest, slope, intercept, is_one_level ? GRID_BINS_MOST : GRID_BINS_FIRST);
}

void Frame_Histogram_Of(Slice_Frame& frame, const std::int32_t* levels, float slope, const Histo_Grid& grid,
                        const unsigned char* mask) {
    Level_Frame counted(levels, frame.width, frame.height, 1, 1, slope, frame.intercept, frame.color);
    if (Frame_Histogram_Build(&counted, grid, mask) == 0 && Is_Countable(counted, grid)) {
        throw std::bad_alloc();
    }
    Frame_Histogram_Free(&frame);
    std::swap(frame.histogram, counted.histogram);
    std::swap(frame.histogram_built, counted.histogram_built);
}

void Slice_Histogram_Build(Slice_Frame& frame, std::int32_t lowest, std::int32_t highest, const unsigned char* mask,
                           Level_Room& room) {
    const Histo_Grid grid = Slice_Grid(lowest, highest, frame.slope, frame.intercept);
    Frame_Histogram_Of(frame, Slice_Levels(frame, room), frame.slope, grid, mask);
}

void Slice_Frame_Fill(Slice_Frame& frame, const volumes::Volume& image, int slice, int times) {
    const Panel_Scale scale = Panel_Scale_Of(image);
    const std::size_t nb = image.Index(0, 0, 1) * static_cast<std::size_t>(times);
    frame.Voxels_Set(image.levels.empty() ? volumes::Level_View()
                                          : image.levels.View().subspan(image.Index(0, 0, slice), nb));
    frame.slope = static_cast<float>(scale.To_Panel(image.slope));
    frame.intercept = static_cast<float>(scale.To_Panel(image.intercept));
}

std::unique_ptr<Slice_Frame> Slice_Frame_Make(const volumes::Volume& image, int slice, int times) {
    auto frame =
        std::make_unique<Slice_Frame>(volumes::Level_View(), image.nx, image.ny, times, 1.0F, 0.0F, image.color);
    Slice_Frame_Fill(*frame, image, slice, times);
    return frame;
}

Slices_To_Count Slices_To_Count_Of(const volumes::Volume& image) {
    Slices_To_Count wanted{{}, image.level_min, image.level_max};
    for (int slice = 0; slice < image.nz; ++slice) {
        wanted.frames.push_back(Slice_Frame_Make(image, slice, 1));
    }
    return wanted;
}

bool Slices_Count(std::vector<Slices_To_Count>& wanted, const volumes::Load_Progress& progress) {
    struct Place {
        std::size_t volume = 0;
        std::size_t slice = 0;
    };
    std::vector<Place> places;
    for (std::size_t at = 0; at < wanted.size(); ++at) {
        for (std::size_t slice = 0; slice < wanted[at].frames.size(); ++slice) {
            places.push_back({at, slice});
        }
    }
    std::mutex mutex;
    std::vector<Level_Room> rooms;  // that no thread uses now
    const auto count = [&](std::size_t number) {
        const auto [at, slice] = places[number];
        Level_Room room;
        {
            const std::lock_guard lock(mutex);
            if (!rooms.empty()) {
                room = std::move(rooms.back());
                rooms.pop_back();
            }
        }
        Slice_Histogram_Build(*wanted[at].frames[slice], wanted[at].lowest, wanted[at].highest, nullptr, room);
        const std::lock_guard lock(mutex);
        rooms.push_back(std::move(room));
    };
    const auto go_on = [&](std::size_t done) {
        const double share = places.empty() ? 1.0 : static_cast<double>(done) / static_cast<double>(places.size());
        return !progress || progress(share);
    };
    return volumes::Work_Share(places.size(), volumes::Work_Thread_Nb(places.size()), count, go_on);
}

}  // namespace workbench
