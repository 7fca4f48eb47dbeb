#pragma once
// The interface languages the program knows, and the choice of one from a name on the command
// line ("userUI", the user's Windows interface language, by default).

#include <windows.h>

#include <string>

enum ELanguage {
    EAmericanEnglish,
    EChineseSimplified,
    EChineseTraditional,
    EEuropeanEnglish,
    EFrench,
    EGerman,
    EJapanese,
    EKorean,
    EItalian,
    ESpanish,
    EPortuguese,
    EBrazilian,
    EDutch,
    ERussian,
    ESwedish,
    EPolish,
    EDanish,
    EFinnish,
    ENorwegian,
    ETurkish,
    ECzech,
    EGreek,
    EHungarian,
    ESlovak,
    LAST_ELANGUAGE
};

class CLanguageProvider {
public:
    CLanguageProvider();

    // The language id for a name: "userUI", "user", "neutral", "zh_CN", "zh_TW", a language
    // code such as "de" or "pt_BR", or an ELanguage name such as "EGerman". Unknown names
    // give the user's interface language (logged).
    LANGID LanguageIdFromName(const std::string& name_I) const;
    // The interface language that stands for a language id (American English when none).
    ELanguage LanguageFromId(LANGID languageId_I) const;
    LANGID LanguageIdOf(ELanguage language_I) const;
    // The language code ("de", "zh_CN") of the interface language that stands for the id.
    std::string CodeOf(LANGID languageId_I) const;

    // The user's interface language: GetUserDefaultUILanguage when KERNEL32.DLL has it,
    // otherwise the language of GetUserDefaultLCID.
    static LANGID UserInterfaceLanguage();
};
