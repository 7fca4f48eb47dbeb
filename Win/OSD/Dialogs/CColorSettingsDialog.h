#pragma once
// The custom colour dialog behind the main dialog's "Set...": the colour adjustments the
// selected display supports (hue, saturation, gain, offset), each as red, green and blue in
// percent with sliders and number edits, and a swatch of the resulting white. Each change goes
// to the display at once; a colour the colour model finds too dark is asked about as the main
// dialog asks about a dark picture. Cancel puts back what the display had when the dialog
// opened; OK keeps the changes as unsaved changes of the display.

#include <windows.h>

#include <array>

#include "CustomColor.h"
#include "DialogHost.h"
#include "DialogIds.h"
#include "DialogImpl.h"

class UiDisplayDelegate;

class CColorSettingsDialog : public CDialogBase {
public:
    static constexpr int kAdjustments = 4;  // EColorModType
    static constexpr int kChannels = 3;     // red, green, blue

    CColorSettingsDialog(IDialogHost& host_I, LANGID language_I);
    ~CColorSettingsDialog() override;

    BEGIN_MSG_MAP(CColorSettingsDialog)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    MESSAGE_HANDLER(WM_HSCROLL, OnHScroll)
    MESSAGE_HANDLER(WM_CTLCOLORSTATIC, OnColorStatic)
    MESSAGE_HANDLER(WM_COMMAND, OnCommand)
    END_MSG_MAP()

private:
    LRESULT OnInitDialog(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnHScroll(UINT, WPARAM wParam_I, LPARAM lParam_I, BOOL& handled_O);
    LRESULT OnColorStatic(UINT, WPARAM wParam_I, LPARAM lParam_I, BOOL& handled_O);
    LRESULT OnCommand(UINT, WPARAM wParam_I, LPARAM lParam_I, BOOL& handled_O);

    UiDisplayDelegate* Delegate() const;
    // The colour the controls of one adjustment show.
    CColor Shown(int adjustment_I) const;
    void ShowColor(int adjustment_I, const CColor& color_I);
    // Sends an adjustment's colour; with commit_I the too-dark question may take it back.
    void Apply(int adjustment_I, bool commit_I);
    // The value typed into a value box (index: adjustment x channels + channel), as a release.
    void ApplyTypedValue(int index_I);
    void UpdateSwatch();
    void Cancel();

    IDialogHost& mHost;
    LANGID mLanguage;
    std::array<bool, kAdjustments> mSupported{};
    std::array<CColor, kAdjustments> mOpening{};
    std::array<CColor, kAdjustments> mAccepted{};
    HBRUSH mSwatchBrush = nullptr;
    bool mBusy = false;
};
