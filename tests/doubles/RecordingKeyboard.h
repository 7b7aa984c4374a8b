#pragma once

#include "platform/Keyboard.h"

#include <QList>
#include <QSet>
#include <QString>

#include <cstdint>
#include <ostream>

// What the keyboard was asked to do: a key going down or up, or a pause.
struct KeyAction {
    enum Kind { Down, Up, Pause };
    Kind kind = Down;
    std::uint8_t vk = 0;
    std::uint8_t scan = 0;
    std::uint32_t milliseconds = 0;
    bool operator==(const KeyAction&) const = default;
};

void PrintTo(const KeyAction& action, std::ostream* out);
QString Describe(const QList<KeyAction>& actions);

// A keyboard with a US layout that records every event and pause in order, and can be told to
// fail for chosen characters or keys.
class RecordingKeyboard : public Keyboard {
public:
    void KeyEvent(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags) override;
    std::int16_t VkKeyScan(std::uint8_t ch) override;
    std::uint8_t CharToOem(std::uint8_t ch) override;
    std::uint32_t OemKeyScan(std::uint8_t oem) override;
    std::uint32_t MapVirtualKey(std::uint32_t vk) override;
    void Sleep(std::uint32_t milliseconds) override;

    QList<KeyAction> actions;
    // Key events of these virtual keys raise KeySendError and are not recorded.
    QSet<std::uint8_t> failingKeys;
    // Translating these characters (Windows-1252 bytes) raises KeySendError.
    QSet<std::uint8_t> failingChars;
    // Looking up the scan code of these virtual keys raises KeySendError.
    QSet<std::uint32_t> failingScanLookups;
};
