// A stand-in FTD2XX.dll that reports 42 devices: if the program ever loads it, the count shows.
#include <windows.h>

extern "C" __declspec(dllexport) ULONG WINAPI FT_CreateDeviceInfoList(LPDWORD count_O) {
    *count_O = 42;
    return 0;
}
