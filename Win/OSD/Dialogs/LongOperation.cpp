#include "LongOperation.h"

#include "MessageWindows.h"

namespace {

constexpr UINT kPollPeriodMs = 100;

}  // namespace

void CLongOperation::Start(const SStep& step_I, void* context_I) {
    mReady = 0;
    mFound = 0;
    mShownReady = 0;
    mThread.Start(step_I.procedure, step_I.name, context_I);
}

void CLongOperation::Wait(HWND owner_I) {
    Pump(owner_I, {}, 0, nullptr, {});
}

bool CLongOperation::Run(HWND owner_I, HWND page_I, const std::vector<SStep>& steps_I, void* context_I,
                         const std::function<void(size_t)>& onStep_I) {
    if (mRunning || steps_I.empty()) {
        return false;
    }
    mRunning = true;
    // No input reaches the dialogs meanwhile (the local loop still dispatches it).
    HWND focus = GetFocus();
    EnableWindow(owner_I, FALSE);
    if (page_I != nullptr) {
        EnableWindow(page_I, FALSE);
    }
    if (onStep_I) {
        onStep_I(0);
    }
    Start(steps_I[0], context_I);
    Pump(owner_I, steps_I, 1, context_I, onStep_I);
    if (page_I != nullptr && ::IsWindow(page_I)) {
        EnableWindow(page_I, TRUE);
    }
    EnableWindow(owner_I, TRUE);
    if (focus != nullptr && ::IsWindow(focus) && IsWindowVisible(focus)) {
        SetFocus(focus);
    }
    mRunning = false;
    return true;
}

void CLongOperation::Pump(HWND owner_I, const std::vector<SStep>& steps_I, size_t next_I, void* context_I,
                          const std::function<void(size_t)>& onStep_I) {
    SetTimer(owner_I, kPollTimer, kPollPeriodMs, nullptr);
    mWaitWindow = MessageWindows::CreateWaitWindow(owner_I, mLanguage);
    MSG message;
    for (;;) {
        if (mThread.Poll()) {
            mThread.JoinAndClose();
            if (next_I >= steps_I.size()) {
                break;
            }
            if (onStep_I) {
                onStep_I(next_I);
            }
            mThread.Start(steps_I[next_I].procedure, steps_I[next_I].name, context_I);
            ++next_I;
            continue;
        }
        if (GetMessageW(&message, nullptr, 0, 0) <= 0) {
            mThread.JoinAndClose();
            PostQuitMessage(0);  // hand the end on to the outer loop
            break;
        }
        if (mWaitWindow == nullptr || !IsDialogMessageW(mWaitWindow, &message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        ShowProgress();
    }
    if (mWaitWindow != nullptr) {
        ::DestroyWindow(mWaitWindow);
        mWaitWindow = nullptr;
    }
    KillTimer(owner_I, kPollTimer);
    mThread.JoinAndClose();
}

void CLongOperation::ShowProgress() {
    const size_t ready = mReady;
    if (mWaitWindow == nullptr || ready == mShownReady) {
        return;
    }
    mShownReady = ready;
    MessageWindows::ShowWaitProgress(mWaitWindow, mLanguage, ready, mFound);
}
