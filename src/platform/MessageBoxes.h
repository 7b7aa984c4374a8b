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

// Shows a message box and waits for the operator's answer.
class MessageBoxes {
public:
    virtual ~MessageBoxes() = default;
    virtual MsgAnswer Show(const MessageRequest& request) = 0;
};
