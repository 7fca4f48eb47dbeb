#pragma once
// The program's demo: a simulated machine installed as the system, whose displays keep their
// saved settings between runs in a file under the user's application data folder, so that
// Save, Revert, a restart and a factory reset behave as on hardware. A scenario with a desk
// timeline (displays unplugged and plugged in, the computer asleep and awake) plays it on the
// real clock while the program runs.

#include <windows.h>

#include <memory>
#include <string>
#include <thread>

#include "SimulatedMachine.h"

class CDemoMachine {
public:
    // An unknown scenario name falls back to the default scenario (logged).
    explicit CDemoMachine(const std::string& scenario_I);
    // Stores the displays' saved settings.
    ~CDemoMachine();
    CDemoMachine(const CDemoMachine&) = delete;
    CDemoMachine& operator=(const CDemoMachine&) = delete;

    const std::string& Scenario() const { return mScenario; }
    CSimulatedMachine& Machine() { return *mMachine; }
    // Where the saved settings of a scenario are kept.
    static std::wstring StateFile(const std::string& scenario_I);

private:
    void Load();
    void Store() const;

    std::string mScenario;
    std::unique_ptr<CSimulatedMachine> mMachine;
    HANDLE mStop = nullptr;  // set when the demo ends: the timeline stops waiting
    std::thread mTimeline;
};
