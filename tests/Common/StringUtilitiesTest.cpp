#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "LanguageFallback.h"
#include "LogCapture.h"
#include "StringUtilities.h"

namespace {
std::u16string Coded(const char* base64) {
    std::u16string coded(1, kCodedTextMark);
    for (const char* c = base64; *c != '\0'; ++c) {
        coded += static_cast<char16_t>(*c);
    }
    return coded;
}
}  // namespace

TEST(CodedText, DecodesBase64OfUtf8AndLeavesPlainTextAlone) {
    CLogCapture log;
    EXPECT_EQ(DecodeCodedString(Coded("VmVsb3IgRGlzcGxheSBTZXR0aW5ncw==")), u"Velor Display Settings");
    // Unpadded decodes as padded.
    EXPECT_EQ(DecodeCodedString(Coded("VmVsb3I")), DecodeCodedString(Coded("VmVsb3I=")));
    EXPECT_EQ(DecodeCodedString(Coded("VmVsb3I")), u"Velor");
    // UTF-8 beyond ASCII: "Helligkeit" is plain, "Luminosité" and "輝度" are not.
    EXPECT_EQ(DecodeCodedString(Coded("THVtaW5vc2l0w6k=")), u"Luminosit\u00e9");
    EXPECT_EQ(DecodeCodedString(Coded("6Lyd5bqm")), u"\u8f1d\u5ea6");
    EXPECT_EQ(DecodeCodedString(u"Helligkeit"), u"Helligkeit");
    EXPECT_EQ(DecodeCodedString(u""), u"");
    EXPECT_EQ(DecodeCodedString(Coded("")), u"");
    EXPECT_TRUE(log.Asserts().empty());

    // Characters outside the alphabet are reported; decoding goes on.
    DecodeCodedString(Coded("V!Vs"));
    EXPECT_EQ(log.Asserts().front(), "(valueTable[coded_I] & 0x80) == 0");
    log.Clear();
    std::u16string wide = Coded("QUJD");
    wide += u'\u0100';
    DecodeCodedString(wide);
    EXPECT_EQ(log.Asserts().front(), "codedString_I[i] < 256");
    log.Clear();
    Base64Decode("QUJ");
    EXPECT_EQ(log.Asserts().front(), "(((codedbuffer_I.size() + 3) / 4) * 4) == codedbuffer_I.size()");
}

TEST(CodedText, Utf8AndUtf16RoundTrip) {
    const std::string text =
        "Gr\xC3\xB6\xC3\x9F"
        "e \xE8\xBC\x9D \xF0\x9F\x96\x8A";
    EXPECT_TRUE(IsValidUtf8(text));
    EXPECT_EQ(Utf16ToUtf8(Utf8ToUtf16(text)), text);
    EXPECT_EQ(Utf8ToUtf16("\xF0\x9F\x96\x8A").size(), 2u);  // a surrogate pair
    EXPECT_FALSE(IsValidUtf8("\xC3"));
    EXPECT_FALSE(IsValidUtf8("\x80"));
    EXPECT_EQ(Utf8ToUtf16("a\xFF"
                          "b"),
              u"a\uFFFDb");
}

TEST(CodedText, MalformedUtf8BecomesOneReplacementPerBadSequenceAndLosesNothingAfterIt) {
    // As code page 65001 converts: a bad continuation ends the sequence there.
    EXPECT_EQ(Utf8ToUtf16("\xC3\x28\x78"), u"\uFFFD(x");
    EXPECT_EQ(Utf8ToUtf16("\xE2\x82\x41"), u"\uFFFDA");  // three-byte lead, one continuation
    EXPECT_EQ(Utf8ToUtf16("\xF0\x9F\x96\x41\x42"), u"\uFFFDAB");
    EXPECT_EQ(Utf8ToUtf16("\xE2\x82"), u"\uFFFD");  // cut short at the end
    // Overlong forms, surrogates and code points above U+10FFFF are not characters.
    EXPECT_EQ(Utf8ToUtf16("\xC0\xAF"), u"\uFFFD\uFFFD");
    EXPECT_EQ(Utf8ToUtf16("\xE0\x80\xAF"), u"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(Utf8ToUtf16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(Utf8ToUtf16("\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(Utf8ToUtf16("\xF4\x8F\xBF\xBF").size(), 2u);  // U+10FFFF itself is fine
    EXPECT_FALSE(IsValidUtf8("\xC3\x28"));
    EXPECT_FALSE(IsValidUtf8("\xED\xA0\x80"));
    // Through the coded form of the string tables: C3 28 78 is "wyh4".
    EXPECT_EQ(DecodeCodedString(Coded("wyh4")), u"\uFFFD(x");
}

TEST(LanguageFallback, StepsTowardsTheNeutralLanguageThenEnglish) {
    auto chain = [](uint16_t id) {
        std::vector<uint16_t> steps{id};
        while (NextFallbackLanguage(id)) {
            steps.push_back(id);
        }
        return steps;
    };
    EXPECT_EQ(chain(0x040C), (std::vector<uint16_t>{0x040C, 0x000C, 0x0009, 0x0000}));
    EXPECT_EQ(chain(0x0C07), (std::vector<uint16_t>{0x0C07, 0x0007, 0x0009, 0x0000}));
    EXPECT_EQ(chain(0x0416), (std::vector<uint16_t>{0x0416, 0x0016, 0x0009, 0x0000}));
    EXPECT_EQ(chain(0x0036), (std::vector<uint16_t>{0x0036, 0x0009, 0x0000}));
    EXPECT_EQ(chain(0x0009), (std::vector<uint16_t>{0x0009, 0x0000}));
    // Chinese stays Chinese.
    EXPECT_EQ(chain(0x0C04), (std::vector<uint16_t>{0x0C04, 0x0404, 0x0004, 0x0000}));
    EXPECT_EQ(chain(0x1404), (std::vector<uint16_t>{0x1404, 0x0404, 0x0004, 0x0000}));
    EXPECT_EQ(chain(0x1004), (std::vector<uint16_t>{0x1004, 0x0804, 0x0004, 0x0000}));
    EXPECT_EQ(chain(0x0000), (std::vector<uint16_t>{0x0000}));
}

TEST(GeneratedResources, GroupsHoldCodedNamesForEveryTablet) {
    std::ifstream in(std::string(VLR_RESOURCES_DIR) + "/fr_2000.bin", std::ios::binary);
    ASSERT_TRUE(in);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::map<uint16_t, std::u16string> names;
    for (size_t i = 0; i + 2 <= bytes.size();) {
        const uint16_t key = static_cast<uint16_t>(uint8_t(bytes[i]) | (uint8_t(bytes[i + 1]) << 8));
        i += 2;
        std::u16string text;
        while (i + 2 <= bytes.size()) {
            const char16_t c = static_cast<char16_t>(uint8_t(bytes[i]) | (uint8_t(bytes[i + 1]) << 8));
            i += 2;
            if (c == 0) {
                break;
            }
            text += c;
        }
        ASSERT_EQ(text.front(), kCodedTextMark);
        names[key] = DecodeCodedString(text);
    }
    EXPECT_EQ(names.size(), 19u);
    EXPECT_EQ(names.at(0x03A6), u"Velor Studio 24");
    EXPECT_EQ(names.at(0x037C), u"Velor Canvas 22 Pro");
}
