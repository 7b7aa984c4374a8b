#include "automation/ModPushKeys.h"

#include "platform/Ansi.h"

#include <QHash>
#include <QList>
#include <QRegularExpression>

#include <cmath>
#include <cstdlib>
#include <exception>
#include <optional>

namespace {

constexpr std::uint8_t kVkShift = 0x10;
constexpr std::uint8_t kVkCtrl = 0x11;
constexpr std::uint8_t kVkAlt = 0x12;
constexpr std::uint8_t kVkReturn = 0x0D;
constexpr std::uint8_t kVkLineFeed = 0x0A;

// Read past either end of the sequence.
constexpr char32_t kNoChar = 0xFFFFFFFF;

// Characters the sequence reader types with Shift, besides the capital letters.
constexpr std::u32string_view kShiftedChars = U"!@#$&*()_|:?><}\"";
// Brace names typed with Shift.
constexpr std::u32string_view kShiftedNames = U"~!@#$%^&*()_+|{}:?><\"";

bool ReaderShifts(char32_t c) {
    return (c >= U'A' && c <= U'Z') || kShiftedChars.find(c) != std::u32string_view::npos;
}

struct NamedKey {
    const char* name;
    std::uint8_t vk;
};

constexpr NamedKey kNamedKeys[] = {
    {"BACKSPACE", 0x08},
    {"BS", 0x08},
    {"BKSP", 0x08},
    {"BELL", 0x07},
    {"BREAK", 0x03},
    {"CAPSLOCK", 0x14},
    {"CAPS", 0x14},
    {"DELETE", 0x2E},
    {"DEL", 0x2E},
    {"DOWN", 0x28},
    {"END", 0x23},
    {"ENTER", 0x0D},
    {"RETURN", 0x0D},
    {"ESCAPE", 0x1B},
    {"ESC", 0x1B},
    {"FORMFEED", 0x0C},
    {"FF", 0x0C},
    {"HELP", 0x2F},
    {"HOME", 0x24},
    {"INSERT", 0x2D},
    {"INS", 0x2D},
    {"LEFT", 0x25},
    {"LINEFEED", 0x0A},
    {"LF", 0x0A},
    {"NUMLOCK", 0x90},
    {"PGDN", 0x22},
    {"PAGEDOWN", 0x22},
    {"NEXT", 0x22},
    {"PGUP", 0x21},
    {"PAGEUP", 0x21},
    {"PRIOR", 0x21},
    {"PRINTSCREEN", 0x2A},
    {"PRTSC", 0x2A},
    {"RIGHT", 0x27},
    {"SCROLLLOCK", 0x91},
    {"SCRLK", 0x91},
    {"TAB", 0x09},
    {"UP", 0x26},
    {"NUMPADMULTIPLY", 0x6A},
    {"NUMPAD*", 0x6A},
    {"NUMPADADD", 0x6B},
    {"NUMPAD+", 0x6B},
    {"NUMPADSUBTRACT", 0x6D},
    {"NUMPAD-", 0x6D},
    {"NUMPADDECIMAL", 0x6E},
    {"NUMPAD.", 0x6E},
    {"NUMPADDIVIDE", 0x6F},
    {"NUMPAD/", 0x6F},
};

// The virtual key of a name of the key-name table, given in upper case.
std::optional<std::uint8_t> NamedKeyCode(const QString& upper) {
    static const QHash<QString, std::uint8_t> table = [] {
        QHash<QString, std::uint8_t> keys;
        for (const NamedKey& key : kNamedKeys)
            keys.insert(QLatin1String(key.name), key.vk);
        for (int k = 1; k <= 24; ++k)
            keys.insert(QStringLiteral("F%1").arg(k), static_cast<std::uint8_t>(111 + k));
        for (int k = 0; k <= 9; ++k)
            keys.insert(QStringLiteral("NUMPAD%1").arg(k), static_cast<std::uint8_t>(96 + k));
        return keys;
    }();
    const auto found = table.constFind(upper);
    if (found == table.cend())
        return std::nullopt;
    return *found;
}

// A repeat count: a decimal number, fractions rounded to the nearest whole number (halves away
// from zero); nothing when the text is no number or out of the 16-bit range.
std::optional<std::int16_t> ParseCount(const QString& text) {
    static const QRegularExpression number(
        QStringLiteral("^[+-]?(\\d+\\.?\\d*|\\.\\d+)([eE][+-]?\\d+)?$"));
    const QString trimmed = text.trimmed();
    if (!number.match(trimmed).hasMatch())
        return std::nullopt;
    const double value = std::round(std::strtod(trimmed.toLatin1().constData(), nullptr));
    if (!std::isfinite(value) || value < -32768 || value > 32767)
        return std::nullopt;
    return static_cast<std::int16_t>(value);
}

char32_t At(const std::u32string& s, std::size_t position) {
    return position >= 1 && position <= s.size() ? s[position - 1] : kNoChar;
}

QString OneChar(char32_t c) {
    return QString::fromUcs4(&c, 1);
}

QString Text(const std::u32string& s) {
    return QString::fromUcs4(s.data(), static_cast<qsizetype>(s.size()));
}

} // namespace

struct ModPushKeys::Modifier {
    std::uint8_t vk;
    std::int16_t ModPushKeys::*held;
};

void ModPushKeys::PushKeys(const QString& keys) {
    const bool topLevel = pushDepth_ == 0;
    if (topLevel) {
        ShiftHeld = 0;
        CtrlHeld = 0;
        AltHeld = 0;
    }
    struct DepthGuard {
        int& depth;
        explicit DepthGuard(int& d) : depth(d) { ++depth; }
        ~DepthGuard() { --depth; }
    } guard(pushDepth_);

    const QList<uint> chars = keys.toUcs4();
    std::u32string s(chars.begin(), chars.end());
    s += U' ';

    // Positions count from 1; the last one is the sentinel blank, only ever looked at.
    for (std::size_t i = 1; i <= s.size() - 1; ++i) {
        const char32_t c = At(s, i);
        if (c == U'+')
            ApplyModifier({kVkShift, &ModPushKeys::ShiftHeld}, s, i);
        else if (c == U'^')
            ApplyModifier({kVkCtrl, &ModPushKeys::CtrlHeld}, s, i);
        else if (c == U'%')
            ApplyModifier({kVkAlt, &ModPushKeys::AltHeld}, s, i);
        else if (c == U'{')
            PushBraceGroup(s, i);
        else if (ReaderShifts(c))
            PushShiftedChar(OneChar(c));
        else if (c == U'~')
            PushNamedKey(QStringLiteral("ENTER"));
        else
            PushChar(OneChar(c));
    }

    // Nested calls leave the modifiers of the group around them alone.
    if (topLevel) {
        if (ShiftHeld)
            ModifierUp(kVkShift);
        if (CtrlHeld)
            ModifierUp(kVkCtrl);
        if (AltHeld)
            ModifierUp(kVkAlt);
    }
}

void ModPushKeys::ApplyModifier(const Modifier& modifier, const std::u32string& s, std::size_t& i) {
    std::int16_t& held = this->*modifier.held;
    const char32_t next = At(s, i + 1);
    if (next != U'(' && next != U'{') {
        ++i;
        if (modifier.vk == kVkShift) {
            PushShiftedChar(OneChar(next));
            return;
        }
        if (!held)
            ModifierDown(modifier.vk);
        PushChar(OneChar(next));
        ModifierUp(modifier.vk);
        return;
    }

    const char32_t opener = next;
    const char32_t closer = opener == U'(' ? U')' : U'}';
    ++i;
    int depth = 1;
    std::u32string captured;
    while (i <= s.size() && depth != 0) {
        ++i;
        const char32_t ch = At(s, i);
        if (ch == closer)
            --depth;
        if (ch == opener)
            ++depth;
        if (ch != kNoChar && !(ch == closer && depth == 0))
            captured += ch;
    }

    if (!held)
        ModifierDown(modifier.vk);
    held = -1;
    if (opener == U'(')
        PushKeys(Text(captured));
    else
        PushNamedKey(Text(captured));
    ModifierUp(modifier.vk);
    held = 0;
}

void ModPushKeys::PushBraceGroup(const std::u32string& s, std::size_t& i) {
    ++i;
    std::u32string name;
    while (At(s, i) != U'}' && i < s.size()) {
        name += At(s, i);
        ++i;
    }
    // "{}}" types a closing brace; after a real name the second "}" is a lone one.
    if (name.empty() && At(s, i) == U'}' && At(s, i + 1) == U'}') {
        PushShiftedChar(QStringLiteral("}"));
        ++i;
        return;
    }
    PushNamedKey(Text(name));
}

void ModPushKeys::PushNamedKey(QString spec) {
    std::int16_t count = 1;
    // A failing step is dropped and the count falls back to 1; the steps after it still run.
    const auto step = [&count](auto&& action) {
        try {
            action();
        } catch (const std::exception&) {
            count = 1;
        }
    };

    QString name = spec;
    const qsizetype lastBlank = spec.lastIndexOf(QLatin1Char(' '));
    if (lastBlank >= 0) {
        name = spec.left(lastBlank);
        count = ParseCount(spec.mid(lastBlank + 1)).value_or(1);
    }

    const QString upper = name.toUpper();
    if (const std::optional<std::uint8_t> vk = NamedKeyCode(upper)) {
        std::uint8_t scan = 0;
        step([&] { scan = static_cast<std::uint8_t>(keyboard_.MapVirtualKey(*vk)); });
        const int repetitions = count;
        for (int r = 0; r < repetitions; ++r)
            step([&] { TapKey(*vk, scan); });
    } else if (upper == QLatin1String("NEWLINE") || upper == QLatin1String("NL")) {
        std::uint8_t returnScan = 0;
        std::uint8_t lineFeedScan = 0;
        step([&] { returnScan = static_cast<std::uint8_t>(keyboard_.MapVirtualKey(kVkReturn)); });
        step([&] {
            lineFeedScan = static_cast<std::uint8_t>(keyboard_.MapVirtualKey(kVkLineFeed));
        });
        const int repetitions = count;
        for (int r = 0; r < repetitions; ++r) {
            step([&] { TapKey(kVkReturn, returnScan); });
            step([&] { TapKey(kVkLineFeed, lineFeedScan); });
        }
    } else if (upper == QLatin1String("SLEEP")) {
        if (count >= 0)
            step([&] { keyboard_.Sleep(std::uint32_t(count) * 1000); });
    } else if (name.size() == 1 &&
               kShiftedNames.find(name[0].unicode()) != std::u32string_view::npos) {
        const int repetitions = count;
        for (int r = 0; r < repetitions; ++r)
            step([&] { PushShiftedChar(name); });
    } else {
        const int repetitions = count;
        for (int r = 0; r < repetitions; ++r)
            step([&] { PushKeys(name); });
    }
}

void ModPushKeys::PushShiftedChar(QString ch) {
    if (!ShiftHeld)
        ModifierDown(kVkShift);
    PushChar(ch);
    if (!ShiftHeld)
        ModifierUp(kVkShift);
}

void ModPushKeys::PushChar(QString ch) {
    const QList<uint> chars = ch.toUcs4();
    if (chars.isEmpty())
        return;
    const std::uint8_t ansi = ToAnsi(chars.first());
    const auto vk = static_cast<std::uint8_t>(keyboard_.VkKeyScan(ansi) & 0xFF);
    const std::uint8_t oem = keyboard_.CharToOem(ansi);
    const auto scan = static_cast<std::uint8_t>(keyboard_.OemKeyScan(oem) & 0xFF);
    TapKey(vk, scan);
}

void ModPushKeys::TapKey(std::uint8_t vk, std::uint8_t scan) {
    keyboard_.KeyEvent(vk, scan, 0);
    keyboard_.KeyEvent(vk, scan, KEYEVENTF_KEYUP);
}

void ModPushKeys::ModifierDown(std::uint8_t vk) {
    keyboard_.KeyEvent(vk, static_cast<std::uint8_t>(keyboard_.MapVirtualKey(vk)), 0);
}

void ModPushKeys::ModifierUp(std::uint8_t vk) {
    keyboard_.KeyEvent(vk, static_cast<std::uint8_t>(keyboard_.MapVirtualKey(vk)), KEYEVENTF_KEYUP);
}
