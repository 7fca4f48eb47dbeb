#include "Assert.h"

#include <atomic>

#include "DebugLog.h"

namespace DebugLog {
namespace {
std::atomic<unsigned long> gAssertCount{0};
}

void AssertFailed(const char* conditionText_I, const char* file_I, int line_I) {
    gAssertCount.fetch_add(1, std::memory_order_relaxed);
    Write(ELogLevel::Warning, "Assert:(%s) in %s at %i\n", conditionText_I, file_I, line_I);
}

unsigned long AssertCount() {
    return gAssertCount.load(std::memory_order_relaxed);
}

}  // namespace DebugLog
