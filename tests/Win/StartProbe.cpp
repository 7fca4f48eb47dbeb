// Starts a program and waits for its main dialog, as a person would see it: prints how long it
// took, closes the dialog and waits for the program to end. Exit code 0 when the dialog came
// within the time allowed, 1 otherwise. The release check runs it under Wine on the installed
// and the portable copies.
//   vlr_start_probe SECONDS PROGRAM [ARGUMENT...]
// It also runs a command line exactly as given (an NSIS uninstaller needs its "_?=folder"
// unquoted, which a shell's arguments cannot give) and exits with that program's exit code:
//   vlr_start_probe --run "COMMAND LINE"
// And it waits for a main dialog of any program, or closes the one there is:
//   vlr_start_probe --wait SECONDS        vlr_start_probe --close
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "DialogIds.h"

namespace {

struct SSearch {
    DWORD process = 0;
    HWND dialog = nullptr;
};

BOOL CALLBACK FindMainDialog(HWND window_I, LPARAM search_I) {
    auto* search = reinterpret_cast<SSearch*>(search_I);
    DWORD process = 0;
    GetWindowThreadProcessId(window_I, &process);
    wchar_t className[16] = {};
    GetClassNameW(window_I, className, 16);
    if ((search->process == 0 || process == search->process) && std::wstring(className) == L"#32770" &&
        IsWindowVisible(window_I) && GetDlgItem(window_I, IDC_DISPLAY_LIST) != nullptr) {
        search->dialog = window_I;
        return FALSE;
    }
    return TRUE;
}

}  // namespace

int RunCommandLine(std::string commandLine_I) {
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, commandLine_I.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
        std::fprintf(stderr, "vlr_start_probe: %s does not start (error %lu)\n", commandLine_I.c_str(),
                     GetLastError());
        return 255;
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 255;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<int>(code);
}

HWND WaitForAnyMainDialog(ULONGLONG limitMs_I) {
    SSearch search;
    const ULONGLONG start = GetTickCount64();
    for (;;) {
        EnumWindows(&FindMainDialog, reinterpret_cast<LPARAM>(&search));
        if (search.dialog != nullptr || GetTickCount64() - start >= limitMs_I) {
            return search.dialog;
        }
        Sleep(10);
    }
}

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--run") {
        return RunCommandLine(argv[2]);
    }
    if (argc == 3 && std::string(argv[1]) == "--wait") {
        return WaitForAnyMainDialog(static_cast<ULONGLONG>(std::atof(argv[2]) * 1000)) != nullptr ? 0 : 1;
    }
    if (argc == 2 && std::string(argv[1]) == "--close") {
        HWND dialog = WaitForAnyMainDialog(0);
        return dialog != nullptr && PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0) ? 0 : 1;
    }
    if (argc < 3) {
        std::fprintf(stderr,
                     "usage: vlr_start_probe SECONDS PROGRAM [ARGUMENT...] | --run \"COMMAND LINE\"\n");
        return 2;
    }
    const ULONGLONG limitMs = static_cast<ULONGLONG>(std::atof(argv[1]) * 1000);
    std::string commandLine = std::string("\"") + argv[2] + "\"";
    for (int i = 3; i < argc; ++i) {
        commandLine += std::string(" \"") + argv[i] + "\"";
    }
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    const ULONGLONG start = GetTickCount64();
    if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
        std::fprintf(stderr, "vlr_start_probe: %s does not start (error %lu)\n", argv[2], GetLastError());
        return 1;
    }
    SSearch search{process.dwProcessId, nullptr};
    while (GetTickCount64() - start < limitMs && WaitForSingleObject(process.hProcess, 0) == WAIT_TIMEOUT) {
        EnumWindows(&FindMainDialog, reinterpret_cast<LPARAM>(&search));
        if (search.dialog != nullptr) {
            break;
        }
        Sleep(10);
    }
    int result = 1;
    if (search.dialog != nullptr) {
        std::printf("main dialog after %llu ms\n", GetTickCount64() - start);
        PostMessageW(search.dialog, WM_COMMAND, IDCANCEL, 0);
        result = 0;
    } else {
        std::fprintf(stderr, "vlr_start_probe: no main dialog within %s s\n", argv[1]);
    }
    if (WaitForSingleObject(process.hProcess, 10000) != WAIT_OBJECT_0) {
        std::fprintf(stderr, "vlr_start_probe: the program did not end; stopped\n");
        TerminateProcess(process.hProcess, 1);
        result = 1;
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    std::fflush(stdout);
    return result;
}
