#pragma once
// A Linux system for the transports' tests. Its sysfs is a real tree on disk under a temporary
// root, laid out as the kernel lays it out (class entries are symbolic links into the device
// tree, so "device/../uevent" resolves through the link as in /sys). Its device nodes are backed
// by virtual displays and refuse what the kernel refuses: i2c-dev transfers with flags, lengths,
// addresses or message counts it does not take, hidraw feature reports of another length than
// the device's report, ioctls a node does not know, and every call on a node whose device has
// gone. Each refusal is also written down, so that a test can say what the code got wrong.

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "ByteBuffer.h"
#include "CVirtualHidDevice.h"
#include "CVirtualI2CBus.h"
#include "LinuxSystem.h"

class CFakeLinuxSystem : public ILinuxSystem {
public:
    CFakeLinuxSystem();
    ~CFakeLinuxSystem() override;
    CFakeLinuxSystem(const CFakeLinuxSystem&) = delete;
    CFakeLinuxSystem& operator=(const CFakeLinuxSystem&) = delete;

    // ---- the sysfs tree (paths as the code sees them, "/sys/...") ----
    void File(const std::string& path_I, const ByteBuffer& bytes_I);
    void File(const std::string& path_I, const std::string& text_I);
    void Link(const std::string& path_I, const std::string& target_I);
    void Folder(const std::string& path_I);
    void Remove(const std::string& path_I);
    // A DRM connector of card0 ("card0-DP-1") with its EDID (empty: nothing connected). Its DDC
    // bus ("i2c-5", or none) is named by a "ddc" link as HDMI and DVI connectors have it, or,
    // with busAsFolder_I, by the adapter folder inside the connector as DisplayPort's AUX
    // channel has it.
    void DrmConnector(const std::string& name_I, const ByteBuffer& edid_I, const std::string& bus_I,
                      bool busAsFolder_I = false);
    // A sysfs file that is not a connector ("version"), or a card ("card0").
    void DrmEntry(const std::string& name_I);
    // A port of a USB serial converter driven by usbserial ("ttyUSB0", driver "ftdi_sio",
    // "cp210x", "pl2303"): the port device's uevent names only the driver, the USB interface
    // above it carries PRODUCT=<vid>/<pid>/<bcdDevice> in lower-case hex without leading zeros.
    void UsbSerialPort(const std::string& name_I, const std::string& driver_I, uint16_t vendor_I,
                       uint16_t product_I, uint16_t release_I);
    // A port of a CDC ACM device ("ttyACM0"): "device" is the USB interface itself.
    void AcmPort(const std::string& name_I, uint16_t vendor_I, uint16_t product_I, uint16_t release_I);
    // A virtual terminal or a built-in UART (no USB device above it).
    void PlainTty(const std::string& name_I);
    // A hidraw node of a USB HID interface, HID_ID=0003:<vid, 8 digits>:<pid, 8 digits>.
    void HidrawNode(const std::string& name_I, uint16_t vendor_I, uint16_t product_I,
                    const std::string& hidName_I);

    // ---- device nodes ----
    std::map<std::string, std::shared_ptr<CVirtualI2CBus>> devices;  // "/dev/i2c-5"
    // hidraw nodes; a null device opens but refuses every feature report (a pen interface).
    std::map<std::string, std::shared_ptr<CVirtualHidDevice>> hidraw;
    // Nodes whose device has been unplugged: what is open of them stops working.
    std::set<std::string> unplugged;
    // Nodes the user may not open.
    std::set<std::string> denied;
    // Serial ports are real pseudo-terminals: the node of a tty name.
    std::map<std::string, std::string> nodes;
    // The node's device goes after this many more ioctls on it have worked: the next call fails
    // as on an unplugged device and the node is gone from /dev.
    void VanishAfter(const std::string& node_I, unsigned calls_I);

    // What went over i2c-dev: one line per message, "W 37 6E51820110AC" or "R 37 11".
    std::vector<std::string> messages;
    unsigned transfers = 0;
    // What the kernel refused and why, e.g. "I2C_RDWR: message of 9000 bytes".
    std::vector<std::string> refusals;
    size_t OpenCount() const { return mOpen.size(); }

    std::vector<std::string> List(const std::string& folder_I) override;
    std::optional<ByteBuffer> Read(const std::string& path_I) override;
    std::string LinkTarget(const std::string& path_I) override;
    int Open(const std::string& path_I, int flags_I) override;
    int Close(int descriptor_I) override;
    int Ioctl(int descriptor_I, unsigned long request_I, void* argument_I) override;
    std::string DeviceNode(const std::string& name_I) override;

private:
    std::string OnDisk(const std::string& path_I) const;
    int Refuse(int error_I, const std::string& why_I);
    int I2cTransfer(const std::shared_ptr<CVirtualI2CBus>& bus_I, unsigned long request_I, void* argument_I);
    int FeatureReport(const std::shared_ptr<CVirtualHidDevice>& device_I, unsigned long request_I,
                      void* argument_I);

    std::string mRoot;
    std::map<int, std::string> mOpen;  // descriptor -> node
    std::map<std::string, unsigned> mVanishAfter;
    int mNext = 10;
    unsigned mUsbDevices = 0;
};
