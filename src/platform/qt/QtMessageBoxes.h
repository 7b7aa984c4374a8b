#pragma once

#include "platform/MessageBoxes.h"

#include <QMessageBox>
#include <QPointer>

// Message boxes through QMessageBox, with exactly the requested text, title, buttons,
// icon and default button.
class QtMessageBoxes : public MessageBoxes {
public:
    MsgAnswer Show(const MessageRequest& request) override;
    void Notify(const MessageRequest& request) override;
    bool IsShowing() override { return showing_ > 0; }

private:
    int showing_ = 0;
    QPointer<QMessageBox> notice_;
};
