#include "workbench/volumes/slice_stack.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <numbers>
#include <set>

namespace volumes {

namespace {

using Vector = std::array<double, 3>;
using Numbers = std::vector<std::int32_t>;

// Parts of a pixel, or of the distance of slices where that is meant.
constexpr double PIXEL_ALIKE = 0.5;       // slices of one stack: what the far end of the picture may lie off
constexpr double TOLD_ABOVE = 0.1;        // what lies off by more is told
constexpr double SAME_MOST = 0.02;        // slices at one place lie no further apart
constexpr double SAME_LEAST = 0.001;      // slices at several places lie further apart
constexpr double SAME_OF_GAP = 0.2;       // nor is the distance of one place from itself a good part of the widest gap
constexpr double DIRECTION_SAME = 0.999;  // cosine between normals
constexpr std::size_t STACKS_MOST = 32;   // more is no set of stacks, but a sweep or a fan of slices

std::size_t At(std::int32_t number) {
    return static_cast<std::size_t>(number);
}

double Dot(const Vector& left, const Vector& right) {
    return left[0] * right[0] + left[1] * right[1] + left[2] * right[2];
}

Vector Difference(const Vector& left, const Vector& right) {
    return {left[0] - right[0], left[1] - right[1], left[2] - right[2]};
}

double Length(const Vector& vector) {
    return std::sqrt(Dot(vector, vector));
}

double Pixel_Least(const Stack_Slice& slice) {
    return std::min(slice.pixel[0], slice.pixel[1]);
}

/** mm that the far ends of the edges lie apart when the corners lie together. */
double Edges_Off(const Stack_Slice& left, const Stack_Slice& right) {
    double most = 0;
    for (std::size_t side = 0; side < 2; ++side) {
        const double left_length = left.pixel[side] * left.size[side];
        const double right_length = right.pixel[side] * right.size[side];
        if (!left.place.is_known || !right.place.is_known) {
            most = std::max(most, std::abs(left_length - right_length));
            continue;
        }
        const Vector& left_edge = side == 0 ? left.place.along_row : left.place.along_column;
        const Vector& right_edge = side == 0 ? right.place.along_row : right.place.along_column;
        Vector off{};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            off[axis] = left_edge[axis] * left_length - right_edge[axis] * right_length;
        }
        most = std::max(most, Length(off));
    }
    return most;
}

bool Is_Alike(const Stack_Slice& left, const Stack_Slice& right) {
    if (left.place.is_known != right.place.is_known || left.size != right.size) {
        return false;
    }
    return Edges_Off(left, right) <= PIXEL_ALIKE * Pixel_Least(left) &&
           (!left.place.is_known ||
            Dot(Slice_Normal(left.place), Slice_Normal(right.place)) >=
                DIRECTION_SAME * Length(Slice_Normal(left.place)) * Length(Slice_Normal(right.place)));
}

/** Makes the stacks of slices that have one direction. */
class Direction_Stacker {
  public:
    Direction_Stacker(std::span<const Stack_Slice> all_slices, Stack_Plan& filled) : slices(all_slices), plan(filled) {}
    void Stack(const Numbers& group) {
        const Stack_Slice& first = Slice(group.front());
        normal = Slice_Normal(first.place);
        const double length = Length(normal);
        for (double& part : normal) {
            part /= length;
        }
        Places_Find(group);
        if (!Is_Beside()) {
            return Times_Find();
        }
        // At one depth slices lie beside one another: stacks that are side by side.
        for (const Numbers& column : Columns_Of(group)) {
            Places_Find(column);
            Times_Find();
        }
    }

  private:
    const Stack_Slice& Slice(std::int32_t number) const { return slices[At(number)]; }
    double Depth(std::int32_t number) const { return Dot(normal, Slice(number).place.corner); }
    /** mm between two corners within the plane of the slices. */
    double Sideways(std::int32_t left, std::int32_t right) const {
        const Vector between = Difference(Slice(left).place.corner, Slice(right).place.corner);
        const double along = Dot(between, normal);
        return std::sqrt(std::max(0.0, Dot(between, between) - along * along));
    }
    void Places_Find(const Numbers& group);
    bool Is_Beside() const;
    std::vector<Numbers> Columns_Of(const Numbers& group) const;
    void Times_Find();
    void Equal_Times(std::size_t times);
    void Unequal_Times(std::size_t most);
    /** The slices of every time, by time and place; empty when the slices do not say which time they are of. */
    std::map<Slice_Moment, std::map<std::size_t, std::int32_t>> Moments_Of(std::size_t most) const;
    void Add(const std::vector<Numbers>& times);
    void Warn(Stack_Warning::Kind kind, std::int32_t slice, double amount) {
        plan.warnings.push_back({kind, slice, amount});
    }
    void Grid_Fit(Slice_Stack& stack);

    std::span<const Stack_Slice> slices;
    Stack_Plan& plan;
    Vector normal{};
    std::vector<Numbers> places;  // slices of every place, places along the normal
};

void Direction_Stacker::Places_Find(const Numbers& group) {
    Numbers sorted = group;
    std::ranges::stable_sort(sorted, {}, [&](std::int32_t number) { return Depth(number); });
    double widest = 0;
    for (std::size_t at = 1; at < sorted.size(); ++at) {
        widest = std::max(widest, Depth(sorted[at]) - Depth(sorted[at - 1]));
    }
    const double pixel = Pixel_Least(Slice(group.front()));
    const double same = std::clamp(SAME_OF_GAP * widest, SAME_LEAST * pixel, SAME_MOST * pixel);
    places.clear();
    for (const std::int32_t number : sorted) {
        if (places.empty() || Depth(number) - Depth(places.back().front()) > same) {
            places.emplace_back();
        }
        places.back().push_back(number);
    }
    for (Numbers& place : places) {
        std::ranges::sort(place);
        std::ranges::stable_sort(
            place, [&](std::int32_t left, std::int32_t right) { return Slice(left).moment < Slice(right).moment; });
    }
}

bool Direction_Stacker::Is_Beside() const {
    return std::ranges::any_of(places, [&](const Numbers& place) {
        return std::ranges::any_of(place, [&](std::int32_t number) {
            return Sideways(number, place.front()) > PIXEL_ALIKE * Pixel_Least(Slice(number));
        });
    });
}

std::vector<Numbers> Direction_Stacker::Columns_Of(const Numbers& group) const {
    std::vector<Numbers> columns;
    for (const std::int32_t number : group) {
        const auto found = std::ranges::find_if(columns, [&](const Numbers& column) {
            return Sideways(number, column.front()) <= PIXEL_ALIKE * Pixel_Least(Slice(number));
        });
        (found != columns.end() ? *found : columns.emplace_back()).push_back(number);
    }
    return columns;
}

void Direction_Stacker::Times_Find() {
    std::size_t least = places.front().size();
    std::size_t most = least;
    for (const Numbers& place : places) {
        least = std::min(least, place.size());
        most = std::max(most, place.size());
    }
    if (least == most) {
        Equal_Times(most);
    } else {
        Unequal_Times(most);
    }
}

void Direction_Stacker::Equal_Times(std::size_t times) {
    std::vector<Numbers> ordered(times);
    bool is_guess = false;
    for (const Numbers& place : places) {
        for (std::size_t time = 0; time < times; ++time) {
            ordered[time].push_back(place[time]);
            is_guess = is_guess || (time > 0 && Slice(place[time]).moment == Slice(place[time - 1]).moment);
        }
    }
    if (is_guess) {
        Warn(Stack_Warning::Kind::Time_Guessed, places.front().front(), static_cast<double>(times));
    }
    Add(ordered);
}

std::map<Slice_Moment, std::map<std::size_t, std::int32_t>> Direction_Stacker::Moments_Of(std::size_t most) const {
    std::map<Slice_Moment, std::map<std::size_t, std::int32_t>> moments;
    for (std::size_t place = 0; place < places.size(); ++place) {
        for (const std::int32_t number : places[place]) {
            if (!moments[Slice(number).moment].emplace(place, number).second) {
                return {};
            }
        }
    }
    // More moments than any place has: they are those of slices, not of times.
    return moments.size() == most ? moments : std::map<Slice_Moment, std::map<std::size_t, std::int32_t>>();
}

void Direction_Stacker::Unequal_Times(std::size_t most) {
    std::vector<std::map<std::size_t, std::int32_t>> times;  // of each: place and slice
    for (auto& [moment, of_moment] : Moments_Of(most)) {
        times.push_back(of_moment);
    }
    if (times.empty()) {
        const auto several = std::ranges::count_if(places, [](const Numbers& place) { return place.size() > 1; });
        if (static_cast<std::size_t>(several) * 2 > places.size()) {
            // More than a slice or two that came twice.
            Warn(Stack_Warning::Kind::Time_Guessed, places.front().front(), static_cast<double>(most));
        }
        times.resize(most);
        for (std::size_t place = 0; place < places.size(); ++place) {
            for (std::size_t time = 0; time < places[place].size(); ++time) {
                times[time].emplace(place, places[place][time]);
            }
        }
    }
    // Times that have the same places are one stack.
    std::vector<std::pair<std::set<std::size_t>, std::vector<Numbers>>> stacks;
    for (const auto& time : times) {
        std::set<std::size_t> has;
        Numbers numbers;
        for (const auto& [place, number] : time) {
            has.insert(place);
            numbers.push_back(number);
        }
        auto found = std::ranges::find(stacks, has, [](const auto& stack) { return stack.first; });
        if (found == stacks.end()) {
            found = stacks.insert(stacks.end(), {has, {}});
        }
        found->second.push_back(std::move(numbers));
    }
    const auto fewest = std::ranges::min_element(stacks, {}, [](const auto& stack) { return stack.first.size(); });
    Warn(Stack_Warning::Kind::Unequal, fewest->second.front().front(), static_cast<double>(stacks.size()));
    for (const auto& [has, ordered] : stacks) {
        Add(ordered);
    }
}

void Direction_Stacker::Add(const std::vector<Numbers>& times) {
    Slice_Stack stack;
    stack.nt = static_cast<std::int32_t>(times.size());
    stack.nz = static_cast<std::int32_t>(times.front().size());
    for (const Numbers& time : times) {
        stack.order.insert(stack.order.end(), time.begin(), time.end());
    }
    Grid_Fit(stack);
    plan.stacks.push_back(std::move(stack));
}

void Direction_Stacker::Grid_Fit(Slice_Stack& stack) {
    const Stack_Slice& first = Slice(stack.order.front());
    const auto last = static_cast<std::size_t>(stack.nz) - 1;
    Vector across{};  // the step's part that leads sideways
    if (stack.nz > 1) {
        const Vector whole = Difference(Slice(stack.order[last]).place.corner, first.place.corner);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            stack.step[axis] = whole[axis] / static_cast<double>(last);
        }
        stack.distance = Dot(stack.step, normal);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            across[axis] = stack.step[axis] - stack.distance * normal[axis];
        }
    }
    const double pixel = Pixel_Least(first);
    struct Worst {
        double share = 0;
        double off = 0;
        std::int32_t slice = 0;
    };
    Worst uneven;
    Worst curved;
    Worst turned;
    const auto note = [](Worst& worst, double off, double unit, std::int32_t slice) {
        if (off / unit > worst.share) {
            worst = {off / unit, off, slice};
        }
    };
    for (std::size_t at = 0; at < stack.order.size(); ++at) {
        const std::int32_t number = stack.order[at];
        const auto z = static_cast<double>(at % static_cast<std::size_t>(stack.nz));
        Vector off = Difference(Slice(number).place.corner, first.place.corner);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            off[axis] -= z * stack.step[axis];
        }
        const double along = std::abs(Dot(off, normal));
        const double sideways = std::sqrt(std::max(0.0, Dot(off, off) - along * along));
        note(uneven, along, stack.nz > 1 ? stack.distance : pixel, number);
        note(curved, sideways, pixel, number);
        note(turned, Edges_Off(Slice(number), first), pixel, number);
        stack.error = std::max(stack.error, Length(off));
    }
    if (uneven.share > TOLD_ABOVE) {
        stack.kind = Slice_Stack::Kind::Uneven;
        Warn(Stack_Warning::Kind::Uneven, uneven.slice, uneven.off);
    }
    if (curved.share > TOLD_ABOVE) {
        stack.kind = Slice_Stack::Kind::Uneven;
        Warn(Stack_Warning::Kind::Curved, curved.slice, curved.off);
    }
    if (turned.share > TOLD_ABOVE) {
        Warn(Stack_Warning::Kind::Turned, turned.slice, turned.off);
    }
    if (Length(across) * static_cast<double>(last) > PIXEL_ALIKE * pixel) {
        if (stack.kind == Slice_Stack::Kind::Regular) {
            stack.kind = Slice_Stack::Kind::Tilted;
        }
        Warn(Stack_Warning::Kind::Tilted, stack.order.front(),
             std::atan2(Length(across), stack.distance) * 180.0 / std::numbers::pi);
    }
}

}  // namespace

std::vector<Numbers> Slices_Alike(std::span<const Stack_Slice> slices) {
    std::vector<Numbers> groups;
    for (std::size_t at = 0; at < slices.size(); ++at) {
        const auto found = std::ranges::find_if(
            groups, [&](const Numbers& group) { return Is_Alike(slices[At(group.front())], slices[at]); });
        (found != groups.end() ? *found : groups.emplace_back()).push_back(static_cast<std::int32_t>(at));
    }
    return groups;
}

Stack_Plan Slices_Stack(std::span<const Stack_Slice> slices) {
    Stack_Plan plan;
    Direction_Stacker stacker(slices, plan);
    for (const Numbers& group : Slices_Alike(slices)) {
        stacker.Stack(group);
    }
    if (plan.stacks.size() > STACKS_MOST) {
        Slice_Stack all;
        all.kind = Slice_Stack::Kind::Scattered;
        all.nz = static_cast<std::int32_t>(slices.size());
        for (std::int32_t number = 0; number < all.nz; ++number) {
            all.order.push_back(number);
        }
        plan.warnings = {{Stack_Warning::Kind::Scattered, 0, static_cast<double>(plan.stacks.size())}};
        plan.stacks = {std::move(all)};
    }
    return plan;
}

}  // namespace volumes
