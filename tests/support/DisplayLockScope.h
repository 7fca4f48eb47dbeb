#pragma once
// Gives this test process display locks of its own: test programs run side by side over
// virtual displays with the same serial numbers, and one's lock must not hold up another.

#include <string>

#ifdef _WIN32
#include <process.h>
#include <stdlib.h>
#else
#include <stdlib.h>
#include <unistd.h>
#endif

inline void ScopeDisplayLocksToThisProcess() {
#ifdef _WIN32
    const std::string scope = "test" + std::to_string(_getpid());
    _putenv_s("VLR_DISPLAY_LOCK_SCOPE", scope.c_str());
#else
    const std::string scope = "test" + std::to_string(getpid());
    setenv("VLR_DISPLAY_LOCK_SCOPE", scope.c_str(), 1);
#endif
}
