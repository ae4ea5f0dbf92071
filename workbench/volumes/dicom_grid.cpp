#include "workbench/volumes/dicom_grid.h"

#include <cmath>
#include <string>

namespace volumes {

Frame_Size Frame_Size_Of(const Pixel_Format& format, std::int32_t frame_nb) {
    const double numbers = std::ldexp(1.0, format.bits_stored);
    const double lowest = format.is_signed ? -numbers / 2.0 : 0.0;
    return {format.width, format.height, frame_nb, lowest, lowest + numbers - 1.0};
}

void Grid_Take(const Pixel_Format& format, const Frame_Plan& plan, const Frame_Stack& stack, Volume& volume) {
    volume.nx = format.width;
    volume.ny = format.height;
    volume.nz = stack.nz;
    volume.nt = stack.nt;
    volume.spacing = stack.spacing;
    volume.time_step = stack.time_step;
    volume.affine = Affine_Of(stack.place, stack.spacing, stack.step);
    volume.affine_source = stack.place.is_known ? Affine_Source::Qform : Affine_Source::Spacing;
    volume.color = format.Is_Color();
    volume.is_inverted = format.kind == Pixel_Format::Kind::Grey_Inverted;
    volume.place_source = plan.place_source;
    volume.is_size_known = plan.is_size_known;
    volume.scalar_type =
        volume.color ? "rgb24" : (format.is_signed ? "int" : "uint") + std::to_string(format.bits_allocated);
}

}  // namespace volumes
