#include <gtest/gtest.h>

#include "CDdcI2CConnector.h"
#include "DdcPackets.h"
#include "LogCapture.h"
#include "UiDisplayDelegate.h"
#include "VirtualBench.h"
#include "VirtualRoutes.h"

TEST(DdcI2CConnector, PacketsGoToTheAddressTheirFirstByteNames) {
    SVirtualBench bench("studio-24");
    CBusConnector connector(bench.display);
    EXPECT_FALSE(connector.IsOpen());
    EXPECT_TRUE(connector.SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0).empty());
    ASSERT_TRUE(connector.Open(0));

    // The reply comes back at its own length, although 38 bytes were read.
    EXPECT_EQ(connector.SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0),
              BuildSimulatedReply(0x01, 0x12, 50, 100));
    EXPECT_EQ(bench.display->Transactions().back().request, BuildGetVCPRequest(0x12));
    EXPECT_EQ(connector.SendRequest(BuildSetVCPRequest(0x12, 30), 0.07, 38, 0),
              (ByteBuffer{0x6E, 0x80, 0xBE}));
    EXPECT_EQ(bench.display->Value(0x12), 30);
    EXPECT_EQ(bench.clock.PausesMs(), (std::vector<long long>{70, 70}));
    EXPECT_TRUE(connector.ScalarReset());

    CLogCapture log;
    connector.bus->NackNextWrites(1);
    EXPECT_TRUE(connector.SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0).empty());
    EXPECT_TRUE(log.Contains("CDdcI2CConnector::SendRequest: write to 0x37 not acknowledged\n"));
    connector.bus->NackNextReads(1);
    EXPECT_TRUE(connector.SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0).empty());
    EXPECT_TRUE(log.Contains("CDdcI2CConnector::SendRequest: read from 0x37 not acknowledged\n"));
    EXPECT_FALSE(connector.Open("COM1"));
    EXPECT_EQ(log.Asserts(), std::vector<std::string>{"This is only used by serial connections"});
}

TEST(DdcI2CConnector, ShortReadsAndNacksEndAsErrorTextsOfTheDisplayObject) {
    SVirtualBench bench("canvas-27-pro");
    auto connector = std::make_shared<CBusConnector>(bench.display);
    ASSERT_TRUE(connector->Open(0));
    UiDisplayDelegate display(connector, bench.display->Model().edidProductCode);
    CLogCapture log;
    ASSERT_TRUE(display.Initialize());
    EXPECT_EQ(display.MonitorName(), "Canvas 27 Pro");
    EXPECT_EQ(display.FirmwareVersionText(), "3.1.4");
    EXPECT_EQ(connector->ReadEDID(-1), bench.display->Edid());  // base block and its extension

    connector->bus->ShortenNextRead(6);
    EXPECT_EQ(display.GetVCPValue(vcpC_Contrast, true).error, "Send request unknown response");
    connector->bus->NackNextReads(1);
    EXPECT_EQ(display.GetVCPValue(vcpC_Contrast, true).error, "Send request failed");
    EXPECT_TRUE(display.GetVCPValue(vcpC_Contrast, true).valid);

    connector->bus->NackNextWrites(1);
    EXPECT_TRUE(display.SetContrast(41));  // the retry after 60 ms goes through
    EXPECT_EQ(bench.display->Value(vcpC_Contrast), 41);
    EXPECT_TRUE(display.Save());
    EXPECT_EQ(bench.display->SavedValue(vcpC_Contrast), 41);
    EXPECT_TRUE(log.Asserts().empty());

    connector->bus->NackNextWrites(1);
    EXPECT_TRUE(connector->ReadEDID(-1).empty());
    connector->bus->ShortenNextRead(127);  // a base block one byte short
    EXPECT_TRUE(connector->ReadEDID(-1).empty());
}
