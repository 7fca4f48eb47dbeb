#include "SearchSchedule.h"

#include "Clock.h"
#include "DebugLog.h"

namespace {

constexpr UINT_PTR kSettleTimer = 2;
constexpr UINT kSettleMs = 1500;
constexpr UINT_PTR kLookAgainTimer = 3;
constexpr unsigned kLookAgainTimes = 2;
constexpr UINT kLookAgainPauseMs = 3000;

}  // namespace

void CSearchSchedule::DeskChanged(HWND owner_I) {
    // (Re)started on every event: one search when they stop.
    SetTimer(owner_I, kSettleTimer, kSettleMs, nullptr);
}

bool CSearchSchedule::OnTimer(HWND owner_I, UINT_PTR timer_I) {
    if (timer_I == kSettleTimer) {
        KillTimer(owner_I, kSettleTimer);
        KillTimer(owner_I, kLookAgainTimer);  // this search stands for it
        DLog("CMainDialog: the desk is still again; searching\n");
        mLookAgainLeft = kLookAgainTimes;
        PostMessageW(owner_I, mSearchMessage, 0, 0);
        return true;
    }
    if (timer_I == kLookAgainTimer) {
        KillTimer(owner_I, kLookAgainTimer);
        PostMessageW(owner_I, mSearchMessage, 0, 0);
        return true;
    }
    return false;
}

void CSearchSchedule::AfterSearch(HWND owner_I, bool chosenFound_I) {
    if (chosenFound_I || mLookAgainLeft == 0) {
        KillTimer(owner_I, kLookAgainTimer);
        mLookAgainLeft = 0;
        return;
    }
    --mLookAgainLeft;
    DLog("CMainDialog: the chosen display did not answer; looking again in %u ms\n", kLookAgainPauseMs);
    SetTimer(owner_I, kLookAgainTimer, kLookAgainPauseMs, nullptr);
}

bool CSearchSchedule::LookAgainWhileNoneAnswers() {
    if (mLookAgainLeft == 0) {
        return false;
    }
    --mLookAgainLeft;
    DLog("CMainDialog: no display answers yet; looking again in %u ms\n", kLookAgainPauseMs);
    Clock::PauseMs(kLookAgainPauseMs);
    return true;
}

void CSearchSchedule::Stop(HWND owner_I) {
    KillTimer(owner_I, kSettleTimer);
    KillTimer(owner_I, kLookAgainTimer);
}
