#pragma once
// A serial port through termios: a raw 8-bit line at 9600 baud, 8N1, no flow control, DTR and
// RTS on (as the Windows port sets it); a read returns at once with what has arrived, or waits
// at most 10 ms for a first byte.

#include <cerrno>
#include <string>

#include "SerialPort.h"

class CPosixSerialPort : public ISerialPort {
public:
    CPosixSerialPort() = default;
    ~CPosixSerialPort() override { Close(); }

    // A device path ("/dev/ttyUSB0") or a name under /dev ("ttyUSB0").
    bool Open(const std::string& name_I) override;
    void Close() override;
    bool IsOpen() const override { return mDescriptor >= 0; }
    void ClearErrors() override {}
    bool Purge() override;
    bool Write(const ByteBuffer& bytes_I, size_t& written_O) override;
    bool Read(size_t maxBytes_I, ByteBuffer& data_O) override;
    uint32_t LastError() const override { return mLastError; }
    // What the kernel answers on a tty whose USB bridge was unplugged.
    bool DeviceGone() const override {
        return mLastError == EIO || mLastError == ENODEV || mLastError == ENXIO || mLastError == EBADF;
    }

private:
    bool Fail();

    int mDescriptor = -1;
    uint32_t mLastError = 0;
};
