#include <gtest/gtest.h>

#include "AccessKeys.h"

using Texts = std::vector<std::wstring>;

TEST(AccessKeys, EachKeyOnceFirstLettersFirstThenAnyLetter) {
    // "Color Space" finds C and S taken (and o by "Color Setting"): its l is free.
    EXPECT_EQ(AccessKeys::Mark({L"Contrast:", L"Save", L"Color Setting:", L"Color Space:", L"R&D", L"..."},
                               {}, false),
              (Texts{L"&Contrast:", L"&Save", L"C&olor Setting:", L"Co&lor Space:", L"&R&&D", L"..."}));
    // Other scripts mark their own letters; case does not make a second key.
    EXPECT_EQ(AccessKeys::Mark({L"Яркость:", L"яркость", L"Kontrast:"}, {}, false),
              (Texts{L"&Яркость:", L"я&ркость", L"&Kontrast:"}));
}

TEST(AccessKeys, JapaneseKoreanAndChineseCarryTheEnglishLetterBeforeTheColonOrEllipsis) {
    EXPECT_EQ(AccessKeys::Mark(
                  {L"\u8F1D\u5EA6:", L"\u8A73\u7D30\u8A2D\u5B9A...", L"\u4FDD\u5B58", L"\u9AD8\u7EA7\u2026"},
                  {L"Brightness:", L"Advanced...", L"Save", L"Backlight"}, true),
              (Texts{L"\u8F1D\u5EA6(&B):", L"\u8A73\u7D30\u8A2D\u5B9A(&A)...", L"\u4FDD\u5B58(&S)",
                     L"\u9AD8\u7EA7(&C)\u2026"}));
}
