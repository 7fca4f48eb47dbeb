#include "WindowPlacement.h"

#include <algorithm>

RECT CWindowPlacement::Place(HWND window_I) {
    RECT windowRect{};
    GetWindowRect(window_I, &windowRect);
    HMONITOR monitor = MonitorFromPoint(POINT{windowRect.left, windowRect.top}, MONITOR_DEFAULTTOPRIMARY);
    MONITORINFO monitorInfo{};
    monitorInfo.cbSize = sizeof(monitorInfo);
    GetMonitorInfoW(monitor, &monitorInfo);
    const RECT& work = monitorInfo.rcWork;
    const RECT& screen = monitorInfo.rcMonitor;
    int width = windowRect.right - windowRect.left;
    int height = windowRect.bottom - windowRect.top;
    const int workHeight = work.bottom - work.top;

    ShowScrollBar(window_I, SB_VERT, FALSE);
    if (height > workHeight) {
        const int page = workHeight / 3;
        SCROLLINFO scroll{};
        scroll.cbSize = sizeof(scroll);
        scroll.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
        scroll.nMin = 1;
        scroll.nPage = static_cast<UINT>(page);
        scroll.nMax = height - 1 + page - workHeight;
        scroll.nPos = mScrollPosition = 1;
        height = workHeight;
        SetWindowPos(window_I, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
        ShowScrollBar(window_I, SB_VERT, TRUE);
        SetScrollInfo(window_I, SB_VERT, &scroll, TRUE);
    }

    int x = 0;
    int y = 0;
    if (mRemembered && mRemembered->x > screen.left && mRemembered->x + width < screen.right &&
        mRemembered->y > screen.top && mRemembered->y + height < screen.bottom) {
        x = mRemembered->x;
        y = mRemembered->y;
    } else {
        // Measured from the screen origin, not from the monitor's own corner: intended.
        x = ((screen.right - screen.left) - width) / 2;
        y = ((screen.bottom - screen.top) - height) / 2;
    }
    SetWindowPos(window_I, HWND_TOPMOST, x, y, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
    GetWindowRect(window_I, &windowRect);
    return windowRect;
}

RECT CWindowPlacement::Moved(HWND window_I) {
    RECT windowRect{};
    GetWindowRect(window_I, &windowRect);
    // The remembered position follows the window, so that placing it again (after another
    // display, a colour change, a reset) leaves it where the user put it; at start-up the
    // position read from the registry is used as before.
    if (IsWindowVisible(window_I) && !IsIconic(window_I)) {
        mRemembered = SWindowPosition{windowRect.left, windowRect.top};
    }
    return windowRect;
}

void CWindowPlacement::Scroll(HWND window_I, WPARAM wParam_I) {
    SCROLLINFO scroll{};
    scroll.cbSize = sizeof(scroll);
    scroll.fMask = SIF_ALL;
    GetScrollInfo(window_I, SB_VERT, &scroll);
    int position = scroll.nPos;
    switch (LOWORD(wParam_I)) {
        case SB_LINEUP: position -= 10; break;
        case SB_LINEDOWN: position += 10; break;
        case SB_PAGEUP: position -= static_cast<int>(scroll.nPage); break;
        case SB_PAGEDOWN: position += static_cast<int>(scroll.nPage); break;
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION: position = scroll.nTrackPos; break;
        default: break;
    }
    position = std::clamp(position, scroll.nMin,
                          std::max(scroll.nMin, scroll.nMax - static_cast<int>(scroll.nPage) + 1));
    if (position != mScrollPosition) {
        ScrollWindowEx(window_I, 0, mScrollPosition - position, nullptr, nullptr, nullptr, nullptr,
                       SW_SCROLLCHILDREN | SW_INVALIDATE | SW_ERASE);
        mScrollPosition = position;
        scroll.fMask = SIF_POS;
        scroll.nPos = position;
        SetScrollInfo(window_I, SB_VERT, &scroll, TRUE);
    }
}
