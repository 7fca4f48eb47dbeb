// The Linux transports against what the kernel takes: i2c-dev messages and hidraw feature
// reports as the fake system checks them like the kernel, sysfs laid out as the kernel lays it
// out, and the serial line's settings read back from a real pseudo-terminal.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>

#include "CHidrawConnector.h"
#include "CVirtualHidDevice.h"
#include "CVirtualI2CBus.h"
#include "DrmConnectors.h"
#include "FakeLinuxSystem.h"
#include "HidrawDevices.h"
#include "LinuxDisplayDiscovery.h"
#include "LogCapture.h"
#include "PosixSerialPort.h"
#include "TestData.h"
#include "UsbSerialPorts.h"
#include "VirtualClock.h"
#include "VirtualDisplayPresets.h"

namespace {

struct SI2cBench {
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    CFakeLinuxSystem system;
    std::shared_ptr<CVirtualDisplay> canvas =
        std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset("canvas-22-pro"));

    SI2cBench() {
        system.DrmConnector("card0-DP-1", canvas->Edid(), "i2c-5");
        system.devices["/dev/i2c-5"] = std::make_shared<CVirtualI2CBus>(canvas);
    }
    std::shared_ptr<UiDisplayDelegate> Found() {
        std::vector<SFoundDisplay> found = CLinuxDisplayDiscovery(system).Find();
        return found.size() == 1 ? found[0].display : nullptr;
    }
};

}  // namespace

TEST(LinuxTransports, EachDdcCiPacketIsOnePlainI2cMessageToTheDisplaysAddress) {
    SI2cBench bench;
    std::shared_ptr<UiDisplayDelegate> display = bench.Found();
    ASSERT_NE(display, nullptr);
    ASSERT_TRUE(display->Initialize());
    bench.system.messages.clear();

    // A get request, then one read of the reply's room (38 bytes); the reply is cut to the
    // length its own length byte gives.
    SVCPValue contrast = display->GetVCPValue(0x12, true);
    EXPECT_TRUE(contrast.valid);
    EXPECT_EQ(contrast.value, 50);
    EXPECT_EQ(bench.system.messages, std::vector<std::string>({"W 37 51820112AE", "R 37 38"}));
    bench.system.messages.clear();
    // 6E is the address byte of the 7-bit address 37 and not sent; 51 84 03 12 00 2C, then the
    // XOR of all of them with 6E; the bridge reads after every request (a set's read finds
    // nothing), then the value is read back.
    ASSERT_TRUE(display->SetVCPValue(0x12, 44));
    EXPECT_EQ(bench.system.messages,
              std::vector<std::string>({"W 37 51840312002C86", "R 37 38", "W 37 51820112AE", "R 37 38"}));
    EXPECT_EQ(bench.canvas->Value(0x12), 44);
    ASSERT_TRUE(display->Save());
    EXPECT_EQ(bench.canvas->SavedValue(0x12), 44);
    EXPECT_TRUE(bench.system.refusals.empty()) << bench.system.refusals.front();
}

TEST(LinuxTransports, ADeviceNodeThatVanishesMidTransactionFailsTheOperationAndLeaksNothing) {
    SI2cBench bench;
    {
        std::shared_ptr<UiDisplayDelegate> display = bench.Found();
        ASSERT_NE(display, nullptr);
        ASSERT_TRUE(display->Initialize());
        // The request goes out; the display is unplugged before its reply is read.
        bench.system.VanishAfter("/dev/i2c-5", 1);
        EXPECT_FALSE(display->GetVCPValue(0x12, true).valid);
        EXPECT_FALSE(display->GetVCPValue(0x10, true).valid);
        EXPECT_TRUE(bench.system.refusals.empty()) << bench.system.refusals.front();
    }
    EXPECT_EQ(bench.system.OpenCount(), 0u);
    // Searched again, the display is gone and the user hears where it went.
    CLinuxDisplayDiscovery discovery(bench.system);
    EXPECT_TRUE(discovery.Find().empty());
    ASSERT_EQ(discovery.Notes().size(), 1u);
    EXPECT_EQ(discovery.Notes()[0].find("card0-DP-1: /dev/i2c-5 does not open (No such file or directory)"),
              0u)
        << discovery.Notes()[0];
}

TEST(LinuxTransports, HidrawFeatureReportsGoAtTheDevicesFullReportLength) {
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    CFakeLinuxSystem system;
    auto studio = std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset("studio-24"));
    system.hidraw["/dev/hidraw2"] = std::make_shared<CVirtualHidDevice>(studio);
    CHidrawConnector connector(system);
    ASSERT_TRUE(connector.OpenHIDDevice("/dev/hidraw2"));

    // A short report is padded to the device's 512 bytes; the answer comes back whole.
    EXPECT_TRUE(connector.AnswersAsVcpDevice());
    ByteBuffer status = {0xE5, 0x04, 0x00};
    ASSERT_TRUE(connector.GetFeature(status));
    EXPECT_EQ(status.size(), 512u);
    EXPECT_EQ(status[0], 0xE5);
    // A buffer already at the full length, as the answer just read, goes again as it is.
    ASSERT_TRUE(connector.GetFeature(status));
    EXPECT_EQ(status.size(), 512u);
    // Longer than the device's report: refused before it reaches the kernel.
    EXPECT_FALSE(connector.SetFeature(ByteBuffer(513, 0xE5)));
    EXPECT_TRUE(system.refusals.empty()) << system.refusals.front();

    // The node goes while open: every report fails from then on, and closing still works.
    system.unplugged.insert("/dev/hidraw2");
    EXPECT_FALSE(connector.AnswersAsVcpDevice());
    EXPECT_TRUE(connector.Close());
    EXPECT_EQ(system.OpenCount(), 0u);
    EXPECT_FALSE(connector.OpenHIDDevice("/dev/hidraw2"));
    EXPECT_EQ(connector.OpenError(), ENOENT);
}

TEST(LinuxTransports, HidrawNodesAreTheMakersInterfacesByTheirRealHidIds) {
    CFakeLinuxSystem system;
    system.HidrawNode("hidraw0", 0x046D, 0xC31C, "Logitech USB Receiver");
    system.HidrawNode("hidraw1", 0x2F4A, 0x03A6, "Velor Studio 24 Pen");
    system.HidrawNode("hidraw10", 0x2F4A, 0x0391, "Velor Canvas 16");
    system.HidrawNode("hidraw2", 0x12F4, 0xA03A, "another maker");  // the vendor's digits, moved
    const std::vector<SHidrawDevice> found = FindHidrawDevices(system, 0x2F4A);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].node, "/dev/hidraw1");
    EXPECT_EQ(found[0].productId, 0x03A6);
    EXPECT_EQ(found[1].node, "/dev/hidraw10");
    EXPECT_EQ(found[1].productId, 0x0391);
}

TEST(LinuxTransports, UsbSerialPortsAreKnownByTheirUsbInterfacesRealIds) {
    CFakeLinuxSystem system;
    system.PlainTty("tty0");
    system.PlainTty("ttyS0");
    system.UsbSerialPort("ttyUSB0", "ftdi_sio", 0x0403, 0x6001, 0x0600);  // an FT232R: not a display's bridge
    system.UsbSerialPort("ttyUSB1", "ftdi_sio", 0x0403, 0x6014, 0x0900);  // an FT232H
    system.UsbSerialPort("ttyUSB2", "cp210x", 0x10C4, 0xEA60, 0x0100);
    system.UsbSerialPort("ttyUSB3", "pl2303", 0x067B, 0x2303, 0x0300);
    system.AcmPort("ttyACM0", 0x2F4A, 0x03A6, 0x0100);
    const std::vector<SUsbSerialPort> found = FindUsbSerialPorts(system);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].node, "/dev/ttyUSB1");
    EXPECT_EQ(found[0].hardwareId, "FTDIBUS\\COMPORT&VID_0403&PID_6014");
    EXPECT_EQ(found[1].node, "/dev/ttyUSB2");
    EXPECT_EQ(found[1].hardwareId, "USB\\VID_10C4&PID_EA60");

    // A CP210x on the CDC ACM driver's layout, where "device" is the interface itself.
    CFakeLinuxSystem acm;
    acm.AcmPort("ttyACM0", 0x10C4, 0xEA60, 0x0100);
    const std::vector<SUsbSerialPort> acmFound = FindUsbSerialPorts(acm);
    ASSERT_EQ(acmFound.size(), 1u);
    EXPECT_EQ(acmFound[0].node, "/dev/ttyACM0");
}

TEST(LinuxTransports, DrmConnectorsTakeWholeEdidsOfEveryLengthAndSkipBrokenOnes) {
    CFakeLinuxSystem system;
    const ByteBuffer canvas = TestData::ReadBytes("edid/ed_dell-e178wfp-vga_DEL_D016.bin");
    ASSERT_EQ(canvas.size(), 128u);
    const ByteBuffer twoBlocks = TestData::ReadBytes("edid/ed_asus-vw246-hdmi_ACI_24F2.bin");
    const ByteBuffer threeBlocks = TestData::ReadBytes("edid/ed_dell-up3218k-tile0_DEL_4147.bin");
    const ByteBuffer sevenBlocks = TestData::ReadBytes("edid/ldi_apple-xdr-dp_APP_AE2E.bin");
    ASSERT_EQ(twoBlocks.size(), 256u);
    ASSERT_EQ(threeBlocks.size(), 384u);
    ASSERT_EQ(sevenBlocks.size(), 896u);
    system.DrmEntry("card0");
    system.DrmEntry("version");
    system.DrmConnector("card0-DP-1", canvas, "i2c-5");
    system.DrmConnector("card0-DP-2", twoBlocks, "i2c-6", true);
    system.DrmConnector("card0-DP-3", threeBlocks, "i2c-7", true);
    system.DrmConnector("card0-DP-4", sevenBlocks, "");
    system.DrmConnector("card0-HDMI-A-1", ByteBuffer(twoBlocks.begin(), twoBlocks.begin() + 200), "i2c-8");
    system.DrmConnector("card0-HDMI-A-2", ByteBuffer(twoBlocks.begin(), twoBlocks.begin() + 129), "i2c-9");
    system.DrmConnector("card0-eDP-1", {}, "");
    CLogCapture log;
    const std::vector<SDrmConnector> found = FindDrmConnectors(system);
    ASSERT_EQ(found.size(), 4u);
    EXPECT_EQ(found[0].name, "card0-DP-1");
    EXPECT_EQ(found[0].edid, canvas);
    EXPECT_EQ(found[0].i2cDevice, "/dev/i2c-5");
    EXPECT_EQ(found[1].edid, twoBlocks);
    EXPECT_EQ(found[1].i2cDevice, "/dev/i2c-6");
    EXPECT_EQ(found[2].edid.size(), 384u);
    EXPECT_EQ(found[2].i2cDevice, "/dev/i2c-7");
    EXPECT_EQ(found[3].name, "card0-DP-4");
    EXPECT_EQ(found[3].edid.size(), 896u);
    EXPECT_EQ(found[3].i2cDevice, "");
    EXPECT_TRUE(
        log.Contains("FindDrmConnectors: card0-HDMI-A-1 has a truncated EDID (200 bytes); skipped\n"));
    EXPECT_TRUE(
        log.Contains("FindDrmConnectors: card0-HDMI-A-2 has a truncated EDID (129 bytes); skipped\n"));
}

TEST(LinuxTransports, TheSerialLineIsRaw9600EightNoneOneWithoutFlowControlOnARealTerminal) {
    const int controller = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(controller, 0);
    ASSERT_EQ(grantpt(controller), 0);
    ASSERT_EQ(unlockpt(controller), 0);
    const std::string line = ptsname(controller);
    // The line starts out as another program left it: fast, seven bits with even parity, two
    // stop bits, both kinds of flow control, line editing and echo, blocking reads.
    const int other = open(line.c_str(), O_RDWR | O_NOCTTY);
    ASSERT_GE(other, 0);
    termios settings{};
    ASSERT_EQ(tcgetattr(other, &settings), 0);
    cfsetispeed(&settings, B115200);
    cfsetospeed(&settings, B115200);
    settings.c_cflag = (settings.c_cflag & ~CSIZE) | CS7 | PARENB | CSTOPB | CRTSCTS;
    settings.c_iflag |= IXON | IXOFF | ICRNL | ISTRIP;
    settings.c_lflag |= ICANON | ECHO | ISIG;
    settings.c_oflag |= OPOST | ONLCR;
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 5;
    ASSERT_EQ(tcsetattr(other, TCSANOW, &settings), 0);

    CPosixSerialPort port;
    ASSERT_TRUE(port.Open(line));
    ASSERT_EQ(tcgetattr(other, &settings), 0);
    EXPECT_EQ(cfgetispeed(&settings), static_cast<speed_t>(B9600));
    EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B9600));
    EXPECT_EQ(settings.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
    EXPECT_EQ(settings.c_cflag & (PARENB | CSTOPB | CRTSCTS), 0u);
    EXPECT_EQ(settings.c_cflag & (CLOCAL | CREAD), static_cast<tcflag_t>(CLOCAL | CREAD));
    // Every byte of a reply comes through as sent: no XON/XOFF, no CR translation, no stripping.
    EXPECT_EQ(settings.c_iflag & (IXON | IXOFF | IXANY | ICRNL | INLCR | IGNCR | ISTRIP | PARMRK), 0u);
    EXPECT_EQ(settings.c_lflag & (ICANON | ECHO | ISIG | IEXTEN), 0u);
    EXPECT_EQ(settings.c_oflag & OPOST, 0u);
    // Reads return at once with what has arrived.
    EXPECT_EQ(settings.c_cc[VMIN], 0);
    EXPECT_EQ(settings.c_cc[VTIME], 0);

    // Bytes a terminal would act on reach the far end unchanged.
    const ByteBuffer request = {0x6E, 0x0D, 0x11, 0x13, 0x0A, 0x03, 0xFF};
    size_t written = 0;
    ASSERT_TRUE(port.Write(request, written));
    EXPECT_EQ(written, request.size());
    pollfd ready{controller, POLLIN, 0};
    ASSERT_EQ(poll(&ready, 1, 2000), 1);
    ByteBuffer arrived(16, 0);
    const ssize_t count = read(controller, arrived.data(), arrived.size());
    arrived.resize(count > 0 ? static_cast<size_t>(count) : 0);
    EXPECT_EQ(arrived, request);
    port.Close();
    close(other);
    close(controller);
}
