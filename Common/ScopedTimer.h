#pragma once
// Times a scope with the high-resolution counter and, when the trace is on, logs
// "TIME: <label><suffix> <elapsed> ms" as the scope ends.

#include <chrono>
#include <string>

class CScopedTimer {
public:
    explicit CScopedTimer(std::string label_I, const char* suffix_I = "");
    ~CScopedTimer();
    CScopedTimer(const CScopedTimer&) = delete;
    CScopedTimer& operator=(const CScopedTimer&) = delete;

private:
    bool mActive;
    std::string mLabel;
    std::chrono::steady_clock::time_point mStart;
};
