// The command-line tool's time on the demo's displays with the real clock, each run a fresh
// search as a script's runs are, beside today's reference path (displays one after another,
// no capabilities cache) measured in the same run:
// - `list` against the slowest display's identity reads (its firmware version): target at most 1.1;
// - `get 0 brightness` with the cache filled: target at most 0.2 s wall;
// - wall time over the protocol's pauses and the CPU time of each (targets: 1.05, well under
//   1 ms beyond the pauses for a get on an initialised display).
//   vlr_cli_timing [RUNS]

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "Clock.h"
#include "CommandLineTool.h"
#include "DemoDisplays.h"
#include "MeasuringClock.h"

namespace {

const std::string kCacheFile =
    (std::filesystem::temp_directory_path() / "vlr-cli-timing-cache.json").string();

double CpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

struct SFigure {
    double wall = 0;
    double paused = 0;
    double cpu = 0;
};

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

SFigure Measure(const std::vector<std::string>& args_I, int runs_I) {
    CMeasuringClock clock;
    CScopedClock scoped(clock);
    SFigure figure;
    for (int run = 0; run < runs_I; ++run) {
        const auto start = std::chrono::steady_clock::now();
        const double cpuStart = CpuSeconds();
        CDemoDisplays displays("");
        std::ostringstream out;
        std::ostringstream err;
        if (RunCommandLineTool(args_I, displays, out, err, {}, {}, kCacheFile) != 0) {
            std::fprintf(stderr, "%s failed: %s", args_I[0].c_str(), err.str().c_str());
            std::exit(1);
        }
        figure.wall += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        figure.cpu += CpuSeconds() - cpuStart;
    }
    figure.wall /= runs_I;
    figure.cpu /= runs_I;
    figure.paused = std::chrono::duration<double>(clock.Requested()).count() / runs_I;
    return figure;
}

void Print(const char* name_I, const SFigure& figure_I) {
    std::printf("%-44s wall %.3f s, protocol pauses %.3f s, CPU %.2f ms\n", name_I, figure_I.wall,
                figure_I.paused, figure_I.cpu * 1000);
}

// The slowest of the demo's displays to say its firmware version, each asked alone.
double SlowestIdentityRead() {
    CDemoDisplays displays("");
    double slowest = 0;
    for (SFoundDisplay& display : displays.Displays()) {
        const auto start = std::chrono::steady_clock::now();
        display.display->ReadFirmwareVersion();
        slowest = std::max(slowest,
                           std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return slowest;
}

}  // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 3;
    std::filesystem::remove(kCacheFile);
    const SFigure listBefore = Measure({"list", "--serial-init", "--no-cache"}, runs);
    const SFigure getBefore = Measure({"get", "0", "brightness", "--serial-init", "--no-cache"}, runs);
    Measure({"get", "0", "brightness"}, 1);  // fills the cache
    const SFigure list = Measure({"list"}, runs);
    const SFigure get = Measure({"get", "0", "brightness"}, runs);
    const double identity = SlowestIdentityRead();
    Print("list, one after another, no cache (before)", listBefore);
    Print("list, at once, cache filled", list);
    std::printf("  slowest display's identity reads %.3f s: list takes %.2f of it (target at most 1.1)\n",
                identity, list.wall / identity);
    Print("get 0 brightness, fresh run, no cache (before)", getBefore);
    Print("get 0 brightness, fresh run, cache filled", get);
    std::printf("  %.3f s (target at most 0.2 s)\n", get.wall);
    MeasureRepeatedGet(runs);
    std::filesystem::remove(kCacheFile);
    return list.wall <= 1.1 * identity && get.wall <= 0.2 ? 0 : 1;
}
