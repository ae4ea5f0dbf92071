#include "workbench/volumes/value_outliers.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <optional>
#include <utility>

namespace volumes {

namespace {

constexpr std::uint64_t RARE_SHARE = 1000;  // outliers of several values are at most one in so many
constexpr double GROUPS_MOST = 8.0;         // a gap of this part of the range parts groups

/** Clusters with what all up to them have in common. */
struct Sorted_Clusters {
    explicit Sorted_Clusters(std::vector<Value_Cluster>&& clusters) : list(std::move(clusters)) {
        std::ranges::sort(list, {}, &Value_Cluster::lowest);
        std::vector<Value_Cluster> merged;
        for (const Value_Cluster& cluster : list) {
            if (!merged.empty() && cluster.lowest <= merged.back().highest) {
                merged.back().highest = std::max(merged.back().highest, cluster.highest);
                merged.back().count += cluster.count;
            } else {
                merged.push_back(cluster);
            }
        }
        list = std::move(merged);
    }
    std::vector<Value_Cluster> list;
};

/** The part of neighbouring clusters that is still looked at: first .. last. */
struct Part {
    std::size_t first = 0;
    std::size_t last = 0;
};

bool Is_One_Value(const std::vector<Value_Cluster>& list, Part part) {
    return list[part.first].lowest == list[part.last].highest;
}

std::uint64_t Count_Of(const std::vector<Value_Cluster>& list, Part part) {
    std::uint64_t count = 0;
    for (std::size_t at = part.first; at <= part.last; ++at) {
        count += list[at].count;
    }
    return count;
}

/** Differences are of halves: the whole range may be more than a double. */
double Half_Gap(double low, double high) {
    return high * 0.5 - low * 0.5;
}

double Half_Width(const std::vector<Value_Cluster>& list, Part part) {
    return Half_Gap(list[part.first].lowest, list[part.last].highest);
}

/** A part cut at its wide gaps. */
std::vector<Part> Groups_Of(const std::vector<Value_Cluster>& list, Part part) {
    const double wide = Half_Width(list, part) / GROUPS_MOST;
    std::vector<Part> groups = {{part.first, part.first}};
    for (std::size_t at = part.first + 1; at <= part.last; ++at) {
        if (Half_Gap(list[at - 1].highest, list[at].lowest) > wide) {
            groups.push_back({at, at});
        }
        groups.back().last = at;
    }
    return groups;
}

/** Whether `lost` may be left out for the sake of `kept`. */
bool Is_Outlier(const std::vector<Value_Cluster>& list, Part lost, Part kept) {
    return Is_One_Value(list, lost) || Count_Of(list, lost) <= Count_Of(list, kept) / RARE_SHARE;
}

/** The gap between two groups; 0 for one and the same. */
double Half_Distance(const std::vector<Value_Cluster>& list, Part one, Part other) {
    if (other.first == one.first) {
        return 0.0;
    }
    return other.first > one.first ? Half_Gap(list[one.last].highest, list[other.first].lowest)
                                   : Half_Gap(list[other.last].highest, list[one.first].lowest);
}

/** The group that all others may be left out for; nothing when there is none. */
std::optional<Part> Kept_Of(const std::vector<Value_Cluster>& list, const std::vector<Part>& groups) {
    std::optional<Part> kept;
    for (const Part& group : groups) {
        if (!Is_One_Value(list, group) && (!kept || Count_Of(list, group) > Count_Of(list, *kept))) {
            kept = group;
        }
    }
    return kept;
}

void Leave_Out(const std::vector<Value_Cluster>& list, Part lost, Value_Range& range) {
    const double lowest = list[lost.first].lowest;
    const double highest = list[lost.last].highest;
    const bool is_first = range.outlier_nb == 0;
    range.outlier_nb += Count_Of(list, lost);
    range.outlier_lowest = is_first ? lowest : std::min(range.outlier_lowest, lowest);
    range.outlier_highest = is_first ? highest : std::max(range.outlier_highest, highest);
}

}  // namespace

Value_Range Value_Range_Find(std::vector<Value_Cluster> clusters, double distance) {
    if (clusters.empty()) {
        return {};
    }
    const Sorted_Clusters sorted(std::move(clusters));
    const std::vector<Value_Cluster>& list = sorted.list;
    Part part{0, list.size() - 1};
    Value_Range range;
    while (part.first < part.last) {
        const std::vector<Part> groups = Groups_Of(list, part);
        const std::optional<Part> kept = Kept_Of(list, groups);
        if (!kept) {
            break;
        }
        Part rest = *kept;
        std::vector<Part> far;
        for (const Part& group : groups) {
            if (Half_Distance(list, *kept, group) > Half_Width(list, *kept) * distance) {
                far.push_back(group);
            } else {
                rest = {std::min(rest.first, group.first), std::max(rest.last, group.last)};
            }
        }
        if (far.empty() || !std::ranges::all_of(far, [&](Part group) { return Is_Outlier(list, group, *kept); })) {
            break;
        }
        for (const Part& group : far) {
            Leave_Out(list, group, range);
        }
        part = rest;
    }
    range.lowest = list[part.first].lowest;
    range.highest = list[part.last].highest;
    return range;
}

Value_Clusters::Value_Clusters() : bins(std::size_t{1} << 16U) {}

void Value_Clusters::Take(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value == 0.0 ? 0.0 : value);  // one zero only
    Value_Cluster& bin = bins[static_cast<std::size_t>(bits >> 48U)];
    if (bin.count == 0) {
        bin.lowest = bin.highest = value;
    } else {
        bin.lowest = std::min(bin.lowest, value);
        bin.highest = std::max(bin.highest, value);
    }
    ++bin.count;
}

std::vector<Value_Cluster> Value_Clusters::All() const {
    std::vector<Value_Cluster> clusters;
    std::ranges::copy_if(bins, std::back_inserter(clusters), [](const Value_Cluster& bin) { return bin.count > 0; });
    return clusters;
}

}  // namespace volumes
