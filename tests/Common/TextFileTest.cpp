// The one reader and writer of the files users name and the program keeps: names outside any
// code page, a file another program holds open, and what is left beside when a write fails.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

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
    const std::string name = "Gr\xC3\xB6\xC3\x9F" "e-\xE3\x83\x97\xE3\x83\xAD\xE3\x83\x95\xE3\x82\xA1\xE3\x82\xA4\xE3\x83\xAB.json";
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
    EXPECT_EQ(problem.rfind(folder.Utf8() + "/notes.json: cannot be written", 0), 0u) << problem;
    EXPECT_TRUE(fs::is_directory(folder.path / "notes.json"));

    std::ofstream(folder.path / "plain") << "a file where a folder would be";
    EXPECT_FALSE(WriteTextFile(folder.Utf8() + "/plain/notes.json", "x", problem));
    EXPECT_EQ(problem, folder.Utf8() + "/plain/notes.json: cannot be written");
    EXPECT_FALSE(ReadTextFile(folder.Utf8() + "/missing.json", problem).has_value());
    EXPECT_EQ(problem, folder.Utf8() + "/missing.json: cannot be read");
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"notes.json", "plain"}));
}
