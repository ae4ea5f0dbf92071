#include "workbench/model/grid_match.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace workbench {

namespace {

constexpr double TOLERANCE = 0.1;   // voxels
constexpr double SINGULAR = 1e-12;  // of the product of the axes' lengths
constexpr double OBLIQUE = 0.02;    // share of an axis that runs along another one: about one degree

using Map = std::array<std::array<double, 4>, 3>;
using Point = std::array<double, 3>;

/** The affine turned round; none when an axis has no length or lies in the plane of the two others. */
std::optional<Map> Inverse(const volumes::Affine& of) {
    const auto minor = [&](std::size_t row, std::size_t column) {
        const std::size_t r0 = (row + 1) % 3;
        const std::size_t r1 = (row + 2) % 3;
        const std::size_t c0 = (column + 1) % 3;
        const std::size_t c1 = (column + 2) % 3;
        return of[r0][c0] * of[r1][c1] - of[r0][c1] * of[r1][c0];
    };
    const double determinant = of[0][0] * minor(0, 0) + of[0][1] * minor(0, 1) + of[0][2] * minor(0, 2);
    double lengths = 1.0;
    for (std::size_t column = 0; column < 3; ++column) {
        lengths *= std::hypot(of[0][column], of[1][column], of[2][column]);
    }
    if (!std::isfinite(determinant) || !(std::abs(determinant) > SINGULAR * lengths)) {
        return std::nullopt;
    }
    Map inverse{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            inverse[row][column] = minor(column, row) / determinant;
            inverse[row][3] -= inverse[row][column] * of[column][3];
        }
    }
    return inverse;
}

Map Product(const Map& first, const Map& second) {  // second is applied before
    Map product{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            product[row][column] = column == 3 ? first[row][3] : 0.0;
            for (std::size_t at = 0; at < 3; ++at) {
                product[row][column] += first[row][at] * second[at][column];
            }
        }
    }
    return product;
}

Point Apply(const Map& map, const Point& to) {
    Point result{};
    for (std::size_t row = 0; row < 3; ++row) {
        result[row] = map[row][0] * to[0] + map[row][1] * to[1] + map[row][2] * to[2] + map[row][3];
    }
    return result;
}

/** The exchange of axes that a map is nearest to, for grids whose sizes agree with it. */
std::optional<Map> Turn_Near(const Map& map, const Volume_Grid& image, const Volume_Grid& labels, Grid_Match& match) {
    Map turn{};
    std::array<bool, 3> is_taken{};
    for (std::size_t column = 0; column < 3; ++column) {
        std::size_t row = 0;
        for (std::size_t at = 1; at < 3; ++at) {
            row = std::abs(map[at][column]) > std::abs(map[row][column]) ? at : row;
        }
        if (is_taken[row] || labels.size[row] != image.size[column]) {
            return std::nullopt;
        }
        is_taken[row] = true;
        const bool is_flipped = map[row][column] < 0.0;
        match.axis[column] = row;
        match.is_flipped[column] = is_flipped;
        turn[row][column] = is_flipped ? -1.0 : 1.0;
        turn[row][3] = is_flipped ? image.size[column] - 1 : 0;
    }
    return turn;
}

/** Whether two maps of the image's voxels differ by less than the tolerance at all corners. */
bool Is_Near(const Map& a, const Map& b, const Volume_Grid& image) {
    for (unsigned int corner = 0; corner < 8; ++corner) {
        Point at{};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            at[axis] = ((corner >> axis) & 1U) != 0 ? image.size[axis] - 0.5 : -0.5;
        }
        const Point in_a = Apply(a, at);
        const Point in_b = Apply(b, at);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            if (!(std::abs(in_a[axis] - in_b[axis]) <= TOLERANCE)) {
                return false;
            }
        }
    }
    return true;
}

constexpr Map IDENTITY = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};

std::string Millimetres(double value) {
    char text[32] = {};
    std::snprintf(text, sizeof text, "%.4g", value == 0.0 ? 0.0 : value);  // no "-0"
    return text;
}

/** The side of the patient that an axis runs to, and whether it runs there askew. */
char Side_Of(const volumes::Affine& affine, std::size_t column, bool& is_oblique) {
    std::size_t most = 0;
    double length = 0.0;
    for (std::size_t row = 0; row < 3; ++row) {
        most = std::abs(affine[row][column]) > std::abs(affine[most][column]) ? row : most;
        length = std::hypot(length, affine[row][column]);
    }
    for (std::size_t row = 0; row < 3; ++row) {
        is_oblique = is_oblique || (row != most && std::abs(affine[row][column]) > OBLIQUE * length);
    }
    return affine[most][column] < 0.0 ? "LPI"[most] : "RAS"[most];
}

}  // namespace

std::size_t Volume_Grid::Voxel_Nb() const {
    return static_cast<std::size_t>(size[0]) * static_cast<std::size_t>(size[1]) * static_cast<std::size_t>(size[2]);
}

Volume_Grid Volume_Grid_Of(const volumes::Volume& volume) {
    return {{volume.nx, volume.ny, volume.nz}, volume.affine};
}

std::string Volume_Grid_Text(const Volume_Grid& grid) {
    std::string sizes;
    std::string spacings;
    std::string origin;
    std::string sides;
    bool is_oblique = false;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const char* cross = axis == 0 ? "" : " x ";
        const char* comma = axis == 0 ? "" : ", ";
        sizes += cross + std::to_string(grid.size[axis]);
        spacings += cross + Millimetres(std::hypot(grid.affine[0][axis], grid.affine[1][axis], grid.affine[2][axis]));
        origin += comma + Millimetres(grid.affine[axis][3]);
        sides += comma + std::string(1, Side_Of(grid.affine, axis, is_oblique));
    }
    return sizes + " voxels of " + spacings + " mm, the first at (" + origin + ") mm, axes to " + sides +
           (is_oblique ? ", oblique" : "");
}

Grid_Match Grid_Compare(const Volume_Grid& image, const Volume_Grid& labels) {
    Grid_Match match;
    match.is_same_size = image.size == labels.size;
    if (image == labels) {
        Grid_Match same = Grid_By_Index(image, labels);
        same.relation = Grid_Relation::Same;
        return same;
    }
    const std::optional<Map> inverse = Inverse(labels.affine);
    if (!inverse) {
        return match;
    }
    match.is_placed = true;
    match.image_to_labels = Product(*inverse, image.affine);
    const std::optional<Map> turn = Turn_Near(match.image_to_labels, image, labels, match);
    if (turn && Is_Near(*turn, match.image_to_labels, image)) {
        match.relation = *turn == IDENTITY ? Grid_Relation::Same : Grid_Relation::Turned;
        match.image_to_labels = *turn;
    }
    return match;
}

Grid_Match Grid_By_Index(const Volume_Grid& image, const Volume_Grid& labels) {
    Grid_Match match;
    match.is_same_size = image.size == labels.size;
    match.axis = {0, 1, 2};
    match.is_placed = true;
    match.image_to_labels = IDENTITY;
    return match;
}

std::string Grid_Turn_Text(const Grid_Match& match) {
    if (match.relation != Grid_Relation::Turned) {
        return {};
    }
    constexpr const char* names[] = {"x", "y", "z"};
    std::string text;
    const auto add = [&](const std::string& words) { text += (text.empty() ? "" : ", ") + words; };
    int moved = 0;
    std::string exchanged;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (match.axis[axis] != axis) {
            ++moved;
            exchanged += (exchanged.empty() ? "" : moved == 2 ? " and " : ", ") + std::string(names[axis]);
        }
    }
    if (moved == 2) {
        add(exchanged + " exchanged");
    } else if (moved == 3) {
        add("x, y and z stand for " + std::string(names[match.axis[0]]) + ", " + names[match.axis[1]] + " and " +
            names[match.axis[2]]);
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (match.is_flipped[axis]) {
            add(std::string(names[axis]) + " flipped");
        }
    }
    return text;
}

std::vector<std::uint8_t> Grid_Carry(const Volume_Grid& image, const Volume_Grid& of_labels, const Grid_Match& match,
                                     std::span<const std::uint8_t> labels, std::size_t* outside_nb) {
    std::vector<std::uint8_t> carried(image.Voxel_Nb());
    const Map& map = match.image_to_labels;
    std::size_t outside = 0;
    std::size_t at = 0;
    for (std::int32_t z = 0; z < image.size[2]; ++z) {
        for (std::int32_t y = 0; y < image.size[1]; ++y) {
            const Point row = Apply(map, {0.0, static_cast<double>(y), static_cast<double>(z)});
            for (std::int32_t x = 0; x < image.size[0]; ++x, ++at) {
                bool is_inside = true;
                std::size_t from = 0;
                for (std::size_t axis = 3; axis-- > 0;) {
                    const double index = std::floor(row[axis] + map[axis][0] * x + 0.5);
                    const std::int32_t size = of_labels.size[axis];
                    is_inside = is_inside && index >= 0.0 && index < size;
                    from = from * static_cast<std::size_t>(size) + static_cast<std::size_t>(is_inside ? index : 0.0);
                }
                if (is_inside && from < labels.size()) {
                    carried[at] = labels[from];
                } else {
                    ++outside;
                }
            }
        }
    }
    if (outside_nb != nullptr) {
        *outside_nb = outside;
    }
    return carried;
}

std::optional<Grid_Voxel> Grid_Image_Voxel(const Volume_Grid& image, const Grid_Match& match,
                                           const Grid_Voxel& labels) {
    const std::optional<Map> inverse = match.is_placed ? Inverse(match.image_to_labels) : std::nullopt;
    if (!inverse) {
        return std::nullopt;
    }
    const Point place = Apply(
        *inverse, {static_cast<double>(labels[0]), static_cast<double>(labels[1]), static_cast<double>(labels[2])});
    Grid_Voxel voxel{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double index = std::floor(place[axis] + 0.5);
        if (!(index >= 0.0 && index < image.size[axis])) {
            return std::nullopt;
        }
        voxel[axis] = static_cast<std::int32_t>(index);
    }
    return voxel;
}

}  // namespace workbench
