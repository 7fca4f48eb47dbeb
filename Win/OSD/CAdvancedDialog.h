#pragma once
// The page of less frequent settings behind the main dialog's "Advanced...": aspect ratio,
// power LED, sharpness, uniformity, the On/Off settings, fan speed, LCD conditioning, battery
// mode, the versions and the factory reset. Every change goes to the display at once; a
// failed write here ends the program.

#include <windows.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "DialogHost.h"
#include "DialogIds.h"
#include "DialogImpl.h"
#include "DialogLayout.h"
#include "SettingCodes.h"
#include "SettingRowControls.h"

class UiDisplayDelegate;

class CAdvancedDialog : public CDialogBase {
public:
    CAdvancedDialog(IDialogHost& host_I, LANGID language_I);

    // Creates the window the first time, shows it, and notes the values Cancel puts back.
    void Open(HWND owner_I);
    bool IsShown() const { return IsWindow() && IsWindowVisible(m_hWnd); }
    // Every control from the selected display.
    void Refresh();
    // Before the main dialog selects another display: writes a sharpness the timer still owes
    // the display being left.
    void LeaveDisplay();
    // Places the dialog beside the main dialog's window rectangle.
    void Follow(const RECT& mainRect_I);

    BEGIN_MSG_MAP(CAdvancedDialog)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
    MESSAGE_HANDLER(WM_SHOWWINDOW, OnShowWindow)
    MESSAGE_HANDLER(WM_TIMER, OnTimer)
    MESSAGE_HANDLER(WM_HSCROLL, OnHScroll)
    MESSAGE_HANDLER(WM_COMMAND, OnSettingCommand)
    COMMAND_ID_HANDLER(IDC_LCD_CONDITIONING_START, OnLcdConditioning)
    COMMAND_ID_HANDLER(IDC_FACTORY_RESET, OnFactoryReset)
    COMMAND_ID_HANDLER(IDC_KEEPER_AT_LOGON, OnKeeperAtLogOn)
    COMMAND_ID_HANDLER(IDC_ADVANCED_OK, OnClose)
    COMMAND_ID_HANDLER(IDC_ADVANCED_CANCEL, OnClose)
    COMMAND_ID_HANDLER(IDCANCEL, OnClose)
    END_MSG_MAP()

    // The program's version as its version resource states it ("6.4.3-1").
    static std::wstring ProgramVersion();

    // A setting the page shows: its controls (its label, its list, slider, Off or Start button,
    // an Off/On pair's On, a state text; SettingRowControls makes them) and whether Cancel puts
    // its value back.
    struct SSettingControls : SSettingRowIds {
        bool restoredOnCancel;  // Cancel puts back the value the page opened with
    };
    // One row per setting the page shows, in the page's order.
    static const std::vector<SSettingControls>& SettingControls();
    // The setting a control of the page sets, and whether it is an "On" button; none for a
    // control of no setting.
    static std::optional<ESetting> SettingOfControl(int controlId_I, bool& on_O);

private:
    LRESULT OnInitDialog(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL& handled_O);
    LRESULT OnShowWindow(UINT, WPARAM wParam_I, LPARAM, BOOL&);
    LRESULT OnTimer(UINT, WPARAM wParam_I, LPARAM, BOOL&);
    LRESULT OnHScroll(UINT, WPARAM, LPARAM lParam_I, BOOL& handled_O);
    // A list's new choice or an Off/On click: the setting is found by the control's row.
    LRESULT OnSettingCommand(UINT, WPARAM wParam_I, LPARAM, BOOL& handled_O);
    void OnChoiceChanged(ESetting setting_I, int comboId_I);
    void OnOffOn(ESetting setting_I, bool on_I);
    LRESULT OnLcdConditioning(WORD, WORD, HWND, BOOL&);
    LRESULT OnFactoryReset(WORD, WORD, HWND, BOOL&);
    // Registers (or removes) the keeper's start at log-on, and starts it when none runs.
    LRESULT OnKeeperAtLogOn(WORD, WORD, HWND, BOOL&);
    LRESULT OnClose(WORD, WORD id_I, HWND, BOOL&);

    UiDisplayDelegate* Delegate() const;
    void FillChoice(ESetting setting_I, int labelId_I, int comboId_I);
    void FillOffOn(ESetting setting_I, int labelId_I, int offId_I, int onId_I);
    // A write of this page: true when it worked; otherwise the program ends.
    bool ReportWrite(bool ok_I);
    // Makes the page the active window again with the focus on this control.
    void GoOnAt(int controlId_I);
    // Writes the trackbar's sharpness when it changed since the last write.
    bool WritePendingSharpness();

    IDialogHost& mHost;
    LANGID mLanguage;
    std::map<int, std::vector<int32_t>> mValues;
    bool mSharpnessChanged = false;
    // LCD conditioning was started on the display the page shows.
    bool mConditioningStarted = false;
    // The seven settings Cancel puts back, as the display had them when the page opened.
    std::map<ESetting, int32_t> mOpeningValues;
    CRowLayout mRows;
};
