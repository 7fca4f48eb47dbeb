#include "SoakWatchdog.h"

#include <cstdio>
#include <cstdlib>

#include <malloc.h>

#if defined(__SANITIZE_ADDRESS__)
// The sanitizer runtime's count of bytes in use (its allocator replaces malloc's).
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

CSoakWatchdog::CSoakWatchdog(const std::atomic<unsigned long>& progress_I, std::chrono::seconds limit_I,
                             const char* what_I)
    : mProgress(progress_I), mLimit(limit_I), mWhat(what_I), mThread([this] { Watch(); }) {}

CSoakWatchdog::~CSoakWatchdog() {
    mDone = true;
    mThread.join();
}

void CSoakWatchdog::Watch() {
    unsigned long seen = mProgress.load();
    auto lastChange = std::chrono::steady_clock::now();
    while (!mDone.load()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        if (mProgress.load() != seen) {
            seen = mProgress.load();
            lastChange = std::chrono::steady_clock::now();
        } else if (std::chrono::steady_clock::now() - lastChange > mLimit) {
            std::printf("VIOLATION: %s has not ended after %lld s\n", mWhat,
                        static_cast<long long>(mLimit.count()));
            std::fflush(stdout);
            std::_Exit(1);
        }
    }
}

size_t AllocatedBytes() {
#if defined(__SANITIZE_ADDRESS__)
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks;
#endif
}
