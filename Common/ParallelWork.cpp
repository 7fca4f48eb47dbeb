#include "ParallelWork.h"

#include <thread>
#include <vector>

#include "DebugLog.h"

void RunForEach(size_t count_I, bool atOnce_I, const std::function<void(size_t)>& task_I) {
    if (!atOnce_I || count_I < 2) {
        for (size_t index = 0; index < count_I; ++index) {
            task_I(index);
        }
        return;
    }
    std::vector<std::vector<DebugLog::CHeldLines::SLine>> lines(count_I);
    std::vector<std::thread> threads;
    threads.reserve(count_I);
    for (size_t index = 0; index < count_I; ++index) {
        threads.emplace_back([&, index] {
            DebugLog::CHeldLines held;
            task_I(index);
            lines[index] = held.Take();
        });
    }
    for (size_t index = 0; index < count_I; ++index) {
        threads[index].join();
        DebugLog::CHeldLines::Emit(lines[index]);
    }
}
