#include "TextFile.h"

#include <chrono>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <thread>

std::filesystem::path Utf8Path(const std::string& utf8_I) {
    return std::filesystem::path(std::u8string(utf8_I.begin(), utf8_I.end()));
}

std::string Utf8String(const std::filesystem::path& path_I) {
    const std::u8string utf8 = path_I.u8string();
    return std::string(utf8.begin(), utf8.end());
}

std::optional<std::string> ReadTextFile(const std::string& path_I, std::string& problem_O) {
    std::error_code error;
    // A folder opens as a stream here and fails only when read.
    const std::filesystem::path path = Utf8Path(path_I);
    if (std::filesystem::is_directory(path, error)) {
        problem_O = path_I + ": is a folder, not a file";
        return std::nullopt;
    }
    std::ifstream in(path, std::ios::binary);
    if (in.is_open()) {
        try {
            std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
            if (!in.bad()) {
                return text;
            }
        } catch (const std::exception&) {
            // a read error of the file system's (the stream library reports it by throwing)
        }
    }
    problem_O = path_I + ": cannot be read";
    return std::nullopt;
}

bool WriteTextFile(const std::string& path_I, const std::string& text_I, std::string& problem_O) {
    std::error_code error;
    const std::filesystem::path path = Utf8Path(path_I);
    if (path.has_parent_path()) {
        std::filesystem::create_directories(path.parent_path(), error);
    }
    std::ostringstream suffix;
    suffix << ".new" << std::hash<std::thread::id>()(std::this_thread::get_id()) << '-'
           << std::chrono::steady_clock::now().time_since_epoch().count();
    std::filesystem::path partial = path;
    partial += suffix.str();
    {
        std::ofstream out(partial, std::ios::binary | std::ios::trunc);
        out << text_I;
        out.flush();
        if (!out) {
            problem_O = path_I + ": cannot be written";
            std::filesystem::remove(partial, error);
            return false;
        }
    }
    std::error_code moved;
    std::filesystem::rename(partial, path, moved);
    std::filesystem::remove(partial, error);
    if (!moved) {
        return true;
    }
    // Windows does not replace a file another program holds open (an editor, a viewer, a
    // reader of ours): then it is written in place, as before there was a file beside.
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text_I;
    out.flush();
    if (!out) {
        problem_O = path_I + ": cannot be written";
        return false;
    }
    return true;
}
