#include "PictureSliders.h"

#include <commctrl.h>

#include <algorithm>
#include <atomic>

#include "Assert.h"
#include "DialogIds.h"
#include "DialogImpl.h"
#include "MessageWindows.h"
#include "UiDisplayDelegate.h"

namespace {

constexpr int kEditDigits = 3;
std::atomic<bool> gSkipStaleDragPositions{true};

}  // namespace

const CPictureSliders::SSlider* CPictureSliders::SliderOf(int controlId_I) {
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

int32_t& CPictureSliders::Accepted(const SSlider& slider_I) {
    return slider_I.setting == ESetting::Brightness ? mAcceptedBrightness : mAcceptedContrast;
}

std::pair<int32_t, int32_t> CPictureSliders::PictureWith(const SSlider& slider_I, int32_t value_I) const {
    return slider_I.setting == ESetting::Brightness ? std::make_pair(value_I, mAcceptedContrast)
                                                    : std::make_pair(mAcceptedBrightness, value_I);
}

void CPictureSliders::Init() {
    InitSlider(*SliderOf(IDC_BRIGHTNESS_SLIDER));
    InitSlider(*SliderOf(IDC_CONTRAST_SLIDER));
}

void CPictureSliders::InitSlider(const SSlider& slider_I) {
    UiDisplayDelegate* delegate = mHost.Delegate();
    SSettingState res = delegate->GetSetting(slider_I.setting);
    const bool shown = res.supported;
    for (int id : {slider_I.label, slider_I.edit, slider_I.slider}) {
        ShowControl(Item(id), shown);
        EnableWindow(Item(id), shown && res.writable);
    }
    if (!shown) {
        return;
    }
    VLR_ASSERT(res.valid);
    HWND slider = Item(slider_I.slider);
    SendMessageW(slider, TBM_SETRANGE, TRUE, MAKELPARAM(res.range.minimum, res.range.maximum));
    SendMessageW(slider, TBM_SETPOS, TRUE, res.value);
    SendDlgItemMessageW(mHost.Window(), slider_I.edit, EM_LIMITTEXT, kEditDigits, 0);
    SetDlgItemInt(mHost.Window(), slider_I.edit, static_cast<UINT>(res.value), FALSE);
    Accepted(slider_I) = res.value;
}

void CPictureSliders::SetSkipStaleDragPositions(bool on_I) {
    gSkipStaleDragPositions = on_I;
}

bool CPictureSliders::NewerPositionWaiting(HWND slider_I) const {
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
    return PeekMessageW(&pending, mHost.Window(), WM_HSCROLL, WM_HSCROLL, PM_NOREMOVE | PM_QS_POSTMESSAGE) &&
           reinterpret_cast<HWND>(pending.lParam) == slider_I && LOWORD(pending.wParam) == TB_THUMBTRACK;
}

void CPictureSliders::SendSliderValue(const SSlider& slider_I, int32_t value_I) {
    UiDisplayDelegate* delegate = mHost.Delegate();
    if (delegate == nullptr) {
        return;
    }
    SetDlgItemInt(mHost.Window(), slider_I.edit, static_cast<UINT>(value_I), FALSE);
    mReportWrite(slider_I.setting == ESetting::Brightness ? delegate->SetBrightness(value_I)
                                                          : delegate->SetContrast(value_I));
}

void CPictureSliders::CommitSliderValue(const SSlider& slider_I, int32_t value_I) {
    int32_t& accepted = Accepted(slider_I);
    if (value_I == accepted || mBusy) {
        return;
    }
    mBusy = true;
    SendSliderValue(slider_I, value_I);
    const auto [brightness, contrast] = PictureWith(slider_I, value_I);
    UiDisplayDelegate* delegate = mHost.Delegate();
    if (delegate != nullptr && MessageWindows::ConfirmPictureNotTooDark(mHost.Window(), *delegate, brightness,
                                                                        contrast, mLanguage)) {
        accepted = value_I;
        mHost.UpdateButtons();
    } else {
        SendMessageW(Item(slider_I.slider), TBM_SETPOS, TRUE, accepted);
        SendSliderValue(slider_I, accepted);
    }
    mBusy = false;
}

bool CPictureSliders::OnScroll(WPARAM wParam_I, LPARAM lParam_I) {
    HWND slider = reinterpret_cast<HWND>(lParam_I);
    const SSlider* controls = SliderOf(GetDlgCtrlID(slider));
    const int code = LOWORD(wParam_I);
    if (controls == nullptr || GetDlgCtrlID(slider) != controls->slider || code > TB_ENDTRACK) {
        return false;
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
                SetDlgItemInt(mHost.Window(), controls->edit, static_cast<UINT>(carried), FALSE);
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
    return true;
}

void CPictureSliders::ApplyTypedValue(int editId_I) {
    UiDisplayDelegate* delegate = mHost.Delegate();
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
    int32_t value = static_cast<int32_t>(GetDlgItemInt(mHost.Window(), editId_I, &read, FALSE));
    if (!read) {
        SetDlgItemInt(mHost.Window(), editId_I, static_cast<UINT>(res.value), FALSE);
        return;
    }
    const int32_t clamped = std::max(std::min(value, res.range.maximum), res.range.minimum);
    if (clamped != value) {
        SetDlgItemInt(mHost.Window(), editId_I, static_cast<UINT>(clamped), FALSE);
    }
    value = clamped;
    int32_t& accepted = Accepted(*controls);
    SendMessageW(Item(controls->slider), TBM_SETPOS, TRUE, value);
    if (value == accepted) {
        // Nothing changed (the focus merely left the edit, or Enter came again): the display
        // already has it, and the question was asked, if at all, when it changed.
        return;
    }
    // The question takes the focus from the edit: its kill-focus must not ask again.
    mBusy = true;
    SendSliderValue(*controls, value);
    const auto [brightness, contrast] = PictureWith(*controls, value);
    if (MessageWindows::ConfirmPictureNotTooDark(mHost.Window(), *delegate, brightness, contrast,
                                                 mLanguage)) {
        accepted = value;
    } else {
        SendMessageW(Item(controls->slider), TBM_SETPOS, TRUE, accepted);
        SendSliderValue(*controls, accepted);
    }
    mBusy = false;
    mHost.UpdateButtons();
}
