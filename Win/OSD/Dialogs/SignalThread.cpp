#include "SignalThread.h"

#include "Assert.h"
#include "DebugLog.h"

namespace WinUtils {

bool CSignalThread::Start(LPTHREAD_START_ROUTINE procedure_I, const char* name_I, void* argument_I) {
    JoinAndClose();
    mName = name_I;
    mThread = CreateThread(nullptr, 0, procedure_I, argument_I, 0, nullptr);
    VLR_ASSERT(mThread != nullptr);
    DLog("CSignalThread: started %s\n", mName.c_str());
    return mThread != nullptr;
}

bool CSignalThread::Poll() const {
    return mThread == nullptr || WaitForSingleObject(mThread, 0) == WAIT_OBJECT_0;
}

void CSignalThread::JoinAndClose() {
    if (mThread == nullptr) {
        return;
    }
    WaitForSingleObject(mThread, INFINITE);
    CloseHandle(mThread);
    mThread = nullptr;
    DLog("CSignalThread: %s has ended\n", mName.c_str());
}

}  // namespace WinUtils
