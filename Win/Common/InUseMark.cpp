#include "InUseMark.h"

#include <sddl.h>

#include "DebugLog.h"

namespace {

// Everyone may wait on it and take it (SYNCHRONIZE | MUTEX_MODIFY_STATE); SYSTEM and the
// administrators have it all. Opened with no more than that, a copy of another user finds the
// mark another user made.
constexpr wchar_t kInUseMarkRights[] = L"D:(A;;0x00100001;;;WD)(A;;GA;;;SY)(A;;GA;;;BA)";
constexpr DWORD kInUseMarkAccess = SYNCHRONIZE | MUTEX_MODIFY_STATE;

}  // namespace

CInUseMark::CInUseMark(const wchar_t* name_I) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(kInUseMarkRights, SDDL_REVISION_1, &descriptor,
                                                              nullptr)) {
        descriptor = nullptr;
    }
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), descriptor, FALSE};
    mMark = CreateMutexExW(descriptor != nullptr ? &attributes : nullptr, name_I, 0, kInUseMarkAccess);
    if (mMark == nullptr) {
        DLog("In-use mark: cannot be held (%lu); an installer may not see this copy\n", GetLastError());
    }
    LocalFree(descriptor);
}

CInUseMark::~CInUseMark() {
    if (mMark != nullptr) {
        CloseHandle(mMark);
    }
}

HANDLE OpenKeeperExitRequest() {
    // Everyone may wait on it; SYSTEM and the administrators may set it.
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(
            L"D:(A;;0x00100000;;;WD)(A;;GA;;;SY)(A;;GA;;;BA)", SDDL_REVISION_1, &descriptor, nullptr)) {
        descriptor = nullptr;
    }
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), descriptor, FALSE};
    // Manual reset: one request reaches every keeper; the installer clears it when they are gone.
    HANDLE request = CreateEventExW(descriptor != nullptr ? &attributes : nullptr, kKeeperExitEventName,
                                    CREATE_EVENT_MANUAL_RESET, SYNCHRONIZE);
    if (request == nullptr) {
        DLog("Keeper: the installers' request to end cannot be waited on (%lu)\n", GetLastError());
    }
    LocalFree(descriptor);
    return request;
}
