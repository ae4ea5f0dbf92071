/** Makes one allocation of the tested code fail. Needs the linker's --wrap of malloc, calloc and realloc. */
#pragma once

/** While it lives, the `n`-th allocation (from 1) fails, once. */
class Failing_Allocation {
  public:
    explicit Failing_Allocation(int n);
    ~Failing_Allocation();
    Failing_Allocation(const Failing_Allocation&) = delete;
    Failing_Allocation& operator=(const Failing_Allocation&) = delete;

    /** True when the allocation was reached and has failed. */
    static bool Happened();
};

/** Calls `operation` with its first allocation failing, then its second, and so on until none is left to fail.
 *  @return how many allocations failed */
template <typename Operation>
int Fail_Each_Allocation(Operation operation) {
    for (int n = 1;; ++n) {
        Failing_Allocation failing(n);
        operation();
        if (!Failing_Allocation::Happened()) {
            return n - 1;
        }
    }
}
