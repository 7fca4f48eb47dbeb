#pragma once
// Reading a whole file the user named (a profile, a studio file): a folder, a file that is not
// there or cannot be read gives a message naming the path, never an exception.

#include <optional>
#include <string>

// The file's bytes; none, and "PATH: is a folder, not a file" or "PATH: cannot be read".
std::optional<std::string> ReadTextFile(const std::string& path_I, std::string& problem_O);
