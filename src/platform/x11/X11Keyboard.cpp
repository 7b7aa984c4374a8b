#include "platform/x11/X11Keyboard.h"

#include "automation/KeySender.h"
#include "automation/UsLayout.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <chrono>
#include <cstdlib>
#include <mutex>
#include <set>
#include <string>
#include <thread>

namespace {

// Xlib ends the process when a connection breaks. For the connections this backend opens, the
// break is reported as a failed key instead; other connections keep the handler they had.
std::mutex gOwnDisplaysMutex;
std::set<Display*> gOwnDisplays;
XIOErrorHandler gPreviousHandler = nullptr;

int OnConnectionBroken(Display* display) {
    {
        const std::lock_guard lock(gOwnDisplaysMutex);
        if (gOwnDisplays.count(display))
            return 0;
    }
    return gPreviousHandler ? gPreviousHandler(display) : 0;
}

void WatchConnection(Display* display) {
    static std::once_flag installed;
    std::call_once(installed, [] { gPreviousHandler = XSetIOErrorHandler(&OnConnectionBroken); });
    const std::lock_guard lock(gOwnDisplaysMutex);
    gOwnDisplays.insert(display);
}

void ForgetConnection(Display* display) {
    const std::lock_guard lock(gOwnDisplaysMutex);
    gOwnDisplays.erase(display);
}

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
    switch (vk) {
    case 0x03:
        return XK_Pause;
    case 0x08:
        return XK_BackSpace;
    case 0x09:
        return XK_Tab;
    case 0x0A:
        return XK_Linefeed;
    case 0x0C:
        return XK_Clear;
    case 0x0D:
        return XK_Return;
    case 0x10:
        return XK_Shift_L;
    case 0x11:
        return XK_Control_L;
    case 0x12:
        return XK_Alt_L;
    case 0x13:
        return XK_Pause;
    case 0x14:
        return XK_Caps_Lock;
    case 0x1B:
        return XK_Escape;
    case 0x20:
        return XK_space;
    case 0x21:
        return XK_Prior;
    case 0x22:
        return XK_Next;
    case 0x23:
        return XK_End;
    case 0x24:
        return XK_Home;
    case 0x25:
        return XK_Left;
    case 0x26:
        return XK_Up;
    case 0x27:
        return XK_Right;
    case 0x28:
        return XK_Down;
    case 0x29:
        return XK_Select;
    case 0x2A:
        return XK_Print;
    case 0x2B:
        return XK_Execute;
    case 0x2C:
        return XK_Print;
    case 0x2D:
        return XK_Insert;
    case 0x2E:
        return XK_Delete;
    case 0x2F:
        return XK_Help;
    case 0x5B:
        return XK_Super_L;
    case 0x5C:
        return XK_Super_R;
    case 0x5D:
        return XK_Menu;
    case 0x6A:
        return XK_KP_Multiply;
    case 0x6B:
        return XK_KP_Add;
    case 0x6C:
        return XK_KP_Separator;
    case 0x6D:
        return XK_KP_Subtract;
    case 0x6E:
        return XK_KP_Decimal;
    case 0x6F:
        return XK_KP_Divide;
    case 0x90:
        return XK_Num_Lock;
    case 0x91:
        return XK_Scroll_Lock;
    case 0xA0:
        return XK_Shift_L;
    case 0xA1:
        return XK_Shift_R;
    case 0xA2:
        return XK_Control_L;
    case 0xA3:
        return XK_Control_R;
    case 0xA4:
        return XK_Alt_L;
    case 0xA5:
        return XK_Alt_R;
    case 0xBA:
        return XK_semicolon;
    case 0xBB:
        return XK_equal;
    case 0xBC:
        return XK_comma;
    case 0xBD:
        return XK_minus;
    case 0xBE:
        return XK_period;
    case 0xBF:
        return XK_slash;
    case 0xC0:
        return XK_grave;
    case 0xDB:
        return XK_bracketleft;
    case 0xDC:
        return XK_backslash;
    case 0xDD:
        return XK_bracketright;
    case 0xDE:
        return XK_apostrophe;
    case 0xE2:
        return XK_less;
    default:
        return NoSymbol;
    }
}

void X11Keyboard::KeyEvent(std::uint8_t vk, std::uint8_t /*scan*/, std::uint32_t flags) {
    Display* display = Connection();
    const KeySym keysym = KeysymFor(vk);
    if (keysym == NoSymbol)
        return;
    const KeyCode keycode = XKeysymToKeycode(display, keysym);
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
    return UsLayout::VkKeyScan(ch);
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
    WatchConnection(display_);
    XSetIOErrorExitHandler(display_, &X11Keyboard::ConnectionLost, this);
    return display_;
}

void X11Keyboard::CloseOwnDisplay() {
    if (ownsDisplay_ && display_) {
        XCloseDisplay(display_);
        ForgetConnection(display_);
        display_ = nullptr;
    }
}

void X11Keyboard::ConnectionLost(Display* /*display*/, void* self) {
    static_cast<X11Keyboard*>(self)->lost_ = true;
}
