#include "AppRegistry.h"

#include <windows.h>

#include "DebugLog.h"

namespace {

constexpr wchar_t kLocationKey[] = L"Software\\Velor\\OSD\\Location";
constexpr wchar_t kOsdKey[] = L"Software\\Velor\\OSD";

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

}  // namespace AppRegistry
