#pragma once
// A folder of a test's own under the system's temporary folder, named after the test and the
// process so that test cases running side by side (CTest runs each case as its own process)
// never share one; made empty at the start and removed with everything in it at the end.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <system_error>

#ifdef _WIN32
#include <process.h>
#define VLR_TEST_PID _getpid()
#else
#include <unistd.h>
#define VLR_TEST_PID getpid()
#endif

class CTestFolder {
public:
    // stem_I names what the folder is for; the running test's name and the process id follow.
    explicit CTestFolder(const std::string& stem_I) {
        std::string name = stem_I;
        if (const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info()) {
            name += std::string("-") + test->test_suite_name() + "-" + test->name();
        }
        name += "-" + std::to_string(VLR_TEST_PID);
        mPath = std::filesystem::temp_directory_path() / name;
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
        std::filesystem::create_directories(mPath);
    }
    ~CTestFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    CTestFolder(const CTestFolder&) = delete;
    CTestFolder& operator=(const CTestFolder&) = delete;

    const std::filesystem::path& Path() const { return mPath; }
    std::filesystem::path operator/(const std::string& name_I) const { return mPath / name_I; }

private:
    std::filesystem::path mPath;
};

#undef VLR_TEST_PID
