#include "HidApi.h"

#include <atomic>

#include "SystemLibrary.h"

namespace {

BOOLEAN WINAPI MissingFeature(HANDLE, PVOID, ULONG) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return FALSE;
}

BOOLEAN WINAPI MissingAttributes(HANDLE, PHIDD_ATTRIBUTES) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return FALSE;
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
    api.HidD_SetFeature = Find(hid, "HidD_SetFeature", &MissingFeature);
    api.HidD_GetFeature = Find(hid, "HidD_GetFeature", &MissingFeature);
    api.HidD_GetAttributes = Find(hid, "HidD_GetAttributes", &MissingAttributes);
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
