#include "workbench/host_variables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "workbench/model/marker_table.h"

using namespace workbench;

namespace {

class Host_Variables_Test : public ::testing::Test {
  protected:
    void SetUp() override { variables.Define(); }
    Host_Variables variables;
};

TEST_F(Host_Variables_Test, everything_that_panels_read_is_defined) {
    for (const char* name : {"$TAG_NB",
                             "$TAG_CUR",
                             "$TAG_RED",
                             "$TAG_GRN",
                             "$TAG_BLU",
                             "$TAG_LABEL",
                             "$TAG_ENABLE",
                             "$TAG_SELECT",
                             "$TAG_LOCK",
                             "$TAG_THRESHOLD_MIN",
                             "$TAG_THRESHOLD_MAX",
                             "$MARKER_NB",
                             "$MARKER_CUR",
                             "$MARKER_COLOR",
                             "$MARKER_ENABLE",
                             "$MARKER_LABEL",
                             "$BRUSH_NB",
                             "$BRUSH_CUR",
                             "$BRUSH_SIZE",
                             "$BRUSH_RADIUS",
                             "$BRUSH_PT",
                             "$WINDOW_CUR",
                             "$FRAME_CUR",
                             "$FRAME_OVR",
                             "$MOUSE_FRM",
                             "$INTERFACE_LOCK_FOCUS",
                             "$GLI_COLOR_COMPONENT",
                             "$GLI_HISTO_BINS_MAX",
                             "$GLI_HISTO_BINS_NB",
                             "$SELECT_GLI_MIN",
                             "$SELECT_GLI_MAX",
                             "$DB_1D_ROOT_PT",
                             "$DB_2D_ROOT_PT",
                             "$DB_3D_ROOT_PT",
                             "$DB_2D_FILE_NB",
                             "$DB_2D_FILE_PT",
                             "$DEFAULT_FILE_PATH",
                             "$DEFAULT_ICON_PATH",
                             "$FILE_EXTENSION_EXCEL",
                             "$FILE_EXTENSION_ALL",
                             "$REGIONAL_SEPARATOR",
                             "$REGIONAL_FILLER",
                             "$INTERFACE_SPACE_DIM",
                             "$INTERFACE_BORDER_DIM",
                             "$INTERFACE_CURSOR_DIM",
                             "$INTERFACE_BUTTON_DIM_SML",
                             "$INTERFACE_BUTTON_DIM_BIG",
                             "$INTERFACE_LIST_DIM_SML",
                             "$INTERFACE_LIST_DIM_ARROW",
                             "$INTERFACE_TITLE_DIM_SML",
                             "$INTERFACE_VAL_DIM_SML",
                             "$INTERFACE_VAL_DIM_MID",
                             "$INTERFACE_NUM_BIG",
                             "$INTERFACE_TOOL_FONT_NAME",
                             "$INTERFACE_TOOL_FONT_SCALE",
                             "$INTERFACE_TOOL_FONT_WEIGHT",
                             "$INTERFACE_TITLE_FONT_NAME",
                             "$INTERFACE_TITLE_FONT_SCALE",
                             "$INTERFACE_TITLE_FONT_WEIGHT"}) {
        EXPECT_NE(Fct_Variable_Get(name, nullptr, nullptr, nullptr, 0), nullptr) << name;
    }
}

TEST_F(Host_Variables_Test, arrays_have_room_for_every_tag_and_never_move) {
    const auto* enable = variables.Tag_Enable().data();
    EXPECT_EQ(variables.Tag_Enable().size(), 256U);
    EXPECT_EQ(variables.Tag_Labels().size(), 256U);
    variables.Tag_Nb_Set(256);
    EXPECT_EQ(variables.Tag_Enable().data(), enable);
    EXPECT_EQ(variables.Tag_Nb(), 256);
}

TEST_F(Host_Variables_Test, names_fall_back_to_numbers) {
    EXPECT_EQ(variables.Tag_Name(1), "Grey matter");
    variables.Tag_Label_Set(1, nullptr);
    EXPECT_EQ(variables.Tag_Name(1), "1");
    EXPECT_EQ(variables.Tag_Name(999), "999");
    EXPECT_EQ(variables.Marker_Name(2), "M3");
}

TEST_F(Host_Variables_Test, colours_are_those_that_the_panels_show) {
    EXPECT_EQ(variables.Tag_Color(0), 0xAAAAAAU);
    EXPECT_EQ(variables.Tag_Color(1), 0xE05656U);
    EXPECT_EQ(variables.Tag_Color(-1), 0xAAAAAAU);
    EXPECT_EQ(variables.Tag_Color(256), 0xAAAAAAU);
    EXPECT_EQ(variables.Marker_Color(0), Marker_Default_Color(0));
    EXPECT_EQ(variables.Marker_Color(MARKER_NB), 0U);
    const std::vector<std::uint32_t> colors = variables.Tag_Colors();
    ASSERT_EQ(colors.size(), static_cast<std::size_t>(TAG_MAX));
    EXPECT_EQ(colors[0], 0xAAAAAAU);
    EXPECT_EQ(colors[255], variables.Tag_Color(255));
    variables.Marker_Color_Set(1, 0x123456);
    variables.Marker_Color_Set(-1, 0x654321);
    variables.Marker_Color_Set(MARKER_NB, 0x654321);
    EXPECT_EQ(variables.Marker_Color(1), 0x123456U);
    EXPECT_EQ(variables.Marker_Color(0), Marker_Default_Color(0));
}

TEST_F(Host_Variables_Test, brushes_stay_in_range_and_have_their_masks_in_the_hosts_memory) {
    variables.Brush_Cur_Set(100);
    EXPECT_EQ(variables.Brush_Cur(), BRUSH_NB - 1);
    variables.Brush_Cur_Set(-5);
    EXPECT_EQ(variables.Brush_Cur(), 0);
    EXPECT_EQ(variables.Brush().Pixel_Nb(), 0U);  // no panel has built the masks
    auto* tables = static_cast<unsigned char***>(Fct_Variable_Value("$BRUSH_PT", nullptr, nullptr, nullptr));
    const int radius = static_cast<int>(Variable_Number("$BRUSH_RADIUS", 0));
    tables[0][radius][radius] = 1;
    EXPECT_TRUE(variables.Brush().Covers(0, 0));
    EXPECT_EQ(variables.Brush().Pixel_Nb(), 1U);
    int nb = 0;
    const auto* sizes = static_cast<unsigned short*>(Variable_Array("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, &nb));
    ASSERT_EQ(nb, BRUSH_NB);
    EXPECT_TRUE(std::is_sorted(sizes, sizes + nb));
    EXPECT_LE(sizes[nb - 1] - 1, radius) << "the largest brush fits its mask";
}

TEST_F(Host_Variables_Test, dimensions_follow_the_scale) {
    const int button = variables.Dimensions().button;
    variables.Scale_Set(2.0F);
    EXPECT_EQ(variables.Dimensions().button, 2 * button);
    variables.Scale_Set(1.3F);
    EXPECT_EQ(Variable_Number("$INTERFACE_TITLE_FONT_SCALE", 0), 20)
        << "15 pixels times 1.3 in single precision are 19.5";
    EXPECT_EQ(Variable_Number("$INTERFACE_TOOL_FONT_SCALE", 0), 17);
    variables.Scale_Set(1.0F);
}

}  // namespace
