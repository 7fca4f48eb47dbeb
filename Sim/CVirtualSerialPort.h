#pragma once
// A serial port wired in-process to a virtual display: what is written is one request to the
// display, and its answer (without the checksum byte, as serial firmware sends it) arrives to
// be read in blocks. Errors are Windows' numbers, as the simulated machine hands them on.

#include <deque>
#include <memory>

#include "CVirtualDisplay.h"
#include "SerialPort.h"

class CVirtualSerialPort : public ISerialPort {
public:
    explicit CVirtualSerialPort(std::shared_ptr<CVirtualDisplay> display_I);

    bool Open(const std::string& name_I) override;
    void Close() override { mOpen = false; }
    bool IsOpen() const override { return mOpen; }
    void ClearErrors() override {}
    bool Purge() override;
    bool Write(const ByteBuffer& bytes_I, size_t& written_O) override;
    bool Read(size_t maxBytes_I, ByteBuffer& data_O) override;
    uint32_t LastError() const override { return mLastError; }
    bool DeviceGone() const override { return mLastError == kBadCommand; }

    // The next writes fail with this system error (22 unplugs the device).
    void FailNextWrite(uint32_t error_I, unsigned times_I = 1) {
        mWriteError = error_I;
        mWriteFailures = times_I;
    }
    // The bridge is unplugged: the port no longer opens, and a port opened before fails every
    // call with ERROR_BAD_COMMAND, as a USB serial driver does, also after it is plugged back in.
    void SetUnplugged(bool unplugged_I);
    unsigned Reads() const { return mReads; }

private:
    std::shared_ptr<CVirtualDisplay> mDisplay;
    std::deque<uint8_t> mPending;
    static constexpr uint32_t kBadCommand = 22;
    bool mOpen = false;
    bool mUnplugged = false;
    bool mDead = false;  // open while unplugged
    uint32_t mLastError = 0;
    uint32_t mWriteError = 0;
    unsigned mWriteFailures = 0;
    unsigned mReads = 0;
};
