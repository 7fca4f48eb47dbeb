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
#include "RoutePlan.h"
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

}  // namespace

void CLinuxDisplayDiscovery::OpenSerialPorts(std::vector<SSerialCandidate>& ports_IO) {
    for (SSerialCandidate& port : ports_IO) {
        if (!port.connector) {
            auto posix = std::make_unique<CPosixSerialPort>();
            CPosixSerialPort* line = posix.get();
            port.connector = std::make_shared<CWinUSBConnector>(std::move(posix));
            if (!port.connector->Open(port.node)) {
                mNotes.push_back(OpenNote(port.node, static_cast<int>(line->LastError())));
            }
        }
    }
}

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
        auto serve = [&](std::shared_ptr<Connector> connector_I, const std::string& route_I) {
            connector = std::move(connector_I);
            route = route_I;
            return ERouteResult::Served;
        };
        const SRoutePlan plan = Discovery::PlanRoutes(eConnectionAll, true, productCode, false);
        Discovery::RunRoutePlan(plan, [&](ERoute route_I) {
            switch (route_I) {
                case ERoute::Hid:
                    // By the display's own serial number, then, for the models any control
                    // interface serves, by model.
                    if (const std::optional<size_t> chosen = Discovery::PairBySerialThenByModel(
                            hid.size(), [&](size_t i_I) { return !hid[i_I].taken; },
                            [&](size_t i_I) { return hid[i_I].connector->SerialNumber(-1); }, serial,
                            plan.hidByModel)) {
                        hid[*chosen].taken = true;
                        return serve(hid[*chosen].connector, hid[*chosen].node);
                    }
                    break;
                case ERoute::Legacy:
                    // This system reaches the legacy models over their serial line only: the
                    // port that reads the display's serial number, then, as on Windows, any
                    // free port by model.
                    if (plan.expectedLegacyType != eConnectorSerial) {
                        break;
                    }
                    OpenSerialPorts(serialPorts);
                    if (const std::optional<size_t> chosen = Discovery::PairBySerialThenByModel(
                            serialPorts.size(),
                            [&](size_t i_I) {
                                return !serialPorts[i_I].taken && serialPorts[i_I].connector->IsOpen();
                            },
                            [&](size_t i_I) { return serialPorts[i_I].connector->SerialNumber(-1); }, serial,
                            true)) {
                        serialPorts[*chosen].taken = true;
                        return serve(serialPorts[*chosen].connector, serialPorts[*chosen].node);
                    }
                    break;
                case ERoute::GraphicsDriver:
                    // DDC/CI over the connector's own bus.
                    if (drm.i2cDevice.empty()) {
                        break;
                    }
                    if (auto i2c = std::make_shared<CI2cDevConnector>(mSystem);
                        i2c->Open(std::stoi(drm.i2cDevice.substr(drm.i2cDevice.rfind('-') + 1)))) {
                        return serve(i2c, drm.i2cDevice);
                    } else {
                        mNotes.push_back(drm.name + ": " + OpenNote(drm.i2cDevice, i2c->OpenError()));
                    }
                    break;
            }
            return ERouteResult::NotServed;
        });
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
