// The display lock on Windows: a named mutex in the session's namespace. A mutex whose holder
// ended without letting go is taken over (WAIT_ABANDONED). It must be let go by the thread that
// took it, which every holder does (each holds it within one thread's work).

#include <windows.h>

#include "DebugLog.h"
#include "DisplayLock.h"
#include "WinStrings.h"

namespace {

class CWinDisplayLock final : public CDisplayLock {
public:
    explicit CWinDisplayLock(HANDLE mutex_I) : mMutex(mutex_I) {}
    ~CWinDisplayLock() override {
        ReleaseMutex(mMutex);
        CloseHandle(mMutex);
    }

private:
    HANDLE mMutex;
};

}  // namespace

std::unique_ptr<CDisplayLock> HoldDisplayLock(const std::string& serial_I, std::chrono::milliseconds wait_I) {
    const std::wstring name = L"Local\\" + Widen(DisplayLockName(serial_I));
    HANDLE mutex = CreateMutexW(nullptr, FALSE, name.c_str());
    if (mutex == nullptr) {
        DLog("Display lock %s: cannot be made (%lu)\n", DisplayLockName(serial_I).c_str(), GetLastError());
        return nullptr;
    }
    const DWORD waited = WaitForSingleObject(mutex, static_cast<DWORD>(wait_I.count()));
    if (waited != WAIT_OBJECT_0 && waited != WAIT_ABANDONED) {
        CloseHandle(mutex);
        return nullptr;
    }
    return std::make_unique<CWinDisplayLock>(mutex);
}
