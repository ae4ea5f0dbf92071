/** Makes levels of voxels of up to 16 bits, and counts them, while more voxels are being read. */
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include "workbench/volumes/level_banks.h"
#include "workbench/volumes/level_tally.h"
#include "workbench/volumes/nifti_header.h"

namespace volumes {

/** Blocks of bytes go to threads of its own; where none can be had, each is done at once. All calls on one thread. */
class Narrow_Collector {
  public:
    /** @param voxel_type of up to 2 bytes @param voxel_code of all its values
     *  @param to room for the codes of all voxels; outlives this object. Throws std::bad_alloc. */
    Narrow_Collector(Voxel_Type voxel_type, Byte_Order byte_order, const Level_Code& voxel_code,
                     std::span<std::uint16_t> to);
    /** Drops what is not done yet. */
    ~Narrow_Collector();
    Narrow_Collector(const Narrow_Collector&) = delete;
    Narrow_Collector& operator=(const Narrow_Collector&) = delete;

    /** Room for the next bytes, whole voxels; waits until there is one. */
    std::span<std::uint8_t> Room();
    /** Takes over the first bytes of the room, whole voxels of those that are missing. */
    void Take(std::size_t bytes);
    /** Waits until all are done. Throws std::bad_alloc. @return of all voxels that were taken; empty for none */
    Level_Tally Finish();

  private:
    struct Block {
        std::vector<std::uint8_t> bytes;
        std::size_t used = 0;  // bytes
        std::size_t at = 0;    // of the first voxel
    };
    /** Counts by code, for one thread. */
    struct Table {
        Level_Banks banks;
        std::size_t counted = 0;  // since `banks` were emptied
    };
    void Locks_Make();
    void Work(Table& table);
    void Do(const Block& block, Table& table);
    void Empty(Table& table);

    Voxel_Type type;
    Byte_Order order;
    Level_Code code;
    std::span<std::uint16_t> codes;
    std::size_t taken = 0;  // voxels
    std::vector<Block> blocks;
    std::vector<Table> tables;
    std::vector<std::uint64_t> times;  // by code
    std::mutex mutex;
    std::condition_variable changed;
    // Room for all blocks from the start: a thread of its own can tell nobody that memory is short.
    std::vector<Block*> idle;
    std::vector<Block*> full;       // in no order: each knows its place
    Block* being_filled = nullptr;  // that Room gave away
    std::size_t busy_nb = 0;
    bool is_ended = false;
    std::vector<std::thread> threads;
};

}  // namespace volumes
