// Stand-ins for FTD2XX.dll, built in three forms: a complete one that reports
// VLR_FAKE_DEVICE_COUNT devices (42 where it is planted, 7 where it plays the system's copy), and
// a partial one with only the device count. The count shows which copy the program loaded.
#include <windows.h>

#define VLR_EXPORT extern "C" __declspec(dllexport) ULONG WINAPI

// Leaves a mark in the process when its code runs at all.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason_I, LPVOID) {
    if (reason_I == DLL_PROCESS_ATTACH) {
        SetEnvironmentVariableW(L"VLR_FAKE_DRIVER_RAN", L"1");
    }
    return TRUE;
}

VLR_EXPORT FT_CreateDeviceInfoList(LPDWORD count_O) {
    *count_O = VLR_FAKE_DEVICE_COUNT;
    return 0;
}

#ifndef VLR_FAKE_PARTIAL
// Every device is a serial cable that is not an FT232H, so nothing is ever opened.
VLR_EXPORT FT_GetDeviceInfoDetail(DWORD, LPDWORD flags_O, LPDWORD type_O, LPDWORD, LPDWORD, LPVOID, LPVOID,
                                  PVOID*) {
    *flags_O = 0;
    *type_O = 5;
    return 0;
}
VLR_EXPORT FT_Open(int, PVOID*) {
    return 2;
}
VLR_EXPORT FT_Close(PVOID) {
    return 1;
}
VLR_EXPORT FT_ResetDevice(PVOID) {
    return 1;
}
VLR_EXPORT FT_Purge(PVOID, ULONG) {
    return 1;
}
VLR_EXPORT FT_SetUSBParameters(PVOID, ULONG, ULONG) {
    return 1;
}
VLR_EXPORT FT_SetChars(PVOID, UCHAR, UCHAR, UCHAR, UCHAR) {
    return 1;
}
VLR_EXPORT FT_SetTimeouts(PVOID, ULONG, ULONG) {
    return 1;
}
VLR_EXPORT FT_SetLatencyTimer(PVOID, UCHAR) {
    return 1;
}
VLR_EXPORT FT_SetBitMode(PVOID, UCHAR, UCHAR) {
    return 1;
}
VLR_EXPORT FT_Write(PVOID, LPVOID, DWORD, LPDWORD) {
    return 1;
}
VLR_EXPORT FT_Read(PVOID, LPVOID, DWORD, LPDWORD) {
    return 1;
}
VLR_EXPORT FT_GetQueueStatus(PVOID, LPDWORD) {
    return 1;
}
#endif
