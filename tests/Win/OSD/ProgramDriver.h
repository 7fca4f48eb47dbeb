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

// Waits up to five seconds for a condition the interface thread brings about.
inline bool WaitFor(const std::function<bool()>& condition_I) {
    for (int i = 0; i < 500; ++i) {
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
        ui = std::thread([options] { RunApplication(options); });
    }
    explicit SProgram(const char* scenario, SStartupOptions options = {})
        : SProgram(*VirtualMachine::Scenario(scenario), options) {}

    ~SProgram() {
        if (dialog != nullptr && IsWindow(dialog)) {
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
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
