#include "SimulatedHidApi.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace {

struct SDevice {
    std::shared_ptr<CVirtualHidDevice> device;
    bool exclusive = false;
    uint16_t vendorId = 0;
    uint16_t productId = 0;
};

std::mutex gMutex;
std::map<std::string, SDevice> gDevices;
std::vector<SDevice> gOpen;  // index + 1 is the handle value
CSimulatedHidApi::SCounters gCounters;

std::shared_ptr<CVirtualHidDevice> DeviceOf(HANDLE handle_I) {
    const auto index = reinterpret_cast<uintptr_t>(handle_I);
    std::lock_guard<std::mutex> lock(gMutex);
    return index >= 1 && index <= gOpen.size() ? gOpen[index - 1].device : nullptr;
}

HANDLE WINAPI SimCreateFileA(LPCSTR path_I, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE) {
    std::lock_guard<std::mutex> lock(gMutex);
    auto it = gDevices.find(path_I != nullptr ? path_I : "");
    if (it == gDevices.end()) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    if (it->second.exclusive) {
        SetLastError(ERROR_SHARING_VIOLATION);
        return INVALID_HANDLE_VALUE;
    }
    ++gCounters.opens;
    gOpen.push_back(it->second);
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(gOpen.size()));
}

BOOL WINAPI SimCloseHandle(HANDLE) {
    std::lock_guard<std::mutex> lock(gMutex);
    ++gCounters.closes;
    return TRUE;
}

BOOLEAN WINAPI SimSetFeature(HANDLE handle_I, PVOID buffer_I, ULONG length_I) {
    std::shared_ptr<CVirtualHidDevice> device = DeviceOf(handle_I);
    {
        std::lock_guard<std::mutex> lock(gMutex);
        ++gCounters.setFeatures;
        gCounters.lastReportLength = length_I;
    }
    const auto* bytes = static_cast<const uint8_t*>(buffer_I);
    if (!device || !device->SetFeature(ByteBuffer(bytes, bytes + length_I))) {
        SetLastError(ERROR_GEN_FAILURE);
        return FALSE;
    }
    return TRUE;
}

BOOLEAN WINAPI SimGetFeature(HANDLE handle_I, PVOID buffer_IO, ULONG length_I) {
    std::shared_ptr<CVirtualHidDevice> device = DeviceOf(handle_I);
    {
        std::lock_guard<std::mutex> lock(gMutex);
        ++gCounters.getFeatures;
        gCounters.lastReportLength = length_I;
    }
    auto* bytes = static_cast<uint8_t*>(buffer_IO);
    ByteBuffer report(bytes, bytes + length_I);
    if (!device || !device->GetFeature(report)) {
        SetLastError(ERROR_GEN_FAILURE);
        return FALSE;
    }
    std::copy_n(report.begin(), std::min<size_t>(report.size(), length_I), bytes);
    return TRUE;
}

BOOLEAN WINAPI SimGetAttributes(HANDLE handle_I, PHIDD_ATTRIBUTES attributes_O) {
    const auto index = reinterpret_cast<uintptr_t>(handle_I);
    std::lock_guard<std::mutex> lock(gMutex);
    if (index < 1 || index > gOpen.size() || attributes_O == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    attributes_O->VendorID = gOpen[index - 1].vendorId;
    attributes_O->ProductID = gOpen[index - 1].productId;
    attributes_O->VersionNumber = 0x0100;
    return TRUE;
}

const SHidApi kTable = {&SimCreateFileA, &SimCloseHandle, &SimSetFeature, &SimGetFeature, &SimGetAttributes};

}  // namespace

CSimulatedHidApi::CSimulatedHidApi() {
    std::lock_guard<std::mutex> lock(gMutex);
    gDevices.clear();
    gOpen.clear();
    gCounters = {};
    SetHidApi(&kTable);
}

CSimulatedHidApi::~CSimulatedHidApi() {
    SetHidApi(nullptr);
    std::lock_guard<std::mutex> lock(gMutex);
    gDevices.clear();
    gOpen.clear();
}

void CSimulatedHidApi::AddDevice(const std::string& path_I, std::shared_ptr<CVirtualHidDevice> device_I,
                                 bool exclusive_I, uint16_t vendorId_I, uint16_t productId_I) {
    std::lock_guard<std::mutex> lock(gMutex);
    gDevices[path_I] = {std::move(device_I), exclusive_I, vendorId_I, productId_I};
}

const SHidApi& CSimulatedHidApi::Table() {
    return kTable;
}

CSimulatedHidApi::SCounters CSimulatedHidApi::Counters() {
    std::lock_guard<std::mutex> lock(gMutex);
    return gCounters;
}
