#include "CMainDialog.h"

#include <commctrl.h>
#include <dbt.h>
#include <shellapi.h>

#include <algorithm>
#include <atomic>

#include "Assert.h"
#include "CColorSettingsDialog.h"
#include "Clock.h"
#include "DebugLog.h"
#include "DisplayLock.h"
#include "ErrorAdvice.h"
#include "LanguageProvider.h"
#include "MessageWindows.h"
#include "ScopedTimer.h"
#include "SettingTable.h"
#include "WinStrings.h"

namespace {

constexpr UINT_PTR kPollTimer = 1;
constexpr UINT_PTR kSettleTimer = 2;
// Devices come in several notifications (monitor, HID interfaces, ports) and answer only a
// little after they arrive: one search once the desk has been still this long.
constexpr UINT kSettleMs = 1500;
// A display switched on again answers only once its firmware has started, some seconds after
// Windows announces it: while the display the user chose is missing after such a search (or
// none answers), the program looks again a few times before it takes it as gone.
constexpr UINT_PTR kLookAgainTimer = 3;
constexpr unsigned kLookAgainTimes = 2;
constexpr UINT kLookAgainPauseMs = 3000;
constexpr UINT kPollPeriodMs = 100;
// How long a search waits for the keeper to finish, and the chosen display for its restore.
constexpr std::chrono::milliseconds kEveryDisplayWait{10000};
constexpr std::chrono::milliseconds kSelectedDisplayWait{3000};
constexpr int kHotKeyId = 0;
constexpr int kToolTipWidth = 400;
constexpr int kToolTipDelayMs = 1000;
constexpr int kEditDigits = 3;

constexpr UINT kProductTitle = 2000;
constexpr UINT kRgbPrefix = 2026;

using MessageWindows::SCaption;

// In the order access keys are handed out: the most used first.
constexpr SCaption kCaptions[] = {
    {IDC_BRIGHTNESS_LABEL, SettingCaptionId(ESetting::Brightness), true},
    {IDC_CONTRAST_LABEL, SettingCaptionId(ESetting::Contrast), true},
    {IDC_SAVE_BUTTON, 2032, true},
    {IDC_DISPLAY_LABEL, 2001, true},
    {IDC_COLOR_SETTING_LABEL, SettingCaptionId(ESetting::ColorSettingMode), true},
    {IDC_COLOR_TEMPERATURE_LABEL, SettingCaptionId(ESetting::ColorTemperature), true},
    {IDC_COLOR_SPACE_LABEL, SettingCaptionId(ESetting::ColorSpace), true},
    {IDC_GAMMA_LABEL, SettingCaptionId(ESetting::Gamma), true},
    {IDC_CUSTOM_COLOR_BUTTON, 2025, true},
    {IDC_RESET_COLOR_BUTTON, 2036, true},
    {IDC_ADVANCED_BUTTON, 2031, true},
    {IDC_REVERT_BUTTON, 2033, true},
    {IDC_CUSTOM_COLOR_LABEL, 2026},
};

std::atomic<bool> gSkipStaleDragPositions{true};

bool OpenInBrowser(HWND owner_I, const std::wstring& address_I) {
    const auto result = reinterpret_cast<INT_PTR>(
        ShellExecuteW(owner_I, L"open", address_I.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    return result > 32;  // ShellExecute's own rule: 32 and below are errors
}

std::atomic<CMainDialog::HelpOpener> gHelpOpener{&OpenInBrowser};

// The folder of the running program, with a trailing backslash.
std::wstring ProgramFolder() {
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder(path, length);
    return folder.substr(0, folder.find_last_of(L"\\/") + 1);
}

// The main dialog's lists and the setting each sets.
constexpr std::pair<int, ESetting> kSettingLists[] = {
    {IDC_COLOR_SETTING_LIST, ESetting::ColorSettingMode},
    {IDC_COLOR_TEMPERATURE_LIST, ESetting::ColorTemperature},
    {IDC_COLOR_SPACE_LIST, ESetting::ColorSpace},
    {IDC_GAMMA_LIST, ESetting::Gamma},
};

std::optional<ESetting> SettingOfList(int listId_I) {
    for (const auto& [list, setting] : kSettingLists) {
        if (list == listId_I) {
            return setting;
        }
    }
    return std::nullopt;
}

}  // namespace

CMainDialog::CMainDialog(const SStartupOptions& options_I, LANGID language_I)
    : CDialogBase(IDD_MAIN),
      mOptions(options_I),
      mLanguage(language_I),
      mRows({{{IDC_DISPLAY_LABEL, IDC_DISPLAY_LIST}},
             {{IDC_BRIGHTNESS_LABEL, IDC_BRIGHTNESS_EDIT, IDC_BRIGHTNESS_SLIDER}},
             {{IDC_CONTRAST_LABEL, IDC_CONTRAST_EDIT, IDC_CONTRAST_SLIDER}},
             {{}, IDC_COLOR_GROUP, 3},
             {{IDC_COLOR_SETTING_LABEL, IDC_COLOR_SETTING_LIST, IDC_CUSTOM_COLOR_BUTTON}},
             {{IDC_COLOR_TEMPERATURE_LABEL, IDC_COLOR_TEMPERATURE_LIST, IDC_COLOR_SPACE_LABEL,
               IDC_COLOR_SPACE_LIST, IDC_CUSTOM_COLOR_LABEL}},
             {{IDC_RESET_COLOR_BUTTON}},
             {{IDC_GAMMA_LABEL, IDC_GAMMA_LIST}},
             {{IDC_ADVANCED_BUTTON, IDC_SAVE_BUTTON, IDC_REVERT_BUTTON, IDC_HELP_BUTTON}}}) {}

CMainDialog::~CMainDialog() {
    mThread.JoinAndClose();
}

UiDisplayDelegate* CMainDialog::Delegate() const {
    // While a search empties and refills the display list, there is no display to use.
    if (!mDisplayConfigIF || mSearching || mSelectedDisplay >= mDisplayIndexes.size()) {
        return nullptr;
    }
    const auto displays = mDisplayConfigIF->Displays();
    const size_t index = mDisplayIndexes[mSelectedDisplay];
    return index < displays.size() ? dynamic_cast<UiDisplayDelegate*>(displays[index].get()) : nullptr;
}

std::vector<int32_t> CMainDialog::Values(int comboId_I) const {
    auto it = mValues.find(comboId_I);
    return it != mValues.end() ? it->second : std::vector<int32_t>();
}

bool CMainDialog::ReportWrite(bool ok_I) {
    if (!ok_I) {
        UiDisplayDelegate* delegate = Delegate();
        if (mOptions.exitOnError) {
            NoteFatalFailure();
        }
        MessageWindows::ShowCommunicationError(m_hWnd, delegate, mOptions.exitOnError, mLanguage);
        // A display that slept or was re-plugged closes its connector: search again, so that it
        // is found under its new handles (beyond what the error box itself does). Posted, so the
        // handler under way finishes with the old display first.
        if (!mOptions.exitOnError && delegate != nullptr && delegate->GetConnector() &&
            !delegate->GetConnector()->IsOpen()) {
            DLog("CMainDialog: the display's connection has closed; searching again\n");
            PostMessageW(m_hWnd, kSearchAgainMessage, 0, 0);
        }
    }
    return ok_I;
}

// ---- Worker threads ----

DWORD WINAPI CMainDialog::DisplayConfigThread(LPVOID pClass_I) {
    CScopedTimer timer("DisplayConfig");
    DLog("CMainDialog::DisplayConfigThread - searching for Mr. GoodDevice...\n");
    auto* self = static_cast<CMainDialog*>(pClass_I);
    // Not while the keeper searches or restores; should it take long, the user is not kept
    // waiting for it.
    const std::unique_ptr<CDisplayLock> everyDisplay = HoldDisplayLock(kEveryDisplay, kEveryDisplayWait);
    if (!self->mDisplayConfigIF) {
        auto discovery = CWinDisplayConfigInterface::Create();
        discovery->SetConnectionMode(self->mOptions.connectionMode);
        discovery->SetMatchByModel(self->mOptions.skipSerialMatch);
        discovery->SetStopOnDisplayPortError(self->mOptions.exitOnError);
        discovery->SetInterfaceLanguage(self->mLanguage);
        discovery->SetInitializeAtOnce(!self->mOptions.serialInit);
        if (!self->mOptions.noCache) {
            discovery->SetCapabilitiesCache(std::make_shared<CCapabilitiesCache>(
                CCapabilitiesCache::DefaultFile(!self->mOptions.demoScenario.empty())));
        }
        discovery->SetProgressCallback([self](size_t ready_I, size_t found_I) {
            self->mSearchFound = found_I;
            self->mSearchReady = ready_I;
        });
        discovery->Init();
        if (!discovery->ErrorText().empty()) {
            self->mErrorText = WithErrorAdvice(Widen(discovery->ErrorText()));
            self->mHasErrorText = true;
        }
        self->mDisplayConfigIF = std::move(discovery);
    } else {
        self->mDisplayConfigIF->Init();
        // Nothing answers yet after a change on the desk: the "please wait" window stays while
        // the program gives a display that is starting its time.
        while (self->mDisplayConfigIF->Displays().empty() && self->mLookAgainLeft > 0) {
            --self->mLookAgainLeft;
            DLog("CMainDialog: no display answers yet; looking again in %u ms\n", kLookAgainPauseMs);
            Clock::PauseMs(kLookAgainPauseMs);
            self->mDisplayConfigIF->Init();
        }
    }
    return 1;
}

DWORD WINAPI CMainDialog::FactoryResetThread(LPVOID pClass_I) {
    CScopedTimer timer("FactoryReset");
    auto* self = static_cast<CMainDialog*>(pClass_I);
    if (UiDisplayDelegate* delegate = self != nullptr ? self->Delegate() : nullptr) {
        delegate->FactoryReset();
    }
    return 1;
}

DWORD WINAPI CMainDialog::ResetColorThread(LPVOID pClass_I) {
    CScopedTimer timer("ResetColor");
    auto* self = static_cast<CMainDialog*>(pClass_I);
    if (UiDisplayDelegate* delegate = self != nullptr ? self->Delegate() : nullptr) {
        delegate->ResetColor();
    }
    return 1;
}

DWORD WINAPI CMainDialog::ResetColorConfigThread(LPVOID pClass_I) {
    auto* self = static_cast<CMainDialog*>(pClass_I);
    VLR_ASSERT(self == nullptr || self->mDisplayConfigIF);
    VLR_ASSERT(pClass_I);
    if (self == nullptr) {
        return 1;
    }
    if (UiDisplayDelegate* delegate = self->Delegate()) {
        delegate->ResetData(false);
    }
    // The controls' messages reach the interface thread, which pumps its local loop.
    self->InitControls();
    return 1;
}

bool CMainDialog::RunLongOperation(LPTHREAD_START_ROUTINE first_I, const char* firstName_I,
                                   LPTHREAD_START_ROUTINE second_I, const char* secondName_I) {
    if (mOperationRunning) {
        // A double click or a second hot key while one runs: one operation at a time.
        DLog("CMainDialog: %s not started, %s is running\n", firstName_I, mThread.Name().c_str());
        return false;
    }
    mOperationRunning = true;
    // No input reaches the dialogs meanwhile (the local loop below still dispatches it).
    HWND focus = GetFocus();
    EnableWindow(m_hWnd, FALSE);
    HWND page = mAdvancedDialog && mAdvancedDialog->IsWindow() ? mAdvancedDialog->m_hWnd : nullptr;
    if (page != nullptr) {
        EnableWindow(page, FALSE);
    }
    mSearching = first_I == &CMainDialog::DisplayConfigThread;
    if (mSearching) {
        mHeldDisplay.reset();  // the search holds every display
    }
    mSearchReady = 0;
    mSearchFound = 0;
    mShownReady = 0;
    mThread.Start(first_I, firstName_I, this);
    SetTimer(m_hWnd, kPollTimer, kPollPeriodMs, nullptr);
    mWaitWindow = MessageWindows::CreateWaitWindow(m_hWnd, mLanguage);
    bool onSecond = second_I == nullptr;
    MSG message;
    for (;;) {
        if (mThread.Poll()) {
            mThread.JoinAndClose();
            if (onSecond) {
                break;
            }
            onSecond = true;
            mSearching = second_I == &CMainDialog::DisplayConfigThread;
            mThread.Start(second_I, secondName_I, this);
            continue;
        }
        const BOOL got = GetMessageW(&message, nullptr, 0, 0);
        if (got <= 0) {
            mThread.JoinAndClose();
            PostQuitMessage(0);  // hand the end on to the outer loop
            break;
        }
        if (mWaitWindow == nullptr || !IsDialogMessageW(mWaitWindow, &message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        ShowSearchProgress();
    }
    if (mWaitWindow != nullptr) {
        ::DestroyWindow(mWaitWindow);
        mWaitWindow = nullptr;
    }
    KillTimer(m_hWnd, kPollTimer);
    mThread.JoinAndClose();
    if (page != nullptr && ::IsWindow(page)) {
        EnableWindow(page, TRUE);
    }
    EnableWindow(m_hWnd, TRUE);
    if (focus != nullptr && ::IsWindow(focus) && IsWindowVisible(focus)) {
        SetFocus(focus);
    }
    mOperationRunning = false;
    mSearching = false;
    if (mSearchAgainPending) {
        mSearchAgainPending = false;
        PostMessageW(m_hWnd, kSearchAgainMessage, 0, 0);
    }
    return true;
}

void CMainDialog::ShowSearchProgress() {
    const size_t ready = mSearchReady;
    if (mWaitWindow == nullptr || ready == mShownReady) {
        return;
    }
    mShownReady = ready;
    MessageWindows::ShowWaitProgress(mWaitWindow, mLanguage, ready, mSearchFound);
}

// ---- Start ----

LRESULT CMainDialog::OnInitDialog(UINT, WPARAM, LPARAM, BOOL&) {
    CScopedTimer timer("CMainDialog::OnInitDialog");
    // Discovery starts before any window is shown.
    VLR_START_THREAD(mThread, CMainDialog::DisplayConfigThread, this);

    mRememberedPosition = AppRegistry::ReadLocation();
    if (mRememberedPosition) {
        DLog("Last user loc: %i,%i\n", mRememberedPosition->x, mRememberedPosition->y);
    } else {
        DLog("Using default app position\n");
    }

    const std::wstring title = MessageWindows::Text(kProductTitle, mLanguage);
    if (HWND running = FindWindowW(nullptr, title.c_str()); running != nullptr && running != m_hWnd) {
        SetForegroundWindow(running);
        mOutcome = EOutcome::AlreadyRunning;
        mThread.JoinAndClose();
        EndDialog(0);
        return TRUE;
    }
    SetWindowTextW(m_hWnd, title.c_str());
    SetPropW(m_hWnd, kIdentityProperty, reinterpret_cast<HANDLE>(1));
    if (HICON icon = LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_APPLICATION_ICON))) {
        SendMessageW(m_hWnd, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon));
        SendMessageW(m_hWnd, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icon));
    }

    mToolTip = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP,
                               CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, m_hWnd, nullptr,
                               GetModuleHandleW(nullptr), nullptr);
    if (mToolTip != nullptr) {
        SendMessageW(mToolTip, TTM_SETMAXTIPWIDTH, 0, kToolTipWidth);
        SendMessageW(mToolTip, TTM_SETDELAYTIME, TTDT_AUTOMATIC, kToolTipDelayMs);
        SendMessageW(mToolTip, TTM_ACTIVATE, TRUE, 0);
    }
    LoadCaptions();

    // The first thread is already running: wait for it behind the wait window.
    SetTimer(m_hWnd, kPollTimer, kPollPeriodMs, nullptr);
    mWaitWindow = MessageWindows::CreateWaitWindow(m_hWnd, mLanguage);
    MSG message;
    while (!mThread.Poll()) {
        if (GetMessageW(&message, nullptr, 0, 0) <= 0) {
            PostQuitMessage(0);
            break;
        }
        if (mWaitWindow == nullptr || !IsDialogMessageW(mWaitWindow, &message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        ShowSearchProgress();
    }
    KillTimer(m_hWnd, kPollTimer);
    if (mWaitWindow != nullptr) {
        ::DestroyWindow(mWaitWindow);
        mWaitWindow = nullptr;
    }
    mThread.JoinAndClose();

    if (!mDisplayConfigIF) {
        mErrorText = L"Could not configure display.";
        mHasErrorText = true;
    }
    if (mHasErrorText) {
        mOutcome = EOutcome::Error;
        EndDialog(0);
        return TRUE;
    }
    mPowerWarning = std::make_unique<CPowerWarningDialog>(mLanguage);
    mAdvancedDialog = std::make_unique<CAdvancedDialog>(*this, mLanguage);

    if (mDisplayConfigIF->Displays().empty()) {
        DLog("No supported displays. Ending OSD\n");
        mOutcome = EOutcome::NoDevice;
        EndDialog(0);
        return TRUE;
    }
    FillDisplayList();
    mIgnorePowerWarning = AppRegistry::ReadIgnorePowerWarning();
    InitControls();
    RegisterHotKey(m_hWnd, kHotKeyId, MOD_ALT | MOD_CONTROL, 'R');
    mDeskChanges.Register(m_hWnd);
    return TRUE;
}

void CMainDialog::LoadCaptions() {
    MessageWindows::SetCaptions(m_hWnd, kCaptions, mLanguage);
    SetDlgItemTextW(m_hWnd, IDC_HELP_BUTTON, L"?");
}

void CMainDialog::FillDisplayList() {
    HWND list = GetDlgItem(IDC_DISPLAY_LIST);
    SendMessageW(list, CB_RESETCONTENT, 0, 0);
    mDisplayIndexes.clear();
    const auto displays = mDisplayConfigIF->Displays();
    for (size_t i = 0; i < displays.size(); ++i) {
        SendMessageW(list, CB_ADDSTRING, 0,
                     reinterpret_cast<LPARAM>(Widen(displays[i]->SupportedName()).c_str()));
        mDisplayIndexes.push_back(i);
    }
    // The display the user chose stays selected where a search finds it, at whatever place;
    // while it is gone another stands in, and when it comes back it is selected again.
    const std::vector<std::wstring> identities = DisplayIdentities();
    const auto kept = std::find(identities.begin(), identities.end(), mSelectedIdentity);
    if (!mSelectedIdentity.empty() && kept != identities.end()) {
        mSelectedDisplay = static_cast<size_t>(kept - identities.begin());
    } else if (mSelectedDisplay >= mDisplayIndexes.size()) {
        mSelectedDisplay = 0;
    }
    if (mSelectedIdentity.empty() && mSelectedDisplay < identities.size()) {
        mSelectedIdentity = identities[mSelectedDisplay];
    }
    SendMessageW(list, CB_SETCURSEL, mSelectedDisplay, 0);
    HoldSelectedDisplay();
}

void CMainDialog::HoldSelectedDisplay() {
    mHeldDisplay.reset();
    if (mSelectedDisplay >= mDisplayConfigIF->DisplayInfos().size()) {
        return;
    }
    // The keeper writes nothing to the display the user is adjusting; a restore under way
    // ends within a few seconds.
    const std::wstring& serial = mDisplayConfigIF->DisplayInfos()[mSelectedDisplay].serialNumber;
    mHeldDisplay = HoldDisplayLock(Narrow(serial), kSelectedDisplayWait);
    if (!mHeldDisplay) {
        DLog("CMainDialog: the display's lock is held elsewhere; going on without it\n");
    }
}

void CMainDialog::ClearCombos() {
    for (const auto& list : kSettingLists) {
        SendDlgItemMessageW(m_hWnd, list.first, CB_RESETCONTENT, 0, 0);
        mValues.erase(list.first);
    }
}

// ---- Controls ----

const CMainDialog::SSlider* CMainDialog::SliderOf(int controlId_I) {
    static constexpr SSlider kSliders[] = {
        {ESetting::Brightness, IDC_BRIGHTNESS_LABEL, IDC_BRIGHTNESS_EDIT, IDC_BRIGHTNESS_SLIDER},
        {ESetting::Contrast, IDC_CONTRAST_LABEL, IDC_CONTRAST_EDIT, IDC_CONTRAST_SLIDER},
    };
    for (const SSlider& slider : kSliders) {
        if (controlId_I == slider.slider || controlId_I == slider.edit) {
            return &slider;
        }
    }
    return nullptr;
}

int32_t& CMainDialog::Accepted(const SSlider& slider_I) {
    return slider_I.setting == ESetting::Brightness ? mAcceptedBrightness : mAcceptedContrast;
}

std::pair<int32_t, int32_t> CMainDialog::PictureWith(const SSlider& slider_I, int32_t value_I) const {
    return slider_I.setting == ESetting::Brightness ? std::make_pair(value_I, mAcceptedContrast)
                                                    : std::make_pair(mAcceptedBrightness, value_I);
}

void CMainDialog::InitSlider(const SSlider& slider_I) {
    UiDisplayDelegate* delegate = Delegate();
    SSettingState res = delegate->GetSetting(slider_I.setting);
    const bool shown = res.supported;
    for (int id : {slider_I.label, slider_I.edit, slider_I.slider}) {
        ShowControl(GetDlgItem(id), shown);
        EnableWindow(GetDlgItem(id), shown && res.writable);
    }
    if (!shown) {
        return;
    }
    VLR_ASSERT(res.valid);
    HWND slider = GetDlgItem(slider_I.slider);
    SendMessageW(slider, TBM_SETRANGE, TRUE, MAKELPARAM(res.range.minimum, res.range.maximum));
    SendMessageW(slider, TBM_SETPOS, TRUE, res.value);
    SendDlgItemMessageW(m_hWnd, slider_I.edit, EM_LIMITTEXT, kEditDigits, 0);
    SetDlgItemInt(m_hWnd, slider_I.edit, static_cast<UINT>(res.value), FALSE);
    Accepted(slider_I) = res.value;
}

void CMainDialog::InitChoice(ESetting setting_I, int labelId_I, int comboId_I, bool visible_I) {
    UiDisplayDelegate* delegate = Delegate();
    SSettingState state = delegate->GetSetting(setting_I);
    const bool shown = visible_I && state.supported && !state.entries.empty();
    ShowControl(GetDlgItem(labelId_I), shown);
    ShowControl(GetDlgItem(comboId_I), shown);
    EnableWindow(GetDlgItem(labelId_I), shown && state.writable);
    EnableWindow(GetDlgItem(comboId_I), shown && state.writable);
    if (!state.supported) {
        return;
    }
    if (setting_I == ESetting::ColorSpace && !state.valid) {
        DLog("WARNING: Color space is NOT valid!\n");
    }
    HWND combo = GetDlgItem(comboId_I);
    std::vector<int32_t>& values = mValues[comboId_I];
    // Filled once per display (ClearCombos empties them when another is chosen).
    if (SendMessageW(combo, CB_GETCOUNT, 0, 0) == 0) {
        FillChoiceCombo(combo, state.entries, mLanguage, values);
    }
    SelectChoice(combo, values, state.value);
}

void CMainDialog::ShowCustomColorText() {
    UiDisplayDelegate* delegate = Delegate();
    const std::wstring text = MessageWindows::Text(kRgbPrefix, mLanguage) + L" " +
                              (delegate != nullptr ? Widen(delegate->CustomColorText()) : std::wstring());
    SetDlgItemTextW(m_hWnd, IDC_CUSTOM_COLOR_LABEL, text.c_str());
}

void CMainDialog::InitControls() {
    UiDisplayDelegate* delegate = Delegate();
    if (delegate == nullptr) {
        return;
    }
    LoadCaptions();
    InitSlider(*SliderOf(IDC_BRIGHTNESS_SLIDER));
    InitSlider(*SliderOf(IDC_CONTRAST_SLIDER));

    const SSettingState mode = delegate->GetSetting(ESetting::ColorSettingMode);
    InitChoice(ESetting::ColorSettingMode, IDC_COLOR_SETTING_LABEL, IDC_COLOR_SETTING_LIST, true);
    const bool temperature = mode.value == eColorModeTemperature;
    const bool space = mode.value == eColorModeSpace;
    const bool custom = mode.supported && mode.value == eColorModeCustom;
    InitChoice(ESetting::ColorTemperature, IDC_COLOR_TEMPERATURE_LABEL, IDC_COLOR_TEMPERATURE_LIST,
               temperature);
    InitChoice(ESetting::ColorSpace, IDC_COLOR_SPACE_LABEL, IDC_COLOR_SPACE_LIST, space);
    ShowControl(GetDlgItem(IDC_CUSTOM_COLOR_LABEL), custom);
    ShowControl(GetDlgItem(IDC_CUSTOM_COLOR_BUTTON), custom);
    if (custom) {
        ShowCustomColorText();
    }
    ShowControl(GetDlgItem(IDC_COLOR_GROUP), mode.supported);
    ShowControl(GetDlgItem(IDC_RESET_COLOR_BUTTON), mode.supported);
    InitChoice(ESetting::Gamma, IDC_GAMMA_LABEL, IDC_GAMMA_LIST, true);
    UpdateButtons();
    mRows.Apply(m_hWnd);  // no gaps where the display offers nothing
    PlaceWindow();
}

void CMainDialog::UpdateButtons() {
    UiDisplayDelegate* delegate = Delegate();
    ShowControl(GetDlgItem(IDC_ADVANCED_BUTTON), true);
    EnableWindow(GetDlgItem(IDC_ADVANCED_BUTTON), TRUE);
    EnableWindow(GetDlgItem(IDC_SAVE_BUTTON), delegate != nullptr && delegate->HasUnsavedChanges());
}

void CMainDialog::PlaceWindow() {
    GetWindowRect(m_hWnd, &mWindowRect);
    HMONITOR monitor = MonitorFromPoint(POINT{mWindowRect.left, mWindowRect.top}, MONITOR_DEFAULTTOPRIMARY);
    mMonitorInfo.cbSize = sizeof(mMonitorInfo);
    GetMonitorInfoW(monitor, &mMonitorInfo);
    const RECT& work = mMonitorInfo.rcWork;
    const RECT& screen = mMonitorInfo.rcMonitor;
    int width = mWindowRect.right - mWindowRect.left;
    int height = mWindowRect.bottom - mWindowRect.top;
    const int workHeight = work.bottom - work.top;

    ShowScrollBar(m_hWnd, SB_VERT, FALSE);
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
        SetWindowPos(m_hWnd, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
        ShowScrollBar(m_hWnd, SB_VERT, TRUE);
        SetScrollInfo(m_hWnd, SB_VERT, &scroll, TRUE);
    }

    int x = 0;
    int y = 0;
    if (mRememberedPosition && mRememberedPosition->x > screen.left &&
        mRememberedPosition->x + width < screen.right && mRememberedPosition->y > screen.top &&
        mRememberedPosition->y + height < screen.bottom) {
        x = mRememberedPosition->x;
        y = mRememberedPosition->y;
    } else {
        // Measured from the screen origin, not from the monitor's own corner: intended.
        x = ((screen.right - screen.left) - width) / 2;
        y = ((screen.bottom - screen.top) - height) / 2;
    }
    SetWindowPos(m_hWnd, HWND_TOPMOST, x, y, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
    GetWindowRect(m_hWnd, &mWindowRect);
    if (mAdvancedDialog) {
        mAdvancedDialog->Follow(mWindowRect);
    }
}

// ---- Messages ----

LRESULT CMainDialog::OnTimer(UINT, WPARAM wParam_I, LPARAM, BOOL&) {
    // Timer 1 only keeps the local loop awake.
    if (wParam_I == kSettleTimer) {
        KillTimer(m_hWnd, kSettleTimer);
        KillTimer(m_hWnd, kLookAgainTimer);  // this search stands for it
        DLog("CMainDialog: the desk is still again; searching\n");
        mLookAgainLeft = kLookAgainTimes;
        PostMessageW(m_hWnd, kSearchAgainMessage, 0, 0);
    } else if (wParam_I == kLookAgainTimer) {
        KillTimer(m_hWnd, kLookAgainTimer);
        PostMessageW(m_hWnd, kSearchAgainMessage, 0, 0);
    }
    return 0;
}

LRESULT CMainDialog::OnSystemChange(UINT message_I, WPARAM wParam_I, LPARAM lParam_I, BOOL&) {
    if (IsDeskChange(message_I, wParam_I, lParam_I) && mDisplayConfigIF) {
        // (Re)started on every event: one search when they stop.
        SetTimer(m_hWnd, kSettleTimer, kSettleMs, nullptr);
    }
    return message_I == WM_POWERBROADCAST || message_I == WM_DEVICECHANGE ? TRUE : 0;
}

std::vector<std::wstring> CMainDialog::DisplayIdentities() const {
    std::vector<std::wstring> identities;
    for (const SDisplayInfo& info : mDisplayConfigIF->DisplayInfos()) {
        if (info.display) {
            identities.push_back(info.serialNumber + L"|" + info.supportedName);
        }
    }
    return identities;
}

LRESULT CMainDialog::OnDestroy(UINT, WPARAM, LPARAM, BOOL& handled_O) {
    RemovePropW(m_hWnd, kIdentityProperty);
    KillTimer(m_hWnd, kSettleTimer);
    KillTimer(m_hWnd, kLookAgainTimer);
    mDeskChanges.Unregister();
    mHeldDisplay.reset();
    handled_O = FALSE;
    return 0;
}

LRESULT CMainDialog::OnMove(UINT, WPARAM, LPARAM, BOOL&) {
    GetWindowRect(m_hWnd, &mWindowRect);
    // The remembered position follows the window, so that placing it again (after another
    // display, a colour change, a reset) leaves it where the user put it; at start-up the
    // position read from the registry is used as before.
    if (IsWindowVisible(m_hWnd) && !IsIconic(m_hWnd)) {
        mRememberedPosition = SWindowPosition{mWindowRect.left, mWindowRect.top};
    }
    mMonitorInfo.cbSize = sizeof(mMonitorInfo);
    GetMonitorInfoW(MonitorFromRect(&mWindowRect, MONITOR_DEFAULTTOPRIMARY), &mMonitorInfo);
    if (mAdvancedDialog) {
        mAdvancedDialog->Follow(mWindowRect);
    }
    return 0;
}

LRESULT CMainDialog::OnVScroll(UINT, WPARAM wParam_I, LPARAM, BOOL&) {
    SCROLLINFO scroll{};
    scroll.cbSize = sizeof(scroll);
    scroll.fMask = SIF_ALL;
    GetScrollInfo(m_hWnd, SB_VERT, &scroll);
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
        ScrollWindowEx(m_hWnd, 0, mScrollPosition - position, nullptr, nullptr, nullptr, nullptr,
                       SW_SCROLLCHILDREN | SW_INVALIDATE | SW_ERASE);
        mScrollPosition = position;
        scroll.fMask = SIF_POS;
        scroll.nPos = position;
        SetScrollInfo(m_hWnd, SB_VERT, &scroll, TRUE);
    }
    return 0;
}

void CMainDialog::SetSkipStaleDragPositions(bool on_I) {
    gSkipStaleDragPositions = on_I;
}

bool CMainDialog::NewerPositionWaiting(HWND slider_I) const {
    if (!gSkipStaleDragPositions) {
        return false;
    }
    // Only a newer position of the same slider may replace this one: a drag that is still
    // moving (a mouse move queued for the captured slider) or a queued thumb position.
    MSG pending;
    if (GetCapture() == slider_I &&
        PeekMessageW(&pending, slider_I, WM_MOUSEMOVE, WM_MOUSEMOVE, PM_NOREMOVE | PM_QS_INPUT)) {
        return true;
    }
    return PeekMessageW(&pending, m_hWnd, WM_HSCROLL, WM_HSCROLL, PM_NOREMOVE | PM_QS_POSTMESSAGE) &&
           reinterpret_cast<HWND>(pending.lParam) == slider_I && LOWORD(pending.wParam) == TB_THUMBTRACK;
}

void CMainDialog::SendSliderValue(const SSlider& slider_I, int32_t value_I) {
    UiDisplayDelegate* delegate = Delegate();
    if (delegate == nullptr) {
        return;
    }
    SetDlgItemInt(m_hWnd, slider_I.edit, static_cast<UINT>(value_I), FALSE);
    ReportWrite(slider_I.setting == ESetting::Brightness ? delegate->SetBrightness(value_I)
                                                         : delegate->SetContrast(value_I));
}

void CMainDialog::CommitSliderValue(const SSlider& slider_I, int32_t value_I) {
    int32_t& accepted = Accepted(slider_I);
    if (value_I == accepted || mBusy) {
        return;
    }
    mBusy = true;
    SendSliderValue(slider_I, value_I);
    const auto [brightness, contrast] = PictureWith(slider_I, value_I);
    UiDisplayDelegate* delegate = Delegate();
    if (delegate != nullptr &&
        MessageWindows::ConfirmPictureNotTooDark(m_hWnd, *delegate, brightness, contrast, mLanguage)) {
        accepted = value_I;
        UpdateButtons();
    } else {
        SendMessageW(GetDlgItem(slider_I.slider), TBM_SETPOS, TRUE, accepted);
        SendSliderValue(slider_I, accepted);
    }
    mBusy = false;
}

LRESULT CMainDialog::OnHScroll(UINT, WPARAM wParam_I, LPARAM lParam_I, BOOL& handled_O) {
    HWND slider = reinterpret_cast<HWND>(lParam_I);
    const SSlider* controls = SliderOf(GetDlgCtrlID(slider));
    const int code = LOWORD(wParam_I);
    if (controls == nullptr || GetDlgCtrlID(slider) != controls->slider || code > TB_ENDTRACK) {
        handled_O = FALSE;
        return 0;
    }
    const int32_t position = static_cast<int32_t>(SendMessageW(slider, TBM_GETPOS, 0, 0));
    const int32_t carried = static_cast<int16_t>(HIWORD(wParam_I));
    switch (code) {
        case TB_LINEUP:
        case TB_LINEDOWN:
        case TB_PAGEUP:
        case TB_PAGEDOWN: SendSliderValue(*controls, position); break;
        case TB_THUMBTRACK:
            if (NewerPositionWaiting(slider)) {
                SetDlgItemInt(m_hWnd, controls->edit, static_cast<UINT>(carried), FALSE);
            } else {
                SendSliderValue(*controls, carried);
            }
            break;
        case TB_THUMBPOSITION: CommitSliderValue(*controls, carried); break;
        case TB_ENDTRACK: CommitSliderValue(*controls, position); break;
        case TB_TOP:
        case TB_BOTTOM:
            // Home and End are refused: one key would jump a display to full or no light.
            SendMessageW(slider, TBM_SETPOS, TRUE, Accepted(*controls));
            break;
        default: break;
    }
    return 0;
}

void CMainDialog::ApplyTypedValue(int editId_I) {
    UiDisplayDelegate* delegate = Delegate();
    if (delegate == nullptr) {
        return;
    }
    const SSlider* controls = SliderOf(editId_I);
    if (controls == nullptr) {
        VLR_ASSERT_FAIL("Unknown slider");
        return;
    }
    SSettingState res = delegate->GetSetting(controls->setting);
    VLR_ASSERT(res.valid);
    if (!res.valid) {
        return;
    }
    BOOL read = FALSE;
    int32_t value = static_cast<int32_t>(GetDlgItemInt(m_hWnd, editId_I, &read, FALSE));
    if (!read) {
        SetDlgItemInt(m_hWnd, editId_I, static_cast<UINT>(res.value), FALSE);
        return;
    }
    const int32_t clamped = std::max(std::min(value, res.range.maximum), res.range.minimum);
    if (clamped != value) {
        SetDlgItemInt(m_hWnd, editId_I, static_cast<UINT>(clamped), FALSE);
    }
    value = clamped;
    int32_t& accepted = Accepted(*controls);
    SendMessageW(GetDlgItem(controls->slider), TBM_SETPOS, TRUE, value);
    if (value == accepted) {
        // Nothing changed (the focus merely left the edit, or Enter came again): the display
        // already has it, and the question was asked, if at all, when it changed.
        return;
    }
    // The question takes the focus from the edit: its kill-focus must not ask again.
    mBusy = true;
    SendSliderValue(*controls, value);
    const auto [brightness, contrast] = PictureWith(*controls, value);
    if (MessageWindows::ConfirmPictureNotTooDark(m_hWnd, *delegate, brightness, contrast, mLanguage)) {
        accepted = value;
    } else {
        SendMessageW(GetDlgItem(controls->slider), TBM_SETPOS, TRUE, accepted);
        SendSliderValue(*controls, accepted);
    }
    mBusy = false;
    UpdateButtons();
}

LRESULT CMainDialog::OnEditKillFocus(WORD, WORD id_I, HWND, BOOL&) {
    if (!mBusy) {
        ApplyTypedValue(id_I);
    }
    return 0;
}

LRESULT CMainDialog::OnOk(WORD, WORD, HWND, BOOL&) {
    HWND focus = GetFocus();
    for (int edit : {IDC_BRIGHTNESS_EDIT, IDC_CONTRAST_EDIT}) {
        if (focus == GetDlgItem(edit) && !mBusy) {
            ApplyTypedValue(edit);
            SendMessageW(focus, EM_SETSEL, 0, -1);
        }
    }
    return 0;  // Enter never closes the window
}

LRESULT CMainDialog::OnCancel(WORD, WORD, HWND, BOOL&) {
    RECT rect{};
    GetWindowRect(m_hWnd, &rect);
    AppRegistry::WriteLocation({rect.left, rect.top});
    if (UiDisplayDelegate* delegate = Delegate()) {
        delegate->Revert();
    }
    if (mAdvancedDialog) {
        mAdvancedDialog->DestroyWindow();
    }
    UnregisterHotKey(m_hWnd, kHotKeyId);
    mOutcome = EOutcome::Closed;
    EndDialog(1);
    return 0;
}

LRESULT CMainDialog::OnDisplayChanged(WORD, WORD, HWND, BOOL&) {
    const LRESULT selection = SendDlgItemMessageW(m_hWnd, IDC_DISPLAY_LIST, CB_GETCURSEL, 0, 0);
    VLR_ASSERT(selection >= 0 && static_cast<size_t>(selection) < mDisplayIndexes.size());
    if (selection < 0 || static_cast<size_t>(selection) >= mDisplayIndexes.size()) {
        return 0;
    }
    if (mAdvancedDialog) {
        mAdvancedDialog->LeaveDisplay();  // what it still owes the display being left
    }
    mSelectedDisplay = static_cast<size_t>(selection);
    const std::vector<std::wstring> identities = DisplayIdentities();
    mSelectedIdentity = mSelectedDisplay < identities.size() ? identities[mSelectedDisplay] : std::wstring();
    HoldSelectedDisplay();
    // The user chose another display: the one missing is no longer looked for.
    KillTimer(m_hWnd, kLookAgainTimer);
    mLookAgainLeft = 0;
    ClearCombos();  // another display may offer other choices
    InitControls();
    if (mAdvancedDialog && mAdvancedDialog->IsShown()) {
        // The page always shows the selected display: its values, its rows, its firmware.
        mAdvancedDialog->Open(m_hWnd);
    }
    return 0;
}

LRESULT CMainDialog::OnChoiceChanged(WORD, WORD id_I, HWND, BOOL&) {
    UiDisplayDelegate* delegate = Delegate();
    int32_t value = 0;
    if (!SelectedComboValue(m_hWnd, id_I, mValues[id_I], value) || delegate == nullptr) {
        return 0;
    }
    const std::optional<ESetting> setting = SettingOfList(id_I);
    if (!setting) {
        VLR_ASSERT_FAIL("a list of no setting");
        return 0;
    }
    ReportWrite(delegate->SetSetting(*setting, value));
    if (*setting == ESetting::Gamma) {
        UpdateButtons();
    } else {
        InitControls();
    }
    return 0;
}

LRESULT CMainDialog::OnCustomColor(WORD, WORD, HWND, BOOL&) {
    CColorSettingsDialog dialog(*this, mLanguage);
    if (dialog.DoModal(m_hWnd) == IDC_CUSTOM_COLOR_OK) {
        ShowCustomColorText();
    }
    UpdateButtons();
    return 0;
}

LRESULT CMainDialog::OnResetColor(WORD, WORD, HWND, BOOL&) {
    if (!RunLongOperation(&CMainDialog::ResetColorThread,
                          "(LPTHREAD_START_ROUTINE)CMainDialog::ResetColorThread",
                          &CMainDialog::ResetColorConfigThread,
                          "(LPTHREAD_START_ROUTINE)CMainDialog::ResetColorConfigThread")) {
        return 0;
    }
    ShowCustomColorText();
    UpdateButtons();
    return 0;
}

LRESULT CMainDialog::OnSave(WORD, WORD, HWND, BOOL&) {
    UiDisplayDelegate* delegate = Delegate();
    if (delegate == nullptr) {
        return 0;
    }
    if (!mIgnorePowerWarning) {
        const std::vector<uint32_t> kinds = delegate->PowerIncreasingChanges();
        if (!kinds.empty()) {
            const INT_PTR answer = mPowerWarning->Ask(m_hWnd, kinds, delegate->IncreasesPowerUse());
            if (mPowerWarning->DoNotShowAgain()) {
                AppRegistry::WriteIgnorePowerWarning();
                mIgnorePowerWarning = true;
            }
            if (answer != IDC_POWER_YES) {
                return 0;  // nothing saved; the changes stay on the display unsaved
            }
        }
    }
    ReportWrite(delegate->Save());
    UpdateButtons();
    return 0;
}

LRESULT CMainDialog::OnRevert(WORD, WORD, HWND, BOOL&) {
    if (UiDisplayDelegate* delegate = Delegate()) {
        ReportWrite(delegate->Revert());
    }
    InitControls();
    if (mAdvancedDialog && mAdvancedDialog->IsShown()) {
        mAdvancedDialog->Refresh();
    }
    return 0;
}

LRESULT CMainDialog::OnAdvanced(WORD, WORD, HWND, BOOL&) {
    mAdvancedDialog->Open(m_hWnd);
    return 0;
}

void CMainDialog::SetHelpOpener(HelpOpener opener_I) {
    gHelpOpener.store(opener_I != nullptr ? opener_I : &OpenInBrowser);
}

std::wstring CMainDialog::HelpAddress() const {
    UiDisplayDelegate* delegate = Delegate();
    const std::wstring page = Widen(delegate != nullptr ? delegate->HelpPageName() : "index");
    std::wstring base = AppRegistry::ReadHelpBaseAddress();
    if (!base.empty()) {
        while (!base.empty() && base.back() == L'/') {
            base.pop_back();
        }
        return base + L"/UserHelp/" + Widen(CLanguageProvider().CodeOf(mLanguage)) + L"/TOC/" + page +
               L".html";
    }
    const std::wstring folder = ProgramFolder() + L"Help\\";
    const std::wstring own = folder + page + L".html";
    // A display the shipped help has no page for gets the index.
    return GetFileAttributesW(own.c_str()) != INVALID_FILE_ATTRIBUTES ? own : folder + L"index.html";
}

LRESULT CMainDialog::OnHelp(WORD, WORD, HWND, BOOL&) {
    const std::wstring address = HelpAddress();
    const bool local = address.find(L"://") == std::wstring::npos;
    if ((local && GetFileAttributesW(address.c_str()) == INVALID_FILE_ATTRIBUTES) ||
        !gHelpOpener.load()(m_hWnd, address)) {
        DLog("CMainDialog: the help could not be opened: %ls\n", address.c_str());
        MessageWindows::ShowHelpNotOpened(m_hWnd, address, mLanguage);
    }
    return 0;
}

// ---- Factory reset by hot key ----

LRESULT CMainDialog::OnHotKey(UINT, WPARAM wParam_I, LPARAM, BOOL&) {
    if (static_cast<int>(wParam_I) != kHotKeyId) {
        return 0;
    }
    // Registered system-wide as the hot key always was, but it acts only for the user of this
    // program: while one of its own windows is in front, no question or other modal window of
    // ours is open (they disable the main dialog), nothing else runs, and not as AltGr+R
    // (right Alt), which types a character on many keyboard layouts.
    HWND front = GetForegroundWindow();
    const bool ours = front == m_hWnd || (mAdvancedDialog && front == mAdvancedDialog->m_hWnd);
    if (!ours || !IsWindowEnabled(m_hWnd) || mOperationRunning || GetKeyState(VK_RMENU) < 0) {
        DLog("CMainDialog: hot key ignored (%s)\n", !ours                      ? "another window is in front"
                                                    : mOperationRunning        ? "an operation runs"
                                                    : !IsWindowEnabled(m_hWnd) ? "a window of ours is open"
                                                                               : "AltGr");
        return 0;
    }
    // A service shortcut: deliberately without confirmation.
    FactoryReset();
    return 0;
}

LRESULT CMainDialog::OnSearchAgain(UINT, WPARAM, LPARAM, BOOL&) {
    if (mOperationRunning) {
        mSearchAgainPending = true;  // after the running operation
        return 0;
    }
    if (mBusy || !mDisplayConfigIF) {
        return 0;
    }
    mAdvancedWasOpen = mAdvancedDialog && mAdvancedDialog->IsShown();
    RunLongOperation(&CMainDialog::DisplayConfigThread,
                     "(LPTHREAD_START_ROUTINE)CMainDialog::DisplayConfigThread", nullptr, nullptr);
    Rebuild();
    return 0;
}

void CMainDialog::FactoryReset() {
    if (mOperationRunning) {
        DLog("CMainDialog: factory reset not started, %s is running\n", mThread.Name().c_str());
        return;
    }
    mAdvancedWasOpen = mAdvancedDialog && mAdvancedDialog->IsShown();
    if (mAdvancedWasOpen) {
        ShowWindow(mAdvancedDialog->m_hWnd, SW_HIDE);
    }
    ShowWindow(m_hWnd, SW_HIDE);
    RunLongOperation(
        &CMainDialog::FactoryResetThread, "(LPTHREAD_START_ROUTINE)CMainDialog::FactoryResetThread",
        &CMainDialog::DisplayConfigThread, "(LPTHREAD_START_ROUTINE)CMainDialog::DisplayConfigThread");
    Rebuild();
}

void CMainDialog::LookAgainForTheChosenDisplay() {
    const std::vector<std::wstring> identities = DisplayIdentities();
    const bool missing =
        std::find(identities.begin(), identities.end(), mSelectedIdentity) == identities.end();
    if (!missing || mLookAgainLeft == 0) {
        KillTimer(m_hWnd, kLookAgainTimer);
        mLookAgainLeft = 0;
        return;
    }
    --mLookAgainLeft;
    DLog("CMainDialog: the chosen display did not answer; looking again in %u ms\n", kLookAgainPauseMs);
    SetTimer(m_hWnd, kLookAgainTimer, kLookAgainPauseMs, nullptr);
}

void CMainDialog::Rebuild() {
    if (mDisplayConfigIF->Displays().empty()) {
        mOutcome = EOutcome::NoDevice;
        EndDialog(0);
        return;
    }
    ClearCombos();
    FillDisplayList();
    LookAgainForTheChosenDisplay();
    InitControls();
    if (mAdvancedWasOpen) {
        mAdvancedDialog->Open(m_hWnd);
    }
    ShowWindow(m_hWnd, SW_SHOW);
    SetFocus(GetDlgItem(IDC_DISPLAY_LIST));
}
