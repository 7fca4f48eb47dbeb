#include "LinuxDisplayDiscovery.h"

#include <cerrno>
#include <cstring>

#include "CEdidBuilder.h"
#include "CHidrawConnector.h"
#include "CI2cDevConnector.h"
#include "DebugLog.h"
#include "DiscoveryRules.h"
#include "DrmConnectors.h"
#include "EdidText.h"
#include "HidrawDevices.h"
#include "PosixSerialPort.h"
#include "UsbSerialPorts.h"
#include "WinUSBConnector.h"

namespace {

// A node that does not open, and what the user can do about it.
std::string OpenNote(const std::string& node_I, int error_I) {
    std::string note = node_I + " does not open (" + std::strerror(error_I) + ")";
    if (error_I == EACCES || error_I == EPERM) {
        note +=
            "; Linux/udev/70-velor-display.rules and the i2c group give you the display's nodes (see the "
            "README)";
    } else if (error_I == ENOENT && node_I.rfind("/dev/i2c-", 0) == 0) {
        note += "; is the i2c-dev module loaded? sudo modprobe i2c-dev";
    }
    return note;
}

struct SHidCandidate {
    std::string node;
    std::shared_ptr<CHidrawConnector> connector;
    bool taken = false;
};

struct SSerialCandidate {
    std::string node;
    std::shared_ptr<CWinUSBConnector> connector;  // opened when a display first needs the ports
    bool taken = false;
};

}  // namespace

std::vector<SFoundDisplay> CLinuxDisplayDiscovery::Find() {
    std::vector<SFoundDisplay> displays;

    // The maker's HID control interfaces, as discovery on Windows finds them.
    std::vector<SHidCandidate> hid;
    for (const SHidrawDevice& device : FindHidrawDevices(mSystem, kVelorUsbVendorId, mSysfsHidraw)) {
        auto connector = std::make_shared<CHidrawConnector>(mSystem);
        if (!connector->OpenHIDDevice(device.node)) {
            mNotes.push_back(OpenNote(device.node, connector->OpenError()));
        } else if (connector->AnswersAsVcpDevice()) {
            hid.push_back({device.node, connector});
        }
    }

    std::vector<SSerialCandidate> serialPorts;
    for (const SUsbSerialPort& port : FindUsbSerialPorts(mSystem, mSysfsTty)) {
        serialPorts.push_back({port.node, nullptr});
    }

    for (const SDrmConnector& drm : FindDrmConnectors(mSystem, mSysfsDrm)) {
        if (Edid::ManufacturerId(drm.edid) != "VLR") {
            continue;  // another maker's monitor
        }
        const uint16_t productCode = Edid::ProductCode(drm.edid);
        const std::string serial = Edid::DescriptorText(drm.edid, 0xFF);
        std::shared_ptr<Connector> connector;
        std::string route;
        // HID first: by the display's own serial number, then, for the models any control
        // interface serves, by model; then DDC/CI over the connector's bus.
        if (const std::optional<size_t> chosen = Discovery::PairBySerialThenByModel(
                hid.size(), [&](size_t i_I) { return !hid[i_I].taken; },
                [&](size_t i_I) { return hid[i_I].connector->SerialNumber(-1); }, serial,
                Discovery::HidServesByModel(productCode))) {
            hid[*chosen].taken = true;
            connector = hid[*chosen].connector;
            route = hid[*chosen].node;
        }
        // The models reached over a serial line: the port that reads the display's serial number
        // from it, then, as on Windows, any free port by model.
        if (!connector && Discovery::ExpectedLegacyConnectorType(productCode) == eConnectorSerial) {
            for (SSerialCandidate& port : serialPorts) {
                if (!port.connector) {
                    auto posix = std::make_unique<CPosixSerialPort>();
                    CPosixSerialPort* line = posix.get();
                    port.connector = std::make_shared<CWinUSBConnector>(std::move(posix));
                    if (!port.connector->Open(port.node)) {
                        mNotes.push_back(OpenNote(port.node, static_cast<int>(line->LastError())));
                    }
                }
            }
            if (const std::optional<size_t> chosen = Discovery::PairBySerialThenByModel(
                    serialPorts.size(),
                    [&](size_t i_I) {
                        return !serialPorts[i_I].taken && serialPorts[i_I].connector->IsOpen();
                    },
                    [&](size_t i_I) { return serialPorts[i_I].connector->SerialNumber(-1); }, serial, true)) {
                serialPorts[*chosen].taken = true;
                connector = serialPorts[*chosen].connector;
                route = serialPorts[*chosen].node;
            }
        }
        if (!connector && !drm.i2cDevice.empty()) {
            auto i2c = std::make_shared<CI2cDevConnector>(mSystem);
            if (i2c->Open(std::stoi(drm.i2cDevice.substr(drm.i2cDevice.rfind('-') + 1)))) {
                connector = i2c;
                route = drm.i2cDevice;
            } else {
                mNotes.push_back(drm.name + ": " + OpenNote(drm.i2cDevice, i2c->OpenError()));
            }
        }
        if (!connector) {
            DLog("CLinuxDisplays: no way to reach %s (%s)\n", drm.name.c_str(), serial.c_str());
            continue;
        }
        auto display = std::make_shared<UiDisplayDelegate>(connector, productCode);
        const std::string name = Edid::DescriptorText(drm.edid, 0xFC);
        displays.push_back(
            {DisplayModelName(name.empty() ? drm.name : name),
             serial,
             route,
             display,
             false,
             {Edid::ManufacturerId(drm.edid), productCode, serial, ConnectorTypeName(connector->GetType())}});
    }
    return displays;
}
