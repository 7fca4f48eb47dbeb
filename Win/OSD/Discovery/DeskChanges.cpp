#include "DeskChanges.h"

#include <dbt.h>

namespace {

// The device interfaces whose arrival and removal matter: HID, monitors, COM ports.
constexpr GUID kWatchedInterfaces[] = {
    {0x4D1E55B2, 0xF16F, 0x11CF, {0x88, 0xCB, 0x00, 0x11, 0x11, 0x00, 0x00, 0x30}},
    {0xE6F07B5F, 0xEE97, 0x4A90, {0xB0, 0x76, 0x33, 0xF5, 0x7B, 0xF4, 0xEA, 0xA7}},
    {0x86E0D1E0, 0x8089, 0x11D0, {0x9C, 0xE4, 0x08, 0x00, 0x3E, 0x30, 0x1F, 0x73}},
};
// GUID_CONSOLE_DISPLAY_STATE: the display was switched off, dimmed or on.
constexpr GUID kConsoleDisplayState = {
    0x6FE69556, 0x704A, 0x47A0, {0x8F, 0x24, 0xC2, 0x8D, 0x93, 0x6F, 0xDA, 0x47}};

}  // namespace

bool IsDeskChange(UINT message_I, WPARAM wParam_I, LPARAM lParam_I) {
    switch (message_I) {
        case WM_DISPLAYCHANGE: return true;
        case WM_DEVICECHANGE:
            return wParam_I == DBT_DEVICEARRIVAL || wParam_I == DBT_DEVICEREMOVECOMPLETE ||
                   wParam_I == DBT_DEVNODES_CHANGED;
        case WM_POWERBROADCAST:
            if (wParam_I == PBT_APMRESUMEAUTOMATIC || wParam_I == PBT_APMRESUMESUSPEND) {
                return true;
            }
            if (wParam_I == PBT_POWERSETTINGCHANGE && lParam_I != 0) {
                // The display is on again (1); off (0) and dimmed (2) need nothing yet.
                const auto* setting = reinterpret_cast<const POWERBROADCAST_SETTING*>(lParam_I);
                return IsEqualGUID(setting->PowerSetting, kConsoleDisplayState) && setting->DataLength >= 4 &&
                       *reinterpret_cast<const DWORD*>(setting->Data) == 1;
            }
            return false;
        default: return false;
    }
}

void CDeskChangeRegistration::Register(HWND window_I) {
    Unregister();
    for (const GUID& watched : kWatchedInterfaces) {
        DEV_BROADCAST_DEVICEINTERFACE_W filter{};
        filter.dbcc_size = sizeof(filter);
        filter.dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
        filter.dbcc_classguid = watched;
        if (HDEVNOTIFY handle = RegisterDeviceNotificationW(window_I, &filter, DEVICE_NOTIFY_WINDOW_HANDLE)) {
            mDeviceNotifications.push_back(handle);
        }
    }
    mPowerNotification =
        RegisterPowerSettingNotification(window_I, &kConsoleDisplayState, DEVICE_NOTIFY_WINDOW_HANDLE);
}

void CDeskChangeRegistration::Unregister() {
    for (HDEVNOTIFY handle : mDeviceNotifications) {
        UnregisterDeviceNotification(handle);
    }
    mDeviceNotifications.clear();
    if (mPowerNotification != nullptr) {
        UnregisterPowerSettingNotification(mPowerNotification);
        mPowerNotification = nullptr;
    }
}
