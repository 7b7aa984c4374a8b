#include "automation/ModPushKeys.h"
#include "platform/UsLayout.h"

#include "doubles/RecordingKeyboard.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace {

// Expected events, written as a comma-separated script:
//   "Shift down" / "Ctrl up" / ...   the modifier key with its own scan code
//   "tap a"       the key that types the character (the word "space" for a blank)
//   "tap vk37"    virtual key 37 with its scan code ("tap vk37/0": with scan code 0)
//   "pause 2000"  a pause in milliseconds
//   " x3" after a tap repeats it
QList<KeyAction> Expand(const QString& script) {
    QList<KeyAction> out;
    for (QString step : script.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        step = step.trimmed();
        int times = 1;
        const qsizetype repeat = step.lastIndexOf(QLatin1String(" x"));
        if (repeat > 0 && step.mid(repeat + 2).toInt() > 0) {
            times = step.mid(repeat + 2).toInt();
            step = step.left(repeat);
        }
        const QStringList words = step.split(QLatin1Char(' '));
        const QString what = words.value(0);
        const QString arg = words.value(1);
        if (what == "Shift" || what == "Ctrl" || what == "Alt") {
            const std::uint8_t vk = what == "Shift" ? 0x10 : what == "Ctrl" ? 0x11 : 0x12;
            const std::uint8_t scan = what == "Shift" ? 42 : what == "Ctrl" ? 29 : 56;
            out.append({arg == "down" ? KeyAction::Down : KeyAction::Up, vk, scan, 0});
        } else if (what == "pause") {
            out.append({KeyAction::Pause, 0, 0, arg.toUInt()});
        } else if (what == "tap") {
            std::uint8_t vk = 0;
            std::uint8_t scan = 0;
            if (arg.startsWith("vk") && arg.size() > 2) {
                const QStringList codes = arg.mid(2).split('/');
                vk = static_cast<std::uint8_t>(codes[0].toUInt());
                scan = static_cast<std::uint8_t>(codes.size() > 1 ? codes[1].toUInt()
                                                                  : UsLayout::MapVirtualKey(vk));
            } else {
                const auto ch = static_cast<std::uint8_t>(arg == "space" ? ' ' : arg[0].unicode());
                vk = static_cast<std::uint8_t>(UsLayout::VkKeyScan(ch));
                scan = static_cast<std::uint8_t>(UsLayout::OemKeyScan(UsLayout::CharToOem(ch)));
            }
            for (int t = 0; t < times; ++t) {
                out.append({KeyAction::Down, vk, scan, 0});
                out.append({KeyAction::Up, vk, scan, 0});
            }
        } else {
            ADD_FAILURE() << "bad script step: " << step.toStdString();
        }
    }
    return out;
}

std::string Events(const QList<KeyAction>& actions) {
    return Describe(actions).toStdString();
}

void ExpectTyped(const QString& keys, const QString& expected) {
    RecordingKeyboard keyboard;
    ModPushKeys(keyboard).PushKeys(keys);
    EXPECT_EQ(Events(keyboard.actions), Events(Expand(expected)))
        << "sequence: " << keys.toStdString();
}

struct Row {
    const char* keys;
    QString expected;
};

const QString kShifted = "Shift down, tap %1, Shift up";
const QString kLeftBlank = kShifted.arg('L') + "," + kShifted.arg('E') + "," + kShifted.arg('F') +
                           "," + kShifted.arg('T') + ", tap space";

TEST(ModPushKeys, TypesEachSequenceAsItsKeyEvents) {
    const Row rows[] = {
        {"ab", "tap a, tap b"},
        {"Hi!", "Shift down, tap H, Shift up, tap I, Shift down, tap 1, Shift up"},
        {"+a", "Shift down, tap A, Shift up"},
        {"^c", "Ctrl down, tap C, Ctrl up"},
        {"%{F4}", "Alt down, tap vk115, Alt up"},
        {"+(ab)", "Shift down, tap A, tap B, Shift up"},
        {"{LEFT 3}", "tap vk37 x3"},
        {"{{}", "Shift down, tap {, Shift up"},
        {"{}}", "Shift down, tap }, Shift up"},
        {"x~", "tap x, tap vk13"},
        {"{SLEEP 2}", "pause 2000"},
        {"", ""},
        {"{}", ""},
        {"a+", "tap a, Shift down, tap space, Shift up"},
        {"a^", "tap a, Ctrl down, tap space, Ctrl up"},
        {"a%", "tap a, Alt down, tap space, Alt up"},
        {"^+a", "Ctrl down, tap =, Ctrl up, tap a"},
        {"^(+a)", "Ctrl down, Shift down, tap A, Shift up, Ctrl up"},
        {"+(a(b)c)", "Shift down, tap a, tap 9, tap b, tap 0, tap c, Shift up"},
        {"^(+(ab))", "Ctrl down, Shift down, tap A, tap B, Shift up, Ctrl up"},
        {"{enter}", "tap vk13"},
        {"{LEFT 2}", "tap vk37 x2"},
        {"{LEFT }", "tap vk37"},
        {"{LEFT x}", "tap vk37"},
        {"{LEFT 0}", ""},
        {"{LEFT -3}", ""},
        {"{LEFT 40000}", "tap vk37"},
        {"{LEFT  2}", kLeftBlank + "," + kLeftBlank},
        {"{NEWLINE 2}", "tap vk13, tap vk10, tap vk13, tap vk10"},
        {"{SLEEP}", "pause 1000"},
        {"{SLEEP 0}", "pause 0"},
        {"{+}", kShifted.arg('=')},
        {"{^}", kShifted.arg('6')},
        {"{%}", kShifted.arg('5')},
        {"{~}", kShifted.arg('`')},
        {"{(}", kShifted.arg('9')},
        {"{)}", kShifted.arg('0')},
        {"~", "tap vk13"},
        {"(", kShifted.arg('9')},
        {")", kShifted.arg('0')},
        {"}", kShifted.arg(']')},
        {"{F4 2}", "tap vk115 x2"},
        {"{NUMPAD5}", "tap vk101"},
        {"{PRTSC}", "tap vk42"},
        {"+(ab", "Shift down, tap A, tap B, tap space, Shift up"},
        {"{ENTER", "tap vk13"},
        {"{abc}", "tap a, tap b, tap c"},
        {"{x 3}", "tap x x3"},
        {"{A}", kShifted.arg('A')},
        {"{F25}", kShifted.arg('F') + ", tap 2, tap 5"},
        {"say hi~", "tap s, tap a, tap y, tap space, tap h, tap i, tap vk13"},
    };
    for (const Row& row : rows)
        ExpectTyped(QString::fromUtf8(row.keys), row.expected);
}

TEST(ModPushKeys, KnowsEveryKeyNameAndAlias) {
    // Each group: the names of one virtual key, then its number.
    QString groups = QStringLiteral(
        "BACKSPACE BS BKSP 8; BELL 7; BREAK 3; CAPSLOCK CAPS 20; DELETE DEL 46; DOWN 40; END 35; "
        "ENTER RETURN 13; ESCAPE ESC 27; FORMFEED FF 12; HELP 47; HOME 36; INSERT INS 45; LEFT 37; "
        "LINEFEED LF 10; NUMLOCK 144; PGDN PAGEDOWN NEXT 34; PGUP PAGEUP PRIOR 33; "
        "PRINTSCREEN PRTSC 42; RIGHT 39; SCROLLLOCK SCRLK 145; TAB 9; UP 38; "
        "NUMPADMULTIPLY NUMPAD* 106; NUMPADADD NUMPAD+ 107; NUMPADSUBTRACT NUMPAD- 109; "
        "NUMPADDECIMAL NUMPAD. 110; NUMPADDIVIDE NUMPAD/ 111");
    for (int k = 1; k <= 24; ++k)
        groups += QString("; F%1 %2").arg(k).arg(111 + k);
    for (int k = 0; k <= 9; ++k)
        groups += QString("; numpad%1 %2").arg(k).arg(96 + k);
    for (const QString& group : groups.split(';')) {
        QStringList names = group.simplified().split(' ');
        const QString vk = names.takeLast();
        for (const QString& name : names) {
            ExpectTyped("{" + name + "}", "tap vk" + vk);
            ExpectTyped("{" + name.toLower() + " 2}", "tap vk" + vk + " x2");
        }
    }
    ExpectTyped("{NL}", "tap vk13, tap vk10");
}

TEST(ModPushKeys, PushCharIgnoresTheShiftTheLayoutAsksFor) {
    RecordingKeyboard keyboard;
    ModPushKeys sender(keyboard);
    sender.PushChar("A");
    sender.TapKey(115, 62);
    EXPECT_EQ(Events(keyboard.actions), Events(Expand("tap vk65/30, tap vk115/62")));
}

TEST(ModPushKeys, LeftOpenChoices) {
    const Row rows[] = {
        // A name followed by "}}" is sent, and the second brace is typed.
        {"{ENTER}}", "tap vk13, Shift down, tap }, Shift up"},
        {"{}}}", "Shift down, tap }, Shift up, Shift down, tap }, Shift up"},
        // A negative pause makes no pause.
        {"{SLEEP -2}", ""},
        // Counts are rounded to the nearest whole number, halves away from zero.
        {"{x 2.6}", "tap x x3"},
        {"{x 2.4}", "tap x x2"},
        {"{x 2.5}", "tap x x3"},
        {"{x .6}", "tap x"},
        {"{x -0.4}", ""},
        {"{x +2}", "tap x x2"},
        {"{x 1e1}", "tap x x10"},
        {"{SLEEP 1.5}", "pause 2000"},
        {"{x 32767.6}", "tap x"},
        {"{x 0x3}", "tap x"},
        {"{x 1,5}", "tap x"},
        // Nested sequences keep the modifiers their group holds, so a Shift group stays shifted.
        {"+(Ab)", "Shift down, tap A, tap B, Shift up"},
        {"+{Ab}", "Shift down, tap A, tap B, Shift up"},
        {"^(A)", "Ctrl down, Shift down, tap A, Shift up, Ctrl up"},
        // "é" has no key on a US layout: it goes out as virtual key 255, which types nothing.
        {"\xC3\xA9", "tap vk255/255"},
    };
    for (const Row& row : rows)
        ExpectTyped(QString::fromUtf8(row.keys), row.expected);

    RecordingKeyboard keyboard;
    ModPushKeys sender(keyboard);
    sender.ShiftHeld = -1; // left over from an earlier call: a new sequence starts clean
    sender.PushKeys("+(a)!");
    EXPECT_EQ(Events(keyboard.actions),
              Events(Expand("Shift down, tap a, Shift up, Shift down, tap 1, Shift up")));
}

// A failure outside braces reaches the caller; inside braces it is absorbed: each repetition
// breaks off at the failing step, and a modifier group broken off is released at the end of
// the sequence. One sender types every row, so nothing may stick from a failed sequence.
TEST(ModPushKeys, KeyboardFailures) {
    enum Fails { Char, Key, ScanLookup };
    const struct {
        const char* keys;
        Fails fails;
        unsigned code;
        bool throws;
        const char* expected;
    } rows[] = {
        {"aqb", Char, 'q', true, "tap a"},
        {"+(aq)b", Char, 'q', true, "Shift down, tap a"},
        {"A", Key, 0x10, true, ""},
        {"\xE2\x82\xAC", Char, 0x80, true, ""}, // the euro sign, Windows-1252 byte 0x80
        {"{aqb 3}c", Char, 'q', false, "tap a x3, tap c"},
        {"{+(aqz)}b", Char, 'q', false, "Shift down, tap a, tap b, Shift up"},
        // Enter fails on every repetition; the line feeds after it are still sent.
        {"{NEWLINE 2}", Key, 13, false, "tap vk10 x2"},
        // The scan code lookup comes before the loop: its failure leaves one tap, with scan 0.
        {"{LEFT 3}", ScanLookup, 37, false, "tap vk37/0"},
    };
    RecordingKeyboard keyboard;
    ModPushKeys sender(keyboard);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.keys);
        keyboard = RecordingKeyboard{};
        if (row.fails == Char)
            keyboard.failingChars = {std::uint8_t(row.code)};
        else if (row.fails == Key)
            keyboard.failingKeys = {std::uint8_t(row.code)};
        else
            keyboard.failingScanLookups = {row.code};
        if (row.throws)
            EXPECT_THROW(sender.PushKeys(QString::fromUtf8(row.keys)), KeySendError);
        else
            EXPECT_NO_THROW(sender.PushKeys(QString::fromUtf8(row.keys)));
        EXPECT_EQ(Events(keyboard.actions), Events(Expand(row.expected)));
    }
}

} // namespace
