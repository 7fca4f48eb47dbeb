#pragma once
// A PATH-style list of folders ("C:\Windows\system32;C:\Tools;..."): whether it names a folder,
// and the list with or without it. Everything else in the list stays exactly as it was, empty
// entries and the user's spelling included, so that a change can be undone byte for byte.

#include <string>

// Whether one of the list's entries names the folder: letters compared without regard to case,
// quotes around an entry and a trailing backslash or slash ignored.
bool PathListHas(const std::wstring& list_I, const std::wstring& folder_I);
// The list with the folder as its last entry; unchanged when it names the folder already.
std::wstring PathListWith(const std::wstring& list_I, const std::wstring& folder_I);
// The list without every entry that names the folder.
std::wstring PathListWithout(const std::wstring& list_I, const std::wstring& folder_I);
