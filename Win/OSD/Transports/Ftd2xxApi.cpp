#include "Ftd2xxApi.h"

#include <mutex>

#include "DebugLog.h"
#include "SystemLibrary.h"

namespace {

std::mutex gMutex;
HMODULE gModule = nullptr;
bool gTried = false;
SFtd2xxApi gApi{};
const SFtd2xxApi* gReplacement = nullptr;

template <typename Function>
bool Bind(const char* name_I, Function& slot_O) {
    FARPROC address = GetProcAddress(gModule, name_I);
    slot_O = reinterpret_cast<Function>(reinterpret_cast<void*>(address));
    if (address == nullptr) {
        DLog("Ftd2xxApi: FTD2XX.dll has no %s\n", name_I);
    }
    return address != nullptr;
}

bool Load() {
    gModule = LoadTrustedLibrary(L"FTD2XX.dll", ELibraryLocation::SystemThenApplicationDir);
    if (gModule == nullptr) {
        DLog("Ftd2xxApi: FTD2XX.dll is not installed; no FTDI devices\n");
        return false;
    }
    bool all = true;
    all &= Bind("FT_CreateDeviceInfoList", gApi.FT_CreateDeviceInfoList);
    all &= Bind("FT_GetDeviceInfoDetail", gApi.FT_GetDeviceInfoDetail);
    all &= Bind("FT_Open", gApi.FT_Open);
    all &= Bind("FT_Close", gApi.FT_Close);
    all &= Bind("FT_ResetDevice", gApi.FT_ResetDevice);
    all &= Bind("FT_Purge", gApi.FT_Purge);
    all &= Bind("FT_SetUSBParameters", gApi.FT_SetUSBParameters);
    all &= Bind("FT_SetChars", gApi.FT_SetChars);
    all &= Bind("FT_SetTimeouts", gApi.FT_SetTimeouts);
    all &= Bind("FT_SetLatencyTimer", gApi.FT_SetLatencyTimer);
    all &= Bind("FT_SetBitMode", gApi.FT_SetBitMode);
    all &= Bind("FT_Write", gApi.FT_Write);
    all &= Bind("FT_Read", gApi.FT_Read);
    all &= Bind("FT_GetQueueStatus", gApi.FT_GetQueueStatus);
    if (!all) {
        DLog("Ftd2xxApi: FTD2XX.dll lacks functions this program calls; no FTDI devices\n");
        FreeLibrary(gModule);
        gModule = nullptr;
        gApi = SFtd2xxApi{};
    }
    return all;
}

}  // namespace

const SFtd2xxApi* Ftd2xxApi() {
    std::lock_guard<std::mutex> lock(gMutex);
    if (gReplacement != nullptr) {
        return gReplacement;
    }
    static bool complete = false;
    if (!gTried) {
        gTried = true;
        complete = Load();
    }
    // A table with a gap would have the connector call a null pointer.
    return complete ? &gApi : nullptr;
}

void UnloadFtd2xxApi() {
    std::lock_guard<std::mutex> lock(gMutex);
    if (gModule != nullptr) {
        FreeLibrary(gModule);
        gModule = nullptr;
    }
    gApi = SFtd2xxApi{};
    gTried = false;
}

void SetFtd2xxApi(const SFtd2xxApi* api_I) {
    std::lock_guard<std::mutex> lock(gMutex);
    gReplacement = api_I;
}
