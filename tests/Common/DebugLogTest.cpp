#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "Assert.h"
#include "DebugLog.h"
#include "LogCapture.h"
#include "ScopedTimer.h"

TEST(DebugLog, WritesOnlyWhileSwitchedOnAndVerboseOnlyAtVerboseLevel) {
    std::vector<std::string> seen;
    int sink = DebugLog::AddSink([&](ELogLevel, std::string_view text) { seen.emplace_back(text); });
    DebugLog::SetPlatformSinkMuted(true);

    DebugLog::SetEnabled(false);
    DLog("off %d\n", 1);
    DLogWarning("off warning\n");
    EXPECT_TRUE(seen.empty());

    DebugLog::SetEnabled(true);
    DebugLog::SetVerbose(false);
    DLog("info %d\n", 2);
    DLogVerbose("verbose %d\n", 3);
    DebugLog::SetVerbose(true);
    DLogVerbose("verbose %s\n", "now");
    DebugLog::SetEnabled(false);
    DebugLog::SetVerbose(false);

    DebugLog::RemoveSink(sink);
    DebugLog::SetPlatformSinkMuted(false);
    EXPECT_EQ(seen, (std::vector<std::string>{"info 2\n", "verbose now\n"}));
}

TEST(DebugLog, LongLinesAreNotCut) {
    CLogCapture log;
    std::string text(3000, 'x');
    DLog("%s|\n", text.c_str());
    ASSERT_EQ(log.Writes().size(), 1u);
    EXPECT_EQ(log.Writes()[0], text + "|\n");
}

TEST(DebugLog, HexDumpPutsSixteenBytesOnALineUnderItsTitle) {
    CLogCapture log;
    ByteBuffer bytes;
    for (int i = 0; i < 18; ++i) {
        bytes.push_back(static_cast<uint8_t>(0xF0 + i));
    }
    DLogHex("Reset w", bytes);
    DLogHex("Empty", ByteBuffer{});
    ASSERT_EQ(log.Writes().size(), 2u);
    EXPECT_EQ(log.Writes()[0], "Reset w\n F0 F1 F2 F3 F4 F5 F6 F7 F8 F9 FA FB FC FD FE FF\n 00 01\n");
    EXPECT_EQ(log.Writes()[1], "Empty\n");
}

TEST(DebugLog, AssertWritesConditionFileAndLineAndCarriesOn) {
    CLogCapture log;
    unsigned long before = DebugLog::AssertCount();
    int parens = 0;
    const int line = __LINE__ + 1;
    VLR_ASSERT(parens != 0);
    VLR_ASSERT(parens == 0);  // holds: no report
    VLR_ASSERT_FAIL("\"Should not be called on a Non-Continuous value\"");
    EXPECT_EQ(DebugLog::AssertCount(), before + 2);
    ASSERT_EQ(log.Writes().size(), 2u);
    EXPECT_EQ(log.Writes()[0],
              "Assert:(parens != 0) in " + std::string(__FILE__) + " at " + std::to_string(line) + "\n");
    EXPECT_EQ(log.Asserts()[1], "\"Should not be called on a Non-Continuous value\"");
}

TEST(DebugLog, LogFileReceivesTheTraceToo) {
    const std::string path = ::testing::TempDir() + "vlr_debuglog_test.txt";
    std::remove(path.c_str());
    {
        CLogCapture log;
        ASSERT_TRUE(DebugLog::SetLogFile(path));
        DLog("to file %i\n", 7);
        DebugLog::SetLogFile("");
        DLog("not in file\n");
    }
    std::ifstream in(path);
    std::stringstream content;
    content << in.rdbuf();
    EXPECT_EQ(content.str(), "to file 7\n");
    std::remove(path.c_str());
    EXPECT_FALSE(DebugLog::SetLogFile(::testing::TempDir() + "no/such/folder/log.txt"));
}

TEST(ScopedTimer, LogsTimeWithLabelWhenTheScopeEnds) {
    CLogCapture log;
    {
        CScopedTimer timer("CDisplay::Initialize", " MonitorName");
        EXPECT_FALSE(log.Contains("TIME:"));
    }
    ASSERT_EQ(log.Writes().size(), 1u);
    EXPECT_EQ(log.Writes()[0].rfind("TIME: CDisplay::Initialize MonitorName ", 0), 0u) << log.Writes()[0];
    EXPECT_NE(log.Writes()[0].find(" ms\n"), std::string::npos);
}
