/** Where the enlarged histogram window opens on the screen: pure numbers. Screen pixels, y counted downward. */
#pragma once

inline constexpr int BLOW_FIRST_WIDTH = 800;   ///< of a window that has not stood anywhere yet, pixels
inline constexpr int BLOW_FIRST_HEIGHT = 400;  ///< pixels

/** A window or a screen without its bars. */
struct Blow_Place {
    static constexpr int MOST = 1 << 20;  ///< no screen is as large or as far away

    int left = 0;
    int top = 0;
    int width = 0;  ///< 0: no place
    int height = 0;

    /** False for numbers that no window can have. */
    bool Is_Place() const {
        return width > 0 && height > 0 && width < MOST && height < MOST && left > -MOST && left < MOST && top > -MOST &&
               top < MOST;
    }
    bool operator==(const Blow_Place&) const = default;
};

/** Moved, and made smaller where it must be, so that all of it lies in an area. */
Blow_Place Blow_Place_Inside(const Blow_Place& place, const Blow_Place& area);

/** A first place beside the owner: right of it or left of it, where the area has the room; otherwise the area's lower
 *  right corner, where it hides the least of what stands at the owner's left and top. */
Blow_Place Blow_Place_Beside(const Blow_Place& owner, const Blow_Place& area);
