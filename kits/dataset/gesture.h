/** Two fingers on a screen, turned into zoom and movement. For the kit's own use. */
#pragma once

#include <optional>

#include "kits/dataset/dataset_host.h"

class Two_Finger_Gesture {
  public:
    /** Follows the fingers of one touch message. @return what changed since the last record; none before two fingers
     * have moved */
    std::optional<Gesture_Record> Follow(const Touch_Point* points, int nb);
    void Reset();

  private:
    struct Finger {
        bool down = false;
        std::uint32_t number = 0;
        float x = 0.0F;
        float y = 0.0F;
    };
    /** Distance and middle of the fingers along one axis. */
    struct Span {
        float distance = 0.0F;
        float middle = 0.0F;
    };
    static Span Span_Of(float a, float b);
    static float Zoom_Step(Span& reported, const Span& now);
    static float Move_Step(Span& reported, const Span& now);
    void Place(const Touch_Point& point);

    Finger fingers[2];
    Span reported_x;
    Span reported_y;
    bool following = false;  // both fingers are down and reported_x, reported_y are set
};
