#pragma once
// The state of the one simulated machine installed in the process, shared by the simulated
// system calls (SetupAPI, the registry, the desktop, COM ports) and the simulated FTDI driver.
// Every call takes the machine's lock.

#include <windows.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include "CVirtualMpsseEngine.h"
#include "CVirtualSerialPort.h"
#include "SimulatedMachine.h"

namespace SimulatedMachineState {

enum class ESetKind { Monitors, HidInterfaces, ComPorts };
enum class EKeyKind { Monitor, ComPort, Bios };

struct SDeviceSet {
    ESetKind kind;
};

struct SKey {
    EKeyKind kind;
    size_t index;
};

struct SMachineState {
    SVirtualMachine machine;
    std::vector<HMONITOR> monitorHandles;  // per monitor; null when not on the desktop
    std::map<uintptr_t, SKey> keys;
    uintptr_t nextKey = 0x7A000010;
    std::vector<std::unique_ptr<CVirtualMpsseEngine>> bridges;  // per FTDI bridge
    std::map<uintptr_t, size_t> openBridges;                    // FT_HANDLE -> bridge
    std::vector<CSimulatedMachine::SFtdiUse> bridgeUse;         // per FTDI bridge
    unsigned portListings = 0;
    unsigned portOpens = 0;
    // Displays whose cable is out (or the computer asleep): their ports and bridges do not
    // open, and what was open on them stays dead.
    std::set<const CVirtualDisplay*> unplugged;
    std::set<uintptr_t> deadBridgeHandles;
    std::vector<std::pair<CVirtualSerialPort*, const CVirtualDisplay*>> openLines;
};

// The machine's lock, and its state while a CSimulatedMachine is installed (null otherwise).
extern std::recursive_mutex gMutex;
extern SMachineState* gState;

}  // namespace SimulatedMachineState
