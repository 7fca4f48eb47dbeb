#include "LogCapture.h"

CLogCapture::CLogCapture(bool verbose_I)
    : mWasEnabled(DebugLog::IsEnabled()), mWasVerbose(DebugLog::IsVerbose()) {
    DebugLog::SetEnabled(true);
    DebugLog::SetVerbose(verbose_I);
    DebugLog::SetPlatformSinkMuted(true);
    mSinkId = DebugLog::AddSink([this](ELogLevel, std::string_view text_I) { mWrites.emplace_back(text_I); });
}

CLogCapture::~CLogCapture() {
    DebugLog::RemoveSink(mSinkId);
    DebugLog::SetEnabled(mWasEnabled);
    DebugLog::SetVerbose(mWasVerbose);
    DebugLog::SetPlatformSinkMuted(false);
}

std::vector<std::string> CLogCapture::Writes() const {
    return mWrites;
}

std::string CLogCapture::Text() const {
    std::string text;
    for (const std::string& write : mWrites) {
        text += write;
    }
    return text;
}

bool CLogCapture::Contains(std::string_view text_I) const {
    return Count(text_I) > 0;
}

size_t CLogCapture::Count(std::string_view text_I) const {
    size_t count = 0;
    for (const std::string& write : mWrites) {
        for (size_t pos = write.find(text_I); pos != std::string::npos; pos = write.find(text_I, pos + 1)) {
            ++count;
        }
    }
    return count;
}

std::vector<std::string> CLogCapture::Asserts() const {
    static const std::string kPrefix = "Assert:(";
    std::vector<std::string> conditions;
    for (const std::string& write : mWrites) {
        if (write.compare(0, kPrefix.size(), kPrefix) != 0) {
            continue;
        }
        size_t end = write.rfind(") in ");
        conditions.push_back(write.substr(
            kPrefix.size(), end == std::string::npos ? std::string::npos : end - kPrefix.size()));
    }
    return conditions;
}

void CLogCapture::Clear() {
    mWrites.clear();
}
