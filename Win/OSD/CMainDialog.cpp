#include "CMainDialog.h"

#include <commctrl.h>
#include <dbt.h>

#include <algorithm>
#include <atomic>

#include "Assert.h"
#include "CColorSettingsDialog.h"
#include "Clock.h"
#include "DebugLog.h"
#include "DisplayLock.h"
#include "ErrorAdvice.h"
#include "HelpPages.h"
#include "LanguageProvider.h"
#include "MainDialogRows.h"
#include "MessageWindows.h"
#include "ScopedTimer.h"
#include "SettingTable.h"
#include "WinStrings.h"

namespace {

// How long a search waits for the keeper to finish, and the chosen display for its restore.
constexpr std::chrono::milliseconds kEveryDisplayWait{10000};
constexpr std::chrono::milliseconds kSelectedDisplayWait{3000};
constexpr int kHotKeyId = 0;
constexpr int kToolTipWidth = 400;
constexpr int kToolTipDelayMs = 1000;

constexpr UINT kProductTitle = 2000;
constexpr UINT kRgbPrefix = 2026;

}  // namespace

CMainDialog::CMainDialog(const SStartupOptions& options_I, LANGID language_I)
    : CDialogBase(IDD_MAIN),
      mOptions(options_I),
      mLanguage(language_I),
      mOperation(language_I),
      mSliders(*this, language_I, [this](bool ok_I) { return ReportWrite(ok_I); }),
      mRows(MainDialogRows::Layout()) {}

CMainDialog::~CMainDialog() {
    mOperation.Abandon();
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
        discovery->Configure(SearchOptionsFrom(self->mOptions, self->mLanguage));
        discovery->SetProgressCallback(
            [self](size_t ready_I, size_t found_I) { self->mOperation.NoteProgress(ready_I, found_I); });
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
        while (self->mDisplayConfigIF->Displays().empty() &&
               self->mSearchSchedule.LookAgainWhileNoneAnswers()) {
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
    if (mOperation.Running()) {
        // A double click or a second hot key while one runs: one operation at a time.
        DLog("CMainDialog: %s not started, %s is running\n", firstName_I, mOperation.Name().c_str());
        return false;
    }
    std::vector<CLongOperation::SStep> steps = {{first_I, firstName_I}};
    if (second_I != nullptr) {
        steps.push_back({second_I, secondName_I});
    }
    HWND page = mAdvancedDialog && mAdvancedDialog->IsWindow() ? mAdvancedDialog->m_hWnd : nullptr;
    mOperation.Run(m_hWnd, page, steps, this, [this, &steps](size_t step_I) {
        mSearching = steps[step_I].procedure == &CMainDialog::DisplayConfigThread;
        if (mSearching && step_I == 0) {
            mHeldDisplay.reset();  // the search holds every display
        }
    });
    mSearching = false;
    if (mSearchAgainPending) {
        mSearchAgainPending = false;
        PostMessageW(m_hWnd, kSearchAgainMessage, 0, 0);
    }
    return true;
}

// ---- Start ----

LRESULT CMainDialog::OnInitDialog(UINT, WPARAM, LPARAM, BOOL&) {
    CScopedTimer timer("CMainDialog::OnInitDialog");
    MainDialogRows::CreateMadeRows(m_hWnd);
    // Discovery starts before any window is shown.
    mOperation.Start(
        {&CMainDialog::DisplayConfigThread, "(LPTHREAD_START_ROUTINE)CMainDialog::DisplayConfigThread"},
        this);

    const std::optional<SWindowPosition> remembered = AppRegistry::ReadLocation();
    mPlacement.Remember(remembered);
    if (remembered) {
        DLog("Last user loc: %i,%i\n", remembered->x, remembered->y);
    } else {
        DLog("Using default app position\n");
    }

    const std::wstring title = MessageWindows::Text(kProductTitle, mLanguage);
    if (HWND running = FindWindowW(nullptr, title.c_str()); running != nullptr && running != m_hWnd) {
        SetForegroundWindow(running);
        mOutcome = EOutcome::AlreadyRunning;
        mOperation.Abandon();
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
    mOperation.Wait(m_hWnd);

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
    static const std::vector<MessageWindows::SCaption> captions = MainDialogRows::Captions();
    MessageWindows::SetCaptions(m_hWnd, captions.data(), captions.size(), mLanguage);
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
    for (const MainDialogRows::SChoiceRow& row : MainDialogRows::Choices()) {
        SendDlgItemMessageW(m_hWnd, row.list, CB_RESETCONTENT, 0, 0);
        mValues.erase(row.list);
    }
}

// ---- Controls ----

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
    mSliders.Init();

    const SSettingState mode = delegate->GetSetting(ESetting::ColorSettingMode);
    for (const MainDialogRows::SChoiceRow& row : MainDialogRows::Choices()) {
        InitChoice(row.setting, row.label, row.list,
                   row.onlyInColorMode == 0 || mode.value == row.onlyInColorMode);
    }
    const bool custom = mode.supported && mode.value == eColorModeCustom;
    ShowControl(GetDlgItem(IDC_CUSTOM_COLOR_LABEL), custom);
    ShowControl(GetDlgItem(IDC_CUSTOM_COLOR_BUTTON), custom);
    if (custom) {
        ShowCustomColorText();
    }
    ShowControl(GetDlgItem(IDC_COLOR_GROUP), mode.supported);
    ShowControl(GetDlgItem(IDC_RESET_COLOR_BUTTON), mode.supported);
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
    mPlacement.Place(m_hWnd);
    if (mAdvancedDialog) {
        RECT rect{};
        GetWindowRect(m_hWnd, &rect);
        mAdvancedDialog->Follow(rect);
    }
}

// ---- Messages ----

LRESULT CMainDialog::OnTimer(UINT, WPARAM wParam_I, LPARAM, BOOL&) {
    // CLongOperation::kPollTimer only keeps the local loop awake.
    mSearchSchedule.OnTimer(m_hWnd, wParam_I);
    return 0;
}

LRESULT CMainDialog::OnSystemChange(UINT message_I, WPARAM wParam_I, LPARAM lParam_I, BOOL&) {
    if (IsDeskChange(message_I, wParam_I, lParam_I) && mDisplayConfigIF) {
        mSearchSchedule.DeskChanged(m_hWnd);
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
    mSearchSchedule.Stop(m_hWnd);
    mDeskChanges.Unregister();
    mHeldDisplay.reset();
    handled_O = FALSE;
    return 0;
}

LRESULT CMainDialog::OnMove(UINT, WPARAM, LPARAM, BOOL&) {
    const RECT rect = mPlacement.Moved(m_hWnd);
    if (mAdvancedDialog) {
        mAdvancedDialog->Follow(rect);
    }
    return 0;
}

LRESULT CMainDialog::OnVScroll(UINT, WPARAM wParam_I, LPARAM, BOOL&) {
    mPlacement.Scroll(m_hWnd, wParam_I);
    return 0;
}

LRESULT CMainDialog::OnHScroll(UINT, WPARAM wParam_I, LPARAM lParam_I, BOOL& handled_O) {
    handled_O = mSliders.OnScroll(wParam_I, lParam_I) ? TRUE : FALSE;
    return 0;
}

LRESULT CMainDialog::OnEditKillFocus(WORD, WORD id_I, HWND, BOOL&) {
    if (!mSliders.Busy()) {
        mSliders.ApplyTypedValue(id_I);
    }
    return 0;
}

LRESULT CMainDialog::OnOk(WORD, WORD, HWND, BOOL&) {
    HWND focus = GetFocus();
    for (int edit : {IDC_BRIGHTNESS_EDIT, IDC_CONTRAST_EDIT}) {
        if (focus == GetDlgItem(edit) && !mSliders.Busy()) {
            mSliders.ApplyTypedValue(edit);
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
    mSearchSchedule.StopLookingAgain(m_hWnd);
    ClearCombos();  // another display may offer other choices
    InitControls();
    if (mAdvancedDialog && mAdvancedDialog->IsShown()) {
        // The page always shows the selected display: its values, its rows, its firmware.
        mAdvancedDialog->Open(m_hWnd);
    }
    return 0;
}

LRESULT CMainDialog::OnChoiceChanged(WORD, WORD id_I, HWND, BOOL& handled_O) {
    const MainDialogRows::SChoiceRow* row = MainDialogRows::ChoiceOfList(id_I);
    if (row == nullptr) {
        handled_O = FALSE;  // not a setting's drop-down
        return 0;
    }
    UiDisplayDelegate* delegate = Delegate();
    int32_t value = 0;
    if (!SelectedComboValue(m_hWnd, id_I, mValues[id_I], value) || delegate == nullptr) {
        return 0;
    }
    ReportWrite(delegate->SetSetting(row->setting, value));
    if (row->changesOthers) {
        InitControls();
    } else {
        UpdateButtons();
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

std::wstring CMainDialog::HelpAddress() const {
    UiDisplayDelegate* delegate = Delegate();
    return HelpPages::Address(delegate != nullptr ? delegate->HelpPageName() : "index", mLanguage);
}

LRESULT CMainDialog::OnHelp(WORD, WORD, HWND, BOOL&) {
    HelpPages::Open(m_hWnd, HelpAddress(), mLanguage);
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
    if (!ours || !IsWindowEnabled(m_hWnd) || mOperation.Running() || GetKeyState(VK_RMENU) < 0) {
        DLog("CMainDialog: hot key ignored (%s)\n", !ours                      ? "another window is in front"
                                                    : mOperation.Running()     ? "an operation runs"
                                                    : !IsWindowEnabled(m_hWnd) ? "a window of ours is open"
                                                                               : "AltGr");
        return 0;
    }
    // A service shortcut: deliberately without confirmation.
    FactoryReset();
    return 0;
}

LRESULT CMainDialog::OnSearchAgain(UINT, WPARAM, LPARAM, BOOL&) {
    if (mOperation.Running()) {
        mSearchAgainPending = true;  // after the running operation
        return 0;
    }
    if (mSliders.Busy() || !mDisplayConfigIF) {
        return 0;
    }
    mAdvancedWasOpen = mAdvancedDialog && mAdvancedDialog->IsShown();
    RunLongOperation(&CMainDialog::DisplayConfigThread,
                     "(LPTHREAD_START_ROUTINE)CMainDialog::DisplayConfigThread", nullptr, nullptr);
    Rebuild();
    return 0;
}

void CMainDialog::FactoryReset() {
    if (mOperation.Running()) {
        DLog("CMainDialog: factory reset not started, %s is running\n", mOperation.Name().c_str());
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

void CMainDialog::Rebuild() {
    if (mDisplayConfigIF->Displays().empty()) {
        mOutcome = EOutcome::NoDevice;
        EndDialog(0);
        return;
    }
    ClearCombos();
    FillDisplayList();
    const std::vector<std::wstring> identities = DisplayIdentities();
    mSearchSchedule.AfterSearch(
        m_hWnd, std::find(identities.begin(), identities.end(), mSelectedIdentity) != identities.end());
    InitControls();
    if (mAdvancedWasOpen) {
        mAdvancedDialog->Open(m_hWnd);
    }
    ShowWindow(m_hWnd, SW_SHOW);
    SetFocus(GetDlgItem(IDC_DISPLAY_LIST));
}
