#include <quillon/companions/TarnwickIniInterface.h>
#include <quillon/platform/HostHooks.h>

#include <support/ChildProcess.h>
#include <support/TempFile.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <iterator>
#include <string>

namespace quillon {
namespace {

namespace fs = std::filesystem;

constexpr const char* kOtherSettings = "; suite settings\n[Chart]\nColour=blue\n\n";

// Every test works in its own folder, which the host hook names as the working directory.
class TarnwickIniInterfaceTest : public ::testing::Test {
protected:
    void SetUp() override {
        HostHooks hooks;
        hooks.workingDirectory = [this] { return CString(m_directory.string()); };
        SetHostHooks(hooks);
    }
    void TearDown() override { SetHostHooks({}); }

    CTarnwickIniInterface Settings() const { return CTarnwickIniInterface(); }
    void WriteFile(const std::string& content) const { m_file.Write(content); }
    std::string ReadFile() const { return m_file.Read(); }

    testing::TempFile m_file{"Tarnwick.ini"};
    const fs::path m_directory = m_file.Folder();
    const fs::path m_path = m_file.Path();
};

CCompoundData Loss(double mass, const char* formula, const char* name, bool selected) {
    CCompoundData loss(mass, formula, name);
    loss.SetSelected(selected);
    return loss;
}

void ExpectLoss(const CCompoundData& loss, double mass, const char* formula, const char* name,
                bool selected) {
    CString text;
    EXPECT_DOUBLE_EQ(loss.GetMass(), mass);
    loss.GetFormula(text);
    EXPECT_EQ(text, formula);
    loss.GetName(text);
    EXPECT_EQ(text, name);
    EXPECT_EQ(loss.IsSelected(), selected);
}

TEST_F(TarnwickIniInterfaceTest, ListRoundTripsThroughTheFileAndLeavesTheRestAlone) {
    WriteFile(std::string(kOtherSettings) +
              "[Hollbeck Neutral Losses]\nLoss 1=1.0000,1,3,1,old,X\nLoss 2=2.0000,1,3,1,old,Y\n"
              "Loss 3=3.0000,1,3,1,old,Z\n\n[Tail]\nLast=1\n");
    CCompounds list;
    list.Add(Loss(18.01056, "H2O", "Water", true));
    list.Add(Loss(60.0211, "C2H4O2", "Acetic acid, loss of", false));
    list.Add(Loss(-2.0, "", "Gain, of, two", true));
    Settings().SetNeutralLosses(list);

    // The previous, longer list is gone; the mass has four decimals; other sections are intact.
    EXPECT_EQ(ReadFile(), std::string(kOtherSettings) +
                              "[Hollbeck Neutral Losses]\nLoss 1=18.0106,1,5,3,Water,H2O\n"
                              "Loss 2=60.0211,0,20,6,Acetic acid, loss of,C2H4O2\n"
                              "Loss 3=-2.0000,1,13,0,Gain, of, two,\n\n[Tail]\nLast=1\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(m_directory), {}), 1); // nothing left over

    // Reading appends to what the list holds already.
    CCompounds all;
    all.Add(Loss(1.0, "A", "already there", false));
    ASSERT_TRUE(Settings().GetNeutralLosses(all, false));
    ASSERT_EQ(all.GetSize(), 4);
    ExpectLoss(all.GetAt(0), 1.0, "A", "already there", false);
    ExpectLoss(all.GetAt(2), 60.0211, "C2H4O2", "Acetic acid, loss of", false);
    ExpectLoss(all.GetAt(3), -2.0, "", "Gain, of, two", true);

    CCompounds selected;
    ASSERT_TRUE(Settings().GetNeutralLosses(selected, true));
    ASSERT_EQ(selected.GetSize(), 2);
    ExpectLoss(selected.GetAt(1), -2.0, "", "Gain, of, two", true);
}

TEST_F(TarnwickIniInterfaceTest, ReadingIgnoresCaseAndStopsAtTheFirstGap) {
    WriteFile("[HOLLBECK neutral LOSSES]\n"
              "loss 2=15.9949,0,6,1,Oxygen,O\n"
              "LOSS 1 = 18.0106,1,5,3,Water,H2O\n"
              "; Loss 3 is missing, so Loss 4 is never read\n"
              "Loss 4=17.0265,1,7,3,Ammonia,NH3\n");
    CCompounds losses;
    ASSERT_TRUE(Settings().GetNeutralLosses(losses, false));
    ASSERT_EQ(losses.GetSize(), 2);
    ExpectLoss(losses.GetAt(0), 18.0106, "H2O", "Water", true);
    ExpectLoss(losses.GetAt(1), 15.9949, "O", "Oxygen", false);

    // Only unselected entries: nothing is taken, yet the list exists.
    WriteFile("[Hollbeck Neutral Losses]\nLoss 1=15.9949,0,6,1,Oxygen,O\n");
    CCompounds none;
    EXPECT_TRUE(Settings().GetNeutralLosses(none, true));
    EXPECT_EQ(none.GetSize(), 0);

    // The list starts at 1: without "Loss 1" there is no list.
    WriteFile("[Hollbeck Neutral Losses]\nLoss 2=15.9949,1,6,1,Oxygen,O\nLoss 1=\n");
    EXPECT_FALSE(Settings().GetNeutralLosses(none, false));
    EXPECT_EQ(none.GetSize(), 0);
}

TEST_F(TarnwickIniInterfaceTest, EmptyListAndMissingFileAndCurrentDirectory) {
    // A missing file: no list, and the caller's list is untouched; storing creates the file.
    CCompounds losses;
    losses.Add(Loss(1.0, "A", "kept", true));
    EXPECT_FALSE(Settings().GetNeutralLosses(losses, false));
    EXPECT_EQ(losses.GetSize(), 1);

    Settings().SetNeutralLosses(CCompounds());
    EXPECT_EQ(ReadFile(), "[Hollbeck Neutral Losses]\n");
    EXPECT_FALSE(Settings().GetNeutralLosses(losses, false));

    // Without a working-directory hook the file is taken from the current working directory.
    SetHostHooks({});
    const fs::path previous = fs::current_path();
    fs::current_path(m_directory);
    CTarnwickIniInterface().SetNeutralLosses(losses);
    fs::current_path(previous);
    EXPECT_EQ(ReadFile(), "[Hollbeck Neutral Losses]\nLoss 1=1.0000,1,4,1,kept,A\n");
}

TEST_F(TarnwickIniInterfaceTest, ValuesThatDoNotFitTheirLengthsStillGiveAnEntry) {
    const std::string longName(300, 'n');
    WriteFile("[Hollbeck Neutral Losses]\n"
              "Loss 1=1.5,1,50,2,ab\n"                 // name longer than the value
              "Loss 2=2.5,1,-4,-1,ab,cd\n"             // negative lengths
              "Loss 3=not a number\n"                  // nothing scans
              "Loss 4=3.5,1,2147483647,2147483647,x\n" // lengths that would overflow
              "Loss 5=4.5,1,300,3," +
              longName + ",H2O\n"); // cut to 259 characters on reading
    CCompounds losses;
    ASSERT_TRUE(Settings().GetNeutralLosses(losses, false));
    ASSERT_EQ(losses.GetSize(), 5);
    ExpectLoss(losses.GetAt(0), 1.5, "ab", "1.5,1,50,2,ab", true);
    ExpectLoss(losses.GetAt(1), 2.5, "", "", true);
    ExpectLoss(losses.GetAt(2), 0.0, "", "", false);
    ExpectLoss(losses.GetAt(3), 3.5, "3.5,1,2147483647,2147483647,x",
               "3.5,1,2147483647,2147483647,x", true);
    const std::string cut = ("4.5,1,300,3," + longName).substr(0, 259);
    ExpectLoss(losses.GetAt(4), 4.5, "nnn", cut.c_str(), true);
}

TEST_F(TarnwickIniInterfaceTest, ReadOnlyFileOffersNoListAndIsNotChanged) {
    const std::string content = "[Hollbeck Neutral Losses]\nLoss 1=18.0106,1,5,3,Water,H2O\n";
    WriteFile(content);
    fs::permissions(m_path, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    // Answers true when anything was offered; the file is then changed if it can be.
    const int offered = testing::RunInChild(true, [this] {
        CCompounds losses;
        const bool found = Settings().GetNeutralLosses(losses, false);
        losses.Add(CCompoundData(1.0, "H", "Hydrogen"));
        Settings().SetNeutralLosses(losses);
        return found || losses.GetSize() != 1;
    });
    if (offered == testing::kNoRights)
        GTEST_SKIP() << "cannot give up the rights of the superuser";
    EXPECT_EQ(offered, 0);
    EXPECT_EQ(ReadFile(), content);
}

} // namespace
} // namespace quillon
