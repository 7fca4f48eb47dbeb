#pragma once
// Assertions that report and carry on: a failed condition writes
// "Assert:(<condition>) in <file> at <line>" to the debug trace at warning level and
// execution continues, so a malformed reply or string never stops the program.

namespace DebugLog {
void AssertFailed(const char* conditionText_I, const char* file_I, int line_I);
// Number of failed assertions since the process started (tests compare before and after).
unsigned long AssertCount();
}  // namespace DebugLog

// The condition's own text is what the trace shows.
#define VLR_ASSERT(condition) \
    ((condition) ? static_cast<void>(0) : DebugLog::AssertFailed(#condition, __FILE__, __LINE__))

// For checks whose logged text is fixed and differs from the expression that tests it.
#define VLR_ASSERT_AS(condition, text) \
    ((condition) ? static_cast<void>(0) : DebugLog::AssertFailed(text, __FILE__, __LINE__))

// An unconditional failure, for code paths that must not be reached.
#define VLR_ASSERT_FAIL(text) DebugLog::AssertFailed(text, __FILE__, __LINE__)
