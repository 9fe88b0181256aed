#include <quillon/platform/Numbers.h>
#include <quillon/platform/String.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

namespace quillon {

namespace {

bool IsBlank(char ch) {
    return std::isspace(static_cast<unsigned char>(ch)) != 0;
}

int ToPosition(size_t position) {
    return position == std::string::npos ? -1 : static_cast<int>(position);
}

} // namespace

int CString::Find(char ch, int start) const {
    if (start < 0)
        start = 0;
    if (start >= GetLength())
        return -1;
    return ToPosition(m_text.find(ch, static_cast<size_t>(start)));
}

int CString::Find(const char* text, int start) const {
    if (start < 0)
        start = 0;
    if (start > GetLength() || text == nullptr)
        return -1;
    return ToPosition(m_text.find(text, static_cast<size_t>(start)));
}

int CString::ReverseFind(char ch) const {
    return ToPosition(m_text.rfind(ch));
}

CString CString::Mid(int first) const {
    return Mid(first, GetLength());
}

CString CString::Mid(int first, int count) const {
    first = std::max(first, 0);
    count = std::max(count, 0);
    if (first >= GetLength() || count == 0)
        return CString();
    return CString(m_text.substr(static_cast<size_t>(first), static_cast<size_t>(count)));
}

CString CString::Left(int count) const {
    return Mid(0, count);
}

CString CString::Right(int count) const {
    count = std::clamp(count, 0, GetLength());
    return CString(m_text.substr(m_text.size() - static_cast<size_t>(count)));
}

void CString::Format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    FormatV(format, args);
    va_end(args);
}

void CString::FormatV(const char* format, va_list args) {
    if (format == nullptr) {
        m_text.clear();
        return;
    }
    // Numbers are formatted with a "." in every locale: texts written here are read back as
    // numbers.
    const CNumericLocaleScope numericLocale;
    va_list measure;
    va_copy(measure, args);
    const int length = std::vsnprintf(nullptr, 0, format, measure);
    va_end(measure);
    if (length <= 0) {
        m_text.clear();
        return;
    }
    m_text.resize(static_cast<size_t>(length));
    std::vsnprintf(m_text.data(), m_text.size() + 1, format, args);
}

int CString::Replace(char oldChar, char newChar) {
    int count = 0;
    for (char& ch : m_text) {
        if (ch == oldChar) {
            ch = newChar;
            ++count;
        }
    }
    return count;
}

int CString::Replace(const char* oldText, const char* newText) {
    if (oldText == nullptr || *oldText == '\0')
        return 0;
    const std::string_view from(oldText);
    const std::string_view to(newText ? newText : "");
    int count = 0;
    std::string result;
    size_t done = 0;
    for (size_t at = m_text.find(from); at != std::string::npos; at = m_text.find(from, done)) {
        result.append(m_text, done, at - done).append(to);
        done = at + from.size();
        ++count;
    }
    if (count > 0) {
        result.append(m_text, done, std::string::npos);
        m_text = std::move(result);
    }
    return count;
}

int CString::Remove(char ch) {
    const auto end = std::remove(m_text.begin(), m_text.end(), ch);
    const int count = static_cast<int>(m_text.end() - end);
    m_text.erase(end, m_text.end());
    return count;
}

int CString::Insert(int index, char ch) {
    index = std::clamp(index, 0, GetLength());
    m_text.insert(static_cast<size_t>(index), 1, ch);
    return GetLength();
}

int CString::Insert(int index, const char* text) {
    index = std::clamp(index, 0, GetLength());
    if (text != nullptr)
        m_text.insert(static_cast<size_t>(index), text);
    return GetLength();
}

int CString::Delete(int index, int count) {
    index = std::max(index, 0);
    if (count > 0 && index < GetLength())
        m_text.erase(static_cast<size_t>(index), static_cast<size_t>(count));
    return GetLength();
}

void CString::TrimLeft() {
    const auto first = std::find_if_not(m_text.begin(), m_text.end(), IsBlank);
    m_text.erase(m_text.begin(), first);
}

void CString::TrimLeft(char target) {
    m_text.erase(0, m_text.find_first_not_of(target));
}

void CString::TrimLeft(const char* targets) {
    if (targets != nullptr)
        m_text.erase(0, m_text.find_first_not_of(targets));
}

void CString::TrimRight() {
    const auto last = std::find_if_not(m_text.rbegin(), m_text.rend(), IsBlank);
    m_text.erase(last.base(), m_text.end());
}

void CString::TrimRight(char target) {
    const size_t keep = m_text.find_last_not_of(target);
    m_text.erase(keep == std::string::npos ? 0 : keep + 1);
}

void CString::TrimRight(const char* targets) {
    if (targets == nullptr)
        return;
    const size_t keep = m_text.find_last_not_of(targets);
    m_text.erase(keep == std::string::npos ? 0 : keep + 1);
}

void CString::MakeUpper() {
    for (char& ch : m_text)
        ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
}

void CString::MakeLower() {
    for (char& ch : m_text)
        ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
}

int CString::Compare(const char* text) const {
    return std::strcmp(c_str(), text ? text : "");
}

int CString::CompareNoCase(const char* text) const {
    const unsigned char* a = reinterpret_cast<const unsigned char*>(c_str());
    const unsigned char* b = reinterpret_cast<const unsigned char*>(text ? text : "");
    for (;; ++a, ++b) {
        const int difference = std::tolower(*a) - std::tolower(*b);
        if (difference != 0 || *a == '\0')
            return difference;
    }
}

CString& CString::operator=(const char* text) {
    m_text.assign(text ? text : "");
    return *this;
}

CString& CString::operator=(char ch) {
    m_text.assign(1, ch);
    return *this;
}

CString& CString::operator+=(const CString& text) {
    m_text += text.m_text;
    return *this;
}

CString& CString::operator+=(const char* text) {
    if (text != nullptr)
        m_text += text;
    return *this;
}

CString& CString::operator+=(char ch) {
    m_text += ch;
    return *this;
}

CString operator+(const CString& a, const CString& b) {
    return CString(a.m_text + b.m_text);
}

CString operator+(const CString& a, const char* b) {
    CString result(a);
    result += b;
    return result;
}

CString operator+(const char* a, const CString& b) {
    CString result(a);
    result += b;
    return result;
}

CString operator+(const CString& a, char b) {
    CString result(a);
    result += b;
    return result;
}

CString operator+(char a, const CString& b) {
    CString result(a);
    result += b;
    return result;
}

} // namespace quillon
