// The machine's PATH as the installer changes it: our folder in and out again, and everything
// else as it was, byte for byte, however long the list.

#include <gtest/gtest.h>

#include <string>

#include "PathList.h"

namespace {

const std::wstring kOurs = L"C:\\Program Files\\Velor\\Display Settings";

// A workstation's PATH of 40 entries and about 2,000 characters, with the odd spellings real
// ones have (an empty entry, a variable, a quoted folder, a trailing backslash).
std::wstring LongPath() {
    std::wstring path =
        L"%SystemRoot%\\system32;%SystemRoot%;;\"C:\\Program Files\\Quoted Tool\\bin\";C:\\Tools\\";
    for (int i = 0; path.size() < 1960; ++i) {
        path += L";C:\\Program Files\\Vendor " + std::to_wstring(i) + L"\\Some Long Product Name\\bin";
    }
    return path;
}

}  // namespace

TEST(PathList, OurFolderGoesInAndOutAndLeavesEveryOtherByteAsItWas) {
    for (const std::wstring& before :
         {LongPath(), std::wstring(L"C:\\a;C:\\b;"), std::wstring(L"C:\\a"), std::wstring()}) {
        SCOPED_TRACE(std::string(before.begin(), before.end()));
        const std::wstring with = PathListWith(before, kOurs);
        EXPECT_TRUE(PathListHas(with, kOurs));
        EXPECT_EQ(with.substr(0, before.size()), before);
        EXPECT_EQ(PathListWith(with, kOurs), with);  // a second install adds nothing
        EXPECT_EQ(PathListWithout(with, kOurs), before);
    }
    EXPECT_GT(LongPath().size(), 1024u);  // longer than an installer's strings
    EXPECT_EQ(PathListWith(L"C:\\a", kOurs), L"C:\\a;" + kOurs);
    EXPECT_EQ(PathListWith(L"", kOurs), kOurs);
}

TEST(PathList, OurFolderIsRecognisedHoweverItIsSpeltAndOnlyItGoes) {
    const std::wstring spelt =
        L"C:\\x;\"c:\\program files\\velor\\display settings\\\";C:\\Program Files\\Velor\\Display "
        L"Settings Extra;C:\\PROGRAM FILES\\VELOR\\DISPLAY SETTINGS;C:\\y";
    EXPECT_TRUE(PathListHas(spelt, kOurs));
    EXPECT_EQ(PathListWithout(spelt, kOurs), L"C:\\x;C:\\Program Files\\Velor\\Display Settings Extra;C:\\y");
    EXPECT_FALSE(PathListHas(L"C:\\Program Files\\Velor\\Display Settings Extra", kOurs));
    EXPECT_EQ(PathListWithout(L"C:\\x;;C:\\y", kOurs), L"C:\\x;;C:\\y");
    EXPECT_FALSE(PathListHas(L"C:\\x;;C:\\y", L""));  // an empty folder names nothing
}
