#pragma once
// Work on several displays at the same time, observed as if done one after another: each
// task runs on a thread of its own and holds back its log lines, which are then written
// together and in task order, as a run one after another would write them.

#include <cstddef>
#include <functional>

// Runs task_I(0) .. task_I(count_I - 1) and returns when all have ended; at the same time
// when atOnce_I, else one after another on this thread.
void RunForEach(size_t count_I, bool atOnce_I, const std::function<void(size_t)>& task_I);
