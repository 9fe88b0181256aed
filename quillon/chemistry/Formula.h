#pragma once

#include <quillon/chemistry/Elements.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

// Thrown when a formula text cannot be parsed or a formula cannot be used as asked; what() names
// the reason and the position in the text.
class CFormulaError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// An elemental formula: a count per element of the element table. Counts may be negative, so a
// formula can also describe a change (a biotransformation that removes CH2, say).
class CFormula {
public:
    CFormula();

    // Parses element symbols with optional counts, parenthesised (or bracketed) groups with an
    // optional multiplier, and ignores blanks: "C6H12O6", "(CH3)2 N(CH2)3". Throws CFormulaError
    // for an unknown symbol, an unbalanced bracket, a stray character, an empty formula, a count
    // (literal, multiplier or an element's total) above 10,000,000 or brackets nested more than
    // 64 deep. The text ToString gives of a parsed formula always parses back to it.
    static CFormula Parse(std::string_view text);

    // The same without throwing: false (and the reason in error when given) when the text cannot
    // be parsed; the output is then left unchanged.
    static bool TryParse(std::string_view text, CFormula& out, std::string* error = nullptr);

    // The count of an element by symbol (0 for any symbol not in the formula or the table).
    int Count(std::string_view symbol) const;
    void SetCount(std::string_view symbol, int count); // throws CFormulaError for an unknown symbol

    // True when no element has a non-zero count; true when no count is negative.
    bool IsEmpty() const;
    bool IsNonNegative() const;

    // Sum of count x monoisotopic mass over the elements (u); a change formula gives a mass change.
    double MonoisotopicMass() const;

    // The formula in Hill order (C, then H, then the others alphabetically; alphabetical without
    // carbon), counts of 1 omitted. Negative counts keep their sign ("C-1H-2"). An empty formula
    // gives "".
    std::string ToString() const;

    // Double-bond equivalent (rings plus double bonds) of a neutral molecule from its C, H, N, P,
    // halogen and silicon counts.
    double DoubleBondEquivalent() const;

    CFormula& operator+=(const CFormula& other);
    CFormula& operator-=(const CFormula& other);
    friend CFormula operator+(CFormula a, const CFormula& b) { return a += b; }
    friend CFormula operator-(CFormula a, const CFormula& b) { return a -= b; }
    friend bool operator==(const CFormula& a, const CFormula& b) = default;

    // Per element of the table (the order of CElements::All), the count.
    const std::vector<int>& Counts() const { return m_counts; }

private:
    std::vector<int> m_counts;
};

} // namespace quillon
