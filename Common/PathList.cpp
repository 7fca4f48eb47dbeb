#include "PathList.h"

#include <algorithm>
#include <cwctype>
#include <vector>

namespace {

std::vector<std::wstring> Entries(const std::wstring& list_I) {
    std::vector<std::wstring> entries;
    size_t start = 0;
    while (true) {
        const size_t end = list_I.find(L';', start);
        entries.push_back(list_I.substr(start, end == std::wstring::npos ? std::wstring::npos : end - start));
        if (end == std::wstring::npos) {
            return entries;
        }
        start = end + 1;
    }
}

// An entry as a folder's name to compare: without quotes, blanks around it and trailing separators.
std::wstring Comparable(std::wstring entry_I) {
    entry_I.erase(std::remove(entry_I.begin(), entry_I.end(), L'"'), entry_I.end());
    while (!entry_I.empty() &&
           (entry_I.back() == L' ' || entry_I.back() == L'\\' || entry_I.back() == L'/')) {
        entry_I.pop_back();
    }
    const size_t first = entry_I.find_first_not_of(L' ');
    entry_I.erase(0, first == std::wstring::npos ? entry_I.size() : first);
    std::transform(entry_I.begin(), entry_I.end(), entry_I.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c))); });
    return entry_I;
}

bool Names(const std::wstring& entry_I, const std::wstring& folder_I) {
    const std::wstring folder = Comparable(folder_I);
    return !folder.empty() && Comparable(entry_I) == folder;
}

}  // namespace

bool PathListHas(const std::wstring& list_I, const std::wstring& folder_I) {
    const std::vector<std::wstring> entries = Entries(list_I);
    return std::any_of(entries.begin(), entries.end(),
                       [&](const std::wstring& e) { return Names(e, folder_I); });
}

std::wstring PathListWith(const std::wstring& list_I, const std::wstring& folder_I) {
    if (PathListHas(list_I, folder_I)) {
        return list_I;
    }
    if (list_I.empty()) {
        return folder_I;
    }
    if (list_I.back() == L';') {
        return list_I + folder_I +
               L";";  // the closing separator stays last: taken out, the list is as it was
    }
    return list_I + L";" + folder_I;
}

std::wstring PathListWithout(const std::wstring& list_I, const std::wstring& folder_I) {
    if (!PathListHas(list_I, folder_I)) {
        return list_I;
    }
    std::wstring result;
    bool first = true;
    for (const std::wstring& entry : Entries(list_I)) {
        if (Names(entry, folder_I)) {
            continue;
        }
        if (!first) {
            result += L';';
        }
        result += entry;
        first = false;
    }
    return result;
}
