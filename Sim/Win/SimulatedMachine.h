#pragma once
// Makes a virtual machine the process's system for the lifetime of the object: SetupAPI lists
// its monitors, HID interfaces and COM ports, the registry holds their EDIDs and port names
// and its BIOS manufacturer, the desktop shows its monitors, and the Monitor Configuration
// API, the HID calls, the COM ports and the FTDI driver reach its virtual displays. The real
// discovery and the real connectors then run against it. One at a time per process.

#include <chrono>
#include <memory>

#include "CVirtualMonitorConfiguration.h"
#include "DiscoverySystemApi.h"
#include "SimulatedHidApi.h"
#include "SimulatedMonitorConfigurationApi.h"
#include "VirtualMachine.h"

class CSimulatedMachine {
public:
    explicit CSimulatedMachine(SVirtualMachine machine_I);
    ~CSimulatedMachine();
    CSimulatedMachine(const CSimulatedMachine&) = delete;
    CSimulatedMachine& operator=(const CSimulatedMachine&) = delete;

    const SVirtualMachine& Machine() const;
    CVirtualMonitorConfiguration& MonitorConfiguration() { return *mMonitorConfiguration; }
    CSimulatedHidApi& Hid() { return *mHid; }
    // Makes it happen on every route the display is reached by, and tells the programs as
    // Windows would (a device change, a suspend, a resume).
    void Play(const SDeskEvent& event_I);
    // How long a display switched on again answers nothing while its firmware starts.
    static constexpr std::chrono::milliseconds kStartingUpAfterPowerOn{2500};
    // The monitor handle of the n-th monitor (null when it is not on the desktop).
    HMONITOR MonitorHandle(size_t index_I) const;

    // How often discovery asked for the COM port list (once per search at most).
    unsigned PortListings() const;
    // How many COM ports were opened.
    unsigned PortOpens() const;

    // What the program did to the n-th FTDI device: how often it opened it, and the bit mode
    // it left it in (0 is the device's default).
    struct SFtdiUse {
        unsigned opens = 0;
        uint8_t bitMode = 0;
    };
    SFtdiUse FtdiUse(size_t index_I) const;

    static const SDiscoverySystemApi& Table();

private:
    // The display's cable is out (or back in) on every route it is reached by.
    void SetUnplugged(const std::shared_ptr<CVirtualDisplay>& display_I, bool unplugged_I);

    std::shared_ptr<CVirtualMonitorConfiguration> mMonitorConfiguration;
    std::unique_ptr<CSimulatedHidApi> mHid;
    std::unique_ptr<CSimulatedMonitorConfigurationApi> mMca;
};
