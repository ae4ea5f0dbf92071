#include "kits/common/block_cache.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>
#include <vector>

#include "host/kit_common.h"

namespace {

constexpr std::size_t SIZE = BLOCK_CACHE_SIZE_MIN;

void* Taken(std::size_t size) {
    return Block_Cache_Take(size);
}

class Block_Cache : public testing::Test {
  protected:
    Block_Cache() { Block_Cache_Empty(); }
    ~Block_Cache() override { Block_Cache_Empty(); }
};

/** True when all elements of a fresh matrix are zero; they are filled then. */
bool Fresh_Is_Zero(unsigned int columns, unsigned int rows) {
    Matrix_NxM matrix(columns, rows, 8);
    bool is_zero = true;
    for (unsigned int row = 0; row < rows; ++row) {
        for (unsigned int column = 0; column < columns; ++column) {
            is_zero = is_zero && matrix[static_cast<int>(row)][column] == 0.0;
            matrix[static_cast<int>(row)][column] = 7.0;
        }
    }
    return is_zero;
}

}  // namespace

TEST_F(Block_Cache, gives_a_kept_block_once) {
    void* block = std::malloc(SIZE);
    ASSERT_TRUE(Block_Cache_Keep(block, SIZE));
    EXPECT_EQ(Taken(SIZE), block);
    EXPECT_EQ(Taken(SIZE), nullptr);
    std::free(block);
}

TEST_F(Block_Cache, gives_no_smaller_block_and_none_of_more_than_twice_the_size) {
    void* block = std::malloc(4 * SIZE);
    ASSERT_TRUE(Block_Cache_Keep(block, 4 * SIZE));
    EXPECT_EQ(Taken(4 * SIZE + 8), nullptr);
    EXPECT_EQ(Taken(2 * SIZE - 8), nullptr);
    std::size_t size = 2 * SIZE;
    EXPECT_EQ(Block_Cache_Take(size), block);
    EXPECT_EQ(size, 4 * SIZE);  // what must be told when it is given back
    std::free(block);
}

TEST_F(Block_Cache, leaves_small_and_huge_blocks_to_the_heap) {
    void* block = std::malloc(64);
    EXPECT_FALSE(Block_Cache_Keep(block, SIZE - 8));
    EXPECT_FALSE(Block_Cache_Keep(block, BLOCK_CACHE_SIZE_MAX + 8));
    EXPECT_FALSE(Block_Cache_Keep(nullptr, 0));
    std::free(block);
}

TEST_F(Block_Cache, is_bounded_and_forgets_the_oldest) {
    std::vector<void*> blocks;
    for (std::size_t i = 0; i <= BLOCK_CACHE_NB; ++i) {
        blocks.push_back(std::malloc(SIZE));
        ASSERT_TRUE(Block_Cache_Keep(blocks.back(), SIZE));
    }
    for (std::size_t i = 0; i < BLOCK_CACHE_NB; ++i) {
        void* block = Taken(SIZE);
        ASSERT_NE(block, nullptr);
        EXPECT_NE(block, blocks.front());
        std::free(block);
    }
    EXPECT_EQ(Taken(SIZE), nullptr);
}

TEST_F(Block_Cache, empty_frees_all) {
    ASSERT_TRUE(Block_Cache_Keep(std::malloc(SIZE), SIZE));
    Block_Cache_Empty();
    EXPECT_EQ(Taken(SIZE), nullptr);
}

TEST_F(Block_Cache, a_matrix_in_a_kept_block_is_zero) {
    EXPECT_TRUE(Fresh_Is_Zero(300, 300));
    EXPECT_TRUE(Fresh_Is_Zero(300, 300));
    EXPECT_TRUE(Fresh_Is_Zero(280, 300));  // in the larger one's block
    EXPECT_TRUE(Fresh_Is_Zero(300, 300));
}

TEST_F(Block_Cache, several_threads_use_it_at_once) {
    std::vector<std::thread> threads;
    std::vector<int> wrong(4);
    for (int& count : wrong) {
        threads.emplace_back([&count] {
            for (int round = 0; round < 25; ++round) {
                count += Fresh_Is_Zero(270, 270) ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, std::vector<int>(4, 0));
}
