// The one reader and writer of the files users name and the program keeps: names outside any
// code page, a file another program holds open, and what is left beside when a write fails.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#ifndef _WIN32
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>
#endif

#include "TestFolder.h"
#include "TextFile.h"

namespace {

namespace fs = std::filesystem;

struct STempFolder {
    CTestFolder folder{"vlr-text-file"};
    const fs::path& path = folder.Path();
    // The folder's entries by name, as UTF-8.
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
            const std::u8string name = entry.path().filename().u8string();
            names.emplace_back(name.begin(), name.end());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    std::string Utf8() const {
        const std::u8string text = path.u8string();
        return std::string(text.begin(), text.end());
    }
};

}  // namespace

TEST(TextFile, ANameOutsideTheCodePageIsWrittenAndReadUnderThatVeryName) {
    STempFolder folder;
    // "Größe-プロファイル" in a folder that does not exist yet, spelt out as UTF-8 bytes.
    const std::string name =
        "Gr\xC3\xB6\xC3\x9F"
        "e-\xE3\x83\x97\xE3\x83\xAD\xE3\x83\x95\xE3\x82\xA1\xE3\x82\xA4\xE3\x83\xAB.json";
    const std::string file = folder.Utf8() + "/J\xC3\xBCrgen/" + name;
    std::string problem;
    ASSERT_TRUE(WriteTextFile(file, "{\"brightness\": 70}\n", problem)) << problem;
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"J\xC3\xBCrgen"});
    const std::optional<std::string> text = ReadTextFile(file, problem);
    ASSERT_TRUE(text.has_value()) << problem;
    EXPECT_EQ(*text, "{\"brightness\": 70}\n");

    // A folder the system names (on Windows a wide known folder such as C:\Users\Jürgen-プ) as the
    // program's UTF-8 text and back: a file named under it lands in that very folder.
    const fs::path systemFolder = folder.path / u8"J\u00fcrgen-\u30d7";
    const std::string utf8 = Utf8String(systemFolder);
    EXPECT_EQ(utf8.substr(0, folder.Utf8().size()), folder.Utf8());
    EXPECT_EQ(utf8.substr(folder.Utf8().size() + 1), "J\xC3\xBCrgen-\xE3\x83\x97");  // after the separator
    EXPECT_EQ(Utf8Path(utf8), systemFolder);
    ASSERT_TRUE(WriteTextFile(utf8 + "/kept.json", "[]\n", problem)) << problem;
    EXPECT_TRUE(fs::exists(systemFolder / "kept.json"));
}

TEST(TextFile, AFileAnotherProgramHoldsOpenIsStillReplacedAndNothingIsLeftBeside) {
    STempFolder folder;
    const std::string file = folder.Utf8() + "/profile.json";
    std::string problem;
    ASSERT_TRUE(WriteTextFile(file, "first\n", problem)) << problem;
    {
        // A viewer reading the file keeps it open while the user saves again.
        std::ifstream viewer(folder.path / "profile.json", std::ios::binary);
        ASSERT_TRUE(viewer.is_open());
        ASSERT_TRUE(WriteTextFile(file, "second, longer\n", problem)) << problem;
    }
    EXPECT_EQ(ReadTextFile(file, problem).value_or("unread"), "second, longer\n");
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"profile.json"});

    // A shorter text leaves nothing of the longer one behind.
    ASSERT_TRUE(WriteTextFile(file, "3\n", problem)) << problem;
    EXPECT_EQ(ReadTextFile(file, problem).value_or("unread"), "3\n");
}

TEST(TextFile, AFolderOrAFileInPlaceOfAFolderIsNamedAndTheOldFileStays) {
    STempFolder folder;
    std::string problem;
    fs::create_directories(folder.path / "notes.json");
    EXPECT_FALSE(ReadTextFile(folder.Utf8() + "/notes.json", problem).has_value());
    EXPECT_EQ(problem, folder.Utf8() + "/notes.json: is a folder, not a file");
    EXPECT_FALSE(WriteTextFile(folder.Utf8() + "/notes.json", "x", problem));
    EXPECT_EQ(problem, folder.Utf8() + "/notes.json: cannot be written (it is a folder, not a file)");
    EXPECT_TRUE(fs::is_directory(folder.path / "notes.json"));

    std::ofstream(folder.path / "plain") << "a file where a folder would be";
    EXPECT_FALSE(WriteTextFile(folder.Utf8() + "/plain/notes.json", "x", problem));
    EXPECT_EQ(problem, folder.Utf8() + "/plain/notes.json: cannot be written (its folder cannot be made)");
    EXPECT_FALSE(ReadTextFile(folder.Utf8() + "/missing.json", problem).has_value());
    EXPECT_EQ(problem, folder.Utf8() + "/missing.json: cannot be read");
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"notes.json", "plain"}));
}

#ifndef _WIN32
TEST(TextFile, ALinkIsWrittenThroughAndADevicePipeOrSocketIsNeverReplaced) {
    STempFolder folder;
    std::string problem;
    const std::string base = folder.Utf8();
    // A profile kept elsewhere and linked here, by a relative link through another link.
    fs::create_directories(folder.path / "real");
    std::ofstream(folder.path / "real" / "studio.json") << "old\n";
    fs::permissions(folder.path / "real" / "studio.json", fs::perms::owner_read | fs::perms::owner_write,
                    fs::perm_options::replace);
    fs::create_symlink("real/studio.json", folder.path / "hop");
    fs::create_symlink("hop", folder.path / "studio.json");
    ASSERT_TRUE(WriteTextFile(base + "/studio.json", "new\n", problem)) << problem;
    EXPECT_TRUE(fs::is_symlink(folder.path / "studio.json"));
    EXPECT_TRUE(fs::is_symlink(folder.path / "hop"));
    EXPECT_EQ(ReadTextFile(base + "/real/studio.json", problem).value_or("unread"), "new\n");
    EXPECT_EQ(fs::status(folder.path / "real" / "studio.json").permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
    // A dangling link makes the file it points at.
    fs::create_symlink("real/later.json", folder.path / "later.json");
    ASSERT_TRUE(WriteTextFile(base + "/later.json", "made\n", problem)) << problem;
    EXPECT_TRUE(fs::is_symlink(folder.path / "later.json"));
    EXPECT_EQ(ReadTextFile(base + "/real/later.json", problem).value_or("unread"), "made\n");
    // A loop of links is named, not followed for ever.
    fs::create_symlink("loop-b", folder.path / "loop-a");
    fs::create_symlink("loop-a", folder.path / "loop-b");
    EXPECT_FALSE(WriteTextFile(base + "/loop-a", "x", problem));
    EXPECT_EQ(problem, base + "/loop-a: cannot be written (too many levels of symbolic links)");

    // A pipe, a socket and (as root) a device node like /dev/null stay what they are.
    std::vector<std::string> specials;
    ASSERT_EQ(mkfifo((folder.path / "pipe").c_str(), 0600), 0);
    specials.push_back("pipe");
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string socketPath = (folder.path / "socket").string();
    if (socketPath.size() < sizeof(address.sun_path)) {
        std::copy(socketPath.begin(), socketPath.end(), address.sun_path);
        ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
        specials.push_back("socket");
    }
    if (mknod((folder.path / "null").c_str(), S_IFCHR | 0666, makedev(1, 3)) == 0) {
        specials.push_back("null");
    }
    fs::create_symlink("null", folder.path / "linked-null");
    for (const std::string& name : specials) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(WriteTextFile(base + "/" + name, "x", problem));
        EXPECT_EQ(problem,
                  base + "/" + name +
                      ": cannot be written (it is a device, a pipe or a socket, not a file; left as it is)");
        EXPECT_FALSE(fs::is_regular_file(folder.path / name));
    }
    if (fs::exists(folder.path / "null")) {
        EXPECT_FALSE(WriteTextFile(base + "/linked-null", "x", problem));
        EXPECT_TRUE(fs::is_character_file(folder.path / "null"));
    }
    close(listener);
    // Nothing was left beside any of them.
    for (const std::string& name : folder.Names()) {
        EXPECT_EQ(name.find(".new"), std::string::npos) << name;
    }
}
#endif
