#pragma once
// The Windows errors that say a device itself went away (unplugged, switched off, or lost while
// the computer slept). A handle that got one is dead for good: its connector closes, and the
// display has to be found and opened again.

#include <windows.h>

inline bool IsDeviceGoneError(DWORD error_I) {
    constexpr DWORD kNoSuchDevice = 433;    // ERROR_NO_SUCH_DEVICE, which mingw-w64's headers lack
    constexpr DWORD kDeviceRemoved = 1617;  // ERROR_DEVICE_REMOVED
    return error_I == ERROR_DEVICE_NOT_CONNECTED || error_I == kNoSuchDevice || error_I == kDeviceRemoved ||
           error_I == ERROR_BAD_COMMAND || error_I == ERROR_INVALID_HANDLE;
}
