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

CInUseMark::CInUseMark() {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(kInUseMarkRights, SDDL_REVISION_1, &descriptor,
                                                              nullptr)) {
        descriptor = nullptr;
    }
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), descriptor, FALSE};
    mMark = CreateMutexExW(descriptor != nullptr ? &attributes : nullptr, kInUseMarkName, 0, kInUseMarkAccess);
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
