#pragma once
// The program's small windows and boxes: the dark-screen and factory-reset questions, the
// communication error, and the wait, no-device and error windows. Texts come from the string
// table in the interface language; every caption is the product title.

#include <windows.h>

#include <string>

class UiDisplayDelegate;

namespace MessageWindows {

// MessageBoxTimeoutW as user32 exports it (undocumented, so looked up by name).
using MessageBoxTimeoutFunction = int(WINAPI*)(HWND, LPCWSTR, LPCWSTR, UINT, WORD, DWORD);
constexpr int kMessageBoxTimedOut = 32000;
constexpr DWORD kDarkScreenTimeoutMs = 5000;
constexpr UINT kDarkScreenStyle = 0x1134;    // MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2 | MB_SYSTEMMODAL
constexpr UINT kFactoryResetStyle = 0x1131;  // MB_OKCANCEL | MB_ICONWARNING | MB_DEFBUTTON2 | MB_SYSTEMMODAL

// Replaces the looked-up function (tests answer for the user); nullptr looks it up again.
void SetMessageBoxTimeoutFunction(MessageBoxTimeoutFunction function_I);

// The product title and a table text in the interface language.
std::wstring Text(UINT stringId_I, LANGID language_I);

// A control and the table text that is its caption; a caption with an access key gets a
// letter of its own within the dialog (labels pass the key on to the control after them).
struct SCaption {
    int id;
    UINT stringId;
    bool accessKey = false;
};
void SetCaptions(HWND dialog_I, const SCaption* captions_I, size_t count_I, LANGID language_I);
template <size_t N>
void SetCaptions(HWND dialog_I, const SCaption (&captions_I)[N], LANGID language_I) {
    SetCaptions(dialog_I, captions_I, N, language_I);
}

// After a committed brightness or contrast change: true to keep it. Asks only when the
// picture may be too dark; no answer within five seconds keeps the old values.
bool ConfirmPictureNotTooDark(HWND owner_I, UiDisplayDelegate& delegate_I, int32_t brightness_I,
                              int32_t contrast_I, LANGID language_I);
// The question itself: true to keep settings that may leave the screen too dark to read.
bool AskKeepDarkSettings(HWND owner_I, LANGID language_I);
// True only for OK. The question names the display it is about (several may be attached).
bool ConfirmFactoryReset(HWND owner_I, const std::wstring& displayName_I, LANGID language_I);
// Before LCD conditioning: what it does, that unsaved changes go, which display. True for OK.
bool ConfirmLcdConditioning(HWND owner_I, const std::wstring& displayName_I, LANGID language_I);
// The help could not be opened at this address (a file or a web page).
void ShowHelpNotOpened(HWND owner_I, const std::wstring& address_I, LANGID language_I);
// A failed delegate call. Fatal errors end the owner dialog with result 0 first.
void ShowCommunicationError(HWND owner_I, UiDisplayDelegate* delegate_I, bool fatal_I, LANGID language_I);

// Places a window topmost and shown, centred on the primary monitor's work area.
void CentreOnPrimaryWorkArea(HWND window_I, HWND reference_I);

// The wait window (string 2905), topmost and centred; null when it cannot be created.
HWND CreateWaitWindow(HWND owner_I, LANGID language_I);
// Adds to its text how many of the displays found are ready ("3 of 4 displays ready").
void ShowWaitProgress(HWND waitWindow_I, LANGID language_I, size_t ready_I, size_t found_I);
// A text with its "%1" and "%2" replaced.
std::wstring Filled(std::wstring text_I, const std::wstring& first_I, const std::wstring& second_I = {});
// Each runs until its OK button ends the thread's message loop.
void RunNoDeviceWindow(HWND owner_I, LANGID language_I);
void RunErrorWindow(HWND owner_I, const std::wstring& text_I, LANGID language_I);

}  // namespace MessageWindows
