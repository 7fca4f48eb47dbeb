#pragma once
// Reading and writing a whole file the user named or the program keeps (a profile, a studio
// file, the revert notes): a folder, a file that is not there or cannot be read or written gives
// a message naming the path, never an exception.

#include <optional>
#include <string>

// The file's bytes; none, and "PATH: is a folder, not a file" or "PATH: cannot be read".
std::optional<std::string> ReadTextFile(const std::string& path_I, std::string& problem_O);

// Writes the file beside and moves it over the old one, so that a full disk or a crash never
// leaves half a file; makes the folder when needed. False, and "PATH: cannot be written" with
// the reason when the system gives one.
bool WriteTextFile(const std::string& path_I, const std::string& text_I, std::string& problem_O);
