#include "HidApi.h"

#include <atomic>

#include "SystemLibrary.h"

namespace {

BOOLEAN WINAPI MissingAttributes(HANDLE, PHIDD_ATTRIBUTES) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return FALSE;
}

BOOLEAN WINAPI MissingPreparsedData(HANDLE, PHIDP_PREPARSED_DATA*) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return FALSE;
}

BOOLEAN WINAPI MissingFree(PHIDP_PREPARSED_DATA) {
    return FALSE;
}

NTSTATUS WINAPI MissingCaps(PHIDP_PREPARSED_DATA, PHIDP_CAPS) {
    return HIDP_STATUS_INVALID_PREPARSED_DATA;
}

template <typename Function>
Function Find(HMODULE module_I, const char* name_I, Function missing_I) {
    FARPROC address = module_I != nullptr ? GetProcAddress(module_I, name_I) : nullptr;
    return address != nullptr ? reinterpret_cast<Function>(reinterpret_cast<void*>(address)) : missing_I;
}

SHidApi LoadReal() {
    HMODULE hid = LoadTrustedLibrary(L"hid.dll", ELibraryLocation::SystemOnly);
    SHidApi api{};
    api.CreateFileA = &::CreateFileA;
    api.CloseHandle = &::CloseHandle;
    api.DeviceIoControl = &::DeviceIoControl;
    api.GetOverlappedResult = &::GetOverlappedResult;
    api.CancelIoEx = &::CancelIoEx;
    api.HidD_GetAttributes = Find(hid, "HidD_GetAttributes", &MissingAttributes);
    api.HidD_GetPreparsedData = Find(hid, "HidD_GetPreparsedData", &MissingPreparsedData);
    api.HidD_FreePreparsedData = Find(hid, "HidD_FreePreparsedData", &MissingFree);
    api.HidP_GetCaps = Find(hid, "HidP_GetCaps", &MissingCaps);
    return api;
}

std::atomic<const SHidApi*> gApi{nullptr};

}  // namespace

const SHidApi& HidApi() {
    static const SHidApi real = LoadReal();
    const SHidApi* api = gApi.load();
    return api != nullptr ? *api : real;
}

void SetHidApi(const SHidApi* api_I) {
    gApi.store(api_I);
}
