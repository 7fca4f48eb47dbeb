#include <gtest/gtest.h>

#include "ModelGroups.h"

TEST(ModelGroups, MembershipGoesThroughTheProductFamilies) {
    // The pro models hold the 0x037C family, whose product codes are 0x1060 and 0x1063.
    EXPECT_TRUE(IsInModelGroup(EModelGroup::AspectRatioByMakerCode, 0x1060));
    EXPECT_TRUE(IsInModelGroup(EModelGroup::AspectRatioByMakerCode, 0x1063));
    EXPECT_TRUE(IsInModelGroup(EModelGroup::AspectRatioByMakerCode, 0x1057));
    EXPECT_FALSE(IsInModelGroup(EModelGroup::AspectRatioByMakerCode, 0x1070));
    EXPECT_TRUE(IsInModelGroup(EModelGroup::BrightnessByBacklightControl, 0x1065));
    EXPECT_TRUE(IsInModelGroup(EModelGroup::BatteryModeMissingZero, 0x1072));
    EXPECT_TRUE(IsInModelGroup(EModelGroup::ColorModeByDisplayPresets, 0x1052));
    EXPECT_TRUE(IsInModelGroup(EModelGroup::FixedColorPresets, 0x1048));
    EXPECT_FALSE(IsInModelGroup(EModelGroup::FixedColorPresets, 0x1060));
    // An unknown product code belongs to no group.
    EXPECT_FALSE(IsInModelGroup(EModelGroup::BrightnessByBacklightControl, 0x2222));
    EXPECT_TRUE(IsInAnyFamily({0x0304, 0x03A6}, 0x1070));
    EXPECT_FALSE(IsInAnyFamily({0x0304}, 0x1070));
    for (EModelGroup group :
         {EModelGroup::ColorOffsetRedIsColorPreset, EModelGroup::ContinuousGammaDefaultMccs,
          EModelGroup::FixedColorPresets, EModelGroup::ExtendedDisplayPresets, EModelGroup::NoFan,
          EModelGroup::BatteryModeMissingZero}) {
        EXPECT_FALSE(ModelGroupProductIds(group).empty()) << ModelGroupName(group);
    }
}
