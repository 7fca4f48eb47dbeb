// The command-line tool on any arguments over the demo's displays, with any revert notes left
// by an earlier run. Input: the revert notes' bytes, then a zero byte, then the arguments, each
// ended by a zero byte. The tool must answer with one of its exit codes, never end otherwise.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "CommandLineTool.h"
#include "DemoDisplays.h"
#include "VirtualClock.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data_I, size_t size_I) {
    // In the temporary folder scripts/fuzz gives the run (TMPDIR), which it removes.
    static const std::string changes =
        (std::filesystem::temp_directory_path() / ("vlr-fuzz-changes-" + std::to_string(getpid()) + ".json"))
            .string();
    const std::string input(reinterpret_cast<const char*>(data_I), size_I);
    const size_t end = input.find('\0');
    {
        std::ofstream out(changes, std::ios::binary | std::ios::trunc);
        out << input.substr(0, end);
    }
    std::vector<std::string> args;
    if (end != std::string::npos) {
        std::istringstream rest(input.substr(end + 1));
        for (std::string arg; args.size() < 12 && std::getline(rest, arg, '\0');) {
            args.push_back(arg.substr(0, 200));
        }
    }
    CVirtualClock clock;  // the protocol's pauses and a restore's waits take no time
    CScopedClock scoped(clock);
    CDemoDisplays displays("");
    std::ostringstream out;
    std::ostringstream err;
    const int code = RunCommandLineTool(args, displays, out, err, changes);
    if (code < CliExit::kDone || code > CliExit::kChanged) {
        __builtin_trap();
    }
    return 0;
}
