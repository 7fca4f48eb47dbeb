#include "SystemLibrary.h"

#include <atomic>

#include "DebugLog.h"
#include "WinStrings.h"

#ifndef LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR
#define LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR 0x00000100
#endif
#ifndef LOAD_LIBRARY_SEARCH_SYSTEM32
#define LOAD_LIBRARY_SEARCH_SYSTEM32 0x00000800
#endif

namespace {

std::atomic<LoadLibraryExFunction> gLoader{nullptr};

std::wstring FolderOf(const std::wstring& path_I) {
    const size_t slash = path_I.find_last_of(L"\\/");
    return slash == std::wstring::npos ? std::wstring() : path_I.substr(0, slash);
}

// One load with system error boxes off (a missing library must not bring one up); the last
// error is that of the load.
HMODULE Load(const std::wstring& nameOrPath_I, DWORD flags_I) {
    LoadLibraryExFunction loader = gLoader.load();
    DWORD previousMode = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previousMode);
    HMODULE module = (loader != nullptr ? loader : &LoadLibraryExW)(nameOrPath_I.c_str(), nullptr, flags_I);
    const DWORD error = GetLastError();
    SetThreadErrorMode(previousMode, nullptr);
    SetLastError(error);
    return module;
}

}  // namespace

std::wstring SystemDirectory() {
    wchar_t path[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(path, MAX_PATH);
    return length > 0 && length < MAX_PATH ? std::wstring(path, length) : std::wstring();
}

std::wstring ProgramDirectory() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) {
            return {};
        }
        if (length < path.size()) {
            path.resize(length);
            return FolderOf(path);
        }
        path.resize(path.size() * 2);
    }
}

HMODULE LoadTrustedLibrary(const wchar_t* name_I, ELibraryLocation where_I) {
    const std::string name = Narrow(name_I);
    HMODULE module = Load(name_I, LOAD_LIBRARY_SEARCH_SYSTEM32);
    // Windows 7 without the update that added the search flags refuses them: full paths then.
    const bool fullPaths = module == nullptr && GetLastError() == ERROR_INVALID_PARAMETER;
    if (fullPaths) {
        module = Load(SystemDirectory() + L"\\" + name_I, LOAD_WITH_ALTERED_SEARCH_PATH);
    }
    if (module != nullptr) {
        DLog("LoadTrustedLibrary: %s loaded from the system directory\n", name.c_str());
        return module;
    }
    DWORD error = GetLastError();
    if (where_I == ELibraryLocation::SystemThenApplicationDir) {
        // The driver's own installer may have put it beside the program instead.
        const std::wstring path = ProgramDirectory() + L"\\" + name_I;
        module = Load(path, fullPaths ? LOAD_WITH_ALTERED_SEARCH_PATH
                                      : LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
        if (module != nullptr) {
            DLog("LoadTrustedLibrary: %s loaded from the program's directory\n", name.c_str());
            return module;
        }
        error = GetLastError();
    }
    DLog("LoadTrustedLibrary: %s not loaded, error %lu\n", name.c_str(), static_cast<unsigned long>(error));
    SetLastError(error);
    return nullptr;
}

bool IsTrustedLibraryInstalled(const wchar_t* name_I, ELibraryLocation where_I) {
    auto isFile = [](const std::wstring& path_I) {
        const DWORD attributes = GetFileAttributesW(path_I.c_str());
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    };
    if (isFile(SystemDirectory() + L"\\" + name_I)) {
        return true;
    }
    return where_I == ELibraryLocation::SystemThenApplicationDir &&
           isFile(ProgramDirectory() + L"\\" + name_I);
}

void RestrictLibrarySearchToSystem() {
    // Absent on Windows 7 without its update; the working directory then at least leaves the
    // search.
    using SetDefaultDllDirectoriesFunction = BOOL(WINAPI*)(DWORD);
    HMODULE kernel32 = GetModuleHandleW(L"kernel32.dll");
    FARPROC address = kernel32 != nullptr ? GetProcAddress(kernel32, "SetDefaultDllDirectories") : nullptr;
    if (address == nullptr || !reinterpret_cast<SetDefaultDllDirectoriesFunction>(
                                  reinterpret_cast<void*>(address))(LOAD_LIBRARY_SEARCH_SYSTEM32)) {
        DLog("RestrictLibrarySearchToSystem: SetDefaultDllDirectories unavailable, error %lu\n",
             static_cast<unsigned long>(GetLastError()));
        SetDllDirectoryW(L"");
    }
}

void SetLibraryLoader(LoadLibraryExFunction loader_I) {
    gLoader.store(loader_I);
}
