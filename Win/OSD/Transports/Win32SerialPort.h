#pragma once
// A COM port through the Win32 communications calls.

#include <windows.h>

#include "DeviceGoneErrors.h"
#include "SerialPort.h"

class CWin32SerialPort : public ISerialPort {
public:
    CWin32SerialPort() = default;
    ~CWin32SerialPort() override { Close(); }

    bool Open(const std::string& name_I) override;
    void Close() override;
    bool IsOpen() const override { return mPort != INVALID_HANDLE_VALUE; }
    void ClearErrors() override;
    bool Purge() override;
    bool Write(const ByteBuffer& bytes_I, size_t& written_O) override;
    bool Read(size_t maxBytes_I, ByteBuffer& data_O) override;
    uint32_t LastError() const override { return mLastError; }
    bool DeviceGone() const override { return IsDeviceGoneError(mLastError); }

    // The settings Open gave the port.
    const DCB& Settings() const { return mSettings; }
    // A raw 8-bit line: binary, no parity check, no flow control, no character handling, no
    // abort on error, DTR and RTS on.
    static void ApplyRawLine(DCB& settings_IO);

private:
    bool Fail();

    HANDLE mPort = INVALID_HANDLE_VALUE;
    DCB mSettings{};
    COMMTIMEOUTS mTimeouts{};
    uint32_t mLastError = 0;
};
