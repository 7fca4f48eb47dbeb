#include <gtest/gtest.h>

#include "CWinVcpHIDConnector.h"
#include "DdcPackets.h"
#include "LogCapture.h"
#include "SimulatedHidApi.h"
#include "UiDisplayDelegate.h"
#include "VirtualClock.h"
#include "VirtualDisplayPresets.h"

namespace {

const char kPath[] =
    "\\\\?\\hid#vid_2f4a&pid_03bd&mi_01#7&1a2b3c4d&0&0000#{4d1e55b2-f16f-11cf-88cb-001111000030}";

struct SHidBench {
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    CSimulatedHidApi api;
    std::shared_ptr<CVirtualDisplay> display;
    std::shared_ptr<CVirtualHidDevice> device;
    std::shared_ptr<CWinVcpHIDConnector> connector = std::make_shared<CWinVcpHIDConnector>();

    explicit SHidBench(const char* key) {
        display = std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset(key));
        device = std::make_shared<CVirtualHidDevice>(display);
        api.AddDevice(kPath, device);
    }
};

}  // namespace

TEST(WinVcpHIDConnector, OpensByPathAndLogsTheOutcome) {
    SHidBench bench("studio-32");
    CLogCapture log;
    EXPECT_FALSE(bench.connector->Open(std::string()));
    EXPECT_FALSE(bench.connector->Open("\\\\?\\hid#no-such-device"));
    EXPECT_TRUE(log.Contains(
        "OpenHIDDevice: ERROR [2]: \\\\?\\hid#no-such-device appears to be opened exclusively.\n\n"));
    bench.api.AddDevice("held", bench.device, true);
    EXPECT_FALSE(bench.connector->Open("held"));
    EXPECT_TRUE(log.Contains("OpenHIDDevice: ERROR [32]: held appears to be opened exclusively.\n\n"));
    EXPECT_FALSE(bench.connector->IsOpen());

    EXPECT_TRUE(bench.connector->Open(kPath));
    EXPECT_TRUE(
        log.Contains(std::string("OpenHIDDevice: SUCCESS: opened a handle to instance: ") + kPath + "\n"));
    EXPECT_TRUE(bench.connector->IsOpen());
    EXPECT_TRUE(bench.connector->Close());
    EXPECT_FALSE(bench.connector->IsOpen());
    EXPECT_EQ(CSimulatedHidApi::Counters().closes, 1u);
}

TEST(WinVcpHIDConnector, ReportsAreExactly512Bytes) {
    SHidBench bench("studio-32");
    ASSERT_TRUE(bench.connector->Open(kPath));
    EXPECT_TRUE(bench.connector->SetFeature({0xE5, 0x04, 0x00}));
    EXPECT_EQ(CSimulatedHidApi::Counters().lastReportLength, 512u);
    ByteBuffer status{0xE5, 0x04, 0x00};
    EXPECT_TRUE(bench.connector->GetFeature(status));
    EXPECT_EQ(status.size(), 512u);

    CLogCapture log;
    const unsigned callsBefore = CSimulatedHidApi::Counters().setFeatures;
    EXPECT_FALSE(bench.connector->SetFeature(ByteBuffer(600, 0xAA)));
    ByteBuffer tooBig(600, 0x00);
    EXPECT_FALSE(bench.connector->GetFeature(tooBig));
    EXPECT_EQ(CSimulatedHidApi::Counters().setFeatures, callsBefore);
    EXPECT_EQ(log.Asserts(), (std::vector<std::string>{"ERROR: SetFeature databuf too big",
                                                       "ERROR: GetFeature databuf too big"}));
    EXPECT_TRUE(log.Contains("SetFeature: ERROR: SetFeature can't handle commandBuf size > 512\n"));

    bench.device->FailSetFeature(1);
    EXPECT_FALSE(bench.connector->SetFeature({0xE5, 0x04, 0x00}));
    EXPECT_TRUE(log.Contains("HidD_SetFeature returned an error: [31]\n\n"));
    bench.connector->Close();
    EXPECT_FALSE(bench.connector->SetFeature({0xE5}));
    EXPECT_EQ(log.Asserts().back(), "SetFeature: ERROR: device is not open");
}

TEST(WinVcpHIDConnector, ADisplayObjectRunsEndToEnd) {
    SHidBench bench("studio-32");
    ASSERT_TRUE(bench.connector->Open(kPath));
    bench.device->SetBusyPolls(1);
    CLogCapture log;
    UiDisplayDelegate display(bench.connector, 0x1075);
    ASSERT_TRUE(display.Initialize());
    EXPECT_EQ(display.MonitorName(), "Studio 32");
    EXPECT_EQ(bench.connector->SerialNumber(-1), bench.display->Model().serialText);
    EXPECT_EQ(display.FirmwareVersionText(), "6.1.0");
    EXPECT_TRUE(display.SetVCPValueVerify(vcpC_Contrast, 65, 1));
    EXPECT_TRUE(display.SetPowerLEDBrightness(3));
    EXPECT_TRUE(display.Save());
    EXPECT_EQ(bench.display->SavedValue(vcpC_LedBrightness), 3);
    EXPECT_TRUE(display.SetContrast(10));
    EXPECT_TRUE(display.Revert());
    EXPECT_EQ(bench.display->Value(vcpC_Contrast), 65);
    EXPECT_TRUE(log.Asserts().empty());
}

TEST(WinVcpHIDConnector, ACollectionWindowsKeepsOpensWithAccessZeroForFeatureReports) {
    SHidBench bench("studio-32");
    for (uint32_t refusal : {5u, 32u}) {
        SCOPED_TRACE(refusal);
        bench.api.SetDeviceTraits(kPath, refusal, 512);
        CLogCapture log;
        ASSERT_TRUE(bench.connector->Open(kPath));
        EXPECT_EQ(CSimulatedHidApi::Counters().lastOpenAccess, 0u);
        EXPECT_EQ(CSimulatedHidApi::Counters().lastOpenFlags, static_cast<unsigned>(FILE_FLAG_OVERLAPPED));
        EXPECT_TRUE(log.Contains(std::string("OpenFeatureHandle: ") + kPath +
                                 " refused reading and writing [" + std::to_string(refusal) +
                                 "]; opened with access 0 for feature reports\n"));
        UiDisplayDelegate display(bench.connector, 0x1075);
        EXPECT_TRUE(display.Initialize());
        EXPECT_TRUE(display.SetContrast(33));
        EXPECT_EQ(bench.display->Value(vcpC_Contrast), 33);
        bench.connector->Close();
    }
    bench.api.SetDeviceTraits(kPath, 0, 512);
    CLogCapture log;
    ASSERT_TRUE(bench.connector->Open(kPath));
    EXPECT_EQ(CSimulatedHidApi::Counters().lastOpenAccess,
              static_cast<unsigned>(GENERIC_READ | GENERIC_WRITE));
    EXPECT_TRUE(
        log.Contains(std::string("OpenFeatureHandle: ") + kPath + " opened for reading and writing\n"));
}

TEST(WinVcpHIDConnector, ReportsTakeTheCollectionsLengthWhenItIsLonger) {
    SHidBench bench("studio-32");
    bench.api.SetDeviceTraits(kPath, 0, 1025);
    CLogCapture log;
    ASSERT_TRUE(bench.connector->Open(kPath));
    EXPECT_EQ(bench.connector->ReportSize(), 1025u);
    EXPECT_TRUE(log.Contains("CWinVcpHIDConnector: feature reports of 1025 bytes\n"));
    UiDisplayDelegate display(bench.connector, 0x1075);
    ASSERT_TRUE(display.Initialize());
    EXPECT_EQ(CSimulatedHidApi::Counters().lastReportLength, 1025u);
    ByteBuffer longStatusRequest(600, 0x00);
    longStatusRequest[0] = 0xE5;
    longStatusRequest[1] = 0x04;
    EXPECT_TRUE(bench.connector->SetFeature(longStatusRequest));
    EXPECT_FALSE(bench.connector->SetFeature(ByteBuffer(1026, 0x00)));
    EXPECT_TRUE(log.Contains("SetFeature: ERROR: SetFeature can't handle commandBuf size > 1025\n"));
}

TEST(WinVcpHIDConnector, AHungDeviceIsGivenUpOnAfterTheTimeOut) {
    SHidBench bench("studio-32");
    ASSERT_TRUE(bench.connector->Open(kPath));
    bench.connector->SetTransferTimeout(50);
    bench.api.SetHung(kPath, true);
    CLogCapture log;
    const DWORD start = GetTickCount();
    EXPECT_FALSE(bench.connector->SetFeature({0xE5, 0x04, 0x00}));
    ByteBuffer status{0xE5, 0x04, 0x00};
    EXPECT_FALSE(bench.connector->GetFeature(status));
    EXPECT_LT(GetTickCount() - start, 2000u);
    EXPECT_EQ(CSimulatedHidApi::Counters().cancels, 2u);
    EXPECT_TRUE(log.Contains(
        "CWinVcpHIDConnector: the device did not take the feature report within 50 ms; cancelled\n"));
    EXPECT_TRUE(log.Contains("HidD_SetFeature returned an error: [1460]\n\n"));  // ERROR_TIMEOUT

    // It answers again once the firmware does.
    bench.api.SetHung(kPath, false);
    EXPECT_TRUE(bench.connector->SetFeature({0xE5, 0x04, 0x00}));
    EXPECT_EQ(CWinVcpHIDConnector::kTransferTimeoutMs, 1000u);
}
