#include "automation/ModPushKeys.h"
#include "platform/UsLayout.h"
#include "platform/x11/X11Keyboard.h"

#include "doubles/RecordingKeyboard.h"

#include <gtest/gtest.h>

// After gtest: Xlib defines macros (None, Bool) that gtest uses as names.
#include <X11/Xlib.h>

#include <set>

namespace {

// Expected events as a comma-separated script: "down Shift", "up Ctrl" (a modifier, Alt as well,
// with its own scan code); "tap a" (the key that types the character, "tap space" for a
// blank); "tap vk37" (virtual key 37 with its scan code; "tap vk37/0" with scan code 0), " x3"
// after it repeats the tap; "pause 2000" (milliseconds).
QString Expand(const QString& script) {
    QStringList out;
    for (const QString& step : script.split(',', Qt::SkipEmptyParts)) {
        const QStringList words = step.simplified().split(' ');
        const QString& what = words[0];
        const QString& arg = words.value(1);
        const int modifier = int(QStringList{"Shift", "Ctrl", "Alt"}.indexOf(arg));
        QString key = QString("%1/%2").arg(16 + modifier).arg(QList{42, 29, 56}.value(modifier));
        if (arg.startsWith("vk")) {
            const QStringList codes = arg.mid(2).split('/');
            key = codes[0] + "/" +
                  codes.value(1, QString::number(UsLayout::MapVirtualKey(codes[0].toUInt())));
        } else if (modifier < 0) {
            const auto ch = std::uint8_t(arg == "space" ? ' ' : arg[0].unicode());
            key = QString("%1/%2")
                      .arg(UsLayout::VkKeyScan(ch) & 0xFF)
                      .arg(UsLayout::OemKeyScan(UsLayout::CharToOem(ch)) & 0xFF);
        }
        if (what != "tap")
            out << (what == "pause" ? step.simplified() : what + " " + key);
        for (int t = what == "tap" ? words.value(2, "x1").mid(1).toInt() : 0; t > 0; --t)
            out << "down " + key << "up " + key;
    }
    return out.join(", ");
}

QString Typed(const QString& keys) {
    RecordingKeyboard keyboard;
    ModPushKeys(keyboard).PushKeys(keys);
    return keyboard.events.join(", ");
}

const QString kShifted = "down Shift, tap %1, up Shift";
const QString kLeftBlank = kShifted.arg('L') + "," + kShifted.arg('E') + "," + kShifted.arg('F') +
                           "," + kShifted.arg('T') + ", tap space";

TEST(ModPushKeys, TypesEachSequenceAsItsKeyEvents) {
    const std::pair<const char*, QString> rows[] = {
        {"say hi~", "tap s, tap a, tap y, tap space, tap h, tap i, tap vk13"},
        {"Hi!", "down Shift, tap H, up Shift, tap I, down Shift, tap 1, up Shift"},
        {"+a", "down Shift, tap A, up Shift"},
        {"^c", "down Ctrl, tap C, up Ctrl"},
        {"^A", "down Ctrl, tap A, up Ctrl"}, // without the Shift the layout asks for
        {"%{F4}", "down Alt, tap vk115, up Alt"},
        {"{}", ""},
        // A modifier at the end of the sequence applies to a blank.
        {"a+", "tap a, down Shift, tap space, up Shift"},
        {"a%", "tap a, down Alt, tap space, up Alt"},
        {"^+a", "down Ctrl, tap =, up Ctrl, tap a"},
        // Nested sequences keep the modifiers their group holds, so a Shift group stays shifted.
        {"+(Ab)", "down Shift, tap A, tap B, up Shift"},
        {"+{Ab}", "down Shift, tap A, tap B, up Shift"},
        {"^(A)", "down Ctrl, down Shift, tap A, up Shift, up Ctrl"},
        {"+(a(b)c)", "down Shift, tap a, tap 9, tap b, tap 0, tap c, up Shift"},
        {"^(+(ab))", "down Ctrl, down Shift, tap A, tap B, up Shift, up Ctrl"},
        {"+(ab", "down Shift, tap A, tap B, tap space, up Shift"},
        {"{ENTER", "tap vk13"},
        {"{LEFT  2}", kLeftBlank + "," + kLeftBlank},
        {"{nl 2}", "tap vk13, tap vk10, tap vk13, tap vk10"},
        {"{SLEEP}", "pause 1000"},
        {"{F25}", kShifted.arg('F') + ", tap 2, tap 5"},
        // A name followed by "}}" is sent, and the second brace is typed.
        {"{ENTER}}", "tap vk13, down Shift, tap }, up Shift"},
        {"{}}}", "down Shift, tap }, up Shift, down Shift, tap }, up Shift"},
        // "é" has no key on a US layout: it goes out as virtual key 255, which types nothing.
        {"\xC3\xA9", "tap vk255/255"}};
    for (const auto& [keys, expected] : rows)
        EXPECT_EQ(Typed(QString::fromUtf8(keys)), Expand(expected)) << keys;

    // Every special character in braces is typed as itself ("{+}" types a plus sign).
    for (const char c : std::string("~!@#$%^&*()_+|{}:?><\""))
        EXPECT_EQ(Typed("{" + QString(c) + "}"), Expand(kShifted.arg(c))) << c;
}

// Counts round halves away from zero; no number, or one out of the 16-bit range, counts 1.
TEST(ModPushKeys, CountsRepeatKeysAndTimePauses) {
    const std::pair<const char*, int> rows[] = {
        {"3", 3},   {"", 1},    {"x", 1},   {"0", 0},      {"-3", -3}, {"40000", 1},
        {"2.4", 2}, {"2.5", 3}, {".6", 1},  {"-0.4", 0},   {"+2", 2},  {"1e1", 10},
        {"1.5", 2}, {"0x3", 1}, {"1,5", 1}, {"32767.6", 1}};
    for (const auto& [text, count] : rows) {
        SCOPED_TRACE(text);
        const QString repeat = count > 0 ? QString(" x%1").arg(count) : QString();
        EXPECT_EQ(Typed("{x " + QString(text) + "}"), Expand(count > 0 ? "tap x" + repeat : ""));
        EXPECT_EQ(Typed("{LEFT " + QString(text) + "}"),
                  Expand(count > 0 ? "tap vk37" + repeat : ""));
        EXPECT_EQ(Typed("{SLEEP " + QString(text) + "}"),
                  Expand(count >= 0 ? QString("pause %1").arg(count * 1000) : ""));
    }
}

// One or two names of each kind: the messages, typed a character at a time, only reach ENTER.
TEST(ModPushKeys, NamedKeysReachTheServerAsTheirKeys) {
    // names = virtual key, scan code, X keysym ("-": none); keys without a name are keys only
    // the program itself sends, and codes no key stands for.
    const QString table = R"(
        BACKSPACE BS BKSP = 8 14 BackSpace; BELL = 7 0 -; BREAK = 3 70 Pause; CAPS = 20 58 Caps_Lock;
        ENTER RETURN = 13 28 Return; LINEFEED LF = 10 0 Linefeed; PRINTSCREEN PRTSC = 42 0 Print;
        PGDN PAGEDOWN NEXT = 34 81 Next; SCRLK = 145 70 Scroll_Lock; NUMPAD0 = 96 82 KP_0;
        NUMPAD9 = 105 73 KP_9; NUMPADMULTIPLY NUMPAD* = 106 55 KP_Multiply; F1 = 112 59 F1;
        F11 = 122 87 F11; F24 = 135 118 F24; = 16 42 Shift_L; = 17 29 Control_L; = 18 56 Alt_L;
        = 108 0 KP_Separator; = 0 0 -; = 255 0 -)";
    for (const QString& entry : table.split(';')) {
        const QStringList sides = entry.split('=');
        const QStringList key = sides.value(1).simplified().split(' ');
        ASSERT_EQ(key.size(), 3) << entry.toStdString();
        const int vk = key[0].toInt(), scan = key[1].toInt();
        const QString tap = QString("tap vk%1/%2").arg(vk).arg(scan);
        for (const QString& name : sides[0].simplified().split(' ', Qt::SkipEmptyParts)) {
            SCOPED_TRACE(name.toStdString());
            EXPECT_EQ(Typed("{" + name + "}"), Expand(tap));
            EXPECT_EQ(Typed("{" + name.toLower() + " 2}"), Expand(tap + " x2"));
        }
        EXPECT_EQ(UsLayout::MapVirtualKey(vk), std::uint32_t(scan)) << "vk " << vk;
        EXPECT_EQ(X11Keyboard::KeysymFor(std::uint8_t(vk)),
                  key[2] == "-" ? NoSymbol : XStringToKeysym(key[2].toLatin1().constData()))
            << "vk " << vk;
    }
    EXPECT_EQ(UsLayout::MapVirtualKey(0x100), 0u);
}

// A failure inside braces is absorbed: each repetition breaks off at the failing step, and a
// broken-off modifier group is released at the end. One sender types every row, so nothing
// may stick from a failed sequence.
TEST(ModPushKeys, KeyboardFailures) {
    const struct {
        const char *keys, *failing;
        bool throws;
        const char* expected;
    } rows[] = {
        {"aqb", "char 113", true, "tap a"},
        {"+(aq)b", "char 113", true, "down Shift, tap a"},
        {"A", "key 16", true, ""},
        {"\xE2\x82\xAC", "char 128", true, ""}, // the euro sign, Windows-1252 byte 0x80
        {"{aqb 3}c", "char 113", false, "tap a x3, tap c"},
        {"{+(aqz)}b", "char 113", false, "down Shift, tap a, tap b, up Shift"},
        // Enter fails on every repetition; the line feeds after it are still sent.
        {"{NEWLINE 2}", "key 13", false, "tap vk10 x2"},
        // The scan code lookup comes before the loop: its failure leaves one tap, with scan 0.
        {"{LEFT 3}", "scan 37", false, "tap vk37/0"}};
    RecordingKeyboard keyboard;
    ModPushKeys sender(keyboard);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.keys);
        keyboard.events.clear();
        keyboard.failing = {row.failing};
        if (row.throws)
            EXPECT_THROW(sender.PushKeys(QString::fromUtf8(row.keys)), KeySendError);
        else
            EXPECT_NO_THROW(sender.PushKeys(QString::fromUtf8(row.keys)));
        EXPECT_EQ(keyboard.events.join(", "), Expand(row.expected));
    }
}

// The US keyboard, row by row: each key plain and with Shift, and the scan code of the row's
// first key (the keys of a row count up from it).
TEST(UsLayout, EveryPrintableCharacterHasItsKey) {
    const struct {
        std::string plain, shifted;
        unsigned firstScan;
    } keyRows[] = {{"1234567890-=", "!@#$%^&*()_+", 2},
                   {"qwertyuiop[]", "QWERTYUIOP{}", 16},
                   {"asdfghjkl;'`", "ASDFGHJKL:\"~", 30},
                   {"\\zxcvbnm,./", "|ZXCVBNM<>?", 43},
                   {" ", "", 57}};
    std::set<char> seen;
    for (const auto& row : keyRows)
        for (std::size_t k = 0; k < row.plain.size(); ++k) {
            const char plain = row.plain[k];
            const auto vk = std::uint8_t(UsLayout::VkKeyScan(plain));
            const unsigned scan = row.firstScan + k;
            EXPECT_EQ(UsLayout::MapVirtualKey(vk), scan) << plain;
            EXPECT_EQ(X11Keyboard::KeysymFor(vk), std::uint8_t(plain)) << plain;
            for (const int shift : {0, 1}) {
                if (shift && k >= row.shifted.size())
                    continue;
                const auto ch = std::uint8_t(shift ? row.shifted[k] : plain);
                seen.insert(char(ch));
                EXPECT_EQ(UsLayout::VkKeyScan(ch), shift << 8 | vk) << ch;
                EXPECT_EQ(UsLayout::CharToOem(ch), ch);
                EXPECT_EQ(UsLayout::OemKeyScan(ch), unsigned(shift) << 16 | scan) << ch;
            }
        }
    EXPECT_EQ(seen.size(), 95u) << "every printable ASCII character";

    // Control and high characters (é, ƒ, no-break space; À is not in code page 437): byte,
    // VkKeyScan, code page 437 byte, its OemKeyScan.
    const std::tuple<std::uint8_t, std::int16_t, std::uint8_t, std::uint32_t> others[] = {
        {'\t', 9, '\t', 15},   {'\r', 13, '\r', 28},    {'\b', 8, '\b', 14},
        {'\n', -1, '\n', ~0u}, {0xE9, -1, 0x82, ~0u},   {0x83, -1, 0x9F, ~0u},
        {0xA0, -1, 0xFF, ~0u}, {0xC0, -1, '?', 0x10035}};
    for (const auto& [ch, vkScan, oem, oemScan] : others)
        EXPECT_EQ(
            std::tuple(UsLayout::VkKeyScan(ch), UsLayout::CharToOem(ch), UsLayout::OemKeyScan(oem)),
            std::tuple(vkScan, oem, oemScan))
            << "byte " << int(ch);
}

} // namespace
