/** Tells which TAG colours are hard to tell apart, and parts them when the user wants it. No window. */
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "workbench/commands/command_actions.h"
#include "workbench/model/color_sight.h"

namespace workbench {

/** What the advisor needs of the application. Texts are UTF-8. */
struct Color_Host {
    std::function<std::vector<std::uint32_t>()> colors;             ///< of all TAGs, 0x00RRGGBB
    std::function<std::vector<int>()> shown_tags;                   ///< those whose colour lies over the image
    std::function<std::span<const std::uint8_t>()> slice;           ///< TAGs of the shown slice; empty: there is none
    std::function<std::vector<bool>()> used_tags;                   ///< per TAG: the volume has pixels of it
    std::function<std::string(int tag)> name;                       ///< its label
    std::function<void(const std::string& text)> mark;              ///< a lasting note; empty: none
    std::function<void(const std::string& text)> tell;              ///< what was done
    std::function<void(int pairs)> found;                           ///< for the report
    std::function<void(const std::vector<std::uint32_t>&)> change;  ///< all colours, as a step of the work
    /** Shows a text to read. @return index of the choice; -1: none */
    std::function<int(const std::string& text, const std::vector<std::string>& choices)> ask;
};

class Color_Advisor : public Color_Actions {
  public:
    explicit Color_Advisor(Color_Host application) : host(std::move(application)) {}

    /** Looks at the TAGs of the shown slice, for the mark. Distances are computed only for colours that were not those
     *  of the last look. */
    void Slice_Look();
    /** Pairs of the last look. */
    int Alike_Nb() const { return static_cast<int>(slice_pairs.size()); }
    void Colors_Check() override;
    /** Other colours were taken over: there are no former ones. */
    void Former_Forget() { former.clear(); }

  private:
    std::string Text(const std::vector<int>& tags, const std::vector<Alike_Pair>& pairs) const;
    void Spread(const std::vector<int>& tags);

    Color_Host host;
    std::vector<std::uint32_t> slice_colors;  // of the last look
    std::vector<Alike_Pair> slice_pairs;
    std::vector<std::uint32_t> former;  // of all TAGs, before they were changed; empty: they were not
};

}  // namespace workbench
