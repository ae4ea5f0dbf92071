#include "workbench/database/class_objects.h"

#include <gtest/gtest.h>

#include <string>

using namespace workbench;

namespace {

TEST(Class_Objects, hang_below_their_roots_for_as_long_as_they_live) {
    {
        const Class_Objects objects;
        EXPECT_EQ(Fct_Variable_Value("$DB_1D_ROOT_PT", nullptr, nullptr, nullptr), objects.Root_1D());
        EXPECT_EQ(Fct_Variable_Value("$DB_3D_ROOT_PT", nullptr, nullptr, nullptr), objects.Root_3D());
        EXPECT_STREQ(objects.Root_3D()->Name_Get(), "Anatomy");
        EXPECT_STREQ(objects.Root_3D()->icon, "class Anatomy.tga");
        EXPECT_EQ(objects.Root_3D()->Child_Get_Nb(), 3);
        EXPECT_EQ(objects.Root_1D()->Child_Get_Nb(), 2);
    }
    EXPECT_EQ(Fct_Variable_Value("$DB_1D_ROOT_PT", nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(Fct_Variable_Value("$DB_3D_ROOT_PT", nullptr, nullptr, nullptr), nullptr);
}

}  // namespace
