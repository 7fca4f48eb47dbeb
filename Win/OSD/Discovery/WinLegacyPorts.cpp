#include "WinLegacyPorts.h"

#include "CI2CConnectorFTDI.h"
#include "CI2CConnectorTI.h"
#include "DebugLog.h"
#include "DiscoveryRules.h"
#include "DiscoverySystemApi.h"
#include "ScopedTimer.h"
#include "SerialPort.h"
#include "SetupApiReads.h"
#include "WinUSBConnector.h"

namespace {

const SDiscoverySystemApi& Api() {
    return DiscoverySystemApi();
}

template <typename Bridge>
void AddBridges(const char* kind_I, const char* lookingFor_I,
                std::vector<std::shared_ptr<Connector>>& connectors_IO) {
    DLog("%s", lookingFor_I);
    const int count = Bridge::DeviceCount();
    DLog("CWinDisplayConfigInterface::FindSerialPorts: %i %s devices found...\n", count, kind_I);
    for (int index = 0; index < count; ++index) {
        auto connector = std::make_shared<Bridge>();
        if (connector->Open(static_cast<int32_t>(index))) {
            DLog("CWinDisplayConfigInterface::FindSerialPorts: opened connection (%s) for deviceIdx: %i\n",
                 kind_I, index);
            connectors_IO.push_back(std::move(connector));
        } else {
            DLog(
                "CWinDisplayConfigInterface::FindSerialPorts: connection failed for deviceIdx: %i, not "
                "adding (%s)\n",
                index, kind_I);
        }
    }
}

}  // namespace

namespace WinLegacyPorts {

void Find(std::vector<std::shared_ptr<Connector>>& connectors_IO) {
    CScopedTimer timer("CWinDisplayConfigInterface::FindSerialPorts");
    DLog("CWinDisplayConfigInterface::FindSerialPorts\n");
    DLog("CWinDisplayConfigInterface::FindSerialPorts - looking for COMPORT devices...\n");
    HDEVINFO ports = Api().SetupDiGetClassDevsA(&kComPortInterfaceClassGuid, nullptr, nullptr,
                                                DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    if (ports != INVALID_HANDLE_VALUE) {
        for (DWORD index = 0;; ++index) {
            DLog("CWinDisplayConfigInterface::FindSerialPorts - looking for device %i ...\n",
                 static_cast<int>(index));
            SP_DEVINFO_DATA device{};
            device.cbSize = sizeof(device);
            const std::string deviceId = NextDeviceId(ports, index, device);
            if (deviceId.empty()) {
                DLog("CWinDisplayConfigInterface::FindSerialPorts: no device found\n");
                break;
            }
            if (deviceId == kNotSupported) {
                continue;
            }
            DLog("CWinDisplayConfigInterface::FindSerialPorts: deviceid: %s\n", deviceId.c_str());
            AddPort(ports, device, connectors_IO);
        }
        Api().SetupDiDestroyDeviceInfoList(ports);
    }

    AddBridges<CI2CConnectorFTDI>(
        "FTDI", "CWinDisplayConfigInterface::FindSerialPorts - looking for I2C-FTDI devices...\n",
        connectors_IO);
    AddBridges<CI2CConnectorTI>(
        "TI", "CWinDisplayConfigInterface::FindSerialPorts - looking for  I2C-TI devices...\n",
        connectors_IO);
    DLog("CWinDisplayConfigInterface::FindSerialPorts: ports found: %d\n",
         static_cast<int>(connectors_IO.size()));
}

std::string NextDeviceId(HDEVINFO ports_I, DWORD index_I, SP_DEVINFO_DATA& device_O) {
    CScopedTimer timer("CWinDisplayConfigInterface::GetNextDeviceID");
    SP_DEVICE_INTERFACE_DATA interfaceData{};
    interfaceData.cbSize = sizeof(interfaceData);
    if (!Api().SetupDiEnumDeviceInterfaces(ports_I, nullptr, &kComPortInterfaceClassGuid, index_I,
                                           &interfaceData)) {
        DLog("GetNextDeviceID SetupDiEnumDeviceInterfaces failed 0x%X\n",
             static_cast<unsigned>(GetLastError()));
        return {};
    }
    std::string path;
    switch (ReadInterfacePath(ports_I, interfaceData, &device_O, path)) {
        case EDetail::NoData: DLog("GetNextDeviceID no functionClassDeviceData\n"); return kNotSupported;
        case EDetail::Failed:
            DLog("GetNextDeviceID SetupDiGetDeviceInterfaceDetailA failed 0x%X\n",
                 static_cast<unsigned>(GetLastError()));
            return kNotSupported;
        case EDetail::Read: break;
    }
    std::string hardwareId;
    if (!ReadTextProperty(ports_I, device_O, SPDRP_HARDWAREID, hardwareId)) {
        DLog("GetNextDeviceID SetupDiGetDeviceRegistryPropertyA failed 0x%X\n",
             static_cast<unsigned>(GetLastError()));
        return kNotSupported;
    }
    DLog("GetNextDeviceID deviceName: %s\n", hardwareId.c_str());
    switch (Discovery::ClassifyPortHardwareId(hardwareId)) {
        case Discovery::EPortKind::FtdiVirtualComPort:
            DLog("GetNextDeviceID found FTDI\\\\COMPORT&VID_0403&PID_6014 (case-insensitive)\n");
            return hardwareId;
        case Discovery::EPortKind::SiliconLabsBridge: return hardwareId;
        case Discovery::EPortKind::NotSupported: break;
    }
    DLog("GetNextDeviceID couldn't find USB\\\\\\\\VID_10C4&PID_EA60 (case-insensitive)\n");
    return kNotSupported;
}

void AddPort(HDEVINFO ports_I, SP_DEVINFO_DATA& device_I,
             std::vector<std::shared_ptr<Connector>>& connectors_IO) {
    CScopedTimer timer("CWinDisplayConfigInterface::GetPortNum");
    HKEY key = Api().SetupDiOpenDevRegKey(ports_I, &device_I, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
    if (key == INVALID_HANDLE_VALUE || key == nullptr) {
        DLog("SetupDiOpenDevRegKey failed 0x%X\n", static_cast<unsigned>(GetLastError()));
        return;
    }
    ByteBuffer value;
    const bool read = ReadRegistryValue(key, "PortName", value, 256);
    Api().RegCloseKey(key);
    const std::string portName = read ? RegistryText(value) : std::string();
    if (portName.empty()) {
        DLog("CWinDisplayConfigInterface::GetPortNum: no PortName value\n");
        return;
    }
    DLog("CWinDisplayConfigInterface::GetPortNum: adding comport: %s\n", portName.c_str());
    auto connector = std::make_shared<CWinUSBConnector>(Api().CreateSerialPort());
    if (connector->Open(portName)) {
        DLog("CWinDisplayConfigInterface::GetPortNum: adding connection\n");
        connectors_IO.push_back(std::move(connector));
    } else {
        DLog("CWinDisplayConfigInterface::GetPortNum: connection failed, not adding\n");
    }
}

}  // namespace WinLegacyPorts
