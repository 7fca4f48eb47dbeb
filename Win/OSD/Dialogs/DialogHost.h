#pragma once
// What the pages the main dialog opens (the advanced page, the custom colour dialog) need of
// it: its window, the display in use, and a few things to tell it. They are given this, not
// the main dialog itself.

#include <windows.h>

#include <string>

class UiDisplayDelegate;

class IDialogHost {
public:
    virtual ~IDialogHost() = default;
    virtual HWND Window() const = 0;
    // The selected display's delegate; null when there is none (a search rebuilds the list).
    virtual UiDisplayDelegate* Delegate() const = 0;
    // After a change a page made: the Save and Revert buttons, or every control, afresh.
    virtual void UpdateButtons() = 0;
    virtual void RefreshControls() = 0;
    // Factory reset of the selected display behind the wait window, then a fresh search.
    virtual void FactoryReset() = 0;
    // A long operation runs: nothing may start another or use the displays meanwhile.
    virtual bool OperationRunning() const = 0;
    // A failed write that ends the program.
    virtual void NoteFatalFailure() = 0;
    // The options of this run a program it starts keeps ("/demo one-per-route /language de").
    virtual std::wstring ProgramOptions() const = 0;
};
