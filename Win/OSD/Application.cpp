#include "Application.h"

#include <commctrl.h>

#include "CMainDialog.h"
#include "DebugLog.h"
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

int RunApplication(const SStartupOptions& options_I) {
    DebugLog::SetEnabled(options_I.debugOutput);
    if (options_I.help) {
        MessageBoxW(nullptr, HelpText(), kHelpCaption, kHelpStyle);
        return 0;
    }
    INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_BAR_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);

    const LANGID language = InterfaceLanguage(options_I);
    CMainDialog dialog(options_I, language);
    dialog.DoModal(nullptr);
    switch (dialog.Outcome()) {
        case CMainDialog::EOutcome::NoDevice: MessageWindows::RunNoDeviceWindow(nullptr, language); break;
        case CMainDialog::EOutcome::Error:
            MessageWindows::RunErrorWindow(nullptr, dialog.ErrorText(), language);
            break;
        case CMainDialog::EOutcome::AlreadyRunning:
        case CMainDialog::EOutcome::Closed: break;
    }
    return 0;
}
