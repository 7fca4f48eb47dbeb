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
#include "LinuxDisplays.h"
#include "LogCapture.h"
#include "TestData.h"
#include "VirtualClock.h"
#include "VirtualDisplayPresets.h"

namespace {

class CFakeLinuxSystem : public ILinuxSystem {
public:
    CFakeLinuxSystem() { ScopeDisplayLocksToThisProcess(); }
    std::map<std::string, std::vector<std::string>> folders;
    std::map<std::string, ByteBuffer> files;
    std::map<std::string, std::string> links;
    std::map<std::string, std::shared_ptr<CVirtualI2CBus>> devices;
    // hidraw nodes; a null device opens but refuses every feature report (a pen interface).
    std::map<std::string, std::shared_ptr<CVirtualHidDevice>> hidraw;
    // Nodes whose device has been unplugged: what is open of them stops working.
    std::set<std::string> unplugged;
    // Nodes the user may not open.
    std::set<std::string> denied;
    unsigned transfers = 0;

    std::vector<std::string> List(const std::string& folder_I) override {
        auto it = folders.find(folder_I);
        return it != folders.end() ? it->second : std::vector<std::string>();
    }
    std::optional<ByteBuffer> Read(const std::string& path_I) override {
        auto it = files.find(path_I);
        return it != files.end() ? std::optional<ByteBuffer>(it->second) : std::nullopt;
    }
    std::string LinkTarget(const std::string& path_I) override {
        auto it = links.find(path_I);
        return it != links.end() ? it->second : std::string();
    }
    int Open(const std::string& path_I, int) override {
        if (denied.count(path_I) != 0) {
            errno = EACCES;
            return -1;
        }
        if (auto hid = hidraw.find(path_I); hid != hidraw.end()) {
            mOpenHid[mNext] = hid->second;
            mPaths[mNext] = path_I;
            return mNext++;
        }
        auto it = devices.find(path_I);
        if (it == devices.end()) {
            errno = ENOENT;
            return -1;
        }
        mOpen[mNext] = it->second;
        return mNext++;
    }
    int Close(int descriptor_I) override {
        return mOpen.erase(descriptor_I) + mOpenHid.erase(descriptor_I) == 1 ? 0 : -1;
    }
    int Ioctl(int descriptor_I, unsigned long request_I, void* argument_I) override {
        if (unplugged.count(mPaths[descriptor_I]) != 0) {
            errno = ENODEV;  // what an open node of a device that has gone reports
            return -1;
        }
        if (auto hid = mOpenHid.find(descriptor_I); hid != mOpenHid.end()) {
            return FeatureReport(hid->second, request_I, static_cast<uint8_t*>(argument_I));
        }
        auto it = mOpen.find(descriptor_I);
        if (it == mOpen.end() || request_I != I2C_RDWR) {
            errno = EINVAL;
            return -1;
        }
        ++transfers;
        auto* transfer = static_cast<i2c_rdwr_ioctl_data*>(argument_I);
        for (unsigned i = 0; i < transfer->nmsgs; ++i) {
            i2c_msg& message = transfer->msgs[i];
            bool acknowledged = false;
            if ((message.flags & I2C_M_RD) != 0) {
                ByteBuffer bytes;
                acknowledged = it->second->Read(static_cast<uint8_t>(message.addr), message.len, bytes);
                std::copy(bytes.begin(), bytes.end(), message.buf);
            } else {
                acknowledged = it->second->Write(static_cast<uint8_t>(message.addr),
                                                 ByteBuffer(message.buf, message.buf + message.len));
            }
            if (!acknowledged) {
                errno = ENXIO;  // what i2c-dev reports for a NACK
                return -1;
            }
        }
        return static_cast<int>(transfer->nmsgs);
    }
    size_t OpenCount() const { return mOpen.size() + mOpenHid.size(); }
    // Serial ports are real pseudo-terminals.
    std::map<std::string, std::string> nodes;
    std::string DeviceNode(const std::string& name_I) override {
        auto it = nodes.find(name_I);
        return it != nodes.end() ? it->second : "/dev/" + name_I;
    }

private:
    static int FeatureReport(const std::shared_ptr<CVirtualHidDevice>& device_I, unsigned long request_I,
                             uint8_t* buffer_IO) {
        const size_t size = _IOC_SIZE(request_I);
        ByteBuffer report(buffer_IO, buffer_IO + size);
        bool ok = false;
        if (request_I == HIDIOCSFEATURE(size)) {
            ok = device_I && device_I->SetFeature(report);
        } else if (request_I == HIDIOCGFEATURE(size)) {
            ok = device_I && device_I->GetFeature(report);
            std::copy_n(report.begin(), std::min(report.size(), size), buffer_IO);
        }
        if (!ok) {
            errno = EPIPE;  // what hidraw reports for a stalled control transfer
            return -1;
        }
        return static_cast<int>(size);
    }

    std::map<int, std::shared_ptr<CVirtualHidDevice>> mOpenHid;
    std::map<int, std::string> mPaths;
    std::map<int, std::shared_ptr<CVirtualI2CBus>> mOpen;
    int mNext = 10;
};

constexpr char kDrm[] = "/sys/class/drm";

ByteBuffer TextBytes(const std::string& text) {
    return ByteBuffer(text.begin(), text.end());
}

// A machine with two displays (a Velor one on i2c-5 and another maker's on i2c-6) and the odd
// connectors a real system has.
struct SLinuxBench {
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    CFakeLinuxSystem system;
    std::shared_ptr<CVirtualDisplay> canvas =
        std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset("canvas-22-pro"));

    SLinuxBench() {
        system.folders[kDrm] = {"card0",      "card0-DP-1",  "card0-HDMI-A-1", "card0-DP-2",
                                "card0-DP-3", "card0-eDP-1", "version"};
        Connector("card0-DP-1", canvas->Edid(), "../../i2c-5");
        system.devices["/dev/i2c-5"] = std::make_shared<CVirtualI2CBus>(canvas);
        Connector("card0-HDMI-A-1", TestData::ReadBytes("edid/ed_dell-up2715k-dp_DEL_40B6.bin"),
                  "../../i2c-6");
        // Truncated EDID; a Velor display whose device node has gone; nothing connected.
        Connector("card0-DP-2", ByteBuffer(canvas->Edid().begin(), canvas->Edid().begin() + 100),
                  "../../i2c-7");
        Connector("card0-DP-3", canvas->Edid(), "../../i2c-9");
        system.files[std::string(kDrm) + "/card0-eDP-1/edid"] = {};
    }
    void Connector(const std::string& name, const ByteBuffer& edid, const std::string& ddc) {
        system.files[std::string(kDrm) + "/" + name + "/edid"] = edid;
        system.links[std::string(kDrm) + "/" + name + "/ddc"] = ddc;
    }
};

}  // namespace

TEST(LinuxDisplays, DrmConnectorsGiveTheirEdidAndDdcBus) {
    SLinuxBench bench;
    // A connector that lists its adapter folder instead of a ddc link.
    bench.system.links.erase(std::string(kDrm) + "/card0-DP-3/ddc");
    bench.system.folders[std::string(kDrm) + "/card0-DP-3"] = {"edid", "i2c-9", "status"};
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
    bench.system.folders["/sys/class/hidraw"] = {"hidraw0"};
    bench.system.files["/sys/class/hidraw/hidraw0/device/uevent"] =
        TextBytes("HID_ID=0003:00002F4A:000003A6\n");
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
    EXPECT_EQ(err.str().find("no display 0: no display found has that index or serial number (none found; see list)\n/dev/hidraw0 does not open"), 0u)
        << err.str();
}

TEST(LinuxDisplays, TwoDisplaysOneOnI2cAndOneOnHidraw) {
    SLinuxBench bench;
    auto studio = std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset("studio-24"));
    bench.system.folders[kDrm].push_back("card1-DP-1");
    bench.Connector("card1-DP-1", studio->Edid(), "../../i2c-8");
    bench.system.devices["/dev/i2c-8"] = std::make_shared<CVirtualI2CBus>(studio);
    // A keyboard, the display's pen interface and its control interface.
    const std::string hidraw = "/sys/class/hidraw";
    bench.system.folders[hidraw] = {"hidraw0", "hidraw1", "hidraw2"};
    bench.system.files[hidraw + "/hidraw0/device/uevent"] =
        TextBytes("DRIVER=hid-generic\nHID_ID=0003:0000046D:0000C31C\n");
    bench.system.files[hidraw + "/hidraw1/device/uevent"] =
        TextBytes("HID_ID=0003:00002F4A:000003A6\nHID_NAME=pen\n");
    bench.system.files[hidraw + "/hidraw2/device/uevent"] = TextBytes("HID_ID=0003:00002F4A:000003A6\n");
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

    system.folders[kDrm] = {"card0-DP-1"};
    system.files[std::string(kDrm) + "/card0-DP-1/edid"] = canvas->Edid();  // no DDC bus known
    const std::string tty = "/sys/class/tty";
    system.folders[tty] = {"tty0", "ttyS0", "ttyUSB0", "ttyUSB1"};
    system.files[tty + "/ttyUSB0/device/../uevent"] = TextBytes("DRIVER=cp210x\nPRODUCT=10c4/ea60/100\n");
    system.files[tty + "/ttyUSB1/device/../uevent"] = TextBytes("PRODUCT=67b/2303/300\n");  // another bridge
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
    system.folders[kDrm] = {"card0-DP-1"};
    system.files[std::string(kDrm) + "/card0-DP-1/edid"] = canvas.Edid();
    const std::string tty = "/sys/class/tty";
    system.folders[tty] = {"ttyUSB0"};
    system.files[tty + "/ttyUSB0/device/../uevent"] = TextBytes("PRODUCT=10c4/ea60/100\n");
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
