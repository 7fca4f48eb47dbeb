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
