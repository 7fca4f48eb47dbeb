#pragma once
// Gives this test process display locks of its own: test programs run side by side over
// virtual displays with the same serial numbers, and one's lock must not hold up another.
// On Linux the locks are files; the ones this process made are removed when it ends.

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#ifdef _WIN32
#include <process.h>
#include <stdlib.h>
#else
#include <stdlib.h>
#include <unistd.h>
#endif

#include "DisplayLock.h"

#ifndef _WIN32
// Removes the lock files named with this process's scope from the folders locks go to.
inline void RemoveThisProcessesLockFiles() {
    const std::string prefix = DisplayLockName("");
    for (const char* variable : {"XDG_RUNTIME_DIR", "TMPDIR"}) {
        const char* folder = std::getenv(variable);
        for (const std::string& candidate :
             {std::string(folder != nullptr ? folder : ""), std::string("/tmp")}) {
            std::error_code error;
            if (candidate.empty() || !std::filesystem::is_directory(candidate, error)) {
                continue;
            }
            for (const auto& entry : std::filesystem::directory_iterator(candidate, error)) {
                if (entry.path().filename().string().rfind(prefix, 0) == 0) {
                    std::filesystem::remove(entry.path(), error);
                }
            }
        }
    }
}
#endif

inline void ScopeDisplayLocksToThisProcess() {
#ifdef _WIN32
    const std::string scope = "test" + std::to_string(_getpid());
    _putenv_s("VLR_DISPLAY_LOCK_SCOPE", scope.c_str());
#else
    const std::string scope = "test" + std::to_string(getpid());
    setenv("VLR_DISPLAY_LOCK_SCOPE", scope.c_str(), 1);
    static const bool registered = std::atexit(RemoveThisProcessesLockFiles) == 0;
    (void)registered;
#endif
}
