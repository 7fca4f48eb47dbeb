// What both soaks share: a watchdog on real time that ends the run when nothing has moved on
// for too long (a hang), and the count of bytes the program holds (memory that grows).

#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <thread>

// Ends the process with a VIOLATION line when `progress` has not changed for `limit` of real
// time; stops when destroyed. `what` says what has not ended, e.g. "an operation".
class CSoakWatchdog {
public:
    CSoakWatchdog(const std::atomic<unsigned long>& progress_I, std::chrono::seconds limit_I,
                  const char* what_I);
    ~CSoakWatchdog();
    CSoakWatchdog(const CSoakWatchdog&) = delete;
    CSoakWatchdog& operator=(const CSoakWatchdog&) = delete;

private:
    void Watch();

    const std::atomic<unsigned long>& mProgress;
    const std::chrono::seconds mLimit;
    const char* const mWhat;
    std::atomic<bool> mDone{false};
    std::thread mThread;
};

// Bytes allocated and not yet freed (the sanitizer's count when it replaces malloc).
size_t AllocatedBytes();
