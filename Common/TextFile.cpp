#include "TextFile.h"

#include <filesystem>
#include <fstream>
#include <iterator>

std::optional<std::string> ReadTextFile(const std::string& path_I, std::string& problem_O) {
    std::error_code error;
    // A folder opens as a stream here and fails only when read.
    if (std::filesystem::is_directory(path_I, error)) {
        problem_O = path_I + ": is a folder, not a file";
        return std::nullopt;
    }
    std::ifstream in(path_I, std::ios::binary);
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
    const std::filesystem::path folder = std::filesystem::path(path_I).parent_path();
    if (!folder.empty()) {
        std::filesystem::create_directories(folder, error);
    }
    const std::string partial = path_I + ".new";
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
    std::filesystem::rename(partial, path_I, error);
    if (error) {
        problem_O = path_I + ": cannot be written (" + error.message() + ")";
        std::filesystem::remove(partial, error);
        return false;
    }
    return true;
}
