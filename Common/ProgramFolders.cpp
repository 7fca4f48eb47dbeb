#include "ProgramFolders.h"

#include <cstdlib>
#include <filesystem>

#include "TextFile.h"

#if defined(_WIN32)
#include <windows.h>
#include <knownfolders.h>
#include <shlobj.h>

namespace {

std::filesystem::path KnownFolder(REFKNOWNFOLDERID folder_I) {
    PWSTR path = nullptr;
    std::filesystem::path found;
    if (SUCCEEDED(SHGetKnownFolderPath(folder_I, KF_FLAG_DEFAULT, nullptr, &path)) && path != nullptr) {
        found = path;
    }
    CoTaskMemFree(path);
    return found;
}

}  // namespace

std::string UserStateFolder() {
    const std::filesystem::path roaming = KnownFolder(FOLDERID_RoamingAppData);
    return roaming.empty() ? std::string() : Utf8String(roaming / "velor-display-settings");
}

std::string UserCacheFolder() {
    const std::filesystem::path local = KnownFolder(FOLDERID_LocalAppData);
    return local.empty() ? std::string() : Utf8String(local / "Velor Display Settings");
}

#else

namespace {

// $NAMED, else ~/UNDER; empty without either.
std::filesystem::path XdgFolder(const char* named_I, const char* under_I) {
    if (const char* folder = std::getenv(named_I); folder != nullptr && *folder != '\0') {
        return folder;
    }
    if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') {
        return std::filesystem::path(home) / under_I;
    }
    return {};
}

}  // namespace

std::string UserStateFolder() {
    const std::filesystem::path state = XdgFolder("XDG_STATE_HOME", ".local/state");
    return state.empty() ? std::string() : Utf8String(state / "velor-display-settings");
}

std::string UserCacheFolder() {
    const std::filesystem::path cache = XdgFolder("XDG_CACHE_HOME", ".cache");
    return cache.empty() ? std::string() : Utf8String(cache / "velor-display-settings");
}

#endif
