#pragma once
// The displays of this Linux system: each DRM connector whose EDID names the maker, reached over
// the maker's HID control interface (/dev/hidrawN) when one pairs with it, as on Windows, over a
// USB serial port for the models reached that way, or else by DDC/CI over the connector's DDC
// bus (/dev/i2c-N). The routes are tried as the portable route plan orders them.

#include <memory>
#include <string>
#include <vector>

#include "FoundDisplay.h"
#include "LinuxSystem.h"

class CWinUSBConnector;

class CLinuxDisplayDiscovery {
public:
    explicit CLinuxDisplayDiscovery(ILinuxSystem& system_I, std::string sysfsDrm_I = "/sys/class/drm",
                                    std::string sysfsHidraw_I = "/sys/class/hidraw",
                                    std::string sysfsTty_I = "/sys/class/tty")
        : mSystem(system_I),
          mSysfsDrm(std::move(sysfsDrm_I)),
          mSysfsHidraw(std::move(sysfsHidraw_I)),
          mSysfsTty(std::move(sysfsTty_I)) {}

    // Searches the system once; the displays found, in the DRM connectors' order.
    std::vector<SFoundDisplay> Find();
    // What the user can do about nodes that did not open.
    const std::vector<std::string>& Notes() const { return mNotes; }

private:
    struct SSerialCandidate {
        std::string node;
        std::shared_ptr<CWinUSBConnector> connector;  // opened when a display first needs the ports
        bool taken = false;
    };
    // Opens the ports not opened yet; a port that does not open leaves a note.
    void OpenSerialPorts(std::vector<SSerialCandidate>& ports_IO);

    ILinuxSystem& mSystem;
    std::string mSysfsDrm;
    std::string mSysfsHidraw;
    std::string mSysfsTty;
    std::vector<std::string> mNotes;
};
