#pragma once
// A whole simulated computer as display discovery sees it: the monitors the system lists
// (hardware id, driver key, the EDID in their registry key, whether the graphics driver
// reaches their controller), HID interfaces, COM ports and FTDI bridges, each backed by
// virtual displays, and the BIOS manufacturer. Sim/Win installs one as the process's system;
// the named scenarios are the test beds of discovery and the machines the demo shows.

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ByteBuffer.h"
#include "CVirtualDisplay.h"

struct SVirtualMonitor {
    std::string hardwareId;  // "MONITOR\VLR1070"
    std::string driverKey;   // "{4d36e96e-e325-11ce-bfc1-08002be10318}\0001"
    bool hardwareIdReadable = true;
    // The device key's "EDID" value; none: the value is missing.
    std::optional<ByteBuffer> registryEdid;
    // The controller the graphics driver reaches; null: a monitor without DDC/CI.
    std::shared_ptr<CVirtualDisplay> display;
    // The controller is there but DDC/CI through the driver fails (a dock, a converter).
    bool ddcCiFails = false;
    bool onDesktop = true;  // has a monitor handle
};

struct SVirtualHidInterface {
    std::string path;
    uint16_t vendorId = 0;
    uint16_t productId = 0;
    // The display behind the VCP control report; null: another collection (pen, keyboard).
    std::shared_ptr<CVirtualDisplay> display;
    bool exclusive = false;  // held by another program: opening fails
    // Opening for reading or writing fails with this error (5: a pen, touch or keyboard
    // collection Windows keeps for itself); access 0 works.
    uint32_t readWriteError = 0;
    unsigned featureReportLength = 512;  // as the collection declares it, report id included
};

struct SVirtualComPort {
    std::string hardwareId;                    // "USB\VID_10C4&PID_EA60\0001"
    std::string portName;                      // "COM3"
    std::shared_ptr<CVirtualDisplay> display;  // null: nothing on the line answers
};

struct SVirtualFtdiBridge {
    std::shared_ptr<CVirtualDisplay> display;  // null: a cable or probe with no display on it
    uint32_t deviceType = 8;                   // D2XX device type: 8 is an FT232H, 5 an FT232R
    bool openElsewhere = false;                // another program holds it
};

// Something that happens on the desk while a scenario runs: the demo plays these on the real
// clock; tests make the same changes themselves.
struct SDeskEvent {
    enum class EKind {
        Unplug,  // the display's cable is pulled: it stops answering, its handles die
        PlugIn,  // it is plugged back in
        Sleep,   // the computer sleeps: every display stops answering
        Wake,    // and wakes: they answer again under new handles
        // The display is switched off and on: its handles die, it comes back with what its
        // firmware kept, and answers nothing for a while as it starts.
        PowerCycle,
        // Someone changes a value with the display's own buttons (Windows hears nothing).
        MenuChange,
    };
    std::chrono::milliseconds at{0};  // after the program started
    EKind kind = EKind::Unplug;
    std::shared_ptr<CVirtualDisplay> display;  // all but Sleep and Wake: which one
    uint8_t code = 0;                          // MenuChange: the control and its new value
    uint16_t value = 0;
};

struct SVirtualMachine {
    std::string name;
    std::string description;
    std::vector<SVirtualMonitor> monitors;
    std::vector<SVirtualHidInterface> hidInterfaces;
    std::vector<SVirtualComPort> comPorts;
    std::vector<SVirtualFtdiBridge> ftdiBridges;
    std::string biosManufacturer = "Contoso Computers";
    std::vector<SDeskEvent> timeline;  // in order of time

    // Every virtual display of the machine once, in the order first named.
    std::vector<std::shared_ptr<CVirtualDisplay>> Displays() const;
};

namespace VirtualMachine {

// A display of a preset ("studio-24"); null when there is no such preset.
std::shared_ptr<CVirtualDisplay> MakeDisplay(const std::string& presetKey_I);
// The monitor record the system keeps for a display, the n-th monitor of the machine.
SVirtualMonitor MonitorOf(const std::shared_ptr<CVirtualDisplay>& display_I, unsigned index_I);
// The display's HID control interface (the maker's vendor id, the tablet's product id).
SVirtualHidInterface HidInterfaceOf(const std::shared_ptr<CVirtualDisplay>& display_I, unsigned index_I);
// A port of a Silicon Labs CP210x bridge, or of an FTDI FT232H.
SVirtualComPort SiliconLabsPort(const std::string& portName_I, std::shared_ptr<CVirtualDisplay> display_I);
SVirtualComPort FtdiPort(const std::string& portName_I, std::shared_ptr<CVirtualDisplay> display_I);

// The scenarios by name, with a line each on what they show.
std::vector<std::pair<std::string, std::string>> ScenarioList();
std::optional<SVirtualMachine> Scenario(const std::string& name_I);
// "one-per-route" with only the display of one route (0 HID, 1 the graphics driver, 2 the
// serial port, 3 the FTDI bridge): its monitor and its channel.
SVirtualMachine OnePerRouteAlone(size_t route_I);

}  // namespace VirtualMachine
