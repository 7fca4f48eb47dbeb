#include <gtest/gtest.h>

#include "CDdcI2CConnector.h"
#include "CVirtualMpsseEngine.h"
#include "DdcPackets.h"
#include "MpsseI2CMaster.h"
#include "MpsseOpcodes.h"
#include "VirtualBench.h"

namespace {

// The real MPSSE I2C master writing its command streams into the emulated engine.
class CEngineChannel : public IMpsseChannel {
public:
    explicit CEngineChannel(CVirtualMpsseEngine& engine) : mEngine(engine) {}
    bool Write(const ByteBuffer& bytes_I) override {
        mEngine.Write(bytes_I);
        return true;
    }
    bool Read(size_t count_I, ByteBuffer& bytes_O) override {
        if (mEngine.Queued() < count_I) {
            return false;
        }
        bytes_O = mEngine.Read(count_I);
        return true;
    }

private:
    CVirtualMpsseEngine& mEngine;
};

class CBridgeConnector : public CDdcI2CConnector {
public:
    explicit CBridgeConnector(std::shared_ptr<CVirtualDisplay> display)
        : engine(std::move(display)), channel(engine) {}
    unsigned GetType() const override { return eConnectorFTDI; }
    using CDdcI2CConnector::Open;
    bool Open(int32_t) override {
        auto master = std::make_unique<CMpsseI2CMaster>(channel);
        if (!master->Initialise()) {
            return false;
        }
        SetMaster(std::move(master));
        return true;
    }
    CVirtualMpsseEngine engine;
    CEngineChannel channel;
};

}  // namespace

TEST(VirtualMpsseEngine, TheRealMasterReachesTheDisplayThroughIt) {
    SVirtualBench bench("canvas-13-hd");
    CBridgeConnector connector(bench.display);
    ASSERT_TRUE(connector.Open(0));

    // A set and a get travel as DDC/CI packets on the bus, byte for byte.
    EXPECT_EQ(connector.SendRequest(BuildSetVCPRequest(0x10, 42), 0.05, 38, 0),
              (ByteBuffer{0x6E, 0x80, 0xBE}));
    EXPECT_EQ(bench.display->Value(0x10), 42);
    const ByteBuffer reply = connector.SendRequest(BuildGetVCPRequest(0x10), 0.04, 38, 0);
    ASSERT_GE(reply.size(), 10u);
    EXPECT_EQ(reply[4], 0x10);
    EXPECT_EQ((reply[8] << 8) | reply[9], 42);
    ASSERT_FALSE(bench.display->Transactions().empty());
    EXPECT_EQ(bench.display->Transactions().front().request, BuildSetVCPRequest(0x10, 42));

    // The EDID from its own address gives the serial number discovery pairs by.
    EXPECT_EQ(connector.SerialNumber(-1), bench.display->Model().serialText);
    EXPECT_EQ(connector.ReadEDID(-1), bench.display->Edid());
}

TEST(VirtualMpsseEngine, AnswersTheEchoAndRefusesStrangeAddresses) {
    CVirtualMpsseEngine engine(std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset("canvas-13-hd")));
    engine.Write({0xAA});
    EXPECT_EQ(engine.Read(2), (ByteBuffer{0xFA, 0xAA}));

    // A command split over two writes is taken when it is complete.
    ByteBuffer stream = CMpsseI2CMaster::StartStream();
    const ByteBuffer address = CMpsseI2CMaster::WriteBytesStream({0x42 << 1});
    stream.insert(stream.end(), address.begin(), address.end());
    engine.Write(ByteBuffer(stream.begin(), stream.begin() + 5));
    engine.Write(ByteBuffer(stream.begin() + 5, stream.end()));
    EXPECT_EQ(engine.Read(1), ByteBuffer{0x01});  // NACK: nobody at 0x42
    engine.Write(CMpsseI2CMaster::StopStream());
    EXPECT_EQ(engine.Queued(), 0u);
}

TEST(VirtualMpsseEngine, ADisplayThatStretchesTheClockIsReachedOnlyWithOpenDrainLinesAndAdaptiveClocking) {
    SVirtualBench bench("canvas-13-hd");
    CBridgeConnector connector(bench.display);
    connector.engine.SetDisplayStretchesClock(true);
    ASSERT_TRUE(connector.Open(0));
    EXPECT_EQ(connector.engine.OpenDrainPins(), Mpsse::kSclPin | Mpsse::kSdaPin);
    EXPECT_EQ(connector.SendRequest(BuildSetVCPRequest(0x10, 42), 0.05, 38, 0),
              (ByteBuffer{0x6E, 0x80, 0xBE}));
    EXPECT_EQ(bench.display->Value(0x10), 42);

    // Set-up without the drive-only-zero command: SCL is driven push-pull and fights the display.
    CVirtualMpsseEngine pushPull(bench.display);
    pushPull.SetDisplayStretchesClock(true);
    ByteBuffer setup = CMpsseI2CMaster::SetupStream();
    setup.erase(setup.begin() + 3, setup.begin() + 6);
    pushPull.Write(setup);
    pushPull.Write(CMpsseI2CMaster::StartStream());
    pushPull.Write(CMpsseI2CMaster::WriteBytesStream({0x37 << 1}));
    EXPECT_EQ(pushPull.Read(1), ByteBuffer{0x01});  // NACK

    // Open drain without adaptive clocking: the address gets through, the bytes after it, clocked
    // while the display still holds SCL low, do not.
    CVirtualMpsseEngine unsensed(bench.display);
    unsensed.SetDisplayStretchesClock(true);
    setup = CMpsseI2CMaster::SetupStream();
    ASSERT_EQ(setup[1], Mpsse::kEnableAdaptiveClocking);
    setup[1] = Mpsse::kDisableAdaptiveClocking;
    unsensed.Write(setup);
    unsensed.Write(CMpsseI2CMaster::StartStream());
    unsensed.Write(CMpsseI2CMaster::WriteBytesStream({0x37 << 1, 0x51}));
    EXPECT_EQ(unsensed.Read(2), (ByteBuffer{0x00, 0x01}));  // the address is taken, the next byte is not
    unsensed.Write(CMpsseI2CMaster::StopStream());
    const uint16_t before = bench.display->Value(0x10);
    EXPECT_EQ(connector.SendRequest(BuildSetVCPRequest(0x10, 43), 0.05, 38, 0),
              (ByteBuffer{0x6E, 0x80, 0xBE}));
    EXPECT_EQ(bench.display->Value(0x10), 43);  // the connector's own engine waits, as set up
    EXPECT_NE(before, 43);
}
