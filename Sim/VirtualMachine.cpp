#include "VirtualMachine.h"

#include <algorithm>
#include <functional>

#include "CEdidBuilder.h"
#include "StringUtilities.h"
#include "VirtualDisplayPresets.h"
#include "VirtualEdid.h"
#include "codes.h"

std::vector<std::shared_ptr<CVirtualDisplay>> SVirtualMachine::Displays() const {
    std::vector<std::shared_ptr<CVirtualDisplay>> displays;
    auto add = [&displays](const std::shared_ptr<CVirtualDisplay>& display_I) {
        if (display_I && std::find(displays.begin(), displays.end(), display_I) == displays.end()) {
            displays.push_back(display_I);
        }
    };
    for (const SVirtualMonitor& monitor : monitors) {
        add(monitor.display);
    }
    for (const SVirtualHidInterface& hid : hidInterfaces) {
        add(hid.display);
    }
    for (const SVirtualComPort& port : comPorts) {
        add(port.display);
    }
    for (const SVirtualFtdiBridge& bridge : ftdiBridges) {
        add(bridge.display);
    }
    return displays;
}

namespace VirtualMachine {

namespace {

constexpr char kMonitorClassKey[] = "{4d36e96e-e325-11ce-bfc1-08002be10318}";

std::string DriverKey(unsigned index_I) {
    return StringPrintf("%s\\%04u", kMonitorClassKey, index_I);
}

// A monitor of another maker: its hardware id carries no "\VLR".
SVirtualMonitor OtherMakersMonitor(unsigned index_I) {
    SVirtualMonitor monitor;
    monitor.hardwareId = "MONITOR\\DEL40B6";
    monitor.driverKey = DriverKey(index_I);
    SVirtualEdidIdentity identity;
    identity.productCode = 0x40B6;
    identity.serialText = "7MT0167G0KAL";
    identity.monitorName = "DELL UP2715K";
    monitor.registryEdid = BuildVirtualEdid(identity);
    return monitor;
}

// A keyboard and a pen collection: HID interfaces that are no display controls.
void AddOrdinaryHidDevices(SVirtualMachine& machine_I) {
    machine_I.hidInterfaces.push_back(
        {"\\\\?\\hid#vid_046d&pid_c31c&mi_00#7&2b5a1f0&0&0000#{4d1e55b2-f16f-11cf-88cb-001111000030}", 0x046D,
         0xC31C, nullptr, true});
}

SVirtualHidInterface PenCollectionOf(const std::shared_ptr<CVirtualDisplay>& display_I) {
    const uint16_t productId = display_I->Model().tabletProductId;
    SVirtualHidInterface pen{StringPrintf("\\\\?\\hid#vid_%04x&pid_%04x&mi_00#8&1c0a2e3&0&0000#"
                                          "{4d1e55b2-f16f-11cf-88cb-001111000030}",
                                          kVelorUsbVendorId, productId),
                             kVelorUsbVendorId, productId, nullptr, false};
    pen.readWriteError = 5;  // Windows keeps pen input for itself
    return pen;
}

SVirtualMachine OnePerRoute() {
    SVirtualMachine machine;
    auto studio = MakeDisplay("studio-24");         // HID control interface
    auto canvasPro = MakeDisplay("canvas-22-pro");  // DDC/CI through the graphics driver
    auto canvas = MakeDisplay("canvas-12");         // serial port
    auto canvasHd = MakeDisplay("canvas-13-hd");    // FTDI USB-to-I2C bridge
    machine.monitors = {MonitorOf(studio, 0), MonitorOf(canvasPro, 1), MonitorOf(canvas, 2),
                        MonitorOf(canvasHd, 3)};
    machine.monitors[0].display = nullptr;  // its controller is reached over USB only
    machine.monitors[2].ddcCiFails = true;
    machine.monitors[3].ddcCiFails = true;
    AddOrdinaryHidDevices(machine);
    machine.hidInterfaces.push_back(PenCollectionOf(studio));
    machine.hidInterfaces.push_back(HidInterfaceOf(studio, 1));
    machine.comPorts.push_back(SiliconLabsPort("COM3", canvas));
    machine.ftdiBridges.push_back({canvasHd});
    return machine;
}

SVirtualMachine TwoFamilies() {
    SVirtualMachine machine;
    auto canvasPro = MakeDisplay("canvas-22-pro");
    auto studio = MakeDisplay("studio-32");
    machine.monitors = {MonitorOf(canvasPro, 0), MonitorOf(studio, 1)};
    return machine;
}

// Two displays on the graphics driver, and what happens to them on a moving desk.
SVirtualMachine Replugged() {
    SVirtualMachine machine = TwoFamilies();
    using std::chrono::seconds;
    const auto canvasPro = machine.monitors[0].display;  // the one the program shows first
    machine.timeline = {{seconds(8), SDeskEvent::EKind::Unplug, canvasPro},
                        {seconds(16), SDeskEvent::EKind::PlugIn, canvasPro}};
    return machine;
}

// While the computer sleeps, Canvas 22 Pro's brightness is turned down on its own menu: awake
// again, the program shows the display as it is.
SVirtualMachine SleepAndWake() {
    SVirtualMachine machine = TwoFamilies();
    using std::chrono::seconds;
    machine.timeline = {
        {seconds(8), SDeskEvent::EKind::Sleep, nullptr},
        {seconds(11), SDeskEvent::EKind::MenuChange, machine.monitors[0].display, vcpC_Luminance, 40},
        {seconds(14), SDeskEvent::EKind::Wake, nullptr}};
    return machine;
}

// Canvas 22 Pro is switched off and on: it comes back with its saved values and answers only
// once its firmware has started.
SVirtualMachine SwitchedOffAndOn() {
    SVirtualMachine machine = TwoFamilies();
    using std::chrono::seconds;
    machine.timeline = {{seconds(8), SDeskEvent::EKind::PowerCycle, machine.monitors[0].display}};
    return machine;
}

SVirtualMachine DdcFailsPairedBySerial() {
    SVirtualMachine machine;
    auto canvas = MakeDisplay("canvas-24");
    machine.monitors = {MonitorOf(canvas, 0)};
    machine.monitors[0].ddcCiFails = true;
    machine.comPorts.push_back(SiliconLabsPort("COM4", canvas));
    return machine;
}

SVirtualMachine SerialMatchesNothing() {
    SVirtualMachine machine;
    auto canvas = MakeDisplay("canvas-21");
    auto stranger = MakeDisplay("canvas-12");  // another display's controller on the port
    machine.monitors = {MonitorOf(canvas, 0)};
    machine.monitors[0].ddcCiFails = true;
    machine.comPorts.push_back(SiliconLabsPort("COM5", stranger));
    return machine;
}

SVirtualMachine OtherMaker() {
    SVirtualMachine machine;
    auto canvasPro = MakeDisplay("canvas-27-pro");
    machine.monitors = {OtherMakersMonitor(0), MonitorOf(canvasPro, 1)};
    AddOrdinaryHidDevices(machine);
    return machine;
}

SVirtualMachine UnknownProductCode() {
    SVirtualMachine machine;
    SVirtualMonitor monitor;
    monitor.hardwareId = "MONITOR\\VLR1999";
    monitor.driverKey = DriverKey(0);
    SVirtualEdidIdentity identity;
    identity.productCode = 0x1999;
    identity.serialText = "VC1999A00001";
    identity.monitorName = "Prototype";
    monitor.registryEdid = BuildVirtualEdid(identity);
    machine.monitors = {monitor};
    return machine;
}

SVirtualMachine PenComputer() {
    SVirtualMachine machine;
    auto slate = MakeDisplay("slate-13-pro");
    machine.monitors = {MonitorOf(slate, 0)};
    machine.biosManufacturer = "Velor Co.,Ltd";
    return machine;
}

struct SScenario {
    const char* name;
    const char* description;
    std::function<SVirtualMachine()> build;
};

const std::vector<SScenario>& Scenarios() {
    static const std::vector<SScenario> scenarios = {
        {"one-per-route",
         "Studio 24 over HID, Canvas 22 Pro through the graphics driver, Canvas 12 on a serial port, "
         "Canvas 13 HD on an FTDI bridge",
         &OnePerRoute},
        {"two-families", "Canvas 22 Pro and Studio 32, both through the graphics driver", &TwoFamilies},
        {"replug", "two-families; Canvas 22 Pro is unplugged after 8 s and plugged back in after 16 s",
         &Replugged},
        {"sleep-wake",
         "two-families; the computer sleeps after 8 s, Canvas 22 Pro's brightness is turned to 40 on its "
         "own menu, and the computer wakes after 14 s",
         &SleepAndWake},
        {"power-cycle",
         "two-families; Canvas 22 Pro is switched off and on after 8 s and answers late as it starts",
         &SwitchedOffAndOn},
        {"ddc-fails-serial-pairs", "Canvas 24 whose DDC/CI fails, paired by serial number on COM4",
         &DdcFailsPairedBySerial},
        {"serial-matches-nothing",
         "Canvas 21 whose DDC/CI fails; the only serial port leads to another display",
         &SerialMatchesNothing},
        {"other-maker", "another maker's monitor beside a Canvas 27 Pro", &OtherMaker},
        {"unknown-product", "a monitor of the maker whose product code no model has", &UnknownProductCode},
        {"pen-computer", "the built-in screen of the maker's own pen computer", &PenComputer},
        {"no-display", "no display of the maker at all", [] { return SVirtualMachine{}; }},
    };
    return scenarios;
}

}  // namespace

std::shared_ptr<CVirtualDisplay> MakeDisplay(const std::string& presetKey_I) {
    const SVirtualDisplayModel* model = FindVirtualDisplayPreset(presetKey_I);
    return model != nullptr ? std::make_shared<CVirtualDisplay>(*model) : nullptr;
}

SVirtualMonitor MonitorOf(const std::shared_ptr<CVirtualDisplay>& display_I, unsigned index_I) {
    SVirtualMonitor monitor;
    monitor.hardwareId = StringPrintf("MONITOR\\VLR%04X", display_I->Model().edidProductCode);
    monitor.driverKey = DriverKey(index_I);
    monitor.registryEdid = display_I->Edid();
    monitor.display = display_I;
    return monitor;
}

SVirtualHidInterface HidInterfaceOf(const std::shared_ptr<CVirtualDisplay>& display_I, unsigned index_I) {
    const uint16_t productId = display_I->Model().tabletProductId;
    SVirtualHidInterface hid;
    hid.path = StringPrintf(
        "\\\\?\\hid#vid_%04x&pid_%04x&mi_%02u#7&1a2b3c4d&0&0000#"
        "{4d1e55b2-f16f-11cf-88cb-001111000030}",
        kVelorUsbVendorId, productId, index_I);
    hid.vendorId = kVelorUsbVendorId;
    hid.productId = productId;
    hid.display = display_I;
    return hid;
}

SVirtualComPort SiliconLabsPort(const std::string& portName_I, std::shared_ptr<CVirtualDisplay> display_I) {
    return {"USB\\VID_10C4&PID_EA60&REV_0100", portName_I, std::move(display_I)};
}

SVirtualComPort FtdiPort(const std::string& portName_I, std::shared_ptr<CVirtualDisplay> display_I) {
    return {"FTDIBUS\\COMPORT&VID_0403&PID_6014", portName_I, std::move(display_I)};
}

std::vector<std::pair<std::string, std::string>> ScenarioList() {
    std::vector<std::pair<std::string, std::string>> list;
    for (const SScenario& scenario : Scenarios()) {
        list.emplace_back(scenario.name, scenario.description);
    }
    return list;
}

std::optional<SVirtualMachine> Scenario(const std::string& name_I) {
    for (const SScenario& scenario : Scenarios()) {
        if (name_I == scenario.name) {
            SVirtualMachine machine = scenario.build();
            machine.name = scenario.name;
            machine.description = scenario.description;
            return machine;
        }
    }
    return std::nullopt;
}

SVirtualMachine OnePerRouteAlone(size_t route_I) {
    SVirtualMachine machine = OnePerRoute();
    machine.monitors = {machine.monitors.at(route_I)};
    if (route_I != 0) {
        machine.hidInterfaces.clear();
    }
    if (route_I != 2) {
        machine.comPorts.clear();
    }
    if (route_I != 3) {
        machine.ftdiBridges.clear();
    }
    return machine;
}

}  // namespace VirtualMachine
