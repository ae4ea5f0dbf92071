// Windows that DICOM files propose.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/workbench/volumes/dicom_bytes.h"
#include "workbench/volumes/dicom_reader.h"

using namespace volumes;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t TAG_CHARACTERS = 0x00080005;
constexpr std::uint32_t TAG_CENTER = 0x00281050;
constexpr std::uint32_t TAG_WIDTH = 0x00281051;
constexpr std::uint32_t TAG_EXPLANATION = 0x00281055;
constexpr std::uint32_t TAG_FUNCTION = 0x00281056;
constexpr std::uint32_t TAG_SHARED_GROUPS = 0x52009229;
constexpr std::uint32_t TAG_FRAME_WINDOW = 0x00289132;

std::vector<Display_Window> Windows_Of(const Dicom_Bytes& bytes) {
    const Bytes file = bytes.File();
    const Dicom_Result result = Dicom_Read(file, {});
    EXPECT_TRUE(result.image.has_value()) << result.error;
    return result.image ? result.image->volume.windows : std::vector<Display_Window>();
}

TEST(Dicom_Windows, several_have_names_centres_and_widths) {
    Dicom_Bytes bytes;
    bytes.Text(TAG_CENTER, "DS", "40\\-600 ").Text(TAG_WIDTH, "DS", "80\\1500");
    bytes.Text(TAG_EXPLANATION, "LO", "BRAIN \\LUNG");
    EXPECT_THAT(Windows_Of(bytes), ElementsAre(Display_Window{"BRAIN", 40, 80, Window_Function::Linear},
                                               Display_Window{"LUNG", -600, 1500, Window_Function::Linear}));
}

TEST(Dicom_Windows, have_the_files_function) {
    for (const auto& [text, function] : {std::pair{"SIGMOID", Window_Function::Sigmoid},
                                         {"LINEAR_EXACT", Window_Function::Linear_Exact},
                                         {"LINEAR", Window_Function::Linear}}) {
        Dicom_Bytes bytes;
        bytes.Text(TAG_CENTER, "DS", "1.5").Text(TAG_WIDTH, "DS", "3").Text(TAG_FUNCTION, "CS", text);
        EXPECT_THAT(Windows_Of(bytes), ElementsAre(Display_Window{"", 1.5, 3, function})) << text;
    }
}

TEST(Dicom_Windows, without_a_usable_width_there_is_none) {
    EXPECT_THAT(Windows_Of(Dicom_Bytes()), IsEmpty());
    EXPECT_THAT(Windows_Of(Dicom_Bytes().Text(TAG_CENTER, "DS", "40")), IsEmpty());
    Dicom_Bytes bytes;
    bytes.Text(TAG_CENTER, "DS", "40\\0.5\\7").Text(TAG_WIDTH, "DS", "0\\0.25");
    EXPECT_THAT(Windows_Of(bytes), ElementsAre(Display_Window{"", 0.5, 0.25, Window_Function::Linear_Exact}));
}

TEST(Dicom_Windows, may_stand_in_the_functional_groups) {
    Dicom_Bytes window;
    window.Clear().Text(TAG_CENTER, "DS", "50").Text(TAG_WIDTH, "DS", "350");
    Dicom_Bytes group;
    group.Clear().Sequence(TAG_FRAME_WINDOW, {window.Elements()});
    Dicom_Bytes bytes;
    bytes.Sequence(TAG_SHARED_GROUPS, {group.Elements()});
    EXPECT_THAT(Windows_Of(bytes), ElementsAre(Display_Window{"", 50, 350, Window_Function::Linear}));
}

TEST(Dicom_Windows, in_a_functional_group_are_named_in_the_files_characters) {
    Dicom_Bytes window;
    window.Clear().Text(TAG_CENTER, "DS", "50").Text(TAG_WIDTH, "DS", "350").Text(TAG_EXPLANATION, "LO", "Sch\xC3\xA4");
    Dicom_Bytes group;
    group.Clear().Sequence(TAG_FRAME_WINDOW, {window.Elements()});
    Dicom_Bytes bytes;
    bytes.Text(TAG_CHARACTERS, "CS", "ISO_IR 192").Sequence(TAG_SHARED_GROUPS, {group.Elements()});
    EXPECT_THAT(Windows_Of(bytes), ElementsAre(Display_Window{"Sch\xC3\xA4", 50, 350, Window_Function::Linear}));
    // An item may have a set of its own.
    window.Text(TAG_CHARACTERS, "CS", "ISO_IR 144").Text(TAG_EXPLANATION, "LO", "a\xE4");
    group.Clear().Sequence(TAG_FRAME_WINDOW, {window.Elements()});
    bytes.Sequence(TAG_SHARED_GROUPS, {group.Elements()});
    EXPECT_THAT(Windows_Of(bytes), ElementsAre(Display_Window{"a\u0444", 50, 350, Window_Function::Linear}));
}

}  // namespace
