#include "workbench/model/linked_views.h"

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

double Width_Of(const Linked_View& view) {
    return view.pixel_width > 0.0 && std::isfinite(view.pixel_width) ? view.pixel_width : 1.0;
}

}  // namespace

View_State Linked_State(const Linked_View& follower, const Linked_View& leader) {
    View_State state = follower.state;
    state.zoom = leader.state.zoom == ZOOM_FIT ? ZOOM_FIT : leader.state.zoom * Width_Of(follower) / Width_Of(leader);
    const std::array<double, 2> centers = {leader.state.center_x, leader.state.center_y};
    const std::array<double*, 2> followed = {&state.center_x, &state.center_y};
    for (std::size_t to = 0; to < followed.size(); ++to) {
        for (std::size_t from = 0; from < centers.size(); ++from) {
            if (follower.axes[to].voxel_axis == leader.axes[from].voxel_axis) {
                const bool is_turned = follower.axes[to].is_reversed != leader.axes[from].is_reversed;
                *followed[to] = is_turned ? 1.0 - centers[from] : centers[from];
            }
        }
    }
    return state;
}

double Linked_Fit(std::span<const Linked_View> views) {
    double scale = 0.0;
    for (const Linked_View& view : views) {
        View_State fitted = view.state;
        fitted.zoom = ZOOM_FIT;
        fitted.fit_most = 0.0;
        const double own = View_Layout_Make(fitted).scale_x / Width_Of(view);
        scale = scale > 0.0 ? std::min(scale, own) : own;
    }
    return scale;
}

}  // namespace workbench
