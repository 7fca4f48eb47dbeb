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

#include "CommandLineTool.h"
#include "DemoMachine.h"
#include "InUseMark.h"
#include "KeptProfiles.h"
#include "SystemLibrary.h"
#include "TextFile.h"
#include "WinDisplays.h"

int main(int argc, char** argv) {
    RestrictLibrarySearchToSystem();
    // An installer waits while the tool runs (a studio's apply at log-on, a script's set).
    const CInUseMark inUse;
    // Its texts are UTF-8 (the manifest makes UTF-8 the process's code page); the console's own
    // code page is the user's again when the tool ends.
    const UINT consoleCodePage = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    struct SRestoreCodePage {
        UINT codePage;
        ~SRestoreCodePage() {
            if (codePage != 0) {
                SetConsoleOutputCP(codePage);
            }
        }
    } restoreCodePage{consoleCodePage};
    const std::vector<std::string> args(argv + 1, argv + argc);
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
        result =
            RunCommandLineTool(args, displays, *out, *err, DefaultChangesFile(demo != nullptr),
                               DefaultKeptFile(demo != nullptr), CCapabilitiesCache::DefaultFile(demo != nullptr),
                               atTerminal);
    }
    return result;
}
