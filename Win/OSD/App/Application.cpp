#include "Application.h"

#include <commctrl.h>

#include "CMainDialog.h"
#include "CTrayKeeper.h"
#include "DebugLog.h"
#include "InUseMark.h"
#include "LanguageProvider.h"
#include "MessageWindows.h"
#include "ResourceUtils.h"

namespace {
// A caption every table has.
constexpr uint32_t kProductTitleAndCaptionsId = 2001;
}  // namespace

LANGID InterfaceLanguage(const SStartupOptions& options_I) {
    const LANGID language = CLanguageProvider().LanguageIdFromName(options_I.languageName);
    // Which table the texts come from, after the fallback (an Arabic request reads English).
    DLog("Interface language %s: %04x, texts of the %04x table\n", options_I.languageName.c_str(), language,
         TableLanguage(kProductTitleAndCaptionsId, language));
    return language;
}

namespace {

constexpr wchar_t kRunningMutex[] = L"VelorDisplaySettings.Running";

// The first copy's main dialog, known by its own mark rather than by a title that the
// advanced page shares; restored when minimised and brought to the front.
void BringRunningCopyForward() {
    HWND found = nullptr;
    EnumWindows(
        [](HWND window_I, LPARAM found_O) -> BOOL {
            if (GetPropW(window_I, CMainDialog::kIdentityProperty) != nullptr) {
                *reinterpret_cast<HWND*>(found_O) = window_I;
                return FALSE;
            }
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&found));
    if (found == nullptr) {
        DLog("A copy of the program runs (still searching): this start ends\n");
        return;
    }
    DLog("A copy of the program runs: bringing it forward\n");
    ShowWindow(found, IsIconic(found) ? SW_RESTORE : SW_SHOW);
    SetForegroundWindow(found);
}

}  // namespace

int RunApplication(const SStartupOptions& options_I) {
    DebugLog::SetEnabled(options_I.debugOutput);
    if (options_I.help) {
        MessageBoxW(nullptr, HelpText(), kHelpCaption, kHelpStyle);
        return eExitClosed;
    }
    if (options_I.tray) {
        // Beside the settings dialog, not instead of it: it has a single-run check of its own.
        return RunTrayKeeper(options_I, InterfaceLanguage(options_I));
    }
    // Before anything else (a departure from the title check alone, which stays in the main
    // dialog): a second start must not search, and so talk to displays the first copy holds.
    HANDLE running = CreateMutexW(nullptr, FALSE, kRunningMutex);
    if (running != nullptr && GetLastError() == ERROR_ALREADY_EXISTS) {
        CloseHandle(running);
        BringRunningCopyForward();
        return eExitClosed;
    }
    // For installers in any session (the keeper holds it too, with a mark of its own).
    const CInUseMark inUse;
    INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_BAR_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);

    const LANGID language = InterfaceLanguage(options_I);
    int exitCode = eExitClosed;
    {
        CMainDialog dialog(options_I, language);
        dialog.DoModal(nullptr);
        switch (dialog.Outcome()) {
            case CMainDialog::EOutcome::NoDevice:
                MessageWindows::RunNoDeviceWindow(nullptr, language);
                exitCode = eExitNoDisplay;
                break;
            case CMainDialog::EOutcome::Error:
                MessageWindows::RunErrorWindow(nullptr, dialog.ErrorText(), language);
                exitCode = eExitError;
                break;
            case CMainDialog::EOutcome::CommunicationFailure: exitCode = eExitCommunicationFailure; break;
            case CMainDialog::EOutcome::AlreadyRunning:
            case CMainDialog::EOutcome::Closed: break;
        }
    }
    if (running != nullptr) {
        CloseHandle(running);
    }
    return exitCode;
}
