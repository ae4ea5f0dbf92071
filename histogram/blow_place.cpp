#include "histogram/blow_place.h"

#include <algorithm>

Blow_Place Blow_Place_Inside(const Blow_Place& place, const Blow_Place& area) {
    Blow_Place inside = place;
    inside.width = std::min(place.width, area.width);
    inside.height = std::min(place.height, area.height);
    inside.left = std::clamp(place.left, area.left, area.left + area.width - inside.width);
    inside.top = std::clamp(place.top, area.top, area.top + area.height - inside.height);
    return inside;
}

Blow_Place Blow_Place_Beside(const Blow_Place& owner, const Blow_Place& area) {
    Blow_Place place = {owner.left + owner.width, owner.top, BLOW_FIRST_WIDTH, BLOW_FIRST_HEIGHT};
    const int area_right = area.left + area.width;
    if (area_right - place.left < place.width) {
        if (owner.left - area.left >= place.width) {
            place.left = owner.left - place.width;
        } else {
            place.left = area_right - place.width;
            place.top = area.top + area.height - place.height;
        }
    }
    return Blow_Place_Inside(place, area);
}
