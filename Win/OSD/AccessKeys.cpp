#include "AccessKeys.h"

#include <cwctype>
#include <set>

namespace AccessKeys {
namespace {

// The places a key may go in a text, best first: its first letter, the first letters of its
// other words, then any letter or digit.
std::vector<size_t> Candidates(const std::wstring& text_I) {
    std::vector<size_t> firsts;
    std::vector<size_t> others;
    bool wordStart = true;
    for (size_t i = 0; i < text_I.size(); ++i) {
        const wchar_t c = text_I[i];
        if (std::iswalnum(c)) {
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
        const auto key = static_cast<wchar_t>(std::towupper(text_I[at]));
        if (taken_IO.insert(key).second) {
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

std::vector<std::wstring> Mark(const std::vector<std::wstring>& captions_I, const std::vector<std::wstring>& english_I,
                               bool bracketed_I) {
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
        const std::wstring key = L"(&" + std::wstring(1, static_cast<wchar_t>(std::towupper(english[at]))) + L")";
        size_t end = caption.size();
        while (end > 0 && (caption[end - 1] == L':' || caption[end - 1] == L'\xFF1A' || caption[end - 1] == L' ')) {
            --end;
        }
        marked.push_back(Escaped(caption.substr(0, end)) + key + Escaped(caption.substr(end)));
    }
    return marked;
}

}  // namespace AccessKeys
