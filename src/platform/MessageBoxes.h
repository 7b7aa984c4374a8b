#pragma once

#include <QString>

enum class MsgButtons { OK, OKCancel, YesNo };
enum class MsgIcon { None, Critical, Information };
enum class MsgDefault { First, Second };
enum class MsgAnswer { OK, Cancel, Yes, No };

struct MessageRequest {
    QString text;
    QString title;
    MsgButtons buttons = MsgButtons::OK;
    MsgIcon icon = MsgIcon::None;
    MsgDefault defaultButton = MsgDefault::First;

    bool operator==(const MessageRequest&) const = default;
};

// Message boxes of the program.
class MessageBoxes {
public:
    virtual ~MessageBoxes() = default;
    // Shows a box and waits for the operator's answer.
    virtual MsgAnswer Show(const MessageRequest& request) = 0;
    // Shows a notice with an OK button and returns at once; the notice takes no
    // keyboard focus. A notice still open is replaced, not doubled.
    virtual void Notify(const MessageRequest& request) = 0;
    // Whether a box of Show is waiting for the operator's answer.
    virtual bool IsShowing() = 0;
};
