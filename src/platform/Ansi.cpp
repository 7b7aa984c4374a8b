#include "platform/Ansi.h"

#include <QList>

#include <array>

namespace {

// Characters of bytes 0x80..0x9F; 0 marks the five bytes the code page leaves
// undefined, which stand for the C1 control of the same number.
constexpr std::array<char16_t, 32> kHighBlock = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
};

} // namespace

std::uint8_t ToAnsi(char32_t ch) {
    if (ch < 0x80 || (ch >= 0xA0 && ch <= 0xFF))
        return static_cast<std::uint8_t>(ch);
    for (std::size_t i = 0; i < kHighBlock.size(); ++i) {
        const char32_t mapped = kHighBlock[i] ? kHighBlock[i] : char32_t(0x80 + i);
        if (mapped == ch)
            return static_cast<std::uint8_t>(0x80 + i);
    }
    return '?';
}

QByteArray ToAnsi(const QString& text) {
    QByteArray out;
    out.reserve(text.size());
    for (const char32_t ch : text.toUcs4())
        out.append(static_cast<char>(ToAnsi(ch)));
    return out;
}

char32_t FromAnsi(std::uint8_t byte) {
    if (byte >= 0x80 && byte < 0xA0) {
        const char16_t mapped = kHighBlock[byte - 0x80];
        return mapped ? mapped : byte;
    }
    return byte;
}
