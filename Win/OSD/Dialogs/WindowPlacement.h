#pragma once
// Where the main window stands: at the position remembered from the last run (or the one the
// user moved it to since) when it fits on the screen, otherwise in the middle of the screen;
// taller than the work area, it gets a vertical scroll bar with the controls scrolling in it.

#include <windows.h>

#include <optional>

#include "AppRegistry.h"

class CWindowPlacement {
public:
    void Remember(std::optional<SWindowPosition> position_I) { mRemembered = position_I; }
    // Places the window (shown, topmost); its rectangle afterwards.
    RECT Place(HWND window_I);
    // The window was moved: its rectangle now; a visible window's place is remembered.
    RECT Moved(HWND window_I);
    // WM_VSCROLL.
    void Scroll(HWND window_I, WPARAM wParam_I);

private:
    std::optional<SWindowPosition> mRemembered;
    int mScrollPosition = 1;
};
