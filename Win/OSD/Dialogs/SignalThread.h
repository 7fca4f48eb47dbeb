#pragma once
// A short-lived worker thread whose end the interface thread polls between messages.

#include <windows.h>

#include <string>

namespace WinUtils {

class CSignalThread {
public:
    CSignalThread() = default;
    ~CSignalThread() { JoinAndClose(); }
    CSignalThread(const CSignalThread&) = delete;
    CSignalThread& operator=(const CSignalThread&) = delete;

    // Starts the procedure; name_I is what trace lines call it.
    bool Start(LPTHREAD_START_ROUTINE procedure_I, const char* name_I, void* argument_I);
    // True when the procedure has returned (or nothing was started).
    bool Poll() const;
    // Waits for the end without limit and lets go of the thread.
    void JoinAndClose();
    bool IsRunning() const { return mThread != nullptr; }
    const std::string& Name() const { return mName; }

private:
    HANDLE mThread = nullptr;
    std::string mName;
};

}  // namespace WinUtils

// The procedure's own expression is its name in the trace.
#define VLR_START_THREAD(thread, procedure, argument) \
    (thread).Start((LPTHREAD_START_ROUTINE)(procedure), "(LPTHREAD_START_ROUTINE)" #procedure, (argument))
