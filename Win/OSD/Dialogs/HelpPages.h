#pragma once
// The help of a display: its page on the deployment's own site when the registry names one,
// otherwise the page shipped beside the program (Help\<page>.html, or the index when the
// shipped help has no page for the display), opened in the default browser.

#include <windows.h>

#include <string>

namespace HelpPages {

// The address of the page (a display's help page name, "index" for none) in the language.
std::wstring Address(const std::string& page_I, LANGID language_I);

// Opens an address; false when it could not. Tests replace it.
using Opener = bool (*)(HWND owner_I, const std::wstring& address_I);
void SetOpener(Opener opener_I);

// Opens the page, or says that it could not (with the address, for the user to open).
void Open(HWND owner_I, const std::wstring& address_I, LANGID language_I);

}  // namespace HelpPages
