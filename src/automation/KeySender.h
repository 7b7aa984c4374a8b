#pragma once

#include "platform/KeySendError.h"

#include <QString>

// Types a text written in the key-sequence language into the focused window.
class KeySender {
public:
    virtual ~KeySender() = default;
    virtual void PushKeys(const QString& keys) = 0;
};
