#include "HelpPages.h"

#include <shellapi.h>

#include <atomic>

#include "AppRegistry.h"
#include "DebugLog.h"
#include "LanguageProvider.h"
#include "MessageWindows.h"
#include "WinStrings.h"

namespace {

bool OpenInBrowser(HWND owner_I, const std::wstring& address_I) {
    const auto result = reinterpret_cast<INT_PTR>(
        ShellExecuteW(owner_I, L"open", address_I.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    return result > 32;  // ShellExecute's own rule: 32 and below are errors
}

std::atomic<HelpPages::Opener> gOpener{&OpenInBrowser};

// The folder of the running program, with a trailing backslash.
std::wstring ProgramFolder() {
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder(path, length);
    return folder.substr(0, folder.find_last_of(L"\\/") + 1);
}

}  // namespace

namespace HelpPages {

std::wstring Address(const std::string& page_I, LANGID language_I) {
    const std::wstring page = Widen(page_I);
    std::wstring base = AppRegistry::ReadHelpBaseAddress();
    if (!base.empty()) {
        while (!base.empty() && base.back() == L'/') {
            base.pop_back();
        }
        return base + L"/UserHelp/" + Widen(CLanguageProvider().CodeOf(language_I)) + L"/TOC/" + page +
               L".html";
    }
    const std::wstring folder = ProgramFolder() + L"Help\\";
    const std::wstring own = folder + page + L".html";
    // A display the shipped help has no page for gets the index.
    return GetFileAttributesW(own.c_str()) != INVALID_FILE_ATTRIBUTES ? own : folder + L"index.html";
}

void SetOpener(Opener opener_I) {
    gOpener = opener_I != nullptr ? opener_I : &OpenInBrowser;
}

void Open(HWND owner_I, const std::wstring& address_I, LANGID language_I) {
    const bool local = address_I.find(L"://") == std::wstring::npos;
    if ((local && GetFileAttributesW(address_I.c_str()) == INVALID_FILE_ATTRIBUTES) ||
        !gOpener.load()(owner_I, address_I)) {
        DLog("CMainDialog: the help could not be opened: %ls\n", address_I.c_str());
        MessageWindows::ShowHelpNotOpened(owner_I, address_I, language_I);
    }
}

}  // namespace HelpPages
