#include "MachineSetup.h"

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

#include <vector>

#include "PathList.h"
#include "WinStrings.h"

namespace {

constexpr wchar_t kEnvironmentKey[] = L"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment";

std::string SystemMessage(DWORD error_I) {
    wchar_t* text = nullptr;
    FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
        error_I, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::wstring message = text != nullptr ? text : L"";
    LocalFree(text);
    while (!message.empty() &&
           (message.back() == L'\r' || message.back() == L'\n' || message.back() == L'.')) {
        message.pop_back();
    }
    return message.empty() ? "error " + std::to_string(error_I) : Narrow(message);
}

// The machine's PATH, read whole however long it is, with its type (REG_EXPAND_SZ as Windows
// keeps it, or REG_SZ); false when it cannot be read whole.
bool ReadMachinePath(HKEY key_I, std::wstring& path_O, DWORD& type_O, std::string& problem_O) {
    for (int attempt = 0; attempt < 5; ++attempt) {
        DWORD bytes = 0;
        LSTATUS status = RegQueryValueExW(key_I, L"Path", nullptr, &type_O, nullptr, &bytes);
        if (status == ERROR_FILE_NOT_FOUND) {
            path_O.clear();
            type_O = REG_EXPAND_SZ;
            return true;
        }
        if (status != ERROR_SUCCESS) {
            problem_O = "the machine's PATH cannot be read (" + SystemMessage(status) + ")";
            return false;
        }
        if (type_O != REG_SZ && type_O != REG_EXPAND_SZ) {
            problem_O = "the machine's PATH is not text; it is left as it is";
            return false;
        }
        std::wstring data(bytes / sizeof(wchar_t) + 1, L'\0');
        DWORD read = static_cast<DWORD>(data.size() * sizeof(wchar_t));
        status =
            RegQueryValueExW(key_I, L"Path", nullptr, &type_O, reinterpret_cast<BYTE*>(data.data()), &read);
        if (status == ERROR_MORE_DATA) {
            continue;  // it grew between the two reads
        }
        if (status != ERROR_SUCCESS) {
            problem_O = "the machine's PATH cannot be read (" + SystemMessage(status) + ")";
            return false;
        }
        data.resize(read / sizeof(wchar_t));
        while (!data.empty() && data.back() == L'\0') {
            data.pop_back();
        }
        path_O = data;
        return true;
    }
    problem_O = "the machine's PATH kept changing while it was read; it is left as it is";
    return false;
}

int MachinePath(const std::string& change_I, const std::wstring& folder_I, std::ostream& err_O) {
    const bool has = change_I == "has";
    HKEY key = nullptr;
    const REGSAM access = KEY_QUERY_VALUE | (has ? 0 : KEY_SET_VALUE) | KEY_WOW64_64KEY;
    LSTATUS status = RegOpenKeyExW(HKEY_LOCAL_MACHINE, kEnvironmentKey, 0, access, &key);
    if (status != ERROR_SUCCESS) {
        err_O << "the machine's environment cannot be opened (" << SystemMessage(status) << ")\n";
        return 1;
    }
    std::wstring path;
    DWORD type = REG_EXPAND_SZ;
    std::string problem;
    if (!ReadMachinePath(key, path, type, problem)) {
        RegCloseKey(key);
        err_O << problem << "\n";
        return 1;
    }
    if (has) {
        RegCloseKey(key);
        return PathListHas(path, folder_I) ? 0 : 1;
    }
    const std::wstring changed =
        change_I == "add" ? PathListWith(path, folder_I) : PathListWithout(path, folder_I);
    if (changed != path) {
        status = RegSetValueExW(key, L"Path", 0, type, reinterpret_cast<const BYTE*>(changed.c_str()),
                                static_cast<DWORD>((changed.size() + 1) * sizeof(wchar_t)));
    }
    RegCloseKey(key);
    if (status != ERROR_SUCCESS) {
        err_O << "the machine's PATH cannot be written (" << SystemMessage(status) << ")\n";
        return 1;
    }
    if (changed != path) {
        // New consoles and programs started from Explorer see the new PATH.
        SendMessageTimeoutW(HWND_BROADCAST, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"Environment"),
                            SMTO_ABORTIFHUNG, 5000, nullptr);
    }
    return 0;
}

// The machine's folder under ProgramData: made with an access list of its own (SYSTEM and the
// administrators may do anything, users read), or, when it is there already, checked to be a
// plain folder the machine owns and given that access list. A standard user can make such a
// folder before the installer runs: owned by that user, or a junction to somewhere else, it
// would let them change what the installer writes there (the studio file).
constexpr wchar_t kMachineFolderRights[] = L"D:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;0x1200a9;;;BU)";

// The account this process runs as (the installer's, elevated).
bool IsThisProcessesUser(PSID sid_I) {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) {
        return false;
    }
    DWORD bytes = 0;
    GetTokenInformation(token, TokenUser, nullptr, 0, &bytes);
    std::vector<BYTE> buffer(bytes);
    const bool same = bytes != 0 && GetTokenInformation(token, TokenUser, buffer.data(), bytes, &bytes) &&
                      EqualSid(reinterpret_cast<TOKEN_USER*>(buffer.data())->User.Sid, sid_I);
    CloseHandle(token);
    return same;
}

// Owned by the system, the administrators or the installer's own account; else the owner's name.
bool OwnedByTheMachine(const std::wstring& folder_I, std::string& owner_O) {
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetNamedSecurityInfoW(folder_I.c_str(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner, nullptr,
                              nullptr, nullptr, &descriptor) != ERROR_SUCCESS) {
        owner_O = "an owner that cannot be read";
        return false;
    }
    const bool machine = IsWellKnownSid(owner, WinLocalSystemSid) ||
                         IsWellKnownSid(owner, WinBuiltinAdministratorsSid) || IsThisProcessesUser(owner);
    if (!machine) {
        wchar_t* text = nullptr;
        owner_O = ConvertSidToStringSidW(owner, &text) ? Narrow(text) : "another account";
        LocalFree(text);
    }
    LocalFree(descriptor);
    return machine;
}

// One level of the machine's folder: made with the access list, or checked and given it.
int MakeOrCheckLevel(const std::wstring& level_I, PSECURITY_DESCRIPTOR descriptor_I, std::ostream& err_O) {
    const DWORD attributes = GetFileAttributesW(level_I.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        SECURITY_ATTRIBUTES security{sizeof(security), descriptor_I, FALSE};
        if (!CreateDirectoryW(level_I.c_str(), &security)) {
            err_O << Narrow(level_I) << ": cannot be made (" << SystemMessage(GetLastError()) << ")\n";
            return 1;
        }
        return 0;
    }
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        err_O << Narrow(level_I)
              << ": is a link or junction, not a folder of this machine's; nothing is written there\n";
        return kMachineFolderRefused;
    }
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        err_O << Narrow(level_I) << ": is a file, not a folder; nothing is written there\n";
        return kMachineFolderRefused;
    }
    std::string owner;
    if (!OwnedByTheMachine(level_I, owner)) {
        err_O << Narrow(level_I) << ": belongs to " << owner
              << ", not to the administrators or the system; nothing is written there\n";
        return kMachineFolderRefused;
    }
    PACL acl = nullptr;
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    GetSecurityDescriptorDacl(descriptor_I, &present, &acl, &defaulted);
    const DWORD status = SetNamedSecurityInfoW(
        const_cast<wchar_t*>(level_I.c_str()), SE_FILE_OBJECT,
        DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION, nullptr, nullptr, acl, nullptr);
    if (status != ERROR_SUCCESS) {
        err_O << Narrow(level_I) << ": its access list cannot be set (" << SystemMessage(status) << ")\n";
        return 1;
    }
    return 0;
}

// base_I is the system's (ProgramData) and is only passed through; each level of relative_I
// below it is made or checked, from the top.
int MachineFolder(const std::wstring& base_I, const std::wstring& relative_I, std::ostream& err_O) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(kMachineFolderRights, SDDL_REVISION_1,
                                                              &descriptor, nullptr)) {
        err_O << "the folder's access list cannot be made (" << SystemMessage(GetLastError()) << ")\n";
        return 1;
    }
    int result = 0;
    std::wstring level = base_I;
    size_t start = 0;
    while (result == 0 && start < relative_I.size()) {
        const size_t end = relative_I.find(L'\\', start);
        const std::wstring name =
            relative_I.substr(start, end == std::wstring::npos ? std::wstring::npos : end - start);
        start = end == std::wstring::npos ? relative_I.size() : end + 1;
        if (name.empty() || name == L"." || name == L"..") {
            err_O << Narrow(relative_I) << ": not a folder below " << Narrow(base_I) << "\n";
            result = 2;
            break;
        }
        level += L"\\" + name;
        result = MakeOrCheckLevel(level, descriptor, err_O);
    }
    LocalFree(descriptor);
    return result;
}

}  // namespace

bool IsMachineSetupCommand(const std::vector<std::string>& args_I) {
    return !args_I.empty() && (args_I[0] == "--machine-path" || args_I[0] == "--machine-folder");
}

int RunMachineSetupCommand(const std::vector<std::string>& args_I, std::ostream& err_O) {
    if (args_I.size() == 3 && args_I[0] == "--machine-path" &&
        (args_I[1] == "add" || args_I[1] == "remove" || args_I[1] == "has") && !args_I[2].empty()) {
        return MachinePath(args_I[1], Widen(args_I[2]), err_O);
    }
    if (args_I.size() == 3 && args_I[0] == "--machine-folder" && !args_I[1].empty() && !args_I[2].empty()) {
        return MachineFolder(Widen(args_I[1]), Widen(args_I[2]), err_O);
    }
    err_O << "usage: --machine-path add|remove|has FOLDER, or --machine-folder BASE RELATIVE\n";
    return 2;
}
