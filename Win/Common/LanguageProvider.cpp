#include "LanguageProvider.h"

#include <algorithm>
#include <vector>

#include "Assert.h"
#include "DebugLog.h"

namespace {

struct SLanguageRow {
    ELanguage language;
    const char* enumName;
    const char* code;
    LANGID id;
};

// One row per interface language, in the order of ELanguage.
const std::vector<SLanguageRow>& LangTable() {
    static const std::vector<SLanguageRow> mLangTable = {
        {EAmericanEnglish, "EAmericanEnglish", "en_US", 0x0409},
        {EChineseSimplified, "EChineseSimplified", "zh_CN", 0x0804},
        {EChineseTraditional, "EChineseTraditional", "zh_TW", 0x0404},
        {EEuropeanEnglish, "EEuropeanEnglish", "en_GB", 0x0809},
        {EFrench, "EFrench", "fr", 0x040C},
        {EGerman, "EGerman", "de", 0x0407},
        {EJapanese, "EJapanese", "ja", 0x0411},
        {EKorean, "EKorean", "ko", 0x0412},
        {EItalian, "EItalian", "it", 0x0410},
        {ESpanish, "ESpanish", "es", 0x0C0A},
        {EPortuguese, "EPortuguese", "pt", 0x0816},
        {EBrazilian, "EBrazilian", "pt_BR", 0x0416},
        {EDutch, "EDutch", "nl", 0x0413},
        {ERussian, "ERussian", "ru", 0x0419},
        {ESwedish, "ESwedish", "sv", 0x041D},
        {EPolish, "EPolish", "pl", 0x0415},
        {EDanish, "EDanish", "da", 0x0406},
        {EFinnish, "EFinnish", "fi", 0x040B},
        {ENorwegian, "ENorwegian", "nb", 0x0414},
        {ETurkish, "ETurkish", "tr", 0x041F},
        {ECzech, "ECzech", "cs", 0x0405},
        {EGreek, "EGreek", "el", 0x0408},
        {EHungarian, "EHungarian", "hu", 0x040E},
        {ESlovak, "ESlovak", "sk", 0x041B},
    };
    return mLangTable;
}

constexpr LANGID kEnglishNeutral = 0x0009;

}  // namespace

CLanguageProvider::CLanguageProvider() {
    const auto& mLangTable = LangTable();
    VLR_ASSERT(mLangTable.size() == LAST_ELANGUAGE);
}

LANGID CLanguageProvider::UserInterfaceLanguage() {
    using GetUserDefaultUILanguageFn = LANGID(WINAPI*)();
    HMODULE kernel = GetModuleHandleW(L"KERNEL32.DLL");
    FARPROC address = kernel != nullptr ? GetProcAddress(kernel, "GetUserDefaultUILanguage") : nullptr;
    if (address != nullptr) {
        return reinterpret_cast<GetUserDefaultUILanguageFn>(reinterpret_cast<void*>(address))();
    }
    return LANGIDFROMLCID(GetUserDefaultLCID());
}

LANGID CLanguageProvider::LanguageIdFromName(const std::string& name_I) const {
    if (name_I == "userUI") {
        return UserInterfaceLanguage();
    }
    if (name_I == "user") {
        return LANGIDFROMLCID(GetUserDefaultLCID());
    }
    if (name_I == "neutral") {
        return kEnglishNeutral;  // the program's own base language
    }
    // "zh-TW" is written as often as "zh_TW".
    std::string name = name_I;
    std::replace(name.begin(), name.end(), '-', '_');
    for (const SLanguageRow& row : LangTable()) {
        if (name == row.code || name_I == row.enumName) {
            return row.id;
        }
    }
    if (name == "en") {
        return 0x0409;
    }
    // A plain language ("zh") stands for its first row ("zh_CN").
    for (const SLanguageRow& row : LangTable()) {
        const std::string code = row.code;
        if (code.size() > name.size() && code.compare(0, name.size(), name) == 0 &&
            code[name.size()] == '_') {
            DLog("CLanguageProvider: language %s taken as %s\n", name_I.c_str(), row.code);
            return row.id;
        }
    }
    // Any other language Windows knows ("ar", "sv_FI"): its own id, whose texts come through
    // the fallback (for most, the English table).
    std::wstring locale(name.begin(), name.end());
    std::replace(locale.begin(), locale.end(), L'_', L'-');
    const LANGID known = LANGIDFROMLCID(LocaleNameToLCID(locale.c_str(), 0));
    if (!name.empty() && known != 0 && known != LANGIDFROMLCID(LOCALE_CUSTOM_UNSPECIFIED)) {
        // Neutral Chinese has no texts of its own and never falls back to English.
        const LANGID id = (known & 0x03FF) == 0x04 && known < 0x0400 ? LANGID(0x0804) : known;
        DLog("CLanguageProvider: language %s taken as %04x\n", name_I.c_str(), id);
        return id;
    }
    DLog("CLanguageProvider: unknown language %s, using the user's\n", name_I.c_str());
    return UserInterfaceLanguage();
}

ELanguage CLanguageProvider::LanguageFromId(LANGID languageId_I) const {
    for (const SLanguageRow& row : LangTable()) {
        if (row.id == languageId_I) {
            return row.language;
        }
    }
    // Another region of a known language: the first row with the same primary language.
    for (const SLanguageRow& row : LangTable()) {
        if ((row.id & 0x03FF) == (languageId_I & 0x03FF)) {
            return row.language;
        }
    }
    return EAmericanEnglish;
}

LANGID CLanguageProvider::LanguageIdOf(ELanguage language_I) const {
    for (const SLanguageRow& row : LangTable()) {
        if (row.language == language_I) {
            return row.id;
        }
    }
    return 0x0409;
}

std::string CLanguageProvider::CodeOf(LANGID languageId_I) const {
    const ELanguage language = LanguageFromId(languageId_I);
    for (const SLanguageRow& row : LangTable()) {
        if (row.language == language) {
            return row.code;
        }
    }
    return "en";
}
