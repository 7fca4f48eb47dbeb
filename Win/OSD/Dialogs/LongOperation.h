#pragma once
// A long operation of the settings window (a search, a factory or colour reset): its steps run
// one after another on a worker thread behind the wait window, while the interface thread
// keeps dispatching messages in a local loop, so that windows repaint and the search's
// progress shows. The owner and the open page take no input meanwhile; one operation at a
// time.

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "SignalThread.h"

class CLongOperation {
public:
    // The owner's timer that keeps the local loop awake; the owner ignores it.
    static constexpr UINT_PTR kPollTimer = 1;

    struct SStep {
        LPTHREAD_START_ROUTINE procedure;
        const char* name;  // what trace lines call it
    };

    explicit CLongOperation(LANGID language_I) : mLanguage(language_I) {}
    ~CLongOperation() { mThread.JoinAndClose(); }

    bool Running() const { return mRunning; }
    // The name of the step that runs or ran last.
    const std::string& Name() const { return mThread.Name(); }

    // Starts a first step at once, before any window is shown; Wait waits for it.
    void Start(const SStep& step_I, void* context_I);
    // Waits behind the wait window for the step Start began (the owner is not disabled: it is
    // not shown yet).
    void Wait(HWND owner_I);
    // Lets go of a step started and not waited for (the program ends).
    void Abandon() { mThread.JoinAndClose(); }

    // Runs the steps behind the wait window with the owner and the page (may be null)
    // disabled; onStep_I is told each step's index just before it starts. False (and nothing
    // started) while another runs.
    bool Run(HWND owner_I, HWND page_I, const std::vector<SStep>& steps_I, void* context_I,
             const std::function<void(size_t)>& onStep_I);

    // From the worker: how far the search under way has come.
    void NoteProgress(size_t ready_I, size_t found_I) {
        mFound = found_I;
        mReady = ready_I;
    }

private:
    // Dispatches messages until the steps from next_I on have run; false when the program is
    // ending (the quit message is passed on to the outer loop).
    void Pump(HWND owner_I, const std::vector<SStep>& steps_I, size_t next_I, void* context_I,
              const std::function<void(size_t)>& onStep_I);
    void ShowProgress();

    LANGID mLanguage;
    WinUtils::CSignalThread mThread;
    bool mRunning = false;
    HWND mWaitWindow = nullptr;
    std::atomic<size_t> mReady{0};
    std::atomic<size_t> mFound{0};
    size_t mShownReady = 0;
};
