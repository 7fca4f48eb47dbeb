// velor-display.exe: the command-line tool on Windows, over the dialog's own discovery. With
// --demo the demo's simulated machine stands in for the system, as for the dialog program.
// velor-display-quiet.exe is the same tool without a console, for log-on tasks: what it prints
// goes to velor-display-quiet.log in the program's state folder, each run replacing the last.

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "CommandLineTool.h"
#include "DemoMachine.h"
#include "InUseMark.h"
#include "KeptProfiles.h"
#include "MachineSetup.h"
#include "SystemLibrary.h"
#include "TextFile.h"
#include "WinDisplays.h"
#include "WinStrings.h"

namespace {

// The console's code page as the tool found it, put back however the tool ends.
UINT gConsoleCodePage = 0;

void RestoreConsoleCodePage() {
    if (gConsoleCodePage != 0) {
        SetConsoleOutputCP(gConsoleCodePage);
    }
}

// Ctrl+C and Ctrl+Break end the tool as before, with the console's code page given back first.
BOOL WINAPI OnConsoleControl(DWORD /*event_I*/) {
    RestoreConsoleCodePage();
    return FALSE;
}

int RunTool(const std::vector<std::string>& args);

}  // namespace

// The arguments arrive as UTF-16 and become UTF-8 here: on every Windows, whatever its ANSI code
// page (the manifest's UTF-8 code page is honoured only from Windows 10 1903).
int wmain(int argc, wchar_t** argv) {
    RestrictLibrarySearchToSystem();
    std::vector<std::string> args;
    for (int i = 1; i < argc; ++i) {
        args.push_back(Narrow(argv[i]));
    }
    // The installer's helpers: they run while it installs and hold no in-use mark.
    if (IsMachineSetupCommand(args)) {
        return RunMachineSetupCommand(args, std::cerr);
    }
    // An installer waits while the tool runs (a studio's apply at log-on, a script's set).
    const CInUseMark inUse;
    // Its texts are UTF-8; the console's own code page is the user's again when the tool ends.
    gConsoleCodePage = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    SetConsoleCtrlHandler(OnConsoleControl, TRUE);
    int result = 1;
    try {
        result = RunTool(args);
    } catch (const std::exception& error) {
        std::cerr << "velor-display: stopped by an unexpected error: " << error.what() << "\n";
        result = 1;
    } catch (...) {
        std::cerr << "velor-display: stopped by an unexpected error\n";
        result = 1;
    }
    RestoreConsoleCodePage();
    return result;
}

namespace {

int RunTool(const std::vector<std::string>& args) {
    std::unique_ptr<CDemoMachine> demo;
    if (std::find(args.begin(), args.end(), "--demo") != args.end()) {
        demo = std::make_unique<CDemoMachine>("one-per-route");
    }
    // A console, not a file or a pipe, takes the progress of long operations.
    DWORD consoleMode = 0;
    bool atTerminal = GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &consoleMode) != 0;
    std::ostream* out = &std::cout;
    std::ostream* err = &std::cerr;
#ifdef VLR_QUIET_TOOL
    std::ofstream log;
    if (const std::string folder = ProgramStateFolder(demo != nullptr); !folder.empty()) {
        std::error_code error;
        std::filesystem::create_directories(Utf8Path(folder), error);
        log.open(Utf8Path(folder) / "velor-display-quiet.log", std::ios::trunc);
    }
    out = &log;  // unopened: what would be printed goes nowhere
    err = &log;
    atTerminal = false;
#endif
    int result = 0;
    {
        CWinDisplays displays;
        result = RunCommandLineTool(args, displays, *out, *err, DefaultChangesFile(demo != nullptr),
                                    DefaultKeptFile(demo != nullptr),
                                    CCapabilitiesCache::DefaultFile(demo != nullptr), atTerminal);
    }
    return result;
}

}  // namespace
