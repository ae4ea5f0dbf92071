/** @file
 *  How an operation learns that its panel ended while it called out.
 *
 *  A drop list, a dialog, Fct_Update, Fct_Change_Child and the functions of the host may run the host's message loop,
 *  and there the host may destroy the very panel whose operation is running. The panel has a Panel_Life among its
 *  members; the operation makes a Panel_Watch before it calls out, asks it afterwards, and touches no member once the
 *  panel has ended.
 */
#pragma once

class Panel_Watch;

/** A member of a panel that ends with it. Each copy of a panel has a life of its own. */
class Panel_Life {
  public:
    Panel_Life() = default;  ///< nobody watches
    ~Panel_Life();           ///< every watch is told
    ///@{
    /** Nothing is copied: who watches a panel watches that object. */
    Panel_Life(const Panel_Life& /*other*/) noexcept {}
    // cppcheck-suppress operatorEqVarError
    Panel_Life& operator=(const Panel_Life& /*other*/) noexcept { return *this; }  // NOLINT(*-self-assignment)

    ///@}

  private:
    friend class Panel_Watch;
    Panel_Watch* innermost = nullptr;  ///< the others follow by Panel_Watch::outer
};

/** A local of an operation that calls out. Watches of one panel end in the reverse order of their beginnings. */
class Panel_Watch {
  public:
    /** @param watched of the panel whose operation this is */
    explicit Panel_Watch(Panel_Life& watched) noexcept : life(&watched), outer(watched.innermost) {
        watched.innermost = this;
    }
    /** Ends the watch; the panel may have ended before. */
    ~Panel_Watch() {
        if (life != nullptr) {
            life->innermost = outer;
        }
    }
    ///@{
    /** A watch stays where it was made. */
    Panel_Watch(const Panel_Watch&) = delete;
    Panel_Watch& operator=(const Panel_Watch&) = delete;
    ///@}

    /** False once the panel has ended. */
    bool Is_Alive() const noexcept { return life != nullptr; }

  private:
    friend class Panel_Life;
    Panel_Life* life;    ///< null once the panel has ended
    Panel_Watch* outer;  ///< of the operation that was running when this one began; null for the first
};

inline Panel_Life::~Panel_Life() {
    for (Panel_Watch* watch = innermost; watch != nullptr; watch = watch->outer) {
        watch->life = nullptr;
    }
}
