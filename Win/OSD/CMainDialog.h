#pragma once
// The application window: the user picks one of the displays found and changes its
// brightness, contrast, colour setting and gamma, saves or reverts. Every change goes to the
// display at once through the selected display's settings delegate; Save makes the display
// keep it. Long operations (discovery, factory and colour reset) run behind the wait window
// (CLongOperation).

#include <windows.h>

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "AppRegistry.h"
#include "CAdvancedDialog.h"
#include "CPowerWarningDialog.h"
#include "CWinDisplayConfigInterface.h"
#include "DeskChanges.h"
#include "DialogHost.h"
#include "DialogIds.h"
#include "DialogImpl.h"
#include "DialogLayout.h"
#include "DisplayLock.h"
#include "LongOperation.h"
#include "PictureSliders.h"
#include "SearchSchedule.h"
#include "StartupOptions.h"
#include "UiDisplayDelegate.h"
#include "WindowPlacement.h"

class CMainDialog : public CDialogBase, public IDialogHost {
public:
    // How a run of the dialog ended, for the entry point to act on.
    enum class EOutcome { Closed, AlreadyRunning, NoDevice, Error, CommunicationFailure };
    // The mark a second start finds the running main dialog by (a window property).
    static constexpr wchar_t kIdentityProperty[] = L"VelorDisplaySettings.MainDialog";

    CMainDialog(const SStartupOptions& options_I, LANGID language_I);
    ~CMainDialog() override;

    EOutcome Outcome() const { return mOutcome; }
    const std::wstring& ErrorText() const { return mErrorText; }
    const std::shared_ptr<CWinDisplayConfigInterface>& DisplayConfig() const { return mDisplayConfigIF; }
    HWND Window() const override { return m_hWnd; }
    // The selected display's delegate; null when there is none.
    UiDisplayDelegate* Delegate() const override;
    // The values behind a combo's items, in item order.
    std::vector<int32_t> Values(int comboId_I) const;

    // Worker thread procedures; each returns 1.
    static DWORD WINAPI DisplayConfigThread(LPVOID pClass_I);
    // Each worker is given the dialog it was started for.
    static DWORD WINAPI FactoryResetThread(LPVOID pClass_I);
    static DWORD WINAPI ResetColorThread(LPVOID pClass_I);
    static DWORD WINAPI ResetColorConfigThread(LPVOID pClass_I);

    // While a slider is dragged, positions a newer one already follows are not sent.
    static void SetSkipStaleDragPositions(bool on_I) { CPictureSliders::SetSkipStaleDragPositions(on_I); }

    // What the pages are given (IDialogHost).
    void UpdateButtons() override;
    void RefreshControls() override { InitControls(); }
    // Factory reset of the selected display behind the wait window, then a fresh search.
    void FactoryReset() override;
    // A long operation (search, colour or factory reset) runs: the dialogs take no input
    // that could start another, and nothing else may use the displays meanwhile.
    bool OperationRunning() const override { return mOperation.Running(); }
    CAdvancedDialog& AdvancedDialog() { return *mAdvancedDialog; }
    // A failed write that ends the program (the advanced page's, or any with /exitOnError).
    void NoteFatalFailure() override { mOutcome = EOutcome::CommunicationFailure; }
    std::wstring ProgramOptions() const override { return ::ProgramOptions(mOptions); }

    // The help page of the selected display (HelpPages).
    std::wstring HelpAddress() const;

    // Posted when the selected display's connector closed under a failure.
    static constexpr UINT kSearchAgainMessage = WM_APP + 7;

    BEGIN_MSG_MAP(CMainDialog)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
    MESSAGE_HANDLER(kSearchAgainMessage, OnSearchAgain)
    MESSAGE_HANDLER(WM_HOTKEY, OnHotKey)
    MESSAGE_HANDLER(WM_MOVE, OnMove)
    MESSAGE_HANDLER(WM_HSCROLL, OnHScroll)
    MESSAGE_HANDLER(WM_VSCROLL, OnVScroll)
    MESSAGE_HANDLER(WM_TIMER, OnTimer)
    MESSAGE_HANDLER(WM_DISPLAYCHANGE, OnSystemChange)
    MESSAGE_HANDLER(WM_DEVICECHANGE, OnSystemChange)
    MESSAGE_HANDLER(WM_POWERBROADCAST, OnSystemChange)
    COMMAND_HANDLER(IDC_BRIGHTNESS_EDIT, EN_KILLFOCUS, OnEditKillFocus)
    COMMAND_HANDLER(IDC_CONTRAST_EDIT, EN_KILLFOCUS, OnEditKillFocus)
    COMMAND_ID_HANDLER(IDOK, OnOk)
    COMMAND_ID_HANDLER(IDCANCEL, OnCancel)
    COMMAND_HANDLER(IDC_DISPLAY_LIST, CBN_SELCHANGE, OnDisplayChanged)
    COMMAND_CODE_HANDLER(CBN_SELCHANGE, OnChoiceChanged)  // every drop-down of a setting
    COMMAND_HANDLER(IDC_CUSTOM_COLOR_BUTTON, BN_CLICKED, OnCustomColor)
    COMMAND_HANDLER(IDC_RESET_COLOR_BUTTON, BN_CLICKED, OnResetColor)
    COMMAND_HANDLER(IDC_SAVE_BUTTON, BN_CLICKED, OnSave)
    COMMAND_HANDLER(IDC_REVERT_BUTTON, BN_CLICKED, OnRevert)
    COMMAND_HANDLER(IDC_ADVANCED_BUTTON, BN_CLICKED, OnAdvanced)
    COMMAND_HANDLER(IDC_HELP_BUTTON, BN_CLICKED, OnHelp)
    END_MSG_MAP()

private:
    LRESULT OnInitDialog(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnHotKey(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL& handled_O);
    LRESULT OnSearchAgain(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnMove(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnHScroll(UINT, WPARAM wParam_I, LPARAM lParam_I, BOOL& handled_O);
    LRESULT OnVScroll(UINT, WPARAM wParam_I, LPARAM, BOOL&);
    LRESULT OnTimer(UINT, WPARAM wParam_I, LPARAM, BOOL&);
    // A display came or went, the desktop changed, the computer or a display woke up.
    LRESULT OnSystemChange(UINT message_I, WPARAM wParam_I, LPARAM lParam_I, BOOL&);
    // The serial number (and name) of each display in the list, in its order.
    std::vector<std::wstring> DisplayIdentities() const;
    LRESULT OnEditKillFocus(WORD, WORD id_I, HWND, BOOL&);
    LRESULT OnOk(WORD, WORD, HWND, BOOL&);
    LRESULT OnCancel(WORD, WORD, HWND, BOOL&);
    LRESULT OnDisplayChanged(WORD, WORD, HWND, BOOL&);
    LRESULT OnChoiceChanged(WORD, WORD id_I, HWND, BOOL& handled_O);
    LRESULT OnCustomColor(WORD, WORD, HWND, BOOL&);
    LRESULT OnResetColor(WORD, WORD, HWND, BOOL&);
    LRESULT OnSave(WORD, WORD, HWND, BOOL&);
    LRESULT OnRevert(WORD, WORD, HWND, BOOL&);
    LRESULT OnAdvanced(WORD, WORD, HWND, BOOL&);
    LRESULT OnHelp(WORD, WORD, HWND, BOOL&);

    // Runs the threads one after the other behind the wait window, pumping messages; false
    // (and nothing started) while another runs.
    bool RunLongOperation(LPTHREAD_START_ROUTINE first_I, const char* firstName_I,
                          LPTHREAD_START_ROUTINE second_I, const char* secondName_I);
    // After a factory reset: the display list afresh, or the end when it is empty.
    void Rebuild();

    void LoadCaptions();
    void FillDisplayList();
    // Holds the chosen display's lock (lets go of the one held before).
    void HoldSelectedDisplay();
    // Every control from the selected display's settings.
    void InitControls();
    void InitChoice(ESetting setting_I, int labelId_I, int comboId_I, bool visible_I);
    void ShowCustomColorText();
    void PlaceWindow();
    void ClearCombos();

    // A write's outcome: a failure shows the error (and, when the display went away, a new
    // search follows); returns ok_I. The advanced page's ReportWrite ends the program instead.
    bool ReportWrite(bool ok_I);

    SStartupOptions mOptions;
    LANGID mLanguage;
    std::shared_ptr<CWinDisplayConfigInterface> mDisplayConfigIF;
    std::unique_ptr<CPowerWarningDialog> mPowerWarning;
    std::unique_ptr<CAdvancedDialog> mAdvancedDialog;
    bool mAdvancedWasOpen = false;
    CLongOperation mOperation;
    CPictureSliders mSliders;
    HWND mToolTip = nullptr;
    bool mSearching = false;  // a search thread runs: the display list is being rebuilt
    bool mSearchAgainPending = false;
    CSearchSchedule mSearchSchedule{kSearchAgainMessage};
    bool mIgnorePowerWarning = false;
    CWindowPlacement mPlacement;
    std::wstring mErrorText;
    bool mHasErrorText = false;
    std::map<int, std::vector<int32_t>> mValues;
    std::vector<size_t> mDisplayIndexes;
    size_t mSelectedDisplay = 0;
    std::wstring mSelectedIdentity;  // kept selected across searches while it is found
    CDeskChangeRegistration mDeskChanges;
    // The chosen display's lock, while the dialog shows it.
    std::unique_ptr<CDisplayLock> mHeldDisplay;
    CRowLayout mRows;
    EOutcome mOutcome = EOutcome::Closed;
};
