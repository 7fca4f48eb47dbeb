// velor-display: the command-line tool. With --demo it works on the demo's virtual displays;
// otherwise on the displays of this system (DDC/CI over the DRM connectors' DDC buses).

#include <unistd.h>

#include <algorithm>
#include <iostream>

#include "CommandLineTool.h"
#include "DemoDisplays.h"
#include "KeptProfiles.h"
#include "LinuxDisplays.h"

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
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
