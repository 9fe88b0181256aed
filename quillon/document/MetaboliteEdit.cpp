#include <quillon/document/MetaboliteEdit.h>

#include <quillon/document/Samples.h>

#include <stdexcept>

namespace quillon {

namespace {

CSampleData* SampleByNumber(CSamples& samples, int number) {
    for (int i = 0; i < samples.GetSamplesCount(); ++i) {
        if (samples.GetSample(i)->GetNumber() == number)
            return samples.GetSample(i);
    }
    return nullptr;
}

} // namespace

std::string FieldTextProblem(std::string_view text) {
    for (char ch : text) {
        if (ch == '\t')
            return "a tab cannot be part of a text in the report";
        if (ch == '\r' || ch == '\n')
            return "a line break cannot be part of a text in the report";
        if (ch == '\0')
            return "a NUL character cannot be part of a text in the report";
    }
    return std::string();
}

std::string CheckMetaboliteEdit(CSamples& samples, const CMetaboliteEdit& edit) {
    CSampleData* sample = SampleByNumber(samples, edit.sample);
    if (sample == nullptr)
        return "the report has no sample " + std::to_string(edit.sample);
    CMetaboliteData* metabolite = sample->GetMetabolite(edit.metabolite);
    if (metabolite == nullptr)
        return "sample " + std::to_string(edit.sample) + " has no metabolite " +
               std::to_string(edit.metabolite);
    const int candidates = metabolite->GetNumElementalResults();
    const bool candidateExists = edit.candidate >= 0 && edit.candidate < candidates;
    const bool insertable = edit.candidate >= 0 && edit.candidate <= candidates;
    if ((edit.kind == CMetaboliteEdit::DeleteElemental && !candidateExists) ||
        (edit.kind == CMetaboliteEdit::InsertElemental && !insertable))
        return "metabolite " + std::to_string(edit.metabolite) + " of sample " +
               std::to_string(edit.sample) + " has no elemental candidate " +
               std::to_string(edit.candidate) + " (it has " + std::to_string(candidates) + ")";
    if (edit.kind == CMetaboliteEdit::SetLabel)
        return FieldTextProblem(edit.label.str());
    return std::string();
}

CMetaboliteEdit ApplyMetaboliteEdit(CSamples& samples, const CMetaboliteEdit& edit) {
    const std::string problem = CheckMetaboliteEdit(samples, edit);
    if (!problem.empty())
        throw std::invalid_argument(problem);
    CMetaboliteData& metabolite =
        *SampleByNumber(samples, edit.sample)->GetMetabolite(edit.metabolite);
    CMetaboliteEdit undo = edit;
    switch (edit.kind) {
    case CMetaboliteEdit::Confirm:
    case CMetaboliteEdit::Unconfirm:
        undo.kind =
            metabolite.GetConfirmed() ? CMetaboliteEdit::Confirm : CMetaboliteEdit::Unconfirm;
        metabolite.SetConfirmed(edit.kind == CMetaboliteEdit::Confirm);
        break;
    case CMetaboliteEdit::SetLabel:
        undo.label = metabolite.GetUserLabel();
        metabolite.SetUserLabel(edit.label);
        break;
    case CMetaboliteEdit::DeleteElemental:
        undo.kind = CMetaboliteEdit::InsertElemental;
        metabolite.GetElementalResults(edit.candidate, undo.restored);
        metabolite.DeleteElementalResult(edit.candidate);
        break;
    case CMetaboliteEdit::InsertElemental:
        undo.kind = CMetaboliteEdit::DeleteElemental;
        undo.restored = CElementalResultsData();
        metabolite.InsertElementalResult(edit.candidate, edit.restored);
        break;
    }
    return undo;
}

} // namespace quillon
