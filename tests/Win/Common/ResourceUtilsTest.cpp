#include <gtest/gtest.h>

#include "LanguageProvider.h"
#include "LogCapture.h"
#include "ResourceUtils.h"
#include "StringIds.h"
#include "StringUtilities.h"

namespace {

// The language ids the resources carry.
const LANGID kLanguages[] = {0x07, 0x09, 0x0A, 0x0C, 0x10, 0x11,   0x12,
                             0x13, 0x15, 0x16, 0x19, 0x1F, 0x0404, 0x0804};

// Every id the dialogs, boxes and discovery load.
std::vector<uint32_t> IdsInUse() {
    std::vector<uint32_t> ids;
    for (uint32_t id = 2000; id <= 2023; ++id) {
        ids.push_back(id);
    }
    for (uint32_t id = 2025; id <= 2038; ++id) {
        ids.push_back(id);
    }
    for (uint32_t id = 2054; id <= 2091; ++id) {
        ids.push_back(id);
    }
    for (uint32_t id = 2201; id <= 2230; ++id) {
        ids.push_back(id);
    }
    for (uint32_t id : {2900, 2901, 2902, 2903, 2904, 2905, 2908, 2909, 2910, 2911, 2912, 2916, 2917, 2918,
                        2919, 2920, 2921, 2922, 2923}) {
        ids.push_back(id);
    }
    return ids;
}

std::string Utf8(const std::wstring& text) {
    return Utf16ToUtf8(std::u16string(text.begin(), text.end()));
}

}  // namespace

TEST(ResourceUtils, EveryLanguageHasEveryTextInValidUtf8) {
    CLogCapture log;
    for (LANGID language : kLanguages) {
        for (uint32_t id : IdsInUse()) {
            const std::wstring text = LoadTableString(id, language, false);
            EXPECT_FALSE(text.empty()) << std::hex << language << " " << std::dec << id;
            EXPECT_TRUE(IsValidUtf8(Utf8(text))) << std::hex << language << " " << std::dec << id;
            EXPECT_EQ(text.find(L'\x0298'), std::wstring::npos);
        }
    }
    EXPECT_TRUE(log.Asserts().empty());
    EXPECT_EQ(LoadTableString(StringId::kProductTitle, 0x07), L"Velor Display Settings");
    EXPECT_EQ(LoadTableString(2002, 0x07), L"Helligkeit:");
    EXPECT_EQ(LoadTableString(2002, 0x09), L"Brightness:");
    EXPECT_EQ(LoadTableString(2900, 0x09), L"There was an error talking to the display.");
    EXPECT_EQ(LoadTableString(2011, 0x11), L"6500K");
}

TEST(ResourceUtils, FallbackThroughRelatedLanguages) {
    CLogCapture log;
    // A French request for a block that only English has: 0x040C, 0x0C, then 0x09.
    EXPECT_EQ(LoadTableString(3000, 0x040C), L"Only in English");
    EXPECT_EQ(LoadTableString(2002, 0x040C), L"Luminosité :");
    EXPECT_EQ(LoadTableString(2002, 0x0C07), L"Helligkeit:");  // German (Austria)
    EXPECT_EQ(LoadTableString(2002, 0x0416), L"Brilho:");      // Brazilian Portuguese
    // Hong Kong finds the Traditional table, Singapore the Simplified one.
    EXPECT_EQ(LoadTableString(2003, 0x0C04), L"\x5C0D\x6BD4:");        // Traditional
    EXPECT_EQ(LoadTableString(2003, 0x1004), L"\x5BF9\x6BD4\x5EA6:");  // Simplified
    // An unknown neutral language falls to English; Chinese never does.
    EXPECT_EQ(LoadTableString(2002, 0x0036), L"Brightness:");
    EXPECT_TRUE(log.Asserts().empty());
    log.Clear();
    EXPECT_EQ(LoadTableString(3000, 0x0804), L"");
    EXPECT_TRUE(log.Contains("Couldn't get table string 3000 (lang 0000, mod "));
    EXPECT_EQ(LoadTableString(3000, 0x040C, false), L"");
    EXPECT_TRUE(log.Contains("Couldn't get table string 3000 (lang 040c, mod "));
    EXPECT_EQ(LoadTableString(4321, 0x09), L"");
}

TEST(ResourceUtils, PlainAndUnpaddedTextsDecode) {
    EXPECT_EQ(LoadTableString(3000, 0x09), L"Only in English");  // stored plain
    EXPECT_EQ(LoadTableString(3001, 0x09), L"Unpadded");         // base64 without its "="
}

TEST(ResourceUtils, GroupsNameEveryTabletInEveryLanguage) {
    const uint16_t productIds[] = {0x0304, 0x0333, 0x0325, 0x032B, 0x032A, 0x037C, 0x0352,
                                   0x03B2, 0x034D, 0x034E, 0x0398, 0x0399, 0x0390, 0x03AE,
                                   0x0391, 0x0396, 0x03B0, 0x03A6, 0x03BD};
    for (LANGID language : kLanguages) {
        for (uint16_t productId : productIds) {
            EXPECT_EQ(LoadGroupString("2000", productId, language).rfind(L"Velor ", 0), 0u)
                << std::hex << productId;
            EXPECT_FALSE(LoadGroupString("2101", productId, language).empty()) << std::hex << productId;
        }
    }
    EXPECT_EQ(LoadGroupString("2000", 0x03A6, 0x0C0A), L"Velor Studio 24");
    EXPECT_EQ(LoadGroupString("2101", 0x0390, 0x09), L"VC-2440T");

    CLogCapture log;
    EXPECT_EQ(LoadGroupString("2000", 0x0000, 0x09), L"");
    EXPECT_TRUE(log.Contains("Couldn't get group string '2000' / 0 (lang 0009, mod "));
    EXPECT_EQ(LoadGroupString("2999", 0x03A6, 0x09), L"");
    EXPECT_TRUE(log.Contains("GetResourceDataNo resource\n"));
}

TEST(LanguageProvider, NamesAndTheUsersLanguage) {
    CLogCapture log;
    CLanguageProvider provider;
    EXPECT_TRUE(log.Asserts().empty());
    EXPECT_EQ(provider.LanguageIdFromName("zh_CN"), 0x0804);
    EXPECT_EQ(provider.LanguageIdFromName("zh_TW"), 0x0404);
    EXPECT_EQ(provider.LanguageIdFromName("neutral"), 0x0009);
    EXPECT_EQ(provider.LanguageIdFromName("de"), 0x0407);
    EXPECT_EQ(provider.LanguageIdFromName("EGerman"), 0x0407);
    EXPECT_EQ(provider.LanguageIdFromName("userUI"), CLanguageProvider::UserInterfaceLanguage());
    EXPECT_NE(provider.LanguageIdFromName("user"), 0);
    EXPECT_EQ(provider.LanguageIdFromName("klingon"), CLanguageProvider::UserInterfaceLanguage());
    EXPECT_EQ(provider.LanguageFromId(0x0407), EGerman);
    EXPECT_EQ(provider.LanguageFromId(0x0C07), EGerman);
    EXPECT_EQ(provider.LanguageFromId(0x0416), EBrazilian);
    EXPECT_EQ(provider.LanguageFromId(0x0036), EAmericanEnglish);
    EXPECT_EQ(provider.LanguageIdOf(ETurkish), 0x041F);
    EXPECT_EQ(static_cast<int>(ETurkish), 19);
    EXPECT_EQ(static_cast<int>(LAST_ELANGUAGE), 24);
}

TEST(LanguageProvider, PlainLanguageNamesReachTheirNearestTableAndTheLogSaysWhich) {
    CLanguageProvider provider;
    CLogCapture log;
    // Chinese without a region is Simplified; with a hyphen it is the same as with "_".
    EXPECT_EQ(LoadTableString(2001, provider.LanguageIdFromName("zh")), L"\u663E\u793A\u5668:");
    EXPECT_TRUE(log.Contains("CLanguageProvider: language zh taken as zh_CN\n"));
    EXPECT_EQ(LoadTableString(2001, provider.LanguageIdFromName("zh-TW")), L"\u986F\u793A\u5668:");
    EXPECT_EQ(provider.LanguageIdFromName("pt"), 0x0816);
    // No Arabic table: Arabic reads the English one, and says so, instead of the user's language.
    const LANGID arabic = provider.LanguageIdFromName("ar");
    EXPECT_EQ(arabic & 0x03FF, 0x01);
    EXPECT_TRUE(log.Contains("CLanguageProvider: language ar taken as "));
    EXPECT_EQ(LoadTableString(2001, arabic), L"Display:");
    EXPECT_EQ(TableLanguage(2001, arabic), 0x0009);
    EXPECT_EQ(TableLanguage(2001, 0x0C07), 0x0007);
    EXPECT_EQ(TableLanguage(2001, 0x0004), 0);  // neutral Chinese never falls back to English
}

TEST(ResourceUtils, EnergySmartIsTranslatedWhereTheLanguageHasAWord) {
    // English keeps its own words; every other table says it in its language.
    for (LANGID language : kLanguages) {
        if (language == 0x09) {
            continue;
        }
        EXPECT_EQ(LoadTableString(2208, language).find(L"Energy Smart"), std::wstring::npos)
            << std::hex << language;
    }
}
