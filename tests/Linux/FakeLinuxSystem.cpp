#include "FakeLinuxSystem.h"

#include <linux/hidraw.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

// i2c-dev's limits (drivers/i2c/i2c-dev.c) and hidraw's (HID_MAX_BUFFER_SIZE).
constexpr unsigned kMaxMessages = I2C_RDWR_IOCTL_MAX_MSGS;
constexpr unsigned kMaxMessageLength = 8192;
constexpr size_t kMaxHidBuffer = 16384;

std::string Hex(const uint8_t* bytes_I, size_t count_I) {
    std::string text;
    char two[3];
    for (size_t i = 0; i < count_I; ++i) {
        std::snprintf(two, sizeof(two), "%02X", bytes_I[i]);
        text += two;
    }
    return text;
}

std::string Printf(const char* format_I, unsigned a_I, unsigned b_I = 0, unsigned c_I = 0) {
    char text[128];
    std::snprintf(text, sizeof(text), format_I, a_I, b_I, c_I);
    return text;
}

// The card a connector belongs to: "card1" of "card1-DP-1".
std::string CardOf(const std::string& connector_I) {
    return connector_I.substr(0, connector_I.find('-'));
}

}  // namespace

CFakeLinuxSystem::CFakeLinuxSystem() {
    char root[] = "/tmp/vlr-sysfs-XXXXXX";
    if (mkdtemp(root) == nullptr) {
        std::perror("mkdtemp");
        std::abort();
    }
    mRoot = root;
}

CFakeLinuxSystem::~CFakeLinuxSystem() {
    std::error_code ignored;
    fs::remove_all(mRoot, ignored);
}

std::string CFakeLinuxSystem::OnDisk(const std::string& path_I) const {
    return mRoot + path_I;
}

void CFakeLinuxSystem::File(const std::string& path_I, const ByteBuffer& bytes_I) {
    fs::create_directories(fs::path(OnDisk(path_I)).parent_path());
    std::ofstream(OnDisk(path_I), std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(bytes_I.data()), static_cast<std::streamsize>(bytes_I.size()));
}

void CFakeLinuxSystem::File(const std::string& path_I, const std::string& text_I) {
    File(path_I, ByteBuffer(text_I.begin(), text_I.end()));
}

void CFakeLinuxSystem::Link(const std::string& path_I, const std::string& target_I) {
    fs::create_directories(fs::path(OnDisk(path_I)).parent_path());
    std::error_code ignored;
    fs::remove(OnDisk(path_I), ignored);
    fs::create_symlink(target_I, OnDisk(path_I));
}

void CFakeLinuxSystem::Folder(const std::string& path_I) {
    fs::create_directories(OnDisk(path_I));
}

void CFakeLinuxSystem::Remove(const std::string& path_I) {
    std::error_code ignored;
    fs::remove_all(OnDisk(path_I), ignored);
}

void CFakeLinuxSystem::DrmConnector(const std::string& name_I, const ByteBuffer& edid_I,
                                    const std::string& bus_I, bool busAsFolder_I) {
    const std::string gpu = "/sys/devices/pci0000:00/0000:00:02.0";
    const std::string card = CardOf(name_I);
    const std::string folder = gpu + "/drm/" + card + "/" + name_I;
    DrmEntry(card);
    File(folder + "/edid", edid_I);  // a connector with nothing on it has an empty edid file
    File(folder + "/status", edid_I.empty() ? "disconnected\n" : "connected\n");
    File(folder + "/enabled", edid_I.empty() ? "disabled\n" : "enabled\n");
    File(folder + "/uevent", "DEVTYPE=drm_connector\n");
    if (!bus_I.empty()) {
        if (busAsFolder_I) {
            File(folder + "/" + bus_I + "/name", "AUX A/DDI A/PHY A\n");
            Folder(folder + "/drm_dp_aux0");
        } else {
            File(gpu + "/" + bus_I + "/name", "i915 gmbus dpb\n");
            Link(folder + "/ddc", "../../../" + bus_I);
        }
    }
    Link("/sys/class/drm/" + name_I, "../../devices/pci0000:00/0000:00:02.0/drm/" + card + "/" + name_I);
}

void CFakeLinuxSystem::DrmEntry(const std::string& name_I) {
    if (name_I == "version") {
        File("/sys/class/drm/version", "drm 1.1.0 20060810\n");
        return;
    }
    Folder("/sys/devices/pci0000:00/0000:00:02.0/drm/" + name_I);
    Link("/sys/class/drm/" + name_I, "../../devices/pci0000:00/0000:00:02.0/drm/" + name_I);
}

void CFakeLinuxSystem::UsbSerialPort(const std::string& name_I, const std::string& driver_I,
                                     uint16_t vendor_I, uint16_t product_I, uint16_t release_I) {
    const std::string device = "usb1/1-" + std::to_string(++mUsbDevices);
    const std::string usb = "/sys/devices/pci0000:00/0000:00:14.0/" + device;
    const std::string interface = usb + "/" + device.substr(5) + ":1.0";
    File(usb + "/uevent", "DEVTYPE=usb_device\nDRIVER=usb\n" +
                              Printf("PRODUCT=%x/%x/%x\n", vendor_I, product_I, release_I) +
                              "TYPE=0/0/0\nBUSNUM=001\n");
    File(usb + "/idVendor", Printf("%04x\n", vendor_I));
    File(usb + "/idProduct", Printf("%04x\n", product_I));
    File(interface + "/uevent", "DEVTYPE=usb_interface\nDRIVER=" + driver_I + "\n" +
                                    Printf("PRODUCT=%x/%x/%x\n", vendor_I, product_I, release_I) +
                                    "TYPE=0/0/0\nINTERFACE=255/255/255\n" +
                                    Printf("MODALIAS=usb:v%04Xp%04Xd%04X", vendor_I, product_I, release_I) +
                                    "dc00dsc00dp00icFFiscFFipFFin00\n");
    // The usb-serial port device knows only its driver.
    File(interface + "/" + name_I + "/uevent", "DRIVER=" + driver_I + "\n");
    const std::string tty = interface + "/" + name_I + "/tty/" + name_I;
    File(tty + "/uevent", "MAJOR=188\nMINOR=0\nDEVNAME=" + name_I + "\n");
    Link(tty + "/device", "../../../" + name_I);
    Link("/sys/class/tty/" + name_I, "../.." + tty.substr(4));
}

void CFakeLinuxSystem::AcmPort(const std::string& name_I, uint16_t vendor_I, uint16_t product_I,
                               uint16_t release_I) {
    const std::string device = "usb1/1-" + std::to_string(++mUsbDevices);
    const std::string usb = "/sys/devices/pci0000:00/0000:00:14.0/" + device;
    const std::string interface = usb + "/" + device.substr(5) + ":1.0";
    File(usb + "/uevent",
         "DEVTYPE=usb_device\nDRIVER=usb\n" + Printf("PRODUCT=%x/%x/%x\n", vendor_I, product_I, release_I));
    File(interface + "/uevent", "DEVTYPE=usb_interface\nDRIVER=cdc_acm\n" +
                                    Printf("PRODUCT=%x/%x/%x\n", vendor_I, product_I, release_I) +
                                    "TYPE=2/0/0\nINTERFACE=2/2/1\n");
    const std::string tty = interface + "/tty/" + name_I;
    File(tty + "/uevent", "MAJOR=166\nMINOR=0\nDEVNAME=" + name_I + "\n");
    Link(tty + "/device", "../../../" + device.substr(5) + ":1.0");
    Link("/sys/class/tty/" + name_I, "../.." + tty.substr(4));
}

void CFakeLinuxSystem::PlainTty(const std::string& name_I) {
    if (name_I.rfind("ttyS", 0) == 0) {
        const std::string uart = "/sys/devices/pnp0/00:04";
        File(uart + "/uevent", "DRIVER=serial\nMODALIAS=pnp:dPNP0501\n");
        File(uart + "/tty/" + name_I + "/uevent", "MAJOR=4\nMINOR=64\nDEVNAME=" + name_I + "\n");
        Link(uart + "/tty/" + name_I + "/device", "../../../00:04");
        Link("/sys/class/tty/" + name_I, "../../devices/pnp0/00:04/tty/" + name_I);
        return;
    }
    File("/sys/devices/virtual/tty/" + name_I + "/uevent", "MAJOR=4\nMINOR=0\nDEVNAME=" + name_I + "\n");
    Link("/sys/class/tty/" + name_I, "../../devices/virtual/tty/" + name_I);
}

void CFakeLinuxSystem::HidrawNode(const std::string& name_I, uint16_t vendor_I, uint16_t product_I,
                                  const std::string& hidName_I) {
    const std::string device = "usb1/1-" + std::to_string(++mUsbDevices);
    const std::string interface =
        "/sys/devices/pci0000:00/0000:00:14.0/" + device + "/" + device.substr(5) + ":1.0";
    const std::string hid = Printf("0003:%04X:%04X", vendor_I, product_I) + Printf(".%04X", mUsbDevices);
    File(interface + "/uevent", "DEVTYPE=usb_interface\nDRIVER=usbhid\n" +
                                    Printf("PRODUCT=%x/%x/100\n", vendor_I, product_I) + "INTERFACE=3/0/0\n");
    File(interface + "/" + hid + "/uevent",
         "DRIVER=hid-generic\n" + Printf("HID_ID=0003:%08X:%08X\n", vendor_I, product_I) +
             "HID_NAME=" + hidName_I + "\nHID_PHYS=usb-0000:00:14.0-" + std::to_string(mUsbDevices) +
             "/input0\nHID_UNIQ=\n" + Printf("MODALIAS=hid:b0003g0001v%08Xp%08X\n", vendor_I, product_I));
    const std::string node = interface + "/" + hid + "/hidraw/" + name_I;
    File(node + "/uevent", "MAJOR=242\nMINOR=0\nDEVNAME=" + name_I + "\n");
    Link(node + "/device", "../../../" + hid);
    Link("/sys/class/hidraw/" + name_I, "../.." + node.substr(4));
}

void CFakeLinuxSystem::VanishAfter(const std::string& node_I, unsigned calls_I) {
    mVanishAfter[node_I] = calls_I;
}

std::vector<std::string> CFakeLinuxSystem::List(const std::string& folder_I) {
    return RealLinuxSystem().List(OnDisk(folder_I));
}

std::optional<ByteBuffer> CFakeLinuxSystem::Read(const std::string& path_I) {
    if (fs::is_directory(OnDisk(path_I))) {
        return std::nullopt;  // read(2) of a folder fails with EISDIR
    }
    return RealLinuxSystem().Read(OnDisk(path_I));
}

std::string CFakeLinuxSystem::LinkTarget(const std::string& path_I) {
    return RealLinuxSystem().LinkTarget(OnDisk(path_I));
}

int CFakeLinuxSystem::Open(const std::string& path_I, int) {
    if (denied.count(path_I) != 0) {
        errno = EACCES;
        return -1;
    }
    if (unplugged.count(path_I) != 0 || (devices.count(path_I) == 0 && hidraw.count(path_I) == 0)) {
        errno = ENOENT;
        return -1;
    }
    mOpen[mNext] = path_I;
    return mNext++;
}

int CFakeLinuxSystem::Close(int descriptor_I) {
    if (mOpen.erase(descriptor_I) == 0) {
        errno = EBADF;
        return -1;
    }
    return 0;
}

int CFakeLinuxSystem::Refuse(int error_I, const std::string& why_I) {
    refusals.push_back(why_I);
    errno = error_I;
    return -1;
}

int CFakeLinuxSystem::Ioctl(int descriptor_I, unsigned long request_I, void* argument_I) {
    const auto open = mOpen.find(descriptor_I);
    if (open == mOpen.end()) {
        errno = EBADF;
        return -1;
    }
    const std::string& node = open->second;
    if (unplugged.count(node) != 0) {
        errno = ENODEV;  // what an open node of a device that has gone reports
        return -1;
    }
    if (auto vanish = mVanishAfter.find(node); vanish != mVanishAfter.end() && vanish->second-- == 0) {
        mVanishAfter.erase(vanish);
        unplugged.insert(node);
        errno = ENODEV;
        return -1;
    }
    if (auto hid = hidraw.find(node); hid != hidraw.end()) {
        return FeatureReport(hid->second, request_I, argument_I);
    }
    return I2cTransfer(devices.at(node), request_I, argument_I);
}

int CFakeLinuxSystem::I2cTransfer(const std::shared_ptr<CVirtualI2CBus>& bus_I, unsigned long request_I,
                                  void* argument_I) {
    if (request_I != I2C_RDWR) {
        // The code talks to the bus through combined transfers only; I2C_SLAVE and read(2) are
        // another way this fake does not model.
        return Refuse(ENOTTY, Printf("i2c-dev: ioctl %#x is not I2C_RDWR", static_cast<unsigned>(request_I)));
    }
    auto* transfer = static_cast<i2c_rdwr_ioctl_data*>(argument_I);
    if (transfer == nullptr || transfer->msgs == nullptr || transfer->nmsgs == 0 ||
        transfer->nmsgs > kMaxMessages) {
        return Refuse(EINVAL, Printf("I2C_RDWR: %u messages", transfer == nullptr ? 0 : transfer->nmsgs));
    }
    for (unsigned i = 0; i < transfer->nmsgs; ++i) {
        const i2c_msg& message = transfer->msgs[i];
        if (message.len > kMaxMessageLength) {
            return Refuse(EINVAL, Printf("I2C_RDWR: message of %u bytes", message.len));
        }
        if (message.buf == nullptr && message.len != 0) {
            return Refuse(EFAULT, "I2C_RDWR: no buffer");
        }
        if ((message.flags & ~I2C_M_RD) != 0) {
            // A graphics card's DDC bus does plain 7-bit transfers; it has no 10-bit addresses,
            // no transfers without a start, and reads no length from the first byte.
            return Refuse(EOPNOTSUPP, Printf("I2C_RDWR: flags %#x", message.flags));
        }
        if (message.addr > 0x7F) {
            return Refuse(EINVAL, Printf("I2C_RDWR: address %#x is not a 7-bit address", message.addr));
        }
        if ((message.flags & I2C_M_RD) != 0 && message.len == 0) {
            return Refuse(EOPNOTSUPP, "I2C_RDWR: read of no bytes");
        }
    }
    ++transfers;
    for (unsigned i = 0; i < transfer->nmsgs; ++i) {
        i2c_msg& message = transfer->msgs[i];
        bool acknowledged = false;
        if ((message.flags & I2C_M_RD) != 0) {
            ByteBuffer bytes;
            acknowledged = bus_I->Read(static_cast<uint8_t>(message.addr), message.len, bytes);
            std::copy(bytes.begin(), bytes.begin() + std::min<size_t>(bytes.size(), message.len),
                      message.buf);
            messages.push_back(Printf("R %02X %u", message.addr, message.len));
        } else {
            acknowledged = bus_I->Write(static_cast<uint8_t>(message.addr),
                                        ByteBuffer(message.buf, message.buf + message.len));
            messages.push_back(Printf("W %02X ", message.addr) + Hex(message.buf, message.len));
        }
        if (!acknowledged) {
            errno = ENXIO;  // what i2c-dev reports for a NACK
            return -1;
        }
    }
    return static_cast<int>(transfer->nmsgs);
}

int CFakeLinuxSystem::FeatureReport(const std::shared_ptr<CVirtualHidDevice>& device_I,
                                    unsigned long request_I, void* argument_I) {
    const size_t size = _IOC_SIZE(request_I);
    const bool set = request_I == HIDIOCSFEATURE(size);
    if (!set && request_I != HIDIOCGFEATURE(size)) {
        return Refuse(ENOTTY,
                      Printf("hidraw: ioctl %#x is not a feature report", static_cast<unsigned>(request_I)));
    }
    if (size < 2 || size > kMaxHidBuffer) {
        return Refuse(EINVAL, Printf("hidraw: feature report of %u bytes", static_cast<unsigned>(size)));
    }
    if (!device_I) {
        errno = EPIPE;  // a pen interface has no such report: its control transfer stalls
        return -1;
    }
    if (size != CVirtualHidDevice::kReportSize) {
        // The device's report is a fixed length; a control transfer of another length stalls.
        return Refuse(EPIPE, Printf("hidraw: feature report of %u bytes, the device's is %u",
                                    static_cast<unsigned>(size),
                                    static_cast<unsigned>(CVirtualHidDevice::kReportSize)));
    }
    auto* buffer = static_cast<uint8_t*>(argument_I);
    ByteBuffer report(buffer, buffer + size);
    const bool ok = set ? device_I->SetFeature(report) : device_I->GetFeature(report);
    if (!ok) {
        errno = EPIPE;  // what hidraw reports for a stalled control transfer
        return -1;
    }
    if (!set) {
        std::copy_n(report.begin(), std::min(report.size(), size), buffer);
    }
    return static_cast<int>(size);
}

std::string CFakeLinuxSystem::DeviceNode(const std::string& name_I) {
    auto it = nodes.find(name_I);
    return it != nodes.end() ? it->second : "/dev/" + name_I;
}
