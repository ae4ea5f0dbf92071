#include "workbench/model/recovery_text.h"

#include <algorithm>
#include <ctime>

#include "workbench/volumes/message_text.h"

namespace workbench {

namespace {

constexpr std::size_t VOLUMES_NAMED = 8;

std::string Counted(std::uint64_t count, const char* one, const char* several) {
    return volumes::Count_Text(count) + (count == 1 ? one : several);
}

std::uint64_t Placed_Nb(const std::vector<Marker_Description>& markers) {
    return static_cast<std::uint64_t>(
        std::ranges::count_if(markers, [](const Marker_Description& one) { return one.place.has_value(); }));
}

}  // namespace

std::string Recovery_Time_Text(std::int64_t seconds) {
    const auto time = static_cast<std::time_t>(seconds);
    const std::tm* local = std::localtime(&time);
    char text[64] = {};
    return local != nullptr && std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", local) > 0 ? text : "?";
}

Label_Description Recovery_Description(const Recovery_Volume& volume) {
    const auto& size = volume.grid.size;
    return Label_Description_Parse(volume.description, {size[2], size[0], size[1]}).description;
}

std::string Recovery_Found_Text(const Recovery_Record& record) {
    std::string text = "The workbench ended while work was not saved. The last of it was kept at " +
                       Recovery_Time_Text(record.time) + ":\n";
    for (std::size_t at = 0; at < std::min(record.volumes.size(), VOLUMES_NAMED); ++at) {
        const Recovery_Volume& volume = record.volumes[at];
        // The blank behind the line's sign must not part a long name from it.
        text += "\n-\xC2\xA0" + volume.title + ": " +
                Counted(volume.tagged_nb, " voxel with a TAG, ", " voxels with TAGs, ") +
                Counted(Placed_Nb(Recovery_Description(volume).markers), " marker", " markers") + " (" + volume.image +
                ")";
    }
    if (record.volumes.size() > VOLUMES_NAMED) {
        text += "\n- and " + std::to_string(record.volumes.size() - VOLUMES_NAMED) + " more";
    }
    return text + "\n\nTaking it up opens the images again; nothing is written to a label file before you save.";
}

}  // namespace workbench
