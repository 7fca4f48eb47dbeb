#pragma once
// Runs the real program on its own interface thread over a simulated machine and drives its
// windows with the messages that clicks, typing and drags produce. The dark-screen question is
// answered by a stand-in (Wine ignores MessageBoxTimeoutW's time-out).

#include <windows.h>
// windows.h first: commctrl.h needs its types.
#include <commctrl.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <initializer_list>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "Application.h"
#include "DialogIds.h"
#include "MessageWindows.h"
#include "SimulatedMachine.h"
#include "StartupOptions.h"
#include "VirtualClock.h"
#include "VirtualMachine.h"

constexpr wchar_t kTitle[] = L"Velor Display Settings";
constexpr wchar_t kDialogClass[] = L"#32770";

inline std::atomic<int> gDarkAnswer{IDYES};
inline std::atomic<int> gDarkQuestions{0};

inline int WINAPI AnswerDarkScreenQuestion(HWND, LPCWSTR, LPCWSTR, UINT, WORD, DWORD) {
    ++gDarkQuestions;
    return gDarkAnswer.load();
}

// Waits (five seconds unless said) for a condition the interface thread brings about.
inline bool WaitFor(const std::function<bool()>& condition_I, int timeoutMs_I = 5000) {
    for (int i = 0; i < timeoutMs_I / 10; ++i) {
        if (condition_I()) {
            return true;
        }
        Sleep(10);
    }
    return false;
}

// A visible top-level dialog with this caption other than the windows named.
inline HWND FindDialog(const wchar_t* caption_I, std::initializer_list<HWND> except_I = {}) {
    HWND found = nullptr;
    while ((found = FindWindowExW(nullptr, found, kDialogClass, caption_I)) != nullptr) {
        if (IsWindowVisible(found) && std::find(except_I.begin(), except_I.end(), found) == except_I.end()) {
            return found;
        }
    }
    return nullptr;
}

// Waits for a visible window with the product title that has this control (the no-device
// window's heading, the error text, the advanced page's Factory Reset), other than those named.
inline HWND WaitForWindowWith(int controlId_I, std::initializer_list<HWND> except_I = {}) {
    HWND window = nullptr;
    WaitFor([&] {
        window = FindDialog(kTitle, except_I);
        return window != nullptr && GetDlgItem(window, controlId_I) != nullptr;
    });
    return window != nullptr && GetDlgItem(window, controlId_I) != nullptr ? window : nullptr;
}

// Start-up options that choose an interface language.
inline SStartupOptions InLanguage(const char* language_I) {
    SStartupOptions options;
    options.languageName = language_I;
    return options;
}

inline std::wstring TextOf(HWND window_I) {
    wchar_t text[512] = {};
    GetWindowTextW(window_I, text, 512);
    return text;
}

// The text of a message box (its first non-empty static control).
inline std::wstring MessageTextOf(HWND box_I) {
    for (HWND text = nullptr; (text = FindWindowExW(box_I, text, L"Static", nullptr)) != nullptr;) {
        if (!TextOf(text).empty()) {
            return TextOf(text);
        }
    }
    return {};
}

inline void ClearRegistry() {
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Velor");
}

// The program running on its own interface thread over a simulated machine.
struct SProgram {
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    CSimulatedMachine machine;
    std::atomic<bool> ended{false};
    std::atomic<int> exitCode{-1};
    std::thread ui;
    HWND dialog = nullptr;

    explicit SProgram(SVirtualMachine machine_I, SStartupOptions options = {}, bool clearRegistry = true)
        : machine(std::move(machine_I)) {
        if (clearRegistry) {
            ClearRegistry();
        }
        gDarkAnswer = IDYES;
        gDarkQuestions = 0;
        MessageWindows::SetMessageBoxTimeoutFunction(&AnswerDarkScreenQuestion);
        options.languageName = options.languageName == "userUI" ? "en" : options.languageName;
        // Every start reads its displays: what an earlier test left in the cache is not this one's.
        options.noCache = true;
        ui = std::thread([this, options] {
            exitCode = RunApplication(options);
            ended = true;
        });
    }
    explicit SProgram(const char* scenario, SStartupOptions options = {})
        : SProgram(*VirtualMachine::Scenario(scenario), options) {}

    ~SProgram() {
        if (dialog != nullptr && IsWindow(dialog)) {
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        }
        // A failed test may leave a question open (the program's thread waits in it): answer
        // it "No" or "Cancel", so that the test fails instead of waiting for ever.
        for (int i = 0; i < 500 && ui.joinable() && !ended; ++i) {
            Sleep(10);
            if (i % 20 != 19) {
                continue;
            }
            for (HWND box = nullptr; (box = FindWindowExW(nullptr, box, kDialogClass, nullptr)) != nullptr;) {
                DWORD process = 0;
                GetWindowThreadProcessId(box, &process);
                if (process == GetCurrentProcessId() && box != dialog && IsWindowVisible(box)) {
                    PostMessageW(box, WM_COMMAND, IDNO, 0);
                    PostMessageW(box, WM_COMMAND, IDCANCEL, 0);
                }
            }
            if (dialog != nullptr && IsWindow(dialog)) {
                PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            }
        }
        if (ui.joinable()) {
            ui.join();
        }
        MessageWindows::SetMessageBoxTimeoutFunction(nullptr);
    }

    bool WaitForMainDialog() {
        WaitFor([&] {
            dialog = FindDialog(kTitle);
            return dialog != nullptr && GetDlgItem(dialog, IDC_DISPLAY_LIST) != nullptr;
        });
        return dialog != nullptr;
    }
    HWND Item(int id) const { return GetDlgItem(dialog, id); }
    std::wstring Text(int id) const { return TextOf(Item(id)); }
    int SliderPosition(int id) const { return static_cast<int>(SendMessageW(Item(id), TBM_GETPOS, 0, 0)); }
    void Type(int editId, const wchar_t* text) {
        SendMessageW(Item(editId), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(editId, EN_KILLFOCUS),
                     reinterpret_cast<LPARAM>(Item(editId)));
    }
    // What a trackbar sends while the thumb is dragged: it moves, then tells its parent.
    void Slide(int sliderId, int code, int position) {
        if (code == TB_THUMBTRACK || code == TB_THUMBPOSITION) {
            SendMessageW(Item(sliderId), TBM_SETPOS, TRUE, position);
        }
        SendMessageW(dialog, WM_HSCROLL, MAKEWPARAM(code, position),
                     reinterpret_cast<LPARAM>(Item(sliderId)));
    }
    // A click whose handler returns without opening a window.
    void Click(int id) {
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(Item(id)));
    }
    // A click that opens a modal window: the caller finds and answers it.
    void ClickAndLeave(int id) {
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(Item(id)));
    }
    // Lets the interface thread finish what it is doing.
    void Settle() { SendMessageW(dialog, WM_NULL, 0, 0); }
    void Close() {
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        ui.join();
    }
    std::shared_ptr<CVirtualDisplay> Display(size_t monitor) const {
        return machine.Machine().monitors[monitor].display;
    }
};

// The values a display was set to for a code, in order.
inline std::vector<uint16_t> SetsOf(const CVirtualDisplay& display, uint8_t code) {
    std::vector<uint16_t> values;
    for (const STransaction& t : display.Transactions()) {
        if (t.request.size() == 8 && t.request[3] == 0x03 && t.request[4] == code) {
            values.push_back(static_cast<uint16_t>((t.request[5] << 8) | t.request[6]));
        }
    }
    return values;
}

// A clock whose pauses really pass, shortened: a long operation lasts long enough for a
// person to click or press keys into it, and the test still ends soon.
class CShortenedRealClock final : public IClock {
public:
    explicit CShortenedRealClock(int divisor_I) : mDivisor(divisor_I) {}
    void Pause(std::chrono::microseconds duration_I) override {
        Sleep(static_cast<DWORD>(duration_I.count() / 1000 / mDivisor));
    }
    std::chrono::microseconds Now() const override { return mReal.Now(); }

private:
    int mDivisor;
    CRealClock mReal;
};

// The program answers a message within 200 ms (its interface thread is not blocked).
inline bool Answers(HWND window) {
    DWORD_PTR result = 0;
    return SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, 200, &result) != 0;
}

// ---- Real input: the mouse and keyboard as the system delivers a person's ----

inline void SendMouse(DWORD flags, LONG x = 0, LONG y = 0) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    if (flags & MOUSEEVENTF_ABSOLUTE) {
        input.mi.dx = MulDiv(x, 65535, GetSystemMetrics(SM_CXSCREEN) - 1);
        input.mi.dy = MulDiv(y, 65535, GetSystemMetrics(SM_CYSCREEN) - 1);
    }
    SendInput(1, &input, sizeof(input));
}

// Lets the program take in what was sent.
inline void Pause(int ms = 150) {
    Sleep(ms);
}

inline void MoveMouse(POINT at) {
    SendMouse(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, at.x, at.y);
    Pause(60);
}

inline POINT CentreOf(HWND window) {
    RECT rect{};
    GetWindowRect(window, &rect);
    return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}

// A left click at a point of the screen.
inline void ClickAt(POINT at) {
    MoveMouse(at);
    SendMouse(MOUSEEVENTF_LEFTDOWN);
    Pause(40);
    SendMouse(MOUSEEVENTF_LEFTUP);
    Pause();
}

// A left click in the middle of a window (a control).
inline void ClickOn(HWND window) {
    ClickAt(CentreOf(window));
}

// Presses the mouse at one point, moves it in steps and lets go at another.
inline void Drag(POINT from, POINT to, int steps = 6) {
    MoveMouse(from);
    SendMouse(MOUSEEVENTF_LEFTDOWN);
    Pause(60);
    for (int i = 1; i <= steps; ++i) {
        MoveMouse({from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps});
    }
    SendMouse(MOUSEEVENTF_LEFTUP);
    Pause();
}

inline void SendKey(WORD key, bool up) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
    SendInput(1, &input, sizeof(input));
}

// One key, held with the modifiers given (VK_CONTROL, VK_MENU, VK_SHIFT).
inline void PressKey(WORD key, std::initializer_list<WORD> modifiers = {}) {
    for (WORD modifier : modifiers) {
        SendKey(modifier, false);
    }
    SendKey(key, false);
    SendKey(key, true);
    for (auto it = std::rbegin(modifiers); it != std::rend(modifiers); ++it) {
        SendKey(*it, true);
    }
    Pause();
}

// Types digits and letters as keys.
inline void TypeKeys(const std::wstring& text) {
    for (wchar_t c : text) {
        const WORD key = static_cast<WORD>(towupper(c));
        SendKey(key, false);
        SendKey(key, true);
    }
    Pause();
}

// Clicks into an edit, selects what it holds and types over it.
inline void TypeInto(HWND edit, const std::wstring& text) {
    ClickOn(edit);
    PressKey(VK_HOME);
    PressKey(VK_END, {VK_SHIFT});
    TypeKeys(text);
}

// The window that has the keyboard focus on the program's interface thread.
inline HWND FocusOf(HWND anyWindowOfTheThread) {
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    GetGUIThreadInfo(GetWindowThreadProcessId(anyWindowOfTheThread, nullptr), &info);
    return info.hwndFocus;
}

// The program's visible top-level windows (Wine's 1x1 helper windows left out).
inline std::vector<HWND> VisibleWindows() {
    std::vector<HWND> windows;
    EnumWindows(
        [](HWND window, LPARAM list) -> BOOL {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            RECT rect{};
            GetWindowRect(window, &rect);
            if (process == GetCurrentProcessId() && IsWindowVisible(window) && rect.right - rect.left > 1 &&
                rect.bottom - rect.top > 1) {
                reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
            }
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&windows));
    return windows;
}

// The visible top-level windows are exactly these (no leftover wait or question window).
inline bool WindowsAre(std::initializer_list<HWND> expected) {
    const std::vector<HWND> shown = VisibleWindows();
    return std::set<HWND>(shown.begin(), shown.end()) == std::set<HWND>(expected.begin(), expected.end());
}

// Nothing covers the middle of the window: a person can see and reach it.
inline bool InFront(HWND window) {
    return GetAncestor(WindowFromPoint(CentreOf(window)), GA_ROOT) == window;
}

// A message box of the program: a dialog-class window with the product title, not one named.
inline HWND FindMessageBox(std::initializer_list<HWND> except) {
    HWND box = nullptr;
    WaitFor([&] {
        box = FindDialog(kTitle, except);
        return box != nullptr && GetDlgItem(box, IDC_DISPLAY_LIST) == nullptr &&
               GetDlgItem(box, IDC_FACTORY_RESET) == nullptr;
    });
    return box;
}

// The selected item's text of a combo box.
inline std::wstring SelectedText(HWND combo) {
    const LRESULT index = SendMessageW(combo, CB_GETCURSEL, 0, 0);
    if (index < 0) {
        return {};
    }
    std::wstring text(static_cast<size_t>(SendMessageW(combo, CB_GETLBTEXTLEN, index, 0)), L'\0');
    SendMessageW(combo, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(text.data()));
    return text;
}
