#pragma once
// FTDI's D2XX driver library (FTD2XX.dll), loaded at run time from the system directory or
// the program's own directory. Only the types and functions the program uses are declared.

#include <windows.h>

using FT_HANDLE = PVOID;
using FT_STATUS = ULONG;
constexpr FT_STATUS FT_OK = 0;
// What D2XX answers once a bridge was pulled out from under an open handle.
constexpr FT_STATUS FT_INVALID_HANDLE = 1;
constexpr FT_STATUS FT_DEVICE_NOT_FOUND = 2;
constexpr FT_STATUS FT_DEVICE_NOT_OPENED = 3;
constexpr FT_STATUS FT_IO_ERROR = 4;
constexpr ULONG FT_PURGE_RX = 1;
constexpr ULONG FT_PURGE_TX = 2;
constexpr UCHAR FT_BITMODE_RESET = 0x00;
constexpr UCHAR FT_BITMODE_MPSSE = 0x02;
constexpr ULONG FT_FLAGS_OPENED = 0x01;  // another program has the device open
constexpr ULONG FT_DEVICE_232H = 8;

struct SFtd2xxApi {
    FT_STATUS(WINAPI* FT_CreateDeviceInfoList)(LPDWORD);
    // index, flags, type, id, location, serial number, description, handle
    FT_STATUS(WINAPI* FT_GetDeviceInfoDetail)
    (DWORD, LPDWORD, LPDWORD, LPDWORD, LPDWORD, LPVOID, LPVOID, FT_HANDLE*);
    FT_STATUS(WINAPI* FT_Open)(int, FT_HANDLE*);
    FT_STATUS(WINAPI* FT_Close)(FT_HANDLE);
    FT_STATUS(WINAPI* FT_ResetDevice)(FT_HANDLE);
    FT_STATUS(WINAPI* FT_Purge)(FT_HANDLE, ULONG);
    FT_STATUS(WINAPI* FT_SetUSBParameters)(FT_HANDLE, ULONG, ULONG);
    FT_STATUS(WINAPI* FT_SetChars)(FT_HANDLE, UCHAR, UCHAR, UCHAR, UCHAR);
    FT_STATUS(WINAPI* FT_SetTimeouts)(FT_HANDLE, ULONG, ULONG);
    FT_STATUS(WINAPI* FT_SetLatencyTimer)(FT_HANDLE, UCHAR);
    FT_STATUS(WINAPI* FT_SetBitMode)(FT_HANDLE, UCHAR, UCHAR);
    FT_STATUS(WINAPI* FT_Write)(FT_HANDLE, LPVOID, DWORD, LPDWORD);
    FT_STATUS(WINAPI* FT_Read)(FT_HANDLE, LPVOID, DWORD, LPDWORD);
    FT_STATUS(WINAPI* FT_GetQueueStatus)(FT_HANDLE, LPDWORD);
};

// The library's functions; null when the library, or any one of these functions, is missing.
const SFtd2xxApi* Ftd2xxApi();
// Lets go of the library, so the next call looks for it again.
void UnloadFtd2xxApi();
// Replaces the library's functions (a simulation); nullptr goes back to the library.
void SetFtd2xxApi(const SFtd2xxApi* api_I);
