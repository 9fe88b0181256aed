#pragma once

#include <quillon/platform/Types.h>

#include <cstdarg>
#include <string>
#include <string_view>
#include <utility>

namespace quillon {

// An owned byte string with the framework's string interface. Bytes are kept as they are: there is
// no encoding conversion. Positions and lengths are ints; -1 means "not found".
class CString {
public:
    CString() = default;
    CString(const char* text) : m_text(text ? text : "") {}
    CString(const char* text, int length)
        : m_text(text ? text : "", text ? ClampLength(length) : 0) {}
    CString(char ch, int repeat = 1) : m_text(repeat > 0 ? repeat : 0, ch) {}
    CString(std::string text) : m_text(std::move(text)) {}
    CString(std::string_view text) : m_text(text) {}

    // Size and access.
    int GetLength() const { return static_cast<int>(m_text.size()); }
    bool IsEmpty() const { return m_text.empty(); }
    void Empty() { m_text.clear(); }
    char GetAt(int index) const { return m_text[static_cast<size_t>(index)]; }
    void SetAt(int index, char ch) { m_text[static_cast<size_t>(index)] = ch; }
    char operator[](int index) const { return GetAt(index); }
    operator const char*() const { return m_text.c_str(); }
    const char* c_str() const { return m_text.c_str(); }
    const std::string& str() const { return m_text; }
    std::string& str() { return m_text; }
    std::string_view view() const { return m_text; }

    // Searching: the first (or last) position of a character or text, -1 when absent.
    int Find(char ch, int start = 0) const;
    int Find(const char* text, int start = 0) const;
    int ReverseFind(char ch) const;

    // Extraction, clamped to the string: a start below 0 counts as 0, a count beyond the end is
    // cut.
    CString Mid(int first) const;
    CString Mid(int first, int count) const;
    CString Left(int count) const;
    CString Right(int count) const;

    // Formatting with the C library's printf rules.
    void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void FormatV(const char* format, va_list args);

    // Editing. Replace and Remove return the number of replacements or removals; Insert and Delete
    // return the new length.
    int Replace(char oldChar, char newChar);
    int Replace(const char* oldText, const char* newText);
    int Remove(char ch);
    int Insert(int index, char ch);
    int Insert(int index, const char* text);
    int Delete(int index, int count = 1);
    void TrimLeft();
    void TrimLeft(char target);
    void TrimLeft(const char* targets);
    void TrimRight();
    void TrimRight(char target);
    void TrimRight(const char* targets);
    void MakeUpper();
    void MakeLower();

    // Comparison: negative, 0 or positive as in strcmp (CompareNoCase ignores ASCII case).
    int Compare(const char* text) const;
    int CompareNoCase(const char* text) const;

    CString& operator=(const char* text);
    CString& operator=(char ch);
    CString& operator+=(const CString& text);
    CString& operator+=(const char* text);
    CString& operator+=(char ch);

    friend CString operator+(const CString& a, const CString& b);
    friend CString operator+(const CString& a, const char* b);
    friend CString operator+(const char* a, const CString& b);
    friend CString operator+(const CString& a, char b);
    friend CString operator+(char a, const CString& b);

    friend bool operator==(const CString& a, const CString& b) { return a.m_text == b.m_text; }
    friend bool operator==(const CString& a, const char* b) { return a.Compare(b) == 0; }
    friend bool operator==(const char* a, const CString& b) { return b.Compare(a) == 0; }
    friend bool operator!=(const CString& a, const CString& b) { return !(a == b); }
    friend bool operator!=(const CString& a, const char* b) { return !(a == b); }
    friend bool operator!=(const char* a, const CString& b) { return !(a == b); }
    friend bool operator<(const CString& a, const CString& b) { return a.m_text < b.m_text; }
    friend bool operator<(const CString& a, const char* b) { return a.Compare(b) < 0; }
    friend bool operator<(const char* a, const CString& b) { return b.Compare(a) > 0; }

private:
    static size_t ClampLength(int length) { return length > 0 ? static_cast<size_t>(length) : 0; }

    std::string m_text;
};

} // namespace quillon

template <>
struct std::hash<quillon::CString> {
    size_t operator()(const quillon::CString& text) const noexcept {
        return std::hash<std::string_view>{}(text.view());
    }
};
