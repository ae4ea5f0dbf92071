/** Announcing changes to listeners that may announce changes themselves. */
#pragma once

namespace workbench {

/** Delivers change flags at once, also from inside a delivery. Listeners that go on answering each other are stopped:
 *  beyond MAX_DEPTH the flags are collected, and delivered when the outermost delivery is through; a collection that
 *  grows again and again is given up after MAX_ROUNDS. */
class Update_Delivery {
  public:
    static constexpr int MAX_DEPTH = 4;
    static constexpr int MAX_ROUNDS = 16;

    /** @param deliver called with flags, `void(unsigned long long)` */
    template <class Deliver>
    void Announce(unsigned long long flags, Deliver deliver) {
        if (depth >= MAX_DEPTH) {
            pending |= flags;
            return;
        }
        const Deeper deeper(depth);
        deliver(flags);
        for (int round = 0; depth == 1 && pending != 0 && round < MAX_ROUNDS; ++round) {
            const unsigned long long collected = pending;
            pending = 0;
            deliver(collected);
        }
        if (depth == 1) {
            pending = 0;
        }
    }
    int Depth() const { return depth; }

  private:
    class Deeper {
      public:
        explicit Deeper(int& counted) : depth(counted) { ++depth; }
        ~Deeper() { --depth; }
        Deeper(const Deeper&) = delete;
        Deeper& operator=(const Deeper&) = delete;

      private:
        int& depth;
    };
    int depth = 0;
    unsigned long long pending = 0;
};

}  // namespace workbench
