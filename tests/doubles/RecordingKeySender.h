#pragma once

#include "automation/KeySender.h"

#include <QStringList>

#include <functional>

// Records every PushKeys text. A call can be made to fail: `failOnCall` = n throws a
// KeySendError on the n-th call (from 1), `thrower` throws whatever a test likes.
class RecordingKeySender : public KeySender {
public:
    void PushKeys(const QString& keys) override;

    QStringList pushed;
    int calls = 0;
    int failOnCall = 0;
    std::function<void(const QString&)> thrower;
};
