// What the program adds to the protocol's own waits, and what one transaction costs.
//
// InitializeAndReadAll runs on the real clock: a display is initialised over the virtual
// display and every option is read. "overhead" is the measured wall time divided by the sum
// of the pauses the protocol asked for (target: at most 1.02).
// GetTransaction and SetTransaction run on a virtual clock, so they measure the CPU time of
// one get or set transaction without its pauses (target: under 2 us).

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>

#include "CDisplay.h"
#include "CVirtualDisplay.h"
#include "CVirtualDisplayConnector.h"
#include "MeasuringClock.h"
#include "VirtualClock.h"
#include "VirtualDisplayPresets.h"

namespace {

struct SDisplayUnderTest {
    std::shared_ptr<CVirtualDisplay> display;
    std::shared_ptr<CVirtualDisplayConnector> connector;
    std::unique_ptr<CDisplay> cdisplay;

    explicit SDisplayUnderTest(const char* key) {
        const SVirtualDisplayModel& model = *FindVirtualDisplayPreset(key);
        display = std::make_shared<CVirtualDisplay>(model);
        connector = std::make_shared<CVirtualDisplayConnector>(display);
        connector->Open(0);
        cdisplay = std::make_unique<CDisplay>(connector, model.edidProductCode);
    }
};

void InitializeAndReadAll(benchmark::State& state) {
    CMeasuringClock clock;
    CScopedClock scoped(clock);
    std::chrono::duration<double> wall{0};
    for (auto _ : state) {
        SDisplayUnderTest unit("studio-24");
        const auto start = std::chrono::steady_clock::now();
        bool ok = unit.cdisplay->Initialize();
        for (const auto& entry : unit.cdisplay->Options()) {
            unit.cdisplay->GetVCPValue(entry.first, true);
        }
        wall += std::chrono::steady_clock::now() - start;
        if (!ok) {
            state.SkipWithError("initialisation failed");
        }
    }
    const double requested = std::chrono::duration<double>(clock.Requested()).count();
    state.counters["protocol_pauses_s"] = requested / static_cast<double>(state.iterations());
    state.counters["overhead"] = wall.count() / requested;
}

void GetTransaction(benchmark::State& state) {
    CVirtualClock clock;
    CScopedClock scoped(clock);
    SDisplayUnderTest unit("studio-24");
    unit.cdisplay->Initialize();
    VCPOptionPtr contrast = unit.cdisplay->Option(0x12);
    for (auto _ : state) {
        benchmark::DoNotOptimize(unit.cdisplay->ReadVCPValue_(contrast));
        clock.ClearPauses();
    }
    unit.display->ClearTransactions();
}

void SetTransaction(benchmark::State& state) {
    CVirtualClock clock;
    CScopedClock scoped(clock);
    SDisplayUnderTest unit("studio-24");
    unit.cdisplay->Initialize();
    VCPOptionPtr contrast = unit.cdisplay->Option(0x12);
    unit.cdisplay->ReadVCPValue_(contrast);
    int32_t value = 0;
    for (auto _ : state) {
        contrast->SetValue(value);
        value = (value + 1) % 100;
        benchmark::DoNotOptimize(unit.cdisplay->WriteVCPValue_(contrast));
        clock.ClearPauses();
    }
    unit.display->ClearTransactions();
}

}  // namespace

BENCHMARK(InitializeAndReadAll)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(GetTransaction);
BENCHMARK(SetTransaction);
