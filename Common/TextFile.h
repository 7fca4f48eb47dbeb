#pragma once
// Reading and writing a whole file the user named or the program keeps (a profile, a studio
// file, the revert notes): a folder, a file that is not there or cannot be read or written gives
// a message naming the path, never an exception.

#include <filesystem>
#include <optional>
#include <string>

// The path a UTF-8 string names, on every system. (On Windows a path made from a plain string
// takes the C library's code page, which turns a user folder such as C:\Users\Jürgen into
// another name or an error.)
std::filesystem::path Utf8Path(const std::string& utf8_I);

// The UTF-8 string that names a path, on every system: Utf8Path's inverse. (What path::string()
// gives on Windows is the standard library's choice: UTF-8 with libstdc++, the code page with
// others.)
std::string Utf8String(const std::filesystem::path& path_I);

// The file's bytes; none, and "PATH: is a folder, not a file" or "PATH: cannot be read".
std::optional<std::string> ReadTextFile(const std::string& path_I, std::string& problem_O);

// Writes the file beside (under a name of its own per writer, so two programs may store at once)
// and moves it over the old one, so that a full disk or a crash never leaves half a file; makes
// the folder when needed. A symbolic link is followed and the file it points at written (its
// permissions kept); a folder, device, pipe or socket at the path is never replaced. False, and
// "PATH: cannot be written" with the reason when there is one.
bool WriteTextFile(const std::string& path_I, const std::string& text_I, std::string& problem_O);

// Why the path (its links followed) cannot hold a file of ours: "it is a folder, not a file",
// "it is a device, a pipe or a socket, not a file; left as it is", or a broken link's reason;
// empty when it is a file or nothing is there yet.
std::string NotAFileReason(const std::string& path_I);
