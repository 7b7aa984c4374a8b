#pragma once

#include "platform/KeySendError.h"
#include "platform/Keyboard.h"
#include "platform/UsLayout.h"

#include <QSet>
#include <QStringList>

// A keyboard with a US layout that records every event and pause in order ("down 65/30",
// "up 65/30" for virtual key 65 with scan code 30, "pause 2000"). Each step named in
// `failing` raises KeySendError instead: "key 16" a key event of virtual key 16, "char 113"
// translating that Windows-1252 byte, "scan 37" looking up the scan code of virtual key 37.
class RecordingKeyboard : public Keyboard {
public:
    void KeyEvent(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags) override {
        Check("key", vk);
        events << QStringLiteral("%1 %2/%3")
                      .arg(flags & KEYEVENTF_KEYUP ? "up" : "down")
                      .arg(vk)
                      .arg(scan);
    }
    std::int16_t VkKeyScan(std::uint8_t ch) override {
        Check("char", ch);
        return UsLayout::VkKeyScan(ch);
    }
    std::uint8_t CharToOem(std::uint8_t ch) override { return UsLayout::CharToOem(ch); }
    std::uint32_t OemKeyScan(std::uint8_t oem) override { return UsLayout::OemKeyScan(oem); }
    std::uint32_t MapVirtualKey(std::uint32_t vk) override {
        Check("scan", vk);
        return UsLayout::MapVirtualKey(vk);
    }
    void Sleep(std::uint32_t milliseconds) override {
        events << QStringLiteral("pause %1").arg(milliseconds);
    }

    QStringList events;
    QSet<QString> failing;

private:
    void Check(const char* step, unsigned code) {
        if (failing.contains(QStringLiteral("%1 %2").arg(step).arg(code)))
            throw KeySendError(QStringLiteral("%1 %2 fails").arg(step).arg(code).toStdString());
    }
};
