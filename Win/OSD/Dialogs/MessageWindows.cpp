#include "MessageWindows.h"

#include <atomic>
#include <utility>

#include "AccessKeys.h"
#include "Assert.h"
#include "DialogIds.h"
#include "DialogImpl.h"
#include "ResourceUtils.h"
#include "UiDisplayDelegate.h"
#include "WinStrings.h"

namespace MessageWindows {

namespace {

constexpr UINT kProductTitle = 2000;
constexpr UINT kNoDeviceHeading = 2037;
constexpr UINT kNoDeviceText = 2038;
constexpr UINT kCommunicationError = 2900;
constexpr UINT kCommunicationFailureExiting = 2901;
constexpr UINT kTooDark = 2902;
constexpr UINT kWarning = 2903;
constexpr UINT kPleaseWait = 2905;
constexpr UINT kDisplaysReady = 2967;  // "%1 of %2 displays ready"
constexpr UINT kFactoryResetWarning = 2908;
constexpr UINT kFactoryResetQuestion = 2909;
constexpr UINT kHelpNotOpened = 2912;
constexpr UINT kDisplayLabel = 2001;
constexpr UINT kLcdConditioningQuestion = 2229;
constexpr UINT kLcdConditioningStyle = MB_OKCANCEL | MB_ICONQUESTION | MB_DEFBUTTON2;
constexpr int kOkButtonBottomGap = 20;
constexpr int kNoDeviceHeadingHeight = 20;

std::atomic<MessageBoxTimeoutFunction> gReplacement{nullptr};

MessageBoxTimeoutFunction LookUpMessageBoxTimeout() {
    static const MessageBoxTimeoutFunction found = [] {
        HMODULE user32 = GetModuleHandleW(L"user32.dll");
        FARPROC address = user32 != nullptr ? GetProcAddress(user32, "MessageBoxTimeoutW") : nullptr;
        return reinterpret_cast<MessageBoxTimeoutFunction>(reinterpret_cast<void*>(address));
    }();
    return found;
}

// A window of the program's own that ends the thread's message loop with its OK button.
UINT WindowDpi(HWND window_I);

// WM_DPICHANGED, which older headers lack.
constexpr UINT kDpiChangedMessage = 0x02E0;

class CMessageWindow : public CDialogBase {
public:
    using CDialogBase::CDialogBase;
    ~CMessageWindow() override {
        if (mHeadingFont != nullptr) {
            DeleteObject(mHeadingFont);
        }
    }

    BEGIN_MSG_MAP(CMessageWindow)
    COMMAND_ID_HANDLER(IDC_WINDOW_OK, OnOk)
    COMMAND_ID_HANDLER(IDCANCEL, OnOk)
    MESSAGE_HANDLER(kDpiChangedMessage, OnDpiChanged)
    END_MSG_MAP()

    // A bold heading font for the control, its height given at 96 DPI: as tall on a display of
    // any scale, and made again when the window moves to a display of another scale (the
    // dialog's own font the system scales itself).
    void SetHeadingFont(int controlId_I, int heightAt96_I) {
        mHeadingControl = controlId_I;
        mHeadingHeight = heightAt96_I;
        MakeHeadingFont(WindowDpi(m_hWnd));
    }

    LRESULT OnOk(WORD, WORD, HWND, BOOL&) {
        PostQuitMessage(0);
        return 0;
    }

    LRESULT OnDpiChanged(UINT, WPARAM wParam_I, LPARAM, BOOL& handled_O) {
        if (mHeadingControl != 0) {
            MakeHeadingFont(LOWORD(wParam_I));
        }
        handled_O = FALSE;  // the dialog manager still moves and scales the window
        return 0;
    }

private:
    void MakeHeadingFont(UINT dpi_I) {
        HFONT font = CreateFontW(MulDiv(mHeadingHeight, static_cast<int>(dpi_I), 96), 0, 0, 0, FW_BOLD, FALSE,
                                 FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                                 CLEARTYPE_QUALITY, DEFAULT_PITCH, L"Segoe UI");
        SendDlgItemMessageW(m_hWnd, mHeadingControl, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
        if (mHeadingFont != nullptr) {
            DeleteObject(mHeadingFont);
        }
        mHeadingFont = font;
    }

    int mHeadingControl = 0;
    int mHeadingHeight = 0;
    HFONT mHeadingFont = nullptr;
};

void RunUntilQuit(CMessageWindow& window_I) {
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (!IsDialogMessageW(window_I.m_hWnd, &message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    window_I.DestroyWindow();
}

void CentreOkButton(HWND window_I) {
    HWND ok = GetDlgItem(window_I, IDC_WINDOW_OK);
    RECT client{};
    RECT button{};
    GetClientRect(window_I, &client);
    GetWindowRect(ok, &button);
    const int width = button.right - button.left;
    const int height = button.bottom - button.top;
    SetWindowPos(ok, nullptr, (client.right - width) / 2, client.bottom - kOkButtonBottomGap - height, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER);
}

// The DPI of the monitor a window is on (GetDpiForWindow, Windows 10 1607 on), else the
// system's.
UINT WindowDpi(HWND window_I) {
    using GetDpiForWindowFunction = UINT(WINAPI*)(HWND);
    static const auto getDpiForWindow = reinterpret_cast<GetDpiForWindowFunction>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow")));
    if (getDpiForWindow != nullptr) {
        if (const UINT dpi = getDpiForWindow(window_I)) {
            return dpi;
        }
    }
    HDC dc = GetDC(window_I);
    const int dpi = GetDeviceCaps(dc, LOGPIXELSY);
    ReleaseDC(window_I, dc);
    return dpi > 0 ? static_cast<UINT>(dpi) : 96;
}

// "\n\nDisplay: Velor Studio 24", or nothing without a name.
std::wstring DisplayLine(const std::wstring& displayName_I, LANGID language_I) {
    return displayName_I.empty() ? std::wstring()
                                 : L"\n\n" + Text(kDisplayLabel, language_I) + L" " + displayName_I;
}

}  // namespace

void SetMessageBoxTimeoutFunction(MessageBoxTimeoutFunction function_I) {
    gReplacement.store(function_I);
}

std::wstring Text(UINT stringId_I, LANGID language_I) {
    return LoadTableString(stringId_I, language_I);
}

void SetCaptions(HWND dialog_I, const SCaption* captions_I, size_t count_I, LANGID language_I) {
    std::vector<std::wstring> keyed;
    std::vector<std::wstring> english;
    const LANGID kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);
    for (size_t i = 0; i < count_I; ++i) {
        if (captions_I[i].accessKey) {
            keyed.push_back(Text(captions_I[i].stringId, language_I));
            english.push_back(Text(captions_I[i].stringId, kEnglish));
        }
    }
    const WORD primary = PRIMARYLANGID(language_I);
    const bool bracketed = primary == LANG_JAPANESE || primary == LANG_KOREAN || primary == LANG_CHINESE;
    const std::vector<std::wstring> marked = AccessKeys::Mark(keyed, english, bracketed);
    size_t next = 0;
    for (size_t i = 0; i < count_I; ++i) {
        const std::wstring text =
            captions_I[i].accessKey ? marked[next++] : Text(captions_I[i].stringId, language_I);
        SetDlgItemTextW(dialog_I, captions_I[i].id, text.c_str());
    }
}

bool ConfirmPictureNotTooDark(HWND owner_I, UiDisplayDelegate& delegate_I, int32_t brightness_I,
                              int32_t contrast_I, LANGID language_I) {
    return !delegate_I.IsPictureTooDark(brightness_I, contrast_I) || AskKeepDarkSettings(owner_I, language_I);
}

bool AskKeepDarkSettings(HWND owner_I, LANGID language_I) {
    MessageBoxTimeoutFunction function = gReplacement.load();
    if (function == nullptr) {
        function = LookUpMessageBoxTimeout();
    }
    if (function == nullptr) {
        return true;  // nothing to ask with: the change stays
    }
    const std::wstring text = Text(kWarning, language_I) + L"\n" + Text(kTooDark, language_I);
    const int answer = function(owner_I, text.c_str(), Text(kProductTitle, language_I).c_str(),
                                kDarkScreenStyle, 0, kDarkScreenTimeoutMs);
    return answer != IDNO && answer != kMessageBoxTimedOut;
}

bool ConfirmFactoryReset(HWND owner_I, const std::wstring& displayName_I, LANGID language_I) {
    const std::wstring text = Text(kFactoryResetWarning, language_I) + L"\n" +
                              Text(kFactoryResetQuestion, language_I) +
                              DisplayLine(displayName_I, language_I);
    return MessageBoxW(owner_I, text.c_str(), Text(kProductTitle, language_I).c_str(), kFactoryResetStyle) ==
           IDOK;
}

bool ConfirmLcdConditioning(HWND owner_I, const std::wstring& displayName_I, LANGID language_I) {
    const std::wstring text =
        Text(kLcdConditioningQuestion, language_I) + DisplayLine(displayName_I, language_I);
    return MessageBoxW(owner_I, text.c_str(), Text(kProductTitle, language_I).c_str(),
                       kLcdConditioningStyle) == IDOK;
}

void ShowHelpNotOpened(HWND owner_I, const std::wstring& address_I, LANGID language_I) {
    const std::wstring text = Text(kHelpNotOpened, language_I) + L"\n" + address_I;
    MessageBoxW(owner_I, text.c_str(), Text(kProductTitle, language_I).c_str(), MB_ICONWARNING);
}

void ShowCommunicationError(HWND owner_I, UiDisplayDelegate* delegate_I, bool fatal_I, LANGID language_I) {
    const std::string detail = delegate_I != nullptr ? delegate_I->LastFailure() : std::string();
    if (fatal_I && owner_I != nullptr) {
        EndDialog(owner_I, 0);
    }
    std::wstring text = Text(fatal_I ? kCommunicationFailureExiting : kCommunicationError, language_I);
    if (!detail.empty()) {
        text += L"\n" + Widen(detail);
    }
    if (delegate_I != nullptr) {
        delegate_I->ClearLastFailure();
    }
    MessageBoxW(owner_I, text.c_str(), Text(kProductTitle, language_I).c_str(), MB_ICONERROR);
}

void CentreOnPrimaryWorkArea(HWND window_I, HWND reference_I) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromPoint(POINT{0, 0}, MONITOR_DEFAULTTOPRIMARY), &monitor);
    const RECT& work = monitor.rcWork;
    RECT client{};
    GetClientRect(window_I, &client);
    MapWindowPoints(reference_I != nullptr ? reference_I : window_I, nullptr,
                    reinterpret_cast<POINT*>(&client), 2);
    const int clientWidth = client.right - client.left;
    const int clientHeight = client.bottom - client.top;
    const int x = work.left + ((work.right - work.left) / 2 - clientWidth / 2);
    const int y = work.top + ((work.bottom - work.top) / 2 - clientHeight / 2);
    SetWindowPos(window_I, HWND_TOPMOST, x, y, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
}

HWND CreateWaitWindow(HWND owner_I, LANGID language_I) {
    HWND hWaitWindow = CreateDialogParamW(
        GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_WAIT), owner_I,
        [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0);
    VLR_ASSERT(hWaitWindow);
    if (hWaitWindow == nullptr) {
        return nullptr;
    }
    SetDlgItemTextW(hWaitWindow, IDC_WAIT_TEXT, Text(kPleaseWait, language_I).c_str());
    CentreOnPrimaryWorkArea(hWaitWindow, owner_I);
    return hWaitWindow;
}

void ShowWaitProgress(HWND waitWindow_I, LANGID language_I, size_t ready_I, size_t found_I) {
    if (waitWindow_I == nullptr || found_I == 0) {
        return;
    }
    const std::wstring progress =
        Filled(Text(kDisplaysReady, language_I), std::to_wstring(ready_I), std::to_wstring(found_I));
    SetDlgItemTextW(waitWindow_I, IDC_WAIT_TEXT, (Text(kPleaseWait, language_I) + L"\n" + progress).c_str());
}

std::wstring Filled(std::wstring text_I, const std::wstring& first_I, const std::wstring& second_I) {
    for (const auto& [mark, value] : {std::pair{L"%1", first_I}, std::pair{L"%2", second_I}}) {
        const size_t at = text_I.find(mark);
        if (at != std::wstring::npos) {
            text_I.replace(at, 2, value);
        }
    }
    return text_I;
}

void RunNoDeviceWindow(HWND owner_I, LANGID language_I) {
    CMessageWindow window(IDD_NO_DEVICE);
    HWND hNotSupportedWindow = window.Create(owner_I);
    VLR_ASSERT(hNotSupportedWindow);
    if (hNotSupportedWindow == nullptr) {
        return;
    }
    SetWindowTextW(hNotSupportedWindow, Text(kProductTitle, language_I).c_str());
    SetDlgItemTextW(hNotSupportedWindow, IDC_NO_DEVICE_HEADING, Text(kNoDeviceHeading, language_I).c_str());
    SetDlgItemTextW(hNotSupportedWindow, IDC_NO_DEVICE_TEXT, Text(kNoDeviceText, language_I).c_str());
    window.SetHeadingFont(IDC_NO_DEVICE_HEADING, kNoDeviceHeadingHeight);
    CentreOkButton(hNotSupportedWindow);
    CentreOnPrimaryWorkArea(hNotSupportedWindow, owner_I);
    RunUntilQuit(window);
}

void RunErrorWindow(HWND owner_I, const std::wstring& text_I, LANGID language_I) {
    CMessageWindow window(IDD_ERROR);
    HWND hErrorDialog = window.Create(owner_I);
    VLR_ASSERT(hErrorDialog);
    if (hErrorDialog == nullptr) {
        return;
    }
    SetWindowTextW(hErrorDialog, Text(kProductTitle, language_I).c_str());
    SetDlgItemTextW(hErrorDialog, IDC_ERROR_TEXT, text_I.c_str());
    CentreOnPrimaryWorkArea(hErrorDialog, owner_I);
    RunUntilQuit(window);
}

}  // namespace MessageWindows
