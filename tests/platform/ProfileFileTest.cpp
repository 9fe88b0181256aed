#include <quillon/platform/ProfileFile.h>

#include <support/TempFile.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace quillon {
namespace {

namespace fs = std::filesystem;

class ProfileFileTest : public ::testing::Test {
protected:
    void WriteFile(const std::string& content) const { m_file.Write(content); }
    std::string ReadFile() const { return m_file.Read(); }
    CProfileFile Loaded() const {
        CProfileFile file(m_path);
        EXPECT_TRUE(file.Load());
        return file;
    }

    testing::TempFile m_file{"settings.ini"};
    const fs::path m_directory = m_file.Folder();
    const std::string m_path = m_file.Path();
};

TEST_F(ProfileFileTest, LookupIgnoresCaseAndBlanksAndFallsBackToTheDefault) {
    WriteFile("orphan=before any section\n"
              "; Colour=commented out\n"
              "[Display]\n"
              "  Colour = blue  \n"
              "colour=second wins never\n"
              "Quoted=\"  padded  \"\n"
              "Single='x'\n"
              "Half=\"open\n"
              "Empty=\n"
              "no equals sign here\n"
              "[ display ]\n"
              "Extra=from the duplicate section\n"
              "[Other]\n"
              "Colour=red\n");
    const CProfileFile file = Loaded();

    EXPECT_EQ(file.GetString("DISPLAY", "COLOUR", "none"), "blue");
    EXPECT_EQ(file.GetString("other", "colour", "none"), "red");
    EXPECT_EQ(file.GetString("Display", "Quoted", "none"), "  padded  ");
    EXPECT_EQ(file.GetString("Display", "Single", "none"), "x");
    EXPECT_EQ(file.GetString("Display", "Half", "none"), "\"open");
    // A key that is present but empty gives "", not the default.
    EXPECT_EQ(file.GetString("Display", "Empty", "none"), "");

    // Missing sections and keys, keys of a later duplicate section, keys outside any section and
    // lines that are not keys all give the default.
    EXPECT_EQ(file.GetString("Absent", "Colour", "none"), "none");
    EXPECT_EQ(file.GetString("Display", "Absent", "none"), "none");
    EXPECT_EQ(file.GetString("Display", "Extra", "none"), "none");
    EXPECT_EQ(file.GetString("", "orphan", "none"), "none");
    EXPECT_EQ(file.GetString("Display", "no equals sign here", "none"), "none");
    EXPECT_EQ(file.GetString("Display", "; Colour", "none"), "none");
}

TEST_F(ProfileFileTest, WritingAKeyChangesOnlyThatKeysLine) {
    const std::string original = "; settings of the suite\n"
                                 "[General]\n"
                                 "Path=C:\\data\n"
                                 "\n"
                                 "[Losses]\n"
                                 "Loss 1=old\n"
                                 "; keep me\n"
                                 "Loss 2=two\n"
                                 "\n"
                                 "[Tail]\n"
                                 "Last=1\n";
    WriteFile(original);
    CProfileFile file = Loaded();

    file.WriteString("LOSSES", "loss 1", "new");
    file.WriteString("losses", "Loss 3", "three");
    file.WriteString("Fresh", "Key", "value");
    ASSERT_TRUE(file.Save());

    // The existing key keeps its spelling and place; the new key follows the section's last key,
    // ahead of the blank separator; the new section goes at the end.
    EXPECT_EQ(ReadFile(), "; settings of the suite\n"
                          "[General]\n"
                          "Path=C:\\data\n"
                          "\n"
                          "[Losses]\n"
                          "Loss 1=new\n"
                          "; keep me\n"
                          "Loss 2=two\n"
                          "Loss 3=three\n"
                          "\n"
                          "[Tail]\n"
                          "Last=1\n"
                          "\n"
                          "[Fresh]\n"
                          "Key=value\n");
    const CProfileFile reread = Loaded();
    EXPECT_EQ(reread.GetString("Losses", "Loss 3", ""), "three");
    EXPECT_EQ(reread.GetString("fresh", "key", ""), "value");
}

TEST_F(ProfileFileTest, LineEndingsAndAMissingFinalNewlineArePreserved) {
    WriteFile("\xEF\xBB\xBF[A]\r\nx=1\r\n[B]\r\ny=2");
    CProfileFile file = Loaded();
    EXPECT_EQ(file.GetString("a", "X", ""), "1");

    file.WriteString("B", "z", "line\nbreak");
    file.WriteString("A", "w", "4");
    ASSERT_TRUE(file.Save());
    EXPECT_EQ(ReadFile(), "\xEF\xBB\xBF[A]\r\nx=1\r\nw=4\r\n[B]\r\ny=2\r\nz=line break\r\n");
}

TEST_F(ProfileFileTest, ReplacingASectionKeepsTheRestOfTheFile) {
    WriteFile("[Before]\n"
              "a=1\n"
              "\n"
              "[Losses]\n"
              "; old list\n"
              "Loss 1=x\n"
              "Loss 2=y\n"
              "\n"
              "\n"
              "; about After\n"
              "[After]\n"
              "b=2\n");
    CProfileFile file = Loaded();

    file.ReplaceSection("losses", {});
    ASSERT_TRUE(file.Save());
    EXPECT_EQ(ReadFile(), "[Before]\n"
                          "a=1\n"
                          "\n"
                          "[Losses]\n"
                          "\n"
                          "\n"
                          "; about After\n"
                          "[After]\n"
                          "b=2\n");
    EXPECT_EQ(Loaded().GetString("Losses", "Loss 1", "gone"), "gone");

    file.ReplaceSection("Losses", {"Loss 1=p", "Loss 2=q"});
    file.ReplaceSection("New", {"k=v"});
    ASSERT_TRUE(file.Save());
    EXPECT_EQ(ReadFile(), "[Before]\n"
                          "a=1\n"
                          "\n"
                          "[Losses]\n"
                          "Loss 1=p\n"
                          "Loss 2=q\n"
                          "\n"
                          "\n"
                          "; about After\n"
                          "[After]\n"
                          "b=2\n"
                          "\n"
                          "[New]\n"
                          "k=v\n");
}

TEST_F(ProfileFileTest, SavingCreatesReplacesAndRefusesWhatItMustNotTouch) {
    // A missing file reads as empty and is created by Save.
    CProfileFile file(m_path);
    ASSERT_TRUE(file.Load());
    EXPECT_EQ(file.GetString("S", "k", "default"), "default");
    file.WriteString("S", "k", "v");
    // A temporary file left behind by an interrupted save does not get in the way.
    std::ofstream(m_path + ".tmp") << "stale";
    ASSERT_TRUE(file.Save());
    EXPECT_EQ(ReadFile(), "[S]\nk=v\n");
    EXPECT_FALSE(fs::exists(m_path + ".tmp"));

    // A directory that does not exist cannot take the file; a directory is not a settings file.
    CProfileFile nowhere((m_directory / "missing" / "settings.ini").string());
    ASSERT_TRUE(nowhere.Load());
    nowhere.WriteString("S", "k", "v");
    EXPECT_FALSE(nowhere.Save());
    CProfileFile folder(m_directory.string());
    EXPECT_FALSE(folder.Load());
    EXPECT_FALSE(folder.Save());
}

TEST_F(ProfileFileTest, ReadOnlyFileIsLeftAlone) {
    WriteFile("[S]\nk=v\n");
    CProfileFile file = Loaded();
    fs::permissions(m_path, fs::perms::owner_read | fs::perms::group_read);
    if (std::FILE* probe = std::fopen(m_path.c_str(), "r+")) {
        std::fclose(probe);
        GTEST_SKIP() << "running with rights that ignore file permissions";
    }
    file.WriteString("S", "k", "changed");
    EXPECT_FALSE(file.Save());
    EXPECT_EQ(ReadFile(), "[S]\nk=v\n");
}

} // namespace
} // namespace quillon
