#include "MpsseI2CMaster.h"

#include "DebugLog.h"
#include "MpsseOpcodes.h"

namespace {

using namespace Mpsse;

// Pin states of ADBUS: bit 0 SCL, bit 1 SDA out.
constexpr uint8_t kSclHighSdaHigh = 0x03;
constexpr uint8_t kSclHighSdaLow = 0x01;
constexpr uint8_t kSclLowSdaHigh = 0x02;
constexpr uint8_t kSclLowSdaLow = 0x00;
constexpr uint8_t kBothOutputs = 0x03;
constexpr uint8_t kSdaInput = 0x01;  // only SCL driven

// 60 MHz / ((1 + divisor) * 2) with three-phase clocking (x 2/3): 100 kHz.
constexpr uint16_t kDivisor100kHz = 199;
// Repeating a pin state holds it for the setup and hold times of standard-mode I2C.
constexpr int kHoldRepeats = 4;

void Pins(ByteBuffer& stream_IO, uint8_t value_I, uint8_t direction_I, int repeats_I = 1) {
    for (int i = 0; i < repeats_I; ++i) {
        stream_IO.insert(stream_IO.end(), {kSetLowBits, value_I, direction_I});
    }
}

}  // namespace

ByteBuffer CMpsseI2CMaster::SetupStream() {
    // Open-drain lines let a display hold SCL low; adaptive clocking makes the engine wait for it.
    ByteBuffer stream = {kDisableClockDivide5, kEnableAdaptiveClocking, kEnableThreePhaseClocking,
                         kDriveOnlyZero,       kSclPin | kSdaPin,       0x00};
    Pins(stream, kSclHighSdaHigh, kBothOutputs);
    stream.insert(stream.end(), {kSetClockDivisor, static_cast<uint8_t>(kDivisor100kHz & 0xFF),
                                 static_cast<uint8_t>(kDivisor100kHz >> 8), kLoopbackOff});
    return stream;
}

ByteBuffer CMpsseI2CMaster::StartStream() {
    ByteBuffer stream;
    Pins(stream, kSclHighSdaHigh, kBothOutputs, kHoldRepeats);
    Pins(stream, kSclHighSdaLow, kBothOutputs, kHoldRepeats);
    Pins(stream, kSclLowSdaLow, kBothOutputs);
    return stream;
}

ByteBuffer CMpsseI2CMaster::StopStream() {
    ByteBuffer stream;
    Pins(stream, kSclLowSdaLow, kBothOutputs, kHoldRepeats);
    Pins(stream, kSclHighSdaLow, kBothOutputs, kHoldRepeats);
    Pins(stream, kSclHighSdaHigh, kBothOutputs, kHoldRepeats);
    return stream;
}

ByteBuffer CMpsseI2CMaster::WriteBytesStream(const ByteBuffer& bytes_I) {
    ByteBuffer stream;
    for (uint8_t byte : bytes_I) {
        stream.insert(stream.end(), {kBytesOutFallingMsb, 0x00, 0x00, byte});
        Pins(stream, kSclLowSdaLow, kSdaInput);
        stream.insert(stream.end(), {kBitsInRisingMsb, 0x00});
        Pins(stream, kSclLowSdaHigh, kBothOutputs);
    }
    stream.push_back(kSendImmediate);
    return stream;
}

ByteBuffer CMpsseI2CMaster::ReadBytesStream(size_t count_I) {
    ByteBuffer stream;
    for (size_t i = 0; i < count_I; ++i) {
        const bool last = i + 1 == count_I;
        Pins(stream, kSclLowSdaLow, kSdaInput);
        stream.insert(stream.end(), {kBytesInRisingMsb, 0x00, 0x00});
        Pins(stream, kSclLowSdaLow, kBothOutputs);
        stream.insert(stream.end(), {kBitsOutFallingMsb, 0x00, static_cast<uint8_t>(last ? 0xFF : 0x00)});
        Pins(stream, kSclLowSdaHigh, kBothOutputs);
    }
    stream.push_back(kSendImmediate);
    return stream;
}

bool CMpsseI2CMaster::Initialise() {
    ByteBuffer echo;
    if (!mChannel.Write({kBadCommand}) || !mChannel.Read(2, echo) || echo[0] != kBadCommandEcho ||
        echo[1] != kBadCommand) {
        DLog("CMpsseI2CMaster::Initialise: the MPSSE engine does not answer\n");
        return false;
    }
    return mChannel.Write(SetupStream());
}

bool CMpsseI2CMaster::SendAndCheckAcks(const ByteBuffer& bytes_I) {
    ByteBuffer acks;
    if (!mChannel.Write(WriteBytesStream(bytes_I)) || !mChannel.Read(bytes_I.size(), acks)) {
        return false;
    }
    for (uint8_t ack : acks) {
        if ((ack & 0x01) != 0) {
            return false;  // NACK
        }
    }
    return true;
}

bool CMpsseI2CMaster::Write(uint8_t address7_I, const ByteBuffer& bytes_I) {
    ByteBuffer all;
    all.reserve(bytes_I.size() + 1);
    all.push_back(static_cast<uint8_t>(address7_I << 1));
    all.insert(all.end(), bytes_I.begin(), bytes_I.end());
    const bool acknowledged = mChannel.Write(StartStream()) && SendAndCheckAcks(all);
    mChannel.Write(StopStream());
    return acknowledged;
}

bool CMpsseI2CMaster::Read(uint8_t address7_I, size_t count_I, ByteBuffer& bytes_O) {
    bytes_O.clear();
    bool ok =
        mChannel.Write(StartStream()) && SendAndCheckAcks({static_cast<uint8_t>((address7_I << 1) | 1)});
    if (ok && count_I > 0) {
        ok = mChannel.Write(ReadBytesStream(count_I)) && mChannel.Read(count_I, bytes_O);
    }
    mChannel.Write(StopStream());
    return ok;
}
