#pragma once
// An I2C master on the MPSSE engine of an FTDI FT232H, as FTDI's application notes describe it:
// SCL on ADBUS0, SDA out on ADBUS1 and SDA in on ADBUS2 (wired together), three-phase data
// clocking at 100 kHz, SCL and SDA open-drain. Each operation is sent as one command stream; acknowledge bits
// come back as one byte each.

#include <cstdint>
#include <memory>

#include "ByteBuffer.h"
#include "I2CMaster.h"

// The byte pipe to the engine (FT_Write and FT_Read on Windows).
class IMpsseChannel {
public:
    virtual ~IMpsseChannel() = default;
    virtual bool Write(const ByteBuffer& bytes_I) = 0;
    // Reads exactly count_I bytes, or fails.
    virtual bool Read(size_t count_I, ByteBuffer& bytes_O) = 0;
};

class CMpsseI2CMaster : public II2CMaster {
public:
    explicit CMpsseI2CMaster(IMpsseChannel& channel_I) : mChannel(channel_I) {}

    // Checks that the engine answers (bad command 0xAA echoed as FA AA) and sets it up for I2C.
    bool Initialise();

    bool Write(uint8_t address7_I, const ByteBuffer& bytes_I) override;
    bool Read(uint8_t address7_I, size_t count_I, ByteBuffer& bytes_O) override;

    // The command streams, exposed for the byte-for-byte checks.
    static ByteBuffer SetupStream();
    static ByteBuffer StartStream();
    static ByteBuffer StopStream();
    // Each byte clocked out, then its acknowledge bit clocked in; ends with "send immediate".
    static ByteBuffer WriteBytesStream(const ByteBuffer& bytes_I);
    // count_I bytes clocked in, each answered with ACK but the last with NACK.
    static ByteBuffer ReadBytesStream(size_t count_I);

private:
    bool SendAndCheckAcks(const ByteBuffer& bytes_I);

    IMpsseChannel& mChannel;
};
