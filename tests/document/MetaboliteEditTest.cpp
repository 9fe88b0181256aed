#include <quillon/quillon.h>

#include "support/ChildProcess.h"
#include "support/ModelDump.h"
#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>

#include <sys/resource.h>

using namespace quillon;
using namespace quillon::testing;

namespace {

const char* const kExample = QUILLON_SOURCE_DIR "/examples/Chlorpromazine_HLM_batch.txt";

// The first metabolite of the example with at least two elemental candidates, as (sample number,
// metabolite index).
std::pair<int, int> MetaboliteWithCandidates(CSamples& samples) {
    for (int s = 0; s < samples.GetSamplesCount(); ++s) {
        CSampleData& sample = *samples.GetSample(s);
        for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
            if (sample.GetMetabolite(m)->GetNumElementalResults() >= 2)
                return {sample.GetNumber(), m};
        }
    }
    return {0, -1};
}

CMetaboliteEdit Edit(CMetaboliteEdit::Kind kind, std::pair<int, int> where) {
    CMetaboliteEdit edit;
    edit.kind = kind;
    edit.sample = where.first;
    edit.metabolite = where.second;
    return edit;
}

// Every kind of edit does what it says, and applying the returned undo edits in reverse order
// gives back exactly the model that was read.
TEST(MetaboliteEditTest, EditsTakeEffectAndTheirUndoRestoresTheModel) {
    CSamples samples;
    ASSERT_EQ(samples.Read(kExample), 1);
    const std::string original = ModelDump::Of(samples);
    const auto where = MetaboliteWithCandidates(samples);
    ASSERT_GE(where.second, 0) << "the example has no metabolite with two candidates";

    CMetaboliteEdit label = Edit(CMetaboliteEdit::SetLabel, where);
    label.label = "checked by AB";
    CMetaboliteEdit removeFirst = Edit(CMetaboliteEdit::DeleteElemental, where);
    removeFirst.candidate = 0;
    std::vector<CMetaboliteEdit> undo;
    for (const CMetaboliteEdit& edit :
         {Edit(CMetaboliteEdit::Confirm, where), label, removeFirst, removeFirst,
          Edit(CMetaboliteEdit::Unconfirm, where), Edit(CMetaboliteEdit::Confirm, where)})
        undo.push_back(ApplyMetaboliteEdit(samples, edit));

    CSampleData* edited = nullptr;
    for (int s = 0; s < samples.GetSamplesCount(); ++s)
        if (samples.GetSample(s)->GetNumber() == where.first)
            edited = samples.GetSample(s);
    const CMetaboliteData& metabolite = *edited->GetMetabolite(where.second);
    EXPECT_TRUE(metabolite.GetConfirmed());
    EXPECT_STREQ(metabolite.GetUserLabel(), "checked by AB");
    EXPECT_NE(ModelDump::Of(samples), original);

    for (auto edit = undo.rbegin(); edit != undo.rend(); ++edit)
        ApplyMetaboliteEdit(samples, *edit);
    EXPECT_EQ(ModelDump::Of(samples), original);
}

// What cannot be applied is refused with its reason, and nothing changes.
TEST(MetaboliteEditTest, ImpossibleEditsAreRefusedAndChangeNothing) {
    CSamples samples;
    ASSERT_EQ(samples.Read(kExample), 1);
    const std::string original = ModelDump::Of(samples);
    const auto where = MetaboliteWithCandidates(samples);

    CMetaboliteEdit noSample = Edit(CMetaboliteEdit::Confirm, {9999, 0});
    CMetaboliteEdit noMetabolite = Edit(CMetaboliteEdit::Confirm, {where.first, 100000});
    CMetaboliteEdit noCandidate = Edit(CMetaboliteEdit::DeleteElemental, where);
    noCandidate.candidate = 99;
    CMetaboliteEdit tab = Edit(CMetaboliteEdit::SetLabel, where);
    tab.label = "a\tb";
    CMetaboliteEdit lineBreak = Edit(CMetaboliteEdit::SetLabel, where);
    lineBreak.label = "first line\r\nsecond";
    CMetaboliteEdit nul = Edit(CMetaboliteEdit::SetLabel, where);
    nul.label = CString(std::string("cut\0short", 9));
    for (const CMetaboliteEdit& edit : {noSample, noMetabolite, noCandidate, tab, lineBreak, nul}) {
        const std::string reason = CheckMetaboliteEdit(samples, edit);
        EXPECT_FALSE(reason.empty());
        EXPECT_THROW(ApplyMetaboliteEdit(samples, edit), std::invalid_argument) << reason;
    }
    EXPECT_NE(CheckMetaboliteEdit(samples, noCandidate).find("has no elemental candidate 99"),
              std::string::npos);
    EXPECT_EQ(ModelDump::Of(samples), original);
}

// The report without the comment lines the writer adds at its end (they hold the time of the save).
std::string WithoutSaveComments(std::string text) {
    for (size_t at; (at = text.find("\n;Metabolite sections updated")) != std::string::npos;)
        text.erase(at + 1, text.find('\n', at + 1) - at);
    return text;
}

// Edits saved in place through the atomic save read back, labels included, and saving what was
// read back changes nothing; a save that fails half-way (a file-size limit) or cannot start (a
// folder in the way) leaves the report byte for byte.
TEST(MetaboliteEditTest, SavedEditsReadBackAndAFailedSaveLeavesTheReport) {
    TempFile report("batch.txt");
    report.Write(ReadBytes(kExample));
    CSamples samples;
    ASSERT_EQ(samples.Read(report.c_str()), 1);
    const auto where = MetaboliteWithCandidates(samples);
    ApplyMetaboliteEdit(samples, Edit(CMetaboliteEdit::Confirm, where));
    CMetaboliteEdit label = Edit(CMetaboliteEdit::SetLabel, where);
    label.label = "glucuronide? ask AB";
    ApplyMetaboliteEdit(samples, label);
    const std::string before = ReadBytes(report.Path());

    const int limited = RunInChild(false, [&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return true;
        try {
            SaveReportAtomically(samples, report.Path(), report.Path());
            return true;
        } catch (const CFileException&) {
            return false;
        }
    });
    EXPECT_EQ(limited, 0);
    EXPECT_EQ(ReadBytes(report.Path()), before);
    EXPECT_THROW(SaveReportAtomically(samples, report.Path(), report.Folder().string()),
                 CFileException);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(report.Folder()), {}), 1);

    SaveReportAtomically(samples, report.Path(), report.Path());
    CSamples reread;
    ASSERT_EQ(reread.Read(report.c_str()), 1);
    EXPECT_EQ(ModelDump::Of(reread), ModelDump::Of(samples));
    EXPECT_NE(ModelDump::Of(reread).find("glucuronide? ask AB"), std::string::npos);

    const std::string saved = ReadBytes(report.Path());
    SaveReportAtomically(reread, report.Path(), report.Path());
    EXPECT_TRUE(WithoutSaveComments(ReadBytes(report.Path())) == WithoutSaveComments(saved));
}

} // namespace
