#include "RecordingKeyboard.h"

#include "automation/KeySender.h"
#include "platform/UsLayout.h"

#include <QStringList>

void PrintTo(const KeyAction& action, std::ostream* out) {
    *out << Describe({action}).toStdString();
}

QString Describe(const QList<KeyAction>& actions) {
    QStringList parts;
    for (const KeyAction& action : actions) {
        switch (action.kind) {
        case KeyAction::Down:
        case KeyAction::Up:
            parts << QStringLiteral("%1 vk=%2 scan=%3")
                         .arg(action.kind == KeyAction::Down ? "down" : "up")
                         .arg(action.vk)
                         .arg(action.scan);
            break;
        case KeyAction::Pause:
            parts << QStringLiteral("pause %1ms").arg(action.milliseconds);
            break;
        }
    }
    return parts.join(QStringLiteral(", "));
}

void RecordingKeyboard::KeyEvent(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags) {
    if (failingKeys.contains(vk))
        throw KeySendError("key " + std::to_string(vk) + " cannot be sent");
    actions.append({flags & KEYEVENTF_KEYUP ? KeyAction::Up : KeyAction::Down, vk, scan, 0});
}

std::int16_t RecordingKeyboard::VkKeyScan(std::uint8_t ch) {
    if (failingChars.contains(ch))
        throw KeySendError("character " + std::to_string(ch) + " cannot be translated");
    return UsLayout::VkKeyScan(ch);
}

std::uint8_t RecordingKeyboard::CharToOem(std::uint8_t ch) {
    return UsLayout::CharToOem(ch);
}

std::uint32_t RecordingKeyboard::OemKeyScan(std::uint8_t oem) {
    return UsLayout::OemKeyScan(oem);
}

std::uint32_t RecordingKeyboard::MapVirtualKey(std::uint32_t vk) {
    if (failingScanLookups.contains(vk))
        throw KeySendError("no scan code for key " + std::to_string(vk));
    return UsLayout::MapVirtualKey(vk);
}

void RecordingKeyboard::Sleep(std::uint32_t milliseconds) {
    actions.append({KeyAction::Pause, 0, 0, milliseconds});
}
