#include <quillon/chemistry/Formula.h>

#include <algorithm>
#include <cctype>
#include <limits>

namespace quillon {

namespace {

// One limit for every count: a literal count, a group's multiplier and an element's total. No
// formula of this system comes near it, products of two counts stay within long long, and every
// formula the parser accepts prints as a text it accepts again.
constexpr long long kMaxCount = 10000000;
// How deeply brackets may nest; deeper text is refused rather than recursed into.
constexpr int kMaxDepth = 64;

// A recursive-descent parser over the text with its blanks removed.
class FormulaParser {
public:
    explicit FormulaParser(std::string_view text) {
        for (char ch : text) {
            if (!std::isspace(static_cast<unsigned char>(ch))) {
                m_text.push_back(ch);
            }
        }
    }

    CFormula Parse() {
        if (m_text.empty()) {
            throw CFormulaError("empty formula");
        }
        std::vector<long long> counts = ParseSequence();
        if (m_pos < m_text.size()) {
            Fail(m_text[m_pos] == ')' || m_text[m_pos] == ']' ? "closing bracket without opening"
                                                              : "unexpected character");
        }
        if (std::all_of(counts.begin(), counts.end(), [](long long n) { return n == 0; })) {
            Fail("no atoms"); // "C0": parsed, but there is nothing to weigh
        }
        CFormula formula;
        std::span<const ElementData> elements = CElements::All();
        for (size_t i = 0; i < counts.size(); ++i) {
            if (counts[i] != 0) {
                formula.SetCount(elements[i].symbol, static_cast<int>(counts[i]));
            }
        }
        return formula;
    }

private:
    // sequence := (element [count] | open sequence close [count])*
    std::vector<long long> ParseSequence() {
        std::vector<long long> counts(CElements::All().size(), 0);
        while (m_pos < m_text.size()) {
            char ch = m_text[m_pos];
            if (ch == '(' || ch == '[') {
                const char close = ch == '(' ? ')' : ']';
                const size_t open = m_pos++;
                if (++m_depth > kMaxDepth) {
                    Fail("brackets nested too deeply");
                }
                std::vector<long long> inner = ParseSequence();
                --m_depth;
                if (m_pos < m_text.size() && m_text[m_pos] != ')' && m_text[m_pos] != ']') {
                    Fail("unexpected character");
                }
                if (m_pos >= m_text.size() || m_text[m_pos] != close) {
                    m_pos = open;
                    Fail("unbalanced bracket");
                }
                ++m_pos;
                if (std::all_of(inner.begin(), inner.end(), [](long long n) { return n == 0; })) {
                    m_pos = open;
                    Fail("empty group");
                }
                AddScaled(counts, inner, ParseCount());
            } else if (std::isupper(static_cast<unsigned char>(ch))) {
                const size_t start = m_pos++;
                while (m_pos < m_text.size() &&
                       std::islower(static_cast<unsigned char>(m_text[m_pos]))) {
                    ++m_pos;
                }
                const std::string_view symbol(m_text.data() + start, m_pos - start);
                const ElementData* element = CElements::Find(symbol);
                if (element == nullptr) {
                    m_pos = start;
                    Fail("unknown element symbol '" + std::string(symbol) + "'");
                }
                long long& count = counts[static_cast<size_t>(CElements::IndexOf(element))];
                count += ParseCount();
                CheckCount(count);
            } else {
                return counts; // a closing bracket or a stray character: the caller decides
            }
        }
        return counts;
    }

    // An optional decimal count after a symbol or group; 1 when absent.
    long long ParseCount() {
        if (m_pos >= m_text.size() || !std::isdigit(static_cast<unsigned char>(m_text[m_pos]))) {
            return 1;
        }
        long long value = 0;
        while (m_pos < m_text.size() && std::isdigit(static_cast<unsigned char>(m_text[m_pos]))) {
            value = value * 10 + (m_text[m_pos++] - '0');
            if (value > kMaxCount) {
                Fail("count too large");
            }
        }
        return value;
    }

    void AddScaled(std::vector<long long>& into, const std::vector<long long>& group,
                   long long times) {
        for (size_t i = 0; i < into.size(); ++i) {
            into[i] += group[i] * times;
            CheckCount(into[i]);
        }
    }

    void CheckCount(long long count) {
        if (count > kMaxCount) {
            Fail("count too large");
        }
    }

    [[noreturn]] void Fail(const std::string& reason) const {
        throw CFormulaError("cannot parse formula \"" + m_text + "\": " + reason + " at position " +
                            std::to_string(m_pos));
    }

    std::string m_text;
    size_t m_pos = 0;
    int m_depth = 0;
};

} // namespace

CFormula::CFormula() : m_counts(CElements::All().size(), 0) {}

CFormula CFormula::Parse(std::string_view text) {
    return FormulaParser(text).Parse();
}

bool CFormula::TryParse(std::string_view text, CFormula& out, std::string* error) {
    try {
        out = Parse(text);
        return true;
    } catch (const CFormulaError& failure) {
        if (error != nullptr) {
            *error = failure.what();
        }
        return false;
    }
}

int CFormula::Count(std::string_view symbol) const {
    const int index = CElements::IndexOf(CElements::Find(symbol));
    return index < 0 ? 0 : m_counts[static_cast<size_t>(index)];
}

void CFormula::SetCount(std::string_view symbol, int count) {
    const int index = CElements::IndexOf(CElements::Find(symbol));
    if (index < 0) {
        throw CFormulaError("unknown element symbol '" + std::string(symbol) + "'");
    }
    m_counts[static_cast<size_t>(index)] = count;
}

bool CFormula::IsEmpty() const {
    return std::all_of(m_counts.begin(), m_counts.end(), [](int n) { return n == 0; });
}

bool CFormula::IsNonNegative() const {
    return std::all_of(m_counts.begin(), m_counts.end(), [](int n) { return n >= 0; });
}

double CFormula::MonoisotopicMass() const {
    std::span<const ElementData> elements = CElements::All();
    double mass = 0.0;
    for (size_t i = 0; i < m_counts.size(); ++i) {
        mass += m_counts[i] * elements[i].MonoisotopicMass();
    }
    return mass;
}

std::string CFormula::ToString() const {
    std::span<const ElementData> elements = CElements::All();
    std::vector<size_t> order;
    for (size_t i = 0; i < m_counts.size(); ++i) {
        if (m_counts[i] != 0) {
            order.push_back(i);
        }
    }
    const bool hasCarbon = Count("C") != 0;
    auto rank = [&](size_t i) {
        if (hasCarbon && elements[i].symbol == "C") {
            return 0;
        }
        if (hasCarbon && elements[i].symbol == "H") {
            return 1;
        }
        return 2;
    };
    std::sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        if (rank(a) != rank(b)) {
            return rank(a) < rank(b);
        }
        return elements[a].symbol < elements[b].symbol;
    });
    std::string text;
    for (size_t i : order) {
        text += elements[i].symbol;
        if (m_counts[i] != 1) {
            text += std::to_string(m_counts[i]);
        }
    }
    return text;
}

double CFormula::DoubleBondEquivalent() const {
    const int tetravalent = Count("C") + Count("Si");
    const int monovalent =
        Count("H") + Count("F") + Count("Cl") + Count("Br") + Count("I") + Count("Na") + Count("K");
    const int trivalent = Count("N") + Count("P") + Count("B");
    return 1.0 + tetravalent - monovalent / 2.0 + trivalent / 2.0;
}

CFormula& CFormula::operator+=(const CFormula& other) {
    for (size_t i = 0; i < m_counts.size(); ++i) {
        m_counts[i] += other.m_counts[i];
    }
    return *this;
}

CFormula& CFormula::operator-=(const CFormula& other) {
    for (size_t i = 0; i < m_counts.size(); ++i) {
        m_counts[i] -= other.m_counts[i];
    }
    return *this;
}

} // namespace quillon
