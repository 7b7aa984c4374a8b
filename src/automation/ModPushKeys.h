#pragma once

#include "automation/KeySender.h"
#include "platform/Keyboard.h"

#include <QString>

#include <cstdint>

// Reads the key-sequence language and types it through the platform keyboard: plain
// characters, "+" "^" "%" for Shift, Ctrl and Alt, "(...)" groups under a modifier,
// "{NAME count}" named keys, "~" for Enter.
class ModPushKeys : public KeySender {
public:
    explicit ModPushKeys(Keyboard& keyboard) : keyboard_(keyboard) {}

    void PushKeys(const QString& keys) override;
    void PushNamedKey(QString spec);
    void PushShiftedChar(QString ch);
    void PushChar(QString ch);
    void TapKey(std::uint8_t vk, std::uint8_t scan);

    // True (-1) while a modifier group holds that modifier down.
    std::int16_t ShiftHeld = 0;
    std::int16_t CtrlHeld = 0;
    std::int16_t AltHeld = 0;

private:
    struct Modifier;
    void ApplyModifier(const Modifier& modifier, const std::u32string& s, std::size_t& i);
    void PushBraceGroup(const std::u32string& s, std::size_t& i);
    void ModifierDown(std::uint8_t vk);
    void ModifierUp(std::uint8_t vk);

    Keyboard& keyboard_;
    int pushDepth_ = 0;
};
