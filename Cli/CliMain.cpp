// velor-display: the command-line tool. With --demo it works on the demo's virtual displays;
// otherwise on the displays of this system (DDC/CI over the DRM connectors' DDC buses).

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "CommandLineTool.h"
#include "DemoDisplays.h"
#include "KeptProfiles.h"
#include "LinuxDisplays.h"

namespace {

int RunTool(const std::vector<std::string>& args) {
    const bool demo = std::find(args.begin(), args.end(), "--demo") != args.end();
    const bool atTerminal = isatty(STDERR_FILENO) != 0;
    if (demo) {
        CDemoDisplays displays(CDemoDisplays::DefaultStateFile());
        return RunCommandLineTool(args, displays, std::cout, std::cerr, DefaultChangesFile(true),
                                  DefaultKeptFile(true), CCapabilitiesCache::DefaultFile(true), atTerminal);
    }
    CLinuxDisplays displays(RealLinuxSystem());
    return RunCommandLineTool(args, displays, std::cout, std::cerr, DefaultChangesFile(false),
                              DefaultKeptFile(false), CCapabilitiesCache::DefaultFile(false), atTerminal);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return RunTool(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const std::exception& error) {
        std::cerr << "velor-display: stopped by an unexpected error: " << error.what() << "\n";
    } catch (...) {
        std::cerr << "velor-display: stopped by an unexpected error\n";
    }
    return 1;
}
