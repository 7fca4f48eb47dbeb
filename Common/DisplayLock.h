#pragma once
// The lock that keeps the parts of the program (the settings dialog, the keeper, the
// command-line tool) from talking to one display at the same time: DDC/CI has one channel per
// display, and a keeper restoring a profile must not write under the user's hands. Each
// platform holds it its own way (a named mutex on Windows, a lock file on Linux); it is
// released when the process ends, however it ends.

#include <chrono>
#include <memory>
#include <string>

class CDisplayLock {
public:
    virtual ~CDisplayLock() = default;
};

// The lock a search holds: it talks to every display (and the keeper's rounds hold it too).
constexpr char kEveryDisplay[] = "every display";

// Holds the lock of the display with this serial number, waiting up to wait_I for another
// holder to let go; null when it did not.
std::unique_ptr<CDisplayLock> HoldDisplayLock(const std::string& serial_I, std::chrono::milliseconds wait_I);

// The lock's name for a serial number: letters and digits as they are, anything else '_'
// (serial numbers come from displays and must not reach a path or an object name as given).
// $VLR_DISPLAY_LOCK_SCOPE, when set, goes in front: test programs that run side by side over
// virtual displays with the same serial numbers each get locks of their own.
std::string DisplayLockName(const std::string& serial_I);
