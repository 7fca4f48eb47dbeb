#include "AccessKeys.h"

#include <windows.h>

#include <set>

namespace AccessKeys {
namespace {

// As Windows compares access keys: by the letter whatever its case, in any script (the C
// library's towupper knows Latin letters only).
wchar_t KeyOf(wchar_t letter_I) {
    wchar_t key[2] = {letter_I, 0};
    CharUpperBuffW(key, 1);
    return key[0];
}

// The places a key may go in a text, best first: its first letter, the first letters of its
// other words, then any letter or digit.
std::vector<size_t> Candidates(const std::wstring& text_I) {
    std::vector<size_t> firsts;
    std::vector<size_t> others;
    bool wordStart = true;
    for (size_t i = 0; i < text_I.size(); ++i) {
        const wchar_t c = text_I[i];
        if (IsCharAlphaNumericW(c)) {
            (wordStart ? firsts : others).push_back(i);
            wordStart = false;
        } else {
            wordStart = true;
        }
    }
    firsts.insert(firsts.end(), others.begin(), others.end());
    return firsts;
}

// The place of the first free key in the text, taking it; npos when every letter is taken.
size_t TakeKey(const std::wstring& text_I, std::set<wchar_t>& taken_IO) {
    for (size_t at : Candidates(text_I)) {
        if (taken_IO.insert(KeyOf(text_I[at])).second) {
            return at;
        }
    }
    return std::wstring::npos;
}

std::wstring Escaped(const std::wstring& text_I) {
    std::wstring escaped;
    for (wchar_t c : text_I) {
        escaped += c == L'&' ? L"&&" : std::wstring(1, c);
    }
    return escaped;
}

}  // namespace

std::vector<std::wstring> Mark(const std::vector<std::wstring>& captions_I,
                               const std::vector<std::wstring>& english_I, bool bracketed_I) {
    std::vector<std::wstring> marked;
    std::set<wchar_t> taken;
    for (size_t i = 0; i < captions_I.size(); ++i) {
        const std::wstring& caption = captions_I[i];
        if (!bracketed_I) {
            const size_t at = TakeKey(caption, taken);
            marked.push_back(at == std::wstring::npos
                                 ? Escaped(caption)
                                 : Escaped(caption.substr(0, at)) + L"&" + Escaped(caption.substr(at)));
            continue;
        }
        const std::wstring english = i < english_I.size() ? english_I[i] : std::wstring();
        const size_t at = TakeKey(english, taken);
        if (at == std::wstring::npos) {
            marked.push_back(Escaped(caption));
            continue;
        }
        const std::wstring key = L"(&" + std::wstring(1, KeyOf(english[at])) + L")";
        // Before a closing colon or ellipsis: "詳細設定(&A)...".
        size_t end = caption.size();
        for (bool more = true; more && end > 0;) {
            const wchar_t last = caption[end - 1];
            if (last == L':' || last == L'\xFF1A' || last == L' ' || last == L'\x2026') {
                --end;
            } else if (end >= 3 && caption.compare(end - 3, 3, L"...") == 0) {
                end -= 3;
            } else {
                more = false;
            }
        }
        marked.push_back(Escaped(caption.substr(0, end)) + key + Escaped(caption.substr(end)));
    }
    return marked;
}

}  // namespace AccessKeys
