// The Linux route over a fake sysfs tree and fake /dev/i2c-N nodes backed by virtual displays'
// I2C buses: discovery from the DRM connectors, DDC/CI through i2c-dev, and hostile input.

#include <gtest/gtest.h>

#include "EdidText.h"

#include <fcntl.h>
#include <linux/hidraw.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>
#include <thread>

#include "CPtyDisplayServer.h"
#include "CVirtualHidDevice.h"
#include "CVirtualI2CBus.h"
#include "CommandLineTool.h"
#include "DisplayLockScope.h"
#include "DrmConnectors.h"
#include "FakeLinuxSystem.h"
#include "LinuxDisplays.h"
#include "LogCapture.h"
#include "TestData.h"
#include "VirtualClock.h"
#include "VirtualDisplayPresets.h"

namespace {

// A machine with two displays (a Velor one on i2c-5 and another maker's on i2c-6) and the odd
// connectors a real system has.
struct SLinuxBench {
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    CFakeLinuxSystem system;
    std::shared_ptr<CVirtualDisplay> canvas =
        std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset("canvas-22-pro"));

    SLinuxBench() {
        ScopeDisplayLocksToThisProcess();
        system.DrmEntry("card0");
        system.DrmConnector("card0-DP-1", canvas->Edid(), "i2c-5");
        system.devices["/dev/i2c-5"] = std::make_shared<CVirtualI2CBus>(canvas);
        system.DrmConnector("card0-HDMI-A-1", TestData::ReadBytes("edid/ed_dell-up2715k-dp_DEL_40B6.bin"),
                            "i2c-6");
        // Truncated EDID; a Velor display whose device node has gone; nothing connected.
        system.DrmConnector("card0-DP-2", ByteBuffer(canvas->Edid().begin(), canvas->Edid().begin() + 100),
                            "i2c-7");
        system.DrmConnector("card0-DP-3", canvas->Edid(), "i2c-9");
        system.DrmConnector("card0-eDP-1", {}, "");
        system.DrmEntry("version");
    }
    void Connector(const std::string& name, const ByteBuffer& edid, const std::string& bus) {
        system.DrmConnector(name, edid, bus);
    }
};

}  // namespace

TEST(LinuxDisplays, DrmConnectorsGiveTheirEdidAndDdcBus) {
    SLinuxBench bench;
    // A connector that lists its adapter folder instead of a ddc link.
    bench.system.Remove("/sys/devices/pci0000:00/0000:00:02.0/drm/card0/card0-DP-3/ddc");
    bench.system.DrmConnector("card0-DP-3", bench.canvas->Edid(), "i2c-9", true);
    CLogCapture log;
    const std::vector<SDrmConnector> found = FindDrmConnectors(bench.system);
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[0].name, "card0-DP-1");
    EXPECT_EQ(found[0].i2cDevice, "/dev/i2c-5");
    EXPECT_EQ(found[1].name, "card0-DP-3");
    EXPECT_EQ(found[1].i2cDevice, "/dev/i2c-9");
    EXPECT_EQ(found[2].name, "card0-HDMI-A-1");
    EXPECT_EQ(Edid::ManufacturerId(found[0].edid), "VLR");
    EXPECT_EQ(Edid::ManufacturerId(found[2].edid), "DEL");
    EXPECT_EQ(Edid::ManufacturerId(ByteBuffer(9, 0)), "");
    EXPECT_TRUE(log.Contains("FindDrmConnectors: card0-DP-2 has a truncated EDID (100 bytes); skipped\n"));
}

TEST(LinuxDisplays, TheToolReachesTheMakersDisplayOverI2cDev) {
    SLinuxBench bench;
    CLinuxDisplays displays(bench.system);
    CLogCapture log;
    std::ostringstream out;
    std::ostringstream err;
    ASSERT_EQ(RunCommandLineTool({"list"}, displays, out, err), CliExit::kDone);
    EXPECT_EQ(out.str(), "0  Canvas 22 Pro  serial VC1060A40892  via /dev/i2c-5  firmware 3.1.2\n");
    EXPECT_TRUE(log.Contains("CI2cDevMaster: /dev/i2c-9 does not open: No such file or directory\n"));
    // The user hears what kept a display of the maker's out, on standard error.
    EXPECT_EQ(
        err.str(),
        "card0-DP-3: /dev/i2c-9 does not open (No such file or directory); is the i2c-dev module loaded? "
        "sudo modprobe i2c-dev\n");

    out.str("");
    ASSERT_EQ(RunCommandLineTool({"set", "0", "contrast=44", "--save"}, displays, out, err), CliExit::kDone)
        << err.str();
    EXPECT_EQ(bench.canvas->Value(0x12), 44);
    EXPECT_EQ(bench.canvas->SavedValue(0x12), 44);
    ASSERT_EQ(RunCommandLineTool({"get", "0", "contrast"}, displays, out, err), CliExit::kDone);
    EXPECT_EQ(out.str(), "contrast = 44\n");
    EXPECT_GT(bench.system.transfers, 0u);

    // The display stops answering on the bus: a communication failure, not a hang.
    bench.system.devices["/dev/i2c-5"]->NackNextReads(100);
    EXPECT_EQ(RunCommandLineTool({"get", "0", "contrast"}, displays, out, err),
              CliExit::kCommunicationFailure);
}

TEST(LinuxDisplays, NodesTheUserMayNotOpenAreNamedWithTheWayToGetThem) {
    SLinuxBench bench;
    bench.system.denied = {"/dev/i2c-5", "/dev/hidraw0"};
    bench.system.HidrawNode("hidraw0", 0x2F4A, 0x03A6, "Velor Studio 24");
    CLinuxDisplays displays(bench.system);
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(RunCommandLineTool({"list"}, displays, out, err), CliExit::kDone);
    EXPECT_EQ(out.str(), "no displays found\n");
    const std::string help =
        "; Linux/udev/70-velor-display.rules and the i2c group give you the display's nodes "
        "(see the README)\n";
    EXPECT_EQ(err.str(),
              "/dev/hidraw0 does not open (Permission denied)" + help +
                  "card0-DP-1: /dev/i2c-5 does not open (Permission denied)" + help +
                  "card0-DP-3: /dev/i2c-9 does not open (No such file or directory); is the i2c-dev "
                  "module loaded? sudo modprobe i2c-dev\n");
    err.str("");
    EXPECT_EQ(RunCommandLineTool({"get", "0", "contrast"}, displays, out, err), CliExit::kNoSuchDisplay);
    EXPECT_EQ(err.str().find("no display 0: no display found has that index or serial number (none found; "
                             "see list)\n/dev/hidraw0 does not open"),
              0u)
        << err.str();
}

TEST(LinuxDisplays, TwoDisplaysOneOnI2cAndOneOnHidraw) {
    SLinuxBench bench;
    auto studio = std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset("studio-24"));
    bench.Connector("card1-DP-1", studio->Edid(), "i2c-8");
    bench.system.devices["/dev/i2c-8"] = std::make_shared<CVirtualI2CBus>(studio);
    // A keyboard, the display's pen interface and its control interface.
    bench.system.HidrawNode("hidraw0", 0x046D, 0xC31C, "Logitech USB Receiver");
    bench.system.HidrawNode("hidraw1", 0x2F4A, 0x03A6, "Velor Studio 24 Pen");
    bench.system.HidrawNode("hidraw2", 0x2F4A, 0x03A6, "Velor Studio 24");
    bench.system.hidraw["/dev/hidraw1"] = nullptr;
    bench.system.hidraw["/dev/hidraw2"] = std::make_shared<CVirtualHidDevice>(studio);

    CLinuxDisplays displays(bench.system);
    std::ostringstream out;
    std::ostringstream err;
    ASSERT_EQ(RunCommandLineTool({"list"}, displays, out, err), CliExit::kDone);
    EXPECT_EQ(out.str(),
              "0  Canvas 22 Pro  serial VC1060A40892  via /dev/i2c-5  firmware 3.1.2\n"
              "1  Studio 24  serial VC1070A40934  via /dev/hidraw2  firmware 6.0.1\n");
    studio->ClearTransactions();
    ASSERT_EQ(RunCommandLineTool({"set", "1", "brightness=33"}, displays, out, err), CliExit::kDone)
        << err.str();
    EXPECT_EQ(studio->Value(0x6B), 33);

    // A feature report that does not reach the display is still acknowledged on the HID route;
    // reading back shows the value was not taken.
    bench.system.hidraw["/dev/hidraw2"]->FailSetFeature(1);
    err.str("");
    EXPECT_EQ(RunCommandLineTool({"set", "1", "brightness=50"}, displays, out, err),
              CliExit::kCommunicationFailure);
    EXPECT_EQ(err.str(), "brightness: the display did not take 50 (it has 33)\n");

    // The display is unplugged while the tool holds its node: a communication failure, the
    // other display still answers.
    bench.system.unplugged.insert("/dev/hidraw2");
    err.str("");
    EXPECT_EQ(RunCommandLineTool({"set", "1", "brightness=50"}, displays, out, err),
              CliExit::kCommunicationFailure);
    EXPECT_NE(err.str().find("brightness: the display did not answer as expected"), std::string::npos)
        << err.str();
    EXPECT_EQ(studio->Value(0x6B), 33);
    EXPECT_EQ(RunCommandLineTool({"set", "0", "contrast=45"}, displays, out, err), CliExit::kDone)
        << err.str();
}

TEST(LinuxDisplays, ASerialModelIsReachedOverItsUsbSerialPort) {
    // The line's timing is real: the display answers from another thread on a pseudo-terminal.
    CFakeLinuxSystem system;
    auto canvas = std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset("canvas-12"));
    CPtyDisplayServer server(canvas);
    ASSERT_TRUE(server.Open());
    std::atomic<bool> stop{false};
    std::thread serving([&] { server.Serve(stop, 10); });

    ScopeDisplayLocksToThisProcess();
    system.DrmConnector("card0-DP-1", canvas->Edid(), "");  // no DDC bus known
    system.PlainTty("tty0");
    system.PlainTty("ttyS0");
    system.UsbSerialPort("ttyUSB0", "cp210x", 0x10C4, 0xEA60, 0x100);
    system.UsbSerialPort("ttyUSB1", "pl2303", 0x067B, 0x2303, 0x300);  // another maker's bridge
    system.nodes["ttyUSB0"] = server.TerminalPath();

    CLinuxDisplays displays(system);
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(RunCommandLineTool({"set", "0", "contrast=27"}, displays, out, err), CliExit::kDone)
        << err.str();
    EXPECT_EQ(canvas->Value(0x12), 27);
    EXPECT_EQ(displays.Displays().at(0).route, server.TerminalPath());
    stop = true;
    serving.join();
}

TEST(LinuxDisplays, ASerialLineThatNeverStopsSendingFailsInsteadOfHanging) {
    // The far end of a pseudo-terminal sends bytes without pause, as a port with a wrong baud
    // rate or a crossed line does.
    const int controller = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    ASSERT_GE(controller, 0);
    ASSERT_EQ(grantpt(controller), 0);
    ASSERT_EQ(unlockpt(controller), 0);
    const std::string line = ptsname(controller);
    std::atomic<bool> stop{false};
    std::thread babbling([&] {
        const ByteBuffer noise(64, 0x6E);
        uint8_t drained[256];
        while (!stop) {
            (void)!write(controller, noise.data(), noise.size());
            (void)!read(controller, drained, sizeof(drained));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });

    CFakeLinuxSystem system;
    const auto canvas = CVirtualDisplay(*FindVirtualDisplayPreset("canvas-12"));
    ScopeDisplayLocksToThisProcess();
    system.DrmConnector("card0-DP-1", canvas.Edid(), "");
    system.UsbSerialPort("ttyUSB0", "cp210x", 0x10C4, 0xEA60, 0x100);
    system.nodes["ttyUSB0"] = line;

    CLinuxDisplays displays(system);
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(RunCommandLineTool({"get", "0", "contrast"}, displays, out, err),
              CliExit::kCommunicationFailure);
    EXPECT_NE(err.str().find("does not answer"), std::string::npos) << err.str();
    stop = true;
    babbling.join();
    close(controller);
}
