/** Turns of the mouse wheel as whole steps. */
#pragma once

inline constexpr int WHEEL_NOTCH = 120;  ///< what one notch of the wheel tells

/** Slow wheels and touch pads tell parts of a notch: what makes no whole step yet is kept for the next message. */
class Wheel_Remainder {
  public:
    constexpr Wheel_Remainder() = default;  ///< a step for each notch
    /** @param per_notch steps that one notch makes, 1 or more */
    constexpr explicit Wheel_Remainder(int per_notch) : steps_per_notch(per_notch) {}
    /** @param delta what one message of the wheel tells @return whole steps, toward zero, in the delta's direction */
    constexpr int Add(int delta) {
        rest += delta * steps_per_notch;
        const int steps = rest / WHEEL_NOTCH;
        rest -= steps * WHEEL_NOTCH;
        return steps;
    }
    /** What is kept, in parts of a step: WHEEL_NOTCH of them are one. */
    constexpr int Rest() const { return rest; }

  private:
    int steps_per_notch = 1;
    int rest = 0;
};
