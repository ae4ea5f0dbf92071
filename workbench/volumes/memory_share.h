/** Memory for voxels that several readings have in common. */
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace volumes {

/** So many bytes, for whoever takes them first. Any thread. */
class Memory_Share {
  public:
    explicit Memory_Share(std::uint64_t bytes) : all(bytes), left(bytes) {}
    /** @return false: there is not so much left, and nothing is taken */
    bool Take(std::uint64_t bytes);
    void Give_Back(std::uint64_t bytes) { left += bytes; }
    std::uint64_t Left() const { return left; }
    /** For people, to follow a file's name: it did not find room. */
    std::string Refusal_Text() const;

  private:
    const std::uint64_t all;
    std::atomic<std::uint64_t> left;
};

/** What one reading has taken of a share while it lasts; all of it goes back at its end. */
class Memory_Claim {
  public:
    /** @param claimed_of null: there is always room. Outlives this object */
    explicit Memory_Claim(Memory_Share* claimed_of) : share(claimed_of) {}
    ~Memory_Claim();
    Memory_Claim(const Memory_Claim&) = delete;
    Memory_Claim& operator=(const Memory_Claim&) = delete;
    /** Takes what is missing to so many bytes. @return false: there is not so much left, and nothing more is taken */
    bool Grow_To(std::uint64_t bytes);

  private:
    Memory_Share* share;
    std::uint64_t taken = 0;
};

}  // namespace volumes
