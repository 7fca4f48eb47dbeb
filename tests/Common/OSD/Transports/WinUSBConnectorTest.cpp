#include <gtest/gtest.h>

#include "CVirtualSerialPort.h"
#include "DdcPackets.h"
#include "LogCapture.h"
#include "ScriptedSerialPort.h"
#include "TestData.h"
#include "UiDisplayDelegate.h"
#include "VirtualBench.h"
#include "WinUSBConnector.h"

using namespace std::chrono_literals;

namespace {

struct SSerialBench {
    CVirtualClock clock;
    CScopedClock scoped{clock};
    std::shared_ptr<CVirtualDisplay> display;
    CVirtualSerialPort* port = nullptr;
    std::shared_ptr<CWinUSBConnector> connector;

    explicit SSerialBench(const char* key) {
        display = std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset(key));
        auto serial = std::make_unique<CVirtualSerialPort>(display);
        port = serial.get();
        connector = std::make_shared<CWinUSBConnector>(std::move(serial));
        connector->Open("COM5");
    }
};

}  // namespace

TEST(WinUSBConnector, RepliesGetTheirChecksumFromTheConnector) {
    SSerialBench bench("studio-24");
    EXPECT_EQ(bench.connector->GetType(), 0u);
    EXPECT_EQ(bench.connector->SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0),
              BuildSimulatedReply(0x01, 0x12, 50, 100));
    EXPECT_EQ(bench.clock.PausesMs(), (std::vector<long long>{70}));

    // Nothing answered: the lone checksum byte 50, which the display object rejects.
    CLogCapture log;
    bench.display->Faults().FailNext(EFault::NoReply);
    EXPECT_EQ(bench.connector->SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0), ByteBuffer{0x50});
    EXPECT_TRUE(log.Contains("ReadFile empty (0)\n"));

    // Error 22 closes the port for good.
    bench.port->FailNextWrite(22);
    EXPECT_TRUE(bench.connector->SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0).empty());
    EXPECT_TRUE(log.Contains("Failed to write the data to the display\n"));
    EXPECT_TRUE(log.Contains("WriteFile failed (22)\n"));
    EXPECT_FALSE(bench.connector->IsOpen());
    EXPECT_FALSE(bench.connector->Open(0));
    EXPECT_EQ(log.Asserts(), std::vector<std::string>{"This is not used by serial connections"});

    // Unplugged, the port does not open again; plugged back in, it does.
    bench.port->SetUnplugged(true);
    EXPECT_FALSE(bench.connector->Open("COM5"));
    bench.port->SetUnplugged(false);
    EXPECT_TRUE(bench.connector->Open("COM5"));
    EXPECT_EQ(bench.connector->SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0),
              BuildSimulatedReply(0x01, 0x12, 50, 100));
}

TEST(WinUSBConnector, APortWhoseDeviceWentAwayWhileReadingIsClosedASilentOneIsNot) {
    CVirtualClock clock;
    CScopedClock scoped{clock};
    auto scripted = std::make_unique<CScriptedSerialPort>([](size_t) { return ByteBuffer{}; });
    CScriptedSerialPort* port = scripted.get();
    CWinUSBConnector connector(std::move(scripted));
    ASSERT_TRUE(connector.Open("COM7"));
    // Silence is a display that did not answer: the port stays open.
    connector.SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0);
    EXPECT_TRUE(connector.IsOpen());
    // A read that fails as a pulled-out bridge closes it, with no reply.
    port->Unplug();
    EXPECT_TRUE(connector.SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0).empty());
    EXPECT_FALSE(connector.IsOpen());
}

TEST(WinUSBConnector, CapabilitiesInChunksAndTheEdidInOneLongAnswer) {
    SSerialBench bench("slate-16");
    const std::string& caps = bench.display->CapabilitiesString();
    CLogCapture log;
    EXPECT_EQ(bench.connector->CapabilitiesString(), caps);
    std::vector<long long> expected((caps.size() + 31) / 32 + 1, 200);
    expected.push_back(100);
    EXPECT_EQ(bench.clock.PausesMs(), expected);
    EXPECT_TRUE(log.Asserts().empty());

    // A captured 384-byte EDID arrives over two 256-byte reads.
    bench.display->SetEdid(TestData::ReadBytes("edid/ed_dell-up2715k-dp_DEL_40B6.bin"));
    bench.clock.ClearPauses();
    const unsigned readsBefore = bench.port->Reads();
    const ByteBuffer edid = bench.connector->ReadEDID(-1);
    EXPECT_EQ(edid, bench.display->Edid());
    EXPECT_EQ(bench.port->Reads() - readsBefore, 3u);
    EXPECT_EQ(bench.clock.PausesMs(), (std::vector<long long>{700}));
    EXPECT_EQ(bench.connector->SerialNumber(-1), "F1JCM57D140S");
    EXPECT_EQ(bench.connector->FWVersion(), (SFirmwareVersion{1, 4, 0, 5, 0}));
}

TEST(WinUSBConnector, CapabilitiesFragmentsAre32BytesAndTheEndPausesAndTrimsAlways) {
    SSerialBench bench("studio-24");
    const std::string& caps = bench.display->CapabilitiesString();
    ASSERT_GT(caps.size(), 64u);
    CLogCapture log;
    EXPECT_EQ(bench.connector->CapabilitiesString(), caps);
    EXPECT_TRUE(log.Asserts().empty());
    // The offsets asked for advance by 32 bytes, the data one fragment carries, and the last
    // one asks past the end.
    std::vector<size_t> offsets;
    for (const auto& transaction : bench.display->Transactions()) {
        offsets.push_back(static_cast<size_t>((transaction.request[4] << 8) | transaction.request[5]));
    }
    std::vector<size_t> expected;
    for (size_t offset = 0; offset < caps.size(); offset += 32) {
        expected.push_back(offset);
    }
    expected.push_back(caps.size());
    EXPECT_EQ(offsets, expected);

    // A display that answers nothing: the read still ends with the 100 ms pause and the trim.
    bench.display->Faults().SetRate(1.0, 1, {EFault::NoReply});
    bench.clock.ClearPauses();
    log.Clear();
    EXPECT_EQ(bench.connector->CapabilitiesString(), "");
    EXPECT_EQ(bench.clock.PausesMs(), (std::vector<long long>{200, 100}));
    EXPECT_EQ(log.Asserts(), (std::vector<std::string>{"!capabilitiesStr.empty()", "caps[0] == '('",
                                                       "capsStr_I[0] == '('", "!capabilitiesStr.empty()"}));
}

TEST(WinUSBConnector, ADisplayObjectRunsOverTheSerialLogic) {
    SSerialBench bench("canvas-21");
    CLogCapture log;
    UiDisplayDelegate display(bench.connector, 0x1046);
    ASSERT_TRUE(display.Initialize());
    EXPECT_EQ(display.MonitorName(), "Canvas 21");
    EXPECT_TRUE(display.SetColorTemperature(cpc_9300K));
    EXPECT_EQ(bench.display->Value(vcpC_ColorOffsetRed), cpc_9300K);
    EXPECT_TRUE(display.Save());
    EXPECT_TRUE(display.FactoryReset());
    EXPECT_EQ(bench.display->Value(vcpC_ColorOffsetRed), cpc_6500K);
    EXPECT_TRUE(log.Asserts().empty());
}

TEST(WinUSBConnector, ALineThatNeverStopsSendingEndsEachExchange) {
    CVirtualClock clock;
    CScopedClock scoped{clock};
    // Bytes without pause, as from a port at the wrong baud rate.
    auto port =
        std::make_unique<CScriptedSerialPort>([](size_t maxBytes_I) { return ByteBuffer(maxBytes_I, 0x6E); });
    CScriptedSerialPort* babbling = port.get();
    CWinUSBConnector connector(std::move(port));
    ASSERT_TRUE(connector.Open("COM7"));
    CLogCapture log;

    EXPECT_TRUE(connector.SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0).empty());
    EXPECT_EQ(babbling->Reads(), 4u);  // 1024 bytes, then the exchange is given up
    EXPECT_TRUE(
        log.Contains("CWinUSBConnector::SendRequest - the line does not stop sending; 1024 bytes dropped\n"));

    // The capabilities read ends at its first exchange instead of filling 32 KB from noise.
    clock.ClearPauses();
    EXPECT_EQ(connector.CapabilitiesString(), "");
    EXPECT_EQ(clock.PausesMs(), (std::vector<long long>{200, 100}));
    EXPECT_EQ(babbling->Reads(), 8u);
}
