#include "automation/ModPushKeys.h"
#include "platform/UsLayout.h"

#include "doubles/RecordingKeyboard.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

struct Key {
    std::uint8_t vk;
    std::uint8_t scan;
    bool shifted;
};

// The US keyboard, row by row: what each key types, what it types with Shift, and the scan
// code of the row's first key (the keys of a row count up from it).
std::map<char, Key> UsKeys() {
    const std::map<char, std::uint8_t> punctuationKeys = {
        {'-', 0xBD}, {'=', 0xBB},  {'[', 0xDB}, {']', 0xDD}, {';', 0xBA}, {'\'', 0xDE},
        {'`', 0xC0}, {'\\', 0xDC}, {',', 0xBC}, {'.', 0xBE}, {'/', 0xBF},
    };
    struct Row {
        std::string plain;
        std::string shifted;
        std::uint8_t firstScan;
    };
    const Row rows[] = {
        {"1234567890-=", "!@#$%^&*()_+", 2},
        {"qwertyuiop[]", "QWERTYUIOP{}", 16},
        {"asdfghjkl;'`", "ASDFGHJKL:\"~", 30},
        {"\\zxcvbnm,./", "|ZXCVBNM<>?", 43},
        {" ", "", 57},
    };
    std::map<char, Key> keys;
    for (const Row& row : rows) {
        for (std::size_t k = 0; k < row.plain.size(); ++k) {
            const char plain = row.plain[k];
            std::uint8_t vk = static_cast<std::uint8_t>(plain);
            if (plain >= 'a' && plain <= 'z')
                vk = static_cast<std::uint8_t>(plain - 'a' + 'A');
            else if (punctuationKeys.count(plain))
                vk = punctuationKeys.at(plain);
            const auto scan = static_cast<std::uint8_t>(row.firstScan + k);
            keys[plain] = {vk, scan, false};
            if (k < row.shifted.size())
                keys[row.shifted[k]] = {vk, scan, true};
        }
    }
    return keys;
}

TEST(UsLayout, EveryPrintableCharacterHasItsKey) {
    const std::map<char, Key> keys = UsKeys();
    ASSERT_EQ(keys.size(), 95u);
    for (int c = 0x20; c <= 0x7E; ++c) {
        const auto ch = static_cast<std::uint8_t>(c);
        const Key& key = keys.at(static_cast<char>(c));
        const std::int16_t vkScan = UsLayout::VkKeyScan(ch);
        EXPECT_EQ(vkScan & 0xFF, key.vk) << "character " << char(c);
        EXPECT_EQ(vkScan >> 8, key.shifted ? 1 : 0) << "character " << char(c);
        EXPECT_EQ(UsLayout::CharToOem(ch), ch);
        const std::uint32_t oemScan = UsLayout::OemKeyScan(ch);
        EXPECT_EQ(oemScan & 0xFFFF, key.scan) << "character " << char(c);
        EXPECT_EQ(oemScan >> 16, key.shifted ? 1u : 0u) << "character " << char(c);
        EXPECT_EQ(UsLayout::MapVirtualKey(key.vk), key.scan) << "character " << char(c);
    }
}

TEST(UsLayout, ShiftedCharactersTapTheirUnshiftedKeyUnderShift) {
    const std::map<char, Key> keys = UsKeys();
    const std::string readerShifts = "ABCDEFGHIJKLMNOPQRSTUVWXYZ!@#$&*()_|:?><}\"";
    const std::string nameShifts = "~!@#$%^&*()_+|{}:?><\"";
    const auto expected = [&keys](char c) {
        const Key& key = keys.at(c);
        return QList<KeyAction>{{KeyAction::Down, 0x10, 42, 0},
                                {KeyAction::Down, key.vk, key.scan, 0},
                                {KeyAction::Up, key.vk, key.scan, 0},
                                {KeyAction::Up, 0x10, 42, 0}};
    };
    for (const char c : readerShifts) {
        RecordingKeyboard keyboard;
        ModPushKeys(keyboard).PushKeys(QString(QChar(c)));
        EXPECT_EQ(keyboard.actions, expected(c)) << "character " << c;
    }
    for (const char c : nameShifts) {
        RecordingKeyboard keyboard;
        ModPushKeys(keyboard).PushNamedKey(QString(QChar(c)));
        EXPECT_EQ(keyboard.actions, expected(c)) << "brace name " << c;
    }
}

TEST(UsLayout, ControlAndHighCharacters) {
    struct Row {
        std::uint8_t ch;
        std::int16_t vkScan;
        std::uint8_t oem;
        std::uint32_t oemScan;
    };
    const Row rows[] = {
        {'\t', 9, '\t', 15},      {'\r', 13, '\r', 28},  {'\b', 8, '\b', 14},
        {'\n', -1, '\n', ~0u},    {0x00, -1, 0x00, ~0u}, {0x1B, -1, 0x1B, ~0u},
        {0x7F, -1, 0x7F, ~0u},    {0xE9, -1, 0x82, ~0u}, // é
        {0xA3, -1, 0x9C, ~0u},                           // £
        {0xB0, -1, 0xF8, ~0u},                           // °
        {0x83, -1, 0x9F, ~0u},                           // ƒ
        {0xA0, -1, 0xFF, ~0u},                           // no-break space
        {0xC0, -1, '?', 0x10035},                        // À is not in code page 437
        {0x80, -1, '?', 0x10035},                        // nor is the euro sign
    };
    for (const Row& row : rows) {
        EXPECT_EQ(UsLayout::VkKeyScan(row.ch), row.vkScan) << "byte " << int(row.ch);
        EXPECT_EQ(UsLayout::CharToOem(row.ch), row.oem) << "byte " << int(row.ch);
        EXPECT_EQ(UsLayout::OemKeyScan(row.oem), row.oemScan) << "byte " << int(row.ch);
    }
}

TEST(UsLayout, NamedKeysHaveTheirScanCodes) {
    const std::map<std::uint32_t, std::uint32_t> scans = {
        {0x08, 14}, {0x09, 15}, {0x0D, 28}, {0x10, 42}, {0x11, 29},  {0x12, 56},  {0x14, 58},
        {0x1B, 1},  {0x20, 57}, {0x21, 73}, {0x22, 81}, {0x23, 79},  {0x24, 71},  {0x25, 75},
        {0x26, 72}, {0x27, 77}, {0x28, 80}, {0x2D, 82}, {0x2E, 83},  {0x60, 82},  {0x65, 76},
        {0x69, 73}, {0x6A, 55}, {0x6B, 78}, {0x6D, 74}, {0x6E, 83},  {0x6F, 53},  {0x70, 59},
        {0x73, 62}, {0x79, 68}, {0x7A, 87}, {0x7B, 88}, {0x7C, 100}, {0x86, 110}, {0x87, 118},
        {0x90, 69}, {0x91, 70}, {0x2A, 0},  {0x07, 0},  {0x0A, 0},   {0x6C, 0},   {0xFF, 0},
        {0x100, 0}, {0x41, 30}, {0x30, 11},
    };
    for (const auto& [vk, scan] : scans)
        EXPECT_EQ(UsLayout::MapVirtualKey(vk), scan) << "virtual key " << vk;
}

} // namespace
