#include "Win32SerialPort.h"

namespace {
constexpr DWORD kPurgeAll = PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR;  // 15
constexpr DWORD kEventMask = EV_RXCHAR | EV_TXEMPTY;                                        // 5
}  // namespace

void CWin32SerialPort::ApplyRawLine(DCB& settings_IO) {
    settings_IO.fBinary = TRUE;
    settings_IO.fParity = FALSE;
    settings_IO.fOutxCtsFlow = FALSE;
    settings_IO.fOutxDsrFlow = FALSE;
    settings_IO.fDtrControl = DTR_CONTROL_ENABLE;
    settings_IO.fDsrSensitivity = FALSE;
    settings_IO.fTXContinueOnXoff = TRUE;
    settings_IO.fOutX = FALSE;
    settings_IO.fInX = FALSE;
    settings_IO.fErrorChar = FALSE;
    settings_IO.fNull = FALSE;
    settings_IO.fRtsControl = RTS_CONTROL_ENABLE;
    settings_IO.fAbortOnError = FALSE;
}

bool CWin32SerialPort::Fail() {
    mLastError = GetLastError();
    Close();
    return false;
}

bool CWin32SerialPort::Open(const std::string& name_I) {
    Close();
    const std::string device = "\\\\.\\" + name_I;
    mPort = CreateFileA(device.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                        FILE_ATTRIBUTE_NORMAL, nullptr);
    if (mPort == INVALID_HANDLE_VALUE) {
        mLastError = GetLastError();
        return false;
    }
    mSettings.DCBlength = sizeof(mSettings);
    if (!GetCommState(mPort, &mSettings)) {
        return Fail();
    }
    mSettings.BaudRate = CBR_9600;
    mSettings.ByteSize = 8;
    mSettings.Parity = NOPARITY;
    mSettings.StopBits = ONESTOPBIT;
    // Everything else is whatever the port's last program left: a raw binary line is needed
    // (XON/XOFF would swallow 0x11 and 0x13, null stripping 0x00, abort-on-error every read
    // after a line error, hardware flow control could block writes), and many USB CDC devices
    // stay silent until DTR is raised. These go beyond the four settings the protocol names.
    ApplyRawLine(mSettings);
    if (!SetCommState(mPort, &mSettings)) {
        return Fail();
    }
    // A read returns at once with what has arrived, or waits at most 10 ms for a first byte.
    mTimeouts.ReadIntervalTimeout = MAXDWORD;
    mTimeouts.ReadTotalTimeoutMultiplier = MAXDWORD;
    mTimeouts.ReadTotalTimeoutConstant = 10;
    mTimeouts.WriteTotalTimeoutMultiplier = MAXDWORD;
    mTimeouts.WriteTotalTimeoutConstant = 2000;
    if (!SetCommTimeouts(mPort, &mTimeouts) || !SetCommMask(mPort, kEventMask) ||
        !PurgeComm(mPort, kPurgeAll)) {
        return Fail();
    }
    return true;
}

void CWin32SerialPort::Close() {
    if (mPort != INVALID_HANDLE_VALUE) {
        CloseHandle(mPort);
        mPort = INVALID_HANDLE_VALUE;
    }
}

void CWin32SerialPort::ClearErrors() {
    DWORD errors = 0;
    COMSTAT status{};
    ClearCommError(mPort, &errors, &status);
}

bool CWin32SerialPort::Purge() {
    if (!PurgeComm(mPort, kPurgeAll)) {
        mLastError = GetLastError();
        return false;
    }
    return true;
}

bool CWin32SerialPort::Write(const ByteBuffer& bytes_I, size_t& written_O) {
    DWORD written = 0;
    const BOOL ok = WriteFile(mPort, bytes_I.data(), static_cast<DWORD>(bytes_I.size()), &written, nullptr);
    written_O = written;
    if (!ok) {
        mLastError = GetLastError();
        return false;
    }
    return true;
}

bool CWin32SerialPort::Read(size_t maxBytes_I, ByteBuffer& data_O) {
    data_O.assign(maxBytes_I, 0);
    DWORD received = 0;
    const BOOL ok = ReadFile(mPort, data_O.data(), static_cast<DWORD>(maxBytes_I), &received, nullptr);
    const DWORD error = ok ? ERROR_SUCCESS : GetLastError();
    data_O.resize(ok ? received : 0);
    mLastError = error;
    return ok != FALSE;
}
