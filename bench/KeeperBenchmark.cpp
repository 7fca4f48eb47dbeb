// How long the keeper takes to put a display's kept profile back once the display answers
// again, against the pauses the protocol itself needs for that round (the fresh search's
// initialisation, the reads, the writes that drifted and their read-back).
//
// RestoreAfterPowerCycle runs on the real clock: a Canvas 22 Pro is power-cycled (it forgets
// brightness, contrast and sharpness), the keeper hears of it and runs its round. The keeper
// waits 3 s (kSettle) after a desk event before the round; that wait is its own choice, is not
// timed here, and is reported as "settle_s". "overhead" is the round's wall time divided by
// the protocol's pauses in it (target: at most 1.05, plus the settle wait).

#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "CVirtualDisplay.h"
#include "CVirtualDisplayConnector.h"
#include "MeasuringClock.h"
#include "SettingsKeeper.h"
#include "VirtualDisplayPresets.h"

namespace {

class CBenchDesk : public IKeeperDesk {
public:
    explicit CBenchDesk(std::shared_ptr<CVirtualDisplay> display_I) : mDisplay(std::move(display_I)) {}
    std::vector<SFoundDisplay> Search() override {
        auto connector = std::make_shared<CVirtualDisplayConnector>(mDisplay);
        connector->Open(0);
        return {{"Canvas 22 Pro",
                 "S1",
                 "HID",
                 std::make_shared<UiDisplayDelegate>(connector, mDisplay->Model().edidProductCode),
                 false,
                 {}}};
    }
    std::shared_ptr<void> TryHold(const std::string&) override { return std::make_shared<int>(0); }
    void Notify(const std::vector<SKeeperResult>& results_I) override { restored = results_I; }
    std::vector<SKeeperResult> restored;

private:
    std::shared_ptr<CVirtualDisplay> mDisplay;
};

void RestoreAfterPowerCycle(benchmark::State& state) {
    CMeasuringClock clock;
    CScopedClock scoped(clock);
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "vlr-keeper-bench";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "profile.json")
        << R"({"settings": {"brightness": 40, "contrast": 45, "sharpness": 3}})";
    CKeptProfiles kept((folder / "kept.json").string());
    kept.Keep("Canvas 22 Pro", "S1", (folder / "profile.json").string());
    std::string problem;
    kept.Store(problem);

    auto display = std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset("canvas-22-pro"));
    CBenchDesk desk(display);
    // The keeper's time runs ahead by the settle wait once it heard of the event.
    std::chrono::microseconds ahead{0};
    CSettingsKeeper keeper(desk, (folder / "kept.json").string(), (folder / "rules.json").string(),
                           [&] { return clock.Now() + ahead; });
    std::chrono::duration<double> wall{0};
    std::chrono::microseconds pauses{0};
    for (auto _ : state) {
        display->PowerCycle();
        desk.restored.clear();
        keeper.DesktopChanged();
        ahead += CSettingsKeeper::kSettle;
        clock.Reset();
        const auto start = std::chrono::steady_clock::now();
        keeper.Poll();
        wall += std::chrono::steady_clock::now() - start;
        pauses += clock.Requested();
        if (desk.restored.size() != 1 || desk.restored[0].settings.size() != 3) {
            state.SkipWithError("the round did not restore the three settings");
        }
    }
    const double requested = std::chrono::duration<double>(pauses).count();
    state.counters["protocol_pauses_s"] = requested / static_cast<double>(state.iterations());
    state.counters["settle_s"] = std::chrono::duration<double>(CSettingsKeeper::kSettle).count();
    state.counters["overhead"] = wall.count() / requested;
    std::filesystem::remove_all(folder);
}

}  // namespace

BENCHMARK(RestoreAfterPowerCycle)->Unit(benchmark::kMillisecond)->Iterations(5);
