#include <gtest/gtest.h>

#include <deque>

#include "CVcpHIDConnector.h"
#include "CVirtualHidDevice.h"
#include "DdcPackets.h"
#include "LogCapture.h"
#include "UiDisplayDelegate.h"
#include "VirtualBench.h"
#include "VirtualRoutes.h"

namespace {

struct SHidBench {
    CVirtualClock clock;
    CScopedClock scoped{clock};
    std::shared_ptr<CVirtualDisplay> display;
    std::shared_ptr<CVirtualHidDevice> device;
    std::shared_ptr<CSimHidConnector> connector;

    explicit SHidBench(const char* key) {
        display = std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset(key));
        device = std::make_shared<CVirtualHidDevice>(display);
        connector = std::make_shared<CSimHidConnector>(device);
        connector->Open("\\\\?\\hid#vid_2f4a&pid_03a6&mi_01#virtual");
    }
};

ByteBuffer Sealed(ByteBuffer bytes) {
    bytes.push_back(Checksum(bytes, 0x50));
    return bytes;
}

}  // namespace

TEST(VcpHIDConnector, RequestsTravelInFeatureReports) {
    SHidBench bench("studio-24");
    // A set of 0x10 to 300 goes out as one report of kind 2 and is acknowledged.
    EXPECT_EQ(bench.connector->SendRequest(BuildSetVCPRequest(0x10, 300), 0.13, 38, 0),
              (ByteBuffer{0x6E, 0x80, 0xBE}));
    ASSERT_GE(bench.connector->reports.size(), 2u);
    EXPECT_EQ(bench.connector->reports[0],
              (ByteBuffer{0xE5, 0x04, 0x02, 0x00, 0x00, 0x6E, 0x51, 0x84, 0x03, 0x10, 0x01, 0x2C, 0x85}));
    EXPECT_EQ(bench.connector->reports[1], (ByteBuffer{0xE5, 0x04, 0x00}));
    EXPECT_EQ(bench.connector->BuildCommand(0x01, {0x12}), (ByteBuffer{0x6E, 0x51, 0x82, 0x01, 0x12, 0xAE}));
    EXPECT_EQ(bench.connector->BuildCommand(0xF3, {0x01, 0x20}), BuildCapabilitiesRequest(0x0120));
    CLogCapture log;
    EXPECT_TRUE(bench.connector->BuildCommand(0x0C, {}).empty());
    EXPECT_TRUE(log.Contains("BuildCommand - error - command not supported: 12"));

    // Values above 255 read back modulo 256 on this path.
    bench.display->SetValueFromMenu(vcpC_Contrast, 0x0123);
    EXPECT_EQ(bench.connector->SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0),
              BuildSimulatedReply(0x01, 0x12, 0x23, 100));
    // No answer from the display: no made-up value.
    bench.display->Faults().FailNext(EFault::NoReply);
    EXPECT_TRUE(bench.connector->SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0).empty());
    EXPECT_TRUE(bench.connector->SendRequest(BuildGetVCPRequest(0x99), 0.07, 38, 0).empty());

    // A failed report still yields the acknowledgement of a set: the verified write catches it.
    bench.device->FailSetFeature(1);
    EXPECT_EQ(bench.connector->SendRequest(BuildSetVCPRequest(0x12, 5), 0.07, 38, 0),
              (ByteBuffer{0x6E, 0x80, 0xBE}));
    EXPECT_TRUE(log.Contains("CVcpHIDConnector::SubmitRequest - SetFeature failed"));

    log.Clear();
    EXPECT_TRUE(bench.connector->SendRequest({0x6E, 0x51, 0x82}, 0.07, 38, 0).empty());
    EXPECT_TRUE(
        bench.connector->SendRequest({0x6E, 0x51, 0x83, 0xF3, 0x00, 0x00, 0x4F}, 0.07, 38, 0).empty());
    EXPECT_EQ(log.Asserts(), (std::vector<std::string>{
                                 "Zero-length request vector", "Oops - unknown or unsupported VCP op",
                                 "Oops - unsupported vcpCode", "Oops - unknown or unsupported VCP op"}));
    EXPECT_EQ(bench.connector->SubmitRequest({0x6E}, 5), ByteBuffer{0x00});
    EXPECT_EQ(log.Asserts().back(), "Oops - unsupported request");
}

TEST(VcpHIDConnector, StatusIsPolledFourTimesAtMost) {
    SHidBench bench("studio-24");
    bench.device->SetBusyPolls(2);
    EXPECT_FALSE(bench.connector->SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0).empty());
    EXPECT_EQ(bench.clock.PausesMs(), (std::vector<long long>{100, 100}));
    EXPECT_EQ(bench.device->StatusReads(), 3u);

    // Busy throughout: four reads, each followed by a 100 ms sleep, then the last report counts.
    bench.clock.ClearPauses();
    bench.device->SetBusyPolls(10);
    ByteBuffer status = bench.connector->SubmitRequest(BuildGetVCPRequest(0x12), 3);
    EXPECT_EQ(bench.clock.PausesMs(), (std::vector<long long>{100, 100, 100, 100}));
    EXPECT_EQ(bench.device->StatusReads(), 7u);
    ASSERT_GT(status.size(), 4u);
    EXPECT_TRUE(status[4] == 0x01 || status[4] == 0x05);
}

TEST(VcpHIDConnector, CapabilitiesNameSerialAndFirmwareAreReadOnceAndCached) {
    SHidBench bench("canvas-22-pro");
    EXPECT_EQ(bench.connector->CapabilitiesString(), bench.display->CapabilitiesString());
    EXPECT_EQ(bench.connector->MonitorName(), "Canvas 22 Pro");
    EXPECT_EQ(bench.connector->SerialNumber(-1), bench.display->Model().serialText);
    EXPECT_EQ(bench.connector->FWVersion(), (SFirmwareVersion{3, 1, 2, 5, 0}));
    bench.display->ClearTransactions();
    bench.connector->CapabilitiesString();
    bench.connector->MonitorName();
    bench.connector->SerialNumber(-1);
    bench.connector->FWVersion();
    EXPECT_TRUE(bench.display->Transactions().empty());

    // Close forgets them.
    bench.connector->Close();
    bench.connector->Open("path");
    bench.connector->MonitorName();
    EXPECT_EQ(bench.display->CountRequests(0x01, 0xF2), 1u);

    CLogCapture log;
    EXPECT_TRUE(bench.connector->ReadEDID(-1).empty());
    EXPECT_FALSE(bench.connector->Open(1));
    EXPECT_EQ(log.Asserts(), (std::vector<std::string>{"Not supported by this connector.",
                                                       "Not supported by this connector."}));
}

TEST(VcpHIDConnector, ACapabilitiesReadEndsAtOnceOnAnEmptyFirstReply) {
    // A scripted device whose first status carries length byte 0x83: no data at all.
    class CEmptyCapsConnector : public CVcpHIDConnector {
    public:
        bool IsOpen() const override { return true; }
        bool SetFeature(const ByteBuffer&) override { return true; }
        bool GetFeature(ByteBuffer& report_IO) override {
            ++gets;
            report_IO = ByteBuffer(512, 0x00);
            ByteBuffer reply = Sealed({0x6E, 0x83, 0xE3, 0x00, 0x00});
            std::copy(reply.begin(), reply.end(), report_IO.begin() + 6);
            return true;
        }
        int gets = 0;
    } connector;
    EXPECT_EQ(connector.CapabilitiesString(), "");
    EXPECT_EQ(connector.gets, 1);
}

TEST(VcpHIDConnector, EndlessEmptyFragmentsDoNotHangTheCapabilitiesRead) {
    // Every status carries a 32-byte fragment of NULs at whatever offset is asked for.
    class CNulCapsConnector : public CVcpHIDConnector {
    public:
        bool IsOpen() const override { return true; }
        bool SetFeature(const ByteBuffer&) override { return true; }
        bool GetFeature(ByteBuffer& report_IO) override {
            report_IO = ByteBuffer(512, 0x00);
            ByteBuffer reply{0x6E, 0x80 | 35, 0xE3, 0x00, 0x00};
            reply.resize(37, 0x00);
            std::copy(reply.begin(), reply.end(), report_IO.begin() + 6);
            return true;
        }
    } connector;
    CLogCapture log(false);
    EXPECT_EQ(connector.CapabilitiesString(), "");
}

TEST(VcpHIDConnector, ADisplayObjectRunsEndToEndOverHID) {
    SHidBench bench("studio-32");
    CLogCapture log;
    UiDisplayDelegate display(bench.connector, 0x1075);
    ASSERT_TRUE(display.Initialize());
    EXPECT_EQ(display.MonitorName(), "Studio 32");
    EXPECT_EQ(display.FirmwareVersionText(), "6.1.0");
    EXPECT_EQ(display.GetSetting(ESetting::Contrast).value, 50);
    EXPECT_TRUE(display.SetVCPValueVerify(vcpC_Contrast, 65, 1));
    EXPECT_EQ(bench.display->Value(vcpC_Contrast), 65);
    EXPECT_TRUE(display.SetBrightness(20));
    EXPECT_TRUE(display.Save());
    EXPECT_EQ(bench.display->SavedValue(vcpC_BacklightLevelWhite), 20);
    EXPECT_TRUE(display.SetContrast(10));
    EXPECT_TRUE(display.Revert());
    EXPECT_EQ(bench.display->Value(vcpC_Contrast), 65);
    EXPECT_TRUE(log.Asserts().empty());

    // A feature report that fails is caught by the verified write's read-back.
    bench.device->FailSetFeature(1);
    EXPECT_TRUE(display.SetVCPValueVerify(vcpC_Contrast, 70, 2));
    EXPECT_EQ(bench.display->Value(vcpC_Contrast), 70);
}
