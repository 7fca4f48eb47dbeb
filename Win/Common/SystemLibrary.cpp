#include "SystemLibrary.h"

#include "DebugLog.h"
#include "WinStrings.h"

#ifndef LOAD_LIBRARY_SEARCH_APPLICATION_DIR
#define LOAD_LIBRARY_SEARCH_APPLICATION_DIR 0x00000200
#endif
#ifndef LOAD_LIBRARY_SEARCH_SYSTEM32
#define LOAD_LIBRARY_SEARCH_SYSTEM32 0x00000800
#endif

HMODULE LoadTrustedLibrary(const wchar_t* name_I, ELibraryLocation where_I) {
    DWORD flags = LOAD_LIBRARY_SEARCH_SYSTEM32;
    if (where_I == ELibraryLocation::SystemOrApplicationDir) {
        flags |= LOAD_LIBRARY_SEARCH_APPLICATION_DIR;
    }
    // A missing library must not bring up a system error box.
    DWORD previousMode = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previousMode);
    HMODULE module = LoadLibraryExW(name_I, nullptr, flags);
    const DWORD error = GetLastError();
    SetThreadErrorMode(previousMode, nullptr);
    SetLastError(error);
    if (module == nullptr) {
        DLog("LoadTrustedLibrary: %s not loaded, error %lu\n", Narrow(name_I).c_str(), GetLastError());
    }
    return module;
}
