#include <gtest/gtest.h>

#include <algorithm>

#include "CWinDisplayConfigInterface.h"
#include "DdcPackets.h"
#include "Ftd2xxApi.h"
#include "LogCapture.h"
#include "SimulatedMachine.h"
#include "VirtualClock.h"
#include "VirtualMachine.h"
#include "WinStrings.h"
#include "codes.h"

using namespace std::chrono_literals;

namespace {

// The real discovery over a simulated machine, on a virtual clock.
struct SDiscoveryBench {
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    CSimulatedMachine machine;
    std::shared_ptr<CWinDisplayConfigInterface> discovery = CWinDisplayConfigInterface::Create();

    explicit SDiscoveryBench(SVirtualMachine machine_I, uint32_t mode = eConnectionAll)
        : machine(std::move(machine_I)) {
        discovery->SetConnectionMode(mode);
        discovery->SetMatchByModel(true);
    }
    explicit SDiscoveryBench(const char* scenario, uint32_t mode = eConnectionAll)
        : SDiscoveryBench(*VirtualMachine::Scenario(scenario), mode) {}

    // "<monitor name> over <connector type>" for each display found, in order.
    std::vector<std::string> Found() const {
        std::vector<std::string> found;
        for (const SDisplayInfo& info : discovery->DisplayInfos()) {
            found.push_back(Narrow(info.monitorName) + " over " +
                            std::to_string(info.display->GetConnector()->GetType()));
        }
        return found;
    }
};

size_t SetsOf(const CVirtualDisplay& display, uint8_t code) {
    size_t count = 0;
    for (const STransaction& t : display.Transactions()) {
        count += t.request.size() == 8 && t.request[3] == 0x03 && t.request[4] == code;
    }
    return count;
}

}  // namespace

TEST(WinDisplayConfigInterface, OneDisplayOnEachRouteIsFoundOverItsOwnConnector) {
    SDiscoveryBench bench("one-per-route");
    CLogCapture log;
    ASSERT_TRUE(bench.discovery->Init());
    EXPECT_EQ(bench.Found(), (std::vector<std::string>{"Studio 24 over 4", "Canvas 22 Pro over 3",
                                                       "Canvas 12 over 0", "Canvas 13 HD over 1"}));
    EXPECT_TRUE(bench.discovery->ErrorText().empty());

    const SDisplayInfo& studio = bench.discovery->DisplayInfos()[0];
    EXPECT_EQ(studio.deviceID, L"MONITOR\\VLR1070\\{4d36e96e-e325-11ce-bfc1-08002be10318}\\0000");
    EXPECT_EQ(studio.productCode, 0x1070);
    EXPECT_EQ(studio.supportedName, L"Velor Studio 24");
    EXPECT_EQ(studio.serialNumber, L"VC1070A40934");
    EXPECT_EQ(studio.monitor, bench.machine.MonitorHandle(0));
    EXPECT_EQ(studio.display->SupportedName(), "Velor Studio 24");
    EXPECT_FALSE(studio.display->Options().empty());

    // The order of the search and the lines that carry its meaning.
    const std::string text = log.Text();
    const char* inOrder[] = {
        "CWinDisplayConfigInterface::FindDisplays\n",
        "CWinDisplayConfigInterface::FindDisplays: found 4 displays\n",
        "CWinDisplayConfigInterface::Init - mDisplayInfos has 4 items [Display(s) found!]\n",
        "CWinDisplayConfigInterface::Init - mDisplayInfos size: 4\n",
        "CWinDisplayConfigInterface::Init - looking for Vcp HID devices...\n",
        "CWinDisplayConfigInterface::Init: - displayInfo Studio 24\n",
        "CWinDisplayConfigInterface::Init: - trying to create a Vcp HID supported tablet...\n",
        "Matched display Studio 24\n",
        "CWinDisplayConfigInterface::Init: - displayInfo Canvas 22 Pro\n",
        "CWinDisplayConfigInterface::Init: - trying to create a DP supported tablet...\n",
        "CWinDisplayConfigInterface::Init: - displayInfo Canvas 12\n",
        "CWinDisplayConfigInterface::Init: - Failed to init with CWinI2CConnectorDP; reverting to legacy "
        "connect...\n",
        "CWinDisplayConfigInterface::Init: - Process non-DP supported tablets...\n",
        "CWinDisplayConfigInterface::FindSerialPorts - looking for COMPORT devices...\n",
        "CWinDisplayConfigInterface::GetPortNum: adding comport: COM3\n",
        "CWinDisplayConfigInterface::FindSerialPorts - looking for I2C-FTDI devices...\n",
        "CWinDisplayConfigInterface::FindSerialPorts: 1 FTDI devices found...\n",
        "CWinDisplayConfigInterface::FindSerialPorts: opened connection (FTDI) for deviceIdx: 0\n",
        "CWinDisplayConfigInterface::FindSerialPorts - looking for  I2C-TI devices...\n",
        "CWinDisplayConfigInterface::FindSerialPorts: ports found: 3\n",
        "CWinDisplayConfigInterface::Init - mConnectorList has 3 items\n",
        "CWinDisplayConfigInterface::Init S/N match - creating Display for ser# VC1040A40772, [Canvas 12]\n",
        "CWinDisplayConfigInterface::Init: - displayInfo Canvas 13 HD\n",
        "CWinDisplayConfigInterface::Init S/N match - creating Display for ser# VC1043A40811, [Canvas 13 "
        "HD]\n",
    };
    size_t at = 0;
    for (const char* line : inOrder) {
        SCOPED_TRACE(line);
        const size_t found = text.find(line, at);
        ASSERT_NE(found, std::string::npos);
        at = found;
    }
    for (const char* scope : {"Init", "FindDisplays", "FindSerialPorts", "GetMonitorIDs", "GetNextDeviceID",
                              "GetPortNum", "GetSerialNumAndName", "MonitorEnumProc", "CreateDisplay"}) {
        EXPECT_TRUE(log.Contains(std::string("TIME: CWinDisplayConfigInterface::") + scope + " ")) << scope;
    }
    // The keyboard is held by Windows; the pen collection refuses the control report.
    EXPECT_TRUE(log.Contains("OpenDevice: CreateFile error: [32]; Device: \\\\?\\hid#vid_046d"));
    EXPECT_TRUE(log.Contains("FindVcpHIDDevices: OpenDevice error: [32] on device: \\\\?\\hid#vid_046d"));
    EXPECT_TRUE(
        log.Contains("FindVcpHIDDevices: not a VCP control interface: \\\\?\\hid#vid_2f4a&pid_03a6&mi_00"));
    // Ports are listed once for the two displays that needed them.
    EXPECT_EQ(bench.machine.PortListings(), 1u);
    EXPECT_EQ(log.Count("CWinDisplayConfigInterface::FindSerialPorts\n"), 1u);

    // A second search finds the same displays again once the first ones are let go.
    bench.discovery->Clear();
    ASSERT_TRUE(bench.discovery->Init());
    EXPECT_EQ(bench.discovery->DisplayInfos().size(), 4u);
    EXPECT_EQ(bench.machine.PortListings(), 2u);
}

TEST(WinDisplayConfigInterface, EachModeTriesOnlyItsRoutes) {
    {
        SDiscoveryBench bench("one-per-route", eConnectionHidOnly);
        CLogCapture log;
        EXPECT_TRUE(bench.discovery->Init());
        EXPECT_EQ(bench.Found(), (std::vector<std::string>{"Studio 24 over 4"}));
        EXPECT_EQ(log.Count("Erasing display "), 3u);
        EXPECT_TRUE(log.Contains("Erasing display Canvas 22 Pro\n"));
        EXPECT_EQ(bench.machine.PortListings(), 0u);
    }
    {
        SDiscoveryBench bench("one-per-route", eConnectionDisplayPortOnly);
        EXPECT_TRUE(bench.discovery->Init());
        EXPECT_EQ(bench.Found(), (std::vector<std::string>{"Canvas 22 Pro over 3"}));
        EXPECT_EQ(bench.machine.PortListings(), 0u);
    }
    {
        SDiscoveryBench bench("one-per-route", eConnectionLegacyOnly);
        EXPECT_TRUE(bench.discovery->Init());
        // Studio 24's HID interface reports its serial number: legacy pairing may take it too.
        EXPECT_EQ(bench.Found(),
                  (std::vector<std::string>{"Studio 24 over 4", "Canvas 12 over 0", "Canvas 13 HD over 1"}));
        EXPECT_EQ(bench.machine.MonitorConfiguration().CallCount(EMcaCall::GetNumberOfPhysicalMonitors), 0u);
        EXPECT_EQ(bench.machine.PortListings(), 1u);
    }
}

TEST(WinDisplayConfigInterface, PairingBySerialNumberAndByModel) {
    // DDC/CI fails, the serial port's display reports the monitor's serial number.
    {
        SDiscoveryBench bench("ddc-fails-serial-pairs");
        CLogCapture log;
        EXPECT_TRUE(bench.discovery->Init());
        EXPECT_EQ(bench.Found(), (std::vector<std::string>{"Canvas 24 over 0"}));
        EXPECT_TRUE(log.Contains("CWinDisplayConfigInterface::Init iter->S/N VC1042A40805\n"));
        EXPECT_TRUE(log.Contains("CWinDisplayConfigInterface::Init conn->S/N VC1042A40805\n"));
    }
    // The only port leads to another display: by model the serial-port family still takes the
    // serial connector, but only when the display behind it has the same monitor name.
    {
        SDiscoveryBench bench("serial-matches-nothing");
        CLogCapture log;
        EXPECT_FALSE(bench.discovery->Init());
        EXPECT_TRUE(bench.discovery->DisplayInfos().empty());
        EXPECT_TRUE(log.Contains("CWinDisplayConfigInterface::Init conn->S/N VC1040A40772\n"));
        EXPECT_TRUE(log.Contains("Erasing display Canvas 21\n"));
    }
    // A port whose line is silent reports no serial number and never pairs.
    {
        SVirtualMachine machine = *VirtualMachine::Scenario("ddc-fails-serial-pairs");
        machine.comPorts[0].display = nullptr;
        SDiscoveryBench bench(std::move(machine));
        CLogCapture log;
        EXPECT_FALSE(bench.discovery->Init());
        EXPECT_TRUE(
            log.Contains("CWinDisplayConfigInterface::Init conn->S/N WARNING: SERIAL NUMBER NOT FOUND!\n"));
    }
    // Two displays of a HID family: each takes the interface that reports its own serial
    // number, although the first interface would serve either by model.
    {
        SVirtualMachine machine;
        auto first = VirtualMachine::MakeDisplay("studio-24");
        SVirtualDisplayModel model = first->Model();
        model.serialText = "VC1070B00002";
        auto second = std::make_shared<CVirtualDisplay>(model);
        machine.monitors = {VirtualMachine::MonitorOf(first, 0), VirtualMachine::MonitorOf(second, 1)};
        machine.monitors[0].display = machine.monitors[1].display = nullptr;
        machine.hidInterfaces = {VirtualMachine::HidInterfaceOf(second, 1),
                                 VirtualMachine::HidInterfaceOf(first, 2)};
        SDiscoveryBench bench(std::move(machine), eConnectionHidOnly);
        EXPECT_TRUE(bench.discovery->Init());
        ASSERT_EQ(bench.discovery->DisplayInfos().size(), 2u);
        for (const SDisplayInfo& info : bench.discovery->DisplayInfos()) {
            EXPECT_EQ(info.display->GetConnector()->SerialNumber(-1), Narrow(info.serialNumber));
        }
    }
    // Without matching by model a display of a HID family is not given a stranger's interface.
    {
        SVirtualMachine machine;
        auto studio = VirtualMachine::MakeDisplay("studio-32");
        auto other = VirtualMachine::MakeDisplay("studio-24");
        machine.monitors = {VirtualMachine::MonitorOf(studio, 0)};
        machine.monitors[0].display = nullptr;
        machine.hidInterfaces = {VirtualMachine::HidInterfaceOf(other, 1)};
        SDiscoveryBench bench(std::move(machine), eConnectionHidOnly);
        bench.discovery->SetMatchByModel(false);
        EXPECT_FALSE(bench.discovery->Init());
        bench.discovery->SetMatchByModel(true);
        EXPECT_TRUE(bench.discovery->Init());
    }
}

TEST(WinDisplayConfigInterface, RetriesOverUsbButNotThroughTheGraphicsDriver) {
    SVirtualMachine machine = *VirtualMachine::Scenario("ddc-fails-serial-pairs");
    auto display = machine.comPorts[0].display;
    SDiscoveryBench bench(std::move(machine));
    // The capabilities request goes unanswered twice: two failed attempts, 1000 ms apart.
    display->Faults().FailNext(EFault::NoReply, 2, ddcCC_CapabilitiesRequest);
    CLogCapture log;
    ASSERT_TRUE(bench.discovery->Init());
    // Once through the graphics driver (which fails for this monitor), then over the port.
    EXPECT_EQ(log.Count("CWinDisplayConfigInterface::CreateDisplay: attempt 1 failed\n"), 2u);
    EXPECT_EQ(log.Count("CWinDisplayConfigInterface::CreateDisplay: attempt 2 failed\n"), 1u);
    EXPECT_EQ(log.Count("CWinDisplayConfigInterface::CreateDisplay: attempt 3 failed\n"), 0u);
    const auto pauses = bench.clock.PausesMs();
    EXPECT_EQ(std::count(pauses.begin(), pauses.end(), 1000LL), 2);

    // Through the graphics driver one failed attempt is final.
    SDiscoveryBench dp("two-families", eConnectionDisplayPortOnly);
    dp.machine.MonitorConfiguration().FailNext(EMcaCall::GetCapabilitiesStringLength,
                                               McaError::kI2CErrorReceivingData);
    CLogCapture dpLog;
    EXPECT_TRUE(dp.discovery->Init());
    EXPECT_EQ(dp.Found(), (std::vector<std::string>{"Studio 32 over 3"}));
    EXPECT_EQ(dpLog.Count("CWinDisplayConfigInterface::CreateDisplay: attempt 1 failed\n"), 1u);
    EXPECT_EQ(dpLog.Count("CWinDisplayConfigInterface::CreateDisplay: attempt 2 failed\n"), 0u);
    const auto dpPauses = dp.clock.PausesMs();
    EXPECT_EQ(std::count(dpPauses.begin(), dpPauses.end(), 1000LL), 0);
}

TEST(WinDisplayConfigInterface, TheMenuLanguageIsSetOnlyWhereTheProgramOwnsIt) {
    SDiscoveryBench bench("two-families", eConnectionDisplayPortOnly);
    bench.discovery->SetInterfaceLanguage(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN));
    ASSERT_TRUE(bench.discovery->Init());
    const auto& monitors = bench.machine.Machine().monitors;
    // Canvas 22 Pro: the program sets its menu to German (0x04); Studio 32 is left alone.
    EXPECT_EQ(monitors[0].display->Value(vcpC_OSDLanguage), 0x04);
    EXPECT_EQ(SetsOf(*monitors[0].display, vcpC_OSDLanguage), 1u);
    EXPECT_EQ(SetsOf(*monitors[1].display, vcpC_OSDLanguage), 0u);
    EXPECT_EQ(monitors[1].display->CountRequests(ddcCC_GetVCPFeatureRequest, vcpC_OSDLanguage), 0u);

    // A language the menu does not have: reported, and nothing is written.
    SDiscoveryBench swedish("two-families", eConnectionDisplayPortOnly);
    swedish.discovery->SetInterfaceLanguage(MAKELANGID(LANG_SWEDISH, SUBLANG_SWEDISH));
    CLogCapture log;
    ASSERT_TRUE(swedish.discovery->Init());
    const auto asserts = log.Asserts();
    EXPECT_NE(std::find(asserts.begin(), asserts.end(),
                        "\"CWinDisplayConfigInterface::SetLanguage - Unknown language\\n\""),
              asserts.end());
    EXPECT_EQ(SetsOf(*swedish.machine.Machine().monitors[0].display, vcpC_OSDLanguage), 0u);
}

TEST(WinDisplayConfigInterface, AFailedGraphicsDriverConnectionCanEndTheSearchWithItsText) {
    SVirtualMachine machine = *VirtualMachine::Scenario("ddc-fails-serial-pairs");
    {
        SDiscoveryBench bench(machine);
        bench.discovery->SetStopOnDisplayPortError(true);
        CLogCapture log;
        EXPECT_FALSE(bench.discovery->Init());
        EXPECT_EQ(bench.discovery->ErrorText(),
                  "Display: VLR1042  [Velor Canvas 24]\n    Could not connect through Display Port API\n"
                  "    GetCapabilitiesStringLength, errcode: 3223725443");
        EXPECT_EQ(bench.machine.PortListings(), 0u);
    }
    // Without the flag the same machine falls back to serial-number pairing and ends clean.
    SDiscoveryBench bench(machine);
    EXPECT_TRUE(bench.discovery->Init());
    EXPECT_TRUE(bench.discovery->ErrorText().empty());
}

TEST(WinDisplayConfigInterface, MonitorsThatAreNotTheMakersOrNotKnownAreSkipped) {
    {
        SDiscoveryBench bench("other-maker");
        CLogCapture log;
        EXPECT_TRUE(bench.discovery->Init());
        EXPECT_EQ(bench.Found(), (std::vector<std::string>{"Canvas 27 Pro over 3"}));
        EXPECT_TRUE(log.Contains("GetNextMonitorID deviceName: MONITOR\\DEL40B6\n"));
        EXPECT_TRUE(log.Contains("GetNextMonitorID couldn't find \\\\VLR\n"));
    }
    {
        SDiscoveryBench bench("unknown-product");
        CLogCapture log;
        EXPECT_FALSE(bench.discovery->Init());
        EXPECT_TRUE(log.Contains("GetNextMonitorID couldn't supportedName for shortName: VLR1999\n"));
        EXPECT_TRUE(log.Contains(
            "CWinDisplayConfigInterface::Init - mDisplayInfos has 0 items [No displays found!]\n"));
    }
    {
        SDiscoveryBench bench("no-display");
        EXPECT_FALSE(bench.discovery->Init());
        EXPECT_TRUE(bench.discovery->ErrorText().empty());
    }
}

TEST(WinDisplayConfigInterface, BadSystemDataIsSkippedWithItsLogLine) {
    SVirtualMachine machine = *VirtualMachine::Scenario("two-families");
    auto canvas = machine.monitors[0].display;
    auto studio = machine.monitors[1].display;
    // A short hardware id, an unreadable one, one whose product code is not hexadecimal.
    SVirtualMonitor shortId;
    shortId.hardwareId = "MON";
    SVirtualMonitor unreadable = VirtualMachine::MonitorOf(canvas, 2);
    unreadable.hardwareIdReadable = false;
    SVirtualMonitor notHex = VirtualMachine::MonitorOf(canvas, 3);
    notHex.hardwareId = "MONITOR\\VLRZZ12";
    // The same Canvas with its EDID value missing, one with a short value, one with garbage.
    SVirtualMonitor noEdid = VirtualMachine::MonitorOf(canvas, 4);
    noEdid.registryEdid.reset();
    noEdid.display = nullptr;
    SVirtualMonitor shortEdid = VirtualMachine::MonitorOf(studio, 5);
    shortEdid.registryEdid->resize(40);
    shortEdid.display = nullptr;
    SVirtualMonitor garbage = VirtualMachine::MonitorOf(studio, 6);
    garbage.registryEdid = ByteBuffer(700, 0xA5);
    garbage.display = nullptr;
    machine.monitors.insert(machine.monitors.begin(),
                            {shortId, unreadable, notHex, noEdid, shortEdid, garbage});

    SDiscoveryBench bench(std::move(machine), eConnectionDisplayPortOnly);
    CLogCapture log;
    EXPECT_TRUE(bench.discovery->Init());
    EXPECT_EQ(bench.Found(), (std::vector<std::string>{"Canvas 22 Pro over 3", "Studio 32 over 3"}));
    EXPECT_TRUE(log.Contains("GetNextMonitorID deviceName: MON\n"));
    EXPECT_TRUE(log.Contains("GetNextMonitorID SetupDiGetDeviceRegistryPropertyA failed 0xD\n"));
    EXPECT_TRUE(log.Contains("HexStringToInteger: cannot convert a string to VLRZZ12\n"));
    EXPECT_TRUE(log.Contains("CWinDisplayConfigInterface::GetSerialNumAndName: no readable EDID value\n"));
    EXPECT_EQ(log.Count("CWinDisplayConfigInterface::GetSerialNumAndName find serialNumber error\n"), 3u);
    EXPECT_EQ(log.Count("CWinDisplayConfigInterface::GetSerialNumAndName find monitor name error\n"), 3u);
    // Records without a monitor handle or name fail the graphics-driver route and are erased.
    EXPECT_EQ(log.Count("Erasing display "), 3u);
}

TEST(WinDisplayConfigInterface, MonitorEnumProcMatchesOneRecordWhenNotEnumerating) {
    SDiscoveryBench bench("two-families", eConnectionDisplayPortOnly);
    ASSERT_TRUE(bench.discovery->Init());
    auto& infos = const_cast<std::vector<SDisplayInfo>&>(bench.discovery->DisplayInfos());
    infos[1].monitor = nullptr;
    CLogCapture log;
    EXPECT_TRUE(bench.discovery->MatchMonitorHandle(1));
    EXPECT_EQ(infos[1].monitor, bench.machine.MonitorHandle(1));
    EXPECT_EQ(log.Count("CWinDisplayConfigInterface::MonitorEnumProc Match!\n"), 1u);
    // Matching stops at the match: the first monitor was visited, then the second matched.
    EXPECT_EQ(log.Count("CWinDisplayConfigInterface::MonitorEnumProc looking at deviceid "), 2u);

    EXPECT_FALSE(bench.discovery->MatchMonitorHandle(5));
    EXPECT_EQ(log.Asserts().back(), "SRange(0, (int) mDisplayInfos.size()).Contains(index_I + 1)");
    EXPECT_TRUE(bench.discovery->CurrentDisplayInfo().deviceID.empty());
}

TEST(WinDisplayConfigInterface, ThePenComputersScreenTakesRawColoursOnlyInsideTheMakersComputer) {
    {
        SDiscoveryBench bench("pen-computer", eConnectionDisplayPortOnly);
        ASSERT_TRUE(bench.discovery->Init());
        EXPECT_TRUE(bench.discovery->Displays()[0]->AllowsRawColorValues());
    }
    SVirtualMachine machine = *VirtualMachine::Scenario("pen-computer");
    machine.biosManufacturer = "Velor Co., Ltd.";
    SDiscoveryBench bench(std::move(machine), eConnectionDisplayPortOnly);
    ASSERT_TRUE(bench.discovery->Init());
    EXPECT_FALSE(bench.discovery->Displays()[0]->AllowsRawColorValues());
}

TEST(WinDisplayConfigInterface, OnlyIdleFt232hBridgesAreProbedAndLeftAsTheyWere) {
    SVirtualMachine machine = *VirtualMachine::Scenario("one-per-route");
    machine.ftdiBridges.push_back({nullptr, 5, false});  // a USB serial cable
    machine.ftdiBridges.push_back({nullptr, 8, true});   // a JTAG probe a debugger holds
    machine.ftdiBridges.push_back({nullptr, 8, false});  // an idle FT232H with no display on it
    SDiscoveryBench bench(std::move(machine));
    CLogCapture log;
    ASSERT_TRUE(bench.discovery->Init());
    const std::vector<std::string> found = bench.Found();
    EXPECT_NE(std::find(found.begin(), found.end(), "Canvas 13 HD over 1"), found.end());

    EXPECT_EQ(bench.machine.FtdiUse(0).opens, 1u);
    EXPECT_EQ(bench.machine.FtdiUse(0).bitMode, FT_BITMODE_MPSSE);  // in use by its display
    EXPECT_EQ(bench.machine.FtdiUse(1).opens, 0u);
    EXPECT_EQ(bench.machine.FtdiUse(2).opens, 0u);
    EXPECT_TRUE(log.Contains("CI2CConnectorFTDI::Open: device 1 is not an FT232H (type 5); left alone\n"));
    EXPECT_TRUE(log.Contains("CI2CConnectorFTDI::Open: device 2 is open in another program; left alone\n"));
    EXPECT_EQ(bench.machine.FtdiUse(3).opens, 1u);
    EXPECT_EQ(bench.machine.FtdiUse(3).bitMode, FT_BITMODE_RESET);  // probed, found nothing, put back
}

TEST(WinDisplayConfigInterface, EveryRouteClosesItsConnectorWhenItsDisplayIsUnpluggedAndASearchFindsItAgain) {
    SDiscoveryBench bench("one-per-route");
    ASSERT_TRUE(bench.discovery->Init());
    ASSERT_EQ(bench.discovery->DisplayInfos().size(), 4u);
    // HID, the graphics driver, the serial port and the FTDI bridge, each unplugged in turn: the
    // change fails and the connector is closed, so the program knows to search again.
    for (const SDisplayInfo& info : bench.discovery->DisplayInfos()) {
        SCOPED_TRACE(Narrow(info.monitorName));
        const auto& connector = info.display->GetConnector();
        ASSERT_TRUE(connector->IsOpen());
        std::shared_ptr<CVirtualDisplay> display;
        for (const auto& candidate : bench.machine.Machine().Displays()) {
            display = candidate->Model().monitorName == Narrow(info.monitorName) ? candidate : display;
        }
        ASSERT_TRUE(display);
        ASSERT_EQ(info.display->GetVCPValue(vcpC_Contrast, false).value, 50);  // as the dialog reads it first
        bench.machine.Play({0ms, SDeskEvent::EKind::Unplug, display});
        EXPECT_FALSE(info.display->SetVCPValue(vcpC_Contrast, 40));
        EXPECT_FALSE(connector->IsOpen());
        EXPECT_NE(display->Value(vcpC_Contrast), 40);
    }
    // While they are out nothing is found; plugged back in, all four are found again.
    bench.discovery->Clear();
    bench.discovery->Init();
    EXPECT_TRUE(bench.discovery->DisplayInfos().empty() || bench.discovery->Displays().empty());
    for (const auto& display : bench.machine.Machine().Displays()) {
        bench.machine.Play({0ms, SDeskEvent::EKind::PlugIn, display});
    }
    bench.discovery->Clear();
    ASSERT_TRUE(bench.discovery->Init());
    EXPECT_EQ(bench.Found(), (std::vector<std::string>{"Studio 24 over 4", "Canvas 22 Pro over 3",
                                                       "Canvas 12 over 0", "Canvas 13 HD over 1"}));
}

namespace {

// A whole search, one after another or at once: the displays found, the log it wrote (without
// the timing lines), and what each display of the machine was asked.
struct SSearchRecord {
    bool found = false;
    std::vector<std::string> displays;
    std::vector<std::string> lines;
    std::vector<size_t> requests;
};

SSearchRecord Search(SVirtualMachine machine, bool atOnce, uint32_t mode,
                     const std::function<void(SVirtualMachine&)>& fault = {}) {
    if (fault) {
        fault(machine);
    }
    SDiscoveryBench bench(std::move(machine), mode);
    bench.discovery->SetInitializeAtOnce(atOnce);
    SSearchRecord record;
    {
        CLogCapture log;
        record.found = bench.discovery->Init();
        for (const std::string& line : log.Writes()) {
            if (line.rfind("TIME: ", 0) != 0) {
                record.lines.push_back(line);
            }
        }
    }
    record.displays = bench.Found();
    const SVirtualMachine& m = bench.machine.Machine();
    std::vector<std::shared_ptr<CVirtualDisplay>> displays;
    for (const SVirtualMonitor& monitor : m.monitors) {
        displays.push_back(monitor.display);
    }
    for (const SVirtualHidInterface& hid : m.hidInterfaces) {
        displays.push_back(hid.display);
    }
    for (const SVirtualComPort& port : m.comPorts) {
        displays.push_back(port.display);
    }
    for (const SVirtualFtdiBridge& bridge : m.ftdiBridges) {
        displays.push_back(bridge.display);
    }
    for (const auto& display : displays) {
        record.requests.push_back(display ? display->Transactions().size() : 0);
    }
    return record;
}

}  // namespace

TEST(WinDisplayConfigInterface, ASearchAtOnceFindsLogsAndAsksExactlyAsOneAfterAnother) {
    struct SCase {
        const char* scenario;
        uint32_t mode;
        std::function<void(SVirtualMachine&)> fault;
    };
    const std::vector<SCase> cases = {
        {"one-per-route", eConnectionAll, {}},
        {"one-per-route", eConnectionHidOnly, {}},
        {"one-per-route", eConnectionDisplayPortOnly, {}},
        {"one-per-route", eConnectionLegacyOnly, {}},
        {"two-families", eConnectionAll, {}},
        {"ddc-fails-serial-pairs", eConnectionAll, {}},
        {"serial-matches-nothing", eConnectionAll, {}},
        {"pen-computer", eConnectionAll, {}},
        // One display that never answers its capabilities: the others are found as ever.
        {"one-per-route", eConnectionAll,
         [](SVirtualMachine& m) {
             m.hidInterfaces.back().display->Faults().FailNext(EFault::NoReply, 1000,
                                                               ddcCC_CapabilitiesRequest);
         }},
        // One that answers only its third attempt over the serial port.
        {"one-per-route", eConnectionAll,
         [](SVirtualMachine& m) {
             m.comPorts[0].display->Faults().FailNext(EFault::NoReply, 2, ddcCC_CapabilitiesRequest);
         }},
    };
    // Libraries load once a process: the comparison starts after they have.
    Search(*VirtualMachine::Scenario("one-per-route"), false, eConnectionAll);
    for (const SCase& c : cases) {
        SCOPED_TRACE(std::string(c.scenario) + " mode " + std::to_string(c.mode));
        const SSearchRecord serial = Search(*VirtualMachine::Scenario(c.scenario), false, c.mode, c.fault);
        const SSearchRecord atOnce = Search(*VirtualMachine::Scenario(c.scenario), true, c.mode, c.fault);
        EXPECT_EQ(atOnce.found, serial.found);
        EXPECT_EQ(atOnce.displays, serial.displays);
        EXPECT_EQ(atOnce.requests, serial.requests);
        for (size_t i = 0; i < std::min(serial.lines.size(), atOnce.lines.size()); ++i) {
            ASSERT_EQ(atOnce.lines[i], serial.lines[i]) << "line " << i;
        }
        EXPECT_EQ(atOnce.lines.size(), serial.lines.size());
    }
}
