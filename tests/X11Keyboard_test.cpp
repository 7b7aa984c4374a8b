#include "platform/x11/X11Keyboard.h"

#include <X11/keysym.h>

#include <gtest/gtest.h>

namespace {

TEST(X11Keyboard, VirtualKeysBecomeKeysyms) {
    struct Row {
        int vk;
        unsigned long keysym;
    };
    const Row rows[] = {
        {'A', XK_a},
        {'Z', XK_z},
        {'0', XK_0},
        {'9', XK_9},
        {0x20, XK_space},
        {0x0D, XK_Return},
        {0x08, XK_BackSpace},
        {0x09, XK_Tab},
        {0x1B, XK_Escape},
        {0x2E, XK_Delete},
        {0x2D, XK_Insert},
        {0x25, XK_Left},
        {0x26, XK_Up},
        {0x27, XK_Right},
        {0x28, XK_Down},
        {0x24, XK_Home},
        {0x23, XK_End},
        {0x21, XK_Prior},
        {0x22, XK_Next},
        {0x70, XK_F1},
        {0x73, XK_F4},
        {0x87, XK_F24},
        {0x60, XK_KP_0},
        {0x65, XK_KP_5},
        {0x6A, XK_KP_Multiply},
        {0x6B, XK_KP_Add},
        {0x6D, XK_KP_Subtract},
        {0x6E, XK_KP_Decimal},
        {0x6F, XK_KP_Divide},
        {0x14, XK_Caps_Lock},
        {0x90, XK_Num_Lock},
        {0x91, XK_Scroll_Lock},
        {0x2A, XK_Print},
        {0x2F, XK_Help},
        {0x03, XK_Pause},
        {0x13, XK_Pause},
        {0x10, XK_Shift_L},
        {0x11, XK_Control_L},
        {0x12, XK_Alt_L},
        {0xBA, XK_semicolon},
        {0xBB, XK_equal},
        {0xBC, XK_comma},
        {0xBD, XK_minus},
        {0xBE, XK_period},
        {0xBF, XK_slash},
        {0xC0, XK_grave},
        {0xDB, XK_bracketleft},
        {0xDC, XK_backslash},
        {0xDD, XK_bracketright},
        {0xDE, XK_apostrophe},
        // What a character without a key gives, and codes no key stands for: nothing is typed.
        {0xFF, 0ul},
        {0x00, 0ul},
        {0x07, 0ul},
        {0x88, 0ul},
    };
    for (const Row& row : rows)
        EXPECT_EQ(X11Keyboard::KeysymFor(static_cast<std::uint8_t>(row.vk)), row.keysym)
            << "virtual key " << row.vk;
}

} // namespace
