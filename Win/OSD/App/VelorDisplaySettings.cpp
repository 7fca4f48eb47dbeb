// The program's entry point: reads the command line, puts the demo's simulated machine in
// place of the real one when asked, and runs the program.

#include <windows.h>

#include <memory>

#include "Application.h"
#include "DemoMachine.h"
#include "StartupOptions.h"
#include "SystemLibrary.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR commandLine_I, int) {
    RestrictLibrarySearchToSystem();
    const SStartupOptions options =
        ParseStartupOptions(commandLine_I != nullptr ? commandLine_I : L"", false);
    std::unique_ptr<CDemoMachine> demo;
    if (!options.demoScenario.empty() && !options.help) {
        demo = std::make_unique<CDemoMachine>(options.demoScenario);
    }
    const int result = RunApplication(options);
    demo.reset();
    return result;
}
