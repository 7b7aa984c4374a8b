#pragma once

#include "platform/Keyboard.h"

#include <vector>

typedef struct _XDisplay Display;

// Types through the XTest extension. Virtual keys are mapped to keysyms and those to the
// keycodes of the server's current keymap; a key the keymap lacks is not sent.
//
// A character that no key of the layout types (é, ß, €) answers VkKeyScan with the
// packet key kPacketKey; tapping that key types the character through a spare keycode
// bound to its keysym, as X11 typing tools do. A client may read the keymap some time
// after the key arrives, so a binding is left in place until its keycode is needed for
// another character (several are used in turn); all are undone when the keyboard goes.
class X11Keyboard : public Keyboard {
public:
    static constexpr std::uint8_t kPacketKey = 0xE7;

    // Opens its own connection to $DISPLAY when first needed.
    X11Keyboard();
    // Uses the given connection, which stays the caller's.
    explicit X11Keyboard(Display* display);
    ~X11Keyboard() override;
    X11Keyboard(const X11Keyboard&) = delete;
    X11Keyboard& operator=(const X11Keyboard&) = delete;

    void KeyEvent(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags) override;
    std::int16_t VkKeyScan(std::uint8_t ch) override;
    std::uint8_t CharToOem(std::uint8_t ch) override;
    std::uint32_t OemKeyScan(std::uint8_t oem) override;
    std::uint32_t MapVirtualKey(std::uint32_t vk) override;
    void Sleep(std::uint32_t milliseconds) override;

    // The keysym a virtual key stands for; 0 (NoSymbol) when none.
    static unsigned long KeysymFor(std::uint8_t vk);
    // The keysym of a character (Unicode), 0 when none.
    static unsigned long KeysymForChar(char32_t ch);

private:
    Display* Connection();
    void CloseOwnDisplay();
    // A spare keycode bound to `keysym`; 0 when the keymap has no spare keycode.
    unsigned char BindSpare(Display* display, unsigned long keysym);
    void UnbindSpares();
    static void ConnectionLost(Display* display, void* self);

    Display* display_ = nullptr;
    bool ownsDisplay_ = false;
    bool lost_ = false;
    std::uint8_t packetChar_ = 0;  // the character the packet key types
    unsigned char packetCode_ = 0; // the keycode its last key-down went to
    struct Spare {
        unsigned char code;
        unsigned long keysym;
    };
    std::vector<Spare> spares_; // found at the first packet key
    std::size_t nextSpare_ = 0;
};
