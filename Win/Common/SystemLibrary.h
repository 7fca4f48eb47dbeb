#pragma once
// Loads the libraries the program talks to at run time, only from the system directory (and,
// for vendor drivers that install beside the program, the program's own directory): never
// through the default search order, so that a DLL planted in the working directory is not
// loaded.

#include <windows.h>

enum class ELibraryLocation {
    SystemOnly,              // dxva2.dll, hid.dll, user32.dll
    SystemOrApplicationDir,  // vendor bridge drivers
};

// Null when the library is not there; the reason is logged.
HMODULE LoadTrustedLibrary(const wchar_t* name_I, ELibraryLocation where_I);
