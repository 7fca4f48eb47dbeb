#pragma once
// Access to the real monitor data beside the checkout (capabilities strings, EDID blobs).

#include <string>
#include <vector>

#include "ByteBuffer.h"

namespace TestData {

// Absolute path of a file below the test-data folder ("caps/iss_dell_u3011.txt").
std::string Path(const std::string& relative_I);
// The file's bytes; fails the current test when it cannot be read.
ByteBuffer ReadBytes(const std::string& relative_I);
std::string ReadText(const std::string& relative_I);
// File names (not paths) in a sub-folder with the given ending, sorted.
std::vector<std::string> List(const std::string& folder_I, const std::string& extension_I);

}  // namespace TestData
