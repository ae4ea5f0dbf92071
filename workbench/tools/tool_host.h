/** What tools need of the application. */
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "workbench/model/change.h"
#include "workbench/model/painting.h"
#include "workbench/model/session.h"
#include "workbench/segmentation/label_edit.h"
#include "workbench/segmentation/level_bands.h"

namespace workbench {

/** Texts are UTF-8. All functions are set. */
struct Tool_Host {
    std::function<Session&()> work;  ///< on the current volume
    std::function<int()> tag;        ///< the current one
    std::function<std::string(int tag)> tag_name;
    std::function<bool()> is_tag_hidden;  ///< the current TAG's colour is not shown
    std::function<Tag_Flags()> locked;    ///< not 0: voxels of that TAG stay
    std::function<std::optional<std::uint8_t>()> only_inside;
    std::function<segmentation::Slice_Range()> slices;                  ///< that operations in space work on
    std::function<std::optional<segmentation::Level_Band>()> band;      ///< of the current TAG; no value: it has none
    std::function<Brush_Footprint()> brush;                             ///< as the panel made it
    std::function<int()> marker;                                        ///< the current one
    std::function<void(int marker)> marker_pick;                        ///< makes another one current
    std::function<void(int marker, const Marker& place)> marker_place;  ///< one step of the history
    std::function<void(Changes changes)> note;                          ///< tells everybody who shows them
    /** The keyboard's pen is up, whoever has ended its stroke. */
    std::function<void()> pen_lifted;
    /** Runs an action beside the window's thread, and shows how far it is, with a button to give it up. Passes on what
     *  it throws. */
    std::function<void(const std::string& what, const std::function<void(const segmentation::Edit_Progress&)>& action)>
        run;
    /** @return what was entered; no value: given up */
    std::function<std::optional<std::string>(const std::string& title, const std::string& question,
                                             const std::string& start)>
        text_ask;
    std::function<void(const std::string& text)> tell;  ///< one line about what was done
    std::function<void(const std::string& text)> warn;  ///< a sentence about what could not be done
    std::function<void(const std::string& line)> log;   ///< for programs that drive the application
};

}  // namespace workbench
