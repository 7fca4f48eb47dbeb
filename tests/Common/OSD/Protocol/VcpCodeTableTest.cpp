#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "SettingCodes.h"
#include "StringIds.h"
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

namespace {

std::vector<SEntry> Labels(ESetting setting_I) {
    const SSettingRow& row = SettingRowOf(setting_I);
    return {row.labels.begin(), row.labels.end()};
}

}  // namespace

TEST(VcpCodeTable, EveryValueTheDialogsLabelIsOneTheCodeNames) {
    const std::pair<EValueNames, std::vector<SEntry>> lists[] = {
        {EValueNames::ColorPreset, Labels(ESetting::ColorTemperature)},
        {EValueNames::ColorSpace, Labels(ESetting::ColorSpace)},
        {EValueNames::DisplayScaling, AspectRatioLabels(0x86)},
        {EValueNames::LedBrightness, Labels(ESetting::PowerLedBrightness)},
        {EValueNames::UniformityComp, Labels(ESetting::UniformityCompensation)},
    };
    for (const auto& [values, labels] : lists) {
        ASSERT_FALSE(labels.empty());
        for (const SEntry& label : labels) {
            const auto rows = ValueNameRows(values);
            EXPECT_TRUE(std::any_of(rows.begin(), rows.end(),
                                    [&](const SValueNameRow& row) { return row.value == label.value; }))
                << ValueNamesTypeName(values) << " " << label.value;
        }
    }
    // The order the user reads: 5700 K second although its value is last.
    EXPECT_EQ(Labels(ESetting::ColorTemperature)[1], (SEntry{StringId::k5700K, 11}));
}
