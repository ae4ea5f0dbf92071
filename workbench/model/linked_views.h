/** Views of one volume whose zoom and centre are tied together. */
#pragma once

#include <array>
#include <span>

#include "workbench/model/view_geometry.h"
#include "workbench/model/volume_planes.h"

namespace workbench {

/** A view as far as others go along with it. */
struct Linked_View {
    View_State state;
    std::array<Plane_Geometry::Axis, 3> axes;  ///< of its pictures: across, down, through
    double pixel_width = 1.0;                  ///< of its pictures, in the unit of all views, millimetres or not
};

/** What a view shows that goes along with another one: a millimetre is as long on the screen, and along the axes that
 *  both show the same place stands in the middle. Fitted is fitted. */
View_State Linked_State(const Linked_View& follower, const Linked_View& leader);

/** The largest scale at which the pictures of all of them fit into their views: screen pixels per millimetre; 0: there
 *  is no view. */
double Linked_Fit(std::span<const Linked_View> views);

}  // namespace workbench
