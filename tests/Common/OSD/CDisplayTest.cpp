#include <gtest/gtest.h>

#include <algorithm>

#include <cstring>
#include <random>

#include "CEdidBuilder.h"
#include "DdcPackets.h"
#include "LogCapture.h"
#include "ProductFamilies.h"
#include "VirtualBench.h"

using namespace std::chrono_literals;

namespace {

std::vector<long long> Ms(std::initializer_list<long long> values) {
    return values;
}

template <typename E>
std::vector<uint32_t> OptionSetOf(const CDisplay& display, uint8_t code) {
    auto option = std::dynamic_pointer_cast<VCPOptionCodeWithEnumerationT<E>>(display.Option(code));
    return option ? option->OptionSet() : std::vector<uint32_t>{0xDEAD};
}

}  // namespace

TEST(CDisplayInitialize, EveryFamilyPresetInitialisesWithItsCorrections) {
    for (const SVirtualDisplayModel& model : VirtualDisplayPresets()) {
        SCOPED_TRACE(model.key);
        CLogCapture log;
        SVirtualBench bench(model);
        ASSERT_TRUE(bench.cdisplay->Initialize());
        const CDisplay& display = *bench.cdisplay;
        EXPECT_EQ(display.MonitorName(), model.monitorName);
        EXPECT_EQ(display.Protocol(), "monitor");
        EXPECT_EQ(display.DisplayType(), "LCD");
        EXPECT_EQ(display.MCCSVersion().major, 2u);
        EXPECT_EQ(display.MCCSVersion().minor, 2u);
        EXPECT_EQ(display.FirmwareVersion(), model.firmware);
        EXPECT_EQ(display.Commands(), (std::vector<uint32_t>{0x01, 0x02, 0x03, 0x0C, 0xE3, 0xF3}));
        EXPECT_TRUE(display.HasOption(vcpC_Contrast));
        EXPECT_TRUE(display.HasOption(vcpC_RestoreFactoryDefaults));
        EXPECT_FALSE(display.HasOption(vcpC_DisplayInfo));  // a table: no option

        const uint16_t code = model.edidProductCode;
        auto inAny = [code](std::initializer_list<uint16_t> tablets_I) {
            return std::any_of(tablets_I.begin(), tablets_I.end(), [code](uint16_t tablet) {
                return CEdidBuilder::Instance()->IsInProductFamily(tablet, code);
            });
        };
        const bool touch = inAny({0x0390, 0x0396, 0x0391});
        const bool studioOrBattery = inAny({0x03A6, 0x03BD, 0x03AE, 0x03B0});
        const SProductFamily& family = FamilyRowOf(code);
        EXPECT_TRUE(display.HasOption(touch             ? vcpC_BacklightControl
                                      : studioOrBattery ? vcpC_BacklightLevelWhite
                                                        : vcpC_Luminance));
        if (family.fixedColorPresets) {
            EXPECT_EQ(OptionSetOf<colorPresetCode>(display, 0x14), (std::vector<uint32_t>{4, 5, 8, 11}));
        }
        if (family.extendedDisplayPresets) {
            EXPECT_EQ(OptionSetOf<colorPresetCode>(display, 0xF0),
                      (std::vector<uint32_t>{0, 5, 6, 7, 8, 9, 10, 11, 12, 13}));
        }
        if (family.noFan) {
            EXPECT_FALSE(display.HasOption(vcpC_FanSpeed));
            EXPECT_NE(bench.display->CapabilitiesString().find(" F3("), std::string::npos);
        }
        if (display.HasOption(vcpC_BatteryMode)) {
            EXPECT_EQ(OptionSetOf<uint32_t>(display, 0xF4), (std::vector<uint32_t>{0, 2, 3}));
        }
        if (family.gamma == EGammaScale::FineScale) {
            EXPECT_EQ(bench.display->CapabilitiesString().find("mccs_ver"), std::string::npos);
            EXPECT_EQ(display.Capabilities().at("mccs_ver"), "2.2");
            EXPECT_NE(std::dynamic_pointer_cast<VCPOptionSingleCode>(display.Option(vcpC_Gamma)), nullptr);
        }
        // Every readable option reads back the display's value, without a single assertion.
        for (const auto& entry : display.Options()) {
            if (!entry.second->Info().Readable() || entry.first == vcpC_DisplayFirmwareLevel) {
                continue;
            }
            SVCPValue value = bench.cdisplay->GetVCPValue(entry.first, false);
            EXPECT_TRUE(value.valid) << std::hex << int(entry.first) << " " << value.error;
            EXPECT_EQ(value.value, bench.display->Value(entry.first)) << std::hex << int(entry.first);
        }
        EXPECT_EQ(log.Asserts(), std::vector<std::string>{});
        EXPECT_FALSE(log.Contains("SetValue failed") || log.Contains("SetOriginal failed"));
    }
}

TEST(CDisplayInitialize, AsksTheDisplayWithTheProtocolsWaits) {
    CLogCapture log;
    SVirtualBench bench("studio-24");
    ASSERT_TRUE(bench.cdisplay->Initialize());
    const size_t capsLength = bench.display->CapabilitiesString().size();
    std::vector<std::chrono::microseconds> expected;
    expected.push_back(100us);  // factory mode on
    expected.insert(expected.end(), 16, 50ms);
    expected.push_back(100us);  // factory mode off
    expected.insert(expected.end(), (capsLength + 31) / 32 + 1, 50ms);
    expected.push_back(70ms);  // firmware level
    EXPECT_EQ(bench.clock.Pauses(), expected);
    EXPECT_FALSE(bench.display->InFactoryMode());
    EXPECT_TRUE(log.Contains("TIME: CDisplay::Initialize MonitorName "));
    EXPECT_TRUE(log.Contains("TIME: CDisplay::Initialize CapabilitiesString "));
    EXPECT_TRUE(log.Contains("TIME: CDisplay::Initialize "));
    EXPECT_TRUE(log.Contains("caps: " + bench.display->CapabilitiesString() + "\n"));

    // A second run rebuilds from a given text and asks the display nothing.
    bench.display->ClearTransactions();
    ASSERT_TRUE(
        bench.cdisplay->Initialize("(prot(monitor)type(lcd)model(x)cmds(01)vcp(10 12)mccs_ver(2.1))"));
    EXPECT_TRUE(bench.display->Transactions().empty());
    EXPECT_EQ(bench.cdisplay->Options().size(), 2u);
    EXPECT_EQ(bench.cdisplay->MCCSVersion().minor, 1u);
}

TEST(CDisplayInitialize, FailuresEndWithTheirLogLines) {
    struct SCase {
        const char* caps;
        const char* line;
    };
    const SCase cases[] = {
        {"(type(lcd)model(x)cmds(01)vcp(10)mccs_ver(2.2))", " : prot missing\n"},
        {"(prot(monitor) type(lcd)model(x)cmds(01)vcp(10)mccs_ver(2.2))", " : type missing\n"},
        {"(prot(monitor)type(lcd)cmds(01)vcp(10)mccs_ver(2.2))", " : model missing\n"},
        {"(prot(monitor)type(lcd)model(x)cmds(01)vcp(10))", " : mccs_ver missing\n"},
        {"(prot(monitor)type(lcd)model(x)cmds(01)mccs_ver(2.2))", " : vcp missing\n"},
        {"(prot(monitor)type(lcd)model(x)cmds(01)vcp(FD FE 07)mccs_ver(2.2))",
         " : CreateVCPCodeMap failed\n"},
        {"(prot(monitor)type(lcd)model(x)cmds()vcp(10 12)mccs_ver(2.2))", " : cmds missing\n"},
        {"(prot(monitor)type(lcd)model(x)cmds(zz)vcp(10 12)mccs_ver(2.2))",
         " : CreateCommandsVector failed\n"},
    };
    for (const SCase& c : cases) {
        SCOPED_TRACE(c.caps);
        CLogCapture log;
        SVirtualBench bench("studio-24");
        EXPECT_FALSE(bench.cdisplay->Initialize(c.caps));
        bool found = false;
        for (const std::string& write : log.Writes()) {
            if (write.rfind("CDisplay::Initialize", 0) == 0 && write.size() > std::strlen(c.line) &&
                write.compare(write.size() - std::strlen(c.line), std::string::npos, c.line) == 0) {
                found = true;
            }
        }
        EXPECT_TRUE(found) << log.Text();
    }

    // The group that predates mccs_ver reads as 2.2 without it.
    SVirtualBench tolerant("canvas-22-pro");
    EXPECT_TRUE(tolerant.cdisplay->Initialize("(prot(monitor)type(lcd)model(x)cmds(01)vcp(10))"));
    EXPECT_EQ(tolerant.cdisplay->MCCSVersion().major, 2u);
    EXPECT_EQ(tolerant.cdisplay->MCCSVersion().minor, 2u);

    // A display that does not answer fails silently; so does one without a connector.
    CLogCapture log;
    SVirtualBench silent("studio-24");
    silent.connector->Unplug();
    EXPECT_FALSE(silent.cdisplay->Initialize());
    CDisplay orphan(nullptr, 0x1070);
    EXPECT_FALSE(orphan.Initialize());
    EXPECT_EQ(log.Asserts(), std::vector<std::string>{"mConnector"});
}

TEST(CDisplayInitialize, BatteryModeListWithoutZeroIsCorrectedOnlyWhereTheFirmwareNeedsIt) {
    CLogCapture log;
    SVirtualBench go("canvas-16-go");
    ASSERT_TRUE(go.cdisplay->Initialize());
    EXPECT_TRUE(
        log.Contains("CDisplay::Initialize: WARNING - HACKING 0xF4 options to include illegal zero value\n"));
    EXPECT_TRUE(log.Contains("Updated caps for 0xF4: "));
    EXPECT_NE(go.cdisplay->Capabilities().at("vcp").find("F4(00 02 03)"), std::string::npos);
    SVCPValue battery = go.cdisplay->GetVCPValue(vcpC_BatteryMode, false);
    EXPECT_TRUE(battery.valid);
    EXPECT_EQ(battery.value, 0);
    EXPECT_TRUE(log.Asserts().empty());

    log.Clear();
    SVirtualBench studio("studio-24");
    ASSERT_TRUE(studio.cdisplay->Initialize(
        "(prot(monitor)type(lcd)model(x)cmds(01)vcp(10 F4(02 03))mccs_ver(2.2))"));
    EXPECT_EQ(OptionSetOf<uint32_t>(*studio.cdisplay, 0xF4), (std::vector<uint32_t>{2, 3}));
    EXPECT_FALSE(log.Contains("HACKING"));
}

TEST(CDisplayReadWrite, SetWritesReadsBackAndPausesAsTheFirmwareNeeds) {
    SVirtualBench bench("canvas-22-pro");
    ASSERT_TRUE(bench.InitializeAndReadAll());
    CDisplay& display = *bench.cdisplay;

    EXPECT_TRUE(display.SetVCPValue(vcpC_Contrast, 60));
    EXPECT_EQ(bench.clock.PausesMs(), Ms({70, 50, 70}));
    EXPECT_EQ(bench.display->Value(vcpC_Contrast), 60);
    ASSERT_EQ(bench.display->Transactions().size(), 2u);
    EXPECT_EQ(bench.display->Transactions()[0].request,
              (ByteBuffer{0x6E, 0x51, 0x84, 0x03, 0x12, 0x00, 0x3C, 0x96}));
    EXPECT_EQ(bench.display->Transactions()[1].request, BuildGetVCPRequest(vcpC_Contrast));

    bench.clock.ClearPauses();
    EXPECT_TRUE(display.SetVCPValue(vcpC_Luminance, 300 - 200));
    EXPECT_EQ(bench.clock.PausesMs(), Ms({130, 50, 70}));

    bench.clock.ClearPauses();
    EXPECT_TRUE(display.SetVCPValue(vcpC_UniformityCompensation, 1));
    EXPECT_EQ(bench.clock.PausesMs(), Ms({70, 50, 1000, 70}));
    EXPECT_EQ(display.GetVCPValue(vcpC_UniformityCompensation, false).value, 1);

    // The current value, an unknown code and a rejected value send nothing.
    bench.display->ClearTransactions();
    bench.clock.ClearPauses();
    CLogCapture log;
    EXPECT_TRUE(display.SetVCPValue(vcpC_Contrast, 60));
    EXPECT_TRUE(display.SetVCPValue(vcpC_Contrast, 101));
    EXPECT_FALSE(display.SetVCPValue(0x99, 1));
    EXPECT_FALSE(display.SetVCPValue(0x1FF, 1));
    EXPECT_FALSE(display.GetVCPValue(0x99, true).valid);
    EXPECT_TRUE(display.RestoreOriginal(0x99));
    EXPECT_TRUE(bench.display->Transactions().empty());
    EXPECT_TRUE(bench.clock.Pauses().empty());
    EXPECT_EQ(log.Asserts(),
              (std::vector<std::string>{"mVCPOptionsMap.count(vcpCode_I)", "mVCPOptionsMap.count(vcpCode_I)",
                                        "mVCPOptionsMap.count(vcpCode_I)"}));
}

TEST(CDisplayReadWrite, AFailedFirstWriteIsRetriedOnceAfter60ms) {
    SVirtualBench bench("canvas-22-pro");
    ASSERT_TRUE(bench.InitializeAndReadAll());
    bench.display->Faults().FailNext(EFault::NoReply, 1, ddcCC_SetVCPFeatureRequest, vcpC_Contrast);
    EXPECT_TRUE(bench.cdisplay->SetVCPValue(vcpC_Contrast, 61));
    EXPECT_EQ(bench.clock.PausesMs(), Ms({70, 50, 60, 70, 50, 70}));
    EXPECT_EQ(bench.display->Value(vcpC_Contrast), 61);

    // Two failures: false, and the option still holds what the display has.
    bench.clock.ClearPauses();
    bench.display->Faults().FailNext(EFault::NoReply, 2, ddcCC_SetVCPFeatureRequest, vcpC_Contrast);
    EXPECT_FALSE(bench.cdisplay->SetVCPValue(vcpC_Contrast, 62));
    EXPECT_EQ(bench.clock.PausesMs(), Ms({70, 50, 60, 70, 50}));
    EXPECT_EQ(bench.cdisplay->GetVCPValue(vcpC_Contrast, false).value, 61);
    EXPECT_FALSE(bench.cdisplay->Option(vcpC_Contrast)->HasError());

    // A failed read-back does not fail the set.
    bench.display->Faults().FailNext(EFault::NoReply, 1, ddcCC_GetVCPFeatureRequest, vcpC_Contrast);
    EXPECT_TRUE(bench.cdisplay->SetVCPValue(vcpC_Contrast, 63));
    EXPECT_EQ(bench.display->Value(vcpC_Contrast), 63);
}

TEST(CDisplayReadWrite, SlowCommandsGetTheirPausesAndScalingNeverFails) {
    SVirtualBench slate("slate-13");
    ASSERT_TRUE(slate.InitializeAndReadAll());
    EXPECT_TRUE(slate.cdisplay->SetVCPValue(vcpC_DisplayPresets, 8));
    EXPECT_EQ(slate.clock.PausesMs(), Ms({70, 50, 700, 1300, 70}));
    EXPECT_EQ(slate.cdisplay->GetVCPValue(vcpC_DisplayPresets, false).value, 8);

    // Factory defaults: five seconds, after which the display answers again.
    slate.clock.ClearPauses();
    EXPECT_TRUE(slate.cdisplay->SetVCPValue(vcpC_RestoreFactoryDefaults, 1));
    EXPECT_EQ(slate.clock.PausesMs(), Ms({70, 50, 5000}));
    EXPECT_EQ(slate.display->Value(vcpC_DisplayPresets), 7);
    EXPECT_TRUE(slate.cdisplay->GetVCPValue(vcpC_DisplayPresets, true).valid);

    slate.clock.ClearPauses();
    EXPECT_TRUE(slate.cdisplay->SetVCPValue(vcpC_RestoreFactoryColorDefaults, 1));
    EXPECT_EQ(slate.clock.PausesMs(), Ms({70, 50, 5000}));

    SVirtualBench hd("canvas-13-hd");
    ASSERT_TRUE(hd.InitializeAndReadAll());
    hd.display->Faults().FailNext(EFault::NoReply, 1, ddcCC_SetVCPFeatureRequest, vcpC_DisplayScaling);
    EXPECT_TRUE(hd.cdisplay->SetVCPValue(vcpC_DisplayScaling, 5));
    EXPECT_EQ(hd.clock.PausesMs(), Ms({250, 50, 70}));
}

TEST(CDisplayReadWrite, VerifyTriesRetryCountPlusOneTimes) {
    SVirtualBench bench("studio-24");
    ASSERT_TRUE(bench.InitializeAndReadAll());
    CDisplay& display = *bench.cdisplay;

    bench.display->Faults().FailNext(EFault::NoReply, 2, ddcCC_SetVCPFeatureRequest, vcpC_Contrast);
    EXPECT_FALSE(display.SetVCPValueVerify(vcpC_Contrast, 40, 0));
    EXPECT_EQ(bench.display->CountRequests(ddcCC_SetVCPFeatureRequest, vcpC_Contrast), 2u);

    bench.display->ClearTransactions();
    bench.display->Faults().FailNext(EFault::NoReply, 4, ddcCC_SetVCPFeatureRequest, vcpC_Contrast);
    EXPECT_TRUE(display.SetVCPValueVerify(vcpC_Contrast, 40, 2));
    EXPECT_EQ(bench.display->CountRequests(ddcCC_SetVCPFeatureRequest, vcpC_Contrast), 5u);
    EXPECT_EQ(bench.display->Value(vcpC_Contrast), 40);

    // A display that changes the value behind our back is caught by the read-back.
    bench.display->ClearTransactions();
    bench.display->Faults().FailNext(EFault::NoReply, 6, ddcCC_SetVCPFeatureRequest, vcpC_Contrast);
    EXPECT_FALSE(display.SetVCPValueVerify(vcpC_Contrast, 45, 2));
    EXPECT_EQ(bench.display->CountRequests(ddcCC_SetVCPFeatureRequest, vcpC_Contrast), 6u);
    EXPECT_EQ(bench.display->Value(vcpC_Contrast), 40);
    EXPECT_EQ(display.GetVCPValue(vcpC_Contrast, false).value, 40);
}

TEST(CDisplayReadWrite, RestoreWritesTheOriginalAndRereadsAfter1000msOr60ms) {
    for (const char* key : {"canvas-13-hd", "studio-24"}) {
        SCOPED_TRACE(key);
        SVirtualBench bench(key);
        ASSERT_TRUE(bench.InitializeAndReadAll());
        ASSERT_TRUE(bench.cdisplay->SetVCPValue(vcpC_SelectColorPreset, 8));
        EXPECT_EQ(bench.display->Value(vcpC_SelectColorPreset), 8);
        bench.clock.ClearPauses();
        bench.display->Faults().FailNext(EFault::NoReply, 1, ddcCC_GetVCPFeatureRequest,
                                         vcpC_SelectColorPreset);
        EXPECT_TRUE(bench.cdisplay->RestoreOriginal(vcpC_SelectColorPreset));
        const long long reread = std::string(key) == "canvas-13-hd" ? 1000 : 60;
        EXPECT_EQ(bench.clock.PausesMs(), Ms({70, 50, 70, reread, 70}));
        EXPECT_EQ(bench.display->Value(vcpC_SelectColorPreset), 5);
        EXPECT_FALSE(bench.cdisplay->Option(vcpC_SelectColorPreset)->IsChanged());

        // Nothing changed: nothing to do.
        bench.display->ClearTransactions();
        EXPECT_TRUE(bench.cdisplay->RestoreOriginal(vcpC_SelectColorPreset));
        EXPECT_TRUE(bench.display->Transactions().empty());
    }

    SVirtualBench bench("studio-24");
    ASSERT_TRUE(bench.InitializeAndReadAll());
    ASSERT_TRUE(bench.cdisplay->SetVCPValue(vcpC_Contrast, 20));
    bench.display->Faults().FailNext(EFault::NoReply, 2, ddcCC_GetVCPFeatureRequest, vcpC_Contrast);
    EXPECT_FALSE(bench.cdisplay->RestoreOriginal(vcpC_Contrast));
    EXPECT_EQ(bench.display->Value(vcpC_Contrast), 50);
}

TEST(CDisplayReadWrite, TableOptionsAndClosedConnectorsReportWithoutTraffic) {
    SVirtualBench bench("studio-24");
    ASSERT_TRUE(bench.InitializeAndReadAll());
    auto table =
        std::make_shared<VCPOptionSingleCode>(vcpC_AssetTag, CCodeInfo::Table(eAccessReadWrite, 16, 16));
    CLogCapture log;
    EXPECT_FALSE(bench.cdisplay->ReadVCPValue_(table));
    EXPECT_EQ(table->Error(), "Table codes not supported");
    table->ClearError();
    EXPECT_FALSE(bench.cdisplay->WriteVCPValue_(table));
    EXPECT_EQ(table->Error(), "Table codes not supported");
    EXPECT_TRUE(bench.display->Transactions().empty());
    EXPECT_TRUE(log.Contains("ReadVCPValue Asset Tag failed Table codes not supported\n"));

    bench.connector->Unplug();
    EXPECT_FALSE(bench.cdisplay->SetVCPValue(vcpC_Contrast, 10));
    VCPOptionPtr contrast = bench.cdisplay->Option(vcpC_Contrast);
    EXPECT_FALSE(bench.cdisplay->WriteVCPValue_(contrast));
    EXPECT_EQ(contrast->Error(), "Device not open");
    EXPECT_EQ(bench.cdisplay->GetVCPValue(vcpC_Contrast, true).error, "Send request failed");
}

TEST(CDisplayReadWrite, EveryReplyFaultEndsAsTheOptionsErrorText) {
    struct SCase {
        EFault fault;
        const char* error;  // empty: the value is still taken
    };
    const SCase cases[] = {
        {EFault::NoReply, "Send request failed"},
        {EFault::NullMessage, "Send request no data"},
        {EFault::TruncatedReply, "Send request unknown response"},
        {EFault::WrongEchoedCode, "it is NOT a response to our query"},
        {EFault::ErrorResultCode, "vcp code error"},
        {EFault::CorruptChecksum, ""},
    };
    for (const SCase& c : cases) {
        SCOPED_TRACE(FaultName(c.fault));
        SVirtualBench bench("canvas-27-pro");
        ASSERT_TRUE(bench.InitializeAndReadAll());
        bench.display->SetValueFromMenu(vcpC_Contrast, 33);
        bench.display->Faults().FailNext(c.fault, 1, ddcCC_GetVCPFeatureRequest, vcpC_Contrast);
        CLogCapture log;
        SVCPValue value = bench.cdisplay->GetVCPValue(vcpC_Contrast, true);
        EXPECT_EQ(value.error, c.error);
        EXPECT_EQ(value.valid, std::string(c.error).empty());
        EXPECT_EQ(value.value, std::string(c.error).empty() ? 33 : 50);
        EXPECT_TRUE(log.Asserts().empty());
        // The next read succeeds and finds the display's value.
        EXPECT_EQ(bench.cdisplay->GetVCPValue(vcpC_Contrast, true).value, 33);
    }
}

TEST(CDisplayReadWrite, UnderRandomFaultsAValidValueIsNeverAWrongValue) {
    SVirtualBench bench("canvas-32-pro");
    ASSERT_TRUE(bench.InitializeAndReadAll());
    bench.display->Faults().SetRate(0.3, 1234);
    std::mt19937 random(99);
    const uint8_t codes[] = {vcpC_Luminance, vcpC_Contrast, vcpC_SelectColorPreset, vcpC_Sharpness,
                             vcpC_Gamma};
    CLogCapture log(false);
    size_t valid = 0;
    for (int round = 0; round < 400; ++round) {
        const uint8_t code = codes[random() % std::size(codes)];
        if (random() % 2 == 0) {
            const int32_t value =
                code == vcpC_SelectColorPreset ? (random() % 2 ? 5 : 8) : int32_t(random() % 5);
            bench.cdisplay->SetVCPValue(code, value);
        }
        SVCPValue value = bench.cdisplay->GetVCPValue(code, true);
        if (value.valid) {
            ++valid;
            EXPECT_EQ(value.value, bench.display->Value(code)) << "round " << round;
        }
        bench.cdisplay->Option(code)->ClearError();
    }
    EXPECT_GT(valid, 100u);
}
