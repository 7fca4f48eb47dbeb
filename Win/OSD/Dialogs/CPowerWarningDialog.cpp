#include "CPowerWarningDialog.h"

#include "MessageWindows.h"
#include "UiDisplayDelegate.h"

namespace {

constexpr UINT kTitle = 2916;
constexpr UINT kMorePower = 2917;
constexpr UINT kAffectedSettings = 2918;
constexpr UINT kQuestion = 2919;
constexpr UINT kDoNotShowAgain = 2920;
constexpr UINT kYes = 2921;
constexpr UINT kNo = 2922;
constexpr UINT kColorTemperature = 2005;
constexpr UINT kBrightness = 2923;

constexpr MessageWindows::SCaption kCaptions[] = {
    {IDC_POWER_YES, kYes, true},
    {IDC_POWER_NO, kNo, true},
    {IDC_POWER_DONT_SHOW, kDoNotShowAgain, true},
};

}  // namespace

INT_PTR CPowerWarningDialog::Ask(HWND owner_I, const std::vector<uint32_t>& kinds_I, bool higherPower_I) {
    mKinds = kinds_I;
    mHigherPower = higherPower_I;
    mDoNotShowAgain = false;
    return DoModal(owner_I);
}

std::wstring CPowerWarningDialog::MessageText() const {
    std::wstring message;
    if (mHigherPower) {
        message = MessageWindows::Text(kMorePower, mLanguage);
    }
    if (!mKinds.empty()) {
        if (!message.empty()) {
            message += L" ";
        }
        message += MessageWindows::Text(kAffectedSettings, mLanguage);
    }
    return message;
}

std::wstring CPowerWarningDialog::ListText() const {
    std::wstring list;
    for (uint32_t kind : mKinds) {
        if (!list.empty()) {
            list += L", ";
        }
        // Other kinds have no name.
        if (kind == ePowerKindColorTemperature) {
            list += MessageWindows::Text(kColorTemperature, mLanguage);
        } else if (kind == ePowerKindBrightness) {
            list += MessageWindows::Text(kBrightness, mLanguage);
        }
    }
    return list;
}

LRESULT CPowerWarningDialog::OnInitDialog(UINT, WPARAM, LPARAM, BOOL&) {
    SetWindowTextW(m_hWnd, MessageWindows::Text(kTitle, mLanguage).c_str());
    SetDlgItemTextW(m_hWnd, IDC_POWER_MESSAGE, MessageText().c_str());
    SetDlgItemTextW(m_hWnd, IDC_POWER_LIST, ListText().c_str());
    ShowWindow(GetDlgItem(IDC_POWER_LIST), mKinds.empty() ? SW_HIDE : SW_SHOW);
    SetDlgItemTextW(m_hWnd, IDC_POWER_QUESTION, MessageWindows::Text(kQuestion, mLanguage).c_str());
    MessageWindows::SetCaptions(m_hWnd, kCaptions, mLanguage);

    // Centred over the parent.
    HWND parent = GetParent(m_hWnd);
    RECT parentRect{};
    RECT own{};
    GetWindowRect(parent != nullptr ? parent : GetDesktopWindow(), &parentRect);
    GetWindowRect(m_hWnd, &own);
    const int width = own.right - own.left;
    const int height = own.bottom - own.top;
    SetWindowPos(m_hWnd, nullptr, parentRect.left + (parentRect.right - parentRect.left - width) / 2,
                 parentRect.top + (parentRect.bottom - parentRect.top - height) / 2, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER);
    SetFocus(GetDlgItem(IDC_POWER_NO));
    return FALSE;  // the focus is set
}

LRESULT CPowerWarningDialog::OnAnswer(WORD, WORD id_I, HWND, BOOL&) {
    mDoNotShowAgain = IsDlgButtonChecked(m_hWnd, IDC_POWER_DONT_SHOW) == BST_CHECKED;
    EndDialog(id_I == IDC_POWER_YES ? IDC_POWER_YES : IDC_POWER_NO);
    return 0;
}
