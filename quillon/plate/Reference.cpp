#include <quillon/plate/Reference.h>

#include <quillon/plate/PlateLayout.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNCREATE(CReference, CObject)

namespace {

bool IsDigit(char ch) {
    return ch >= '0' && ch <= '9';
}

bool IsLetter(char ch) {
    return (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z');
}

// The length of the run of digits starting at `from`.
size_t DigitRun(std::string_view text, size_t from) {
    size_t end = from;
    while (end < text.size() && IsDigit(text[end]))
        ++end;
    return end - from;
}

int PieceValue(const CString& piece) {
    if (IsLetter(piece[0]))
        return piece[0] - 64;
    int value = 0;
    ParseDecimalInt(piece.view(), value);
    return value;
}

} // namespace

int CReference::SplitReference(const CString& text, CString& first, CString& second) {
    first.Empty();
    second.Empty();
    const std::string_view view = text.view();
    if (view.empty())
        return 1;
    size_t next = 0;
    if (IsDigit(view[0])) {
        next = DigitRun(view, 0);
        first = CString(view.substr(0, next));
    } else {
        first = CString(view.substr(0, 1));
        next = 1;
    }
    while (next < view.size() && !IsDigit(view[next]) && !IsLetter(view[next]))
        ++next;
    if (next == view.size())
        return 1;
    second = CString(view.substr(next, IsDigit(view[next]) ? DigitRun(view, next) : 1));
    return 1;
}

int CReference::SplitReference(const CString& text, CPoint& point) {
    point = CPoint(0, 0);
    CString first;
    CString second;
    SplitReference(text, first, second);
    if (!first.IsEmpty())
        point.x = PieceValue(first);
    if (!second.IsEmpty())
        point.y = PieceValue(second);
    return 1;
}

int CReference::SetReference(CPoint* point, int number) {
    if (point)
        m_Point = *point;
    m_nNumber = number;
    return 1;
}

int CReference::SetReference(const CString& text) {
    CPoint point;
    const int result = SplitReference(text, point);
    m_Point = point;
    m_nNumber = 0;
    return result;
}

int CReference::GetReference(CPoint& point) const {
    point = m_Point;
    return 1;
}

int CReference::GetReference(int& number) const {
    number = m_nNumber;
    return 1;
}

int CReference::GetReference(CString& text) const {
    if (m_Point.y > 0)
        text.Format("%i,%i", m_Point.x, m_Point.y);
    else
        text.Format("%i", m_Point.x);
    if (m_bMSMSPlate)
        text = "*" + text;
    return 1;
}

int CReference::operator==(CReference other) const {
    return m_Point == other.m_Point && m_bMSMSPlate == other.m_bMSMSPlate ? 1 : 0;
}

} // namespace quillon
