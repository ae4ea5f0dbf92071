/** Makes one chosen `new` of this program fail, and measures the largest. */
#pragma once

#include <cstddef>

/** From its construction to its end the `fail_at`-th allocation (from 0) throws std::bad_alloc, once. */
class Failing_Allocation {
  public:
    static constexpr long long NEVER = -1;
    explicit Failing_Allocation(long long fail_at);
    ~Failing_Allocation();
    Failing_Allocation(const Failing_Allocation&) = delete;
    Failing_Allocation& operator=(const Failing_Allocation&) = delete;

    bool Happened() const;
    /** Bytes of the largest allocation so far. */
    std::size_t Largest() const;
};
