#include "workbench/volumes/narrow_collector.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <new>
#include <system_error>
#include <utility>

#include "workbench/volumes/work_share.h"

namespace volumes {

namespace {

constexpr std::size_t BLOCK_SIZE = std::size_t{1} << 20U;    // bytes
constexpr std::size_t THREAD_WORTH = std::size_t{4} << 20U;  // voxels
constexpr std::size_t THREADS_MOST = 4;                      // reading is not faster than that
constexpr std::size_t BLOCKS_PER_THREAD = 3;
constexpr std::size_t CODE_NB = std::size_t{1} << 16U;
constexpr std::size_t STRIP = std::size_t{1} << 14U;  // voxels that stay in the nearest memory

template <class Stored, Byte_Order ORDER>
void Codes_Make(const std::uint8_t* from, std::int32_t base, std::span<std::uint16_t> to) {
    for (std::size_t i = 0; i < to.size(); ++i) {
        to[i] = static_cast<std::uint16_t>(Value_Read<Stored>(from + i * sizeof(Stored), ORDER) - base);
    }
}

template <class Stored>
void Codes_Make(const std::uint8_t* from, Byte_Order order, std::int32_t base, std::span<std::uint16_t> to) {
    if (order == Byte_Order::Little) {  // known at compile time: several values in one instruction
        Codes_Make<Stored, Byte_Order::Little>(from, base, to);
    } else {
        Codes_Make<Stored, Byte_Order::Big>(from, base, to);
    }
}

}  // namespace

Narrow_Collector::Narrow_Collector(Voxel_Type voxel_type, Byte_Order byte_order, const Level_Code& voxel_code,
                                   std::span<std::uint16_t> to)
    : type(voxel_type), order(byte_order), code(voxel_code), codes(to), times(CODE_NB) {
    const std::size_t thread_nb = Work_Thread_Nb(std::clamp<std::size_t>(to.size() / THREAD_WORTH, 1, THREADS_MOST));
    blocks.resize(std::max<std::size_t>(thread_nb * BLOCKS_PER_THREAD, 1));
    idle.reserve(blocks.size());
    full.reserve(blocks.size());
    const std::size_t size = std::min(BLOCK_SIZE, std::max<std::size_t>(to.size() * Voxel_Type_Size(type), 1));
    for (Block& block : blocks) {
        block.bytes.resize(size);
        idle.push_back(&block);
    }
    tables.resize(std::max<std::size_t>(thread_nb, 1), Table{Level_Banks(CODE_NB)});
    Locks_Make();
    try {
        threads.reserve(thread_nb);
        while (threads.size() < thread_nb) {
            threads.emplace_back([this, &table = tables[threads.size()]] { Work(table); });
        }
    } catch (const std::exception&) {  // no thread, or no room for one
        // Those that there are do it all; without any, who reads does.
    }
}

/** Some systems take the memory of a lock at its first use: here that can still be told. */
void Narrow_Collector::Locks_Make() {
    try {
        std::unique_lock lock(mutex);
        changed.wait_for(lock, std::chrono::seconds(0));
    } catch (const std::system_error&) {
        throw std::bad_alloc();
    }
}

Narrow_Collector::~Narrow_Collector() {
    {
        const std::lock_guard lock(mutex);
        full.clear();
        is_ended = true;
    }
    changed.notify_all();
    for (std::thread& one : threads) {
        one.join();
    }
}

std::span<std::uint8_t> Narrow_Collector::Room() {
    if (being_filled == nullptr) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return !idle.empty(); });
        being_filled = idle.back();
        idle.pop_back();
    }
    return being_filled->bytes;
}

void Narrow_Collector::Take(std::size_t bytes) {
    const std::size_t nb = std::min(bytes / Voxel_Type_Size(type), codes.size() - taken);
    being_filled->used = nb * Voxel_Type_Size(type);
    being_filled->at = std::exchange(taken, taken + nb);
    if (threads.empty()) {
        return Do(*being_filled, tables.front());
    }
    {
        const std::lock_guard lock(mutex);
        full.push_back(std::exchange(being_filled, nullptr));
    }
    changed.notify_all();
}

Level_Tally Narrow_Collector::Finish() {
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return full.empty() && busy_nb == 0; });
    }
    std::ranges::for_each(tables, [this](Table& table) { Empty(table); });
    const auto occurs = [](std::uint64_t nb) { return nb != 0; };
    const auto first = std::ranges::find_if(times, occurs);
    if (first == times.end()) {
        return {};
    }
    const auto end = std::find_if(times.rbegin(), times.rend(), occurs).base();
    // Levels rise with their codes: a type of up to 16 bits leaves none outside.
    return {code.Level(static_cast<std::uint16_t>(first - times.begin())), {first, end}};
}

void Narrow_Collector::Work(Table& table) {
    std::unique_lock lock(mutex);
    while (true) {
        changed.wait(lock, [this] { return is_ended || !full.empty(); });
        if (full.empty()) {
            return;
        }
        Block* const block = full.back();
        full.pop_back();
        ++busy_nb;
        lock.unlock();
        Do(*block, table);
        lock.lock();
        --busy_nb;
        idle.push_back(block);
        changed.notify_all();
    }
}

void Narrow_Collector::Do(const Block& block, Table& table) {
    const std::size_t voxel_size = Voxel_Type_Size(type);
    const std::size_t nb = block.used / voxel_size;
    for (std::size_t at = 0; at < nb; at += STRIP) {
        const std::span<std::uint16_t> strip = codes.subspan(block.at + at, std::min(STRIP, nb - at));
        const std::uint8_t* const from = block.bytes.data() + at * voxel_size;
        switch (type) {
            case Voxel_Type::Uint8:
                Codes_Make<std::uint8_t>(from, order, code.base, strip);
                break;
            case Voxel_Type::Int8:
                Codes_Make<std::int8_t>(from, order, code.base, strip);
                break;
            case Voxel_Type::Int16:
                Codes_Make<std::int16_t>(from, order, code.base, strip);
                break;
            default:
                Codes_Make<std::uint16_t>(from, order, code.base, strip);
                break;
        }
        for (std::size_t i = 0; i < strip.size(); ++i) {
            table.banks.Count(strip[i], i);
        }
    }
    table.counted += nb;
    if (table.counted > Level_Banks::COUNTED_MOST) {
        Empty(table);
    }
}

void Narrow_Collector::Empty(Table& table) {
    const std::lock_guard lock(mutex);
    table.banks.Empty_To(times);
    table.counted = 0;
}

}  // namespace volumes
