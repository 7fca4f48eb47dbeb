#include <gtest/gtest.h>

#include <set>
#include <string>

#include "SettingTable.h"
#include "UiDisplayDelegate.h"
#include "VirtualBench.h"

namespace {

using SDelegateBench = TVirtualBench<UiDisplayDelegate>;

}  // namespace

TEST(SettingTable, EverySettingHasOneRowOneNameAndACaptionWhereADialogShowsIt) {
    std::set<int> settings;
    std::set<std::string> names;
    std::set<uint32_t> captions;
    for (const SSettingRow& row : SettingRows()) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(settings.insert(static_cast<int>(row.setting)).second);
        EXPECT_TRUE(names.insert(row.name).second);
        if (row.alias != nullptr) {
            EXPECT_TRUE(names.insert(row.alias).second);
        }
        EXPECT_EQ(&SettingRowOf(row.setting), &row);
        EXPECT_EQ(row.captionId != 0, row.kind != ESettingKind::Hidden);
        if (row.captionId != 0) {
            EXPECT_TRUE(captions.insert(row.captionId).second);
        }
    }
    EXPECT_EQ(settings.size(), kSettingCount);
    // The captions the user reads, and the names scripts write.
    EXPECT_EQ(SettingCaptionId(ESetting::Brightness), 2002u);
    EXPECT_EQ(SettingCaptionId(ESetting::BatteryMode), 2221u);
    EXPECT_STREQ(SettingRowOf(ESetting::ColorTemperature).alias, "color-temperature");
    EXPECT_STREQ(SettingRowOf(ESetting::FanSpeed).name, "fan");
    // Battery mode's choices are 2 and 3 on the display; 0 (on mains) is no choice.
    EXPECT_EQ(WireValueOf(ESetting::BatteryMode, 0), std::optional<int32_t>(2));
    EXPECT_EQ(WireValueOf(ESetting::BatteryMode, 1), std::optional<int32_t>(3));
    EXPECT_EQ(WireValueOf(ESetting::BatteryMode, 2), std::nullopt);
    EXPECT_EQ(ChoiceOfWireValue(ESetting::BatteryMode, 3), std::optional<int32_t>(1));
    EXPECT_EQ(ChoiceOfWireValue(ESetting::BatteryMode, 0), std::nullopt);
    EXPECT_EQ(WireValueOf(ESetting::EnergySmart, 1), std::optional<int32_t>(1));
}

TEST(SettingTable, EachRowsKindIsWhatTheDelegateOffersForItOnEveryFamily) {
    std::set<int> offered;
    for (const SVirtualDisplayModel& model : VirtualDisplayPresets()) {
        SDelegateBench bench(model);
        ASSERT_TRUE(bench.InitializeAndReadAll()) << model.key;
        for (const SSettingRow& row : SettingRows()) {
            SCOPED_TRACE(model.key + " " + row.name);
            const SSettingState state = bench.cdisplay->GetSetting(row.setting);
            if (!state.supported) {
                continue;
            }
            offered.insert(static_cast<int>(row.setting));
            switch (row.kind) {
                case ESettingKind::Slider:
                    EXPECT_TRUE(state.entries.empty());
                    EXPECT_GT(state.range.maximum, state.range.minimum);
                    break;
                case ESettingKind::Choice: EXPECT_FALSE(state.entries.empty()); break;
                case ESettingKind::OnOff:
                    EXPECT_EQ(state.entries, (std::vector<SEntry>{{StringId::kOff, 0}, {StringId::kOn, 1}}));
                    break;
                case ESettingKind::Action:
                case ESettingKind::Hidden: break;
            }
        }
    }
    // Every setting a dialog shows is offered by some family.
    for (const SSettingRow& row : SettingRows()) {
        EXPECT_TRUE(row.kind == ESettingKind::Hidden || offered.count(static_cast<int>(row.setting)) != 0)
            << row.name;
    }
}
