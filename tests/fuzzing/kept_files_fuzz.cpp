// libFuzzer: what reads the workbench's own text files: descriptions of labels, journals of class trees, settings.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "tests/fuzzing/input_bytes.h"
#include "workbench/model/class_journal.h"
#include "workbench/model/label_description.h"
#include "workbench/model/label_map.h"
#include "workbench/model/line_reader.h"
#include "workbench/model/marker_table.h"
#include "workbench/model/settings.h"

using namespace workbench;

namespace {

constexpr Label_Extent EXTENT = {181, 181, 217};

void Describe_Labels(const std::string& text) {
    const Label_Description_Reading reading = Label_Description_Parse(text, EXTENT);
    const Label_Description& description = reading.description;
    Require(reading.refused.empty() || (description == Label_Description{} && reading.left_out == 0));
    Require((reading.left_out > 0) == !reading.first_left_out.empty());
    for (const Tag_Description& tag : description.tags) {
        Require(tag.number >= 0 && tag.number < TAG_MAX && tag.color <= 0xFFFFFF);
        Require(std::isfinite(tag.low.value_or(0.0F)) && std::isfinite(tag.high.value_or(0.0F)));
        Require(Is_Utf8(tag.name.value_or("")) && tag.name.value_or("").size() <= LABEL_NAME_MAX);
        Require(std::ranges::count(description.tags, tag.number, &Tag_Description::number) == 1);
    }
    for (const Marker_Description& marker : description.markers) {
        Require(marker.number >= 0 && marker.number < MARKER_NB && marker.color <= 0xFFFFFF);
        const Label_Voxel place = marker.place.value_or(Label_Voxel{});
        Require(place.frame >= 0 && place.frame < EXTENT.frames && place.column >= 0 && place.column < EXTENT.columns &&
                place.row >= 0 && place.row < EXTENT.rows);
    }
    const Label_Description_Reading again = Label_Description_Parse(Label_Description_Text(description), EXTENT);
    Require(again.refused.empty() && again.left_out == 0 && again.description == description);
}

void Journal(const std::string& text) {
    std::vector<Class_Step> steps;
    std::size_t done_nb = 0;
    if (!Class_Journal_Parse(text, &steps, &done_nb).empty()) {
        return;
    }
    Require(done_nb <= steps.size());
    std::vector<Class_Step> again;
    std::size_t again_done_nb = 0;
    Require(Class_Journal_Parse(Class_Journal_Text(steps, done_nb), &again, &again_done_nb).empty());
    Require(again == steps && again_done_nb == done_nb);
}

void Keep_Settings(const std::string& text) {
    const std::string kept = Settings_Text(Settings_Parse(text));
    int ignored = 0;
    Require(Settings_Text(Settings_Parse(kept, &ignored)) == kept && ignored == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    Describe_Labels(text);
    Journal(text);
    Keep_Settings(text);
    return 0;
}
