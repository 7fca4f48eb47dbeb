#include "KeeperProcess.h"

#include <windows.h>

#include "DebugLog.h"

namespace {

bool CreateOwnProcess(const std::wstring& commandLine_I) {
    std::wstring command = commandLine_I;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
        DLog("KeeperProcess: did not start (%lu)\n", GetLastError());
        return false;
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return true;
}

KeeperProcess::Starter gStarter = &CreateOwnProcess;

}  // namespace

namespace KeeperProcess {

bool IsRunning() {
    return FindWindowW(kWindowClass, nullptr) != nullptr;
}

bool Start(const std::wstring& options_I) {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return gStarter(L"\"" + std::wstring(path) + L"\" /tray" + (options_I.empty() ? L"" : L" " + options_I));
}

void SetStarter(Starter starter_I) {
    gStarter = starter_I != nullptr ? starter_I : &CreateOwnProcess;
}

}  // namespace KeeperProcess
