// Every capabilities string captured from real monitors, oddities and garbage included, goes
// through the three parsers; then random and mutated input does. Nothing may crash or hang,
// and malformed text is reported through the parsers' own assertions only.

#include <gtest/gtest.h>

#include <random>

#include "CapabilitiesParser.h"
#include "DdcPackets.h"
#include "DisplayTraits.h"
#include "LogCapture.h"
#include "TestData.h"

namespace {

// How many "parens" assertions the outer parser must raise for a text: one for every
// character or ")" met outside all parentheses, one more when the text ends unbalanced.
struct SParenFaults {
    size_t outside = 0;
    bool unbalanced = false;
};

SParenFaults ExpectedParenFaults(const std::string& text) {
    SParenFaults faults;
    int depth = 0;
    for (char c : text) {
        if (c == '(') {
            ++depth;
        } else if (c == ')') {
            if (depth >= 3) {
                --depth;
                continue;
            }
            if (depth == 0) {
                ++faults.outside;
            }
            --depth;
        } else if (depth == 0) {
            ++faults.outside;
        }
    }
    faults.unbalanced = depth != 0;
    return faults;
}

// Runs the three parsers as initialisation does; returns the option map.
VCPOptionsMap ParseAll(const std::string& text, uint16_t edid) {
    CapabilitiesMap caps = ParseCapabilitiesString(text);
    VCPOptionsMap options;
    if (caps.count("vcp")) {
        const SCodeVariants variants = DisplayTraitsFor(edid).codeVariants;
        options = CreateVCPCodeMap(variants, caps["vcp"], BuildCodeInfoTable(variants));
    }
    if (caps.count("cmds")) {
        CreateCommandsVector(caps["cmds"]);
    }
    return options;
}

const uint16_t kModels[] = {0x1070, 0x1060, 0x1040, 0x1052};

}  // namespace

TEST(CapabilitiesCorpus, EveryRealStringParsesWithOnlyTheAssertionsItsShapeCallsFor) {
    std::vector<std::string> files = TestData::List("caps", ".txt");
    ASSERT_GE(files.size(), 100u);
    size_t withOptions = 0;
    for (const std::string& file : files) {
        SCOPED_TRACE(file);
        const std::string text = TestData::ReadText("caps/" + file);
        const SParenFaults expected = ExpectedParenFaults(text);

        CLogCapture log;
        CapabilitiesMap caps = ParseCapabilitiesString(text);
        size_t outside = 0;
        size_t unbalanced = 0;
        for (const std::string& condition : log.Asserts()) {
            outside += condition == "parens != 0";
            unbalanced += condition == "parens == 0";
        }
        EXPECT_EQ(outside, expected.outside);
        EXPECT_EQ(unbalanced, expected.unbalanced ? 1u : 0u);
        for (const auto& entry : caps) {
            EXPECT_FALSE(entry.first.empty());
            EXPECT_FALSE(entry.second.empty());
        }

        for (uint16_t model : kModels) {
            VCPOptionsMap options = ParseAll(text, model);
            CodeInfoTable table = BuildCodeInfoTable(DisplayTraitsFor(model).codeVariants);
            for (const auto& entry : options) {
                ASSERT_TRUE(entry.second);
                EXPECT_EQ(entry.second->GetCode(), entry.first);
                EXPECT_TRUE(table.count(entry.first));
                EXPECT_FALSE(entry.second->Info().Table());
            }
            withOptions += !options.empty();
        }
    }
    // Most real strings are usable.
    EXPECT_GT(withOptions, files.size() * 3);
}

TEST(CapabilitiesCorpus, RandomBytesAndMutatedRealStringsNeverBreakTheParsers) {
    std::mt19937 random(20261122);
    std::vector<std::string> files = TestData::List("caps", ".txt");
    ASSERT_FALSE(files.empty());
    std::vector<std::string> corpus;
    for (const std::string& file : files) {
        corpus.push_back(TestData::ReadText("caps/" + file));
    }
    using namespace std::string_literals;
    const std::string alphabet = "()  0123456789ABCDEFabcdefxvcpmodelcmdsmccs_ver\x00\xFF"s;

    CLogCapture log(false);
    for (int round = 0; round < 3000; ++round) {
        std::string text;
        if (round % 3 == 0) {
            // Random bytes from an alphabet rich in what the parsers look at.
            size_t length = random() % 300;
            for (size_t i = 0; i < length; ++i) {
                text += alphabet[random() % alphabet.size()];
            }
        } else {
            // A real string with a few bytes flipped, dropped or cut off.
            text = corpus[random() % corpus.size()];
            int edits = 1 + static_cast<int>(random() % 8);
            for (int e = 0; e < edits && !text.empty(); ++e) {
                size_t pos = random() % text.size();
                switch (random() % 4) {
                    case 0: text[pos] = alphabet[random() % alphabet.size()]; break;
                    case 1: text.erase(pos, 1 + random() % 5); break;
                    case 2: text.insert(pos, 1, random() % 2 ? '(' : ')'); break;
                    default: text.resize(pos); break;
                }
            }
        }
        ParseAll(text, kModels[round % 4]);
        const SCodeVariants variants = DisplayTraitsFor(kModels[round % 4]).codeVariants;
        CreateVCPCodeMap(variants, text, BuildCodeInfoTable(variants));
        CreateCommandsVector(text);
        log.Clear();
    }
}

TEST(CapabilitiesCorpus, RandomRepliesNeverBreakTheReplyChecks) {
    std::mt19937 random(7);
    for (int round = 0; round < 20000; ++round) {
        ByteBuffer reply(random() % 40);
        for (uint8_t& byte : reply) {
            byte = static_cast<uint8_t>(random());
        }
        if (round % 2 == 0 && reply.size() >= 5) {
            // Mostly well-formed headers, so the later checks are reached too.
            reply[0] = 0x6E;
            reply[1] = 0x88;
            reply[2] = 0x02;
            reply[3] = random() % 4 == 0;
        }
        uint8_t code = static_cast<uint8_t>(random());
        SGetReplyValue value;
        StripReplyChecksum(reply);
        std::string error = ReplyErrorText(CheckGetReply(reply, code, random() % 2 == 0, value));
        if (reply.size() < 2) {
            EXPECT_EQ(error, "Send request failed");
        } else if (error.empty()) {
            EXPECT_GE(reply.size(), 10u);
            EXPECT_EQ(reply[4], code);
        }
    }
}
