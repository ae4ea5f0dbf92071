/** The levels of voxels, in 16 bits each where they fit. Hot loops take them typed, by `Visit`; everything else reads
 *  single levels or copies rows. */
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "workbench/volumes/unset_memory.h"

namespace volumes {

/** Largest value that a level has; the few numbers above it are free to mean "outside the image". */
inline constexpr std::int32_t LEVEL_LARGEST = 0x7FFFFFFD;
/** The level of a voxel that has no grey value: it was no number, infinite, or outside the volume's scale. The panels
 * take it for a place outside the image. */
inline constexpr std::int32_t LEVEL_OUTSIDE = 0x7FFFFFFE;

/** Reads levels one after the other. @tparam Levels has an index operator */
template <class Levels>
class Level_Iterator {
  public:
    using iterator_concept = std::random_access_iterator_tag;
    using iterator_category = std::input_iterator_tag;  // what it gives is no reference
    using value_type = std::int32_t;
    using difference_type = std::ptrdiff_t;
    using reference = std::int32_t;
    using pointer = void;

    Level_Iterator() = default;
    Level_Iterator(const Levels& all, std::size_t first) : levels(all), at(static_cast<std::ptrdiff_t>(first)) {}

    std::int32_t operator*() const { return levels[static_cast<std::size_t>(at)]; }
    std::int32_t operator[](std::ptrdiff_t way) const { return levels[static_cast<std::size_t>(at + way)]; }
    Level_Iterator& operator++() { return *this += 1; }
    Level_Iterator& operator--() { return *this -= 1; }
    Level_Iterator operator++(int) { return std::exchange(*this, *this + 1); }
    Level_Iterator operator--(int) { return std::exchange(*this, *this - 1); }
    Level_Iterator& operator+=(std::ptrdiff_t way) {
        at += way;
        return *this;
    }
    Level_Iterator& operator-=(std::ptrdiff_t way) { return *this += -way; }
    friend Level_Iterator operator+(Level_Iterator from, std::ptrdiff_t way) { return from += way; }
    friend Level_Iterator operator+(std::ptrdiff_t way, Level_Iterator from) { return from += way; }
    friend Level_Iterator operator-(Level_Iterator from, std::ptrdiff_t way) { return from -= way; }
    friend std::ptrdiff_t operator-(const Level_Iterator& a, const Level_Iterator& b) { return a.at - b.at; }
    friend bool operator==(const Level_Iterator& a, const Level_Iterator& b) { return a.at == b.at; }
    friend auto operator<=>(const Level_Iterator& a, const Level_Iterator& b) { return a.at <=> b.at; }

  private:
    Levels levels;
    std::ptrdiff_t at = 0;
};

/** What 16 bits mean: a code is the distance from a level, and the largest code stands for a level of its own. */
struct Level_Code {
    static constexpr std::uint16_t LAST = 0xFFFF;
    std::int32_t base = 0;     ///< the level of code 0; at most LEVEL_LARGEST - LAST
    std::int32_t last = LAST;  ///< the level of code LAST: base + LAST or LEVEL_OUTSIDE

    std::int32_t Level(std::uint16_t code) const { return code == LAST ? last : base + code; }
    /** @param level one that it has */
    std::uint16_t Code(std::int32_t level) const {
        return level == last ? LAST : static_cast<std::uint16_t>(level - base);
    }
    bool Has(std::int32_t level) const { return level == last || (level >= base && std::int64_t{level} - base < LAST); }
    bool operator==(const Level_Code&) const = default;
    /** The code for levels lowest .. highest and, if wanted, LEVEL_OUTSIDE; nothing: they do not fit. */
    static std::optional<Level_Code> For(std::int32_t lowest, std::int32_t highest, bool has_outside);
};

/** Levels in 16 bits that belong to someone else. */
class Narrow_Levels {
  public:
    Narrow_Levels() = default;
    Narrow_Levels(std::span<const std::uint16_t> all_codes, const Level_Code& meaning)
        : codes(all_codes), code(meaning) {}
    std::size_t size() const { return codes.size(); }
    std::int32_t operator[](std::size_t at) const { return code.Level(codes[at]); }
    Level_Iterator<Narrow_Levels> begin() const { return {*this, 0}; }
    Level_Iterator<Narrow_Levels> end() const { return {*this, size()}; }
    std::span<const std::uint16_t> Codes() const { return codes; }
    const Level_Code& Code() const { return code; }

  private:
    std::span<const std::uint16_t> codes;
    Level_Code code;
};

/** Levels in 32 bits that belong to someone else. */
using Wide_Levels = std::span<const std::int32_t>;

/** Levels of either width that belong to someone else; cheap to copy. */
class Level_View {
  public:
    Level_View() = default;
    Level_View(Wide_Levels levels) : wide(levels.data()), nb(levels.size()) {}  // what is a view of levels anyway
    Level_View(const std::vector<std::int32_t>& levels) : Level_View(Wide_Levels(levels)) {}
    Level_View(const Narrow_Levels& levels) : narrow(levels.Codes().data()), nb(levels.size()), code(levels.Code()) {}

    std::size_t size() const { return nb; }
    bool empty() const { return nb == 0; }
    bool Is_Narrow() const { return narrow != nullptr; }
    std::int32_t operator[](std::size_t at) const { return narrow != nullptr ? code.Level(narrow[at]) : wide[at]; }
    std::int32_t front() const { return (*this)[0]; }
    std::int32_t back() const { return (*this)[nb - 1]; }
    Level_Iterator<Level_View> begin() const { return {*this, 0}; }
    Level_Iterator<Level_View> end() const { return {*this, nb}; }
    /** @param first, part_nb inside */
    Level_View subspan(std::size_t first, std::size_t part_nb) const {
        Level_View part = *this;
        part.wide = wide != nullptr ? wide + first : nullptr;
        part.narrow = narrow != nullptr ? narrow + first : nullptr;
        part.nb = part_nb;
        return part;
    }
    Level_View subspan(std::size_t first) const { return subspan(first, nb - first); }
    Level_View first(std::size_t part_nb) const { return subspan(0, part_nb); }
    /** Calls `take` with the levels as what they are, Wide_Levels or Narrow_Levels: loops over all voxels then look at
     *  the width once. @return what `take` returns, of one type for both */
    template <class Take>
    decltype(auto) Visit(Take&& take) const {
        return narrow != nullptr ? take(Narrow_Levels({narrow, nb}, code)) : take(Wide_Levels(wide, nb));
    }
    /** @param to size() levels */
    void Copy_To(std::span<std::int32_t> to) const {
        Visit([&](const auto& own) { std::copy(own.begin(), own.end(), to.begin()); });
    }
    /** Whether they are the very same ones in memory. */
    bool Is_At(const Level_View& other) const { return wide == other.wide && narrow == other.narrow && nb == other.nb; }

  private:
    const std::int32_t* wide = nullptr;
    const std::uint16_t* narrow = nullptr;  // null: they are wide
    std::size_t nb = 0;
    Level_Code code;
};

/** The same levels in the same order, whatever they are kept in. */
bool operator==(const Level_View& a, const Level_View& b);

/** Codes of levels, each written before it is read. */
using Level_Codes = std::vector<std::uint16_t, Unset_Memory<std::uint16_t>>;

/** Owns the levels of a volume: 16 bits for each as long as one Level_Code has them all, else 32. Reading levels is
 *  free of locks and may be done by any number of threads. All that writes throws std::bad_alloc. */
class Voxel_Levels {
  public:
    using value_type = std::int32_t;
    using const_iterator = Level_Iterator<Level_View>;
    using iterator = const_iterator;

    Voxel_Levels() = default;
    Voxel_Levels(std::vector<std::int32_t>&& levels);
    Voxel_Levels(const std::vector<std::int32_t>& levels) : Voxel_Levels(Level_View(levels)) {}
    Voxel_Levels(std::initializer_list<std::int32_t> levels) : Voxel_Levels(Level_View(Wide_Levels(levels))) {}
    explicit Voxel_Levels(const Level_View& levels) { Append(levels); }
    /** Takes codes over as they are. */
    static Voxel_Levels Of_Codes(Level_Codes&& codes, const Level_Code& code);
    /** Takes levels over as they are, in 32 bits even where 16 would do. */
    static Voxel_Levels Of_Wide(std::vector<std::int32_t>&& levels);
    /** `nb` levels, all `lowest`, with room for lowest .. highest and, if wanted, LEVEL_OUTSIDE. */
    static Voxel_Levels Of_Range(std::size_t nb, std::int32_t lowest, std::int32_t highest, bool has_outside);

    std::size_t size() const { return is_narrow ? codes.size() : wide.size(); }
    bool empty() const { return size() == 0; }
    bool Is_Narrow() const { return is_narrow; }
    /** Bytes of memory that they take. */
    std::uint64_t Bytes() const { return codes.capacity() * sizeof codes[0] + wide.capacity() * sizeof wide[0]; }
    std::int32_t operator[](std::size_t at) const { return is_narrow ? code.Level(codes[at]) : wide[at]; }
    std::int32_t front() const { return (*this)[0]; }
    std::int32_t back() const { return (*this)[size() - 1]; }
    const_iterator begin() const { return View().begin(); }
    const_iterator end() const { return View().end(); }
    /** Valid until levels are added, set or taken over. */
    Level_View View() const {
        return is_narrow ? Level_View(Narrow_Levels(codes, code)) : Level_View(Wide_Levels(wide));
    }
    operator Level_View() const { return View(); }
    template <class Take>
    decltype(auto) Visit(Take&& take) const {
        return View().Visit(std::forward<Take>(take));
    }

    void reserve(std::size_t nb);
    /** Adds levels at the end; those that are there become wide if that must be. */
    void Append(const Level_View& levels);
    /** Changes one level; all become wide if that must be. */
    void Set(std::size_t at, std::int32_t level);
    /** Writes levels from `at` on. Several threads may, each its own part. @throw std::out_of_range the room made by
     *  Of_Range, in number or in range, is not enough */
    void Put(std::size_t at, std::span<const std::int32_t> levels);
    /** Lets `order` put levels into another order in place. Several threads may, each its own part.
     *  @param order called with a span of some unsigned or signed numbers that stand for the levels */
    template <class Order>
    void Reorder(std::size_t first, std::size_t nb, Order&& order) {
        is_narrow ? order(std::span(codes).subspan(first, nb)) : order(std::span(wide).subspan(first, nb));
    }

  private:
    /** Makes sure that levels of the range have codes, or all are wide. */
    void Room_Make(std::int32_t lowest, std::int32_t highest, bool has_outside);
    void Widen(std::size_t capacity);

    bool is_narrow = true;
    Level_Code code;
    Level_Codes codes;
    std::vector<std::int32_t> wide;
};

inline bool operator==(const Voxel_Levels& a, const Voxel_Levels& b) {
    return a.View() == b.View();
}

}  // namespace volumes
