#pragma once

#include "automation/KeySender.h"

#include <QStringList>

#include <functional>

// Records every PushKeys text; `fail`, when set, runs first and may throw.
class RecordingKeySender : public KeySender {
public:
    void PushKeys(const QString& keys) override;

    QStringList pushed;
    std::function<void()> fail;
};
