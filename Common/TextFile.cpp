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

namespace {

namespace fs = std::filesystem;

// The file a path names once its symbolic links are followed: a link is written through to
// the file it points at (a dangling one makes that file), never replaced by a plain file.
std::optional<fs::path> FollowLinks(fs::path path_I, std::string& why_O) {
    for (int hops = 0; hops < 40; ++hops) {
        std::error_code error;
        const fs::file_status status = fs::symlink_status(path_I, error);
        if (!fs::is_symlink(status)) {
            return path_I;
        }
        const fs::path target = fs::read_symlink(path_I, error);
        if (error) {
            why_O = error.message();
            return std::nullopt;
        }
        path_I = target.is_absolute() ? target : path_I.parent_path() / target;
    }
    why_O = "too many levels of symbolic links";
    return std::nullopt;
}

std::string Because(const std::error_code& error_I) {
    return error_I ? " (" + error_I.message() + ")" : "";
}

bool WriteWhole(const fs::path& path_I, const std::string& text_I) {
    std::ofstream out(path_I, std::ios::binary | std::ios::trunc);
    out << text_I;
    out.close();  // a full disk may only say so when the file is closed
    return !out.fail();
}

}  // namespace

std::string NotAFileReason(const std::string& path_I) {
    std::string why;
    const std::optional<fs::path> followed = FollowLinks(Utf8Path(path_I), why);
    if (!followed) {
        return why;
    }
    std::error_code error;
    const fs::file_status existing = fs::status(*followed, error);
    if (fs::is_directory(existing)) {
        return "it is a folder, not a file";
    }
    if (fs::exists(existing) && !fs::is_regular_file(existing)) {
        // A device, a pipe or a socket is the system's or another program's: never replaced.
        return "it is a device, a pipe or a socket, not a file; left as it is";
    }
    return {};
}

bool WriteTextFile(const std::string& path_I, const std::string& text_I, std::string& problem_O) {
    if (const std::string why = NotAFileReason(path_I); !why.empty()) {
        problem_O = path_I + ": cannot be written (" + why + ")";
        return false;
    }
    std::error_code error;
    std::string why;
    const fs::path path = *FollowLinks(Utf8Path(path_I), why);
    const fs::file_status existing = fs::status(path, error);
    if (path.has_parent_path()) {
        fs::create_directories(path.parent_path(), error);
    }
    std::ostringstream suffix;
    suffix << ".new" << std::hash<std::thread::id>()(std::this_thread::get_id()) << '-'
           << std::chrono::steady_clock::now().time_since_epoch().count();
    fs::path partial = path;
    partial += suffix.str();
    if (!WriteWhole(partial, text_I)) {
        const bool folderMissing = path.has_parent_path() && !fs::is_directory(path.parent_path(), error);
        problem_O = path_I + ": cannot be written" +
                    (folderMissing ? std::string(" (its folder cannot be made)") : std::string());
        fs::remove(partial, error);
        return false;
    }
    if (fs::exists(existing)) {
        // The new file keeps the old one's permissions (a profile only its owner may read stays so).
        fs::permissions(partial, existing.permissions(), fs::perm_options::replace, error);
    }
    std::error_code moved;
    fs::rename(partial, path, moved);
    fs::remove(partial, error);
    if (!moved) {
        return true;
    }
    // Windows does not replace a file another program holds open (an editor, a viewer, a
    // reader of ours): then it is written in place, as before there was a file beside.
    if (!WriteWhole(path, text_I)) {
        problem_O = path_I + ": cannot be written" + Because(moved);
        return false;
    }
    return true;
}
