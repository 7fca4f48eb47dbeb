#include "CColorSettingsDialog.h"

#include <commctrl.h>

#include <algorithm>

#include "MessageWindows.h"
#include "UiDisplayDelegate.h"

namespace {

constexpr UINT kTitle = 2007;            // "Custom Color"
constexpr UINT kAdjustmentNames = 2240;  // Hue, Saturation, Gain, Offset
constexpr UINT kChannelNames = 2244;     // Red:, Green:, Blue:
constexpr UINT kResult = 2247;
constexpr UINT kOk = 2090;
constexpr UINT kCancel = 2091;

int Group(int adjustment_I) {
    return IDC_COLOR_MOD_GROUP_FIRST + adjustment_I;
}
int Label(int adjustment_I, int channel_I) {
    return IDC_COLOR_MOD_LABEL_FIRST + adjustment_I * CColorSettingsDialog::kChannels + channel_I;
}
int Slider(int adjustment_I, int channel_I) {
    return IDC_COLOR_MOD_SLIDER_FIRST + adjustment_I * CColorSettingsDialog::kChannels + channel_I;
}
int Edit(int adjustment_I, int channel_I) {
    return IDC_COLOR_MOD_EDIT_FIRST + adjustment_I * CColorSettingsDialog::kChannels + channel_I;
}

uint8_t Channel(const CColor& color_I, int channel_I) {
    return channel_I == 0 ? color_I.Red() : channel_I == 1 ? color_I.Green() : color_I.Blue();
}

uint8_t ScreenLevel(uint8_t percent_I) {
    return static_cast<uint8_t>(std::min<int>(percent_I, MAX_COLOR_RGB_PERCENT) * 255 /
                                MAX_COLOR_RGB_PERCENT);
}

}  // namespace

CColorSettingsDialog::CColorSettingsDialog(IDialogHost& host_I, LANGID language_I)
    : CDialogBase(IDD_CUSTOM_COLOR), mHost(host_I), mLanguage(language_I) {}

CColorSettingsDialog::~CColorSettingsDialog() {
    if (mSwatchBrush != nullptr) {
        DeleteObject(mSwatchBrush);
    }
}

UiDisplayDelegate* CColorSettingsDialog::Delegate() const {
    return mHost.Delegate();
}

CColor CColorSettingsDialog::Shown(int adjustment_I) const {
    uint8_t values[kChannels] = {};
    for (int channel = 0; channel < kChannels; ++channel) {
        values[channel] = static_cast<uint8_t>(
            SendDlgItemMessageW(m_hWnd, Slider(adjustment_I, channel), TBM_GETPOS, 0, 0));
    }
    return CColor::FromRGB(values[0], values[1], values[2]);
}

void CColorSettingsDialog::ShowColor(int adjustment_I, const CColor& color_I) {
    for (int channel = 0; channel < kChannels; ++channel) {
        SendDlgItemMessageW(m_hWnd, Slider(adjustment_I, channel), TBM_SETPOS, TRUE,
                            Channel(color_I, channel));
        SetDlgItemInt(m_hWnd, Edit(adjustment_I, channel), Channel(color_I, channel), FALSE);
    }
}

LRESULT CColorSettingsDialog::OnInitDialog(UINT, WPARAM, LPARAM, BOOL&) {
    SetWindowTextW(m_hWnd, MessageWindows::Text(kTitle, mLanguage).c_str());
    SetDlgItemTextW(m_hWnd, IDC_COLOR_SWATCH_LABEL, MessageWindows::Text(kResult, mLanguage).c_str());
    SetDlgItemTextW(m_hWnd, IDC_CUSTOM_COLOR_OK, MessageWindows::Text(kOk, mLanguage).c_str());
    SetDlgItemTextW(m_hWnd, IDCANCEL, MessageWindows::Text(kCancel, mLanguage).c_str());
    UiDisplayDelegate* delegate = Delegate();
    for (int adjustment = 0; adjustment < kAdjustments; ++adjustment) {
        const CColor color =
            delegate != nullptr ? delegate->GetCustomRGBColorMod(adjustment, true) : CColor();
        mSupported[adjustment] = color.IsValid();
        mOpening[adjustment] = mAccepted[adjustment] = color;
        const int show = color.IsValid() ? SW_SHOW : SW_HIDE;
        ShowWindow(GetDlgItem(Group(adjustment)), show);
        SetDlgItemTextW(m_hWnd, Group(adjustment),
                        MessageWindows::Text(kAdjustmentNames + adjustment, mLanguage).c_str());
        for (int channel = 0; channel < kChannels; ++channel) {
            SetDlgItemTextW(m_hWnd, Label(adjustment, channel),
                            MessageWindows::Text(kChannelNames + channel, mLanguage).c_str());
            SendDlgItemMessageW(m_hWnd, Slider(adjustment, channel), TBM_SETRANGE, TRUE,
                                MAKELPARAM(0, MAX_COLOR_RGB_PERCENT));
            SendDlgItemMessageW(m_hWnd, Edit(adjustment, channel), EM_LIMITTEXT, 3, 0);
            for (int id :
                 {Label(adjustment, channel), Slider(adjustment, channel), Edit(adjustment, channel)}) {
                ShowWindow(GetDlgItem(id), show);
            }
        }
        if (color.IsValid()) {
            ShowColor(adjustment, color);
        }
    }
    UpdateSwatch();
    // Centred over the main dialog.
    RECT parent{};
    RECT own{};
    GetWindowRect(mHost.Window(), &parent);
    GetWindowRect(m_hWnd, &own);
    SetWindowPos(m_hWnd, HWND_TOPMOST,
                 parent.left + (parent.right - parent.left - (own.right - own.left)) / 2,
                 parent.top + (parent.bottom - parent.top - (own.bottom - own.top)) / 2, 0, 0, SWP_NOSIZE);
    return TRUE;
}

void CColorSettingsDialog::UpdateSwatch() {
    if (mSwatchBrush != nullptr) {
        DeleteObject(mSwatchBrush);
        mSwatchBrush = nullptr;
    }
    // The white the gain leaves; without gain, the display's own white.
    const CColor gain = mSupported[eColorModGain] ? Shown(eColorModGain) : CColor::FromRGB(100, 100, 100);
    mSwatchBrush =
        CreateSolidBrush(RGB(ScreenLevel(gain.Red()), ScreenLevel(gain.Green()), ScreenLevel(gain.Blue())));
    InvalidateRect(GetDlgItem(IDC_COLOR_SWATCH), nullptr, TRUE);
}

LRESULT CColorSettingsDialog::OnColorStatic(UINT, WPARAM wParam_I, LPARAM lParam_I, BOOL& handled_O) {
    if (reinterpret_cast<HWND>(lParam_I) != GetDlgItem(IDC_COLOR_SWATCH) || mSwatchBrush == nullptr) {
        handled_O = FALSE;
        return 0;
    }
    LOGBRUSH brush{};
    GetObjectW(mSwatchBrush, sizeof(brush), &brush);
    SetBkColor(reinterpret_cast<HDC>(wParam_I), brush.lbColor);
    return reinterpret_cast<LRESULT>(mSwatchBrush);
}

void CColorSettingsDialog::Apply(int adjustment_I, bool commit_I) {
    UiDisplayDelegate* delegate = Delegate();
    if (delegate == nullptr || mBusy) {
        return;
    }
    const CColor color = Shown(adjustment_I);
    const CColor& accepted = mAccepted[adjustment_I];
    if (commit_I && color.Red() == accepted.Red() && color.Green() == accepted.Green() &&
        color.Blue() == accepted.Blue()) {
        // Already accepted: a release reports itself twice (thumb position, end of track), and a
        // refused change comes back here with the old values. One question per change.
        UpdateSwatch();
        return;
    }
    if (!delegate->SetCustomRGBColorMod(adjustment_I, color)) {
        MessageWindows::ShowCommunicationError(m_hWnd, delegate, false, mLanguage);
        return;
    }
    if (commit_I) {
        mBusy = true;
        if (!delegate->IsColorTooDark(color, adjustment_I) ||
            MessageWindows::AskKeepDarkSettings(m_hWnd, mLanguage)) {
            mAccepted[adjustment_I] = color;
        } else {
            ShowColor(adjustment_I, mAccepted[adjustment_I]);
            if (!delegate->SetCustomRGBColorMod(adjustment_I, mAccepted[adjustment_I])) {
                MessageWindows::ShowCommunicationError(m_hWnd, delegate, false, mLanguage);
            }
        }
        mBusy = false;
    }
    UpdateSwatch();
}

LRESULT CColorSettingsDialog::OnHScroll(UINT, WPARAM wParam_I, LPARAM lParam_I, BOOL& handled_O) {
    const int id = GetDlgCtrlID(reinterpret_cast<HWND>(lParam_I));
    const int index = id - IDC_COLOR_MOD_SLIDER_FIRST;
    if (index < 0 || index >= kAdjustments * kChannels) {
        handled_O = FALSE;
        return 0;
    }
    const int adjustment = index / kChannels;
    const int channel = index % kChannels;
    const int code = LOWORD(wParam_I);
    const int position = static_cast<int>(SendMessageW(reinterpret_cast<HWND>(lParam_I), TBM_GETPOS, 0, 0));
    SetDlgItemInt(m_hWnd, Edit(adjustment, channel), static_cast<UINT>(position), FALSE);
    if (code == TB_ENDTRACK || code == TB_THUMBPOSITION) {
        Apply(adjustment, true);
    } else if (code != TB_TOP && code != TB_BOTTOM) {
        Apply(adjustment, false);
    } else {
        // Home and End would jump a colour channel to nothing or full: refused as in the main dialog.
        ShowColor(adjustment, mAccepted[adjustment]);
    }
    return 0;
}

void CColorSettingsDialog::Cancel() {
    UiDisplayDelegate* delegate = Delegate();
    for (int adjustment = 0; adjustment < kAdjustments && delegate != nullptr; ++adjustment) {
        if (!mSupported[adjustment]) {
            continue;
        }
        const CColor now = delegate->GetCustomRGBColorMod(adjustment, false);
        const CColor& opening = mOpening[adjustment];
        const bool changed = !now.IsValid() || now.Red() != opening.Red() || now.Green() != opening.Green() ||
                             now.Blue() != opening.Blue();
        if (changed && !delegate->SetCustomRGBColorMod(adjustment, opening)) {
            MessageWindows::ShowCommunicationError(m_hWnd, delegate, false, mLanguage);
        }
    }
}

LRESULT CColorSettingsDialog::OnCommand(UINT, WPARAM wParam_I, LPARAM, BOOL& handled_O) {
    const int id = LOWORD(wParam_I);
    const int code = HIWORD(wParam_I);
    if (id == IDC_CUSTOM_COLOR_OK) {
        // Enter in a value box applies the typed value; only the button itself closes.
        const int focused = GetDlgCtrlID(GetFocus()) - IDC_COLOR_MOD_EDIT_FIRST;
        if (focused >= 0 && focused < kAdjustments * kChannels) {
            ApplyTypedValue(focused);
            SendMessageW(GetFocus(), EM_SETSEL, 0, -1);
            return 0;
        }
        EndDialog(IDC_CUSTOM_COLOR_OK);
        return 0;
    }
    if (id == IDCANCEL) {
        Cancel();
        EndDialog(IDCANCEL);
        return 0;
    }
    const int index = id - IDC_COLOR_MOD_EDIT_FIRST;
    if (code != EN_KILLFOCUS || index < 0 || index >= kAdjustments * kChannels) {
        handled_O = FALSE;
        return 0;
    }
    ApplyTypedValue(index);
    return 0;
}

void CColorSettingsDialog::ApplyTypedValue(int index_I) {
    // A typed percentage: clamped to 0-100, then sent like a released slider.
    const int adjustment = index_I / kChannels;
    const int channel = index_I % kChannels;
    const int id = IDC_COLOR_MOD_EDIT_FIRST + index_I;
    BOOL read = FALSE;
    UINT value = GetDlgItemInt(m_hWnd, id, &read, FALSE);
    value = read ? std::min<UINT>(value, MAX_COLOR_RGB_PERCENT) : Channel(mAccepted[adjustment], channel);
    SetDlgItemInt(m_hWnd, id, value, FALSE);
    SendDlgItemMessageW(m_hWnd, Slider(adjustment, channel), TBM_SETPOS, TRUE, static_cast<LPARAM>(value));
    Apply(adjustment, true);
}
