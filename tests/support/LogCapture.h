#pragma once
// Switches the debug trace on for the lifetime of the object and captures every line written,
// so a test can assert on log lines and assertion reports. The platform sink is muted meanwhile.

#include <string>
#include <string_view>
#include <vector>

#include "DebugLog.h"

class CLogCapture {
public:
    explicit CLogCapture(bool verbose_I = true);
    ~CLogCapture();
    CLogCapture(const CLogCapture&) = delete;
    CLogCapture& operator=(const CLogCapture&) = delete;

    // Each write as it was made (a line, or a whole hex dump).
    std::vector<std::string> Writes() const;
    std::string Text() const;
    bool Contains(std::string_view text_I) const;
    size_t Count(std::string_view text_I) const;
    // The condition texts of the assertion reports, in order.
    std::vector<std::string> Asserts() const;
    void Clear();

private:
    int mSinkId;
    bool mWasEnabled;
    bool mWasVerbose;
    std::vector<std::string> mWrites;
};
