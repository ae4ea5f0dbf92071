#include "workbench/segmentation/distance_map.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace workbench::segmentation {

namespace {

constexpr float NOWHERE = std::numeric_limits<float>::infinity();
constexpr std::size_t LINES_AT_ONCE = 16;  // neighbouring lines share what the processor reads at once
constexpr std::size_t FEW_ROWS = 64;       // of a ball: up to here rows are faster than distances

/** Squares of distances along a row. */
void Row_Pass(std::span<const std::uint8_t> row, std::uint8_t value, double step, std::span<float> squared) {
    const auto size = static_cast<std::ptrdiff_t>(row.size());
    const auto square = [&](std::ptrdiff_t steps) {
        const double distance = static_cast<double>(steps) * step;
        return static_cast<float>(distance * distance);
    };
    std::ptrdiff_t last = -1;
    for (std::ptrdiff_t at = 0; at < size; ++at) {
        last = row[static_cast<std::size_t>(at)] == value ? at : last;
        squared[static_cast<std::size_t>(at)] = last < 0 ? NOWHERE : square(at - last);
    }
    last = size;
    for (std::ptrdiff_t at = size - 1; at >= 0; --at) {
        last = row[static_cast<std::size_t>(at)] == value ? at : last;
        if (last < size) {
            float& known = squared[static_cast<std::size_t>(at)];
            known = std::min(known, square(last - at));
        }
    }
}

/** The lower envelope of the parabolas that stand over the places of a line: of each place the least sum of another's
 *  value and the square of the way to it. */
class Parabola_Envelope {
  public:
    Parabola_Envelope(std::size_t length, double step) : square_step(step * step), feet(length), borders(length + 1) {}

    void Apply(std::span<float> line) {
        std::size_t nb = 0;  // parabolas of the envelope
        for (std::size_t foot = 0; foot < line.size(); ++foot) {
            if (line[foot] == NOWHERE) {
                continue;
            }
            double border = -std::numeric_limits<double>::infinity();
            while (nb > 0) {
                border = Border(line, feet[nb - 1].at, foot);
                if (border > borders[nb - 1]) {
                    break;
                }
                --nb;
                border = -std::numeric_limits<double>::infinity();
            }
            feet[nb] = {foot, static_cast<double>(line[foot])};
            borders[nb] = border;
            ++nb;
        }
        if (nb == 0) {
            return;
        }
        std::size_t now = 0;
        for (std::size_t at = 0; at < line.size(); ++at) {
            while (now + 1 < nb && borders[now + 1] < static_cast<double>(at)) {
                ++now;
            }
            const double steps = static_cast<double>(at) - static_cast<double>(feet[now].at);
            line[at] = static_cast<float>(feet[now].height + square_step * steps * steps);
        }
    }

  private:
    struct Foot {
        std::size_t at;
        double height;
    };
    /** From where on the later of two parabolas is the lower one. */
    double Border(std::span<const float> line, std::size_t early, std::size_t late) const {
        const auto a = static_cast<double>(early);
        const auto b = static_cast<double>(late);
        const double rise = static_cast<double>(line[late]) - static_cast<double>(line[early]);
        return (rise / square_step + b * b - a * a) / (2.0 * (b - a));
    }

    double square_step;
    std::vector<Foot> feet;
    std::vector<double> borders;  // where each parabola of the envelope begins
};

/** Lines that cross rows: the voxels at `begin + x + n * stride`. */
struct Crossing_Lines {
    std::size_t begin;
    std::size_t stride;
    std::size_t length;
    std::size_t width;  // lines side by side
};

void Lines_Pass(std::vector<float>& squared, const Crossing_Lines& lines, Parabola_Envelope& envelope,
                std::vector<float>& buffer) {
    buffer.resize(LINES_AT_ONCE * lines.length);
    for (std::size_t x = 0; x < lines.width; x += LINES_AT_ONCE) {
        const std::size_t nb = std::min(LINES_AT_ONCE, lines.width - x);
        for (std::size_t n = 0; n < lines.length; ++n) {
            for (std::size_t i = 0; i < nb; ++i) {
                buffer[i * lines.length + n] = squared[lines.begin + n * lines.stride + x + i];
            }
        }
        for (std::size_t i = 0; i < nb; ++i) {
            envelope.Apply(std::span(buffer).subspan(i * lines.length, lines.length));
        }
        for (std::size_t n = 0; n < lines.length; ++n) {
            for (std::size_t i = 0; i < nb; ++i) {
                squared[lines.begin + n * lines.stride + x + i] = buffer[i * lines.length + n];
            }
        }
    }
}

struct Marked_Run {
    int begin;
    int end;
};

/** The runs of each row of a mask, by ascending z, then y. */
class Mask_Runs {
  public:
    Mask_Runs(const Voxel_Mask& mask, std::uint8_t value) {
        row_begin.push_back(0);
        for (std::size_t at = 0; at < mask.on.size(); at += mask.Row_Size()) {
            const auto row = mask.on.begin() + static_cast<std::ptrdiff_t>(at);
            const auto row_end = row + static_cast<std::ptrdiff_t>(mask.Row_Size());
            const std::uint8_t other = value == 0 ? 1 : 0;
            for (auto begin = std::find(row, row_end, value); begin != row_end;) {
                const auto end = std::find(begin, row_end, other);
                runs.push_back({static_cast<int>(begin - row), static_cast<int>(end - row)});
                begin = std::find(end, row_end, value);
            }
            row_begin.push_back(runs.size());
        }
    }
    std::span<const Marked_Run> Row(std::size_t row) const {
        return std::span(runs).subspan(row_begin[row], row_begin[row + 1] - row_begin[row]);
    }

  private:
    std::vector<std::size_t> row_begin;
    std::vector<Marked_Run> runs;
};

}  // namespace

Distance_Map Distances_Find(const Voxel_Mask& mask, std::uint8_t value, const std::array<double, 3>& spacing,
                            const Step_Progress& progress) {
    Distance_Map map{mask.box, std::vector<float>(mask.on.size())};
    const auto width = static_cast<std::size_t>(mask.box.Width());
    const auto height = static_cast<std::size_t>(mask.box.Height());
    const auto depth = static_cast<std::size_t>(mask.box.Depth());
    std::vector<float> buffer;
    Parabola_Envelope along_y(height, spacing[1]);
    const Step_Progress planes = progress.Part(0.0, 0.6);
    for (std::size_t z = 0; z < depth; ++z) {
        planes.Report(static_cast<std::int64_t>(z), static_cast<std::int64_t>(depth));
        const std::size_t plane = z * height * width;
        for (std::size_t y = 0; y < height; ++y) {
            const std::size_t row = plane + y * width;
            Row_Pass(std::span(mask.on).subspan(row, width), value, spacing[0],
                     std::span(map.squared).subspan(row, width));
        }
        Lines_Pass(map.squared, {plane, width, height, width}, along_y, buffer);
    }
    Parabola_Envelope along_z(depth, spacing[2]);
    const Step_Progress lines = progress.Part(0.6, 1.0);
    for (std::size_t y = 0; y < height && depth > 1; ++y) {
        lines.Report(static_cast<std::int64_t>(y), static_cast<std::int64_t>(height));
        Lines_Pass(map.squared, {y * width, width * height, depth, width}, along_z, buffer);
    }
    return map;
}

std::vector<Ball_Row> Ball_Rows(double radius, const std::array<double, 3>& spacing, int most) {
    const double reach = Squared_Reach(radius);
    const auto steps = [&](double squared, double step) {
        const double nb = std::floor(std::sqrt(std::max(squared, 0.0)) / step);
        int whole = static_cast<int>(std::min<double>(nb, most)) + 1;
        while (whole > 0 && static_cast<double>(whole) * step * (static_cast<double>(whole) * step) > squared) {
            --whole;
        }
        return std::min(whole, most);
    };
    std::vector<Ball_Row> rows;
    const int along_z = steps(reach, spacing[2]);
    for (int z = -along_z; z <= along_z; ++z) {
        const double left = reach - z * spacing[2] * (z * spacing[2]);
        const int along_y = steps(left, spacing[1]);
        for (int y = -along_y; y <= along_y; ++y) {
            rows.push_back({y, z, steps(left - y * spacing[1] * (y * spacing[1]), spacing[0])});
        }
    }
    return rows;
}

Voxel_Mask Mask_Within_By_Rows(const Voxel_Mask& mask, std::uint8_t value, const std::vector<Ball_Row>& ball,
                               const Step_Progress& progress) {
    Voxel_Mask within(mask.box);
    const Mask_Runs runs(mask, value);
    const int width = mask.box.Width();
    const int height = mask.box.Height();
    std::vector<int> change(static_cast<std::size_t>(width) +
                            1);  // how many more runs reach a voxel than the one before
    for (int z = 0; z < mask.box.Depth(); ++z) {
        progress.Report(z, mask.box.Depth());
        for (int y = 0; y < height; ++y) {
            std::ranges::fill(change, 0);
            for (const Ball_Row& row : ball) {
                if (y + row.y < 0 || y + row.y >= height || z + row.z < 0 || z + row.z >= mask.box.Depth()) {
                    continue;
                }
                for (const Marked_Run& run : runs.Row(static_cast<std::size_t>((z + row.z) * height + y + row.y))) {
                    ++change[static_cast<std::size_t>(std::max(run.begin - row.reach, 0))];
                    --change[static_cast<std::size_t>(std::min(run.end + row.reach, width))];
                }
            }
            int reached = 0;
            const std::span<std::uint8_t> out = within.Row(y + mask.box.begin[1], z + mask.box.begin[2]);
            for (std::size_t x = 0; x < out.size(); ++x) {
                reached += change[x];
                out[x] = reached > 0 ? 1 : 0;
            }
        }
    }
    return within;
}

Voxel_Mask Mask_Within_By_Distance(const Voxel_Mask& mask, std::uint8_t value, double radius,
                                   const std::array<double, 3>& spacing, const Step_Progress& progress) {
    const Distance_Map map = Distances_Find(mask, value, spacing, progress);
    const auto reach = static_cast<float>(Squared_Reach(radius));
    Voxel_Mask within(mask.box);
    for (std::size_t at = 0; at < within.on.size(); ++at) {
        within.on[at] = map.squared[at] <= reach ? 1 : 0;
    }
    return within;
}

Voxel_Mask Mask_Within(const Voxel_Mask& mask, std::uint8_t value, double radius, const std::array<double, 3>& spacing,
                       const Step_Progress& progress) {
    // More steps than FEW_ROWS along an axis are more rows than that, too.
    const std::vector<Ball_Row> ball =
        Ball_Rows(radius, spacing, std::max(mask.box.Width(), static_cast<int>(FEW_ROWS)));
    if (ball.size() <= FEW_ROWS) {
        return Mask_Within_By_Rows(mask, value, ball, progress);
    }
    return Mask_Within_By_Distance(mask, value, radius, spacing, progress);
}

}  // namespace workbench::segmentation
