#pragma once

#include <cstdint>

constexpr std::uint32_t KEYEVENTF_KEYUP = 2;

// Keyboard synthesis. Characters are single bytes of the ANSI code page (Windows-1252);
// virtual-key codes are the sender's own vocabulary, as on a US layout.
class Keyboard {
public:
    virtual ~Keyboard() = default;

    virtual void KeyEvent(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags) = 0;
    virtual std::int16_t VkKeyScan(std::uint8_t ch) = 0;
    virtual std::uint8_t CharToOem(std::uint8_t ch) = 0;
    virtual std::uint32_t OemKeyScan(std::uint8_t oem) = 0;
    virtual std::uint32_t MapVirtualKey(std::uint32_t vk) = 0;
    virtual void Sleep(std::uint32_t milliseconds) = 0;
};
