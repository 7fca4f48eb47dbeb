#include "PosixSerialPort.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

namespace {
constexpr int kFirstByteWaitMs = 10;
constexpr auto kWriteLimit = std::chrono::seconds(2);
}  // namespace

bool CPosixSerialPort::Fail() {
    mLastError = static_cast<uint32_t>(errno);
    Close();
    return false;
}

bool CPosixSerialPort::Open(const std::string& name_I) {
    Close();
    const std::string path = name_I.rfind('/', 0) == 0 ? name_I : "/dev/" + name_I;
    mDescriptor = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (mDescriptor < 0) {
        mLastError = static_cast<uint32_t>(errno);
        return false;
    }
    termios settings{};
    if (tcgetattr(mDescriptor, &settings) != 0) {
        return Fail();
    }
    // Raw: no line editing, no character translation, no flow control of any kind.
    cfmakeraw(&settings);
    cfsetispeed(&settings, B9600);
    cfsetospeed(&settings, B9600);
    settings.c_cflag &= ~(CSTOPB | PARENB | CRTSCTS | CSIZE);
    settings.c_cflag |= CS8 | CLOCAL | CREAD;
    settings.c_iflag &= ~(IXON | IXOFF | IXANY);
    settings.c_cc[VMIN] = 0;
    settings.c_cc[VTIME] = 0;
    if (tcsetattr(mDescriptor, TCSANOW, &settings) != 0) {
        return Fail();
    }
    // Many USB CDC devices stay silent until DTR is raised (a pseudo-terminal has no such lines).
    int lines = TIOCM_DTR | TIOCM_RTS;
    ioctl(mDescriptor, TIOCMBIS, &lines);
    tcflush(mDescriptor, TCIOFLUSH);
    return true;
}

void CPosixSerialPort::Close() {
    if (mDescriptor >= 0) {
        close(mDescriptor);
        mDescriptor = -1;
    }
}

bool CPosixSerialPort::Purge() {
    if (tcflush(mDescriptor, TCIOFLUSH) != 0) {
        mLastError = static_cast<uint32_t>(errno);
        return false;
    }
    return true;
}

bool CPosixSerialPort::Write(const ByteBuffer& bytes_I, size_t& written_O) {
    written_O = 0;
    const auto deadline = std::chrono::steady_clock::now() + kWriteLimit;
    while (written_O < bytes_I.size()) {
        const ssize_t count = write(mDescriptor, bytes_I.data() + written_O, bytes_I.size() - written_O);
        if (count > 0) {
            written_O += static_cast<size_t>(count);
            continue;
        }
        if (count < 0 && errno != EAGAIN && errno != EINTR) {
            mLastError = static_cast<uint32_t>(errno);
            return false;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            mLastError = ETIMEDOUT;
            return false;
        }
        pollfd writable{mDescriptor, POLLOUT, 0};
        poll(&writable, 1, 10);
    }
    return true;
}

bool CPosixSerialPort::Read(size_t maxBytes_I, ByteBuffer& data_O) {
    data_O.clear();
    pollfd readable{mDescriptor, POLLIN, 0};
    if (poll(&readable, 1, kFirstByteWaitMs) < 0) {
        mLastError = static_cast<uint32_t>(errno);
        return false;
    }
    data_O.resize(maxBytes_I);
    const ssize_t count = read(mDescriptor, data_O.data(), maxBytes_I);
    if (count < 0) {
        data_O.clear();
        if (errno == EAGAIN || errno == EINTR) {
            mLastError = 0;
            return true;  // nothing arrived in time
        }
        mLastError = static_cast<uint32_t>(errno);
        return false;
    }
    data_O.resize(static_cast<size_t>(count));
    mLastError = 0;
    return true;
}
