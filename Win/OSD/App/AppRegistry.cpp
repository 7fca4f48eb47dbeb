#include "AppRegistry.h"

#include <windows.h>

#include "DebugLog.h"

namespace {

constexpr wchar_t kLocationKey[] = L"Software\\Velor\\OSD\\Location";
constexpr wchar_t kOsdKey[] = L"Software\\Velor\\OSD";
constexpr wchar_t kRunKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr wchar_t kKeeperRunValue[] = L"Velor Display Settings Keeper";

std::optional<DWORD> ReadNumber(const wchar_t* key_I, const wchar_t* name_I) {
    DWORD value = 0;
    DWORD size = sizeof(value);
    const LSTATUS status =
        RegGetValueW(HKEY_CURRENT_USER, key_I, name_I, RRF_RT_REG_DWORD, nullptr, &value, &size);
    if (status != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return value;
}

void WriteNumber(const wchar_t* key_I, const wchar_t* name_I, DWORD value_I) {
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, key_I, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr) !=
        ERROR_SUCCESS) {
        DLog("AppRegistry: cannot write %ls\n", key_I);
        return;
    }
    RegSetValueExW(key, name_I, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value_I), sizeof(value_I));
    RegCloseKey(key);
}

}  // namespace

namespace AppRegistry {

std::optional<SWindowPosition> ReadLocation() {
    const auto x = ReadNumber(kLocationKey, L"X");
    const auto y = ReadNumber(kLocationKey, L"Y");
    if (!x || !y) {
        return std::nullopt;
    }
    // Stored as 32-bit numbers: negative positions (a monitor left of the primary) come back.
    return SWindowPosition{static_cast<int>(static_cast<int32_t>(*x)),
                           static_cast<int>(static_cast<int32_t>(*y))};
}

void WriteLocation(const SWindowPosition& position_I) {
    WriteNumber(kLocationKey, L"X", static_cast<DWORD>(position_I.x));
    WriteNumber(kLocationKey, L"Y", static_cast<DWORD>(position_I.y));
}

bool ReadIgnorePowerWarning() {
    const auto value = ReadNumber(kOsdKey, L"IgnorePowerWarning");
    return value && *value != 0;
}

void WriteIgnorePowerWarning() {
    WriteNumber(kOsdKey, L"IgnorePowerWarning", 1);
}

std::wstring ReadHelpBaseAddress() {
    for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        wchar_t text[1024] = {};
        DWORD size = sizeof(text);
        const LSTATUS status =
            RegGetValueW(root, kOsdKey, L"HelpBaseAddress", RRF_RT_REG_SZ, nullptr, text, &size);
        if (status == ERROR_SUCCESS && text[0] != L'\0') {
            return text;
        }
        if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
            DLog("AppRegistry: HelpBaseAddress cannot be read (%ld)\n", static_cast<long>(status));
        }
    }
    return {};
}

bool ReadKeepSettings() {
    const auto value = ReadNumber(kOsdKey, L"KeepSettings");
    return !value || *value != 0;
}

void WriteKeepSettings(bool on_I) {
    WriteNumber(kOsdKey, L"KeepSettings", on_I ? 1 : 0);
}

bool StartsKeeperAtLogOn() {
    return RegGetValueW(HKEY_CURRENT_USER, kRunKey, kKeeperRunValue, RRF_RT_REG_SZ, nullptr, nullptr,
                        nullptr) == ERROR_SUCCESS;
}

bool SetKeeperStartsAtLogOn(bool on_I) {
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, kRunKey, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr) !=
        ERROR_SUCCESS) {
        DLog("AppRegistry: cannot open the Run key\n");
        return false;
    }
    LSTATUS status = ERROR_SUCCESS;
    if (on_I) {
        wchar_t path[MAX_PATH] = {};
        GetModuleFileNameW(nullptr, path, MAX_PATH);
        const std::wstring command = L"\"" + std::wstring(path) + L"\" /tray";
        status =
            RegSetValueExW(key, kKeeperRunValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(command.c_str()),
                           static_cast<DWORD>((command.size() + 1) * sizeof(wchar_t)));
    } else {
        status = RegDeleteValueW(key, kKeeperRunValue);
        if (status == ERROR_FILE_NOT_FOUND) {
            status = ERROR_SUCCESS;
        }
    }
    RegCloseKey(key);
    return status == ERROR_SUCCESS;
}

}  // namespace AppRegistry
