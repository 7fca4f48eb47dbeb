#include <gtest/gtest.h>

#include "DdcPackets.h"
#include "I2CConnectorDP.h"
#include "LogCapture.h"
#include "VirtualBench.h"

using namespace std::chrono_literals;

namespace {

// The common half over raw bytes to a virtual display, as an I2C master would carry them.
class CRawI2CConnectorDP : public CI2CConnectorDP {
public:
    explicit CRawI2CConnectorDP(std::shared_ptr<CVirtualDisplay> display) : mDisplay(std::move(display)) {}
    bool IsOpen() const override { return true; }
    ByteBuffer SendRequest(const ByteBuffer& toSend_I, double delay_I, unsigned expectedSize_I,
                           int32_t) override {
        expectedSizes.push_back(expectedSize_I);
        ByteBuffer reply = mDisplay->Handle(toSend_I);
        Clock::PauseSeconds(delay_I);
        return reply;
    }
    std::vector<unsigned> expectedSizes;

private:
    std::shared_ptr<CVirtualDisplay> mDisplay;
};

}  // namespace

TEST(I2CConnectorDP, CapabilitiesAndFirmwareComeAsVendorTables) {
    SVirtualBench bench("canvas-32-pro");
    CRawI2CConnectorDP connector(bench.display);
    EXPECT_EQ(connector.GetType(), 3u);
    EXPECT_EQ(BuildTableReadRequest(0xF3, 0x001F),
              (ByteBuffer{0x6E, 0x51, 0x84, 0xE2, 0xF3, 0x00, 0x1F, 0xB5}));

    const std::string& caps = bench.display->CapabilitiesString();
    EXPECT_EQ(connector.CapabilitiesString(), caps);
    const size_t chunks = (caps.size() + 30) / 31;
    EXPECT_EQ(bench.display->CountRequests(0xE2), chunks + 1);  // the last one is answered with 6E 80
    for (unsigned size : connector.expectedSizes) {
        EXPECT_EQ(size, 37u);
    }
    EXPECT_EQ(bench.clock.Pauses(), std::vector<std::chrono::microseconds>(chunks + 1, 50ms));

    EXPECT_EQ(connector.FWVersion(), (SFirmwareVersion{3, 2, 0, 5, 0}));
}

TEST(I2CConnectorDP, AChunkIsAskedForUpToSixTimes) {
    SVirtualBench bench("studio-24");
    CRawI2CConnectorDP connector(bench.display);
    CLogCapture log;
    bench.display->Faults().FailNext(EFault::CorruptChecksum, 3, 0xE2);
    bench.display->Faults().FailNext(EFault::NoReply, 2, 0xE2);
    EXPECT_EQ(connector.CapabilitiesString(), bench.display->CapabilitiesString());

    bench.display->Faults().FailNext(EFault::TruncatedReply, 6, 0xE2);
    EXPECT_EQ(connector.CapabilitiesString(), "");
    EXPECT_TRUE(log.Contains("CI2CConnectorDP::ReadVendorTable: giving up on table 0xF3 at 0\n"));
    bench.display->Faults().FailNext(EFault::NoReply, 6, 0xE2);
    EXPECT_EQ(connector.FWVersion(), SFirmwareVersion{});
    EXPECT_TRUE(log.Contains("CI2CConnectorDP::FWVersion - failed\n"));
}

TEST(I2CConnectorDP, EdidNameAndSerialOverTheVendorCommand) {
    SVirtualBench bench("canvas-16-go");
    CRawI2CConnectorDP connector(bench.display);
    EXPECT_EQ(connector.ReadEDID(-1), bench.display->Edid());
    EXPECT_EQ(connector.MonitorName(), "Canvas 16 Go");
    EXPECT_EQ(connector.SerialNumber(-1), bench.display->Model().serialText);
    // Name and serial share one read: factory mode on, 16 chunks, off.
    EXPECT_EQ(bench.display->CountRequests(0xC0), 2 * 18u);
    EXPECT_TRUE(connector.SetFactoryMode(true));
    EXPECT_TRUE(bench.display->InFactoryMode());

    CLogCapture log;
    EXPECT_FALSE(connector.Open("COM3"));
    EXPECT_FALSE(connector.Open(0));
    EXPECT_EQ(log.Asserts(), (std::vector<std::string>{"This is only used by serial connections",
                                                       "This is not used by display port connections"}));
}
