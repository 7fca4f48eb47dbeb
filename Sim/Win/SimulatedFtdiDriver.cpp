#include "SimulatedFtdiDriver.h"

#include <cstring>

#include "SimulatedMachineState.h"

namespace {

using SimulatedMachineState::gMutex;
using SimulatedMachineState::gState;

constexpr FT_STATUS kIoError = FT_IO_ERROR;  // what D2XX answers on a bridge pulled out

bool DeadBridge(FT_HANDLE handle_I) {
    return gState->deadBridgeHandles.count(reinterpret_cast<uintptr_t>(handle_I)) != 0;
}

CVirtualMpsseEngine* BridgeOf(FT_HANDLE handle_I) {
    auto it = gState->openBridges.find(reinterpret_cast<uintptr_t>(handle_I));
    return it != gState->openBridges.end() ? gState->bridges[it->second].get() : nullptr;
}

constexpr FT_STATUS kInvalidHandle = FT_INVALID_HANDLE;
constexpr FT_STATUS kDeviceNotFound = FT_DEVICE_NOT_FOUND;

FT_STATUS WINAPI FtCreateDeviceInfoList(LPDWORD count_O) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    *count_O = static_cast<DWORD>(gState->bridges.size());
    return FT_OK;
}

FT_STATUS WINAPI FtGetDeviceInfoDetail(DWORD index_I, LPDWORD flags_O, LPDWORD type_O, LPDWORD id_O,
                                       LPDWORD location_O, LPVOID serial_O, LPVOID description_O,
                                       FT_HANDLE* handle_O) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    if (index_I >= gState->bridges.size()) {
        return kDeviceNotFound;
    }
    const SVirtualFtdiBridge& bridge = gState->machine.ftdiBridges[index_I];
    *flags_O = bridge.openElsewhere ? FT_FLAGS_OPENED : 0;
    *type_O = bridge.deviceType;
    *id_O = 0x04036014;
    *location_O = 0x21 + index_I;
    std::strcpy(static_cast<char*>(serial_O), "FT0VLR01");
    std::strcpy(static_cast<char*>(description_O), "Single RS232-HS");
    *handle_O = nullptr;
    return FT_OK;
}

FT_STATUS WINAPI FtOpen(int index_I, FT_HANDLE* handle_O) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    if (index_I < 0 || static_cast<size_t>(index_I) >= gState->bridges.size() ||
        gState->unplugged.count(gState->machine.ftdiBridges[static_cast<size_t>(index_I)].display.get()) !=
            0) {
        return kDeviceNotFound;
    }
    ++gState->bridgeUse[static_cast<size_t>(index_I)].opens;
    const uintptr_t handle = 0xF7000 + static_cast<uintptr_t>(index_I) * 0x10;
    gState->openBridges[handle] = static_cast<size_t>(index_I);
    gState->bridges[static_cast<size_t>(index_I)]->Reset();
    *handle_O = reinterpret_cast<FT_HANDLE>(handle);
    return FT_OK;
}

FT_STATUS WINAPI FtClose(FT_HANDLE handle_I) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    if (gState->deadBridgeHandles.erase(reinterpret_cast<uintptr_t>(handle_I)) == 1) {
        return FT_OK;
    }
    return gState->openBridges.erase(reinterpret_cast<uintptr_t>(handle_I)) == 1 ? FT_OK : kInvalidHandle;
}

FT_STATUS WINAPI FtAccept(FT_HANDLE handle_I) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    if (DeadBridge(handle_I)) {
        return kIoError;
    }
    return BridgeOf(handle_I) != nullptr ? FT_OK : kInvalidHandle;
}
FT_STATUS WINAPI FtPurge(FT_HANDLE handle_I, ULONG) {
    return FtAccept(handle_I);
}
FT_STATUS WINAPI FtSetUsbParameters(FT_HANDLE handle_I, ULONG, ULONG) {
    return FtAccept(handle_I);
}
FT_STATUS WINAPI FtSetChars(FT_HANDLE handle_I, UCHAR, UCHAR, UCHAR, UCHAR) {
    return FtAccept(handle_I);
}
FT_STATUS WINAPI FtSetTimeouts(FT_HANDLE handle_I, ULONG, ULONG) {
    return FtAccept(handle_I);
}
FT_STATUS WINAPI FtSetLatencyTimer(FT_HANDLE handle_I, UCHAR) {
    return FtAccept(handle_I);
}
FT_STATUS WINAPI FtSetBitMode(FT_HANDLE handle_I, UCHAR, UCHAR mode_I) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    if (DeadBridge(handle_I)) {
        return kIoError;
    }
    auto it = gState->openBridges.find(reinterpret_cast<uintptr_t>(handle_I));
    if (it == gState->openBridges.end()) {
        return kInvalidHandle;
    }
    gState->bridgeUse[it->second].bitMode = mode_I;
    return FT_OK;
}

FT_STATUS WINAPI FtWrite(FT_HANDLE handle_I, LPVOID data_I, DWORD size_I, LPDWORD written_O) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    if (DeadBridge(handle_I)) {
        return kIoError;
    }
    CVirtualMpsseEngine* bridge = BridgeOf(handle_I);
    if (bridge == nullptr) {
        return kInvalidHandle;
    }
    const auto* bytes = static_cast<const uint8_t*>(data_I);
    bridge->Write(ByteBuffer(bytes, bytes + size_I));
    *written_O = size_I;
    return FT_OK;
}

FT_STATUS WINAPI FtRead(FT_HANDLE handle_I, LPVOID data_O, DWORD size_I, LPDWORD read_O) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    if (DeadBridge(handle_I)) {
        return kIoError;
    }
    CVirtualMpsseEngine* bridge = BridgeOf(handle_I);
    if (bridge == nullptr) {
        return kInvalidHandle;
    }
    const ByteBuffer bytes = bridge->Read(size_I);
    std::memcpy(data_O, bytes.data(), bytes.size());
    *read_O = static_cast<DWORD>(bytes.size());
    return FT_OK;
}

FT_STATUS WINAPI FtGetQueueStatus(FT_HANDLE handle_I, LPDWORD queued_O) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    if (DeadBridge(handle_I)) {
        return kIoError;
    }
    CVirtualMpsseEngine* bridge = BridgeOf(handle_I);
    if (bridge == nullptr) {
        return kInvalidHandle;
    }
    *queued_O = static_cast<DWORD>(bridge->Queued());
    return FT_OK;
}

}  // namespace

const SFtd2xxApi& SimulatedFtdiDriver() {
    static const SFtd2xxApi table = {
        &FtCreateDeviceInfoList,
        &FtGetDeviceInfoDetail,
        &FtOpen,
        &FtClose,
        &FtAccept,
        &FtPurge,
        &FtSetUsbParameters,
        &FtSetChars,
        &FtSetTimeouts,
        &FtSetLatencyTimer,
        &FtSetBitMode,
        &FtWrite,
        &FtRead,
        &FtGetQueueStatus,
    };
    return table;
}
