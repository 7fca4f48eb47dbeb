#include <gtest/gtest.h>

#include "DiscoveryRules.h"
#include "LogCapture.h"
#include "RoutePlan.h"

using namespace Discovery;

TEST(RoutePlan, ModesChooseTheirRoutesAndEachRouteRunsOnlyWhileNoneServed) {
    using R = ERoute;
    using V = std::vector<ERoute>;
    constexpr uint16_t kPro = 0x1060, kStudio = 0x1075, kEarlySerial = 0x1040;
    EXPECT_EQ(PlanRoutes(eConnectionHidOnly, true, kPro, true).order, V{R::Hid});
    EXPECT_EQ(PlanRoutes(eConnectionDisplayPortOnly, true, kPro, true).order, V{R::GraphicsDriver});
    EXPECT_EQ(PlanRoutes(eConnectionLegacyOnly, true, kPro, true).order, V{R::Legacy});
    EXPECT_EQ(PlanRoutes(eConnectionAll, true, kPro, true).order, (V{R::Hid, R::GraphicsDriver, R::Legacy}));
    EXPECT_TRUE(PlanRoutes(7, true, kPro, true).order.empty());
    // A search that does not initialise cannot see the driver's channel lead nowhere: the
    // serial-line models try their line before it.
    EXPECT_EQ(PlanRoutes(eConnectionAll, true, kEarlySerial, true).order,
              (V{R::Hid, R::GraphicsDriver, R::Legacy}));
    EXPECT_EQ(PlanRoutes(eConnectionAll, true, kEarlySerial, false).order,
              (V{R::Hid, R::Legacy, R::GraphicsDriver}));
    EXPECT_EQ(PlanRoutes(eConnectionAll, true, kPro, false).order, (V{R::Hid, R::GraphicsDriver, R::Legacy}));

    // Pairing by model only with matching by model.
    EXPECT_TRUE(PlanRoutes(eConnectionAll, true, kStudio, true).hidByModel);
    EXPECT_FALSE(PlanRoutes(eConnectionAll, false, kStudio, true).hidByModel);
    EXPECT_FALSE(PlanRoutes(eConnectionAll, true, kPro, true).hidByModel);
    EXPECT_EQ(PlanRoutes(eConnectionAll, true, kPro, true).expectedLegacyType, eConnectorFTDI);
    EXPECT_EQ(PlanRoutes(eConnectionAll, false, kPro, true).expectedLegacyType, kNoConnectorType);

    // The run: the first route that serves ends it; a route that ends the search ends it.
    const SRoutePlan all = PlanRoutes(eConnectionAll, true, kPro, true);
    V tried;
    auto servedBy = [&](ERoute serving_I, ERouteResult result_I) {
        tried.clear();
        return RunRoutePlan(all, [&](ERoute route_I) {
            tried.push_back(route_I);
            return route_I == serving_I ? result_I : ERouteResult::NotServed;
        });
    };
    EXPECT_EQ(servedBy(R::Hid, ERouteResult::Served), ERouteResult::Served);
    EXPECT_EQ(tried, V{R::Hid});
    EXPECT_EQ(servedBy(R::GraphicsDriver, ERouteResult::EndSearch), ERouteResult::EndSearch);
    EXPECT_EQ(tried, (V{R::Hid, R::GraphicsDriver}));
    EXPECT_EQ(servedBy(R::Legacy, ERouteResult::NotServed), ERouteResult::NotServed);
    EXPECT_EQ(tried, (V{R::Hid, R::GraphicsDriver, R::Legacy}));
}

TEST(DiscoveryRules, TheExpectedConnectorFollowsTheFamily) {
    // Serial-port families, every code of a family alike.
    for (uint16_t code : {0x1040, 0x1046, 0x1042}) {
        EXPECT_EQ(ExpectedLegacyConnectorType(code), eConnectorSerial) << code;
    }
    // FTDI: both codes of a two-code family, the HD panels and the Go models.
    for (uint16_t code : {0x1043, 0x1048, 0x1044, 0x1049, 0x1060, 0x1063, 0x1057, 0x1073, 0x1066, 0x1067,
                          0x1064, 0x1071, 0x1068, 0x1072, 0x1070, 0x1075}) {
        EXPECT_EQ(ExpectedLegacyConnectorType(code), eConnectorFTDI) << code;
    }
    EXPECT_EQ(ExpectedLegacyConnectorType(0x1052), eConnectorTI);
    EXPECT_EQ(ExpectedLegacyConnectorType(0x1053), eConnectorTI);
    // Canvas 32 Touch's family is in no list; unknown codes neither.
    EXPECT_EQ(ExpectedLegacyConnectorType(0x1065), kNoConnectorType);
    EXPECT_EQ(ExpectedLegacyConnectorType(0x2222), kNoConnectorType);

    for (uint16_t code : {0x1070, 0x1075, 0x1071, 0x1072}) {
        EXPECT_TRUE(HidServesByModel(code)) << code;
    }
    EXPECT_FALSE(HidServesByModel(0x1060));
}

TEST(DiscoveryRules, SystemIdsAreTakenApartSafely) {
    EXPECT_EQ(ShortNameFromHardwareId("MONITOR\\VLR1070"), "VLR1070");
    EXPECT_EQ(ShortNameFromHardwareId("MONITOR\\VLR10701234"), "VLR1070");
    EXPECT_EQ(ShortNameFromHardwareId("DISPLAY\\X\\VLR1043\\5&1"), "VLR1043");
    EXPECT_EQ(ShortNameFromHardwareId("MONITOR\\VLR"), "VLR");
    EXPECT_EQ(ShortNameFromHardwareId("MONITOR\\DEL40B6"), "");
    EXPECT_EQ(ShortNameFromHardwareId("VLR1070"), "");  // no backslash before it
    EXPECT_EQ(ShortNameFromHardwareId("\\VL"), "");
    EXPECT_EQ(ShortNameFromHardwareId(""), "");

    CLogCapture log;
    EXPECT_EQ(ProductCodeFromDeviceId("MONITOR\\VLR1070\\{4d36e96e-e325-11ce-bfc1-08002be10318}\\0001"),
              0x1070);
    EXPECT_EQ(ProductCodeFromDeviceId("MONITOR\\VLR10\\{x}"), 0x10);
    EXPECT_EQ(ProductCodeFromDeviceId("MONITOR\\VLRabcd\\0"), 0xABCD);
    EXPECT_EQ(ProductCodeFromDeviceId("MONITOR\\VLRZZ12\\0"), 0);
    EXPECT_TRUE(log.Contains("Discovery: no product code in device id MONITOR\\VLRZZ12\\0\n"));
    EXPECT_EQ(ProductCodeFromDeviceId("MONITOR\\DEL40B6\\0"), 0);

    EXPECT_TRUE(SameDeviceId("MONITOR\\VLR1070\\{A}\\0001", "MONITOR\\VLR1070\\{A}\\0001"));
    EXPECT_TRUE(SameDeviceId("MONITOR\\VLR1070\\{4D36E96E}\\0001", "monitor\\vlr1070\\{4d36e96e}\\0001"));
    EXPECT_FALSE(SameDeviceId("MONITOR\\VLR1070\\{A}\\0001", "MONITOR\\VLR1070\\{A}\\0002"));

    EXPECT_EQ(ClassifyPortHardwareId("FTDIBUS\\COMPORT&VID_0403&PID_6014"), EPortKind::FtdiVirtualComPort);
    EXPECT_EQ(ClassifyPortHardwareId("ftdibus\\comport&vid_0403&pid_6014\\6&abc"),
              EPortKind::FtdiVirtualComPort);
    EXPECT_EQ(ClassifyPortHardwareId("USB\\VID_10C4&PID_EA60&REV_0100"), EPortKind::SiliconLabsBridge);
    EXPECT_EQ(ClassifyPortHardwareId("FTDIBUS\\COMPORT&VID_0403&PID_6001"), EPortKind::NotSupported);
    EXPECT_EQ(ClassifyPortHardwareId("ACPI\\PNP0501"), EPortKind::NotSupported);

    EXPECT_TRUE(SameSerialNumber("VC1070A40934", "VC1070A40934"));
    EXPECT_FALSE(SameSerialNumber("VC1070A40934", "VC1070A40934 "));
    EXPECT_FALSE(SameSerialNumber("", ""));  // an unread serial number pairs with nothing
}

TEST(DiscoveryRules, MenuLanguagesAndTheErrorText) {
    const std::pair<int, int> rows[] = {{0, 0x02},  {1, 0x0D},  {2, 0x01},  {3, 0x26},  {4, 0x03},
                                        {5, 0x04},  {6, 0x06},  {7, 0x07},  {8, 0x05},  {9, 0x0A},
                                        {10, 0x08}, {12, 0x14}, {13, 0x09}, {15, 0x1E}, {19, 0x02}};
    for (const auto& [language, value] : rows) {
        EXPECT_EQ(OsdLanguageValue(language), value) << language;
    }
    for (int language : {-1, 11, 14, 16, 17, 18, 20, 23, 24}) {
        EXPECT_EQ(OsdLanguageValue(language), -1) << language;
    }

    EXPECT_TRUE(IsMakersOwnComputer("Velor Co.,Ltd"));
    EXPECT_FALSE(IsMakersOwnComputer("Velor Co., Ltd"));
    EXPECT_FALSE(IsMakersOwnComputer(""));

    EXPECT_EQ(DisplayPortErrorText(0x1070, "Velor Studio 24", "GetCapabilitiesStringLength, errcode: 5"),
              "Display: VLR1070  [Velor Studio 24]\n    Could not connect through Display Port API\n"
              "    GetCapabilitiesStringLength, errcode: 5");
    EXPECT_EQ(DisplayPortErrorText(0x0A, "", ""),
              "Display: VLR0A  []\n    Could not connect through Display Port API\n    ");
}

TEST(DiscoveryRules, PairingTakesTheOwnSerialNumberFirstThenAnyFreeChannelByModel) {
    // Two interfaces of one family: the second display's own comes first although it is listed
    // second; by model only a free one serves, and only where the model allows it.
    const std::vector<std::string> serials = {"VC1070A00001", "VC1070A00002", ""};
    std::vector<bool> taken = {false, false, false};
    auto pair = [&](const std::string& display, bool byModel) {
        return Discovery::PairBySerialThenByModel(
            serials.size(), [&](size_t i) { return !taken[i]; }, [&](size_t i) { return serials[i]; },
            display, byModel);
    };
    EXPECT_EQ(pair("VC1070A00002", true), std::optional<size_t>(1));
    taken[1] = true;
    EXPECT_EQ(pair("VC1070A00002", true), std::optional<size_t>(0));  // its own is taken: by model
    EXPECT_EQ(pair("VC1070A00002", false), std::nullopt);
    EXPECT_EQ(pair("", false), std::nullopt);  // an empty serial number pairs with nothing
    taken = {true, true, true};
    EXPECT_EQ(pair("VC1070A00001", true), std::nullopt);
}
