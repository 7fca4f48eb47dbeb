#pragma once
// The calls the HID connector makes, reached through one table: the real kernel32 and hid.dll
// functions by default, a simulation in tests and in the demo.

#include <windows.h>
// windows.h first: hidsdi.h needs its types.
#include <hidsdi.h>

struct SHidApi {
    HANDLE(WINAPI* CreateFileA)(LPCSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE);
    BOOL(WINAPI* CloseHandle)(HANDLE);
    BOOLEAN(WINAPI* HidD_SetFeature)(HANDLE, PVOID, ULONG);
    BOOLEAN(WINAPI* HidD_GetFeature)(HANDLE, PVOID, ULONG);
    BOOLEAN(WINAPI* HidD_GetAttributes)(HANDLE, PHIDD_ATTRIBUTES);
};

const SHidApi& HidApi();
// Replaces the table; nullptr puts the real functions back.
void SetHidApi(const SHidApi* api_I);
