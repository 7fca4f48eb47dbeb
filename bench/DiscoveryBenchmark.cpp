// Discovery on the real clock over a simulated machine with one display on each route the
// simulation offers (HID, the graphics driver, a serial port, an FTDI bridge):
// - today's reference path, displays one after another without the capabilities cache:
//   wall time over the pauses the protocol asked for (target at most 1.05);
// - each display searched alone (a machine with only it), the slowest of them;
// - displays initialised at the same time, first start (empty cache): target at most 1.15 x
//   the slowest display alone;
// - the same with the cache filled: target at most half the first start.
//
// Discovery is Windows code, so this is a timing harness for the Windows build, run under
// Wine: build/windows/bench/vlr_bench_discovery.exe [runs]

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "CWinDisplayConfigInterface.h"
#include "MeasuringClock.h"
#include "SimulatedMachine.h"
#include "VirtualMachine.h"

namespace {

struct SRun {
    double wall = 0;
    double paused = 0;
    size_t found = 0;
};

SRun Search(const SVirtualMachine& machine_I, bool atOnce_I,
            const std::shared_ptr<CCapabilitiesCache>& cache_I, CMeasuringClock& clock_I) {
    CSimulatedMachine machine(machine_I);
    auto discovery = CWinDisplayConfigInterface::Create();
    discovery->SetInitializeAtOnce(atOnce_I);
    discovery->SetCapabilitiesCache(cache_I);
    clock_I.Reset();
    const auto start = std::chrono::steady_clock::now();
    discovery->Init();
    SRun run;
    run.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    run.paused = std::chrono::duration<double>(clock_I.Requested()).count();
    run.found = discovery->Displays().size();
    return run;
}

}  // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 3;
    CMeasuringClock clock;
    CScopedClock scoped(clock);
    const SVirtualMachine desk = *VirtualMachine::Scenario("one-per-route");
    const std::string cacheFile =
        (std::filesystem::temp_directory_path() / "vlr-bench-discovery-cache.json").string();

    double before = 0;
    double worstOverhead = 0;
    double alone[4] = {};
    double first = 0;
    double cached = 0;
    for (int run = 0; run < runs; ++run) {
        const SRun serial = Search(desk, false, nullptr, clock);
        if (serial.found != 4) {
            std::printf("the search did not find the four displays\n");
            return 1;
        }
        before += serial.wall / runs;
        worstOverhead = std::max(worstOverhead, serial.wall / serial.paused);
        for (size_t route = 0; route < 4; ++route) {
            alone[route] +=
                Search(VirtualMachine::OnePerRouteAlone(route), false, nullptr, clock).wall / runs;
        }
        std::filesystem::remove(cacheFile);
        auto cache = std::make_shared<CCapabilitiesCache>(cacheFile);
        const SRun atOnce = Search(desk, true, cache, clock);
        const SRun again = Search(desk, true, cache, clock);
        if (atOnce.found != 4 || again.found != 4) {
            std::printf("the search at once did not find the four displays\n");
            return 1;
        }
        first += atOnce.wall / runs;
        cached += again.wall / runs;
    }
    std::filesystem::remove(cacheFile);
    const double slowestAlone = *std::max_element(std::begin(alone), std::end(alone));
    std::printf(
        "one after another, no cache (before): wall %.3f s, worst overhead %.4f (target at most 1.05)\n",
        before, worstOverhead);
    std::printf("slowest display searched alone:       wall %.3f s\n", slowestAlone);
    std::printf(
        "at once, first start:                 wall %.3f s = %.2f x the slowest alone (target at most "
        "1.15)\n",
        first, first / slowestAlone);
    std::printf(
        "at once, cache filled:                wall %.3f s = %.2f x the first start (target at most 0.5)\n",
        cached, cached / first);
    return first <= 1.15 * slowestAlone && cached <= 0.5 * first ? 0 : 1;
}
