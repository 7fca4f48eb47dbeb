// velor-display.exe: the command-line tool on Windows, over the dialog's own discovery. With
// --demo the demo's simulated machine stands in for the system, as for the dialog program.

#include <windows.h>

#include <algorithm>
#include <iostream>
#include <memory>

#include "CommandLineTool.h"
#include "DemoMachine.h"
#include "KeptProfiles.h"
#include "SystemLibrary.h"
#include "WinDisplays.h"

int main(int argc, char** argv) {
    RestrictLibrarySearchToSystem();
    SetConsoleOutputCP(CP_UTF8);
    const std::vector<std::string> args(argv + 1, argv + argc);
    std::unique_ptr<CDemoMachine> demo;
    if (std::find(args.begin(), args.end(), "--demo") != args.end()) {
        demo = std::make_unique<CDemoMachine>("one-per-route");
    }
    int result = 0;
    {
        CWinDisplays displays;
        result =
            RunCommandLineTool(args, displays, std::cout, std::cerr, DefaultChangesFile(demo != nullptr),
                               DefaultKeptFile(demo != nullptr), CCapabilitiesCache::DefaultFile(demo != nullptr));
    }
    return result;
}
