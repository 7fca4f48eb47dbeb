#include "SimulatedHidApi.h"

#include <winioctl.h>
// winioctl.h first: hidclass.h builds its request codes with it.
#include <hidclass.h>

#include <algorithm>
#include <mutex>
#include <vector>

namespace {

// The request states kept in OVERLAPPED::Internal.
constexpr ULONG_PTR kPending = 0x00000103;    // STATUS_PENDING
constexpr ULONG_PTR kCancelled = 0xC0000120;  // STATUS_CANCELLED

struct SDevice {
    std::shared_ptr<CVirtualHidDevice> device;
    bool exclusive = false;
    uint16_t vendorId = 0;
    uint16_t productId = 0;
    uint32_t readWriteError = 0;
    unsigned featureReportLength = 512;
    bool hung = false;
    bool unplugged = false;
};

std::mutex gMutex;
std::map<std::string, SDevice> gDevices;
std::vector<std::string> gOpen;  // index + 1 is the handle value
CSimulatedHidApi::SCounters gCounters;

// The device behind a handle, as it is now (traits may change while it is open).
bool DeviceOf(HANDLE handle_I, SDevice& device_O) {
    const auto index = reinterpret_cast<uintptr_t>(handle_I);
    std::lock_guard<std::mutex> lock(gMutex);
    if (index < 1 || index > gOpen.size()) {
        return false;
    }
    auto it = gDevices.find(gOpen[index - 1]);
    if (it == gDevices.end()) {
        return false;
    }
    device_O = it->second;
    return true;
}

HANDLE WINAPI SimCreateFileA(LPCSTR path_I, DWORD access_I, DWORD, LPSECURITY_ATTRIBUTES, DWORD,
                             DWORD flags_I, HANDLE) {
    std::lock_guard<std::mutex> lock(gMutex);
    const std::string path = path_I != nullptr ? path_I : "";
    auto it = gDevices.find(path);
    if (it == gDevices.end() || it->second.unplugged) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    if (it->second.exclusive) {
        SetLastError(ERROR_SHARING_VIOLATION);
        return INVALID_HANDLE_VALUE;
    }
    if (it->second.readWriteError != 0 && (access_I & (GENERIC_READ | GENERIC_WRITE)) != 0) {
        SetLastError(it->second.readWriteError);
        return INVALID_HANDLE_VALUE;
    }
    ++gCounters.opens;
    gCounters.lastOpenAccess = access_I;
    gCounters.lastOpenFlags = flags_I;
    gOpen.push_back(path);
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(gOpen.size()));
}

BOOL WINAPI SimCloseHandle(HANDLE) {
    std::lock_guard<std::mutex> lock(gMutex);
    ++gCounters.closes;
    return TRUE;
}

// A request that never completes: pending until cancelled, as on a device that stopped answering.
BOOL Pend(LPOVERLAPPED overlapped_I) {
    overlapped_I->Internal = kPending;
    SetLastError(ERROR_IO_PENDING);
    return FALSE;
}

BOOL WINAPI SimDeviceIoControl(HANDLE handle_I, DWORD ioctl_I, LPVOID in_I, DWORD inLength_I, LPVOID out_O,
                               DWORD outLength_I, LPDWORD transferred_O, LPOVERLAPPED overlapped_I) {
    SDevice entry;
    const bool known = DeviceOf(handle_I, entry);
    const bool set = ioctl_I == IOCTL_HID_SET_FEATURE;
    if (!set && ioctl_I != IOCTL_HID_GET_FEATURE) {
        SetLastError(ERROR_INVALID_FUNCTION);
        return FALSE;
    }
    const DWORD length = set ? inLength_I : outLength_I;
    {
        std::lock_guard<std::mutex> lock(gMutex);
        ++(set ? gCounters.setFeatures : gCounters.getFeatures);
        gCounters.lastReportLength = length;
    }
    if (known && entry.unplugged) {
        SetLastError(ERROR_DEVICE_NOT_CONNECTED);
        return FALSE;
    }
    if (known && entry.hung && overlapped_I != nullptr) {
        return Pend(overlapped_I);
    }
    // Windows refuses a report shorter than the collection declares.
    if (!known || !entry.device || length < entry.featureReportLength) {
        SetLastError(ERROR_GEN_FAILURE);
        return FALSE;
    }
    bool ok = false;
    if (set) {
        const auto* bytes = static_cast<const uint8_t*>(in_I);
        ok = entry.device->SetFeature(ByteBuffer(bytes, bytes + length));
    } else {
        auto* bytes = static_cast<uint8_t*>(out_O);
        ByteBuffer report(bytes, bytes + length);
        ok = entry.device->GetFeature(report);
        if (ok) {
            std::copy_n(report.begin(), std::min<size_t>(report.size(), length), bytes);
        }
    }
    if (!ok) {
        SetLastError(ERROR_GEN_FAILURE);
        return FALSE;
    }
    if (transferred_O != nullptr) {
        *transferred_O = set ? 0 : length;
    }
    return TRUE;
}

BOOL WINAPI SimGetOverlappedResult(HANDLE, LPOVERLAPPED overlapped_I, LPDWORD transferred_O, BOOL) {
    if (transferred_O != nullptr) {
        *transferred_O = 0;
    }
    if (overlapped_I->Internal == kCancelled) {
        SetLastError(ERROR_OPERATION_ABORTED);
        return FALSE;
    }
    return TRUE;
}

BOOL WINAPI SimCancelIoEx(HANDLE, LPOVERLAPPED overlapped_I) {
    {
        std::lock_guard<std::mutex> lock(gMutex);
        ++gCounters.cancels;
    }
    overlapped_I->Internal = kCancelled;
    SetEvent(overlapped_I->hEvent);
    return TRUE;
}

BOOLEAN WINAPI SimGetAttributes(HANDLE handle_I, PHIDD_ATTRIBUTES attributes_O) {
    SDevice entry;
    if (!DeviceOf(handle_I, entry) || attributes_O == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    attributes_O->VendorID = entry.vendorId;
    attributes_O->ProductID = entry.productId;
    attributes_O->VersionNumber = 0x0100;
    return TRUE;
}

// The preparsed data is the handle itself: only the capabilities are ever read from it.
BOOLEAN WINAPI SimGetPreparsedData(HANDLE handle_I, PHIDP_PREPARSED_DATA* data_O) {
    SDevice entry;
    if (!DeviceOf(handle_I, entry)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    *data_O = reinterpret_cast<PHIDP_PREPARSED_DATA>(handle_I);
    return TRUE;
}

BOOLEAN WINAPI SimFreePreparsedData(PHIDP_PREPARSED_DATA) {
    return TRUE;
}

NTSTATUS WINAPI SimGetCaps(PHIDP_PREPARSED_DATA data_I, PHIDP_CAPS caps_O) {
    SDevice entry;
    if (!DeviceOf(reinterpret_cast<HANDLE>(data_I), entry)) {
        return HIDP_STATUS_INVALID_PREPARSED_DATA;
    }
    *caps_O = HIDP_CAPS{};
    caps_O->UsagePage = 0xFF00;
    caps_O->FeatureReportByteLength = static_cast<USHORT>(entry.featureReportLength);
    return HIDP_STATUS_SUCCESS;
}

const SHidApi kTable = {&SimCreateFileA,         &SimCloseHandle,       &SimDeviceIoControl,
                        &SimGetOverlappedResult, &SimCancelIoEx,        &SimGetAttributes,
                        &SimGetPreparsedData,    &SimFreePreparsedData, &SimGetCaps};

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
    SDevice& entry = gDevices[path_I];
    entry = SDevice{};
    entry.device = std::move(device_I);
    entry.exclusive = exclusive_I;
    entry.vendorId = vendorId_I;
    entry.productId = productId_I;
}

void CSimulatedHidApi::SetDeviceTraits(const std::string& path_I, uint32_t readWriteError_I,
                                       unsigned featureReportLength_I) {
    std::lock_guard<std::mutex> lock(gMutex);
    gDevices[path_I].readWriteError = readWriteError_I;
    gDevices[path_I].featureReportLength = featureReportLength_I;
}

void CSimulatedHidApi::SetHung(const std::string& path_I, bool hung_I) {
    std::lock_guard<std::mutex> lock(gMutex);
    gDevices[path_I].hung = hung_I;
}

void CSimulatedHidApi::SetUnplugged(const std::string& path_I, bool unplugged_I) {
    std::lock_guard<std::mutex> lock(gMutex);
    gDevices[path_I].unplugged = unplugged_I;
}

const SHidApi& CSimulatedHidApi::Table() {
    return kTable;
}

CSimulatedHidApi::SCounters CSimulatedHidApi::Counters() {
    std::lock_guard<std::mutex> lock(gMutex);
    return gCounters;
}
