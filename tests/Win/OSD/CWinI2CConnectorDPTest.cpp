#include <gtest/gtest.h>

#include "CWinI2CConnectorDP.h"
#include "DdcPackets.h"
#include "LogCapture.h"
#include "SimulatedMonitorConfigurationApi.h"
#include "UiDisplayDelegate.h"
#include "VirtualClock.h"
#include "VirtualDisplayPresets.h"

namespace {

// Two virtual displays behind one monitor handle, reached through the simulated API.
struct SDisplayPortBench {
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    std::shared_ptr<CVirtualMonitorConfiguration> model = std::make_shared<CVirtualMonitorConfiguration>();
    CSimulatedMonitorConfigurationApi api{model};
    std::shared_ptr<CVirtualDisplay> display;
    std::shared_ptr<CVirtualDisplay> second;
    SDisplayInfo info;
    std::shared_ptr<CWinI2CConnectorDP> connector = std::make_shared<CWinI2CConnectorDP>();

    explicit SDisplayPortBench(const char* key) {
        display = std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset(key));
        second = std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset("studio-24"));
        info.deviceID = L"MONITOR\\VLR1060\\{4d36e96e-e325-11ce-bfc1-08002be10318}\\0001";
        info.monitorName = L"Canvas 22 Pro";
        info.serialNumber = L"VC1060A40892";
        info.supportedName = L"Velor Canvas 22 Pro";
        info.productCode = display->Model().edidProductCode;
        info.monitor = CSimulatedMonitorConfigurationApi::ToHMonitor(model->AddMonitor({display, second}));
        info.edid = display->Edid();
        info.owner = std::make_shared<int>(0);
    }
};

size_t SetsOf(const CVirtualDisplay& display, uint8_t code, uint16_t value) {
    size_t count = 0;
    for (const STransaction& t : display.Transactions()) {
        const ByteBuffer& r = t.request;
        count += r.size() == 8 && r[3] == 0x03 && r[4] == code && ((r[5] << 8) | r[6]) == value;
    }
    return count;
}

}  // namespace

TEST(WinI2CConnectorDP, RequestsBecomeMonitorConfigurationCalls) {
    SDisplayPortBench bench("canvas-22-pro");
    ASSERT_TRUE(bench.connector->Open(bench.info));
    EXPECT_TRUE(bench.connector->IsOpen());

    // A set of 0x10 to 300: SetVCPFeature(0x10, 300), acknowledged with the null message.
    EXPECT_EQ(bench.connector->SendRequest({0x6E, 0x51, 0x84, 0x03, 0x10, 0x01, 0x2C, 0x85}, 0.13, 38, 0),
              (ByteBuffer{0x6E, 0x80, 0xBE}));
    EXPECT_EQ(SetsOf(*bench.display, 0x10, 300), 1u);
    // The save packet becomes a set of its checksum byte, 0xB2, to 0.
    EXPECT_EQ(bench.connector->SendRequest({0x6E, 0x51, 0x81, 0x0C, 0xB2}, 0.22, 38, 0),
              (ByteBuffer{0x6E, 0x80, 0xBE}));
    EXPECT_EQ(SetsOf(*bench.display, 0xB2, 0), 1u);
    EXPECT_EQ(bench.model->CallCount(EMcaCall::SaveCurrentSettings), 0u);

    // A get builds the reply from the call's current and maximum.
    EXPECT_EQ(bench.connector->SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0),
              BuildSimulatedReply(0x01, 0x12, 50, 100));
    // Firmware level: current 0x0102, maximum 0x0003 -> 3.1.2.
    EXPECT_EQ(bench.connector->FWVersion(), (SFirmwareVersion{3, 1, 2, 5, 0}));

    CLogCapture log;
    EXPECT_TRUE(bench.connector->SendRequest(BuildGetVCPRequest(0x99), 0.07, 38, 0).empty());
    EXPECT_EQ(
        log.Count("CWinI2CConnectorDP::SendRequest: GetVCPFeatureAndVCPFeatureReply error: -1071241852\n"),
        1u);
    EXPECT_TRUE(bench.connector->SendRequest(BuildCapabilitiesRequest(0), 0.07, 38, 0).empty());
    EXPECT_TRUE(bench.connector->SendRequest({0x6F, 0x51, 0x82}, 0.07, 38, 0).empty());
    EXPECT_EQ(log.Asserts(), (std::vector<std::string>{
                                 "Oops - unsupported vcpCode", "Oops - unknown or unsupported VCP op",
                                 "Zero-length request vector", "Oops - unknown or unsupported VCP op"}));

    // Name, serial and EDID come from the record, without traffic.
    bench.display->ClearTransactions();
    EXPECT_EQ(bench.connector->MonitorName(), "Canvas 22 Pro");
    EXPECT_EQ(bench.connector->SerialNumber(-1), "VC1060A40892");
    EXPECT_EQ(bench.connector->ReadEDID(-1), bench.display->Edid());
    EXPECT_TRUE(bench.display->Transactions().empty());
}

TEST(WinI2CConnectorDP, CapabilitiesByLengthAndReplyWithTheirErrorTexts) {
    SDisplayPortBench bench("canvas-22-pro");
    ASSERT_TRUE(bench.connector->Open(bench.info));
    EXPECT_EQ(bench.connector->CapabilitiesString(), bench.display->CapabilitiesString());

    CLogCapture log;
    bench.model->FailNext(EMcaCall::GetCapabilitiesStringLength, McaError::kI2CErrorReceivingData);
    EXPECT_EQ(bench.connector->CapabilitiesString(), "");
    EXPECT_EQ(bench.connector->LastCapabilitiesError(), "GetCapabilitiesStringLength, errcode: 3223725443");
    EXPECT_TRUE(
        log.Contains("ERROR: CWinI2CConnectorDP::CapabilitiesString - GetCapabilitiesStringLength, errcode: "
                     "3223725443\n"));
    bench.model->FailNext(EMcaCall::CapabilitiesRequest, McaError::kInvalidCapabilitiesString);
    EXPECT_EQ(bench.connector->CapabilitiesString(), "");
    EXPECT_EQ(bench.connector->LastCapabilitiesError(),
              "CapabilitiesRequestAndCapabilitiesReply, errcode: 3223725447");
}

TEST(WinI2CConnectorDP, OpenNeedsACompleteRecordAndPhysicalMonitors) {
    SDisplayPortBench bench("canvas-22-pro");
    CLogCapture log;
    SDisplayInfo incomplete = bench.info;
    incomplete.serialNumber.clear();
    EXPECT_FALSE(bench.connector->Open(incomplete));
    SDisplayInfo nowhere = bench.info;
    nowhere.monitor = CSimulatedMonitorConfigurationApi::ToHMonitor(0x77);
    EXPECT_FALSE(bench.connector->Open(nowhere));
    EXPECT_FALSE(bench.connector->IsOpen());
    EXPECT_EQ(log.Asserts(), (std::vector<std::string>{"Oops - displayInfo couldn't be initialized!",
                                                       "Oops - Could not get number of physical monitors",
                                                       "Oops - no physical handles found!"}));
    EXPECT_TRUE(log.Contains("Could not get number of physical monitors; error: 1461\n"));
    EXPECT_EQ(bench.connector->MonitorName(), "");
    EXPECT_TRUE(bench.connector->ReadEDID(-1).empty());
    EXPECT_EQ(bench.connector->FWVersion(), SFirmwareVersion{});

    // The second physical monitor of the handle is another display; an index past the end
    // makes every call fail with a null handle.
    SDisplayInfo secondMonitor = bench.info;
    secondMonitor.physicalMonitorIndex = 1;
    ASSERT_TRUE(bench.connector->Open(secondMonitor));
    EXPECT_EQ(bench.connector->CapabilitiesString(), bench.second->CapabilitiesString());
    SDisplayInfo pastTheEnd = bench.info;
    pastTheEnd.physicalMonitorIndex = 2;
    ASSERT_TRUE(bench.connector->Open(pastTheEnd));
    log.Clear();
    EXPECT_TRUE(bench.connector->SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0).empty());
    EXPECT_TRUE(log.Contains("GetVCPFeatureAndVCPFeatureReply error: -1071241844\n"));
    EXPECT_TRUE(bench.connector->Close());
    EXPECT_FALSE(bench.connector->IsOpen());
}

TEST(WinI2CConnectorDP, TheRealDxva2PathFailsCleanlyUnderThisSystem) {
    SDisplayPortBench bench("canvas-22-pro");
    // Physical monitors from the simulation, VCP calls to the real dxva2.
    SMonitorConfigurationApi mixed = CSimulatedMonitorConfigurationApi::Table();
    const SMonitorConfigurationApi& real = RealMonitorConfigurationApi();
    mixed.GetVCPFeatureAndVCPFeatureReply = real.GetVCPFeatureAndVCPFeatureReply;
    mixed.SetVCPFeature = real.SetVCPFeature;
    mixed.GetCapabilitiesStringLength = real.GetCapabilitiesStringLength;
    SetMonitorConfigurationApi(&mixed);
    ASSERT_TRUE(bench.connector->Open(bench.info));
    CLogCapture log;
    EXPECT_TRUE(bench.connector->SendRequest(BuildGetVCPRequest(0x10), 0.07, 38, 0).empty());
    EXPECT_TRUE(bench.connector->SendRequest(BuildSetVCPRequest(0x10, 20), 0.13, 38, 0).empty());
    EXPECT_EQ(bench.connector->CapabilitiesString(), "");
    EXPECT_EQ(log.Count("CWinI2CConnectorDP::SendRequest: GetVCPFeatureAndVCPFeatureReply error: "), 2u);
    EXPECT_TRUE(log.Contains(
        "ERROR: CWinI2CConnectorDP::CapabilitiesString - GetCapabilitiesStringLength, errcode: "));
    bench.connector->Close();
    SetMonitorConfigurationApi(&CSimulatedMonitorConfigurationApi::Table());
}

TEST(WinI2CConnectorDP, ADisplayObjectRunsEndToEnd) {
    SDisplayPortBench bench("canvas-22-pro");
    ASSERT_TRUE(bench.connector->Open(bench.info));
    CLogCapture log;
    UiDisplayDelegate display(bench.connector, bench.info.productCode);
    ASSERT_TRUE(display.Initialize());
    EXPECT_EQ(display.MonitorName(), "Canvas 22 Pro");
    EXPECT_EQ(display.FirmwareVersionText(), "3.1.2");
    EXPECT_EQ(display.GetSetting(ESetting::Brightness).value, 70);
    EXPECT_TRUE(display.SetVCPValueVerify(vcpC_Luminance, 35, 1));
    EXPECT_EQ(bench.display->Value(vcpC_Luminance), 35);
    EXPECT_TRUE(display.SetGammaValue(24));
    EXPECT_TRUE(display.Save());  // a set of 0xB2 to 0 on this transport
    EXPECT_EQ(SetsOf(*bench.display, 0xB2, 0), 1u);
    EXPECT_TRUE(display.SetContrast(90));
    EXPECT_TRUE(display.Revert());
    EXPECT_EQ(bench.display->Value(vcpC_Contrast), 50);
    EXPECT_TRUE(log.Asserts().empty());
}

TEST(WinI2CConnectorDP, AMonitorThatSleepsOrIsRepluggedClosesTheConnector) {
    SDisplayPortBench bench("canvas-22-pro");
    ASSERT_TRUE(bench.connector->Open(bench.info));
    UiDisplayDelegate display(bench.connector, bench.info.productCode);
    ASSERT_TRUE(display.Initialize());

    CLogCapture log;
    bench.model->Replug(bench.display);
    const int contrast = bench.display->Value(vcpC_Contrast);
    EXPECT_FALSE(display.SetContrast(contrast + 3));
    EXPECT_TRUE(log.Contains("failed with error 0xC026258D\n"));
    EXPECT_TRUE(
        log.Contains("CWinI2CConnectorDP: the monitor's handle is no longer valid; the connector closes\n"));
    EXPECT_FALSE(bench.connector->IsOpen());
    // Closed, it makes no more calls on the dead handle.
    const size_t calls =
        bench.model->CallCount(EMcaCall::SetVCPFeature) + bench.model->CallCount(EMcaCall::GetVCPFeature);
    EXPECT_FALSE(display.SetContrast(contrast + 4));
    EXPECT_EQ(
        bench.model->CallCount(EMcaCall::SetVCPFeature) + bench.model->CallCount(EMcaCall::GetVCPFeature),
        calls);
    EXPECT_EQ(display.LastFailure(), "Contrast: Send request failed");

    // A handle closed under the connector: the same.
    SDisplayPortBench other("canvas-22-pro");
    ASSERT_TRUE(other.connector->Open(other.info));
    other.model->FailNext(EMcaCall::GetCapabilitiesStringLength, ERROR_INVALID_HANDLE);
    EXPECT_TRUE(other.connector->CapabilitiesString().empty());
    EXPECT_FALSE(other.connector->IsOpen());
}
