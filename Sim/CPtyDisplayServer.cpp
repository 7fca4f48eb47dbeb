#include "CPtyDisplayServer.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "DdcPackets.h"

namespace {

void MakeRaw(int fd_I) {
    termios settings{};
    if (tcgetattr(fd_I, &settings) == 0) {
        cfmakeraw(&settings);
        cfsetispeed(&settings, B9600);
        cfsetospeed(&settings, B9600);
        tcsetattr(fd_I, TCSANOW, &settings);
    }
}

}  // namespace

CPtyDisplayServer::CPtyDisplayServer(std::shared_ptr<CVirtualDisplay> display_I)
    : mDisplay(std::move(display_I)) {}

CPtyDisplayServer::~CPtyDisplayServer() {
    if (mLine >= 0) {
        close(mLine);
    }
    if (mController >= 0) {
        close(mController);
    }
}

bool CPtyDisplayServer::Open() {
    mController = posix_openpt(O_RDWR | O_NOCTTY);
    if (mController < 0 || grantpt(mController) != 0 || unlockpt(mController) != 0) {
        std::fprintf(stderr, "CPtyDisplayServer: no pseudo-terminal: %s\n", std::strerror(errno));
        return false;
    }
    const char* name = ptsname(mController);
    if (name == nullptr) {
        std::fprintf(stderr, "CPtyDisplayServer: no terminal name: %s\n", std::strerror(errno));
        return false;
    }
    mTerminalPath = name;
    MakeRaw(mController);
    mLine = open(mTerminalPath.c_str(), O_RDWR | O_NOCTTY);
    if (mLine >= 0) {
        MakeRaw(mLine);
    }
    return true;
}

size_t CPtyDisplayServer::RequestLength(const ByteBuffer& pending_I) {
    if (pending_I.empty()) {
        return 0;
    }
    if (pending_I[0] == Ddc::kScalerResetFirstByte) {
        return Ddc::kScalerResetSize;
    }
    if (pending_I[0] != Ddc::kDisplayAddress) {
        return 1;
    }
    return FramedRequestSize(pending_I);
}

void CPtyDisplayServer::ServeOnce(int timeoutMs_I) {
    pollfd waiting{mController, POLLIN, 0};
    if (poll(&waiting, 1, timeoutMs_I) <= 0 || (waiting.revents & POLLIN) == 0) {
        return;
    }
    uint8_t buffer[512];
    const ssize_t count = read(mController, buffer, sizeof(buffer));
    if (count <= 0) {
        return;
    }
    mPending.insert(mPending.end(), buffer, buffer + count);
    for (;;) {
        const size_t length = RequestLength(mPending);
        if (length == 0 || length > mPending.size()) {
            break;
        }
        const ByteBuffer request(mPending.begin(), mPending.begin() + static_cast<std::ptrdiff_t>(length));
        mPending.erase(mPending.begin(), mPending.begin() + static_cast<std::ptrdiff_t>(length));
        if (length == 1 && request[0] != Ddc::kScalerResetFirstByte) {
            continue;  // line noise
        }
        ByteBuffer reply = mDisplay->Handle(request);
        if (reply.empty()) {
            continue;
        }
        reply.pop_back();  // serial firmware sends no checksum
        size_t sent = 0;
        while (sent < reply.size()) {
            const ssize_t written = write(mController, reply.data() + sent, reply.size() - sent);
            if (written <= 0) {
                break;
            }
            sent += static_cast<size_t>(written);
        }
    }
}

void CPtyDisplayServer::Serve(const std::atomic<bool>& stop_I, int timeoutMs_I) {
    while (!stop_I.load()) {
        ServeOnce(timeoutMs_I);
    }
}
