#pragma once
// The main dialog's brightness and contrast: each a slider with its caption and number box.
// A position is sent to the display at once while the slider moves (a position a newer one of
// the same slider already follows in the queue is shown but not sent); releasing it, or a
// number typed, commits it after asking whether a possibly too dark picture may stay (No puts
// the last accepted value back). Home and End are refused: one key would jump a display to
// full or no light.

#include <windows.h>

#include <cstdint>
#include <functional>
#include <utility>

#include "DialogHost.h"
#include "SettingTable.h"

class CPictureSliders {
public:
    // reportWrite_I shows a failed write (the dialog's rule) and returns its argument.
    CPictureSliders(IDialogHost& host_I, LANGID language_I, std::function<bool(bool)> reportWrite_I)
        : mHost(host_I), mLanguage(language_I), mReportWrite(std::move(reportWrite_I)) {}

    // While a slider is dragged, positions that a newer one of the same slider already follows
    // in the queue are shown but not sent (on by default; off only to measure the difference).
    static void SetSkipStaleDragPositions(bool on_I);

    // Both from the selected display's settings.
    void Init();
    // WM_HSCROLL; false when it is not from a picture slider.
    bool OnScroll(WPARAM wParam_I, LPARAM lParam_I);
    // The number typed in a slider's box (focus left it, or Enter).
    void ApplyTypedValue(int editId_I);
    // A question about a value is open: the box's losing the focus to it must not ask again.
    bool Busy() const { return mBusy; }

private:
    struct SSlider {
        ESetting setting;
        int label;
        int edit;
        int slider;
    };
    // The slider whose slider or number box this is; null for any other control.
    static const SSlider* SliderOf(int controlId_I);
    void InitSlider(const SSlider& slider_I);
    // The value of the slider's setting that the user last accepted (asked about, if at all).
    int32_t& Accepted(const SSlider& slider_I);
    // Brightness and contrast as they would be with this value of the slider's setting.
    std::pair<int32_t, int32_t> PictureWith(const SSlider& slider_I, int32_t value_I) const;
    void SendSliderValue(const SSlider& slider_I, int32_t value_I);
    void CommitSliderValue(const SSlider& slider_I, int32_t value_I);
    bool NewerPositionWaiting(HWND slider_I) const;
    HWND Item(int id_I) const { return GetDlgItem(mHost.Window(), id_I); }

    IDialogHost& mHost;
    LANGID mLanguage;
    std::function<bool(bool)> mReportWrite;
    int32_t mAcceptedBrightness = 0;
    int32_t mAcceptedContrast = 0;
    bool mBusy = false;
};
