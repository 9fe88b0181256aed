#include <quillon/platform/ProfileFile.h>

#include <support/ChildProcess.h>
#include <support/TempFile.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

namespace quillon {
namespace {

namespace fs = std::filesystem;
using testing::ExitStatus;
using testing::kNoRights;
using testing::RunInChild;
using testing::StartChild;

// The names in a folder besides the given one: what a save left behind.
std::vector<std::string> OtherFiles(const fs::path& folder, const std::string& name) {
    std::vector<std::string> others;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().filename() != name)
            others.push_back(entry.path().filename().string());
    }
    return others;
}

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
    WriteFile("orphan=before any section\n; Colour=commented out\n"
              "[Display]\n  Colour = blue  \ncolour=second wins never\nQuoted=\"  padded  \"\n"
              "Single='x'\nHalf=\"open\nEmpty=\nno equals sign here\n"
              "[ display ]\nExtra=from the duplicate section\n"
              "[Other]\nColour=red\n");
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
    const std::string original = "; settings of the suite\n[General]\nPath=C:\\data\n\n"
                                 "[Losses]\nLoss 1=old\n; keep me\nLoss 2=two\n\n"
                                 "[Tail]\nLast=1\n";
    WriteFile(original);
    CProfileFile file = Loaded();

    file.WriteString("LOSSES", "loss 1", "new");
    file.WriteString("losses", "Loss 3", "three");
    file.WriteString("Fresh", "Key", "value");
    ASSERT_TRUE(file.Save());

    // The existing key keeps its spelling and place; the new key follows the section's last key,
    // ahead of the blank separator; the new section goes at the end.
    EXPECT_EQ(ReadFile(), "; settings of the suite\n[General]\nPath=C:\\data\n\n"
                          "[Losses]\nLoss 1=new\n; keep me\nLoss 2=two\nLoss 3=three\n\n"
                          "[Tail]\nLast=1\n\n"
                          "[Fresh]\nKey=value\n");
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
    WriteFile("[Before]\na=1\n\n"
              "[Losses]\n; old list\nLoss 1=x\nLoss 2=y\n\n\n; about After\n"
              "[After]\nb=2\n");
    CProfileFile file = Loaded();

    // The old keys and comments go; the blank lines and the comment before the next section stay.
    file.ReplaceSection("losses", {"Loss 1=p", "Loss 2=q"});
    ASSERT_TRUE(file.Save());
    EXPECT_EQ(ReadFile(), "[Before]\na=1\n\n"
                          "[Losses]\nLoss 1=p\nLoss 2=q\n\n\n; about After\n"
                          "[After]\nb=2\n");
}

TEST_F(ProfileFileTest, SavingCreatesReplacesAndRefusesWhatItMustNotTouch) {
    // A missing file reads as empty and is created by Save.
    CProfileFile file(m_path);
    ASSERT_TRUE(file.Load());
    EXPECT_EQ(file.GetString("S", "k", "default"), "default");
    file.WriteString("S", "k", "v");
    // A temporary file left behind by an interrupted save of this process does not get in the way.
    const std::string stale = m_path + ".~" + std::to_string(::getpid()) + "-0";
    std::ofstream(stale) << "stale";
    ASSERT_TRUE(file.Save());
    EXPECT_EQ(ReadFile(), "[S]\nk=v\n");
    EXPECT_EQ(OtherFiles(m_directory, "settings.ini"),
              std::vector<std::string>{stale.substr(stale.rfind('/') + 1)});

    // A directory that does not exist cannot take the file; a directory is not a settings file.
    CProfileFile nowhere((m_directory / "missing" / "settings.ini").string());
    ASSERT_TRUE(nowhere.Load());
    nowhere.WriteString("S", "k", "v");
    EXPECT_FALSE(nowhere.Save());
    CProfileFile folder(m_directory.string());
    EXPECT_FALSE(folder.Load());
    EXPECT_FALSE(folder.Save());
}

// A save that cannot finish, for whatever reason, leaves the original byte for byte and no
// temporary file: a folder that takes no new file, a read-only file, and a file-size limit that
// makes the write fail half-way.
TEST_F(ProfileFileTest, AFailedSaveLeavesTheOriginalByteForByte) {
    const std::string original = "; settings\r\n[S]\r\nk=v\r\n";
    WriteFile(original);
    CProfileFile file = Loaded();
    file.WriteString("S", "k", std::string(64 * 1024, 'x'));
    const auto save = [&file] { return file.Save(); };
    const std::string name = fs::path(m_path).filename().string();

    struct Case {
        const char* what;
        fs::perms folder;
        fs::perms target;
    };
    const fs::perms all = fs::perms::all;
    const fs::perms readOnly =
        fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
    const fs::perms folderReadOnly =
        readOnly | fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    for (const Case& failure : {Case{"folder without write permission", folderReadOnly, all},
                                Case{"read-only file", all, readOnly}}) {
        SCOPED_TRACE(failure.what);
        fs::permissions(m_directory, failure.folder);
        fs::permissions(m_path, failure.target);
        const int saved = RunInChild(true, save);
        fs::permissions(m_directory, all);
        if (saved == kNoRights)
            GTEST_SKIP() << "cannot give up the rights of the superuser";
        EXPECT_EQ(saved, 0);
        EXPECT_EQ(ReadFile(), original);
        EXPECT_TRUE(OtherFiles(m_directory, name).empty());
    }

    // The limit lies beyond the old file's size but inside the new one's: the temporary file is
    // cut short, the original never touched. The signal the limit raises is ignored, as a program
    // that sets such limits does.
    fs::permissions(m_path, fs::perms::owner_read | fs::perms::owner_write);
    const int limited = RunInChild(false, [&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{16 * 1024, 16 * 1024};
        return ::setrlimit(RLIMIT_FSIZE, &limit) == 0 && file.Save();
    });
    EXPECT_EQ(limited, 0);
    EXPECT_EQ(ReadFile(), original);
    EXPECT_TRUE(OtherFiles(m_directory, name).empty());

    // Without the obstacles the same save succeeds and keeps the file's permissions.
    ASSERT_TRUE(file.Save());
    EXPECT_EQ(Loaded().GetString("S", "k", ""), std::string(64 * 1024, 'x'));
    EXPECT_EQ(fs::status(m_path).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_TRUE(OtherFiles(m_directory, name).empty());
}

// Two processes saving the same file over and over while a third reads it: every read finds one
// writer's file whole, never a mix or a cut, and no temporary file is left.
TEST_F(ProfileFileTest, TwoWritersLeaveOneWholeFileAtEveryMoment) {
    const auto contentOf = [](char fill) {
        return "[S]\nk=" + std::string(256 * 1024, fill) + "\n";
    };
    WriteFile(contentOf('a'));
    // Each writer answers true when a save failed; the reader when it found a broken file.
    const auto writer = [&](char fill) {
        return StartChild(false, [&] {
            CProfileFile file(m_path);
            file.WriteString("S", "k", std::string(256 * 1024, fill));
            bool failed = false;
            for (int i = 0; i < 40; ++i)
                failed = !file.Save() || failed;
            return failed;
        });
    };
    const pid_t first = writer('b');
    const pid_t second = writer('c');
    const pid_t reader = StartChild(false, [&] {
        for (int i = 0; i < 400; ++i) {
            const std::string content = ReadFile();
            if (content != contentOf('a') && content != contentOf('b') && content != contentOf('c'))
                return true;
        }
        return false;
    });
    EXPECT_EQ(ExitStatus(first), 0);
    EXPECT_EQ(ExitStatus(second), 0);
    EXPECT_EQ(ExitStatus(reader), 0) << "a read found a broken file";
    EXPECT_TRUE(OtherFiles(m_directory, "settings.ini").empty());
}

} // namespace
} // namespace quillon
