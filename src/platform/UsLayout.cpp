#include "platform/UsLayout.h"

#include <array>
#include <string_view>

namespace {

constexpr std::uint8_t kShiftState = 1;

struct CharKey {
    std::uint8_t vk = 0xFF;
    std::uint8_t scan = 0;
    std::uint8_t shift = 0;
    bool exists = false;
};

// One key of the main block: the character it types, the one it types with Shift.
struct KeyCap {
    char plain;
    char shifted;
    std::uint8_t vk;
    std::uint8_t scan;
};

constexpr KeyCap kKeyCaps[] = {
    {'`', '~', 0xC0, 41}, {'1', '!', '1', 2},    {'2', '@', '2', 3},   {'3', '#', '3', 4},
    {'4', '$', '4', 5},   {'5', '%', '5', 6},    {'6', '^', '6', 7},   {'7', '&', '7', 8},
    {'8', '*', '8', 9},   {'9', '(', '9', 10},   {'0', ')', '0', 11},  {'-', '_', 0xBD, 12},
    {'=', '+', 0xBB, 13}, {'[', '{', 0xDB, 26},  {']', '}', 0xDD, 27}, {'\\', '|', 0xDC, 43},
    {';', ':', 0xBA, 39}, {'\'', '"', 0xDE, 40}, {',', '<', 0xBC, 51}, {'.', '>', 0xBE, 52},
    {'/', '?', 0xBF, 53},
};

// The letter rows, each with the scan code of its first key.
struct LetterRow {
    std::string_view letters;
    std::uint8_t firstScan;
};
constexpr LetterRow kLetterRows[] = {{"QWERTYUIOP", 16}, {"ASDFGHJKL", 30}, {"ZXCVBNM", 44}};

constexpr std::array<CharKey, 128> BuildCharKeys() {
    std::array<CharKey, 128> keys{};
    const auto set = [&keys](char ch, std::uint8_t vk, std::uint8_t scan, std::uint8_t shift) {
        keys[static_cast<unsigned char>(ch)] = {vk, scan, shift, true};
    };
    for (const KeyCap& cap : kKeyCaps) {
        set(cap.plain, cap.vk, cap.scan, 0);
        set(cap.shifted, cap.vk, cap.scan, kShiftState);
    }
    for (const LetterRow& row : kLetterRows) {
        std::uint8_t scan = row.firstScan;
        for (const char letter : row.letters) {
            set(letter, letter, scan, kShiftState);
            set(static_cast<char>(letter - 'A' + 'a'), letter, scan, 0);
            ++scan;
        }
    }
    set(' ', 0x20, 57, 0);
    set('\b', 0x08, 14, 0);
    set('\t', 0x09, 15, 0);
    set('\r', 0x0D, 28, 0);
    return keys;
}

constexpr std::array<CharKey, 128> kCharKeys = BuildCharKeys();

constexpr std::array<std::uint8_t, 256> BuildScanCodes() {
    std::array<std::uint8_t, 256> scans{};
    for (unsigned ch = 0; ch < kCharKeys.size(); ++ch) {
        if (kCharKeys[ch].exists)
            scans[kCharKeys[ch].vk] = kCharKeys[ch].scan;
    }
    const auto set = [&scans](unsigned vk, std::uint8_t scan) { scans[vk] = scan; };
    set(0x03, 70); // Break: the Scroll Lock key with Ctrl
    set(0x0C, 76); // Clear: keypad 5 without Num Lock
    set(0x10, 42);
    set(0x11, 29);
    set(0x12, 56);
    set(0x13, 69); // Pause
    set(0x14, 58);
    set(0x1B, 1);
    set(0x21, 73);
    set(0x22, 81);
    set(0x23, 79);
    set(0x24, 71);
    set(0x25, 75);
    set(0x26, 72);
    set(0x27, 77);
    set(0x28, 80);
    set(0x2C, 84); // Print Screen
    set(0x2D, 82);
    set(0x2E, 83);
    constexpr std::uint8_t kNumpadDigits[] = {82, 79, 80, 81, 75, 76, 77, 71, 72, 73};
    for (unsigned k = 0; k < 10; ++k)
        set(0x60 + k, kNumpadDigits[k]);
    set(0x6A, 55);
    set(0x6B, 78);
    set(0x6D, 74);
    set(0x6E, 83);
    set(0x6F, 53);
    for (unsigned k = 0; k < 10; ++k)
        set(0x70 + k, static_cast<std::uint8_t>(59 + k)); // F1..F10
    set(0x7A, 87);                                        // F11
    set(0x7B, 88);                                        // F12
    for (unsigned k = 0; k < 11; ++k)
        set(0x7C + k, static_cast<std::uint8_t>(100 + k)); // F13..F23
    set(0x87, 118);                                        // F24
    set(0x90, 69);
    set(0x91, 70);
    set(0xA0, 42);
    set(0xA1, 54);
    set(0xA2, 29);
    set(0xA3, 29);
    set(0xA4, 56);
    set(0xA5, 56);
    set(0xE2, 86); // the extra key left of Z on 102-key keyboards
    return scans;
}

constexpr std::array<std::uint8_t, 256> kScanCodes = BuildScanCodes();

// Code page 437 characters 0x80..0xFF.
constexpr char16_t kOemHigh[128] = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7, 0x00EA, 0x00EB, 0x00E8, 0x00EF,
    0x00EE, 0x00EC, 0x00C4, 0x00C5, 0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9,
    0x00FF, 0x00D6, 0x00DC, 0x00A2, 0x00A3, 0x00A5, 0x20A7, 0x0192, 0x00E1, 0x00ED, 0x00F3, 0x00FA,
    0x00F1, 0x00D1, 0x00AA, 0x00BA, 0x00BF, 0x2310, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB,
    0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x2561, 0x2562, 0x2556, 0x2555, 0x2563, 0x2551, 0x2557,
    0x255D, 0x255C, 0x255B, 0x2510, 0x2514, 0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x255E, 0x255F,
    0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256C, 0x2567, 0x2568, 0x2564, 0x2565, 0x2559,
    0x2558, 0x2552, 0x2553, 0x256B, 0x256A, 0x2518, 0x250C, 0x2588, 0x2584, 0x258C, 0x2590, 0x2580,
    0x03B1, 0x00DF, 0x0393, 0x03C0, 0x03A3, 0x03C3, 0x00B5, 0x03C4, 0x03A6, 0x0398, 0x03A9, 0x03B4,
    0x221E, 0x03C6, 0x03B5, 0x2229, 0x2261, 0x00B1, 0x2265, 0x2264, 0x2320, 0x2321, 0x00F7, 0x2248,
    0x00B0, 0x2219, 0x00B7, 0x221A, 0x207F, 0x00B2, 0x25A0, 0x00A0,
};

// Windows-1252 bytes 0x80..0x9F that are not the Latin-1 character of the same number.
constexpr char16_t kAnsiHighBlock[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

} // namespace

namespace UsLayout {

std::int16_t VkKeyScan(std::uint8_t ch) {
    if (ch >= kCharKeys.size() || !kCharKeys[ch].exists)
        return -1;
    const CharKey& key = kCharKeys[ch];
    return static_cast<std::int16_t>(key.shift << 8 | key.vk);
}

std::uint8_t CharToOem(std::uint8_t ch) {
    if (ch < 0x80)
        return ch;
    const char16_t unicode = ch < 0xA0 ? kAnsiHighBlock[ch - 0x80] : char16_t(ch);
    for (unsigned i = 0; i < 128; ++i) {
        if (kOemHigh[i] == unicode)
            return static_cast<std::uint8_t>(0x80 + i);
    }
    return '?';
}

std::uint32_t OemKeyScan(std::uint8_t oem) {
    if (oem >= kCharKeys.size() || !kCharKeys[oem].exists)
        return 0xFFFFFFFF;
    const CharKey& key = kCharKeys[oem];
    return std::uint32_t(key.shift) << 16 | key.scan;
}

std::uint32_t MapVirtualKey(std::uint32_t vk) {
    return vk < kScanCodes.size() ? kScanCodes[vk] : 0;
}

} // namespace UsLayout
