#pragma once
// The program's debug trace. Lines are printf-style and written only while the trace is
// switched on ("/debug"); verbose lines additionally need the verbose level. Output goes to
// the platform sink (OutputDebugStringA on Windows, standard error elsewhere), to an optional
// log file, and to any sinks a test adds to capture the lines.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ByteBuffer.h"

#if defined(__clang__)
#define VLR_PRINTF_FORMAT(fmtIndex, firstArg) __attribute__((format(printf, fmtIndex, firstArg)))
#elif defined(__GNUC__)
// gnu_printf: mingw's printf attribute would check against the Microsoft runtime's formats.
#define VLR_PRINTF_FORMAT(fmtIndex, firstArg) __attribute__((format(gnu_printf, fmtIndex, firstArg)))
#else
#define VLR_PRINTF_FORMAT(fmtIndex, firstArg)
#endif

enum class ELogLevel { Warning = 0, Info = 1, Verbose = 2 };

namespace DebugLog {

void SetEnabled(bool on_I);
bool IsEnabled();
void SetVerbose(bool on_I);
bool IsVerbose();
// True when a line of this level would be written now.
bool IsOn(ELogLevel level_I);

// Appends every written line to the file as well; an empty path closes it. False when the
// file cannot be opened (the trace then goes on without it).
bool SetLogFile(const std::string& path_I);

// Mutes the platform sink (tests capture lines instead of flooding standard error).
void SetPlatformSinkMuted(bool muted_I);

using Sink = std::function<void(ELogLevel, std::string_view)>;
int AddSink(Sink sink_I);
void RemoveSink(int id_I);

void Write(ELogLevel level_I, const char* format_I, ...) VLR_PRINTF_FORMAT(2, 3);

// Holds back the lines this thread writes while it lives, so that work done on a worker can
// be written later at the place a one-after-another run would have written it. Emit writes
// what was held back (and empties it); lines not emitted are dropped with the object.
class CHeldLines {
public:
    CHeldLines();
    ~CHeldLines();
    CHeldLines(const CHeldLines&) = delete;
    CHeldLines& operator=(const CHeldLines&) = delete;

    struct SLine {
        ELogLevel level;
        std::string text;
    };
    // Stops holding on this thread; later lines are written at once.
    void Release();
    // Writes the held lines in order, on whatever thread calls it.
    static void Emit(std::vector<SLine>& lines_I);
    std::vector<SLine> Take();

private:
    std::vector<SLine> mLines;
    std::vector<SLine>* mPrevious = nullptr;
    bool mHolding = true;
};

// Title line, then the bytes as " %2.2X", sixteen to a line.
void HexDump(ELogLevel level_I, const char* title_I, const uint8_t* data_I, size_t size_I);
void HexDump(ELogLevel level_I, const char* title_I, const ByteBuffer& data_I);

}  // namespace DebugLog

// The usual spellings at the call sites.
#define DLog(...) DebugLog::Write(ELogLevel::Info, __VA_ARGS__)
#define DLogVerbose(...) DebugLog::Write(ELogLevel::Verbose, __VA_ARGS__)
#define DLogWarning(...) DebugLog::Write(ELogLevel::Warning, __VA_ARGS__)
#define DLogHex(title, buffer) DebugLog::HexDump(ELogLevel::Info, title, buffer)
