#include "JsonWriter.h"

#include "../Output.h"
#include "NumberText.h"

#include <charconv>
#include <cstdint>
#include <cstring>

namespace quillon::tool {

namespace {

// Pending text is handed to the output in blocks of about this size.
constexpr size_t kBlock = size_t{1} << 20;
// Room for any one number with its ".0".
constexpr size_t kNumberRoom = kShortestRoom + 2;
// A comma and a line break.
constexpr size_t kSeparatorRoom = 2;

char* PutText(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

// At most 6 characters an input character (a control character as \u00XX) and the quotes.
size_t StringRoom(std::string_view text) {
    return 6 * text.size() + 2;
}

// True when none of the 8 bytes of word is a control character, a quote or a backslash: for
// each, a byte below 0x20 (or equal to 0 after the xor) borrows into its top bit.
bool PlainBytes(std::uint64_t word) {
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    constexpr std::uint64_t kTops = 0x8080808080808080;
    const auto below = [](std::uint64_t bytes, std::uint64_t limit) {
        return (bytes - kOnes * limit) & ~bytes & kTops;
    };
    return (below(word, 0x20) | below(word ^ (kOnes * '"'), 1) | below(word ^ (kOnes * '\\'), 1)) ==
           0;
}

char* PutString(char* out, std::string_view text) {
    static constexpr char kHex[] = "0123456789abcdef";
    *out++ = '"';
    // Eight plain characters at a time, then one at a time.
    while (text.size() >= 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data(), 8);
        if (!PlainBytes(word))
            break;
        std::memcpy(out, &word, 8);
        out += 8;
        text.remove_prefix(8);
    }
    for (const char ch : text) {
        const auto byte = static_cast<unsigned char>(ch);
        if (byte >= 0x20 && ch != '"' && ch != '\\') {
            *out++ = ch;
            continue;
        }
        *out++ = '\\';
        switch (ch) {
        case '"':
        case '\\':
            *out++ = ch;
            break;
        case '\n':
            *out++ = 'n';
            break;
        case '\t':
            *out++ = 't';
            break;
        case '\r':
            *out++ = 'r';
            break;
        default:
            out = PutText(out, "u00");
            *out++ = kHex[byte >> 4];
            *out++ = kHex[byte & 0xf];
        }
    }
    *out++ = '"';
    return out;
}

template <class Number>
char* PutFloat(char* out, Number value) {
    char* end = WriteShortest(out, value);
    if (end == nullptr)
        return PutText(out, "null");
    if (LooksIntegral(std::string_view(out, static_cast<size_t>(end - out))))
        end = PutText(end, ".0");
    return end;
}

char* PutInteger(char* out, long long value) {
    // Sample, function and trace numbers are mostly one or two digits.
    if (value >= 0 && value < 100) {
        if (value >= 10)
            *out++ = static_cast<char>('0' + value / 10);
        *out++ = static_cast<char>('0' + value % 10);
        return out;
    }
    return std::to_chars(out, out + kNumberRoom, value).ptr;
}

template <class Number, class PutNumber>
char* PutList(char* out, std::span<const Number> list, PutNumber put) {
    *out++ = '[';
    for (size_t i = 0; i < list.size(); ++i) {
        if (i > 0)
            *out++ = ',';
        out = put(out, list[i]);
    }
    *out++ = ']';
    return out;
}

// The most characters each kind of value takes, and its text.
size_t ValueRoom(Null) {
    return 4;
}
size_t ValueRoom(bool) {
    return 5;
}
size_t ValueRoom(long long) {
    return kNumberRoom;
}
size_t ValueRoom(float) {
    return kNumberRoom;
}
size_t ValueRoom(double) {
    return kNumberRoom;
}
size_t ValueRoom(std::string_view text) {
    return StringRoom(text);
}
template <class Number>
size_t ValueRoom(std::span<const Number> list) {
    return 2 + list.size() * kNumberRoom;
}

char* PutValue(char* out, Null) {
    return PutText(out, "null");
}
char* PutValue(char* out, bool flag) {
    return PutText(out, flag ? "true" : "false");
}
char* PutValue(char* out, long long number) {
    return PutInteger(out, number);
}
char* PutValue(char* out, float number) {
    return PutFloat(out, number);
}
char* PutValue(char* out, double number) {
    return PutFloat(out, number);
}
char* PutValue(char* out, std::string_view text) {
    return PutString(out, text);
}
char* PutValue(char* out, std::span<const double> list) {
    return PutList(out, list, [](char* at, double number) { return PutFloat(at, number); });
}
char* PutValue(char* out, std::span<const int> list) {
    return PutList(out, list, [](char* at, int number) { return PutInteger(at, number); });
}

} // namespace

JsonWriter::JsonWriter(Output& output)
    : m_output(output), m_text(new char[kBlock]), m_capacity(kBlock) {}

char* JsonWriter::Room(size_t bytes) {
    if (m_capacity - m_used < bytes) {
        Flush();
        if (m_capacity < bytes) {
            m_text.reset(new char[bytes]);
            m_capacity = bytes;
        }
    }
    return m_text.get() + m_used;
}

char* JsonWriter::Separate(char* out) {
    if (m_afterKey) {
        m_afterKey = false;
        return out;
    }
    if (m_levels.empty())
        return out;
    Level& level = m_levels.back();
    if (!level.first)
        *out++ = ',';
    level.first = false;
    if (level.ownLine)
        *out++ = '\n';
    return out;
}

void JsonWriter::Open(char bracket, bool array) {
    char* out = Separate(Room(kSeparatorRoom + 1));
    *out++ = bracket;
    Commit(out);
    // The keys of the outermost object and the elements of the outer arrays each start a line,
    // so that a record is a line.
    m_levels.push_back({true, m_levels.empty() || (array && m_levels.size() == 1)});
}

void JsonWriter::Close(char bracket) {
    m_levels.pop_back();
    *Room(1) = bracket;
    ++m_used;
}

void JsonWriter::Key(std::string_view key) {
    char* out = PutString(Separate(Room(kSeparatorRoom + StringRoom(key) + 1)), key);
    *out++ = ':';
    Commit(out);
    m_afterKey = true;
}

void JsonWriter::Value(const FieldValue& value) {
    std::visit(
        [this](const auto& item) {
            Commit(PutValue(Separate(Room(kSeparatorRoom + ValueRoom(item))), item));
        },
        value);
}

void JsonWriter::Put(std::string_view key, const FieldValue& value) {
    std::visit(
        [this, key](const auto& item) {
            char* out = Separate(Room(kSeparatorRoom + StringRoom(key) + 1 + ValueRoom(item)));
            out = PutString(out, key);
            *out++ = ':';
            Commit(PutValue(out, item));
        },
        value);
}

void JsonWriter::Flush() {
    m_output.Write(std::string_view(m_text.get(), m_used));
    m_used = 0;
}

} // namespace quillon::tool
