#include <quillon/file/FieldFormat.h>

#include <cstring>
#include <string>

namespace quillon {

namespace {

// What the first conversion of a piece takes: its letter (0 for a piece without one), its count
// of "l" length modifiers, whether it takes a size-like integer ("z", "j", "t"), a long double
// ("L"), and how many "*" widths or precisions come before its value.
struct Conversion {
    char letter = 0;
    int longs = 0;
    bool sizeLike = false;
    bool longDouble = false;
    int stars = 0;
};

Conversion FindConversion(std::string_view piece) {
    Conversion conversion;
    for (size_t i = 0; i < piece.size(); ++i) {
        if (piece[i] != '%')
            continue;
        if (i + 1 < piece.size() && piece[i + 1] == '%') {
            ++i;
            continue;
        }
        for (size_t j = i + 1; j < piece.size(); ++j) {
            const char ch = piece[j];
            if (ch == '*')
                ++conversion.stars;
            else if (ch == 'l')
                ++conversion.longs;
            else if (ch == 'z' || ch == 'j' || ch == 't')
                conversion.sizeLike = true;
            else if (ch == 'L')
                conversion.longDouble = true;
            else if (std::strchr("-+ #0123456789.h'", ch) == nullptr) {
                conversion.letter = ch;
                break;
            }
        }
        break;
    }
    return conversion;
}

// The text argument with every character that would split a record turned into a blank.
std::string FieldText(const char* text, const CString& delimiters) {
    std::string field = text != nullptr ? text : "(null)";
    for (char& ch : field) {
        if (ch == '\t' || ch == '\r' || ch == '\n' ||
            (!delimiters.IsEmpty() && std::strchr(delimiters.c_str(), ch) != nullptr))
            ch = ' ';
    }
    return field;
}

template <typename Value>
void AppendPiece(CString& line, const char* piece, const Conversion& conversion, const int* stars,
                 Value value) {
    CString text;
    if (conversion.stars == 0)
        text.Format(piece, value);
    else if (conversion.stars == 1)
        text.Format(piece, stars[0], value);
    else
        text.Format(piece, stars[0], stars[1], value);
    line += text;
}

// Formats one piece, taking its conversion's arguments from args.
void AppendFormatted(CString& line, const CString& piece, const CString& delimiters,
                     va_list* args) {
    const Conversion conversion = FindConversion(piece.view());
    int stars[2] = {0, 0};
    for (int k = 0; k < conversion.stars && k < 2; ++k)
        stars[k] = va_arg(*args, int);
    const char* format = piece.c_str();
    const bool wide = conversion.longs > 0;
    switch (conversion.letter) {
    case 'd':
    case 'i':
    case 'c':
    case 'u':
    case 'o':
    case 'x':
    case 'X':
        if (conversion.sizeLike)
            AppendPiece(line, format, conversion, stars, va_arg(*args, size_t));
        else if (conversion.longs >= 2)
            AppendPiece(line, format, conversion, stars, va_arg(*args, long long));
        else if (wide)
            AppendPiece(line, format, conversion, stars, va_arg(*args, long));
        else
            AppendPiece(line, format, conversion, stars, va_arg(*args, int));
        break;
    case 'f':
    case 'F':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
    case 'a':
    case 'A':
        if (conversion.longDouble)
            AppendPiece(line, format, conversion, stars, va_arg(*args, long double));
        else
            AppendPiece(line, format, conversion, stars, va_arg(*args, double));
        break;
    case 's':
        AppendPiece(line, format, conversion, stars,
                    FieldText(va_arg(*args, const char*), delimiters).c_str());
        break;
    case 'p':
        AppendPiece(line, format, conversion, stars, va_arg(*args, void*));
        break;
    default:
        // Literal text alone (a "%%" pair stays one percent sign).
        AppendPiece(line, format, conversion, stars, 0);
        break;
    }
}

} // namespace

CString FormatFields(const CStringArray& pieces, const CString& delimiters, va_list args) {
    va_list remaining;
    va_copy(remaining, args);
    CString line;
    for (int i = 0; i < pieces.GetSize(); ++i) {
        if (i > 0)
            line += delimiters;
        AppendFormatted(line, pieces[i], delimiters, &remaining);
    }
    va_end(remaining);
    return line;
}

} // namespace quillon
