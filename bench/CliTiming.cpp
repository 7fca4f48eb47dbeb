// The command-line tool's cost beyond the protocol's own pauses: `list` and one `get` on the
// demo's displays with the real clock, each in a fresh search as a script's runs are. Prints
// wall time over the pauses (target at most 1.05) and the CPU time (target well under 1 ms
// beyond the pauses for a get).
//   vlr_cli_timing [RUNS]

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "Clock.h"
#include "CommandLineTool.h"
#include "DemoDisplays.h"
#include "MeasuringClock.h"

namespace {

double CpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// A get on a display the same process has already initialised: the command's own cost.
void MeasureRepeatedGet(int runs_I) {
    CMeasuringClock clock;
    CScopedClock scoped(clock);
    CDemoDisplays displays("");
    std::ostringstream out;
    std::ostringstream err;
    RunCommandLineTool({"get", "0", "brightness"}, displays, out, err);
    clock.Reset();
    const double cpuStart = CpuSeconds();
    const auto start = std::chrono::steady_clock::now();
    for (int run = 0; run < runs_I * 100; ++run) {
        RunCommandLineTool({"get", "0", "brightness"}, displays, out, err);
    }
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double paused = std::chrono::duration<double>(clock.Requested()).count();
    std::printf("get on an initialised display: wall %.2f ms, pauses %.2f ms, CPU %.3f ms per get\n",
                wall * 1000 / (runs_I * 100), paused * 1000 / (runs_I * 100),
                (CpuSeconds() - cpuStart) * 1000 / (runs_I * 100));
}

void Measure(const char* name_I, const std::vector<std::string>& args_I, int runs_I) {
    CMeasuringClock clock;
    CScopedClock scoped(clock);
    double wall = 0;
    double cpu = 0;
    for (int run = 0; run < runs_I; ++run) {
        const auto start = std::chrono::steady_clock::now();
        const double cpuStart = CpuSeconds();
        CDemoDisplays displays("");
        std::ostringstream out;
        std::ostringstream err;
        if (RunCommandLineTool(args_I, displays, out, err) != 0) {
            std::fprintf(stderr, "%s failed: %s", name_I, err.str().c_str());
            std::exit(1);
        }
        wall += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        cpu += CpuSeconds() - cpuStart;
    }
    const double paused = std::chrono::duration<double>(clock.Requested()).count();
    std::printf("%-6s wall %.3f s, protocol pauses %.3f s, overhead %.4f, CPU %.2f ms per run\n", name_I,
                wall / runs_I, paused / runs_I, wall / paused, cpu * 1000 / runs_I);
}

}  // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 3;
    Measure("list", {"list"}, runs);
    Measure("get", {"get", "0", "brightness"}, runs);
    MeasureRepeatedGet(runs);
    return 0;
}
