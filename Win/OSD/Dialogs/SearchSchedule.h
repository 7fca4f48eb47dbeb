#pragma once
// When the settings window searches again on its own: once the desk has been still a while
// after displays came, went, woke or the desktop changed (devices come in several
// notifications and answer only a little after they arrive), and, after such a search, a few
// times more while the display the user chose is missing or none answers (a display switched
// on again answers only once its firmware has started, some seconds after Windows announces
// it). The owner is posted its search message when a search is due.

#include <windows.h>

#include <atomic>

class CSearchSchedule {
public:
    explicit CSearchSchedule(UINT searchMessage_I) : mSearchMessage(searchMessage_I) {}

    // A change on the desk: (re)starts the wait for it to be still.
    void DeskChanged(HWND owner_I);
    // The owner's timer; true when it was one of the schedule's.
    bool OnTimer(HWND owner_I, UINT_PTR timer_I);
    // After a search: another one soon while the chosen display is missing, a few times.
    void AfterSearch(HWND owner_I, bool chosenFound_I);
    // The user chose another display: the one missing is no longer looked for.
    void StopLookingAgain(HWND owner_I) { AfterSearch(owner_I, true); }
    // On the search's thread, when no display answers: true, after a pause, while the search is
    // to look again.
    bool LookAgainWhileNoneAnswers();
    // The window goes: no more searches.
    void Stop(HWND owner_I);

private:
    UINT mSearchMessage;
    // Searches still to come for a display that did not answer after a change on the desk
    // (counted down by the search thread too).
    std::atomic<unsigned> mLookAgainLeft{0};
};
