/** @file
 *  What a host sends its panels: the change flags that each kind follows, and a collector that sends many changes as
 *  one. */
#pragma once

#include "host/kit_dataset.h"

/** The kinds of panels. */
enum class Panel_Kind { Tag, Marker, Brush, Propagate, Histogram, Classes, Files };

/** The level bit of a dimension, 0 for none. @param dimension 1, 2 or 3 */
inline constexpr unsigned __int64 Update_Level(int dimension) {
    return dimension == 1 ? UPDATE_LEVEL_1D : dimension == 2 ? UPDATE_LEVEL_2D : dimension == 3 ? UPDATE_LEVEL_3D : 0;
}

/** The flags after which a panel shows everything as it is now. UPDATE_ALL alone reaches the brush and propagate panels
 *  and the mark of the histogram's "Blow" button, and nothing else.
 *  @param kind of the panel; @param dimension of a class view; files are of dimension 2, others have none */
inline constexpr unsigned __int64 Update_Everything(Panel_Kind kind, int dimension = 2) {
    switch (kind) {
        case Panel_Kind::Tag:
            return UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK | UPDATE_TAG_CUR | UPDATE_TAG_LABEL |
                   UPDATE_TAG_TABLE;
        case Panel_Kind::Marker:
            return UPDATE_TAG_CUR | UPDATE_TAG_LABEL | UPDATE_TAG_ENABLE | UPDATE_TAG_TABLE;
        case Panel_Kind::Brush:
            return UPDATE_ALL | UPDATE_BRUSH | UPDATE_TAG_CUR | UPDATE_TAG_TABLE;
        case Panel_Kind::Propagate:
            return UPDATE_ALL | UPDATE_FRAME_CUR;
        case Panel_Kind::Histogram:
            return UPDATE_ALL | UPDATE_HISTO_DATA | UPDATE_COLOR_COMPONENT | UPDATE_HISTO_PAINT;
        case Panel_Kind::Classes:
        case Panel_Kind::Files:
            return UPDATE_STRUCTURE | UPDATE_SELECTION | Update_Level(dimension);
    }
    return 0;
}

/** What to send after Resize, which reads less: marks, greying, masks, frames. Draw comes after it. */
inline constexpr unsigned __int64 Update_After_Resize(Panel_Kind kind, int dimension = 2) {
    switch (kind) {
        case Panel_Kind::Tag:
            return UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK | UPDATE_TAG_CUR;
        case Panel_Kind::Marker:
            return UPDATE_TAG_ENABLE | UPDATE_TAG_CUR;
        case Panel_Kind::Brush:
        case Panel_Kind::Propagate:
        case Panel_Kind::Histogram:
            return Update_Everything(kind);
        case Panel_Kind::Classes:
        case Panel_Kind::Files:
            return Update_Everything(kind, dimension);
    }
    return 0;
}

/** Changes since they were sent last. One "Select All" makes a request per frame; sent on one by one, each is a
 *  computation of the histogram and a painting of every tree. */
class Collected_Updates {
  public:
    /** Also from inside a delivery. The selection is read again after rows were built anew. */
    constexpr void Add(unsigned __int64 flags) {
        pending |= flags;
        if (Has_Any(flags, UPDATE_STRUCTURE)) {
            pending |= UPDATE_SELECTION;
        }
    }
    /** True when something waits. */
    constexpr bool Has_Pending() const { return pending != 0; }
    /** To be called between messages. What the delivery itself adds waits for the next call, so two panels that answer
     *  each other do not hang the host.
     *  @param deliver called with the flags when there are any */
    template <class Deliver>
    constexpr void Send(Deliver deliver) {
        const unsigned __int64 flags = pending;
        pending = 0;
        if (flags != 0) {
            deliver(flags);
        }
    }

  private:
    unsigned __int64 pending = 0;
};
