#include "automation/ModPushKeys.h"
#include "automation/UsLayout.h"

#include "doubles/RecordingKeyboard.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace {

// Expected events, written as a comma-separated script:
//   "Shift down" / "Ctrl up" / ...   the modifier key with its own scan code
//   "tap a"       the key that types the character (the word "space" for a blank)
//   "tap vk37"    virtual key 37 with its scan code
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
                vk = static_cast<std::uint8_t>(arg.mid(2).toUInt());
                scan = static_cast<std::uint8_t>(UsLayout::MapVirtualKey(vk));
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

QList<KeyAction> Typed(const QString& keys) {
    RecordingKeyboard keyboard;
    ModPushKeys sender(keyboard);
    sender.PushKeys(keys);
    return keyboard.actions;
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
    for (const Row& row : rows) {
        EXPECT_EQ(Events(Typed(QString::fromUtf8(row.keys))), Events(Expand(row.expected)))
            << "sequence: " << row.keys;
    }
}

TEST(ModPushKeys, KnowsEveryKeyNameAndAlias) {
    struct Name {
        QString name;
        int vk;
    };
    QList<Name> names = {
        {"BACKSPACE", 8},
        {"BS", 8},
        {"BKSP", 8},
        {"BELL", 7},
        {"BREAK", 3},
        {"CAPSLOCK", 20},
        {"CAPS", 20},
        {"DELETE", 46},
        {"DEL", 46},
        {"DOWN", 40},
        {"END", 35},
        {"ENTER", 13},
        {"RETURN", 13},
        {"ESCAPE", 27},
        {"ESC", 27},
        {"FORMFEED", 12},
        {"FF", 12},
        {"HELP", 47},
        {"HOME", 36},
        {"INSERT", 45},
        {"INS", 45},
        {"LEFT", 37},
        {"LINEFEED", 10},
        {"LF", 10},
        {"NUMLOCK", 144},
        {"PGDN", 34},
        {"PAGEDOWN", 34},
        {"NEXT", 34},
        {"PGUP", 33},
        {"PAGEUP", 33},
        {"PRIOR", 33},
        {"PRINTSCREEN", 42},
        {"PRTSC", 42},
        {"RIGHT", 39},
        {"SCROLLLOCK", 145},
        {"SCRLK", 145},
        {"TAB", 9},
        {"UP", 38},
        {"NUMPADMULTIPLY", 106},
        {"NUMPAD*", 106},
        {"NUMPADADD", 107},
        {"NUMPAD+", 107},
        {"NUMPADSUBTRACT", 109},
        {"NUMPAD-", 109},
        {"NUMPADDECIMAL", 110},
        {"NUMPAD.", 110},
        {"NUMPADDIVIDE", 111},
        {"NUMPAD/", 111},
    };
    for (int k = 1; k <= 24; ++k)
        names.append({QString("F%1").arg(k), 111 + k});
    for (int k = 0; k <= 9; ++k)
        names.append({QString("numpad%1").arg(k), 96 + k});
    for (const Name& n : names) {
        const QString expected = QString("tap vk%1").arg(n.vk);
        EXPECT_EQ(Events(Typed("{" + n.name + "}")), Events(Expand(expected)))
            << n.name.toStdString();
        EXPECT_EQ(Events(Typed("{" + n.name.toLower() + " 2}")), Events(Expand(expected + " x2")))
            << n.name.toStdString();
    }
    EXPECT_EQ(Events(Typed("{NL}")), Events(Expand("tap vk13, tap vk10")));
}

TEST(ModPushKeys, PushCharIgnoresTheShiftTheLayoutAsksFor) {
    RecordingKeyboard keyboard;
    ModPushKeys sender(keyboard);
    sender.PushChar("A");
    sender.TapKey(115, 62);
    const QList<KeyAction> expected = {{KeyAction::Down, 65, 30, 0},
                                       {KeyAction::Up, 65, 30, 0},
                                       {KeyAction::Down, 115, 62, 0},
                                       {KeyAction::Up, 115, 62, 0}};
    EXPECT_EQ(keyboard.actions, expected);
}

// Nested sequences keep the modifiers their group holds, so a Shift group stays shifted.
TEST(ModPushKeys, NestedSequencesKeepTheGroupsModifiers) {
    EXPECT_EQ(Events(Typed("+(Ab)")), Events(Expand("Shift down, tap A, tap B, Shift up")));
    EXPECT_EQ(Events(Typed("+{Ab}")), Events(Expand("Shift down, tap A, tap B, Shift up")));
    EXPECT_EQ(Events(Typed("^(A)")),
              Events(Expand("Ctrl down, Shift down, tap A, Shift up, Ctrl up")));

    RecordingKeyboard keyboard;
    ModPushKeys sender(keyboard);
    sender.ShiftHeld = -1; // left over from an earlier call: a new sequence starts clean
    sender.PushKeys("+(a)!");
    EXPECT_EQ(Events(keyboard.actions),
              Events(Expand("Shift down, tap a, Shift up, Shift down, tap 1, Shift up")));
    EXPECT_EQ(sender.ShiftHeld, 0);
    EXPECT_EQ(sender.CtrlHeld, 0);
    EXPECT_EQ(sender.AltHeld, 0);
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
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Events(Typed(QString::fromUtf8(row.keys))), Events(Expand(row.expected)))
            << "sequence: " << row.keys;
    }
}

TEST(ModPushKeys, TypesEachCharacterAsItsWindows1252Byte) {
    // "é" has no key on a US layout: it goes out as virtual key 255, which types nothing.
    const QList<KeyAction> expected = {{KeyAction::Down, 255, 255, 0},
                                       {KeyAction::Up, 255, 255, 0}};
    EXPECT_EQ(Typed(QString::fromUtf8("\xC3\xA9")), expected);

    RecordingKeyboard keyboard;
    keyboard.failingChars = {0x80};
    ModPushKeys sender(keyboard);
    EXPECT_THROW(sender.PushKeys(QString::fromUtf8("\xE2\x82\xAC")), KeySendError); // the euro sign
}

TEST(ModPushKeys, FailureOutsideBracesReachesTheCaller) {
    RecordingKeyboard keyboard;
    keyboard.failingChars = {'q'};
    ModPushKeys sender(keyboard);
    EXPECT_THROW(sender.PushKeys("aqb"), KeySendError);
    EXPECT_EQ(Events(keyboard.actions), Events(Expand("tap a")));

    keyboard.actions.clear();
    EXPECT_THROW(sender.PushKeys("+(aq)b"), KeySendError);
    EXPECT_EQ(Events(keyboard.actions), Events(Expand("Shift down, tap a")));

    keyboard.actions.clear();
    keyboard.failingKeys = {0x10};
    EXPECT_THROW(sender.PushKeys("A"), KeySendError);
    EXPECT_TRUE(keyboard.actions.isEmpty());
}

TEST(ModPushKeys, FailureInsideBracesIsAbsorbed) {
    RecordingKeyboard keyboard;
    keyboard.failingChars = {'q'};
    ModPushKeys sender(keyboard);

    // Each repetition breaks off at the failing character; all three still run.
    EXPECT_NO_THROW(sender.PushKeys("{aqb 3}c"));
    EXPECT_EQ(Events(keyboard.actions), Events(Expand("tap a x3, tap c")));

    // A modifier group broken off inside braces is released at the end of the sequence.
    keyboard.actions.clear();
    EXPECT_NO_THROW(sender.PushKeys("{+(aqz)}b"));
    EXPECT_EQ(Events(keyboard.actions), Events(Expand("Shift down, tap a, tap b, Shift up")));
    EXPECT_EQ(sender.ShiftHeld, -1);
}

TEST(ModPushKeys, FailingStepInNamedKeyResetsTheCountButNotARunningLoop) {
    RecordingKeyboard keyboard;
    ModPushKeys sender(keyboard);

    // Enter fails on every repetition; the line feeds after it are still sent, twice.
    keyboard.failingKeys = {13};
    EXPECT_NO_THROW(sender.PushKeys("{NEWLINE 2}"));
    EXPECT_EQ(Events(keyboard.actions), Events(Expand("tap vk10 x2")));

    // The scan code lookup comes before the loop: its failure leaves one tap, with scan 0.
    keyboard.actions.clear();
    keyboard.failingKeys.clear();
    keyboard.failingScanLookups = {37};
    EXPECT_NO_THROW(sender.PushKeys("{LEFT 3}"));
    const QList<KeyAction> once = {{KeyAction::Down, 37, 0, 0}, {KeyAction::Up, 37, 0, 0}};
    EXPECT_EQ(keyboard.actions, once);
}

} // namespace
