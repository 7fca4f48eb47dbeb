#pragma once
// The MPSSE engine of an FTDI FT232H wired as an I2C master to a virtual display's bus: it
// takes the command bytes a D2XX host writes, follows the pins to find start and stop
// conditions, clocks bytes out to and in from the bus, and queues what the host reads back
// (acknowledge bits and data), as the engine does for the command set an I2C master uses.

#include <cstdint>
#include <deque>
#include <memory>

#include "ByteBuffer.h"
#include "CVirtualI2CBus.h"

class CVirtualMpsseEngine {
public:
    explicit CVirtualMpsseEngine(std::shared_ptr<CVirtualDisplay> display_I);

    void Write(const ByteBuffer& commands_I);
    size_t Queued() const { return mOut.size(); }
    // Up to count_I queued bytes.
    ByteBuffer Read(size_t count_I);
    void Reset();

    // A display that holds SCL low after each byte while it works on it. An SCL driven push-pull
    // fights it and nothing gets through; an open-drain SCL lets it, but an engine that does not
    // wait for SCL (adaptive clocking off) clocks the next byte's first bits while SCL is held
    // low, and the display misses them: it takes no byte after the first of a transfer, and
    // what is read after the first byte is not what it sent.
    void SetDisplayStretchesClock(bool stretches_I) { mDisplayStretchesClock = stretches_I; }
    bool AdaptiveClocking() const { return mAdaptiveClocking; }
    // The ADBUS pins set to drive only zero.
    uint8_t OpenDrainPins() const { return mOpenDrainPins; }

    CVirtualI2CBus& Bus() { return mBus; }

private:
    void SetPins(uint8_t value_I);
    void ClockByteOut(uint8_t byte_I);
    void AcknowledgeBit();
    void ClockByteIn();
    void Finish();
    // Whether a byte clocked now reaches the display whole, as it stretches the clock.
    bool ByteSurvivesStretching() const;

    CVirtualI2CBus mBus;
    std::deque<uint8_t> mOut;
    ByteBuffer mPending;  // the command bytes of an incomplete command
    uint8_t mOpenDrainPins = 0;
    bool mDisplayStretchesClock = false;
    bool mAdaptiveClocking = false;
    size_t mBytesThisTransfer = 0;  // clocked out or in since the start
    bool mScl = true;
    bool mSda = true;
    bool mInTransfer = false;
    bool mAddressed = false;
    bool mAcknowledged = true;
    uint8_t mAddress7 = 0;
    bool mReading = false;
    ByteBuffer mWritten;
    ByteBuffer mReadData;
    size_t mReadIndex = 0;
};
