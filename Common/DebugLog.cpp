#include "DebugLog.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <map>
#include <mutex>
#include <utility>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace DebugLog {
namespace {

std::atomic<bool> gEnabled{false};
std::atomic<bool> gVerbose{false};
std::atomic<bool> gPlatformMuted{false};

struct Outputs {
    std::mutex mutex;
    std::map<int, Sink> sinks;
    int nextId = 1;
    FILE* file = nullptr;
};

Outputs& TheOutputs() {
    static Outputs outputs;
    return outputs;
}

// The lines of this thread that a CHeldLines holds back, if any.
thread_local std::vector<CHeldLines::SLine>* tHeld = nullptr;

void Emit(ELogLevel level_I, std::string_view text_I) {
    if (tHeld != nullptr) {
        tHeld->push_back({level_I, std::string(text_I)});
        return;
    }
    Outputs& out = TheOutputs();
    std::lock_guard<std::mutex> lock(out.mutex);
    if (!gPlatformMuted.load(std::memory_order_relaxed)) {
        std::string line(text_I);
#if defined(_WIN32)
        OutputDebugStringA(line.c_str());
#else
        std::fputs(line.c_str(), stderr);
#endif
    }
    if (out.file != nullptr) {
        std::fwrite(text_I.data(), 1, text_I.size(), out.file);
        std::fflush(out.file);
    }
    for (auto& entry : out.sinks) {
        entry.second(level_I, text_I);
    }
}

}  // namespace

CHeldLines::CHeldLines() : mPrevious(tHeld) {
    tHeld = &mLines;
}

CHeldLines::~CHeldLines() {
    Release();
}

void CHeldLines::Release() {
    if (mHolding) {
        mHolding = false;
        tHeld = mPrevious;
    }
}

void CHeldLines::Emit(std::vector<SLine>& lines_I) {
    for (const SLine& line : lines_I) {
        DebugLog::Emit(line.level, line.text);
    }
    lines_I.clear();
}

std::vector<CHeldLines::SLine> CHeldLines::Take() {
    return std::exchange(mLines, {});
}

void SetEnabled(bool on_I) {
    gEnabled.store(on_I);
}
bool IsEnabled() {
    return gEnabled.load(std::memory_order_relaxed);
}
void SetVerbose(bool on_I) {
    gVerbose.store(on_I);
}
bool IsVerbose() {
    return gVerbose.load(std::memory_order_relaxed);
}

bool IsOn(ELogLevel level_I) {
    if (!IsEnabled()) {
        return false;
    }
    return level_I != ELogLevel::Verbose || IsVerbose();
}

bool SetLogFile(const std::string& path_I) {
    Outputs& out = TheOutputs();
    std::lock_guard<std::mutex> lock(out.mutex);
    if (out.file != nullptr) {
        std::fclose(out.file);
        out.file = nullptr;
    }
    if (path_I.empty()) {
        return true;
    }
    out.file = std::fopen(path_I.c_str(), "a");
    return out.file != nullptr;
}

void SetPlatformSinkMuted(bool muted_I) {
    gPlatformMuted.store(muted_I);
}

int AddSink(Sink sink_I) {
    Outputs& out = TheOutputs();
    std::lock_guard<std::mutex> lock(out.mutex);
    int id = out.nextId++;
    out.sinks.emplace(id, std::move(sink_I));
    return id;
}

void RemoveSink(int id_I) {
    Outputs& out = TheOutputs();
    std::lock_guard<std::mutex> lock(out.mutex);
    out.sinks.erase(id_I);
}

void Write(ELogLevel level_I, const char* format_I, ...) {
    if (!IsOn(level_I)) {
        return;
    }
    char small[512];
    va_list args;
    va_start(args, format_I);
    va_list copy;
    va_copy(copy, args);
    int needed = std::vsnprintf(small, sizeof(small), format_I, args);
    va_end(args);
    if (needed < 0) {
        va_end(copy);
        return;
    }
    if (static_cast<size_t>(needed) < sizeof(small)) {
        va_end(copy);
        Emit(level_I, std::string_view(small, static_cast<size_t>(needed)));
        return;
    }
    std::string large(static_cast<size_t>(needed) + 1, '\0');
    std::vsnprintf(large.data(), large.size(), format_I, copy);
    va_end(copy);
    large.resize(static_cast<size_t>(needed));
    Emit(level_I, large);
}

void HexDump(ELogLevel level_I, const char* title_I, const uint8_t* data_I, size_t size_I) {
    if (!IsOn(level_I)) {
        return;
    }
    static const char kDigits[] = "0123456789ABCDEF";
    std::string text = title_I != nullptr ? title_I : "";
    text += '\n';
    for (size_t i = 0; i < size_I; ++i) {
        text += ' ';
        text += kDigits[data_I[i] >> 4];
        text += kDigits[data_I[i] & 0x0F];
        if (i % 16 == 15 || i + 1 == size_I) {
            text += '\n';
        }
    }
    Emit(level_I, text);
}

void HexDump(ELogLevel level_I, const char* title_I, const ByteBuffer& data_I) {
    HexDump(level_I, title_I, data_I.data(), data_I.size());
}

}  // namespace DebugLog
