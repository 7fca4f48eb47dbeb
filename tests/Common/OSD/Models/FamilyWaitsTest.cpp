// Every family row's named waits, walked through a display of the family: the pauses the
// virtual clock saw are the row's waits, each where its event happens. The standard row is
// also written out by hand, so that a wait read from the wrong name shows on the families that
// differ.

#include <gtest/gtest.h>

#include "ProductFamilies.h"
#include "UiDisplayDelegate.h"
#include "VirtualBench.h"
#include "codes.h"

namespace {

long long Ms(std::chrono::microseconds wait_I) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(wait_I).count();
}

// A preset of the family, if the virtual display has one.
const SVirtualDisplayModel* PresetOf(const SProductFamily& family_I) {
    for (const SVirtualDisplayModel& model : VirtualDisplayPresets()) {
        if (ProductFamilyOf(model.edidProductCode) == &family_I) {
            return &model;
        }
    }
    return nullptr;
}

}  // namespace

TEST(FamilyWaits, TheStandardRowIsTheProtocolsAndTheFirmwaresTiming) {
    const SDisplayWaits& standard = UnknownFamily().waits;
    EXPECT_EQ(Ms(standard.writeToRead), 70);
    EXPECT_EQ(Ms(standard.SetToReply(vcpC_Contrast)), 70);
    EXPECT_EQ(Ms(standard.SetToReply(vcpC_Luminance)), 130);
    EXPECT_EQ(Ms(standard.SetToReply(vcpC_DisplayScaling)), 250);
    EXPECT_EQ(Ms(standard.afterWrite), 50);
    EXPECT_EQ(Ms(standard.saveToReply), 220);
    EXPECT_EQ(Ms(standard.afterSave), 200);
    EXPECT_EQ(Ms(standard.afterFactoryReset), 5000);
    EXPECT_EQ(Ms(standard.beforeRetry), 60);
}

TEST(FamilyWaits, EveryFamilysDisplayPausesAsItsRowSays) {
    size_t walked = 0;
    for (const SProductFamily& family : ProductFamilies()) {
        const SVirtualDisplayModel* model = PresetOf(family);
        if (model == nullptr) {
            continue;  // a family the virtual display does not model
        }
        SCOPED_TRACE(model->key);
        ++walked;
        const SDisplayWaits& w = family.waits;
        TVirtualBench<UiDisplayDelegate> bench(*model);
        ASSERT_TRUE(bench.InitializeAndReadAll());
        UiDisplayDelegate& display = *bench.cdisplay;

        // A set and its read-back, its save, a read.
        ASSERT_TRUE(display.SetContrast(70));
        EXPECT_TRUE(display.Save());
        EXPECT_TRUE(display.GetVCPValue(vcpC_Contrast, true).valid);
        std::vector<long long> expected = {Ms(w.setToReply),  Ms(w.afterWrite), Ms(w.writeToRead),
                                           Ms(w.saveToReply), Ms(w.afterSave),  Ms(w.writeToRead)};
        EXPECT_EQ(bench.clock.PausesMs(), expected);

        // A write that fails once is repeated after its wait.
        bench.clock.ClearPauses();
        bench.display->Faults().FailNext(EFault::NoReply, 1, ddcCC_SetVCPFeatureRequest, vcpC_Contrast);
        ASSERT_TRUE(display.SetContrast(60));
        expected = {Ms(w.setToReply), Ms(w.afterWrite), Ms(w.beforeRetry),
                    Ms(w.setToReply), Ms(w.afterWrite), Ms(w.writeToRead)};
        EXPECT_EQ(bench.clock.PausesMs(), expected);

        // A restored option that does not read back at once is read again after it settles.
        ASSERT_TRUE(display.SetContrast(20));
        bench.clock.ClearPauses();
        bench.display->Faults().FailNext(EFault::NoReply, 1, ddcCC_GetVCPFeatureRequest, vcpC_Contrast);
        EXPECT_TRUE(display.RestoreOriginal(vcpC_Contrast));
        expected = {Ms(w.setToReply), Ms(w.afterWrite), Ms(w.writeToRead), Ms(w.restoredPresetSettles),
                    Ms(w.writeToRead)};
        EXPECT_EQ(bench.clock.PausesMs(), expected);

        // A factory reset, and the restart of the scalers that restart.
        bench.clock.ClearPauses();
        EXPECT_TRUE(display.FactoryReset());
        expected = {Ms(w.setToReply), Ms(w.afterWrite), Ms(w.afterFactoryReset)};
        if (family.restartsAfterFactoryReset) {
            expected.push_back(Ms(w.scalerRestart));
        }
        EXPECT_EQ(bench.clock.PausesMs(), expected);
    }
    EXPECT_GE(walked, 15u);
}

TEST(FamilyWaits, TheFamiliesThatDifferSayHowByName) {
    // The HD panels need a second before a restored preset reads back; the others 60 ms.
    EXPECT_EQ(Ms(FamilyRowOf(0x1043).waits.restoredPresetSettles), 1000);
    EXPECT_EQ(Ms(FamilyRowOf(0x1060).waits.restoredPresetSettles), 60);
    // The slow scalers are given ten seconds after a factory reset.
    EXPECT_EQ(Ms(FamilyRowOf(0x1060).waits.scalerRestart), 10000);
}
