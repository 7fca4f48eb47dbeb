#pragma once
// Every operating-system call display discovery makes, reached through one table of
// functions: SetupAPI for monitors, HID interfaces and serial ports, the registry (device
// keys and the BIOS manufacturer), display enumeration, and the opening of HID paths. The real
// table calls Win32; tests and the demo install a simulated machine. Nothing above the table
// knows which one is in use.

#include <windows.h>
// windows.h first: setupapi.h needs its types.
#include <setupapi.h>

#include <memory>

class ISerialPort;

struct SDiscoverySystemApi {
    HDEVINFO(WINAPI* SetupDiGetClassDevsA)(const GUID*, PCSTR, HWND, DWORD);
    BOOL(WINAPI* SetupDiDestroyDeviceInfoList)(HDEVINFO);
    BOOL(WINAPI* SetupDiEnumDeviceInfo)(HDEVINFO, DWORD, PSP_DEVINFO_DATA);
    BOOL(WINAPI* SetupDiGetDeviceRegistryPropertyA)
    (HDEVINFO, PSP_DEVINFO_DATA, DWORD, PDWORD, PBYTE, DWORD, PDWORD);
    HKEY(WINAPI* SetupDiOpenDevRegKey)(HDEVINFO, PSP_DEVINFO_DATA, DWORD, DWORD, DWORD, REGSAM);
    BOOL(WINAPI* SetupDiEnumDeviceInterfaces)
    (HDEVINFO, PSP_DEVINFO_DATA, const GUID*, DWORD, PSP_DEVICE_INTERFACE_DATA);
    BOOL(WINAPI* SetupDiGetDeviceInterfaceDetailA)
    (HDEVINFO, PSP_DEVICE_INTERFACE_DATA, PSP_DEVICE_INTERFACE_DETAIL_DATA_A, DWORD, PDWORD,
     PSP_DEVINFO_DATA);
    LSTATUS(WINAPI* RegOpenKeyExA)(HKEY, LPCSTR, DWORD, REGSAM, PHKEY);
    LSTATUS(WINAPI* RegQueryValueExA)(HKEY, LPCSTR, LPDWORD, LPDWORD, LPBYTE, LPDWORD);
    LSTATUS(WINAPI* RegCloseKey)(HKEY);
    BOOL(WINAPI* EnumDisplayMonitors)(HDC, LPCRECT, MONITORENUMPROC, LPARAM);
    BOOL(WINAPI* GetMonitorInfoA)(HMONITOR, LPMONITORINFO);
    BOOL(WINAPI* EnumDisplayDevicesA)(LPCSTR, DWORD, PDISPLAY_DEVICEA, DWORD);
    HANDLE(WINAPI* CreateFileA)(LPCSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE);
    BOOL(WINAPI* CloseHandle)(HANDLE);
    // The port object a serial connector is built on (a Win32 COM port for real).
    std::unique_ptr<ISerialPort> (*CreateSerialPort)();
};

const SDiscoverySystemApi& DiscoverySystemApi();
// Replaces the table; nullptr puts the real functions back.
void SetDiscoverySystemApi(const SDiscoverySystemApi* api_I);
const SDiscoverySystemApi& RealDiscoverySystemApi();

// The device setup class of monitors, and the interface classes of HID devices and COM ports.
extern const GUID kMonitorSetupClassGuid;
extern const GUID kHidInterfaceClassGuid;
extern const GUID kComPortInterfaceClassGuid;
