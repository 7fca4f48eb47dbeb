#pragma once
// A line on standard error while a long operation runs, a dot added every two seconds and
// "done" at its end; nothing when no one watches (no stream).

#include <condition_variable>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

class CProgressLine {
public:
    CProgressLine(std::ostream* err_I, const std::string& what_I);
    ~CProgressLine();
    CProgressLine(const CProgressLine&) = delete;
    CProgressLine& operator=(const CProgressLine&) = delete;

private:
    std::ostream* mErr;
    std::thread mTicker;
    std::mutex mMutex;
    std::condition_variable mCondition;
    bool mDone = false;
};
