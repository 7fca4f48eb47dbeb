#include "TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace TestData {

std::string Path(const std::string& relative_I) {
    return std::string(VLR_TESTDATA_DIR) + "/" + relative_I;
}

ByteBuffer ReadBytes(const std::string& relative_I) {
    std::ifstream in(Path(relative_I), std::ios::binary);
    if (!in) {
        ADD_FAILURE() << "cannot read test data " << Path(relative_I);
        return {};
    }
    return ByteBuffer(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string ReadText(const std::string& relative_I) {
    ByteBuffer bytes = ReadBytes(relative_I);
    return std::string(bytes.begin(), bytes.end());
}

std::vector<std::string> List(const std::string& folder_I, const std::string& extension_I) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(Path(folder_I), error)) {
        if (entry.path().extension() == extension_I) {
            names.push_back(entry.path().filename().string());
        }
    }
    if (error) {
        ADD_FAILURE() << "cannot list test data " << Path(folder_I) << ": " << error.message();
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace TestData
