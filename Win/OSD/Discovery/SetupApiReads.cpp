#include "SetupApiReads.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "DiscoverySystemApi.h"

namespace {

constexpr size_t kPropertyBufferSize = 1024;

const SDiscoverySystemApi& Api() {
    return DiscoverySystemApi();
}

}  // namespace

bool ReadTextProperty(HDEVINFO devices_I, SP_DEVINFO_DATA& device_I, DWORD property_I, std::string& text_O) {
    char buffer[kPropertyBufferSize] = {};
    if (!Api().SetupDiGetDeviceRegistryPropertyA(devices_I, &device_I, property_I, nullptr,
                                                 reinterpret_cast<PBYTE>(buffer), sizeof(buffer) - 1,
                                                 nullptr)) {
        return false;
    }
    // A multi-string hardware id: the first string is the most specific one.
    text_O.assign(buffer, strnlen(buffer, sizeof(buffer)));
    return true;
}

bool ReadRegistryValue(HKEY key_I, const char* name_I, ByteBuffer& value_O, size_t size_I) {
    value_O.assign(size_I, 0x00);
    DWORD length = static_cast<DWORD>(size_I);
    DWORD type = 0;
    if (Api().RegQueryValueExA(key_I, name_I, nullptr, &type, value_O.data(), &length) != ERROR_SUCCESS) {
        return false;
    }
    return true;
}

std::string RegistryText(const ByteBuffer& value_I) {
    const auto end = std::find(value_I.begin(), value_I.end(), 0x00);
    return std::string(value_I.begin(), end);
}

EDetail ReadInterfacePath(HDEVINFO devices_I, SP_DEVICE_INTERFACE_DATA& interface_I,
                          SP_DEVINFO_DATA* device_O, std::string& path_O) {
    DWORD required = 0;
    Api().SetupDiGetDeviceInterfaceDetailA(devices_I, &interface_I, nullptr, 0, &required, nullptr);
    if (required == 0) {
        return EDetail::NoData;
    }
    std::vector<uint8_t> storage(std::max<size_t>(required, sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_A)), 0);
    auto* detail = reinterpret_cast<PSP_DEVICE_INTERFACE_DETAIL_DATA_A>(storage.data());
    detail->cbSize = sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_A);
    if (!Api().SetupDiGetDeviceInterfaceDetailA(devices_I, &interface_I, detail,
                                                static_cast<DWORD>(storage.size()), nullptr, device_O)) {
        return EDetail::Failed;
    }
    const size_t pathSpace = storage.size() - offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath);
    path_O.assign(detail->DevicePath, strnlen(detail->DevicePath, pathSpace));
    return EDetail::Read;
}
