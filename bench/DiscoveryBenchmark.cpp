// What discovery adds to the protocol's own waits: a full search over a simulated machine
// with one display on each route the simulation offers (HID, the graphics driver, a serial
// port, an FTDI bridge), on the real clock. "overhead" is the wall time divided by the sum of
// the pauses the protocol asked for (target: at most 1.05).
//
// Discovery is Windows code, so this is a timing harness for the Windows build, run under
// Wine: build/windows/bench/vlr_bench_discovery.exe [runs]

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "CWinDisplayConfigInterface.h"
#include "MeasuringClock.h"
#include "SimulatedMachine.h"
#include "VirtualMachine.h"

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 3;
    CMeasuringClock clock;
    CScopedClock scoped(clock);
    double worst = 0.0;
    for (int run = 0; run < runs; ++run) {
        CSimulatedMachine machine(*VirtualMachine::Scenario("one-per-route"));
        auto discovery = CWinDisplayConfigInterface::Create();
        clock.Reset();
        const auto start = std::chrono::steady_clock::now();
        const bool found = discovery->Init();
        const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
        const double requested = std::chrono::duration<double>(clock.Requested()).count();
        const double overhead = wall.count() / requested;
        worst = std::max(worst, overhead);
        std::printf("run %d: %zu displays, wall %.3f s, protocol pauses %.3f s, overhead %.4f\n", run + 1,
                    discovery->Displays().size(), wall.count(), requested, overhead);
        if (!found || discovery->Displays().size() != 4) {
            std::printf("the search did not find the four displays\n");
            return 1;
        }
    }
    std::printf("worst overhead %.4f (target at most 1.05)\n", worst);
    return 0;
}
