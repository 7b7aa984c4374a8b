#pragma once

#include "platform/Keyboard.h"

typedef struct _XDisplay Display;

// Types through the XTest extension. Virtual keys are mapped to keysyms and those to the
// keycodes of the server's current keymap; a key the keymap lacks is not sent.
class X11Keyboard : public Keyboard {
public:
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

private:
    Display* Connection();
    void CloseOwnDisplay();
    static void ConnectionLost(Display* display, void* self);

    Display* display_ = nullptr;
    bool ownsDisplay_ = false;
    bool lost_ = false;
};
