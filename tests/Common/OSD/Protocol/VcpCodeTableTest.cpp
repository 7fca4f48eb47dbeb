#include <gtest/gtest.h>

#include <set>

#include "VcpCodeTable.h"

TEST(VcpCodeTable, OneRowPerCodeAndVariantsReplaceOnlyTheirCode) {
    std::set<uint8_t> seen;
    int previous = -1;
    for (const SVcpCodeRow& row : VcpCodeRows()) {
        EXPECT_TRUE(seen.insert(row.code).second) << std::hex << int(row.code);
        EXPECT_GT(row.code, previous) << "rows stay in code order";
        previous = row.code;
        // A table row always states the sizes it moves; an enumeration is never a table.
        if (row.type == eTypeTable) {
            EXPECT_GT(row.readSize + row.writeSize, 0) << std::hex << int(row.code);
            EXPECT_EQ(row.values, EValueNames::None);
        }
    }
    const SCodeVariants fine{.fineScaleGamma = true};
    EXPECT_EQ(FindVcpCodeRow(0x72, fine)->type, eTypeContinuous);
    EXPECT_STREQ(FindVcpCodeRow(0x72, fine)->name, "Gamma");
    EXPECT_EQ(FindVcpCodeRow(0x72)->type, eTypeNonContinuous);
    EXPECT_EQ(FindVcpCodeRow(0xE4, fine)->values, EValueNames::None);
    const SCodeVariants early{.colorOffsetRedIsColorPreset = true};
    EXPECT_EQ(FindVcpCodeRow(0xE4, early)->values, EValueNames::ColorPreset);
    EXPECT_EQ(FindVcpCodeRow(0x07), nullptr);
}

TEST(VcpCodeTable, LabelOrdersAreAListWithoutGaps) {
    for (EValueNames values : {EValueNames::ColorPreset, EValueNames::ColorSpace, EValueNames::DisplayScaling,
                               EValueNames::LedBrightness, EValueNames::UniformityComp}) {
        std::set<int> orders;
        for (const SValueNameRow& row : ValueNameRows(values)) {
            EXPECT_EQ(row.labelOrder != 0, row.labelId != 0) << ValueNamesTypeName(values) << int(row.value);
            if (row.labelOrder != 0) {
                EXPECT_TRUE(orders.insert(row.labelOrder).second) << ValueNamesTypeName(values);
            }
        }
        ASSERT_FALSE(orders.empty());
        EXPECT_EQ(*orders.rbegin(), static_cast<int>(orders.size())) << ValueNamesTypeName(values);
    }
}
