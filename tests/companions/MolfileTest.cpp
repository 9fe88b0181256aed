#include <quillon/companions/Molfile.h>
#include <quillon/document/Samples.h>
#include <quillon/platform/HostHooks.h>

#include "support/ReadBlock.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace quillon {
namespace {

using quillon::testing::ReadBlock;
using quillon::testing::ReadBytes;
using quillon::testing::TempFile;

// Points the molfile directory at a temporary folder for the test's lifetime.
class MolfileDirectory {
public:
    MolfileDirectory() : m_saved(GetHostHooks()) {
        HostHooks hooks = m_saved;
        const std::string directory = m_folder.Folder().string() + "/";
        hooks.molfileDirectory = [directory] { return CString(directory); };
        SetHostHooks(hooks);
    }
    ~MolfileDirectory() { SetHostHooks(m_saved); }
    std::filesystem::path Path(const std::string& name) const { return m_folder.Folder() / name; }
    std::string Prefix() const { return m_folder.Folder().string() + "/"; }

private:
    TempFile m_folder;
    HostHooks m_saved;
};

// A list of four molfiles: one before any reference, two under the same one, and one whose
// reference climbs out of the folder.
const std::string kMolfileList = "{\nSample\t7\n[MOLFILE LIST]\n{\n"
                                 "[MOLFILE]\n{\nnameless\n}\n"
                                 "Reference\tR\n"
                                 "[MOLFILE]\n{\nfirst\n}\n"
                                 "[MOLFILE]\n{\nsecond\n}\n"
                                 "Reference\t../up/..\\x\n"
                                 "[MOLFILE]\n{\nescaped\n}\n"
                                 "}\nWell\t5\n}\n";

TEST(MolfileTest, MolfilesAreExtractedIntoTheDirectoryAndListed) {
    const MolfileDirectory directory;
    // Without the list file nothing is written and the blocks are skipped whole.
    CSampleData unlisted;
    EXPECT_EQ(ReadBlock(unlisted, kMolfileList), "AFTER");
    EXPECT_TRUE(unlisted.GetMoleculeEnabled());
    EXPECT_EQ(unlisted.GetWell(), 5);
    EXPECT_FALSE(std::filesystem::exists(directory.Path("R_7.mol")));

    ASSERT_TRUE(CMolfile::StartList());
    CSampleData sample;
    EXPECT_EQ(ReadBlock(sample, kMolfileList), "AFTER");
    EXPECT_EQ(sample.GetWell(), 5);
    const std::string prefix = directory.Prefix();
    EXPECT_EQ(ReadBytes(directory.Path("Molfiles.list")), prefix + "_7.mol\n" + prefix +
                                                              "R_7.mol\n" + prefix + "R_7.mol\n" +
                                                              prefix + "___up____x_7.mol\n");
    // The listed paths split back into the references (as made safe) and the sample number.
    CStringArray listed;
    ASSERT_TRUE(CMolfile::ReadList(listed));
    ASSERT_EQ(listed.GetSize(), 4);
    const char* references[] = {"", "R", "R", "___up____x"};
    for (int i = 0; i < listed.GetSize(); ++i) {
        CString reference;
        int number = 0;
        EXPECT_TRUE(CMolfile::SplitMolfilePath(listed[i], reference, number)) << listed[i];
        EXPECT_EQ(reference, references[i]);
        EXPECT_EQ(number, 7);
    }
    CString reference;
    int number = 0;
    for (const std::string& other : {std::string("/elsewhere/R_7.mol"), prefix + "R.mol",
                                     prefix + "R_x.mol", prefix + "R_7.txt", prefix + ".mol"})
        EXPECT_FALSE(CMolfile::SplitMolfilePath(other.c_str(), reference, number)) << other;
    EXPECT_EQ(ReadBytes(directory.Path("_7.mol")), "nameless\n");
    EXPECT_EQ(ReadBytes(directory.Path("R_7.mol")), "second\n"); // the second replaced it
    EXPECT_EQ(ReadBytes(directory.Path("___up____x_7.mol")), "escaped\n");

    // A molfile that never closes ends at end of file.
    CSampleData unclosed;
    EXPECT_EQ(ReadBlock(unclosed, "{\nSample\t8\n[MOLFILE LIST]\n{\nReference\tU\n[MOLFILE]\n{\n"
                                  "line\n  {\n }\n"),
              "");
    EXPECT_EQ(ReadBytes(directory.Path("U_8.mol")), "line\n  {\n }\nAFTER\n");

    // Starting the list again empties it.
    ASSERT_TRUE(CMolfile::StartList());
    ASSERT_TRUE(CMolfile::ReadList(listed));
    EXPECT_EQ(listed.GetSize(), 0);
}

CMetaboliteData WithMolecule(const char* reference) {
    CMetaboliteData metabolite;
    metabolite.SetExpected();
    metabolite.SetMoleculeReference(reference);
    return metabolite;
}

CSampleData Sample(int number, const char* formula, bool moleculeEnabled) {
    CSampleData sample;
    sample.SetNumber(number);
    sample.AddMSMetabolite(WithMolecule(""));
    sample.AddMSMetabolite(WithMolecule("M"));
    sample.SetMoleculeEnabled(moleculeEnabled);
    CCompoundData compound;
    compound.SetFormula(formula);
    compound.SetMass(318.4);
    sample.AddCompound(compound);
    return sample;
}

void WriteMolfile(const MolfileDirectory& directory, int number, const std::string& header) {
    std::ofstream(directory.Path("M_" + std::to_string(number) + ".mol")) << "name\n"
                                                                          << header << "\n\n";
}

TEST(MolfileTest, DimensionsComeFromTheHeaderLineAndTheSearchPrefersNeighbours) {
    const MolfileDirectory directory;
    WriteMolfile(directory, 1, "  QUILLON 03122609142D");
    WriteMolfile(directory, 2, "  QUILLON 03122609143D");
    WriteMolfile(directory, 3, "  QUILLON 0312260914  ");

    CSampleData sample = Sample(1, "C", true);
    EXPECT_EQ(sample.GetMoleculeReference(), "M");
    EXPECT_EQ(sample.GetMoleculeDimensions(), -1);
    EXPECT_EQ(sample.SetMoleculeDimensions(), 2);
    CSampleData threeD = Sample(2, "C", true);
    EXPECT_EQ(threeD.SetMoleculeDimensions(), 3);
    std::filesystem::remove(directory.Path("M_2.mol"));
    EXPECT_EQ(threeD.SetMoleculeDimensions(), 3);                // determined once
    EXPECT_EQ(Sample(3, "C", true).SetMoleculeDimensions(), 2);  // no code
    EXPECT_EQ(Sample(4, "C", true).SetMoleculeDimensions(), 2);  // no molfile
    EXPECT_EQ(Sample(1, "C", false).SetMoleculeDimensions(), 0); // no molfile list
    CString name;
    int dimensions = 0;
    EXPECT_TRUE(CMolfile::ReadHeader(directory.Path("M_1.mol").c_str(), name, dimensions));
    EXPECT_EQ(name, "name");
    EXPECT_FALSE(CMolfile::ReadHeader(directory.Path("none.mol").c_str(), name, dimensions));
    EXPECT_EQ(name, "");
    EXPECT_EQ(dimensions, 2);
    EXPECT_EQ(CSampleData().SetMoleculeDimensions(), 0); // no metabolites

    // Samples 1..6: 2D molfiles for 1, 3 and 6; sample 5's compound has no formula.
    WriteMolfile(directory, 2, "  QUILLON 03122609143D");
    WriteMolfile(directory, 3, "  QUILLON 03122609142D");
    WriteMolfile(directory, 6, "  QUILLON 03122609142D");
    CSamples samples;
    samples.AddSample(Sample(1, "A", true));
    samples.AddSample(Sample(2, "B", true));
    samples.AddSample(Sample(3, "A", true));
    samples.AddSample(Sample(4, "A", true)); // no molfile: counts as 2D
    samples.AddSample(Sample(5, "", false));
    samples.AddSample(Sample(6, "", true));
    const auto numberOf = [&samples](int number) {
        const CSampleData* found = samples.GetSampleWith2DMolFile(number);
        return found ? found->GetNumber() : 0;
    };
    EXPECT_EQ(numberOf(1), 1);
    EXPECT_EQ(numberOf(2), 0); // 3D, and no other sample shares formula "B"
    std::filesystem::remove(directory.Path("M_3.mol"));
    WriteMolfile(directory, 4, "  QUILLON 03122609143D");
    EXPECT_EQ(numberOf(4), 3);  // 3D itself; the nearest earlier "A" is taken
    EXPECT_EQ(numberOf(5), 6);  // no molfile list; a later sample of mass "318" qualifies
    EXPECT_EQ(numberOf(99), 6); // no such number: the last sample
}

} // namespace
} // namespace quillon
