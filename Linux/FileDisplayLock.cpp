// The display lock on Linux: an flock on a file in the user's runtime folder ($XDG_RUNTIME_DIR
// where it can be written, else the temporary folder). The kernel lets go of it when the process ends.

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <thread>

#include "Clock.h"
#include "DisplayLock.h"

namespace {

class CFileDisplayLock final : public CDisplayLock {
public:
    explicit CFileDisplayLock(int fd_I) : mFd(fd_I) {}
    ~CFileDisplayLock() override { close(mFd); }

private:
    int mFd;
};

std::string LockFolder() {
    // A runtime folder that is named but not there (a session's variable kept through su)
    // would make every display look in use.
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime != nullptr && runtime[0] == '/' && access(runtime, W_OK | X_OK) == 0) {
        return runtime;
    }
    const char* temporary = std::getenv("TMPDIR");
    return temporary != nullptr && temporary[0] == '/' ? temporary : "/tmp";
}

}  // namespace

std::unique_ptr<CDisplayLock> HoldDisplayLock(const std::string& serial_I, std::chrono::milliseconds wait_I) {
    const std::string path = LockFolder() + "/" + DisplayLockName(serial_I) + ".lock";
    const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0) {
        return nullptr;
    }
    // Polled rather than blocking, so that the wait has an end (through the process clock).
    const auto end = Clock::Get().Now() + wait_I;
    while (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK || Clock::Get().Now() >= end) {
            close(fd);
            return nullptr;
        }
        Clock::PauseMs(50);
    }
    return std::make_unique<CFileDisplayLock>(fd);
}
