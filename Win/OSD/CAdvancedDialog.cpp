#include "CAdvancedDialog.h"

#include <commctrl.h>

#include <algorithm>

#include "AppRegistry.h"
#include "Assert.h"
#include "DebugLog.h"
#include "KeeperProcess.h"
#include "MessageWindows.h"
#include "SettingRowControls.h"
#include "SettingTable.h"
#include "SystemLibrary.h"
#include "UiDisplayDelegate.h"
#include "WinStrings.h"
#include "codes.h"

namespace {

constexpr UINT_PTR kSharpnessTimer = 0;
constexpr UINT kSharpnessPeriodMs = 1000;
constexpr UINT kOff = 2215;
constexpr int32_t kNoChoice = -1;
constexpr UINT kOn = 2214;

using MessageWindows::SCaption;

// Besides the settings' labels (from the settings table): labels pass their access key on to
// the control after them; the Off/On pairs are reached through their label, OK and Cancel
// through Enter and Esc.
constexpr SCaption kCaptions[] = {
    {IDC_LCD_CONDITIONING_START, 2213, true},
    {IDC_FACTORY_RESET, 2212, true},
    {IDC_KEEPER_AT_LOGON, 2963, true},
    {IDC_PROGRAM_VERSION_LABEL, 2210},
    {IDC_FIRMWARE_VERSION_LABEL, 2211},
    {IDC_ADVANCED_OK, 2090},
    {IDC_ADVANCED_CANCEL, 2091},
    {IDC_LCD_CONDITIONING_STATE, 2230},
};

// The page is modeless inside the main dialog's modal loop, which hands keys to the main
// dialog alone. Every dialog loop offers each message to the thread's message filter first
// (MSGF_DIALOGBOX): there the page's keys get the page's Tab, Enter, Esc and arrows.
thread_local HWND gKeyboardPage = nullptr;
thread_local HHOOK gPageKeysHook = nullptr;
thread_local bool gInPageKeys = false;

LRESULT CALLBACK PageKeys(int code_I, WPARAM wParam_I, LPARAM lParam_I) {
    auto* message = reinterpret_cast<MSG*>(lParam_I);
    if (code_I >= 0 && !gInPageKeys && gKeyboardPage != nullptr && message != nullptr &&
        message->message >= WM_KEYFIRST && message->message <= WM_KEYLAST &&
        (message->hwnd == gKeyboardPage || IsChild(gKeyboardPage, message->hwnd))) {
        gInPageKeys = true;  // IsDialogMessage offers the message to this filter again
        const BOOL handled = IsDialogMessageW(gKeyboardPage, message);
        gInPageKeys = false;
        if (handled) {
            return TRUE;
        }
    }
    return CallNextHookEx(gPageKeysHook, code_I, wParam_I, lParam_I);
}

}  // namespace

namespace {

// Ids for the rows that leave theirs 0, past every id of the templates.
constexpr int kFirstMadeId = 2000;

std::vector<CAdvancedDialog::SSettingControls> WithIds(
    std::vector<CAdvancedDialog::SSettingControls> rows_I) {
    for (size_t index = 0; index < rows_I.size(); ++index) {
        MakeIds(rows_I[index], index, kFirstMadeId);
    }
    return rows_I;
}

}  // namespace

// The layout's rows: one per setting, then the versions and the buttons.
std::vector<CRowLayout::SRow> PageRows() {
    std::vector<CRowLayout::SRow> rows;
    for (const CAdvancedDialog::SSettingControls& controls : CAdvancedDialog::SettingControls()) {
        CRowLayout::SRow row{{controls.label, controls.control}};
        for (int extra : {controls.on, controls.state}) {
            if (extra != 0) {
                row.ids.push_back(extra);
            }
        }
        rows.push_back(row);
    }
    rows.push_back({{IDC_PROGRAM_VERSION_LABEL, IDC_PROGRAM_VERSION}});
    rows.push_back({{IDC_FIRMWARE_VERSION_LABEL, IDC_FIRMWARE_VERSION}});
    rows.push_back({{IDC_KEEPER_AT_LOGON}});
    rows.push_back({{IDC_FACTORY_RESET, IDC_ADVANCED_OK, IDC_ADVANCED_CANCEL}});
    return rows;
}

CAdvancedDialog::CAdvancedDialog(IDialogHost& host_I, LANGID language_I)
    : CDialogBase(IDD_ADVANCED), mHost(host_I), mLanguage(language_I), mRows(PageRows()) {}

const std::vector<CAdvancedDialog::SSettingControls>& CAdvancedDialog::SettingControls() {
    // Cancel puts back what it changed of the settings marked so; fan speed, auto power down
    // and LCD conditioning stay as set.
    // A row may leave its ids 0: its controls get ids of their own (the tests name the
    // older rows' ids).
    static const std::vector<SSettingControls> rows = WithIds({
        {{ESetting::AspectRatio, IDC_ASPECT_LABEL, IDC_ASPECT_LIST, 0, 0}, true},
        {{ESetting::PowerLedBrightness, IDC_LED_LABEL, IDC_LED_LIST, 0, 0}, true},
        {{ESetting::Sharpness, IDC_SHARPNESS_LABEL, IDC_SHARPNESS_SLIDER, 0, 0}, true},
        {{ESetting::UniformityCompensation, IDC_UNIFORMITY_LABEL, IDC_UNIFORMITY_LIST, 0, 0}, true},
        {{ESetting::EnergySmart, IDC_ENERGY_SMART_LABEL, IDC_ENERGY_SMART_OFF, IDC_ENERGY_SMART_ON, 0}, true},
        {{ESetting::DynamicContrast, IDC_DYNAMIC_CONTRAST_LABEL, IDC_DYNAMIC_CONTRAST_OFF,
          IDC_DYNAMIC_CONTRAST_ON, 0},
         true},
        {{ESetting::AutoPowerDown, IDC_AUTO_POWER_DOWN_LABEL, IDC_AUTO_POWER_DOWN_OFF, IDC_AUTO_POWER_DOWN_ON,
          0},
         false},
        {{ESetting::FanSpeed, IDC_FAN_LABEL, IDC_FAN_LIST, 0, 0}, false},
        {{ESetting::LcdConditioning, IDC_LCD_CONDITIONING_LABEL, IDC_LCD_CONDITIONING_START, 0,
          IDC_LCD_CONDITIONING_STATE},
         false},
        {{ESetting::BatteryMode, IDC_BATTERY_LABEL, IDC_BATTERY_LIST, 0, 0}, true},
    });
    return rows;
}

std::optional<ESetting> CAdvancedDialog::SettingOfControl(int controlId_I, bool& on_O) {
    on_O = false;
    for (const SSettingControls& controls : SettingControls()) {
        if (controlId_I != 0 && (controlId_I == controls.control || controlId_I == controls.on)) {
            on_O = controlId_I == controls.on;
            return controls.setting;
        }
    }
    return std::nullopt;
}

UiDisplayDelegate* CAdvancedDialog::Delegate() const {
    return mHost.Delegate();
}

std::wstring CAdvancedDialog::ProgramVersion() {
    // version.dll is no known DLL: imported, it would be looked for beside a downloaded copy of
    // the program first. It is loaded from the system directory only, when the page shows.
    static const HMODULE version = LoadTrustedLibrary(L"version.dll", ELibraryLocation::SystemOnly);
    using SizeFunction = DWORD(WINAPI*)(LPCWSTR, LPDWORD);
    using InfoFunction = BOOL(WINAPI*)(LPCWSTR, DWORD, DWORD, LPVOID);
    using QueryFunction = BOOL(WINAPI*)(LPCVOID, LPCWSTR, LPVOID*, PUINT);
    const auto infoSize = LibraryFunction<SizeFunction>(version, "GetFileVersionInfoSizeW");
    const auto info = LibraryFunction<InfoFunction>(version, "GetFileVersionInfoW");
    const auto query = LibraryFunction<QueryFunction>(version, "VerQueryValueW");
    if (infoSize == nullptr || info == nullptr || query == nullptr) {
        return {};
    }
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    DWORD ignored = 0;
    const DWORD size = infoSize(path, &ignored);
    if (size == 0) {
        return {};
    }
    std::vector<BYTE> data(size);
    wchar_t* text = nullptr;
    UINT length = 0;
    if (!info(path, 0, size, data.data()) ||
        !query(data.data(), L"\\StringFileInfo\\040904B0\\ProductVersion", reinterpret_cast<void**>(&text),
               &length) ||
        text == nullptr) {
        return {};
    }
    return std::wstring(text, wcsnlen(text, length));
}

bool CAdvancedDialog::ReportWrite(bool ok_I) {
    if (!ok_I) {
        // A failed write here ends the program: its settings may leave the display half-set.
        mHost.NoteFatalFailure();
        MessageWindows::ShowCommunicationError(mHost.Window(), Delegate(), true, mLanguage);
    }
    return ok_I;
}

void CAdvancedDialog::Open(HWND owner_I) {
    if (!IsWindow()) {
        Create(owner_I);
    }
    mConditioningStarted = false;
    CheckDlgButton(m_hWnd, IDC_KEEPER_AT_LOGON,
                   AppRegistry::StartsKeeperAtLogOn() ? BST_CHECKED : BST_UNCHECKED);
    if (UiDisplayDelegate* delegate = Delegate()) {
        mOpeningValues.clear();
        for (const SSettingControls& controls : SettingControls()) {
            const SSettingState state = delegate->GetSetting(controls.setting);
            if (controls.restoredOnCancel && state.supported && state.valid) {
                mOpeningValues[controls.setting] = state.value;
            }
        }
    }
    Refresh();
    RECT mainRect{};
    GetWindowRect(mHost.Window(), &mainRect);
    Follow(mainRect);
    ShowWindow(m_hWnd, SW_SHOW);
}

void CAdvancedDialog::Follow(const RECT& mainRect_I) {
    if (!IsWindow()) {
        return;
    }
    // Beside the main dialog, never over it, and inside the work area of its monitor.
    RECT own{};
    GetWindowRect(m_hWnd, &own);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromRect(&mainRect_I, MONITOR_DEFAULTTOPRIMARY), &monitor);
    const POINT at =
        PlaceBeside(mainRect_I, SIZE{own.right - own.left, own.bottom - own.top}, monitor.rcWork);
    SetWindowPos(m_hWnd, HWND_TOPMOST, at.x, at.y, 0, 0, SWP_NOSIZE | SWP_NOACTIVATE);
}

LRESULT CAdvancedDialog::OnInitDialog(UINT, WPARAM, LPARAM, BOOL&) {
    HWND toolTip = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP,
                                   CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, m_hWnd,
                                   nullptr, GetModuleHandleW(nullptr), nullptr);
    if (toolTip != nullptr) {
        SendMessageW(toolTip, TTM_ACTIVATE, TRUE, 0);
    }
    SetWindowTextW(m_hWnd, MessageWindows::Text(2000, mLanguage).c_str());
    CreateSettingRows(m_hWnd, std::vector<SSettingRowIds>(SettingControls().begin(), SettingControls().end()),
                      SRowGeometry{});
    // The settings' labels first (the access keys go to them first), in the page's order.
    std::vector<SCaption> captions;
    for (const SSettingControls& controls : SettingControls()) {
        const ESettingKind kind = SettingRowOf(controls.setting).kind;
        // LCD conditioning's key is its Start button's.
        captions.push_back(
            {controls.label, SettingRowOf(controls.setting).captionId, kind != ESettingKind::Action});
    }
    captions.insert(captions.end(), std::begin(kCaptions), std::end(kCaptions));
    for (const SSettingControls& controls : SettingControls()) {
        if (SettingRowOf(controls.setting).kind == ESettingKind::OnOff) {
            captions.push_back({controls.control, kOff});
            captions.push_back({controls.on, kOn});
        }
    }
    MessageWindows::SetCaptions(m_hWnd, captions.data(), captions.size(), mLanguage);
    gKeyboardPage = m_hWnd;
    if (gPageKeysHook == nullptr) {
        gPageKeysHook = SetWindowsHookExW(WH_MSGFILTER, &PageKeys, nullptr, GetCurrentThreadId());
    }
    return TRUE;
}

LRESULT CAdvancedDialog::OnDestroy(UINT, WPARAM, LPARAM, BOOL& handled_O) {
    if (gKeyboardPage == m_hWnd) {
        gKeyboardPage = nullptr;
        if (gPageKeysHook != nullptr) {
            UnhookWindowsHookEx(gPageKeysHook);
            gPageKeysHook = nullptr;
        }
    }
    handled_O = FALSE;
    return 0;
}

void CAdvancedDialog::FillChoice(ESetting setting_I, int labelId_I, int comboId_I) {
    UiDisplayDelegate* delegate = Delegate();
    const SSettingState state = delegate->GetSetting(setting_I);
    const bool shown = state.supported && !state.entries.empty();
    ShowControl(GetDlgItem(labelId_I), shown);
    ShowControl(GetDlgItem(comboId_I), shown);
    EnableWindow(GetDlgItem(comboId_I), shown && state.writable);
    HWND combo = GetDlgItem(comboId_I);
    std::vector<int32_t>& values = mValues[comboId_I];
    FillChoiceCombo(combo, shown ? state.entries : std::vector<SEntry>{}, mLanguage, values);
    // The delegate's "none of the choices" (battery firmware reports 0 when on mains) selects
    // nothing; any other value missing from the list is a fault.
    if (shown && !SelectChoice(combo, values, state.value) && state.value != kNoChoice) {
        VLR_ASSERT_FAIL("\"Oops - bad combo value\"");
    }
}

void CAdvancedDialog::FillOffOn(ESetting setting_I, int labelId_I, int offId_I, int onId_I) {
    const SSettingState state = Delegate()->GetSetting(setting_I);
    for (int id : {labelId_I, offId_I, onId_I}) {
        ShowControl(GetDlgItem(id), state.supported);
        EnableWindow(GetDlgItem(id), state.supported && state.writable);
    }
    CheckDlgButton(m_hWnd, offId_I, state.supported && state.value == 0 ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(m_hWnd, onId_I, state.supported && state.value == 1 ? BST_CHECKED : BST_UNCHECKED);
}

void CAdvancedDialog::Refresh() {
    UiDisplayDelegate* delegate = Delegate();
    if (!IsWindow() || delegate == nullptr) {
        return;
    }
    for (const SSettingControls& controls : SettingControls()) {
        switch (SettingRowOf(controls.setting).kind) {
            case ESettingKind::Choice: FillChoice(controls.setting, controls.label, controls.control); break;
            case ESettingKind::OnOff:
                FillOffOn(controls.setting, controls.label, controls.control, controls.on);
                break;
            default: break;  // the sharpness slider and LCD conditioning, below
        }
    }

    const SSettingState sharpness = delegate->GetSetting(ESetting::Sharpness);
    ShowControl(GetDlgItem(IDC_SHARPNESS_LABEL), sharpness.supported);
    ShowControl(GetDlgItem(IDC_SHARPNESS_SLIDER), sharpness.supported);
    if (sharpness.supported) {
        HWND slider = GetDlgItem(IDC_SHARPNESS_SLIDER);
        SendMessageW(slider, TBM_SETRANGE, TRUE,
                     MAKELPARAM(sharpness.range.minimum, sharpness.range.maximum));
        SendMessageW(slider, TBM_SETPOS, TRUE, sharpness.value);
    }
    const bool lcd = delegate->GetSetting(ESetting::LcdConditioning).supported;
    ShowControl(GetDlgItem(IDC_LCD_CONDITIONING_LABEL), lcd);
    ShowControl(GetDlgItem(IDC_LCD_CONDITIONING_START), lcd);
    // The display does not report the run's end: it shows as running while the page is open.
    EnableWindow(GetDlgItem(IDC_LCD_CONDITIONING_START), lcd && !mConditioningStarted);
    ShowControl(GetDlgItem(IDC_LCD_CONDITIONING_STATE), lcd && mConditioningStarted);

    SetDlgItemTextW(m_hWnd, IDC_PROGRAM_VERSION, ProgramVersion().c_str());
    SetDlgItemTextW(m_hWnd, IDC_FIRMWARE_VERSION, Widen(delegate->FirmwareVersionText()).c_str());
    mRows.Apply(m_hWnd);  // no gaps where the display offers nothing
}

LRESULT CAdvancedDialog::OnShowWindow(UINT, WPARAM wParam_I, LPARAM, BOOL&) {
    if (wParam_I != FALSE) {
        SetTimer(m_hWnd, kSharpnessTimer, kSharpnessPeriodMs, nullptr);
        DLog("OnShowWindow - timer started...\n");
    } else {
        KillTimer(m_hWnd, kSharpnessTimer);
        DLog("OnShowWindow - timer stopped\n");
    }
    return 0;
}

bool CAdvancedDialog::WritePendingSharpness() {
    if (!mSharpnessChanged) {
        return true;
    }
    mSharpnessChanged = false;
    UiDisplayDelegate* delegate = Delegate();
    const auto position =
        static_cast<int32_t>(SendDlgItemMessageW(m_hWnd, IDC_SHARPNESS_SLIDER, TBM_GETPOS, 0, 0));
    if (delegate == nullptr) {
        return true;
    }
    const bool ok = ReportWrite(delegate->SetSharpness(position));
    mHost.UpdateButtons();
    return ok;
}

void CAdvancedDialog::LeaveDisplay() {
    if (IsWindow()) {
        WritePendingSharpness();
    }
}

LRESULT CAdvancedDialog::OnTimer(UINT, WPARAM wParam_I, LPARAM, BOOL&) {
    // While a long operation uses the display, the write waits for a later tick.
    if (wParam_I == kSharpnessTimer && !mHost.OperationRunning()) {
        WritePendingSharpness();
    }
    return 0;
}

LRESULT CAdvancedDialog::OnHScroll(UINT, WPARAM, LPARAM lParam_I, BOOL& handled_O) {
    if (reinterpret_cast<HWND>(lParam_I) != GetDlgItem(IDC_SHARPNESS_SLIDER)) {
        handled_O = FALSE;
        return 0;
    }
    // Written at the next tick of the one-second timer: at most one write a second.
    mSharpnessChanged = true;
    return 0;
}

LRESULT CAdvancedDialog::OnSettingCommand(UINT, WPARAM wParam_I, LPARAM, BOOL& handled_O) {
    const int id = LOWORD(wParam_I);
    const WORD code = HIWORD(wParam_I);
    bool on = false;
    const std::optional<ESetting> setting = SettingOfControl(id, on);
    const ESettingKind kind = setting ? SettingRowOf(*setting).kind : ESettingKind::Hidden;
    if (kind == ESettingKind::Choice && code == CBN_SELCHANGE) {
        OnChoiceChanged(*setting, id);
    } else if (kind == ESettingKind::OnOff && code == BN_CLICKED) {
        OnOffOn(*setting, on);
    } else {
        handled_O = FALSE;  // not a setting's control, or a notification it does not act on
    }
    return 0;
}

void CAdvancedDialog::OnChoiceChanged(ESetting setting_I, int comboId_I) {
    UiDisplayDelegate* delegate = Delegate();
    int32_t value = 0;
    if (!SelectedComboValue(m_hWnd, comboId_I, mValues[comboId_I], value) || delegate == nullptr) {
        return;
    }
    if (ReportWrite(delegate->SetSetting(setting_I, value))) {
        Refresh();
        mHost.UpdateButtons();
    }
}

void CAdvancedDialog::OnOffOn(ESetting setting_I, bool on_I) {
    UiDisplayDelegate* delegate = Delegate();
    if (delegate == nullptr || !ReportWrite(delegate->SetSetting(setting_I, on_I ? 1 : 0))) {
        return;
    }
    Refresh();
    mHost.UpdateButtons();
}

LRESULT CAdvancedDialog::OnLcdConditioning(WORD, WORD, HWND, BOOL&) {
    UiDisplayDelegate* delegate = Delegate();
    if (delegate == nullptr) {
        return 0;
    }
    // It drops the unsaved changes and takes the screen for a while: asked first, whatever
    // started it (a click, Space or Enter on the button).
    if (mConditioningStarted ||
        !MessageWindows::ConfirmLcdConditioning(m_hWnd, Widen(delegate->SupportedName()), mLanguage)) {
        return 0;
    }
    delegate->Revert();
    delegate->ResetOptionData(vcpC_LCDConditioning);
    if (ReportWrite(delegate->SetLCDConditioning(1))) {
        mConditioningStarted = true;
        // The unsaved changes were dropped for the conditioning run: the main dialog shows the
        // display's values again.
        mHost.RefreshControls();
        Refresh();
        // Placing the main dialog again activated it, and Start is off now: the user goes on
        // in the page.
        GoOnAt(IDC_ADVANCED_OK);
    }
    return 0;
}

void CAdvancedDialog::GoOnAt(int controlId_I) {
    if (IsWindow() && IsWindowVisible(m_hWnd)) {
        ::SetActiveWindow(m_hWnd);
        ::SetFocus(GetDlgItem(controlId_I));
    }
}

LRESULT CAdvancedDialog::OnKeeperAtLogOn(WORD code_I, WORD, HWND, BOOL&) {
    if (code_I != BN_CLICKED) {
        return 0;
    }
    const bool on = IsDlgButtonChecked(m_hWnd, IDC_KEEPER_AT_LOGON) == BST_CHECKED;
    if (!AppRegistry::SetKeeperStartsAtLogOn(on)) {
        // Not written: the box shows what is so.
        CheckDlgButton(m_hWnd, IDC_KEEPER_AT_LOGON, on ? BST_UNCHECKED : BST_CHECKED);
        return 0;
    }
    if (on && !KeeperProcess::IsRunning()) {
        KeeperProcess::Start(mHost.ProgramOptions());
    }
    return 0;
}

LRESULT CAdvancedDialog::OnFactoryReset(WORD, WORD, HWND, BOOL&) {
    UiDisplayDelegate* delegate = Delegate();
    const std::wstring name = delegate != nullptr ? Widen(delegate->SupportedName()) : std::wstring();
    // The question is the main dialog's own (it must be), so its closing activates the main
    // dialog: a user who said no goes on where the question was asked.
    if (MessageWindows::ConfirmFactoryReset(mHost.Window(), name, mLanguage)) {
        mHost.FactoryReset();
    } else {
        GoOnAt(IDC_FACTORY_RESET);
    }
    return 0;
}

LRESULT CAdvancedDialog::OnClose(WORD, WORD id_I, HWND, BOOL&) {
    UiDisplayDelegate* delegate = Delegate();
    VLR_ASSERT_AS(delegate != nullptr, "NULL display ptr");
    if (delegate != nullptr && id_I != IDC_ADVANCED_OK) {
        for (const auto& [setting, value] : mOpeningValues) {
            const SSettingState now = delegate->GetSetting(setting);
            if (now.valid && now.value != value && !ReportWrite(delegate->SetSetting(setting, value))) {
                return 0;
            }
        }
        mHost.UpdateButtons();
    }
    // OK keeps a sharpness the timer has not written yet.
    if (delegate != nullptr && id_I == IDC_ADVANCED_OK && !WritePendingSharpness()) {
        return 0;
    }
    mSharpnessChanged = false;
    if (delegate != nullptr) {
        delegate->ResetOptionData(vcpC_LCDConditioning);
    }
    ShowWindow(m_hWnd, SW_HIDE);
    mValues.clear();
    return 0;
}
