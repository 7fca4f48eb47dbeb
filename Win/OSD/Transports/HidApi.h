#pragma once
// The calls the HID connector makes, reached through one table: the real kernel32 and hid.dll
// functions by default, a simulation in tests and in the demo.

#include <windows.h>
// windows.h first: the HID headers need its types; hidsdi.h before hidpi.h, which needs its.
#include <hidsdi.h>

#include <hidpi.h>

struct SHidApi {
    HANDLE(WINAPI* CreateFileA)(LPCSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE);
    BOOL(WINAPI* CloseHandle)(HANDLE);
    // Feature reports travel as IOCTL_HID_SET_FEATURE and IOCTL_HID_GET_FEATURE on an
    // overlapped handle, so that a device that never answers can be given up on.
    BOOL(WINAPI* DeviceIoControl)(HANDLE, DWORD, LPVOID, DWORD, LPVOID, DWORD, LPDWORD, LPOVERLAPPED);
    BOOL(WINAPI* GetOverlappedResult)(HANDLE, LPOVERLAPPED, LPDWORD, BOOL);
    BOOL(WINAPI* CancelIoEx)(HANDLE, LPOVERLAPPED);
    BOOLEAN(WINAPI* HidD_GetAttributes)(HANDLE, PHIDD_ATTRIBUTES);
    BOOLEAN(WINAPI* HidD_GetPreparsedData)(HANDLE, PHIDP_PREPARSED_DATA*);
    BOOLEAN(WINAPI* HidD_FreePreparsedData)(PHIDP_PREPARSED_DATA);
    NTSTATUS(WINAPI* HidP_GetCaps)(PHIDP_PREPARSED_DATA, PHIDP_CAPS);
};

const SHidApi& HidApi();
// Replaces the table; nullptr puts the real functions back.
void SetHidApi(const SHidApi* api_I);
