#pragma once

#include "platform/MessageBoxes.h"

// Message boxes through QMessageBox, with exactly the requested text, title, buttons,
// icon and default button.
class QtMessageBoxes : public MessageBoxes {
public:
    MsgAnswer Show(const MessageRequest& request) override;
};
