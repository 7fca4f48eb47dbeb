#pragma once
// The command-line tool over the demo's four virtual displays (graphics driver, HID, serial,
// FTDI) on a virtual clock: a run's exit code and what it printed, and the virtual display
// behind each index.

#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#ifdef _WIN32
#include <process.h>
#define VLR_TOOL_BENCH_PID _getpid()
#else
#include <unistd.h>
#define VLR_TOOL_BENCH_PID getpid()
#endif

#include "CVirtualDisplayConnector.h"
#include "CommandLineTool.h"
#include "DemoDisplays.h"
#include "DisplayLockScope.h"
#include "VirtualClock.h"

struct SRun {
    int code = -1;
    std::string out;
    std::string err;
};

struct SToolBench {
    SToolBench() { ScopeDisplayLocksToThisProcess(); }
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    CDemoDisplays displays{""};

    std::string keptFile;
    std::string changesFile;  // the revert notes; none when empty

    SRun Run(const std::vector<std::string>& args) {
        std::ostringstream out;
        std::ostringstream err;
        SRun run;
        run.code = RunCommandLineTool(args, displays, out, err, changesFile, keptFile);
        run.out = out.str();
        run.err = err.str();
        return run;
    }
    // The virtual display behind the n-th display of the list.
    std::shared_ptr<CVirtualDisplay> Virtual(size_t index) {
        auto connector = std::dynamic_pointer_cast<CVirtualDisplayConnector>(
            displays.Displays().at(index).display->GetConnector());
        return connector->Display();
    }
};

// A path in a folder of this test process's own, removed with everything in it at exit.
inline std::string TempFile(const char* name) {
    struct SProcessFolder {
        std::filesystem::path path =
            std::filesystem::temp_directory_path() / ("vlr-tool-tests-" + std::to_string(VLR_TOOL_BENCH_PID));
        SProcessFolder() { std::filesystem::create_directories(path); }
        ~SProcessFolder() {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
    };
    static const SProcessFolder folder;
    return (folder.path / name).string();
}
