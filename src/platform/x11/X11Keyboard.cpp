#include "platform/x11/X11Keyboard.h"

#include "platform/Ansi.h"
#include "platform/KeySendError.h"
#include "platform/UsLayout.h"
#include "platform/x11/XConnectionLoss.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <utility>

namespace {

// Spare keycodes used in turn for characters without a key.
constexpr std::size_t kSpareKeys = 8;

// Virtual keys outside the runs of letters, digits, keypad digits and function keys.
constexpr std::pair<std::uint8_t, KeySym> kNamedKeysyms[] = {
    {0x03, XK_Pause},        {0x08, XK_BackSpace},   {0x09, XK_Tab},
    {0x0A, XK_Linefeed},     {0x0C, XK_Clear},       {0x0D, XK_Return},
    {0x10, XK_Shift_L},      {0x11, XK_Control_L},   {0x12, XK_Alt_L},
    {0x13, XK_Pause},        {0x14, XK_Caps_Lock},   {0x1B, XK_Escape},
    {0x20, XK_space},        {0x21, XK_Prior},       {0x22, XK_Next},
    {0x23, XK_End},          {0x24, XK_Home},        {0x25, XK_Left},
    {0x26, XK_Up},           {0x27, XK_Right},       {0x28, XK_Down},
    {0x29, XK_Select},       {0x2A, XK_Print},       {0x2B, XK_Execute},
    {0x2C, XK_Print},        {0x2D, XK_Insert},      {0x2E, XK_Delete},
    {0x2F, XK_Help},         {0x5B, XK_Super_L},     {0x5C, XK_Super_R},
    {0x5D, XK_Menu},         {0x6A, XK_KP_Multiply}, {0x6B, XK_KP_Add},
    {0x6C, XK_KP_Separator}, {0x6D, XK_KP_Subtract}, {0x6E, XK_KP_Decimal},
    {0x6F, XK_KP_Divide},    {0x90, XK_Num_Lock},    {0x91, XK_Scroll_Lock},
    {0xA0, XK_Shift_L},      {0xA1, XK_Shift_R},     {0xA2, XK_Control_L},
    {0xA3, XK_Control_R},    {0xA4, XK_Alt_L},       {0xA5, XK_Alt_R},
    {0xBA, XK_semicolon},    {0xBB, XK_equal},       {0xBC, XK_comma},
    {0xBD, XK_minus},        {0xBE, XK_period},      {0xBF, XK_slash},
    {0xC0, XK_grave},        {0xDB, XK_bracketleft}, {0xDC, XK_backslash},
    {0xDD, XK_bracketright}, {0xDE, XK_apostrophe},  {0xE2, XK_less},
};

} // namespace

X11Keyboard::X11Keyboard() : ownsDisplay_(true) {}

X11Keyboard::X11Keyboard(Display* display) : display_(display) {}

X11Keyboard::~X11Keyboard() {
    CloseOwnDisplay();
}

unsigned long X11Keyboard::KeysymFor(std::uint8_t vk) {
    if (vk >= 'A' && vk <= 'Z')
        return XK_a + (vk - 'A');
    if (vk >= '0' && vk <= '9')
        return XK_0 + (vk - '0');
    if (vk >= 0x60 && vk <= 0x69)
        return XK_KP_0 + (vk - 0x60);
    if (vk >= 0x70 && vk <= 0x87)
        return XK_F1 + (vk - 0x70);
    for (const auto& [code, keysym] : kNamedKeysyms) {
        if (code == vk)
            return keysym;
    }
    return NoSymbol;
}

unsigned long X11Keyboard::KeysymForChar(char32_t ch) {
    if ((ch >= 0x20 && ch < 0x7F) || (ch >= 0xA0 && ch <= 0xFF))
        return ch; // Latin-1 keysyms are the characters themselves
    if (ch > 0xFF && ch <= 0x10FFFF)
        return 0x01000000 + ch;
    return NoSymbol;
}

unsigned char X11Keyboard::BindSpare(Display* display, unsigned long keysym) {
    if (spares_.empty()) {
        int low = 0, high = 0, perCode = 0;
        XDisplayKeycodes(display, &low, &high);
        KeySym* map = XGetKeyboardMapping(display, KeyCode(low), high - low + 1, &perCode);
        // The highest keycodes that type nothing.
        for (int code = high; code >= low && map && spares_.size() < kSpareKeys; --code) {
            bool empty = true;
            for (int i = 0; i < perCode; ++i)
                empty = empty && map[(code - low) * perCode + i] == NoSymbol;
            if (empty)
                spares_.push_back({static_cast<unsigned char>(code), NoSymbol});
        }
        if (map)
            XFree(map);
        if (spares_.empty())
            return 0;
    }
    for (const Spare& spare : spares_)
        if (spare.keysym == keysym)
            return spare.code;
    Spare& spare = spares_[nextSpare_++ % spares_.size()];
    KeySym syms[2] = {keysym, keysym}; // the same character with or without Shift
    XChangeKeyboardMapping(display, spare.code, 2, syms, 1);
    XSync(display, False);
    spare.keysym = keysym;
    return spare.code;
}

void X11Keyboard::UnbindSpares() {
    KeySym none[2] = {NoSymbol, NoSymbol};
    for (const Spare& spare : spares_)
        if (spare.keysym != NoSymbol)
            XChangeKeyboardMapping(display_, spare.code, 2, none, 1);
    XSync(display_, False);
    spares_.clear();
}

void X11Keyboard::KeyEvent(std::uint8_t vk, std::uint8_t /*scan*/, std::uint32_t flags) {
    Display* display = Connection();
    KeyCode keycode = 0;
    if (vk == kPacketKey) {
        const KeySym keysym = KeysymForChar(FromAnsi(packetChar_));
        if (keysym == NoSymbol)
            return;
        if (!(flags & KEYEVENTF_KEYUP))
            packetCode_ = BindSpare(display, keysym);
        keycode = packetCode_;
    } else {
        const KeySym keysym = KeysymFor(vk);
        if (keysym == NoSymbol)
            return;
        keycode = XKeysymToKeycode(display, keysym);
    }
    if (keycode == 0)
        return;
    const Bool down = (flags & KEYEVENTF_KEYUP) ? False : True;
    XTestFakeKeyEvent(display, keycode, down, CurrentTime);
    XFlush(display);
    if (lost_) {
        CloseOwnDisplay();
        throw KeySendError("The connection to the X server was lost");
    }
}

std::int16_t X11Keyboard::VkKeyScan(std::uint8_t ch) {
    const std::int16_t key = UsLayout::VkKeyScan(ch);
    if (key != -1 || KeysymForChar(FromAnsi(ch)) == NoSymbol)
        return key;
    packetChar_ = ch;
    return kPacketKey;
}

std::uint8_t X11Keyboard::CharToOem(std::uint8_t ch) {
    return UsLayout::CharToOem(ch);
}

std::uint32_t X11Keyboard::OemKeyScan(std::uint8_t oem) {
    return UsLayout::OemKeyScan(oem);
}

std::uint32_t X11Keyboard::MapVirtualKey(std::uint32_t vk) {
    return UsLayout::MapVirtualKey(vk);
}

void X11Keyboard::Sleep(std::uint32_t milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

Display* X11Keyboard::Connection() {
    if (display_)
        return display_;
    if (!ownsDisplay_)
        throw KeySendError("No X display to type into");
    const char* name = std::getenv("DISPLAY");
    display_ = XOpenDisplay(nullptr);
    if (!display_) {
        throw KeySendError(std::string("Cannot open the X display \"") + (name ? name : "") + "\"");
    }
    int eventBase = 0, errorBase = 0, major = 0, minor = 0;
    if (!XTestQueryExtension(display_, &eventBase, &errorBase, &major, &minor)) {
        CloseOwnDisplay();
        throw KeySendError("The X server has no XTest extension");
    }
    lost_ = false;
    // A broken connection is reported as a failed key instead of ending the process.
    SurviveConnectionLoss(display_, &X11Keyboard::ConnectionLost, this);
    return display_;
}

void X11Keyboard::CloseOwnDisplay() {
    if (display_ && !spares_.empty() && !lost_)
        UnbindSpares();
    if (ownsDisplay_ && display_) {
        XCloseDisplay(display_);
        ForgetConnection(display_);
        display_ = nullptr;
    }
}

void X11Keyboard::ConnectionLost(Display* /*display*/, void* self) {
    static_cast<X11Keyboard*>(self)->lost_ = true;
}
