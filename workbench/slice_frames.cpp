#include "workbench/slice_frames.h"

#include <utility>

#include "workbench/model/panel_scale.h"
#include "workbench/volumes/work_share.h"

namespace workbench {

namespace {

constexpr int GRID_BINS_FIRST = 4097;  // 4096 levels, and the one that a panel counts beyond them
constexpr int GRID_BINS_MOST = 65535;  // that a panel can be asked for

}  // namespace

Histo_Grid Slice_Grid(std::int32_t lowest, std::int32_t highest, float slope, float intercept) {
    const bool is_one_level = std::int64_t{highest} - lowest + 1 < GRID_BINS_FIRST;
    return Histo_Grid_Of_Levels(lowest, highest, slope, intercept, is_one_level ? GRID_BINS_MOST : GRID_BINS_FIRST);
}

void Slice_Histogram_Build(Level_Frame& frame, const volumes::Volume& image, const unsigned char* mask) {
    Frame_Histogram_Build(&frame, Slice_Grid(image.level_min, image.level_max, frame.slope, frame.intercept), mask);
}

std::unique_ptr<Level_Frame> Slice_Frame_Make(const volumes::Volume& image, int slice, int times) {
    const Panel_Scale scale = Panel_Scale_Of(image);
    return std::make_unique<Level_Frame>(image.levels.data() + image.Index(0, 0, slice), image.nx, image.ny, 1, times,
                                         static_cast<float>(scale.To_Panel(image.slope)),
                                         static_cast<float>(scale.To_Panel(image.intercept)), image.color);
}

std::vector<Slice_Frames> Slice_Frames_Make(const std::vector<volumes::Folder_Volume>& opened,
                                            const volumes::Load_Progress& progress) {
    struct Place {
        std::size_t volume = 0;
        int slice = 0;
    };
    std::vector<Place> places;
    std::vector<Slice_Frames> made(opened.size());
    for (std::size_t at = 0; at < opened.size(); ++at) {
        made[at].resize(static_cast<std::size_t>(opened[at].volume.nz));
        for (int slice = 0; slice < opened[at].volume.nz; ++slice) {
            places.push_back({at, slice});
        }
    }
    const auto make = [&](std::size_t number) {
        const auto [at, slice] = places[number];
        const volumes::Volume& image = opened[at].volume;
        std::unique_ptr<Level_Frame>& frame = made[at][static_cast<std::size_t>(slice)];
        frame = Slice_Frame_Make(image, slice, 1);
        Slice_Histogram_Build(*frame, image, nullptr);
    };
    const auto go_on = [&](std::size_t done) {
        return !progress || progress(static_cast<double>(done) / static_cast<double>(places.size()));
    };
    if (!volumes::Work_Share(places.size(), volumes::Work_Thread_Nb(places.size()), make, go_on)) {
        return {};
    }
    return made;
}

}  // namespace workbench
