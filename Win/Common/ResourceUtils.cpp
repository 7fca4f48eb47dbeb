#include "ResourceUtils.h"

#include <vector>

#include "Assert.h"
#include "DebugLog.h"
#include "LanguageFallback.h"
#include "StringUtilities.h"

namespace {

struct SLanguageSearch {
    LANGID wanted;
    bool found;
};

BOOL CALLBACK MatchLanguage(HMODULE, LPCWSTR, LPCWSTR, WORD language_I, LONG_PTR search_I) {
    auto* search = reinterpret_cast<SLanguageSearch*>(search_I);
    if (language_I == search->wanted) {
        search->found = true;
        return FALSE;
    }
    return TRUE;
}

// The resource in exactly this language (the system's own lookup would substitute others).
HRSRC FindExactly(HMODULE module_I, LPCWSTR type_I, LPCWSTR name_I, LANGID language_I) {
    SLanguageSearch search{language_I, false};
    EnumResourceLanguagesW(module_I, type_I, name_I, &MatchLanguage, reinterpret_cast<LONG_PTR>(&search));
    return search.found ? FindResourceExW(module_I, type_I, name_I, language_I) : nullptr;
}

// Follows the fallback chain until the resource is found; language_IO ends at the language
// last tried.
HRSRC FindWithFallback(HMODULE module_I, LPCWSTR type_I, LPCWSTR name_I, LANGID& language_IO,
                       bool fallback_I) {
    uint16_t language = language_IO;
    for (;;) {
        if (HRSRC found = FindExactly(module_I, type_I, name_I, language)) {
            language_IO = language;
            return found;
        }
        if (!fallback_I || !NextFallbackLanguage(language)) {
            language_IO = language;
            return nullptr;
        }
    }
}

// The bytes of a found resource; empty with a log line when the system refuses them.
std::vector<uint8_t> GetResourceData(HMODULE module_I, HRSRC resource_I) {
    static const char* const kFunction = "GetResourceData";
    if (resource_I == nullptr) {
        DLog("%sNo resource\n", kFunction);
        return {};
    }
    const DWORD size = SizeofResource(module_I, resource_I);
    if (size == 0) {
        DLog("%sNo size\n", kFunction);
        return {};
    }
    HGLOBAL loaded = LoadResource(module_I, resource_I);
    if (loaded == nullptr) {
        DLog("%sNo load\n", kFunction);
        return {};
    }
    const void* data = LockResource(loaded);
    if (data == nullptr) {
        DLog("%sNo lock\n", kFunction);
        return {};
    }
    const auto* bytes = static_cast<const uint8_t*>(data);
    return std::vector<uint8_t>(bytes, bytes + size);
}

std::wstring ToWide(const std::u16string& text_I) {
    return std::wstring(text_I.begin(), text_I.end());
}

}  // namespace

std::wstring LoadTableString(uint32_t stringId_I, LANGID languageId_I, bool fallbackAllowed_I,
                             HMODULE module_I) {
    HMODULE module = module_I != nullptr ? module_I : GetModuleHandleW(nullptr);
    LANGID language = languageId_I;
    const LPCWSTR block = MAKEINTRESOURCEW(stringId_I / 16 + 1);
    HRSRC resource =
        FindWithFallback(module, MAKEINTRESOURCEW(6) /* RT_STRING */, block, language, fallbackAllowed_I);
    std::vector<uint8_t> data =
        resource != nullptr ? GetResourceData(module, resource) : std::vector<uint8_t>();
    // Sixteen length-prefixed UTF-16 strings; walk to ours.
    size_t position = 0;
    const size_t words = data.size() / 2;
    auto word = [&data](size_t index_I) {
        return static_cast<char16_t>(data[2 * index_I] | (data[2 * index_I + 1] << 8));
    };
    for (uint32_t entry = 0; entry < stringId_I % 16 && position < words; ++entry) {
        position += 1 + word(position);
    }
    if (position >= words || word(position) == 0) {
        DLog("Couldn't get table string %d (lang %04x, mod %p)\n", static_cast<int>(stringId_I), language,
             static_cast<void*>(module));
        return {};
    }
    const size_t size = word(position);
    std::u16string stored;
    for (size_t i = 0; i < size && position + 1 + i < words; ++i) {
        stored += word(position + 1 + i);
    }
    // The stored length counts the terminating zero that is part of the stored text.
    const size_t textLength = stored.find(u'\0') == std::u16string::npos ? stored.size() : stored.find(u'\0');
    VLR_ASSERT_AS(textLength == size - 1, "wcslen(pwsz) == size");
    return ToWide(DecodeCodedString(stored.substr(0, std::min(textLength, size - 1))));
}

LANGID TableLanguage(uint32_t stringId_I, LANGID languageId_I, HMODULE module_I) {
    HMODULE module = module_I != nullptr ? module_I : GetModuleHandleW(nullptr);
    LANGID language = languageId_I;
    const LPCWSTR block = MAKEINTRESOURCEW(stringId_I / 16 + 1);
    return FindWithFallback(module, MAKEINTRESOURCEW(6) /* RT_STRING */, block, language, true) != nullptr
               ? language
               : LANGID(0);
}

std::wstring LoadGroupString(const std::string& group_I, uint16_t key_I, LANGID languageId_I,
                             HMODULE module_I) {
    HMODULE module = module_I != nullptr ? module_I : GetModuleHandleW(nullptr);
    LANGID language = languageId_I;
    const std::wstring name(group_I.begin(), group_I.end());
    HRSRC resource =
        FindWithFallback(module, MAKEINTRESOURCEW(10) /* RT_RCDATA */, name.c_str(), language, true);
    const std::vector<uint8_t> data = GetResourceData(module, resource);
    // Entries: key, coded UTF-16 text, a zero character.
    size_t i = 0;
    while (i + 2 <= data.size()) {
        const uint16_t key = static_cast<uint16_t>(data[i] | (data[i + 1] << 8));
        i += 2;
        std::u16string text;
        while (i + 2 <= data.size()) {
            const char16_t c = static_cast<char16_t>(data[i] | (data[i + 1] << 8));
            i += 2;
            if (c == u'\0') {
                break;
            }
            text += c;
        }
        if (key == key_I) {
            return ToWide(DecodeCodedString(text));
        }
    }
    DLog("Couldn't get group string '%s' / %d (lang %04x, mod %p)\n", group_I.c_str(), key_I, language,
         static_cast<void*>(module));
    return {};
}
