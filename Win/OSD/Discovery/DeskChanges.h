#pragma once
// What tells the program to look for displays again: the window messages Windows sends when a
// display arrives or goes (monitor, HID and COM port interfaces), the machine wakes, the
// display configuration changes or a display is switched on again; and registering a window
// for the ones that need asking.

#include <windows.h>

#include <vector>

// Whether the message says the desk changed.
bool IsDeskChange(UINT message_I, WPARAM wParam_I, LPARAM lParam_I);

// Registers a window for the device-interface and display-power notifications while it lives.
class CDeskChangeRegistration {
public:
    CDeskChangeRegistration() = default;
    ~CDeskChangeRegistration() { Unregister(); }
    CDeskChangeRegistration(const CDeskChangeRegistration&) = delete;
    CDeskChangeRegistration& operator=(const CDeskChangeRegistration&) = delete;

    void Register(HWND window_I);
    void Unregister();

private:
    std::vector<HDEVNOTIFY> mDeviceNotifications;
    HPOWERNOTIFY mPowerNotification = nullptr;
};
