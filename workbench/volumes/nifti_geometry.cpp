#include "workbench/volumes/nifti_geometry.h"

#include <algorithm>
#include <cmath>

#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

constexpr std::int32_t SFORM_OF_SCANNER = 1;  // higher codes: of another image, or of an atlas
constexpr int UNIT_MASK = 0x07;               // of the field xyzt_units: length
constexpr int TIME_MASK = 0x38;               // of the field xyzt_units: time

double Millimetres_Per_Unit(std::int32_t units) {
    switch (units & UNIT_MASK) {
        case 1:
            return 1000.0;  // metre
        case 3:
            return 0.001;  // micrometre
        default:
            return 1.0;  // millimetre or not said
    }
}

double Seconds_Per_Unit(std::int32_t units) {
    switch (units & TIME_MASK) {
        case 8:
            return 1.0;
        case 16:
            return 1.0e-3;
        case 24:
            return 1.0e-6;
        default:
            return 0.0;  // hertz, ppm, radians, or not said
    }
}

double Determinant(const Affine& a) {
    return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1]) - a[0][1] * (a[1][0] * a[2][2] - a[1][2] * a[2][0]) +
           a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
}

// The distance of the planes that the other two axes span, from one voxel to the next.
double Height_Of(const Affine& a, std::size_t axis) {
    const std::size_t b = (axis + 1) % 3;
    const std::size_t c = (axis + 2) % 3;
    const double area = std::hypot(a[1][b] * a[2][c] - a[2][b] * a[1][c], a[2][b] * a[0][c] - a[0][b] * a[2][c],
                                   a[0][b] * a[1][c] - a[1][b] * a[0][c]);
    return std::fabs(Determinant(a)) / area;
}

// True when voxels have a place each: finite, and not flattened to a plane.
bool Affine_Usable(const Affine& affine) {
    for (const auto& row : affine) {
        if (!std::all_of(row.begin(), row.end(), [](double value) { return std::isfinite(value); })) {
            return false;
        }
    }
    const double determinant = Determinant(affine);
    return std::isfinite(determinant) && determinant != 0;
}

// The sform in millimetres. An image of one slice may leave the step to the next one empty: it is then the voxel size
// along the normal.
Affine Sform_Of(const Stored_Geometry& geometry, std::int32_t slice_nb) {
    Affine sform = geometry.srow;
    const double unit = Millimetres_Per_Unit(geometry.units);
    for (auto& row : sform) {
        for (double& value : row) {
            value *= unit;
        }
    }
    if (slice_nb == 1 && sform[0][2] == 0 && sform[1][2] == 0 && sform[2][2] == 0) {
        const std::array<double, 3> normal = {sform[1][0] * sform[2][1] - sform[2][0] * sform[1][1],
                                              sform[2][0] * sform[0][1] - sform[0][0] * sform[2][1],
                                              sform[0][0] * sform[1][1] - sform[1][0] * sform[0][1]};
        const double length = std::hypot(normal[0], normal[1], normal[2]);
        const double size = std::fabs(geometry.pixdim[3]) * unit;
        for (std::size_t i = 0; i < 3 && length > 0; ++i) {
            sform[i][2] = normal[i] / length * (size > 0 && std::isfinite(size) ? size : 1.0);
        }
    }
    return sform;
}

// The rotation of the unit quaternion (a, b, c, d), its columns scaled by the voxel sizes, the third mirrored if the
// handedness says so.
Affine Affine_From_Quaternion(const Stored_Geometry& geometry, const std::array<double, 3>& spacing, double unit) {
    double b = geometry.quatern[0];
    double c = geometry.quatern[1];
    double d = geometry.quatern[2];
    double a = 1.0 - (b * b + c * c + d * d);
    if (a < 1.0e-7) {  // rounding of a half turn: normalise the three that were stored
        const double length = std::sqrt(b * b + c * c + d * d);
        a = 0;
        b /= length;
        c /= length;
        d /= length;
    } else {
        a = std::sqrt(a);
    }
    const double rotation[3][3] = {
        {a * a + b * b - c * c - d * d, 2 * (b * c - a * d), 2 * (b * d + a * c)},
        {2 * (b * c + a * d), a * a + c * c - b * b - d * d, 2 * (c * d - a * b)},
        {2 * (b * d - a * c), 2 * (c * d + a * b), a * a + d * d - c * c - b * b},
    };
    const double hand = geometry.pixdim[0] < 0 ? -1.0 : 1.0;
    Affine affine{};
    for (std::size_t i = 0; i < 3; ++i) {
        affine[i] = {rotation[i][0] * spacing[0], rotation[i][1] * spacing[1], rotation[i][2] * spacing[2] * hand,
                     geometry.qoffset[i] * unit};
    }
    return affine;
}

}  // namespace

bool Is_Sform_Usable(const Stored_Geometry& geometry, std::int32_t slice_nb) {
    return geometry.sform_code > 0 && Affine_Usable(Sform_Of(geometry, slice_nb));
}

void Geometry_Apply(const Stored_Geometry& geometry, Volume& volume) {
    const double unit = Millimetres_Per_Unit(geometry.units);
    const Affine sform = Sform_Of(geometry, volume.nz);
    const bool sform_usable = geometry.sform_code > 0 && Affine_Usable(sform);
    for (std::size_t i = 0; i < 3; ++i) {
        double spacing = std::fabs(geometry.pixdim[i + 1]) * unit;
        if (!(spacing > 0 && std::isfinite(spacing)) && sform_usable) {
            spacing = std::hypot(sform[0][i], sform[1][i], sform[2][i]);
        }
        const bool is_known = spacing > 0 && std::isfinite(spacing);
        volume.spacing[i] = is_known ? spacing : 1.0;
        volume.is_size_known = volume.is_size_known && is_known;
    }
    const double time_step = geometry.pixdim[4] * Seconds_Per_Unit(geometry.units);
    volume.time_step = time_step > 0 && std::isfinite(time_step) ? time_step : 0.0;

    if (sform_usable) {
        volume.affine = sform;
        volume.affine_source = Affine_Source::Sform;
        return;
    }
    if (geometry.qform_code > 0) {
        const Affine qform = Affine_From_Quaternion(geometry, volume.spacing, unit);
        if (Affine_Usable(qform)) {
            volume.affine = qform;
            volume.affine_source = Affine_Source::Qform;
            return;
        }
    }
    volume.affine = Affine{};
    for (std::size_t i = 0; i < 3; ++i) {
        volume.affine[i][i] = volume.spacing[i];
    }
    volume.affine_source = Affine_Source::Spacing;
}

std::vector<std::string> Geometry_Warnings(const Stored_Geometry& geometry, const Volume& volume) {
    std::vector<std::string> texts;
    const bool is_placed = volume.affine_source == Affine_Source::Sform || volume.affine_source == Affine_Source::Qform;
    const char* const instead =
        is_placed ? "its qform says where it lies" : "which side of the patient is which is not known";
    if (geometry.sform_code > 0 && volume.affine_source != Affine_Source::Sform) {
        texts.push_back(
            std::string("has an sform that cannot be used (it is flat, or has elements that are no number): ") +
            instead);
    }
    if (geometry.qform_code > 0 && !is_placed) {
        texts.push_back(std::string("has a qform that cannot be used: ") + instead);
    }
    if (volume.affine_source != Affine_Source::Sform) {
        return texts;
    }
    // A share. Where the sform leads to the scanner's own space: single precision, and programs that round.
    // Registration to another image or an atlas makes heads larger or smaller, and means to.
    const double same = geometry.sform_code > SFORM_OF_SCANNER ? 0.3 : 0.01;
    const double unit = Millimetres_Per_Unit(geometry.units);
    const std::array<std::int32_t, 3> size = {volume.nx, volume.ny, volume.nz};
    bool differs = false;
    std::string told_sizes;
    std::string steps;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double told = std::fabs(geometry.pixdim[axis + 1]) * unit;
        const double step = std::hypot(volume.affine[0][axis], volume.affine[1][axis], volume.affine[2][axis]);
        // Slices of a sheared image lie as far apart as their planes do, or as its steps are long: both are written.
        const double height = Height_Of(volume.affine, axis);
        const auto is_apart = [&](double length) { return std::fabs(told - length) > same * length; };
        differs = differs || (size[axis] > 1 && told > 0 && std::isfinite(told) && is_apart(step) && is_apart(height));
        told_sizes += (axis > 0 ? " x " : "") + Value_Text(told);
        steps += (axis > 0 ? " x " : "") + Value_Text(step);
    }
    if (differs) {
        texts.push_back("says that voxels are " + told_sizes + " mm large, and its sform that they are " + steps +
                        " mm: places follow the sform, the picture's proportions the voxel sizes");
    }
    return texts;
}

}  // namespace volumes
