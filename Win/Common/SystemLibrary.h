#pragma once
// Loads the libraries the program talks to at run time from the system directory, and vendor
// drivers that install beside the program from there only when the system directory lacks
// them: never through the default search order, so that a DLL planted in the working
// directory or beside a downloaded program is not loaded in place of the system's.

#include <windows.h>

#include <string>

enum class ELibraryLocation {
    SystemOnly,                // dxva2.dll, hid.dll, user32.dll
    SystemThenApplicationDir,  // vendor bridge drivers
};

// Null when the library is not there; the reason is logged.
HMODULE LoadTrustedLibrary(const wchar_t* name_I, ELibraryLocation where_I);
// A function of a library LoadTrustedLibrary loaded; null when the library or the function is
// not there.
template <typename Function>
Function LibraryFunction(HMODULE module_I, const char* name_I) {
    FARPROC address = module_I != nullptr ? GetProcAddress(module_I, name_I) : nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
}
// Whether the library's file is where LoadTrustedLibrary would look, without loading it (and
// so without running any of its code).
bool IsTrustedLibraryInstalled(const wchar_t* name_I, ELibraryLocation where_I);
// Makes the system directory the only place the process's own later loads search.
void RestrictLibrarySearchToSystem();

std::wstring SystemDirectory();
std::wstring ProgramDirectory();

// The loader, replaceable in tests (nullptr puts LoadLibraryExW back).
using LoadLibraryExFunction = HMODULE(WINAPI*)(LPCWSTR, HANDLE, DWORD);
void SetLibraryLoader(LoadLibraryExFunction loader_I);
